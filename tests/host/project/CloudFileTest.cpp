// A shared book in its file.
#include <gtest/gtest.h>

#include "host/project/ContainerReader.h"
#include "platform/entity/CCloudManager.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::ProjectError;
using test::AcceptAll;
using test::CloudKind;
using test::DeletionOf;
using test::EverythingOf;
using test::GroupReply;
using test::IdOfGroup;
using test::IdOfPoint;
using test::kBook;
using test::kCommit1;
using test::kCommit2;
using test::KindOf;
using test::NamesIn;
using test::PageOf;
using test::PointReply;
using test::Project;
using test::SharedDisk;
using Mode = Project::Mode;

/// Everything at once: a commit under way, changes since, a deletion that waits, conflicts, a kept item.
void FillEverything(Project& project) {
    test::Settle(project);
    test::RenamePoint(project, 0, 0, "A1*");
    project.GetCloud().TakePage(PageOf(3, {PointReply(3, 1, "theirs"), GroupReply(11, "C")}));
    test::RenamePoint(project, 1, 0, "B1*");
    project.GetCloud().TakePage(PageOf(4, {DeletionOf(CloudKind::point, 5)}));
    test::AddPoint(project, 1, "B2");
    ASSERT_TRUE(project.GetCloud().BeginCommit(kCommit2));
    test::RenamePoint(project, 0, 0, "A1**");
    test::AddPoint(project, 1, "B3");
    test::DeletePoint(project, 0, 1);
    ASSERT_EQ(project.GetCloud().GetState().conflicts.size(), 2U);
}

TEST(CloudFile, BookWithoutSharedProjectHasNoSection) {
    test::JournalDisk disk;
    const auto project = disk.Open(Mode::read);
    EXPECT_FALSE(project->GetCloud().IsLinked());
    EXPECT_EQ(disk.Bytes(kBook).find("cloud"), std::string::npos);
}

TEST(CloudFile, EverythingComesBackAfterASave) {
    SharedDisk disk;
    std::string expected;
    {
        const auto project = disk.Open(Mode::write);
        FillEverything(*project);
        project->Save();
        EXPECT_FALSE(disk.Has(test::kJournal));
        expected = EverythingOf(*project);
    }
    EXPECT_NE(disk.Bytes(kBook).find("cloud"), std::string::npos);
    const auto project = disk.Open(Mode::read);
    EXPECT_TRUE(project->GetCloud().IsLinked());
    EXPECT_EQ(EverythingOf(*project), expected);
}

TEST(CloudFile, SaveChangesNothingOfWhatIsUnderWay) {
    SharedDisk disk;
    const auto project = disk.Open(Mode::write);
    FillEverything(*project);
    const std::string before = EverythingOf(*project);
    project->Save();
    EXPECT_EQ(EverythingOf(*project), before);
    // The answer to what was sent before the save.
    ASSERT_TRUE(project->GetCloud().TakeAnswer(AcceptAll(*project, 9, 50), 1));
    EXPECT_EQ(IdOfPoint(*project, 1, 0), 50);
    EXPECT_EQ(IdOfPoint(*project, 1, 1), 0);
    EXPECT_EQ(project->GetBook().GetPunAt(0, 0)->GetCloudFlag(), 1U);
}

TEST(CloudFile, ReadingChangesNothingOnTheDisk) {
    SharedDisk disk;
    {
        const auto project = disk.Open(Mode::write);
        FillEverything(*project);
        project->GetEdits().Commit();
    }
    const std::string file = disk.Bytes(kBook), journal = disk.Bytes(test::kJournal);
    {
        const auto project = disk.Open(Mode::read);
        EXPECT_NE(project->GetCloud().GetCommit(), nullptr);
        EXPECT_EQ(project->GetCloud().GetState().conflicts.size(), 2U);
        EXPECT_EQ(project->GetCloud().GetTables().points.GetDeleted(), std::set<long long>{4});
    }
    EXPECT_EQ(disk.Bytes(kBook), file);
    EXPECT_EQ(disk.Bytes(test::kJournal), journal);
}

TEST(CloudFile, CopyUnderAnotherNameTakesTheSameAnswer) {
    SharedDisk disk;
    {
        const auto project = disk.Open(Mode::write);
        FillEverything(*project);
        project->Save();
        Project::Open(kBook, Mode::read, disk)->SaveAs("/d/copy", false);
    }
    const auto one = disk.Open(Mode::write), copy = disk.Open(Mode::write, "/d/copy");
    EXPECT_EQ(EverythingOf(*one), EverythingOf(*copy));
    const auto answer = AcceptAll(*one, 9, 50);
    ASSERT_TRUE(one->GetCloud().TakeAnswer(answer, 1));
    ASSERT_TRUE(copy->GetCloud().TakeAnswer(answer, 1));
    EXPECT_EQ(EverythingOf(*one), EverythingOf(*copy));
}

