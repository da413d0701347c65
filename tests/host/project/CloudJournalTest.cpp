// A shared book after a crash: what comes back is what was there, and the next sync goes on from it.
#include <gtest/gtest.h>

#include <cerrno>
#include <random>

#include "host/project/ConflictResolution.h"
#include "host/project/EditCodes.h"
#include "platform/base/ofpstream.h"
#include "tests/Scale.h"
#include "tests/host/project/CloudSamples.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::ProjectError;
using test::AcceptAll;
using test::CloudKind;
using test::CommitAnswer;
using test::DeletionOf;
using test::EverythingOf;
using test::GroupReply;
using test::kCommit1;
using test::kCommit2;
using test::ModelDisk;
using test::NamesIn;
using test::OutlineOf;
using test::PageOf;
using test::PointReply;
using test::Project;
using test::SharedDisk;
using Mode = Project::Mode;

// --- every step --------------------------------------------------------------------------------------------

/// What a session with several syncs does, step by step: edits of every kind before, between and behind the
/// steps of a sync.
using Step = std::function<void(Project&)>;

const std::vector<Step>& Steps() {
    static const std::vector<Step> steps{
        [](Project& p) { test::AddPoint(p, 1, "B2"); },
        [](Project& p) { p.GetCloud().BeginCommit(kCommit1); },
        [](Project& p) { test::RenamePoint(p, 0, 0, "A1*"); },  // sent, and changed since
        [](Project& p) { test::DeletePoint(p, 0, 1); },         // sent, and deleted since
        [](Project& p) { test::AddPoint(p, 0, "A3"); },         // not sent
        [](Project& p) { p.GetCloud().TakeAnswer(AcceptAll(p, 1, 1), 1); },
        [](Project& p) {
            p.GetCloud().TakePage(PageOf(2, {GroupReply(11, "C"), PointReply(12, 11, "C1"),
                                             PointReply(3, 1, "theirs"), PointReply(5, 2, "B1*")}));
        },
        [](Project& p) { test::RenamePoint(p, 1, 0, "b;1"); },  // held back
        [](Project& p) { test::AddGroup(p, "D"); },
        [](Project& p) { test::AddPoint(p, 3, "D1"); },
        [](Project& p) { p.GetCloud().BeginCommit(kCommit2); },
        [](Project& p) { test::DeletePoint(p, 2, 0); },
        [](Project& p) {
            CommitAnswer answer = AcceptAll(p, 4, 20);
            answer.ids.back() = 0;  // D1 is refused
            answer.refused = {{1, "changed"}, {4, "full"}};
            answer.clashes = {{CloudKind::point, 3, "A1*", 1, "A1*", "theirs", 2, "Bruno", 3},
                              {CloudKind::point, 4, "A2", 0, "", "name", 2, "Bruno", 3}};
            ASSERT_TRUE(p.GetCloud().TakeAnswer(answer, 1));
        },
        [](Project& p) { gpsproject::TakeTheirs(p, 2); },
        [](Project& p) {
            auto page = PageOf(6, {PointReply(30, 11, "C2"), DeletionOf(CloudKind::group, 2)});
            page.last = false;
            p.GetCloud().TakePage(page);
        },
        [](Project& p) { p.GetCloud().TakePage(PageOf(6, {DeletionOf(CloudKind::point, 3)})); },
        [](Project& p) { gpsproject::AddAgain(p, 4, -1); },  // B, which held "b;1"
        [](Project& p) { gpsproject::KeepAsItIs(p, 3); },
        [](Project& p) { p.GetCloud().BeginCommit(std::string(32, '3')); },
        [](Project& p) { p.GetCloud().TakeAnswer(AcceptAll(p, 7, 40), 1); },
    };
    return steps;
}

TEST(CloudJournal, BookComesBackAsItWasAfterEveryStep) {
    for (std::size_t last = 1; last <= Steps().size(); ++last) {
        SharedDisk disk;
        std::string expected;
        {
            const auto project = disk.Open(Mode::write);
            for (std::size_t i = 0; i < last; ++i) Steps()[i](*project);
            project->GetEdits().Commit();
            expected = EverythingOf(*project);
        }
        const auto project = disk.Open(Mode::read);
        ASSERT_FALSE(project->GetReport().IsDamaged()) << last << ": " << project->GetReport().Text();
        ASSERT_EQ(project->GetReplay().edits, static_cast<std::int64_t>(last));
        ASSERT_EQ(EverythingOf(*project), expected) << "after step " << last;
    }
}

