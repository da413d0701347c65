// gpsbook list, info and show: what a book holds.
#include <gtest/gtest.h>

#include "apps/gpsbook/writers/Columns.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

/// The names of all points that a list as JSON tells of, separated by blanks.
std::string Listed(const Site& site, std::vector<std::string> options) {
    options.insert(options.begin(), {"list", "site.gpsbook", "--json"});
    std::string names;
    const auto json = JsonOf(site.Run(options));
    for (const auto& group : json["groups"])
        for (const auto& point : group["points"])
            names += (names.empty() ? "" : " ") + point["name"].get<std::string>();
    return names;
}

TEST(List, JsonHasGroupsWithPointsUnderTheNamesOfTheColumns) {
    const Site site;
    const auto json = JsonOf(site.Run({"list", "site.gpsbook", "--json"}));
    EXPECT_EQ(json["version"], 1400);
    ASSERT_EQ(json["groups"].size(), 2U);
    const auto& quay = json["groups"][0];
    EXPECT_EQ(quay["index"], 0);
    EXPECT_EQ(quay["name"], "Quay");
    EXPECT_EQ(quay["date"], "2024-05-01");
    EXPECT_EQ(quay["crs"], "EPSG:32633");
    EXPECT_EQ(quay["size"], 4);
    EXPECT_TRUE(quay["base_lat"].is_null());
    ASSERT_EQ(quay["points"].size(), 4U);
    const auto& point = quay["points"][1];
    EXPECT_EQ(point["index"], 1);
    for (const Column& column : kColumns) EXPECT_TRUE(point.contains(column.name)) << column.name;
    EXPECT_EQ(point["group"], "Quay");
    EXPECT_EQ(point["name"], "P2");
    EXPECT_EQ(point["code"], "");
    EXPECT_EQ(point["time"], "2024-05-01T08:01:00.000Z");
    EXPECT_EQ(point["lat"].get<double>(), 45.65 + 0.0001) << "every digit";
    EXPECT_EQ(point["quality"], 4);
    EXPECT_TRUE(point["pdop"].is_null());
    const auto& bare = json["groups"][1]["points"][0];
    for (const char* name :
         {"time", "lat", "lon", "h", "antenna", "east", "north", "height", "pdop", "hrms", "vrms"})
        EXPECT_TRUE(bare[name].is_null()) << name;
    EXPECT_EQ(bare["gps"], 0);
}

TEST(List, FiltersLeaveOutPoints) {
    const Site site;
    EXPECT_EQ(Listed(site, {}), "P1 P2 P3 P4 A B");
    EXPECT_EQ(Listed(site, {"Pier"}), "A B");
    EXPECT_EQ(Listed(site, {"#1", "Quay"}), "P1 P2 P3 P4 A B") << "in the order of the book";
    EXPECT_EQ(Listed(site, {"--quality", "5"}), "P3");
    EXPECT_EQ(Listed(site, {"--quality", "5,0"}), "P3 A B");
    EXPECT_EQ(Listed(site, {"--name", "P?"}), "P1 P2 P3 P4");
    EXPECT_EQ(Listed(site, {"--name", "*2"}), "P2");
    EXPECT_EQ(Listed(site, {"--from", "08:01", "--to", "2024-05-01T08:02:00Z"}), "P2 P3");
    EXPECT_EQ(Listed(site, {"--name", "P*", "--quality", "4", "--from", "08:01"}), "P2 P4");
    EXPECT_EQ(Listed(site, {"--name", "X"}), "");
}

TEST(List, FieldsAreThoseThatAreNamed) {
    const Site site;
    const auto some = JsonOf(site.Run({"list", "site.gpsbook", "Quay", "--json", "--fields", "lat,cov_xx"}));
    EXPECT_EQ(some["groups"][0]["points"][0].dump(),
              R"({"cov_xx":0.0,"group":"Quay","index":0,"lat":45.65,"name":"P1"})");
    const auto all = JsonOf(site.Run({"list", "site.gpsbook", "Quay", "--json", "--fields", "all"}));
    EXPECT_TRUE(all["groups"][0]["points"][0].contains("tod"));
}

