// gpsbook convert: the figures of the table, against PROJ and against what stands in the log.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/apps/gpsbook/commands/Gpsbook.h"
#include "tests/apps/gpsbook/commands/Logs.h"
#include "tests/host/coord/ProjPeer.h"

namespace gpsbook::test {
namespace {

using gpstest::ProjPeer;
using gpstest::Triple;

constexpr double kPrinted = 1e-4;  // metres: the last decimal of the table, and the bound of the conversion

CsvRows Table(const Outcome& outcome) {
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    return RowsOf(outcome.out);
}

std::string ThreeLines() {
    return Rmc("080000.00", "010524") +
           Sentence(
               "GNGGA,080000.00,4539.00000000,N,01345.60000000,E,4,12,0.8,18.0000,M,45.0000,M,1.0,0001") +
           Sentence(
               "GNGGA,080001.25,4539.12345678,N,01345.98765432,E,5,11,0.9,20.1234,M,44.5000,M,1.0,0001") +
           Sentence("GNGGA,080002.00,4730.00000000,N,01215.00000000,E,2,9,1.1,55.5000,M,45.0000,M,,");
}

// With an antenna of 2 m; worked out by
//   printf '45.65 13.76 61\n45.652057613 13.766460905333333 62.6234\n47.5 12.25 98.5\n' |
//       cs2cs -f %.6f EPSG:4326 EPSG:32633
constexpr double kEast[] = {403380.498892, 403887.444172, 292894.915727};
constexpr double kNorth[] = {5055908.982184, 5056129.810082, 5264395.476275};
constexpr double kHeight[] = {61.0, 62.6234, 98.5};

TEST(ConvertValues, PlaneCoordinatesAreThoseOfProj) {
    const Workplace place;
    place.Put("a.nmea", ThreeLines());
    const CsvRows rows = Table(place.Convert({"a.nmea", "--antenna", "2.000"}));
    ASSERT_EQ(rows.size(), 3U);
    const double lat[] = {45 + 39.0 / 60, 45 + 39.12345678 / 60, 47.5};
    const double lon[] = {13 + 45.6 / 60, 13 + 45.98765432 / 60, 12.25};
    const ProjPeer proj = ProjPeer::Systems("EPSG:4326", "EPSG:32633");
    for (std::size_t i = 0; i < 3; ++i) {
        Triple plane;
        ASSERT_TRUE(proj.Forward(lat[i], lon[i], kHeight[i], plane)) << i;
        const Triple table{NumberOf(rows[i], "east"), NumberOf(rows[i], "north"),
                           NumberOf(rows[i], "height")};
        EXPECT_TRUE(gpstest::Near(table, plane, kPrinted)) << i;
        EXPECT_TRUE(gpstest::Near(table, {kEast[i], kNorth[i], kHeight[i]}, kPrinted)) << i;
        EXPECT_NEAR(NumberOf(rows[i], "lat"), lat[i], 0.6e-9) << i;
        EXPECT_NEAR(NumberOf(rows[i], "lon"), lon[i], 0.6e-9) << i;
        EXPECT_NEAR(NumberOf(rows[i], "h"), kHeight[i] + 2, 0.6e-4) << i;
        EXPECT_EQ(rows[i].at("antenna"), "2.0000") << i;
    }
    EXPECT_EQ(rows[1].at("time"), "2024-05-01T08:00:01.250Z");
    EXPECT_EQ(rows[1].at("quality"), "5");
    EXPECT_EQ(rows[1].at("gps"), "11");
    EXPECT_EQ(rows[1].at("pdop") + rows[1].at("hrms") + rows[1].at("vrms"), "") << "unset is empty";
}

TEST(ConvertValues, MarkerHeightsAreThoseOfTheGround) {
    const Workplace place;
    place.Put("a.nmea", ThreeLines());
    const CsvRows rows = Table(place.Convert({"a.nmea", "--heights", "marker", "--antenna", "2.000"}));
    ASSERT_EQ(rows.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(NumberOf(rows[i], "h"), kHeight[i] + 4, 0.6e-4) << "of the phase centre: " << i;
        EXPECT_NEAR(NumberOf(rows[i], "height"), kHeight[i] + 2, 0.6e-4) << "as the log says: " << i;
        EXPECT_NEAR(NumberOf(rows[i], "east"), kEast[i], kPrinted) << i;
    }
}

TEST(ConvertValues, SystemOfAnotherDatumIsReachedAsByProj) {
    const Workplace place;
    place.Put("a.nmea", ThreeLines());
    const Outcome outcome = place.Run({"convert", "a.nmea", "--crs", "EPSG:3004"});
    const CsvRows rows = Table(outcome);
    ASSERT_EQ(rows.size(), 3U);
    const ProjPeer proj = ProjPeer::Systems("EPSG:4326", "EPSG:3004");
    Triple plane;
    ASSERT_TRUE(proj.Forward(45.65, 13.76, 63, plane));
    EXPECT_NEAR(NumberOf(rows[0], "east"), plane.a, kPrinted);
    EXPECT_NEAR(NumberOf(rows[0], "north"), plane.b, kPrinted);
    Triple sameDatum;
    ASSERT_TRUE(ProjPeer::Operation("+proj=tmerc +lon_0=15 +k=0.9996 +x_0=2520000 +ellps=intl")
                    .Forward(45.65, 13.76, 63, sameDatum));
    EXPECT_GT(std::hypot(plane.a - sameDatum.a, plane.b - sameDatum.b), 10)
        << "there is no datum step to see";
}

struct PosKind {
    const char* name;
    const char* kind;
    const char* titles;
    const char* row;  // the same place in each
};

// The place 45.6504 N, 13.7605 E, 64.5 m from the base 45.65 N, 13.76 E, 60 m:
//   echo '13.7605 45.6504 64.5' | cct -d 4 +proj=cart +ellps=WGS84
//   echo '13.7605 45.6504 64.5' | cct -d 9 +proj=pipeline +step +proj=cart +ellps=WGS84
//       +step +proj=topocentric +ellps=WGS84 +lon_0=13.76 +lat_0=45.65 +h_0=60
//   echo '45.6504 13.7605 64.5' | cs2cs -f %.6f EPSG:4326 EPSG:32633
TEST(ConvertValues, AllThreeKindsOfPosGiveTheSamePoint) {
    const PosKind kinds[] = {
        {"geographic", "lat/lon/height=WGS84/ellipsoidal", "latitude(deg) longitude(deg) height(m)",
         "45.650400000 13.760500000 64.5000"},
        {"geocentric", "x/y/z-ecef=WGS84", "x-ecef(m) y-ecef(m) z-ecef(m)",
         "4338046.6345 1062355.8863 4538216.0033"},
        {"baseline", "e/n/u-baseline=WGS84", "e-baseline(m) n-baseline(m) u-baseline(m)",
         "38.9752 44.4584 4.4997"},
    };
    for (const PosKind& kind : kinds) {
        const Workplace place;
        const std::string tail = " 2 15 0.0300 0.0300 0.0500 0.0000 0.0000 0.0000 1.00 9.9\n";
        const std::string calendar = "2024/05/01 08:00:18.000 " + std::string(kind.row) + tail;
        const std::string week = "2312 288019.500 " + std::string(kind.row) + tail;
        place.Put("a.pos", PosFile(kind.kind, kind.titles, "45.65 13.76 60.0", calendar + week));
        const Outcome outcome = place.Convert({"a.pos", "--antenna", "1.5"});
        const CsvRows rows = Table(outcome);
        ASSERT_EQ(rows.size(), 2U) << kind.name << '\n' << outcome;
        for (const auto& row : rows) {
            EXPECT_NEAR(NumberOf(row, "east"), 403420.145817, 2e-4) << kind.name;
            EXPECT_NEAR(NumberOf(row, "north"), 5055952.819071, 2e-4) << kind.name;
            EXPECT_NEAR(NumberOf(row, "height"), 63.0, 2e-4) << kind.name;
            EXPECT_NEAR(NumberOf(row, "h"), 64.5, 2e-4) << kind.name;
            EXPECT_EQ(row.at("quality"), "2") << kind.name;
        }
        EXPECT_EQ(rows[0].at("time"), "2024-05-01T08:00:00.000Z") << "GPS time is 18 s ahead of UTC";
        EXPECT_EQ(rows[1].at("time"), "2024-05-01T08:00:01.500Z");
        if (std::string(kind.name) != "geocentric") {  // its sigmas are those of other axes
            EXPECT_EQ(rows[0].at("hrms"), "0.0424") << kind.name;
            EXPECT_EQ(rows[0].at("vrms"), "0.0500") << kind.name;
        }
        EXPECT_NE(outcome.err.find("2 of quality 2 (float)"), std::string::npos) << outcome;
    }
}

TEST(ConvertValues, PrecisionAndSatellitesOfTheEpochGoToTheTable) {
    const Workplace place;
    place.Put("a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4) +
                            Sentence("GNGST,080000.00,1.0,0.03,0.02,30.0,0.03,0.04,0.12") +
                            Sentence("GNGSA,A,3,01,02,03,04,05,,,,,,,,1.50,0.80,1.20,1") +
                            Sentence("GNGSA,A,3,65,66,67,,,,,,,,,,1.50,0.80,1.20,2"));
    const CsvRows rows = Table(place.Convert({"a.nmea"}));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].at("gps"), "5");
    EXPECT_EQ(rows[0].at("glonass"), "3");
    EXPECT_EQ(rows[0].at("pdop"), "1.50");
    EXPECT_EQ(rows[0].at("hrms"), "0.0500");
    EXPECT_EQ(rows[0].at("vrms"), "0.1200");
}

}  // namespace
}  // namespace gpsbook::test
