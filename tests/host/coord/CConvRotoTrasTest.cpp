#include "platform/coord/CConvRotoTras.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/coord/CConvLocal.h"
#include "tests/host/coord/CountingItem.h"
#include "tests/host/coord/LeastSquares.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

struct Six {
    const char* name;
    double o1, o2, o3, o4, s, a;
};

constexpr Six kRows[] = {
    {"translation", 500000, 5000000, 1000, 2000, 1, 0},
    {"rotation by 90 degrees", 0, 0, 0, 0, 1, 90},
    {"rotation by -30.5 degrees", 403340.97, 5055597.17, 0, 0, 1, -30.5},
    {"scale", 403340.97, 5055597.17, 100, 100, 0.99987, 0},
    {"all of them", 403340.97, 5055597.17, 1234.5, -987.25, 1.00042, 211.375},
};

CConvLocal Make(const Six& r) {
    CConvLocal c;
    c.SetRotoTras(r.o1, r.o2, r.o3, r.o4, r.s, r.a);
    return c;
}

TEST(CConvRotoTrasTest, LocalCoordinatesFollowTheEquation) {
    for (const Six& r : kRows) {
        const CConvLocal c = Make(r);
        ASSERT_TRUE(c.IsRotoTrasSet()) << r.name;
        for (const double dx : {-1500.0, 0.0, 812.25})
            for (const double dy : {-77.5, 0.0, 2300.0}) {
                const double ca = std::cos(r.a * kRad), sa = std::sin(r.a * kRad);
                double x = r.o1 + dx, y = r.o2 + dy;
                c.ToLocal(x, y);
                EXPECT_NEAR(x, r.o3 + r.s * (ca * dx - sa * dy), 1e-8) << r.name;
                EXPECT_NEAR(y, r.o4 + r.s * (sa * dx + ca * dy), 1e-8) << r.name;
            }
    }
}

TEST(CConvRotoTrasTest, APositiveAngleTurnsEastToNorth) {
    CConvLocal c;
    c.SetRotoTras(0, 0, 0, 0, 1, 90);
    double x = 1, y = 0;
    c.ToLocal(x, y);
    EXPECT_NEAR(x, 0, 1e-15);
    EXPECT_NEAR(y, 1, 1e-15);
}

TEST(CConvRotoTrasTest, FromLocalIsTheInverse) {
    for (const Six& r : kRows) {
        const CConvLocal c = Make(r);
        for (const double dx : {-1500.0, 0.0, 812.25}) {
            double x = r.o1 + dx, y = r.o2 - 2 * dx;
            c.ToLocal(x, y);
            c.FromLocal(x, y);
            EXPECT_NEAR(x, r.o1 + dx, 4e-9) << r.name;
            EXPECT_NEAR(y, r.o2 - 2 * dx, 4e-9) << r.name;
        }
    }
}

TEST(CConvRotoTrasTest, ANewObjectIsUnsetAndTheIdentity) {
    const CConvLocal c;
    double o1 = 0, o2 = 0, o3 = 0, o4 = 0;
    c.GetOrigin(o1, o2, o3, o4);
    for (const double v : {o1, o2, o3, o4, c.GetScala(), c.GetAngRot()}) EXPECT_EQ(v, GPS_VAL_UNSET);
    EXPECT_FALSE(c.IsRotoTrasSet());
    double x = 403340.97, y = 5055597.17;
    c.ToLocal(x, y);
    c.FromLocal(x, y);
    EXPECT_EQ(x, 403340.97);
    EXPECT_EQ(y, 5055597.17);
}

TEST(CConvRotoTrasTest, OneUnsetValueOrNoScaleMakesItTheIdentity) {
    for (const Special& s : kNoMeasurement)
        for (std::size_t k = 0; k < 6; ++k) {
            double v[6] = {10, 20, 30, 40, 2, 45};
            v[k] = s.value;
            CConvLocal c;
            c.SetRotoTras(v[0], v[1], v[2], v[3], v[4], v[5]);
            EXPECT_FALSE(c.IsRotoTrasSet()) << s.name << " as value " << k;
            double x = 1, y = 2;
            c.ToLocal(x, y);
            c.FromLocal(x, y);
            EXPECT_EQ(x, 1) << s.name << " as value " << k;
            EXPECT_EQ(y, 2) << s.name << " as value " << k;
        }
    CConvLocal c;
    c.SetRotoTras(10, 20, 30, 40, 0, 45);
    EXPECT_FALSE(c.IsRotoTrasSet());
    c.SetRotoTras(10, 20, 30, 40, 1, 45);
    EXPECT_TRUE(c.IsRotoTrasSet());
    c.SetRotoTras(10, 20, GPS_VAL_UNSET, 40, 1, 45);
    EXPECT_FALSE(c.IsRotoTrasSet()) << "set no longer";
}

