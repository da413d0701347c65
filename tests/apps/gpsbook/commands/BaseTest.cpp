// gpsbook base: the frame of a base, and the station at it.
#include <gtest/gtest.h>

#include "gps/model/CLibGps.h"
#include "platform/coord/CEllissoide.h"
#include "tests/apps/gpsbook/commands/StationSite.h"

namespace gpsbook::test {
namespace {

TEST(Base, WithoutAnActionTellsWhatIsKnown) {
    const StationSite site;
    const Outcome outcome = site.Run({"base", "site.gpsbook", "Quay"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "Quay: base without a frame\n"
              "Quay: at Udine (UDIN), UD, IGb14 2010.0, 2.000 m away\n");
    EXPECT_EQ(site.Run({"base", "site.gpsbook", "Pier"}).out,
              "Pier: base without a frame\nPier: no station at the base\n");
    site.Run({"set", "site.gpsbook", "Pier", "base_lon="});
    EXPECT_EQ(site.Run({"base", "site.gpsbook", "Pier"}).out,
              "Pier: base without a frame\nPier: the base has no complete position\n");
}

TEST(Base, TagIsSetAndCleared) {
    const StationSite site;
    const Outcome set = site.Run({"base", "site.gpsbook", "Quay", "tag", "etrf2000"});
    EXPECT_EQ(set.exitCode, 0) << set;
    EXPECT_EQ(set.out, "Quay: code \"\" -> \" [WGS84-ETRF2000]\"\n");
    EXPECT_EQ(site.Field("Quay", "code"), " [WGS84-ETRF2000]");
    EXPECT_EQ(site.Run({"base", "site.gpsbook", "Quay", "tag", "etrf2000"}).out,
              "nothing changed: the values are those of before\n");
    EXPECT_EQ(site.Run({"base", "site.gpsbook", "Quay", "tag", "clear"}).exitCode, 0);
    EXPECT_EQ(site.Field("Quay", "code"), "");
    EXPECT_EQ(site.Run({"base", "site.gpsbook", "Quay", "tag", "euref"}).exitCode, 0);
    EXPECT_EQ(site.Field("Quay", "code"), " [WGS84-EUREF]");
}

TEST(Base, OtherTagHasToBeClearedFirst) {
    const StationSite site;
    site.Run({"base", "site.gpsbook", "Quay", "tag", "euref"});
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "tag", "etrf2000"}, 2,
                       "Quay: the base is tagged EUREF; clear that first");
}

TEST(Base, ClearLeavesNoTag) {
    const StationSite site;
    site.Run({"set", "site.gpsbook", "Quay", "code=A [WGS84-EUREF] [WGS84-ETRF2000] [WGS84-EUREF]"});
    EXPECT_EQ(site.Run({"base", "site.gpsbook", "Quay", "tag", "clear"}).exitCode, 0);
    EXPECT_EQ(site.Field("Quay", "code"), "A");
}

TEST(Base, EntityIsNamedAfterTheStation) {
    const StationSite site;
    const Outcome outcome = site.Run({"base", "site.gpsbook", "Quay", "name"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "Quay: at Udine (UDIN), UD, IGb14 2010.0, 2.000 m away\n"
              "Quay: entity_name \"Quay\" -> \"Udine\"\n");
    EXPECT_EQ(site.Field("Quay", "entity_name"), "Udine");
    EXPECT_EQ(site.Field("Quay", "name"), "Quay");
    EXPECT_EQ(site.Run({"base", "site.gpsbook", "Quay", "name", "--province", "udine"}).out,
              "Quay: at Udine (UDIN), UD, IGb14 2010.0, 2.000 m away\n"
              "nothing changed: the values are those of before\n");
}

TEST(Base, CoordinatesAreTakenInTheFrameThatIsAskedForAndPublished) {
    const StationSite site;
    const auto json = JsonOf(site.Run(
        {"base", "site.gpsbook", "Quay", "name", "--frame", "etrf2000", "--take-coordinates", "--json"}));
    EXPECT_EQ(json["saved"], true);
    EXPECT_EQ(json["station"]["frame"], "ETRF2000");
    EXPECT_NEAR(json["station"]["distance"].get<double>(), 3, 1e-6);
    double lat, lon, h;
    CEllissoide().GeocToGraf(4316423, 1014588, 4569607, lat, lon, h);
    EXPECT_EQ(site.Field("Quay", "base_lat"), lat);
    EXPECT_EQ(site.Field("Quay", "base_lon"), lon);
    EXPECT_EQ(site.Field("Quay", "base_h"), h);
    EXPECT_EQ(site.Field("Quay", "entity_name"), "Udine");
    const auto project = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::read);
    const std::uint32_t changed = project->GetBook().GetGrpAt(0)->GetCloudFlag();
    for (const std::uint32_t bit :
         {CHG_NOME + 0U, CHG_GRP_BASELAT + 0U, CHG_GRP_BASELONG + 0U, CHG_GRP_BASEELEV + 0U})
        EXPECT_NE(changed & bit, 0U) << bit;
    // Plane coordinates of the base follow.
    const double east = site.Field("Quay", "east");
    EXPECT_NEAR(east, 362'000, 5'000);
}

TEST(Base, TaggedBaseTakesCoordinatesOfItsFrameOnly) {
    const StationSite site;
    site.Run({"base", "site.gpsbook", "Quay", "tag", "euref"});
    const auto json = JsonOf(
        site.Run({"base", "site.gpsbook", "Quay", "name", "--take-coordinates", "--dry-run", "--json"}));
    EXPECT_EQ(json["station"]["frame"], "ETRF89") << "not the nearest, which is in IGb14";
    EXPECT_EQ(json["saved"], false);
    site.ExpectRefused(
        {"base", "site.gpsbook", "Quay", "name", "--take-coordinates", "--frame", "IGb14"}, 5,
        "Quay: tagged EUREF, and coordinates in IGb14 do not fit that; Udine has IGb14 2010.0, 2.000 m away; "
        "ETRF2000 2008.0, 3.000 m away; ETRF89 1989.0, 3.100 m away");
    EXPECT_NE(site.Run({"base", "site.gpsbook", "Quay", "name", "--dry-run"})
                  .out.find("Quay: the base is tagged EUREF, these coordinates are in IGb14\n"),
              std::string::npos)
        << "the name alone may come from any of them";
}

// Another station in reach, farther away, that has coordinates in the frame of the tag.
TEST(Base, CoordinatesOfAnotherStationAreNeverTaken) {
    const StationSite site;
    site.Put("shipped.csv",
             "id,name,country,province,x,y,z,frame,epoch\n"
             "UDIN,Udine,ITA,UD,4316424,1014588,4569607,IGb14,2010.0\n"
             "UDI2,Udine 2,ITA,UD,4316422,1014588,4569607,ETRF2000,2008.0\n"
             "UDI2,Udine 2,ITA,UD,4316422.8,1014588,4569607,ETRF89,1989.0\n"
             "UDIN,Udine,ITA,UD,4316422.5,1014588,4569607,ETRF2014,2010.0\n");
    site.Run({"base", "site.gpsbook", "Quay", "tag", "etrf2000"});
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name", "--take-coordinates"}, 5,
                       "Quay: tagged ETRF2000, and no coordinates of Udine fit that: IGb14 2010.0, "
                       "2.000 m away; ETRF2014 2010.0, 3.500 m away. Clear the tag first, or set the other");
    const auto json = JsonOf(site.Run({"base", "site.gpsbook", "Quay", "name", "--dry-run", "--json"}));
    EXPECT_EQ(json["station"]["id"], "UDIN");
    ASSERT_EQ(json["other_sets"].size(), 1U) << json;
    EXPECT_EQ(json["other_sets"][0]["frame"], "ETRF2014");
    site.Run({"base", "site.gpsbook", "Quay", "tag", "clear"});
    site.Run({"base", "site.gpsbook", "Quay", "tag", "euref"});
    EXPECT_EQ(JsonOf(site.Run({"base", "site.gpsbook", "Quay", "name", "--take-coordinates", "--dry-run",
                               "--json"}))["station"]["frame"],
              "ETRF2014")
        << "the same station's, though another one is nearer";
}

