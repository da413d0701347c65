// Settings that several processes write at the same time.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/CIniFile.h"
#include "tests/Scale.h"
#include "tests/TempFolder.h"

namespace {

using test::TempFolder;

/// Runs a function in a process of its own; it is right when it returns true.
template <class Work>
pid_t Start(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work() ? 0 : 1);
    return child;
}

int StatusOf(pid_t child) {
    int status = -1;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::string Key(int process, long n) { return "p" + std::to_string(process) + "-" + std::to_string(n); }

TEST(IniFileProcesses, KeysOfAllWritersSurvive) {
    const TempFolder folder;
    const std::string path = folder / "new/settings.ini";  // even the folder is not there
    constexpr int kProcesses = 4;
    const long keys = Scaled(200);
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(Start([&] {
            CIniFile ini(path);
            for (long n = 0; n < keys; ++n)
                if (!ini.WriteLong("S", Key(process, n).c_str(), static_cast<std::int32_t>(n))) return false;
            return true;
        }));
    }
    for (const pid_t child : children) EXPECT_EQ(StatusOf(child), 0);
    for (int process = 0; process < kProcesses; ++process)
        for (long n = 0; n < keys; ++n)
            EXPECT_EQ(CIniFile(path).GetLong("S", Key(process, n).c_str(), -1), n) << Key(process, n);
}

TEST(IniFileProcesses, KeysOfAllThreadsSurvive) {
    const TempFolder folder;
    const std::string path = folder / "settings.ini";
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&path, t] {
            CIniFile ini(path);
            for (long n = 0; n < 10; ++n) EXPECT_TRUE(ini.WriteString("S", Key(t, n).c_str(), "v"));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < 3; ++t)
        for (long n = 0; n < 10; ++n)
            EXPECT_TRUE(CIniFile(path).HasValue("S", Key(t, n).c_str())) << Key(t, n);
}

TEST(IniFileProcesses, ReaderAlwaysFindsAWholeFile) {
    const TempFolder folder;
    const std::string path = folder / "settings.ini";
    const std::string a(20000, 'a'), b(30000, 'b');
    ASSERT_TRUE(CIniFile(path).WriteString("S", "k", a));
    const pid_t writer = Start([&] {
        CIniFile ini(path);
        for (long n = 0; n < Scaled(300); ++n)
            if (!ini.WriteString("S", "k", n % 2 == 0 ? b : a)) return false;
        return true;
    });
    int status = 0;
    while (waitpid(writer, &status, WNOHANG) == 0) {
        const std::string read = CIniFile(path).GetString("S", "k", "none");
        ASSERT_TRUE(read == a || read == b) << read.size() << " letters";
    }
    EXPECT_EQ(status, 0);
}

TEST(IniFileProcesses, WriterKilledAtAnyMomentLeavesAWholeFileAndNoLock) {
    const TempFolder folder;
    const std::string path = folder / "settings.ini";
    ASSERT_TRUE(CIniFile(path).WriteString("S", "kept", "v"));
    for (long round = 0; round < Scaled(200); ++round) {
        const pid_t writer = Start([&] {
            CIniFile ini(path);
            for (long n = 0;; ++n)
                ini.WriteString("S", "k", std::string(3000, static_cast<char>('a' + n % 26)));
            return true;
        });
        std::this_thread::sleep_for(std::chrono::microseconds(500 + 331 * (round % 40)));
        kill(writer, SIGKILL);
        EXPECT_EQ(WTERMSIG(StatusOf(writer)), SIGKILL);
        ASSERT_EQ(CIniFile(path).GetString("S", "kept", "none"), "v");
        const std::string k = CIniFile(path).GetString("S", "k", std::string(3000, 'z').c_str());
        ASSERT_EQ(k, std::string(3000, k.front()));
        ASSERT_TRUE(CIniFile(path).WriteString("S", "after", std::to_string(round)));
    }
}

TEST(IniFileProcesses, WriterWaitsForTheLock) {
    const TempFolder folder;
    const std::string path = folder / "settings.ini";
    const int lock = open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    ASSERT_GE(lock, 0);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    const pid_t writer = Start([&] {
        close(lock);  // the child's descriptor would hold the lock as well
        return CIniFile(path).WriteString("S", "k", "v");
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(CIniFile(path).HasValue("S", "k"));
    close(lock);
    EXPECT_EQ(StatusOf(writer), 0);
    EXPECT_EQ(CIniFile(path).GetString("S", "k", "d"), "v");
}

}  // namespace
