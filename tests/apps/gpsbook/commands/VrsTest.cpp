// gpsbook vrs: points measured against a virtual reference station.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

std::string Codes(const Site& site) {
    std::string codes;
    for (const char* point : {"Quay/P1", "Quay/P2", "Quay/P3", "Quay/P4"})
        codes += site.Field(point, "code").get<std::string>() + ";";
    return codes;
}

/// P1, P3 and P4 are marked; P2 has a code.
Site Marked() {
    return Site([](gpsproject::Project& p) {
        for (const int i : {0, 2, 3}) p.GetBook().GetPunAt(0, i)->SetPointAsVrs();
        p.GetBook().GetPunAt(0, 1)->SetCode("KERB");
    });
}

TEST(Vrs, WithoutAnActionTheMarkedPointsAreTold) {
    const Site site = Marked();
    const Outcome outcome = site.Run({"vrs", "site.gpsbook", "Quay"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "#0 Quay/P1\n#2 Quay/P3\n#3 Quay/P4\n"
              "Quay: 3 of 4 points measured against a virtual station\n");
    const auto json = JsonOf(site.Run({"vrs", "site.gpsbook", "Quay", "--json"}));
    EXPECT_EQ(json["vrs"].dump(), "[0,2,3]");
    EXPECT_EQ(json["points"], 4);
    EXPECT_EQ(json["saved"], false);
}

TEST(Vrs, OnePointIsKeptByPositionOrName) {
    for (const char* kept : {"2", "#2", "P3"}) {
        const Site site = Marked();
        const Outcome outcome = site.Run({"vrs", "site.gpsbook", "Quay", "--keep", kept});
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(outcome.out,
                  "Quay/P1: code \" [VRS]\" -> \"\"\n"
                  "Quay/P4: code \" [VRS]\" -> \"\"\n"
                  "Quay: 1 of 4 points measured against a virtual station\n");
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(Codes(site), ";KERB; [VRS];;") << kept;
    }
}

TEST(Vrs, KeptPointWithoutAMarkIsTold) {
    const Site site = Marked();
    const Outcome outcome = site.Run({"vrs", "site.gpsbook", "Quay", "--keep", "P2"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("Quay/P2 has no mark itself"), std::string::npos) << outcome;
    EXPECT_EQ(Codes(site), ";KERB;;;");
}

TEST(Vrs, PointsAreMarkedAndCleared) {
    const Site site = Marked();
    EXPECT_EQ(site.Run({"vrs", "site.gpsbook", "Quay/#1..#2", "set"}).out,
              "Quay/P2: code \"KERB\" -> \"KERB [VRS]\"\n"
              "Quay: 2 of 2 points measured against a virtual station\n");
    EXPECT_EQ(Codes(site), " [VRS];KERB [VRS]; [VRS]; [VRS];");
    EXPECT_EQ(site.Run({"vrs", "site.gpsbook", "Quay", "set"}).out,
              "nothing changed: the points are marked as before\n"
              "Quay: 4 of 4 points measured against a virtual station\n");
    EXPECT_EQ(site.Run({"vrs", "site.gpsbook", "Quay/P1", "clear"}).exitCode, 0);
    EXPECT_EQ(Codes(site), ";KERB [VRS]; [VRS]; [VRS];");
    EXPECT_EQ(site.Run({"vrs", "site.gpsbook", "Quay", "clear"}).exitCode, 0);
    EXPECT_EQ(Codes(site), ";KERB;;;");
}

TEST(Vrs, ClearLeavesNoMark) {
    const Site site([](gpsproject::Project& p) { p.GetBook().GetPunAt(0, 0)->SetCode("A [VRS] [VRS]"); });
    site.Run({"vrs", "site.gpsbook", "Quay", "clear"});
    EXPECT_EQ(Codes(site), "A;;;;");
}

TEST(Vrs, DryRunChangesNothing) {
    const Site site = Marked();
    const std::string bytes = site.Bytes();
    const Outcome outcome = site.Run({"vrs", "site.gpsbook", "Quay", "clear", "--dry-run"});
    EXPECT_NE(outcome.out.find("not saved (--dry-run)\n"), std::string::npos) << outcome;
    EXPECT_TRUE(site.Bytes() == bytes);
}

TEST(Vrs, WordsThatDoNotGoTogetherAreRefused) {
    const Site site = Marked();
    site.ExpectRefused({"vrs", "site.gpsbook", "Quay", "set", "--keep", "2"}, 2,
                       "--keep goes with clear, or alone");
    site.ExpectRefused({"vrs", "site.gpsbook", "Quay", "--keep", "4"}, 5, "#4");
    site.ExpectRefused({"vrs", "site.gpsbook", "Quay", "--keep", "P9"}, 5, "P9");
    site.ExpectRefused({"vrs", "site.gpsbook", "Quay/P1", "--keep", "0"}, 2,
                       "--keep goes with a whole group");
    site.ExpectRefused({"vrs", "site.gpsbook", "#0..#1"}, 2, "means several groups");
    site.ExpectRefused({"vrs", "site.gpsbook", "Nowhere"}, 5, "Nowhere");
    site.ExpectRefused({"vrs", "site.gpsbook", "Quay", "mark"}, 2, "mark");
}

}  // namespace
}  // namespace gpsbook::test
