// Points of a field book: making, finding, ordering, deleting.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "tests/gps/model/Book.h"
#include "tests/gps/model/Layout.h"

namespace {

using test::Book;

std::vector<CPunGps*> Points(const CLibGps& book, int g) {
    std::vector<CPunGps*> points;
    for (int p = 0; p < book.GetPunArSize(g); ++p) points.push_back(book.GetPunAt(g, p));
    return points;
}

constexpr int kOutside[] = {-1, 2, INT_MIN, INT_MAX};

TEST(BookPoints, AddingAppendsToTheGroup) {
    Book book;
    book.Fill({0, 0});
    CPunGps* a = book.lib.AddPun(1, false);
    CPunGps* b = book.lib.AddPun(1, true);
    EXPECT_EQ(Points(book.lib, 1), (std::vector<CPunGps*>{a, b}));
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    EXPECT_EQ(book.points.GetAdded(), test::Items{a});
    EXPECT_EQ(b->GetTable(), &book.points);
    book.lib.GetGrpAt(1)->SetCloudCreatorDevId(33);
    EXPECT_EQ(a->GetCloudCreatorDevId(), 33) << "the group at the position owns it";
}

TEST(BookPoints, InsertingPutsInPlace) {
    Book book;
    book.Fill({0, 2});
    CPunGps* a = book.lib.GetPunAt(1, 0);
    CPunGps* b = book.lib.GetPunAt(1, 1);
    CPunGps* first = book.lib.InsPunAt(1, 0, false);
    CPunGps* middle = book.lib.InsPunAt(1, 2, true);
    CPunGps* last = book.lib.InsPunAt(1, 4, false);
    EXPECT_EQ(Points(book.lib, 1), (std::vector<CPunGps*>{first, a, middle, b, last}));
    EXPECT_EQ(book.points.GetAdded(), (test::Items{a, b, first, last})) << "in order of creation";
    int g = -1, p = -1;
    for (const int at : {4, 0, 3, 1, 2}) {
        ASSERT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(1, at), g, p));
        EXPECT_EQ(g, 1);
        EXPECT_EQ(p, at);
    }
}

TEST(BookPoints, PlacesOutsideMakeNothing) {
    Book book;
    book.Fill({0, 2});
    for (const int g : kOutside) {
        EXPECT_EQ(book.lib.AddPun(g, false), nullptr) << g;
        EXPECT_EQ(book.lib.InsPunAt(g, 0, false), nullptr) << g;
    }
    for (const int p : {-1, 3, INT_MIN, INT_MAX}) EXPECT_EQ(book.lib.InsPunAt(1, p, false), nullptr) << p;
    EXPECT_EQ(book.lib.InsPunAt(0, 1, false), nullptr);
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    EXPECT_EQ(book.lib.GetPunArSize(1), 2);
    EXPECT_EQ(book.points.GetAdded().size(), 2u);
}

TEST(BookPoints, PositionsOutsideAreNull) {
    Book book;
    book.Fill({0, 2});
    CGrpGps* group = book.lib.GetGrpAt(1);
    EXPECT_NE(book.lib.GetPunAt(1, 1), nullptr);
    for (const int n : kOutside) {
        EXPECT_EQ(book.lib.GetPunAt(1, n), nullptr) << n;
        EXPECT_EQ(book.lib.GetPunAt(n, 0), nullptr) << n;
        EXPECT_EQ(book.lib.GetPunAt(group, n), nullptr) << n;
    }
}

TEST(BookPoints, AreReachedThroughTheGroupToo) {
    Book book, other;
    book.Fill({0, 2});
    other.Fill({2});
    EXPECT_EQ(book.lib.GetPunAt(book.lib.GetGrpAt(1), 1), book.lib.GetPunAt(1, 1));
    EXPECT_EQ(book.lib.GetPunAt(other.lib.GetGrpAt(0), 1), nullptr) << "a group of another book";
    EXPECT_EQ(book.lib.GetPunAt(static_cast<CGrpGps*>(nullptr), 0), nullptr);
}

TEST(BookPoints, SizeOfAnUnknownGroupIsZeroByPositionAndMinusOneByPointer) {
    Book book, other;
    book.Fill({0, 2});
    other.Fill({2});
    EXPECT_EQ(book.lib.GetPunArSize(1), 2);
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    EXPECT_EQ(book.lib.GetPunArSize(99), 0);
    for (const int g : kOutside) EXPECT_EQ(book.lib.GetPunArSize(g), 0) << g;
    EXPECT_EQ(book.lib.GetPunArSize(book.lib.GetGrpAt(1)), 2);
    EXPECT_EQ(book.lib.GetPunArSize(book.lib.GetGrpAt(0)), 0);
    EXPECT_EQ(book.lib.GetPunArSize(nullptr), -1);
    EXPECT_EQ(book.lib.GetPunArSize(other.lib.GetGrpAt(0)), -1);
}

