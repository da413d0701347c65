// A new file takes the place of an old one, or nothing has happened.
#include "host/project/SafeReplace.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "host/project/ProjectError.h"
#include "tests/TempFolder.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;
using test::KindOf;
using test::ModelDisk;
using test::TempFolder;
using Kind = ProjectError::Kind;

std::optional<FileOperations::Facts> FactsOf(FileOperations& files, const std::string& path) {
    FileOperations::Facts facts;
    if (files.GetFacts(path, facts) != 0) return {};
    return facts;
}

int Replace(FileOperations& files, const std::string& path, const std::string& bytes) {
    SafeReplace pending(files, path, FactsOf(files, path));
    if (files.Write(pending.GetFile(), bytes.data(), bytes.size()) != 0) throw std::runtime_error("write");
    pending.Sync();
    return pending.Place();
}

TEST(SafeReplace, NewFileTakesItsNameAndLeavesNothingElse) {
    const TempFolder folder;
    EXPECT_EQ(Replace(FileOperations::System(), folder / "book", "one"), 0);
    EXPECT_EQ(test::FileBytes(folder / "book"), "one");
    EXPECT_EQ(folder.Names(), test::Names{"book"});
}

TEST(SafeReplace, FormerFileBecomesTheBackup) {
    const TempFolder folder;
    for (const char* bytes : {"one", "two", "three"})
        Replace(FileOperations::System(), folder / "book", bytes);
    EXPECT_EQ(test::FileBytes(folder / "book"), "three");
    EXPECT_EQ(test::FileBytes(folder / "book.bak"), "two");
    EXPECT_EQ(folder.Names(), (test::Names{"book", "book.bak"}));
}

TEST(SafeReplace, WithoutPlaceNothingHasHappened) {
    const TempFolder folder;
    FileOperations& files = FileOperations::System();
    Replace(files, folder / "book", "one");
    {
        SafeReplace pending(files, folder / "book", FactsOf(files, folder / "book"));
        files.Write(pending.GetFile(), "two", 3);
        EXPECT_EQ(folder.Names(), (test::Names{"book", "book.saving"}));
    }
    EXPECT_EQ(test::FileBytes(folder / "book"), "one");
    EXPECT_EQ(folder.Names(), test::Names{"book"});
}

TEST(SafeReplace, LeftoversOfACrashAreRemoved) {
    const TempFolder folder;
    for (const char* name : {"book", "book.saving", "book.bak.saving"})
        test::WriteFileBytes(folder / name, "old");
    Replace(FileOperations::System(), folder / "book", "new");
    EXPECT_EQ(folder.Names(), (test::Names{"book", "book.bak"}));
}

// A crash between the two names of the former file leaves both on the same file: the next save must not
// stumble.
TEST(SafeReplace, BackupThatIsTheFormerFileItselfIsNoHindrance) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "book", "one");
    ASSERT_EQ(::link((folder / "book").c_str(), (folder / "book.bak").c_str()), 0);
    Replace(FileOperations::System(), folder / "book", "two");
    EXPECT_EQ(test::FileBytes(folder / "book"), "two");
    EXPECT_EQ(test::FileBytes(folder / "book.bak"), "one");
    EXPECT_EQ(folder.Names(), (test::Names{"book", "book.bak"}));
}

TEST(SafeReplace, PermissionsOfTheFormerFileStay) {
    const TempFolder folder;
    for (const mode_t mode : {0600U, 0640U, 0664U, 0666U}) {
        test::WriteFileBytes(folder / "book", "one");
        ASSERT_EQ(::chmod((folder / "book").c_str(), mode), 0);
        Replace(FileOperations::System(), folder / "book", "two");
        EXPECT_EQ(FactsOf(FileOperations::System(), folder / "book")->mode, mode);
    }
}

