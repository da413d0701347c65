// A store in a file: what is made when, who else uses it, and what becomes of damage.
#include "host/cloud/SqliteStore.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <set>
#include <thread>

#include "tests/Scale.h"
#include "tests/TempFolder.h"
#include "tests/host/cloud/SharedServer.h"

namespace {

using gpssync::SqliteStore;
using gpssync::SyncServer;
using gpssync::SyncStore;
using gpssync::Transport;
using gpssync::TransportError;
using test::Group;
using test::Point;

constexpr int kImpatient = 50;  // milliseconds

std::string Id(int number) {
    const std::string digits = std::to_string(number);
    return std::string(32 - digits.size(), '0') + digits;
}

class SqliteStoreTest : public ::testing::Test {
protected:
    std::unique_ptr<SyncServer> Open(int patience = SqliteStore::kPatience) const {
        return std::make_unique<SyncServer>(std::make_unique<SqliteStore>(path_, patience));
    }

    // What another program does with the file.
    void Do(const std::string& sql) const {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &db), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
    }

    void Make() const {
        const auto server = Open();
        const std::string key = server->OpenProject("site", true).key;
        server->Commit(key, {1, "Anna"}, test::Commit(Id(1), 0, test::Records({Group(), Point(-1)})));
    }

    // Kind and text of what goes wrong.
    std::pair<TransportError::Kind, std::string> Wrong(const std::function<void()>& ask) const {
        try {
            ask();
        } catch (const TransportError& error) {
            EXPECT_EQ(std::string(error.what()).find(path_), 0u) << error.what();
            return {error.GetKind(), error.what()};
        }
        ADD_FAILURE() << "no error";
        return {};
    }
    TransportError::Kind KindOfWrong(const std::function<void()>& ask) const { return Wrong(ask).first; }

    test::TempFolder folder_;
    std::string path_ = folder_ / "shared.sqlite";
};

// --- what is made, and when --------------------------------------------------------------------------------

TEST_F(SqliteStoreTest, AskingMakesNoFile) {
    EXPECT_EQ(KindOfWrong([&] { Open()->OpenProject("site", false); }), TransportError::Kind::notFound);
    EXPECT_EQ(KindOfWrong([&] {
                  Open()->Commit("key", {1, ""}, test::Commit(Id(1), 0, Group()));
              }),
              TransportError::Kind::notFound);
    EXPECT_EQ(KindOfWrong([&] { Open()->Pull("key", {1, ""}, {}); }), TransportError::Kind::notFound);
    EXPECT_EQ(folder_.Names(), test::Names());
}

TEST_F(SqliteStoreTest, MakingAProjectMakesTheFileAndNothingElse) {
    EXPECT_TRUE(Open()->OpenProject("site", true).made);
    EXPECT_EQ(folder_.Names(), (test::Names{"shared.sqlite"}));
    EXPECT_FALSE(Open()->OpenProject("site", false).made);
}

TEST_F(SqliteStoreTest, FileThatWasMadeEmptyIsTakenForAStoreOnlyWhenAProjectIsMade) {
    test::WriteFileBytes(path_, "");
    EXPECT_EQ(KindOfWrong([&] { Open()->OpenProject("site", false); }), TransportError::Kind::notFound);
    EXPECT_EQ(test::FileBytes(path_), "");
    EXPECT_TRUE(Open()->OpenProject("site", true).made);
}

TEST_F(SqliteStoreTest, FolderThatIsNotThereIsNotMade) {
    const std::string path = folder_ / "no/shared.sqlite";
    const auto open = [&] { gpssync::OpenStore(path)->OpenProject("site", true); };
    EXPECT_THROW(open(), TransportError);
    EXPECT_EQ(folder_.Names(), test::Names());
}

TEST_F(SqliteStoreTest, NamesThatSqliteTakesForSomethingElseAreFiles) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.Path());
    for (const std::string name : {":memory:", "file:x?mode=memory"}) {
        EXPECT_TRUE(gpssync::OpenStore(name)->OpenProject("site", true).made);
        EXPECT_TRUE(std::filesystem::exists(folder_ / name)) << name;
    }
    std::filesystem::current_path(before);
}

