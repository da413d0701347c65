// Journal entries read again: applied and passed over, of every version, in a book that has less than they
// name.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/cad/COrkaEng.h"
#include "tests/Bytes.h"
#include "tests/Scale.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/GoldenRecords.h"
#include "tests/gps/persist/RandomBook.h"
#include "tests/gps/persist/RecordingJournal.h"

namespace {

using test::Book;
using test::Bytes;
using test::LooseBook;
using test::Section;
using test::Shape;

constexpr int kUntouched = 4711;
constexpr long long kSaved = 0x0102030405060708, kLive = 51, kDefault = 52;

/// An entry, or several, as the replay of a journal hands them over; something else follows.
struct Entries {
    explicit Entries(const std::string& entries, bool flag = true)
        : bytes(entries + "behind"), in(bytes.data(), bytes.size(), 0), drawings(kDefault) {
        in.SetHeaderFlag(flag);
        drawings.SetDrawing(kSaved, kLive);
    }
    bool IsInStep() const { return in.IsOk() && in.GetRemaining() == 6; }

    std::string bytes;
    ifpstream in;
    CDrawingsMapper drawings;
};

std::string GroupEntry(int g, short version = 1400) {
    CLibMap map;
    CGrpGps group(nullptr, false, &map, 0);
    test::FillGoldenGroup(group);
    const short rows = version < 0 ? short{0} : version;  // older than the first is as the first
    return Bytes().I16(version).I32(g).Raw(Join(test::GroupRows(group), rows));
}

std::string PointEntry(int g, int p, short version = 1400) {
    CPunGps point(nullptr, false, nullptr);
    test::FillGoldenPoint(point);
    const short rows = version < 0 ? short{0} : version;
    return Bytes().I16(version).I32(g).I32(p).Raw(Join(PointRows(point, test::Rms742::asRead), rows));
}

std::string DeletedGroup(int g, short version = 1400) { return Bytes().I16(version).I32(g); }
std::string DeletedPoint(int g, int p, short version = 1400) { return Bytes().I16(version).I32(g).I32(p); }

/// The four kinds, each naming something that a book with groups of 2 and 1 points has.
struct Kind {
    const char* name;
    std::string (*entry)(short version);
    bool (*load)(CLibGps&, Entries&, bool apply);
    bool group;  // answers true also for what was not to be applied
    const char* shape;
};

bool LoadGroup(CLibGps& book, Entries& e, bool apply) { return book.LoadTmpGrpGps(e.in, apply, e.drawings); }
bool LoadPoint(CLibGps& book, Entries& e, bool apply) { return book.LoadTmpPunGps(e.in, apply) != nullptr; }
bool LoadDelGroup(CLibGps& book, Entries& e, bool apply) { return book.LoadDelGrpGps(e.in, apply); }
bool LoadDelPoint(CLibGps& book, Entries& e, bool apply) {
    int handle = kUntouched;
    CEgn* const former = book.GetPunAt(0, 1);
    CEgn* const point = book.LoadDelPunGps(e.in, apply, handle);
    EXPECT_EQ(handle, point ? 31 : 0) << "0 from the beginning";
    EXPECT_TRUE(!point || point == former);
    return point != nullptr;
}

const std::vector<Kind>& Kinds() {
    static const std::vector<Kind> kinds = {
        {"changed group", [](short v) { return GroupEntry(1, v); }, LoadGroup, true,
         "G0(P0 P1) Gruppo 1(P0)"},
        {"changed point", [](short v) { return PointEntry(0, 1, v); }, LoadPoint, false, "G0(P0 P1) G1(P0)"},
        {"deleted group", [](short v) { return DeletedGroup(1, v); }, LoadDelGroup, true, "G0(P0 P1)"},
        {"deleted point", [](short v) { return DeletedPoint(0, 1, v); }, LoadDelPoint, false,
         "G0(P0) G1(P0)"},
    };
    return kinds;
}

struct SmallBook : LooseBook {
    SmallBook() {
        test::Fill(lib, {2, 1});
        lib.GetPunAt(0, 1)->SetGisHandle(31);
        lib.GetPunAt(0, 1)->SetLat(12);
        lib.SetModifiedFlag(false);
    }
};

// --- applying ----------------------------------------------------------------------------------------------

TEST(JournalReplay, IsAppliedOnlyWithBothFlags) {
    for (const Kind& kind : Kinds()) {
        for (const bool apply : {true, false}) {
            for (const bool flag : {true, false}) {
                SCOPED_TRACE(std::string(kind.name) + (apply ? ", apply" : "") + (flag ? ", flag" : ""));
                SmallBook book;
                const std::string before = Section(book.lib, 1400);
                Entries e(kind.entry(1400), flag);
                const bool applied = apply && flag;
                EXPECT_EQ(kind.load(book.lib, e, apply), applied || (kind.group && !apply));
                EXPECT_TRUE(e.IsInStep());
                EXPECT_EQ(e.in.GetVersion(), 1400) << "the stream's version is the entry's";
                EXPECT_EQ(book.lib.IsModified(), applied);
                EXPECT_EQ(Section(book.lib, 1400) == before, !applied);
                EXPECT_EQ(Shape(book.lib), applied ? kind.shape : "G0(P0 P1) G1(P0)");
            }
        }
    }
}

TEST(JournalReplay, EntriesFollowOneAnotherWhetherAppliedOrNot) {
    for (const Kind& first : Kinds()) {
        for (const bool apply : {true, false}) {
            SmallBook book;
            Entries e(first.entry(1400) + PointEntry(0, 0) + DeletedPoint(0, 0));
            first.load(book.lib, e, apply);
            ASSERT_EQ(book.lib.LoadTmpPunGps(e.in, true), book.lib.GetPunAt(0, 0)) << first.name;
            EXPECT_EQ(book.lib.GetPunAt(0, 0)->GetLat(), 45.125);
            int handle = kUntouched;
            const CEgn* const former = book.lib.GetPunAt(0, 0);
            EXPECT_EQ(book.lib.LoadDelPunGps(e.in, true, handle), former);
            EXPECT_EQ(handle, -6);
            EXPECT_TRUE(e.IsInStep()) << first.name;
        }
    }
}

TEST(JournalReplay, ChangedGroupIsOverwrittenInPlace) {
    SmallBook book;
    CGrpGps* const group = book.lib.GetGrpAt(0);
    test::FillOtherGroup(*group);
    Entries e(GroupEntry(0));
    ASSERT_TRUE(book.lib.LoadTmpGrpGps(e.in, true, e.drawings));
    EXPECT_EQ(book.lib.GetGrpAt(0), group);
    CGrpGps golden(nullptr, false, &book.map, 0);
    test::FillGoldenGroup(golden);
    golden.SetTargetDrawing(kLive);  // the drawing is looked up
    EXPECT_EQ(test::ValuesOf(*group), test::ValuesOf(golden));
    EXPECT_EQ(Shape(book.lib), "Gruppo 1(P0 P1) G1(P0)") << "its points stay";
}

TEST(JournalReplay, ChangedPointIsOverwrittenInPlace) {
    SmallBook book;
    CPunGps* const point = book.lib.GetPunAt(0, 1);
    test::FillOtherPoint(*point);
    Entries e(PointEntry(0, 1));
    EXPECT_EQ(book.lib.LoadTmpPunGps(e.in, true), point);
    CPunGps golden(nullptr, false, nullptr);
    test::FillGoldenPoint(golden);
    EXPECT_EQ(test::ValuesOf(*point), test::ValuesOf(golden));
}

TEST(JournalReplay, DeletedPointGivesItsAddressAndHandle) {
    SmallBook book;
    const CEgn* const point = book.lib.GetPunAt(0, 1);
    Entries e(DeletedPoint(0, 1));
    int handle = kUntouched;
    EXPECT_EQ(book.lib.LoadDelPunGps(e.in, true, handle), point);
    EXPECT_EQ(handle, 31);
    EXPECT_EQ(Shape(book.lib), "G0(P0) G1(P0)");
}

TEST(JournalReplay, ReplayReportsNoChange) {
    for (const Kind& kind : Kinds()) {
        SmallBook book;
        Entries e(kind.entry(1400));
        test::ChangeWatch watch;
        kind.load(book.lib, e, true);
        EXPECT_TRUE(watch.Take().empty()) << kind.name;
    }
}

// --- what is not there -------------------------------------------------------------------------------------

TEST(JournalReplay, MissingGroupsAreAppendedUpToTheChangedOne) {
    SmallBook book;
    Entries e(GroupEntry(4));
    ASSERT_TRUE(book.lib.LoadTmpGrpGps(e.in, true, e.drawings));
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1) G1(P0) () () Gruppo 1()");
    EXPECT_TRUE(book.lib.IsModified());
}

