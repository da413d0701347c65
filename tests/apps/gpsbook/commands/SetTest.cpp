// gpsbook set: fields of groups and points.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

TEST(Set, SeveralFieldsOfAPointAreChangedAtOnce) {
    const Site site;
    const Outcome outcome = site.Run(
        {"set", "site.gpsbook", "Quay/P1", "code=KERB", "antenna=1.5", "time=2024-05-01T10:00:00+02:00"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "Quay/P1: code \"\" -> \"KERB\"\n"
              "Quay/P1: antenna 2.0000 metres -> 1.5000 metres\n"
              "Quay/P1: height 61.0000 metres -> 61.5000 metres\n")
        << "the time is the one it had";
    const auto fields = site.Show("Quay/P1")["fields"];
    EXPECT_EQ(fields["code"], "KERB");
    EXPECT_EQ(fields["antenna"], 1.5);
    EXPECT_EQ(fields["time"], "2024-05-01T08:00:00.000Z");
    EXPECT_NEAR(fields["height"].get<double>(), 61.5, 1e-9);
}

TEST(Set, FieldsOfAGroupAreChanged) {
    const Site site;
    const Outcome outcome = site.Run({"set", "site.gpsbook", "#1", "name=Mole", "operator=A. Verdi",
                                      "survey_type=3", "base_lat=45.7", "notes=a=b"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.Groups(), "Quay Mole");
    const auto fields = site.Show("Mole")["fields"];
    EXPECT_EQ(fields["entity_name"], "Mole") << "the entity gets the name, too";
    EXPECT_EQ(fields["operator"], "A. Verdi");
    EXPECT_EQ(fields["survey_type"], 3);
    EXPECT_EQ(fields["base_lat"], 45.7);
    EXPECT_EQ(fields["notes"], "a=b");
    EXPECT_NE(outcome.err.find("no usable conversion"), std::string::npos)
        << "the base's plane coordinates could not follow\n"
        << outcome;
}

TEST(Set, ManyPointsGetOneValue) {
    const Site site;
    const auto json =
        JsonOf(site.Run({"set", "site.gpsbook", "Quay/#1..", "Quay/P2", "antenna=1.8", "--json"}));
    EXPECT_EQ(json["asked"], 3);
    EXPECT_EQ(json["saved"], true);
    ASSERT_EQ(json["changed"].size(), 3U);
    EXPECT_EQ(json["changed"][0]["group"], 0);
    EXPECT_EQ(json["changed"][0]["point"], 1);
    EXPECT_EQ(json["changed"][0]["name"], "Quay/P2");
    EXPECT_EQ(json["changed"][0]["fields"]["antenna"]["before"], 2.0);
    EXPECT_EQ(json["changed"][0]["fields"]["antenna"]["after"], 1.8);
    EXPECT_EQ(site.Field("Quay/P1", "antenna"), 2.0);
    EXPECT_EQ(site.Field("Quay/P4", "antenna"), 1.8);
}

TEST(Set, ValuesAreTakenAway) {
    const Site site;
    EXPECT_EQ(site.Run({"set", "site.gpsbook", "Quay/P1", "lat=", "time=unset"}).exitCode, 0);
    const auto fields = site.Show("Quay/P1")["fields"];
    EXPECT_TRUE(fields["lat"].is_null());
    EXPECT_TRUE(fields["time"].is_null());
    EXPECT_TRUE(fields["east"].is_null()) << "plane coordinates follow";
}

TEST(Set, SystemGivesAllPointsPlaneCoordinates) {
    const Site site;
    ASSERT_EQ(
        site.Run({"set", "site.gpsbook", "Pier/A", "lat=45.65", "lon=13.76", "h=63", "antenna=2"}).exitCode,
        0);
    EXPECT_TRUE(site.Field("Pier/A", "east").is_null());
    const Outcome outcome = site.Run({"set", "site.gpsbook", "Pier", "crs=EPSG:32633"});
    EXPECT_NE(outcome.out.find("Pier: crs unset -> EPSG:32633\n"), std::string::npos) << outcome;
    EXPECT_NE(outcome.out.find("plane coordinates of 2 points computed anew\n"), std::string::npos)
        << outcome;
    EXPECT_EQ(site.Field("Pier/A", "east"), site.Field("Quay/P1", "east"));
}

TEST(Set, PlaneCoordinatesAreKeptWhenAsked) {
    const Site site;
    const auto east = site.Field("Quay/P1", "east");
    EXPECT_EQ(site.Run({"set", "site.gpsbook", "Quay/P1", "lon=13.77", "--keep-plane"}).exitCode, 0);
    EXPECT_EQ(site.Field("Quay/P1", "east"), east);
}

TEST(Set, TryingChangesNothingAndSameValuesSaveNothing) {
    const Site site;
    const std::string bytes = site.Bytes();
    const Outcome tried = site.Run({"set", "site.gpsbook", "Quay/P1", "code=KERB", "--dry-run"});
    EXPECT_EQ(tried.exitCode, 0) << tried;
    EXPECT_EQ(tried.out, "Quay/P1: code \"\" -> \"KERB\"\nnot saved (--dry-run)\n");
    EXPECT_TRUE(site.Bytes() == bytes);
    const Outcome same = site.Run({"set", "site.gpsbook", "Quay/P1", "antenna=2"});
    EXPECT_EQ(same.exitCode, 0) << same;
    EXPECT_EQ(same.out, "nothing changed: the values are those of before\n");
    EXPECT_TRUE(site.Bytes() == bytes);
    EXPECT_EQ(site.Names(), std::vector<std::string>{"site.gpsbook"}) << "no backup of what did not change";
}

TEST(Set, WhatCannotBeIsRefusedAndChangesNothing) {
    const Site site;
    using A = std::vector<std::string>;
    const std::tuple<A, int, const char*> rows[] = {
        {{"Quay/P1", "lat=95"}, 2, "lat: 95 is outside -90 to 90 degrees; check the unit"},
        {{"Quay/P1", "lon=-180.1"}, 2, "lon: -180.1 is outside -180 to 180"},
        {{"Quay/P1", "antenna=101"}, 2, "antenna: 101 is outside 0 to 100 metres"},
        {{"Quay/P1", "hrms=-0.1"}, 2, "hrms: -0.1 is outside 0"},
        {{"Quay/P1", "gps=256"}, 2, "gps: 256 is outside 0 to 255"},
        {{"Quay/P1", "lat=45,6"}, 2, "lat: \"45,6\" is not a number"},
        {{"Quay/P1", "time=noon"}, 2, "time: \"noon\" is not a time; write it like"},
        {{"Quay/P1", "quality="}, 2, "quality: always has a value"},
        {{"Quay/P1", "name=a;b"}, 2, "name: a text cannot hold ';'"},
        {{"Quay/P1", "notes=two\nlines"}, 2, "notes: a text cannot hold line breaks"},
        {{"Quay/P1", "code=\xFF"}, 2, "code: the text is not UTF-8"},
        {{"Quay/P1", "code=X", "antena=1"}, 2, "\"antena\" is no field of a point; is it antenna?"},
        {{"Quay/P1", "code=X", "code=Y"}, 2, "code: given twice"},
        {{"Quay", "lat=45"}, 2, "\"lat\" is no field of a group"},
        {{"Quay", "crs=EPSG:4326"}, 2, "crs: "},
        {{"Quay", "Quay/P1", "lat=45"}, 2, "\"lat\" is no field of a group"},
        {{"Quay/#0..", "name=X"}, 2, "name: the same name for several"},
        {{"code=X"}, 2, "no group or point is named"},
        {{"Quay/P1"}, 2, "no field is given; give one like antenna=1.800"},
        {{"Quay/P9", "code=X"}, 5, "group Quay has no point \"P9\"; is it"},
        {{"Quay/P1", "Mole", "code=X"}, 5, "there is no group \"Mole\""},
        {{"#2", "code=X"}, 5, "there is no group #2; the book has 2 groups, #0 to #1"}};
    for (const auto& [words, code, message] : rows) {
        A arguments{"set", "site.gpsbook"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        site.ExpectRefused(arguments, code, message);
    }
}

}  // namespace
}  // namespace gpsbook::test
