// Two surveyors and one project: from the first sync to the same book in both hands.
#include <gtest/gtest.h>

#include "host/cloud/MemoryStore.h"
#include "host/cloud/Sync.h"
#include "host/cloud/SyncServer.h"
#include "host/project/ConflictResolution.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpssync::SyncReport;
using gpssync::Transport;
using gpssync::TransportError;
using test::CloudKind;
using test::IdOfGroup;
using test::IdOfPoint;
using test::NamesIn;
using test::Project;
using Mode = Project::Mode;
using Kind = gpsproject::CloudConflict::Kind;

/// A line to the server that can break.
class Line : public Transport {
public:
    explicit Line(Transport& server) : server_(server) {}

    gpssync::SharedProject OpenProject(const std::string& name, bool make) override {
        return server_.OpenProject(name, make);
    }
    gpssync::CommitAnswer Commit(const std::string& key, const gpssync::Sender& sender,
                                 const gpssync::CloudCommit& commit) override {
        auto answer = server_.Commit(key, sender, commit);
        if (loseAnswers) throw TransportError(TransportError::Kind::noAnswer, "the connection broke");
        return answer;
    }
    gpssync::PullPage Pull(const std::string& key, const gpssync::Sender& sender,
                           const gpssync::PullRequest& request) override {
        if (pagesLeft-- == 0) throw TransportError(TransportError::Kind::noAnswer, "the connection broke");
        return server_.Pull(key, sender, request);
    }

    bool loseAnswers = false;
    int pagesLeft = 1'000'000;

private:
    Transport& server_;
};

/// A surveyor with a book on a disk of her own.
struct Surveyor {
    Surveyor(Transport& server, int device, const char* name) : line(server), sender{device, name} {
        {
            Project empty(Project::kNewestVersion, disk);
            empty.SaveAs(test::kBook, false);
        }
        project = disk.Open(Mode::write);
    }

    void Link(bool make) {
        LinkBook(*project, line, "/s/store", "site", make);
        project->Save();
    }
    SyncReport Sync() { return gpssync::Sync(*project, line, sender); }
    bool SyncFails() {
        try {
            Sync();
        } catch (const TransportError&) {
            return true;
        }
        return false;
    }
    /// The program ends without a save, and the book is opened again.
    void Crash() {
        project.reset();
        project = disk.Open(Mode::write);
    }
    std::string Names() { return NamesIn(*project); }
    const std::vector<gpsproject::CloudConflict>& Conflicts() {
        return project->GetCloud().GetState().conflicts;
    }
    CLibGps& Book() { return project->GetBook(); }

    test::JournalDisk disk{0, "/d/unused"};
    Line line;
    gpssync::Sender sender;
    std::unique_ptr<Project> project;
};

/// What two books must agree about: every field that a record carries, by id.
std::map<std::string, std::string> SharedContent(Project& project) {
    std::map<std::string, std::string> content;
    CLibGps& book = project.GetBook();
    auto& tables = project.GetCloud().GetTables();
    vex::String fields;
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        const std::string group = std::to_string(IdOfGroup(project, g));
        tables.base.GetFields(*book.GetGrpAt(g), 0x1FFF, fields);
        content["group " + group] = fields.View();
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            tables.points.GetFields(*book.GetPunAt(g, p), 0x1FFFF, fields);
            content["point " + std::to_string(IdOfPoint(project, g, p))] =
                group + ";" + std::string(fields.View());
        }
    }
    return content;
}

class Stories : public testing::Test {
protected:
    explicit Stories(std::size_t pageSize = 3)
        : server_(std::make_unique<gpssync::MemoryStore>(), pageSize) {}

    /// Anna's book goes to the project, and Bruno gets it.
    void Begin() {
        test::FillSmall(*anna_.project);
        anna_.Link(true);
        anna_.Sync();
        bruno_.Link(false);
        bruno_.Sync();
        ExpectTheSame();
    }

    void ExpectTheSame() {
        EXPECT_EQ(SharedContent(*anna_.project), SharedContent(*bruno_.project));
        EXPECT_FALSE(anna_.project->GetCloud().HasToSend());
        EXPECT_FALSE(bruno_.project->GetCloud().HasToSend());
    }

    gpssync::SyncServer server_;
    Surveyor anna_{server_, 1, "Anna"};
    Surveyor bruno_{server_, 2, "Bruno"};
};

TEST_F(Stories, SecondSurveyorGetsTheWholeBook) {
    Begin();
    EXPECT_EQ(bruno_.Names(), "A(A1 A2) B(B1)");
    EXPECT_EQ(bruno_.Book().GetGrpAt(0)->GetCloudCreatorDevId(), 1);
    const auto again = bruno_.Sync();
    EXPECT_EQ(again.taken.groups + again.taken.points + again.taken.deleted, 0);
    const auto own = anna_.Sync();
    EXPECT_EQ(own.taken.groups + own.taken.points, 0) << "what she sent does not come back";
}

