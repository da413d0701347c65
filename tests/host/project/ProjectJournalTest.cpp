// What was edited and not saved: it comes back, once, and only where it belongs.
#include <gtest/gtest.h>

#include <cerrno>
#include <random>

#include "gps/options/COpzPostProc.h"
#include "host/project/Project.h"
#include "tests/TempFolder.h"
#include "tests/host/project/JournalDisk.h"
#include "tests/host/project/RandomEdits.h"
#include "tests/host/project/Samples.h"

namespace {

using gpsproject::Edit;
using gpsproject::JournalTie;
using gpsproject::Project;
using gpsproject::ProjectError;
using test::ContentOf;
using test::KindOf;
using Disk = test::JournalDisk;
using test::kBook;
using test::kJournal;
using test::NameOf;
using test::Rename;
using Mode = Project::Mode;

TEST(ProjectJournal, BeforeTheFirstEditThereIsNoFile) {
    Disk disk;
    const auto project = disk.Open(Mode::write);
    EXPECT_FALSE(disk.Has(kJournal));
    project->GetEdits().Commit();
    EXPECT_FALSE(disk.Has(kJournal));
}

TEST(ProjectJournal, CommittedEditComesBackWhenNothingWasSaved) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 1, "renamed");
        project->GetEdits().Commit();
    }
    const std::string journal = disk.Bytes(kJournal);
    {
        const auto project = disk.Open(Mode::read);
        EXPECT_EQ(NameOf(*project, 1), "renamed");
        EXPECT_EQ(project->GetReplay().edits, 1);
        EXPECT_EQ(project->GetReplay().groups, 1);
        EXPECT_FALSE(project->GetReport().IsDamaged());
    }
    EXPECT_EQ(disk.Bytes(kJournal), journal) << "who reads changes nothing";
    {
        const auto project = disk.Open(Mode::write);
        EXPECT_EQ(NameOf(*project, 1), "renamed");
        EXPECT_EQ(project->GetReplay().edits, 1);
        EXPECT_FALSE(disk.Has(kJournal)) << "it is in the file now";
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(NameOf(*project, 1), "renamed");
    EXPECT_EQ(project->GetReplay().edits, 0);
}

TEST(ProjectJournal, EditWithoutCommitIsGone) {
    Disk disk;
    const auto before = ContentOf(*disk.Open(Mode::read));
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "renamed");
    }
    EXPECT_EQ(ContentOf(*disk.Open(Mode::read)), before);
}

TEST(ProjectJournal, UnfinishedEditNeverComesBack) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "complete");
        {
            Edit edit(project->GetEdits());
            project->GetBook().GetGrpAt(1)->SetNomeGrp("incomplete");
            project->GetEdits().GroupChanged(1);
        }
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(NameOf(*project, 0), "complete");
    EXPECT_EQ(NameOf(*project, 1), "Group 0.1");
}

TEST(ProjectJournal, SaveTakesTheJournalIn) {
    Disk disk;
    const auto project = disk.Open(Mode::write);
    Rename(*project, 0, "renamed");
    project->GetEdits().Commit();
    EXPECT_TRUE(disk.Has(kJournal));
    project->Save();
    EXPECT_FALSE(disk.Has(kJournal));
    EXPECT_EQ(NameOf(*disk.Open(Mode::read), 0), "renamed");
}

TEST(ProjectJournal, EditsAfterASaveComeBackToo) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "first");
        project->GetEdits().Commit();
        project->Save();
        Rename(*project, 1, "second");
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(NameOf(*project, 0), "first");
    EXPECT_EQ(NameOf(*project, 1), "second");
    EXPECT_EQ(project->GetReplay().edits, 1);
}

TEST(ProjectJournal, DroppedEditsDoNotComeBack) {
    Disk disk;
    const auto before = ContentOf(*disk.Open(Mode::read));
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "renamed");
        project->GetEdits().Commit();
        project->DropEdits();
    }
    EXPECT_FALSE(disk.Has(kJournal));
    EXPECT_EQ(ContentOf(*disk.Open(Mode::read)), before);
}

// The program ended between the save and the removal of the journal.
TEST(ProjectJournal, JournalThatIsInTheFileIsNotReplayedAgain) {
    Disk disk;
    const auto project = disk.Open(Mode::write);
    {
        Edit edit(project->GetEdits());
        project->GetBook().AddPun(0, false)->SetNome("added");
        project->GetEdits().PointInserted(0, 3);
        edit.Done();
    }
    project->GetEdits().Commit();
    const std::string journal = disk.Bytes(kJournal);
    project->Save();
    disk.Put(kJournal, journal);
    const auto again = disk.Open(Mode::read);
    EXPECT_EQ(again->GetBook().GetPunArSize(0), 4);
    EXPECT_EQ(again->GetJournal().tie, JournalTie::saved);
    EXPECT_FALSE(again->GetReport().IsDamaged());
}