TEST(SafeReplace, NewFileHasThePermissionsThatTheUserGivesToNewFiles) {
    const TempFolder folder;
    const mode_t before = ::umask(027);
    Replace(FileOperations::System(), folder / "book", "one");
    ::umask(before);
    EXPECT_EQ(FactsOf(FileOperations::System(), folder / "book")->mode, 0640U);
}

TEST(SafeReplace, OwnerOfTheFormerFileStaysWhereTheUserMayGiveIt) {
    // Only the administrator gives files away; anybody else can give them to nobody but himself.
    const bool administrator = ::geteuid() == 0;
    const uid_t owner = administrator ? 1234 : ::geteuid();
    const gid_t group = administrator ? 5678 : ::getegid();
    const TempFolder folder;
    test::WriteFileBytes(folder / "book", "one");
    ASSERT_EQ(::chown((folder / "book").c_str(), owner, group), 0);
    Replace(FileOperations::System(), folder / "book", "two");
    EXPECT_EQ(FactsOf(FileOperations::System(), folder / "book")->owner, owner);
    EXPECT_EQ(FactsOf(FileOperations::System(), folder / "book")->group, group);
}

TEST(SafeReplace, FileThatSomebodyMakesMeanwhileIsNotReplaced) {
    for (const bool links : {true, false}) {
        ModelDisk disk;
        disk.SetLinks(links);
        SafeReplace pending(disk, "/d/book", {});
        disk.Put("/d/book", "somebody's");
        EXPECT_EQ(KindOf([&] { pending.Place(); }), Kind::exists);
        EXPECT_EQ(disk.Bytes("/d/book"), "somebody's");
    }
}

TEST(SafeReplace, WorksWhereFilesHaveOneNameOnly) {
    ModelDisk disk;
    disk.SetLinks(false);
    for (const char* bytes : {"one", "two", "three"}) EXPECT_EQ(Replace(disk, "/d/book", bytes), 0);
    EXPECT_EQ(disk.Bytes("/d/book"), "three");
    EXPECT_EQ(disk.Bytes("/d/book.bak"), "two");
    EXPECT_EQ(disk.Names(), (test::Names{"/d/book", "/d/book.bak"}));
}

// At every operation of a save: the file is there, and it is the old one or the new one.
TEST(SafeReplace, ThereIsACompleteFileAtEveryMoment) {
    for (const bool links : {true, false}) {
        ModelDisk disk;
        disk.SetLinks(links);
        Replace(disk, "/d/book", "one");
        disk.SetFault([&](long number, const std::string& what) {
            const std::string bytes = disk.Bytes("/d/book");
            EXPECT_TRUE(bytes == "one" || bytes == "two") << bytes << " before " << number << ", " << what;
            return 0;
        });
        Replace(disk, "/d/book", "two");
    }
}

// Every single operation fails in turn: the former file is there, under its own name or as backup, and
// whoever is told "done" finds the new one.
TEST(SafeReplace, AnyOperationMayFail) {
    for (const bool links : {true, false}) {
        for (const int error : {EIO, ENOSPC, EACCES}) {
            for (long number = 0;; ++number) {
                ModelDisk disk;
                disk.SetLinks(links);
                Replace(disk, "/d/book", "one");
                disk.ResetOperations();
                bool failed = false;
                disk.SetFault([&](long n, const std::string&) {
                    failed = failed || n == number;
                    return n == number ? error : 0;
                });
                bool done = false, confirmed = false;
                try {
                    confirmed = Replace(disk, "/d/book", "two") == 0;
                    done = true;
                } catch (const std::runtime_error&) {
                }
                disk.SetFault({});
                if (!failed) {
                    EXPECT_GT(number, 8) << "operations of a save";
                    break;
                }
                EXPECT_EQ(disk.Bytes("/d/book"), done ? "two" : "one") << number;
                EXPECT_TRUE(!confirmed || disk.Bytes("/d/book.bak") == "one") << number;
                EXPECT_EQ(disk.GetOpenFiles(), 0);
            }
        }
    }
}

}  // namespace
