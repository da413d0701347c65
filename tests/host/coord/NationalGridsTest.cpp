// Published plane coordinates of national grids, by the typed projections.
#include <gtest/gtest.h>

#include <string>

#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"
#include "tests/host/coord/CsvTable.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

constexpr double kGrs80[] = {6378137.0, 298.257222101};
constexpr double kWgs84[] = {6378137.0, 298.257223563};

CProiezPla Make(int type, const CProiezPla::Values& p, const double (&ellipsoid)[2]) {
    CProiezPla proiez;
    proiez.Set(type, p);
    proiez.SetEllissoide(ellipsoid[0], ellipsoid[1]);
    return proiez;
}

CProiezPla TransverseMercator(double lat0, double lon0, double fe, double fn, double k0,
                              const double (&ellipsoid)[2]) {
    return Make(TpProiezPla::mercatoreTrasversa, {lat0, lon0, fe, fn, k0}, ellipsoid);
}

// Forward within the tolerance (metres), and back from the published figures within the same.
void Check(const CProiezPla& p, const CsvRow& row, const std::string& east, const std::string& north,
           double tolerance, const std::string& name, const std::string& prefix = "") {
    const double lat = row.Number(prefix + "lat_deg"), lon = row.Number(prefix + "lon_deg");
    Triple t, g;
    ASSERT_TRUE(p.GrafToPlan(lat, lon, 0, t.a, t.b, t.c)) << name;
    EXPECT_NEAR(t.a, row.Number(east), tolerance) << name;
    EXPECT_NEAR(t.b, row.Number(north), tolerance) << name;
    ASSERT_TRUE(p.PlanToGraf(row.Number(east), row.Number(north), 0, g.a, g.b, g.c)) << name;
    EXPECT_NEAR(g.a, lat, 1.5 * tolerance / 111000) << name;
    EXPECT_NEAR(std::remainder(g.b - lon, 360), 0, 1.5 * tolerance / 111000 / std::cos(lat * kRad)) << name;
}

TEST(NationalGridsTest, AustralianStationsInTheirZones) {
    const CsvTable table(DataPath("geodesy/au_mga_points.csv"));
    for (const CsvRow& row : table.Rows()) {
        const double lon0 = 6 * row.Number("utm_zone") - 183;
        Check(TransverseMercator(0, lon0, 500000, 10000000, 0.9996, kGrs80), row, "easting_m", "northing_m",
              0.51e-3, row.Text("point"));
    }
    EXPECT_EQ(table.Rows().size(), 128u);
    const CsvTable stations(DataPath("geodesy/au_stations_3d.csv"));
    for (const CsvRow& row : stations.Rows()) {
        const double lon0 = 6 * row.Number("utm_zone") - 183;
        Check(TransverseMercator(0, lon0, 500000, 10000000, 0.9996, kGrs80), row, "easting_m", "northing_m",
              0.4e-3, row.Text("point"));
    }
    EXPECT_EQ(stations.Rows().size(), 48u);
}

TEST(NationalGridsTest, NewZealandMarksInTheirCircuits) {
    const CsvTable table(DataPath("geodesy/nz_tm_circuits.csv"));
    for (const CsvRow& row : table.Rows())
        Check(
            TransverseMercator(row.Number("lat0_deg"), row.Number("lon0_deg"), row.Number("false_easting_m"),
                               row.Number("false_northing_m"), row.Number("k0"), kGrs80),
            row, "easting_m", "northing_m", 0.3e-3, row.Text("system"));
    EXPECT_EQ(table.Rows().size(), 54u);
}

TEST(NationalGridsTest, BritishPointsInTheNationalProjection) {
    const CsvTable table(DataPath("geodesy/gb_etrs_osgb_points.csv"));
    const CProiezPla p = TransverseMercator(49, -2, 400000, -100000, 0.9996012717, kGrs80);
    // The plane coordinates are differences of two published figures of 1 mm each.
    for (const CsvRow& row : table.Rows())
        Check(p, row, "etrs_tm_easting_m", "etrs_tm_northing_m", 1.5e-3, row.Text("point"), "etrs89_");
    EXPECT_EQ(table.Rows().size(), 20u);
}

const CsvRow& Find(const CsvTable& table, const std::string& system) {
    for (const CsvRow& row : table.Rows())
        if (row.Text("plane_system").find(system) == 0) return row;
    throw std::runtime_error("no row of " + system);
}