TEST(JournalReplay, MissingPointsAreAppendedUpToTheChangedOne) {
    SmallBook book;
    Entries e(PointEntry(0, 4));
    const CEgn* const point = book.lib.LoadTmpPunGps(e.in, true);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point, book.lib.GetPunAt(0, 4));
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1   P1) G1(P0)");
}

TEST(JournalReplay, MissingGroupsAndPointsAreAppendedUpToTheChangedPoint) {
    LooseBook book;
    Entries e(PointEntry(2, 1));
    CEgn* const point = book.lib.LoadTmpPunGps(e.in, true);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point, book.lib.GetPunAt(2, 1));
    EXPECT_EQ(Shape(book.lib), "() () ( P1)") << "only the last group has points";
    EXPECT_TRUE(book.lib.IsModified());
    int g = -1, p = -1;
    EXPECT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(2, 1), g, p));
    EXPECT_EQ(g, 2);
    EXPECT_EQ(p, 1);
}

TEST(JournalReplay, WhatFillsTheGapIsNewToTheCloudUntilItsOwnEntry) {
    Book book;
    Entries e(PointEntry(1, 1) + PointEntry(1, 0));
    ASSERT_NE(book.lib.LoadTmpPunGps(e.in, true), nullptr);
    EXPECT_EQ(book.bases.GetAdded(), (test::Items{book.lib.GetGrpAt(0), book.lib.GetGrpAt(1)}));
    EXPECT_EQ(book.points.GetAdded(), test::Items{book.lib.GetPunAt(1, 0)});
    EXPECT_EQ(Find(book.points, 4242, book.lib.GetPunAt(1, 1)), test::Known::item) << "its state came back";
    EXPECT_EQ(book.lib.GetPunAt(1, 1)->GetCloudFlag(), 0x21u);
    EXPECT_TRUE(IsChanged(book.points, *book.lib.GetPunAt(1, 1)));
    // The second entry has the same id, which another item holds by now: it stays one that is added.
    ASSERT_NE(book.lib.LoadTmpPunGps(e.in, true), nullptr);
    EXPECT_EQ(book.points.GetAdded(), test::Items{book.lib.GetPunAt(1, 0)});
}