std::vector<CConvRotoTras::PuntoDoppio> Points(const Six& r, double noise) {
    std::vector<CConvRotoTras::PuntoDoppio> points;
    const CConvLocal c = Make(r);
    constexpr double places[][2] = {{-812, 40}, {310.5, 977.25}, {1500, -623}, {22, -1404.5}, {-977, -811}};
    // Signs that no similarity can follow.
    constexpr double errors[][2] = {{1, -2}, {-1.5, 0.5}, {0.25, 1}, {-0.75, -1}, {2, 0.5}};
    for (std::size_t i = 0; i < 5; ++i) {
        const double x = r.o1 + places[i][0], y = r.o2 + places[i][1];
        double X = x, Y = y;
        c.ToLocal(X, Y);
        points.push_back({x, y, X + noise * errors[i][0], Y + noise * errors[i][1]});
    }
    return points;
}

TEST(CConvRotoTrasTest, ExactControlPointsGiveTheParametersBack) {
    for (const Six& r : kRows) {
        const auto points = Points(r, 0);
        CConvLocal c;
        CConvRotoTras::Residui residui;
        ASSERT_TRUE(c.CalcolaDaPunti(points, false, &residui)) << r.name;
        EXPECT_NEAR(c.GetScala(), r.s, 1e-11) << r.name;
        EXPECT_NEAR(std::remainder(c.GetAngRot() - r.a, 360), 0, 1e-9) << r.name;
        EXPECT_LT(residui.rms, 1e-7) << r.name;
        double x = r.o1 + 5000, y = r.o2 - 3000, X = x, Y = y;
        Make(r).ToLocal(X, Y);
        c.ToLocal(x, y);
        EXPECT_NEAR(x, X, 1e-6) << r.name;
        EXPECT_NEAR(y, Y, 1e-6) << r.name;
    }
}

TEST(CConvRotoTrasTest, TheOriginOfAFitIsTheCentreOfGravity) {
    const auto points = Points(kRows[4], 0.01);
    CConvLocal c;
    ASSERT_TRUE(c.CalcolaDaPunti(points, false, nullptr));
    double m[4] = {0, 0, 0, 0}, o[4];
    for (const auto& p : points) {
        m[0] += p.x / 5;
        m[1] += p.y / 5;
        m[2] += p.xLoc / 5;
        m[3] += p.yLoc / 5;
    }
    c.GetOrigin(o[0], o[1], o[2], o[3]);
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(o[k], m[k], 1e-8) << k;
}

// The four unknowns A = s cos a, B = s sin a and the translations, from equations that are linear in them.
TEST(CConvRotoTrasTest, AFitToNoisyPointsIsTheLeastSquaresSolution) {
    const auto points = Points(kRows[4], 0.02);
    std::vector<std::vector<double>> rows;
    std::vector<double> b;
    const double x0 = kRows[4].o1, y0 = kRows[4].o2;
    for (const auto& p : points) {
        rows.push_back({p.x - x0, -(p.y - y0), 1, 0});
        b.push_back(p.xLoc);
        rows.push_back({p.y - y0, p.x - x0, 0, 1});
        b.push_back(p.yLoc);
    }
    const std::vector<double> u = SolveLeastSquares(rows, b);

    CConvLocal c;
    CConvRotoTras::Residui residui;
    ASSERT_TRUE(c.CalcolaDaPunti(points, false, &residui));
    EXPECT_NEAR(c.GetScala(), std::hypot(u[0], u[1]), 1e-11);
    EXPECT_NEAR(std::remainder(c.GetAngRot() - std::atan2(u[1], u[0]) / kRad, 360), 0, 1e-9);
    ASSERT_EQ(residui.dx.size(), points.size());
    ASSERT_EQ(residui.dy.size(), points.size());
    double square = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double dx = points[i].x - x0, dy = points[i].y - y0;
        const double ex = points[i].xLoc - (u[0] * dx - u[1] * dy + u[2]);
        const double ey = points[i].yLoc - (u[1] * dx + u[0] * dy + u[3]);
        EXPECT_NEAR(residui.dx[i], ex, 1e-7) << i;
        EXPECT_NEAR(residui.dy[i], ey, 1e-7) << i;
        square += ex * ex + ey * ey;
    }
    EXPECT_GT(residui.rms, 0.01);
    EXPECT_NEAR(residui.rms, std::sqrt(square / static_cast<double>(points.size())), 1e-8);
}

