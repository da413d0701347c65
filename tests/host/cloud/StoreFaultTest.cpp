// A real commit by a real program, with each of its calls to the file system refused by the system in turn,
// or the program killed in front of it.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "host/cloud/SqliteStore.h"
#include "tests/FaultRun.h"
#include "tests/Scale.h"
#include "tests/TempFolder.h"
#include "tests/host/cloud/Records.h"

namespace {

using gpssync::TransportError;
using test::FaultRun;
using test::TempFolder;

FaultRun Commit(const TempFolder& folder, int call, int error) {
    return test::RunWithFault({FAULT_PROGRAM, folder / "shared"}, folder.Path(), call, error);
}

/// A folder with a store that has one group and point of another device.
void Prepare(const TempFolder& folder) {
    const auto server = gpssync::OpenStore(folder / "shared");
    const std::string key = server->OpenProject("site", true).key;
    server->Commit(key, {2, "Bruno"},
                   test::Commit(std::string(32, 'b'), 0, test::Records({test::Group(), test::Point(-1)})));
}

std::string IntegrityOf(const std::string& path) {
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    std::string text;
    sqlite3_exec(
        db, "PRAGMA integrity_check",
        [](void* out, int, char** values, char**) {
            *static_cast<std::string*>(out) += values[0];
            return 0;
        },
        &text, nullptr);
    sqlite3_close(db);
    return text;
}

/// Revision of the project, and how many items it has; -1 when there is no project.
std::pair<std::int64_t, std::size_t> StateIn(const std::string& path) {
    try {
        const auto server = gpssync::OpenStore(path);
        const auto project = server->OpenProject("site", false);
        return {project.revision, server->Pull(project.key, {3, ""}, {}).replies.size()};
    } catch (const TransportError& error) {
        EXPECT_EQ(error.GetKind(), TransportError::Kind::notFound) << error.what();
        return {-1, 0};
    }
}

TEST(StoreFault, WithoutOneTheCommitMakesTheseCalls) {
    const TempFolder folder;
    Prepare(folder);
    const FaultRun run = Commit(folder, -1, 0);
    EXPECT_EQ(run.code, 0) << run.message;
    std::string calls;
    for (const std::string& call : run.calls) calls += call.substr(call.find(' '));
    for (const char* name : {" open", " pread", " pwrite", " fdatasync", " unlink", " close"})
        EXPECT_NE(calls.find(name), std::string::npos) << name << " in" << calls;
    // The folder is synced behind the end of the journal: only then is the commit sure to stay.
    const std::size_t end = calls.rfind(" unlink");
    EXPECT_NE(calls.find("sync", end), std::string::npos) << calls;
}

struct Fault {
    const char* name;
    int error;
    int first;
};

class EveryStoreFault : public testing::TestWithParam<std::tuple<Fault, bool>> {};

TEST_P(EveryStoreFault, LeavesAllOfTheCommitOrNothing) {
    const auto& [fault, isThere] = GetParam();
    const auto prepare = [isThere = isThere](const TempFolder& folder) {
        if (isThere) Prepare(folder);
    };
    const std::pair<std::int64_t, std::size_t> done =
        isThere ? std::pair(std::int64_t{2}, std::size_t{63}) : std::pair(std::int64_t{1}, std::size_t{61});
    std::size_t calls = 0;
    {
        const TempFolder folder;
        prepare(folder);
        calls = Commit(folder, -1, 0).calls.size();
        EXPECT_EQ(StateIn(folder / "shared"), done);
    }
    ASSERT_GT(calls, 30U);
    // In part of the runs of all tests every fourth call; each fault begins with another one.
    const int stride = Scaled(10) == 10 ? 1 : 4;
    int refused = 0, tried = 0;
    for (int call = fault.first % stride; call < static_cast<int>(calls); call += stride) {
        ++tried;
        const TempFolder folder;
        prepare(folder);
        const FaultRun run = Commit(folder, call, fault.error);
        ASSERT_GT(run.calls.size(), static_cast<std::size_t>(call));
        const std::string where = "call " + run.calls[static_cast<std::size_t>(call)] + ": " + run.message;
        if (std::filesystem::exists(folder / "shared")) {
            EXPECT_EQ(IntegrityOf(folder / "shared"), "ok") << where;
        }
        const auto state = StateIn(folder / "shared");
        if (run.code == 0) {
            EXPECT_EQ(state, done) << where;
        } else {
            ++refused;
            if (fault.error != test::kKill) {
                EXPECT_NE(run.message.find(folder / "shared"), std::string::npos) << where;
            }
            const bool nothing =
                isThere ? state == std::pair(std::int64_t{1}, std::size_t{2}) : state.second == 0;
            EXPECT_TRUE(nothing || state == done) << where << state.first << " " << state.second;
        }
        // Sent again, it is done once.
        const FaultRun again = Commit(folder, -1, 0);
        EXPECT_EQ(again.code, 0) << where << again.message;
        EXPECT_EQ(StateIn(folder / "shared"), done) << where;
        EXPECT_EQ(folder.Names(), (test::Names{"shared"})) << where;
    }
    const bool matters = fault.error == EIO || fault.error == ENOSPC || fault.error == test::kKill;
    if (matters) {
        EXPECT_GT(refused, tried / 3);
    }
    if (fault.error == test::kHalf) {
        EXPECT_EQ(refused, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Errors, EveryStoreFault,
    testing::Combine(testing::Values(Fault{"EIO", EIO, 0}, Fault{"ENOSPC", ENOSPC, 1},
                                     Fault{"EACCES", EACCES, 2}, Fault{"EINTR", EINTR, 3},
                                     Fault{"Half", test::kHalf, 1}, Fault{"Kill", test::kKill, 2}),
                     testing::Bool()),
    [](const auto& test) {
        return std::string(std::get<0>(test.param).name) + (std::get<1>(test.param) ? "" : "WhileItIsMade");
    });

}  // namespace