// SQLite would make one that is gone when it is closed.
TEST_F(SqliteStoreTest, StoreWithoutANameIsRefused) {
    for (const bool make : {false, true}) {
        try {
            gpssync::OpenStore("")->OpenProject("site", make);
            ADD_FAILURE();
        } catch (const TransportError& error) {
            EXPECT_EQ(error.GetKind(), TransportError::Kind::refused);
        }
    }
}

TEST_F(SqliteStoreTest, EverythingIsThereWhenItIsOpenedAgain) {
    Make();
    const auto server = Open();
    const auto project = server->OpenProject("site", false);
    EXPECT_EQ(project.revision, 1);
    EXPECT_FALSE(project.made);
    EXPECT_EQ(server->Pull(project.key, {2, "Bruno"}, {}).replies.size(), 2u);
    EXPECT_EQ(
        server->Commit(project.key, {1, "Anna"}, test::Commit(Id(1), 0, test::Records({Group(), Point(-1)})))
            .ids,
        (std::vector<std::int64_t>{1, 2}));
    EXPECT_EQ(server->Commit(project.key, {1, "Anna"}, test::Commit(Id(2), 1, Point(1))).ids,
              (std::vector<std::int64_t>{3}));
}

TEST_F(SqliteStoreTest, WhatIsNotInTheStoreIsToldWithItsName) {
    Make();
    const auto server = Open();
    const std::string key = server->OpenProject("site", false).key;
    EXPECT_EQ(KindOfWrong([&] { server->OpenProject("dam", false); }), TransportError::Kind::notFound);
    EXPECT_EQ(KindOfWrong([&] { server->Pull("0", {1, ""}, {}); }), TransportError::Kind::notFound);
    gpssync::PullRequest request;
    request.known = 2;
    EXPECT_EQ(KindOfWrong([&] { server->Pull(key, {1, ""}, request); }), TransportError::Kind::older);
    request.known = 1;
    request.head = "another";
    EXPECT_EQ(KindOfWrong([&] { server->Pull(key, {1, ""}, request); }), TransportError::Kind::older);
}

TEST_F(SqliteStoreTest, StoreThatWasPutBackAndHasGoneOnIsTold) {
    Make();
    const std::string copy = test::FileBytes(path_);
    gpssync::CloudCommit next = test::Commit(Id(3), 2, Point(1));
    gpssync::PullRequest request;
    request.revision = 2;
    const auto ask = [&](bool commit) {
        const auto server = Open();
        const std::string key = server->OpenProject("site", false).key;
        if (commit)
            server->Commit(key, {1, "Anna"}, next);
        else
            server->Pull(key, {1, "Anna"}, request);
    };
    {
        const auto server = Open();
        const std::string key = server->OpenProject("site", false).key;
        next.head = request.head = server->Commit(key, {1, "Anna"}, test::Commit(Id(2), 1, Point(1))).head;
    }
    ask(false);
    test::WriteFileBytes(path_, copy);
    {
        const auto server = Open();
        server->Commit(server->OpenProject("site", false).key, {2, "Bruno"},
                       test::Commit(Id(9), 1, "UBAS;1;1;B"));
    }
    for (const bool commit : {false, true}) {
        try {
            ask(commit);
            ADD_FAILURE() << "no error";
        } catch (const TransportError& error) {
            EXPECT_EQ(error.GetKind(), TransportError::Kind::older);
            EXPECT_NE(std::string(error.what()).find("gone on since"), std::string::npos) << error.what();
        }
    }
}

// --- files of others ---------------------------------------------------------------------------------------

TEST_F(SqliteStoreTest, FileThatIsNoDatabaseIsLeftAsItIs) {
    const std::string text(5000, 'x');
    test::WriteFileBytes(path_, text);
    EXPECT_EQ(KindOfWrong([&] { Open()->OpenProject("site", true); }), TransportError::Kind::damaged);
    EXPECT_EQ(KindOfWrong([&] { Open()->OpenProject("site", false); }), TransportError::Kind::damaged);
    EXPECT_EQ(test::FileBytes(path_), text);
    EXPECT_EQ(folder_.Names(), (test::Names{"shared.sqlite"}));
}

