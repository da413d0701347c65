// The id of an installation, and who uses it.
#include "host/cloud/Device.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <set>

#include "host/project/ProjectError.h"
#include "tests/TempFolder.h"

namespace gpssync {
namespace {

using gpsproject::ProjectError;
using ::test::FileBytes;
using ::test::TempFolder;
using ::test::WriteFileBytes;

const std::string kComment =
    "# Who this installation is to shared projects. Not to be copied to another one.\n";

/// An environment variable that is as it was in the end.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        if (value)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    }
    ~Variable() {
        if (before_)
            ::setenv(name_, before_->c_str(), 1);
        else
            ::unsetenv(name_);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};

std::optional<ProjectError::Kind> KindOf(const std::string& file) {
    try {
        DeviceIn(file);
    } catch (const ProjectError& e) {
        return e.GetKind();
    }
    return std::nullopt;
}

TEST(Device, IsMadeOnceAndStays) {
    const TempFolder folder;
    const std::string file = folder / "device";
    const std::int32_t device = DeviceIn(file);
    EXPECT_GT(device, 0);
    EXPECT_EQ(FileBytes(file), kComment + "device " + std::to_string(device) + "\n");
    EXPECT_EQ(DeviceIn(file), device);
    EXPECT_EQ(folder.Names(), ::test::Names{"device"}) << "nothing else is left";
}

TEST(Device, IsReadAsItIsWritten) {
    const TempFolder folder;
    for (const std::int32_t device : {1, 7, 2147483647}) {
        WriteFileBytes(folder / "device", kComment + "device " + std::to_string(device) + "\n");
        EXPECT_EQ(DeviceIn(folder / "device"), device);
    }
}

TEST(Device, FoldersAreMade) {
    const TempFolder folder;
    const std::int32_t device = DeviceIn(folder / "state/gps-survey/device");
    EXPECT_EQ(DeviceIn(folder / "state/gps-survey/device"), device);
}

TEST(Device, TwoInstallationsDiffer) {
    const TempFolder folder;
    std::set<std::int32_t> devices;
    for (int i = 0; i < 20; ++i) devices.insert(DeviceIn(folder / std::to_string(i)));
    EXPECT_EQ(devices.size(), 20U);
}

TEST(Device, DamagedFileIsRefusedAndLeftAlone) {
    const TempFolder folder;
    const std::string file = folder / "device";
    const std::string whole = kComment + "device 12345\n";
    std::vector<std::string> rows;
    for (std::size_t size = 0; size < whole.size(); ++size) rows.push_back(whole.substr(0, size));
    for (const char* number : {"0", "-5", "2147483648", "12 ", "012", "+3", "x", "99999999999999999999"})
        rows.push_back(kComment + "device " + number + "\n");
    rows.push_back(whole + "\n");
    rows.push_back(whole + whole);
    rows.push_back(std::string(5000, 'x'));
    for (const std::string& bytes : rows) {
        WriteFileBytes(file, bytes);
        EXPECT_EQ(KindOf(file), ProjectError::Kind::damaged) << bytes;
        EXPECT_EQ(FileBytes(file), bytes);
    }
}

TEST(Device, FolderOrMissingNameIsRefused) {
    const TempFolder folder;
    EXPECT_TRUE(KindOf(folder.Path()).has_value());
    EXPECT_EQ(KindOf(""), ProjectError::Kind::notFound);
    WriteFileBytes(folder / "file", "x");
    EXPECT_EQ(KindOf(folder / "file/device"), ProjectError::Kind::system);
}

// Each program that begins at the same time ends with what the file holds.
TEST(Device, ProgramsThatBeginAtOnceGetTheSame) {
    for (int round = 0; round < 20; ++round) {
        const TempFolder folder;
        const std::string file = folder / "state/device";
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        std::vector<pid_t> programs;
        for (int i = 0; i < 4; ++i) {
            const pid_t program = ::fork();
            if (program == 0) {
                ::close(ready[1]);
                char end = 0;
                (void)!::read(ready[0], &end, 1);  // until all are there
                std::int32_t device = 0;
                try {
                    device = DeviceIn(file);
                } catch (const std::exception&) {
                    ::_exit(2);
                }
                ::_exit(DeviceIn(file) == device ? 0 : 1);
            }
            programs.push_back(program);
        }
        ::close(ready[0]);
        ::close(ready[1]);
        for (const pid_t program : programs) {
            int status = -1;
            ASSERT_EQ(::waitpid(program, &status, 0), program);
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        }
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "state"), {}), 1);
    }
}

TEST(DeviceFile, IsNamedByTheEnvironment) {
    const Variable home("HOME", "/home/anna");
    const Variable state("XDG_STATE_HOME", nullptr);
    const Variable named("GPS_SURVEY_DEVICE", nullptr);
    EXPECT_EQ(DeviceFile(), "/home/anna/.local/state/gps-survey/device");
    {
        const Variable relative("XDG_STATE_HOME", "state");
        EXPECT_EQ(DeviceFile(), "/home/anna/.local/state/gps-survey/device");
    }
    const Variable elsewhere("XDG_STATE_HOME", "/var/state");
    EXPECT_EQ(DeviceFile(), "/var/state/gps-survey/device");
    const Variable file("GPS_SURVEY_DEVICE", "/tmp/device");
    EXPECT_EQ(DeviceFile(), "/tmp/device");
}

TEST(DeviceFile, IsNoneWithoutHome) {
    const Variable home("HOME", nullptr);
    const Variable state("XDG_STATE_HOME", nullptr);
    const Variable named("GPS_SURVEY_DEVICE", nullptr);
    EXPECT_EQ(DeviceFile(), "");
}

TEST(Author, CanBeATextOfOneLine) {
    EXPECT_EQ(AuthorProblem("Anna Bò, crew 3"), "");
    EXPECT_EQ(AuthorProblem(std::string(200, 'x')), "");
    for (const std::string& bad :
         {std::string(), std::string(201, 'x'), std::string("a\nb"), std::string("a\tb"), std::string("\x7f"),
          std::string("a\0b", 3), std::string("\xff")})
        EXPECT_NE(AuthorProblem(bad), "") << bad;
}

TEST(Author, OfTheSystemCanBeTold) {
    EXPECT_EQ(AuthorProblem(SystemAuthor()), "");
    EXPECT_NE(SystemAuthor().find('@'), std::string::npos);
}

}  // namespace
}  // namespace gpssync
