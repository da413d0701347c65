// Logs of real receivers and of RTKLIB: what is accepted, what is rejected and why.
//
// The counts were worked out from the files without the readers: with text search for the sentences, the
// checksum computed over the text by a separate script, and by eye for the damaged ones. Expected coordinates
// are the digits printed in the files; those of the X/Y/Z and baseline files, and covariances, were computed
// by that script.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/gpsbook/readers/Format.h"
#include "tests/apps/gpsbook/readers/Collector.h"

namespace gpsbook {
namespace {

using test::Collector;

std::string Load(const std::string& name) {
    std::ifstream file(std::string(GPS_REAL_DATA) + '/' + name, std::ios::binary);
    EXPECT_TRUE(file) << "cannot open " << name << " in " << GPS_REAL_DATA;
    return {std::istreambuf_iterator<char>(file), {}};
}

Collector Read(const std::string& log, LogHeader* header = nullptr) {
    Collector sink;
    const std::unique_ptr<LogReader> reader = MakeReader(DetectFormat(log), sink);
    if (reader == nullptr) {
        ADD_FAILURE() << "format not recognised";
        return sink;
    }
    reader->Feed(log);
    reader->Finish();
    if (header != nullptr) *header = reader->Header();
    return sink;
}

using Counts = std::vector<std::pair<Reason, std::size_t>>;

struct FileRow {
    const char* name;
    Format format;
    std::vector<std::pair<int, std::size_t>> accepted;  // by quality
    Counts rejected;
    Counts ignored;
};

std::size_t CountOf(const std::vector<test::Report>& reports, Reason reason) {
    return static_cast<std::size_t>(std::count_if(reports.begin(), reports.end(),
                                                  [&](const test::Report& r) { return r.reason == reason; }));
}

void ExpectCounts(const std::vector<test::Report>& reports, const Counts& expected, const std::string& what) {
    std::size_t total = 0;
    for (const auto& [reason, count] : expected) {
        EXPECT_EQ(CountOf(reports, reason), count) << what << ": " << ReasonText(reason);
        total += count;
    }
    EXPECT_EQ(reports.size(), total) << what;
}

TEST(RealLogs, EveryFileGivesItsCounts) {
    const FileRow rows[] = {
        {"nmea/rtk_fixed_gga_rmc.nmea", Format::nmea, {{2, 104}, {4, 18}}, {}, {}},
        {"nmea/rtk_static_session_q1245.nmea", Format::nmea, {{1, 76}, {2, 2}, {5, 5}, {4, 1121}}, {}, {}},
        {"nmea/ppp_rtk_static_1h_part.nmea", Format::nmea, {{5, 5}, {4, 1795}}, {}, {}},
        {"nmea/rtk_float_gst_binary_mix.log", Format::nmea, {{5, 30}}, {}, {}},
        {"nmea/dgps_multignss_gst.nmea", Format::nmea, {{2, 61}}, {}, {}},
        {"nmea/dgps_high_precision.nmea", Format::nmea, {{2, 9}}, {}, {}},
        // Altitude and separation are empty in all five.
        {"nmea/single_gst_no_altitude.nmea", Format::nmea, {}, {{Reason::emptyField, 5}}, {}},
        {"nmea/mixed_talkers_gn_gp_bd.nmea", Format::nmea, {{1, 5}}, {{Reason::noFix, 5}}, {}},
        // GGA: lines 31 35 56 64 76 79 have a wrong checksum; 50 69 88 97 106 115 124 133 are whole, without
        // a fix. Others: wrong checksum in 10 27 30 32 34 38 54 74 78, none in 19, 62 runs into the next
        // sentence.
        {"nmea/coldboot_bad_checksums.nmea",
         Format::nmea,
         {{1, 2}},
         {{Reason::badChecksum, 6}, {Reason::noFix, 8}},
         {{Reason::badChecksum, 9}, {Reason::cutLine, 2}}},
        // Line 16 runs into a GLL.
        {"nmea/malformed_gga.nmea", Format::nmea, {{1, 4}}, {{Reason::cutLine, 1}}, {}},
        // The checksum is wrong before the quality is looked at.
        {"nmea/empty_quality_field.nmea", Format::nmea, {}, {{Reason::badChecksum, 23}}, {}},
        {"nmea/broken_header_line.log", Format::nmea, {{1, 1}}, {}, {}},
        {"nmea/broken_checksum_char.log", Format::nmea, {{1, 1}}, {}, {}},
        {"pos/static_rover_llh_velocity.pos", Format::pos, {{1, 301}}, {}, {}},
        {"pos/kinematic_llh_velocity.pos", Format::pos, {{1, 142}, {2, 389}}, {}, {}},
        {"pos/single_llh_weektow.pos", Format::pos, {{5, 900}}, {}, {}},
        {"pos/ppp_kinematic_llh.pos", Format::pos, {{6, 758}, {1, 142}}, {}, {}},
        {"pos/static_site_xyz.pos", Format::pos, {{2, 1}, {1, 11}}, {}, {}},
        {"pos/baseline_enu.pos", Format::pos, {{2, 10}}, {}, {}},
    };
    for (const FileRow& row : rows) {
        const std::string log = Load(row.name);
        EXPECT_EQ(DetectFormat(log), row.format) << row.name;
        const Collector c = Read(log);
        std::size_t total = 0;
        for (const auto& [quality, count] : row.accepted) {
            const int wanted = quality;
            EXPECT_EQ(std::count_if(c.epochs.begin(), c.epochs.end(),
                                    [&](const Epoch& e) { return e.quality == wanted; }),
                      static_cast<std::ptrdiff_t>(count))
                << row.name << " quality " << quality;
            total += count;
        }
        EXPECT_EQ(c.epochs.size(), total) << row.name;
        ExpectCounts(c.rejected, row.rejected, std::string(row.name) + " rejected");
        ExpectCounts(c.ignored, row.ignored, std::string(row.name) + " ignored");
    }
}

TEST(RealLogs, PiecesOfAnySizeGiveTheSame) {
    for (const char* name : {"nmea/rtk_float_gst_binary_mix.log", "nmea/coldboot_bad_checksums.nmea",
                             "nmea/malformed_gga.nmea", "pos/baseline_enu.pos", "pos/static_site_xyz.pos"}) {
        const std::string log = Load(name);
        const auto whole = test::Everything(Read(log));
        for (const std::size_t size : {1, 7, 64, 1000, 4096}) {
            Collector sink;
            const std::unique_ptr<LogReader> reader = MakeReader(DetectFormat(log), sink);
            ASSERT_NE(reader, nullptr) << name;
            for (std::size_t at = 0; at < log.size(); at += size) reader->Feed(log.substr(at, size));
            reader->Finish();
            EXPECT_EQ(test::Everything(sink), whole) << name << " in pieces of " << size;
        }
    }
}

struct EpochRow {
    const char* file;
    bool last;
    std::int64_t line;
    int year, month, day;
    std::uint32_t todMs;
    double lat, lon, height;
    int satGps, satGlonass;
    double pdop;
};

constexpr std::uint32_t Tod(std::uint32_t h, std::uint32_t m, std::uint32_t s, std::uint32_t ms = 0) {
    return ((h * 60 + m) * 60 + s) * 1000 + ms;
}

TEST(RealLogs, FirstAndLastEpochsAreWhatTheFilesPrint) {
    constexpr double none = GPS_VAL_UNSET;
    const EpochRow rows[] = {
        {"nmea/rtk_fixed_gga_rmc.nmea", false, 4, 2020, 3, 18, Tod(13, 28, 19, 600), 41 + 34.49795459 / 60,
         -(93 + 45.03431408 / 60), 278.161 - 31.442, 10, 0, none},
        {"nmea/rtk_fixed_gga_rmc.nmea", true, 246, 2020, 3, 18, Tod(13, 39, 1, 500), 41 + 34.50180366 / 60,
         -(93 + 45.03586734 / 60), 280.829 - 31.442, 19, 0, none},
        {"nmea/rtk_static_session_q1245.nmea", false, 2, 2018, 10, 4, Tod(12, 37, 51), 53 + 16.82807 / 60,
         -(9 + 3.46967 / 60), 67.8, 10, 8, 1.15},
        {"nmea/rtk_static_session_q1245.nmea", true, 4814, 2018, 10, 4, Tod(12, 57, 54), 53 + 16.82828 / 60,
         -(9 + 3.46926 / 60), 67.8, 12, 7, 1.05},
        {"nmea/ppp_rtk_static_1h_part.nmea", true, 3600, 2019, 8, 27, Tod(16, 30, 1), 36 + 6.2180183 / 60,
         140 + 5.1791087 / 60, 31.805 + 38.037, 11, 0, none},
        {"nmea/rtk_float_gst_binary_mix.log", false, 7, 2025, 4, 11, Tod(23, 14, 8), 45 + 3.94632 / 60,
         7 + 39.54368 / 60, 304.6, 7, 6, 1.42},
        {"nmea/rtk_float_gst_binary_mix.log", true, 1120, 2025, 4, 11, Tod(23, 14, 37), 45 + 3.94634 / 60,
         7 + 39.54434 / 60, 303.6, 7, 7, 1.44},
        {"nmea/dgps_multignss_gst.nmea", true, 1386, 2020, 7, 11, Tod(22, 38, 45), 38 + 6.63006 / 60,
         -(122 + 37.61538 / 60), 52.3, 6, 7, 1.05},
        {"nmea/dgps_high_precision.nmea", true, 130, 2021, 12, 23, Tod(1, 45, 8), 44 + 4.1306036 / 60,
         -(121 + 18.8447714 / 60), 1130.215 - 21.35, 9, 7, 0.98},
        {"nmea/mixed_talkers_gn_gp_bd.nmea", false, 45, 2015, 2, 25, Tod(7, 41, 55, 799), 31 + 14.8770 / 60,
         121 + 35.2463 / 60, 165.2, 2, 0, 5.1},
        // The date comes in line 12; the epoch of line 5 waits for it.
        {"nmea/coldboot_bad_checksums.nmea", false, 5, 2019, 4, 7, Tod(0, 3, 43, 30), 48 + 8.9993 / 60,
         11 + 35.0798 / 60, 506.2, 4, 0, 2.7},
        {"nmea/coldboot_bad_checksums.nmea", true, 14, 2019, 4, 7, Tod(0, 3, 45, 30), 48 + 8.9993 / 60,
         11 + 35.0798 / 60, 506.1, 4, 0, 2.7},
        {"nmea/malformed_gga.nmea", false, 9, 2013, 4, 1, Tod(3, 1, 29), 26 + 38.1726 / 60,
         -(80 + 11.3892 / 60), 16.0 - 28.0, 6, 0, 2.6},
        {"nmea/broken_header_line.log", false, 9, 2021, 3, 7, Tod(10, 29, 29), 53 + 27.04024 / 60,
         -(2 + 14.4156 / 60), 84.8, 8, 0, 2.36},
        {"nmea/broken_checksum_char.log", false, 3, 2022, 1, 20, Tod(11, 59, 34), 53 + 27.03889 / 60,
         -(2 + 14.41531 / 60), 85.5, 7, 6, 1.25},
        // GPST is 18 s ahead of UTC from 2017 on, 17 s in December 2015.
        {"pos/static_rover_llh_velocity.pos", false, 26, 2024, 6, 24, Tod(8, 19, 42), 35.134699011,
         136.977575483, 104.8619, 42, 0, none},
        {"pos/static_rover_llh_velocity.pos", true, 326, 2024, 6, 24, Tod(8, 24, 42), 35.134699006,
         136.977575492, 104.8618, 42, 0, none},
        {"pos/kinematic_llh_velocity.pos", true, 553, 2023, 7, 11, Tod(6, 24, 42), 35.165369852,
         136.881267245, 41.4705, 21, 0, none},
        {"pos/single_llh_weektow.pos", false, 9, 2024, 8, 22, Tod(10, 59, 42), 36.068749578, 140.128344322,
         129.0071, 21, 0, none},
        {"pos/ppp_kinematic_llh.pos", true, 923, 2024, 8, 22, Tod(11, 14, 47), 36.068741690, 140.128348471,
         112.6962, 20, 0, none},
        {"pos/static_site_xyz.pos", false, 25, 2024, 5, 17, Tod(23, 59, 42), 52.22096342969, 21.01024295622,
         171.34198641, 8, 0, none},
        {"pos/static_site_xyz.pos", true, 36, 2024, 5, 18, Tod(0, 5, 12), 52.22096570567, 21.01024339897,
         170.72108090, 8, 0, none},
        {"pos/baseline_enu.pos", false, 26, 2015, 12, 14, Tod(17, 24, 40), 40.08618098495, -105.20605258445,
         1573.11440004, 14, 0, none},
        {"pos/baseline_enu.pos", true, 35, 2015, 12, 14, Tod(17, 24, 49), 40.08617750677, -105.20603966060,
         1572.12540002, 14, 0, none},
    };
    for (const EpochRow& row : rows) {
        SCOPED_TRACE(std::string(row.file) + (row.last ? " last" : " first"));
        const Collector c = Read(Load(row.file));
        ASSERT_FALSE(c.epochs.empty());
        const Epoch& e = row.last ? c.epochs.back() : c.epochs.front();
        EXPECT_EQ(e.line, row.line);
        EXPECT_EQ(e.year, row.year);
        EXPECT_EQ(e.month, row.month);
        EXPECT_EQ(e.day, row.day);
        EXPECT_EQ(e.todMs, row.todMs);
        EXPECT_NEAR(e.lat, row.lat, 2e-11);
        EXPECT_NEAR(e.lon, row.lon, 2e-11);
        EXPECT_NEAR(e.height, row.height, 1e-6);
        EXPECT_EQ(e.satGps, row.satGps);
        EXPECT_EQ(e.satGlonass, row.satGlonass);
        EXPECT_EQ(e.pdop, row.pdop);
    }
}

struct PrecisionRow {
    const char* file;
    double hrms, vrms;
    double cov[6];
};

TEST(RealLogs, PrecisionOfTheFirstEpoch) {
    const PrecisionRow rows[] = {
        {"nmea/rtk_float_gst_binary_mix.log",
         0.09211405973,
         0.088,
         {4.593552e-03, 6.556814e-03, 5.078633e-03, 1.657748e-03, 2.894747e-03, -1.481328e-03}},
        {"pos/static_rover_llh_velocity.pos",
         0.003394112550,
         0.0069,
         {2.187157e-05, 2.305950e-05, 1.419893e-05, -1.678648e-05, -1.267172e-05, 1.244028e-05}},
        {"pos/static_site_xyz.pos",
         0.9388221444,
         1.56493352,
         {1.340964e+00, 3.925022e-01, 1.596938e+00, 3.021701e-01, 9.289104e-01, 2.253401e-01}},
        {"pos/baseline_enu.pos",
         2.084372347,
         3.4640,
         {2.474474e+00, 7.615945e+00, 6.253485e+00, 1.899758e+00, -1.902570e+00, -4.312797e+00}},
    };
    for (const PrecisionRow& row : rows) {
        const Collector c = Read(Load(row.file));
        ASSERT_FALSE(c.epochs.empty()) << row.file;
        const Epoch& e = c.epochs.front();
        ASSERT_TRUE(e.hasCov) << row.file;
        EXPECT_NEAR(e.hrms, row.hrms, 1e-6 * row.hrms) << row.file;
        EXPECT_NEAR(e.vrms, row.vrms, 1e-6 * row.vrms) << row.file;
        for (std::size_t i = 0; i < 6; ++i) {
            EXPECT_NEAR(e.cov[i], row.cov[i], 1e-6 * row.vrms * row.vrms) << row.file << " element " << i;
        }
    }
}

TEST(RealLogs, BasesOfTheHeaders) {
    struct Row {
        const char* file;
        bool hasBase;
        double lat, lon, height, antenna, roverAntenna;
    };
    constexpr double none = GPS_VAL_UNSET;
    const Row rows[] = {
        {"pos/static_rover_llh_velocity.pos", true, 35.134707705, 136.977577939, 104.853, 0.0, 0.0},
        {"pos/baseline_enu.pos", true, 40.086179918, -105.206044414, 1575.6355, 0.0, 0.0},
        {"pos/static_site_xyz.pos", true, 52.21473032042, 21.06769145432, 125.193808, 0.0, 0.101},
        {"pos/ppp_kinematic_llh.pos", false, none, none, none, none, 0.0},
        {"pos/single_llh_weektow.pos", false, none, none, none, none, none},
    };
    for (const Row& row : rows) {
        LogHeader header;
        Read(Load(row.file), &header);
        EXPECT_EQ(header.hasBase, row.hasBase) << row.file;
        EXPECT_NEAR(header.baseLat, row.lat, 2e-11) << row.file;
        EXPECT_NEAR(header.baseLon, row.lon, 2e-11) << row.file;
        EXPECT_NEAR(header.baseHeight, row.height, 1e-6) << row.file;
        EXPECT_EQ(header.baseAntenna, row.antenna) << row.file;
        EXPECT_EQ(header.roverAntenna, row.roverAntenna) << row.file;
    }
}

}  // namespace
}  // namespace gpsbook
