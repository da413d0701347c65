// Fits to real control points.
#include <gtest/gtest.h>

#include <vector>

#include "platform/coord/CConvCoord.h"
#include "tests/host/coord/CsvTable.h"
#include "tests/host/coord/LeastSquares.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

// British points: plane coordinates on two datums. A similarity of the whole country leaves metres.
TEST(FitDataTest, TheSimilarityBetweenTwoBritishPlanesIsTheLeastSquaresOne) {
    const CsvTable table(DataPath("geodesy/gb_etrs_osgb_points.csv"));
    std::vector<CConvRotoTras::PuntoDoppio> points;
    std::vector<std::vector<double>> rows;
    std::vector<double> b;
    constexpr double x0 = 400000, y0 = 500000;
    for (const CsvRow& row : table.Rows()) {
        const CConvRotoTras::PuntoDoppio p{row.Number("etrs_tm_easting_m"), row.Number("etrs_tm_northing_m"),
                                           row.Number("osgb36_easting_m"), row.Number("osgb36_northing_m")};
        points.push_back(p);
        rows.push_back({p.x - x0, -(p.y - y0), 1, 0});
        b.push_back(p.xLoc - x0);
        rows.push_back({p.y - y0, p.x - x0, 0, 1});
        b.push_back(p.yLoc - y0);
    }
    const std::vector<double> u = SolveLeastSquares(rows, b);
    CConvLocal c;
    CConvRotoTras::Residui residui;
    ASSERT_TRUE(c.CalcolaDaPunti(points, false, &residui));
    EXPECT_NEAR(c.GetScala(), std::hypot(u[0], u[1]), 1e-12);
    EXPECT_NEAR(c.GetAngRot(), std::atan2(u[1], u[0]) / kRad, 1e-10);
    double square = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double dx = points[i].x - x0, dy = points[i].y - y0;
        const double ex = points[i].xLoc - (u[0] * dx - u[1] * dy + u[2] + x0);
        const double ey = points[i].yLoc - (u[1] * dx + u[0] * dy + u[3] + y0);
        EXPECT_NEAR(residui.dx[i], ex, 1e-6) << i;
        EXPECT_NEAR(residui.dy[i], ey, 1e-6) << i;
        square += ex * ex + ey * ey;
    }
    EXPECT_NEAR(residui.rms, std::sqrt(square / static_cast<double>(points.size())), 1e-6);
    EXPECT_GT(residui.rms, 0.5);
    EXPECT_LT(residui.rms, 20);
}

// Australian stations: ellipsoidal minus orthometric height over a conic projection of the continent.
TEST(FitDataTest, ThePlaneThroughAustralianHeightsIsTheLeastSquaresOneAndServesTheConversion) {
    const CsvTable table(DataPath("geodesy/au_stations_3d.csv"));
    CConvCoord c;
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellGrs80);
    ASSERT_TRUE(c.GetConvLocal()->SetLambert2SP(-25, 134, -18, -36, 0, 0));
    std::vector<CCalcMinQua2::PuntoQuota> points;
    std::vector<std::vector<double>> rows;
    std::vector<double> b;
    for (const CsvRow& row : table.Rows()) {
        Triple t;
        ASSERT_TRUE(c.GrafGpsToPlanAtt(row.Number("lat_deg"), row.Number("lon_deg"),
                                       row.Number("ellipsoidal_h_m"), 0, t.a, t.b, t.c));
        points.push_back({t.a, t.b, row.Number("ellipsoidal_h_m") - row.Number("orthometric_h_m")});
        rows.push_back({1, t.a, t.b});
        b.push_back(points.back().dh);
    }
    const std::vector<double> u = SolveLeastSquares(rows, b);
    std::vector<double> residui;
    ASSERT_TRUE(c.GetConvAltez()->CalcolaDaPunti(points, &residui));
    c.GetConvAltez()->SetTpCalcPt(CConvAltez::tpPiano);
    double c1, c2, c3;
    c.GetConvAltez()->GetCoeff(c1, c2, c3);
    EXPECT_NEAR(c1, u[0], 1e-8);
    EXPECT_NEAR(c2, u[1], 1e-14);
    EXPECT_NEAR(c3, u[2], 1e-14);
    ASSERT_EQ(residui.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const CsvRow& row = table.Rows()[i];
        Triple t;
        ASSERT_TRUE(c.GrafGpsToPlanAtt(row.Number("lat_deg"), row.Number("lon_deg"),
                                       row.Number("ellipsoidal_h_m"), 0, t.a, t.b, t.c));
        // What the height lacks of the published one is the residual of the fit.
        EXPECT_NEAR(t.c - row.Number("orthometric_h_m"), residui[i], 1e-8) << row.Text("point");
        EXPECT_NEAR(residui[i], points[i].dh - (u[0] + u[1] * points[i].x + u[2] * points[i].y), 1e-7);
    }
    EXPECT_EQ(points.size(), 48u);
}

}  // namespace
