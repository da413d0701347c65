// The calls to the real file system, and what they answer when it refuses.
#include "host/os/FileOperations.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>

namespace {

using How = FileOperations::How;

class FileOperationsTest : public testing::Test {
protected:
    FileOperationsTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "gpsos-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        folder_ = std::filesystem::canonical(pattern).string();
    }
    ~FileOperationsTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    std::string Path(const std::string& name) const { return folder_ + "/" + name; }

    int Opened(const std::string& name, How how, std::uint32_t mode = 0600) {
        int file = -1;
        EXPECT_EQ(files_.Open(Path(name), how, mode, file), 0) << name;
        return file;
    }
    void Make(const std::string& name, const std::string& bytes) {
        const int file = Opened(name, How::createNew);
        EXPECT_EQ(files_.Write(file, bytes.data(), bytes.size()), 0);
        EXPECT_EQ(files_.Close(file), 0);
    }
    std::string Bytes(const std::string& name) {
        const int file = Opened(name, How::read);
        std::string bytes(1000, '\0');
        std::size_t got = 0;
        EXPECT_EQ(files_.ReadAt(file, 0, bytes.data(), bytes.size(), got), 0);
        files_.Close(file);
        return bytes.substr(0, got);
    }
    FileOperations::Facts Facts(const std::string& name) {
        FileOperations::Facts facts;
        EXPECT_EQ(files_.GetFacts(Path(name), facts), 0);
        return facts;
    }

    FileOperations& files_ = FileOperations::System();
    std::string folder_;
};

TEST_F(FileOperationsTest, FilesAreWrittenBehindOneAnotherAndReadAnywhere) {
    const int file = Opened("a", How::createNew);
    EXPECT_EQ(files_.Write(file, "hello ", 6), 0);
    EXPECT_EQ(files_.Write(file, "world", 5), 0);
    EXPECT_EQ(files_.Sync(file), 0);
    EXPECT_EQ(files_.SyncData(file), 0);
    char bytes[20];
    std::size_t got = 0;
    EXPECT_EQ(files_.ReadAt(file, 6, bytes, sizeof bytes, got), 0);
    EXPECT_EQ(std::string(bytes, got), "world");
    EXPECT_EQ(files_.ReadAt(file, 100, bytes, sizeof bytes, got), 0);
    EXPECT_EQ(got, 0U);
    EXPECT_EQ(files_.Truncate(file, 5), 0);
    EXPECT_EQ(files_.Close(file), 0);
    EXPECT_EQ(Bytes("a"), "hello");
}

TEST_F(FileOperationsTest, NewFileReplacesNothingAndReadingMakesNothing) {
    Make("a", "x");
    int file = -1;
    EXPECT_EQ(files_.Open(Path("a"), How::createNew, 0600, file), EEXIST);
    EXPECT_EQ(files_.Open(Path("b"), How::read, 0600, file), ENOENT);
    EXPECT_EQ(files_.Open(Path("no/b"), How::createNew, 0600, file), ENOENT);
    EXPECT_EQ(file, -1);
    EXPECT_EQ(Bytes("a"), "x");
}

TEST_F(FileOperationsTest, NewFileDoesNotFollowALink) {
    ASSERT_EQ(::symlink("target", Path("link").c_str()), 0);
    int file = -1;
    EXPECT_NE(files_.Open(Path("link"), How::createNew, 0600, file), 0);
    EXPECT_NE(files_.Open(Path("link"), How::share, 0600, file), 0);
    EXPECT_FALSE(std::filesystem::exists(Path("target")));
}

TEST_F(FileOperationsTest, OpeningAPipeDoesNotWait) {
    ASSERT_EQ(::mkfifo(Path("pipe").c_str(), 0600), 0);
    const int file = Opened("pipe", How::read);
    FileOperations::Facts facts;
    EXPECT_EQ(files_.GetFacts(file, facts), 0);
    EXPECT_FALSE(facts.regular);
    EXPECT_FALSE(facts.folder);
    files_.Close(file);
}

TEST_F(FileOperationsTest, FactsTellWhichFileItIs) {
    Make("a", "four");
    Make("b", "four");
    EXPECT_TRUE(Facts("a").regular);
    EXPECT_EQ(Facts("a").size, 4);
    EXPECT_EQ(Facts("a").mode, 0600U);
    EXPECT_NE(Facts("a").inode, Facts("b").inode);
    EXPECT_EQ(Facts("a"), Facts("a"));
    const int file = Opened("a", How::read);
    FileOperations::Facts facts;
    EXPECT_EQ(files_.GetFacts(file, facts), 0);
    EXPECT_EQ(facts, Facts("a"));
    files_.Close(file);
    EXPECT_EQ(files_.GetFacts(folder_, facts), 0);
    EXPECT_TRUE(facts.folder);
    EXPECT_EQ(files_.GetFacts(Path("c"), facts), ENOENT);
    EXPECT_EQ(files_.GetFacts(-1, facts), EBADF);
}

