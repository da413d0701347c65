// The stream for reading: values, windows, what happens at the end and beyond it.
#include "platform/base/ifpstream.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"
#include "tests/TempFolder.h"
#include "tests/host/base/StreamParts.h"

namespace {

using test::Bytes;
using test::MemorySource;
using test::TempFolder;

constexpr std::size_t kWindow = 256 * 1024;

struct Memory {
    explicit Memory(std::string content) : bytes(std::move(content)), in(bytes.data(), bytes.size(), 1400) {}
    std::string bytes;
    ifpstream in;
};

// --- values ------------------------------------------------------------------------------------------------

TEST(Ifpstream, ValuesComeBack) {
    Memory m(
        Bytes().Hex("41 fe fe 3412 feff feff 78563412 feffffff 98badcfe 0807060504030201 cdcccc3d "
                    "000000000000f8bf 991377b76ec48169 03000000475053"));
    EXPECT_EQ(m.in.ReadChar(), 'A');
    EXPECT_EQ(m.in.ReadChar(), static_cast<char>(-2));
    EXPECT_EQ(m.in.ReadUChar(), 0xFE);
    EXPECT_EQ(m.in.ReadShort(), 0x1234);
    EXPECT_EQ(m.in.ReadShort(), -2);
    EXPECT_EQ(m.in.ReadUShort(), 0xFFFE);
    EXPECT_EQ(m.in.ReadInt(), 0x12345678);
    EXPECT_EQ(m.in.ReadInt(), -2);
    EXPECT_EQ(m.in.ReadUInt(), 0xFEDCBA98u);
    EXPECT_EQ(m.in.ReadInt64(), 0x0102030405060708);
    EXPECT_EQ(m.in.ReadFloat(), 0.1f);
    EXPECT_EQ(m.in.ReadDouble(), -1.5);
    EXPECT_EQ(m.in.ReadDouble(), 1.7e200);
    EXPECT_EQ(m.in.ReadString(), "GPS");
    EXPECT_EQ(m.in.GetRemaining(), 0);
    EXPECT_EQ(m.in.GetPosition(), static_cast<std::int64_t>(m.bytes.size()));
    EXPECT_TRUE(m.in.IsOk()) << "all was there";
    EXPECT_EQ(m.in.GetFailPosition(), -1);
    EXPECT_EQ(m.in.GetError(), 0);
}

TEST(Ifpstream, BitsOfANanComeBack) {
    Memory m(Bytes().Hex("010000000000f47f 0100a07f"));
    const double d = m.in.ReadDouble();
    std::uint64_t bits = 0;
    std::memcpy(&bits, &d, sizeof bits);
    EXPECT_EQ(bits, 0x7FF4000000000001u);
    const float f = m.in.ReadFloat();
    std::uint32_t bits32 = 0;
    std::memcpy(&bits32, &f, sizeof bits32);
    EXPECT_EQ(bits32, 0x7FA00001u);
}

TEST(Ifpstream, TextOfNoLengthIsEmptyAndTakesItsLengthOnly) {
    for (const std::int32_t length : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        Memory m(Bytes().I32(length).U8('x'));
        std::string text = "before";
        m.in.ReadString(text);
        EXPECT_EQ(text, "");
        EXPECT_EQ(m.in.GetPosition(), 4);
        EXPECT_EQ(m.in.ReadUChar(), 'x');
        EXPECT_TRUE(m.in.IsOk());
    }
}

TEST(Ifpstream, TextMayHoldAnyByte) {
    const std::string text("\0\r\n;\xFF", 5);
    Memory m(Bytes().Text(text));
    EXPECT_EQ(m.in.ReadString(), text);
}

// --- the end -----------------------------------------------------------------------------------------------

// Each kind of read, and what it gives at the end.
struct Kind {
    const char* name;
    std::size_t size;
    bool (*readsZero)(ifpstream& in);
};
const Kind kKinds[] = {
    {"char", 1, [](ifpstream& in) { return in.ReadChar() == 0; }},
    {"unsigned char", 1, [](ifpstream& in) { return in.ReadUChar() == 0; }},
    {"short", 2, [](ifpstream& in) { return in.ReadShort() == 0; }},
    {"unsigned short", 2, [](ifpstream& in) { return in.ReadUShort() == 0; }},
    {"int", 4, [](ifpstream& in) { return in.ReadInt() == 0; }},
    {"unsigned int", 4, [](ifpstream& in) { return in.ReadUInt() == 0; }},
    {"64 bits", 8, [](ifpstream& in) { return in.ReadInt64() == 0; }},
    {"float", 4, [](ifpstream& in) { return in.ReadFloat() == 0 && !std::signbit(in.ReadFloat()); }},
    {"double", 8, [](ifpstream& in) { return in.ReadDouble() == 0 && !std::signbit(in.ReadDouble()); }},
    {"text", 4, [](ifpstream& in) { return in.ReadString().empty(); }},
};

TEST(Ifpstream, ReadBeyondTheEndGivesZeroAndFails) {
    for (const Kind& kind : kKinds) {
        for (std::size_t have = 0; have < kind.size; ++have) {
            Memory m("." + std::string(have, '\x7F'));
            m.in.ReadUChar();
            EXPECT_TRUE(m.in.IsOk());
            EXPECT_TRUE(kind.readsZero(m.in)) << kind.name << " of " << have << " bytes";
            EXPECT_FALSE(m.in.IsOk()) << kind.name;
            EXPECT_EQ(m.in.GetFailPosition(), 1) << kind.name;
            EXPECT_EQ(m.in.GetPosition(), static_cast<std::int64_t>(have) + 1) << "it stands at the end";
            EXPECT_EQ(m.in.GetRemaining(), 0);
            EXPECT_EQ(m.in.ReadUChar(), 0) << "nothing of a cut value is given later";
            EXPECT_EQ(m.in.GetFailPosition(), 1) << "the first failure is the one that counts";
            EXPECT_EQ(m.in.GetError(), 0) << "an end is no failure of the medium";
        }
    }
}

TEST(Ifpstream, TextIsCappedByWhatRemains) {
    for (const std::int32_t length : {4, 1000, std::numeric_limits<std::int32_t>::max()}) {
        Memory m(Bytes().I32(length).Raw("abc"));
        EXPECT_EQ(m.in.ReadString(), "abc");
        EXPECT_FALSE(m.in.IsOk());
        EXPECT_EQ(m.in.GetFailPosition(), 4);
        EXPECT_EQ(m.in.GetRemaining(), 0);
    }
}

TEST(Ifpstream, BytesBeyondTheEndAreZeros) {
    Memory m("abcd");
    char got[6] = {'#', '#', '#', '#', '#', '#'};
    EXPECT_TRUE(m.in.ReadBytes(got, 3));
    EXPECT_TRUE(m.in.ReadBytes(got, 0));
    EXPECT_EQ(std::string(got, 6), "abc###");
    EXPECT_FALSE(m.in.ReadBytes(got, 6));
    EXPECT_EQ(std::string(got, 6), std::string("d\0\0\0\0\0", 6));
    EXPECT_EQ(m.in.GetFailPosition(), 3);
}

TEST(Ifpstream, SkipPassesOverBytes) {
    Memory m("abcdef");
    m.in.Skip(2);
    EXPECT_EQ(m.in.ReadUChar(), 'c');
    m.in.Skip(0);
    m.in.Skip(-5);
    EXPECT_EQ(m.in.ReadUChar(), 'd');
    m.in.Skip(2);
    EXPECT_TRUE(m.in.IsOk()) << "up to the end there are bytes";
    m.in.Skip(1);
    EXPECT_FALSE(m.in.IsOk());
}

TEST(Ifpstream, SkipBeyondTheEndFailsWhereItBegan) {
    Memory m("abcdef");
    m.in.Skip(2);
    m.in.Skip(std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(m.in.GetFailPosition(), 2);
    EXPECT_EQ(m.in.GetPosition(), 6);
}

TEST(Ifpstream, EmptyStreamMayHaveNoMemory) {
    ifpstream in(nullptr, 0, 1400);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.GetRemaining(), 0);
    EXPECT_EQ(in.ReadDouble(), 0);
    EXPECT_EQ(in.ReadString(), "");
    EXPECT_EQ(in.GetFailPosition(), 0);
}

// --- limit of reads past the end -----------------------------------------------------------------------

TEST(Ifpstream, LimitedStreamThrowsOnceTheReadsPastItsEndAreUsedUp) {
    for (const int limit : {0, 1, 5}) {
        Memory m("ab");
        m.in.SetPastEndLimit(limit);
        EXPECT_EQ(m.in.ReadShort(), 0x6261) << "reads inside count for nothing";
        for (int i = 0; i < limit; ++i) EXPECT_EQ(m.in.ReadInt(), 0) << limit << ": " << i;
        EXPECT_THROW(m.in.ReadInt(), StreamExhausted) << limit;
        EXPECT_THROW(m.in.ReadUChar(), StreamExhausted) << "and every one after it";
        EXPECT_FALSE(m.in.IsOk());
        EXPECT_EQ(m.in.GetFailPosition(), 2);
    }
}

TEST(Ifpstream, EveryKindOfReadCountsOnce) {
    Memory m("");
    m.in.SetPastEndLimit(4);
    char got[3];
    m.in.ReadBytes(got, sizeof got);
    m.in.Skip(100);
    m.in.ReadString();
    m.in.ReadDouble();
    EXPECT_THROW(m.in.ReadString(), StreamExhausted);
}

TEST(Ifpstream, StreamWithoutLimitNeverThrows) {
    Memory m("");
    for (int i = 0; i < 100'000; ++i) m.in.ReadInt();
    m.in.SetPastEndLimit(0);
    EXPECT_THROW(m.in.ReadInt(), StreamExhausted);
    m.in.SetPastEndLimit(-1);
    EXPECT_NO_THROW(m.in.ReadInt());
}

TEST(Ifpstream, ExhaustionSaysWhatItIs) {
    EXPECT_STREQ(StreamExhausted().what(), "too many reads past the end of a stream");
}

// --- nearer end --------------------------------------------------------------------------------------------

TEST(Ifpstream, NearerEndIsAnEndWhileItLasts) {
    Memory m(Bytes().I32(1).I16(2).I32(3).I32(4));
    EXPECT_EQ(m.in.ReadInt(), 1);
    {
        const ifpstream::NearEnd near(m.in, 6);
        EXPECT_EQ(m.in.GetRemaining(), 2);
        EXPECT_EQ(m.in.ReadInt(), 0) << "two bytes of the next value are not its";
        EXPECT_EQ(m.in.GetFailPosition(), 4);
        EXPECT_EQ(m.in.GetPosition(), 6);
    }
    EXPECT_EQ(m.in.ReadInt(), 3);
    EXPECT_EQ(m.in.ReadInt(), 4);
    EXPECT_EQ(m.in.GetRemaining(), 0);
    EXPECT_FALSE(m.in.IsOk()) << "the failure is remembered";
}

TEST(Ifpstream, NearerEndsStandInOneAnother) {
    Memory m("abcdefgh");
    const ifpstream::NearEnd outer(m.in, 5);
    {
        const ifpstream::NearEnd inner(m.in, 100);
        EXPECT_EQ(m.in.GetRemaining(), 5) << "never behind the end that holds";
    }
    {
        const ifpstream::NearEnd inner(m.in, 2);
        EXPECT_EQ(m.in.GetRemaining(), 2);
        m.in.Skip(2);
    }
    EXPECT_EQ(m.in.GetRemaining(), 3);
    {
        const ifpstream::NearEnd inner(m.in, 1);
        EXPECT_EQ(m.in.GetRemaining(), 0) << "never before the position";
        EXPECT_EQ(m.in.GetPosition(), 2);
    }
    EXPECT_EQ(m.in.ReadUChar(), 'c');
}

TEST(Ifpstream, NearerEndHoldsAcrossWindows) {
    std::string bytes(3 * kWindow, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i % 251);
    for (const std::size_t piece : {std::size_t{1000}, bytes.size()}) {
        for (const std::size_t end : {kWindow - 3, kWindow, kWindow + 3, 2 * kWindow + 1}) {
            MemorySource source(bytes, piece);
            ifpstream in(source, static_cast<std::int64_t>(bytes.size()), 1400);
            in.Skip(static_cast<std::int64_t>(end) - 11);
            {
                const ifpstream::NearEnd near(in, static_cast<std::int64_t>(end));
                in.ReadInt64();
                ASSERT_TRUE(in.IsOk());
                ASSERT_EQ(in.ReadInt64(), 0);
                ASSERT_EQ(in.GetPosition(), static_cast<std::int64_t>(end));
            }
            std::string rest(bytes.size() - end, '\0');
            ASSERT_TRUE(in.ReadBytes(rest.data(), rest.size()));
            ASSERT_TRUE(rest == bytes.substr(end)) << "end " << end << ", pieces of " << piece;
        }
    }
}

// --- windows -----------------------------------------------------------------------------------------------

// The same values from a stream that fetches its bytes as from memory, whatever pieces they come in.
void ExpectSameReads(ifpstream& fetched, ifpstream& memory) {
    while (memory.GetRemaining() > 0) {
        ASSERT_EQ(fetched.ReadUChar(), memory.ReadUChar());
        ASSERT_EQ(fetched.ReadInt64(), memory.ReadInt64());
        ASSERT_EQ(fetched.ReadShort(), memory.ReadShort());
        ASSERT_EQ(fetched.ReadString(), memory.ReadString());
        ASSERT_EQ(fetched.ReadInt(), memory.ReadInt());
        ASSERT_EQ(fetched.GetPosition(), memory.GetPosition());
        ASSERT_EQ(fetched.GetRemaining(), memory.GetRemaining());
    }
    ASSERT_TRUE(fetched.IsOk());
    ASSERT_EQ(fetched.ReadUChar(), 0);
    ASSERT_EQ(fetched.GetFailPosition(), memory.GetPosition());
}

std::string Mixture(std::size_t size) {
    Bytes bytes;
    for (int i = 0; bytes.Size() < size; ++i)
        bytes.U8(static_cast<unsigned>(i) & 0xFF)
            .I64(i * 1000003LL)
            .I16(i)
            .Text(std::string(static_cast<std::size_t>(i % 40), 't'))
            .I32(i);
    return bytes;
}

TEST(Ifpstream, PiecesOfTheSourceDoNotMatter) {
    const std::string bytes = Mixture(10'000);
    for (const std::size_t piece : {1u, 2u, 3u, 7u, 13u, 4096u, 100'000u}) {
        MemorySource source(bytes, piece);
        ifpstream fetched(source, static_cast<std::int64_t>(bytes.size()), 1400);
        ifpstream memory(bytes.data(), bytes.size(), 1400);
        ExpectSameReads(fetched, memory);
        EXPECT_EQ(source.callsAfterEnd, 0);
        if (HasFatalFailure()) FAIL() << "pieces of " << piece;
    }
}

TEST(Ifpstream, NothingIsLostWhereAWindowEnds) {
    const std::string tail = Mixture(3000);
    for (std::size_t offset = 0; offset < 80; ++offset) {
        const std::string bytes = std::string(kWindow - offset, '.') + tail;
        MemorySource source(bytes, bytes.size());
        ifpstream fetched(source, static_cast<std::int64_t>(bytes.size()), 1400);
        ifpstream memory(bytes.data(), bytes.size(), 1400);
        fetched.Skip(static_cast<std::int64_t>(kWindow - offset));
        memory.Skip(static_cast<std::int64_t>(kWindow - offset));
        ExpectSameReads(fetched, memory);
        if (HasFatalFailure()) FAIL() << "offset " << offset;
    }
}

TEST(Ifpstream, LongTextCrossesWindows) {
    const std::string text = Mixture(3 * kWindow);
    const std::string bytes = Bytes().I16(7).Text(text).I16(8);
    MemorySource source(bytes, 100'000);
    ifpstream in(source, static_cast<std::int64_t>(bytes.size()), 1400);
    EXPECT_EQ(in.ReadShort(), 7);
    EXPECT_TRUE(in.ReadString() == text);
    EXPECT_EQ(in.ReadShort(), 8);
    EXPECT_TRUE(in.IsOk());
}

TEST(Ifpstream, RecordsCostNoCallToTheSource) {
    struct Counting : MemorySource {
        using MemorySource::MemorySource;
        int Read(void* bytes, std::size_t size, std::size_t& got) override {
            ++calls;
            return MemorySource::Read(bytes, size, got);
        }
        int calls = 0;
    };
    const std::string bytes(240'000, '.');
    Counting source(bytes, bytes.size());
    ifpstream in(source, static_cast<std::int64_t>(bytes.size()), 1400);
    while (in.GetRemaining() > 0) in.ReadDouble();
    EXPECT_EQ(source.calls, 1);
}

// --- sources that end or fail ------------------------------------------------------------------------------

TEST(Ifpstream, SourceThatEndsBeforeItsSizeIsAnEarlyEnd) {
    MemorySource source("abcdef", 4);
    ifpstream in(source, 1'000'000, 1400);
    EXPECT_EQ(in.GetRemaining(), 1'000'000);
    EXPECT_EQ(in.ReadInt(), 0x64636261);
    EXPECT_EQ(in.ReadInt(), 0);
    EXPECT_FALSE(in.IsOk());
    EXPECT_EQ(in.GetFailPosition(), 4);
    EXPECT_EQ(in.GetRemaining(), 0);
    EXPECT_EQ(in.GetError(), 0);
    for (int i = 0; i < 10; ++i) in.ReadInt();
    EXPECT_EQ(source.callsAfterEnd, 0);
}

TEST(Ifpstream, TextOfASourceThatEndsEarlyHoldsWhatCame) {
    const std::string bytes = Bytes().I32(400'000).Raw(std::string(1000, 't'));
    MemorySource source(bytes, 300);
    ifpstream in(source, 500'000, 1400);
    EXPECT_EQ(in.ReadString(), std::string(1000, 't'));
    EXPECT_FALSE(in.IsOk());
}

TEST(Ifpstream, NothingIsReadBeyondTheSizeGiven) {
    MemorySource source("abcdef", 100);
    ifpstream in(source, 5, 1400);
    EXPECT_EQ(in.ReadInt(), 0x64636261);
    EXPECT_EQ(in.ReadUChar(), 'e');
    EXPECT_EQ(in.ReadUChar(), 0);
    EXPECT_EQ(in.GetFailPosition(), 5);
}

TEST(Ifpstream, FailureOfTheSourceIsNamed) {
    const std::string bytes(100, 'x');
    MemorySource source(bytes, 10, 30, EIO);
    ifpstream in(source, 100, 1400);
    for (int i = 0; i < 30; ++i) EXPECT_EQ(in.ReadUChar(), 'x') << "what came before the failure is given";
    EXPECT_EQ(in.ReadUChar(), 0);
    EXPECT_FALSE(in.IsOk());
    EXPECT_EQ(in.GetError(), EIO);
    EXPECT_EQ(in.GetFailPosition(), 30);
    for (int i = 0; i < 10; ++i) in.ReadDouble();
    EXPECT_EQ(source.callsAfterEnd, 0);
}

// --- files -------------------------------------------------------------------------------------------------

TEST(Ifpstream, FileIsReadInWindows) {
    const TempFolder folder;
    const std::string bytes = Mixture(5 * kWindow / 2);
    test::WriteFileBytes(folder / "stream", bytes);
    ifpstream fetched((folder / "stream").c_str(), 742);
    ifpstream memory(bytes.data(), bytes.size(), 742);
    EXPECT_TRUE(fetched.IsOk());
    EXPECT_EQ(fetched.GetVersion(), 742);
    ExpectSameReads(fetched, memory);
}

TEST(Ifpstream, BackslashSeparatesFoldersToo) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "stream", "b");
    ifpstream in((folder / "" + "\\stream").c_str(), 1400);
    EXPECT_EQ(in.ReadUChar(), 'b');
}

TEST(Ifpstream, FileThatCannotBeReadFailsFromTheBeginning) {
    const TempFolder folder;
    struct Row {
        const char* what;
        std::string path;
        int error;
    };
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const Row& row : {Row{"nothing", folder / "missing", ENOENT}, Row{"a folder", folder / "", EINVAL},
                           Row{"a pipe, without waiting for a writer", folder / "pipe", EINVAL}}) {
        ifpstream in(row.path.c_str(), 1400);
        EXPECT_FALSE(in.IsOk()) << row.what;
        EXPECT_EQ(in.GetError(), row.error) << row.what;
        EXPECT_EQ(in.GetFailPosition(), 0) << row.what;
        EXPECT_EQ(in.GetRemaining(), 0) << row.what;
        EXPECT_EQ(in.ReadInt(), 0) << row.what;
    }
}

TEST(Ifpstream, EmptyFileIsNoFailureUntilItIsRead) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "stream", "");
    ifpstream in((folder / "stream").c_str(), 1400);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.ReadInt(), 0);
    EXPECT_FALSE(in.IsOk());
}

TEST(Ifpstream, FileThatGrowsIsReadAsItWas) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "stream", "abcd");
    ifpstream in((folder / "stream").c_str(), 1400);
    test::WriteFileBytes(folder / "stream", "abcdefgh");
    EXPECT_EQ(in.ReadInt(), 0x64636261);
    EXPECT_EQ(in.ReadUChar(), 0);
    EXPECT_FALSE(in.IsOk());
}

