// Positions of points whose fix and plane system come from different people.
#include <gtest/gtest.h>

#include <set>

#include "gps/coords/FCalcCoord.h"
#include "host/cloud/MemoryStore.h"
#include "host/cloud/Sync.h"
#include "host/cloud/SyncServer.h"
#include "host/project/ConflictResolution.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::Edit;
using gpssync::SyncReport;
using gpssync::TransportError;
using test::Project;
using Mode = Project::Mode;

/// A surveyor with a book on a disk of her own, and a line to the server that breaks behind so many pages.
class Surveyor : public gpssync::Transport {
public:
    Surveyor(gpssync::SyncServer& server, int device, const char* name)
        : server_(server), sender_{device, name} {
        Project(Project::kNewestVersion, disk).SaveAs(test::kBook, false);
        project = disk.Open(Mode::write);
        LinkBook(*project, *this, "/s/store", "site", true);
        project->Save();
    }

    gpssync::SharedProject OpenProject(const std::string& name, bool make) override {
        return server_.OpenProject(name, make);
    }
    gpssync::CommitAnswer Commit(const std::string& key, const gpssync::Sender& sender,
                                 const gpssync::CloudCommit& commit) override {
        ++commits;
        return server_.Commit(key, sender, commit);
    }
    gpssync::PullPage Pull(const std::string& key, const gpssync::Sender& sender,
                           const gpssync::PullRequest& request) override {
        if (pagesLeft-- == 0) throw TransportError(TransportError::Kind::noAnswer, "the connection broke");
        return server_.Pull(key, sender, request);
    }

    SyncReport Sync() { return gpssync::Sync(*project, *this, sender_); }
    /// What the journal brings back is what there was.
    void Crash() {
        project->GetEdits().Commit();
        const std::string before = test::OutlineOf(*project);
        project.reset();
        project = disk.Open(Mode::write);
        EXPECT_EQ(test::OutlineOf(*project), before);
    }

    CLibGps& Book() { return project->GetBook(); }
    CGrpGps& Quay() { return *Book().GetGrpAt(0); }
    CPunGps& Point(int p) { return *Book().GetPunAt(0, p); }
    const std::vector<gpsproject::CloudConflict>& Conflicts() {
        return project->GetCloud().GetState().conflicts;
    }
    /// In no order: each book has its own.
    std::set<std::string> Fields() {
        vex::String fields;
        auto& tables = project->GetCloud().GetTables();
        tables.base.GetFields(Quay(), 0x1FFF, fields);
        std::set<std::string> all{std::string(fields.View())};
        for (int p = 0; p < Book().GetPunArSize(0); ++p) {
            tables.points.GetFields(Point(p), 0x1FFFF, fields);
            all.emplace(fields.View());
        }
        return all;
    }

    // --- what she does; each is one edit, and plane coordinates follow ---------------------------------

    void SetPlaneSystem(const char* definition) {
        Edit edit(project->GetEdits());
        std::string why;
        EXPECT_TRUE(Quay().GetConvCoord()->GetConvLocal()->SetDefinizione(definition, why)) << why;
        Quay().GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        Quay().SetCodeElab(1);
        FCalcCoordGrpGps(&Book(), 0);
        project->GetEdits().GroupChanged(0);
        for (int p = 0; p < Book().GetPunArSize(0); ++p) project->GetEdits().PointChanged(0, p);
        edit.Done();
    }
    void Measure(const char* name, double lon) {
        Edit edit(project->GetEdits());
        CPunGps& point = *Book().AddPun(0, false);
        point.SetNome(name);
        SetFix(point, lon, 64.0, 1.5);
        Book().CalcolaCoordCart(&point, 0);
        project->GetEdits().PointInserted(0, Book().GetPunArSize(0) - 1);
        edit.Done();
    }
    template <class Change>
    void ChangePoint(int p, Change change) {
        Edit edit(project->GetEdits());
        change(Point(p));
        project->GetEdits().PointChanged(0, p);
        edit.Done();
    }
    void SetAntenna(int p, double metres) {
        ChangePoint(p, [&](CPunGps& point) {
            point.SetAltAnt(metres);
            Book().CalcolaCoordCart(&point, 0);
        });
    }
    void SetHeight(int p, double metres) {
        ChangePoint(p, [&](CPunGps& point) {
            point.SetElev(metres);
            Book().CalcolaCoordCart(&point, 0);
        });
    }

