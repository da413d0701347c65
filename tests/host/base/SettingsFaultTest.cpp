// A setting changed by a real program, with each of its calls to the file system refused in turn: the old
// file or the new one, and the program knows which.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "platform/base/CIniFile.h"
#include "tests/FaultRun.h"
#include "tests/TempFolder.h"

namespace {

using test::FaultRun;
using test::FileBytes;
using test::TempFolder;

const std::string kOld = "[S]\nkept = v\nk = old\n";
const std::string kNew = "[S]\nkept = v\nk = new\n";
const std::string kDamaged("[S]\nkept = v\0\n", 14);

FaultRun Change(const TempFolder& folder, const std::string& value, int call, int error) {
    return test::RunWithFault({FAULT_PROGRAM, folder / "s.ini", value}, folder.Path(), call, error);
}

/// The calls of a change that succeeds, by their names.
std::vector<std::string> CallsOfAChange(const std::string& old) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "s.ini", old);
    const FaultRun run = Change(folder, "new", -1, 0);
    EXPECT_EQ(run.code, 0);
    std::vector<std::string> names;
    for (const std::string& call : run.calls) names.push_back(call.substr(call.find(' ') + 1));
    return names;
}

TEST(SettingsFault, WithoutOneTheFileIsReplacedByTheseCalls) {
    const auto calls = CallsOfAChange(kOld);
    const auto renamed = std::find(calls.begin(), calls.end(), "rename");
    ASSERT_NE(renamed, calls.end());
    EXPECT_NE(std::find(calls.begin(), renamed, "flock"), renamed);
    EXPECT_NE(std::find(calls.begin(), renamed, "fsync"), renamed) << "the new text is on the disk first";
    // The folder, then the lock.
    EXPECT_EQ(std::vector<std::string>(renamed + 1, calls.end()),
              (std::vector<std::string>{"open", "fsync", "close", "close"}));
    const auto kept = CallsOfAChange(kDamaged);
    const auto linked = std::find(kept.begin(), kept.end(), "link");
    EXPECT_NE(std::find(linked, kept.end(), "rename"), kept.end())
        << "the old file has its second name first";
}

TEST(SettingsFault, FolderThatCannotBeSyncedIsNoFailure) {
    const auto calls = CallsOfAChange(kOld);
    const auto renamed = std::find(calls.begin(), calls.end(), "rename") - calls.begin();
    for (const int error : {EIO, EINVAL, ENOSPC, EACCES, EINTR}) {
        for (const int step : {1, 2, 3}) {  // opened, synced, closed
            const TempFolder folder;
            test::WriteFileBytes(folder / "s.ini", kOld);
            const FaultRun run = Change(folder, "new", static_cast<int>(renamed) + step, error);
            EXPECT_EQ(run.code, 0) << "error " << error << ", step " << step;
            EXPECT_EQ(FileBytes(folder / "s.ini"), kNew) << "error " << error << ", step " << step;
            EXPECT_EQ(folder.Names(), (test::Names{"s.ini", "s.ini.lock"}));
        }
    }
}

TEST(SettingsFault, TextThatDoesNotReachTheDiskTakesNobodysPlace) {
    const auto calls = CallsOfAChange(kDamaged);
    int refused = 0;
    for (std::size_t call = 0; call < calls.size(); ++call) {
        const std::string& name = calls[call];
        if (name == "fsync" && refused > 0 && calls[call - 1] == "open") continue;  // the folder's
        if (name != "flock" && name != "write" && name != "fsync" && name != "link" && name != "rename")
            continue;
        ++refused;
        for (const int error : {EIO, ENOSPC}) {
            const TempFolder folder;
            test::WriteFileBytes(folder / "s.ini", kDamaged);
            EXPECT_EQ(Change(folder, "new", static_cast<int>(call), error).code, 1) << name << ", " << error;
            EXPECT_EQ(FileBytes(folder / "s.ini"), kDamaged) << name << ", " << error;
        }
    }
    EXPECT_EQ(refused, 5);
}

struct Case {
    const char* name;
    int error;
    bool damaged;
};

class EverySettingsFault : public testing::TestWithParam<Case> {};

TEST_P(EverySettingsFault, LeavesTheOldFileOrTheNewOneAndTellsWhich) {
    const std::string& old = GetParam().damaged ? kDamaged : kOld;
    const auto calls = CallsOfAChange(old);
    ASSERT_GT(calls.size(), 12u);
    int refused = 0;
    for (int call = 0; call < static_cast<int>(calls.size()); ++call) {
        const TempFolder folder;
        test::WriteFileBytes(folder / "s.ini", old);
        const FaultRun run = Change(folder, "new", call, GetParam().error);
        ASSERT_GT(run.calls.size(), static_cast<std::size_t>(call));
        const std::string where = "call " + run.calls[static_cast<std::size_t>(call)];
        ASSERT_TRUE(run.code == 0 || run.code == 1) << where << ": " << run.code << run.message;
        refused += run.code;
        if (run.code == 1) {
            EXPECT_EQ(FileBytes(folder / "s.ini"), old) << where;
        } else if (GetParam().damaged) {
            EXPECT_EQ(FileBytes(folder / "s.ini"), "[S]\nk = new\n") << where;
            EXPECT_EQ(FileBytes(folder / "s.ini.damaged"), kDamaged) << where;
        } else {
            EXPECT_EQ(FileBytes(folder / "s.ini"), kNew) << where;
        }
        for (const std::string& name : folder.Names())
            EXPECT_TRUE(name == "s.ini" || name == "s.ini.lock" ||
                        (name == "s.ini.damaged" && GetParam().damaged))
                << name << " after " << where;
        // Nothing of it hinders the next change.
        EXPECT_EQ(Change(folder, "next", -1, 0).code, 0) << where;
        EXPECT_EQ(CIniFile(folder / "s.ini").GetString("S", "k", "none"), "next") << where;
        if (GetParam().error == test::kHalf) {
            EXPECT_EQ(run.code, 0) << where << ": the rest is read or written with the next call";
        }
    }
    EXPECT_EQ(refused > 0, GetParam().error != test::kHalf);
}

INSTANTIATE_TEST_SUITE_P(Errors, EverySettingsFault,
                         testing::Values(Case{"EIO", EIO, false}, Case{"ENOSPC", ENOSPC, false},
                                         Case{"EACCES", EACCES, false}, Case{"EINTR", EINTR, false},
                                         Case{"Half", test::kHalf, false}, Case{"DamagedEIO", EIO, true},
                                         Case{"DamagedENOSPC", ENOSPC, true}),
                         [](const auto& fault) { return std::string(fault.param.name); });

}  // namespace
