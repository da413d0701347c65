// Every position of every receiver log to the plane, against PROJ called directly.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "platform/coord/CConvCoord.h"
#include "tests/host/coord/CsvTable.h"
#include "tests/host/coord/LogPositions.h"
#include "tests/host/coord/ProjPeer.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

constexpr double kTenthOfAMillimetre = 1e-4;
constexpr double kAntenna = 2.0;

// What converts one UTM zone: by code and by type, and PROJ's own two ways.
struct Zone {
    Zone(int zone, bool south)
        : system(ProjPeer::Systems("EPSG:4326", "EPSG:" + std::to_string((south ? 32700 : 32600) + zone))),
          operation(ProjPeer::Operation("+proj=utm +ellps=WGS84 +zone=" + std::to_string(zone) +
                                        (south ? " +south" : ""))) {
        std::string why;
        EXPECT_TRUE(byCode.GetConvLocal()->SetDefinizione(
            "EPSG:" + std::to_string((south ? 32700 : 32600) + zone), why))
            << why;
        byType.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 6 * zone - 183, 500000,
                                                south ? 10000000 : 0, 0.9996);
    }

    CConvCoord byCode, byType;
    ProjPeer system, operation;
};

Zone& ZoneOf(const Triple& g) {
    static std::map<int, std::unique_ptr<Zone>> zones;
    const bool south = g.a < 0;
    const int zone = static_cast<int>(std::floor((g.b + 180) / 6)) % 60 + 1;
    auto& entry = zones[south ? -zone : zone];
    if (!entry) entry = std::make_unique<Zone>(zone, south);
    return *entry;
}

// The largest distance (metres) from PROJ, and of the way back (degrees).
void Check(const CConvCoord& c, const ProjPeer& peer, const Triple& g, double& plane, double& back) {
    Triple t, expected, b;
    ASSERT_TRUE(peer.Forward(g.a, g.b, g.c - kAntenna, expected)) << g.a << ", " << g.b;
    ASSERT_TRUE(c.GrafGpsToPlanAtt(g.a, g.b, g.c, kAntenna, t.a, t.b, t.c)) << g.a << ", " << g.b;
    ASSERT_TRUE(c.PlanAttToGrafGps(t.a, t.b, t.c, kAntenna, b.a, b.b, b.c)) << g.a << ", " << g.b;
    plane = std::max(plane, Distance(t, expected));
    back = std::max({back, std::fabs(b.a - g.a), std::fabs(b.b - g.b)});
}

struct Log {
    std::string name;
    std::size_t atLeast;  // positions
};

class LogsToPlaneTest : public ::testing::TestWithParam<Log> {};

TEST_P(LogsToPlaneTest, PlaneCoordinatesAgreeWithProj) {
    const std::string path = DataPath(GetParam().name);
    const bool pos = path.size() > 4 && path.compare(path.size() - 4, 4, ".pos") == 0;
    const std::vector<Triple> positions = pos ? PositionsOfPos(path) : PositionsOfNmea(path);
    EXPECT_GE(positions.size(), GetParam().atLeast);
    double plane = 0, back = 0;
    for (const Triple& g : positions) {
        Zone& zone = ZoneOf(g);
        Check(zone.byCode, zone.system, g, plane, back);
        Check(zone.byType, zone.operation, g, plane, back);
        Check(zone.byType, zone.system, g, plane, back);
        if (HasFatalFailure()) return;
    }
    RecordProperty("positions", static_cast<int>(positions.size()));
    RecordProperty("plane_nanometres", static_cast<int>(plane * 1e9));
    RecordProperty("back_femtodegrees", static_cast<int>(back * 1e15));
    EXPECT_LE(plane, kTenthOfAMillimetre);
    EXPECT_LE(back, 1e-11);
}

INSTANTIATE_TEST_SUITE_P(
    EveryLog, LogsToPlaneTest,
    ::testing::Values(Log{"nmea/rtk_fixed_gga_rmc.nmea", 122},
                      Log{"nmea/rtk_static_session_q1245.nmea", 1204},
                      Log{"nmea/ppp_rtk_static_1h_part.nmea", 1800},
                      Log{"nmea/rtk_float_gst_binary_mix.log", 30}, Log{"nmea/dgps_multignss_gst.nmea", 61},
                      Log{"nmea/dgps_high_precision.nmea", 9}, Log{"nmea/single_gst_no_altitude.nmea", 5},
                      Log{"nmea/mixed_talkers_gn_gp_bd.nmea", 5}, Log{"nmea/coldboot_bad_checksums.nmea", 5},
                      Log{"nmea/malformed_gga.nmea", 4}, Log{"nmea/empty_quality_field.nmea", 23},
                      Log{"nmea/broken_header_line.log", 1}, Log{"nmea/broken_checksum_char.log", 1},
                      Log{"pos/static_rover_llh_velocity.pos", 301},
                      Log{"pos/kinematic_llh_velocity.pos", 531}, Log{"pos/single_llh_weektow.pos", 900},
                      Log{"pos/ppp_kinematic_llh.pos", 900}, Log{"pos/static_site_xyz.pos", 12},
                      Log{"pos/baseline_enu.pos", 10}),
    [](const auto& log) {
        std::string name;
        for (const char c : std::filesystem::path(log.param.name).stem().string())
            name += c >= '0' && c <= '9' ? c : (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ? c : '_';
        return name;
    });

// A log that comes into the folder later is not left out without anybody noticing.
TEST(LogsToPlaneFolderTest, NoLogOfTheFolderIsLeftOut) {
    int files = 0;
    for (const char* folder : {"nmea", "pos"})
        for (const auto& entry : std::filesystem::directory_iterator(DataPath(folder)))
            files += entry.is_regular_file() ? 1 : 0;
    EXPECT_EQ(files, 19);
}

}  // namespace