    static void SetFix(CPunGps& point, double lon, double h, double antenna) {
        point.SetLat(45.0);
        point.SetLong(lon);
        point.SetElev(h);
        point.SetAltAnt(antenna);
    }

    test::JournalDisk disk{0, "/d/unused"};
    std::unique_ptr<Project> project;
    int commits = 0;
    int pagesLeft = 1'000'000;

private:
    gpssync::SyncServer& server_;
    gpssync::Sender sender_;
};

// A point on the central meridian of a zone, 9 or 15 degrees, is 500 km east there.
constexpr const char* kZone32 = "EPSG:32632";
constexpr const char* kZone33 = "EPSG:32633";

class DerivedPositions : public testing::Test {
protected:
    explicit DerivedPositions(std::size_t pageSize = 1000)
        : server_(std::make_unique<gpssync::MemoryStore>(), pageSize) {}

    /// Anna makes a group in zone 33 with two points, and everybody gets it.
    void Begin() {
        {
            Edit edit(anna_.project->GetEdits());
            anna_.Book().AddGrp(false)->SetNomeGrp("Quay");
            anna_.project->GetEdits().GroupInserted(0);
            edit.Done();
        }
        anna_.SetPlaneSystem(kZone33);
        anna_.Measure("P1", 15.0);
        anna_.Measure("P2", 14.0);
        Everybody();
        ASSERT_NEAR(bert_.Point(0).GetCoordX(), 500'000, 0.001);
        ASSERT_NEAR(bert_.Point(0).GetCoordZ(), 62.5, 0.001);
    }

    void Everybody() {
        for (Surveyor* one : {&anna_, &bert_, &carl_}) one->Sync();
    }

    /// Each syncs once more, and then all have the same, where every position is that of its fix.
    void ExpectTogether() {
        Everybody();
        Everybody();
        for (Surveyor* one : {&anna_, &bert_, &carl_}) {
            EXPECT_FALSE(one->project->GetCloud().HasToSend());
            EXPECT_EQ(one->Fields(), anna_.Fields());
            for (int p = 0; p < one->Book().GetPunArSize(0); ++p) ExpectOfFix(*one, p);
        }
    }

    void ExpectOfFix(Surveyor& who, int p) {
        const CPunGps& point = who.Point(p);
        double x = 0, y = 0, z = 0;
        ASSERT_TRUE(who.Quay().GetConvCoord()->GrafGpsToPlanAtt(point.GetLat(), point.GetLong(),
                                                                point.GetElev(), point.GetAltAnt(), x, y, z));
        EXPECT_NEAR(point.GetCoordX(), x, 1e-4) << point.GetNome();
        EXPECT_NEAR(point.GetCoordY(), y, 1e-4) << point.GetNome();
        EXPECT_NEAR(point.GetCoordZ(), z, 1e-4) << point.GetNome();
    }

    gpssync::SyncServer server_;
    Surveyor anna_{server_, 1, "Anna"};
    Surveyor bert_{server_, 2, "Bert"};
    Surveyor carl_{server_, 3, "Carl"};
};

TEST_F(DerivedPositions, PointMeasuredInTheFormerPlaneSystemGetsTheNewOne) {
    Begin();
    anna_.SetPlaneSystem(kZone32);
    anna_.Sync();
    bert_.Measure("P3", 9.0);
    bert_.commits = 0;
    const SyncReport report = bert_.Sync();
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.001);
    EXPECT_EQ(bert_.commits, 2) << "the position goes with the same sync";
    EXPECT_EQ(report.conflicts, 0);
    EXPECT_EQ(report.changed, 1);
    EXPECT_FALSE(bert_.project->GetCloud().HasToSend());
    bert_.Crash();
    anna_.Sync();
    EXPECT_NEAR(anna_.Point(2).GetCoordX(), 500'000, 0.001);
    ExpectTogether();
}

TEST_F(DerivedPositions, NobodyComputesWhatCameWithThePlaneSystem) {
    Begin();
    anna_.SetPlaneSystem(kZone32);
    anna_.Sync();
    bert_.commits = 0;
    bert_.Sync();
    EXPECT_EQ(bert_.commits, 0);
    ExpectTogether();
}

TEST_F(DerivedPositions, PositionThatWasSetByHandStays) {
    Begin();
    bert_.Measure("P3", 9.0);
    bert_.ChangePoint(2, [](CPunGps& point) { point.SetCoord(1000, 2000, 3); });
    anna_.SetPlaneSystem(kZone32);
    anna_.Sync();
    bert_.Sync();
    EXPECT_EQ(bert_.Point(2).GetCoordX(), 1000);
    EXPECT_FALSE(bert_.project->GetCloud().HasToSend());
}

TEST_F(DerivedPositions, PointThatIsAMillimetreFromItsFixIsOfIt) {
    Begin();
    bert_.Measure("P3", 9.0);
    bert_.Measure("P4", 9.0);
    for (const auto& [p, metres] : {std::pair(2, 0.0009), {3, 0.0011}})
        bert_.ChangePoint(p, [by = metres](CPunGps& point) {
            point.SetCoord(point.GetCoordX() + by, point.GetCoordY(), point.GetCoordZ());
        });
    const double x = bert_.Point(3).GetCoordX();
    anna_.SetPlaneSystem(kZone32);
    anna_.Sync();
    bert_.Sync();
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.0005);
    EXPECT_EQ(bert_.Point(3).GetCoordX(), x);
}

