// Positions that do not exist are programming errors for the two swaps: they end the process.
#include <gtest/gtest.h>

#include <climits>
#include <csignal>

#include "tests/gps/model/Book.h"

namespace {

using test::Book;

TEST(SwapDeathTest, OfGroupsEndsTheProcessAtABadPosition) {
    const int rows[][2] = {{0, 2}, {2, 0}, {-1, 0}, {0, -1}, {INT_MAX, INT_MIN}, {2, 2}, {-1, -1}};
    for (const auto& [i, j] : rows) {
        Book book;
        book.Fill({1, 1});
        EXPECT_EXIT(book.lib.GrpGpsSwap(i, j), testing::KilledBySignal(SIGABRT), "") << i << ' ' << j;
    }
    Book empty;
    EXPECT_EXIT(empty.lib.GrpGpsSwap(0, 0), testing::KilledBySignal(SIGABRT), "");
}

TEST(SwapDeathTest, OfPointsEndsTheProcessAtABadPosition) {
    const int rows[][3] = {{0, 0, 2}, {0, 2, 0}, {0, -1, 0}, {0, 0, -1},     {0, 2, 2}, {0, INT_MIN, INT_MAX},
                           {1, 0, 0}, {2, 0, 0}, {-1, 0, 0}, {INT_MAX, 0, 0}};
    for (const auto& [g, i, j] : rows) {
        Book book;
        book.Fill({2, 0});
        EXPECT_EXIT(book.lib.PunGpsSwap(g, i, j), testing::KilledBySignal(SIGABRT), "")
            << g << ' ' << i << ' ' << j;
    }
}

}  // namespace