TEST(List, TextHasGroupsOrPoints) {
    const Site site;
    const Outcome groups = site.Run({"list", "site.gpsbook"});
    EXPECT_EQ(groups.exitCode, 0) << groups;
    EXPECT_EQ(groups.out,
              "  #  name  date        points  base_lat  base_lon  base_h  crs\n"
              "  0  Quay  2024-05-01       4                              EPSG:32633\n"
              "  1  Pier                   2\n");
    const Outcome points =
        site.Run({"list", "site.gpsbook", "Quay", "--quality", "5", "--fields", "name,h,quality"});
    EXPECT_EQ(points.out,
              "#0 Quay: 1 of 4 points\n"
              "  #  name        h  quality\n"
              "  2  P3    65.0000        5\n")
        << points;
    EXPECT_EQ(site.Run({"list", "site.gpsbook", "--name", "X"}).out, "no point fits\n");
    EXPECT_EQ(LinesOf(site.Run({"list", "site.gpsbook", "--points"}).out).size(), 10U);
}

TEST(List, TextsThatCannotBeShownDoNoHarm) {
    const Site site([](gpsproject::Project& p) {
        p.GetBook().GetPunAt(0, 0)->SetNome("a\x1B[2J\n\xFF");
        p.GetBook().GetGrpAt(0)->SetNomeGrp("q\"\\\t");
    });
    const Outcome text = site.Run({"list", "site.gpsbook", "--points"});
    EXPECT_EQ(text.out.find('\x1B'), std::string::npos);
    EXPECT_NE(text.out.find("a?[2J??"), std::string::npos) << text;
    const auto json = JsonOf(site.Run({"list", "site.gpsbook", "--json"}));
    EXPECT_EQ(json["groups"][0]["name"], "q\"\\\t");
    EXPECT_EQ(json["groups"][0]["points"][0]["name"], "a\x1B[2J\n\xEF\xBF\xBD");
}

TEST(List, EmptyBookHasNoGroups) {
    const Site site([](gpsproject::Project& p) {
        p.GetBook().DelGrpAt(1);
        p.GetBook().DelGrpAt(0);
    });
    EXPECT_EQ(site.Run({"list", "site.gpsbook"}).out, "no groups\n");
    EXPECT_EQ(JsonOf(site.Run({"list", "site.gpsbook", "--json"})).dump(), R"({"groups":[],"version":1400})");
}

TEST(List, WhatCannotBeIsRefused) {
    const Site site;
    site.ExpectRefused({"list", "site.gpsbook", "--quality", "fix"}, 2,
                       "--quality: \"fix\" is no list of codes");
    site.ExpectRefused({"list", "site.gpsbook", "--from", "noon"}, 2, "--from: \"noon\" is not a time");
    site.ExpectRefused({"list", "site.gpsbook", "--fields", "lat,latt"}, 2,
                       "--fields: \"latt\" is no field of a point; is it lat");
    site.ExpectRefused({"list", "site.gpsbook", "--fields", "name,,lat"}, 2,
                       "--fields: \"name,,lat\" has an empty name; give names with one comma between them");
    site.ExpectRefused({"list", "site.gpsbook", "--name", ""}, 2, "--name");
    site.ExpectRefused({"list", "site.gpsbook", "Quay/P1"}, 2, "\"Quay/P1\" is a point; give groups only");
    site.ExpectRefused({"list", "site.gpsbook", "Mole"}, 5, "there is no group \"Mole\"");
    site.ExpectRefused({"list", "none.gpsbook"}, 5, "none.gpsbook");
}

TEST(Info, TellsWhatABookHolds) {
    const Site site([](gpsproject::Project& p) { p.GetSettings()["name"] = "harbour"; });
    const auto json = JsonOf(site.Run({"info", "site.gpsbook", "--json"}));
    EXPECT_EQ(json["version"], 1400);
    EXPECT_EQ(json["settings"]["name"], "harbour");
    EXPECT_EQ(json["bytes"], site.Bytes().size());
    EXPECT_EQ(json["groups"], 2);
    EXPECT_EQ(json["points"], 6);
    EXPECT_EQ(json["by_quality"].dump(), R"({"0":2,"4":3,"5":1})");
    EXPECT_EQ(json["first"], "2024-05-01T08:00:00.000Z");
    EXPECT_EQ(json["last"], "2024-05-01T08:03:00.000Z");
    EXPECT_EQ(json["systems"].dump(), R"(["EPSG:32633"])");
    EXPECT_EQ(json["groups_without_system"], 1);
    EXPECT_EQ(json["without_fix"], 2);
    EXPECT_EQ(json["without_plane"], 2);
    EXPECT_EQ(json["damaged"], false);
    EXPECT_NEAR(json["extent"]["height"][0].get<double>(), 61, 1e-9);
    EXPECT_NEAR(json["extent"]["height"][1].get<double>(), 64, 1e-9);
    const Outcome text = site.Run({"info", "site"});
    EXPECT_EQ(text.exitCode, 0) << "the ending can be left away\n" << text;
    for (const char* line : {"  name: harbour\n", "  2 groups, 6 points\n", "  1 of quality 5\n",
                             "  plane system EPSG:32633\n", "  2 points without a complete fix\n"})
        EXPECT_NE(text.out.find(line), std::string::npos) << line << text;
}