TEST_F(DerivedPositions, PointWithoutPlaneSystemGetsOne) {
    Begin();
    for (Surveyor* one : {&anna_, &bert_}) one->Quay().SetCodeElab(0);
    Everybody();
    bert_.Measure("P3", 15.0);
    EXPECT_FALSE(IsCoordValid(bert_.Point(2).GetCoordX()));
    anna_.SetPlaneSystem(kZone33);
    anna_.Sync();
    bert_.Sync();
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.001);
    bert_.Crash();
    ExpectTogether();
}

TEST_F(DerivedPositions, HeightAndAntennaOfTwoPeopleMakeOnePosition) {
    Begin();
    anna_.SetAntenna(0, 2.0);  // 62.0
    bert_.SetHeight(0, 66.0);  // 64.5
    anna_.Sync();
    const SyncReport report = bert_.Sync();
    EXPECT_NEAR(bert_.Point(0).GetCoordZ(), 64.0, 1e-6);
    EXPECT_EQ(report.conflicts, 0) << "neither of the two heights was right";
    EXPECT_TRUE(bert_.Conflicts().empty());
    bert_.Crash();
    ExpectTogether();
    EXPECT_NEAR(anna_.Point(0).GetCoordZ(), 64.0, 1e-6);
    EXPECT_NEAR(carl_.Point(0).GetCoordZ(), 64.0, 1e-6);
}

TEST_F(DerivedPositions, ConflictOfTheFixItselfStays) {
    Begin();
    anna_.SetAntenna(0, 2.0);
    bert_.SetAntenna(0, 2.5);
    anna_.Sync();
    EXPECT_EQ(bert_.Sync().conflicts, 2) << "antenna and position: his are one measurement";
    EXPECT_NEAR(bert_.Point(0).GetCoordZ(), 61.5, 1e-6);
}

TEST_F(DerivedPositions, TheirAntennaBringsThePositionOfBoth) {
    Begin();
    anna_.SetAntenna(0, 2.0);
    bert_.SetAntenna(0, 2.5);
    bert_.SetHeight(0, 66.0);
    anna_.Sync();
    bert_.Sync();
    for (const auto& conflict : std::vector(bert_.Conflicts()))
        if (conflict.clash.bit == CHG_PUN_ALTANT) TakeTheirs(*bert_.project, conflict.number);
    EXPECT_NEAR(bert_.Point(0).GetCoordZ(), 64.0, 1e-6);
    EXPECT_TRUE(bert_.Conflicts().empty()) << "her position is that of another height";
    bert_.Crash();
    ExpectTogether();
}

TEST_F(DerivedPositions, TheirPlaneSystemBringsAllPositionsInIt) {
    Begin();
    bert_.Measure("P3", 9.0);
    anna_.SetPlaneSystem(kZone32);
    bert_.SetPlaneSystem("EPSG:32634");
    anna_.Sync();
    bert_.Sync();
    ASSERT_GE(bert_.Conflicts().size(), 3U);
    for (const auto& conflict : std::vector(bert_.Conflicts()))
        if (conflict.clash.bit == CHG_GRP_CONVCOORD) TakeTheirs(*bert_.project, conflict.number);
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.001);
    EXPECT_TRUE(bert_.Conflicts().empty()) << "their positions are computed";
    bert_.Crash();
    ExpectTogether();
}