TEST(ProjectJournal, JournalOfAnotherBookIsReportedAndKept) {
    Disk disk;
    disk.Make(7, "/d/other");
    {
        const auto project = disk.Open(Mode::write, "/d/other");
        Rename(*project, 0, "of the other");
        project->GetEdits().Commit();
    }
    const std::string foreign = disk.Bytes("/d/other.journal");
    disk.Put(kJournal, foreign);
    for (const Mode mode : {Mode::read, Mode::write}) {
        const auto project = disk.Open(mode);
        EXPECT_EQ(NameOf(*project, 0), "Group 0.0");
        EXPECT_TRUE(project->IsReadOnly());
        EXPECT_NE(project->GetReport().Text().find("another"), std::string::npos)
            << project->GetReport().Text();
        EXPECT_EQ(KindOf([&] { project->Save(); }), ProjectError::Kind::readOnly);
    }
    EXPECT_EQ(disk.Bytes(kJournal), foreign);
}

TEST(ProjectJournal, TwoJournalsSwappedAreBothRefused) {
    Disk disk;
    disk.Make(7, "/d/other");
    for (const char* name : {kBook, "/d/other"}) {
        const auto project = disk.Open(Mode::write, name);
        Rename(*project, 0, "renamed");
        project->GetEdits().Commit();
    }
    const std::string one = disk.Bytes(kJournal), two = disk.Bytes("/d/other.journal");
    disk.Put(kJournal, two);
    disk.Put("/d/other.journal", one);
    for (const char* name : {kBook, "/d/other"}) {
        const auto project = disk.Open(Mode::read, name);
        EXPECT_NE(NameOf(*project, 0), "renamed");
        EXPECT_EQ(project->GetJournal().tie, JournalTie::foreign);
        EXPECT_TRUE(project->GetReport().IsDamaged());
    }
}

// Somebody puts the backup back: what was edited on the newer book is not edited on the older one.
TEST(ProjectJournal, JournalOfALaterSaveIsNotReplayedOnTheBackup) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        project->GetBook().DelGrpAt(0);
        project->Save();
        Rename(*project, 0, "renamed");
        project->GetEdits().Commit();
    }
    disk.Put(kBook, disk.Bytes("/d/book.bak"));
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(project->GetJournal().tie, JournalTie::foreign);
    EXPECT_EQ(NameOf(*project, 0), "Group 0.0");
}

TEST(ProjectJournal, TornTailIsCutAndTheRestComesBack) {
    Disk disk;
    std::string journal;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "first");
        project->GetEdits().Commit();
        journal = disk.Bytes(kJournal);
        Rename(*project, 1, "second");
        project->GetEdits().Commit();
    }
    const std::string whole = disk.Bytes(kJournal);
    for (std::size_t size = journal.size(); size < whole.size(); size += 7) {
        disk.Put(kJournal, whole.substr(0, size));
        const auto project = disk.Open(Mode::read);
        EXPECT_FALSE(project->GetReport().IsDamaged()) << size;
        EXPECT_EQ(NameOf(*project, 0), "first") << size;
        EXPECT_EQ(NameOf(*project, 1), "Group 0.1") << size;
    }
}

TEST(ProjectJournal, DamageBeforeAStoredEntryMakesTheBookReadOnly) {
    Disk disk;
    std::size_t middle = 0;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "first");
        project->GetEdits().Commit();
        middle = disk.Bytes(kJournal).size();
        Rename(*project, 1, "second");
        project->GetEdits().Commit();
        Rename(*project, 1, "third");
        project->GetEdits().Commit();
    }
    std::string damaged = disk.Bytes(kJournal);
    damaged[middle + 45] = static_cast<char>(damaged[middle + 45] ^ 4);
    disk.Put(kJournal, damaged);
    const auto project = disk.Open(Mode::write);
    EXPECT_TRUE(project->IsReadOnly());
    EXPECT_EQ(NameOf(*project, 0), "first");
    EXPECT_EQ(NameOf(*project, 1), "Group 0.1");
    ASSERT_EQ(project->GetReport().damages.size(), 1U);
    EXPECT_EQ(project->GetReport().damages[0].section, "journal");
    EXPECT_EQ(project->GetReport().damages[0].offset, static_cast<std::int64_t>(middle));
    EXPECT_EQ(disk.Bytes(kJournal), damaged);
}

TEST(ProjectJournal, SalvageGoesOnAndKeepsTheDamagedJournal) {
    Disk disk;
    std::size_t middle = 0;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "first");
        project->GetEdits().Commit();
        middle = disk.Bytes(kJournal).size();
        Rename(*project, 1, "second");
        project->GetEdits().Commit();
        Rename(*project, 1, "third");
        project->GetEdits().Commit();
    }
    std::string damaged = disk.Bytes(kJournal);
    damaged[middle + 45] = static_cast<char>(damaged[middle + 45] ^ 4);
    disk.Put(kJournal, damaged);
    {
        const auto project = disk.Open(Mode::salvage);
        EXPECT_FALSE(project->IsReadOnly());
        EXPECT_EQ(project->GetJournal().scan.later.size(), 1U);
        EXPECT_EQ(project->SaveAndSetJournalAside(), "/d/book.journal.damaged-1");
    }
    EXPECT_EQ(disk.Bytes("/d/book.journal.damaged-1"), damaged);
    EXPECT_FALSE(disk.Has(kJournal));
    const auto project = disk.Open(Mode::write);
    EXPECT_FALSE(project->IsReadOnly());
    EXPECT_EQ(NameOf(*project, 0), "first");
}