TEST(CloudFile, LinkIsInTheFileWithTheNextSave) {
    test::JournalDisk disk;
    {
        const auto project = disk.Open(Mode::write);
        project->GetCloud().Link(test::kLink);
        project->Save();
        ASSERT_TRUE(project->GetCloud().BeginCommit(kCommit1));
        project->GetEdits().Commit();
    }
    const auto project = disk.Open(Mode::read);
    EXPECT_EQ(project->GetCloud().GetState().link, test::kLink);
    EXPECT_EQ(project->GetCloud().GetCommit()->id, kCommit1);
}

// --- versions ----------------------------------------------------------------------------------------------

class CloudVersions : public testing::TestWithParam<short> {};

TEST_P(CloudVersions, IdsBitsAndTicketsAreInEveryVersion) {
    SharedDisk disk(GetParam());
    std::string state, names;
    {
        const auto project = disk.Open(Mode::write);
        EXPECT_EQ(project->GetStreamVersion(), GetParam());
        FillEverything(*project);
        project->Save();
        state = test::CloudBytesOf(*project);
        names = NamesIn(*project);
    }
    const auto project = disk.Open(Mode::write);
    EXPECT_EQ(NamesIn(*project), names);
    EXPECT_EQ(names, "A(A1**) B(B2 B3) Site()");
    EXPECT_EQ(IdOfGroup(*project, 0), 1);
    EXPECT_EQ(IdOfGroup(*project, 2), 11);
    EXPECT_EQ(IdOfPoint(*project, 0, 0), 3);
    EXPECT_EQ(project->GetBook().GetPunAt(0, 0)->GetCloudFlag(), 1U);
    EXPECT_EQ(project->GetCloud().GetTables().points.GetDeleted(), std::set<long long>{4});
    // The answer finds the point that was sent, and not the one that came later; the name was set again.
    ASSERT_TRUE(project->GetCloud().TakeAnswer(AcceptAll(*project, 9, 50), 1));
    EXPECT_EQ(IdOfPoint(*project, 1, 0), 50);
    EXPECT_EQ(IdOfPoint(*project, 1, 1), 0);
    EXPECT_EQ(project->GetBook().GetPunAt(0, 0)->GetCloudFlag(), 1U);
    // The kept point is in the newest version, whatever the book's is.
    EXPECT_EQ(project->GetCloud().GetState().conflicts[1].record.substr(0, 2), "\x78\x05");
}

TEST_P(CloudVersions, CreatorOfAGroupIsThereFrom1311On) {
    SharedDisk disk(GetParam());
    {
        const auto project = disk.Open(Mode::write);
        ASSERT_TRUE(project->GetCloud().BeginCommit(kCommit1));
        ASSERT_TRUE(project->GetCloud().TakeAnswer(AcceptAll(*project, 1, 1), 7));
        project->GetCloud().TakePage(PageOf(2, {GroupReply(11, "C")}));
        project->Save();
    }
    const auto project = disk.Open(Mode::read);
    const int own = CCloudManager::GetInstance()->GetDevId();
    const bool kept = GetParam() >= 1311;
    EXPECT_EQ(project->GetBook().GetGrpAt(0)->GetCloudCreatorDevId(), kept ? 7 : own);
    EXPECT_EQ(project->GetBook().GetGrpAt(2)->GetCloudCreatorDevId(), kept ? 2 : own);
}

INSTANTIATE_TEST_SUITE_P(Streams, CloudVersions, testing::Values(743, 1311, 1400));

// --- damage ------------------------------------------------------------------------------------------------

/// Where a section stands in the file.
gpsproject::SectionEntry EntryOf(test::JournalDisk& disk, std::string_view name) {
    int file = -1;
    EXPECT_EQ(disk.ModelDisk::Open(kBook, FileOperations::How::read, 0, file), 0);
    const auto container =
        gpsproject::ReadContainer(disk, file, static_cast<std::int64_t>(disk.Bytes(kBook).size()), kBook);
    disk.Close(file);
    const auto* section = container.Find(name);
    EXPECT_NE(section, nullptr);
    return section ? section->entry : gpsproject::SectionEntry{};
}