TEST(Ifpstream, FileThatShrinksIsAnEarlyEnd) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "stream", "abcdefgh");
    ifpstream in((folder / "stream").c_str(), 1400);
    test::WriteFileBytes(folder / "stream", "abcd");
    EXPECT_EQ(in.ReadInt(), 0x64636261);
    EXPECT_EQ(in.ReadInt(), 0);
    EXPECT_FALSE(in.IsOk());
    EXPECT_EQ(in.GetFailPosition(), 4);
}

// --- marker ------------------------------------------------------------------------------------------------

TEST(Ifpstream, MarkerTellsTwoFacts) {
    struct Row {
        const char* bytes;
        bool flag, known;
    };
    for (const Row& row :
         {Row{"3a01010000", false, true}, Row{"3a01010001", false, false}, Row{"3a00010000", false, false},
          Row{"4a01010000", true, true}, Row{"0001010000", true, true}, Row{"ffffffffff", true, false}}) {
        Memory m(Bytes().Hex(row.bytes).U8(9));
        m.in.ReadMarker();
        EXPECT_EQ(m.in.GetHeaderFlag(), row.flag) << row.bytes;
        EXPECT_EQ(m.in.HasKnownMarker(), row.known) << row.bytes;
        EXPECT_TRUE(m.in.IsOk()) << "whatever it is";
        EXPECT_EQ(m.in.ReadUChar(), 9);
    }
}

