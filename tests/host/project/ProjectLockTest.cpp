// One writer at a time, and nobody locked out by the dead.
#include "host/project/ProjectLock.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "host/project/ProjectError.h"
#include "tests/TempFolder.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;
using test::KindOf;
using test::TempFolder;
using Kind = ProjectError::Kind;

FileOperations& Files() { return FileOperations::System(); }

TEST(ProjectLock, SecondOneIsRefusedWithProcessAndMachineOfTheFirst) {
    const TempFolder folder;
    const ProjectLock first(Files(), folder / "book");
    std::string message, host(256, '\0');
    EXPECT_EQ(KindOf([&] { ProjectLock(Files(), folder / "book"); }, &message), Kind::locked);
    ASSERT_EQ(gethostname(host.data(), host.size()), 0);
    host.resize(host.find('\0'));
    EXPECT_NE(message.find("process " + std::to_string(getpid()) + " on " + host), std::string::npos)
        << message;
    EXPECT_NE(message.find(folder / "book"), std::string::npos) << message;
}

TEST(ProjectLock, OtherProjectsAreNotLocked) {
    const TempFolder folder;
    const ProjectLock first(Files(), folder / "book");
    EXPECT_NO_THROW(ProjectLock(Files(), folder / "other"));
}

TEST(ProjectLock, LeavesNothingBehind) {
    const TempFolder folder;
    {
        const ProjectLock lock(Files(), folder / "book");
        EXPECT_EQ(folder.Names(), test::Names{"book.lock"});
    }
    EXPECT_EQ(folder.Names(), test::Names{});
    EXPECT_NO_THROW(ProjectLock(Files(), folder / "book"));
}

TEST(ProjectLock, RefusedOneLeavesTheOthersAlone) {
    const TempFolder folder;
    auto first = std::make_unique<ProjectLock>(Files(), folder / "book");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(KindOf([&] { ProjectLock(Files(), folder / "book"); }), Kind::locked);
    first.reset();
    EXPECT_NO_THROW(ProjectLock(Files(), folder / "book"));
}

TEST(ProjectLock, ProcessThatWasKilledLocksNobodyOut) {
    const TempFolder folder;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const ProjectLock lock(Files(), folder / "book");
        if (write(ends[1], "x", 1) != 1) _exit(1);
        for (;;) pause();
    }
    char ready = 0;
    ASSERT_EQ(read(ends[0], &ready, 1), 1);
    std::string message;
    EXPECT_EQ(KindOf([&] { ProjectLock(Files(), folder / "book"); }, &message), Kind::locked);
    EXPECT_NE(message.find("process " + std::to_string(child)), std::string::npos) << message;
    ASSERT_EQ(kill(child, SIGKILL), 0);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_EQ(folder.Names(), test::Names{"book.lock"}) << "left over";
    EXPECT_NO_THROW(ProjectLock(Files(), folder / "book"));
    EXPECT_EQ(folder.Names(), test::Names{});
    close(ends[0]);
    close(ends[1]);
}

TEST(ProjectLock, FolderThatCannotBeWrittenIsTold) {
    std::string message;
    EXPECT_EQ(KindOf([&] { ProjectLock(Files(), "/proc/book"); }, &message), Kind::system);
    EXPECT_NE(message.find("/proc/book"), std::string::npos) << message;
}

// The holder takes its file away between our opening and our locking it.
TEST(ProjectLock, FileThatDisappearsMeanwhileIsMadeAgain) {
    test::ModelDisk disk;
    int disappearances = 3;
    disk.SetFault([&](long, const std::string& what) {
        if (what == "lock" && disappearances > 0) {
            --disappearances;
            disk.Unlink("/d/book.lock");
        }
        return 0;
    });
    {
        const ProjectLock lock(disk, "/d/book");
        EXPECT_TRUE(disk.Has("/d/book.lock"));
    }
    EXPECT_EQ(disappearances, 0);
    EXPECT_EQ(disk.GetOpenFiles(), 0);
}

TEST(ProjectLock, FullDiskDoesNotKeepFromLocking) {
    test::ModelDisk disk;
    disk.SetFault([](long, const std::string& what) { return what == "write" ? ENOSPC : 0; });
    const ProjectLock lock(disk, "/d/book");
    EXPECT_EQ(KindOf([&] { ProjectLock(disk, "/d/book"); }), Kind::locked);
}

}  // namespace