TEST(Show, PointHasAllFieldsAndAllFormsOfItsPosition) {
    const Site site;
    const auto json = site.Show("Quay/P1");
    EXPECT_EQ(json["kind"], "point");
    EXPECT_EQ(json["group"], 0);
    EXPECT_EQ(json["point"], 0);
    EXPECT_EQ(json["address"], "Quay/P1");
    EXPECT_EQ(json["fields"]["h"], 63);
    EXPECT_EQ(json["derived"]["ground_mark"]["measured"]["geographic"]["h"], 61);
    EXPECT_TRUE(json["derived"]["phase_centre"]["wgs84"]["geocentric"]["x"].is_number());
    EXPECT_TRUE(json["derived"]["base"]["measured"]["geographic"]["lat"].is_null());
    EXPECT_TRUE(json["cloud"]["id"].is_null());
    const Outcome text = site.Run({"show", "site.gpsbook", "Quay/P1"});
    EXPECT_EQ(text.exitCode, 0) << text;
    for (const char* line :
         {"point #0 of group #0: Quay/P1\n", "  lat                  45.650000000 degrees\n",
          "  pdop                 unset\n",
          "  ground mark, WGS 84: lat 45.650000000, lon 13.760000000, h 61.0000\n", "cloud: id none yet"})
        EXPECT_NE(text.out.find(line), std::string::npos) << line << text;
}

TEST(Show, GroupHasItsConversionLinkByLink) {
    const Site site([](gpsproject::Project& p) {
        CConvCoord& conversion = *p.GetBook().GetGrpAt(0)->GetConvCoord();
        conversion.SetTpDtBaseGps(CConvCoord::dtProprio);
        conversion.GetConvDtBaseGps()->SetNome("local");
        conversion.GetConvDtBaseGps()->SetCoeffToStd(1, 2, 3, 0, 0, 0, 0.5);
        conversion.GetConvAltez()->SetTpCalcPt(CConvAltez::tpCostante);
        conversion.GetConvAltez()->SetCoeff(44.5, 0, 0);
    });
    const auto json = site.Show("Quay");
    EXPECT_EQ(json["kind"], "group");
    EXPECT_EQ(json["points"], 4);
    EXPECT_EQ(json["conversion"]["usable"], true);
    EXPECT_EQ(json["conversion"]["projection"]["definition"], "EPSG:32633");
    EXPECT_EQ(json["conversion"]["measured_datum"]["name"], "local");
    EXPECT_EQ(json["conversion"]["measured_datum"]["coefficients"][6], 0.5);
    EXPECT_EQ(json["conversion"]["heights"]["coefficients"][0], 44.5);
    EXPECT_TRUE(json["conversion"]["local"].is_null());
    const Outcome text = site.Run({"show", "site.gpsbook", "Quay"});
    for (const char* line :
         {"group #0: Quay, 4 points\n", "  usable: yes\n", "  plane projection: by definition, EPSG:32633\n",
          "  measured datum: \"local\", to WGS 84: 1 2 3 m, 0 0 0 \", 0.5 ppm\n", "  heights: constant 44.5"})
        EXPECT_NE(text.out.find(line), std::string::npos) << line << text;
    EXPECT_NE(site.Run({"show", "site.gpsbook", "Pier"}).out.find("  usable: no, it is not set up\n"),
              std::string::npos);
}

TEST(Show, WhatIsNotOneItemIsRefused) {
    const Site site;
    site.ExpectRefused({"show", "site.gpsbook", "Quay/#0.."}, 2, "names 4 groups or points; give one");
    site.ExpectRefused({"show", "site.gpsbook", "Quay/P9"}, 5, "is it P1, P2 or P3?");
    site.ExpectRefused({"show", "site.gpsbook"}, 2, "WHAT");
}

}  // namespace
}  // namespace gpsbook::test
