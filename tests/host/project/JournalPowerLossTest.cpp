// Power lost at any moment while a book is edited, journalled and saved: what was called stored is there.
#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

#include "host/project/Project.h"
#include "tests/Scale.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/RandomEdits.h"
#include "tests/host/project/Samples.h"

namespace {

using gpsproject::Project;
using gpsproject::ProjectError;
using test::Content;
using test::ContentOf;
using test::ModelDisk;

constexpr const char* kBook = "/d/book";

/// States of the book in a session, one for each edit; `stored`: the last of which the program has said that
/// it is stored.
struct Session {
    std::vector<Content> states;
    std::size_t stored = 0;
    bool opened = false;
};

/// Opens, edits, commits and saves, until the power goes before operation `at` (negative: never).
Session Work(ModelDisk& disk, unsigned seed, long at) {
    Session session;
    disk.ResetOperations();
    if (at >= 0) disk.SetFault([at](long n, const std::string&) { return n >= at ? EIO : 0; });
    std::mt19937 random(seed);
    try {
        const auto project = Project::Open(kBook, Project::Mode::write, disk);
        if (project->GetReport().IsDamaged()) return session;
        session.opened = true;
        session.states.push_back(ContentOf(*project));
        for (int i = 0; i < 6; ++i) {
            test::EditSomething(*project, random);
            session.states.push_back(ContentOf(*project));
            const auto what = random() % 4;
            if (what == 3) continue;  // several edits wait for one commit
            if (what == 2)
                project->Save();
            else
                project->GetEdits().Commit();
            session.stored = session.states.size() - 1;
        }
    } catch (const ProjectError&) {  // that is what a loss of power looks like
    }
    return session;
}

class JournalPowerLoss : public testing::TestWithParam<unsigned> {};
constexpr unsigned kParts = 10;

TEST_P(JournalPowerLoss, KeepsEveryStoredEditAndNoneTwice) {
    std::mt19937 random(GetParam());
    ModelDisk start;
    {
        Project project(Project::kNewestVersion, start);
        test::Fill(project, 0, 1, 1);
        project.SaveAs(kBook, false);
        start.SyncAll();
    }
    const long cases = ScaledSessions(100'000 / kParts);  // two losses each
    long inJournal = 0, beyondStored = 0;
    for (long i = 0; i < cases && !HasFailure(); ++i) {
        auto disk = start.AfterPowerLoss(random);
        Content before;
        for (int loss = 0; loss < 2; ++loss) {
            const auto seed = static_cast<unsigned>(random() % 50);
            const Session session = Work(*disk, seed, static_cast<long>(random() % 150));
            disk = disk->AfterPowerLoss(random);
            const auto project = Project::Open(kBook, Project::Mode::read, *disk);
            ASSERT_FALSE(project->GetReport().IsDamaged())
                << "case " << i << ": " << project->GetReport().Text();
            const Content found = ContentOf(*project);
            inJournal += project->GetReplay().edits > 0 ? 1 : 0;
            bool known = !session.opened && (loss == 0 || found == before);
            for (std::size_t k = session.stored; k < session.states.size() && !known; ++k) {
                known = session.states[k] == found;
                beyondStored += known && k > session.stored ? 1 : 0;
            }
            ASSERT_TRUE(known) << "case " << i << ", loss " << loss;
            before = found;
        }
        // Whatever has been left over is no hindrance.
        const Session last = Work(*disk, 1, -1);
        ASSERT_TRUE(last.opened) << "case " << i;
        ASSERT_EQ(last.states.front(), before) << "case " << i;
        ASSERT_EQ(ContentOf(*Project::Open(kBook, Project::Mode::read, *disk)), last.states[last.stored])
            << "case " << i;
    }
    // Each way has been gone, or the cases say nothing.
    EXPECT_GT(inJournal, cases / 20);
    EXPECT_GT(beyondStored, cases / 200);
    RecordProperty("cases", std::to_string(2 * cases));
}

INSTANTIATE_TEST_SUITE_P(Parts, JournalPowerLoss, testing::Range(0U, kParts));

}  // namespace
