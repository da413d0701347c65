// gpsbook check: whether a book is whole, and what looks wrong in it.
#include <gtest/gtest.h>

#include "apps/gpsbook/book/Lint.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

TEST(Check, CleanBookIsWhole) {
    const Site site([](gpsproject::Project& p) { p.GetBook().DelGrpAt(1); });
    const Outcome outcome = site.Run({"check", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "site.gpsbook: whole, 1 group, 4 points, 0 findings\n");
    EXPECT_EQ(outcome.err, "");
    const auto json = JsonOf(site.Run({"check", "site.gpsbook", "--json"}));
    EXPECT_EQ(json["damaged"], false);
    EXPECT_EQ(json["findings"].size(), 0U);
}

TEST(Check, FindingsHaveAnExitCodeOfTheirOwn) {
    const Site site([](gpsproject::Project& p) {
        p.GetBook().DelGrpAt(1);
        p.GetBook().GetPunAt(0, 3)->SetNome("P1");
        p.GetBook().GetPunAt(0, 1)->SetHposRms(-1);
    });
    const Outcome outcome = site.Run({"check", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_EQ(outcome.out,
              "Quay: 1 point: a name that a point before has (#3) [name-twice]\n"
              "Quay: 1 point: hrms outside 0 to 1000000 metres (#1) [range]\n"
              "site.gpsbook: whole, 1 group, 4 points, 2 findings\n");
    EXPECT_NE(outcome.err.find("site.gpsbook: 2 findings"), std::string::npos) << outcome;
    const Outcome asJson = site.Run({"check", "site.gpsbook", "--json"});
    EXPECT_EQ(asJson.exitCode, 3);
    const auto json = nlohmann::json::parse(asJson.out);
    EXPECT_EQ(json["findings"][0]["kind"], "name-twice");
    EXPECT_EQ(json["findings"][0]["group"], 0);
    EXPECT_EQ(json["findings"][0]["name"], "Quay");
    EXPECT_EQ(json["findings"][0]["count"], 1);
    EXPECT_EQ(json["findings"][0]["points"].dump(), "[3]");
}

TEST(Check, KindsAreLeftOutWhenAsked) {
    const Site site;
    const Outcome all = site.Run({"check", "site.gpsbook"});
    EXPECT_EQ(all.exitCode, 3) << all;
    const Outcome some = site.Run({"check", "site.gpsbook", "--ignore", "unset,conversion"});
    EXPECT_EQ(some.exitCode, 0) << some;
    site.ExpectRefused({"check", "site.gpsbook", "--ignore", "unset,colour"}, 2,
                       "--ignore: \"colour\" is unknown; give some of name-twice, ");
    site.ExpectRefused({"check", "site.gpsbook", "--ignore", ""}, 2, "--ignore");
    site.ExpectRefused({"check", "site.gpsbook", "--ignore", "unset,,day"}, 2,
                       "--ignore: \"unset,,day\" has an empty name");
}

TEST(Check, EveryKindIsOnItsPage) {
    const std::string page = ReadFile(std::string(GPSBOOK_PAGES) + "/commands/check.md");
    for (const LintKind& kind : kLintKinds)
        EXPECT_NE(page.find("| `" + std::string(kind.name) + "` | "), std::string::npos) << kind.name;
}

}  // namespace
}  // namespace gpsbook::test
