// The completion scripts do in a shell what they are made for.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/apps/gpsbook/commands/Gpsbook.h"
#include "tests/apps/gpsbook/commands/Shell.h"

namespace gpsbook::test {
namespace {

using Json = nlohmann::json;

Outcome Script(const Workplace& place, const std::string& shell) {
    const Outcome outcome = place.Run({"completion", shell});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.err, "");
    return outcome;
}

/// The command line as the program describes it.
Json Described(const Workplace& place) {
    const Outcome outcome = place.Run({"manual", "--json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    return Json::parse(outcome.out);
}

/// A folder in which bash completes a line that is given as its words, the last one under the cursor.
class Bash {
public:
    Bash() { place_.Put("script", Script(place_, "bash").out); }

    const Workplace& Place() const { return place_; }

    std::set<std::string> Offers(const std::vector<std::string>& words) const {
        std::string script = "source ./script\nCOMP_WORDS=(gpsbook";
        for (const std::string& word : words) script += " '" + word + "'";
        script += ")\nCOMP_CWORD=" + std::to_string(words.size()) +
                  "\n_gpsbook\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
        place_.Put("try", script);
        int exitCode = -1;
        const std::vector<std::string> lines = LinesOf(OutputOf(place_.Path(""), "bash try", exitCode));
        EXPECT_EQ(exitCode, 0);
        std::set<std::string> offers(lines.begin(), lines.end());
        offers.erase("");
        return offers;
    }

private:
    Workplace place_;
};

using Set = std::set<std::string>;

TEST(BashCompletion, EveryCommandAndEveryOptionIsOffered) {
    const Bash bash;
    const std::function<void(const Json&, std::vector<std::string>)> check =
        [&](const Json& command, std::vector<std::string> words) {
            Set commands, options;
            for (const Json& within : command["commands"]) {
                const std::string name = within["name"];
                commands.insert(name.substr(name.rfind(' ') + 1));
            }
            for (const Json& option : command["options"])
                for (const std::string name : option["names"]) options.insert(name);
            words.push_back("-");
            EXPECT_EQ(bash.Offers(words), options) << command["name"];
            words.back() = "";
            if (!commands.empty()) {
                EXPECT_EQ(bash.Offers(words), commands) << command["name"];
            }
            for (const Json& within : command["commands"]) {
                const std::string name = within["name"];
                words.back() = name.substr(name.rfind(' ') + 1);
                check(within, words);
            }
        };
    const Json program = Described(bash.Place());
    ASSERT_GE(program["commands"].size(), 4U);
    check(program, {});
}

TEST(BashCompletion, WordsOfAnOptionAreOfferedHoweverItIsWritten) {
    const Bash bash;
    const Set formats{"csv", "geojson", "gpkg", "kml", "gpx", "dxf", "fgb", "shp"};
    EXPECT_EQ(bash.Offers({"convert", "--format", ""}), formats);
    EXPECT_EQ(bash.Offers({"convert", "-f", ""}), formats);
    EXPECT_EQ(bash.Offers({"convert", "-f", "g"}), (Set{"geojson", "gpkg", "gpx"}));
    EXPECT_EQ(bash.Offers({"convert", "--format", "=", ""}), formats);
    EXPECT_EQ(bash.Offers({"convert", "--format", "="}), formats);
    EXPECT_EQ(bash.Offers({"convert", "--format", "=", "cs"}), (Set{"csv"}));
    EXPECT_EQ(bash.Offers({"convert", "--min-quality", "f"}), (Set{"fix", "float"}));
    EXPECT_EQ(bash.Offers({"convert", "a.nmea", "--crs", "EPSG", ":", "32633", "--heights", "m"}),
              (Set{"marker"}));
}

TEST(BashCompletion, NothingIsOfferedWhereNothingIsKnown) {
    const Bash bash;
    bash.Place().Put("a.nmea", "");
    EXPECT_EQ(bash.Offers({"convert", "--antenna", ""}), Set{});
    EXPECT_EQ(bash.Offers({"convert", "--crs", "EPSG", ":", ""}), Set{});
    EXPECT_EQ(bash.Offers({"convert", "--crs", "EPSG", ":"}), Set{});
    EXPECT_EQ(bash.Offers({"rot"}), Set{});
}

TEST(BashCompletion, FilesAreOfferedWhereOneIsMeant) {
    const Bash bash;
    bash.Place().Put("walk one.nmea", "");
    EXPECT_EQ(bash.Offers({"convert", "w"}), Set{"walk one.nmea"});
    EXPECT_EQ(bash.Offers({"convert", "walk one.nmea", "--json", "w"}), Set{"walk one.nmea"});
    EXPECT_EQ(bash.Offers({"convert", "-o", "w"}), Set{"walk one.nmea"});
    bash.Place().Put("site.gpsbook", "");
    EXPECT_EQ(bash.Offers({"merge", "site.gpsbook", "s"}), Set{"site.gpsbook"});
    EXPECT_EQ(bash.Offers({"sync", "site.gpsbook", "--store", "w"}), Set{"walk one.nmea"});
    EXPECT_EQ(bash.Offers({"completion", ""}), (Set{"bash", "zsh"}));
}

TEST(BashCompletion, TabCompletesInAShell) {
    const Workplace place;
    place.Put("script", Script(place, "bash").out);
    const std::string drawn = Typed({"bash", "--norc", "--noprofile", "-i"}, place.Path(""),
                                    "source ./script\ngpsbook simulate --tra\tci\t", "--track circle");
    EXPECT_NE(drawn.find("--track circle"), std::string::npos) << drawn;
}

TEST(BashCompletion, ScriptIsOneThatBashUnderstands) {
    const Workplace place;
    place.Put("script", Script(place, "bash").out);
    int exitCode = -1;
    EXPECT_EQ(OutputOf(place.Path(""), "bash -n script", exitCode), "");
    EXPECT_EQ(exitCode, 0);
}

TEST(ZshCompletion, EveryOptionOfEveryCommandIsInItsFunction) {
    const Workplace place;
    const std::string script = Script(place, "zsh").out;
    const std::function<void(const Json&)> check = [&](const Json& command) {
        std::string name = command["name"];
        std::replace(name.begin(), name.end(), ' ', '_');
        const std::size_t begin = script.find("\n_" + name + "() {\n");
        ASSERT_NE(begin, std::string::npos) << name;
        const std::string body = script.substr(begin, script.find("\n}\n", begin) - begin);
        for (const Json& option : command["options"])
            for (const std::string option_name : option["names"])
                EXPECT_TRUE(body.find(")" + option_name + "[") != std::string::npos ||
                            body.find(")" + option_name + "=[") != std::string::npos ||
                            body.find(")" + option_name + "+[") != std::string::npos)
                    << name << ' ' << option_name;
        for (const Json& within : command["commands"]) check(within);
    };
    check(Described(place));
}

TEST(ZshCompletion, TabCompletesInAShell) {
#ifndef GPSBOOK_ZSH
    GTEST_SKIP() << "zsh is not installed";
#else
    const Workplace place;
    std::filesystem::create_directory(place.Path("functions"));
    place.Put("functions/_gpsbook", Script(place, "zsh").out);
    int exitCode = -1;
    EXPECT_EQ(OutputOf(place.Path(""), GPSBOOK_ZSH " -n functions/_gpsbook", exitCode), "");
    EXPECT_EQ(exitCode, 0);
    const std::string drawn = Typed(
        {GPSBOOK_ZSH, "-f", "-i"}, place.Path(""),
        "fpath=($PWD/functions $fpath); autoload -Uz compinit; compinit -u -D\ngpsbook simulate --tra\tci\t",
        "--track=circle");
    EXPECT_NE(drawn.find("--track=circle"), std::string::npos) << drawn;
#endif
}

TEST(Completion, JsonHoldsTheScript) {
    const Workplace place;
    const Outcome outcome = place.Run({"completion", "bash", "--json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(json["shell"], "bash");
    EXPECT_EQ(json["script"], Script(place, "bash").out);
}

TEST(Completion, ShellThatIsNotKnownIsRefused) {
    const Workplace place;
    const Outcome outcome = place.Run({"completion", "fish"});
    EXPECT_EQ(outcome.exitCode, 2) << outcome;
    EXPECT_EQ(outcome.err, "gpsbook completion: SHELL: \"fish\" is unknown; give bash or zsh\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(place.Run({"completion"}).exitCode, 2);
}

}  // namespace
}  // namespace gpsbook::test
