// Published geocentric coordinates.
#include <gtest/gtest.h>

#include "platform/coord/CEllissoide.h"
#include "tests/host/coord/CsvTable.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

void Check(const char* file, const char* height, double metres, std::size_t rows) {
    const CsvTable table(DataPath(std::string("geodesy/") + file));
    const CEllissoide grs80(6378137.0, 298.257222101);
    for (const CsvRow& row : table.Rows()) {
        const Triple expected{row.Number("X_m"), row.Number("Y_m"), row.Number("Z_m")};
        const double lat = row.Number("lat_deg"), lon = row.Number("lon_deg"), h = row.Number(height);
        Triple t, g;
        ASSERT_TRUE(grs80.GrafToGeoc(lat, lon, h, t.a, t.b, t.c)) << row.Text("point");
        EXPECT_TRUE(Near(t, expected, metres)) << row.Text("point");
        ASSERT_TRUE(grs80.GeocToGraf(expected.a, expected.b, expected.c, g.a, g.b, g.c)) << row.Text("point");
        EXPECT_NEAR(g.a, lat, 2 * metres / 111000) << row.Text("point");
        EXPECT_NEAR(std::remainder(g.b - lon, 360), 0, 2 * metres / 111000 / std::cos(lat * kRad))
            << row.Text("point");
        EXPECT_NEAR(g.c, h, 2 * metres) << row.Text("point");
    }
    EXPECT_EQ(table.Rows().size(), rows);
}

TEST(EllissoideDataTest, NewZealandMarksAgreeToAMicrometre) { Check("nz_geocentric.csv", "h_m", 1e-6, 5); }

TEST(EllissoideDataTest, AustralianStationsAgreeToTheirPrintedDecimals) {
    Check("au_stations_3d.csv", "ellipsoidal_h_m", 0.2e-3, 48);
}

}  // namespace
