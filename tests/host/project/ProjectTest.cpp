// Projects created, saved, opened, and refused.
#include "host/project/Project.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "host/project/ContainerReader.h"
#include "host/project/ContainerWriter.h"
#include "host/project/GpsReader.h"
#include "host/project/OwnedFile.h"
#include "platform/base/ofpstream.h"
#include "tests/TempFolder.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"
#include "tests/host/project/SavedProjects.h"

namespace {

using namespace gpsproject;
using test::ContentIn;
using test::ContentOf;
using test::Contents;
using test::KindOf;
using test::Make;
using test::TempFolder;
using Kind = ProjectError::Kind;
using Mode = Project::Mode;

/// What the container of a file holds.
std::vector<SectionEntry> SectionsOf(const std::string& path) {
    FileOperations& files = FileOperations::System();
    OwnedFile file(files);
    FileOperations::Facts facts;
    EXPECT_EQ(files.Open(path, FileOperations::How::read, 0, file.number), 0);
    EXPECT_EQ(files.GetFacts(file.number, facts), 0);
    std::vector<SectionEntry> entries;
    for (const FoundSection& section : ReadContainer(files, file.number, facts.size, path).sections)
        entries.push_back(section.entry);
    return entries;
}

TEST(Project, NewOneIsEmptyAndWritable) {
    Project project;
    EXPECT_EQ(project.GetBook().GetGrpArSize(), 0);
    EXPECT_EQ(project.GetBook().GetArchLibMap(), &project.GetMap());
    EXPECT_EQ(project.GetStreamVersion(), 1400);
    EXPECT_EQ(project.GetPath(), "");
    EXPECT_FALSE(project.IsReadOnly());
    EXPECT_EQ(KindOf([&] { project.Save(); }), Kind::notFound) << "it has no file yet";
}

TEST(Project, ComesBackAsItWasSaved) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto project = Project::Open(folder / "book", Mode::read);
    EXPECT_EQ(ContentOf(*project), Contents(1));
    EXPECT_EQ(project->GetReport().groupsRead, 2);
    EXPECT_EQ(project->GetReport().pointsRead, 6);
    EXPECT_EQ(project->GetReport().Text(), "");
    EXPECT_TRUE(project->GetNotes().empty());
    EXPECT_EQ(project->GetPath(), folder / "book");
    EXPECT_EQ(project->GetBook().GetNomeFile(), folder / "book");
    EXPECT_EQ(folder.Names(), test::Names{"book"});
}

TEST(Project, EmptyOneComesBack) {
    const TempFolder folder;
    Project().SaveAs(folder / "book", false);
    const auto project = Project::Open(folder / "book", Mode::write);
    EXPECT_EQ(ContentOf(*project), [] {
        Project empty;
        return ContentOf(empty);
    }());
}

class ProjectVersions : public testing::TestWithParam<short> {};

TEST_P(ProjectVersions, SavedAgainGivesTheSameBytes) {
    const short version = GetParam();
    const TempFolder folder;
    Make(folder / "book", 1, version);
    const auto project = Project::Open(folder / "book", Mode::read);
    EXPECT_EQ(project->GetStreamVersion(), version);
    EXPECT_EQ(project->GetBook().GetStreamVersion(), version);
    project->SaveAs(folder / "again", false);
    EXPECT_EQ(test::FileBytes(folder / "again"), test::FileBytes(folder / "book"));
}

