// The bare section, out of a project and into one.
#include "host/project/GpsSection.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "platform/base/ofpstream.h"
#include "tests/TempFolder.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;
using test::ContentOf;
using test::KindOf;
using test::TempFolder;
using Kind = ProjectError::Kind;

std::string Record(Project& project, short version) {
    ofpstream out(version);
    project.GetBook().SalvaInFile(out, version, "", nullptr, nullptr);
    return std::string(out.GetBytes());
}

class GpsSection : public testing::TestWithParam<short> {};

TEST_P(GpsSection, IsTheRecordAndNothingElse) {
    const TempFolder folder;
    Project project;
    test::Fill(project, 1);
    project.SaveAs(folder / "book", false);
    const auto content = ContentOf(project);
    WriteSection(project, folder / "section", GetParam(), false);
    EXPECT_EQ(project.GetBook().GetNomeFile(), folder / "book");
    EXPECT_EQ(project.GetBook().GetStreamVersion(), 1400);
    EXPECT_EQ(ContentOf(project), content);
    EXPECT_EQ(test::FileBytes(folder / "section"), Record(project, GetParam()));
}

TEST_P(GpsSection, GoesIntoAnotherProject) {
    const TempFolder folder;
    Project project;
    test::Fill(project, 1);
    WriteSection(project, folder / "section", GetParam(), false);
    Project other;
    ReadSection(folder / "section", GetParam(), other);
    EXPECT_EQ(Record(other, GetParam()), Record(project, GetParam()));
    EXPECT_EQ(other.GetStreamVersion(), 1400) << "stays";
    EXPECT_EQ(other.GetMap().GetDatAt(0, 0, 0)->GetNome(), GetParam() < 1004 ? "Datum 1" : "");
}

INSTANTIATE_TEST_SUITE_P(Versions, GpsSection,
                         testing::Values(743, 750, 881, 903, 1002, 1003, 1004, 1106, 1311, 1400));

TEST(GpsSectionFile, ReplacesAnotherOnlyWhenAskedAndKeepsIt) {
    const TempFolder folder;
    Project project;
    test::WriteFileBytes(folder / "section", "mine");
    EXPECT_EQ(KindOf([&] { WriteSection(project, folder / "section", 1400, false); }), Kind::exists);
    EXPECT_EQ(test::FileBytes(folder / "section"), "mine");
    WriteSection(project, folder / "section", 1400, true);
    EXPECT_EQ(test::FileBytes(folder / "section.bak"), "mine");
    EXPECT_EQ(folder.Names(), (test::Names{"section", "section.bak"}));
}

TEST(GpsSectionFile, NeverReplacesTheProjectItself) {
    const TempFolder folder;
    Project project;
    project.SaveAs(folder / "book", false);
    const std::string bytes = test::FileBytes(folder / "book");
    EXPECT_EQ(KindOf([&] { WriteSection(project, folder / "book", 1400, true); }), Kind::exists);
    EXPECT_EQ(test::FileBytes(folder / "book"), bytes);
}

TEST(GpsSectionFile, VersionsThatAreNotWrittenAreRefused) {
    const TempFolder folder;
    Project project;
    for (const short version : std::initializer_list<short>{0, 742, 1401})
        EXPECT_EQ(KindOf([&] { WriteSection(project, folder / "section", version, true); }), Kind::notHeld);
    EXPECT_EQ(folder.Names(), test::Names{});
}

TEST(GpsSectionFile, DiskThatIsFullLeavesNothing) {
    test::ModelDisk disk;
    Project project(1400, disk);
    test::Fill(project, 1);
    disk.SetFault([](long, const std::string& what) { return what == "write" ? ENOSPC : 0; });
    std::string message;
    EXPECT_EQ(KindOf([&] { WriteSection(project, "/d/section", 1400, false); }, &message), Kind::system);
    EXPECT_NE(message.find("/d/section"), std::string::npos) << message;
    EXPECT_EQ(disk.Names(), test::Names{});
}

