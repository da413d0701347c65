// What looks wrong in the contents of a book.
#include "apps/gpsbook/book/Lint.h"

#include <gtest/gtest.h>

#include <cmath>

#include "apps/gpsbook/book/PlaneRefresh.h"
#include "apps/gpsbook/readers/LocalFrame.h"
#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

/// A book of one group with three points, nothing wrong with it.
class Lint : public ::testing::Test {
protected:
    Lint() {
        SetUtm33(book.Group("Quay", {"P1", "P2", "P3"}));
        for (int p = 0; p < 3; ++p) {
            SetFix(Point(p), 45.65 + 0.001 * p, 13.76, 63, 2);
            RefreshPlane(book.lib, {0, p});
        }
    }

    CPunGps& Point(int p) { return *book.lib.GetPunAt(0, p); }
    CGrpGps& Group() { return *book.lib.GetGrpAt(0); }

    /// "kind count places" of every finding, a line each.
    std::string Found() {
        std::string text;
        for (const Finding& f : LintBook(book.lib)) {
            text += std::string(f.kind) + ' ' + std::to_string(f.count);
            for (const int place : f.places) text += ' ' + std::to_string(place);
            text += '\n';
        }
        return text;
    }

    SmallBook book;
};

TEST_F(Lint, NothingIsFoundWhereNothingIsWrong) {
    EXPECT_EQ(Found(), "");
    EXPECT_TRUE(LintBook(SmallBook().lib).empty());
}

TEST_F(Lint, NamesTwiceAndNamesThatAreMissing) {
    Point(2).SetNome("P1");
    EXPECT_EQ(Found(), "name-twice 1 2\n");
    Point(2).SetNome("");
    EXPECT_EQ(Found(), "name-empty 1 2\n");
    Point(1).SetNome("");
    EXPECT_EQ(Found(), "name-empty 2 1 2\n") << "points without a name are not of one name";
    Point(1).SetNome("P2");
    Point(2).SetNome("P3");
    book.Group("Quay");
    book.Group("");
    EXPECT_EQ(Found(), "name-twice 2 0 1\nname-empty 0\n");
}

TEST_F(Lint, AntennaHeightsThatAreZeroOrUnlikeTheOthers) {
    Point(1).SetAltAnt(0);
    RefreshPlane(book.lib, {0, 1});
    EXPECT_EQ(Found(), "antenna-zero 1 1\n");
    Point(1).SetAltAnt(1.8);
    RefreshPlane(book.lib, {0, 1});
    EXPECT_EQ(Found(), "antenna-differs 1 1\n");
}

TEST_F(Lint, WhatIsUnset) {
    Point(0).SetElev(GPS_VAL_UNSET);
    Point(1).SetAltAnt(GPS_VAL_UNSET);
    Point(2).SetMonth(13);
    EXPECT_EQ(Found(), "unset 1 0\nunset 1 1\nunset 1 2\nrange 1 2\n") << "no month 13, either";
}

TEST_F(Lint, BaseOfWhichOnlyAPartIsKnown) {
    Group().SetBaseLat(45);
    EXPECT_EQ(Found(), "unset 0\n");
    Group().SetBaseLong(13);
    Group().SetBaseElev(60);
    Group().SetBaseAltAnt(2);
    EXPECT_EQ(Found(), "");
}

TEST_F(Lint, ValuesThatCannotBe) {
    Point(0).SetLat(95);
    EXPECT_EQ(Found(), "range 1 0\n");
    Point(0).SetLat(45.65);
    Point(0).SetHposRms(-1);
    Point(1).SetHposRms(-HUGE_VAL);
    EXPECT_EQ(Found(), "range 2 0 1\n");
    Point(0).SetHposRms(0.01);
    Point(1).SetHposRms(0.01);
    Group().SetBaseSpare1(1e16);
    EXPECT_EQ(Found(), "range 0\n");
}

TEST_F(Lint, TextsThatRecordsCannotCarry) {
    Point(0).SetCode("a;b");
    Point(1).SetNote("\xFF");
    Group().SetOper("two\nlines");
    EXPECT_EQ(Found(), "text 0\ntext 1 0\ntext 1 1\n");
}

TEST_F(Lint, PlaneCoordinatesThatAreMissingOrOld) {
    Point(0).SetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    Point(1).SetCoord(Point(1).GetCoordX() + 0.002, Point(1).GetCoordY(), Point(1).GetCoordZ());
    Point(2).SetCoord(Point(2).GetCoordX() + 0.0005, Point(2).GetCoordY(), Point(2).GetCoordZ());
    EXPECT_EQ(Found(), "plane 1 0\nplane 1 1\n");
    Point(0).SetCodeEgn(CEgn::CODE_NE);
    Point(1).SetCodeEgn(CEgn::CODE_NE);
    EXPECT_EQ(Found(), "") << "they are to be without";
}

TEST_F(Lint, GroupWithPointsAndNoConversion) {
    Group().SetCodeElab(0);
    book.Group("empty");
    EXPECT_EQ(Found(), "conversion 0\n");
}

TEST_F(Lint, PrecisionUnlikeTheCovariance) {
    // 1 cm in each direction: horizontal sqrt(2) cm.
    const Covariance xyz =
        LocalFrame(Point(0).GetLat(), Point(0).GetLong()).CovToGeocentric({1e-4, 1e-4, 1e-4, 0, 0, 0});
    Point(0).SetPosCov_xx(static_cast<float>(xyz[0]));
    Point(0).SetPosCov_yy(static_cast<float>(xyz[1]));
    Point(0).SetPosCov_zz(static_cast<float>(xyz[2]));
    EXPECT_EQ(Found(), "") << "nothing to compare with";
    Point(0).SetHposRms(0.0141);
    Point(0).SetVposRms(0.0100);
    EXPECT_EQ(Found(), "");
    Point(0).SetHposRms(0.0100);
    EXPECT_EQ(Found(), "precision 1 0\n");
    Point(0).SetVposRms(0.0200);
    EXPECT_EQ(Found(), "precision 1 0\nprecision 1 0\n");
    Point(0).SetPosCov_xy(0.1F);
    EXPECT_EQ(Found(), "precision 1 0\n") << "no covariance is larger than its variances";
}

TEST_F(Lint, TimesOnAnotherDayThanTheGroups) {
    Point(2).SetDay(2);
    EXPECT_EQ(Found(), "day 1 2\n") << "the day of the first point counts";
    Group().SetData("2024-05-02");
    EXPECT_EQ(Found(), "day 2 0 1\n");
    Group().SetData("in May");
    EXPECT_EQ(Found(), "day 1 2\n");
}

TEST_F(Lint, OnlyTheFirstPlacesAreTold) {
    for (int i = 0; i < 8; ++i) book.lib.AddPun(0, false)->SetNome("Q" + std::to_string(i));
    const std::vector<Finding> findings = LintBook(book.lib);
    ASSERT_EQ(findings.size(), 3U) << "position, antenna and time are missing";
    EXPECT_EQ(findings[0].count, 8);
    EXPECT_EQ(findings[0].places, (std::vector<int>{3, 4, 5, 6, 7}));
}

TEST_F(Lint, EveryFindingIsOfAKnownKind) {
    Point(0).SetLat(95);
    Point(1).SetNome("");
    for (const Finding& f : LintBook(book.lib)) {
        bool known = false;
        for (const LintKind& kind : kLintKinds) known = known || f.kind == kind.name;
        EXPECT_TRUE(known) << f.kind;
    }
}

}  // namespace
}  // namespace gpsbook::test