TEST_P(ProjectVersions, SectionIsTheFieldBooksRecord) {
    const short version = GetParam();
    const TempFolder folder;
    Project project(version);
    test::Fill(project, 1);
    project.SaveAs(folder / "book", false);
    ofpstream out(version);
    project.GetBook().SalvaInFile(out, version, "", nullptr, nullptr);
    const auto sections = SectionsOf(folder / "book");
    EXPECT_EQ(sections.size(), version < 1004 ? 2U : 3U);
    EXPECT_EQ(sections[0].name, "project");
    EXPECT_EQ(sections.back().name, "gps");
    EXPECT_EQ(sections.back().version, version);
    EXPECT_EQ(sections.back().items, 8);
    EXPECT_EQ(test::FileBytes(folder / "book")
                  .substr(static_cast<std::size_t>(sections.back().offset),
                          static_cast<std::size_t>(sections.back().length)),
              out.GetBytes());
    if (version < 1004) return;
    ofpstream map(version);
    project.GetMap().SalvaInFile(map, version);
    EXPECT_EQ(sections[1].name, "map");
    EXPECT_EQ(test::FileBytes(folder / "book")
                  .substr(static_cast<std::size_t>(sections[1].offset),
                          static_cast<std::size_t>(sections[1].length)),
              map.GetBytes());
}

INSTANTIATE_TEST_SUITE_P(Thresholds, ProjectVersions,
                         testing::Values(743, 749, 750, 880, 881, 902, 903, 1001, 1002, 1003, 1004, 1105,
                                         1106, 1299, 1300, 1310, 1311, 1400));

TEST(Project, VersionsOutsideOfWhatIsWrittenAreRefused) {
    const TempFolder folder;
    for (const short version : std::initializer_list<short>{-1, 0, 742, 1401}) {
        Project project(version);
        std::string message;
        EXPECT_EQ(KindOf([&] { project.SaveAs(folder / "book", false); }, &message), Kind::notHeld);
        EXPECT_NE(message.find("743 to 1400"), std::string::npos) << message;
    }
    EXPECT_EQ(folder.Names(), test::Names{});
}

// --- saving -------------------------------------------------------------------------------------------

TEST(Project, SaveGoesOnWithTheFileAndKeepsTheFormerAsBackup) {
    const TempFolder folder;
    {
        Project project;
        for (const int number : {1, 2, 3}) {
            test::Fill(project, number);
            number == 1 ? project.SaveAs(folder / "book", false) : project.Save();
        }
        EXPECT_EQ(folder.Names(), (test::Names{"book", "book.bak", "book.lock"}));
    }
    EXPECT_EQ(folder.Names(), (test::Names{"book", "book.bak"}));
    EXPECT_EQ(ContentIn(folder / "book"), Contents(3));
    EXPECT_EQ(ContentIn(folder / "book.bak"), Contents(2));
}

TEST(Project, OpenedOneIsChangedAndSaved) {
    const TempFolder folder;
    Make(folder / "book", 1);
    {
        const auto project = Project::Open(folder / "book", Mode::write);
        test::Fill(*project, 2);
        project->GetBook().SetModifiedFlag(true);
        project->Save();
        EXPECT_FALSE(project->GetBook().IsModified());
    }
    EXPECT_EQ(ContentIn(folder / "book"), Contents(2));
}

TEST(Project, SaveAsAnotherNameGoesOnThere) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto project = Project::Open(folder / "book", Mode::write);
    test::Fill(*project, 2);
    project->SaveAs(folder / "other", false);
    EXPECT_EQ(project->GetPath(), folder / "other");
    EXPECT_EQ(folder.Names(), (test::Names{"book", "other", "other.lock"}))
        << "the former file is free again";
    test::Fill(*project, 3);
    project->Save();
    EXPECT_EQ(ContentIn(folder / "book"), Contents(1));
    EXPECT_EQ(ContentIn(folder / "other"), Contents(3));
}

TEST(Project, SaveAsReplacesOnlyWhenAsked) {
    const TempFolder folder;
    Make(folder / "book", 1);
    Project project;
    test::Fill(project, 2);
    std::string message;
    EXPECT_EQ(KindOf([&] { project.SaveAs(folder / "book", false); }, &message), Kind::exists);
    EXPECT_NE(message.find("overwrite"), std::string::npos) << message;
    EXPECT_EQ(ContentIn(folder / "book"), Contents(1));
    EXPECT_EQ(project.GetPath(), "");
    EXPECT_EQ(project.GetBook().GetNomeFile(), "");
    project.SaveAs(folder / "book", true);
    EXPECT_EQ(ContentIn(folder / "book"), Contents(2));
    EXPECT_EQ(ContentIn(folder / "book.bak"), Contents(1));
}

