// One sync, against a server that says what it is told to.
#include <gtest/gtest.h>

#include <cerrno>
#include <deque>
#include <functional>
#include <optional>
#include <set>

#include "host/cloud/Sync.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::CloudCommit;
using gpsproject::CommitAnswer;
using gpsproject::ProjectError;
using gpsproject::PullPage;
using gpsproject::PullRequest;
using gpssync::LinkBook;
using gpssync::Sender;
using gpssync::SharedProject;
using gpssync::Sync;
using gpssync::TransportError;
using test::EverythingOf;
using test::kCommit1;
using test::KindOf;
using test::NamesIn;
using test::PageOf;
using test::PointReply;
using test::Project;
using Mode = Project::Mode;

/// Notes what it is asked. Unless told otherwise it takes all of a commit under ids from 1 on, and knows of
/// nothing that others did.
class Script : public gpssync::Transport {
public:
    SharedProject OpenProject(const std::string& name, bool make) override {
        calls.push_back("open " + name + (make ? ", make" : ""));
        if (openError) throw *openError;
        return shared;
    }

    CommitAnswer Commit(const std::string& key, const Sender& sender, const CloudCommit& commit) override {
        calls.push_back("commit");
        keys.insert(key);
        senders.insert(sender.device);
        commits.push_back(commit);
        if (commitError) throw *commitError;
        CommitAnswer answer{commit.id, ++revision, {}, {}, {}};
        std::string_view records = commit.records;
        while (!records.empty()) {
            if (records.starts_with("I")) answer.ids.push_back(++lastId);
            const auto end = records.find("\r\n");
            records = end == std::string_view::npos ? std::string_view{} : records.substr(end + 2);
        }
        if (change) change(answer);
        return answer;
    }

    PullPage Pull(const std::string& key, const Sender& sender, const PullRequest& request) override {
        calls.push_back("pull");
        keys.insert(key);
        senders.insert(sender.device);
        requests.push_back(request);
        if (pullError && pages.empty()) throw *pullError;
        if (pages.empty()) return PageOf(revision, {});
        PullPage page = pages.front();
        pages.pop_front();
        return page;
    }

    std::vector<std::string> calls;
    std::set<std::string> keys;
    std::set<int> senders;
    std::vector<CloudCommit> commits;
    std::vector<PullRequest> requests;
    std::deque<PullPage> pages;
    std::function<void(CommitAnswer&)> change;
    std::optional<TransportError> openError, commitError, pullError;
    SharedProject shared{test::kLink.key, "site", 0, false};
    std::int64_t revision = 0, lastId = 0;
};

std::string Text(const PullRequest& request) {
    std::string text = std::to_string(request.revision) + " but not";
    for (const std::int64_t own : request.own) text += " " + std::to_string(own);
    return text + ", up to " + std::to_string(request.upTo) + " from '" + request.next + "'";
}

const TransportError kLost(TransportError::Kind::noAnswer, "the connection broke");
const Sender kAnna{7, "Anna"};

using Calls = std::vector<std::string>;

class SyncSteps : public testing::Test {
protected:
    gpssync::SyncReport Run() {
        return Sync(*project_, script_, kAnna, [this](const char* what) { steps_.push_back(what); });
    }
    TransportError::Kind Fails() {
        try {
            Run();
        } catch (const TransportError& e) {
            return e.GetKind();
        }
        ADD_FAILURE() << "nothing was thrown";
        return {};
    }
    /// The book as a crash now would leave it.
    std::string OnTheDisk() { return EverythingOf(*disk_.Open(Mode::read)); }

    test::SharedDisk disk_;
    std::unique_ptr<Project> project_ = disk_.Open(Mode::write);
    gpsproject::BookCloud& cloud_ = project_->GetCloud();
    Script script_;
    Calls steps_;
};

TEST_F(SyncSteps, SendsWhatWaitsAndThenTakesWhatOthersDid) {
    script_.pages.push_back(PageOf(2, {PointReply(20, 1, "A3")}));
    const auto report = Run();
    EXPECT_EQ(script_.calls, (Calls{"commit", "pull"}));
    EXPECT_EQ(script_.keys, std::set<std::string>{test::kLink.key});
    EXPECT_EQ(script_.senders, std::set<int>{7});
    EXPECT_EQ(steps_, (Calls{"begin a commit", "store the commit", "send", "take the answer",
                             "store the answer", "pull", "take a page", "store what was pulled"}));
    EXPECT_FALSE(report.repeated);
    EXPECT_EQ(report.added, 5);
    EXPECT_EQ(report.changed, 0);
    EXPECT_EQ(report.taken.points, 1);
    EXPECT_EQ(report.revision, 2);
    EXPECT_EQ(NamesIn(*project_), "A(A1 A2 A3) B(B1)");
    EXPECT_TRUE(CGrpGps::CloudItemOf(project_->GetBook().GetGrpAt(0))->IsCloudMine(7));
    EXPECT_EQ(Text(script_.requests[0]), "0 but not 1, up to 0 from ''");
    EXPECT_EQ(OnTheDisk(), EverythingOf(*project_));
}