TEST(CConvRotoTrasTest, AFixedScaleIsOneAndTheRotationStillTheBest) {
    const Six wanted{"", 403340.97, 5055597.17, 1234.5, -987.25, 1.0004, 12};
    const auto points = Points(wanted, 0.02);
    CConvLocal c;
    CConvRotoTras::Residui residui;
    ASSERT_TRUE(c.CalcolaDaPunti(points, true, &residui));
    EXPECT_EQ(c.GetScala(), 1.0);
    double o1, o2, o3, o4;
    c.GetOrigin(o1, o2, o3, o4);
    const auto rms = [&](double angle) {
        CConvLocal other;
        other.SetRotoTras(o1, o2, o3, o4, 1, angle);
        double square = 0;
        for (const auto& p : points) {
            double x = p.x, y = p.y;
            other.ToLocal(x, y);
            square += (p.xLoc - x) * (p.xLoc - x) + (p.yLoc - y) * (p.yLoc - y);
        }
        return std::sqrt(square / static_cast<double>(points.size()));
    };
    EXPECT_NEAR(residui.rms, rms(c.GetAngRot()), 1e-9);
    EXPECT_LT(residui.rms, rms(c.GetAngRot() + 1e-3));
    EXPECT_LT(residui.rms, rms(c.GetAngRot() - 1e-3));
}

TEST(CConvRotoTrasTest, TwoPointsAreEnough) {
    CConvLocal c;
    ASSERT_TRUE(c.CalcolaDaPunti({{0, 0, 10, 10}, {1, 0, 10, 12}}, false, nullptr));
    EXPECT_NEAR(c.GetScala(), 2, 1e-12);
    EXPECT_NEAR(c.GetAngRot(), 90, 1e-12);
}

TEST(CConvRotoTrasTest, DegenerateControlPointsAreRefusedAndChangeNothing) {
    struct Case {
        const char* name;
        std::vector<CConvRotoTras::PuntoDoppio> points;
    };
    const double e = 403340.97, n = 5055597.17;
    std::vector<Case> cases = {
        {"no point", {}},
        {"one point", {{e, n, 0, 0}}},
        {"one place twice", {{e, n, 0, 0}, {e, n, 0, 0}}},
        {"one place, local ones differ", {{e, n, 0, 0}, {e, n, 5, 5}, {e, n, 9, 1}}},
        {"local ones in one place", {{e, n, 7.1, 7.3}, {e + 50.3, n, 7.1, 7.3}, {e, n + 41.7, 7.1, 7.3}}},
    };
    for (const Special& s : kNoMeasurement)
        for (int k = 0; k < 4; ++k) {
            CConvRotoTras::PuntoDoppio p{e, n, 1, 1};
            (k == 0 ? p.x : k == 1 ? p.y : k == 2 ? p.xLoc : p.yLoc) = s.value;
            cases.push_back({s.name, {{e + 9, n, 9, 1}, p, {e, n + 9, 1, 9}}});
        }
    for (const Case& k : cases)
        for (const bool fixedScale : {false, true}) {
            CountingWhole whole;
            CConvLocal c = Make(kRows[4]);
            c.BindTo(&whole);
            CConvRotoTras::Residui residui;
            residui.rms = 77;
            EXPECT_FALSE(c.CalcolaDaPunti(k.points, fixedScale, &residui)) << k.name;
            EXPECT_EQ(residui.rms, 77) << k.name;
            EXPECT_EQ(c.GetScala(), kRows[4].s) << k.name;
            EXPECT_EQ(c.GetAngRot(), kRows[4].a) << k.name;
            EXPECT_EQ(whole.changes, 0) << k.name;
        }
}

TEST(CConvRotoTrasTest, EveryRealChangeIsToldOnceAndTheSameValuesNever) {
    CountingWhole whole;
    CConvLocal c;
    c.BindTo(&whole);
    c.SetRotoTras(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(whole.changes, 1) << "six values, one change";
    c.SetRotoTras(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(whole.changes, 1);
    for (std::size_t k = 0; k < 6; ++k) {
        double v[6] = {1, 2, 3, 4, 5, 6};
        v[k] += 0.5;
        c.SetRotoTras(v[0], v[1], v[2], v[3], v[4], v[5]);
        EXPECT_EQ(whole.changes, static_cast<int>(2 + 2 * k)) << "value " << k;
        c.SetRotoTras(1, 2, 3, 4, 5, 6);
        EXPECT_EQ(whole.changes, static_cast<int>(3 + 2 * k)) << "value " << k;
    }
    whole.changes = 0;
    ASSERT_TRUE(c.CalcolaDaPunti(Points(kRows[3], 0.01), false, nullptr));
    EXPECT_EQ(whole.changes, 1) << "a fit is one change";
}

}  // namespace
