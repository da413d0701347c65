// Enumerating files by a pattern.
#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <string>

#include "platform/os/findFile.h"
#include "tests/TempFolder.h"

namespace {

using test::TempFolder;
using Names = std::set<std::string>;

/// All that a pattern finds, the search ended.
Names Found(const std::string& pattern) {
    Names names;
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        EXPECT_TRUE(names.insert(found.cFileName).second) << found.cFileName << " twice";
    } while (FindNextFileA(search, &found));
    EXPECT_TRUE(FindClose(search));
    return names;
}

long OpenDescriptors() {
    long count = 0;
    DIR* const folder = opendir("/proc/self/fd");
    while (readdir(folder)) ++count;
    closedir(folder);
    return count;
}

TEST(FindFile, FindsWhatMatchesAndNothingElse) {
    const TempFolder folder;
    for (const char* name : {"a.tps", "B.TPS", ".hidden.tps", "a.tps.bak", "tps", "c.txt"})
        test::WriteFileBytes(folder / name, "");
    ASSERT_EQ(mkdir((folder / "sub.tps").c_str(), 0777), 0);
    EXPECT_EQ(Found(folder / "*.tps"), (Names{"a.tps", "B.TPS", ".hidden.tps", "sub.tps"}));
    EXPECT_EQ(Found(folder / "c.txt"), (Names{"c.txt"}));
    EXPECT_EQ(Found(folder / "?.t*"), (Names{"a.tps", "B.TPS", "a.tps.bak", "c.txt"}));
}

TEST(FindFile, BothSeparatorsWork) {
    const TempFolder folder;
    ASSERT_EQ(mkdir((folder / "sub").c_str(), 0777), 0);
    test::WriteFileBytes(folder / "sub/a.tps", "");
    EXPECT_EQ(Found(folder / "sub\\*.tps"), Names{"a.tps"});
    EXPECT_EQ(Found(folder / "sub/*.tps"), Names{"a.tps"});
}

TEST(FindFile, PatternWithoutFolderSearchesThePresentOne) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "here.tps", "");
    char before[4096];
    ASSERT_NE(getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(chdir((folder / "").c_str()), 0);
    const Names found = Found("*.tps");
    ASSERT_EQ(chdir(before), 0);
    EXPECT_EQ(found, Names{"here.tps"});
}

TEST(FindFile, NothingFoundIsNoHandle) {
    const TempFolder folder;
    WIN32_FIND_DATAA found{"before"};
    const long open = OpenDescriptors();
    EXPECT_EQ(FindFirstFileA((folder / "*.tps").c_str(), &found), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileA((folder / "none/*.tps").c_str(), &found), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileA((folder / "").c_str(), &found), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileA("", &found), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileA(nullptr, &found), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileA("*", nullptr), INVALID_HANDLE_VALUE);
    EXPECT_STREQ(found.cFileName, "before");
    EXPECT_EQ(OpenDescriptors(), open);
}

TEST(FindFile, AfterTheLastMatchTheDataStay) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "a.tps", "");
    WIN32_FIND_DATAA found{};
    const long open = OpenDescriptors();
    const HANDLE search = FindFirstFileA((folder / "*.tps").c_str(), &found);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(FindNextFileA(search, &found));
    EXPECT_FALSE(FindNextFileA(search, &found));
    EXPECT_STREQ(found.cFileName, "a.tps");
    EXPECT_TRUE(FindClose(search));
    EXPECT_EQ(OpenDescriptors(), open);
}

TEST(FindFile, NoHandleIsAnsweredFalse) {
    WIN32_FIND_DATAA found{};
    EXPECT_FALSE(FindNextFileA(INVALID_HANDLE_VALUE, &found));
    EXPECT_FALSE(FindNextFileA(nullptr, &found));
    EXPECT_FALSE(FindClose(INVALID_HANDLE_VALUE));
    EXPECT_FALSE(FindClose(nullptr));
}

TEST(FindFile, SearchesDoNotDisturbEachOther) {
    const TempFolder folder;
    for (const char* name : {"a.one", "b.one", "a.two", "b.two"}) test::WriteFileBytes(folder / name, "");
    WIN32_FIND_DATAA found{};
    Names one, two;
    const HANDLE first = FindFirstFileA((folder / "*.one").c_str(), &found);
    ASSERT_NE(first, INVALID_HANDLE_VALUE);
    one.insert(found.cFileName);
    const HANDLE second = FindFirstFileA((folder / "*.two").c_str(), &found);
    ASSERT_NE(second, INVALID_HANDLE_VALUE);
    two.insert(found.cFileName);
    while (FindNextFileA(first, &found)) one.insert(found.cFileName);
    EXPECT_TRUE(FindClose(first));
    while (FindNextFileA(second, &found)) two.insert(found.cFileName);
    EXPECT_TRUE(FindClose(second));
    EXPECT_EQ(one, (Names{"a.one", "b.one"}));
    EXPECT_EQ(two, (Names{"a.two", "b.two"}));
}

TEST(FindFile, LongestNamesAreFound) {
    const TempFolder folder;
    const std::string name = std::string(251, 'x') + ".tps";
    test::WriteFileBytes(folder / name, "");
    EXPECT_EQ(Found(folder / "*.tps"), Names{name});
}

}  // namespace