TEST_F(SyncSteps, WithNothingToSendThereIsNoCommit) {
    Run();
    script_.calls.clear();
    const auto report = Run();
    EXPECT_EQ(script_.calls, Calls{"pull"});
    EXPECT_EQ(report.added + report.changed + report.deleted, 0);
}

TEST_F(SyncSteps, CommitIsOnTheDiskBeforeItIsSent) {
    script_.commitError = kLost;
    EXPECT_EQ(Fails(), TransportError::Kind::noAnswer);
    const auto opened = disk_.Open(Mode::read);
    ASSERT_NE(opened->GetCloud().GetCommit(), nullptr);
    EXPECT_EQ(*opened->GetCloud().GetCommit(), script_.commits[0]);
    EXPECT_EQ(script_.calls, Calls{"commit"}) << "nothing is taken while a commit is unanswered";
}

TEST_F(SyncSteps, UnansweredCommitIsSentAgainAsItWasAndThenTheRest) {
    script_.commitError = kLost;
    Fails();
    Fails();
    test::AddPoint(*project_, 0, "A3");
    test::RenamePoint(*project_, 0, 0, "A1*");
    script_.commitError.reset();
    script_.calls.clear();
    const auto report = Run();
    EXPECT_EQ(script_.calls, (Calls{"commit", "commit", "pull"}));
    ASSERT_EQ(script_.commits.size(), 4U);
    EXPECT_EQ(script_.commits[1], script_.commits[0]);
    EXPECT_EQ(script_.commits[2], script_.commits[0]);
    EXPECT_NE(script_.commits[3].id, script_.commits[0].id);
    EXPECT_TRUE(script_.commits[3].records.starts_with("UPTGPS;3;1;A1*\r\nIPTGPS;1;A3;"));
    EXPECT_TRUE(report.repeated);
    EXPECT_EQ(report.added, 6);
    EXPECT_EQ(report.changed, 1);
    EXPECT_FALSE(cloud_.HasToSend());
}

TEST_F(SyncSteps, AnswerToAnotherCommitLeavesTheCommitUnderWay) {
    for (const int wrong : {0, 1}) {
        script_.change = [wrong](CommitAnswer& answer) {
            if (wrong == 0)
                answer.commit = kCommit1;
            else
                answer.ids.pop_back();
        };
        EXPECT_EQ(Fails(), TransportError::Kind::noAnswer);
        EXPECT_EQ(script_.calls.back(), "commit");
        EXPECT_NE(cloud_.GetCommit(), nullptr);
    }
    EXPECT_EQ(script_.commits[1], script_.commits[0]);
}

TEST_F(SyncSteps, FailedPullLeavesTheAnswerTaken) {
    script_.pullError = kLost;
    EXPECT_EQ(Fails(), TransportError::Kind::noAnswer);
    EXPECT_EQ(cloud_.GetCommit(), nullptr);
    EXPECT_FALSE(cloud_.HasToSend());
    EXPECT_EQ(OnTheDisk(), EverythingOf(*project_));
}

TEST_F(SyncSteps, PullGoesOnWhereThePageBeforeEnded) {
    PullPage first = PageOf(9, {PointReply(20, 1, "A3")});
    first.last = false;
    first.next = "there";
    script_.pages = {first, PageOf(9, {PointReply(21, 1, "A4")})};
    const auto report = Run();
    ASSERT_EQ(script_.requests.size(), 2U);
    EXPECT_EQ(Text(script_.requests[1]), "0 but not 1, up to 9 from 'there'");
    EXPECT_EQ(report.taken.points, 2);
    EXPECT_EQ(report.revision, 9);
    EXPECT_TRUE(cloud_.GetState().own.empty());
}

TEST_F(SyncSteps, PullThatBreaksBetweenPagesBeginsAnew) {
    PullPage first = PageOf(9, {PointReply(20, 1, "A3")});
    first.last = false;
    first.next = "there";
    script_.pages = {first};
    script_.pullError = kLost;
    EXPECT_EQ(Fails(), TransportError::Kind::noAnswer);
    EXPECT_EQ(NamesIn(*project_), "A(A1 A2 A3) B(B1)");
    EXPECT_EQ(cloud_.GetState().revision, 0);
    script_.pages = {PageOf(10, {PointReply(20, 1, "A3*")})};
    Run();
    EXPECT_EQ(Text(script_.requests.back()), "0 but not 1, up to 0 from ''");
    EXPECT_EQ(NamesIn(*project_), "A(A1 A2 A3*) B(B1)");
}