TEST(Base, OtherCoordinatesOfTheStationAreTold) {
    const StationSite site;
    const Outcome outcome =
        site.Run({"base", "site.gpsbook", "Quay", "name", "--take-coordinates", "--dry-run"});
    EXPECT_NE(
        outcome.out.find("Quay: note: Udine has other coordinates: ETRF2000 2008.0, 3.000 m away; ETRF89 "
                         "1989.0, 3.100 m away; --frame chooses\n"),
        std::string::npos)
        << outcome;
    const auto sets = JsonOf(site.Run({"base", "site.gpsbook", "Quay", "--json"}))["other_sets"];
    ASSERT_EQ(sets.size(), 2U) << sets;
    EXPECT_EQ(sets[0]["frame"], "ETRF2000");
    EXPECT_EQ(sets[0]["epoch"], "2008.0");
    EXPECT_NEAR(sets[0]["distance"].get<double>(), 3, 1e-6);
    const Outcome chosen = site.Run(
        {"base", "site.gpsbook", "Quay", "name", "--take-coordinates", "--frame", "ETRF89", "--dry-run"});
    EXPECT_EQ(chosen.out.find("note:"), std::string::npos) << chosen;
}

TEST(Base, DryRunChangesNothing) {
    const StationSite site;
    const std::string bytes = site.Bytes();
    const Outcome outcome =
        site.Run({"base", "site.gpsbook", "Quay", "name", "--take-coordinates", "--dry-run"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("Quay: base_lat "), std::string::npos) << outcome;
    EXPECT_NE(outcome.out.find("not saved (--dry-run)\n"), std::string::npos) << outcome;
    EXPECT_TRUE(site.Bytes() == bytes);
}

TEST(Base, WithoutAStationTheNearestIsTold) {
    const StationSite site;
    site.ExpectRefused(
        {"base", "site.gpsbook", "Quay", "name", "--radius", "1.5"}, 5,
        "Quay: no such station within 1.500 m of the base; the nearest is Udine (UDIN), UD, IGb14 "
        "2010.0, 2.000 m away");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name", "--province", "GO"}, 5,
                       "the nearest is Gorizia (GORI)");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name", "--province", "MI"}, 5, "has none at all");
    site.ExpectRefused({"base", "site.gpsbook", "Pier", "name"}, 5, "Pier: no such station within 5.000 m");
    EXPECT_EQ(site.Run({"stations", "radius", "1.5"}).exitCode, 0);
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name"}, 5, "within 1.500 m");
}

