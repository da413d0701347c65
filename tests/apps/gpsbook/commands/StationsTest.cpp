// gpsbook stations: the catalogue of permanent stations; and what other commands tell of them.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "gps/model/CLibGps.h"
#include "tests/apps/gpsbook/commands/StationSite.h"

namespace gpsbook::test {
namespace {

std::string Ids(const nlohmann::json& json) {
    std::string ids;
    for (const auto& s : json["stations"])
        ids += s["id"].get<std::string>() + ' ' + s["frame"].get<std::string>() + ';';
    return ids;
}

const std::string kTable =
    "id,name,country,province,x,y,z,frame,epoch,vx,vy,vz,source\n"
    "TRIE,Trieste,ITA,TS,4337000,1070000,4536000,ETRF2000,2008.0,,,,there\n";

TEST(Stations, ListHasTheCatalogueInItsOrder) {
    const StationSite site;
    const Outcome outcome = site.Run({"stations", "list"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(LinesOf(outcome.out).size(), 6U) << outcome;
    EXPECT_NE(outcome.out.find("2 stations, 4 sets of coordinates\n"), std::string::npos) << outcome;
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--json"}))),
              "UDIN ETRF2000;UDIN ETRF89;UDIN IGb14;GORI ETRF2000;");
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--province", "GO", "--json"}))), "GORI ETRF2000;");
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--frame", "igb14", "--json"}))), "UDIN IGb14;");
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--province", "abroad", "--json"}))), "");
}

TEST(Stations, NearOnesComeByDistanceInAStraightLine) {
    const StationSite site;
    const auto json = JsonOf(site.Run({"stations", "near", "45.95", "13.63", "--json"}));
    EXPECT_EQ(Ids(json), "GORI ETRF2000;UDIN IGb14;UDIN ETRF2000;UDIN ETRF89;");
    EXPECT_LT(json["stations"][0]["distance"].get<double>(), 2000);
    EXPECT_NEAR(json["stations"][1]["distance"].get<double>(), 33'000, 1'500);
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "near", "45.95", "13.63", "--within", "10", "--json"}))),
              "GORI ETRF2000;");
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "near", "45.95", "13.63", "--count", "2", "--json"}))),
              "GORI ETRF2000;UDIN IGb14;");
    const Outcome far = site.Run({"stations", "near", "-33.9", "-70.6"});
    EXPECT_EQ(far.exitCode, 5) << far;
    EXPECT_NE(far.err.find("no such station within 100 km"), std::string::npos) << far;
    // The other side of the earth is no farther than straight through it.
    EXPECT_EQ(JsonOf(site.Run({"stations", "near", "-46", "-167", "--within", "12800", "--json"}))["stations"]
                  .size(),
              4U);
    EXPECT_EQ(site.Run({"stations", "near", "45", "13", "--within", "12801"}).exitCode, 2);
    EXPECT_EQ(site.Run({"stations", "near", "91", "0"}).exitCode, 2);
    EXPECT_EQ(site.Run({"stations", "near", "45"}).exitCode, 2);
}

TEST(Stations, TableIsAddedOnce) {
    const StationSite site;
    site.Put("more.csv", kTable);
    const Outcome dry = site.Run({"stations", "add", "more.csv", "--dry-run"});
    EXPECT_EQ(dry.exitCode, 0) << dry;
    EXPECT_EQ(dry.out, site.Path("settings/stations.csv") +
                           ": 1 added, 0 replaced, 0 there already; not saved (--dry-run)\n");
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--province", "TS", "--json"}))), "");
    EXPECT_EQ(JsonOf(site.Run({"stations", "add", "more.csv", "--json"}))["added"], 1);
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--province", "TS", "--json"}))), "TRIE ETRF2000;");
    const auto again = JsonOf(site.Run({"stations", "add", "more.csv", "--json"}));
    EXPECT_EQ(again["same"], 1);
    EXPECT_EQ(again["saved"], false);
}

