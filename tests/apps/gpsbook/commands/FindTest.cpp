// gpsbook find: points by name or code.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

/// Quay: P1, P2 KERB, P3, P4 KERB; Pier: A, and KERB, which is a name there.
Site WithCodes() {
    return Site([](gpsproject::Project& p) {
        p.GetBook().GetPunAt(0, 1)->SetCode("KERB");
        p.GetBook().GetPunAt(0, 3)->SetCode("KERB");
        p.GetBook().GetPunAt(1, 1)->SetNome("KERB");
    });
}

TEST(Find, NameIsFoundWithItsPlace) {
    const Site site = WithCodes();
    const Outcome outcome = site.Run({"find", "site.gpsbook", "P2"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "0,1  Quay/P2  KERB\n");
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "A"}).out, "1,0  Pier/A\n");
}

TEST(Find, NameCodeOrBothAreCompared) {
    const Site site = WithCodes();
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "KERB"}).out, "1,1  Pier/KERB\n");
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "KERB", "--by", "code"}).out, "0,1  Quay/P2  KERB\n");
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "KERB", "--by", "both", "--from", "0,2"}).out,
              "0,3  Quay/P4  KERB\n");
}

TEST(Find, SearchGoesOnBehindAPointAndAround) {
    const Site site = WithCodes();
    const auto next = [&](const std::string& from) {
        return site.Run({"find", "site.gpsbook", "KERB", "--by", "both", "--from", from, "--next"}).out;
    };
    EXPECT_EQ(next("0,1"), "0,3  Quay/P4  KERB\n");
    EXPECT_EQ(next("#0,#3"), "1,1  Pier/KERB\n");
    EXPECT_EQ(next("1,1"), "0,1  Quay/P2  KERB\n");
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "P3", "--from", "0,2", "--next"}).out, "0,2  Quay/P3\n")
        << "the only one comes round again";
}

TEST(Find, AllComeOnceInTheOrderFromTheStart) {
    const Site site = WithCodes();
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "KERB", "--by", "both", "--all"}).out,
              "0,1  Quay/P2  KERB\n0,3  Quay/P4  KERB\n1,1  Pier/KERB\n");
    const auto json = JsonOf(
        site.Run({"find", "site.gpsbook", "KERB", "--by", "both", "--all", "--from", "0,2", "--json"}));
    std::string places;
    for (const auto& f : json["found"])
        places += std::to_string(f["group"].get<int>()) + ',' + std::to_string(f["point"].get<int>()) + ' ';
    EXPECT_EQ(places, "0,3 1,1 0,1 ");
    EXPECT_EQ(json["found"][0]["address"], "Quay/P4");
    EXPECT_EQ(json["found"][0]["code"], "KERB");
    EXPECT_EQ(json["found"][0]["vrs"], false);
}

TEST(Find, TextThatNobodyHasIsNotFound) {
    const Site site = WithCodes();
    site.ExpectRefused({"find", "site.gpsbook", "p1"}, 5, "no point has the name \"p1\"");
    const Outcome outcome = site.Run({"find", "site.gpsbook", "P9", "--by", "both", "--json"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(nlohmann::json::parse(outcome.out)["found"].size(), 0U);
}

TEST(Find, TextIsTakenAsItStands) {
    const Site site([](gpsproject::Project& p) {
        p.GetBook().GetPunAt(0, 0)->SetNome("[x]");
        p.GetBook().GetPunAt(0, 1)->SetNome("");
        p.GetBook().GetPunAt(0, 2)->SetNome("P*");
    });
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "[x]"}).out, "0,0  Quay/[x]\n");
    EXPECT_EQ(site.Run({"find", "site.gpsbook", ""}).out, "0,1  Quay/#1\n");
    EXPECT_EQ(site.Run({"find", "site.gpsbook", "P*"}).out, "0,2  Quay/P*\n");
}

TEST(Find, WrongPlacesAreRefused) {
    const Site site = WithCodes();
    for (const char* from : {"0", "0,", ",1", "0,1,2", "x,1", "-1,0", "0,99999999999"})
        site.ExpectRefused({"find", "site.gpsbook", "P1", "--from", from}, 2, "--from: ");
    site.ExpectRefused({"find", "site.gpsbook", "P1", "--from", "0,4"}, 5,
                       "there is no point 4 in a group 0");
    site.ExpectRefused({"find", "site.gpsbook", "P1", "--from", "2,0"}, 5,
                       "there is no point 0 in a group 2");
    site.ExpectRefused({"find", "site.gpsbook", "P1", "--next"}, 2, "--next needs --from");
    site.ExpectRefused({"find", "site.gpsbook", "P1", "--by", "height"}, 2, "--by");
}

}  // namespace
}  // namespace gpsbook::test
