// The catalogue of an installation: its files, its settings, and look-ups through the platform.
#include "host/coord/StationFiles.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>
#include <thread>

#include "platform/base/CIniFile.h"
#include "tests/Settings.h"

namespace {

using Catalogo = CTrovaNomeBaseGps;

const std::string kHead = "id,name,country,province,x,y,z,frame,epoch,source\n";
const std::string kA = "AAAA,Alfa,ITA,UD,4316423,1014588,4569607,ETRF2000,2008.0,here\n";
const std::string kB = "BBBB,,ITA,GO,4316523,1014588,4569607,ETRF2000,2008.0,here\n";

/// An installation of its own, with the shipped catalogue in a file of the test.
class StationFiles : public ::testing::Test {
protected:
    StationFiles() {
        setenv("GPS_SURVEY_STATIONS", Shipped().c_str(), 1);
        ForgetStations();
    }
    ~StationFiles() override {
        unsetenv("GPS_SURVEY_STATIONS");
        ForgetStations();
    }

    std::string Shipped() const { return folder / "shipped.csv"; }
    std::string Own() const { return OwnStationsPath(); }

    std::string NameAt(double x, Catalogo::enumProvincia provincia = Catalogo::provTutte) {
        std::string name = "-";
        Catalogo::GetInstance()->GetNomeBaseGps(x, 1014588, 4569607, provincia, name);
        return name;
    }

    static OwnStationsChange Replace(const std::vector<Station>& stations) {
        return ChangeOwnStations([&](const StationTable&) { return stations; });
    }