TEST(BookPoints, DeletingMovesTheLaterOnesDown) {
    Book book;
    book.Fill({3});
    CPunGps* a = book.lib.GetPunAt(0, 0);
    CPunGps* c = book.lib.GetPunAt(0, 2);
    book.lib.DelPunAt(0, 1);
    EXPECT_EQ(Points(book.lib, 0), (std::vector<CPunGps*>{a, c}));
    EXPECT_EQ(book.points.GetAdded(), (test::Items{a, c}));
    int g = -1, p = -1;
    EXPECT_TRUE(book.lib.GetIndiciDiPun(c, g, p));
    EXPECT_EQ(p, 1);
}

TEST(BookPoints, DeletingOutsideDoesNothing) {
    Book book;
    book.Fill({0, 2});
    for (const int n : kOutside) {
        book.lib.DelPunAt(1, n);
        book.lib.DelPunAt(n, 0);
    }
    book.lib.DelPunAt(0, 0);
    EXPECT_EQ(book.lib.GetPunArSize(1), 2);
}

TEST(BookPoints, AreDeletedByPointer) {
    Book book;
    book.Fill({1, 3});
    CPunGps* a = book.lib.GetPunAt(1, 0);
    CPunGps* b = book.lib.GetPunAt(1, 1);
    book.lib.DelPunAt(book.lib.GetPunAt(1, 2));
    EXPECT_EQ(Points(book.lib, 1), (std::vector<CPunGps*>{a, b}));
    book.lib.DelPunAt(a);
    EXPECT_EQ(Points(book.lib, 1), (std::vector<CPunGps*>{b}));
    EXPECT_EQ(book.lib.GetPunArSize(0), 1);
}

TEST(BookPoints, ForeignPointersDeleteNothing) {
    Book book, other;
    book.Fill({2});
    other.Fill({2});
    CPunGps copy(*book.lib.GetPunAt(0, 0));  // its group is found, itself is not
    CPunGps ownerless(nullptr, false, nullptr);
    book.lib.DelPunAt(nullptr);
    book.lib.DelPunAt(&copy);
    book.lib.DelPunAt(&ownerless);
    book.lib.DelPunAt(other.lib.GetPunAt(0, 1));
    EXPECT_EQ(book.lib.GetPunArSize(0), 2);
    EXPECT_EQ(other.lib.GetPunArSize(0), 2);
}

TEST(BookPoints, DeletingLeavesThePointSetsToTheHost) {
    Book book;
    book.Fill({2});
    CGrpGps& group = *book.lib.GetGrpAt(0);
    group.InsInPunSetNor(book.lib.GetPunAt(0, 0));
    group.InsInPunSetSpc(book.lib.GetPunAt(0, 0));
    book.lib.DelPunAt(0, 0);
    EXPECT_NE(group.GetPunSetNorBegin(), group.GetPunSetNorEnd());
    EXPECT_FALSE(group.GetPunSetSpcEmpty());
    group.AzzeraPunSet();
}

// --- positions ---------------------------------------------------------------------------------------------

TEST(BookPoints, UnknownPointersLeaveThePositionsAlone) {
    Book book, other;
    book.Fill({2});
    other.Fill({2});
    CPunGps ownerless(nullptr, false, nullptr);
    int g = -7, p = -8;
    EXPECT_FALSE(book.lib.GetIndiciDiPun(nullptr, g, p));
    EXPECT_FALSE(book.lib.GetIndiciDiPun(&ownerless, g, p));
    EXPECT_FALSE(book.lib.GetIndiciDiPun(other.lib.GetPunAt(0, 1), g, p));
    EXPECT_EQ(g, -7);
    EXPECT_EQ(p, -8);
}

TEST(BookPoints, CopyIsNotFoundThoughItsGroupIs) {
    Book book;
    book.Fill({0, 2});
    CPunGps copy(*book.lib.GetPunAt(1, 1));
    int g = -7, p = -8;
    EXPECT_FALSE(book.lib.GetIndiciDiPun(&copy, g, p));
    EXPECT_EQ(g, 1) << "the group's position is written";
    EXPECT_EQ(p, -8);
}

// Under the address sanitizer this also proves that the memory of the group is not looked into.
TEST(BookPoints, PointWhoseGroupIsGoneIsNotFound) {
    Book book;
    book.Fill({0, 2});
    CPunGps copy(*book.lib.GetPunAt(1, 1));
    int g = -7, p = -8;
    EXPECT_FALSE(book.lib.GetIndiciDiPun(&copy, g, p));
    book.lib.DelGrpAt(1);
    g = -7;
    EXPECT_FALSE(book.lib.GetIndiciDiPun(&copy, g, p));
    EXPECT_EQ(g, -7);
    EXPECT_EQ(p, -8);
    book.lib.DelPunAt(&copy);
    EXPECT_EQ(book.lib.GetGrpArSize(), 1);
}

