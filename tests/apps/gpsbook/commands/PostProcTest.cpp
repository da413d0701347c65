// gpsbook postproc: the observation files that a book knows.
#include <gtest/gtest.h>

#include <filesystem>

#include "gps/options/COpzPostProc.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

json Listed(const Site& site) { return JsonOf(site.Run({"postproc", "list", "site.gpsbook", "--json"})); }

/// The names of the files of a list, without folders, in order.
std::vector<std::string> Names(const json& listed, const std::string& kind) {
    std::vector<std::string> names;
    for (const json& file : listed["files"])
        if (file["kind"] == kind) {
            const std::string path = file["file"];
            names.push_back(path.substr(path.find_last_of("/\\") + 1));
        }
    std::sort(names.begin(), names.end());
    return names;
}

using List = std::vector<std::string>;

TEST(PostProc, ScanFindsTheRoverFilesInTheFolderNamedLikeTheBook) {
    const Site site;
    fs::create_directory(site.Path("site"));
    for (const char* name : {"site/a.tps", "site/B.TPS", "site/c.txt", "d.tps"}) site.Put(name, "");
    const Outcome outcome = site.Run({"postproc", "scan", "site.gpsbook"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.out.find("site.gpsbook: 2 rover files, 0 base files\n"), std::string::npos) << outcome;
    const json listed = Listed(site);
    EXPECT_EQ(Names(listed, "rover"), (List{"B.TPS", "a.tps"}));
    EXPECT_EQ(listed["scanned"], true);
    for (const json& file : listed["files"]) EXPECT_EQ(file["exists"], true) << file;
}

TEST(PostProc, ScanThatFindsNothingSaysSoAndChangesNothing) {
    const Site site;
    const std::string bytes = site.Bytes();
    const Outcome outcome = site.Run({"postproc", "scan", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "site.gpsbook: no *.tps files in " + site.Path("site") + "; 0 rover files, 0 base files\n");
    EXPECT_TRUE(site.Bytes() == bytes);
}

TEST(PostProc, BookOfAVersionWithoutPlaceForListsIsLeftAlone) {
    const Site old([](gpsproject::Project& project) { project.SetStreamVersion(1001); });
    old.Put("a.tps", "x");
    for (const char* const action : {"add", "remove"})
        old.ExpectRefused({"postproc", action, "site.gpsbook", "a.tps"}, 4, "1001");
    old.ExpectRefused({"postproc", "scan", "site.gpsbook"}, 4, "1001");
    const Site first([](gpsproject::Project& project) { project.SetStreamVersion(1002); });
    first.Put("a.tps", "x");
    EXPECT_EQ(first.Run({"postproc", "add", "site.gpsbook", "a.tps"}).exitCode, 0);
}

TEST(PostProc, FilesThatAreKnownAreNotLookedForAgainUnlessAsked) {
    const Site site;
    fs::create_directory(site.Path("site"));
    site.Put("site/a.tps", "");
    ASSERT_EQ(site.Run({"postproc", "scan", "site.gpsbook"}).exitCode, 0);
    site.Put("site/b.tps", "");
    fs::remove(site.Path("site/a.tps"));
    const json second = JsonOf(site.Run({"postproc", "scan", "site.gpsbook", "--json"}));
    EXPECT_EQ(Names(second, "rover"), List{"a.tps"});
    EXPECT_EQ(second["files"][0]["exists"], false) << "looked at, and gone";
    ASSERT_EQ(site.Run({"postproc", "scan", "site.gpsbook", "--again"}).exitCode, 0);
    EXPECT_EQ(Names(Listed(site), "rover"), List{"b.tps"});
    fs::remove(site.Path("site/b.tps"));
    site.ExpectRefused({"postproc", "scan", "site.gpsbook", "--again"}, 5,
                       "the files that were known are kept");
}

TEST(PostProc, FilesAreAddedToTheListThatIsMeant) {
    const Site site;
    for (const char* name : {"r1.tps", "r2.tps", "m.tps"}) site.Put(name, "");
    ASSERT_EQ(site.Run({"postproc", "add", "site.gpsbook", "r1.tps", "r2.tps"}).exitCode, 0);
    const Outcome outcome = site.Run({"postproc", "add", "site.gpsbook", "m.tps", "--base"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "rover #0            " + site.Path("r1.tps") + "\nrover #1            " +
                               site.Path("r2.tps") + "\nbase  #0            " + site.Path("m.tps") +
                               "\nsite.gpsbook: 2 rover files, 1 base file\n");
    const json listed = Listed(site);
    EXPECT_EQ(Names(listed, "rover"), (List{"r1.tps", "r2.tps"}));
    EXPECT_EQ(Names(listed, "base"), List{"m.tps"});
    EXPECT_EQ(listed["files"][0]["file"], site.Path("r1.tps")) << "the whole path";
    EXPECT_EQ(listed["files"][0]["value"], nullptr);
    EXPECT_EQ(listed["files"][0]["index3"], 1);
}

TEST(PostProc, ScannedFileIsKnownByEveryNameOfIt) {
    const Site site;
    fs::create_directory(site.Path("site"));
    site.Put("site/a.tps", "");
    ASSERT_EQ(site.Run({"postproc", "scan", "site.gpsbook"}).exitCode, 0);
    fs::create_directory_symlink("site", site.Path("link"));
    fs::create_symlink("site/a.tps", site.Path("other.tps"));
    for (const std::string& name :
         {std::string("site/a.tps"), std::string("./site/../site/a.tps"), site.Path("site/a.tps"),
          std::string("site\\a.tps"), std::string("link/a.tps"), std::string("other.tps")})
        site.ExpectRefused({"postproc", "add", "site.gpsbook", name}, 2,
                           "is in the list of rover files already");
    ASSERT_EQ(site.Run({"postproc", "remove", "site.gpsbook", "site/a.tps"}).exitCode, 0);
    EXPECT_EQ(Names(Listed(site), "rover"), List{});
}

TEST(PostProc, AddedBaseDoesNotStopTheSearchForRovers) {
    const Site site;
    fs::create_directory(site.Path("site"));
    for (const char* name : {"site/a.tps", "m.tps"}) site.Put(name, "");
    ASSERT_EQ(site.Run({"postproc", "add", "site.gpsbook", "m.tps", "--base"}).exitCode, 0);
    EXPECT_EQ(Listed(site)["scanned"], false);
    ASSERT_EQ(site.Run({"postproc", "scan", "site.gpsbook"}).exitCode, 0);
    EXPECT_EQ(Names(Listed(site), "rover"), List{"a.tps"});
    EXPECT_EQ(Names(Listed(site), "base"), List{"m.tps"});
}

TEST(PostProc, FilesAreRemovedByNameOrPosition) {
    const Site site;
    for (const char* name : {"a.tps", "b.tps", "c.tps", "d.tps"}) site.Put(name, "");
    ASSERT_EQ(site.Run({"postproc", "add", "site.gpsbook", "a.tps", "b.tps", "c.tps", "d.tps"}).exitCode, 0);
    ASSERT_EQ(site.Run({"postproc", "remove", "site.gpsbook", "#0", "c.tps", site.Path("c.tps")}).exitCode,
              0);
    EXPECT_EQ(Names(Listed(site), "rover"), (List{"b.tps", "d.tps"}));
    EXPECT_TRUE(fs::exists(site.Path("a.tps"))) << "the file itself stays";
}

TEST(PostProc, ListKeepsEverythingThatStandsInTheBook) {
    const Site site([](gpsproject::Project& project) {
        COpzPostProc& options = *project.GetBook().GetOpzPostProc();
        options.AddDataPtBaseLineDett("D:\\Jobs\\a.tps");
        COpzPostProc::TDatiStaticPtBaseLine& file = *options.GetDataPtBaseLineDettAt(0);
        file.sText1 = "one";
        file.sText2 = "two";
        file.nIdx2 = 7;
        file.bAltValue = true;
        file.dValue = 2.5;
        file.dA1 = 1;
        file.dB3 = 3;
    });
    const json file = Listed(site)["files"].at(0);
    EXPECT_EQ(file,
              json::parse(R"({"index":0,"kind":"rover","file":"D:\\Jobs\\a.tps","exists":false,"text1":"one",
        "text2":"two","index2":7,"index3":1,"flag1":true,"flag3":true,"flag4":false,"alternative":true,"value":2.5,
        "a":[1.0,null,null],"b":[null,null,3.0],"results":""})"));
    const Outcome text = site.Run({"postproc", "list", "site.gpsbook"});
    EXPECT_EQ(text.out, "rover #0   missing  D:\\Jobs\\a.tps\nsite.gpsbook: 1 rover file, 0 base files\n");
}

TEST(PostProc, WhatCannotBeIsRefused) {
    const Site site;
    site.Put("a.tps", "");
    ASSERT_EQ(site.Run({"postproc", "add", "site.gpsbook", "a.tps"}).exitCode, 0);
    struct Row {
        std::vector<std::string> arguments;
        int code;
        const char* words;
    };
    site.Put("b;c.tps", "");
    const Row rows[] = {
        {{"postproc", "add", "site.gpsbook", "gone.tps"}, 5, "gone.tps: there is no such file"},
        {{"postproc", "add", "site.gpsbook", "b;c.tps"}, 2, "a text cannot hold ';'"},
        {{"postproc", "add", "site.gpsbook", "a.tps"}, 2, "a.tps is in the list of rover files already"},
        {{"postproc", "add", "site.gpsbook", "./a.tps"}, 2, "is in the list of rover files already"},
        {{"postproc", "add", "site.gpsbook"}, 2, "FILE is required"},
        {{"postproc", "remove", "site.gpsbook", "#1"}, 5, "#1: not in the list of rover files, which has 1"},
        {{"postproc", "remove", "site.gpsbook", "#0", "--base"},
         5,
         "not in the list of base files, which has 0"},
        {{"postproc", "remove", "site.gpsbook", "x.tps"}, 5, "x.tps: not in the list of rover files"},
        {{"postproc", "remove", "site.gpsbook", "#"}, 5, "#: not in the list"},
        {{"postproc"}, 2, "required"},
    };
    for (const Row& row : rows) site.ExpectRefused(row.arguments, row.code, row.words);
    EXPECT_EQ(site.Run({"postproc", "list", "gone.gpsbook"}).exitCode, 5);
}

}  // namespace
}  // namespace gpsbook::test
