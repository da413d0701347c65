// Groups of a field book: making, finding, ordering, deleting.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "tests/gps/model/Book.h"
#include "tests/gps/model/Layout.h"

namespace {

using test::Book;

std::vector<CGrpGps*> Groups(const CLibGps& book) {
    std::vector<CGrpGps*> groups;
    for (int i = 0; i < book.GetGrpArSize(); ++i) groups.push_back(book.GetGrpAt(i));
    return groups;
}

TEST(BookGroups, AddingAppends) {
    Book book;
    CGrpGps* a = book.lib.AddGrp(false);
    CGrpGps* b = book.lib.AddGrp(false);
    EXPECT_EQ(Groups(book.lib), (std::vector<CGrpGps*>{a, b}));
    EXPECT_EQ(book.lib.GetGrpArSize(), 2);
}

TEST(BookGroups, NewGroupGetsTableMapAndDrawing) {
    Book book(44);
    CGrpGps* mine = book.lib.AddGrp(false);
    CGrpGps* theirs = book.lib.AddGrp(true);
    CGrpGps* inserted = book.lib.InsGrpAt(0, false);
    CGrpGps* insertedTheirs = book.lib.InsGrpAt(0, true);
    for (const CGrpGps* group : Groups(book.lib)) {
        EXPECT_EQ(group->GetTable(), &book.bases);
        EXPECT_EQ(group->GetConvCoord()->GetLibMap(), &book.map);
        EXPECT_EQ(group->GetTargetDrawing(), 44);
    }
    EXPECT_EQ(book.bases.GetAdded(), (test::Items{mine, inserted})) << "in order of creation";
    EXPECT_EQ(theirs->GetTicket(), 0);
    EXPECT_EQ(insertedTheirs->GetTicket(), 0);
}

TEST(BookGroups, ProjectThatIsNotInTheCloudStillGivesItsTables) {
    Book book;
    book.project.SetCloud(false);
    EXPECT_EQ(book.lib.AddGrp(false)->GetTable(), &book.bases);
    EXPECT_EQ(book.lib.AddPun(0, false)->GetTable(), &book.points);
}

TEST(BookGroups, DeviceIsAskedOncePerGroup) {
    Book book;
    CCloudManager& manager = *CCloudManager::GetInstance();
    const int calls = manager.GetDevIdCalls();
    book.lib.AddGrp(false);
    EXPECT_EQ(manager.GetDevIdCalls(), calls + 1);
    book.lib.InsGrpAt(0, true);
    EXPECT_EQ(manager.GetDevIdCalls(), calls + 2);
    book.lib.AddPun(0, false);
    book.lib.InsGrpAt(9, false);
    EXPECT_EQ(manager.GetDevIdCalls(), calls + 2);
}

TEST(BookGroups, InsertingPutsInPlace) {
    Book book;
    CGrpGps* a = book.lib.AddGrp(false);
    CGrpGps* b = book.lib.AddGrp(false);
    CGrpGps* first = book.lib.InsGrpAt(0, false);
    CGrpGps* middle = book.lib.InsGrpAt(2, false);
    CGrpGps* last = book.lib.InsGrpAt(4, false);
    EXPECT_EQ(Groups(book.lib), (std::vector<CGrpGps*>{first, a, middle, b, last}));
}

TEST(BookGroups, InsertingOutsideMakesNothing) {
    Book book;
    book.Fill({0, 0});
    for (const int i : {-1, 3, INT_MIN, INT_MAX}) EXPECT_EQ(book.lib.InsGrpAt(i, false), nullptr) << i;
    EXPECT_EQ(book.lib.GetGrpArSize(), 2);
    EXPECT_EQ(book.bases.GetAdded().size(), 2u);
}

TEST(BookGroups, PositionsOutsideAreNull) {
    Book book;
    EXPECT_EQ(book.lib.GetGrpAt(0), nullptr);
    book.Fill({0, 0});
    for (const int i : {-1, 2, INT_MIN, INT_MAX}) EXPECT_EQ(book.lib.GetGrpAt(i), nullptr) << i;
}

TEST(BookGroups, DeletingMovesTheLaterOnesDown) {
    Book book;
    book.Fill({1, 3, 2});
    CGrpGps* a = book.lib.GetGrpAt(0);
    CGrpGps* c = book.lib.GetGrpAt(2);
    book.lib.DelGrpAt(1);
    EXPECT_EQ(Groups(book.lib), (std::vector<CGrpGps*>{a, c}));
    EXPECT_EQ(book.points.GetAdded().size(), 3u) << "its points are gone with it";
    EXPECT_EQ(book.bases.GetAdded(), (test::Items{a, c}));
    int i = -1;
    EXPECT_TRUE(book.lib.GetIndiciDiGrp(c, i));
    EXPECT_EQ(i, 1);
}

TEST(BookGroups, DeletingOutsideDoesNothing) {
    Book book;
    book.lib.DelGrpAt(0);
    book.Fill({1, 1});
    for (const int i : {-1, 2, INT_MIN, INT_MAX}) book.lib.DelGrpAt(i);
    EXPECT_EQ(book.lib.GetGrpArSize(), 2);
    EXPECT_EQ(book.points.GetAdded().size(), 2u);
}

TEST(BookGroups, AreFoundByPointer) {
    Book book;
    book.Fill({0, 0, 0});
    for (const int order : {2, 0, 1, 1, 2}) {
        int i = -7;
        EXPECT_TRUE(book.lib.GetIndiciDiGrp(book.lib.GetGrpAt(order), i));
        EXPECT_EQ(i, order);
    }
}

TEST(BookGroups, UnknownPointerLeavesThePositionAlone) {
    Book book, other;
    book.Fill({0});
    other.Fill({0});
    int i = -7;
    EXPECT_FALSE(book.lib.GetIndiciDiGrp(nullptr, i));
    EXPECT_FALSE(book.lib.GetIndiciDiGrp(other.lib.GetGrpAt(0), i));
    EXPECT_EQ(i, -7);
    EXPECT_FALSE(CLibGps(nullptr, nullptr, nullptr, nullptr, 0).GetIndiciDiGrp(book.lib.GetGrpAt(0), i));
    EXPECT_EQ(i, -7);
}

// Under the address sanitizer this also proves that the memory of the group is not looked into.
TEST(BookGroups, DestroyedGroupIsNotFound) {
    Book book;
    book.Fill({0, 2, 0});
    CGrpGps* gone = book.lib.GetGrpAt(1);
    int i = -7;
    ASSERT_TRUE(book.lib.GetIndiciDiGrp(gone, i));  // the book has seen it before
    book.lib.DelGrpAt(1);
    i = -7;
    EXPECT_FALSE(book.lib.GetIndiciDiGrp(gone, i));
    EXPECT_EQ(i, -7);
    EXPECT_EQ(book.lib.GetPunArSize(gone), -1);
    EXPECT_EQ(book.lib.GetPunAt(gone, 0), nullptr);
}

TEST(BookGroups, SwappingExchangesTwo) {
    Book book;
    book.Fill({1, 2, 3});
    const std::vector<CGrpGps*> before = Groups(book.lib);
    int i = -1;
    for (CGrpGps* group : before) book.lib.GetIndiciDiGrp(group, i);
    book.lib.GrpGpsSwap(0, 2);
    EXPECT_EQ(Groups(book.lib), (std::vector<CGrpGps*>{before[2], before[1], before[0]}));
    EXPECT_EQ(book.lib.GetPunArSize(0), 3) << "with their points";
    EXPECT_TRUE(book.lib.GetIndiciDiGrp(before[0], i));
    EXPECT_EQ(i, 2);
    EXPECT_TRUE(book.lib.GetIndiciDiGrp(before[2], i));
    EXPECT_EQ(i, 0);
    int g = -1, p = -1;
    EXPECT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(0, 1), g, p));
    EXPECT_EQ(g, 0);
    EXPECT_EQ(book.bases.GetAdded(), (test::Items{before[0], before[1], before[2]}))
        << "the order of creation stays";
}