TEST(JournalReplay, NegativePositionsAppendNothing) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    for (const int g : {-1, kLeast}) {
        SmallBook book;
        Entries e(GroupEntry(g) + PointEntry(0, 0));
        EXPECT_FALSE(book.lib.LoadTmpGrpGps(e.in, true, e.drawings));
        EXPECT_EQ(Shape(book.lib), "G0(P0 P1) G1(P0)");
        EXPECT_FALSE(book.lib.IsModified());
        EXPECT_NE(book.lib.LoadTmpPunGps(e.in, true), nullptr);
        EXPECT_TRUE(e.IsInStep());
    }
    const std::pair<int, int> places[] = {{-1, 0}, {0, -1}, {5, -1}, {-1, -1}, {kLeast, kLeast}};
    for (const auto& [g, p] : places) {
        SmallBook book;
        Entries e(PointEntry(g, p) + PointEntry(0, 0));
        EXPECT_EQ(book.lib.LoadTmpPunGps(e.in, true), nullptr);
        EXPECT_EQ(Shape(book.lib), "G0(P0 P1) G1(P0)") << g << ", " << p;
        EXPECT_FALSE(book.lib.IsModified());
        EXPECT_NE(book.lib.LoadTmpPunGps(e.in, true), nullptr);
        EXPECT_TRUE(e.IsInStep());
    }
}