TEST(Project, SaveAsOwnNameIsSave) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto project = Project::Open(folder / "book", Mode::write);
    test::Fill(*project, 2);
    EXPECT_EQ(KindOf([&] { project->SaveAs(folder / "book", false); }), Kind::exists);
    project->SaveAs(folder / "book", true);
    EXPECT_EQ(ContentIn(folder / "book"), Contents(2));
}

TEST(Project, ReadOnlyOneIsNotSavedButUnderAnotherName) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto project = Project::Open(folder / "book", Mode::read);
    EXPECT_TRUE(project->IsReadOnly());
    test::Fill(*project, 2);
    EXPECT_EQ(KindOf([&] { project->Save(); }), Kind::readOnly);
    EXPECT_EQ(KindOf([&] { project->SaveAs(folder / "book", true); }), Kind::readOnly);
    EXPECT_EQ(ContentIn(folder / "book"), Contents(1));
    project->SaveAs(folder / "other", false);
    EXPECT_FALSE(project->IsReadOnly());
    EXPECT_EQ(ContentIn(folder / "other"), Contents(2));
}

TEST(Project, SecondWriterIsRefusedAndReadersAreNot) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto first = Project::Open(folder / "book", Mode::write);
    std::string message;
    EXPECT_EQ(KindOf([&] { Project::Open(folder / "book", Mode::write); }, &message), Kind::locked);
    EXPECT_NE(message.find(std::to_string(getpid())), std::string::npos) << message;
    Project other;
    EXPECT_EQ(KindOf([&] { other.SaveAs(folder / "book", true); }), Kind::locked);
    EXPECT_EQ(ContentIn(folder / "book"), Contents(1));
}

TEST(Project, NewOneHoldsTheLockOfItsFileFromTheFirstSaveOn) {
    const TempFolder folder;
    Project project;
    project.SaveAs(folder / "book", false);
    EXPECT_EQ(KindOf([&] { Project::Open(folder / "book", Mode::write); }), Kind::locked);
}

TEST(Project, LinkIsFollowedAndStays) {
    const TempFolder folder;
    ASSERT_EQ(::mkdir((folder / "real").c_str(), 0700), 0);
    Make(folder / "real/book", 1);
    ASSERT_EQ(::symlink("real/book", (folder / "link").c_str()), 0);
    {
        const auto project = Project::Open(folder / "link", Mode::write);
        EXPECT_EQ(project->GetPath(), folder / "link");
        EXPECT_EQ(KindOf([&] { Project::Open(folder / "real/book", Mode::write); }), Kind::locked);
        test::Fill(*project, 2);
        project->Save();
    }
    EXPECT_EQ(folder.Names(), (test::Names{"link", "real"}));
    struct stat s {};
    ASSERT_EQ(::lstat((folder / "link").c_str(), &s), 0);
    EXPECT_TRUE(S_ISLNK(s.st_mode));
    EXPECT_EQ(ContentIn(folder / "real/book"), Contents(2));
    EXPECT_EQ(ContentIn(folder / "real/book.bak"), Contents(1));
}

TEST(Project, LinkThatLeadsNowhereIsRefused) {
    const TempFolder folder;
    ASSERT_EQ(::symlink("nothing", (folder / "link").c_str()), 0);
    Project project;
    EXPECT_EQ(KindOf([&] { project.SaveAs(folder / "link", true); }), Kind::system);
    EXPECT_EQ(KindOf([&] { Project::Open(folder / "link", Mode::read); }), Kind::notFound);
    EXPECT_EQ(folder.Names(), test::Names{"link"});
}

