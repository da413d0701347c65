// Exchange files of points: their bytes, and where and how the points of one come into a group.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/cad/CLoadGisBinderNew.h"
#include "tests/TempFolder.h"
#include "tests/gps/coords/ScriptedMotore.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/ExchangeBytes.h"

namespace {

using gpstest::ScriptedMotore;
using gpstest::Triple;
using test::Book;
using test::Bytes;
using test::Dump;
using test::ExchangeHead;
using test::LooseBook;
using test::Shape;

constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

/// A point that only has a name, as it stands in a file of version 1400.
std::string NamedPoint(const std::string& name) {
    CPunGps point(nullptr, false, nullptr);
    point.SetNome(name);
    return test::Saved(point, 1400, true);
}

class ExchangePoints : public ::testing::Test {
protected:
    static int Save(CLibGps& book, int g, int first, int last, const std::string& file) {
        return static_cast<int>(book.SalvaPuntiInFile(g, first, last, file));
    }
    int Save(CLibGps& book, int g, int first, int last) { return Save(book, g, first, last, file); }
    int Load(CLibGps& book, int fromPlane, int g, int after) {
        return static_cast<int>(book.CaricaPuntiDaFile(fromPlane, g, after, file));
    }
    /// Points N0, N1 … in the file.
    void WriteNamed(int count) {
        Bytes bytes = ExchangeHead(count);
        for (int i = 0; i < count; ++i) bytes.Raw(NamedPoint("N" + std::to_string(i)));
        test::WriteFileBytes(file, bytes.I32(0).Get());
    }
    std::string FileDump() const { return Dump(test::FileBytes(file)); }

