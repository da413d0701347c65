// The command line as a whole: what is asked for, and what is refused.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Gpsbook.h"

namespace gpsbook::test {
namespace {

TEST(Program, HelpAndVersionGoToStandardOutput) {
    const Workplace place;
    const std::pair<std::vector<std::string>, const char*> rows[] = {{{"--help"}, "simulate"},
                                                                     {{"-h"}, "convert"},
                                                                     {{"--version"}, "gpsbook 0."},
                                                                     {{"convert", "--help"}, "--min-quality"},
                                                                     {{"simulate", "--help"}, "--track"},
                                                                     {{"convert", "-h"}, "LOG"}};
    for (const auto& [arguments, part] : rows) {
        const Outcome outcome = place.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_NE(outcome.out.find(part), std::string::npos) << part << '\n' << outcome;
        EXPECT_EQ(outcome.err, "") << outcome;
    }
}

TEST(Program, CommandLineThatIsNoneIsAUsageErrorAndSaysWhy) {
    const Workplace place;
    place.Put("a.nmea", "");
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{}, "no command is given; --help lists them"},
        {{"rotate"}, "rotate"},
        {{"--rotate"}, "--rotate"},
        {{"convert"}, "required"},
        {{"convert", "a.nmea"}, "--crs is required"},
        {{"convert", "--crs", "EPSG:32633"}, "LOG is required"},
        {{"convert", "a.nmea", "--crs", "EPSG:32633", "--rotate"}, "--rotate"},
        {{"convert", "a.nmea", "--crs"}, "--crs"},
        {{"convert", "a.nmea", "--crs", "EPSG:32633", "--antenna", "1", "--antenna", "2"}, "--antenna"},
        {{"simulate", "--rotate"}, "--rotate"},
        {{"simulate", "more"}, "more"}};
    for (const auto& [arguments, part] : rows) {
        const Outcome outcome = place.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << part << '\n' << outcome;
        EXPECT_NE(outcome.err.find(part), std::string::npos) << part << '\n' << outcome;
        EXPECT_EQ(outcome.out, "") << outcome;
    }
    EXPECT_EQ(place.Names(), std::vector<std::string>{"a.nmea"});
}

TEST(Program, CommandLineThatIsNoneIsToldInOneLineThatNamesTheCommand) {
    const Workplace place;
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"rotate"}, "gpsbook: The following argument was not expected: rotate; gpsbook --help tells more\n"},
        {{"convert", "a.nmea"}, "gpsbook convert: --crs is required; gpsbook convert --help tells more\n"},
        {{"new", "b", "--crs"},
         "gpsbook new: --crs: 1 required CRS missing; gpsbook new --help tells more\n"},
        {{"section", "write", "b"}, "gpsbook section: "},
        {{"info", ""}, "gpsbook info: BOOK: the value is empty; gpsbook info --help tells more\n"}};
    for (const auto& [arguments, text] : rows) {
        const Outcome outcome = place.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << outcome;
        EXPECT_TRUE(outcome.err.starts_with(text)) << text << outcome;
        EXPECT_EQ(LinesOf(outcome.err).size(), 1U) << outcome;
    }
}

}  // namespace
}  // namespace gpsbook::test