TEST(Project, OnlyOrdinaryFilesAreReplaced) {
    const TempFolder folder;
    ASSERT_EQ(::mkdir((folder / "folder").c_str(), 0700), 0);
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    Project project;
    for (const char* name : {"folder", "pipe"}) {
        EXPECT_EQ(KindOf([&] { project.SaveAs(folder / name, true); }), Kind::exists) << name;
        EXPECT_EQ(KindOf([&] { Project::Open(folder / name, Mode::read); }), Kind::damaged) << name;
        EXPECT_EQ(KindOf([&] { Project::Open(folder / name, Mode::write); }), Kind::damaged) << name;
    }
    EXPECT_EQ(folder.Names(), (test::Names{"folder", "pipe"}));
}

TEST(Project, NamesThatCannotBeAreRefused) {
    const TempFolder folder;
    Project project;
    EXPECT_EQ(KindOf([&] { project.SaveAs("", true); }), Kind::notFound);
    EXPECT_EQ(KindOf([&] { Project::Open("", Mode::read); }), Kind::notFound);
    EXPECT_EQ(KindOf([&] { project.SaveAs(std::string("a\0b", 3), true); }), Kind::notFound);
    EXPECT_EQ(KindOf([&] { project.SaveAs(folder / "no/such/folder", true); }), Kind::system);
    EXPECT_EQ(KindOf([&] { project.SaveAs(folder / std::string(300, 'n'), true); }), Kind::system);
    EXPECT_EQ(KindOf([&] { project.SaveAs(folder / "book.saving", true); }), Kind::exists);
    EXPECT_EQ(folder.Names(), test::Names{});
}

TEST(Project, WhatAnInterruptedSaveLeftIsNoProject) {
    const TempFolder folder;
    Make(folder / "book", 1);
    ASSERT_EQ(::rename((folder / "book").c_str(), (folder / "book.saving").c_str()), 0);
    std::string message;
    EXPECT_EQ(KindOf([&] { Project::Open(folder / "book.saving", Mode::read); }, &message), Kind::damaged);
    EXPECT_NE(message.find("interrupted"), std::string::npos) << message;
}

TEST(Project, MissingFileWithABackupIsToldSo) {
    const TempFolder folder;
    std::string message;
    EXPECT_EQ(KindOf([&] { Project::Open(folder / "book", Mode::read); }, &message), Kind::notFound);
    EXPECT_EQ(message.find("book.bak"), std::string::npos) << message;
    Make(folder / "book.bak", 1);
    EXPECT_EQ(KindOf([&] { Project::Open(folder / "book", Mode::read); }, &message), Kind::notFound);
    EXPECT_NE(message.find(folder / "book.bak"), std::string::npos) << message;
}

TEST(Project, WriteProtectedFileIsNotReplaced) {
    test::ModelDisk disk;
    {
        Project project(1400, disk);
        project.SaveAs("/d/book", false);
    }
    disk.SetFault([](long, const std::string& what) { return what == "writable" ? EACCES : 0; });
    std::string message;
    EXPECT_EQ(KindOf([&] { Project::Open("/d/book", Mode::write, disk); }, &message), Kind::system);
    EXPECT_NE(message.find("/d/book: may not be written"), std::string::npos) << message;
    EXPECT_EQ(disk.Names(), test::Names{"/d/book"});
    Project other(1400, disk);
    EXPECT_EQ(KindOf([&] { other.SaveAs("/d/book", true); }), Kind::system);
}

// --- changed by others --------------------------------------------------------------------------------

TEST(Project, FileThatOthersChangedIsNotReplaced) {
    const TempFolder folder;
    Make(folder / "book", 1);
    Make(folder / "second", 2);
    const auto project = Project::Open(folder / "book", Mode::write);
    test::Fill(*project, 3);
    test::WriteFileBytes(folder / "book", test::FileBytes(folder / "second"));
    std::string message;
    EXPECT_EQ(KindOf([&] { project->Save(); }, &message), Kind::changedOutside);
    EXPECT_NE(message.find("another name"), std::string::npos) << message;
    EXPECT_EQ(ContentIn(folder / "book"), Contents(2));
    project->SaveAs(folder / "third", false);
    EXPECT_EQ(ContentIn(folder / "third"), Contents(3));
}

