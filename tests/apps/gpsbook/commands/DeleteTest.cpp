// gpsbook delete: groups and points that leave a book.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

TEST(Delete, PointsGoByTheirPositionsBefore) {
    const Site site;
    const Outcome outcome = site.Run({"delete", "site.gpsbook", "Quay/P1", "Quay/#2..#3", "Quay/P1"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "Quay/P1\nQuay/P3\nQuay/P4\ndeleted: 0 groups and 3 points\n");
    EXPECT_EQ(site.Points("Quay"), "P2");
}

TEST(Delete, GroupGoesWithItsPoints) {
    const Site site;
    const auto json = JsonOf(site.Run({"delete", "site.gpsbook", "Quay", "Quay/P1", "Pier/B", "--json"}));
    EXPECT_EQ(json["groups"], 1);
    EXPECT_EQ(json["points"], 5) << "the point of the group is counted once";
    EXPECT_EQ(json["saved"], true);
    EXPECT_EQ(json["deleted"][0]["name"], "Quay");
    EXPECT_EQ(json["deleted"][0]["points"], 4);
    EXPECT_TRUE(json["deleted"][0]["point"].is_null());
    EXPECT_EQ(site.Groups(), "Pier");
    EXPECT_EQ(site.Points("Pier"), "A");
}

TEST(Delete, TryingDeletesNothing) {
    const Site site;
    const std::string bytes = site.Bytes();
    const Outcome outcome = site.Run({"delete", "site.gpsbook", "Quay", "--dry-run"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "Quay, 4 points\nwould be deleted (--dry-run): 1 group and 4 points\n");
    EXPECT_TRUE(site.Bytes() == bytes);
}

TEST(Delete, BookBeforeIsItsBackup) {
    const Site site;
    const std::string bytes = site.Bytes();
    ASSERT_EQ(site.Run({"delete", "site.gpsbook", "Pier"}).exitCode, 0);
    EXPECT_TRUE(site.Text("site.gpsbook.bak") == bytes);
}

TEST(Delete, LastGroupLeavesAnEmptyBook) {
    const Site site;
    ASSERT_EQ(site.Run({"delete", "site.gpsbook", "#0.."}).exitCode, 0);
    EXPECT_EQ(site.Groups(), "");
    site.ExpectRefused({"delete", "site.gpsbook", "#0"}, 5, "the book has no groups");
}

TEST(Delete, WhatIsNotThereIsRefusedAndNothingGoes) {
    const Site site;
    site.ExpectRefused({"delete", "site.gpsbook", "Quay/P1", "Quay/P9"}, 5, "group Quay has no point \"P9\"");
    site.ExpectRefused({"delete", "site.gpsbook", "Quay/#0..#4"}, 5, "Quay has 4 points, #0 to #3");
    site.ExpectRefused({"delete", "site.gpsbook"}, 2, "WHAT");
}

}  // namespace
}  // namespace gpsbook::test
