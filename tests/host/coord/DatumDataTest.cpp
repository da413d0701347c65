// Seven parameters between two national datums, as published with points in both.
#include <gtest/gtest.h>

#include "platform/coord/CDatumConv.h"
#include "platform/coord/CEllissoide.h"
#include "tests/host/coord/CsvTable.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

const CEllissoide kGrs80(6378137.0, 298.257222101);
const CEllissoide kAustralian(6378160.0, 298.25);

// The table prints rotations of the frame; here the vector is turned, which is the other sign.
CDatumConv Make(const CsvRow& row, double sign) {
    CDatumConv d;
    d.SetCoeffToStd(row.Number("tx_m"), row.Number("ty_m"), row.Number("tz_m"),
                    sign * row.Number("rx_arcsec"), sign * row.Number("ry_arcsec"),
                    sign * row.Number("rz_arcsec"), row.Number("scale_ppm"));
    return d;
}

Triple Geocentric(const CEllissoide& e, const CsvRow& row, const std::string& prefix) {
    Triple t;
    EXPECT_TRUE(e.GrafToGeoc(row.Number(prefix + "_lat_deg"), row.Number(prefix + "_lon_deg"),
                             row.Number(prefix + "_h_m"), t.a, t.b, t.c));
    return t;
}

// Half a millimetre of height and eight decimals of a degree are what the table prints.
constexpr double kTolerance = 1.5e-3;

TEST(DatumDataTest, PublishedParametersTakeThePointsThereAndBack) {
    const CsvTable table(DataPath("geodesy/helmert_agd66_gda94.csv"));
    for (const CsvRow& row : table.Rows()) {
        const CDatumConv d = Make(row, -1);
        const Triple agd = Geocentric(kAustralian, row, "agd"), gda = Geocentric(kGrs80, row, "gda94");
        Triple to, from;
        ASSERT_TRUE(d.ToStd(agd.a, agd.b, agd.c, to.a, to.b, to.c)) << row.Text("point");
        EXPECT_TRUE(Near(to, gda, kTolerance)) << row.Text("point");
        ASSERT_TRUE(d.FromStd(gda.a, gda.b, gda.c, from.a, from.b, from.c)) << row.Text("point");
        EXPECT_TRUE(Near(from, agd, kTolerance)) << row.Text("point");
    }
    EXPECT_EQ(table.Rows().size(), 6u);
}

TEST(DatumDataTest, TheOtherSignOfTheRotationsIsMetresOff) {
    const CsvTable table(DataPath("geodesy/helmert_agd66_gda94.csv"));
    for (const CsvRow& row : table.Rows()) {
        const CDatumConv d = Make(row, +1);
        const Triple agd = Geocentric(kAustralian, row, "agd"), gda = Geocentric(kGrs80, row, "gda94");
        Triple to;
        ASSERT_TRUE(d.ToStd(agd.a, agd.b, agd.c, to.a, to.b, to.c)) << row.Text("point");
        EXPECT_GT(Distance(to, gda), 5) << row.Text("point");
    }
}

}  // namespace