TEST_F(DerivedPositions, BothPlaneSystemsEndInTheOneThatWasSentLast) {
    Begin();
    anna_.SetPlaneSystem(kZone32);
    anna_.Measure("P3", 9.0);
    bert_.SetPlaneSystem("EPSG:32634");
    carl_.Measure("P4", 21.0);
    Everybody();
    ExpectTogether();
    EXPECT_NEAR(anna_.Point(3).GetCoordX(), 500'000, 0.001);
}

TEST_F(DerivedPositions, BaseIsComputedToo) {
    Begin();
    anna_.Quay().SetBaseLat(45);
    anna_.Quay().SetBaseLong(15);
    anna_.Quay().SetBaseElev(64);
    anna_.Quay().SetBaseAltAnt(1.5);
    anna_.SetPlaneSystem(kZone33);
    Everybody();
    anna_.Quay().SetBaseAltAnt(2.0);
    anna_.SetPlaneSystem(kZone33);
    bert_.Quay().SetBaseElev(66);
    bert_.SetPlaneSystem(kZone33);
    anna_.Sync();
    EXPECT_EQ(bert_.Sync().conflicts, 0);
    EXPECT_NEAR(bert_.Quay().GetCoordZ(), 64.0, 1e-6);
    bert_.Crash();
    ExpectTogether();
}

TEST_F(DerivedPositions, ItemsThatGoWithTheSamePullAreNotLookedFor) {
    Begin();
    anna_.SetPlaneSystem(kZone32);
    test::DeletePoint(*anna_.project, 0, 0);
    anna_.Sync();
    bert_.Measure("P3", 9.0);
    bert_.Sync();
    EXPECT_EQ(test::NamesIn(*bert_.project), "Quay(P2 P3)");
    EXPECT_NEAR(bert_.Point(1).GetCoordX(), 500'000, 0.001);
    ExpectTogether();
}

/// One reply a page.
class DerivedPositionsInPages : public DerivedPositions {
protected:
    DerivedPositionsInPages() : DerivedPositions(1) {}

    /// Bert's pull ends behind the page with the new plane system, and more.
    void BreakBehind(int pages) {
        anna_.SetPlaneSystem(kZone32);
        anna_.Sync();
        bert_.Measure("P3", 9.0);
        bert_.pagesLeft = pages;
        EXPECT_THROW(bert_.Sync(), TransportError);
        bert_.pagesLeft = 1'000'000;
    }
};

TEST_F(DerivedPositionsInPages, AreComputedBehindTheLastOne) {
    Begin();
    anna_.SetPlaneSystem(kZone32);
    anna_.Sync();
    bert_.Measure("P3", 9.0);
    bert_.commits = 0;
    bert_.Sync();
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.001);
    EXPECT_EQ(bert_.commits, 2);
    bert_.Crash();
    ExpectTogether();
}

TEST_F(DerivedPositionsInPages, PullThatBrokeOffGoesOnAfterACrash) {
    Begin();
    BreakBehind(1);
    EXPECT_LT(bert_.Point(2).GetCoordX(), 50'000) << "not yet";
    bert_.Crash();
    bert_.Sync();
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.001);
    ExpectTogether();
}

TEST_F(DerivedPositionsInPages, PullThatBrokeOffGoesOnAfterASave) {
    Begin();
    BreakBehind(2);
    bert_.project->Save();
    bert_.Crash();
    bert_.Sync();
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.001);
    ExpectTogether();
}

TEST_F(DerivedPositionsInPages, WhatIsSetByHandBetweenTwoPagesStays) {
    Begin();
    BreakBehind(1);
    bert_.ChangePoint(2, [](CPunGps& point) { point.SetCoord(1000, 2000, 3); });
    bert_.Sync();
    EXPECT_EQ(bert_.Point(2).GetCoordX(), 1000);
}

TEST_F(DerivedPositionsInPages, PointThatHadNoIdIsFoundByItsTicket) {
    Begin();
    anna_.SetPlaneSystem(kZone32);
    anna_.Sync();
    bert_.Measure("P;3", 9.0);  // no record carries it
    bert_.pagesLeft = 1;
    EXPECT_THROW(bert_.Sync(), TransportError);
    bert_.pagesLeft = 1'000'000;
    test::RenamePoint(*bert_.project, 0, 2, "P3");
    bert_.project->Save();
    bert_.Crash();
    bert_.Sync();
    EXPECT_NEAR(bert_.Point(2).GetCoordX(), 500'000, 0.001);
    ExpectTogether();
}

}  // namespace
