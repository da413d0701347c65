#include "apps/gpsbook/commands/Simulate.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

struct Result {
    int exitCode;
    std::string out;
    std::string err;
};

/// What the command does with the arguments; a refused command line counts as exit code 2.
Result Simulation(std::vector<std::string> arguments) {
    CLI::App app;
    int exitCode = -1;
    AddSimulateCommand(app, exitCode);
    arguments.insert(arguments.begin(), "simulate");
    std::reverse(arguments.begin(), arguments.end());  // that is how they are parsed
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::string refusal;
    try {
        app.parse(arguments);
    } catch (const CLI::ParseError& e) {
        exitCode = 2;
        refusal = e.what();
    }
    const std::string out = testing::internal::GetCapturedStdout();
    return {exitCode, out, testing::internal::GetCapturedStderr() + refusal};
}

TEST(SimulateCommand, LogGoesToStandardOutput) {
    const Result result = Simulation({"--epochs", "2", "--base", "-45.5,-7.25,300", "--noise", "0"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.substr(0, 49), "$GNGGA,080000.000,4530.00000000,S,00715.00000000,");
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 10);
}

TEST(SimulateCommand, FileHoldsWhatStandardOutputWouldAndIsReplacedOnlyOnRequest) {
    const TestFolder folder;
    const std::string log = Simulation({"--seed", "5", "--epochs", "30"}).out;
    EXPECT_EQ(Simulation({"--seed", "5", "--epochs", "30", "-o", folder / "a.nmea"}).exitCode, 0);
    EXPECT_EQ(ReadFile(folder / "a.nmea"), log);

    const Result again = Simulation({"--seed", "6", "-o", folder / "a.nmea"});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.err, "gpsbook simulate: " + (folder / "a.nmea") +
                             ": exists already; use --overwrite to replace it\n");
    EXPECT_EQ(ReadFile(folder / "a.nmea"), log);

    EXPECT_EQ(Simulation({"--seed", "6", "--overwrite", "-o", folder / "a.nmea"}).exitCode, 0);
    EXPECT_NE(ReadFile(folder / "a.nmea"), log);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.nmea"});
}

TEST(SimulateCommand, JsonTellsWhatWasMade) {
    const TestFolder folder;
    const Result result = Simulation({"--json", "--epochs", "7", "--quality", "float", "-o",
                                      folder / "a.nmea", "--from", "2016-12-31T23:59:55Z", "--rate", "2"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const auto made = nlohmann::json::parse(result.out);
    EXPECT_EQ(made.at("file"), folder / "a.nmea");
    EXPECT_EQ(made.at("epochs"), 7);
    EXPECT_EQ(made.at("float"), 7);
    EXPECT_EQ(made.at("fixed"), 0);
    EXPECT_EQ(made.at("single"), 0);
    EXPECT_EQ(made.at("bytes"), std::filesystem::file_size(folder / "a.nmea"));
    EXPECT_EQ(made.at("first"), "2016-12-31T23:59:55.000Z");
    EXPECT_EQ(made.at("last"), "2016-12-31T23:59:58.000Z");
}

TEST(SimulateCommand, EveryFormCanBeAskedFor) {
    const std::pair<const char*, const char*> forms[] = {{"nmea", "$GNGGA"},
                                                         {"pos", "% (lat/lon/height=WGS84"},
                                                         {"pos-xyz", "% (x/y/z-ecef=WGS84"},
                                                         {"pos-enu", "% (e/n/u-baseline=WGS84"}};
    for (const auto& [form, mark] : forms) {
        const Result result =
            Simulation({"-f", form, "--epochs", "3", "--track", "circle", "--radius", "20"});
        EXPECT_EQ(result.exitCode, 0) << form;
        EXPECT_NE(result.out.find(mark), std::string::npos) << form;
    }
}

TEST(SimulateCommand, OptionsThatCannotBeMetAreUsageErrorsAndSayWhy) {
    struct Row {
        std::vector<std::string> arguments;
        const char* message;
    };
    const Row rows[] = {
        {{"--base", "45,7"}, "\"45,7\" is not LAT,LON,H; write it like"},
        {{"--base", "45,x,300"}, "\"x\" is not a number"},
        {{"--base", "95,7,300"}, "the latitude of the base is 95; give -90 to 90 degrees"},
        {{"--track", "spiral"}, "\"spiral\" is unknown; give one of circle, line, stops"},
        {{"--quality", "best"}, "\"best\" is unknown; give one of fix, float, mixed, single"},
        {{"-f", "rinex"}, "\"rinex\" is unknown; give one of nmea, pos, pos-enu, pos-xyz"},
        {{"--epochs", "0"}, "the number of epochs is 0; give 1 to"},
        {{"--epochs", "many"}, "epochs"},
        {{"--rate", "0"}, "the rate is 0; give 0.01 to 100"},
        {{"--noise", "nan"}, "\"nan\" is not a number"},
        {{"--noise", "0,5"}, "\"0,5\" is not a number"},
        {{"--from", "yesterday"}, "\"yesterday\" is not a time; write it like 2024-05-01T08:00:00Z"},
        {{"--from", "1975-01-01T00:00:00Z"}, "the start is no time of the GPS era"},
        {{"--json"}, "give a file with -o"},
    };
    for (const Row& row : rows) {
        const Result result = Simulation(row.arguments);
        EXPECT_EQ(result.exitCode, 2) << row.message;
        EXPECT_NE(result.err.find(row.message), std::string::npos) << row.message << " / " << result.err;
        EXPECT_EQ(result.out, "") << row.message;
    }
}

TEST(SimulateCommand, PlaceThatCannotBeWrittenIsAFailure) {
    const TestFolder folder;
    const Result missing = Simulation({"-o", folder / "none/a.nmea"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_NE(missing.err.find("does not exist"), std::string::npos) << missing.err;
    {
        const FileSizeLimit full(4096);
        EXPECT_EQ(Simulation({"-o", folder / "a.nmea"}).exitCode, 1);
    }
    EXPECT_TRUE(folder.Names().empty());
}

}  // namespace
}  // namespace gpsbook
