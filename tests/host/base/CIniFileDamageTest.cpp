// Settings files that are no settings, or cannot be had: defaults, no crash, and nothing of them is lost.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <string>
#include <vector>

#include "platform/base/CIniFile.h"
#include "tests/Scale.h"
#include "tests/TempFolder.h"

namespace {

using test::FileBytes;
using test::TempFolder;
using test::WriteFileBytes;

bool IsThere(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

TEST(DamagedIniFile, ZeroByteGivesDefaultsAndAWriteKeepsACopy) {
    const TempFolder folder;
    const std::string path = folder / "s.ini";
    const std::string damaged("[S]\nk = 1\n\0\0\0rest", 17);
    WriteFileBytes(path, damaged);
    CIniFile ini(path);
    EXPECT_EQ(ini.GetString("S", "k", "d"), "d");
    EXPECT_EQ(FileBytes(path), damaged) << "reading changes nothing";
    ASSERT_TRUE(ini.WriteString("S", "new", "v"));
    EXPECT_EQ(FileBytes(path), "[S]\nnew = v\n");
    EXPECT_EQ(FileBytes(path + ".damaged"), damaged);
}

TEST(DamagedIniFile, SecondCopyDoesNotReplaceTheFirst) {
    const TempFolder folder;
    const std::string path = folder / "s.ini";
    for (const char letter : {'a', 'b', 'c'}) {
        WriteFileBytes(path, std::string(1, letter) + std::string(1, '\0'));
        ASSERT_TRUE(CIniFile(path).WriteString("S", "k", "v"));
    }
    EXPECT_EQ(FileBytes(path + ".damaged"), std::string("a\0", 2));
    EXPECT_EQ(FileBytes(path + ".damaged-2"), std::string("b\0", 2));
    EXPECT_EQ(FileBytes(path + ".damaged-3"), std::string("c\0", 2));
}

TEST(DamagedIniFile, RemoveLeavesItAlone) {
    const TempFolder folder;
    const std::string path = folder / "s.ini";
    WriteFileBytes(path, std::string("x\0", 2));
    EXPECT_TRUE(CIniFile(path).Remove("S", "k"));
    EXPECT_EQ(FileBytes(path), std::string("x\0", 2));
    EXPECT_FALSE(IsThere(path + ".damaged"));
}

TEST(DamagedIniFile, HugeFileIsNotRead) {
    const TempFolder folder;
    const std::string path = folder / "s.ini";
    WriteFileBytes(path, "[S]\nk = 1\n");
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 36), 0);  // 64 GiB, without blocks
    CIniFile ini(path);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ini.GetString("S", "k", "d"), "d");
    ASSERT_TRUE(ini.WriteString("S", "k", "v"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(ini.GetString("S", "k", "d"), "v");
    struct stat facts {};
    ASSERT_EQ(stat((path + ".damaged").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_size, off_t{1} << 36);
}

TEST(DamagedIniFile, TextThatWouldMakeItHugeIsRefused) {
    const TempFolder folder;
    CIniFile ini(folder / "s.ini");
    ASSERT_TRUE(ini.WriteString("S", "k", "v"));
    EXPECT_FALSE(ini.WriteString("S", "long", std::string(std::size_t{17} << 20, 'x')));
    EXPECT_EQ(FileBytes(folder / "s.ini"), "[S]\nk = v\n");
}

TEST(DamagedIniFile, LinesThatMeanTwoThingsAreKeptAndWhatTheySayStays) {
    const TempFolder folder;
    const std::string path = folder / "s.ini";
    // A bracket alone takes the next line for its section's name.
    const std::string odd = "[S]\nk = 1\n[\n";
    WriteFileBytes(path, odd);
    CIniFile ini(path);
    EXPECT_EQ(ini.GetString("S", "k", "d"), "1");
    ASSERT_TRUE(ini.WriteString("T", "new", "v"));
    EXPECT_EQ(ini.GetString("S", "k", "d"), "1");
    EXPECT_EQ(ini.GetString("T", "new", "d"), "v");
    EXPECT_EQ(FileBytes(path + ".damaged"), odd);
    EXPECT_EQ(FileBytes(path), "[S]\nk = 1\n\n[T]\nnew = v\n");
}

TEST(DamagedIniFile, NothingIsEverLostWhateverTheFileHolds) {
    std::mt19937 random(11);
    const std::string letters("[]=;#\n\r\t \"\\ab\xEF\xBB\xBF\xFF\0", 18);
    for (long n = 0; n < Scaled(2000); ++n) {
        const TempFolder folder;
        const std::string path = folder / "s.ini";
        std::string text;
        for (auto length = random() % 40; length > 0; --length) text += letters[random() % letters.size()];
        WriteFileBytes(path, text);
        CIniFile ini(path);
        const std::string other = ini.GetString("a", "b", "none");
        ASSERT_TRUE(ini.WriteString("b", "a", "value"));
        ASSERT_EQ(ini.GetString("b", "a", "none"), "value");
        ASSERT_EQ(ini.GetString("a", "b", "none"), other);
        if (IsThere(path + ".damaged")) {
            ASSERT_EQ(FileBytes(path + ".damaged"), text);
            continue;
        }
        // Every line but those of the key stands there still.
        std::size_t from = 0;
        const std::string now = FileBytes(path);
        std::size_t at = 0;
        while (from < text.size()) {
            std::size_t to = text.find_first_of("\r\n", from);
            if (to == std::string::npos) to = text.size();
            const std::string line = text.substr(from, to - from);
            const std::size_t sign = line.find('=');
            const bool isKey = sign != std::string::npos && line.find('a') < sign;
            const std::size_t found = isKey ? at : now.find(line, at);
            ASSERT_NE(found, std::string::npos) << text << "\n---\n" << now;
            if (!isKey) at = found + line.size();
            from = to + 1;
        }
    }
}

TEST(DamagedIniFile, EveryTruncationGivesAValueOrTheDefault) {
    const TempFolder folder;
    const std::string path = folder / "s.ini";
    const std::string whole = "; c\n[S]\nk = \"a\\x41\\\"b\"\n[T]\nm = 5\n";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        WriteFileBytes(path, whole.substr(0, size));
        CIniFile ini(path);
        const std::string k = ini.GetString("S", "k", "d");
        EXPECT_TRUE(k == "d" || k.empty() || k == "aA\"b" || k.front() == '"') << k;
        const short m = ini.GetShort("T", "m", 9);
        EXPECT_TRUE(m == 9 || m == 5) << m;
        ASSERT_TRUE(ini.WriteShort("T", "m", 6));
        EXPECT_EQ(ini.GetShort("T", "m", 9), 6) << size;
    }
}

TEST(UnusableIniFile, FolderAndPipeGiveDefaultsAndAreNotReplaced) {
    const TempFolder folder;
    ASSERT_EQ(mkdir((folder / "dir").c_str(), 0777), 0);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0666), 0);
    for (const char* name : {"dir", "pipe"}) {
        CIniFile ini(folder / name);
        EXPECT_EQ(ini.GetString("S", "k", "d"), "d") << name;
        EXPECT_FALSE(ini.WriteString("S", "k", "v")) << name;
    }
    struct stat facts {};
    ASSERT_EQ(stat((folder / "pipe").c_str(), &facts), 0);
    EXPECT_TRUE(S_ISFIFO(facts.st_mode));
}