    test::TempFolder folder;
    test::Settings settings;
};

TEST_F(StationFiles, AddedOnesStandBesideTheSettings) {
    EXPECT_EQ(Own(), settings.Path().substr(0, settings.Path().rfind('/')) + "/stations.csv");
    EXPECT_EQ(ShippedStationsPath(), Shipped());
}

TEST_F(StationFiles, BothFilesMakeTheCatalogueAndAddedOnesCount) {
    test::WriteFileBytes(Shipped(), kHead + kA + kB);
    Station station = ReadStationTable(kHead + kA).stations[0];
    station.name = "Alfa moved";
    Station another = station;
    another.id = "CCCC";
    ASSERT_TRUE(Replace({station, another}).done);
    const StationSet set = LoadStations();
    ASSERT_EQ(set.files.size(), 2U);
    EXPECT_EQ(set.files[0].path, Shipped());
    EXPECT_EQ(set.files[0].stations, 2U);
    EXPECT_EQ(set.files[1].path, Own());
    std::string names;
    for (const Station& s : set.catalogue.Stations()) names += s.id + ' ' + s.Called() + ';';
    EXPECT_EQ(names, "AAAA Alfa moved;BBBB BBBB;CCCC Alfa moved;");
}

TEST_F(StationFiles, WithoutFilesThereAreNoStations) {
    setenv("GPS_SURVEY_STATIONS", "", 1);
    const StationSet set = LoadStations();
    EXPECT_TRUE(set.files.empty());
    EXPECT_TRUE(set.catalogue.Stations().empty());
}

TEST_F(StationFiles, FileThatIsMissingOrNoTableIsNamed) {
    ASSERT_EQ(LoadStations().files.size(), 1U);
    EXPECT_EQ(LoadStations().files[0].problems[0].what, "there is no such file; check the name");
    test::WriteFileBytes(Shipped(), std::string("id\0", 3));
    EXPECT_EQ(LoadStations().files[0].problems[0].what,
              "no table of stations: it holds zero bytes, or is larger than 16 MiB");
    test::WriteFileBytes(Shipped(), kHead + kA + "x\n");
    EXPECT_EQ(LoadStations().files[0].problems[0].line, 3U);
    EXPECT_EQ(LoadStations().catalogue.Stations().size(), 1U);
}

TEST_F(StationFiles, AddedOneTakesThePlaceOfAShippedOneWithARemark) {
    test::WriteFileBytes(Shipped(),
                         kHead + "AAAA,Alfa,ITA,UD,4316423,1014588,4569607,IGS20 (inferred),2008.0,\n");
    test::WriteFileBytes(Own(), kHead + "AAAA,New,ITA,UD,4316423,1014588,4569607,IGS20,2008.0 (by hand),\n");
    const StationSet set = LoadStations();
    ASSERT_EQ(set.catalogue.Stations().size(), 1U);
    EXPECT_EQ(set.catalogue.Stations()[0].name, "New");
}

TEST_F(StationFiles, FolderOrPipeIsNamedAsSuch) {
    EXPECT_EQ(ReadStationFile(folder.Path()).problems[0].what,
              "this is a folder; give the file of a table in it");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(ReadStationFile(folder / "pipe").problems[0].what,
              "this is no file but a pipe or device; write the table to a file first");
}

// Each takes its time between reading and writing, so that they meet.
TEST_F(StationFiles, WhatOthersAddMeanwhileStays) {
    const Station model = ReadStationTable(kHead + kA).stations[0];
    std::vector<std::thread> threads;
    std::atomic<int> done = 0;
    for (int i = 0; i < 12; ++i)
        threads.emplace_back([&, i] {
            const OwnStationsChange change = ChangeOwnStations([&](const StationTable& table) {
                std::vector<Station> stations = table.stations;
                stations.push_back(model);
                stations.back().id = std::to_string(i);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                return stations;
            });
            done += change.done && change.kept.empty();
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(done, 12);
    std::set<std::string> ids;
    for (const Station& s : ReadOwnStations().stations) ids.insert(s.id);
    EXPECT_EQ(ids.size(), 12U);
}

TEST_F(StationFiles, RefusedChangeWritesNothing) {
    ASSERT_TRUE(Replace(ReadStationTable(kHead + kA).stations).done);
    const std::string before = test::FileBytes(Own());
    EXPECT_THROW(ChangeOwnStations([](const StationTable& table) -> std::optional<std::vector<Station>> {
                     EXPECT_EQ(table.stations.size(), 1U);
                     throw std::runtime_error("no");
                 }),
                 std::runtime_error);
    EXPECT_TRUE(ChangeOwnStations([](const StationTable&) { return std::nullopt; }).done);
    EXPECT_EQ(test::FileBytes(Own()), before);
    EXPECT_TRUE(Replace({}).done) << "the lock is free again";
}

TEST_F(StationFiles, TableThatAPersonWroteIsKept) {
    EXPECT_TRUE(ReadOwnStations().problems.empty()) << "none yet is no problem";
    const std::string byHand = "# from the office\n" + kHead + kA;
    test::WriteFileBytes(Own(), byHand);
    const std::vector<Station> both = ReadStationTable(kHead + kA + kB).stations;
    EXPECT_TRUE(ChangeOwnStations([](const StationTable&) { return std::nullopt; }).kept.empty());
    EXPECT_EQ(test::FileBytes(Own()), byHand);
    const OwnStationsChange change = Replace(both);
    EXPECT_TRUE(change.done);
    EXPECT_EQ(change.kept, Own() + ".old");
    EXPECT_EQ(test::FileBytes(change.kept), byHand);
    EXPECT_EQ(ReadOwnStations().stations, both);
    EXPECT_EQ(Replace({both[0]}).kept, "") << "nothing in it but stations";
    test::WriteFileBytes(Own(), byHand);
    EXPECT_EQ(Replace(both).kept, Own() + ".old-2");
}

TEST_F(StationFiles, RadiusIsASetting) {
    EXPECT_EQ(StationRadius(), 5);
    EXPECT_TRUE(SetStationRadius(12.5));
    EXPECT_EQ(StationRadius(), 12.5);
    EXPECT_EQ(CIniFile().GetString("STATIONS", "RADIUS", ""), "12.5");
    for (const double v : {-1.0, 1000.1, std::nan(""), HUGE_VAL}) EXPECT_FALSE(SetStationRadius(v)) << v;
    EXPECT_EQ(StationRadius(), 12.5);
    for (const char* text : {"far", "-1", "1001", "5 m", "nan"}) {
        CIniFile().WriteString("STATIONS", "RADIUS", text);
        EXPECT_EQ(StationRadius(), 5) << text;
    }
}

TEST_F(StationFiles, LookUpsFindTheStationWithinTheRadius) {
    test::WriteFileBytes(Shipped(), kHead + kA + kB);
    EXPECT_EQ(NameAt(4316423), "Alfa");
    EXPECT_EQ(NameAt(4316428), "Alfa");
    EXPECT_EQ(NameAt(4316428.001), "-");
    EXPECT_EQ(NameAt(4316523), "BBBB") << "no name: the id";
    EXPECT_EQ(NameAt(4316423, Catalogo::provUD), "Alfa");
    EXPECT_EQ(NameAt(4316423, Catalogo::provGO), "-");
    EXPECT_EQ(NameAt(std::nan("")), "-");
}

TEST_F(StationFiles, LookUpGivesThePositionOfTheStation) {
    test::WriteFileBytes(Shipped(), kHead + kA);
    double x = 4316424, y = 1014587, z = 4569606;
    std::string name;
    ASSERT_TRUE(Catalogo::GetInstance()->GetNomeCoordBaseGps(x, y, z, Catalogo::provTutte, name));
    EXPECT_EQ(name, "Alfa");
    EXPECT_EQ((std::array{x, y, z}), (std::array{4316423., 1014588., 4569607.}));
    name = "kept";
    x = 0;
    EXPECT_FALSE(Catalogo::GetInstance()->GetNomeCoordBaseGps(x, y, z, Catalogo::provTutte, name));
    EXPECT_EQ(name, "kept");
    EXPECT_EQ((std::array{x, y, z}), (std::array{0., 1014588., 4569607.}));
}

TEST_F(StationFiles, ChangesCountAfterTheStationsAreForgotten) {
    test::WriteFileBytes(Shipped(), kHead + kA);
    EXPECT_EQ(NameAt(4316523), "-");
    test::WriteFileBytes(Shipped(), kHead + kA + kB);
    EXPECT_EQ(NameAt(4316523), "-") << "still those that were loaded";
    ForgetStations();
    EXPECT_EQ(NameAt(4316523), "BBBB");
    ASSERT_TRUE(SetStationRadius(200));
    ForgetStations();
    EXPECT_EQ(NameAt(4316600), "BBBB");
}

TEST_F(StationFiles, SearchOfAHostTakesTheirPlaceUntilItIsTakenBack) {
    test::WriteFileBytes(Shipped(), kHead + kA);
    Catalogo::GetInstance()->SetRicerca(
        [](double& x, double& y, double& z, Catalogo::enumProvincia provincia, std::string& name) {
            x = y = z = 1;
            name = "other";
            return provincia == Catalogo::provGO;
        });
    EXPECT_EQ(NameAt(4316423), "-") << "found nothing, though it wrote a name";
    EXPECT_EQ(NameAt(4316423, Catalogo::provGO), "other");
    double x = 5, y = 6, z = 7;
    std::string name = "kept";
    EXPECT_FALSE(Catalogo::GetInstance()->GetNomeCoordBaseGps(x, y, z, Catalogo::provUD, name));
    EXPECT_EQ((std::array{x, y, z}), (std::array{5., 6., 7.}));
    EXPECT_EQ(name, "kept");
    Catalogo::GetInstance()->SetRicerca({});
    EXPECT_EQ(NameAt(4316423), "Alfa");
}

// The catalogue that comes with the software, found where the build puts it.
TEST(ShippedStations, AreWholeAndEachIsFoundAtItsOwnPosition) {
    const test::Settings settings;
    unsetenv("GPS_SURVEY_STATIONS");
    const StationSet set = LoadStations();
    ASSERT_EQ(set.files.size(), 1U);
    EXPECT_TRUE(set.files[0].problems.empty());
    EXPECT_TRUE(set.files[0].passedOver.empty());
    const auto& stations = set.catalogue.Stations();
    EXPECT_GE(stations.size(), 40U);
    for (const Station& s : stations) {
        EXPECT_FALSE(s.frame.empty() || s.source.empty() || s.epoch.empty() || s.name.empty()) << s.id;
        const Station* found = set.catalogue.Find(s.position, {5, Catalogo::provTutte, {}});
        ASSERT_TRUE(found);
        EXPECT_EQ(found->id, s.id);
        EXPECT_EQ(Distance(found->position, s.position), 0) << s.id;
        const bool italian = s.country == "ITA";
        EXPECT_EQ(s.provincia == Catalogo::provEstero, !italian) << s.id;
        EXPECT_NE(s.provincia, Catalogo::provTutte) << s.id;
    }
}

}  // namespace