TEST(CloudJournal, StepsDoSomething) {
    SharedDisk disk;
    const auto project = disk.Open(Mode::write);
    std::string before = EverythingOf(*project);
    for (std::size_t i = 0; i < Steps().size(); ++i) {
        Steps()[i](*project);
        const std::string now = EverythingOf(*project);
        EXPECT_NE(now, before) << i;
        before = now;
    }
    EXPECT_EQ(NamesIn(*project), "A(A3) Site(C2) D(D1) B(b;1 B2)");
}

TEST(CloudJournal, SessionMayEndAndBeginAgainAfterEveryStep) {
    // One goes on, the other crashes after every step; none is saved by hand.
    SharedDisk one, other;
    const auto goesOn = one.Open(Mode::write);
    for (std::size_t i = 0; i < Steps().size(); ++i) {
        Steps()[i](*goesOn);
        const auto project = other.Open(Mode::write);
        Steps()[i](*project);
        project->GetEdits().Commit();
        EXPECT_EQ(NamesIn(*project), NamesIn(*goesOn)) << i;
        EXPECT_EQ(project->GetCloud().GetState(), goesOn->GetCloud().GetState()) << i;
    }
    const auto project = other.Open(Mode::write);
    EXPECT_EQ(NamesIn(*project), NamesIn(*goesOn));
    for (int g = 0; g < project->GetBook().GetGrpArSize(); ++g) {
        EXPECT_EQ(test::IdOfGroup(*project, g), test::IdOfGroup(*goesOn, g)) << g;
        for (int p = 0; p < project->GetBook().GetPunArSize(g); ++p) {
            EXPECT_EQ(test::IdOfPoint(*project, g, p), test::IdOfPoint(*goesOn, g, p)) << g << "/" << p;
            EXPECT_EQ(project->GetBook().GetPunAt(g, p)->GetCloudFlag(),
                      goesOn->GetBook().GetPunAt(g, p)->GetCloudFlag());
        }
    }
}

TEST(CloudJournal, BookThatWasSavedAfterEveryStepIsTheSame) {
    for (std::size_t saved = 1; saved <= Steps().size(); ++saved) {
        SharedDisk disk;
        std::string expected;
        {
            const auto project = disk.Open(Mode::write);
            for (std::size_t i = 0; i < Steps().size(); ++i) {
                Steps()[i](*project);
                if (i + 1 == saved) project->Save();
            }
            project->GetEdits().Commit();
            expected = OutlineOf(*project);
        }
        const auto project = disk.Open(Mode::read);
        ASSERT_FALSE(project->GetReport().IsDamaged()) << saved << ": " << project->GetReport().Text();
        ASSERT_EQ(OutlineOf(*project), expected) << "saved after step " << saved;
    }
}

// --- a crash at any moment ---------------------------------------------------------------------------------

/// All states of a session that ends before operation `at` of the disk, and the last of them that is stored
/// for sure.
struct Session {
    std::vector<std::string> states;
    std::size_t stored = 0;
};

Session Work(ModelDisk& disk, long at) {
    Session session;
    disk.ResetOperations();
    disk.SetFault([at](long n, const std::string&) { return n >= at ? EIO : 0; });
    try {
        const auto project = Project::Open(test::kBook, Mode::write, disk);
        if (project->GetReport().IsDamaged()) return session;
        session.states.push_back(OutlineOf(*project));
        for (std::size_t i = 0; i < Steps().size(); ++i) {
            Steps()[i](*project);
            session.states.push_back(OutlineOf(*project));
            if (i % 3 == 0) continue;  // two edits wait for one commit
            if (i % 7 == 4)
                project->Save();
            else
                project->GetEdits().Commit();
            session.stored = session.states.size() - 1;
        }
    } catch (const ProjectError&) {  // that is what a loss of power looks like
    }
    disk.SetFault({});
    return session;
}

