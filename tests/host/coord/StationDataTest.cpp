// Real tables of stations: every station is found at its own position, and not beyond the radius.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "host/coord/StationCatalogue.h"
#include "host/coord/StationFiles.h"
#include "host/coord/StationTable.h"
#include "platform/coord/CEllissoide.h"
#include "tests/host/coord/CsvTable.h"

namespace {

using Catalogo = CTrovaNomeBaseGps;

class StationData : public ::testing::TestWithParam<const char*> {
protected:
    StationData() : path(gpstest::DataPath(std::string("stations/") + GetParam())), rows(path) {}

    std::string path;
    gpstest::CsvTable rows;
};

TEST_P(StationData, TableIsReadWholeWithTheFiguresThatStandThere) {
    const StationTable table = ReadStationFile(path);
    for (const StationProblem& p : table.problems) ADD_FAILURE() << p.line << ": " << p.what;
    ASSERT_EQ(table.stations.size(), rows.Rows().size());
    for (std::size_t i = 0; i < table.stations.size(); ++i) {
        const gpstest::CsvRow& row = rows.Rows()[i];
        const Station& s = table.stations[i];
        EXPECT_EQ(s.id, row.Text("id4"));
        EXPECT_EQ(s.frame, row.Text("frame"));
        EXPECT_EQ(s.position, (std::array{row.Number("X_m"), row.Number("Y_m"), row.Number("Z_m")})) << s.id;
        // The table's latitude, longitude and height agree with it: it is the place that is meant.
        double lat, lon, h;
        CEllissoide().GeocToGraf(s.position[0], s.position[1], s.position[2], lat, lon, h);
        EXPECT_NEAR(lat, row.Number("lat_deg"), 1e-6) << s.id;
        EXPECT_NEAR(lon, row.Number("lon_deg"), 1e-6) << s.id;
    }
}

TEST_P(StationData, EveryStationIsFoundAtItsPositionAndNotBeyondTheRadius) {
    const StationCatalogue catalogue(ReadStationFile(path).stations);
    std::mt19937 random(5);
    std::normal_distribution<double> any;
    for (const Station& s : catalogue.Stations()) {
        const Station* here = catalogue.Find(s.position, {5, s.provincia, {}});
        ASSERT_TRUE(here) << s.id;
        EXPECT_EQ(Distance(here->position, s.position), 0) << s.id;
        // In any direction: found a little within the radius of 5 m; a little beyond it only another one is.
        const StationCatalogue::Position d{any(random), any(random), any(random)};
        const double length = Distance(d, {0, 0, 0});
        const auto beside = [&](double far) {
            return StationCatalogue::Position{s.position[0] + d[0] / length * far,
                                              s.position[1] + d[1] / length * far,
                                              s.position[2] + d[2] / length * far};
        };
        const Station* within = catalogue.Find(beside(4.999), {5, Catalogo::provTutte, {}});
        ASSERT_TRUE(within) << s.id;
        EXPECT_LE(Distance(within->position, beside(4.999)), 4.999 + 1e-6) << s.id;
        for (const auto& hit : catalogue.Near(beside(5.001), {5, Catalogo::provTutte, {}}))
            EXPECT_NE(hit.station, &s);
    }
}

TEST_P(StationData, EveryStationIsFoundInItsProvinceAndInNoOther) {
    const StationCatalogue catalogue(ReadStationFile(path).stations);
    std::set<int> provinces;
    for (const Station& s : catalogue.Stations()) {
        provinces.insert(s.provincia);
        const auto other = s.provincia == Catalogo::provUD ? Catalogo::provGO : Catalogo::provUD;
        EXPECT_TRUE(catalogue.Find(s.position, {1, s.provincia, {}})) << s.id;
        EXPECT_FALSE(catalogue.Find(s.position, {1, other, {}})) << s.id;
    }
    if (std::string(GetParam()) == "italy_catalogue.csv") {
        EXPECT_EQ(provinces.size(), 91U);
    }
}

// The table that is shipped, against the one its figures were taken from.
TEST(ShippedStationData, EveryRowIsARowOfTheOfficialFigures) {
    const gpstest::CsvTable official(gpstest::DataPath("stations/precise_coordinates.csv"));
    const StationTable shipped = ReadStationFile(GPS_SOURCE_DIR "/data/stations.csv");
    EXPECT_TRUE(shipped.problems.empty());
    ASSERT_GE(shipped.stations.size(), 40U);
    for (const Station& s : shipped.stations) {
        int same = 0;
        for (const gpstest::CsvRow& row : official.Rows()) {
            if (row.Text("id4") != s.id || row.Text("frame") != s.frame || row.Text("epoch") != s.epoch)
                continue;
            ++same;
            EXPECT_EQ(s.position, (std::array{row.Number("X_m"), row.Number("Y_m"), row.Number("Z_m")}))
                << s.id;
            EXPECT_EQ(s.velocity.has_value(), !row.Text("vX_m_yr").empty()) << s.id;
            if (s.velocity) {
                EXPECT_EQ(*s.velocity,
                          (std::array{row.Number("vX_m_yr"), row.Number("vY_m_yr"), row.Number("vZ_m_yr")}))
                    << s.id;
            }
            EXPECT_EQ(s.name, row.Text("name")) << s.id;
            EXPECT_EQ(s.country, row.Text("country")) << s.id;
            EXPECT_EQ(s.province, row.Text("province")) << s.id;
            // Where x, y, z are not what was printed, the source says what was.
            const bool computed = row.Text("given_as") != "xyz";
            EXPECT_EQ(s.source, row.Text("source") + (computed ? " (latitude, longitude, height)" : ""));
        }
        EXPECT_EQ(same, 1) << s.id << ' ' << s.frame << ' ' << s.epoch;
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, StationData,
                         ::testing::Values("italy_catalogue.csv", "europe_catalogue.csv", "igs_europe.csv",
                                           "precise_coordinates.csv"),
                         [](const auto& table) {
                             const std::string name = table.param;
                             return name.substr(0, name.find_first_of("_."));
                         });

}  // namespace
