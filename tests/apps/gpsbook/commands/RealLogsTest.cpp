// Logs of real receivers through the program: counts, exit codes, and plane coordinates against PROJ.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "tests/apps/gpsbook/commands/Gpsbook.h"
#include "tests/host/coord/ProjPeer.h"

namespace gpsbook::test {
namespace {

using gpstest::ProjPeer;
using gpstest::Triple;

struct Log {
    const char* file;
    const char* crs;     // the UTM zone of the place
    std::size_t points;  // none: exit code 1
};

// The counts stand, with how they were found, in the test of the readers.
const Log kLogs[] = {
    {"nmea/rtk_fixed_gga_rmc.nmea", "EPSG:32615", 122},
    {"nmea/rtk_static_session_q1245.nmea", "EPSG:32629", 1204},
    {"nmea/ppp_rtk_static_1h_part.nmea", "EPSG:32654", 1800},
    {"nmea/rtk_float_gst_binary_mix.log", "EPSG:32632", 30},
    {"nmea/dgps_multignss_gst.nmea", "EPSG:32610", 61},
    {"nmea/dgps_high_precision.nmea", "EPSG:32610", 9},
    {"nmea/single_gst_no_altitude.nmea", "EPSG:32632", 0},
    {"nmea/mixed_talkers_gn_gp_bd.nmea", "EPSG:32651", 5},
    {"nmea/coldboot_bad_checksums.nmea", "EPSG:32632", 2},
    {"nmea/malformed_gga.nmea", "EPSG:32617", 4},
    {"nmea/empty_quality_field.nmea", "EPSG:32632", 0},
    {"nmea/broken_header_line.log", "EPSG:32630", 1},
    {"nmea/broken_checksum_char.log", "EPSG:32630", 1},
    {"pos/static_rover_llh_velocity.pos", "EPSG:32653", 301},
    {"pos/kinematic_llh_velocity.pos", "EPSG:32653", 531},
    {"pos/single_llh_weektow.pos", "EPSG:32654", 900},
    {"pos/ppp_kinematic_llh.pos", "EPSG:32654", 900},
    {"pos/static_site_xyz.pos", "EPSG:32634", 12},
    {"pos/baseline_enu.pos", "EPSG:32613", 10},
};

std::string PathOf(const Log& log) { return std::string(GPS_REAL_DATA) + "/" + log.file; }

// The table has 9 decimals of a degree (0.06 mm when rounded) and 4 of a metre.
constexpr double kRounded = 0.15e-3;

TEST(RealLogsConvert, PlaneCoordinatesOfEveryLogAgreeWithProj) {
    const Workplace place;
    for (const Log& log : kLogs) {
        const Outcome outcome = place.Run({"convert", PathOf(log), "--crs", log.crs, "--antenna", "2.000"});
        EXPECT_EQ(outcome.exitCode, log.points > 0 ? 0 : 1) << log.file << '\n' << outcome;
        const CsvRows rows = RowsOf(outcome.out);
        ASSERT_EQ(rows.size(), log.points) << log.file << '\n' << outcome.err;
        const ProjPeer proj = ProjPeer::Systems("EPSG:4326", log.crs);
        for (const auto& row : rows) {
            Triple plane;
            ASSERT_TRUE(proj.Forward(NumberOf(row, "lat"), NumberOf(row, "lon"),
                                     NumberOf(row, "h") - NumberOf(row, "antenna"), plane))
                << log.file;
            const Triple table{NumberOf(row, "east"), NumberOf(row, "north"), NumberOf(row, "height")};
            ASSERT_TRUE(gpstest::Near(table, plane, kRounded)) << log.file << ' ' << row.at("name");
        }
    }
    EXPECT_TRUE(place.Names().empty());
}

TEST(RealLogsConvert, AllLogsTogetherMakeOneTable) {
    const Workplace place;
    std::vector<std::string> arguments{"convert", "--crs", "EPSG:3857", "-o", "all.csv"};
    std::size_t points = 0;
    for (const Log& log : kLogs) {
        arguments.push_back(PathOf(log));
        points += log.points;
    }
    const Outcome outcome = place.Run(arguments);
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const CsvRows rows = RowsOf(place.Text("all.csv"));
    ASSERT_EQ(rows.size(), points);
    std::set<std::string> groups;
    for (const auto& row : rows) groups.insert(row.at("group"));
    EXPECT_EQ(groups.size(), 17U);
    EXPECT_EQ(rows.back().at("name"), "P" + std::to_string(points));
}

// A log that comes into the folder later is not left out without anybody noticing.
TEST(RealLogsConvert, NoLogOfTheFolderIsLeftOut) {
    std::set<std::string> known;
    for (const Log& log : kLogs) known.insert(PathOf(log));
    std::set<std::string> there;
    for (const char* folder : {"/nmea", "/pos"})
        for (const auto& entry : std::filesystem::directory_iterator(std::string(GPS_REAL_DATA) + folder))
            there.insert(entry.path().string());
    EXPECT_EQ(there, known);
}

}  // namespace
}  // namespace gpsbook::test
