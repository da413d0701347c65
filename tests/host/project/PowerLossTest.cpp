// Power lost at any moment of a save: afterwards there is the old book or the new one, complete.
#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <tuple>

#include "host/project/Project.h"
#include "tests/Scale.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"

namespace {

using gpsproject::Project;
using gpsproject::ProjectError;
using test::ContentOf;
using test::ModelDisk;

constexpr const char* kBook = "/d/book";
constexpr const char* kBackup = "/d/book.bak";

/// A disk with a book that was saved twice, so that it has a backup.
struct Start {
    explicit Start(bool links) {
        disk.SetLinks(links);
        Project project(Project::kNewestVersion, disk);
        test::Fill(project, 0, 1, 2);
        project.SaveAs(kBook, false);
        contents.insert(ContentOf(project));
        test::Fill(project, 1, 1, 2);
        project.Save();
        contents.insert(ContentOf(project));
        disk.SyncAll();
    }
    ModelDisk disk;
    std::set<test::Content> contents;
};

/// The power goes before this operation: it fails, and all that follow it.
ModelDisk::Fault PowerLossAt(long number) {
    return [number](long n, const std::string&) { return n >= number ? EIO : 0; };
}

/// Changes the book and saves it; the power is lost before operation `at`, when it is not negative. Gives
/// what was to be saved; an empty text when the book could not even be opened.
test::Content ChangeAndSave(ModelDisk& disk, int number, long at, bool& saved) {
    saved = false;
    test::Content content;
    disk.ResetOperations();
    if (at >= 0) disk.SetFault(PowerLossAt(at));
    try {
        const auto project = Project::Open(kBook, Project::Mode::write, disk);
        if (project->GetReport().IsDamaged()) return {};
        test::Fill(*project, number, 1, 2);
        content = ContentOf(*project);
        project->Save();
        saved = true;
    } catch (const ProjectError&) {  // that is what a loss of power looks like
    }
    return content;
}

/// Opens the book and says what it holds. Empty: it is damaged, or not there.
test::Content Opened(ModelDisk& disk, const char* path) {
    try {
        const auto project = Project::Open(path, Project::Mode::read, disk);
        return project->GetReport().IsDamaged() ? test::Content{} : ContentOf(*project);
    } catch (const ProjectError&) {
        return {};
    }
}

/// Whether files can have a second name, and which part of the cases.
class PowerLoss : public testing::TestWithParam<std::tuple<bool, unsigned>> {};
constexpr unsigned kParts = 5;

// One case: a save and its loss of power, what is found then, a second save after it that loses its power,
// too, and what is found then.
TEST_P(PowerLoss, LeavesTheOldBookOrTheNewOne) {
    const auto [links, part] = GetParam();
    Start start(links);
    bool saved = false;
    std::mt19937 random(20240501 + part);
    const auto old = Opened(start.disk, kBook);
    ASSERT_FALSE(old.empty());
    const auto pristine = start.disk.AfterPowerLoss(random);  // all is synced: the same disk
    ASSERT_EQ(pristine->Bytes(kBook), start.disk.Bytes(kBook));
    ChangeAndSave(*start.disk.AfterPowerLoss(random), 2, -1, saved);
    ASSERT_TRUE(saved);

    long operations = 0;
    {
        const auto disk = start.disk.AfterPowerLoss(random);
        ChangeAndSave(*disk, 2, -1, saved);
        operations = disk->GetOperations();
    }
    ASSERT_GT(operations, 30);

    const long cases = ScaledSessions(100'000 / kParts);
    long asNew = 0, secondAsNew = 0;
    for (long i = 0; i < cases && !HasFailure(); ++i) {
        const auto disk = start.disk.AfterPowerLoss(random);
        const auto next = ChangeAndSave(*disk, 2, i % (operations + 1), saved);
        const auto after = disk->AfterPowerLoss(random);
        const auto found = Opened(*after, kBook);
        const bool isNew = !next.empty() && found == next;
        ASSERT_TRUE(found == old || isNew) << "case " << i;
        ASSERT_TRUE(isNew || !saved) << "case " << i << ": what Save has promised";
        ASSERT_TRUE(start.contents.contains(Opened(*after, kBackup)))
            << "case " << i << ": the backup is whole";
        asNew += isNew ? 1 : 0;

        const auto third = ChangeAndSave(*after, 3, static_cast<long>(random()) % (operations + 10), saved);
        const auto again = after->AfterPowerLoss(random);
        const auto foundAgain = Opened(*again, kBook);
        const bool secondIsNew = !third.empty() && foundAgain == third;
        ASSERT_TRUE(foundAgain == found || secondIsNew) << "case " << i << ", the second loss";
        ASSERT_TRUE(secondIsNew || !saved) << "case " << i;
        secondAsNew += secondIsNew ? 1 : 0;

        // Whatever has been left over is no hindrance.
        const auto fourth = ChangeAndSave(*again, 4, -1, saved);
        ASSERT_TRUE(saved && Opened(*again, kBook) == fourth) << "case " << i;
        ASSERT_EQ(again->Names(), (std::vector<std::string>{kBook, kBackup})) << "case " << i;
    }
    // Both outcomes have been there, or the cases say nothing.
    EXPECT_GT(asNew, cases / 100);
    EXPECT_LT(asNew, cases - cases / 100);
    EXPECT_GT(secondAsNew, cases / 100);
    RecordProperty("cases", std::to_string(cases));
}

INSTANTIATE_TEST_SUITE_P(Disks, PowerLoss, testing::Combine(testing::Bool(), testing::Range(0U, kParts)),
                         [](const auto& disk) {
                             return (std::get<0>(disk.param) ? "WithLinks" : "WithoutLinks") +
                                    std::to_string(std::get<1>(disk.param));
                         });

// A disk that says "synced" and is not: a torn book is possible then, but never one that is taken for whole.
TEST(PowerLossOfALyingDisk, NeverGivesABookThatNobodySaved) {
    Start start(true);
    std::mt19937 random(7);
    const auto old = Opened(start.disk, kBook);
    const auto before = Opened(start.disk, kBackup);
    bool saved = false;
    long operations = 0;
    {
        const auto disk = start.disk.AfterPowerLoss(random);
        ChangeAndSave(*disk, 2, -1, saved);
        operations = disk->GetOperations();
    }
    long damaged = 0;
    const long cases = ScaledSessions(20'000);
    for (long i = 0; i < cases && !HasFailure(); ++i) {
        const auto disk = start.disk.AfterPowerLoss(random);
        disk->SetLying(true);
        const auto next = ChangeAndSave(*disk, 2, i % (operations + 1), saved);
        const auto after = disk->AfterPowerLoss(random);
        const auto found = Opened(*after, kBook);
        if (found.empty()) {
            ++damaged;
            const auto backup = Opened(*after, kBackup);
            ASSERT_TRUE(backup == old || backup == before) << "case " << i << ": the backup is whole";
            std::string message;
            try {
                const auto project = Project::Open(kBook, Project::Mode::read, *after);
                message = project->GetReport().Text();
                EXPECT_TRUE(project->IsReadOnly());
            } catch (const ProjectError& e) {
                message = e.what();
            }
            ASSERT_NE(message.find(kBackup), std::string::npos) << message;
        } else {
            ASSERT_TRUE(found == old || found == next) << "case " << i;
        }
    }
    EXPECT_GT(damaged, cases / 100);
}

}  // namespace
