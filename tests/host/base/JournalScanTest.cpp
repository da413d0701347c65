// What a scan finds in whole, cut, damaged and hostile journals.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <random>

#include "tests/Scale.h"
#include "tests/host/base/JournalParts.h"

namespace {

using End = JournalScan::End;
using test::kBase;
using test::kHead;
using test::kId;
using test::ScannedBytes;

std::string Frame(std::uint64_t sequence, std::uint64_t durable, const std::string& content,
                  bool more = false, std::uint64_t id = kId) {
    return FrameBytes({0, 0, id, sequence, durable, 3001, more ? kMoreFollows : std::uint16_t{0}},
                      std::string(test::kVersion1400) + content);
}

std::string Header(std::uint64_t first = 1, std::uint64_t id = kId) {
    return JournalHeaderBytes({id, kBase, first});
}

/// Frames from 1 on; each states that the one before was stored, or, of a group, those before the group.
struct Sample {
    Sample() {
        Add(0, "a");
        Add(1, "");
        Add(2, "three", true);
        Add(2, std::string(70, 'x'));
        Add(4, "five");
        Add(5, "the last");
    }
    void Add(std::uint64_t durable, const std::string& content, bool more = false) {
        begins.push_back(bytes.size());
        states.push_back(durable);
        bytes += Frame(begins.size(), durable, content, more);
    }
    /// Frames that begin with these bytes: how many are complete.
    std::size_t WholeWithin(std::size_t size) const {
        std::size_t whole = 0;
        while (whole < begins.size() && EndOf(whole) <= size) ++whole;
        return whole;
    }
    std::size_t EndOf(std::size_t frame) const {
        return frame + 1 < begins.size() ? begins[frame + 1] : bytes.size();
    }

