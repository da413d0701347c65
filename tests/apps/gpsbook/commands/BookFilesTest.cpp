// Books that are damaged, locked, missing or full: what the commands for whole books and their data say.
#include <gtest/gtest.h>

#include <filesystem>

#include "gps/options/COpzPostProc.h"
#include "tests/apps/gpsbook/commands/Logs.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using Arguments = std::vector<std::string>;

/// A site with something to do for every command: a point without plane coordinates, a known and an unknown
/// observation file, a log.
class BusySite : public Site {
public:
    BusySite()
        : Site([](gpsproject::Project& project) {
              project.GetBook().GetPunAt(0, 1)->SetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
              project.GetBook().GetOpzPostProc()->AddDataPtBaseLineBase("/known.tps");
          }) {
        Put("a.nmea", TenSeconds());
        std::filesystem::create_directory(Path("site"));
        Put("site/r.tps", "");
        std::filesystem::create_directory(Path("none"));
        Put("none/r.tps", "");
    }
};

/// The commands on a book of that name.
std::vector<Arguments> Readers(const std::string& book) {
    return {{"export", book},
            {"options", "list", "--book", book},
            {"options", "get", "points.ColSimb", "--book", book},
            {"postproc", "list", book},
            {"section", "write", book, "s.bin", "--version", "1400"}};
}

std::vector<Arguments> Writers(const std::string& book) {
    return {{"import", book, "a.nmea", "--crs", "EPSG:32633"},
            {"import", book, "a.nmea", "--group", "Quay"},
            {"compute", book},
            {"options", "set", "points.ColSimb=9", "--book", book},
            {"options", "reset", "--book", book},
            {"postproc", "add", book, "a.nmea"},
            {"postproc", "remove", book, "#0", "--base"},
            {"postproc", "scan", book}};
}

TEST(BookFiles, BookThatDoesNotExistIsNotFound) {
    const BusySite site;
    for (const auto& all : {Readers("none.gpsbook"), Writers("none.gpsbook")})
        for (const Arguments& arguments : all) site.ExpectRefused(arguments, 5, "none.gpsbook");
    site.ExpectRefused({"dump", "none.gpsbook"}, 5, "none.gpsbook");
}

TEST(BookFiles, FileThatIsNoBookIsRefused) {
    const BusySite site;
    site.Put("notes.txt", "no book at all\n");
    for (const auto& all : {Readers("notes.txt"), Writers("notes.txt")})
        for (const Arguments& arguments : all) site.ExpectRefused(arguments, 4, "notes.txt");
    site.ExpectRefused({"dump", "notes.txt"}, 4, "notes.txt");
    EXPECT_EQ(site.Text("notes.txt"), "no book at all\n");
}

TEST(BookFiles, DamagedBookIsNeverWrittenOver) {
    const BusySite site;
    std::string bytes = site.Bytes();
    const std::size_t at = bytes.find("P3");
    ASSERT_NE(at, std::string::npos);
    bytes[at] = 'X';
    site.Put("site.gpsbook", bytes);
    for (const Arguments& arguments : Writers("site.gpsbook"))
        site.ExpectRefused(arguments, 4, "damaged, and not written over");
    site.ExpectRefused({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}, 4, "damaged");
}

TEST(BookFiles, BookThatAnotherProgramWritesIsAConflict) {
    const BusySite site;
    const auto other = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::write);
    for (const Arguments& arguments : Writers("site.gpsbook"))
        site.ExpectRefused(arguments, 3, "site.gpsbook");
    for (const Arguments& arguments : Readers("site.gpsbook"))
        EXPECT_EQ(site.Run(arguments).exitCode, 0) << arguments[0] << ": reading does no harm";
    const Outcome replaced = site.Run({"new", "site.gpsbook", "--crs", "EPSG:32633", "--overwrite"});
    EXPECT_EQ(replaced.exitCode, 3) << replaced;
}

TEST(BookFiles, BookThatCannotBeSavedStaysAsItWas) {
    const BusySite site;
    const FileSizeLimit full(site.Bytes().size() / 2);  // as on a full disk
    for (const Arguments& arguments : Writers("site.gpsbook"))
        site.ExpectRefused(arguments, 1, "site.gpsbook");
    site.ExpectRefused({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}, 1, "s.bin");
}

TEST(BookFiles, ResultThatCannotBePrintedIsAFailureAndSaysWhatWasDone) {
    Surroundings full;
    full.outputTo = "/dev/full";
    for (const Arguments& arguments : Writers("site.gpsbook")) {
        const BusySite site;
        const std::string before = site.Bytes();
        const Outcome outcome = site.Run(arguments, full);
        EXPECT_EQ(outcome.exitCode, 1) << arguments[0] << '\n' << outcome;
        EXPECT_NE(outcome.err.find("standard output"), std::string::npos) << outcome;
        EXPECT_NE(outcome.err.find("site.gpsbook is saved"), std::string::npos) << outcome;
        EXPECT_FALSE(site.Bytes() == before) << arguments[0];
    }
    const BusySite site;
    EXPECT_EQ(site.Run({"dump", "site.gpsbook"}, full).exitCode, 1);
    EXPECT_EQ(site.Run({"new", "b.gpsbook", "--crs", "EPSG:32633"}, full).exitCode, 1);
}

TEST(BookFiles, EndingCanBeLeftAway) {
    const BusySite site;
    for (const Arguments& arguments : Readers("site")) {
        if (arguments[0] == "section") continue;
        std::filesystem::rename(site.Path("site"), site.Path("aside"));
        EXPECT_EQ(site.Run(arguments).exitCode, 0) << arguments[0];
        std::filesystem::rename(site.Path("aside"), site.Path("site"));
    }
}

}  // namespace
}  // namespace gpsbook::test
