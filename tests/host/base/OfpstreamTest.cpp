// The stream for writing: bytes of every kind of value, windows, files, failures.
#include "platform/base/ofpstream.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <string>

#include "platform/base/ifpstream.h"
#include "tests/Bytes.h"
#include "tests/TempFolder.h"
#include "tests/host/base/StreamParts.h"

namespace {

using test::Bytes;
using test::Dump;
using test::MemorySink;
using test::TempFolder;

constexpr std::size_t kWindow = 256 * 1024;

std::string Hex(std::string_view digits) { return Bytes().Hex(digits); }

// --- values ------------------------------------------------------------------------------------------------

template <class Write>
std::string Written(Write write) {
    ofpstream out(1400);
    write(out);
    return Dump(out.GetBytes());
}

TEST(Ofpstream, WholeNumbersStandLeastSignificantByteFirst) {
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteChar('A'); }), Dump(Hex("41")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteChar(static_cast<char>(-2)); }), Dump(Hex("fe")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteUChar(0xFE); }), Dump(Hex("fe")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteShort(0x1234); }), Dump(Hex("3412")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteShort(-2); }), Dump(Hex("feff")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteUShort(0xFFFE); }), Dump(Hex("feff")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteInt(0x12345678); }), Dump(Hex("78563412")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteInt(-2); }), Dump(Hex("feffffff")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteUInt(0xFEDCBA98u); }), Dump(Hex("98badcfe")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteInt64(0x0102030405060708); }), Dump(Hex("0807060504030201")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteInt64(-2); }), Dump(Hex("feffffffffffffff")));
}

TEST(Ofpstream, RealNumbersStandAsTheirBits) {
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteFloat(0.1f); }), Dump(Hex("cdcccc3d")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteFloat(-2.5f); }), Dump(Hex("000020c0")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteDouble(-1.5); }), Dump(Hex("000000000000f8bf")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteDouble(45.125); }), Dump(Hex("0000000000904640")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteDouble(1.7e200); }), Dump(Hex("991377b76ec48169")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteDouble(-0.0); }), Dump(Hex("0000000000000080")));
}

TEST(Ofpstream, TextsStandBehindTheirLengthWithoutEnd) {
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteString("GPS"); }), Dump(Hex("03000000 475053")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteString(""); }), Dump(Hex("00000000")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteString(std::string("a\0b", 3)); }),
              Dump(Hex("03000000 610062")));
    EXPECT_EQ(Written([](ofpstream& o) { o.WriteString("\xC3\xA0"); }), Dump(Hex("02000000 c3a0")));
}

TEST(Ofpstream, ValuesFollowOneAnotherWithoutGaps) {
    EXPECT_EQ(Written([](ofpstream& o) {
                  o.WriteUChar(1);
                  o.WriteDouble(-1.5);
                  o.WriteShort(2);
                  o.WriteInt(3);
                  o.WriteString("x");
                  o.WriteBytes("yz", 2);
                  o.WriteBytes(nullptr, 0);
                  o.WriteUChar(4);
              }),
              Dump(Hex("01 000000000000f8bf 0200 03000000 01000000 78 797a 04")));
}

TEST(Ofpstream, VersionIsCarriedAndNotWritten) {
    ofpstream out(-3);
    EXPECT_EQ(out.GetVersion(), -3);
    out.SetVersion(742);
    EXPECT_EQ(out.GetVersion(), 742);
    EXPECT_EQ(out.GetPosition(), 0);
    EXPECT_EQ(out.GetBytes(), "");
}

// --- windows -----------------------------------------------------------------------------------------------

// A small number of each kind, so that a run of them meets the end of a window at every offset.
void WriteMixture(ofpstream& out, Bytes& expected, int n) {
    for (int i = 0; i < n; ++i) {
        out.WriteUChar(static_cast<unsigned char>(i));
        out.WriteShort(static_cast<short>(i));
        out.WriteInt(i);
        out.WriteDouble(i);
        out.WriteFloat(static_cast<float>(i));
        out.WriteInt64(-i);
        const std::string text(static_cast<std::size_t>(i % 5), 't');
        out.WriteString(text);
        expected.U8(static_cast<unsigned>(i) & 0xFF).I16(i).I32(i).F64(i).F32(static_cast<float>(i)).I64(-i);
        expected.Text(text);
    }
}

