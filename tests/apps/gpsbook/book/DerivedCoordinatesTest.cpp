// Every form of a measured position.
#include "apps/gpsbook/book/DerivedCoordinates.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

// On the equator at Greenwich a height of h is X = 6378137 + h.
TEST(DerivedCoordinates, PhaseCentreAndGroundMarkDifferByTheAntenna) {
    SmallBook book;
    CGrpGps& group = book.Group("Quay", {"P1"});
    CPunGps& point = *book.lib.GetPunAt(0, 0);
    SetFix(point, 0, 0, 100, 1.5);
    point.SetGrafBase(0, 90, 7);
    const auto json = DerivedJson(DerivedOf(point, group));
    EXPECT_EQ(json["phase_centre"]["measured"]["geographic"]["h"], 100);
    EXPECT_NEAR(json["phase_centre"]["measured"]["geocentric"]["x"].get<double>(), 6378237, 1e-6);
    EXPECT_NEAR(json["phase_centre"]["wgs84"]["geocentric"]["x"].get<double>(), 6378237, 1e-6);
    EXPECT_EQ(json["ground_mark"]["measured"]["geographic"]["h"], 98.5);
    EXPECT_NEAR(json["ground_mark"]["measured"]["geocentric"]["x"].get<double>(), 6378235.5, 1e-6);
    EXPECT_NEAR(json["ground_mark"]["wgs84"]["geographic"]["h"].get<double>(), 98.5, 1e-6);
    EXPECT_NEAR(json["base"]["measured"]["geocentric"]["y"].get<double>(), 6378144, 1e-6);
}

TEST(DerivedCoordinates, MeasuredDatumIsBroughtToWgs84) {
    SmallBook book;
    CGrpGps& group = book.Group("Quay", {"P1"});
    group.GetConvCoord()->SetTpDtBaseGps(CConvCoord::dtProprio);
    group.GetConvCoord()->GetConvDtBaseGps()->SetCoeffToStd(10, 0, 0, 0, 0, 0, 0);  // metres along X
    CPunGps& point = *book.lib.GetPunAt(0, 0);
    SetFix(point, 0, 0, 100, 1.5);
    group.SetBaseLat(0);
    group.SetBaseLong(0);
    group.SetBaseElev(50);
    group.SetBaseAltAnt(2);
    const auto json = DerivedJson(DerivedOf(point, group));
    EXPECT_NEAR(json["phase_centre"]["wgs84"]["geographic"]["h"].get<double>(), 110, 1e-6);
    EXPECT_NEAR(json["ground_mark"]["wgs84"]["geocentric"]["x"].get<double>(), 6378245.5, 1e-6);
    EXPECT_EQ(json["phase_centre"]["measured"]["geographic"]["h"], 100);
    const auto base = DerivedJson(DerivedOf(group));
    EXPECT_NEAR(base["ground_mark"]["wgs84"]["geographic"]["h"].get<double>(), 58, 1e-6);
    EXPECT_NEAR(base["phase_centre"]["measured"]["geocentric"]["x"].get<double>(), 6378187, 1e-6);
}

TEST(DerivedCoordinates, WhatIsIncompleteIsNull) {
    SmallBook book;
    CGrpGps& group = book.Group("Quay", {"P1"});
    CPunGps& point = *book.lib.GetPunAt(0, 0);
    SetFix(point, 0, 0, 100, GPS_VAL_UNSET);
    auto json = DerivedJson(DerivedOf(point, group));
    EXPECT_FALSE(json["phase_centre"]["wgs84"]["geocentric"]["x"].is_null());
    EXPECT_TRUE(json["ground_mark"]["measured"]["geographic"]["h"].is_null());
    EXPECT_TRUE(json["ground_mark"]["wgs84"]["geocentric"]["z"].is_null());
    EXPECT_TRUE(json["base"]["measured"]["geocentric"]["x"].is_null());
    group.SetBaseLat(45);  // a base of which only the latitude is known has no geocentric position
    json = DerivedJson(DerivedOf(group));
    EXPECT_TRUE(json["phase_centre"]["measured"]["geocentric"]["x"].is_null());
    EXPECT_TRUE(json["phase_centre"]["wgs84"]["geographic"]["lat"].is_null());
    EXPECT_EQ(json["phase_centre"]["measured"]["geographic"]["lat"], 45);
}

TEST(DerivedCoordinates, TextHasALineAForm) {
    SmallBook book;
    CGrpGps& group = book.Group("Quay", {"P1"});
    SetFix(*book.lib.GetPunAt(0, 0), 0, 0, 100, 1.5);
    const std::string text = DerivedText(DerivedOf(*book.lib.GetPunAt(0, 0), group));
    for (const char* line : {"  phase centre, measured datum: lat 0.000000000, lon 0.000000000, h 100.0000\n",
                             "  ground mark, WGS 84: X 6378235.5000, Y 0.0000, Z 0.0000\n",
                             "  base, measured datum: no position\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

}  // namespace
}  // namespace gpsbook::test