TEST(NationalGridsTest, TriesteInUtmAndTheSwedishPointInBothGrids) {
    const CsvTable table(DataPath("geodesy/national_single_points.csv"));
    Check(TransverseMercator(0, 15, 500000, 0, 0.9996, kWgs84), Find(table, "UTM 33N"), "easting_m",
          "northing_m", 6e-3, "UTM");
    Check(TransverseMercator(0, 15, 500000, 0, 0.9996, kGrs80), Find(table, "SWEREF 99 TM"), "easting_m",
          "northing_m", 0.6e-3, "SWEREF 99 TM");
    Check(TransverseMercator(0, 15.806284529, 1500064.274, -667.711, 1.00000561024, kGrs80),
          Find(table, "RT90"), "easting_m", "northing_m", 0.6e-3, "RT90");
}

// The whole chain: seven parameters to Roma40, the international ellipsoid, the eastern belt.
TEST(NationalGridsTest, TriesteInGaussBoagaThroughTheWholeConversion) {
    const CsvTable table(DataPath("geodesy/national_single_points.csv"));
    const CsvRow& row = Find(table, "Gauss-Boaga");
    CLibMap map;
    map.GetDatAt(0, 0, 0)->SetCoeffToStd(-122.74, -34.27, -22.83, -1.884, -3.400, -3.030, -15.62);
    CConvCoord c(&map);
    c.SetImpFlag(true);
    c.SetImp(CConvCoord::impEllissoide, CConvCoord::ellInternazionale1924);
    c.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 15, 2520000, 0, 0.9996);
    const double lat = row.Number("lat_deg"), lon = row.Number("lon_deg"), h = row.Number("h_m");
    Triple t, g;
    ASSERT_TRUE(c.GrafGpsToPlanAtt(lat, lon, h, 0, t.a, t.b, t.c));
    EXPECT_NEAR(t.a, row.Number("easting_m"), 0.05);
    EXPECT_NEAR(t.b, row.Number("northing_m"), 0.05);
    ASSERT_TRUE(c.PlanAttToGrafGps(t.a, t.b, t.c, 0, g.a, g.b, g.c));
    EXPECT_NEAR(g.a, lat, 1e-11);
    EXPECT_NEAR(g.b, lon, 1e-11);
    EXPECT_NEAR(g.c, h, 1e-5);
}

// The exact projection, in high precision, without a false origin.
TEST(NationalGridsTest, TransverseMercatorIsExactToAMicrometreWithin45Degrees) {
    const CsvTable table(DataPath("geodesy/tm_exact_wgs84.csv"));
    const CProiezPla p = TransverseMercator(0, 0, 0, 0, 0.9996, kWgs84);
    int used = 0;
    for (const CsvRow& row : table.Rows()) {
        if (std::fabs(row.Number("lon_deg")) >= 45) continue;
        ++used;
        Triple t;
        ASSERT_TRUE(p.GrafToPlan(row.Number("lat_deg"), row.Number("lon_deg"), 0, t.a, t.b, t.c));
        EXPECT_NEAR(t.a, row.Number("easting_m"), 1e-6) << row.Text("id");
        EXPECT_NEAR(t.b, row.Number("northing_m"), 1e-6) << row.Text("id");
    }
    EXPECT_GE(used, 80);
}

struct Worked {
    const char* code;  // of the operation in the table
    int type;
    CProiezPla::Values p;
    double a, rf;
    double unit;  // metres
};

constexpr double kFoot = 1200.0 / 3937.0;  // US survey foot
constexpr double kClarkeA = 6378206.4, kClarkeRf = 294.978698213898;

// Two parallels with an origin of its own: latitude of origin, longitude, parallels, false origin.
struct WorkedTwo {
    const char* code;
    double lat0, lon0, lat1, lat2, fe, fn;
    double a, rf;
    double unit;
};

const CsvRow& FindCode(const CsvTable& table, const std::string& code) {
    for (const CsvRow& row : table.Rows())
        if (row.Text("operation_code") == code) return row;
    throw std::runtime_error("no operation " + code);
}

