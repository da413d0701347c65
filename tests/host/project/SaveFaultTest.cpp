// A real save by a real program, with each of its calls to the file system refused by the system in turn.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "host/project/Project.h"
#include "tests/FaultRun.h"
#include "tests/TempFolder.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;
using test::ContentOf;
using test::FaultRun;
using test::TempFolder;

/// Saves content `number` into the book with one call refused (-1: none).
FaultRun Save(const TempFolder& folder, int number, int call, int error) {
    return test::RunWithFault({FAULT_PROGRAM, folder / "book", std::to_string(number)}, folder.Path(), call,
                              error);
}

test::Content Contents(int number) {
    Project project;
    test::Fill(project, number);
    return ContentOf(project);
}

test::Content ContentIn(const std::string& path) {
    const auto project = Project::Open(path, Project::Mode::read);
    EXPECT_EQ(project->GetReport().Text(), "");
    return ContentOf(*project);
}

/// A folder with a book of content 1 and its backup of content 0.
void Prepare(const TempFolder& folder) {
    Project project;
    for (const int number : {0, 1}) {
        test::Fill(project, number);
        number == 0 ? project.SaveAs(folder / "book", false) : project.Save();
    }
}

TEST(SaveFault, WithoutOneTheBookIsSavedByTheseCalls) {
    const TempFolder folder;
    Prepare(folder);
    const FaultRun run = Save(folder, 2, -1, 0);
    EXPECT_EQ(run.code, 0) << run.message;
    EXPECT_EQ(ContentIn(folder / "book"), Contents(2));
    // What must not be missing, so that the tests below refuse what matters.
    std::string calls;
    for (const std::string& call : run.calls) calls += call.substr(call.find(' '));
    for (const char* name :
         {" open", " write", " pread", " fsync", " rename", " link", " unlink", " flock", " close"})
        EXPECT_NE(calls.find(name), std::string::npos) << name << " in" << calls;
    EXPECT_NE(calls.find(" fsync fstat pread"), std::string::npos) << "read back what was synced:" << calls;
}

class EverySaveFault : public testing::TestWithParam<int> {};

TEST_P(EverySaveFault, LeavesTheOldBookAndAMessageOrTheNewBook) {
    const int error = GetParam();
    const auto old = Contents(1), next = Contents(2);
    const std::size_t calls = [] {
        const TempFolder folder;
        Prepare(folder);
        return Save(folder, 2, -1, 0).calls.size();
    }();
    ASSERT_GT(calls, 40U);
    int refused = 0;
    for (int call = 0; call < static_cast<int>(calls); ++call) {
        const TempFolder folder;
        Prepare(folder);
        const FaultRun run = Save(folder, 2, call, error);
        ASSERT_GT(run.calls.size(), static_cast<std::size_t>(call));
        const std::string name = run.calls[static_cast<std::size_t>(call)];
        const std::string where = "call " + name + ": " + run.message;
        EXPECT_EQ(run.message.empty(), run.code == 0) << where;
        if (run.code == 0) {
            EXPECT_EQ(ContentIn(folder / "book"), next) << where;
        } else {
            ++refused;
            EXPECT_NE(run.message.find(folder / "book"), std::string::npos) << where;
            const bool placed = run.message.find("is saved") != std::string::npos;
            EXPECT_EQ(ContentIn(folder / "book"), placed ? next : old) << where;
        }
        // What is left: the book, its backup, and a name only where its removal was refused. A lock file that
        // could not be locked may be somebody else's, and stays.
        for (const std::string& file : folder.Names()) {
            const bool meant = file == "book" || file == "book.bak";
            const bool notOurs = file == "book.lock" && name.ends_with(" flock");
            EXPECT_TRUE(meant || notOurs || name.ends_with(" unlink")) << file << " after " << where;
        }
        // Nothing of it hinders the next save.
        EXPECT_EQ(Save(folder, 3, -1, 0).code, 0) << where;
        EXPECT_EQ(folder.Names(), (test::Names{"book", "book.bak"})) << where;
        const bool repeats = name.ends_with(" write") || name.ends_with(" pread") ||
                             name.ends_with(" fsync") || name.ends_with(" flock") ||
                             name.ends_with(" close") || name.ends_with(" open");
        const bool harmless = error == test::kHalf || (error == EINTR && repeats);
        EXPECT_TRUE(run.code == 0 || !harmless) << where;
    }
    EXPECT_EQ(refused > static_cast<int>(calls) / 2, error == EIO || error == ENOSPC || error == EACCES)
        << refused;
}

INSTANTIATE_TEST_SUITE_P(Errors, EverySaveFault, testing::Values(EIO, ENOSPC, EACCES, EINTR, test::kHalf),
                         [](const auto& fault) -> std::string {
                             switch (fault.param) {
                                 case EIO:
                                     return "EIO";
                                 case ENOSPC:
                                     return "ENOSPC";
                                 case EACCES:
                                     return "EACCES";
                                 case EINTR:
                                     return "EINTR";
                                 default:
                                     return "Short";
                             }
                         });

}  // namespace
