#include "apps/gpsbook/writers/StagedOutput.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "apps/gpsbook/writers/WriteError.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

using Names = std::vector<std::string>;
namespace fs = std::filesystem;

/// The message of the error that the construction ends with.
std::string Refusal(const std::string& target, bool overwrite,
                    const std::vector<std::string>& companions = {}) {
    try {
        const StagedOutput staged(target, overwrite, companions);
    } catch (const WriteError& e) {
        return e.what();
    }
    return "accepted";
}

TEST(StagedOutput, TargetAppearsAtCommitOnly) {
    const TestFolder folder;
    StagedOutput staged(folder / "t.csv", false);
    WriteFile(staged.File(), "new");
    EXPECT_FALSE(fs::exists(folder / "t.csv"));
    staged.Commit();
    EXPECT_EQ(ReadFile(folder / "t.csv"), "new");
}

TEST(StagedOutput, NothingIsLeftWithoutCommit) {
    const TestFolder folder;
    {
        const StagedOutput staged(folder / "t.csv", false);
        WriteFile(staged.File(), "new");
        EXPECT_EQ(folder.Names().size(), 1U);  // the temporary folder stands beside the target
    }
    EXPECT_EQ(folder.Names(), Names{});
}

TEST(StagedOutput, NothingButTheTargetIsLeftAfterCommit) {
    const TestFolder folder;
    {
        StagedOutput staged(folder / "t.csv", false);
        WriteFile(staged.File(), "new");
        staged.Commit();
    }
    EXPECT_EQ(folder.Names(), Names{"t.csv"});
}

TEST(StagedOutput, ExistingTargetIsRefusedWithTheOptionThatReplacesIt) {
    const TestFolder folder;
    WriteFile(folder / "t.csv", "old");
    EXPECT_EQ(Refusal(folder / "t.csv", false),
              (folder / "t.csv") + ": exists already; use --overwrite to replace it");
    EXPECT_EQ(folder.Names(), Names{"t.csv"});
    EXPECT_EQ(ReadFile(folder / "t.csv"), "old");
}

TEST(StagedOutput, OverwrittenTargetKeepsItsContentUntilCommit) {
    const TestFolder folder;
    WriteFile(folder / "t.csv", "old");
    {
        const StagedOutput given(folder / "t.csv", true);
        WriteFile(given.File(), "new");
        EXPECT_EQ(ReadFile(folder / "t.csv"), "old");
    }
    EXPECT_EQ(ReadFile(folder / "t.csv"), "old");
    StagedOutput staged(folder / "t.csv", true);
    WriteFile(staged.File(), "new");
    staged.Commit();
    EXPECT_EQ(ReadFile(folder / "t.csv"), "new");
}

TEST(StagedOutput, TargetMadeBySomebodyElseInTheMeantimeIsKept) {
    const TestFolder folder;
    {
        StagedOutput staged(folder / "t.csv", false);
        WriteFile(staged.File(), "new");
        WriteFile(folder / "t.csv", "theirs");
        EXPECT_THROW(staged.Commit(), WriteError);
    }
    EXPECT_EQ(ReadFile(folder / "t.csv"), "theirs");
    EXPECT_EQ(folder.Names(), Names{"t.csv"});
}

TEST(StagedOutput, ExistingCompanionIsRefusedByName) {
    const TestFolder folder;
    WriteFile(folder / "t.dbf", "old");
    const std::string message = Refusal(folder / "t.shp", false, {".shx", ".dbf"});
    EXPECT_NE(message.find("t.dbf, which belongs to it, exists already; use --overwrite"), std::string::npos)
        << message;
}

