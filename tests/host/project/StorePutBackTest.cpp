// A store that is put back to an earlier state, and goes on: who knows what it has lost is told, and nothing
// of one comes to stand on what another one made under the same id.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "host/cloud/MemoryStore.h"
#include "host/cloud/Sync.h"
#include "host/cloud/SyncServer.h"
#include "tests/Scale.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpssync::MemoryStore;
using gpssync::TransportError;
using test::IdOfPoint;
using test::NamesIn;
using test::Project;
using Mode = Project::Mode;

/// A server whose store can be copied and put back.
class Office : public gpssync::Transport {
public:
    explicit Office(std::size_t pageSize = 2) : pageSize_(pageSize) { PutBack(MemoryStore()); }

    std::unique_ptr<MemoryStore> Copy() const { return store_->Copy(); }
    void PutBack(const MemoryStore& copy) {
        auto store = copy.Copy();
        store_ = store.get();
        server_ = std::make_unique<gpssync::SyncServer>(std::move(store), pageSize_);
    }

    gpssync::SharedProject OpenProject(const std::string& name, bool make) override {
        return server_->OpenProject(name, make);
    }
    gpssync::CommitAnswer Commit(const std::string& key, const gpssync::Sender& sender,
                                 const gpssync::CloudCommit& commit) override {
        auto answer = server_->Commit(key, sender, commit);
        if (std::exchange(loseAnswer, false)) Lose();
        return answer;
    }
    gpssync::PullPage Pull(const std::string& key, const gpssync::Sender& sender,
                           const gpssync::PullRequest& request) override {
        if (pagesLeft-- == 0) Lose();
        return server_->Pull(key, sender, request);
    }

    bool loseAnswer = false;
    int pagesLeft = kAll;
    static constexpr int kAll = 1'000'000;

private:
    [[noreturn]] static void Lose() {
        throw TransportError(TransportError::Kind::noAnswer, "the connection broke");
    }

    std::size_t pageSize_;
    MemoryStore* store_ = nullptr;  // the server's
    std::unique_ptr<gpssync::SyncServer> server_;
};

enum class Outcome { done, broken, older };

/// A surveyor with a book on a disk of her own.
struct Surveyor {
    Surveyor(Office& itsOffice, int device, bool first)
        : office(itsOffice), sender{device, "device " + std::to_string(device)} {
        {
            Project empty(Project::kNewestVersion, disk);
            if (first) test::FillSmall(empty);
            empty.SaveAs(test::kBook, false);
        }
        project = disk.Open(Mode::write);
        gpssync::LinkBook(*project, office, "/s/store", "site", first);
        project->Save();
        Sync();
    }

    Outcome Sync(int pages = Office::kAll) {
        office.pagesLeft = pages;
        try {
            gpssync::Sync(*project, office, sender);
        } catch (const TransportError& e) {
            return e.GetKind() == TransportError::Kind::older ? Outcome::older : Outcome::broken;
        }
        return Outcome::done;
    }
    void Reopen() {
        project->GetEdits().Commit();
        project.reset();
        project = disk.Open(Mode::write);
    }
    CLibGps& Book() { return project->GetBook(); }

    /// Whose value it is shows the text.
    void Mark(int g, int p, int number) {
        gpsproject::Edit edit(project->GetEdits());
        CPunGps& point = *Book().GetPunAt(g, p);
        point.SetSecScri(point.GetNome() + ":" + std::to_string(number));
        project->GetEdits().PointChanged(g, p);
        edit.Done();
    }

    /// Every field that a record carries, by id.
    std::map<std::string, std::string> Content() {
        std::map<std::string, std::string> content;
        auto& tables = project->GetCloud().GetTables();
        vex::String fields;
        for (int g = 0; g < Book().GetGrpArSize(); ++g) {
            tables.base.GetFields(*Book().GetGrpAt(g), 0x1FFF, fields);
            content["group " + std::to_string(test::IdOfGroup(*project, g))] = fields.View();
            for (int p = 0; p < Book().GetPunArSize(g); ++p) {
                tables.points.GetFields(*Book().GetPunAt(g, p), 0x1FFFF, fields);
                content["point " + std::to_string(IdOfPoint(*project, g, p))] = fields.View();
            }
        }
        return content;
    }

    Office& office;
    test::JournalDisk disk{0, "/d/unused"};
    gpssync::Sender sender;
    std::unique_ptr<Project> project;
};

class StorePutBack : public testing::Test {
protected:
    Office office_;
    Surveyor anna_{office_, 1, true};
    Surveyor bruno_{office_, 2, false};
};

