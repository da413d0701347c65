// Exchange files of groups: their bytes, and what comes of them in a field book.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/base/savedPointers.h"
#include "platform/cad/CLoadGisBinderNew.h"
#include "platform/cad/COrkaEng.h"
#include "tests/TempFolder.h"
#include "tests/gps/coords/ScriptedMotore.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/ExchangeBytes.h"

namespace {

using test::Book;
using test::Bytes;
using test::Dump;
using test::ExchangeHead;
using test::LooseBook;
using test::Shape;

constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();
constexpr long long kSaved = 0x0102030405060708, kOwn = 61, kDefault = 62;

class ExchangeGroups : public ::testing::Test {
protected:
    static int Save(CLibGps& book, int first, int last, const std::string& file,
                    vex::CPtr64Mapper* mapper = nullptr) {
        return static_cast<int>(book.SalvaGruppoInFile(first, last, file, mapper));
    }
    int Save(CLibGps& book, int first, int last) { return Save(book, first, last, file); }
    int Load(CLibGps& book, int after, short mode = 0) {
        CDrawingsMapper drawings(kDefault);
        drawings.SetDrawing(kSaved, 63);
        return static_cast<int>(book.CaricaGruppoDaFile(mode, after, file, drawings));
    }
    /// Groups N0(A B), N1(C), N2().
    void WriteNamed() {
        LooseBook from;
        const char* const names[] = {"A", "B", "C"};
        const int sizes[] = {2, 1, 0};
        int name = 0;
        for (int g = 0; g < 3; ++g) {
            from.lib.AddGrp(false)->SetNomeGrp("N" + std::to_string(g));
            for (int p = 0; p < sizes[g]; ++p) from.lib.AddPun(g, false)->SetNome(names[name++]);
        }
        ASSERT_EQ(Save(from.lib, 0, 3), 0);
    }
    std::string FileDump() const { return Dump(test::FileBytes(file)); }