TEST(StagedOutput, OldCompanionsAreReplacedOrRemoved) {
    const TestFolder folder;
    WriteFile(folder / "t.shp", "old");
    WriteFile(folder / "t.dbf", "old");
    WriteFile(folder / "t.qix", "old index");
    WriteFile(folder / "t.shp-wal", "old log");
    WriteFile(folder / "other.dbf", "not ours");
    {
        StagedOutput staged(folder / "t.shp", true, {".dbf", ".qix", ".cpg", "-wal"});
        WriteFile(staged.File(), "new");
        WriteFile((staged.File().parent_path() / "t.dbf").string(), "new");
        WriteFile((staged.File().parent_path() / "t.cpg").string(), "new");
        staged.Commit();
    }
    EXPECT_EQ(folder.Names(), (Names{"other.dbf", "t.cpg", "t.dbf", "t.shp"}));
    EXPECT_EQ(ReadFile(folder / "t.dbf"), "new");
    EXPECT_EQ(ReadFile(folder / "t.shp"), "new");
}

TEST(StagedOutput, FailedCommitPutsOldFilesBack) {
    const TestFolder folder;
    WriteFile(folder / "t.shp", "old");
    WriteFile(folder / "t.dbf", "old");
    {
        StagedOutput staged(folder / "t.shp", true, {".dbf", ".cpg"});
        WriteFile((staged.File().parent_path() / "t.dbf").string(), "new");
        WriteFile((staged.File().parent_path() / "t.cpg").string(), "new");
        EXPECT_THROW(staged.Commit(), WriteError);  // the main file was never written
    }
    EXPECT_EQ(folder.Names(), (Names{"t.dbf", "t.shp"}));
    EXPECT_EQ(ReadFile(folder / "t.dbf"), "old");
    EXPECT_EQ(ReadFile(folder / "t.shp"), "old");
}

TEST(StagedOutput, StagedNameIsGoneAfterCommit) {
    const TestFolder folder;
    {
        StagedOutput staged(folder / "table", false, {}, "table.gpkg");
        EXPECT_EQ(staged.File().filename(), "table.gpkg");
        WriteFile(staged.File(), "new");
        staged.Commit();
    }
    EXPECT_EQ(folder.Names(), Names{"table"});
}

TEST(StagedOutput, LinkStaysAndItsFileIsReplaced) {
    const TestFolder folder;
    WriteFile(folder / "real.csv", "old");
    fs::create_symlink("real.csv", folder / "link.csv");
    {
        StagedOutput staged(folder / "link.csv", true);
        WriteFile(staged.File(), "new");
        staged.Commit();
    }
    EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
    EXPECT_EQ(ReadFile(folder / "real.csv"), "new");
}

TEST(StagedOutput, PlacesThatCannotBeWrittenAreRefusedWithTheReason) {
    const TestFolder folder;
    fs::create_directory(folder / "sub");
    WriteFile(folder / "file", "text");
    fs::create_symlink("nowhere", folder / "dangling");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    struct Row {
        const char* name;
        std::string target;
        const char* message;
    };
    const Row rows[] = {
        {"missing folder", folder / "none/t.csv", "does not exist; create it or choose another"},
        {"target is a folder", folder / "sub", "is a folder; give the name of a file in it"},
        {"target ends with a slash", folder / "none/", "is a folder; give the name of a file in it"},
        {"parent is a file", folder / "file/t.csv", "is no folder; choose another place"},
        {"target is a pipe", folder / "pipe", "is no ordinary file and cannot be replaced"},
        {"link to nothing", folder / "dangling", "is a link to a file that does not exist"},
        {"no name", "", "the name is empty; give a file name"},
    };
    for (const Row& row : rows) {
        for (const bool overwrite : {false, true}) {
            const std::string message = Refusal(row.target, overwrite);
            EXPECT_NE(message.find(row.message), std::string::npos) << row.name << ": " << message;
            EXPECT_EQ(message.substr(0, row.target.size()), row.target) << row.name;
        }
    }
    EXPECT_EQ(folder.Names(), (Names{"dangling", "file", "pipe", "sub"}));
}

TEST(StagedOutput, NameWithoutFolderIsInTheCurrentFolder) {
    const TestFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder / "");
    {
        StagedOutput staged("t.csv", false);
        WriteFile(staged.File(), "new");
        staged.Commit();
    }
    fs::current_path(before);
    EXPECT_EQ(folder.Names(), Names{"t.csv"});
}

}  // namespace
}  // namespace gpsbook