TEST(CloudJournal, LossOfPowerAtAnyOperationLeavesAStateOfTheSession) {
    SharedDisk start;
    std::mt19937 random(1);
    long inBetween = 0;
    const long operations = [&] {
        const auto disk = start.AfterPowerLoss(random);
        Work(*disk, 1'000'000);
        return disk->GetOperations();
    }();
    const long tries = Scaled(50);
    for (long at = 0; at < operations; ++at) {
        for (long i = 0; i < tries; ++i) {
            auto disk = start.AfterPowerLoss(random);
            const Session session = Work(*disk, at);
            disk = disk->AfterPowerLoss(random);
            const auto project = Project::Open(test::kBook, Mode::read, *disk);
            ASSERT_FALSE(project->GetReport().IsDamaged()) << at << ": " << project->GetReport().Text();
            if (session.states.empty()) continue;  // it ended while the book was opened
            const std::string found = OutlineOf(*project);
            const auto from = session.states.begin() + static_cast<std::ptrdiff_t>(session.stored);
            const auto state = std::find(from, session.states.end(), found);
            ASSERT_NE(state, session.states.end()) << "operation " << at << ", try " << i;
            if (project->GetCloud().GetCommit()) ++inBetween;
        }
    }
    EXPECT_GT(operations, 100);
    EXPECT_GT(inBetween, operations * tries / 20) << "a commit was under way";
    RecordProperty("cases", std::to_string(operations * tries));
}

// --- tickets -----------------------------------------------------------------------------------------------

TEST(CloudJournal, LostAnswerReachesItsItemsAfterARestart) {
    SharedDisk disk;
    std::string records;
    CommitAnswer answer;
    {
        const auto project = disk.Open(Mode::write);
        ASSERT_TRUE(project->GetCloud().BeginCommit(kCommit1));
        project->GetEdits().Commit();
        records = project->GetCloud().GetCommit()->records;
        answer = AcceptAll(*project, 1, 1);
        // Before it ends: a new point in front of all others, and one that was sent goes.
        test::DeletePoint(*project, 0, 0);
        gpsproject::Edit edit(project->GetEdits());
        project->GetBook().InsPunAt(0, 0, false)->SetNome("first");
        project->GetEdits().PointInserted(0, 0);
        edit.Done();
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::write);
    ASSERT_NE(project->GetCloud().GetCommit(), nullptr);
    EXPECT_EQ(project->GetCloud().GetCommit()->records, records) << "it is sent again as it was";
    test::AddPoint(*project, 1, "later");
    ASSERT_TRUE(project->GetCloud().TakeAnswer(answer, 1));
    EXPECT_EQ(NamesIn(*project), "A(first A2) B(B1 later)");
    EXPECT_EQ(test::IdOfPoint(*project, 0, 0), 0);
    EXPECT_EQ(test::IdOfPoint(*project, 0, 1), 4);
    EXPECT_EQ(test::IdOfPoint(*project, 1, 0), 5);
    EXPECT_EQ(test::IdOfPoint(*project, 1, 1), 0);
    EXPECT_EQ(project->GetCloud().GetTables().points.GetDeleted(), std::set<long long>{3});
}

TEST(CloudJournal, EditThatWasGivenUpNeverComesBackAndItsIdLandsOnNothingElse) {
    SharedDisk disk;
    CommitAnswer answer;
    {
        const auto project = disk.Open(Mode::write);
        test::Settle(*project);
        {
            gpsproject::Edit edit(project->GetEdits());
            project->GetBook().AddPun(0, false)->SetNome("given up");
            project->GetEdits().PointInserted(0, 2);
        }
        // It stands in the book of this session, and goes out with its commit.
        ASSERT_TRUE(project->GetCloud().BeginCommit(kCommit2));
        project->GetEdits().Commit();
        answer = AcceptAll(*project, 2, 60);
        ASSERT_EQ(answer.ids.size(), 1U);
    }
    const auto project = disk.Open(Mode::write);
    EXPECT_EQ(NamesIn(*project), "A(A1 A2) B(B1)");
    test::AddPoint(*project, 0, "another");
    ASSERT_TRUE(project->GetCloud().TakeAnswer(answer, 1));
    EXPECT_EQ(test::IdOfPoint(*project, 0, 2), 0);
    EXPECT_EQ(project->GetCloud().GetTables().points.GetDeleted(), std::set<long long>{60});
}

// --- entries that do not fit -------------------------------------------------------------------------------

/// Notes an entry, opens the book again, and tells what its journal says.
std::string Reported(SharedDisk& disk, int code, const std::string& payload) {
    {
        const auto project = disk.Open(Mode::write);
        project->GetEdits().NoteCloud(
            code, [&](ofpstream& out) { out.WriteBytes(payload.data(), payload.size()); });
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::write);
    EXPECT_EQ(project->IsReadOnly(), project->GetReport().IsDamaged());
    return project->GetReport().Text();
}