    const test::TempFolder folder;
    const std::string file = folder / "groups";
};

/// Records of items as test::Fill makes them: nothing but a name.
std::string NamedGroup(const std::string& name) {
    CLibMap map;
    CGrpGps group(nullptr, false, &map, 0);
    group.SetNomeGrp(name);
    return test::Saved(group, 1400, true);
}
std::string NamedPoint(const std::string& name) {
    CPunGps point(nullptr, false, nullptr);
    point.SetNome(name);
    return test::Saved(point, 1400, true);
}

// --- bytes -------------------------------------------------------------------------------------------------

TEST_F(ExchangeGroups, FileIsHeadGroupsWithTheirPointsAndZero) {
    LooseBook book;
    test::Fill(book.lib, {0, 2, 0, 1});
    CGrpGps& group = *book.lib.GetGrpAt(1);
    test::FillGoldenGroup(group);
    test::FillGoldenPoint(*book.lib.GetPunAt(1, 0));
    test::FillGoldenPoint(*book.lib.GetPunAt(1, 1));
    test::FillGoldenGroup(*book.lib.GetGrpAt(2));
    const std::string point = test::PointCopy(*book.lib.GetPunAt(1, 0));
    EXPECT_EQ(Save(book.lib, 1, 3), 0);
    EXPECT_EQ(FileDump(), Dump(ExchangeHead(2)
                                   .Raw(test::GroupCopy(group))
                                   .I32(2)
                                   .Raw(point)
                                   .Raw(point)
                                   .Raw(test::GroupCopy(group))
                                   .I32(0)
                                   .I32(0)
                                   .Get()));
}

TEST_F(ExchangeGroups, RangeOfNothingIs22Bytes) {
    LooseBook book;
    test::Fill(book.lib, {2});
    EXPECT_EQ(Save(book.lib, 0, 0), 0);
    EXPECT_EQ(FileDump(), Dump(Bytes().Hex("3a01010000 03000000 464350 7805 00000000 00000000").Get()));
}

TEST_F(ExchangeGroups, MissingGroupIsACountOfZero) {
    LooseBook book;
    test::Fill(book.lib, {1, 0});
    struct Row {
        int first, last;
        std::string expected;
    };
    const std::string g0 = NamedGroup("G0"), g1 = NamedGroup("G1"), p0 = NamedPoint("P0");
    for (const Row& row : {Row{0, 3, ExchangeHead(3).Raw(g0).I32(1).Raw(p0).Raw(g1).I32(0).I32(0).I32(0)},
                           Row{-1, 1, ExchangeHead(2).I32(0).Raw(g0).I32(1).Raw(p0).I32(0)},
                           Row{5, 7, ExchangeHead(2).I32(0).I32(0).I32(0)},
                           Row{2, 0, ExchangeHead(-2).I32(0)}, Row{kMost, kLeast, ExchangeHead(1).I32(0)}}) {
        EXPECT_EQ(Save(book.lib, row.first, row.last), 0);
        EXPECT_EQ(FileDump(), Dump(row.expected)) << row.first << " to " << row.last;
    }
}

TEST_F(ExchangeGroups, DrawingIsSavedAsItIsAndTheMapperLearnsOfIt) {
    LooseBook book;
    test::Fill(book.lib, {0, 0});
    book.lib.GetGrpAt(0)->SetTargetDrawing(5);
    book.lib.GetGrpAt(1)->SetTargetDrawing(6);
    vex::CPtr64Mapper mapper;
    EXPECT_EQ(Save(book.lib, 1, 2, file, &mapper), 0);
    EXPECT_TRUE(mapper.IsWritten(6));
    EXPECT_FALSE(mapper.IsWritten(5));
    // Head, name with its length, three empty texts; then the drawing.
    EXPECT_EQ(Dump(test::FileBytes(file).substr(18 + 6 + 12, 8)), Dump(Bytes().I64(6).Get()));
}

// --- saving ------------------------------------------------------------------------------------------------

TEST_F(ExchangeGroups, FileThatCannotBeMadeIsOneAndTheVersionIsSetAllTheSame) {
    LooseBook book;
    test::Fill(book.lib, {2});
    book.lib.SetModifiedFlag(false);
    for (const std::string& name : {folder / "missing/groups", folder / "", std::string()}) {
        book.lib.SetStreamVersion(7);
        EXPECT_EQ(Save(book.lib, 0, 1, name), 1) << name;
        EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
        EXPECT_FALSE(book.lib.IsModified());
    }
    EXPECT_EQ(Save(book.lib, 0, 1, "/dev/full"), 1);
}

TEST_F(ExchangeGroups, SavingChangesOnlyTheStreamVersion) {
    Book book;
    book.Fill({2});
    test::FillGoldenGroup(*book.lib.GetGrpAt(0));
    book.lib.SetModifiedFlag(false);
    book.lib.SetNomeFile("site.prj");
    const std::string before = test::Saved(*book.lib.GetGrpAt(0), 1400);
    test::ChangeWatch watch;
    EXPECT_EQ(Save(book.lib, 0, 1), 0);
    EXPECT_TRUE(watch.Take().empty());
    EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
    EXPECT_EQ(book.lib.GetNomeFile(), "site.prj");
    EXPECT_FALSE(book.lib.IsModified());
    EXPECT_EQ(test::Saved(*book.lib.GetGrpAt(0), 1400), before);
}

// --- positions ---------------------------------------------------------------------------------------------

TEST_F(ExchangeGroups, GroupsComeBehindThePositionInTheirOrder) {
    struct Row {
        int after;
        const char* shape;
    };
    for (const Row& row :
         {Row{-1, "N0(A B) N1(C) N2() G0(P0) G1(P0 P1)"}, Row{0, "G0(P0) N0(A B) N1(C) N2() G1(P0 P1)"},
          Row{1, "G0(P0) G1(P0 P1) N0(A B) N1(C) N2()"}}) {
        WriteNamed();
        LooseBook book;
        test::Fill(book.lib, {1, 2});
        book.lib.SetModifiedFlag(false);
        int g = -1, p = -1;
        book.lib.GetIndiciDiPun(book.lib.GetPunAt(1, 1), g, p);
        EXPECT_EQ(Load(book.lib, row.after), 0);
        EXPECT_EQ(Shape(book.lib), row.shape);
        EXPECT_TRUE(book.lib.IsModified());
        EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
        for (int i = 0; i < book.lib.GetGrpArSize(); ++i) {
            EXPECT_TRUE(book.lib.GetIndiciDiGrp(book.lib.GetGrpAt(i), g));
            EXPECT_EQ(g, i);
            for (int j = 0; j < book.lib.GetPunArSize(i); ++j) {
                ASSERT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(i, j), g, p));
                EXPECT_EQ(g, i);
                EXPECT_EQ(p, j);
            }
        }
    }
}