TEST(UnusableIniFile, FileInThePlaceOfTheFolderIsRefused) {
    const TempFolder folder;
    WriteFileBytes(folder / "file", "mine");
    CIniFile ini(folder / "file/settings.ini");
    EXPECT_EQ(ini.GetString("S", "k", "d"), "d");
    EXPECT_FALSE(ini.WriteString("S", "k", "v"));
    EXPECT_EQ(FileBytes(folder / "file"), "mine");
}

/// Runs a function as a user who is not root, in a process of its own.
template <class Work>
bool AsUser(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit((geteuid() != 0 || setuid(65534) == 0) && work() ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
}

TEST(UnusableIniFile, FileWithoutPermissionIsRefusedAndStays) {
    const TempFolder folder;
    ASSERT_EQ(chmod((folder / "").c_str(), 0777), 0);
    const std::string path = folder / "s.ini";
    WriteFileBytes(path, "[S]\nk = 1\n");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    EXPECT_TRUE(AsUser([&] { return CIniFile(path).GetString("S", "k", "d") == "d"; }));
    EXPECT_TRUE(AsUser([&] { return !CIniFile(path).WriteString("S", "k", "2"); }));
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    EXPECT_EQ(FileBytes(path), "[S]\nk = 1\n");
}

TEST(UnusableIniFile, FolderWithoutPermissionIsRefused) {
    const TempFolder folder;
    ASSERT_EQ(chmod((folder / "").c_str(), 0755), 0);
    const std::string path = folder / "s.ini";
    WriteFileBytes(path, "[S]\nk = 1\n");
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
    ASSERT_EQ(chmod((folder / "").c_str(), 0555), 0);
    EXPECT_TRUE(AsUser([&] { return CIniFile(path).GetString("S", "k", "d") == "1"; }));
    EXPECT_TRUE(AsUser([&] { return !CIniFile(path).WriteString("S", "k", "2"); }));
    ASSERT_EQ(chmod((folder / "").c_str(), 0755), 0);
    EXPECT_EQ(FileBytes(path), "[S]\nk = 1\n");
}

TEST(UnusableIniFile, FullDiskLeavesTheOldFile) {
    const TempFolder folder;
    const std::string path = folder / "s.ini";
    CIniFile ini(path);
    ASSERT_TRUE(ini.WriteString("S", "k", "old"));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const bool written = ini.WriteString("S", "k", std::string(5000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(FileBytes(path), "[S]\nk = old\n");
    EXPECT_FALSE(IsThere(path + ".tmp"));
}

}  // namespace