TEST(JournalReplay, DeletionOfAMissingGroupIsAppliedToNothing) {
    for (const int g : {2, -1, std::numeric_limits<int>::max()}) {
        SmallBook book;
        Entries e(DeletedGroup(g));
        EXPECT_TRUE(book.lib.LoadDelGrpGps(e.in, true));
        EXPECT_TRUE(book.lib.IsModified());
        EXPECT_EQ(Shape(book.lib), "G0(P0 P1) G1(P0)");
    }
}

TEST(JournalReplay, DeletionOfAMissingPointIsAppliedToNothing) {
    const std::pair<int, int> places[] = {{0, 2}, {2, 0}, {-1, 0}, {0, -1}};
    for (const auto& [g, p] : places) {
        SmallBook book;
        Entries e(DeletedPoint(g, p));
        int handle = kUntouched;
        EXPECT_EQ(book.lib.LoadDelPunGps(e.in, true, handle), nullptr);
        EXPECT_EQ(handle, 0);
        EXPECT_TRUE(book.lib.IsModified());
        EXPECT_EQ(Shape(book.lib), "G0(P0 P1) G1(P0)");
    }
}

// --- versions ----------------------------------------------------------------------------------------------

TEST(JournalReplay, NewerVersionIsRefusedAndNothingReadBehindIt) {
    for (const short version : {short{1401}, short{32767}}) {
        for (const Kind& kind : Kinds()) {
            for (const bool apply : {true, false}) {
                SmallBook book;
                const std::string before = Section(book.lib, 1400);
                Entries e(kind.entry(version));
                EXPECT_FALSE(kind.load(book.lib, e, apply)) << kind.name << ", " << version;
                EXPECT_EQ(e.in.GetPosition(), 2) << kind.name;
                EXPECT_FALSE(book.lib.IsModified());
                EXPECT_TRUE(Section(book.lib, 1400) == before);
            }
        }
    }
}

TEST(JournalReplay, OldVersionsAreReadByTheirOwnLayout) {
    std::vector<short> versions = {-1, std::numeric_limits<short>::min()};
    for (const short version : test::VersionsAroundThresholds())
        if (version <= 1400) versions.push_back(version);
    for (const short version : versions) {
        for (const Kind& kind : Kinds()) {
            for (const bool apply : {true, false}) {
                SmallBook book;
                Entries e(kind.entry(version));
                EXPECT_EQ(kind.load(book.lib, e, apply), apply || kind.group) << kind.name;
                EXPECT_TRUE(e.IsInStep()) << kind.name << ", version " << version;
                EXPECT_EQ(Shape(book.lib), apply ? kind.shape : "G0(P0 P1) G1(P0)");
            }
        }
    }
}

TEST(JournalReplay, FieldsThatAnOldPointLacksKeepTheirValue) {
    SmallBook book;
    CPunGps& point = *book.lib.GetPunAt(0, 0);
    test::FillOtherPoint(point);
    Entries e(PointEntry(0, 0, 741));
    ASSERT_EQ(book.lib.LoadTmpPunGps(e.in, true), &point);
    EXPECT_EQ(point.GetLat(), 45.125);
    EXPECT_EQ(point.GetQua(), -4);
    EXPECT_TRUE(point.IsPrimaryPtDup());
    EXPECT_EQ(point.GetYear(), 1999);
    EXPECT_EQ(point.GetTod(), 3u);
    EXPECT_EQ(point.GetHposRms(), -5);
    EXPECT_EQ(point.GetNuGloUsed(), 2);
    EXPECT_EQ(point.GetPosCov_zt(), -1);
    EXPECT_EQ(point.GetGdop(), -8);
    double lat, lon, h;
    point.GetGrafBase(lat, lon, h);
    EXPECT_EQ(h, -11);
    EXPECT_EQ(point.GetPunRis32(), 12u);
}