TEST_F(ExchangeGroups, PositionInFrontOfTheFirstIsSkippedButNotItsRecord) {
    WriteNamed();
    LooseBook book;
    test::Fill(book.lib, {1});
    book.lib.SetModifiedFlag(false);
    EXPECT_EQ(Load(book.lib, -2), 3);
    EXPECT_EQ(Shape(book.lib), "N0(A B) N1(C) G0(P0)");
    EXPECT_TRUE(book.lib.IsModified());
    LooseBook none;
    EXPECT_EQ(Load(none.lib, -4), 3);
    EXPECT_EQ(Shape(none.lib), "");
}

TEST_F(ExchangeGroups, PositionBehindTheEndIsNeverReached) {
    for (const int after : {1, 100, kMost, kLeast}) {
        WriteNamed();
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        EXPECT_EQ(Load(book.lib, after), 3) << after;
        EXPECT_EQ(Shape(book.lib), "G0(P0)");
        EXPECT_TRUE(book.lib.IsModified());
    }
}

TEST_F(ExchangeGroups, WithoutRecordsNothingFails) {
    for (const int count : {0, -1, kLeast}) {
        test::WriteFileBytes(file, ExchangeHead(count).I32(0).Get());
        LooseBook book;
        EXPECT_EQ(Load(book.lib, 77), 0);
        EXPECT_EQ(book.lib.GetGrpArSize(), 0);
        EXPECT_TRUE(book.lib.IsModified());
    }
}

TEST_F(ExchangeGroups, NegativeCountOfPointsIsNone) {
    test::WriteFileBytes(
        file, ExchangeHead(2).Raw(NamedGroup("N0")).I32(-1).Raw(NamedGroup("N1")).I32(kLeast).I32(0).Get());
    LooseBook book;
    EXPECT_EQ(Load(book.lib, -1), 0);
    EXPECT_EQ(Shape(book.lib), "N0() N1()");
}

// --- what comes of them ------------------------------------------------------------------------------------

TEST_F(ExchangeGroups, ValuesOfTheFileComeWholeAndTheDrawingIsTheBooks) {
    {
        LooseBook from;
        test::Fill(from.lib, {0});
        test::FillGoldenGroup(*from.lib.GetGrpAt(0));
        Save(from.lib, 0, 1);
    }
    {
        LooseBook book(kOwn);
        test::DrawingWatch watch;
        EXPECT_EQ(Load(book.lib, -1), 0);
        CGrpGps expected(nullptr, false, &book.map, 0);
        test::FillGoldenGroup(expected);
        expected.SetTargetDrawing(kOwn);  // not what is saved, nor what that is now
        expected.SetCloudNotify(false);
        expected.SetCloudId(0);
        EXPECT_EQ(test::ValuesOf(*book.lib.GetGrpAt(0)), test::ValuesOf(expected));
        expected.SetTargetDrawing(0);
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kOwn), 2) << "the book's and the group's";
    }
    for (const long long drawing : {kSaved, kOwn, kDefault, 63LL})
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(drawing), 0) << drawing;
}