TEST(Stations, OtherValuesAreTakenOnlyWhenAsked) {
    const StationSite site;
    site.Put("more.csv", kTable);
    site.Run({"stations", "add", "more.csv"});
    std::string moved = kTable;
    moved.replace(moved.find("4337000"), 7, "4337001");
    site.Put("moved.csv", moved);
    const Outcome refused = site.Run({"stations", "add", "moved.csv"});
    EXPECT_EQ(refused.exitCode, 3) << refused;
    EXPECT_NE(refused.err.find("moved.csv: TRIE in ETRF2000 was added before with other values"),
              std::string::npos)
        << refused;
    EXPECT_EQ(JsonOf(site.Run({"stations", "list", "--province", "TS", "--json"}))["stations"][0]["x"],
              4337000);
    EXPECT_EQ(JsonOf(site.Run({"stations", "add", "moved.csv", "--replace", "--json"}))["replaced"], 1);
    EXPECT_EQ(JsonOf(site.Run({"stations", "list", "--province", "TS", "--json"}))["stations"][0]["x"],
              4337001);
}

TEST(Stations, ManyProgramsAddAtOnceAndAllIsThere) {
    const StationSite site;
    std::vector<std::thread> threads;
    std::atomic<int> added = 0;
    for (int i = 0; i < 12; ++i) {
        std::string table = kTable;
        table.replace(table.find("TRIE"), 4, "TR" + std::to_string(10 + i));
        const std::string name = std::to_string(i) + ".csv";
        site.Put(name, table);
        threads.emplace_back([&, name] { added += site.Run({"stations", "add", name}).exitCode == 0; });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(added, 12);
    EXPECT_EQ(JsonOf(site.Run({"stations", "list", "--province", "TS", "--json"}))["stations"].size(), 12U);
}

TEST(Stations, SetThatReplacesAShippedOneIsTold) {
    const StationSite site;
    site.Put("more.csv",
             "id,name,country,province,x,y,z,frame,epoch,source\n"
             "UDIN,Udine,ITA,UD,4316423,1014588,4569607.5,ETRF2000,2008.0 (by hand),here\n"
             "GORI,Gorizia,ITA,GO,4317947,1046521,4560977,ETRF2000,2008.0,here\n");
    const Outcome outcome = site.Run({"stations", "add", "more.csv", "--json"});
    EXPECT_EQ(JsonOf(outcome)["instead_of_shipped"], 1) << "the other one is the same";
    EXPECT_NE(
        outcome.err.find("note: 1 set of coordinates of more.csv instead of one of the catalogue that comes "
                         "with the program\n"),
        std::string::npos)
        << outcome;
    EXPECT_EQ(JsonOf(site.Run({"stations", "list", "--json"}))["stations"].size(), 4U);
    site.Put("new.csv", kTable);
    EXPECT_EQ(site.Run({"stations", "add", "new.csv"}).err, "");
}

TEST(Stations, WhatAPersonWroteIntoTheTableIsKept) {
    const StationSite site;
    site.Put("more.csv", kTable);
    EXPECT_EQ(site.Run({"stations", "add", "more.csv"}).exitCode, 0);
    const std::string byHand = "# checked in May\n" + site.Text("settings/stations.csv");
    site.Put("settings/stations.csv", byHand);
    std::string other = kTable;
    other.replace(other.find("TRIE"), 4, "TRI2");
    site.Put("other.csv", other);
    const Outcome outcome = site.Run({"stations", "add", "other.csv"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("are kept in " + site.Path("settings/stations.csv.old")), std::string::npos)
        << outcome;
    EXPECT_EQ(site.Text("settings/stations.csv.old"), byHand);
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--province", "TS", "--json"}))),
              "TRIE ETRF2000;TRI2 ETRF2000;");
}

TEST(Stations, FrameThatNobodyHasIsAnsweredWithThoseThereAre) {
    const StationSite site;
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"stations", "list", "--frame", "ETRF200"},
          std::vector<std::string>{"stations", "near", "46", "13", "--frame", "ETRF200"}}) {
        const Outcome outcome = site.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 5) << outcome;
        EXPECT_NE(outcome.err.find("it has those in ETRF2000, ETRF89, IGb14"), std::string::npos) << outcome;
    }
}