TEST(Base, BaseWithoutAPositionIsRefused) {
    const StationSite site;
    site.Run({"set", "site.gpsbook", "Pier", "base_h="});
    site.ExpectRefused({"base", "site.gpsbook", "Pier", "name"}, 5, "the base has no complete position");
}

TEST(Base, WordsThatDoNotGoTogetherAreRefused) {
    const StationSite site;
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "tag"}, 2, "give euref, etrf2000 or clear");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "tag", "itrf"}, 2, "itrf");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "rename"}, 2, "rename");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name", "euref"}, 2, "\"euref\" goes with tag only");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "tag", "euref", "--province", "UD"}, 2,
                       "--province goes with name only");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "--dry-run"}, 2, "--dry-run goes with tag and name");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name", "--province", "XX"}, 2,
                       "\"XX\" is no province");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name", "--radius", "-1"}, 2, "--radius");
    site.ExpectRefused({"base", "site.gpsbook", "Quay", "name", "--frame", "ETRF200"}, 5,
                       "no coordinates in \"ETRF200\"; it has those in ETRF2000, ETRF89, IGb14");
    site.ExpectRefused({"base", "site.gpsbook", "Nowhere", "name"}, 5, "Nowhere");
    site.ExpectRefused({"base", "site.gpsbook", "Quay/P1", "name"}, 2, "P1");
}

}  // namespace
}  // namespace gpsbook::test