TEST(BookGroups, SwappingOneWithItselfHasNoEffect) {
    Book book;
    book.Fill({0, 0});
    const std::vector<CGrpGps*> before = Groups(book.lib);
    book.lib.GrpGpsSwap(1, 1);
    EXPECT_EQ(Groups(book.lib), before);
}

TEST(BookGroups, ReservingMakesRoomAndNothingElse) {
    Book book;
    book.Fill({0, 0});
    const std::vector<CGrpGps*> before = Groups(book.lib);
    book.lib.GrpArReserve(100);
    EXPECT_GE(CLibGpsLayout::Groups(book.lib).capacity(), 100u);
    EXPECT_EQ(book.lib.GrpArAddReserve(200), 200);
    EXPECT_GE(CLibGpsLayout::Groups(book.lib).capacity(), 202u);
    EXPECT_EQ(Groups(book.lib), before);
}

TEST(BookGroups, AbsurdReservationsAreHintsWithoutEffect) {
    Book book;
    book.Fill({0, 0});
    const std::vector<CGrpGps*> before = Groups(book.lib);
    const auto room = CLibGpsLayout::Groups(book.lib).capacity();
    for (const int n : {0, -1, INT_MIN, 1}) {
        book.lib.GrpArReserve(n);
        EXPECT_EQ(CLibGpsLayout::Groups(book.lib).capacity(), room) << n;
    }
    for (const int n : {0, -1, INT_MIN}) {
        EXPECT_EQ(book.lib.GrpArAddReserve(n), n);
        EXPECT_EQ(CLibGpsLayout::Groups(book.lib).capacity(), room) << n;
    }
    EXPECT_EQ(Groups(book.lib), before);
}

}  // namespace
