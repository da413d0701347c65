// Header and frames, byte for byte.
#include <gtest/gtest.h>

#include "host/base/JournalFrame.h"
#include "tests/Bytes.h"
#include "tests/host/base/JournalParts.h"

namespace {

using test::Bytes;
using test::Dump;
using test::kBase;
using test::kId;

const Bytes& HeaderByHand() {
    static const Bytes bytes = Bytes()
                                   .Hex("4a 01 01 00 00")           // marker
                                   .Hex("8a 07 57 ce")              // checksum
                                   .Hex("88 77 66 55 44 33 22 11")  // id
                                   .Hex("01 ff ee dd cc bb aa 99")  // base
                                   .Hex("01 00 00 00 00 00 00 00")  // first sequence
        ;
    return bytes;
}

// Group 2 was deleted.
const Bytes& FrameByHand() {
    static const Bytes bytes = Bytes()
                                   .Hex("47 46 52 4d")              // magic
                                   .Hex("a5 8e 24 52")              // checksum
                                   .Hex("06 00 00 00")              // payload length
                                   .Hex("88 77 66 55 44 33 22 11")  // id
                                   .Hex("01 00 00 00 00 00 00 00")  // sequence
                                   .Hex("00 00 00 00 00 00 00 00")  // durable
                                   .Hex("c3 0b")                    // 3011
                                   .Hex("00 00")                    // flags
                                   .Hex("78 05")                    // 1400
                                   .Hex("02 00 00 00");
    return bytes;
}

// Point 5 of group 2 was deleted, and more follows.
const Bytes& FrameOfEditByHand() {
    static const Bytes bytes = Bytes()
                                   .Hex("47 46 52 4d")
                                   .Hex("56 ab 06 be")
                                   .Hex("0a 00 00 00")
                                   .Hex("88 77 66 55 44 33 22 11")
                                   .Hex("02 00 00 00 00 00 00 00")
                                   .Hex("01 00 00 00 00 00 00 00")
                                   .Hex("c4 0b")
                                   .Hex("01 00")
                                   .Hex("78 05")
                                   .Hex("02 00 00 00 05 00 00 00");
    return bytes;
}

TEST(JournalFrame, HeaderHasTheseBytes) {
    EXPECT_EQ(Dump(JournalHeaderBytes({kId, kBase, 1})), Dump(HeaderByHand().Get()));
    EXPECT_EQ(HeaderByHand().Size(), kJournalHeaderSize);
    EXPECT_EQ(ReadJournalHeader(HeaderByHand().Get() + "more"), (JournalHeader{kId, kBase, 1}));
}

TEST(JournalFrame, FrameHasTheseBytes) {
    EXPECT_EQ(Dump(FrameBytes({0, 0, kId, 1, 0, 3011, 0}, FrameByHand().Get().substr(kFrameHeadSize))),
              Dump(FrameByHand().Get()));
    EXPECT_EQ(Dump(FrameBytes({0, 0, kId, 2, 1, 3012, kMoreFollows},
                              FrameOfEditByHand().Get().substr(kFrameHeadSize))),
              Dump(FrameOfEditByHand().Get()));
}

TEST(JournalFrame, FirstByteOfAJournalIsNotThatOfAnExchangeFile) {
    EXPECT_NE(JournalHeaderBytes({}).front(), ':');
}

TEST(JournalFrame, DamagedOrShortHeaderIsNone) {
    const std::string& header = HeaderByHand();
    for (std::size_t bit = 0; bit < 8 * header.size(); ++bit) {
        std::string damaged = header;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_FALSE(ReadJournalHeader(damaged)) << "bit " << bit;
    }
    for (std::size_t size = 0; size < header.size(); ++size)
        EXPECT_FALSE(ReadJournalHeader(header.substr(0, size))) << size << " bytes";
}

TEST(JournalFrame, ScanFindsWhatWasPutTogetherByHand) {
    const std::string bytes = Bytes().Raw(HeaderByHand()).Raw(FrameByHand()).Raw(FrameOfEditByHand());
    const JournalScan scan = test::ScannedBytes(bytes);
    EXPECT_EQ(scan.header, (JournalHeader{kId, kBase, 1}));
    EXPECT_EQ(scan.frames,
              (std::vector<JournalFrame>{{1, 0, 3011, false, 33, 73, 6}, {2, 1, 3012, true, 79, 119, 10}}));
    EXPECT_EQ(scan.end, JournalScan::End::clean);
    EXPECT_EQ(scan.endOffset, 129);
    EXPECT_EQ(scan.lastDurable, 1u);
    EXPECT_TRUE(scan.later.empty());
    EXPECT_EQ(scan.what, "");
    EXPECT_EQ(scan.error, 0);
}

TEST(JournalFrame, WriterWritesWhatWasPutTogetherByHand) {
    test::ModelDisk disk;
    JournalWriter journal(disk, test::kJournal, test::kBook, kId, kBase);
    ofpstream* entry = journal.Open(test::kBook, 3011);
    ASSERT_TRUE(entry);
    entry->WriteInt(2);
    journal.Close(entry);
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Dump(disk.Bytes(test::kJournal)), Dump(Bytes().Raw(HeaderByHand()).Raw(FrameByHand()).Get()));
}

}  // namespace
