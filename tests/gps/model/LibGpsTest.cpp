// The field book itself: what the host hands in, flags, and what its edits do not do.
#include "gps/model/CLibGps.h"

#include <gtest/gtest.h>

#include "platform/entity/COpzListDisEgn.h"
#include "platform/entity/COriData.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"

namespace {

using test::Book;

TEST(LibGps, NewBookIsEmptyAndHoldsWhatItWasGiven) {
    CCloudProject project;
    COpzListDisEgn options;
    COriData orientation;
    CLibMap map;
    CLibGps book(&project, &options, &orientation, &map, 0);
    EXPECT_EQ(book.GetGrpArSize(), 0);
    EXPECT_EQ(book.GetArchLibMap(), &map);
    EXPECT_EQ(book.GetTargetDrawing(), 0);
    EXPECT_EQ(book.GetCloudProject(), &project);
    EXPECT_EQ(book.GetOriData(), &orientation);
    EXPECT_FALSE(book.GetOpzWarning());
    EXPECT_FALSE(book.IsModified());
    EXPECT_EQ(book.GetNomeFile(), "");
}

TEST(LibGps, WorksWithoutAnyOfThem) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(book.GetArchLibMap(), nullptr);
    EXPECT_EQ(book.GetCloudProject(), nullptr);
    EXPECT_EQ(book.GetOriData(), nullptr);
    const CGrpGps* group = book.AddGrp(false);
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(group->GetTable(), nullptr);
    EXPECT_EQ(group->GetConvCoord()->GetLibMap(), nullptr);
    EXPECT_EQ(book.AddPun(0, false)->GetTable(), nullptr);
}

TEST(LibGps, WarningSwitchIsKept) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    book.SetOpzWarning(true);
    EXPECT_TRUE(book.GetOpzWarning());
    book.SetOpzWarning(false);
    EXPECT_FALSE(book.GetOpzWarning());
}

TEST(LibGps, DimensionsAreLeftAsTheyAre) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    for (const bool first : {true, false}) {
        for (const bool second : {true, false}) {
            bool a = first, b = second;
            book.ModDimens2d3d(a, b);
            EXPECT_EQ(a, first);
            EXPECT_EQ(b, second);
        }
    }
}

TEST(LibGps, EditsNeitherModifyNorNotifyNorReport) {
    Book book;
    int told = 0;
    book.lib.AddListener([&](int, int, VEXNotifyObject::CNotifyData*) { ++told; });
    book.lib.SetAutoSaved();
    test::ChangeWatch watch;

    book.Fill({3, 2, 0});
    book.lib.InsGrpAt(1, true);
    book.lib.InsPunAt(1, 0, true);
    book.lib.GrpGpsSwap(0, 3);
    book.lib.PunGpsSwap(3, 0, 2);
    book.lib.GrpArReserve(10);
    book.lib.PunArAddReserve(0, 10);
    CGrpGps* currGrp = book.lib.GetCurrGrp();
    book.lib.GetPunArSize(currGrp);
    book.lib.DelPunAt(3, 1);
    book.lib.DelPunAt(book.lib.GetPunAt(3, 0));
    book.lib.DelGrpAt(2);
    book.lib.SetTargetDrawing(9);

    EXPECT_FALSE(book.lib.IsModified());
    EXPECT_TRUE(book.lib.IsAutoSaved());
    EXPECT_EQ(told, 0);
    EXPECT_EQ(watch.Take(), test::ChangeWatch::Calls{});
    EXPECT_TRUE(book.points.GetDeleted().empty()) << "deletions are queued by the host";
    EXPECT_TRUE(book.bases.GetDeleted().empty());
}

TEST(LibGps, DestructionQueuesNoDeletions) {
    test::Table bases(CCloudTable::tabGpsBase), points;
    CCloudProject project;
    project.SetGpsTables(&bases, &points);
    {
        CLibGps book(&project, nullptr, nullptr, nullptr, 0);
        test::Register(bases, *book.AddGrp(false), 5);
        test::Register(points, *book.AddPun(0, false), 6);
        book.AddPun(0, false);
    }
    EXPECT_TRUE(bases.GetById().empty());
    EXPECT_TRUE(points.GetById().empty());
    EXPECT_TRUE(points.GetAdded().empty());
    EXPECT_TRUE(bases.GetDeleted().empty());
    EXPECT_TRUE(points.GetDeleted().empty());
}

TEST(LibGps, MayOutliveTheTables) {
    CCloudProject project;
    CLibGps book(&project, nullptr, nullptr, nullptr, 0);
    {
        test::Table bases(CCloudTable::tabGpsBase), points;
        project.SetGpsTables(&bases, &points);
        book.AddGrp(false);
        book.AddPun(0, false);
        project.SetGpsTables(nullptr, nullptr);
    }
    book.GetPunAt(0, 0)->SetNome("P1");
    EXPECT_EQ(book.GetPunAt(0, 0)->GetTable(), nullptr);
    book.DelGrpAt(0);
    EXPECT_EQ(book.GetGrpArSize(), 0);
}

}  // namespace