void CheckWorked(const CProiezPla& p, const CsvRow& row, double unit) {
    Triple t;
    const std::string& name = row.Text("name");
    ASSERT_TRUE(p.GrafToPlan(row.Number("lat_deg"), row.Number("lon_deg"), 0, t.a, t.b, t.c)) << name;
    EXPECT_NEAR(t.a / unit, row.Number("e"), row.Number("tolerance")) << name;
    EXPECT_NEAR(t.b / unit, row.Number("n"), row.Number("tolerance")) << name;
}

TEST(NationalGridsTest, WorkedExamplesOfTheMethodsThatTheTypesExpress) {
    // Polar variant B by its latitude of true scale: k0 at the pole, as the published formula gives it.
    const double e = std::sqrt(0.00669437999014), s = std::sin(71 * kRad), c = std::cos(71 * kRad);
    const double mF = c / std::sqrt(1 - e * e * s * s);
    const double tF = std::tan(45 * kRad - 71 * kRad / 2) / std::pow((1 - e * s) / (1 + e * s), e / 2);
    const double kPole = mF * std::sqrt(std::pow(1 + e, 1 + e) * std::pow(1 - e, 1 - e)) / (2 * tF);
    const Worked rows[] = {
        {"19916",
         TpProiezPla::mercatoreTrasversa,
         {49, -2, 400000, -100000, 0.9996012717},
         6377563.396,
         299.32496,
         1},
        {"19910", TpProiezPla::lambert1SP, {18, -77, 250000, 150000, 1}, kClarkeA, kClarkeRf, 1},
        {"19914",
         TpProiezPla::stereograficaObliqua,
         {52.156160555555556, 5.387638888888889, 155000, 463000, 0.9999079},
         6377397.155,
         299.15281,
         1},
        {"16061", TpProiezPla::stereografica, {90, 0, 2000000, 2000000, 0.994}, 6378137, 298.2572236, 1},
        {"19993", TpProiezPla::stereografica, {-90, 70, 6000000, 6000000, kPole}, 6378137, 298.2572236, 1},
    };
    const CsvTable table(DataPath("geodesy/epsg_worked_examples.csv"));
    for (const Worked& w : rows) {
        const double ellipsoid[2] = {w.a, w.rf};
        CheckWorked(Make(w.type, w.p, ellipsoid), FindCode(table, w.code), w.unit);
    }
    const WorkedTwo two = {"14204",  27 + 50.0 / 60, -99,  28 + 23.0 / 60, 30 + 17.0 / 60, 2000000 * kFoot, 0,
                           kClarkeA, kClarkeRf,      kFoot};
    CProiezPla p;
    p.SetEllissoide(two.a, two.rf);
    ASSERT_TRUE(p.SetLambert2SP(two.lat0, two.lon0, two.lat1, two.lat2, two.fe, two.fn));
    CheckWorked(p, FindCode(table, two.code), two.unit);
}

// A system that counts to the west and south gives, east and north, the same figures with their signs
// changed.
TEST(NationalGridsTest, TheSouthOrientedExampleWithItsSignsChanged) {
    const CsvTable table(DataPath("geodesy/epsg_worked_examples.csv"));
    const CsvRow& row = FindCode(table, "17529");
    const double ellipsoid[2] = {6378137, 298.2572236};
    Triple t;
    ASSERT_TRUE(TransverseMercator(0, 29, 0, 0, 1, ellipsoid)
                    .GrafToPlan(row.Number("lat_deg"), row.Number("lon_deg"), 0, t.a, t.b, t.c));
    EXPECT_NEAR(-t.a, row.Number("e"), row.Number("tolerance"));
    EXPECT_NEAR(-t.b, row.Number("n"), row.Number("tolerance"));
}

// Methods that no type has come in by definition.
TEST(NationalGridsTest, WorkedExamplesOfOtherMethodsComeByDefinition) {
    const CsvTable table(DataPath("geodesy/epsg_worked_examples.csv"));
    int used = 0;
    for (const CsvRow& row : table.Rows()) {
        const std::string& op = row.Text("equivalent_operation");
        if (op.empty() || row.Text("kind") != "projection" || op.find("axis=") != std::string::npos) continue;
        ++used;
        CProiezPla p;
        std::string why;
        // The shift to WGS 84 is nothing, so that the figures are those of the projection alone.
        ASSERT_TRUE(p.SetDefinizione(op + " +nadgrids=@null +type=crs", why)) << why;
        CheckWorked(p, row, 1);
    }
    EXPECT_GE(used, 14);
}

}  // namespace