TEST(Project, OneByteChangedBehindTheBackOfTheTableIsSeen) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto project = Project::Open(folder / "book", Mode::write);
    std::string bytes = test::FileBytes(folder / "book");
    bytes[bytes.find("Group 1.1")] = 'g';
    test::WriteFileBytes(folder / "book", bytes);
    EXPECT_EQ(KindOf([&] { project->Save(); }), Kind::changedOutside);
    EXPECT_EQ(test::FileBytes(folder / "book"), bytes);
}

TEST(Project, TouchedFileOfTheSameContentIsReplaced) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto project = Project::Open(folder / "book", Mode::write);
    const std::string bytes = test::FileBytes(folder / "book");
    ASSERT_EQ(::unlink((folder / "book").c_str()), 0);
    test::WriteFileBytes(folder / "book", bytes);
    test::Fill(*project, 2);
    EXPECT_NO_THROW(project->Save());
    EXPECT_EQ(ContentIn(folder / "book"), Contents(2));
}

TEST(Project, FileThatIsGoneIsMadeAgain) {
    const TempFolder folder;
    Make(folder / "book", 1);
    const auto project = Project::Open(folder / "book", Mode::write);
    ASSERT_EQ(::unlink((folder / "book").c_str()), 0);
    test::Fill(*project, 2);
    EXPECT_NO_THROW(project->Save());
    EXPECT_EQ(ContentIn(folder / "book"), Contents(2));
}

TEST(Project, FileChangedWhileTheNewOneIsWrittenIsNotReplaced) {
    test::ModelDisk disk;
    Project project(1400, disk);
    test::Fill(project, 1);
    project.SaveAs("/d/book", false);
    test::Fill(project, 2);
    disk.SetFault([&](long, const std::string& what) {
        if (what == "sync") disk.Put("/d/book", "somebody's");
        return 0;
    });
    EXPECT_EQ(KindOf([&] { project.Save(); }), Kind::changedOutside);
    EXPECT_EQ(disk.Bytes("/d/book"), "somebody's");
}

// --- what others put in -------------------------------------------------------------------------------

TEST(Project, UnknownSectionsAndTextsAreKept) {
    const TempFolder folder;
    const std::string content(10000, 'x');
    {
        FileOperations& files = FileOperations::System();
        OwnedFile file(files);
        ASSERT_EQ(files.Open(folder / "book", FileOperations::How::createNew, 0600, file.number), 0);
        ContainerWriter writer(files, file.number);
        Project project;
        test::Fill(project, 1);
        writer.Begin();
        writer.Section("gps", 1400, CountItems(project.GetBook()), [&](ofpstream& out) {
            project.GetBook().SalvaInFile(out, 1400, "", nullptr, nullptr);
        });
        writer.Section("map", 1400, 0, [&](ofpstream& out) { project.GetMap().SalvaInFile(out, 1400); });
        writer.Section("future", 7, 9,
                       [&](ofpstream& out) { out.WriteBytes(content.data(), content.size()); });
        writer.Section("project", 1400, 0, [](ofpstream& out) {
            out.WriteInt(1);
            out.WriteString("unheard of");
            out.WriteString("; = \"\n");
        });
        writer.End();
    }
    {
        const auto project = Project::Open(folder / "book", Mode::write);
        EXPECT_EQ(project->GetReport().Text(), "");
        EXPECT_EQ(project->GetSettings(), (ProjectSettings{{"unheard of", "; = \"\n"}}));
        project->GetSettings()["name"] = "Dam";
        project->Save();
    }
    const auto project = Project::Open(folder / "book", Mode::read);
    EXPECT_EQ(project->GetSettings(), (ProjectSettings{{"name", "Dam"}, {"unheard of", "; = \"\n"}}));
    const auto sections = SectionsOf(folder / "book");
    const auto future =
        std::find_if(sections.begin(), sections.end(), [](const auto& s) { return s.name == "future"; });
    ASSERT_NE(future, sections.end());
    EXPECT_EQ(future->version, 7);
    EXPECT_EQ(future->items, 9);
    EXPECT_EQ(test::FileBytes(folder / "book").substr(static_cast<std::size_t>(future->offset), 10000),
              content);
}