TEST_F(SyncSteps, PageThatAnswersAnEarlierRequestIsNotTaken) {
    Run();  // revision 1
    test::RenamePoint(*project_, 0, 0, "A1*");
    PullPage first = PageOf(9, {});
    first.last = false;
    first.next = "there";
    PullPage endless = first;
    endless.next.clear();
    const std::vector<std::deque<PullPage>> wrong{
        {PageOf(0, {PointReply(20, 1, "old")})},         // older than the book
        {PageOf(1, {PointReply(20, 1, "old")})},         // than its last commit
        {first, PageOf(8, {PointReply(20, 1, "old")})},  // of another pull
        {endless, PageOf(9, {PointReply(20, 1, "old")})},
    };
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        script_.pages = wrong[i];
        EXPECT_EQ(Fails(), TransportError::Kind::noAnswer) << i;
        EXPECT_EQ(NamesIn(*project_), "A(A1* A2) B(B1)") << i;
        EXPECT_EQ(cloud_.GetState().revision, 1) << i;
    }
    script_.pages.clear();
    EXPECT_EQ(Run().revision, 2);
}

TEST_F(SyncSteps, PageThatDoesNotFitEndsTheSyncAndTheNextOneGoesOn) {
    script_.pages = {PageOf(9, {PointReply(20, 77, "lost")})};
    EXPECT_EQ(KindOf([&] { Run(); }), ProjectError::Kind::damaged);
    EXPECT_EQ(cloud_.GetState().revision, 0);
    EXPECT_EQ(Run().revision, 1);
    EXPECT_EQ(OnTheDisk(), EverythingOf(*project_));
}

TEST_F(SyncSteps, ReportCountsWhatWasTakenAndWhatWasRefused) {
    Run();
    test::RenamePoint(*project_, 0, 0, "A1*");
    test::DeletePoint(*project_, 0, 1);
    test::DeletePoint(*project_, 1, 0);
    test::AddPoint(*project_, 1, "B2");
    test::AddPoint(*project_, 1, "B3");
    project_->GetBook().GetGrpAt(0)->SetNomeGrp("A;");
    project_->GetEdits().GroupChanged(0);
    script_.change = [](CommitAnswer& answer) {
        // Change, two additions, two deletions.
        answer.ids[1] = 0;
        answer.refused = {{3, "no"}, {5, "unknown"}};
        answer.clashes.resize(2);
    };
    const auto report = Run();
    EXPECT_EQ(report.changed, 1);
    EXPECT_EQ(report.added, 1);
    EXPECT_EQ(report.deleted, 1);
    EXPECT_EQ(report.refused, 2);
    EXPECT_EQ(report.held, 1);
    EXPECT_GT(report.conflicts, 0);
    EXPECT_EQ(cloud_.GetState().refusals.size(), 2U);
}

TEST_F(SyncSteps, RefusedChangeIsNotCountedAsChanged) {
    Run();
    test::RenamePoint(*project_, 0, 0, "A1*");
    script_.change = [](CommitAnswer& answer) { answer.refused = {{1, "gone"}}; };
    const auto report = Run();
    EXPECT_EQ(report.changed, 0);
    EXPECT_EQ(report.refused, 1);
}

TEST_F(SyncSteps, WhoeverWatchesMayEndItBetweenAnyTwoSteps) {
    struct Ended {};
    for (int at = 0; at < 8; ++at) {
        test::SharedDisk disk;
        const auto project = disk.Open(Mode::write);
        Script script;
        int step = 0;
        EXPECT_THROW(Sync(*project, script, kAnna,
                          [&](const char*) {
                              if (step++ == at) throw Ended();
                          }),
                     Ended)
            << at;
        // The next one brings it to its end; nothing is there twice.
        script.change = [&](CommitAnswer& answer) {
            if (script.commits.size() < 2 || script.commits[0] != script.commits[1]) return;
            answer.ids = {1, 2, 3, 4, 5};  // it was answered before
            answer.revision = 1;
        };
        Sync(*project, script, kAnna);
        EXPECT_FALSE(project->GetCloud().HasToSend()) << at;
        EXPECT_EQ(NamesIn(*project), "A(A1 A2) B(B1)") << at;
        EXPECT_EQ(test::IdOfPoint(*project, 1, 0), 5) << at;
        EXPECT_EQ(EverythingOf(*disk.Open(Mode::read)), EverythingOf(*project)) << at;
    }
}