TEST(BookPoints, AreFoundWhereverTheyAndTheirGroupHaveMoved) {
    Book book;
    book.Fill({3, 4, 5});
    CPunGps* point = book.lib.GetPunAt(2, 3);
    int g = -1, p = -1;
    ASSERT_TRUE(book.lib.GetIndiciDiPun(point, g, p));
    book.lib.DelPunAt(2, 0);
    book.lib.DelGrpAt(0);
    book.lib.InsPunAt(1, 0, false);
    book.lib.InsPunAt(1, 0, false);
    book.lib.InsGrpAt(0, false);
    book.lib.InsGrpAt(0, false);
    ASSERT_TRUE(book.lib.GetIndiciDiPun(point, g, p));
    EXPECT_EQ(g, 3);
    EXPECT_EQ(p, 4);
    book.lib.GrpGpsSwap(0, 3);
    book.lib.PunGpsSwap(0, 4, 1);
    ASSERT_TRUE(book.lib.GetIndiciDiPun(point, g, p));
    EXPECT_EQ(g, 0);
    EXPECT_EQ(p, 1);
}

TEST(BookPoints, EveryPositionIsRightAfterManyInsertionsInFront) {
    Book book;
    book.Fill({200});
    for (int i = 0; i < 200; ++i) book.lib.InsPunAt(0, 0, false);
    for (int round = 0; round < 2; ++round) {
        for (int at = 0; at < 400; ++at) {
            int g = -1, p = -1;
            ASSERT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(0, (at * 37) % 400), g, p));
            ASSERT_EQ(p, (at * 37) % 400);
        }
    }
}

// --- order and room ----------------------------------------------------------------------------------------

TEST(BookPoints, SwappingExchangesTwo) {
    Book book;
    book.Fill({0, 3});
    const std::vector<CPunGps*> before = Points(book.lib, 1);
    book.lib.PunGpsSwap(1, 0, 2);
    EXPECT_EQ(Points(book.lib, 1), (std::vector<CPunGps*>{before[2], before[1], before[0]}));
    book.lib.PunGpsSwap(1, 1, 1);
    EXPECT_EQ(book.lib.GetPunAt(1, 1), before[1]);
    EXPECT_EQ(book.points.GetAdded(), (test::Items{before[0], before[1], before[2]}))
        << "the order of creation stays";
}

TEST(BookPoints, ReservingMakesRoomAndNothingElse) {
    Book book;
    book.Fill({0, 2});
    const std::vector<CPunGps*> before = Points(book.lib, 1);
    auto& list = CGrpGpsLayout::Points(*book.lib.GetGrpAt(1));
    book.lib.PunArReserve(1, 100);
    EXPECT_GE(list.capacity(), 100u);
    EXPECT_EQ(book.lib.PunArAddReserve(1, 200), 200);
    EXPECT_GE(list.capacity(), 202u);
    EXPECT_EQ(Points(book.lib, 1), before);
    EXPECT_EQ(CGrpGpsLayout::Points(*book.lib.GetGrpAt(0)).capacity(), 0u) << "another group's is untouched";
}

TEST(BookPoints, AbsurdReservationsAreHintsWithoutEffect) {
    Book book;
    book.Fill({0, 2});
    auto& list = CGrpGpsLayout::Points(*book.lib.GetGrpAt(1));
    const auto room = list.capacity();
    for (const int n : {0, -1, INT_MIN, 1}) {
        book.lib.PunArReserve(1, n);
        EXPECT_EQ(list.capacity(), room) << n;
    }
    for (const int n : {0, -1, INT_MIN}) {
        EXPECT_EQ(book.lib.PunArAddReserve(1, n), n);
        EXPECT_EQ(list.capacity(), room) << n;
    }
    for (const int g : kOutside) {
        book.lib.PunArReserve(g, 10);
        EXPECT_EQ(book.lib.PunArAddReserve(g, 10), 0) << g;
        EXPECT_EQ(book.lib.PunArAddReserve(g, -10), 0) << g;
    }
    EXPECT_EQ(book.lib.GetPunArSize(1), 2);
}

// Assignment copies the owner: a point that names another group is not found where it stands, whether it was
// asked for before or not.
TEST(BookPoints, PointWithTheOwnerOfAnotherIsNotFoundWhateverWasAskedBefore) {
    for (const bool askedBefore : {false, true}) {
        Book book;
        book.Fill({1, 1});
        CPunGps* p = book.lib.GetPunAt(0, 0);
        const CPunGps* q = book.lib.GetPunAt(1, 0);
        int g = -1, at = -1;
        if (askedBefore) {
            ASSERT_TRUE(book.lib.GetIndiciDiPun(p, g, at));
        }
        *p = *q;
        g = at = -1;
        EXPECT_FALSE(book.lib.GetIndiciDiPun(p, g, at)) << askedBefore;
        EXPECT_EQ(g, 1) << "the owner's group was found";
        book.lib.DelPunAt(p);
        EXPECT_EQ(book.lib.GetPunArSize(0), 1) << askedBefore;
    }
}

}  // namespace
