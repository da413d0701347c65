// Groups and points that change their place.
#include "apps/gpsbook/book/Reorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "apps/gpsbook/fields/Assignment.h"
#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

TEST(Reorder, MovedPositionsStandTogetherInTheirOrder) {
    EXPECT_EQ(OrderAfterMove(5, {3}, 0), (std::vector<int>{3, 0, 1, 2, 4}));
    EXPECT_EQ(OrderAfterMove(5, {0}, 4), (std::vector<int>{1, 2, 3, 4, 0}));
    EXPECT_EQ(OrderAfterMove(5, {1, 3}, 1), (std::vector<int>{0, 1, 3, 2, 4}));
    EXPECT_EQ(OrderAfterMove(5, {0, 4}, 3), (std::vector<int>{1, 2, 3, 0, 4}));
    EXPECT_EQ(OrderAfterMove(3, {0, 1, 2}, 0), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(OrderAfterMove(3, {1}, 99), (std::vector<int>{0, 2, 1}));
}

TEST(Reorder, AnyOrderIsReachedWithTheSameObjects) {
    SmallBook book;
    book.Group("A");
    for (int i = 0; i < 9; ++i) book.lib.AddPun(0, false);
    std::mt19937 random(7);
    std::vector<int> order(9);
    std::iota(order.begin(), order.end(), 0);
    for (int round = 0; round < 50; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        std::vector<CPunGps*> before;
        for (int p = 0; p < 9; ++p) before.push_back(book.lib.GetPunAt(0, p));
        OrderPoints(book.edits, 0, order);
        for (int p = 0; p < 9; ++p)
            EXPECT_EQ(book.lib.GetPunAt(0, p),
                      before[static_cast<std::size_t>(order[static_cast<std::size_t>(p)])]);
    }
}

TEST(Reorder, GroupsTakeTheirPointsWithThem) {
    SmallBook book;
    book.Group("A", {"a"});
    book.Group("B", {"b"});
    book.Group("C", {"c"});
    OrderGroups(book.edits, {2, 0, 1});
    EXPECT_EQ(book.GroupNames(), "C A B");
    EXPECT_EQ(book.Names(0), "c");
    EXPECT_EQ(book.Names(2), "b");
}

TEST(Reorder, PointsOfAnotherGroupHaveAllTheirValues) {
    SmallBook book;
    book.Group("A", {"0", "1", "2"});
    book.Group("B", {"x", "y"});
    CPunGps& point = *book.lib.GetPunAt(0, 1);
    SetFix(point, 45.5, 13.5, 60, 2);
    point.SetDay(32);  // a time that does not exist is moved as it is
    point.SetPosCov_xt(0.5F);
    point.SetGrafBase(45, 13, 50);
    point.SetNote("a note");
    point.SetPunRis32(7);
    point.SetCoord(1, 2, 3);
    point.SetVldtEgn(0x10);
    point.CalcolaValiditaXYZ();
    const std::vector<FieldValue> values = ValuesOf(point);
    MoveToGroup(book.edits, 0, {0, 1}, 1, 1);
    EXPECT_EQ(book.Names(0), "2");
    EXPECT_EQ(book.Names(1), "x 0 1 y");
    CPunGps& moved = *book.lib.GetPunAt(1, 2);
    EXPECT_TRUE(ChangesSince(values, moved).empty());
    EXPECT_EQ(moved.GetDay(), 32);
    int g = -1, p = -1;
    ASSERT_TRUE(book.lib.GetIndiciDiPun(&moved, g, p)) << "it belongs to the other group";
    EXPECT_EQ(g, 1);
}

}  // namespace
}  // namespace gpsbook::test