TEST_F(Stories, WhatBothMeasureIsInBothBooks) {
    Begin();
    test::AddPoint(*anna_.project, 0, "A3");
    test::AddGroup(*bruno_.project, "C");
    test::AddPoint(*bruno_.project, 2, "C1");
    test::AddPoint(*bruno_.project, 0, "A4");
    anna_.Sync();
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "A(A1 A2 A3 A4) B(B1) C(C1)");
}

TEST_F(Stories, DifferentFieldsOfOnePointAreNoConflict) {
    Begin();
    anna_.Book().GetPunAt(0, 0)->SetQua(4);
    bruno_.Book().GetPunAt(0, 0)->SetAltAnt(1.8);
    anna_.Sync();
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Book().GetPunAt(0, 0)->GetAltAnt(), 1.8);
    EXPECT_EQ(bruno_.Book().GetPunAt(0, 0)->GetQua(), 4);
    EXPECT_TRUE(anna_.Conflicts().empty());
    EXPECT_TRUE(bruno_.Conflicts().empty());
}

TEST_F(Stories, WhoSyncsLastWinsAndSeesTheOtherOnesValue) {
    Begin();
    test::RenamePoint(*anna_.project, 0, 0, "Anna's");
    test::RenamePoint(*bruno_.project, 0, 0, "Bruno's");
    anna_.Sync();
    EXPECT_EQ(bruno_.Sync().conflicts, 1);
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "A(Bruno's A2) B(B1)");
    EXPECT_TRUE(anna_.Conflicts().empty());
    ASSERT_EQ(bruno_.Conflicts().size(), 1U);
    EXPECT_EQ(bruno_.Conflicts()[0].clash.mine, "Bruno's");
    EXPECT_EQ(bruno_.Conflicts()[0].clash.theirs, "Anna's");
    EXPECT_EQ(bruno_.Conflicts()[0].clash.author, "Anna");
    // He gives in.
    gpsproject::TakeTheirs(*bruno_.project, bruno_.Conflicts()[0].number);
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "A(Anna's A2) B(B1)");
    EXPECT_TRUE(bruno_.Conflicts().empty());
    EXPECT_TRUE(anna_.Conflicts().empty());
}

TEST_F(Stories, PointThatWasDeletedElsewhereIsKeptWithWhatWasChangedHere) {
    Begin();
    test::DeletePoint(*anna_.project, 0, 0);
    test::RenamePoint(*bruno_.project, 0, 0, "Bruno's");
    anna_.Sync();
    const auto report = bruno_.Sync();
    EXPECT_EQ(report.refused, 1) << "nothing can be changed that is not there";
    EXPECT_EQ(bruno_.Names(), "A(A2) B(B1)");
    ASSERT_EQ(bruno_.Conflicts().size(), 1U);
    EXPECT_EQ(bruno_.Conflicts()[0].kind, Kind::kept);
    EXPECT_EQ(bruno_.Conflicts()[0].clash.author, "Anna");
    gpsproject::AddAgain(*bruno_.project, bruno_.Conflicts()[0].number, -1);
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "A(A2 Bruno's) B(B1)");
}

TEST_F(Stories, ChangeElsewhereOfWhatWasDeletedHereIsTold) {
    Begin();
    test::RenamePoint(*anna_.project, 0, 0, "Anna's");
    test::DeletePoint(*bruno_.project, 0, 0);
    anna_.Sync();
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "A(A2) B(B1)");
    ASSERT_EQ(bruno_.Conflicts().size(), 1U);
    EXPECT_EQ(bruno_.Conflicts()[0].kind, Kind::deletedHere);
    EXPECT_EQ(bruno_.Conflicts()[0].clash.author, "Anna");
}

TEST_F(Stories, GroupThatWasDeletedElsewhereIsKeptWithThePointsThatWereMeasuredHere) {
    Begin();
    test::DeleteGroup(*anna_.project, 0);
    test::AddPoint(*bruno_.project, 0, "A3");
    anna_.Sync();
    EXPECT_EQ(bruno_.Sync().refused, 1);
    EXPECT_EQ(bruno_.Names(), "B(B1)");
    ASSERT_EQ(bruno_.Conflicts().size(), 1U);
    EXPECT_EQ(bruno_.Conflicts()[0].keptPoints, 3);
    bruno_.Crash();
    gpsproject::AddAgain(*bruno_.project, bruno_.Conflicts()[0].number, -1);
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "B(B1) A(A1 A2 A3)");
}

TEST_F(Stories, BothDeleteTheSame) {
    Begin();
    test::DeletePoint(*anna_.project, 0, 0);
    test::DeleteGroup(*bruno_.project, 0);
    anna_.Sync();
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "B(B1)");
    EXPECT_TRUE(anna_.Conflicts().empty());
    EXPECT_TRUE(bruno_.Conflicts().empty());
}