TEST_F(FileOperationsTest, SecondNameIsNoChangeOfContentAndWritingIsOne) {
    Make("a", "four");
    const auto before = Facts("a");
    ASSERT_EQ(files_.Link(Path("a"), Path("b")), 0);
    EXPECT_TRUE(Facts("a").IsSameContent(before));
    EXPECT_EQ(Facts("b").inode, before.inode);
    const int file = Opened("a", How::share);
    files_.Write(file, "longer", 6);
    files_.Close(file);
    EXPECT_FALSE(Facts("a").IsSameContent(before));
}

TEST_F(FileOperationsTest, NamesAreMovedLinkedAndRemoved) {
    Make("a", "one");
    Make("b", "two");
    EXPECT_EQ(files_.Link(Path("a"), Path("b")), EEXIST);
    EXPECT_EQ(files_.Rename(Path("a"), Path("b")), 0);
    EXPECT_EQ(Bytes("b"), "one");
    EXPECT_EQ(files_.Rename(Path("a"), Path("c")), ENOENT);
    EXPECT_EQ(files_.Link(Path("b"), Path("c")), 0);
    EXPECT_EQ(files_.Unlink(Path("b")), 0);
    EXPECT_EQ(files_.Unlink(Path("b")), ENOENT);
    EXPECT_EQ(Bytes("c"), "one");
    EXPECT_EQ(files_.SyncFolder(folder_), 0);
    EXPECT_EQ(files_.SyncFolder(Path("none")), ENOENT);
}

TEST_F(FileOperationsTest, LockHoldsAgainstEveryOtherOpening) {
    const int first = Opened("a", How::share), second = Opened("a", How::share);
    EXPECT_EQ(files_.Lock(first), 0);
    EXPECT_EQ(files_.Lock(second), EWOULDBLOCK);
    EXPECT_EQ(files_.Close(first), 0);
    EXPECT_EQ(files_.Lock(second), 0);
    files_.Close(second);
}

TEST_F(FileOperationsTest, PathsAreResolvedThroughLinksAlsoWhereNothingIsYet) {
    ASSERT_EQ(::mkdir(Path("real").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("real", Path("folder").c_str()), 0);
    Make("real/a", "x");
    ASSERT_EQ(::symlink("real/a", Path("file").c_str()), 0);
    ASSERT_EQ(::symlink("real/none", Path("nowhere").c_str()), 0);
    const auto resolved = [&](const std::string& name) {
        std::string path;
        EXPECT_EQ(files_.Resolve(Path(name), path), 0) << name;
        return path;
    };
    EXPECT_EQ(resolved("file"), Path("real/a"));
    EXPECT_EQ(resolved("folder/a"), Path("real/a"));
    EXPECT_EQ(resolved("folder/new"), Path("real/new"));
    EXPECT_EQ(resolved("new"), Path("new"));
    std::string path = "unchanged";
    EXPECT_EQ(files_.Resolve(Path("nowhere"), path), ENOENT);
    EXPECT_EQ(files_.Resolve(Path("none/new"), path), ENOENT);
    EXPECT_EQ(files_.Resolve(Path("none/"), path), ENOENT);
    EXPECT_EQ(files_.Resolve("", path), ENOENT);
    EXPECT_EQ(path, "unchanged");
}

TEST_F(FileOperationsTest, RelativePathsAreThoseOfTheWorkingFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_);
    std::string path;
    const int error = files_.Resolve("new", path);
    std::filesystem::current_path(before);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(path, Path("new"));
}

TEST_F(FileOperationsTest, RightsAreCopied) {
    Make("a", "x");
    const int file = Opened("b", How::createNew, 0600);
    auto facts = Facts("a");
    facts.mode = 0640;
    EXPECT_EQ(files_.CopyRights(file, facts), 0);
    EXPECT_EQ(Facts("b").mode, 0640U);
    files_.Close(file);
}

// Asked in a process without special rights: the administrator may write everything.
TEST_F(FileOperationsTest, MissingRightsAreTold) {
    Make("a", "x");
    EXPECT_EQ(files_.CheckWritable(Path("a")), 0);
    EXPECT_EQ(files_.CheckWritable(Path("none")), ENOENT);
    ASSERT_EQ(::chmod(Path("a").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder_.c_str(), 0755), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(2);
        int file = -1;
        const bool told = files_.CheckWritable(Path("a")) == EACCES &&
                          files_.Open(Path("a"), How::share, 0, file) == EACCES;
        ::_exit(told ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(FileOperationsTest, ErrorsOfFilesThatAreNotOpenAreTold) {
    char byte = 'x';
    std::size_t got = 0;
    EXPECT_EQ(files_.Write(-1, &byte, 1), EBADF);
    EXPECT_EQ(files_.ReadAt(-1, 0, &byte, 1, got), EBADF);
    EXPECT_NE(files_.Truncate(-1, 0), 0);
    EXPECT_EQ(files_.Sync(-1), EBADF);
    EXPECT_EQ(files_.SyncData(-1), EBADF);
    EXPECT_EQ(files_.Close(-1), EBADF);
    EXPECT_EQ(files_.Lock(-1), EBADF);
}

TEST_F(FileOperationsTest, FullDiskIsTold) {
    int file = -1;
    ASSERT_EQ(files_.Open("/dev/full", How::share, 0, file), 0);
    EXPECT_EQ(files_.Write(file, "x", 1), ENOSPC);
    files_.Close(file);
}

}  // namespace
