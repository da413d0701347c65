#include "apps/gpsbook/simulator/Simulator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <sstream>

#include "apps/gpsbook/readers/LocalFrame.h"
#include "apps/gpsbook/readers/NmeaReader.h"
#include "apps/gpsbook/readers/PosReader.h"
#include "apps/gpsbook/simulator/EpochGenerator.h"
#include "platform/coord/CEllissoide.h"

namespace gpsbook {
namespace {

SimulationOptions NearTurin() {
    SimulationOptions options;
    options.baseLat = 45.0649;
    options.baseLon = 7.6592;
    options.baseHeight = 300.0;
    options.separation = 47.1234;
    options.epochs = 200;
    return options;
}

std::string Log(const SimulationOptions& options) {
    std::ostringstream out;
    Simulate(options, out);
    return out.str();
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

struct Collector : EpochSink {
    void Accept(const Epoch& epoch) override { epochs.push_back(epoch); }
    void Reject(Reason reason, std::int64_t line, std::string_view detail) override {
        ADD_FAILURE() << "line " << line << ": " << ReasonText(reason) << ' ' << detail;
    }
    void Ignore(Reason reason, std::int64_t line, std::string_view detail) override {
        Reject(reason, line, detail);
    }
    std::vector<Epoch> epochs;
};

/// The epochs of the log, read by the reader of its form.
std::vector<Epoch> ReadBack(const SimulationOptions& options) {
    Collector sink;
    std::unique_ptr<LogReader> reader;
    if (options.form == LogForm::nmea)
        reader = std::make_unique<NmeaReader>(sink);
    else
        reader = std::make_unique<PosReader>(sink);
    reader->Feed(Log(options));
    reader->Finish();
    return sink.epochs;
}

/// East, north, up of the base; metres. The transpose of the frame's own conversion.
Vector3 LocalOf(const SimulationOptions& options, const Epoch& epoch) {
    Vector3 base{};
    Vector3 point{};
    const CEllissoide wgs84;
    wgs84.GrafToGeoc(options.baseLat, options.baseLon, options.baseHeight, base[0], base[1], base[2]);
    wgs84.GrafToGeoc(epoch.lat, epoch.lon, epoch.height, point[0], point[1], point[2]);
    const LocalFrame frame(options.baseLat, options.baseLon);
    Vector3 local{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Vector3 unit{};
        unit[axis] = 1.0;
        const Vector3 direction = frame.ToGeocentric(unit);
        for (std::size_t i = 0; i < 3; ++i) local[axis] += direction[i] * (point[i] - base[i]);
    }
    return local;
}

TEST(Simulator, FirstSentencesAreTheseBytes) {
    // Worked out by hand: 10 m along the equator are atan(10 / 6378137) = 0.00538989 minutes of longitude and
    // 19.44 knots; the height there is 8 micrometres.
    SimulationOptions options;
    options.epochs = 2;
    options.length = 10.0;
    options.noise = 0.0;
    options.quality = QualityPlan::fixed;
    options.separation = 40.0;
    const std::string first =
        "$GNGGA,080000.000,0000.00000000,N,00000.00000000,E,4,15,0.8,-40.0000,M,40.0000,M,1.0,0001*70\r\n"
        "$GNRMC,080000.000,A,0000.00000000,N,00000.00000000,E,0.00,0.00,010524,,,R*69\r\n"
        "$GNGST,080000.000,0.0000,0.0000,0.0000,0.0,0.0000,0.0000,0.0000*71\r\n"
        "$GNGSA,A,3,02,05,07,09,12,13,15,18,21,,,,1.60,0.80,1.39,1*03\r\n"
        "$GNGSA,A,3,65,66,67,72,74,75,,,,,,,1.60,0.80,1.39,2*00\r\n";
    const std::string log = Log(options);
    EXPECT_EQ(log.substr(0, first.size()), first);
    EXPECT_EQ(Lines(log)[6],
              "$GNRMC,080001.000,A,0000.00000000,N,00000.00538989,E,19.44,90.00,010524,,,R*6F\r");
}

TEST(Simulator, FirstPosRowsAreTheseBytes) {
    SimulationOptions options;
    options.epochs = 1;
    options.noise = 0.0;
    options.quality = QualityPlan::single;
    options.baseLat = -45.5;
    options.baseLon = -7.25;
    options.baseHeight = 12.5;
    options.form = LogForm::pos;
    const std::vector<std::string> lines = Lines(Log(options));
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines[3], "% ref pos   : -45.500000000 -7.250000000 12.5000");
    EXPECT_EQ(
        lines[7],
        "2024/05/01 08:00:18.000  -45.500000000   -7.250000000    12.5000   5  15   0.0000   0.0000   0.0000"
        "   0.0000   0.0000   0.0000   0.00    0.0");
    options.form = LogForm::posEnu;
    EXPECT_EQ(Lines(Log(options))[7],
              "2024/05/01 08:00:18.000         0.0000         0.0000         0.0000   5  15   0.0000   "
              "0.0000   0.0000"
              "   0.0000   0.0000   0.0000   0.00    0.0");
}

TEST(Simulator, SameSeedGivesTheSameBytesAndAnotherSeedOthers) {
    for (const LogForm form : {LogForm::nmea, LogForm::pos, LogForm::posXyz, LogForm::posEnu}) {
        SimulationOptions options = NearTurin();
        options.form = form;
        const std::string log = Log(options);
        EXPECT_EQ(Log(options), log);
        options.seed = 2;
        EXPECT_NE(Log(options), log);
    }
}

TEST(Simulator, EverySentenceHasItsChecksum) {
    SimulationOptions options = NearTurin();
    options.satellitesInView = true;
    std::set<std::string> kinds;
    for (const std::string& line : Lines(Log(options))) {
        ASSERT_EQ(line.front(), '$');
        ASSERT_EQ(line.back(), '\r');
        const std::size_t star = line.find('*');
        ASSERT_EQ(star + 4, line.size()) << line;
        int sum = 0;
        for (std::size_t i = 1; i < star; ++i) sum ^= line[i];
        EXPECT_EQ(std::stoi(line.substr(star + 1, 2), nullptr, 16), sum) << line;
        kinds.insert(line.substr(3, 3));
    }
    EXPECT_EQ(kinds, (std::set<std::string>{"GGA", "GSA", "GST", "GSV", "RMC"}));
}

TEST(Simulator, WithoutNoiseTheTrackIsReadBack) {
    struct Row {
        const char* name;
        double lat, lon, h;
    };
    const Row bases[] = {{"Turin", 45.0649, 7.6592, 300.0},
                         {"equator", 0.0, 0.0, 0.0},
                         {"south west", -33.4489, -70.6693, 570.25},
                         {"at the date line", 51.5, 180.0, -12.5},
                         {"at the pole", 90.0, 0.0, 2800.0}};
    for (const Row& base : bases) {
        for (const Track track : {Track::line, Track::circle, Track::stops}) {
            for (const LogForm form : {LogForm::nmea, LogForm::pos, LogForm::posXyz, LogForm::posEnu}) {
                SimulationOptions options = NearTurin();
                options.baseLat = base.lat;
                options.baseLon = base.lon;
                options.baseHeight = base.h;
                options.track = track;
                options.form = form;
                options.noise = 0.0;
                const std::vector<Epoch> epochs = ReadBack(options);
                ASSERT_EQ(epochs.size(), 200U) << base.name;
                for (std::size_t i = 0; i < epochs.size(); ++i) {
                    const Vector3 local = LocalOf(options, epochs[i]);
                    const Vector3 truth = TruthAt(options, static_cast<std::int64_t>(i));
                    for (std::size_t axis = 0; axis < 3; ++axis)
                        EXPECT_NEAR(local[axis], truth[axis], 0.0001)
                            << base.name << " form " << static_cast<int>(form) << " epoch " << i << " axis "
                            << axis;
                }
            }
        }
    }
}

TEST(Simulator, AllFormsTellOfTheSameEpochs) {
    SimulationOptions options = NearTurin();
    const std::vector<Epoch> nmea = ReadBack(options);
    for (const LogForm form : {LogForm::pos, LogForm::posXyz, LogForm::posEnu}) {
        options.form = form;
        const std::vector<Epoch> epochs = ReadBack(options);
        ASSERT_EQ(epochs.size(), nmea.size());
        for (std::size_t i = 0; i < epochs.size(); ++i) {
            EXPECT_EQ(epochs[i].todMs, nmea[i].todMs);
            EXPECT_EQ(epochs[i].day, nmea[i].day);
            EXPECT_EQ(epochs[i].grade, nmea[i].grade);
            EXPECT_EQ(epochs[i].satGps, nmea[i].satGps + nmea[i].satGlonass);
            EXPECT_NEAR(epochs[i].lat, nmea[i].lat, 2e-9);
            EXPECT_NEAR(epochs[i].lon, nmea[i].lon, 2e-9);
            EXPECT_NEAR(epochs[i].height, nmea[i].height, 0.00025);
            // Two roots of four decimals each.
            EXPECT_NEAR(epochs[i].hrms, nmea[i].hrms, 0.0003);
            EXPECT_NEAR(epochs[i].vrms, nmea[i].vrms, 0.0003);
        }
    }
}

TEST(Simulator, QualityCodesAreThoseOfEachForm) {
    SimulationOptions options = NearTurin();
    std::set<int> nmea;
    for (const Epoch& epoch : ReadBack(options)) nmea.insert(epoch.quality);
    EXPECT_EQ(nmea, (std::set<int>{1, 4, 5}));
    options.form = LogForm::pos;
    std::set<int> pos;
    for (const Epoch& epoch : ReadBack(options)) pos.insert(epoch.quality);
    EXPECT_EQ(pos, (std::set<int>{1, 2, 5}));
}

TEST(Simulator, AltitudeAndSeparationMakeTheHeight) {
    SimulationOptions options = NearTurin();
    options.noise = 0.0;
    options.epochs = 1;
    EXPECT_NE(Log(options).find(",252.8766,M,47.1234,M,"), std::string::npos) << Log(options);
}

TEST(Simulator, SummaryCountsWhatIsInTheLog) {
    SimulationOptions options = NearTurin();
    std::ostringstream out;
    const SimulationSummary summary = Simulate(options, out);
    EXPECT_EQ(summary.bytes, static_cast<std::int64_t>(out.str().size()));
    std::int64_t fixed = 0;
    std::int64_t floating = 0;
    const std::vector<Epoch> epochs = ReadBack(options);
    for (const Epoch& epoch : epochs) {
        if (epoch.quality == 4) ++fixed;
        if (epoch.quality == 5) ++floating;
    }
    EXPECT_EQ(summary.epochs, 200);
    EXPECT_EQ(summary.fixed, fixed);
    EXPECT_EQ(summary.floating, floating);
    EXPECT_EQ(summary.single, 200 - fixed - floating);
    EXPECT_EQ(summary.first.todMs, epochs.front().todMs);
    EXPECT_EQ(summary.last.todMs, epochs.back().todMs);
}

TEST(Simulator, LeapSecondIsWrittenAsSecond60) {
    SimulationOptions options = NearTurin();
    options.epochs = 3;
    options.start = {{2016, 12, 31}, 86399000};
    const std::string log = Log(options);
    EXPECT_NE(log.find("$GNGGA,235960.000,"), std::string::npos);
    EXPECT_NE(log.find("$GNGGA,000000.000,"), std::string::npos);
    EXPECT_NE(log.find(",010117,,,R*"), std::string::npos);
    options.form = LogForm::pos;
    EXPECT_NE(Log(options).find("\n2017/01/01 00:00:17.000 "), std::string::npos);
}

TEST(Simulator, StreamThatFailsStopsIt) {
    SimulationOptions options = NearTurin();
    options.epochs = 1'000'000;
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(Simulate(options, out).epochs, 0);
}

}  // namespace
}  // namespace gpsbook
