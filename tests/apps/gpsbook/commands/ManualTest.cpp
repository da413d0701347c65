// The manual pages of the program itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/apps/gpsbook/commands/Gpsbook.h"
#include "tests/apps/gpsbook/commands/Shell.h"

namespace gpsbook::test {
namespace {

using Json = nlohmann::json;

Json Described(const Workplace& place, const std::vector<std::string>& command) {
    std::vector<std::string> arguments{"manual", "--json"};
    arguments.insert(arguments.end(), command.begin(), command.end());
    const Outcome outcome = place.Run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    return Json::parse(outcome.out);
}

std::vector<std::string> Commands(const Workplace& place) {
    std::vector<std::string> names;
    const Json program = Described(place, {});
    for (const Json& command : program["commands"]) {
        const std::string name = command["name"];
        names.push_back(name.substr(name.rfind(' ') + 1));
    }
    return names;
}

std::string ForTroff(std::string text) {
    std::size_t at = 0;
    while ((at = text.find('-', at)) != std::string::npos) {
        text.insert(at, "\\");
        at += 2;
    }
    return text;
}

void ExpectOptionsOn(const std::string& page, const Json& command) {
    for (const Json& option : command["options"])
        for (const std::string name : option["names"])
            EXPECT_NE(page.find("\\fB" + ForTroff(name) + "\\fR"), std::string::npos)
                << command["name"] << ' ' << name;
    for (const Json& within : command["commands"]) ExpectOptionsOn(page, within);
}

TEST(Manual, EveryOptionOfACommandIsOnItsPage) {
    const Workplace place;
    const std::vector<std::string> commands = Commands(place);
    ASSERT_GE(commands.size(), 4U);
    for (const std::string& command : commands) {
        const Outcome page = place.Run({"manual", command});
        ASSERT_EQ(page.exitCode, 0) << page;
        ExpectOptionsOn(page.out, Described(place, {command}));
    }
}

TEST(Manual, EveryCommandHasExamplesThatBeginWithTheProgram) {
    const Workplace place;
    for (const std::string& command : Commands(place)) {
        const Json described = Described(place, {command});
        std::string examples = described["examples"];
        for (const Json& within : described["commands"]) examples += std::string(within["examples"]);
        EXPECT_NE(examples.find("gpsbook " + command), std::string::npos) << command << ":\n" << examples;
    }
}

TEST(Manual, EveryCommandPrintsJsonWhenAsked) {
    const Workplace place;
    const std::function<void(const Json&)> check = [&](const Json& command) {
        const bool asks = std::any_of(command["options"].begin(), command["options"].end(),
                                      [](const Json& o) { return o["names"] == Json{"--json"}; });
        EXPECT_TRUE(asks || !command["commands"].empty()) << command["name"];
        for (const Json& within : command["commands"]) check(within);
    };
    for (const std::string& command : Commands(place)) check(Described(place, {command}));
}

TEST(Manual, FolderGetsThePageOfTheProgramAndOneOfEveryCommand) {
    const Workplace place;
    std::filesystem::create_directory(place.Path("man1"));
    place.Put("man1/gpsbook.1", "an older one");
    const Outcome outcome = place.Run({"manual", "--folder", "man1", "--json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const std::vector<std::string> commands = Commands(place);
    const Json json = Json::parse(outcome.out);
    ASSERT_EQ(json["files"].size(), commands.size() + 1);
    EXPECT_EQ(json["files"][0], "man1/gpsbook.1");
    EXPECT_EQ(place.Text("man1/gpsbook.1"), place.Run({"manual"}).out);
    for (const std::string& command : commands)
        EXPECT_EQ(place.Text("man1/gpsbook-" + command + ".1"), place.Run({"manual", command}).out)
            << command;
}

TEST(Manual, PagesAreSetWithoutAWarning) {
#ifndef GPSBOOK_GROFF
    GTEST_SKIP() << "groff is not installed";
#else
    const Workplace place;
    std::filesystem::create_directory(place.Path("man1"));
    ASSERT_EQ(place.Run({"manual", "--folder", "man1"}).exitCode, 0);
    int exitCode = -1;
    const std::string warnings = OutputOf(place.Path(""),
                                          "for page in man1/*; do " GPSBOOK_GROFF
                                          " -man -ww -Tutf8 \"$page\" >/dev/null || exit 1; done",
                                          exitCode);
    EXPECT_EQ(exitCode, 0);
    EXPECT_EQ(warnings, "");
    const std::string convert = OutputOf(
        place.Path(""), GPSBOOK_GROFF " -man -Tascii -P-c -P-b -P-u man1/gpsbook-convert.1", exitCode);
    EXPECT_NE(convert.find("--min-quality fix|float|dgps|single|any|CODE"), std::string::npos) << convert;
#endif
}

TEST(Manual, WhatIsNoCommandOrNoFolderIsRefused) {
    const Workplace place;
    const Outcome command = place.Run({"manual", "rotate"});
    EXPECT_EQ(command.exitCode, 2) << command;
    EXPECT_NE(command.err.find("COMMAND: \"rotate\" is unknown; give one of convert, simulate"),
              std::string::npos)
        << command;
    const Outcome folder = place.Run({"manual", "--folder", "none"});
    EXPECT_EQ(folder.exitCode, 1) << folder;
    EXPECT_NE(folder.err.find("the folder none does not exist"), std::string::npos) << folder;
    EXPECT_EQ(place.Names(), std::vector<std::string>{});
}

}  // namespace
}  // namespace gpsbook::test
