#include "apps/gpsbook/book/GroupFiller.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"

namespace gpsbook {
namespace {

Epoch FullEpoch() {
    Epoch e;
    e.line = 12;
    e.year = 2018;
    e.month = 10;
    e.day = 4;
    e.todMs = 45471123;
    e.lat = 45.123456789;
    e.lon = 11.987654321;
    e.height = 123.4567;
    e.quality = 4;
    e.grade = Grade::fixed;
    e.satGps = 8;
    e.satGlonass = 5;
    e.pdop = 1.25;
    e.hrms = 0.0123;
    e.vrms = 0.0456;
    e.hasCov = true;
    e.cov = {1.5, 2.5, 3.5, 0.25, -0.5, 0.75};
    return e;
}

/// A book with one group and what fills it.
class GroupFillerTest : public ::testing::Test {
protected:
    GroupFillerTest() { book.AddGrp(false); }

    GroupFiller Filler(const EpochFilterOptions& filter = {}) {
        return {book, 0, fill, EpochFilter(filter, Format::nmea), next, report};
    }
    CPunGps& Point(int p) { return *book.GetPunAt(0, p); }

    CLibMap map;
    CLibGps book{nullptr, nullptr, nullptr, &map, 0};
    FillOptions fill;
    long next = 1;
    LogReport report;
};

TEST_F(GroupFillerTest, PointHoldsEveryFieldOfTheEpoch) {
    fill.antenna = 1.8;
    fill.code = "KERB";
    Filler().Accept(FullEpoch());
    ASSERT_EQ(book.GetPunArSize(0), 1);
    CPunGps& p = Point(0);
    EXPECT_EQ(p.GetNome(), "P1");
    EXPECT_EQ(p.GetCode(), "KERB");
    EXPECT_EQ(p.GetYear(), 2018);
    EXPECT_EQ(p.GetMonth(), 10);
    EXPECT_EQ(p.GetDay(), 4);
    EXPECT_EQ(p.GetTod(), 45471123U);
    EXPECT_EQ(p.GetLat(), 45.123456789);
    EXPECT_EQ(p.GetLong(), 11.987654321);
    EXPECT_EQ(p.GetElev(), 123.4567);
    EXPECT_EQ(p.GetAltAnt(), 1.8);
    EXPECT_EQ(p.GetQua(), 4);
    EXPECT_EQ(p.GetNuGpsUsed(), 8);
    EXPECT_EQ(p.GetNuGloUsed(), 5);
    EXPECT_EQ(p.GetPdop(), 1.25);
    EXPECT_EQ(p.GetHposRms(), 0.0123);
    EXPECT_EQ(p.GetVposRms(), 0.0456);
    EXPECT_EQ(p.GetPosCov_xx(), 1.5F);
    EXPECT_EQ(p.GetPosCov_yy(), 2.5F);
    EXPECT_EQ(p.GetPosCov_zz(), 3.5F);
    EXPECT_EQ(p.GetPosCov_xy(), 0.25F);
    EXPECT_EQ(p.GetPosCov_xz(), -0.5F);
    EXPECT_EQ(p.GetPosCov_yz(), 0.75F);
    double lat = 0, lon = 0, h = 0;
    p.GetGrafBase(lat, lon, h);
    EXPECT_FALSE(IsCoordValid(lat) || IsCoordValid(lon) || IsCoordValid(h)) << "there is no base";
}

TEST_F(GroupFillerTest, EveryFieldIsReportedAsChanged) {
    fill.antenna = 1.8;
    fill.code = "KERB";
    Filler().Accept(FullEpoch());
    constexpr std::uint32_t all = CHG_NOME | CHG_SECSCRI | CHG_PUN_DATETIME | CHG_PUN_QUA | CHG_PUN_NUGPS |
                                  CHG_PUN_NUGLO | CHG_PUN_LAT | CHG_PUN_LONG | CHG_PUN_ELEV | CHG_PUN_ALTANT |
                                  CHG_PUN_PDOP | CHG_PUN_HPOSRMS | CHG_PUN_VPOSRMS | CHG_PUN_POSCOV;
    EXPECT_EQ(Point(0).GetCloudFlag(), all);
}

TEST_F(GroupFillerTest, ValuesThatTheLogLacksStayUnset) {
    Epoch e = FullEpoch();
    e.pdop = e.hrms = e.vrms = GPS_VAL_UNSET;
    e.hasCov = false;
    Filler().Accept(e);
    EXPECT_FALSE(IsCoordValid(Point(0).GetPdop()));
    EXPECT_FALSE(IsCoordValid(Point(0).GetHposRms()));
    EXPECT_FALSE(IsCoordValid(Point(0).GetVposRms()));
    const CPunGps bare(nullptr, false, nullptr);
    EXPECT_EQ(Point(0).GetPosCov_xx(), bare.GetPosCov_xx());
    EXPECT_EQ(Point(0).GetPosCov_yz(), bare.GetPosCov_yz());
    EXPECT_EQ(Point(0).GetCloudFlag() & CHG_PUN_POSCOV, 0U);
}

TEST_F(GroupFillerTest, MarkerHeightsGetTheAntennaAdded) {
    fill.heights = HeightsOf::marker;
    fill.antenna = 2.0;
    Filler().Accept(FullEpoch());
    EXPECT_DOUBLE_EQ(Point(0).GetElev(), 125.4567);
    EXPECT_EQ(Point(0).GetAltAnt(), 2.0);
}

TEST_F(GroupFillerTest, SatellitesThatDoNotFitAreHeldAtTheLargestCount) {
    Epoch e = FullEpoch();
    e.satGps = 300;
    e.satGlonass = -1;
    Filler().Accept(e);
    EXPECT_EQ(Point(0).GetNuGpsUsed(), 255);
    EXPECT_EQ(Point(0).GetNuGloUsed(), 0);
}

TEST_F(GroupFillerTest, NamesCountOnWhereTheLastGroupEnded) {
    fill.prefix = "A";
    next = 8;
    GroupFiller first = Filler();
    first.Accept(FullEpoch());
    first.Reject(Reason::noFix, 3, "");
    first.Accept(FullEpoch());
    book.AddGrp(false);
    GroupFiller(book, 1, fill, EpochFilter({}, Format::nmea), next, report).Accept(FullEpoch());
    EXPECT_EQ(Point(0).GetNome(), "A8");
    EXPECT_EQ(Point(1).GetNome(), "A9");
    EXPECT_EQ(book.GetPunAt(1, 0)->GetNome(), "A10");
    EXPECT_EQ(next, 11);
}

TEST_F(GroupFillerTest, GroupTakesTheDateOfItsFirstPoint) {
    Epoch e = FullEpoch();
    e.month = 1;
    e.day = 2;
    GroupFiller filler = Filler();
    filler.Accept(e);
    filler.Accept(FullEpoch());
    filler.FillGroup({});
    EXPECT_EQ(book.GetGrpAt(0)->GetData(), "2018-01-02");
    EXPECT_FALSE(book.GetGrpAt(0)->AreBaseCoordValid());
}

TEST_F(GroupFillerTest, GroupWithoutPointsHasNoDate) {
    Filler().FillGroup({});
    EXPECT_EQ(book.GetGrpAt(0)->GetData(), "");
}

LogHeader HeaderWithBase() {
    LogHeader header;
    header.format = "RTKLIB pos";
    header.hasBase = true;
    header.baseLat = 45.1;
    header.baseLon = 12.2;
    header.baseHeight = 60.5;
    header.baseAntenna = 1.25;
    return header;
}

TEST_F(GroupFillerTest, BaseGoesToTheGroupAndToEveryPoint) {
    fill.antenna = 2.0;
    GroupFiller filler = Filler();
    filler.Accept(FullEpoch());
    filler.Accept(FullEpoch());
    filler.FillGroup(HeaderWithBase());
    const CGrpGps& g = *book.GetGrpAt(0);
    EXPECT_EQ(g.GetBaseLat(), 45.1);
    EXPECT_EQ(g.GetBaseLong(), 12.2);
    EXPECT_EQ(g.GetBaseElev(), 60.5);
    EXPECT_EQ(g.GetBaseAltAnt(), 1.25) << "the rover's antenna is not the base's";
    for (int p = 0; p < 2; ++p) {
        double lat = 0, lon = 0, h = 0;
        Point(p).GetGrafBase(lat, lon, h);
        EXPECT_EQ(lat, 45.1) << p;
        EXPECT_EQ(lon, 12.2) << p;
        EXPECT_EQ(h, 60.5) << p;
    }
    EXPECT_EQ(report.header.format, "RTKLIB pos");
}

TEST_F(GroupFillerTest, EverySessionOfALogHasItsBaseAndTheFirstIsTheGroups) {
    LogHeader header;
    GroupFiller filler = Filler();
    filler.SetHeader(&header);
    filler.Accept(FullEpoch());  // before any base is known
    header = HeaderWithBase();
    filler.Accept(FullEpoch());
    header.baseLat = 46.1;
    filler.Accept(FullEpoch());
    filler.FillGroup(header);
    EXPECT_EQ(book.GetGrpAt(0)->GetBaseLat(), 45.1);
    EXPECT_EQ(report.header.baseLat, 45.1);
    const double expected[] = {GPS_VAL_UNSET, 45.1, 46.1};
    for (int p = 0; p < 3; ++p) {
        double lat = 0, lon = 0, h = 0;
        Point(p).GetGrafBase(lat, lon, h);
        EXPECT_EQ(lat, expected[p]) << p;
    }
}

TEST_F(GroupFillerTest, MarkerHeightOfTheBaseGetsItsOwnAntennaAdded) {
    fill.heights = HeightsOf::marker;
    fill.antenna = 2.0;
    GroupFiller filler = Filler();
    filler.Accept(FullEpoch());
    filler.FillGroup(HeaderWithBase());
    EXPECT_DOUBLE_EQ(book.GetGrpAt(0)->GetBaseElev(), 61.75);
    double lat = 0, lon = 0, h = 0;
    Point(0).GetGrafBase(lat, lon, h);
    EXPECT_DOUBLE_EQ(h, 61.75);
}

TEST_F(GroupFillerTest, BaseWithoutAntennaStandsOnItsMark) {
    fill.heights = HeightsOf::marker;
    LogHeader header = HeaderWithBase();
    header.baseAntenna = GPS_VAL_UNSET;
    Filler().FillGroup(header);
    EXPECT_EQ(book.GetGrpAt(0)->GetBaseAltAnt(), 0);
    EXPECT_EQ(book.GetGrpAt(0)->GetBaseElev(), 60.5);
}

TEST_F(GroupFillerTest, ReportCountsWhatBecameOfEveryEpoch) {
    EpochFilterOptions filter;
    filter.minQuality = *ParseMinQuality("float");
    GroupFiller filler = Filler(filter);
    Epoch e = FullEpoch();
    filler.Accept(e);
    filler.Accept(e);
    e.quality = 5;
    e.grade = Grade::floating;
    filler.Accept(e);
    e.quality = 1;
    e.grade = Grade::single;
    filler.Accept(e);
    for (std::int64_t line = 20; line < 27; ++line) filler.Reject(Reason::noFix, line, "");
    filler.Ignore(Reason::badChecksum, 30, "");

    EXPECT_EQ(report.epochs, 11);
    EXPECT_EQ(report.points, 3);
    EXPECT_EQ(book.GetPunArSize(0), 3);
    EXPECT_EQ(report.byQuality, (std::map<int, std::int64_t>{{4, 2}, {5, 1}}));
    EXPECT_EQ(report.filtered[static_cast<std::size_t>(Verdict::belowQuality)], 1);
    const Tally& noFix = report.rejected[static_cast<std::size_t>(Reason::noFix)];
    EXPECT_EQ(noFix.count, 7);
    EXPECT_EQ(noFix.lines, (std::vector<std::int64_t>{20, 21, 22, 23, 24})) << "only the first are kept";
    EXPECT_EQ(report.ignored[static_cast<std::size_t>(Reason::badChecksum)].count, 1);
    EXPECT_EQ(report.rejected[static_cast<std::size_t>(Reason::badChecksum)].count, 0);
}

TEST_F(GroupFillerTest, WatcherIsToldOfEveryLineThatBecameNoPoint) {
    EpochFilterOptions filter;
    filter.minQuality = *ParseMinQuality("fix");
    GroupFiller filler = Filler(filter);
    std::vector<std::string> told;
    filler.SetWatcher([&](std::int64_t line, std::string_view reason, std::string_view detail) {
        told.push_back(std::to_string(line) + " " + std::string(reason) + " " + std::string(detail));
    });
    filler.Accept(FullEpoch());
    Epoch single = FullEpoch();
    single.line = 14;
    single.grade = Grade::single;
    filler.Accept(single);
    filler.Reject(Reason::cutLine, 16, "$GPGGA,12");
    filler.Ignore(Reason::badTime, 18, "date");
    EXPECT_EQ(told, (std::vector<std::string>{"14 below --min-quality ", "16 cut line $GPGGA,12",
                                              "18 bad time date"}));
}

}  // namespace
}  // namespace gpsbook
