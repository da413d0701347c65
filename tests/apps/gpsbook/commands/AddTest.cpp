// gpsbook add: groups and points that were not measured here.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

TEST(Add, GroupStandsAtTheEndOrWhereItIsAsked) {
    const Site site;
    const Outcome outcome =
        site.Run({"add", "site.gpsbook", "name=Mole", "date=2024-05-02", "base_lat=45.7"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "group Mole: added at #2\n");
    EXPECT_EQ(site.Run({"add", "site.gpsbook", "name=First", "--at", "0"}).exitCode, 0);
    EXPECT_EQ(site.Groups(), "First Quay Pier Mole");
    const auto fields = site.Show("Mole")["fields"];
    EXPECT_EQ(fields["date"], "2024-05-02");
    EXPECT_EQ(fields["base_lat"], 45.7);
    EXPECT_TRUE(fields["base_lon"].is_null());
    EXPECT_TRUE(fields["crs"].is_null());
}

TEST(Add, GroupGetsTheSystemOfTheBook) {
    const Site site([](gpsproject::Project& p) { p.GetSettings()["crs"] = "EPSG:32632"; });
    ASSERT_EQ(site.Run({"add", "site.gpsbook", "name=One"}).exitCode, 0);
    ASSERT_EQ(site.Run({"add", "site.gpsbook", "name=Two", "crs=EPSG:32633"}).exitCode, 0);
    ASSERT_EQ(site.Run({"add", "site.gpsbook", "name=Three", "crs="}).exitCode, 0);
    EXPECT_EQ(site.Field("One", "crs"), "EPSG:32632");
    EXPECT_EQ(site.Field("Two", "crs"), "EPSG:32633");
    EXPECT_TRUE(site.Field("Three", "crs").is_null());
}

TEST(Add, PointGetsPlaneCoordinatesAndItsBase) {
    const Site site([](gpsproject::Project& p) {
        CGrpGps& quay = *p.GetBook().GetGrpAt(0);
        quay.SetBaseLat(45.6);
        quay.SetBaseLong(13.7);
        quay.SetBaseElev(60);
    });
    const auto json = JsonOf(site.Run({"add", "site.gpsbook", "Quay", "name=P0", "lat=45.65", "lon=13.76",
                                       "h=63", "antenna=2", "quality=4", "--at", "#0", "--json"}));
    EXPECT_EQ(json["group"], 0);
    EXPECT_EQ(json["point"], 0);
    EXPECT_EQ(json["name"], "Quay/P0");
    EXPECT_EQ(json["fields"]["base_lat"], 45.6);
    EXPECT_EQ(site.Points("Quay"), "P0 P1 P2 P3 P4");
    EXPECT_EQ(site.Field("Quay/P0", "east"), site.Field("Quay/P1", "east"));
    EXPECT_EQ(site.Field("Quay/P0", "base_h"), 60);
}

TEST(Add, PlaneCoordinatesThatAreGivenStay) {
    const Site site;
    ASSERT_EQ(site.Run({"add", "site.gpsbook", "Quay", "name=X", "lat=45.65", "lon=13.76", "h=63",
                        "antenna=2", "east=1", "north=2", "height=3"})
                  .exitCode,
              0);
    EXPECT_EQ(site.Field("Quay/X", "east"), 1);
}

TEST(Add, NameThatIsThereAlreadyIsToldOf) {
    const Site site;
    const Outcome point = site.Run({"add", "site.gpsbook", "Quay", "name=P2"});
    EXPECT_EQ(point.exitCode, 0) << point;
    EXPECT_NE(point.err.find("there is another \"P2\" at #1"), std::string::npos) << point;
    const Outcome group = site.Run({"add", "site.gpsbook", "name=Pier"});
    EXPECT_EQ(group.exitCode, 0) << group;
    EXPECT_NE(group.err.find("there is another \"Pier\" at #1"), std::string::npos) << group;
}

TEST(Add, WhatCannotBeIsRefusedAndChangesNothing) {
    const Site site;
    using A = std::vector<std::string>;
    const std::tuple<A, int, const char*> rows[] = {
        {{"Quay", "lat=45"}, 2, "no name is given; give one like name=P1"},
        {{"Quay", "name="}, 2, "no name is given"},
        {{"name=X", "lat=45"}, 2, "\"lat\" is no field of a group"},
        {{"Quay", "name=X", "lat=95"}, 2, "lat: 95 is outside"},
        {{"Quay", "Pier", "name=X"}, 2, "\"Pier\": a point is added to one group"},
        {{"Quay/P1", "name=X"}, 2, "\"Quay/P1\" is a point; give a group"},
        {{"Quay", "name=X", "--at", "5"}, 2, "--at: \"5\" is no position here; give 0 to 4"},
        {{"name=X", "--at", "-1"}, 2, "--at"},
        {{"name=X", "crs=EPSG:4326"}, 2, "crs: "},
        {{"Mole", "name=X"}, 5, "there is no group \"Mole\""}};
    for (const auto& [words, code, message] : rows) {
        A arguments{"add", "site.gpsbook"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        site.ExpectRefused(arguments, code, message);
    }
}

}  // namespace
}  // namespace gpsbook::test
