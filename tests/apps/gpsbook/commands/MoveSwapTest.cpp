// gpsbook move and gpsbook swap: the order of groups and points.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

TEST(Move, PointsStandTogetherFromAPositionOn) {
    const Site site;
    const Outcome outcome = site.Run({"move", "site.gpsbook", "Quay/P4", "Quay/P2", "--to", "0"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "2 points moved in group Quay, from #0 on\n");
    EXPECT_EQ(site.Points("Quay"), "P2 P4 P1 P3");
    EXPECT_EQ(site.Run({"move", "site.gpsbook", "Quay/P2"}).exitCode, 0);
    EXPECT_EQ(site.Points("Quay"), "P4 P1 P3 P2") << "to the end";
}

TEST(Move, GroupsTakeTheirPoints) {
    const Site site;
    const auto json = JsonOf(site.Run({"move", "site.gpsbook", "Pier", "--to", "#0", "--json"}));
    EXPECT_EQ(json["book"], "site.gpsbook");
    EXPECT_EQ(json["saved"], true);
    EXPECT_EQ(json["moved"], 1);
    EXPECT_EQ(json["first"], 0);
    EXPECT_TRUE(json["group"].is_null());
    EXPECT_EQ(json["new_points"], false);
    EXPECT_EQ(site.Groups(), "Pier Quay");
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4");
}

TEST(Move, PointsGoToAnotherGroupWithTheirValues) {
    const Site site;
    auto before = site.Show("Quay/P2")["fields"];
    const Outcome outcome =
        site.Run({"move", "site.gpsbook", "Quay/P2", "Quay/P3", "--group", "Pier", "--to", "1"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.Points("Quay"), "P1 P4");
    EXPECT_EQ(site.Points("Pier"), "A P2 P3 B");
    EXPECT_NE(outcome.err.find("the points are new ones"), std::string::npos) << outcome;
    EXPECT_NE(outcome.err.find("no usable conversion"), std::string::npos) << outcome;
    EXPECT_EQ(site.Show("Pier/P2")["fields"], before) << "plane coordinates, too: there is no conversion";
}

TEST(Move, PointsOfAnotherGroupGetItsPlaneCoordinates) {
    const Site site;
    ASSERT_EQ(site.Run({"set", "site.gpsbook", "Pier", "crs=EPSG:32632"}).exitCode, 0);
    const double east = site.Field("Quay/P1", "east");
    ASSERT_EQ(site.Run({"move", "site.gpsbook", "Quay/P1", "--group", "Pier"}).exitCode, 0);
    EXPECT_EQ(site.Points("Pier"), "A B P1");
    EXPECT_GT(site.Field("Pier/P1", "east").get<double>(), east + 100'000);
    EXPECT_EQ(site.Field("Pier/P1", "lat"), 45.65);
}

TEST(Move, ToWhereTheyStandSavesNothing) {
    const Site site;
    const std::string bytes = site.Bytes();
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"Quay", "--to", "0"}, "nothing to do: 1 group stands at #0 already\n"},
        {{"Pier"}, "nothing to do: 1 group stands at #1 already\n"},
        {{"Quay/P2", "Quay/P3", "--to", "1"}, "nothing to do: 2 points stand at #1 already\n"},
        {{"Quay/P4", "--group", "Quay"}, "nothing to do: 1 point stands at #3 already\n"}};
    for (const auto& [words, text] : rows) {
        std::vector<std::string> arguments{"move", "site.gpsbook"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const Outcome outcome = site.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(outcome.out, text);
        EXPECT_EQ(outcome.err, "");
        arguments.push_back("--json");
        const auto json = JsonOf(site.Run(arguments));
        EXPECT_EQ(json["saved"], false);
        EXPECT_EQ(json["moved"], 0);
    }
    EXPECT_TRUE(site.Bytes() == bytes);
    EXPECT_EQ(site.Names(), std::vector<std::string>{"site.gpsbook"}) << "no backup: nothing was saved";
}

TEST(Move, WhatCannotBeIsRefusedAndChangesNothing) {
    const Site site;
    using A = std::vector<std::string>;
    const std::tuple<A, int, const char*> rows[] = {
        {{"Quay/P1", "--to", "4"}, 2, "--to: \"4\" is no position here; give 0 to 3"},
        {{"Quay/P1", "Quay/P2", "--to", "3"}, 2, "give 0 to 2"},
        {{"Quay/P1", "--to", "x"}, 2, "--to: \"x\" is no position"},
        {{"Quay", "Quay/P1"}, 2, "groups and points cannot be moved at once"},
        {{"Quay/P1", "Pier/A"}, 2, "the points are of several groups"},
        {{"Quay", "--group", "Pier"}, 2, "--group: a group does not stand in another one"},
        {{"Quay/P1", "--group", "Mole"}, 5, "there is no group \"Mole\""},
        {{"Quay/P1", "--group", "Pier/A"}, 2, "is a point; give a group"},
        {{"Quay/P9"}, 5, "no point \"P9\""}};
    for (const auto& [words, code, message] : rows) {
        A arguments{"move", "site.gpsbook"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        site.ExpectRefused(arguments, code, message);
    }
}

TEST(Swap, TwoGroupsOrTwoPointsChangePlaces) {
    const Site site;
    const Outcome outcome = site.Run({"swap", "site.gpsbook", "Quay/P1", "Quay/#3"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "Quay/P1 and Quay/P4 have changed places\n");
    EXPECT_EQ(site.Points("Quay"), "P4 P2 P3 P1");
    const auto json = JsonOf(site.Run({"swap", "site.gpsbook", "#0", "Pier", "--json"}));
    EXPECT_EQ(json["swapped"][0]["group"], 0);
    EXPECT_EQ(json["swapped"][0]["name"], "Pier");
    EXPECT_EQ(json["swapped"][1]["name"], "Quay");
    EXPECT_EQ(site.Groups(), "Pier Quay");
}

TEST(Swap, WhatCannotBeIsRefusedAndChangesNothing) {
    const Site site;
    site.ExpectRefused({"swap", "site.gpsbook", "Quay", "Pier/A"}, 2,
                       "a group and a point cannot change places");
    site.ExpectRefused({"swap", "site.gpsbook", "Quay/P1", "Pier/A"}, 2,
                       "the points are of different groups");
    site.ExpectRefused({"swap", "site.gpsbook", "Quay/P1", "Quay/#0"}, 2, "both are the same");
    site.ExpectRefused({"swap", "site.gpsbook", "Quay", "#7"}, 5, "there is no group #7");
    site.ExpectRefused({"swap", "site.gpsbook", "Quay"}, 2, "SECOND");
    site.ExpectRefused({"swap", "site.gpsbook", "Quay/#0..", "Quay/P1"}, 2,
                       "names 4 groups or points; give one");
}

}  // namespace
}  // namespace gpsbook::test
