// Saves and openings that fail at any operation, or end with the process.
#include "host/project/Project.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>
#include <set>

#include "tests/TempFolder.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"
#include "tests/host/project/SavedProjects.h"
namespace {

using namespace gpsproject;
using test::ContentIn;
using test::ContentOf;
using test::Contents;
using test::KindOf;
using test::Make;
using test::TempFolder;
using Kind = ProjectError::Kind;
using Mode = Project::Mode;

// Every operation of the file system fails in turn, once or from there on: the file on disk is the old one
// or, when only the confirmation is missing, the new one; the objects in memory still hold everything.
TEST(Project, AnyOperationOfASaveMayFail) {
    for (const bool forEver : {false, true}) {
        for (const int error : {EIO, ENOSPC, EACCES}) {
            long number = 0;
            for (bool failed = true; failed; ++number) {
                test::ModelDisk disk;
                Project project(1400, disk);
                test::Fill(project, 1, 1, 2);
                project.SaveAs("/d/book", false);
                const std::string old = disk.Bytes("/d/book");
                test::Fill(project, 2, 1, 2);
                const auto content = ContentOf(project);
                failed = false;
                disk.ResetOperations();
                disk.SetFault([&](long n, const std::string&) {
                    const bool now = forEver ? n >= number : n == number;
                    failed = failed || now;
                    return now ? error : 0;
                });
                bool saved = false;
                std::string message;
                try {
                    project.Save();
                    saved = true;
                } catch (const ProjectError& e) {
                    message = e.what();
                    EXPECT_NE(message.find("/d/book"), std::string::npos) << message;
                }
                disk.SetFault({});
                EXPECT_EQ(ContentOf(project), content) << number;
                if (saved || message.find("is saved") != std::string::npos) {
                    EXPECT_NE(disk.Bytes("/d/book"), old) << number << message;
                    EXPECT_EQ(ContentOf(*Project::Open("/d/book", Mode::read, disk)), content);
                } else {
                    EXPECT_EQ(disk.Bytes("/d/book"), old) << number << message;
                    EXPECT_EQ(project.GetBook().GetNomeFile(), "/d/book");
                    EXPECT_TRUE(forEver || !disk.Has("/d/book.saving")) << number;
                }
                EXPECT_EQ(disk.GetOpenFiles(), 1) << number << ": the lock's";
                EXPECT_NO_THROW(project.Save()) << number << ": a second try, " << message;
                EXPECT_EQ(ContentOf(*Project::Open("/d/book", Mode::read, disk)), content) << number;
            }
            EXPECT_GT(number, 40) << "operations of a save";
        }
    }
}

// A disk that says that all is written, and gives other bytes: whichever it is, the old file stays.
TEST(Project, BytesThatReadBackDifferentlyAreNotPlaced) {
    test::ModelDisk disk;
    Project project(1400, disk);
    test::Fill(project, 1, 1, 2);
    project.SaveAs("/d/book", false);
    const std::string old = disk.Bytes("/d/book");
    test::Fill(project, 2, 1, 2);
    for (std::size_t bit = 0; bit < 8 * old.size() && !HasFailure(); ++bit) {
        disk.SetFault([&](long, const std::string& what) {
            if (what == "sync") disk.Damage("/d/book.saving", bit);
            return 0;
        });
        std::string message;
        ASSERT_EQ(KindOf([&] { project.Save(); }, &message), Kind::system) << bit;
        ASSERT_NE(message.find("reads back differently"), std::string::npos) << message;
        ASSERT_TRUE(disk.Bytes("/d/book") == old) << bit;
        ASSERT_FALSE(disk.Has("/d/book.saving")) << bit;
    }
}

TEST(Project, FileThatGotShorterOrLongerMeanwhileIsNotPlaced) {
    test::ModelDisk disk;
    Project project(1400, disk);
    project.SaveAs("/d/book", false);
    for (const std::int64_t change : {-1, 1}) {
        disk.SetFault([&](long, const std::string& what) {
            if (what != "sync") return 0;
            int file = -1;
            FileOperations::Facts facts;
            disk.Open("/d/book.saving", FileOperations::How::share, 0, file);
            disk.GetFacts(file, facts);
            disk.Truncate(file, facts.size + change);
            disk.Close(file);
            return 0;
        });
        EXPECT_EQ(KindOf([&] { project.Save(); }), Kind::system);
    }
}

TEST(Project, AnyOperationOfAnOpeningMayFail) {
    test::ModelDisk disk;
    {
        Project project(1400, disk);
        test::Fill(project, 1, 1, 2);
        project.SaveAs("/d/book", false);
    }
    const std::string bytes = disk.Bytes("/d/book");
    for (const Mode mode : {Mode::read, Mode::write}) {
        long number = 0;
        for (bool failed = true; failed; ++number) {
            failed = false;
            disk.ResetOperations();
            disk.SetFault([&](long n, const std::string&) {
                failed = failed || n == number;
                return n == number ? EIO : 0;
            });
            try {
                const auto project = Project::Open("/d/book", mode, disk);
                EXPECT_TRUE(project->GetReport().IsDamaged() || project->GetReport().pointsRead == 2);
            } catch (const ProjectError& e) {
                EXPECT_NE(std::string(e.what()).find("/d/book"), std::string::npos) << e.what();
            }
            disk.SetFault({});
            EXPECT_EQ(disk.GetOpenFiles(), 0) << number;
            EXPECT_EQ(disk.Bytes("/d/book"), bytes);
        }
        EXPECT_GT(number, 8);
    }
}

// A program that dies in the middle of a save, whatever it was doing: kill -9.
TEST(Project, ProcessKilledWhileSavingLeavesAWholeBook) {
    const TempFolder folder;
    Make(folder / "book", 0);
    std::set<test::Content> contents{Contents(0), Contents(1), Contents(2)};
    for (int round = 0; round < 20; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            try {
                const auto project = Project::Open(folder / "book", Mode::write);
                for (int number = 1;; number = 3 - number) {
                    test::Fill(*project, number);
                    project->Save();
                }
            } catch (const std::exception& e) {
                std::cerr << e.what() << '\n';
            }
            ::_exit(1);
        }
        ::usleep(static_cast<useconds_t>(5000 + 3170 * round));
        int end = 0;
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        ASSERT_EQ(::waitpid(child, &end, 0), child);
        ASSERT_TRUE(WIFSIGNALED(end)) << "it saved until it was killed";
        EXPECT_TRUE(contents.contains(ContentIn(folder / "book"))) << round;
    }
    Project::Open(folder / "book", Mode::write)->Save();
    EXPECT_EQ(folder.Names(), (test::Names{"book", "book.bak"})) << "leftovers are gone";
}

}  // namespace