TEST(Stations, TableWithAProblemIsNotAdded) {
    const StationSite site;
    site.Put(
        "more.csv",
        kTable +
            "NONE,None,ITA,TS,far,1,2,ETRF2000,,,,,\nXXXX,X,ITA,QQ,4337000,1070000,4536000,ETRF2000,,,,,\n");
    const Outcome outcome = site.Run({"stations", "add", "more.csv"});
    EXPECT_EQ(outcome.exitCode, 4) << outcome;
    EXPECT_NE(outcome.err.find("more.csv: line 3: x is \"far\", which is no number"), std::string::npos)
        << outcome;
    EXPECT_NE(outcome.err.find("more.csv: line 4: \"QQ\" is no province"), std::string::npos) << outcome;
    EXPECT_NE(outcome.err.find("nothing was added"), std::string::npos) << outcome;
    EXPECT_EQ(Ids(JsonOf(site.Run({"stations", "list", "--province", "TS", "--json"}))), "");
    EXPECT_EQ(site.Run({"stations", "add", "none.csv"}).exitCode, 5);
}

TEST(Stations, ColumnsThatAreNotTakenOverAreTold) {
    const StationSite site;
    site.Put("more.csv", "id,x,y,z,frame,colour\nTRIE,4337000,1070000,4536000,ETRF2000,red\n");
    const Outcome outcome = site.Run({"stations", "add", "more.csv"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("columns that are not taken over: colour"), std::string::npos) << outcome;
}

TEST(Stations, CheckTellsOfTheFilesAndOfWhatCouldGoWrong) {
    const StationSite site;
    const Outcome whole = site.Run({"stations", "check"});
    EXPECT_EQ(whole.exitCode, 0) << whole;
    EXPECT_EQ(whole.out,
              site.Path("shipped.csv") + ": 4 sets of coordinates, 0 problems\nsearch radius 5.000 m\n");
    site.Put("shipped.csv",
             "id,x,y,z,frame\n"
             "AAAA,4316423,1014588,4569607,ETRF2000\n"
             "BBBB,4316424,1014588,4569607,ETRF2000\n"
             "AAAA,4316623,1014588,4569607,IGb14\n"
             "CCCC,4316923,1014588,4569607,not stated\n"
             "DDDD,0,0,0,ETRF2000\n");
    const auto json = nlohmann::json::parse(site.Run({"stations", "check", "--json"}).out);
    EXPECT_EQ(json["files"][0]["problems"][0]["line"], 6);
    EXPECT_EQ(json["doubts"].size(), 3U) << json;
    const Outcome doubtful = site.Run({"stations", "check"});
    EXPECT_EQ(doubtful.exitCode, 3) << doubtful;
    EXPECT_NE(doubtful.out.find("AAAA and BBBB: 1.000 m apart"), std::string::npos) << doubtful;
    EXPECT_NE(doubtful.out.find("AAAA: 200.000 m apart in ETRF2000 and IGb14"), std::string::npos)
        << doubtful;
    EXPECT_NE(doubtful.out.find("CCCC: the frame \"not stated\" is not known"), std::string::npos)
        << doubtful;
    EXPECT_NE(doubtful.err.find("4 findings"), std::string::npos) << doubtful;
}

TEST(Stations, ProblemsOfTheCatalogueAreTroubleOfNoBook) {
    const StationSite site;
    site.Put("shipped.csv", "id,x\n");
    const Outcome outcome = site.Run({"base", "site.gpsbook", "Quay"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("shipped.csv: 1 line cannot be used; gpsbook stations check tells why"),
              std::string::npos)
        << outcome;
}

TEST(Stations, RadiusIsToldAndSet) {
    const StationSite site;
    EXPECT_EQ(site.Run({"stations", "radius"}).out, "5.000 m\n");
    EXPECT_EQ(site.Run({"stations", "radius", "2.5"}).out, "2.500 m\n");
    EXPECT_EQ(JsonOf(site.Run({"stations", "radius", "--json"}))["radius"], 2.5);
    for (const char* text : {"-1", "1000.5", "far", ""})
        EXPECT_EQ(site.Run({"stations", "radius", text}).exitCode, 2) << text;
    EXPECT_EQ(site.Run({"stations", "radius"}).out, "2.500 m\n");
}

// Without a catalogue of its own: the one that comes with the program.
TEST(Stations, ProgramFindsTheStationsThatComeWithIt) {
    const Workplace place;
    const auto json = JsonOf(place.Run({"stations", "near", "46.0548", "13.2274", "--within", "1", "--json"},
                                       {{}, {}, {{"GPS_SURVEY_SETTINGS", place.Path("settings.ini")}}}));
    ASSERT_FALSE(json["stations"].empty());
    for (const auto& s : json["stations"]) EXPECT_EQ(s["id"], "UDIN");
}

TEST(CheckStations, BaseUnderAnotherNameAndFrameAgainstItsTagAreFindings) {
    const StationSite site;
    site.Run({"base", "site.gpsbook", "Quay", "name", "--frame", "ETRF2000", "--take-coordinates"});
    site.Run({"set", "site.gpsbook", "Quay", "entity_name=Quay"});
    site.Run({"base", "site.gpsbook", "Quay", "tag", "euref"});
    const Outcome outcome = site.Run({"check", "site.gpsbook", "--ignore", "unset,conversion"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_EQ(
        outcome.out,
        "Quay: base in EUREF\n"
        "Quay: tagged EUREF, with the coordinates of Udine in ETRF2000; gpsbook base sets another tag, or "
        "takes "
        "other coordinates [base-frame]\n"
        "Quay: 0.000 m from the station Udine (UDIN), under another name; gpsbook base names it [base-name]\n"
        "site.gpsbook: whole, 2 groups, 6 points, 2 findings\n");
    EXPECT_EQ(
        site.Run({"check", "site.gpsbook", "--ignore", "unset,conversion,base-name,base-frame"}).exitCode, 0);
    const auto json = nlohmann::json::parse(site.Run({"check", "site.gpsbook", "--json"}).out);
    EXPECT_EQ(json["frames"].size(), 1U);
    EXPECT_EQ(json["frames"][0]["base"], "EUREF");
    EXPECT_EQ(json["frames"][0]["vrs"], 0);
}

TEST(CheckStations, VirtualPointsAreTold) {
    const StationSite site;
    site.Run({"vrs", "site.gpsbook", "Pier/#0", "set"});
    EXPECT_NE(
        site.Run({"check", "site.gpsbook"}).out.find("Pier: 1 point measured against a virtual station\n"),
        std::string::npos);
}

TEST(ListStations, FramesAreAColumnWhereThereIsOne) {
    const StationSite site;
    EXPECT_EQ(site.Run({"list", "site.gpsbook"}).out.find("frame"), std::string::npos);
    EXPECT_TRUE(JsonOf(site.Run({"list", "site.gpsbook", "--json"}))["groups"][0]["frame"].is_null());
    site.Run({"base", "site.gpsbook", "Pier", "tag", "etrf2000"});
    const std::vector<std::string> lines = LinesOf(site.Run({"list", "site.gpsbook"}).out);
    EXPECT_TRUE(lines[0].ends_with("  frame")) << lines[0];
    EXPECT_TRUE(lines[2].ends_with("  ETRF2000")) << lines[2];
    EXPECT_EQ(JsonOf(site.Run({"list", "site.gpsbook", "--json"}))["groups"][1]["frame"], "ETRF2000");
}

}  // namespace
}  // namespace gpsbook::test
