// gpsbook compute: plane coordinates from fixes, and back.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/book/SmallBook.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using gpsproject::Project;
using nlohmann::json;

/// The site with P2 without plane coordinates and P3 with wrong ones.
void Spoil(Project& project) {
    project.GetBook().GetPunAt(0, 1)->SetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    project.GetBook().GetPunAt(0, 2)->SetCoord(1, 2, 3);
}

double Value(const Site& site, const std::string& address, const std::string& field) {
    const json value = site.Field(address, field);
    EXPECT_TRUE(value.is_number()) << address << ' ' << field << ' ' << value;
    return value.is_number() ? value.get<double>() : 0;
}

TEST(Compute, WholeBookGetsItsPlaneCoordinatesAndCountsThem) {
    const Site whole;
    const Site site(Spoil);
    const Outcome outcome = site.Run({"compute", "site.gpsbook"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "Pier: no usable conversion; left as it is\n"
              "site.gpsbook: 4 points with plane coordinates (1 gained, 1 changed), 0 without (0 lost)\n");
    for (const char* point : {"Quay/P2", "Quay/P3"})
        for (const char* field : {"east", "north", "height"})
            EXPECT_EQ(site.Field(point, field), whole.Field(point, field)) << point << ' ' << field;
}

TEST(Compute, OnePointOrOneGroupLeavesTheOthersAlone) {
    const Site site(Spoil);
    const json point = JsonOf(site.Run({"compute", "site.gpsbook", "Quay/P2", "--json"}));
    EXPECT_EQ(point,
              json::parse(R"({"book":"site.gpsbook","reverse":false,"computed":1,"without":0,"gained":1,
                                     "changed":0,"lost":0,"no_conversion":[],"saved":true})"));
    EXPECT_EQ(Value(site, "Quay/P3", "east"), 1);
    const json group = JsonOf(site.Run({"compute", "site.gpsbook", "Quay", "Quay/P3", "--json"}));
    EXPECT_EQ(group["computed"], 4) << "a point of a named group is not counted twice";
    EXPECT_EQ(group["changed"], 1);
    EXPECT_GT(Value(site, "Quay/P3", "east"), 1e5);
}

TEST(Compute, NothingIsSavedWhenNothingChanges) {
    const Site site;
    const std::string bytes = site.Bytes();
    const Outcome outcome = site.Run({"compute", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("(0 gained, 0 changed)"), std::string::npos) << outcome;
    EXPECT_NE(outcome.out.find("not saved again"), std::string::npos) << outcome;
    EXPECT_TRUE(site.Bytes() == bytes);
    EXPECT_EQ(site.Names(), std::vector<std::string>{"site.gpsbook"});
}

TEST(Compute, BaseOfAGroupIsComputedWithItsPoints) {
    const Site site([](Project& project) {
        CGrpGps& group = *project.GetBook().GetGrpAt(0);
        group.SetBaseLat(45.65);
        group.SetBaseLong(13.76);
        group.SetBaseElev(63);
        group.SetBaseAltAnt(2);
    });
    const json told = JsonOf(site.Run({"compute", "site.gpsbook", "Quay", "--json"}));
    EXPECT_EQ(told["gained"], 1);
    EXPECT_EQ(told["computed"], 5);
    for (const char* field : {"east", "north", "height"})
        EXPECT_EQ(site.Field("Quay", field), site.Field("Quay/P1", field)) << field;
}

TEST(Compute, ReverseGivesTheFixThatThePlaneCoordinatesCameFrom) {
    const Site site([](Project& project) {
        CPunGps& point = *project.GetBook().GetPunAt(0, 1);
        for (auto set : {&CPunGps::SetLat, &CPunGps::SetLong, &CPunGps::SetElev}) (point.*set)(GPS_VAL_UNSET);
    });
    const Outcome outcome = site.Run({"compute", "site.gpsbook", "Quay/P2", "--reverse"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "site.gpsbook: 1 point with latitude, longitude and height (1 gained, 0 changed), 0 without (0 "
              "lost)\n");
    EXPECT_NEAR(Value(site, "Quay/P2", "lat"), 45.6501, 1e-10);
    EXPECT_NEAR(Value(site, "Quay/P2", "lon"), 13.76, 1e-10);
    EXPECT_NEAR(Value(site, "Quay/P2", "h"), 64, 1e-6);
}

TEST(Compute, CoordinatesAreLostOnlyWhenThatIsAllowed) {
    const Site site([](Project& project) {
        project.GetBook().GetPunAt(0, 1)->SetAltAnt(GPS_VAL_UNSET);
        project.GetBook().GetPunAt(0, 2)->SetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    });
    site.ExpectRefused({"compute", "site.gpsbook"}, 1, "1 point would lose plane coordinates (Quay/P2)");
    site.ExpectRefused({"compute", "site.gpsbook", "Quay/P2"}, 1, "--allow-loss");
    site.ExpectRefused({"compute", "site.gpsbook", "--reverse"}, 1,
                       "2 points would lose latitude, longitude and height (Quay/P2, Quay/P3)");
    const json told = JsonOf(site.Run({"compute", "site.gpsbook", "--allow-loss", "--json"}));
    EXPECT_EQ(told["lost"], 1);
    EXPECT_EQ(told["gained"], 1);
    EXPECT_TRUE(site.Field("Quay/P2", "east").is_null());
}

TEST(Compute, GroupWithoutAConversionKeepsWhatItHas) {
    const Site site([](Project& project) { project.GetBook().GetPunAt(1, 0)->SetCoord(1, 2, 3); });
    for (const char* place : {"Pier", "Pier/A"}) {
        const json told = JsonOf(site.Run({"compute", "site.gpsbook", place, "--json"}));
        EXPECT_EQ(told["no_conversion"], json::array({"Pier"})) << place;
        EXPECT_EQ(told["saved"], false);
        EXPECT_EQ(Value(site, "Pier/A", "east"), 1);
    }
}

TEST(Compute, WhatIsNotThereIsRefused) {
    const Site site;
    site.ExpectRefused({"compute", "site.gpsbook", "Peer"}, 5, "Pier");
    site.ExpectRefused({"compute", "site.gpsbook", "Quay/P9"}, 5, "P9");
    site.ExpectRefused({"compute", "site.gpsbook", "Quay", "--sideways"}, 2, "--sideways");
    EXPECT_EQ(site.Run({"compute", "gone.gpsbook"}).exitCode, 5);
}

}  // namespace
}  // namespace gpsbook::test
