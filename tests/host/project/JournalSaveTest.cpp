// What goes wrong around a save: no stored edit is lost by it, and no journal that is somebody else's.
#include <gtest/gtest.h>

#include <cerrno>
#include <random>

#include "host/project/Project.h"
#include "tests/host/project/JournalDisk.h"
#include "tests/host/project/Samples.h"

namespace {

using gpsproject::Edit;
using gpsproject::JournalTie;
using gpsproject::Project;
using gpsproject::ProjectError;
using test::KindOf;
using Disk = test::JournalDisk;
using test::kBook;
using test::kJournal;
using test::kSameBook;
using test::ModelDisk;
using test::NameOf;
using test::Rename;
using Mode = Project::Mode;

/// The operation is refused once, the next time that it is asked for.
ModelDisk::Fault RefuseOnce(const std::string& operation, int error = EIO) {
    return [operation, error, done = false](long, const std::string& what) mutable {
        if (done || what != operation) return 0;
        done = true;
        return error;
    };
}

// Somebody renamed the book and forgot its journal; a new book gets the old name.
TEST(ProjectJournal, JournalOfARenamedBookSurvivesANewOneOfItsName) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "stored");
        project->GetEdits().Commit();
    }
    const std::string journal = disk.Bytes(kJournal);
    disk.Rename(kBook, "/d/renamed");
    disk.Make(9, kBook);
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "of the new one");
        project->GetEdits().Commit();
        project->Save();
        project->Save();
    }
    EXPECT_EQ(disk.Bytes("/d/book.journal.kept-1"), journal);
    disk.Put("/d/renamed.journal", journal);
    EXPECT_EQ(NameOf(*disk.Open(Mode::read, "/d/renamed"), 0), "stored");
}

TEST(ProjectJournal, JournalOfAnOpenBackupIsLeftAlone) {
    Disk disk;
    disk.Open(Mode::write)->Save();
    const auto backup = disk.Open(Mode::write, "/d/book.bak");
    Rename(*backup, 0, "in the backup");
    backup->GetEdits().Commit();
    disk.Open(Mode::write)->Save();
    EXPECT_TRUE(disk.Has("/d/book.bak.journal"));
}

// One bit of the last commit: whether it was stored nobody can say, but what can be read is kept.
TEST(ProjectJournal, WholeEntriesBehindATornPlaceAreKeptAndTold) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "first");
        Rename(*project, 1, "second");
        project->GetEdits().Commit();
    }
    std::string damaged = disk.Bytes(kJournal);
    damaged[33 + 45] = static_cast<char>(damaged[33 + 45] ^ 4);
    disk.Put(kJournal, damaged);
    const auto told = [](const Project& project) {
        std::string all;
        for (const std::string& note : project.GetNotes()) all += note + "\n";
        return all;
    };
    EXPECT_NE(told(*disk.Open(Mode::read)).find("1 entries behind a torn place"), std::string::npos);
    EXPECT_NE(told(*disk.Open(Mode::write)).find("kept as /d/book.journal.kept-1"), std::string::npos);
    EXPECT_EQ(disk.Bytes("/d/book.journal.kept-1"), damaged);
    EXPECT_FALSE(disk.Has(kJournal));
}

TEST(ProjectJournal, EditsAfterASaveThatTheDiskDoesNotConfirmAreStored) {
    for (const bool edited : {false, true}) {
        for (const char* name : {kBook, kSameBook}) {
            Disk disk;
            {
                const auto project = disk.Open(Mode::write);
                if (edited) {
                    Rename(*project, 0, "before");
                    project->GetEdits().Commit();
                }
                disk.SetFault(RefuseOnce("sync folder"));
                EXPECT_EQ(KindOf([&] { project->SaveAs(name, true); }), ProjectError::Kind::system);
                disk.SetFault({});
                Rename(*project, 1, "after");
                project->GetEdits().Commit();
            }
            const auto project = disk.Open(Mode::write);
            EXPECT_EQ(project->GetReport().Text(), "");
            EXPECT_EQ(NameOf(*project, 1), "after") << name << edited;
            EXPECT_EQ(NameOf(*project, 0), edited ? "before" : "Group 0.0") << name;
        }
    }
}