TEST_F(SyncSteps, BookThatCannotBeWrittenIsNotSynced) {
    project_.reset();
    project_ = disk_.Open(Mode::read);
    EXPECT_EQ(KindOf([&] { Run(); }), ProjectError::Kind::readOnly);
    project_ = std::make_unique<Project>();
    EXPECT_EQ(KindOf([&] { Run(); }), ProjectError::Kind::readOnly);
    EXPECT_EQ(script_.calls, Calls{});
}

TEST_F(SyncSteps, FullDiskEndsItBeforeAnythingIsSent) {
    disk_.SetFault([](long, const std::string& what) { return what == "write" ? ENOSPC : 0; });
    EXPECT_EQ(KindOf([&] { Run(); }), ProjectError::Kind::system);
    EXPECT_EQ(script_.calls, Calls{});
    disk_.SetFault({});
    Run();
    EXPECT_EQ(script_.commits.size(), 1U);
    EXPECT_FALSE(cloud_.HasToSend());
}

// --- linking -----------------------------------------------------------------------------------------------

TEST(LinkBook, BookOfNoProjectIsLinkedAndTheProjectMadeWhenWanted) {
    for (const bool make : {false, true}) {
        Project project;
        test::FillSmall(project);
        Script script;
        const SharedProject shared = LinkBook(project, script, "/s/store", "site", make);
        EXPECT_EQ(shared.key, test::kLink.key);
        EXPECT_EQ(script.calls, Calls{make ? "open site, make" : "open site"});
        EXPECT_EQ(project.GetCloud().GetState().link, test::kLink);
        EXPECT_EQ(project.GetCloud().GetTables().points.GetAdded().size(), 3U);
    }
}

TEST(LinkBook, ProjectThatIsNotThereLeavesTheBookAsItIs) {
    Project project;
    test::FillSmall(project);
    Script script;
    script.openError = TransportError(TransportError::Kind::notFound, "no such project");
    EXPECT_THROW(LinkBook(project, script, "/s/store", "site", false), TransportError);
    EXPECT_FALSE(project.GetCloud().IsLinked());
}

TEST(LinkBook, LinkedBookFollowsItsProjectToAnotherNameAndPlace) {
    test::SharedDisk disk;
    const auto project = disk.Open(Mode::write);
    test::Settle(*project);
    Script script;
    script.shared.name = "renamed";
    LinkBook(*project, script, "/s/moved", "renamed", true);
    EXPECT_EQ(script.calls, (Calls{"open renamed", "pull"})) << "its project is never made anew";
    EXPECT_EQ(script.requests[0].known, 1);
    EXPECT_EQ(script.requests[0].head, kCommit1);
    EXPECT_EQ(Text(script.requests[0]), "1 but not, up to 0 from ''");
    EXPECT_EQ(project->GetCloud().GetState().link,
              (gpsproject::CloudLink{"/s/moved", "renamed", test::kLink.key}));
    EXPECT_EQ(test::IdOfPoint(*project, 1, 0), 5);
}

TEST(LinkBook, LinkToAStoreThatKnowsLessIsNotKept) {
    test::SharedDisk disk;
    const auto project = disk.Open(Mode::write);
    test::Settle(*project);
    const std::string before = EverythingOf(*project);
    Script script;
    script.pullError = TransportError(TransportError::Kind::older, "it was put back");
    EXPECT_THROW(LinkBook(*project, script, "/s/old", "site", true), TransportError);
    EXPECT_EQ(EverythingOf(*project), before);
    LinkBook(*project, script, test::kLink.store, "site", true);
    EXPECT_EQ(script.calls.back(), "open site") << "at its own place the sync tells";
}

TEST(LinkBook, LinkedBookDoesNotGoToAnotherProject) {
    test::SharedDisk disk;
    const auto project = disk.Open(Mode::write);
    test::Settle(*project);
    const std::string before = EverythingOf(*project);
    Script script;
    script.shared.key = std::string(32, 'f');
    try {
        LinkBook(*project, script, "/s/other", "site", true);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const TransportError& e) {
        EXPECT_EQ(e.GetKind(), TransportError::Kind::refused);
        EXPECT_NE(std::string(e.what()).find("/s/store"), std::string::npos) << e.what();
    }
    EXPECT_EQ(EverythingOf(*project), before);
}

TEST(RandomHex, Is32DigitsAndNeverTheSame) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string hex = gpssync::RandomHex();
        EXPECT_EQ(hex.size(), 32U);
        EXPECT_EQ(hex.find_first_not_of("0123456789abcdef"), std::string::npos) << hex;
        seen.insert(hex);
    }
    EXPECT_EQ(seen.size(), 1000U);
}

}  // namespace