    const test::TempFolder folder;
    const std::string file = folder / "points";
};

// --- bytes -------------------------------------------------------------------------------------------------

TEST_F(ExchangePoints, FileIsHeadRecordsAndZero) {
    LooseBook book;
    test::Fill(book.lib, {1, 4});
    test::FillGoldenPoint(*book.lib.GetPunAt(1, 1));
    test::FillGoldenPoint(*book.lib.GetPunAt(1, 2));
    const std::string golden = test::PointCopy(*book.lib.GetPunAt(1, 1));
    EXPECT_EQ(Save(book.lib, 1, 1, 3), 0);
    EXPECT_EQ(FileDump(), Dump(ExchangeHead(2).Raw(golden).Raw(golden).I32(0).Get()));
}

TEST_F(ExchangePoints, RangeOfNothingIs22Bytes) {
    LooseBook book;
    test::Fill(book.lib, {2});
    EXPECT_EQ(Save(book.lib, 0, 1, 1), 0);
    EXPECT_EQ(FileDump(), Dump(Bytes().Hex("3a01010000 03000000 464350 7805 00000000 00000000").Get()));
    EXPECT_EQ(test::FileBytes(file).size(), 22u);
}

TEST_F(ExchangePoints, CountIsTheDifferenceWhateverIsThere) {
    LooseBook book;
    test::Fill(book.lib, {3});
    struct Row {
        int g, first, last;
        std::string expected;
    };
    const std::string p0 = NamedPoint("P0"), p1 = NamedPoint("P1"), p2 = NamedPoint("P2");
    for (const Row& row : {
             Row{0, 1, 5, ExchangeHead(4).Raw(p1).Raw(p2).I32(0)},  // two that are missing
             Row{0, -2, 1, ExchangeHead(3).Raw(p0).I32(0)},         // in front, too
             Row{7, 0, 2, ExchangeHead(2).I32(0)},                  // no such group
             Row{-1, 0, 1, ExchangeHead(1).I32(0)},                 //
             Row{0, 3, 1, ExchangeHead(-2).I32(0)},                 //
             Row{0, kMost, kLeast, ExchangeHead(1).I32(0)},         // in 32 bits
             Row{0, kLeast, kLeast + 3, ExchangeHead(3).I32(0)},    //
         }) {
        EXPECT_EQ(Save(book.lib, row.g, row.first, row.last), 0);
        EXPECT_EQ(FileDump(), Dump(row.expected)) << row.g << ", " << row.first << " to " << row.last;
    }
}

TEST_F(ExchangePoints, LongerFileIsReplacedWhole) {
    test::WriteFileBytes(file, std::string(1000, '.'));
    LooseBook book;
    EXPECT_EQ(Save(book.lib, 0, 0, 0), 0);
    EXPECT_EQ(test::FileBytes(file).size(), 22u);
}

// --- saving ------------------------------------------------------------------------------------------------

TEST_F(ExchangePoints, FileThatCannotBeMadeIsOneAndTheVersionIsSetAllTheSame) {
    LooseBook book;
    test::Fill(book.lib, {2});
    book.lib.SetModifiedFlag(false);
    for (const std::string& name : {folder / "missing/points", folder / "", std::string()}) {
        book.lib.SetStreamVersion(7);
        EXPECT_EQ(Save(book.lib, 0, 0, 2, name), 1) << name;
        EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
        EXPECT_FALSE(book.lib.IsModified());
    }
}

TEST_F(ExchangePoints, FileThatCannotBeWrittenIsOne) {
    LooseBook book;
    test::Fill(book.lib, {2});
    EXPECT_EQ(Save(book.lib, 0, 0, 2, "/dev/full"), 1);
}

TEST_F(ExchangePoints, SavingChangesOnlyTheStreamVersion) {
    Book book;
    book.Fill({3});
    test::FillGoldenPoint(*book.lib.GetPunAt(0, 1));
    book.lib.SetModifiedFlag(false);
    book.lib.SetStreamFlag(true);
    book.lib.SetNomeFile("site.prj");
    const std::string before = test::Saved(*book.lib.GetPunAt(0, 1), 1400);
    test::ChangeWatch watch;
    EXPECT_EQ(Save(book.lib, 0, 0, 3), 0);
    EXPECT_TRUE(watch.Take().empty());
    EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
    EXPECT_TRUE(book.lib.GetStreamFlag());
    EXPECT_EQ(book.lib.GetNomeFile(), "site.prj") << "an exchange file is not the project";
    EXPECT_FALSE(book.lib.IsModified());
    EXPECT_EQ(test::Saved(*book.lib.GetPunAt(0, 1), 1400), before) << "the cloud's state, too";
}

// --- positions ---------------------------------------------------------------------------------------------

TEST_F(ExchangePoints, PointsComeBehindThePositionInTheirOrder) {
    struct Row {
        int after;
        const char* shape;
    };
    for (const Row& row : {Row{-1, "G0() G1(N0 N1 N2 P0 P1)"}, Row{0, "G0() G1(P0 N0 N1 N2 P1)"},
                           Row{1, "G0() G1(P0 P1 N0 N1 N2)"}}) {
        for (const bool asked : {false, true}) {
            LooseBook book;
            test::Fill(book.lib, {0, 2});
            book.lib.SetModifiedFlag(false);
            CPunGps* const last = book.lib.GetPunAt(1, 1);
            int g = -1, p = -1;
            if (asked) book.lib.GetIndiciDiPun(last, g, p);  // positions are remembered from now on
            WriteNamed(3);
            EXPECT_EQ(Load(book.lib, 0, 1, row.after), 0);
            EXPECT_EQ(Shape(book.lib), row.shape);
            EXPECT_TRUE(book.lib.IsModified());
            EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
            for (int i = 0; i < 5; ++i) {
                ASSERT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(1, i), g, p));
                EXPECT_EQ(g, 1);
                EXPECT_EQ(p, i) << row.shape;
            }
            EXPECT_EQ(book.lib.GetPunAt(1, row.after < 1 ? 4 : 1), last) << "the points that were there";
        }
    }
}

TEST_F(ExchangePoints, EmptyGroupIsFilled) {
    LooseBook book;
    test::Fill(book.lib, {0, 1});
    WriteNamed(2);
    EXPECT_EQ(Load(book.lib, 0, 0, -1), 0);
    EXPECT_EQ(Shape(book.lib), "G0(N0 N1) G1(P0)");
}

TEST_F(ExchangePoints, PositionInFrontOfTheFirstIsSkippedButNotItsRecord) {
    struct Row {
        int after, count;
        const char* shape;
    };
    // What is left out is a position each time: the records that are read are the first ones of the file.
    for (const Row& row : {Row{-2, 2, "G0(N0 P0)"}, Row{-3, 5, "G0(N0 N1 N2 P0)"}, Row{-3, 2, "G0(P0)"},
                           Row{-3, 1, "G0(P0)"}, Row{kLeast, 3, "G0(P0)"}}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        WriteNamed(row.count);
        EXPECT_EQ(Load(book.lib, 0, 0, row.after), 3) << row.after;
        EXPECT_EQ(Shape(book.lib), row.shape) << row.after << ", " << row.count;
        EXPECT_TRUE(book.lib.IsModified());
    }
}