TEST_F(ExchangeGroups, GroupsOfOldFilesGetTheDefaultDrawing) {
    LooseBook from;
    test::Fill(from.lib, {0});
    CGrpGps& golden = *from.lib.GetGrpAt(0);
    test::FillGoldenGroup(golden);
    for (const short version : test::VersionsAroundThresholds()) {
        CPunGps point(nullptr, false, nullptr);
        test::FillGoldenPoint(point);
        test::WriteFileBytes(file, ExchangeHead(2, version)
                                       .Raw(test::GroupCopy(golden, version))
                                       .I32(1)
                                       .Raw(test::PointCopy(point, version))
                                       .Raw(test::GroupCopy(golden, version))
                                       .I32(0)
                                       .I32(0)
                                       .Get());
        LooseBook book(kOwn);
        EXPECT_EQ(Load(book.lib, -1), 0);
        EXPECT_EQ(Shape(book.lib), "Gruppo 1(P1) Gruppo 1()") << version;
        EXPECT_EQ(book.lib.GetGrpAt(1)->GetTargetDrawing(), version < 1004 ? kDefault : kOwn) << version;
        EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
    }
}

TEST_F(ExchangeGroups, PlaneCoordinatesAreComputedByTheConversionThatCame) {
    LooseBook from;
    test::Fill(from.lib, {2, 1});
    for (int g = 0; g < 2; ++g) {
        CConvCoord& conversion = *from.lib.GetGrpAt(g)->GetConvCoord();
        conversion.SetImp(CConvCoord::impPronta, 1);
        conversion.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9 + 6 * g, 500000, 0,
                                                    0.9996);
        from.lib.GetGrpAt(g)->SetCodeElab(1);
        for (int p = 0; p < from.lib.GetPunArSize(g); ++p) {
            CPunGps& point = *from.lib.GetPunAt(g, p);
            gpstest::SetFix(point, 45 + p, 10, 100, 1.5);
            point.SetCoord(1, 2, 3);  // not what the conversion gives
        }
    }
    Save(from.lib, 0, 2);
    for (int g = 0; g < 2; ++g)
        for (int p = 0; p < from.lib.GetPunArSize(g); ++p)
            from.lib.CalcolaCoordCart(from.lib.GetPunAt(g, p), g);

    LooseBook book;
    test::Fill(book.lib, {1});
    EXPECT_EQ(Load(book.lib, -1), 0);
    ASSERT_EQ(Shape(book.lib), "G0(P0 P1) G1(P0) G0(P0)");
    for (int g = 0; g < 2; ++g) {
        for (int p = 0; p < from.lib.GetPunArSize(g); ++p) {
            EXPECT_TRUE(from.lib.GetPunAt(g, p)->EstValidoXY());
            EXPECT_EQ(gpstest::Plane(*book.lib.GetPunAt(g, p)), gpstest::Plane(*from.lib.GetPunAt(g, p)));
        }
    }
}

TEST_F(ExchangeGroups, PointsWithoutCoordinatesAreNoCode) {
    LooseBook from;
    test::Fill(from.lib, {2});
    from.lib.GetPunAt(0, 0)->SetCoord(1, 2, 3);
    Save(from.lib, 0, 1);
    LooseBook book;
    EXPECT_EQ(Load(book.lib, -1), 0);
    EXPECT_EQ(gpstest::Plane(*book.lib.GetPunAt(0, 0)), gpstest::kUnset) << "without a valid conversion";
}

TEST_F(ExchangeGroups, LoadedGroupsAndPointsAreNewToTheCloudInTheirOrder) {
    WriteNamed();
    Book book;
    book.Fill({1});
    test::Register(book.bases, *book.lib.GetGrpAt(0), 1);
    test::Register(book.points, *book.lib.GetPunAt(0, 0), 2);
    EXPECT_EQ(Load(book.lib, -2), 3) << "also when a place was missing";
    ASSERT_EQ(book.lib.GetGrpArSize(), 3);
    EXPECT_EQ(book.bases.GetAdded(), (test::Items{book.lib.GetGrpAt(0), book.lib.GetGrpAt(1)}));
    EXPECT_EQ(book.points.GetAdded(),
              (test::Items{book.lib.GetPunAt(0, 0), book.lib.GetPunAt(0, 1), book.lib.GetPunAt(1, 0)}));
    for (int g = 0; g < 3; ++g) {
        EXPECT_TRUE(CGrpGps::CloudItemOf(book.lib.GetGrpAt(g))->IsCloudNotify());
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
            EXPECT_TRUE(book.lib.GetPunAt(g, p)->IsCloudNotify());
    }
    EXPECT_EQ(Find(book.bases, 1, book.lib.GetGrpAt(2)), test::Known::item);
}

