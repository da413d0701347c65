// Fixes that a book holds already: found by time and position, whatever they are called.
#include "apps/gpsbook/book/KnownFixes.h"

#include <gtest/gtest.h>

#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

TEST(KnownFixes, FixIsFoundInTheFirstGroupThatHasIt) {
    SmallBook book;
    book.Group("Quay", {"A", "B"});
    book.Group("Pier", {"C"});
    SetFix(*book.lib.GetPunAt(0, 1), 45.65, 13.76, 63, 2);
    SetFix(*book.lib.GetPunAt(1, 0), 45.65, 13.76, 63, 1);
    const Fix fix = FixOf(*book.lib.GetPunAt(0, 1));
    KnownFixes known;
    EXPECT_EQ(known.GroupOf(fix), -1);
    known.Add(book.lib, 1, 0);
    EXPECT_EQ(known.GroupOf(fix), 1);
    KnownFixes inOrder;
    for (int g = 0; g < 2; ++g) inOrder.Add(book.lib, g, 0);
    EXPECT_EQ(inOrder.GroupOf(fix), 0);
}

TEST(KnownFixes, TimeAndAllOfThePositionHaveToBeTheSame) {
    SmallBook book;
    book.Group("Quay", {"A"});
    SetFix(*book.lib.GetPunAt(0, 0), 45.65, 13.76, 63, 2);
    KnownFixes known;
    known.Add(book.lib, 0, 0);
    const Fix fix = FixOf(*book.lib.GetPunAt(0, 0));
    EXPECT_EQ(known.GroupOf(fix), 0);
    Fix other = fix;
    ++other.day;
    EXPECT_EQ(known.GroupOf(other), -1);
    other = fix;
    ++other.todMs;
    EXPECT_EQ(known.GroupOf(other), -1);
    for (double Fix::*value : {&Fix::lat, &Fix::lon, &Fix::h}) {
        other = fix;
        other.*value += 1e-9;
        EXPECT_EQ(known.GroupOf(other), -1);
    }
}

TEST(KnownFixes, PointsWithoutTimeOrPositionAndThoseBeforeTheFirstAreLeftOut) {
    SmallBook book;
    book.Group("Quay", {"A", "B", "C"});
    SetFix(*book.lib.GetPunAt(0, 0), 45.65, 13.76, 63, 2);
    SetFix(*book.lib.GetPunAt(0, 2), 45.66, 13.76, 63, 2);
    KnownFixes known;
    known.Add(book.lib, 0, 1);
    EXPECT_EQ(known.GroupOf(FixOf(*book.lib.GetPunAt(0, 0))), -1);
    EXPECT_EQ(known.GroupOf(FixOf(*book.lib.GetPunAt(0, 1))), -1);
    EXPECT_EQ(known.GroupOf(FixOf(*book.lib.GetPunAt(0, 2))), 0);
    book.lib.GetPunAt(0, 0)->SetElev(GPS_VAL_UNSET);
    known.Add(book.lib, 0, 0);
    EXPECT_EQ(known.GroupOf(FixOf(*book.lib.GetPunAt(0, 0))), -1);
}

}  // namespace
}  // namespace gpsbook::test