const std::string kPage = test::Bytes().I64(9).I64(9).Text("").U8(1).Text("").I64(0).I64(0);
const std::string kNoSent = std::string(2, '\0');  // of both tables

TEST(CloudJournal, StepsOfASharedProjectAreRefusedInABookOfNone) {
    for (const int code : {gpsproject::kCommitBegun, gpsproject::kCommitAnswered, gpsproject::kPageTaken,
                           gpsproject::kConflictDropped}) {
        test::JournalDisk disk;
        {
            const auto project = disk.Open(Mode::write);
            project->GetEdits().NoteCloud(code, [](ofpstream& out) { out.WriteInt(1); });
            project->GetEdits().Commit();
        }
        const auto project = disk.Open(Mode::write);
        EXPECT_TRUE(project->IsReadOnly()) << code;
        EXPECT_NE(project->GetReport().Text().find("shared project"), std::string::npos)
            << project->GetReport().Text();
    }
}

TEST(CloudJournal, EntriesThatFitAreTaken) {
    SharedDisk disk;
    EXPECT_EQ(Reported(disk, gpsproject::kPageTaken, kPage), "");
    EXPECT_EQ(disk.Open(Mode::read)->GetCloud().GetState().revision, 9);
}

TEST(CloudJournal, EntriesThatDoNotFitStopTheReplay) {
    using test::Bytes;
    const std::string commit = test::CommitBytes();
    const std::string answer = Bytes().I32(1).Text("c0ffee").I64(1).I64(0).I64(0).I64(0).Text("");
    const std::string unknown = Bytes()
                                    .I64(9)
                                    .I64(9)
                                    .Text("")
                                    .U8(1)
                                    .Text("")
                                    .I64(1)
                                    .U8(3)
                                    .U8(0)
                                    .I32(2)
                                    .I64(9)
                                    .U8(0)
                                    .I64(1)
                                    .Text("1")
                                    .I64(0);
    const std::vector<std::pair<int, std::string>> entries{
        {gpsproject::kCommitAnswered, answer},               // none is under way
        {gpsproject::kCommitBegun, commit},                  // without what was sent
        {gpsproject::kCommitBegun, commit + kNoSent + "x"},  // bytes are left over
        {gpsproject::kPageTaken, unknown},                   // a group of one field
        {gpsproject::kPageTaken, kPage.substr(0, kPage.size() - 1)},
        {gpsproject::kConflictDropped, "abc"},
        {9013, ""},  // no kind of entry that there is
    };
    for (const auto& [code, payload] : entries) {
        SharedDisk disk;
        EXPECT_NE(Reported(disk, code, payload), "") << code;
        const auto project = disk.Open(Mode::read);
        EXPECT_EQ(NamesIn(*project), "A(A1 A2) B(B1)") << code;
    }
}

TEST(CloudJournal, SecondCommitBeforeAnAnswerStopsTheReplay) {
    SharedDisk disk;
    {
        const auto project = disk.Open(Mode::write);
        ASSERT_TRUE(project->GetCloud().BeginCommit(kCommit1));
        project->GetEdits().NoteCloud(gpsproject::kCommitBegun, [](ofpstream& out) {
            const std::string entry = test::CommitBytes().Get() + kNoSent;
            out.WriteBytes(entry.data(), entry.size());
        });
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_NE(project->GetReport().Text().find("not answered"), std::string::npos)
        << project->GetReport().Text();
    EXPECT_EQ(project->GetCloud().GetCommit()->id, kCommit1);
}

TEST(CloudJournal, CutEntriesOfEveryStepAreRefusedAndInventNothing) {
    // The entries of a whole session, each cut somewhere.
    SharedDisk disk;
    std::string journal;
    {
        const auto project = disk.Open(Mode::write);
        for (const Step& step : Steps()) step(*project);
        project->GetEdits().Commit();
        journal = disk.Bytes(test::kJournal);
    }
    for (std::size_t size = 0; size < journal.size(); size += 11) {
        disk.Put(test::kJournal, journal.substr(0, size));
        const auto project = disk.Open(Mode::read);
        EXPECT_FALSE(project->GetReport().IsDamaged()) << size << ": " << project->GetReport().Text();
    }
}

}  // namespace