TEST_F(ExchangeGroups, CopiedGroupIsNotTheSameCloudItem) {
    Book book;
    book.Fill({1});
    test::Register(book.bases, *book.lib.GetGrpAt(0), 70);
    test::Register(book.points, *book.lib.GetPunAt(0, 0), 71);
    Save(book.lib, 0, 1);
    EXPECT_EQ(Load(book.lib, 0), 0);
    EXPECT_EQ(book.lib.GetGrpAt(1)->GetCloudId(), 0);
    EXPECT_EQ(book.lib.GetPunAt(1, 0)->GetCloudId(), 0);
    EXPECT_EQ(Find(book.bases, 70, book.lib.GetGrpAt(0)), test::Known::item);
    EXPECT_EQ(Find(book.points, 71, book.lib.GetPunAt(0, 0)), test::Known::item);
}

// --- other modes, other files ------------------------------------------------------------------------------

TEST_F(ExchangeGroups, OtherModesDoNothingButClearTheBinder) {
    WriteNamed();
    CEgn entity;
    for (const short mode : {short{1}, short{2}, short{-1}, std::numeric_limits<short>::max()}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        book.lib.SetStreamVersion(7);
        CLoadGisBinderNew::GetInstance()->Bind(5, &entity);
        EXPECT_EQ(Load(book.lib, -1, mode), 0);
        EXPECT_TRUE(CLoadGisBinderNew::GetInstance()->IsEmpty());
        EXPECT_EQ(Shape(book.lib), "G0(P0)");
        EXPECT_FALSE(book.lib.IsModified());
        EXPECT_EQ(book.lib.GetStreamVersion(), 7);
        CDrawingsMapper drawings;
        EXPECT_EQ(static_cast<int>(book.lib.CaricaGruppoDaFile(mode, -1, folder / "missing", drawings)), 0)
            << "the file is not even looked for";
    }
}

TEST_F(ExchangeGroups, FileThatCannotBeOpenedIsTwo) {
    CEgn entity;
    for (const std::string& name : {folder / "missing", folder / "", std::string()}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        CLoadGisBinderNew::GetInstance()->Bind(5, &entity);
        CDrawingsMapper drawings;
        EXPECT_EQ(static_cast<int>(book.lib.CaricaGruppoDaFile(0, -1, name, drawings)), 2) << name;
        EXPECT_TRUE(CLoadGisBinderNew::GetInstance()->IsEmpty());
        EXPECT_EQ(book.lib.GetStreamVersion(), 1400);
        EXPECT_FALSE(book.lib.IsModified());
        EXPECT_EQ(Shape(book.lib), "G0(P0)");
    }
}

TEST_F(ExchangeGroups, GroupMissingWhenSavedIsReadOutOfStep) {
    LooseBook from;
    test::Fill(from.lib, {1});
    Save(from.lib, 0, 2);
    LooseBook book;
    EXPECT_EQ(Load(book.lib, -1), 0) << "nobody looks at the stream";
    // The count of the missing group and the end of the file are the first two texts of a group.
    EXPECT_EQ(Shape(book.lib), "G0(P0) ()");
}

TEST_F(ExchangeGroups, WhatWasSavedIsLoadedBesideTheSame) {
    LooseBook book;
    test::Fill(book.lib, {1, 2, 0});
    ASSERT_EQ(Save(book.lib, 0, 2), 0);
    EXPECT_EQ(Load(book.lib, 0), 0);
    EXPECT_EQ(Shape(book.lib), "G0(P0) G0(P0) G1(P0 P1) G1(P0 P1) G2()");
}

}  // namespace