TEST(Ifpstream, MarkerThatIsNotWholeRaisesNoFlag) {
    for (int size = 0; size < 5; ++size) {
        Memory m(std::string(static_cast<std::size_t>(size), 'J'));
        m.in.SetHeaderFlag(true);
        m.in.ReadMarker();
        EXPECT_FALSE(m.in.GetHeaderFlag()) << size;
        EXPECT_FALSE(m.in.HasKnownMarker()) << size;
        EXPECT_FALSE(m.in.IsOk()) << size;
    }
}

TEST(Ifpstream, HeaderFlagIsDownAtFirstAndCanBeSet) {
    Memory m("J");
    EXPECT_FALSE(m.in.GetHeaderFlag());
    EXPECT_FALSE(m.in.HasKnownMarker());
    m.in.SetHeaderFlag(true);
    EXPECT_TRUE(m.in.GetHeaderFlag());
    EXPECT_EQ(m.in.GetPosition(), 0) << "nothing is read for it";
    m.in.SetHeaderFlag(false);
    EXPECT_FALSE(m.in.GetHeaderFlag());
}

TEST(Ifpstream, MarkerOfAWrittenFileIsKnown) {
    const TempFolder folder;
    const std::string path = folder / "stream";
    ofpstream(path.c_str(), 1400, "FCP").WriteInt(12);
    ifpstream in(path.c_str(), 1400);
    in.ReadMarker();
    EXPECT_FALSE(in.GetHeaderFlag());
    EXPECT_TRUE(in.HasKnownMarker());
    EXPECT_EQ(in.ReadInt(), 12);
}

}  // namespace
