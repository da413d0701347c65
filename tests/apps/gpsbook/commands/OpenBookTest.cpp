// Books that are damaged, locked, missing or none: what every command says of them.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using Arguments = std::vector<std::string>;

const std::vector<Arguments>& Readers() {
    static const std::vector<Arguments> all{{"info", "site.gpsbook"},
                                            {"list", "site.gpsbook"},
                                            {"show", "site.gpsbook", "#0"},
                                            {"check", "site.gpsbook"},
                                            {"set", "site.gpsbook", "#0", "code=X", "--dry-run"},
                                            {"delete", "site.gpsbook", "#0", "--dry-run"}};
    return all;
}

const std::vector<Arguments>& Writers() {
    static const std::vector<Arguments> all{{"set", "site.gpsbook", "#0", "code=X"},
                                            {"add", "site.gpsbook", "name=X"},
                                            {"delete", "site.gpsbook", "#0"},
                                            {"move", "site.gpsbook", "#1", "--to", "0"},
                                            {"swap", "site.gpsbook", "#0", "#1"}};
    return all;
}

/// The book with one byte of a point's record changed.
void Damage(const Site& site) {
    std::string bytes = site.Bytes();
    const std::size_t at = bytes.find("P3");
    ASSERT_NE(at, std::string::npos);
    bytes[at] = 'X';
    site.Put("site.gpsbook", bytes);
}

TEST(OpenBook, BookThatDoesNotExistIsNotFound) {
    const Site site;
    for (std::vector<Arguments> all : {Readers(), Writers()})
        for (Arguments& arguments : all) {
            arguments[1] = "none.gpsbook";
            site.ExpectRefused(arguments, 5, "none.gpsbook");
        }
}

TEST(OpenBook, FileThatIsNoBookIsRefused) {
    const Site site;
    site.Put("notes.txt", "no book at all\n");
    for (std::vector<Arguments> all : {Readers(), Writers()})
        for (Arguments& arguments : all) {
            arguments[1] = "notes.txt";
            const Outcome outcome = site.Run(arguments);
            EXPECT_EQ(outcome.exitCode, 4) << outcome;
            EXPECT_NE(outcome.err.find("notes.txt"), std::string::npos) << outcome;
            EXPECT_EQ(site.Text("notes.txt"), "no book at all\n");
        }
}

TEST(OpenBook, DamagedBookIsReadAsFarAsItGoesAndSaysSo) {
    const Site site;
    Damage(site);
    const Outcome list = site.Run({"list", "site.gpsbook", "Quay", "--fields", "name"});
    EXPECT_EQ(list.exitCode, 4) << list;
    EXPECT_NE(list.out.find("P1"), std::string::npos) << list;
    EXPECT_NE(list.err.find("damaged"), std::string::npos) << list;
    const Outcome info = site.Run({"info", "site.gpsbook", "--json"});
    EXPECT_EQ(info.exitCode, 4) << info;
    const auto json = nlohmann::json::parse(info.out);
    EXPECT_EQ(json["damaged"], true);
    EXPECT_EQ(json["damages"][0]["section"], "gps");
    const Outcome check = site.Run({"check", "site.gpsbook", "--json"});
    EXPECT_EQ(check.exitCode, 4) << check;
    EXPECT_EQ(nlohmann::json::parse(check.out)["damaged"], true);
}

TEST(OpenBook, DamagedBookIsNeverWrittenOver) {
    const Site site;
    Damage(site);
    for (const Arguments& arguments : Writers()) {
        site.ExpectRefused(arguments, 4, "damaged, and not written over; gpsbook check tells more");
        for (const std::string& line : LinesOf(site.Run(arguments).err)) EXPECT_FALSE(line.empty());
    }
}

TEST(OpenBook, BookThatAnotherProgramWritesIsAConflict) {
    const Site site;
    const auto other = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::write);
    for (const Arguments& arguments : Writers()) {
        const std::string bytes = site.Bytes();
        const Outcome outcome = site.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 3) << outcome;
        EXPECT_NE(outcome.err.find("site.gpsbook"), std::string::npos) << outcome;
        EXPECT_TRUE(site.Bytes() == bytes);
    }
    EXPECT_EQ(site.Run({"list", "site.gpsbook"}).exitCode, 0) << "reading does no harm";
}

TEST(OpenBook, BookThatCannotBeSavedStaysAsItWas) {
    const Site site;
    const FileSizeLimit full(site.Bytes().size() / 2);  // as on a full disk
    for (const Arguments& arguments : Writers()) site.ExpectRefused(arguments, 1, "site.gpsbook");
}

TEST(OpenBook, EndingCanBeLeftAway) {
    const Site site;
    EXPECT_EQ(site.Run({"set", "site", "Quay/P1", "code=X"}).exitCode, 0);
    EXPECT_EQ(site.Field("Quay/P1", "code"), "X");
    site.Put("site", "another file");
    EXPECT_EQ(site.Run({"list", "site"}).exitCode, 4) << "a file of the very name is meant first";
}

TEST(OpenBook, FolderOfTheShorterNameDoesNotHideTheBook) {
    const Site site;
    std::filesystem::create_directory(site.Path("site"));
    EXPECT_EQ(site.Run({"set", "site", "Quay/P1", "code=X"}).exitCode, 0);
    EXPECT_EQ(site.Field("Quay/P1", "code"), "X");
}

TEST(OpenBook, WhatTheVersionOfTheBookHasNoPlaceForIsTold) {
    const Site site([](gpsproject::Project& p) { p.SetStreamVersion(902); });
    const Outcome outcome = site.Run({"set", "site.gpsbook", "Quay/P1", "secondary_duplicate=yes"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_NE(outcome.err.find("site.gpsbook: not kept, version 902 has no place for it: "),
              std::string::npos)
        << outcome;
}

TEST(OpenBook, ResultThatCannotBePrintedIsAFailure) {
    const Site site;
    Surroundings full;
    full.outputTo = "/dev/full";
    for (const Arguments& arguments : Readers()) {
        const Outcome outcome = site.Run(arguments, full);
        EXPECT_EQ(outcome.exitCode, 1) << outcome;
        EXPECT_NE(outcome.err.find("standard output"), std::string::npos) << outcome;
        EXPECT_EQ(outcome.err.find("is saved"), std::string::npos) << outcome;
    }
}

TEST(OpenBook, ChangeWhoseResultCannotBePrintedIsSavedAndSaysSo) {
    Surroundings full;
    full.outputTo = "/dev/full";
    for (const Arguments& arguments : Writers()) {
        const Site site;
        const std::string before = site.Bytes();
        const Outcome outcome = site.Run(arguments, full);
        EXPECT_EQ(outcome.exitCode, 1) << outcome;
        EXPECT_NE(outcome.err.find("site.gpsbook is saved"), std::string::npos) << outcome;
        EXPECT_FALSE(site.Bytes() == before) << arguments[0];
    }
}

}  // namespace
}  // namespace gpsbook::test