TEST_F(SqliteStoreTest, DatabaseOfAnotherProgramIsLeftAsItIs) {
    for (const std::string sql : {"CREATE TABLE t (a)", "PRAGMA application_id = 7",
                                  "PRAGMA user_version = 1", "PRAGMA journal_mode = WAL; CREATE TABLE t (a)",
                                  "PRAGMA application_id = 7; CREATE TABLE projects (a)"}) {
        Do(sql);
        const std::string bytes = test::FileBytes(path_);
        EXPECT_EQ(KindOfWrong([&] { Open()->OpenProject("site", true); }), TransportError::Kind::damaged)
            << sql;
        EXPECT_EQ(test::FileBytes(path_), bytes) << sql;
        std::filesystem::remove(path_);
    }
}

TEST_F(SqliteStoreTest, StoreOfANewerProgramIsLeftAsItIs) {
    Make();
    Do("PRAGMA user_version = 2");
    const std::string bytes = test::FileBytes(path_);
    const auto [kind, text] = Wrong([&] { Open()->OpenProject("tunnel", true); });
    EXPECT_EQ(kind, TransportError::Kind::damaged);
    EXPECT_NE(text.find("newer"), std::string::npos);
    EXPECT_EQ(test::FileBytes(path_), bytes);
}

// --- damage ------------------------------------------------------------------------------------------------

TEST_F(SqliteStoreTest, FileThatIsCutIsDamaged) {
    Make();
    std::filesystem::resize_file(path_, std::filesystem::file_size(path_) / 2);
    EXPECT_EQ(KindOfWrong([&] {
                  const auto server = Open();
                  const auto key = server->OpenProject("site", false).key;
                  server->Pull(key, {1, ""}, {});
                  server->Commit(key, {1, ""}, test::Commit(Id(2), 1, Point(1)));
              }),
              TransportError::Kind::damaged);
}

TEST_F(SqliteStoreTest, MissingTableIsDamage) {
    Make();
    Do("DROP TABLE setters");
    EXPECT_EQ(KindOfWrong([&] {
                  const auto server = Open();
                  server->Commit(server->OpenProject("site", false).key, {1, ""},
                                 test::Commit(Id(2), 1, "UBAS;1;1;B"));
              }),
              TransportError::Kind::damaged);
}

TEST_F(SqliteStoreTest, AnswerThatCannotBeReadIsDamage) {
    Make();
    Do("UPDATE commits SET answer = substr(answer, 2)");
    const auto server = Open();
    const std::string key = server->OpenProject("site", false).key;
    try {
        server->Commit(key, {1, "Anna"}, test::Commit(Id(1), 0, test::Records({Group(), Point(-1)})));
        FAIL();
    } catch (const TransportError& error) {
        EXPECT_EQ(error.GetKind(), TransportError::Kind::damaged);
    }
}

// Whatever byte is damaged: an error or an answer, and never anything that was not asked for.
TEST_F(SqliteStoreTest, DamagedBytesEndInAnErrorOrAnAnswer) {
    Make();
    const std::string bytes = test::FileBytes(path_);
    std::uint64_t state = 7;
    for (long i = 0; i < Scaled(2000); ++i) {
        std::string damaged = bytes;
        for (int k = 0; k < 4; ++k) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            damaged[(state >> 33) % damaged.size()] = static_cast<char>(state >> 24);
        }
        test::WriteFileBytes(path_, damaged);
        try {
            const auto server = Open();
            const auto key = server->OpenProject("site", false).key;
            server->Pull(key, {2, "Bruno"}, {});
            server->Commit(key, {1, "Anna"},
                           test::Commit(Id(2), 1, test::Records({Point(1), "UPTGPS;2;1;Q"})));
        } catch (const TransportError& error) {
            EXPECT_STRNE(error.what(), "");
        }
    }
}

// --- several users -----------------------------------------------------------------------------------------

TEST_F(SqliteStoreTest, WhoIsKeptWaitingTooLongIsTold) {
    Make();
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const auto server = Open(kImpatient);
    const auto [kind, text] = Wrong([&] { server->OpenProject("site", false); });
    EXPECT_EQ(kind, TransportError::Kind::noAnswer);
    EXPECT_NE(text.find("another program"), std::string::npos);
    EXPECT_EQ(KindOfWrong([&] { server->OpenProject("tunnel", true); }), TransportError::Kind::noAnswer);
    ASSERT_EQ(sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr), SQLITE_OK);
    // The same server goes on.
    EXPECT_EQ(server->OpenProject("site", false).revision, 1);
    sqlite3_close(other);
}

