// gpsbook simulate: every option, run as a program; and its logs through gpsbook convert.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "tests/apps/gpsbook/commands/Gpsbook.h"

namespace gpsbook::test {
namespace {

using Arguments = std::vector<std::string>;

Outcome Simulate(const Workplace& place, Arguments arguments) {
    arguments.insert(arguments.begin(), "simulate");
    return place.Run(arguments);
}

/// The simulated log as a table, in the UTM zone of the base.
CsvRows Table(const Workplace& place, Arguments arguments) {
    arguments.insert(arguments.end(), {"--base", "45.65,13.76,60", "-o", "log", "--overwrite"});
    const Outcome made = Simulate(place, arguments);
    EXPECT_EQ(made.exitCode, 0) << made;
    const Outcome converted = place.Convert({"log"});
    EXPECT_EQ(converted.exitCode, 0) << converted;
    return RowsOf(converted.out);
}

TEST(SimulateProgram, SameSeedGivesTheSameBytesAndAnotherSeedOthers) {
    const Workplace place;
    for (const char* form : {"nmea", "pos", "pos-xyz", "pos-enu"}) {
        const Arguments seven{"--seed", "7", "--epochs", "50", "-f", form};
        const Outcome first = Simulate(place, seven);
        EXPECT_EQ(first.exitCode, 0) << first;
        EXPECT_EQ(first.err, "") << first;
        EXPECT_GT(first.out.size(), 50U * 50U) << form;
        EXPECT_TRUE(Simulate(place, seven).out == first.out) << form;
        EXPECT_FALSE(Simulate(place, {"--seed", "8", "--epochs", "50", "-f", form}).out == first.out) << form;
    }
    EXPECT_TRUE(place.Names().empty());
}

TEST(SimulateProgram, AllFormsOfALogConvertToTheSameTable) {
    const Workplace place;
    const Arguments options{"--epochs", "40", "--track", "circle", "--separation", "45.5"};
    const auto as = [&](const char* form) {
        Arguments all = options;
        all.insert(all.end(), {"--format", form});
        return Table(place, all);
    };
    const CsvRows nmea = as("nmea");
    ASSERT_EQ(nmea.size(), 40U);
    for (const char* form : {"pos", "pos-xyz", "pos-enu"}) {
        const CsvRows pos = as(form);
        ASSERT_EQ(pos.size(), 40U) << form;
        for (std::size_t i = 0; i < 40; ++i) {
            EXPECT_EQ(pos[i].at("time"), nmea[i].at("time")) << form << ' ' << i;
            for (const char* column : {"east", "north", "height"})
                EXPECT_NEAR(NumberOf(pos[i], column), NumberOf(nmea[i], column), 4e-4) << form << ' ' << i;
        }
    }
}

double Between(const CsvRows& rows, std::size_t i, std::size_t k) {
    return std::hypot(NumberOf(rows[i], "east") - NumberOf(rows[k], "east"),
                      NumberOf(rows[i], "north") - NumberOf(rows[k], "north"));
}

// Metres of the plane in a metre on the ground near the base: 0.99971477 of the zone, from
//   echo 13.76 45.65 | proj -V +proj=utm +zone=33 +ellps=WGS84
// and 60 m above the ellipsoid.
constexpr double kScale = 0.99971477 * (1 - 60.0 / 6.38e6);
constexpr double kEnough =
    1e-3;  // metres: coordinates of log and table are rounded, the scale is of the base

TEST(SimulateProgram, TrackLengthAndRadiusAreThoseAskedFor) {
    const Workplace place;
    const CsvRows line =
        Table(place, {"--track", "line", "--length", "200", "--noise", "0", "--epochs", "11"});
    ASSERT_EQ(line.size(), 11U);
    EXPECT_NEAR(Between(line, 0, 10), 200 * kScale, kEnough);
    EXPECT_NEAR(Between(line, 3, 4), 20 * kScale, kEnough);

    const CsvRows circle =
        Table(place, {"--track", "circle", "--radius", "80", "--noise", "0", "--epochs", "12"});
    ASSERT_EQ(circle.size(), 12U);
    EXPECT_NEAR(Between(circle, 0, 6), 160 * kScale, kEnough);
    EXPECT_NEAR(Between(circle, 1, 7), 160 * kScale, kEnough);

    const CsvRows stops =
        Table(place, {"--track", "stops", "--length", "40", "--noise", "0", "--epochs", "30"});
    ASSERT_EQ(stops.size(), 30U);
    EXPECT_NEAR(Between(stops, 0, 9), 0, 1e-3) << "ten epochs on a point";
    EXPECT_NEAR(Between(stops, 9, 15), 10 * kScale, kEnough) << "the next one is a quarter of the side away";
}

TEST(SimulateProgram, BaseSeparationStartAndRateAreThoseAskedFor) {
    const Workplace place;
    const Arguments options{"--noise",      "0",   "--epochs", "3",
                            "--rate",       "5",   "--from",   "2016-12-31T23:59:59.8Z",
                            "--separation", "45.5"};
    const CsvRows rows = Table(place, options);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_NEAR(NumberOf(rows[0], "lat"), 45.65, 1e-8);
    EXPECT_NEAR(NumberOf(rows[0], "lon"), 13.76, 1e-8);
    EXPECT_NEAR(NumberOf(rows[0], "h"), 60, 2e-4);
    EXPECT_EQ(rows[0].at("time"), "2016-12-31T23:59:59.800Z");
    EXPECT_EQ(rows[1].at("time"), "2016-12-31T23:59:60.000Z") << "the leap second";
    EXPECT_EQ(rows[2].at("time"), "2016-12-31T23:59:60.200Z");
    EXPECT_NE(place.Text("log").find(",14.5000,M,45.5000,M,"), std::string::npos)
        << "altitude and separation";
}

TEST(SimulateProgram, QualityPlanAndNoiseAreThoseAskedFor) {
    const Workplace place;
    const std::pair<const char*, const char*> plans[] = {{"fix", "4"}, {"float", "5"}, {"single", "1"}};
    for (const auto& [plan, code] : plans) {
        const CsvRows rows = Table(place, {"--quality", plan, "--epochs", "20"});
        ASSERT_EQ(rows.size(), 20U);
        for (const auto& row : rows) EXPECT_EQ(row.at("quality"), code) << plan;
    }
    std::map<std::string, int> mixed;
    for (const auto& row : Table(place, {"--quality", "mixed", "--epochs", "100"}))
        ++mixed[row.at("quality")];
    EXPECT_EQ(mixed.size(), 3U);
    const CsvRows noisy = Table(place, {"--quality", "fix", "--noise", "0.5", "--epochs", "20"});
    EXPECT_EQ(noisy[0].at("hrms"), "0.7071");
    EXPECT_EQ(noisy[0].at("vrms"), "1.0000");
}

TEST(SimulateProgram, SatellitesInViewAreToldOnRequest) {
    const Workplace place;
    EXPECT_EQ(Simulate(place, {"--epochs", "5"}).out.find("GSV,"), std::string::npos);
    const Outcome with = Simulate(place, {"--epochs", "5", "--gsv"});
    EXPECT_NE(with.out.find("GSV,"), std::string::npos) << with;
}

TEST(SimulateProgram, FileIsReplacedOnlyOnRequest) {
    const Workplace place;
    const Outcome made = Simulate(place, {"--epochs", "5", "-o", "a.nmea"});
    EXPECT_EQ(made.exitCode, 0) << made;
    EXPECT_EQ(made.out, "");
    EXPECT_NE(made.err.find("a.nmea: 5 epochs"), std::string::npos) << made;
    const std::string before = place.Text("a.nmea");
    const Outcome refused = Simulate(place, {"--epochs", "6", "--output", "a.nmea"});
    EXPECT_EQ(refused.exitCode, 1) << refused;
    EXPECT_NE(refused.err.find("exists already; use --overwrite"), std::string::npos) << refused;
    EXPECT_EQ(place.Text("a.nmea"), before);
    EXPECT_EQ(Simulate(place, {"--epochs", "6", "-o", "a.nmea", "--overwrite"}).exitCode, 0);
    EXPECT_NE(place.Text("a.nmea"), before);
    EXPECT_EQ(place.Names(), Arguments{"a.nmea"});
}

TEST(SimulateProgram, JsonParsesAndTellsWhatWasMade) {
    const Workplace place;
    const Outcome outcome = Simulate(place, {"--epochs", "9", "--quality", "fix", "--json", "-o", "a.nmea"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const nlohmann::json made = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(made.at("epochs"), 9);
    EXPECT_EQ(made.at("fixed"), 9);
    EXPECT_EQ(made.at("bytes"), place.Text("a.nmea").size());
    EXPECT_EQ(outcome.err, "");
}

TEST(SimulateProgram, ValuesThatCannotBeMetAreRefusedAndNothingIsWritten) {
    const Workplace place;
    struct Row {
        Arguments options;
        int code;
        const char* message;
    };
    const Row rows[] = {
        {{"--base", "45.65"}, 2, "is not LAT,LON,H"},
        {{"--base", "91,0,0"}, 2, "the latitude of the base is 91"},
        {{"--track", "spiral"}, 2, "\"spiral\" is unknown"},
        {{"--length", "long"}, 2, "is not a number"},
        {{"--length", "0"}, 2, "the length of the track is 0"},
        {{"--radius", "-1"}, 2, "the radius of the track is -1"},
        {{"--epochs", "0"}, 2, "the number of epochs is 0"},
        {{"--epochs", "ten"}, 2, "--epochs"},
        {{"--rate", "1000"}, 2, "the rate is 1000"},
        {{"--noise", "-1"}, 2, "the noise is -1"},
        {{"--noise", "0,01"}, 2, "is not a number"},
        {{"--quality", "best"}, 2, "\"best\" is unknown"},
        {{"--seed", "x"}, 2, "--seed"},
        {{"--from", "tomorrow"}, 2, "is not a time"},
        {{"--separation", "5000"}, 2, "the geoid separation is 5000"},
        {{"--format", "rinex"}, 2, "\"rinex\" is unknown"},
        {{"--json", "-o", "-"}, 2, "would be mixed with the log"},
        {{"-o", "none/a.nmea"}, 1, "does not exist"},
    };
    for (const Row& row : rows) {
        Arguments arguments = row.options;
        if (row.options.back() != "-" && row.options.front() != "-o")
            arguments.insert(arguments.end(), {"-o", "a.nmea"});
        const Outcome outcome = Simulate(place, arguments);
        EXPECT_EQ(outcome.exitCode, row.code) << row.message << '\n' << outcome;
        EXPECT_NE(outcome.err.find(row.message), std::string::npos) << row.message << '\n' << outcome;
        EXPECT_EQ(outcome.out, "") << row.message;
        EXPECT_TRUE(place.Names().empty()) << row.message;
    }
}

TEST(SimulateProgram, FullStandardOutputIsAFailure) {
    const Workplace place;
    Surroundings full;
    full.outputTo = "/dev/full";
    const Outcome outcome = place.Run({"simulate", "--epochs", "5"}, full);
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("standard output: writing failed"), std::string::npos) << outcome;
}

}  // namespace
}  // namespace gpsbook::test
