// Damaged records: cut anywhere, any bit turned over, counts that nothing can hold. Reading ends, and what
// came of it is a book like any other.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "gps/options/COpzPostProc.h"
#include "platform/cad/COrkaEng.h"
#include "tests/Bytes.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/GoldenRecords.h"

namespace {

using test::Book;
using test::Bytes;
using test::LooseBook;
using test::Section;

constexpr int kPastEndLimit = 4096;  // as whoever opens a project sets it
constexpr short kVersions[] = {741, 742, 743, 1002, 1003, 1004, 1400};

/// Two groups, three points, two observation files.
std::string SmallSection(short version) {
    LooseBook book(3);
    book.lib.AddGrp(false)->SetNomeGrp("G0");
    test::FillGoldenGroup(*book.lib.AddGrp(false));
    book.lib.AddPun(0, false)->SetNome("P0");
    test::FillGoldenPoint(*book.lib.AddPun(1, false));
    book.lib.AddPun(1, false);
    book.lib.GetOpzPostProc()->AddDataPtBaseLineDett("rover.tps");
    book.lib.GetOpzPostProc()->AddDataPtBaseLineBase("base.tps");
    return Section(book.lib, version);
}

struct Outcome {
    bool exhausted = false;
    bool ok = false;
    std::int64_t remaining = 0;
};

/// Reads into a book in a cloud project, and uses what came of it: writes it again.
Outcome ReadDamaged(const std::string& section, short version) {
    Outcome outcome;
    Book book;
    ifpstream in(section.data(), section.size(), version);
    in.SetPastEndLimit(kPastEndLimit);
    CDrawingsMapper drawings(8);
    try {
        book.lib.LeggeDaFile(in, true, true, version, "book", drawings);
    } catch (const StreamExhausted&) {
        outcome.exhausted = true;
    }
    outcome.ok = in.IsOk();
    outcome.remaining = in.GetRemaining();

    std::size_t objects = static_cast<std::size_t>(book.lib.GetGrpArSize());
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g)
        objects += static_cast<std::size_t>(book.lib.GetPunArSize(g));
    EXPECT_LE(objects, section.size() / 100 + kPastEndLimit / 10) << "no more than the bytes could hold";
    EXPECT_EQ(book.bases.GetAdded().size() + book.bases.GetById().size(),
              static_cast<std::size_t>(book.lib.GetGrpArSize()));
    ofpstream again(version);
    book.lib.SalvaInFile(again, version, "book", nullptr, nullptr);
    EXPECT_TRUE(again.IsOk());
    return outcome;
}

TEST(Damage, UndamagedSectionIsReadWithoutUsingTheLimit) {
    for (const short version : kVersions) {
        if (version == 742) continue;  // is written in another form than it is read
        const Outcome outcome = ReadDamaged(SmallSection(version), version);
        EXPECT_TRUE(outcome.ok) << version;
        EXPECT_EQ(outcome.remaining, 0) << version;
    }
}

TEST(Damage, EveryCutIsNoticed) {
    for (const short version : kVersions) {
        if (version == 742) continue;
        const std::string whole = SmallSection(version);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const Outcome outcome = ReadDamaged(whole.substr(0, size), version);
            ASSERT_FALSE(outcome.ok) << version << ": " << size;
            ASSERT_EQ(outcome.remaining, 0);
            if (HasFailure()) FAIL() << version << ": cut at " << size;
        }
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(8), 0);
}

TEST(Damage, EveryTurnedBitLeavesABook) {
    for (const short version : kVersions) {
        std::string section = SmallSection(version);
        for (std::size_t at = 0; at < section.size(); ++at) {
            for (int bit = 0; bit < 8; ++bit) {
                section[at] = static_cast<char>(section[at] ^ (1 << bit));
                ReadDamaged(section, version);
                section[at] = static_cast<char>(section[at] ^ (1 << bit));
                if (HasFailure()) FAIL() << version << ": bit " << bit << " of byte " << at;
            }
        }
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(8), 0) << "every usage of a drawing was given back";
}

TEST(Damage, FieldsAreReadAsThoughTheyWereAnotherVersions) {
    // A stream whose version is not the one it was written with.
    for (const short written : kVersions) {
        const std::string section = SmallSection(written);
        for (const short read : kVersions) ReadDamaged(section, read);
    }
}

// --- counts that nothing can hold --------------------------------------------------------------------------

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

double SecondsToRead(const std::string& section, short version) {
    const auto begin = std::chrono::steady_clock::now();
    const Outcome outcome = ReadDamaged(section, version);
    EXPECT_TRUE(outcome.exhausted || !outcome.ok);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Another program may hold up one of them, or two.
double FastestOfTen(const std::string& section, short version) {
    double fastest = SecondsToRead(section, version);
    for (int i = 1; i < 10; ++i) fastest = std::min(fastest, SecondsToRead(section, version));
    return fastest;
}

// A millisecond, and what the checks themselves and a slow build take.
constexpr double kAtOnce = 0.01;

TEST(Damage, ElevenBytesFullOfLargeCountsEndAtOnce) {
    const std::string section = Bytes().I32(kMost).I32(kMost).Hex("ffff7f");
    for (const short version : kVersions) EXPECT_LT(FastestOfTen(section, version), kAtOnce) << version;
}

TEST(Damage, ShortestSectionWithALargeCountOfGroupsEndsAtOnce) {
    // Eleven bytes never get as far as the count: drawing, options and an empty display list stand before it.
    const std::string section = Bytes().I64(0).I16(0).I32(0).I32(0).I32(0).I32(0).I32(0).I32(kMost);
    ASSERT_EQ(section.size(), 34u);
    for (const short version : {short{1004}, short{1400}}) {
        EXPECT_LT(FastestOfTen(section, version), kAtOnce) << version;
        LooseBook book;
        ifpstream in(section.data(), section.size(), version);
        in.SetPastEndLimit(kPastEndLimit);
        CDrawingsMapper drawings;
        EXPECT_THROW(book.lib.LeggeDaFile(in, true, true, version, "book", drawings), StreamExhausted);
        EXPECT_GT(book.lib.GetGrpArSize(), 0) << "the count was reached";
        EXPECT_LT(book.lib.GetGrpArSize(), kPastEndLimit / 10) << "and not believed";
    }
}

TEST(Damage, CountsOfTwoThousandMillionsEndAtOnce) {
    for (const short version : {short{1001}, short{1400}}) {
        LooseBook empty;
        std::string head = Section(empty.lib, version);
        head.resize(head.size() - 4 - (version >= 1002 ? 1 : 0));
        EXPECT_LT(SecondsToRead(Bytes().Raw(head).I32(kMost), version), 1.0) << "groups";
        LooseBook one;
        one.lib.AddGrp(false);
        const std::string group = test::Saved(*one.lib.GetGrpAt(0), version);
        EXPECT_LT(SecondsToRead(Bytes().Raw(head).I32(1).Raw(group).I32(kMost), version), 1.0) << "points";
        EXPECT_LT(SecondsToRead(Bytes().Raw(head).I32(kMost).Raw(group).I32(kMost), version), 1.0) << "both";
    }
    LooseBook book;
    book.lib.GetOpzPostProc();
    std::string section = Section(book.lib, 1400);
    section.replace(section.size() - 4, 4, Bytes().I32(kMost).Get());
    EXPECT_LT(SecondsToRead(section, 1400), 1.0) << "base files";
    section.replace(section.size() - 8, 4, Bytes().I32(kMost).Get());
    EXPECT_LT(SecondsToRead(section, 1400), 1.0) << "rover files";
}

}  // namespace
