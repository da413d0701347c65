// gpsbook options: of a book and of the settings.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

/// A site with settings of its own.
class OptionSite : public Site {
public:
    OptionSite() { around_.environment["GPS_SURVEY_SETTINGS"] = Path("settings.ini"); }

    Outcome Options(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "options");
        return Run(arguments, around_);
    }

    /// An option as `list --json` tells it.
    json Option(const std::string& name, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{"list", name, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return JsonOf(Options(arguments))["options"].at(0);
    }

    void ExpectOption(const std::string& name, const std::vector<std::string>& more, const json& value,
                      const char* source) const {
        const json option = Option(name, more);
        EXPECT_EQ(option["value"], value) << name;
        EXPECT_EQ(option["source"], source) << name;
    }

private:
    Surroundings around_;
};

const std::vector<std::string> kBook{"--book", "site.gpsbook"};

TEST(Options, ListNamesAllWithValueSourceAndMeaning) {
    const OptionSite site;
    const Outcome outcome = site.Options({"list"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("points.ColSimb               5            default   colour of the symbol\n"),
              std::string::npos)
        << outcome;
    EXPECT_NE(outcome.out.find("postproc.sSuffissoPtVecchi   _OLD         default   "), std::string::npos)
        << outcome;
    const json all = JsonOf(site.Options({"list", "--json"}));
    EXPECT_EQ(all["book"], nullptr);
    EXPECT_EQ(all["settings"], site.Path("settings.ini"));
    EXPECT_EQ(all["options"].size(), LinesOf(outcome.out).size());
    EXPECT_EQ(site.Option("points.ColSimb"),
              json::parse(R"({"name":"points.ColSimb","value":5,"source":"default","default":5,"in_book":true,
                              "in_settings":true,"what":"colour of the symbol"})"));
}

TEST(Options, SourceTellsWhereAValueComesFrom) {
    const OptionSite site;
    site.ExpectOption("points.ColSimb", kBook, 5, "book");
    site.ExpectOption("points.ColSimb", {}, 5, "default");
    site.ExpectOption("postproc.wPar1", kBook, 15, "default");  // the book has no options of post-processing
    site.ExpectOption("postproc.sSuffissoPtNuovi", kBook, "", "default");
    site.Put("settings.ini", "[DIS-GPS-Punti GPS]\nColSimb = 8\n[OPZ-POST-PROC]\nsSuffissoPtNuovi = _B\n");
    site.ExpectOption("points.ColSimb", {}, 8, "settings");
    site.ExpectOption("points.ColSimb", kBook, 5, "book");
    site.ExpectOption("postproc.sSuffissoPtNuovi", {}, "_B", "settings");
    site.ExpectOption("postproc.sSuffissoPtNuovi", kBook, "_B", "settings");
    ASSERT_EQ(site.Options({"set", "postproc.wPar1=20", "--book", "site.gpsbook"}).exitCode, 0);
    site.ExpectOption("postproc.wPar1", kBook, 20, "book");
    site.ExpectOption("postproc.wPar2", kBook, 10, "book");
}

TEST(Options, GetPrintsTheValuesAlone) {
    const OptionSite site;
    const Outcome outcome = site.Options(
        {"get", "points.TipoSimb", "book.CalcLibCmp", "postproc.dPar2", "--book", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "3\ntrue\n0.95\n");
    EXPECT_EQ(site.Options({"get"}).exitCode, 2);
}

TEST(Options, SetChangesABookAndNothingElse) {
    const OptionSite site;
    const Outcome outcome = site.Options({"set", "points.ColSimb=9", "bases.LwSimb=-2", "book.OpzFlagA=true",
                                          "postproc.dPar1=0.25", "--book", "site.gpsbook"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "points.ColSimb = 9\nbases.LwSimb = -2\nbook.OpzFlagA = true\npostproc.dPar1 = 0.25\n");
    site.ExpectOption("points.ColSimb", kBook, 9, "book");
    site.ExpectOption("bases.ColSimb", kBook, 4, "book");
    site.ExpectOption("bases.LwSimb", kBook, -2, "book");
    site.ExpectOption("book.OpzFlagA", kBook, true, "book");
    site.ExpectOption("postproc.dPar1", kBook, 0.25, "book");
    EXPECT_FALSE(std::filesystem::exists(site.Path("settings.ini")));
    EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4");
}

TEST(Options, SetChangesTheSettingsAndNoBook) {
    const OptionSite site;
    const std::string bytes = site.Bytes();
    const json told = JsonOf(site.Options(
        {"set", "points.ColSimb=9", "book.CalcLibCmp=false", "postproc.sSuffissoPtVecchi= A =B ", "--json"}));
    EXPECT_EQ(told["settings"], site.Path("settings.ini"));
    EXPECT_EQ(told["options"][0], json::parse(R"({"name":"points.ColSimb","value":9})"));
    site.ExpectOption("points.ColSimb", {}, 9, "settings");
    site.ExpectOption("book.CalcLibCmp", {}, false, "settings");
    site.ExpectOption("postproc.sSuffissoPtVecchi", {}, " A =B ", "settings");
    EXPECT_TRUE(site.Bytes() == bytes);
    ASSERT_EQ(site.Options({"list"}).exitCode, 0);
    const Outcome made = site.Options({"get", "bases.ColSimb"});
    EXPECT_EQ(made.out, "4\n") << "the other values are still those of the program";
}

TEST(Options, NewBookHasTheSettingsOfItsTime) {
    const OptionSite site;
    ASSERT_EQ(site.Options({"set", "points.ColSimb=9"}).exitCode, 0);
    Surroundings around;
    around.environment["GPS_SURVEY_SETTINGS"] = site.Path("settings.ini");
    ASSERT_EQ(site.Run({"new", "b.gpsbook", "--crs", "EPSG:32633"}, around).exitCode, 0);
    ASSERT_EQ(site.Options({"reset", "points.ColSimb"}).exitCode, 0);
    site.ExpectOption("points.ColSimb", {}, 5, "default");
    site.ExpectOption("points.ColSimb", {"--book", "b.gpsbook"}, 9, "book");
}

TEST(Options, ResetGoesBackToTheDefaultOrToANewBook) {
    const OptionSite site;
    ASSERT_EQ(site.Options({"set", "points.ColSimb=9", "points.ColNome=9"}).exitCode, 0);
    ASSERT_EQ(site.Options({"set", "points.ColSimb=7", "bases.ColSimb=7", "--book", "site.gpsbook"}).exitCode,
              0);
    ASSERT_EQ(site.Options({"reset", "points.ColSimb", "--book", "site.gpsbook"}).exitCode, 0);
    site.ExpectOption("points.ColSimb", kBook, 9, "book");
    site.ExpectOption("bases.ColSimb", kBook, 7, "book");
    ASSERT_EQ(site.Options({"reset"}).exitCode, 0);
    site.ExpectOption("points.ColNome", {}, 5, "default");
    ASSERT_EQ(site.Options({"reset", "--book", "site.gpsbook"}).exitCode, 0);
    site.ExpectOption("bases.ColSimb", kBook, 4, "book");
    site.ExpectOption("postproc.wPar1", kBook, 15, "default");  // none were made by setting them back
}

TEST(Options, WhatCannotBeIsRefusedAndNothingIsChanged) {
    const OptionSite site;
    struct Row {
        std::vector<std::string> arguments;
        int code;
        const char* words;
    };
    const Row rows[] = {
        {{"set", "points.ColSimb=3", "points.Colour=3", "--book", "site.gpsbook"},
         5,
         "no option \"points.Colour\""},
        {{"get", "ColSimb"}, 5, "there is points.ColSimb, bases.ColSimb"},
        {{"set", "points.ColSimb", "--book", "site.gpsbook"}, 2, "\"points.ColSimb\" has no '='"},
        {{"set", "points.ColSimb=3", "points.ColNome=red"},
         2,
         "points.ColNome: \"red\" is not a whole number"},
        {{"set", "points.ColSimb=40000"}, 2, "is not a whole number from -32768 to 32767"},
        {{"set", "book.CalcLibCmp=maybe"}, 2, "book.CalcLibCmp: \"maybe\" is not true or false"},
        {{"set", "postproc.sSuffissoPtNuovi=a;b"}, 2, "postproc.sSuffissoPtNuovi: a text cannot hold ';'"},
        {{"set", "postproc.wPar1=3"}, 2, "postproc.wPar1: is not kept in the settings but in each book"},
        {{"set", "points.VisSimb=0"}, 2, "points.VisSimb: is not kept in the settings"},
        {{"set", "postproc.sSuffissoPtNuovi=x", "--book", "site.gpsbook"},
         2,
         "is not kept in a book but in the settings"},
        {{"set", "points.ColSimb=3", "points.ColSimb=4"}, 2, "points.ColSimb: given twice; give one value"},
        {{"set", "book.OpzFlagA=1", "book.OpzFlagA=1", "--book", "site.gpsbook"},
         2,
         "book.OpzFlagA: given twice"},
        {{"set", "postproc.dPar1=1e30", "--book", "site.gpsbook"}, 2, "a number like 0.95, at most 1e15"},
        {{"reset", "postproc.wPar1"}, 2, "postproc.wPar1: is not kept in the settings"},
        {{"list", "--book", "gone.gpsbook"}, 5, "gone.gpsbook"},
        {{"list", "--book", ""}, 2, "--book"},
        {{}, 2, "required"},
    };
    const std::string bytes = site.Bytes();
    for (const Row& row : rows) {
        const Outcome outcome = site.Options(row.arguments);
        EXPECT_EQ(outcome.exitCode, row.code) << row.words << '\n' << outcome;
        EXPECT_NE(outcome.err.find(row.words), std::string::npos) << row.words << '\n' << outcome;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(site.Bytes() == bytes) << row.words;
        EXPECT_EQ(site.Names(), std::vector<std::string>{"site.gpsbook"}) << row.words;
    }
}

TEST(Options, DamagedSettingsAreToldAndKept) {
    const OptionSite site;
    const std::string damaged("[DIS-GPS-Punti GPS]\nColSimb = 8\n\0", 33);
    site.Put("settings.ini", damaged);
    const std::string told = "settings.ini: is damaged and gives no settings, the defaults hold";
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"list"}, {"get", "points.ColSimb"}, {"reset"}}) {
        const Outcome outcome = site.Options(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_NE(outcome.err.find(told), std::string::npos) << outcome;
        EXPECT_EQ(site.Text("settings.ini"), damaged);
    }
    Surroundings around;
    around.environment["GPS_SURVEY_SETTINGS"] = site.Path("settings.ini");
    const Outcome made = site.Run({"new", "b", "--crs", "EPSG:32633"}, around);
    EXPECT_NE(made.err.find(told), std::string::npos) << "a new book has options of the settings\n" << made;
    const Outcome set = site.Options({"set", "points.ColSimb=9", "points.ColNome=9"});
    EXPECT_EQ(set.exitCode, 0) << set;
    EXPECT_NE(set.err.find("a new file is begun, and the former one is " + site.Path("settings.ini.damaged")),
              std::string::npos)
        << set;
    EXPECT_EQ(site.Text("settings.ini.damaged"), damaged);
    const Outcome again = site.Options({"set", "points.ColSimb=8"});
    EXPECT_EQ(again.err, "") << "the new file is a good one";
    EXPECT_EQ(site.Options({"list"}).err, "");
}

TEST(Options, SettingsThatCannotBeReadAreTold) {
    const OptionSite site;
    std::filesystem::create_directory(site.Path("settings.ini"));
    const Outcome outcome = site.Options({"get", "points.ColSimb"});
    EXPECT_EQ(outcome.out, "5\n") << outcome;
    EXPECT_NE(outcome.err.find("settings.ini: cannot be read and gives no settings"), std::string::npos)
        << outcome;
}

TEST(Options, SettingsThatCannotBeWrittenAreTold) {
    const OptionSite site;
    std::filesystem::create_directory(site.Path("settings.ini"));
    const Outcome outcome = site.Options({"set", "points.ColSimb=3"});
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_NE(outcome.err.find("the settings cannot be written"), std::string::npos) << outcome;
}

}  // namespace
}  // namespace gpsbook::test
