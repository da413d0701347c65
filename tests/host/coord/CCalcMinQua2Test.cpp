#include "platform/coord/CCalcMinQua2.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/coord/CConvAltez.h"
#include "tests/host/coord/CountingItem.h"
#include "tests/host/coord/LeastSquares.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

constexpr double kE = 403340.97, kN = 5055597.17;

std::vector<CCalcMinQua2::PuntoQuota> Points(double noise) {
    constexpr double places[][3] = {
        {-812, 40, 1}, {310.5, 977.25, -2}, {1500, -623, 0.5}, {22, -1404.5, 1.5}, {-977, -811, -1}};
    std::vector<CCalcMinQua2::PuntoQuota> points;
    for (const auto& p : places)
        points.push_back({kE + p[0], kN + p[1], 44.8 + 2.5e-5 * p[0] - 7.25e-6 * p[1] + noise * p[2]});
    return points;
}

TEST(CCalcMinQua2Test, TheSurfaceIsThePlaneOfItsCoefficients) {
    CConvAltez c;
    c.SetCoeff(44.8, 2e-5, -3e-6);
    EXPECT_DOUBLE_EQ(c.GetDifferenza(1000, 2000), 44.8 + 0.02 - 0.006);
    double c1 = 0, c2 = 0, c3 = 0;
    c.GetCoeff(c1, c2, c3);
    EXPECT_EQ(c1, 44.8);
    EXPECT_EQ(c2, 2e-5);
    EXPECT_EQ(c3, -3e-6);
}

TEST(CCalcMinQua2Test, ExactPointsGiveThePlaneBack) {
    CConvAltez c;
    std::vector<double> residui;
    ASSERT_TRUE(c.CalcolaDaPunti(Points(0), &residui));
    double c1, c2, c3;
    c.GetCoeff(c1, c2, c3);
    EXPECT_NEAR(c2, 2.5e-5, 1e-14);
    EXPECT_NEAR(c3, -7.25e-6, 1e-14);
    EXPECT_NEAR(c.GetDifferenza(kE, kN), 44.8, 1e-9);
    ASSERT_EQ(residui.size(), 5u);
    for (const double r : residui) EXPECT_NEAR(r, 0, 1e-9);
}

TEST(CCalcMinQua2Test, AFitToNoisyPointsIsTheLeastSquaresSolution) {
    const auto points = Points(0.012);
    std::vector<std::vector<double>> rows;
    std::vector<double> b;
    for (const auto& p : points) {
        rows.push_back({1, p.x - kE, p.y - kN});
        b.push_back(p.dh);
    }
    const std::vector<double> u = SolveLeastSquares(rows, b);
    CConvAltez c;
    std::vector<double> residui = {1, 2, 3};  // what was there before goes
    ASSERT_TRUE(c.CalcolaDaPunti(points, &residui));
    double c1, c2, c3;
    c.GetCoeff(c1, c2, c3);
    EXPECT_NEAR(c2, u[1], 1e-14);
    EXPECT_NEAR(c3, u[2], 1e-14);
    EXPECT_NEAR(c.GetDifferenza(kE, kN), u[0], 1e-9);
    ASSERT_EQ(residui.size(), points.size());
    double largest = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double expected = points[i].dh - (u[0] + u[1] * (points[i].x - kE) + u[2] * (points[i].y - kN));
        EXPECT_NEAR(residui[i], expected, 1e-9) << i;
        largest = std::max(largest, std::fabs(expected));
    }
    EXPECT_GT(largest, 0.005);
}

TEST(CCalcMinQua2Test, ThreePointsThatSpanAPlaneAreEnough) {
    CConvAltez c;
    ASSERT_TRUE(c.CalcolaDaPunti({{0, 0, 1}, {1000, 0, 2}, {0, 1000, 4}}, nullptr));
    EXPECT_NEAR(c.GetDifferenza(1000, 1000), 5, 1e-12);
}

TEST(CCalcMinQua2Test, DegeneratePointsAreRefusedAndChangeNothing) {
    struct Case {
        const char* name;
        std::vector<CCalcMinQua2::PuntoQuota> points;
    };
    std::vector<Case> cases = {
        {"no point", {}},
        {"two points", {{kE, kN, 44}, {kE + 100, kN, 45}}},
        {"one place three times", {{kE, kN, 44}, {kE, kN, 44}, {kE, kN, 45}}},
        {"on a line to the east", {{kE, kN, 44}, {kE + 100, kN, 45}, {kE + 317, kN, 46}}},
        {"on a slanting line",
         {{kE, kN, 44}, {kE + 100, kN + 300, 45}, {kE + 200, kN + 600, 46}, {kE - 50, kN - 150, 43}}},
    };
    for (const Special& s : kNoMeasurement)
        for (int k = 0; k < 3; ++k) {
            CCalcMinQua2::PuntoQuota p{kE, kN, 44};
            (k == 0 ? p.x : k == 1 ? p.y : p.dh) = s.value;
            cases.push_back({s.name, {{kE + 500, kN, 44}, {kE, kN + 500, 45}, p, {kE - 500, kN, 45}}});
        }
    for (const Case& k : cases) {
        CountingWhole whole;
        CConvAltez c;
        c.SetCoeff(1, 2, 3);
        c.BindTo(&whole);
        std::vector<double> residui = {77};
        EXPECT_FALSE(c.CalcolaDaPunti(k.points, &residui)) << k.name;
        EXPECT_EQ(residui, std::vector<double>{77}) << k.name;
        double c1, c2, c3;
        c.GetCoeff(c1, c2, c3);
        EXPECT_EQ(c1, 1) << k.name;
        EXPECT_EQ(c2, 2) << k.name;
        EXPECT_EQ(c3, 3) << k.name;
        EXPECT_EQ(whole.changes, 0) << k.name;
    }
}

TEST(CCalcMinQua2Test, EveryRealChangeIsToldOnceAndTheSameValuesNever) {
    CountingWhole whole;
    CConvAltez c;
    c.BindTo(&whole);
    c.SetCoeff(0, 0, 0);
    EXPECT_EQ(whole.changes, 0);
    c.SetCoeff(1, 2, 3);
    EXPECT_EQ(whole.changes, 1);
    c.SetCoeff(1, 2, 3);
    EXPECT_EQ(whole.changes, 1);
    c.SetCoeff(1, 2, 4);
    c.SetCoeff(1, 5, 4);
    c.SetCoeff(6, 5, 4);
    EXPECT_EQ(whole.changes, 4);
    ASSERT_TRUE(c.CalcolaDaPunti(Points(0), nullptr));
    EXPECT_EQ(whole.changes, 5) << "a fit is one change";
}

}  // namespace
