#include "apps/gpsbook/readers/PosHeader.h"

#include <gtest/gtest.h>

#include "platform/coord/CEllissoide.h"

namespace gpsbook {
namespace {

TEST(PosHeader, TitlesNameCoordinatesAndTimeScale) {
    struct Row {
        const char* line;
        PosCoordinates coordinates;
        PosTimeScale scale;
    };
    const Row rows[] = {
        {"%  GPST                  latitude(deg) longitude(deg)  height(m)   Q", PosCoordinates::geographic,
         PosTimeScale::gpst},
        {"%  UTC                   latitude(d'\") longitude(d'\")  height(m)   Q",
         PosCoordinates::geographicDms, PosTimeScale::utc},
        {"%  JST                      x-ecef(m)      y-ecef(m)      z-ecef(m)   Q",
         PosCoordinates::geocentric, PosTimeScale::jst},
        {"%GPST,e-baseline(m),n-baseline(m),u-baseline(m),Q", PosCoordinates::baseline, PosTimeScale::gpst},
        {"%  BDT   x-ecef(m)", PosCoordinates::geocentric, PosTimeScale::unknown},
    };
    for (const Row& row : rows) {
        PosHeader header;
        EXPECT_TRUE(PosHeader::Knows(row.line)) << row.line;
        EXPECT_FALSE(header.Take(row.line)) << row.line;
        EXPECT_EQ(header.coordinates, row.coordinates) << row.line;
        EXPECT_EQ(header.timeScale, row.scale) << row.line;
    }
}

TEST(PosHeader, TitlesNameTheLastColumns) {
    PosHeader header;
    header.Take(
        "%  GPST x-ecef(m) y-ecef(m) z-ecef(m) Q ns sdx(m) sdy(m) sdz(m) sdxy(m) sdyz(m) sdzx(m) age(s)  "
        "ratio");
    EXPECT_TRUE(header.hasAge);
    EXPECT_TRUE(header.hasRatio);
    header.Take("%  GPST x-ecef(m) y-ecef(m) z-ecef(m) Q ns sdx(m) sdy(m) sdz(m) sdxy(m) sdyz(m) sdzx(m)");
    EXPECT_FALSE(header.hasAge);
    EXPECT_FALSE(header.hasRatio);
}

TEST(PosHeader, TheLineInBracketsNamesDatumAndHeight) {
    PosHeader header;
    header.Take("% (lat/lon/height=WGS84/ellipsoidal,Q=1:fix,2:float)");
    EXPECT_EQ(header.coordinates, PosCoordinates::geographic);
    EXPECT_TRUE(header.isWgs84);
    EXPECT_TRUE(header.isEllipsoidal);
    header.Take("% (lat/lon/height=Tokyo/geodetic,Q=1:fix,2:float)");
    EXPECT_FALSE(header.isWgs84);
    EXPECT_FALSE(header.isEllipsoidal);
    header.Take("% (x/y/z-ecef=WGS84,Q=1:fix,2:float)");
    EXPECT_EQ(header.coordinates, PosCoordinates::geocentric);
    EXPECT_TRUE(header.isEllipsoidal);
    header.Take("% (e/n/u-baseline=WGS84,Q=1:fix,2:float)");
    EXPECT_EQ(header.coordinates, PosCoordinates::baseline);
}

TEST(PosHeader, ReferencePositionsComeInThreeForms) {
    const struct {
        const char* name;
        const char* line;
        double lat;
        double lon;
        double height;
    } rows[] = {
        {"degrees", "% ref pos   : 35.134709483  136.977574275   104.7280", 35.134709483, 136.977574275,
         104.728},
        {"no blank before minus", "% ref pos   : 40.086179918-105.206044414 1575.6355", 40.086179918,
         -105.206044414, 1575.6355},
        {"no blank at all", "% ref pos   :-40.086179918-105.206044414-12.6355", -40.086179918, -105.206044414,
         -12.6355},
        {"minutes and seconds", "% ref pos   :  35 08 04.95414  136 58 39.26739  104.7280",
         35 + 8 / 60.0 + 4.95414 / 3600, 136 + 58 / 60.0 + 39.26739 / 3600, 104.728},
        {"minutes and seconds south and west of zero",
         "% ref pos   :  -0 08 04.95414   -0 58 39.26739  104.7280", -(8 / 60.0 + 4.95414 / 3600),
         -(58 / 60.0 + 39.26739 / 3600), 104.728},
    };
    for (const auto& row : rows) {
        PosHeader header;
        EXPECT_FALSE(header.Take(row.line)) << row.name;
        ASSERT_TRUE(header.hasBase) << row.name;
        EXPECT_DOUBLE_EQ(header.baseLat, row.lat) << row.name;
        EXPECT_DOUBLE_EQ(header.baseLon, row.lon) << row.name;
        EXPECT_DOUBLE_EQ(header.baseHeight, row.height) << row.name;
    }
}

TEST(PosHeader, LongReferenceVectorsAreGeocentric) {
    PosHeader header;
    EXPECT_FALSE(header.Take("% ref pos   :  3654410.0348   1407752.4780   5017576.9176"));
    ASSERT_TRUE(header.hasBase);
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    CEllissoide().GrafToGeoc(header.baseLat, header.baseLon, header.baseHeight, x, y, z);
    EXPECT_NEAR(x, 3654410.0348, 1e-6);
    EXPECT_NEAR(y, 1407752.4780, 1e-6);
    EXPECT_NEAR(z, 5017576.9176, 1e-6);
    EXPECT_NEAR(header.baseLat, 52.2, 0.1);
    EXPECT_NEAR(header.baseLon, 21.1, 0.1);
}

TEST(PosHeader, AntennaLinesGiveTheUpComponent) {
    PosHeader header;
    EXPECT_FALSE(header.Take("% antenna1  : TRM57971.00 (spike) ( 0.0010 -0.0020  1.5432)"));
    EXPECT_FALSE(header.Take("% antenna2  :                       ( 0.0000  0.0000  0.1010)"));
    EXPECT_DOUBLE_EQ(header.roverAntenna, 1.5432);
    EXPECT_DOUBLE_EQ(header.baseAntenna, 0.101);
}

TEST(PosHeader, DamagedLinesAreReportedAndTellNothing) {
    for (const char* line :
         {"% ref pos   : 35.13  136.97", "% ref pos   : 35.13  136.97 104.7 9", "% ref pos   :",
          "% ref pos   : 35.13  abc 104.7", "% ref pos   : 95.0 10.0 0.0", "% ref pos   : 45.0 190.0 0.0",
          "% ref pos   : 35 60 04.9 136 58 39.2 104.7", "% ref pos   : 1 2 3 4 5 6 7 8", "% antenna1  : 1.5",
          "% antenna1  : ( 0.0 0.0 )", "% antenna2  : ( 0.0 0.0 x )", "% antenna2  : ) 0.0 0.0 1.0 ("}) {
        PosHeader header;
        const auto fault = header.Take(line);
        ASSERT_TRUE(fault) << line;
        EXPECT_EQ(fault->reason, Reason::badNumber) << line;
        EXPECT_FALSE(header.hasBase) << line;
        EXPECT_FALSE(IsCoordValid(header.baseAntenna)) << line;
        EXPECT_FALSE(IsCoordValid(header.roverAntenna)) << line;
    }
}

TEST(PosHeader, OtherLinesAreComments) {
    for (const char* line :
         {"%", "% ", "% inp file  : rover.obs", "% pos mode  : Kinematic", "% antenna3 : (1 2 3)"}) {
        EXPECT_FALSE(PosHeader::Knows(line)) << line;
        PosHeader header;
        EXPECT_FALSE(header.Take(line)) << line;
        EXPECT_EQ(header.coordinates, PosCoordinates::unknown) << line;
    }
    EXPECT_TRUE(PosHeader::Knows("% program   : RTKPOST"));
}

}  // namespace
}  // namespace gpsbook