// Ids 1 to 5 are given: the next point is 6, whoever makes it.
TEST_F(StorePutBack, BookThatKnowsARevisionOfItsOwnIsToldWhenOthersHaveGoneOn) {
    const auto copy = office_.Copy();
    test::AddPoint(*anna_.project, 0, "A3");
    EXPECT_EQ(anna_.Sync(0), Outcome::broken) << "it is answered, and takes nothing";
    ASSERT_EQ(IdOfPoint(*anna_.project, 0, 2), 6);
    office_.PutBack(*copy);
    test::AddPoint(*bruno_.project, 0, "B3");
    EXPECT_EQ(bruno_.Sync(), Outcome::done);
    anna_.Mark(0, 2, 1);
    anna_.Reopen();
    EXPECT_EQ(anna_.Sync(), Outcome::older);
    test::DeletePoint(*anna_.project, 0, 2);
    EXPECT_EQ(anna_.Sync(), Outcome::older);
    bruno_.Sync();
    ASSERT_EQ(NamesIn(*bruno_.project), "A(A1 A2 B3) B(B1)");
    EXPECT_EQ(bruno_.Book().GetPunAt(0, 2)->GetSecScri(), "");
}

TEST_F(StorePutBack, BookThatPullsAgainAfterAMergeIsToldWhenOthersHaveGoneOn) {
    const auto copy = office_.Copy();
    test::AddPoint(*anna_.project, 0, "A3");
    EXPECT_EQ(anna_.Sync(), Outcome::done);
    anna_.project->GetCloud().PullAgainFrom(1);
    anna_.project->Save();
    office_.PutBack(*copy);
    test::AddPoint(*bruno_.project, 0, "B3");
    EXPECT_EQ(bruno_.Sync(), Outcome::done);
    EXPECT_EQ(anna_.Sync(), Outcome::older);
    EXPECT_EQ(NamesIn(*anna_.project), "A(A1 A2 A3) B(B1)");
}

TEST_F(StorePutBack, BookWithHalfAPullIsToldWhenOthersHaveGoneOn) {
    const auto copy = office_.Copy();
    for (const char* name : {"A3", "A4", "A5"}) test::AddPoint(*anna_.project, 0, name);
    anna_.Sync();
    EXPECT_EQ(bruno_.Sync(1), Outcome::broken);
    EXPECT_EQ(NamesIn(*bruno_.project), "A(A1 A2 A3 A4) B(B1)");
    office_.PutBack(*copy);
    Surveyor carla(office_, 3, false);
    for (const char* name : {"C3", "C4", "C5"}) test::AddPoint(*carla.project, 0, name);
    EXPECT_EQ(carla.Sync(), Outcome::done);
    bruno_.Mark(0, 2, 1);
    EXPECT_EQ(bruno_.Sync(), Outcome::older);
    carla.Sync();
    ASSERT_EQ(NamesIn(*carla.project), "A(A1 A2 C3 C4 C5) B(B1)");
    EXPECT_EQ(carla.Book().GetPunAt(0, 2)->GetSecScri(), "");
}

TEST_F(StorePutBack, BookThatTookInAValueOfALaterRevisionIsTold) {
    for (const char* name : {"A3", "A4", "A5"}) test::AddPoint(*anna_.project, 0, name);
    anna_.Sync();
    const auto copy = office_.Copy();
    // Between two of Bruno's pages Anna's point becomes another one.
    gpssync::PullRequest request = bruno_.project->GetCloud().GetPullRequest();
    const auto& key = bruno_.project->GetCloud().GetState().link.key;
    const auto first = office_.Pull(key, bruno_.sender, request);
    bruno_.project->GetCloud().TakePage(first);
    anna_.Mark(0, 4, 1);
    anna_.Sync();
    request.upTo = first.upTo;
    request.next = first.next;
    bruno_.project->GetCloud().TakePage(office_.Pull(key, bruno_.sender, request));
    EXPECT_EQ(bruno_.Book().GetPunAt(0, 4)->GetSecScri(), "A5:1");
    office_.PutBack(*copy);
    EXPECT_EQ(bruno_.Sync(), Outcome::older);
}