TEST(GpsSectionRead, AppendsGroupsAndKeepsOptionsAndMapOfAProjectThatHasGroups) {
    const TempFolder folder;
    Project source;
    test::Fill(source, 1);
    source.GetBook().GetOpzLibGps().OpzValore = 11;
    WriteSection(source, folder / "section", 900, false);
    Project project;
    test::Fill(project, 2);
    project.GetBook().GetOpzLibGps().OpzValore = 22;
    ReadSection(folder / "section", 900, project);
    EXPECT_EQ(project.GetBook().GetGrpArSize(), 4);
    EXPECT_EQ(project.GetBook().GetGrpAt(0)->GetNomeGrp(), "Group 2.0");
    EXPECT_EQ(project.GetBook().GetGrpAt(2)->GetNomeGrp(), "Group 1.0");
    EXPECT_EQ(project.GetBook().GetOpzLibGps().OpzValore, 22);
    EXPECT_EQ(project.GetMap().GetDatAt(0, 0, 0)->GetNome(), "Datum 2");
}

TEST(GpsSectionRead, MissingFileIsTold) {
    const TempFolder folder;
    Project project;
    EXPECT_EQ(KindOf([&] { ReadSection(folder / "nothing", 1400, project); }), Kind::notFound);
    EXPECT_EQ(KindOf([&] { ReadSection(folder.Path(), 1400, project); }), Kind::damaged);
    EXPECT_EQ(KindOf([&] { ReadSection("", 1400, project); }), Kind::notFound);
}

// The ids in its records could be those of another project.
TEST(GpsSectionRead, SharedProjectIsRefused) {
    const TempFolder folder;
    Project source;
    test::Fill(source, 1);
    WriteSection(source, folder / "section", 1400, false);
    Project project;
    test::Fill(project, 2);
    project.GetCloud().Link({"store", "Dam", "key"});
    const int groups = project.GetBook().GetGrpArSize();
    std::string message;
    EXPECT_EQ(KindOf([&] { ReadSection(folder / "section", 1400, project); }, &message), Kind::notHeld);
    EXPECT_NE(message.find("read it into a book of its own"), std::string::npos) << message;
    EXPECT_EQ(project.GetBook().GetGrpArSize(), groups);
}

TEST(GpsSectionRead, UnknownVersionsAreRefused) {
    const TempFolder folder;
    Project project;
    WriteSection(project, folder / "section", 1400, false);
    for (const short version : std::initializer_list<short>{-1, 0, 1401})
        EXPECT_EQ(KindOf([&] { ReadSection(folder / "section", version, project); }), Kind::tooNew);
}

// Nothing of a damaged section comes into a project.
TEST(GpsSectionRead, EveryCutSectionIsRefusedWithItsPlace) {
    const TempFolder folder;
    Project source;
    test::Fill(source, 1, 1, 2);
    const std::string bytes = Record(source, 900);
    Project project;
    test::Fill(project, 2);
    const auto content = ContentOf(project);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        test::WriteFileBytes(folder / "section", bytes.substr(0, size));
        std::string message;
        EXPECT_EQ(KindOf([&] { ReadSection(folder / "section", 900, project); }, &message), Kind::damaged)
            << size;
        EXPECT_NE(message.find("byte "), std::string::npos) << message;
    }
    EXPECT_EQ(ContentOf(project), content);
    test::WriteFileBytes(folder / "section", bytes.substr(0, bytes.size() - 5));
    std::string message;
    KindOf([&] { ReadSection(folder / "section", 900, project); }, &message);
    EXPECT_NE(message.find("group 0, point 1, byte "), std::string::npos) << message;
}

TEST(GpsSectionRead, WrongVersionIsTold) {
    const TempFolder folder;
    Project source;
    test::Fill(source, 1);
    WriteSection(source, folder / "section", 1400, false);
    Project project;
    std::string message;
    EXPECT_EQ(KindOf([&] { ReadSection(folder / "section", 1106, project); }, &message), Kind::damaged);
    EXPECT_NE(message.find("of another version than 1106"), std::string::npos) << message;
    EXPECT_EQ(project.GetBook().GetGrpArSize(), 0);
}

}  // namespace