TEST(JournalReplay, FieldsThatAnOldGroupLacksKeepTheirValue) {
    {
        SmallBook book;
        CGrpGps& group = *book.lib.GetGrpAt(0);
        test::FillOtherGroup(group);
        Entries e(GroupEntry(0, 741));
        ASSERT_TRUE(book.lib.LoadTmpGrpGps(e.in, true, e.drawings));
        EXPECT_EQ(group.GetNomeGrp(), "Gruppo 1");
        EXPECT_EQ(group.GetOper(), "Rossi");
        EXPECT_EQ(group.GetCodeElab(), -3);
        EXPECT_TRUE(group.GetGrpFlagRis());
        EXPECT_EQ(group.GetNome(), "other") << "it is the entity's";
        EXPECT_EQ(group.GetLocalita(), "d");
        EXPECT_EQ(group.GetBaseSpare2(), -2);
        EXPECT_EQ(group.GetBaseAltAnt(), -7);
        EXPECT_EQ(group.GetGrpFactorB(), -9);
        EXPECT_EQ(group.GetTipoRilievo(), 9);
        EXPECT_EQ(group.GetTipoRicevitore(), 8);
        EXPECT_EQ(group.GetGrpRis32(), 5u);
        EXPECT_EQ(group.GetCloudCreatorDevId(), 4);
        EXPECT_EQ(group.GetTargetDrawing(), kDefault) << "references to drawings are younger";
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kDefault), 1);
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kDefault), 0);
}

// --- what is discarded -------------------------------------------------------------------------------------

TEST(JournalReplay, DiscardedItemsEnterNoTableAndKeepNoDrawing) {
    Book book(kDefault);
    Entries e(GroupEntry(0) + PointEntry(0, 0));
    test::DrawingWatch watch;
    EXPECT_TRUE(book.lib.LoadTmpGrpGps(e.in, false, e.drawings));
    EXPECT_EQ(book.lib.LoadTmpPunGps(e.in, false), nullptr);
    EXPECT_TRUE(e.IsInStep());
    EXPECT_TRUE(book.bases.GetAdded().empty());
    EXPECT_TRUE(book.bases.GetById().empty());
    EXPECT_TRUE(book.points.GetAdded().empty());
    EXPECT_TRUE(book.points.GetById().empty());
    EXPECT_EQ(watch.Take(),
              (test::DrawingWatch::Calls{{+1, kDefault}, {-1, kDefault}, {+1, kLive}, {-1, kLive}}));
}

// --- damage ------------------------------------------------------------------------------------------------

/// Replays a damaged entry and uses what came of it: saves it. Whether the entry was there as a whole.
bool ReplayDamaged(const Kind& kind, std::string_view entry) {
    SmallBook book;
    ifpstream in(entry.data(), entry.size(), 0);
    in.SetHeaderFlag(true);
    CDrawingsMapper drawings;
    int handle = 0;
    switch (&kind - Kinds().data()) {
        case 0:
            book.lib.LoadTmpGrpGps(in, true, drawings);
            break;
        case 1:
            book.lib.LoadTmpPunGps(in, true);
            break;
        case 2:
            book.lib.LoadDelGrpGps(in, true);
            break;
        default:
            book.lib.LoadDelPunGps(in, true, handle);
    }
    EXPECT_LE(book.lib.GetGrpArSize(), 256);
    EXPECT_LE(book.lib.GetPunArSize(0), 256);
    EXPECT_FALSE(Section(book.lib, 1400).empty());
    return in.IsOk();
}

TEST(JournalReplay, EveryCutOfAnEntryIsSurvivedAndSeenInTheStream) {
    for (const Kind& kind : Kinds()) {
        const std::string whole = kind.entry(1400);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_FALSE(ReplayDamaged(kind, std::string_view(whole).substr(0, size)))
                << kind.name << " cut at " << size;
        }
    }
}

