#include "apps/gpsbook/book/LogImport.h"

#include <gtest/gtest.h>

#include "apps/gpsbook/commands/CommandError.h"
#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"
#include "tests/apps/gpsbook/readers/Collector.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

using test::Gga;
using test::Rmc;

TEST(LogImport, GroupIsNamedAfterTheFileWithoutFolderAndEnding) {
    const std::pair<const char*, const char*> rows[] = {{"a.nmea", "a"},
                                                        {"/data/day one/rover.2.pos", "rover.2"},
                                                        {"a", "a"},
                                                        {"./a.", "a"},
                                                        {".hidden", ".hidden"},
                                                        {"x/.hidden.log", ".hidden"},
                                                        {"-", "stdin"}};
    for (const auto& [file, name] : rows) EXPECT_EQ(GroupNameOf(file), name) << file;
}

struct Import {
    explicit Import(const std::string& file, const LineWatcher& watcher = {}) {
        book.AddGrp(false);
        long next = 1;
        report = ImportLog(file, book, 0, {}, {}, next, true, watcher);
    }
    CLibMap map;
    CLibGps book{nullptr, nullptr, nullptr, &map, 0};
    LogReport report;
};

TEST(LogImport, LogLargerThanAPieceIsReadToItsEnd) {
    const TestFolder folder;
    std::string log = Rmc("080000.00", "010524");
    constexpr int epochs = 20000;
    for (int i = 0; i < epochs; ++i)
        log += Gga(fmt::format("08{:02}{:02}.{:02}", i / 6000, i / 100 % 60, i % 100));
    ASSERT_GT(log.size(), 1U << 20) << "the log fits into one piece";
    WriteFile(folder / "long.nmea", log);
    const Import import(folder / "long.nmea");
    EXPECT_EQ(import.report.epochs, epochs);
    EXPECT_EQ(import.report.points, epochs);
    EXPECT_EQ(import.book.GetPunArSize(0), epochs);
    EXPECT_EQ(import.report.header.format, "NMEA 0183");
    EXPECT_EQ(import.book.GetGrpAt(0)->GetData(), "2024-05-01");
    EXPECT_EQ(import.report.file, folder / "long.nmea");
}

TEST(LogImport, LastEpochIsDeliveredAtTheEndOfTheFile) {
    const TestFolder folder;
    std::string cutEnd = Gga("080001.00");
    cutEnd.resize(cutEnd.size() - 2);
    WriteFile(folder / "a.nmea", Rmc("080000.00", "010524") + Gga("080000.00") + cutEnd);
    EXPECT_EQ(Import(folder / "a.nmea").report.points, 2);
}

TEST(LogImport, FileThatIsNoLogHasNeitherFormatNorEpochs) {
    const TestFolder folder;
    for (const std::string text : {"", "name,east,north\nA,1,2\n", "\x89PNG\r\n\x1a\n"}) {
        WriteFile(folder / "a", text);
        const Import import(folder / "a");
        EXPECT_EQ(import.report.header.format, "");
        EXPECT_EQ(import.report.epochs, 0);
        EXPECT_EQ(import.book.GetPunArSize(0), 0);
    }
}

TEST(LogImport, PointsOfAPosFileKeepTheBaseOfTheirOwnSession) {
    const TestFolder folder;
    const auto session = [](const std::string& base) {
        return "% ref pos   : " + base +
               "\n% (lat/lon/height=WGS84/ellipsoidal,Q=1:fix,ns=# of satellites)\n"
               "2312 288018.000 45.65 13.76 63.0 1 15 0.01 0.01 0.02 0 0 0 1.00 9.9\n";
    };
    WriteFile(folder / "a.pos", session("45.5 13.5 60.0") + session("45.6 13.6 61.0"));
    const Import import(folder / "a.pos");
    ASSERT_EQ(import.book.GetPunArSize(0), 2);
    double lat = 0, lon = 0, h = 0;
    import.book.GetPunAt(0, 0)->GetGrafBase(lat, lon, h);
    EXPECT_EQ(lat, 45.5);
    EXPECT_EQ(h, 60.0);
    import.book.GetPunAt(0, 1)->GetGrafBase(lat, lon, h);
    EXPECT_EQ(lat, 45.6);
    EXPECT_EQ(h, 61.0);
    EXPECT_EQ(import.book.GetGrpAt(0)->GetBaseLat(), 45.5);
}

TEST(LogImport, WatcherIsHandedOn) {
    const TestFolder folder;
    WriteFile(folder / "a.nmea", Rmc("080000.00", "010524") + "$GPGGA,080000*00\r\n" + Gga("080001.00"));
    std::vector<std::string> told;
    const Import import(folder / "a.nmea", [&](std::int64_t line, std::string_view reason, std::string_view) {
        told.push_back(std::to_string(line) + " " + std::string(reason));
    });
    EXPECT_EQ(told, std::vector<std::string>{"2 bad checksum"});
    EXPECT_EQ(import.report.points, 1);
}

TEST(LogImport, MissingFileIsReported) {
    const TestFolder folder;
    EXPECT_THROW(Import(folder / "none.nmea"), CommandError);
}

}  // namespace
}  // namespace gpsbook
