// Names of files that cannot be meant, and files that can hold no book: what every command says of them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/apps/gpsbook/commands/Logs.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using Arguments = std::vector<std::string>;

/// Every command on a book of that name.
std::vector<Arguments> CommandsOn(const std::string& book) {
    return {{"info", book},
            {"list", book},
            {"show", book, "#0"},
            {"check", book},
            {"export", book},
            {"dump", book},
            {"set", book, "#0", "code=X"},
            {"add", book, "name=X"},
            {"delete", book, "#0"},
            {"move", book, "#1", "--to", "0"},
            {"swap", book, "#0", "#1"},
            {"compute", book},
            {"import", book, "a.nmea"},
            {"options", "list", "--book", book},
            {"options", "set", "points.ColSimb=9", "--book", book},
            {"postproc", "list", book},
            {"postproc", "add", book, "a.nmea"},
            {"section", "write", book, "s.bin", "--version", "1400"}};
}

TEST(FileNames, EmptyNameIsAUsageErrorOfEveryCommand) {
    const Site site;
    site.Put("a.nmea", TenSeconds());
    std::vector<Arguments> all = CommandsOn("");
    const std::vector<Arguments> more = {{"new", "", "--crs", "EPSG:32633"},
                                         {"section", "read", "", "t.gpsbook"},
                                         {"section", "read", "a.nmea", ""},
                                         {"section", "write", "site.gpsbook", "", "--version", "1400"},
                                         {"import", "site.gpsbook", ""},
                                         {"convert", "", "--crs", "EPSG:32633"},
                                         {"export", "site.gpsbook", "-o", "", "-f", "csv"},
                                         {"postproc", "add", "site.gpsbook", ""}};
    all.insert(all.end(), more.begin(), more.end());
    for (const Arguments& arguments : all) site.ExpectRefused(arguments, 2, "the value is empty");
}

TEST(FileNames, FolderOrDeviceIsNoBookForAnyCommand) {
    const Site site;
    site.Put("a.nmea", TenSeconds());
    std::filesystem::create_directory(site.Path("folder"));
    ASSERT_EQ(::mkfifo(site.Path("pipe").c_str(), 0600), 0);
    for (const char* name : {"folder", ".", "/dev/null", "pipe"}) {
        for (const Arguments& arguments : CommandsOn(name)) site.ExpectRefused(arguments, 4, name);
        site.ExpectRefused({"section", "read", name, "t.gpsbook"}, 4, name);
        site.ExpectRefused({"section", "read", name, "t.gpsbook", "--version", "1400"}, 4, name);
        site.ExpectRefused({"dump", name, "--version", "1400"}, 4, name);
    }
}

TEST(FileNames, NewBookIsNotCalledLikeAFolder) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}).exitCode, 0);
    std::filesystem::create_directory(site.Path("folder"));
    for (const char* name : {".", "..", "folder/", "none/", "folder/.", "folder/.."}) {
        site.ExpectRefused({"new", name, "--crs", "EPSG:32633"}, 2, "names a folder");
        site.ExpectRefused({"section", "read", "s.bin", name}, 2, "names a folder");
    }
    EXPECT_TRUE(std::filesystem::is_empty(site.Path("folder")));
}

TEST(FileNames, FileThatExistsIsReplacedWithAnOptionThatIsThere) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}).exitCode, 0);
    const char* words = "choose another, or replace it with --overwrite";
    site.ExpectRefused({"new", "site", "--crs", "EPSG:32633"}, 1, words);
    site.ExpectRefused({"section", "read", "s.bin", "site"}, 1, words);
    site.ExpectRefused({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}, 1, words);
    const Outcome own = site.Run({"section", "write", "site.gpsbook", "site.gpsbook", "--version", "1400"});
    EXPECT_EQ(own.exitCode, 1) << own;
    EXPECT_EQ(own.err.find("--overwrite"), std::string::npos) << "it would not help\n" << own;
}