TEST(CloudDamage, DamagedSectionMakesTheBookReadOnlyAndNotShared) {
    SharedDisk disk;
    {
        const auto project = disk.Open(Mode::write);
        FillEverything(*project);
        project->Save();
    }
    disk.Unlink(std::string(kBook) + ".bak");
    const auto entry = EntryOf(disk, gpsproject::kCloudSection);
    const std::string whole = disk.Bytes(kBook);
    for (std::int64_t at = 0; at + 3 < entry.length; at += 5) {
        std::string bytes = whole;
        for (const std::int64_t i : {0, 1, 2}) {
            char& byte = bytes[static_cast<std::size_t>(entry.offset + at + i)];
            byte = static_cast<char>(byte ^ 0x55);
        }
        disk.Put(kBook, bytes);
        const auto project = disk.Open(Mode::write);
        ASSERT_TRUE(project->IsReadOnly()) << at;
        ASSERT_TRUE(project->GetReport().IsDamaged()) << at;
        EXPECT_EQ(project->GetReport().damages[0].section, "cloud") << at;
        EXPECT_EQ(NamesIn(*project), "A(A1**) B(B2 B3) Site()") << at;
        EXPECT_FALSE(project->GetCloud().IsLinked()) << at;
        EXPECT_EQ(KindOf([&] { project->Save(); }), ProjectError::Kind::readOnly);
    }
    EXPECT_EQ(EntryOf(disk, gpsproject::kCloudSection).offset, entry.offset);
}

TEST(CloudDamage, OneWrongBitIsPutRight) {
    SharedDisk disk;
    std::string expected;
    {
        const auto project = disk.Open(Mode::write);
        FillEverything(*project);
        project->Save();
        expected = EverythingOf(*project);
    }
    const auto entry = EntryOf(disk, gpsproject::kCloudSection);
    disk.Damage(kBook, static_cast<std::size_t>(entry.offset + entry.length / 2) * 8 + 3);
    const auto project = disk.Open(Mode::write);
    EXPECT_TRUE(project->GetReport().IsDamaged());
    EXPECT_EQ(EverythingOf(*project), expected);
}

TEST(CloudDamage, LostItemsAreAskedForAgainAndAreNotTakenForDeleted) {
    SharedDisk disk;
    {
        const auto project = disk.Open(Mode::write);
        FillEverything(*project);
        project->Save();
    }
    const auto entry = EntryOf(disk, gpsproject::kGpsSection);
    std::string bytes = disk.Bytes(kBook);
    bytes.replace(static_cast<std::size_t>(entry.offset + entry.length / 2), 500, std::string(500, 'x'));
    disk.Put(kBook, bytes);
    const auto project = disk.Open(Mode::read);
    ASSERT_TRUE(project->GetReport().IsDamaged());
    ASSERT_LT(project->GetReport().groupsRead, 3);
    ASSERT_TRUE(project->GetCloud().IsLinked());
    EXPECT_EQ(project->GetCloud().GetPullRequest().revision, 0);
    EXPECT_EQ(project->GetCloud().GetCommit(), nullptr);
    project->SaveAs("/d/copy", false);
    const auto copy = disk.Open(Mode::read, "/d/copy");
    ASSERT_TRUE(copy->GetCloud().IsLinked());
    copy->GetCloud().TakePage(PageOf(9, {GroupReply(1, "A"), GroupReply(2, "B"), PointReply(3, 1, "A1")}));
    EXPECT_EQ(copy->GetBook().GetGrpArSize(), 2);
    EXPECT_EQ(copy->GetCloud().GetTables().points.GetDeleted(), std::set<long long>{4})
        << "only what was deleted by a person";
}

TEST(CloudDamage, CopyOfABookWithADamagedSectionCanBeLinkedAnew) {
    SharedDisk disk;
    {
        const auto project = disk.Open(Mode::write);
        FillEverything(*project);
        test::DeleteGroup(*project, 2);
        project->Save();
    }
    const auto entry = EntryOf(disk, gpsproject::kCloudSection);
    std::string bytes = disk.Bytes(kBook);
    bytes.replace(static_cast<std::size_t>(entry.offset + entry.length - 20), 8, "damaged!");
    disk.Put(kBook, bytes);
    const auto project = disk.Open(Mode::read);
    project->SaveAs("/d/copy", false);
    EXPECT_FALSE(disk.Open(Mode::read, "/d/copy")->GetReport().IsDamaged());
    EXPECT_FALSE(disk.Open(Mode::read, "/d/copy")->GetCloud().IsLinked());
    project->GetCloud().Link(test::kLink);
    const auto& tables = project->GetCloud().GetTables();
    EXPECT_EQ(tables.base.GetAdded().size(), 2U);
    EXPECT_EQ(tables.points.GetAdded().size(), 3U);
    EXPECT_TRUE(tables.base.GetDeleted().empty()) << "nothing of the former state goes to the project";
    EXPECT_TRUE(tables.points.GetDeleted().empty());
    EXPECT_TRUE(project->GetCloud().BeginCommit(kCommit1));
}

}  // namespace