TEST_F(ExchangePoints, PositionBehindTheEndIsNeverReached) {
    for (const int after : {1, 2, 100, kMost - 1, kMost}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        WriteNamed(4);
        EXPECT_EQ(Load(book.lib, 0, 0, after), 3) << after;
        EXPECT_EQ(Shape(book.lib), "G0(P0)") << after;
        EXPECT_TRUE(book.lib.IsModified()) << "even so";
    }
}

TEST_F(ExchangePoints, GroupThatIsNotThereTakesNothing) {
    for (const int g : {-1, 1, kMost}) {
        for (const int after : {-2, -1, 0}) {
            LooseBook book;
            test::Fill(book.lib, {1});
            WriteNamed(2);
            EXPECT_EQ(Load(book.lib, 0, g, after), 3);
            EXPECT_EQ(Shape(book.lib), "G0(P0)");
        }
    }
}

TEST_F(ExchangePoints, WithoutRecordsNothingFails) {
    for (const int count : {0, -1, kLeast}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        test::WriteFileBytes(file, ExchangeHead(count).I32(0).Get());
        EXPECT_EQ(Load(book.lib, 1, 7, 77), 0) << "no insertion, none that fails";
        EXPECT_EQ(Shape(book.lib), "G0(P0)");
        EXPECT_TRUE(book.lib.IsModified());
    }
}

// --- coordinates -------------------------------------------------------------------------------------------

/// A file with the golden point, one without plane coordinates and one without a fix; a group whose
/// conversion answers (11, 22, 33).
class ExchangeCoordinates : public ExchangePoints {
protected:
    ExchangeCoordinates() {
        LooseBook from;
        test::Fill(from.lib, {3});
        CPunGps& whole = *from.lib.GetPunAt(0, 0);
        CPunGps& noPlane = *from.lib.GetPunAt(0, 1);
        CPunGps& noFix = *from.lib.GetPunAt(0, 2);
        gpstest::SetFix(whole, 45, 9, 100, 1.5);
        whole.SetCoord(1, 2, 3);
        gpstest::SetFix(noPlane, 46, 10, 200, 2.5);
        noFix.SetCoord(4, 5, 6);
        noFix.SetAltAnt(3.5);
        Save(from.lib, 0, 0, 3);

        test::Fill(book.lib, {0, 1});
        group = book.lib.GetGrpAt(1);
        group->GetConvCoord()->SetMotore(&engine);
        group->GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        group->SetCodeElab(1);
    }

    Triple Fix(int p) { return gpstest::Stored(*book.lib.GetPunAt(1, p)); }
    Triple Plane(int p) { return gpstest::Plane(*book.lib.GetPunAt(1, p)); }

    ScriptedMotore engine;
    LooseBook book;
    CGrpGps* group;
};

TEST_F(ExchangeCoordinates, PlaneOnesAreComputedFromTheFixes) {
    EXPECT_EQ(Load(book.lib, 0, 1, 0), 0);
    using Calls = std::vector<ScriptedMotore::Call>;
    EXPECT_EQ(engine.calls,
              (Calls{{"GrafGpsToPlanAtt", {45, 9, 100, 1.5}}, {"GrafGpsToPlanAtt", {46, 10, 200, 2.5}}}));
    EXPECT_EQ(Plane(1), (Triple{11, 22, 33}));
    EXPECT_EQ(Fix(1), (Triple{45, 9, 100}));
    EXPECT_EQ(Plane(2), (Triple{11, 22, 33}));
    EXPECT_EQ(Plane(3), gpstest::kUnset) << "without a fix those of the file do not stay";
    EXPECT_EQ(book.lib.GetPunAt(1, 3)->GetVldtEgn() & (CEgn::VLDT_XY | CEgn::VLDT_Z), 0u);
}

TEST_F(ExchangeCoordinates, FixesAreComputedFromThePlaneOnes) {
    for (const int fromPlane : {1, -1, 77}) {
        engine.calls.clear();
        EXPECT_EQ(Load(book.lib, fromPlane, 1, 0), 4) << "one point has none";
        ASSERT_EQ(book.lib.GetPunArSize(1), 4) << "and is inserted all the same";
        using Calls = std::vector<ScriptedMotore::Call>;
        EXPECT_EQ(engine.calls,
                  (Calls{{"PlanAttToGrafGps", {1, 2, 3, 1.5}}, {"PlanAttToGrafGps", {4, 5, 6, 3.5}}}));
        EXPECT_EQ(Fix(1), (Triple{11, 22, 33}));
        EXPECT_EQ(Plane(1), (Triple{1, 2, 3}));
        EXPECT_EQ(Fix(2), gpstest::kUnset) << "recomputed in any case";
        EXPECT_EQ(Fix(3), (Triple{11, 22, 33}));
        for (int p = 3; p > 0; --p) book.lib.DelPunAt(1, p);
    }
}

