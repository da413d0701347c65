// What the library asks about file names and files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "platform/base/fileHelpers.h"
#include "tests/TempFolder.h"

namespace {

TEST(FileHelpers, OnlyARegularFileExists) {
    const test::TempFolder folder;
    test::WriteFileBytes(folder / "a.tps", "x");
    test::WriteFileBytes(folder / "empty", "");
    ASSERT_EQ(mkdir((folder / "sub").c_str(), 0777), 0);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0666), 0);
    EXPECT_TRUE(FEsisteIlFile((folder / "a.tps").c_str()));
    EXPECT_TRUE(FEsisteIlFile((folder / "empty").c_str()));
    EXPECT_FALSE(FEsisteIlFile((folder / "sub").c_str()));
    EXPECT_FALSE(FEsisteIlFile((folder / "pipe").c_str()));
    EXPECT_FALSE(FEsisteIlFile((folder / "b.tps").c_str()));
    EXPECT_FALSE(FEsisteIlFile(""));
    EXPECT_FALSE(FEsisteIlFile(nullptr));
}

TEST(FileHelpers, FileExistsWithEitherSeparator) {
    const test::TempFolder folder;
    ASSERT_EQ(mkdir((folder / "sub").c_str(), 0777), 0);
    test::WriteFileBytes(folder / "sub/a", "x");
    EXPECT_TRUE(FEsisteIlFile((folder / "sub\\a").c_str()));
}

TEST(FileHelpers, ExtensionBeginsAtTheLastDotOfTheName) {
    EXPECT_EQ(EliminaEstensioneFile("D:\\Jobs\\Site7.prj"), "D:\\Jobs\\Site7");
    EXPECT_EQ(EliminaEstensioneFile("/jobs/site.v2.prj"), "/jobs/site.v2");
    EXPECT_EQ(EliminaEstensioneFile("site."), "site");
    EXPECT_EQ(EliminaEstensioneFile("/jobs/.prj"), "/jobs/");
    EXPECT_EQ(EliminaEstensioneFile("citt\xC3\xA0.prj"), "citt\xC3\xA0");
}

TEST(FileHelpers, DotOfAFolderIsNoExtension) {
    EXPECT_EQ(EliminaEstensioneFile("D:\\Jobs.v2\\Site7"), "D:\\Jobs.v2\\Site7");
    EXPECT_EQ(EliminaEstensioneFile("/jobs.v2/site7"), "/jobs.v2/site7");
    EXPECT_EQ(EliminaEstensioneFile("site7"), "site7");
    EXPECT_EQ(EliminaEstensioneFile(""), "");
    EXPECT_EQ(EliminaEstensioneFile(nullptr), "");
}

TEST(FileHelpers, SystemPathHasTheSystemsSeparators) {
    EXPECT_EQ(PercorsoDiSistema("a\\b/c\\"), "a/b/c/");
    EXPECT_EQ(PercorsoDiSistema(""), "");
    EXPECT_EQ(PercorsoDiSistema(nullptr), "");
}

}  // namespace