TEST(ProjectJournal, JournalThatCannotBeRemovedAfterASaveGoesOn) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Rename(*project, 0, "before");
        project->GetEdits().Commit();
        disk.SetFault([](long, const std::string& what) { return what == "unlink" ? EPERM : 0; });
        project->Save();
        disk.SetFault({});
        EXPECT_TRUE(disk.Has(kJournal));
        Rename(*project, 1, "after");
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(project->GetReport().Text(), "");
    EXPECT_EQ(NameOf(*project, 0), "before");
    EXPECT_EQ(NameOf(*project, 1), "after");
    EXPECT_EQ(project->GetReplay().edits, 1);
}

TEST(ProjectJournal, JournalThatSomebodyTookAwayIsNotWrittenAnyMore) {
    Disk disk;
    const auto project = disk.Open(Mode::write);
    Rename(*project, 0, "first");
    project->GetEdits().Commit();
    disk.Unlink(kJournal);
    Rename(*project, 0, "second");
    std::string message;
    EXPECT_EQ(KindOf([&] { project->GetEdits().Commit(); }, &message), ProjectError::Kind::changedOutside);
    EXPECT_NE(message.find("not stored"), std::string::npos) << message;
    EXPECT_EQ(KindOf([&] { Rename(*project, 0, "third"); }), ProjectError::Kind::system);
    project->Save();
    EXPECT_EQ(NameOf(*disk.Open(Mode::read), 0), "third");
    Rename(*project, 0, "fourth");
    project->GetEdits().Commit();
    EXPECT_EQ(NameOf(*disk.Open(Mode::read), 0), "fourth");
}

// A copy holds what could be read; it does not claim the rest of the journal.
TEST(ProjectJournal, CopyOfABookWithADamagedJournalDoesNotClaimAllOfIt) {
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
    disk.Open(Mode::read)->SaveAs("/d/copy", false);
    disk.Put(kBook, disk.Bytes("/d/copy"));
    EXPECT_TRUE(disk.Open(Mode::write)->IsReadOnly());
    EXPECT_EQ(disk.Bytes(kJournal), damaged);
}

TEST(ProjectJournal, ReplacingABookIsNoDamageWhereverItStops) {
    Disk start;
    {
        const auto project = start.Open(Mode::write);
        Rename(*project, 0, "of the replaced");
        project->GetEdits().Commit();
    }
    start.SyncAll();
    std::mt19937 random(3);
    for (long at = 0; at < 120; ++at) {
        const auto disk = start.AfterPowerLoss(random);
        disk->ResetOperations();
        disk->SetFault([at](long n, const std::string&) { return n >= at ? EIO : 0; });
        try {
            Project project(Project::kNewestVersion, *disk);
            test::Fill(project, 9);
            project.SaveAs(kBook, true);
        } catch (const ProjectError&) {  // the program was stopped
        }
        disk->SetFault({});
        const auto found = Project::Open(kBook, Mode::write, *disk);
        EXPECT_EQ(found->GetReport().Text(), "") << at;
        EXPECT_TRUE(NameOf(*found, 0) == "of the replaced" || NameOf(*found, 0) == "Group 9.0") << at;
    }
}

TEST(ProjectJournal, SaveWithinAnEditEndsIt) {
    Disk disk;
    {
        const auto project = disk.Open(Mode::write);
        Edit edit(project->GetEdits());
        project->GetBook().GetGrpAt(0)->SetNomeGrp("saved");
        project->GetEdits().GroupChanged(0);
        project->Save();
        project->GetBook().GetGrpAt(1)->SetNomeGrp("noted");
        project->GetEdits().GroupChanged(1);
        edit.Done();
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(NameOf(*project, 0), "saved");
    EXPECT_EQ(NameOf(*project, 1), "noted");
}

TEST(ProjectJournal, JournalWithoutIdBelongsToNoBook) {
    Disk disk;
    JournalWriter writer(disk, kJournal, kBook, 0, 0);
    ofpstream* entry = writer.Open(kBook, 3011);
    entry->WriteInt(0);
    writer.Close(entry);
    ASSERT_EQ(writer.Commit(), 0);
    EXPECT_EQ(disk.Open(Mode::read)->GetJournal().tie, JournalTie::foreign);
}

TEST(ProjectJournal, SalvageWorksWhereAFileHasOneName) {
    Disk disk;
    disk.SetLinks(false);
    disk.Put(kJournal, std::string(100, 'x'));
    EXPECT_EQ(disk.Open(Mode::salvage)->SaveAndSetJournalAside(), "/d/book.journal.damaged-1");
    EXPECT_EQ(disk.Bytes("/d/book.journal.damaged-1"), std::string(100, 'x'));
}

}  // namespace