TEST(Project, FieldBookOfALaterVersionIsRefused) {
    const TempFolder folder;
    FileOperations& files = FileOperations::System();
    {
        OwnedFile file(files);
        ASSERT_EQ(files.Open(folder / "book", FileOperations::How::createNew, 0600, file.number), 0);
        ContainerWriter writer(files, file.number);
        writer.Begin();
        writer.Section("gps", 1401, 0, [](ofpstream& out) { out.WriteInt(0); });
        writer.End();
    }
    std::string message;
    EXPECT_EQ(KindOf([&] { Project::Open(folder / "book", Mode::read); }, &message), Kind::tooNew);
    EXPECT_NE(message.find("1401"), std::string::npos) << message;
}

TEST(Project, DatumThatIsNoLongerThatOfTheGroupIsNoted) {
    const TempFolder folder;
    {
        Project project;
        test::Fill(project, 1);
        CConvCoord& conv = *project.GetBook().GetGrpAt(1)->GetConvCoord();
        project.GetMap().AddDat(0, 0)->SetCoeffFromStd(1, 2, 3, 0, 0, 0, 0);
        conv.SetImp(CConvCoord::impDatIndice, 1);
        conv.SetImpFlag(true);
        project.SaveAs(folder / "book", false);
        EXPECT_TRUE(Project::Open(folder / "book", Mode::read)->GetNotes().empty());
        // The group still says what it was saved with.
        const auto other = Project::Open(folder / "book", Mode::read);
        other->GetMap().GetDatAt(0, 0, 1)->SetCoeffFromStd(9, 9, 9, 0, 0, 0, 0);
        EXPECT_TRUE(other->GetBook().GetGrpAt(1)->GetConvCoord()->IsDatumDiverso());
    }
    // A file whose map library has other values than its groups were saved with.
    std::string bytes = test::FileBytes(folder / "book");
    FileOperations& files = FileOperations::System();
    const auto project = Project::Open(folder / "book", Mode::read);
    {
        OwnedFile file(files);
        ASSERT_EQ(files.Open(folder / "mixed", FileOperations::How::createNew, 0600, file.number), 0);
        ContainerWriter writer(files, file.number);
        writer.Begin();
        CLibMap map;
        map.AddDat(0, 0)->SetCoeffFromStd(4, 5, 6, 0, 0, 0, 0);
        writer.Section("map", 1400, 0, [&](ofpstream& out) { map.SalvaInFile(out, 1400); });
        const auto gps = SectionsOf(folder / "book").back();
        writer.Section("gps", 1400, gps.items, [&](ofpstream& out) {
            out.WriteBytes(bytes.data() + gps.offset, static_cast<std::size_t>(gps.length));
        });
        writer.End();
    }
    const auto mixed = Project::Open(folder / "mixed", Mode::read);
    EXPECT_FALSE(mixed->GetReport().IsDamaged());
    ASSERT_EQ(mixed->GetNotes().size(), 1U);
    EXPECT_EQ(mixed->GetNotes()[0].find("group 1 (Group 1.1)"), 0U) << mixed->GetNotes()[0];
}

TEST(Project, WhatTheVersionDoesNotHoldIsNotedBySave) {
    const TempFolder folder;
    Project project(880);
    test::Fill(project, 1);
    project.SaveAs(folder / "book", false);
    EXPECT_FALSE(project.GetNotes().empty());
    project.SetStreamVersion(1400);
    project.Save();
    EXPECT_TRUE(project.GetNotes().empty());
}

}  // namespace