    std::string bytes = Header();
    std::vector<std::size_t> begins;
    std::vector<std::uint64_t> states;
};

TEST(JournalScan, FindsAllOfAWholeJournal) {
    const Sample sample;
    const JournalScan scan = ScannedBytes(sample.bytes);
    ASSERT_EQ(scan.frames.size(), 6u);
    EXPECT_EQ(scan.end, End::clean);
    EXPECT_EQ(scan.lastDurable, 5u);
    EXPECT_EQ(
        test::Edits(sample.bytes, scan),
        (std::vector<test::Edit>{{"a"}, {""}, {"three", std::string(70, 'x')}, {"five"}, {"the last"}}));
}

TEST(JournalScan, HeaderAloneIsClean) {
    const JournalScan scan = ScannedBytes(Header(17));
    EXPECT_EQ(scan.header, (JournalHeader{kId, kBase, 17}));
    EXPECT_TRUE(scan.frames.empty());
    EXPECT_EQ(scan.end, End::clean);
}

TEST(JournalScan, EveryCutIsATornTailBehindTheWholeFrames) {
    const Sample sample;
    const JournalScan all = ScannedBytes(sample.bytes);
    for (std::size_t size = 0; size < sample.bytes.size(); ++size) {
        const JournalScan scan = ScannedBytes(sample.bytes.substr(0, size));
        const bool header = size >= static_cast<std::size_t>(test::kHeader);
        ASSERT_EQ(scan.header.has_value(), header) << size;
        const std::size_t whole = sample.WholeWithin(size);
        ASSERT_EQ(scan.frames.size(), whole) << size;
        ASSERT_TRUE(std::equal(scan.frames.begin(), scan.frames.end(), all.frames.begin())) << size;
        const std::size_t good = !header ? 0 : whole == 0 ? test::kHeader : sample.EndOf(whole - 1);
        ASSERT_EQ(scan.endOffset, static_cast<std::int64_t>(good)) << size;
        const bool atEnd = header && size == good;
        ASSERT_EQ(scan.end, atEnd ? End::clean : End::torn) << size;
        ASSERT_EQ(scan.what.empty(), atEnd) << size << ": " << scan.what;
    }
}

// Whatever bit is turned: the frames before it are found, no other one is, those behind it are found as what
// they are, and what was stored by their word is not taken for a torn tail.
TEST(JournalScan, EveryBitThatIsTurnedIsSeen) {
    const Sample sample;
    const JournalScan all = ScannedBytes(sample.bytes);
    for (std::size_t bit = 0; bit < 8 * sample.bytes.size(); ++bit) {
        std::string damaged = sample.bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        const JournalScan scan = ScannedBytes(damaged);
        const std::size_t hit = sample.WholeWithin(bit / 8);  // the frame that the bit is in
        if (bit / 8 < static_cast<std::size_t>(test::kHeader)) {
            ASSERT_FALSE(scan.header) << bit;
            ASSERT_TRUE(scan.frames.empty()) << bit;
            ASSERT_EQ(scan.end, End::damaged) << bit;
            ASSERT_EQ(scan.later, all.frames) << bit;
            continue;
        }
        ASSERT_EQ(scan.header, all.header) << bit;
        ASSERT_EQ(scan.frames,
                  std::vector<JournalFrame>(all.frames.begin(), all.frames.begin() + static_cast<long>(hit)))
            << bit;
        ASSERT_EQ(scan.later, std::vector<JournalFrame>(all.frames.begin() + static_cast<long>(hit) + 1,
                                                        all.frames.end()))
            << bit;
        bool stored = false;
        for (std::size_t i = hit + 1; i < sample.states.size(); ++i) stored |= sample.states[i] >= hit + 1;
        ASSERT_EQ(scan.end, stored ? End::damaged : End::torn) << bit;
        ASSERT_EQ(scan.endOffset, static_cast<std::int64_t>(sample.begins[hit])) << bit;
        ASSERT_TRUE(scan.what.starts_with("byte " + std::to_string(sample.begins[hit]) + ": ")) << scan.what;
    }
}

TEST(JournalScan, FrameThatSaysThatTheMissingOneWasStoredMakesItDamage) {
    const std::string before = Header() + Frame(1, 0, "one");
    const std::string hole(static_cast<std::size_t>(kHead) + 5, '\0');
    EXPECT_EQ(ScannedBytes(before + hole + Frame(3, 2, "three")).end, End::damaged);
    EXPECT_EQ(ScannedBytes(before + hole + Frame(3, 1, "three")).end, End::torn);
    EXPECT_EQ(ScannedBytes(before + hole + Frame(3, 1, "three") + Frame(9, 8, "nine")).end, End::damaged);
    EXPECT_EQ(ScannedBytes(before + hole + Frame(3, 1, "three")).later.size(), 1u);
    EXPECT_EQ(ScannedBytes(before + hole + Frame(3, 2, "three")).lastDurable, 2u);
    const std::string what = ScannedBytes(before + hole + Frame(3, 2, "three")).what;
    EXPECT_EQ(what, "byte 78: there is no frame; frames up to 2 were stored, and frame 2 is missing");
}

TEST(JournalScan, FrameOfAnotherJournalIsDamageAndNotApplied) {
    const std::string other = Frame(2, 1, "two", false, kId + 1);
    const JournalScan scan = ScannedBytes(Header() + Frame(1, 0, "one") + other + Frame(2, 1, "two"));
    EXPECT_EQ(scan.end, End::damaged);
    EXPECT_EQ(scan.frames.size(), 1u);
    EXPECT_EQ(scan.later.size(), 1u);
    EXPECT_EQ(ScannedBytes(Header() + Frame(1, 0, "one") + other).end, End::damaged);
    EXPECT_EQ(ScannedBytes(Header() + Frame(1, 0, "one") + other).what,
              "byte 78: a frame belongs to another journal");
}

TEST(JournalScan, HeaderOfAnotherJournalTakesNoFrame) {
    const JournalScan scan = ScannedBytes(Header(1, kId + 1) + Frame(1, 0, "one") + Frame(2, 1, "two"));
    EXPECT_TRUE(scan.header.has_value());
    EXPECT_TRUE(scan.frames.empty());
    EXPECT_TRUE(scan.later.empty());
    EXPECT_EQ(scan.end, End::damaged);
}

TEST(JournalScan, DoubledOrSkippedFrameIsDamage) {
    const std::string one = Frame(1, 0, "one");
    for (const std::uint64_t next : {std::uint64_t{1}, std::uint64_t{3}}) {
        const JournalScan scan = ScannedBytes(Header() + one + Frame(next, 0, "next"));
        EXPECT_EQ(scan.end, End::damaged) << next;
        EXPECT_EQ(scan.frames.size(), 1u) << next;
        EXPECT_EQ(scan.later.size(), 1u) << next;
        EXPECT_EQ(scan.what, "byte 78: frame " + std::to_string(next) + " stands where frame 2 should be");
    }
    EXPECT_EQ(ScannedBytes(Header(2) + one).end, End::damaged);
    EXPECT_EQ(ScannedBytes(Header(5) + Frame(5, 4, "five") + Frame(6, 5, "six")).end, End::clean);
}

TEST(JournalScan, FrameWithValuesThatNoneHasIsNotTaken) {
    const auto end = [](FrameHead head, const std::string& payload) {
        head.journal = kId;
        const JournalScan scan = ScannedBytes(Header() + FrameBytes(head, payload));
        EXPECT_TRUE(scan.frames.empty());
        return scan.end;
    };
    EXPECT_EQ(end({0, 0, kId, 1, 1, 3001, 0}, "xx"), End::torn) << "stored before it was written";
    EXPECT_EQ(end({0, 0, kId, 1, 0, 3001, 2}, "xx"), End::torn) << "a flag that nobody knows";
    EXPECT_EQ(end({0, 0, kId, 1, 0, 3001, 0}, "x"), End::torn) << "no version";
}

TEST(JournalScan, FileThatWasNeverWrittenIsTornAndAnyOtherFileIsDamaged) {
    using std::string;
    EXPECT_EQ(ScannedBytes("").end, End::torn);
    EXPECT_EQ(ScannedBytes(string(12, '\0')).end, End::torn);
    EXPECT_EQ(ScannedBytes(string(5000, '\0')).end, End::torn);
    // The first commit of all, of which the disk has kept a later page only.
    EXPECT_EQ(ScannedBytes(string(5000, '\0') + Frame(1, 0, "one")).end, End::torn);
    EXPECT_EQ(ScannedBytes(string(5000, '\0') + Frame(2, 1, "two")).end, End::damaged);
    EXPECT_EQ(ScannedBytes(string(5000, 'x')).end, End::damaged);
    EXPECT_EQ(ScannedBytes(":" + Header().substr(1)).end, End::damaged);
    for (const string& bytes : {string(), string(5000, '\0'), string(5000, 'x')}) {
        const JournalScan scan = ScannedBytes(bytes);
        EXPECT_FALSE(scan.header);
        EXPECT_EQ(scan.endOffset, 0);
        EXPECT_FALSE(scan.what.empty());
    }
}

TEST(JournalScan, FrameInsideAPayloadIsNoneOfTheJournal) {
    const std::string inner = Frame(2, 1, "inner");
    const JournalScan whole = ScannedBytes(Header() + Frame(1, 0, inner) + Frame(2, 1, "two"));
    ASSERT_EQ(whole.frames.size(), 2u);
    EXPECT_EQ(whole.end, End::clean);
    EXPECT_TRUE(whole.later.empty());
}

TEST(JournalScan, LongPayloadsAreReadWhereTheyStand) {
    std::string bytes = Header();
    std::vector<std::string> contents;
    std::mt19937 random(3);
    for (std::uint64_t i = 1; i <= 12; ++i) {
        std::string content(random() % 700'000, '\0');
        for (char& c : content) c = static_cast<char>(random() & 0xFF);
        bytes += Frame(i, i - 1, content);
        contents.push_back(content);
    }
    test::ModelDisk disk;
    disk.Put(test::kJournal, bytes);
    const JournalScan scan = test::Scanned(disk);
    ASSERT_EQ(scan.frames.size(), contents.size());
    EXPECT_EQ(scan.end, End::clean);
    int file = -1;
    ASSERT_EQ(disk.Open(test::kJournal, FileOperations::How::read, 0, file), 0);
    for (std::size_t i = 0; i < contents.size(); ++i) {
        std::string payload;
        ASSERT_EQ(ReadPayload(disk, file, scan.frames[i], payload), 0);
        ASSERT_TRUE(payload == std::string(test::kVersion1400) + contents[i]) << i;
    }
    // One of the long ones is damaged, far from its head: those behind it are found all the same.
    disk.Damage(test::kJournal, 8 * static_cast<std::size_t>(scan.frames[5].payloadOffset + 3));
    const JournalScan damaged = test::Scanned(disk);
    EXPECT_EQ(damaged.frames.size(), 5u);
    EXPECT_EQ(damaged.later.size(), 6u);
    EXPECT_EQ(damaged.end, End::damaged);
}

TEST(JournalScan, FileThatCannotBeReadIsNeverTorn) {
    const Sample sample;
    test::ModelDisk disk;
    disk.Put(test::kJournal, sample.bytes);
    int file = -1;
    ASSERT_EQ(disk.Open(test::kJournal, FileOperations::How::read, 0, file), 0);
    disk.SetFault([](long, const std::string& what) { return what == "read" ? EIO : 0; });
    const JournalScan refused = ScanJournal(disk, file, static_cast<std::int64_t>(sample.bytes.size()));
    EXPECT_EQ(refused.error, EIO);
    EXPECT_EQ(refused.end, End::damaged);
    disk.SetFault({});
    const JournalScan shorter = ScanJournal(disk, file, static_cast<std::int64_t>(sample.bytes.size()) + 100);
    EXPECT_EQ(shorter.error, EIO) << "it has become shorter";
    EXPECT_EQ(shorter.end, End::damaged);
    std::string payload = "unchanged";
    EXPECT_EQ(ReadPayload(disk, file, {7, 0, 1, false, 1000, 1040, 5}, payload), EIO);
    EXPECT_EQ(payload, "unchanged");
}

/// Bytes that look like the beginning of a frame everywhere, each as long as all the rest.
std::string Hostile(std::size_t size) {
    std::string bytes = Header();
    while (bytes.size() < size) {
        std::string frame = Frame(1, 0, "");
        const auto rest = static_cast<std::uint32_t>(size - bytes.size() - frame.size());
        for (std::size_t i = 0; i < 4; ++i) frame[8 + i] = static_cast<char>(rest >> (8 * i) & 0xFF);
        if (size - bytes.size() < 2 * frame.size()) frame.assign(size - bytes.size(), 'G');
        bytes += frame;
    }
    return bytes;
}

// Every length is believed until its sum has been counted; all of them would be 40 GB.
TEST(JournalScan, HostileLengthsEndSoonAndAreKept) {
    const std::string bytes = Hostile(2'000'000);
    const auto begin = std::chrono::steady_clock::now();
    const JournalScan scan = ScannedBytes(bytes);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(took.count(), 5.0);
    EXPECT_EQ(scan.end, End::damaged) << "nobody knows whether something was stored there";
    EXPECT_TRUE(scan.frames.empty());
}

TEST(JournalScan, ReadsAreInProportionToTheFileWhateverItHolds) {
    for (const std::size_t size : {std::size_t{500'000}, std::size_t{2'000'000}}) {
        for (const std::string& bytes : {Hostile(size), Header() + std::string(size, 'G')}) {
            test::ModelDisk disk;
            disk.Put(test::kJournal, bytes);
            test::Scanned(disk);
            const long windows = static_cast<long>(size / (256 * 1024)) + 1;
            EXPECT_LT(disk.GetOperations(), 60 * windows) << size;
        }
    }
}

// A group of frames that was being written when the power went: pieces of it are there, others are old or
// zero, in any pattern. What was stored before is found, nothing is found that was not written, and it is no
// damage.
TEST(JournalScan, TornGroupsOfFramesAreTornTails) {
    std::mt19937 random(20240607);
    long complete = 0, partly = 0, none = 0;
    const long cases = Scaled(20'000);
    for (long i = 0; i < cases && !HasFailure(); ++i) {
        std::string stored = Header();
        std::uint64_t sequence = 0;
        const auto some = [&](std::uint64_t before, unsigned most) {
            std::string frames;
            for (auto n = random() % most; n > 0; --n)
                frames += Frame(++sequence, before, std::string(random() % 150, 'c'), random() % 3 == 0);
            return frames;
        };
        stored += some(0, 5);
        const std::uint64_t durable = sequence;
        const std::string group = some(durable, 64);
        std::string torn = group;
        const std::size_t piece = std::size_t{1} << (random() % 10);  // a byte to a sector
        for (std::size_t at = 0; at < torn.size(); at += piece) {
            if (random() % 4 != 0) continue;
            const std::size_t size = std::min(piece, torn.size() - at);
            const bool zero = random() % 2 == 0;
            for (std::size_t b = at; b < at + size; ++b)
                torn[b] = zero ? '\0' : static_cast<char>(random() & 0xFF);
        }
        if (random() % 3 == 0) torn.resize(random() % (torn.size() + 1));
        if (random() % 4 == 0) torn += std::string(random() % 600, '\0');

        const JournalScan scan = ScannedBytes(stored + torn);
        ASSERT_GE(scan.frames.size(), durable) << "case " << i;
        ASSERT_LE(scan.frames.size(), sequence) << "case " << i;
        const auto good = static_cast<std::size_t>(scan.endOffset);
        const std::string all = stored + group;
        ASSERT_EQ((stored + torn).substr(0, good), all.substr(0, good)) << "case " << i;
        ASSERT_NE(scan.end, End::damaged) << "case " << i << ": " << scan.what;
        ASSERT_EQ(scan.end == End::clean, good == stored.size() + torn.size()) << "case " << i;
        for (const JournalFrame& frame : scan.later) {
            const auto at = static_cast<std::size_t>(frame.offset);
            const std::size_t size = static_cast<std::size_t>(kHead) + frame.payloadLength;
            ASSERT_EQ((stored + torn).substr(at, size), all.substr(at, size)) << "case " << i;
        }
        (scan.frames.size() == sequence ? complete : scan.frames.size() == durable ? none : partly) += 1;
    }
    EXPECT_GT(complete, cases / 100);
    EXPECT_GT(partly, cases / 100);
    EXPECT_GT(none, cases / 100);
    RecordProperty("cases", std::to_string(cases));
}

// Damage anywhere before frames that were stored: never torn, and no frame that was not written.
TEST(JournalScan, DamageBeforeStoredFramesIsNeverATornTail) {
    std::mt19937 random(4);
    const long cases = Scaled(20'000);
    for (long i = 0; i < cases && !HasFailure(); ++i) {
        std::string bytes = Header();
        const std::uint64_t frames = 2 + random() % 20;
        std::size_t lastBegin = 0;
        for (std::uint64_t n = 1; n <= frames; ++n) {
            lastBegin = bytes.size();
            bytes += Frame(n, n - 1, std::string(random() % 150, 'c'));
        }
        std::string damaged = bytes;
        const std::size_t at = random() % lastBegin;
        const std::size_t size = std::min<std::size_t>(1 + random() % 300, lastBegin - at);
        for (std::size_t b = at; b < at + size; ++b) damaged[b] = static_cast<char>(random() & 0xFF);
        if (damaged == bytes) continue;
        const JournalScan scan = ScannedBytes(damaged);
        ASSERT_EQ(scan.end, End::damaged) << "case " << i;
        const auto good = static_cast<std::size_t>(scan.endOffset);
        ASSERT_LE(good, at + size) << "case " << i;
        ASSERT_EQ(damaged.substr(0, good), bytes.substr(0, good)) << "case " << i;
        ASSERT_FALSE(scan.later.empty()) << "case " << i;
        ASSERT_EQ(scan.later.back().sequence, frames) << "case " << i;
    }
}

}  // namespace