TEST(Ofpstream, NothingIsLostWhereAWindowEnds) {
    for (std::size_t offset = 0; offset < 40; ++offset) {
        MemorySink sink;
        Bytes expected;
        const std::string lead(kWindow - offset, '.');
        {
            ofpstream out(sink, 1400);
            out.WriteBytes(lead.data(), 1);  // makes the window, so that the rest fills it
            out.WriteBytes(lead.data() + 1, lead.size() - 1);
            WriteMixture(out, expected, 20);
            EXPECT_EQ(out.GetPosition(), static_cast<std::int64_t>(lead.size() + expected.Size()));
            EXPECT_TRUE(out.Close());
        }
        ASSERT_EQ(sink.taken.size(), lead.size() + expected.Size()) << "offset " << offset;
        ASSERT_EQ(Dump(sink.taken.substr(lead.size())), Dump(expected.Get())) << "offset " << offset;
    }
}

TEST(Ofpstream, RecordsCostNoCallToTheSink) {
    MemorySink sink;
    {
        ofpstream out(sink, 1400);
        for (int i = 0; i < 30'000; ++i) out.WriteDouble(i);  // 240,000 bytes: less than a window
        EXPECT_TRUE(sink.sizes.empty());
    }
    EXPECT_EQ(sink.sizes, std::vector<std::size_t>{240'000});
    EXPECT_EQ(sink.closed, 1);
}

TEST(Ofpstream, LongTextPassesTheWindowBy) {
    const std::string text(3 * kWindow, 't');
    MemorySink sink;
    ofpstream out(sink, 1400);
    out.WriteShort(7);
    out.WriteString(text);
    out.WriteShort(8);
    EXPECT_EQ(out.GetPosition(), static_cast<std::int64_t>(text.size() + 8));
    ASSERT_TRUE(out.Close());
    EXPECT_TRUE(sink.taken == Bytes().I16(7).Text(text).I16(8).Get());
}

TEST(Ofpstream, MemoryGrowsAndKeepsWhatItHas) {
    ofpstream out(1400);
    Bytes expected;
    EXPECT_EQ(out.GetBytes(), "");
    for (int i = 0; i < 40; ++i) {
        WriteMixture(out, expected, 100);
        const std::string text(static_cast<std::size_t>(i) * 997, 'm');
        out.WriteString(text);
        expected.Text(text);
        ASSERT_TRUE(out.GetBytes() == expected.Get()) << i;
        ASSERT_EQ(out.GetPosition(), static_cast<std::int64_t>(expected.Size()));
    }
    EXPECT_TRUE(out.Close());
    EXPECT_TRUE(out.GetBytes() == expected.Get());
}

TEST(Ofpstream, FlushPassesOnWhatStandsInTheWindow) {
    MemorySink sink;
    ofpstream out(sink, 1400);
    out.Flush();
    EXPECT_TRUE(sink.sizes.empty()) << "there is nothing to pass on";
    out.WriteInt(1);
    out.Flush();
    EXPECT_EQ(Dump(sink.taken), Dump(Hex("01000000")));
    out.WriteInt(2);
    EXPECT_EQ(out.GetPosition(), 8);
    EXPECT_EQ(out.GetBytes(), "") << "what went to a sink is not in memory";
    out.Flush();
    out.Flush();
    EXPECT_EQ(Dump(sink.taken), Dump(Hex("01000000 02000000")));
    EXPECT_EQ(sink.sizes.size(), 2u);
}

// --- failures ----------------------------------------------------------------------------------------------

TEST(Ofpstream, FailureOfTheSinkIsRememberedAndItIsNotAskedAgain) {
    MemorySink sink(100, ENOSPC);
    ofpstream out(sink, 1400);
    EXPECT_TRUE(out.IsOk());
    const std::string text(1000, 'x');
    out.WriteString(text);
    EXPECT_TRUE(out.IsOk()) << "it has not been passed on yet";
    out.Flush();
    EXPECT_FALSE(out.IsOk());
    EXPECT_EQ(out.GetError(), ENOSPC);
    const std::size_t calls = sink.sizes.size();
    for (int i = 0; i < 1000; ++i) out.WriteString(text);
    out.Flush();
    EXPECT_EQ(sink.sizes.size(), calls);
    EXPECT_FALSE(out.Close());
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(out.GetError(), ENOSPC);
    EXPECT_EQ(sink.closed, 1);
    EXPECT_EQ(sink.taken, "");
}

TEST(Ofpstream, FailureOfTheEndIsAFailure) {
    MemorySink sink;
    sink.closeError = EIO;
    ofpstream out(sink, 1400);
    out.WriteInt(1);
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(out.GetError(), EIO);
}

TEST(Ofpstream, FirstFailureIsTheOneThatIsNamed) {
    MemorySink sink(0, ENOSPC);
    sink.closeError = EIO;
    ofpstream out(sink, 1400);
    out.WriteInt(1);
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(out.GetError(), ENOSPC);
}

TEST(Ofpstream, EndOfItsLifeClosesOnce) {
    MemorySink sink;
    { ofpstream out(sink, 1400); }
    EXPECT_EQ(sink.closed, 1);
    {
        ofpstream out(sink, 1400);
        out.Close();
    }
    EXPECT_EQ(sink.closed, 2);
}

// --- files -------------------------------------------------------------------------------------------------

TEST(Ofpstream, FileHoldsWhatWasWritten) {
    const TempFolder folder;
    const std::string path = folder / "stream";
    Bytes expected;
    {
        ofpstream out(path.c_str(), 1400);
        ASSERT_TRUE(out.IsOk());
        WriteMixture(out, expected, 20'000);  // several windows
        EXPECT_TRUE(out.Close());
    }
    EXPECT_TRUE(test::FileBytes(path) == expected.Get());
}

TEST(Ofpstream, OldFileIsReplaced) {
    const TempFolder folder;
    const std::string path = folder / "stream";
    test::WriteFileBytes(path, "something longer than what comes");
    {
        ofpstream out(path.c_str(), 1400);
        out.WriteUChar('n');
    }
    EXPECT_EQ(test::FileBytes(path), "n");
}

TEST(Ofpstream, BackslashSeparatesFoldersToo) {
    const TempFolder folder;
    {
        ofpstream out((folder / "" + "\\stream").c_str(), 1400);
        EXPECT_TRUE(out.IsOk());
        out.WriteUChar('b');
    }
    EXPECT_EQ(test::FileBytes(folder / "stream"), "b");
}

TEST(Ofpstream, FileThatCannotBeMadeFailsFromTheBeginning) {
    const TempFolder folder;
    ofpstream out((folder / "missing/stream").c_str(), 1400);
    EXPECT_FALSE(out.IsOk());
    EXPECT_EQ(out.GetError(), ENOENT);
    for (int i = 0; i < 100'000; ++i) out.WriteDouble(i);
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(out.GetError(), ENOENT);
}

TEST(Ofpstream, FullDiskIsAFailure) {
    ofpstream out("/dev/full", 1400);
    ASSERT_TRUE(out.IsOk());
    out.WriteInt(1);
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(out.GetError(), ENOSPC);
}

// --- marker and signature ----------------------------------------------------------------------------------

TEST(Ofpstream, FileWithASignatureBeginsWithTheMarker) {
    const TempFolder folder;
    const std::string path = folder / "stream";
    {
        ofpstream out(path.c_str(), 1400, "FCP");
        ASSERT_TRUE(out.IsOk());
        EXPECT_EQ(out.GetSignature(), "FCP");
        EXPECT_EQ(out.GetVersion(), 1400);
        EXPECT_EQ(out.GetPosition(), 5);
        out.WriteShort(7);
        EXPECT_TRUE(out.Close());
    }
    EXPECT_EQ(Dump(test::FileBytes(path)), Dump(Bytes().Hex("3a01010000 0700").Get()))
        << "the signature itself is not written";
}

TEST(Ofpstream, WithoutASignatureThereIsNoMarker) {
    const TempFolder folder;
    const std::string path = folder / "stream";
    {
        ofpstream out(path.c_str(), 1400);
        EXPECT_EQ(out.GetSignature(), "");
        EXPECT_EQ(out.GetPosition(), 0);
    }
    EXPECT_EQ(test::FileBytes(path), "");
    const ofpstream memory(1400);
    EXPECT_EQ(memory.GetSignature(), "");
    EXPECT_EQ(memory.GetBytes(), "");
}

TEST(Ofpstream, MarkerOfAFileThatCannotBeMadeIsDropped) {
    const TempFolder folder;
    ofpstream out((folder / "missing/stream").c_str(), 1400, "FCP");
    EXPECT_FALSE(out.IsOk());
    EXPECT_EQ(out.GetError(), ENOENT);
    EXPECT_FALSE(out.Close());
}

TEST(Ofpstream, ClearedMemoryIsEmptyAndTakesBytesAgain) {
    ofpstream out(1400);
    out.Clear();
    EXPECT_EQ(out.GetBytes(), "");
    for (int i = 0; i < 10'000; ++i) out.WriteInt(i);
    const char* const room = out.GetBytes().data();
    out.Clear();
    EXPECT_EQ(out.GetBytes(), "");
    EXPECT_EQ(out.GetPosition(), 0);
    out.WriteShort(0x1234);
    EXPECT_EQ(out.GetBytes(), "\x34\x12");
    EXPECT_EQ(out.GetBytes().data(), room) << "the room is kept";
}

}  // namespace
