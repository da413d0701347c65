#include "apps/gpsbook/readers/PosReader.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "platform/coord/CEllissoide.h"
#include "tests/apps/gpsbook/readers/Collector.h"

namespace gpsbook {
namespace {

using test::Collector;

Collector Read(const std::string& log) {
    Collector sink;
    PosReader reader(sink);
    reader.Feed(log);
    reader.Finish();
    return sink;
}

const std::string kLlh =
    "%  GPST  latitude(deg) longitude(deg)  height(m)   Q  ns   sdn(m)   sde(m)   sdu(m)  sdne(m)  sdeu(m)  "
    "sdun(m) "
    "age(s)  ratio\n";
const std::string kDms = "%  GPST  latitude(d'\") longitude(d'\")  height(m)   Q  ns  sdn(m) age(s)  ratio\n";
const std::string kXyz = "%  GPST  x-ecef(m)  y-ecef(m)  z-ecef(m)   Q  ns   sdx(m) age(s)  ratio\n";
const std::string kEnu =
    "%  GPST  e-baseline(m)  n-baseline(m)  u-baseline(m)   Q  ns   sde(m) age(s)  ratio\n";
const std::string kTime = "2024/06/24 08:20:00.000 ";
const std::string kSigmas = " 0.0024 0.0024 0.0069 0.0008 -0.0013 -0.0024 ";
const std::string kEnd = "0.00 12.0\n";
const std::string kPlace = "35.134699011 136.977575483 104.8619 ";

void ExpectTime(const Epoch& e, const std::string& date, std::uint32_t todMs) {
    EXPECT_EQ(fmt::format("{:04}-{:02}-{:02}", e.year, e.month, e.day), date);
    EXPECT_EQ(e.todMs, todMs);
}

TEST(PosReader, ReadsEveryFieldOfARow) {
    const Collector c = Read(kLlh + kTime + kPlace + "2 42" + kSigmas + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    const Epoch& e = c.epochs[0];
    EXPECT_EQ(e.line, 2);
    ExpectTime(e, "2024-06-24", (8 * 60 + 20) * 60000 - 18000);
    EXPECT_DOUBLE_EQ(e.lat, 35.134699011);
    EXPECT_DOUBLE_EQ(e.lon, 136.977575483);
    EXPECT_DOUBLE_EQ(e.height, 104.8619);
    EXPECT_EQ(e.quality, 2);
    EXPECT_EQ(e.grade, Grade::floating);
    EXPECT_EQ(e.satGps, 42);
    EXPECT_EQ(e.satGlonass, 0);
    EXPECT_FALSE(IsCoordValid(e.pdop));
    EXPECT_DOUBLE_EQ(e.hrms, std::sqrt(2 * 0.0024 * 0.0024));
    EXPECT_DOUBLE_EQ(e.vrms, 0.0069);
    EXPECT_TRUE(e.hasCov);
}

TEST(PosReader, QualityDecidesTheGrade) {
    const std::pair<int, Grade> rows[] = {{1, Grade::fixed},     {2, Grade::floating}, {3, Grade::dgps},
                                          {4, Grade::dgps},      {5, Grade::single},   {6, Grade::floating},
                                          {7, Grade::estimated}, {8, Grade::estimated}};
    for (const auto& [quality, grade] : rows) {
        const Collector c = Read(kLlh + kTime + kPlace + fmt::format("{} 9", quality) + kSigmas + kEnd);
        ASSERT_EQ(c.epochs.size(), 1U) << quality;
        EXPECT_EQ(c.epochs[0].quality, quality);
        EXPECT_EQ(c.epochs[0].grade, grade) << quality;
    }
}

TEST(PosReader, ColumnsAreSeparatedByBlanksCommasSemicolonsOrTabs) {
    const std::string rows[] = {
        "   2024/06/24   08:20:00.000   35.5   136.5   104.5   1   9   1   2   3   0   0   0   0.0   9.9\n",
        "2024/06/24 08:20:00.000,35.5,136.5,104.5,1,9,1,2,3,0,0,0,0.0,9.9\r\n",
        "2024/06/24,08:20:00.000 , 35.5 , 136.5 , 104.5 , 1 , 9 , 1 , 2 , 3 , 0 , 0 , 0 , 0.0 , 9.9\n",
        "2024/06/24;08:20:00.000;35.5;136.5;104.5;1;9;1;2;3;0;0;0;0.0;9.9\n",
        "2024/06/24\t08:20:00.000\t35.5\t136.5\t104.5\t1\t9\t1\t2\t3\t0\t0\t0\t0.0\t9.9\n",
        "2024/06/24 08:20:00.000 35.5 136.5 104.5 1 9 1 2 3 0 0 0 0.0 9.9 0.1 nan x 0.4\n"};
    for (const std::string& row : rows) {
        const Collector c = Read(kLlh + row);
        ASSERT_EQ(c.epochs.size(), 1U) << row;
        EXPECT_DOUBLE_EQ(c.epochs[0].lat, 35.5) << row;
        EXPECT_DOUBLE_EQ(c.epochs[0].lon, 136.5) << row;
        EXPECT_DOUBLE_EQ(c.epochs[0].height, 104.5) << row;
        EXPECT_DOUBLE_EQ(c.epochs[0].vrms, 3.0) << row;
    }
}

// ---- time

TEST(PosTime, EveryScaleAndFormBecomesUtc) {
    struct Row {
        const char* name;
        const char* scale;
        const char* time;
        const char* date;
        std::uint32_t todMs;
    };
    const Row rows[] = {
        {"GPST", "GPST", "2024/08/22 11:00:00.000", "2024-08-22", 39'600'000 - 18'000},
        {"GPST week", "GPST", "2328 385200.000", "2024-08-22", 39'600'000 - 18'000},
        {"GPST week with decimals", "GPST", "2328 385200.1996", "2024-08-22", 39'600'200 - 18'000},
        {"GPST end of week", "GPST", "2328 604800.000", "2024-08-24", 86'400'000 - 18'000},
        {"GPST back over midnight", "GPST", "2024/03/01 00:00:10.500", "2024-02-29", 86'392'500},
        {"GPST of 2015", "GPST", "2015/12/14 17:24:57.000", "2015-12-14", 62'697'000 - 17'000},
        {"GPST before the first leap second", "GPST", "1980/01/06 00:00:01.000", "1980-01-06", 1000},
        {"GPST inside a leap second", "GPST", "2017/01/01 00:00:17.250", "2016-12-31", 86'400'250},
        {"GPST after a leap second", "GPST", "2017/01/01 00:00:18.000", "2017-01-01", 0},
        {"GPST rounded up to second 60", "GPST", "2024/08/22 10:59:60.000", "2024-08-22",
         39'600'000 - 18'000},
        {"UTC", "UTC", "2024/08/22 11:00:00.000", "2024-08-22", 39'600'000},
        {"UTC week", "UTC", "2328 385200.000", "2024-08-22", 39'600'000},
        {"UTC leap second", "UTC", "2016/12/31 23:59:60.500", "2016-12-31", 86'400'500},
        {"JST", "JST", "2024/08/22 11:00:00.000", "2024-08-22", 2 * 3'600'000},
        {"JST back over midnight", "JST", "2024/08/22 08:00:00.000", "2024-08-21", 23 * 3'600'000},
        {"JST leap second", "JST", "2017/01/01 08:59:60.000", "2016-12-31", 86'400'000},
    };
    for (const Row& row : rows) {
        const Collector c = Read(std::string("%  ") + row.scale + " latitude(deg) age(s) ratio\n" + row.time +
                                 ' ' + kPlace + "1 9" + kSigmas + kEnd);
        ASSERT_EQ(c.epochs.size(), 1U) << row.name;
        SCOPED_TRACE(row.name);
        ExpectTime(c.epochs[0], row.date, row.todMs);
    }
}

// ---- coordinates

TEST(PosCoordinates, DegreesMinutesAndSeconds) {
    const Collector c = Read(kDms + kTime + " 35 08 04.95414  -136 58 39.26739  104.8 1 9" + kSigmas + kEnd +
                             kTime + "  -0 08 04.95414   -0 58 39.26739  104.8 1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.epochs.size(), 2U);
    EXPECT_DOUBLE_EQ(c.epochs[0].lat, 35 + 8 / 60.0 + 4.95414 / 3600);
    EXPECT_DOUBLE_EQ(c.epochs[0].lon, -(136 + 58 / 60.0 + 39.26739 / 3600));
    EXPECT_DOUBLE_EQ(c.epochs[0].height, 104.8);
    EXPECT_DOUBLE_EQ(c.epochs[1].lat, -(8 / 60.0 + 4.95414 / 3600));
    EXPECT_DOUBLE_EQ(c.epochs[1].lon, -(58 / 60.0 + 39.26739 / 3600));
}

TEST(PosCoordinates, GeocentricBecomeGeographic) {
    // On the equator at 90 degrees east, 100 m up; above the north pole, 50 m up (semi-minor axis
    // 6356752.314245).
    const Collector c = Read(kXyz + kTime + "0.0 6378237.0 0.0 1 9" + kSigmas + kEnd + kTime +
                             "0.0 0.0 6356802.314245 1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.epochs.size(), 2U);
    EXPECT_NEAR(c.epochs[0].lat, 0.0, 1e-12);
    EXPECT_NEAR(c.epochs[0].lon, 90.0, 1e-12);
    EXPECT_NEAR(c.epochs[0].height, 100.0, 1e-6);
    EXPECT_NEAR(c.epochs[1].lat, 90.0, 1e-12);
    EXPECT_NEAR(c.epochs[1].height, 50.0, 1e-6);
}

TEST(PosCoordinates, BaselinesAreAddedInTheFrameOfTheBase) {
    // From a base at 0, 0, 0 a baseline 100 east, 200 north, 300 up ends at X = a + 300, Y = 100, Z = 200.
    const Collector c =
        Read("% ref pos   : 0.0 0.0 0.0\n" + kEnu + kTime + "100.0 200.0 300.0 1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    CEllissoide().GrafToGeoc(c.epochs[0].lat, c.epochs[0].lon, c.epochs[0].height, x, y, z);
    EXPECT_NEAR(x, 6378437.0, 1e-6);
    EXPECT_NEAR(y, 100.0, 1e-6);
    EXPECT_NEAR(z, 200.0, 1e-6);
}

TEST(PosCoordinates, ABaselineStraightUpStaysOverItsBase) {
    const Collector c = Read("% ref pos   : 40.086179918-105.206044414 1575.6355\n" + kEnu + kTime +
                             "0.0 0.0 10.0 1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_NEAR(c.epochs[0].lat, 40.086179918, 1e-11);
    EXPECT_NEAR(c.epochs[0].lon, -105.206044414, 1e-11);
    EXPECT_NEAR(c.epochs[0].height, 1585.6355, 1e-6);
}

TEST(PosCoordinates, TheReferenceMayBeGeocentric) {
    const Collector c =
        Read("% ref pos   : 6378137.0 0.0 0.0\n" + kEnu + kTime + "0.0 0.0 10.0 1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_NEAR(c.epochs[0].height, 10.0, 1e-6);
}

TEST(PosCoordinates, BaselinesWithoutReferenceAreRejected) {
    const Collector c = Read(kEnu + kTime + "1.0 2.0 3.0 1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.rejected.size(), 1U);
    EXPECT_EQ(c.rejected[0].reason, Reason::emptyField);
    EXPECT_EQ(c.rejected[0].detail.find("no reference position"), 0U);
}

// ---- precision

TEST(PosPrecision, GeographicColumnsAreNorthEastUp) {
    // At 0, 0: X up, Y east, Z north. sdn 1, sde 2, sdu 3, sdne 0.5, sdeu -0.6, sdun 0.7.
    const Collector c = Read(kLlh + kTime + "0.0 0.0 0.0 1 9 1 2 3 0.5 -0.6 0.7 " + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    const double expected[] = {9.0, 4.0, 1.0, -0.36, 0.49, 0.25};  // uu ee nn eu un ne
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(c.epochs[0].cov[i], expected[i], 1e-14) << i;
    EXPECT_NEAR(c.epochs[0].hrms, std::sqrt(5.0), 1e-15);
    EXPECT_NEAR(c.epochs[0].vrms, 3.0, 1e-15);
}

TEST(PosPrecision, GeocentricColumnsAreTakenAsTheyAre) {
    const Collector c = Read(kXyz + kTime + "6378137.0 0.0 0.0 1 9 3 2 1 0.5 -0.6 0.7 " + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    const double expected[] = {9.0, 4.0, 1.0, 0.25, 0.49, -0.36};  // printed xy, yz, zx; kept xy, xz, yz
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(c.epochs[0].cov[i], expected[i], 1e-14) << i;
    EXPECT_NEAR(c.epochs[0].hrms, std::sqrt(5.0), 1e-15) << "Y is east, Z is north";
    EXPECT_NEAR(c.epochs[0].vrms, 3.0, 1e-15) << "X is up";
}

TEST(PosPrecision, BaselineColumnsAreEastNorthUpOfTheBase) {
    // sde 1, sdn 2, sdu 3, sden 0.5, sdnu -0.6, sdue 0.7 at a base at 0, 0; the point is a quarter turn
    // further east, where east is -X, up is Y and north is Z.
    const Collector c = Read("% ref pos   : 0.0 0.0 0.0\n" + kEnu + kTime +
                             "6378137.0 0.0 -6378137.0 1 9 1 2 3 0.5 -0.6 0.7 " + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_NEAR(c.epochs[0].lon, 90.0, 1e-9);
    const double expected[] = {9.0, 1.0, 4.0, 0.49, -0.36, 0.25};  // uu ee nn ue nu en of the base
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(c.epochs[0].cov[i], expected[i], 1e-14) << i;
    EXPECT_NEAR(c.epochs[0].hrms, std::sqrt(9.0 + 4.0), 1e-12) << "east at the point is the base's down";
    EXPECT_NEAR(c.epochs[0].vrms, 1.0, 1e-12) << "up at the point is the base's east";
}

// ---- what is not used

TEST(PosReader, UnusableRowsAreRejectedOnceWithTheirReason) {
    struct Row {
        const char* name;
        std::string row;
        Reason reason;
    };
    const Row rows[] = {
        {"no ratio", kTime + kPlace + "1 9" + kSigmas + "0.00\n", Reason::cutLine},
        {"cut in the coordinates", kTime + "35.13 136\n", Reason::cutLine},
        {"one word", "hello\n", Reason::cutLine},
        {"bytes", "\x01\x02\xFF\n", Reason::cutLine},
        {"quality 0", kTime + kPlace + "0 9" + kSigmas + kEnd, Reason::noFix},
        {"quality 0 goes before bad numbers", kTime + "x y z 0 9" + kSigmas + kEnd, Reason::noFix},
        {"empty quality", "2024/06/24,08:20:00,35.1,136.9,104.8,,9,1,1,1,0,0,0,0,9\n", Reason::emptyField},
        {"empty latitude", "2024/06/24,08:20:00,,136.9,104.8,1,9,1,1,1,0,0,0,0,9\n", Reason::emptyField},
        {"empty precision", "2024/06/24,08:20:00,35.1,136.9,104.8,1,9,1,,1,0,0,0,0,9\n", Reason::emptyField},
        {"empty column between tabs", "2024/06/24\t08:20:00\t\t136.9\t104.8\t1\t9\t1\t1\t1\t0\t0\t0\t0\t9\n",
         Reason::emptyField},
        {"letter as quality", kTime + kPlace + "Q 9" + kSigmas + kEnd, Reason::badNumber},
        {"letter as satellites", kTime + kPlace + "1 n" + kSigmas + kEnd, Reason::badNumber},
        {"latitude nan", kTime + "nan 136.9 104.8 1 9" + kSigmas + kEnd, Reason::badNumber},
        {"longitude inf", kTime + "35.1 inf 104.8 1 9" + kSigmas + kEnd, Reason::badNumber},
        {"height of letters", kTime + "35.1 136.9 1o4.8 1 9" + kSigmas + kEnd, Reason::badNumber},
        {"precision nan", kTime + kPlace + "1 9 nan 1 1 0 0 0 " + kEnd, Reason::badNumber},
        {"deviation below zero", kTime + kPlace + "1 9 1 -1 1 0 0 0 " + kEnd, Reason::badNumber},
        {"date of letters", "2024/June/24 08:20:00.000 " + kPlace + "1 9" + kSigmas + kEnd,
         Reason::badNumber},
        {"date with one slash", "2024/0624 08:20:00.000 " + kPlace + "1 9" + kSigmas + kEnd,
         Reason::badNumber},
        {"time without colons", "2024/06/24 082000 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badNumber},
        {"time with one colon", "2024/06/24 08:20 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badNumber},
        {"week of letters", "week 385200.0 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badNumber},
        {"seconds of week of letters", "2328 monday " + kPlace + "1 9" + kSigmas + kEnd, Reason::badNumber},
        {"June 31", "2024/06/31 08:20:00.000 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badTime},
        {"hour 24", "2024/06/24 24:20:00.000 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badTime},
        {"before GPS time", "1979/12/31 08:20:00.000 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badTime},
        {"week too long", "2328 604800.001 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badTime},
        {"seconds of week below zero", "2328 -1.0 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badTime},
        {"week 10000", "10000 1.0 " + kPlace + "1 9" + kSigmas + kEnd, Reason::badTime},
        {"latitude beyond the pole", kTime + "-90.000001 136.9 104.8 1 9" + kSigmas + kEnd,
         Reason::latitudeRange},
        {"longitude beyond 180", kTime + "35.1 180.000001 104.8 1 9" + kSigmas + kEnd,
         Reason::longitudeRange},
    };
    for (const Row& row : rows) {
        const Collector c = Read(kLlh + row.row + kTime + kPlace + "1 9" + kSigmas + kEnd);
        EXPECT_EQ(c.epochs.size(), 1U) << row.name;
        ASSERT_EQ(c.rejected.size(), 1U) << row.name;
        EXPECT_EQ(ReasonText(c.rejected[0].reason), ReasonText(row.reason)) << row.name;
        EXPECT_EQ(c.rejected[0].line, 2) << row.name;
        EXPECT_FALSE(c.rejected[0].detail.empty()) << row.name;
        EXPECT_LE(c.rejected[0].detail.size(), 80U) << row.name;
    }
}

TEST(PosReader, DamagedDmsAndVectorsAreBadNumbers) {
    for (const std::string& log : {kDms + kTime + "35 60 04.9 136 58 39.2 104.8 1 9" + kSigmas + kEnd,
                                   kDms + kTime + "35 08 60.0 136 58 39.2 104.8 1 9" + kSigmas + kEnd,
                                   kDms + kTime + "35 08 04.9 136 x 39.2 104.8 1 9" + kSigmas + kEnd,
                                   kDms + kTime + "35 08 04.9 136 58 39.2 x 1 9" + kSigmas + kEnd,
                                   kXyz + kTime + "0.0 0.0 0.0 1 9" + kSigmas + kEnd,
                                   kXyz + kTime + "6378137.0 x 0.0 1 9" + kSigmas + kEnd}) {
        const Collector c = Read(log);
        ASSERT_EQ(c.rejected.size(), 1U) << log;
        EXPECT_EQ(c.rejected[0].reason, Reason::badNumber) << log;
    }
}

TEST(PosReader, RowsThatNoHeaderExplainsAreRejected) {
    const Collector c = Read(kTime + kPlace + "1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.rejected.size(), 1U);
    EXPECT_EQ(c.rejected[0].reason, Reason::badNumber);
    EXPECT_EQ(c.rejected[0].detail.find("no header line"), 0U);
}

TEST(PosReader, AnUnknownTimeScaleIsABadTime) {
    const Collector c = Read("%  BDT latitude(deg) age(s) ratio\n" + kTime + kPlace + "1 9" + kSigmas + kEnd);
    EXPECT_EQ(c.Rejected(Reason::badTime), 1U);
}

TEST(PosReader, AnotherDatumIsRejected) {
    const Collector c = Read("% (lat/lon/height=Tokyo/ellipsoidal,Q=1:fix)\n" + kLlh + kTime + kPlace +
                             "1 9" + kSigmas + kEnd);
    EXPECT_EQ(c.Rejected(Reason::badNumber), 1U);
}

TEST(PosReader, HeightsAboveTheGeoidAreRejected) {
    const Collector c =
        Read("% (lat/lon/height=WGS84/geodetic,Q=1:fix)\n" + kLlh + kTime + kPlace + "1 9" + kSigmas + kEnd);
    EXPECT_EQ(c.Rejected(Reason::noSeparation), 1U);
}

TEST(PosReader, CommentsAndEmptyLinesAreNoRows) {
    const Collector c = Read("\xEF\xBB\xBF" + kLlh + "\n   \n\r\n# comment\n% remark\n" + kTime + kPlace +
                             "1 9" + kSigmas + kEnd);
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_EQ(c.epochs[0].line, 7);
    EXPECT_TRUE(c.rejected.empty());
}

TEST(PosReader, TheLastLineNeedsNoEnd) {
    std::string log = kLlh + kTime + kPlace + "1 9" + kSigmas + kEnd;
    log.pop_back();
    EXPECT_EQ(Read(log).epochs.size(), 1U);
}

TEST(PosReader, EndlessLinesAreRowsThatDoNotGrow) {
    const Collector c =
        Read(kLlh + kTime + kPlace + "1 9" + kSigmas + "0.00 12.0 " + std::string(1'000'000, '1') + '\n' +
             std::string(1'000'000, 'x') + '\n' + kTime + kPlace + "1 9" + kSigmas + kEnd);
    EXPECT_EQ(c.epochs.size(), 2U);
    EXPECT_EQ(c.Rejected(Reason::cutLine), 1U);
}

// ---- headers

TEST(PosReader, AHeaderTellsBaseAndAntennas) {
    Collector sink;
    PosReader reader(sink);
    EXPECT_FALSE(reader.Header().hasBase);
    reader.Feed(
        "% antenna1  : ( 0.0000  0.0000  1.5000)\n% antenna2  : ( 0.0000  0.0000  0.1010)\n"
        "% ref pos   : 35.134709483  136.977574275   104.7280\n" +
        kLlh);
    const LogHeader& header = reader.Header();
    EXPECT_EQ(header.format, "RTKLIB pos");
    EXPECT_TRUE(header.hasBase);
    EXPECT_DOUBLE_EQ(header.baseLat, 35.134709483);
    EXPECT_DOUBLE_EQ(header.baseLon, 136.977574275);
    EXPECT_DOUBLE_EQ(header.baseHeight, 104.728);
    EXPECT_DOUBLE_EQ(header.roverAntenna, 1.5);
    EXPECT_DOUBLE_EQ(header.baseAntenna, 0.101);
}

TEST(PosReader, ABaseWithAHeightAboveTheGeoidIsNone) {
    Collector sink;
    PosReader reader(sink);
    reader.Feed(
        "% ref pos   : 35.134709483  136.977574275   104.7280\n% (lat/lon/height=WGS84/geodetic,Q=1:fix)\n");
    EXPECT_FALSE(reader.Header().hasBase);
    EXPECT_FALSE(IsCoordValid(reader.Header().baseHeight));
}

TEST(PosReader, DamagedHeaderLinesAreIgnored) {
    const Collector c = Read("% program : x\n% ref pos   : somewhere\n" + kLlh);
    ASSERT_EQ(c.ignored.size(), 1U);
    EXPECT_EQ(c.ignored[0].reason, Reason::badNumber);
    EXPECT_EQ(c.ignored[0].line, 2);
}

TEST(PosReader, AHeaderInTheMiddleBeginsANewFile) {
    const std::string first =
        "% ref pos   : 0.0 0.0 0.0\n" + kEnu + kTime + "1.0 2.0 3.0 1 9" + kSigmas + kEnd;
    const Collector c = Read(first + kXyz + kTime + "6378137.0 0.0 0.0 1 9" + kSigmas + kEnd + first);
    EXPECT_EQ(c.epochs.size(), 3U);
    const Collector noBase = Read(first + kEnu + kTime + "1.0 2.0 3.0 1 9" + kSigmas + kEnd);
    EXPECT_EQ(noBase.epochs.size(), 1U);
    EXPECT_EQ(noBase.Rejected(Reason::emptyField), 1U) << "the base of the file before is not its base";
}

TEST(PosReader, ACommentInTheMiddleChangesNothing) {
    const std::string row = kTime + kPlace + "1 9" + kSigmas + kEnd;
    EXPECT_EQ(Read(kLlh + row + "% remark\n" + row).epochs.size(), 2U);
}

}  // namespace
}  // namespace gpsbook