TEST_F(ExchangeCoordinates, FailingConversionIsNoCode) {
    engine.result = false;
    LooseBook from;
    test::Fill(from.lib, {1});
    from.lib.GetPunAt(0, 0)->SetCoord(1, 2, 3);
    gpstest::SetFix(*from.lib.GetPunAt(0, 0), 45, 9, 100, 1.5);
    Save(from.lib, 0, 0, 1);
    EXPECT_EQ(Load(book.lib, 1, 1, -1), 0);
    EXPECT_EQ(Fix(0), gpstest::kUnset);
    EXPECT_EQ(Load(book.lib, 0, 1, -1), 0);
    EXPECT_EQ(Plane(0), gpstest::kUnset);
}

TEST_F(ExchangeCoordinates, HeightIsNotAskedFor) {
    LooseBook from;
    test::Fill(from.lib, {1});
    from.lib.GetPunAt(0, 0)->SetCoord(1, 2, GPS_VAL_UNSET);
    Save(from.lib, 0, 0, 1);
    EXPECT_EQ(Load(book.lib, 1, 1, -1), 0) << "east and north are there";
}

TEST_F(ExchangeCoordinates, WithoutAConversionFixesStayAndPlaneOnesDoNot) {
    group->SetCodeElab(0);
    EXPECT_EQ(Load(book.lib, 1, 1, 0), 4);
    EXPECT_EQ(Fix(1), (Triple{45, 9, 100}));
    EXPECT_EQ(Fix(2), (Triple{46, 10, 200}));
    EXPECT_EQ(Plane(3), (Triple{4, 5, 6}));
    EXPECT_EQ(Load(book.lib, 0, 1, -1), 0);
    EXPECT_EQ(Plane(0), gpstest::kUnset);
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(ExchangeCoordinates, LastCodeWins) {
    LooseBook from;
    test::Fill(from.lib, {2});
    Save(from.lib, 0, 0, 2);  // nothing but names
    EXPECT_EQ(Load(book.lib, 1, 1, -2), 4) << "a place that does not exist, then a point without coordinates";
    EXPECT_EQ(Load(book.lib, 0, 1, -2), 3) << "a point that can be read is no code";
}

TEST_F(ExchangeCoordinates, ValuesOfTheFileComeWhole) {
    LooseBook from;
    test::Fill(from.lib, {1});
    test::FillGoldenPoint(*from.lib.GetPunAt(0, 0));
    Save(from.lib, 0, 0, 1);
    group->SetCodeElab(0);
    EXPECT_EQ(Load(book.lib, 1, 1, -1), 0);
    CPunGps expected(nullptr, false, nullptr);
    test::FillGoldenPoint(expected);
    expected.SetCloudNotify(false);
    expected.SetCloudId(0);  // the mask goes with it
    EXPECT_EQ(test::ValuesOf(*book.lib.GetPunAt(1, 0)), test::ValuesOf(expected));
}

// --- the cloud ---------------------------------------------------------------------------------------------

TEST_F(ExchangePoints, LoadedPointsAreNewToTheCloudInTheirOrder) {
    Book book;
    book.Fill({2});
    test::Register(book.bases, *book.lib.GetGrpAt(0), 1);
    test::Register(book.points, *book.lib.GetPunAt(0, 0), 2);
    test::Register(book.points, *book.lib.GetPunAt(0, 1), 3);
    WriteNamed(3);
    EXPECT_EQ(Load(book.lib, 1, 0, 0), 4);
    ASSERT_EQ(book.lib.GetPunArSize(0), 5);
    EXPECT_EQ(book.points.GetAdded(),
              (test::Items{book.lib.GetPunAt(0, 1), book.lib.GetPunAt(0, 2), book.lib.GetPunAt(0, 3)}));
    EXPECT_EQ(Find(book.points, 3, book.lib.GetPunAt(0, 4)), test::Known::item) << "moved, and known";
    for (int p = 0; p < 5; ++p) EXPECT_TRUE(book.lib.GetPunAt(0, p)->IsCloudNotify());
    EXPECT_EQ(book.lib.GetPunAt(0, 2)->GetCloudFlag() & ~static_cast<std::uint32_t>(CHG_COORD), 0u);
    EXPECT_TRUE(book.bases.GetAdded().empty());
}

TEST_F(ExchangePoints, CopiedPointIsNotTheSameCloudItem) {
    Book book;
    book.Fill({1});
    CPunGps& point = *book.lib.GetPunAt(0, 0);
    test::Register(book.points, point, 70);
    point.SetQua(5);
    Save(book.lib, 0, 0, 1);
    EXPECT_EQ(Load(book.lib, 0, 0, 0), 0);
    EXPECT_EQ(point.GetCloudId(), 70);
    EXPECT_NE(point.GetCloudFlag(), 0u);
    EXPECT_EQ(book.lib.GetPunAt(0, 1)->GetCloudId(), 0);
    EXPECT_EQ(book.points.GetAdded(), test::Items{book.lib.GetPunAt(0, 1)});
    EXPECT_EQ(Find(book.points, 70, &point), test::Known::item);
}

// --- other files -------------------------------------------------------------------------------------------

TEST_F(ExchangePoints, FileThatCannotBeOpenedIsTwo) {
    CEgn entity;
    for (const std::string& name : {folder / "missing", folder / "", std::string()}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        CLoadGisBinderNew::GetInstance()->Bind(5, &entity);
        EXPECT_EQ(static_cast<int>(book.lib.CaricaPuntiDaFile(0, 0, -1, name)), 2) << name;
        EXPECT_TRUE(CLoadGisBinderNew::GetInstance()->IsEmpty()) << "cleared before";
        EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
        EXPECT_FALSE(book.lib.IsModified());
        EXPECT_EQ(Shape(book.lib), "G0(P0)");
    }
}

TEST_F(ExchangePoints, LoadBeginsWithAnEmptyBinder) {
    CEgn entity;
    CLoadGisBinderNew::GetInstance()->Bind(5, &entity);
    LooseBook book;
    test::Fill(book.lib, {0});
    WriteNamed(1);
    EXPECT_EQ(Load(book.lib, 0, 0, -1), 0);
    EXPECT_EQ(CLoadGisBinderNew::GetInstance()->Find(5), nullptr);
}

TEST_F(ExchangePoints, MarkerAndSignatureAreNotCompared) {
    for (const Bytes& head : {Bytes().Hex("4a02020101 03000000 464350 7805 01000000"),
                              Bytes().Hex("3a01010000 05000000 4f54484552 7805 01000000"),
                              Bytes().Hex("0000000000 00000000 7805 01000000"),
                              Bytes().Hex("0000000000 ffffffff 7805 01000000")}) {
        LooseBook book;
        test::Fill(book.lib, {0});
        test::WriteFileBytes(file, Bytes(head).Raw(NamedPoint("N0")).Get());
        EXPECT_EQ(Load(book.lib, 0, 0, -1), 0);
        EXPECT_EQ(Shape(book.lib), "G0(N0)") << Dump(head.Get());
    }
}

TEST_F(ExchangePoints, RecordsAreReadByTheVersionOfTheFile) {
    for (const short version : test::VersionsAroundThresholds()) {
        CPunGps golden(nullptr, false, nullptr);
        test::FillGoldenPoint(golden);
        const std::string record = test::PointCopy(golden, version);
        test::WriteFileBytes(file, ExchangeHead(2, version).Raw(record).Raw(record).I32(0).Get());
        LooseBook book;
        test::Fill(book.lib, {0});
        EXPECT_EQ(Load(book.lib, 0, 0, -1), 0) << version;
        EXPECT_EQ(Shape(book.lib), "G0(P1 P1)") << version;
        EXPECT_EQ(book.lib.GetPunAt(0, 1)->GetPunRis32(), version >= 1106 ? 0xFEDCBA98u : 0u) << version;
        EXPECT_EQ(book.lib.GetStreamVersion(), 1400) << "the book's stays the newest";
    }
}

TEST_F(ExchangePoints, CountBeyondTheRecordsGivesPointsWithoutValues) {
    LooseBook from;
    test::Fill(from.lib, {2});
    Save(from.lib, 0, 1, 4);
    LooseBook book;
    test::Fill(book.lib, {1});
    EXPECT_EQ(Load(book.lib, 0, 0, -1), 0) << "nobody looks at the stream";
    EXPECT_EQ(Shape(book.lib), "G0(P1   P0)");
    EXPECT_EQ(book.lib.GetPunAt(0, 1)->GetLat(), 0);
}

TEST_F(ExchangePoints, WhatWasSavedIsLoadedInTheMiddleOfTheSameGroup) {
    LooseBook book;
    test::Fill(book.lib, {5});
    ASSERT_EQ(Save(book.lib, 0, 1, 4), 0);
    EXPECT_EQ(Load(book.lib, 0, 0, 1), 0);
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1 P1 P2 P3 P2 P3 P4)");
}

}  // namespace