TEST(FileNames, FullDiskLeavesNoBookAndSaysNothingOfOneThatStays) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}).exitCode, 0);
    const auto refused = [&](const Arguments& arguments) {
        const std::vector<std::string> names = site.Names();
        const Outcome outcome = site.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << outcome;
        EXPECT_NE(outcome.err.find("cannot be saved"), std::string::npos) << outcome;
        EXPECT_EQ(site.Names(), names);
        return outcome.err;
    };
    const FileSizeLimit full(100);
    EXPECT_EQ(refused({"new", "t", "--crs", "EPSG:32633"}).find("as it was"), std::string::npos);
    EXPECT_EQ(refused({"section", "read", "s.bin", "t"}).find("as it was"), std::string::npos);
    const std::string bytes = site.Bytes();
    EXPECT_NE(refused({"new", "site", "--crs", "EPSG:32633", "--overwrite"}).find("the file is as it was"),
              std::string::npos);
    EXPECT_TRUE(site.Bytes() == bytes);
}

TEST(FileNames, JsonOfEveryCommandNamesTheBookByTheSameKey) {
    const Site site;
    site.Put("a.nmea", TenSeconds());
    const std::vector<Arguments> all = {{"new", "new.gpsbook", "--crs", "EPSG:32633"},
                                        {"info", "site.gpsbook"},
                                        {"set", "site.gpsbook", "Quay/P1", "code=X"},
                                        {"add", "site.gpsbook", "Quay", "name=P9"},
                                        {"delete", "site.gpsbook", "Quay/P9"},
                                        {"move", "site.gpsbook", "Quay/P1"},
                                        {"swap", "site.gpsbook", "Quay/P1", "Quay/P2"},
                                        {"compute", "site.gpsbook"},
                                        {"import", "site.gpsbook", "a.nmea", "--group", "Quay"},
                                        {"export", "site.gpsbook", "-o", "t.csv"},
                                        {"options", "list", "--book", "site.gpsbook"},
                                        {"options", "set", "points.ColSimb=9", "--book", "site.gpsbook"},
                                        {"postproc", "list", "site.gpsbook"},
                                        {"section", "write", "site.gpsbook", "s.bin", "--version", "1400"},
                                        {"dump", "site.gpsbook"}};
    for (Arguments arguments : all) {
        arguments.push_back("--json");
        const auto told = JsonOf(site.Run(arguments));
        EXPECT_EQ(told["book"], arguments[0] == "new" ? "new.gpsbook" : "site.gpsbook") << arguments[0];
        EXPECT_EQ(told.contains("file"), arguments[0] == "section") << arguments[0];
    }
    const auto check = nlohmann::json::parse(site.Run({"check", "site.gpsbook", "--json"}).out);
    EXPECT_EQ(check["book"], "site.gpsbook");
    const auto bare = JsonOf(site.Run({"dump", "s.bin", "--version", "1400", "--json"}));
    EXPECT_EQ(bare["file"], "s.bin");
    EXPECT_FALSE(bare.contains("book"));
}

TEST(FileNames, BookAndBareSectionAreToldApart) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1200"}).exitCode, 0);
    site.ExpectRefused({"dump", "s.bin"}, 4, "gpsbook dump s.bin --version 1310 shows it");
    site.ExpectRefused({"dump", "site.gpsbook", "--version", "1400"}, 2,
                       "site.gpsbook is a field book, no bare section; leave the option out");
    site.ExpectRefused({"section", "read", "site.gpsbook", "t"}, 4, "site.gpsbook: is a field book already");
    site.Put("cut.bin", site.Text("s.bin").substr(0, 500));
    site.ExpectRefused({"section", "read", "cut.bin", "t"}, 4, "gpsbook dump cut.bin --version V");
    site.ExpectRefused({"dump", "cut.bin"}, 4, "is no GPS survey project");
}

}  // namespace
}  // namespace gpsbook::test