TEST(ProjectJournal, FileThatIsNoJournalIsSetAsideBySalvage) {
    Disk disk;
    disk.Put(kJournal, std::string(100, 'x'));
    EXPECT_TRUE(disk.Open(Mode::read)->GetReport().IsDamaged());
    { EXPECT_NE(disk.Open(Mode::salvage)->SaveAndSetJournalAside(), ""); }
    EXPECT_FALSE(disk.Open(Mode::read)->GetReport().IsDamaged());
}

TEST(ProjectJournal, EntryForAnItemThatIsNotThereStopsTheReplay) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "first");
        ofpstream* entry = project->GetBook().GetFileOutTmp(kBook, 3011);
        entry->WriteInt(17);
        project->GetBook().CloseFileOutTmp(entry);
        Rename(*project, 0, "second");
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(NameOf(*project, 0), "first");
    EXPECT_TRUE(project->GetReport().IsDamaged());
    EXPECT_NE(project->GetReport().Text().find("group 17"), std::string::npos) << project->GetReport().Text();
}

TEST(ProjectJournal, SaveUnderAnotherNameTakesTheEditsThere) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "renamed");
        project->GetEdits().Commit();
        project->SaveAs("/d/second", false);
        EXPECT_FALSE(disk.Has(kJournal));
        Rename(*project, 1, "later");
        project->GetEdits().Commit();
        EXPECT_TRUE(disk.Has("/d/second.journal"));
    }
    EXPECT_EQ(NameOf(*disk.Open(Mode::read), 0), "Group 0.0");
    EXPECT_EQ(NameOf(*disk.Open(Mode::read, "/d/second"), 1), "later");
}

TEST(ProjectJournal, JournalOfAReplacedBookIsKept) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "of the replaced");
        project->GetEdits().Commit();
    }
    const std::string journal = disk.Bytes(kJournal);
    {
        Project project(Project::kNewestVersion, disk);
        test::Fill(project, 9);
        project.SaveAs(kBook, true);
    }
    EXPECT_FALSE(disk.Has(kJournal));
    EXPECT_EQ(NameOf(*disk.Open(Mode::read), 0), "Group 9.0");
    EXPECT_EQ(disk.Bytes("/d/book.journal.kept-1"), journal);
    // It belongs to the backup: there it comes back.
    disk.Put("/d/book.bak.journal", journal);
    EXPECT_EQ(NameOf(*disk.Open(Mode::read, "/d/book.bak"), 0), "of the replaced");
}

TEST(ProjectJournal, ProjectWithoutFileNotesNothing) {
    Disk disk;
    Project project(Project::kNewestVersion, disk);
    test::Fill(project, 1);
    Rename(project, 0, "renamed");
    project.GetEdits().Commit();
    EXPECT_EQ(disk.Names(), std::vector<std::string>{kBook});
}

TEST(ProjectJournal, JournalIsNoProject) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "renamed");
        project->GetEdits().Commit();
    }
    std::string message;
    EXPECT_EQ(KindOf([&] { disk.Open(Mode::read, kJournal); }, &message), ProjectError::Kind::damaged);
    EXPECT_NE(message.find("open /d/book"), std::string::npos) << message;
    Project project(Project::kNewestVersion, disk);
    EXPECT_EQ(KindOf([&] { project.SaveAs("/d/new.journal", true); }), ProjectError::Kind::exists);
}

TEST(ProjectJournal, FullDiskIsSaidAndNothingIsCalledStored) {
    Disk disk;
    const auto project = disk.Open(Mode::write);
    Rename(*project, 0, "renamed");
    disk.SetFault([](long, const std::string& what) { return what == "write" ? ENOSPC : 0; });
    std::string message;
    EXPECT_EQ(KindOf([&] { project->GetEdits().Commit(); }, &message), ProjectError::Kind::system);
    EXPECT_NE(message.find("not stored"), std::string::npos) << message;
    disk.SetFault({});
    project->GetEdits().Commit();
    EXPECT_EQ(disk.Open(Mode::read)->GetReplay().edits, 1);
}

// Whatever is edited: what comes back is what was there.
TEST(ProjectJournal, ReplayOfRandomEditsGivesTheSameBook) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        Disk disk;
        test::Content expected;
        short version = 0;
        {
            const auto project = disk.Open(Mode::write);
            for (int i = 0; i < 30; ++i) test::EditSomething(*project, random);
            project->GetEdits().Commit();
            expected = ContentOf(*project);
            version = project->GetStreamVersion();
        }
        const auto project = disk.Open(Mode::read);
        ASSERT_EQ(project->GetReplay().edits, 30) << "seed " << seed << ": " << project->GetReport().Text();
        ASSERT_EQ(ContentOf(*project), expected) << "seed " << seed;
        ASSERT_EQ(project->GetStreamVersion(), version) << "seed " << seed;
    }
}

}  // namespace