TEST_F(StorePutBack, BookThatKnowsNothingOfWhatIsLostGoesOn) {
    test::AddPoint(*bruno_.project, 0, "B3");
    const auto copy = office_.Copy();
    test::AddPoint(*anna_.project, 0, "A3");
    office_.loseAnswer = true;
    EXPECT_EQ(anna_.Sync(), Outcome::broken);
    office_.PutBack(*copy);
    EXPECT_EQ(bruno_.Sync(), Outcome::done);
    EXPECT_EQ(anna_.Sync(), Outcome::done);
    EXPECT_EQ(bruno_.Sync(), Outcome::done);
    EXPECT_EQ(NamesIn(*anna_.project), "A(A1 A2 A3 B3) B(B1)");
    EXPECT_EQ(anna_.Content(), bruno_.Content());
}

// --- at random ---------------------------------------------------------------------------------------------

struct Counts {
    int older = 0, alike = 0;
};

class Schedule {
public:
    explicit Schedule(unsigned seed) : random_(seed), office_(1 + Below(3)) {
        for (int i = 0; i < 3; ++i) surveyors_.push_back(std::make_unique<Surveyor>(office_, 11 + i, i == 0));
    }

    void Run(Counts& counts) {
        for (int step = 0; step < 40; ++step) Step(*surveyors_[Below(3)]);
        std::set<std::size_t> older;
        for (int round = 0; round < 4; ++round)
            for (std::size_t i = 0; i < surveyors_.size(); ++i) {
                const Outcome outcome = surveyors_[i]->Sync();
                EXPECT_NE(outcome, Outcome::broken);
                if (round > 0) {
                    EXPECT_EQ(outcome == Outcome::older, older.contains(i)) << "of device " << i;
                }
                if (outcome == Outcome::older) older.insert(i);
            }
        Surveyor late(office_, 99, false);
        ExpectOwnValues(late);
        const auto content = late.Content();
        for (std::size_t i = 0; i < surveyors_.size(); ++i) {
            ++(older.contains(i) ? counts.older : counts.alike);
            if (older.contains(i)) continue;
            EXPECT_EQ(surveyors_[i]->Content(), content) << "of device " << i;
            EXPECT_FALSE(surveyors_[i]->project->GetCloud().HasToSend());
        }
    }

private:
    std::size_t Below(std::size_t n) { return random_() % n; }

    void Step(Surveyor& who) {
        CLibGps& book = who.Book();
        const std::size_t what = Below(20);
        const int g = book.GetGrpArSize() > 0 ? static_cast<int>(Below(2)) : -1;
        const int points = g < 0 ? 0 : book.GetPunArSize(g);
        const int p = points > 0 ? static_cast<int>(Below(static_cast<std::size_t>(points))) : -1;
        if (what < 5) {
            if (g >= 0) test::AddPoint(*who.project, g, ("p" + std::to_string(++number_)).c_str());
        } else if (what < 9) {
            if (p >= 0) who.Mark(g, p, ++number_);
        } else if (what == 9) {
            if (p >= 0) test::DeletePoint(*who.project, g, p);
        } else if (what < 14) {
            who.Sync();
        } else if (what < 16) {
            office_.loseAnswer = Below(2) == 0;
            who.Sync(static_cast<int>(Below(3)));
            office_.loseAnswer = false;
        } else if (what == 16) {
            who.Reopen();
        } else if (what == 17) {
            const auto revision = static_cast<std::size_t>(who.project->GetCloud().GetState().revision);
            who.project->GetCloud().PullAgainFrom(static_cast<std::int64_t>(Below(revision + 1)));
            who.project->Save();
        } else if (what == 18 || copies_.empty()) {
            copies_.push_back(office_.Copy());
        } else {
            office_.PutBack(*copies_[Below(copies_.size())]);
        }
    }

    // No value stands on a point that it was not given to.
    static void ExpectOwnValues(Surveyor& who) {
        for (int g = 0; g < who.Book().GetGrpArSize(); ++g)
            for (int p = 0; p < who.Book().GetPunArSize(g); ++p) {
                const CPunGps& point = *who.Book().GetPunAt(g, p);
                EXPECT_TRUE(point.GetSecScri().empty() ||
                            point.GetSecScri().starts_with(point.GetNome() + ":"))
                    << point.GetNome() << " has " << point.GetSecScri();
            }
    }

    std::mt19937 random_;
    Office office_;
    std::vector<std::unique_ptr<Surveyor>> surveyors_;
    std::vector<std::unique_ptr<MemoryStore>> copies_;
    int number_ = 0;
};

TEST(StorePutBackAtRandom, WhoIsNotRefusedHasWhatTheStoreHas) {
    Counts counts;
    for (long seed = 0; seed < Scaled(2000) && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Schedule(static_cast<unsigned>(seed)).Run(counts);
    }
    EXPECT_GT(counts.older, 10);
    EXPECT_GT(counts.alike, 10);
}

}  // namespace