TEST(JournalReplay, EveryTurnedBitOfAnEntryLeavesABook) {
    for (const Kind& kind : Kinds()) {
        const std::string whole = kind.entry(1400);
        for (std::size_t at = 0; at < whole.size(); ++at) {
            for (int bit = 0; bit < 8; ++bit) {
                // A large position is believed, as it must be: the gap would be filled with millions.
                if ((at >= 3 && at < 6) || (!kind.group && at >= 7 && at < 10)) continue;
                std::string entry = whole;
                entry[at] = static_cast<char>(entry[at] ^ (1 << bit));
                ReplayDamaged(kind, entry);
            }
        }
    }
}

// --- a whole journal ---------------------------------------------------------------------------------------

using Random = std::mt19937;

/// A few edits, each noted as a program notes it: changes behind, deletions before.
void EditAndNote(CLibGps& book, Random& random, int edits) {
    const auto number = [&](int below) { return std::uniform_int_distribution<int>(0, below - 1)(random); };
    for (int i = 0; i < edits; ++i) {
        const int groups = book.GetGrpArSize();
        const int g = groups > 0 ? number(groups) : 0;
        const int points = book.GetPunArSize(g);
        const int p = points > 0 ? number(points) : 0;
        CGrpGps* group = book.GetGrpAt(g);
        CPunGps* point = book.GetPunAt(g, p);
        switch (number(8)) {
            case 0:
                if (point) book.SaveDelPunGps(point);
                book.DelPunAt(g, p);
                break;
            case 1:
                if (number(4) != 0) break;
                if (group) book.SaveDelGrpGps(group);
                book.DelGrpAt(g);
                break;
            case 2:
                group = book.AddGrp(false);
                [[fallthrough]];
            case 3:
                if (!group) break;
                group->SetNomeGrp("group " + std::to_string(i));
                group->SetBaseLat(i);
                book.SaveTmpGrpGps(group, nullptr);
                break;
            case 4:
            case 5:
                point = book.AddPun(g, false);
                [[fallthrough]];
            default:
                if (!point) break;
                point->SetNome("point " + std::to_string(i));
                point->SetElev(i);
                book.SaveTmpPunGps(point);
        }
    }
}

TEST(JournalReplay, SavedBookAndItsJournalAreTheBook) {
    const long books = Scaled(500);
    for (long seed = 0; seed < books; ++seed) {
        test::RecordingJournal journal;
        LooseBook book;
        test::RandomBook(static_cast<unsigned>(seed)).Fill(book.lib, book.map);
        const std::string saved = Section(book.lib, 1400);
        book.lib.SetTmpJournal(&journal);
        Random random(static_cast<unsigned>(seed));
        EditAndNote(book.lib, random, 60);

        CLibGps read(nullptr, nullptr, nullptr, &book.map, 0);
        test::Load load;
        for (int drawing = 0; drawing < test::RandomBook::kDrawings; ++drawing)
            load.drawings.SetDrawing(drawing, drawing);
        ASSERT_TRUE(test::Read(read, saved, 1400, load));
        int handle = 0;
        for (const test::RecordingJournal::Entry& entry : journal.entries) {
            Entries e(entry.bytes);
            switch (entry.code) {
                case 3001:
                    ASSERT_TRUE(read.LoadTmpGrpGps(e.in, true, load.drawings));
                    break;
                case 3002:
                    ASSERT_NE(read.LoadTmpPunGps(e.in, true), nullptr);
                    break;
                case 3011:
                    ASSERT_TRUE(read.LoadDelGrpGps(e.in, true));
                    break;
                default:
                    ASSERT_EQ(entry.code, 3012);
                    ASSERT_NE(read.LoadDelPunGps(e.in, true, handle), nullptr);
            }
            ASSERT_TRUE(e.IsInStep());
        }
        ASSERT_TRUE(Section(read, 1400) == Section(book.lib, 1400)) << "seed " << seed;
    }
}

}  // namespace