TEST_F(Stories, LostAnswerAndACrashDoubleNothing) {
    Begin();
    test::AddPoint(*anna_.project, 0, "A3");
    test::RenamePoint(*anna_.project, 0, 0, "A1*");
    anna_.line.loseAnswers = true;
    EXPECT_TRUE(anna_.SyncFails());
    anna_.Crash();
    EXPECT_TRUE(anna_.SyncFails());
    test::AddPoint(*anna_.project, 0, "A4");
    test::DeletePoint(*anna_.project, 0, 2);  // A3, which the server has
    anna_.project->GetEdits().Commit();
    anna_.Crash();
    bruno_.Sync();
    EXPECT_EQ(bruno_.Names(), "A(A1* A2 A3) B(B1)");
    anna_.line.loseAnswers = false;
    EXPECT_TRUE(anna_.Sync().repeated);
    anna_.Sync();
    bruno_.Sync();
    ExpectTheSame();
    EXPECT_EQ(bruno_.Names(), "A(A1* A2 A4) B(B1)");
}

TEST_F(Stories, TextThatNoRecordCarriesWaitsAndNothingElse) {
    Begin();
    test::RenamePoint(*anna_.project, 0, 0, "A;1");
    test::RenamePoint(*anna_.project, 0, 1, "A2*");
    EXPECT_EQ(anna_.Sync().held, 1);
    bruno_.Sync();
    EXPECT_EQ(bruno_.Names(), "A(A1 A2*) B(B1)");
    test::RenamePoint(*anna_.project, 0, 0, "A-1");
    EXPECT_EQ(anna_.Sync().held, 0);
    bruno_.Sync();
    ExpectTheSame();
    EXPECT_EQ(bruno_.Names(), "A(A-1 A2*) B(B1)");
}

TEST_F(Stories, WhatCameWithABrokenPullAndIsDeletedMeanwhileGoes) {
    Begin();
    for (const char* name : {"A3", "A4", "A5", "A6"}) test::AddPoint(*anna_.project, 0, name);
    anna_.Sync();
    bruno_.line.pagesLeft = 1;
    EXPECT_TRUE(bruno_.SyncFails());
    EXPECT_EQ(bruno_.Names(), "A(A1 A2 A3 A4 A5) B(B1)");
    test::DeletePoint(*anna_.project, 0, 2);  // A3
    anna_.Sync();
    bruno_.line.pagesLeft = 100;
    bruno_.Sync();
    ExpectTheSame();
    EXPECT_EQ(bruno_.Names(), "A(A1 A2 A4 A5 A6) B(B1)");
}

TEST_F(Stories, PullThatGoesBackBringsLaterDeletionsToo) {
    Begin();
    test::AddPoint(*anna_.project, 0, "A3");
    anna_.Sync();
    bruno_.Sync();
    test::DeletePoint(*anna_.project, 0, 2);
    anna_.Sync();
    bruno_.project->GetCloud().PullAgainFrom(0);
    bruno_.Sync();
    ExpectTheSame();
    EXPECT_EQ(bruno_.Names(), "A(A1 A2) B(B1)");
}

TEST_F(Stories, CopyThatIsMergedInBringsNothingBackThatIsDeleted) {
    Begin();
    bruno_.project->Save();
    bruno_.disk.Open(Mode::read)->SaveAs("/d/old", false);
    const auto old = bruno_.disk.Open(Mode::read, "/d/old");
    test::DeletePoint(*anna_.project, 0, 0);
    anna_.Sync();
    test::DeletePoint(*bruno_.project, 0, 1);
    bruno_.Sync();
    EXPECT_EQ(bruno_.Names(), "A() B(B1)");
    // The copy still has both.
    bruno_.Book().MergeCloudItems(&old->GetBook());
    bruno_.project->GetCloud().PullAgainFrom(old->GetCloud().GetState().revision);
    bruno_.project->Save();
    EXPECT_EQ(bruno_.Names(), "A(A1 A2) B(B1)");
    bruno_.Sync();
    anna_.Sync();
    ExpectTheSame();
    EXPECT_EQ(anna_.Names(), "A() B(B1)");
}

TEST_F(Stories, CrashAfterEverySyncLosesNothing) {
    Begin();
    for (int round = 0; round < 6; ++round) {
        const std::string name = "R" + std::to_string(round);
        test::AddPoint(*anna_.project, round % 2, ("a" + name).c_str());
        test::RenamePoint(*bruno_.project, 0, 0, ("b" + name).c_str());
        if (round % 2 == 1) test::DeletePoint(*bruno_.project, 0, 1);
        anna_.Sync();
        anna_.Crash();
        bruno_.Sync();
        bruno_.Crash();
        anna_.Sync();
        anna_.Crash();
        ExpectTheSame();
    }
    EXPECT_EQ(anna_.Names(), bruno_.Names());
}

TEST_F(Stories, TwoProjectsOfOneNameAreNotMixedUp) {
    Begin();
    gpssync::SyncServer other(std::make_unique<gpssync::MemoryStore>());
    other.OpenProject("site", true);
    Line line(other);
    EXPECT_THROW(LinkBook(*bruno_.project, line, "/s/other", "site", true), TransportError);
    EXPECT_THROW(gpssync::Sync(*bruno_.project, line, bruno_.sender), TransportError);
    EXPECT_FALSE(bruno_.SyncFails());
    ExpectTheSame();
}

}  // namespace