TEST_F(SqliteStoreTest, ReaderDoesNotDisturbAWriterForLongerThanItReads) {
    Make();
    const auto writer = Open(), reader = Open();
    const std::string key = writer->OpenProject("site", false).key;
    EXPECT_EQ(reader->Pull(key, {2, "Bruno"}, {}).replies.size(), 2u);
    EXPECT_EQ(writer->Commit(key, {1, "Anna"}, test::Commit(Id(2), 1, Point(1))).revision, 2);
    EXPECT_EQ(reader->Pull(key, {2, "Bruno"}, {}).replies.size(), 3u);
}

TEST_F(SqliteStoreTest, CommitThatFailsInTheMiddleLeavesNothing) {
    Make();
    Do("CREATE TRIGGER stop BEFORE INSERT ON points WHEN new.name = 'P9' BEGIN SELECT RAISE(ABORT, 'no'); "
       "END");
    const auto server = Open();
    const std::string key = server->OpenProject("site", false).key;
    EXPECT_THROW(server->Commit(
                     key, {1, "Anna"},
                     test::Commit(Id(2), 1, test::Records({"UBAS;1;1;B9", Point(1, "P8"), Point(1, "P9")}))),
                 TransportError);
    EXPECT_EQ(server->OpenProject("site", false).revision, 1);
    EXPECT_EQ(server->Pull(key, {2, "Bruno"}, {1, {}, {}, 0, ""}).replies.size(), 0u);
    Do("DROP TRIGGER stop");
    const auto answer = server->Commit(
        key, {1, "Anna"},
        test::Commit(Id(2), 1, test::Records({"UBAS;1;1;B9", Point(1, "P8"), Point(1, "P9")})));
    EXPECT_EQ(answer.ids, (std::vector<std::int64_t>{3, 4}));
    EXPECT_EQ(answer.revision, 2);
}

// Each process makes the project, and adds points to a group of its own.
TEST_F(SqliteStoreTest, ProcessesThatCommitAtOnceLoseNothing) {
    constexpr int kProcesses = 4, kCommits = 10;
    std::vector<pid_t> children;
    for (int device = 1; device <= kProcesses; ++device) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child != 0) {
            children.push_back(child);
            continue;
        }
        int status = 1;
        try {
            const auto server = gpssync::OpenStore(path_);
            const std::string key = server->OpenProject("site", true).key;
            const auto group = server->Commit(key, {device, ""}, test::Commit(Id(1000 * device), 0, Group()));
            for (int i = 1; i <= kCommits; ++i)
                server->Commit(key, {device, ""},
                               test::Commit(Id(1000 * device + i), 0, Point(group.ids.at(0))));
            status = 0;
        } catch (const std::exception&) {
        }
        ::_exit(status);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    const auto server = Open();
    const auto project = server->OpenProject("site", false);
    EXPECT_EQ(project.revision, kProcesses * (1 + kCommits));
    const auto page = server->Pull(project.key, {9, ""}, {});
    EXPECT_EQ(page.replies.size(), static_cast<std::size_t>(kProcesses * (1 + kCommits)));
    std::set<std::string> ids;
    for (const auto& reply : page.replies) ids.insert(std::string(reply.fields[0].View()));
    EXPECT_EQ(ids.size(), page.replies.size());
}

TEST_F(SqliteStoreTest, ThreadsMayShareOneServer) {
    const auto server = Open();
    const std::string key = server->OpenProject("site", true).key;
    std::vector<std::thread> threads;
    for (int device = 1; device <= 3; ++device)
        threads.emplace_back([&, device] {
            for (int i = 1; i <= 10; ++i) {
                server->Commit(key, {device, ""}, test::Commit(Id(1000 * device + i), 0, Group()));
                server->Pull(key, {device, ""}, {});
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(server->OpenProject("site", false).revision, 30);
    EXPECT_EQ(server->Pull(key, {9, ""}, {}).replies.size(), 30u);
}

}  // namespace
