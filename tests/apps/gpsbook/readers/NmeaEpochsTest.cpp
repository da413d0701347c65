// Several sentences: which belong together, which date they have, and what they say about precision.
#include "apps/gpsbook/readers/NmeaEpochs.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "apps/gpsbook/readers/NmeaReader.h"
#include "tests/apps/gpsbook/readers/Collector.h"

namespace gpsbook {
namespace {

using test::Collector;
using test::Gga;
using test::Rmc;
using test::Sentence;

Collector Read(const std::string& log) {
    Collector sink;
    NmeaReader reader(sink);
    reader.Feed(log);
    reader.Finish();
    return sink;
}

std::string DateOf(const Epoch& e) { return fmt::format("{}-{}-{}", e.year, e.month, e.day); }

std::vector<std::string> DatesOf(const Collector& c) {
    std::vector<std::string> dates;
    for (const Epoch& e : c.epochs) dates.push_back(DateOf(e));
    return dates;
}

using Dates = std::vector<std::string>;

// ---- dates

TEST(NmeaDates, RmcMayStandBeforeOrAfterTheGga) {
    EXPECT_EQ(DatesOf(Read(Rmc("120000.00", "110425") + Gga("120000.00"))), Dates{"2025-4-11"});
    EXPECT_EQ(DatesOf(Read(Gga("120000.00") + Rmc("120000.00", "110425"))), Dates{"2025-4-11"});
}

TEST(NmeaDates, ZdaGivesTheDateToo) {
    EXPECT_EQ(DatesOf(Read(Gga("120000.00") + Sentence("GPZDA,120000.00,11,04,2025,00,00"))),
              Dates{"2025-4-11"});
}

TEST(NmeaDates, RmcGoesBeforeZdaOfTheSameEpoch) {
    const std::string zda = Sentence("GPZDA,120000.00,22,08,1999,00,00");
    const std::string rmc = Rmc("120000.00", "110425");
    EXPECT_EQ(DatesOf(Read(zda + Gga("120000.00") + rmc)), Dates{"2025-4-11"});
    EXPECT_EQ(DatesOf(Read(rmc + Gga("120000.00") + zda)), Dates{"2025-4-11"});
}

TEST(NmeaDates, TheFirstOfTwoDatesOfOneKindCounts) {
    EXPECT_EQ(DatesOf(Read(Rmc("120000.00", "110425") + Rmc("120000.00", "120425") + Gga("120000.00"))),
              Dates{"2025-4-11"});
}

TEST(NmeaDates, AVoidRmcGivesNone) {
    const Collector c = Read(Gga("120000.00") + Sentence("GNRMC,120000.00,V,,,,,,,110425,,,N"));
    EXPECT_TRUE(c.epochs.empty());
    EXPECT_EQ(c.Rejected(Reason::noDate), 1U);
}

TEST(NmeaDates, TwoDigitYearsReachFrom1980To2079) {
    EXPECT_EQ(DatesOf(Read(Rmc("120000.00", "010180") + Gga("120000.00"))), Dates{"1980-1-1"});
    EXPECT_EQ(DatesOf(Read(Rmc("120000.00", "311299") + Gga("120000.00"))), Dates{"1999-12-31"});
    EXPECT_EQ(DatesOf(Read(Rmc("120000.00", "010100") + Gga("120000.00"))), Dates{"2000-1-1"});
    EXPECT_EQ(DatesOf(Read(Rmc("120000.00", "311279") + Gga("120000.00"))), Dates{"2079-12-31"});
}

TEST(NmeaDates, ADateThatDoesNotExistIsNotTaken) {
    const Collector c =
        Read(Rmc("120000.00", "110425") + Gga("120000.00") + Rmc("120001.00", "310425") + Gga("120001.00"));
    EXPECT_EQ(DatesOf(c), (Dates{"2025-4-11", "2025-4-11"}));
    ASSERT_EQ(c.ignored.size(), 1U);
    EXPECT_EQ(c.ignored[0].reason, Reason::badTime);
    EXPECT_EQ(c.order, (std::vector<std::int64_t>{2, 3, 4}));
}

TEST(NmeaDates, CarriedOnAcrossMidnight) {
    const Collector c = Read(Rmc("235958.00", "311220") + Gga("235958.00") + Gga("235959.00") +
                             Gga("000000.00") + Gga("000001.00") + Gga("130000.00") + Gga("005959.00"));
    EXPECT_EQ(DatesOf(c),
              (Dates{"2020-12-31", "2020-12-31", "2021-1-1", "2021-1-1", "2021-1-1", "2021-1-2"}));
}

TEST(NmeaDates, ADropOfTwelveHoursOrLessIsNoMidnight) {
    const Collector c = Read(Rmc("130000.00", "311220") + Gga("130000.00") + Gga("010000.00"));
    EXPECT_EQ(DatesOf(c), (Dates{"2020-12-31", "2020-12-31"}));
    const Collector d = Read(Rmc("130000.00", "311220") + Gga("130000.00") + Gga("005959.99"));
    EXPECT_EQ(DatesOf(d), (Dates{"2020-12-31", "2021-1-1"}));
}

TEST(NmeaDates, ALeapSecondEndsItsDay) {
    const Collector c = Read(Rmc("235959.00", "311216") + Gga("235959.00") + Gga("235960.00") +
                             Gga("235960.50") + Gga("000000.00"));
    EXPECT_EQ(DatesOf(c), (Dates{"2016-12-31", "2016-12-31", "2016-12-31", "2017-1-1"}));
    EXPECT_EQ(c.epochs[1].todMs, 86'400'000U);
    EXPECT_EQ(c.epochs[2].todMs, 86'400'500U);
}

TEST(NmeaDates, PositionsBeforeTheFirstDateAreHeldBack) {
    Collector sink;
    NmeaReader reader(sink);
    reader.Feed(Gga("115958.00") + Gga("115959.00") + Gga("120000.00"));
    EXPECT_TRUE(sink.epochs.empty());
    reader.Feed(Rmc("120000.00", "110425") + Gga("120001.00"));
    EXPECT_EQ(DatesOf(sink), (Dates{"2025-4-11", "2025-4-11", "2025-4-11"}));
    reader.Finish();
    EXPECT_EQ(sink.order, (std::vector<std::int64_t>{1, 2, 3, 5}));
}

TEST(NmeaDates, HeldPositionsBeforeMidnightAreOfTheDayBefore) {
    const Collector c = Read(Gga("235958.00") + Gga("235959.00") + Gga("000000.00") +
                             Rmc("000001.00", "010321") + Gga("000001.00"));
    EXPECT_EQ(DatesOf(c), (Dates{"2021-2-28", "2021-2-28", "2021-3-1", "2021-3-1"}));
}

TEST(NmeaDates, EveryMidnightOfHeldPositionsCounts) {
    const Collector c = Read(Gga("130000.00") + Gga("230000.00") + Gga("010000.00") + Gga("200000.00") +
                             Rmc("020000.00", "110425") + Gga("020000.00"));
    EXPECT_EQ(DatesOf(c), (Dates{"2025-4-9", "2025-4-9", "2025-4-10", "2025-4-10", "2025-4-11"}));
}

TEST(NmeaDates, WithoutAnyDateEveryPositionIsRejected) {
    const Collector c = Read(Gga("120000.00") + "$GPGGA,1*00\n" + Gga("120001.00"));
    EXPECT_TRUE(c.epochs.empty());
    EXPECT_EQ(c.Rejected(Reason::noDate), 2U);
    EXPECT_EQ(c.Rejected(Reason::badChecksum), 1U);
    EXPECT_EQ(c.order, (std::vector<std::int64_t>{1, 2, 3}));
}

TEST(NmeaDates, ADateWithoutPositionDatesWhatFollows) {
    EXPECT_EQ(DatesOf(Read(Rmc("235959.00", "311220") + Gga("000001.00"))), Dates{"2021-1-1"});
}

TEST(NmeaDates, APositionWithoutFixDoesNotMoveTheDate) {
    const std::string noFix = Sentence("GPGGA,000343.00,,,,,0,00,,,M,,M,,");
    const Collector c = Read(Rmc("230000.00", "311220") + Gga("230000.00") + noFix + Gga("230001.00"));
    EXPECT_EQ(DatesOf(c), (Dates{"2020-12-31", "2020-12-31"}));
}

// ---- what belongs together

TEST(NmeaEpochs, OrderOfTheFileIsKept) {
    const Collector c = Read(Rmc("120000.00", "110425") + Gga("120000.00") + "$GPGGA,1*00\n" +
                             "$GPGST,1*00\n" + Gga("120001.00") + "$GPGGA,1\n");
    EXPECT_EQ(c.order, (std::vector<std::int64_t>{2, 3, 4, 5, 6}));
}

TEST(NmeaEpochs, AnEpochIsDeliveredWhenTheNextTimeComes) {
    Collector sink;
    NmeaReader reader(sink);
    reader.Feed(Rmc("120000.00", "110425") + Gga("120000.00"));
    EXPECT_TRUE(sink.epochs.empty());
    reader.Feed(Rmc("120000.01", "110425"));
    EXPECT_EQ(sink.epochs.size(), 1U);
}

TEST(NmeaEpochs, AReportThatNoPositionWaitsBeforeIsDeliveredAtOnce) {
    Collector sink;
    NmeaReader reader(sink);
    reader.Feed("$GPGGA,1*00\n$GPRMC,1*00\n");
    EXPECT_EQ(sink.rejected.size(), 1U);
    EXPECT_EQ(sink.ignored.size(), 1U);
}

TEST(NmeaEpochs, TwoPositionsOfOneTimeAreBothDelivered) {
    const Collector c = Read(Rmc("120000.00", "110425") + Gga("120000.00", "GP") +
                             Sentence("GPGSA,A,3,01,02,03,,,,,,,,,,1.5,1.0,1.1") + Gga("120000.00", "GN") +
                             Sentence("GPGSA,A,3,01,02,03,,,,,,,,,,1.5,1.0,1.1"));
    ASSERT_EQ(c.epochs.size(), 2U);
    EXPECT_EQ(c.epochs[0].line, 2);
    EXPECT_EQ(c.epochs[1].line, 4);
    for (const Epoch& e : c.epochs) EXPECT_EQ(e.satGps, 3) << "a repeated satellite is one";
}

TEST(NmeaEpochs, TheSameTimeMayBeWrittenWithOtherDecimals) {
    EXPECT_EQ(DatesOf(Read(Gga("120000.00") + Rmc("120000.0", "110425"))), Dates{"2025-4-11"});
    const Collector c =
        Read(Gga("120000.001") + Rmc("120000.002", "110425") + Sentence("GPGST,120000.002,1,1,1,1,1,1,1"));
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_FALSE(c.epochs[0].hasCov) << "one millisecond is another epoch";
}

TEST(NmeaEpochs, SentencesOfADamagedTimeDoNotEndAnEpoch) {
    const Collector c = Read(Rmc("120000.00", "110425") + Gga("120000.00") + "$GPGGA,120001.00,45*00\n" +
                             Sentence("GPGST,120000.00,1,,,,3.0,4.0,5.0"));
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_DOUBLE_EQ(c.epochs[0].hrms, 5.0);
}

// ---- satellites

struct GsaRow {
    const char* name;
    std::string sentences;
    int gps;
    int glonass;
    double pdop;
};

TEST(NmeaSatellites, AreCountedBySystem) {
    const GsaRow rows[] = {
        {"system ids",
         Sentence("GNGSA,A,3,30,11,09,,,,,,,,,,1.42,0.82,1.17,1") +
             Sentence("GNGSA,A,3,78,68,,,,,,,,,,,1.42,0.82,1.17,2") +
             Sentence("GNGSA,A,3,11,21,19,06,,,,,,,,,1.42,0.82,1.17,3") +
             Sentence("GNGSA,A,3,25,41,,,,,,,,,,,1.42,0.82,1.17,4"),
         3, 2, 1.42},
        {"system id goes before numbers", Sentence("GNGSA,A,3,01,02,51,,,,,,,,,,1.4,0.8,1.1,1"), 2, 0, 1.4},
        {"system id goes before talker", Sentence("GPGSA,A,3,01,02,,,,,,,,,,,1.4,0.8,1.1,2"), 0, 2, 1.4},
        {"talkers",
         Sentence("GPGSA,A,3,01,02,03,,,,,,,,,,2.5,1.0,1.1") +
             Sentence("GLGSA,A,3,65,66,,,,,,,,,,,2.5,1.0,1.1"),
         3, 2, 2.5},
        {"other talkers",
         Sentence("GAGSA,A,3,01,02,03,,,,,,,,,,2.5,1.0,1.1") +
             Sentence("BDGSA,A,3,04,,,,,,,,,,,,2.5,1.0,1.1"),
         0, 0, 2.5},
        {"numbers", Sentence("GNGSA,A,3,01,32,33,64,65,96,97,193,,,,,1.15,0.68,0.93"), 2, 2, 1.15},
        {"augmentation satellites listed with GPS",
         Sentence("GPGSA,A,3,01,32,33,51,64,,,,,,,,1.15,0.68,0.93"), 2, 0, 1.15},
        {"a last field that is no system id", Sentence("GPGSA,A,3,25,32,12,14,,,,,,,,,2.1,1.1,1.8,1.2"), 4, 0,
         2.1},
        {"more satellites than a sentence holds",
         Sentence("GPGSA,A,3,01,02,03,04,05,06,07,08,09,10,11,12,1.1,0.6,0.9,1") +
             Sentence("GPGSA,A,3,13,14,,,,,,,,,,,1.1,0.6,0.9,1"),
         14, 0, 1.1},
        {"no PDOP", Sentence("GPGSA,A,3,01,02,03,,,,,,,,,,,1.0,1.1"), 3, 0, GPS_VAL_UNSET},
        {"the first PDOP counts",
         Sentence("GPGSA,A,3,01,,,,,,,,,,,,,1.0,1.1") + Sentence("GLGSA,A,3,65,,,,,,,,,,,,1.7,1.0,1.1"), 1, 1,
         1.7},
        {"without satellites the total counts", Sentence("GPGSA,A,1,,,,,,,,,,,,,99.9,99.9,99.9"), 12, 0,
         99.9},
    };
    for (const GsaRow& row : rows) {
        const Collector c =
            Read(Rmc("120000.00", "110425") + Gga("120000.00") + row.sentences + Gga("120001.00"));
        ASSERT_EQ(c.epochs.size(), 2U) << row.name;
        EXPECT_EQ(c.epochs[0].satGps, row.gps) << row.name;
        EXPECT_EQ(c.epochs[0].satGlonass, row.glonass) << row.name;
        EXPECT_EQ(c.epochs[0].pdop, row.pdop) << row.name;
        EXPECT_EQ(c.epochs[1].satGps, 12) << row.name << ": the next epoch has none of its own";
        EXPECT_FALSE(IsCoordValid(c.epochs[1].pdop)) << row.name;
    }
}

// ---- precision

// A position at latitude 0, longitude 0: there X is up, Y is east, Z is north.
std::string AtOrigin(const std::string& gst) {
    return Rmc("120000.00", "110425") + Sentence("GPGGA,120000.00,0000.0,N,00000.0,E,4,9,1.0,0.0,M,0.0,M,,") +
           Sentence(gst);
}

TEST(NmeaPrecision, SigmasBecomeRmsAndCovariance) {
    // latitude (north) 0.3, longitude (east) 0.4, up 0.6; no ellipse
    const Collector c = Read(AtOrigin("GPGST,120000.00,1,,,,0.3,0.4,0.6"));
    ASSERT_EQ(c.epochs.size(), 1U);
    const Epoch& e = c.epochs[0];
    EXPECT_NEAR(e.hrms, 0.5, 1e-15);
    EXPECT_DOUBLE_EQ(e.vrms, 0.6);
    ASSERT_TRUE(e.hasCov);
    const double expected[] = {0.36, 0.16, 0.09, 0.0, 0.0, 0.0};  // xx = up, yy = east, zz = north
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(e.cov[i], expected[i], 1e-15) << i;
}

TEST(NmeaPrecision, TheErrorEllipseTurnsClockwiseFromNorth) {
    // Semi-major 0.05 towards north-east: east and north grow together.
    // sin 45 cos 45 = 1/2: cov_en = (0.0025 - 0.0009) / 2 = 0.0008; both variances are (0.0025 + 0.0009) / 2.
    const double sigma = std::sqrt(0.0017);
    const std::string sigmas = fmt::format("{},{}", sigma, sigma);
    const Collector c = Read(AtOrigin("GPGST,120000.00,1,0.05,0.03,45.0," + sigmas + ",0.06"));
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_NEAR(c.epochs[0].cov[5], 0.0008, 1e-15) << "yz is east-north";
    EXPECT_NEAR(c.epochs[0].cov[3], 0.0, 1e-15);
    EXPECT_NEAR(c.epochs[0].cov[4], 0.0, 1e-15);
    const Collector d = Read(AtOrigin("GPGST,120000.00,1,0.05,0.03,135.0," + sigmas + ",0.06"));
    EXPECT_NEAR(d.epochs.at(0).cov[5], -0.0008, 1e-15) << "towards south-east they grow apart";
}

TEST(NmeaPrecision, TheCovarianceIsHeldToWhatTheSigmasAllow) {
    const Collector c = Read(AtOrigin("GPGST,120000.00,1,9.0,1.0,45.0,0.3,0.4,0.6"));
    EXPECT_NEAR(c.epochs.at(0).cov[5], 0.12, 1e-15);
    const Collector d = Read(AtOrigin("GPGST,120000.00,1,9.0,1.0,-45.0,0.3,0.4,0.6"));
    EXPECT_NEAR(d.epochs.at(0).cov[5], -0.12, 1e-15);
}

TEST(NmeaPrecision, TheCovarianceTurnsWithThePlace) {
    // At 90 degrees east on the equator east is -X, up is Y, north is Z: xz is minus east-north.
    const Collector c = Read(Rmc("120000.00", "110425") +
                             Sentence("GPGGA,120000.00,0000.0,N,09000.0,E,4,9,1.0,0.0,M,0.0,M,,") +
                             Sentence("GPGST,120000.00,1,9.0,1.0,45.0,0.3,0.4,0.6"));
    ASSERT_EQ(c.epochs.size(), 1U);
    const double expected[] = {0.16, 0.36, 0.09, 0.0, -0.12, 0.0};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(c.epochs[0].cov[i], expected[i], 1e-15) << i;
}

TEST(NmeaPrecision, MayStandBeforeThePosition) {
    const Collector c =
        Read(Sentence("GPGST,120000.00,1,,,,3.0,4.0,5.0") + Gga("120000.00") + Rmc("120000.00", "110425"));
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_DOUBLE_EQ(c.epochs[0].hrms, 5.0);
}

TEST(NmeaPrecision, BelongsToItsEpochOnly) {
    const Collector c = Read(AtOrigin("GPGST,120000.00,1,,,,0.3,0.4,0.6") + Gga("120001.00"));
    ASSERT_EQ(c.epochs.size(), 2U);
    EXPECT_TRUE(c.epochs[0].hasCov);
    EXPECT_FALSE(c.epochs[1].hasCov);
    EXPECT_FALSE(IsCoordValid(c.epochs[1].hrms));
}

TEST(NmeaPrecision, WhatTheSentenceLeavesEmptyStaysUnset) {
    const Epoch plan = Read(AtOrigin("GPGST,120000.00,1,,,,0.3,0.4,")).epochs.at(0);
    EXPECT_NEAR(plan.hrms, 0.5, 1e-15);
    EXPECT_FALSE(IsCoordValid(plan.vrms));
    EXPECT_FALSE(plan.hasCov);
    const Epoch up = Read(AtOrigin("GPGST,120000.00,1,,,,0.3,,0.6")).epochs.at(0);
    EXPECT_FALSE(IsCoordValid(up.hrms));
    EXPECT_DOUBLE_EQ(up.vrms, 0.6);
    EXPECT_FALSE(up.hasCov);
}

}  // namespace
}  // namespace gpsbook
