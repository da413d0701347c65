// The writer of a journal on a disk that does what it is told.
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>

#include "platform/base/CLibGen.h"
#include "tests/host/base/JournalParts.h"

namespace {

using namespace std::chrono_literals;
using test::Edit;
using test::kBase;
using test::kBook;
using test::kId;
using test::kJournal;
using test::Note;
using Names = std::vector<std::string>;
using AllEdits = std::vector<Edit>;

class JournalWriterTest : public testing::Test {
protected:
    Names asked;  // of the disk, since Listen
    test::ModelDisk disk;
    JournalWriter::Clock::time_point now{};
    JournalWriter journal{disk, kJournal, kBook, kId, kBase, [this] { return now; }};

    void Listen() {
        disk.SetFault([this](long, const std::string& what) {
            asked.push_back(what);
            return 0;
        });
    }
    JournalScan Scanned() { return test::Scanned(disk); }
    AllEdits Found() { return test::Edits(disk); }
    std::vector<std::uint16_t> Codes() {
        std::vector<std::uint16_t> codes;
        for (const JournalFrame& frame : Scanned().frames) codes.push_back(frame.code);
        return codes;
    }
};

// --- entries -----------------------------------------------------------------------------------------------

TEST_F(JournalWriterTest, NothingIsMadeBeforeAnEntryIsCommitted) {
    EXPECT_EQ(journal.Commit(), 0);
    Note(journal, "a");
    EXPECT_TRUE(disk.Names().empty());
    EXPECT_FALSE(journal.HasFile());
    EXPECT_EQ(journal.GetLastSequence(), 1u);
    EXPECT_EQ(journal.GetDurableSequence(), 0u);
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_EQ(disk.Names(), Names{kJournal});
    EXPECT_TRUE(journal.HasFile());
    EXPECT_EQ(journal.GetDurableSequence(), 1u);
    EXPECT_EQ(journal.GetSize(), static_cast<std::int64_t>(disk.Bytes(kJournal).size()));
    EXPECT_EQ(Found(), (AllEdits{{"a"}}));
}

TEST_F(JournalWriterTest, EntriesComeBackInTheOrderOfTheirEnds) {
    for (int group = 0; group < 5; ++group) {
        for (int i = 0; i < group; ++i)
            Note(journal, std::to_string(group) + "." + std::to_string(i), 3001 + i);
        ASSERT_EQ(journal.Commit(), 0);
    }
    const JournalScan scan = Scanned();
    EXPECT_EQ(scan.header, (JournalHeader{kId, kBase, 1}));
    EXPECT_EQ(scan.end, JournalScan::End::clean);
    EXPECT_EQ(
        Found(),
        (AllEdits{{"1.0"}, {"2.0"}, {"2.1"}, {"3.0"}, {"3.1"}, {"3.2"}, {"4.0"}, {"4.1"}, {"4.2"}, {"4.3"}}));
    EXPECT_EQ(Codes(),
              (std::vector<std::uint16_t>{3001, 3001, 3002, 3001, 3002, 3003, 3001, 3002, 3003, 3004}));
    std::vector<std::uint64_t> durable;
    for (const JournalFrame& frame : scan.frames) durable.push_back(frame.durable);
    EXPECT_EQ(durable, (std::vector<std::uint64_t>{0, 1, 1, 3, 3, 3, 6, 6, 6, 6}));
    EXPECT_EQ(journal.GetDurableSequence(), journal.GetLastSequence());
}

TEST_F(JournalWriterTest, CommitWithoutEntriesAsksNothingOfTheDisk) {
    Note(journal, "a");
    journal.Commit();
    disk.ResetOperations();
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(disk.GetOperations(), 0);
}

// And a look whether the file still has its name: nobody finds it again without.
TEST_F(JournalWriterTest, CommitIsOneWriteAndOneSync) {
    Note(journal, "a");
    journal.Commit();
    Listen();
    for (int i = 0; i < 10; ++i) Note(journal, "b");
    EXPECT_TRUE(asked.empty());
    journal.Commit();
    EXPECT_EQ(asked, (Names{"write", "sync", "facts", "facts"}));
}

TEST_F(JournalWriterTest, FirstCommitIsOneWriteTooAndItsNameIsSynced) {
    Listen();
    Note(journal, "a");
    Note(journal, "b");
    journal.Commit();
    EXPECT_EQ(asked, (Names{"open", "facts", "write", "sync", "sync folder"}));
}

TEST_F(JournalWriterTest, EntryHasTheVersionAndOneIsOpenAtATime) {
    ofpstream* const entry = journal.Open(kBook, 3001);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->GetVersion(), 1400);
    EXPECT_EQ(entry->GetBytes(), test::kVersion1400);
    EXPECT_FALSE(journal.Open(kBook, 3001));
    journal.Close(entry);
    ofpstream* const next = journal.Open(kBook, 3001);
    ASSERT_TRUE(next);
    EXPECT_EQ(next->GetBytes(), test::kVersion1400) << "nothing of the entry before";
    journal.Close(next);
    EXPECT_EQ(journal.GetLastSequence(), 2u);
}

TEST_F(JournalWriterTest, EntryForAnotherFileOrNoneOrAnImpossibleCodeIsNotTaken) {
    EXPECT_FALSE(journal.Open("/d/other", 3001));
    EXPECT_FALSE(journal.Open("", 3001));
    EXPECT_FALSE(journal.Open(nullptr, 3001));
    EXPECT_FALSE(journal.Open(kBook, -1));
    EXPECT_FALSE(journal.Open(kBook, 65536));
    EXPECT_TRUE(journal.Open(kBook, 65535));
}

TEST_F(JournalWriterTest, ClosingWhatIsNotOpenDoesNothing) {
    journal.Close(nullptr);
    ofpstream other(1400);
    journal.Close(&other);
    ofpstream* const entry = journal.Open(kBook, 3001);
    journal.Close(&other);
    journal.Discard(&other);
    journal.Close(entry);
    journal.Close(entry);
    EXPECT_EQ(journal.GetLastSequence(), 1u);
}

TEST_F(JournalWriterTest, EntryGivenUpLeavesNoTrace) {
    ofpstream* entry = journal.Open(kBook, 3001);
    entry->WriteInt(7);
    journal.Discard(entry);
    EXPECT_EQ(journal.GetLastSequence(), 0u);
    Note(journal, "a");
    journal.Commit();
    EXPECT_EQ(Found(), (AllEdits{{"a"}}));
}

TEST_F(JournalWriterTest, LibraryReachesItThroughItsFileName) {
    CLibGen library;
    library.SetTmpJournal(&journal);
    EXPECT_FALSE(library.GetFileOutTmp("", 3011));
    ofpstream* const entry = library.GetFileOutTmp(kBook, 3011);
    ASSERT_TRUE(entry);
    entry->WriteBytes("lib", 3);
    library.CloseFileOutTmp(entry);
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{"lib"}}));
}

TEST_F(JournalWriterTest, JournalGetsTheRightsOfTheProject) {
    disk.Put(kBook, "project");
    int file = -1;
    disk.Open(kBook, FileOperations::How::read, 0, file);
    FileOperations::Facts facts;
    facts.mode = 0640;
    disk.CopyRights(file, facts);
    disk.Close(file);
    Note(journal, "a");
    journal.Commit();
    disk.GetFacts(kJournal, facts);
    EXPECT_EQ(facts.mode, 0640u);
}

TEST_F(JournalWriterTest, JournalWithoutItsProjectIsForItsOwnerAlone) {
    Note(journal, "a");
    journal.Commit();
    FileOperations::Facts facts;
    disk.GetFacts(kJournal, facts);
    EXPECT_EQ(facts.mode, 0600u);
}

TEST_F(JournalWriterTest, JournalOfSomebodyElseIsLeftAlone) {
    disk.Put(kJournal, "all that is left of an earlier session");
    Note(journal, "a");
    EXPECT_EQ(journal.Commit(), EEXIST);
    EXPECT_EQ(journal.Commit(), EEXIST);
    EXPECT_EQ(disk.Bytes(kJournal), "all that is left of an earlier session");
    EXPECT_EQ(journal.GetDurableSequence(), 0u);
    EXPECT_EQ(journal.Remove(), 0);
    EXPECT_TRUE(disk.Has(kJournal)) << "nor removed";
    Note(journal, "b");
    disk.Unlink(kJournal);
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{"b"}}));
}

TEST_F(JournalWriterTest, WriterClosesItsFileAndLeavesIt) {
    {
        JournalWriter other(disk, "/d/other.journal", kBook, 5, 6);
        Note(other, "a");
        other.Commit();
        Note(other, "not committed");
    }
    EXPECT_EQ(disk.GetOpenFiles(), 0);
    EXPECT_EQ(test::Edits(disk, "/d/other.journal"), (AllEdits{{"a"}}));
}

// --- edits -------------------------------------------------------------------------------------------------

TEST_F(JournalWriterTest, EntriesOfAnEditBelongTogether) {
    Note(journal, "before");
    journal.BeginEdit();
    for (const char* content : {"1", "2", "3"}) Note(journal, content);
    journal.EndEdit();
    Note(journal, "behind");
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{"before"}, {"1", "2", "3"}, {"behind"}}));
}

TEST_F(JournalWriterTest, EditOfOneEntryOrNoneIsNothingSpecial) {
    journal.BeginEdit();
    journal.EndEdit();
    EXPECT_EQ(journal.GetLastSequence(), 0u);
    EXPECT_FALSE(journal.TimeToDue());
    journal.BeginEdit();
    Note(journal, "alone");
    journal.EndEdit();
    journal.Commit();
    ASSERT_EQ(Scanned().frames.size(), 1u);
    EXPECT_FALSE(Scanned().frames[0].more);
    journal.EndEdit();
    journal.DropEdit();
    Note(journal, "next");
    journal.Commit();
    EXPECT_EQ(Found(), (AllEdits{{"alone"}, {"next"}})) << "an end without a beginning is none";
}

TEST_F(JournalWriterTest, EditWithinAnEditIsAPartOfIt) {
    journal.BeginEdit();
    Note(journal, "1");
    journal.BeginEdit();
    Note(journal, "2");
    journal.EndEdit();
    EXPECT_TRUE(journal.IsInEdit());
    Note(journal, "3");
    journal.EndEdit();
    EXPECT_FALSE(journal.IsInEdit());
    journal.Commit();
    EXPECT_EQ(Found(), (AllEdits{{"1", "2", "3"}}));
}

TEST_F(JournalWriterTest, UnfinishedEditIsNotCommitted) {
    Note(journal, "before");
    journal.BeginEdit();
    Note(journal, "1");
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(journal.GetDurableSequence(), 1u);
    EXPECT_EQ(journal.GetLastSequence(), 2u);
    Note(journal, "2");
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{"before"}}));
    journal.EndEdit();
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(journal.GetDurableSequence(), 3u);
    EXPECT_EQ(Found(), (AllEdits{{"before"}, {"1", "2"}}));
}

TEST_F(JournalWriterTest, EditGivenUpLeavesNoTrace) {
    Note(journal, "before");
    journal.BeginEdit();
    Note(journal, "1");
    Note(journal, "2");
    ASSERT_TRUE(journal.Open(kBook, 3001));
    journal.DropEdit();
    EXPECT_EQ(journal.GetLastSequence(), 1u);
    Note(journal, "behind");
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{"before"}, {"behind"}}));
    EXPECT_EQ(Scanned().frames.size(), 2u);
}

TEST_F(JournalWriterTest, InnerEditGivenUpTakesTheOuterOneWithIt) {
    journal.BeginEdit();
    Note(journal, "1");
    journal.BeginEdit();
    Note(journal, "2");
    journal.DropEdit();
    EXPECT_TRUE(journal.IsInEdit());
    Note(journal, "3");
    journal.EndEdit();
    Note(journal, "behind");
    journal.BeginEdit();
    Note(journal, "of another edit");
    journal.EndEdit();
    journal.Commit();
    EXPECT_EQ(Found(), (AllEdits{{"behind"}, {"of another edit"}}));
}

const std::string kBig(400'000, 'b');

TEST_F(JournalWriterTest, LongEditGoesToTheDiskBeforeItsEndAndComesBackAsAWhole) {
    Note(journal, "before");
    journal.BeginEdit();
    Edit edit;
    std::size_t largest = 0;
    for (int i = 0; i < 20; ++i) {
        edit.push_back(std::to_string(i) + kBig);
        Note(journal, edit.back());
        const std::size_t onDisk = disk.Has(kJournal) ? disk.Bytes(kJournal).size() : 0;
        largest = std::max(largest, static_cast<std::size_t>(i + 1) * kBig.size() - onDisk);
    }
    EXPECT_LT(largest, JournalWriter::kMostWaiting + 2 * kBig.size());
    EXPECT_EQ(Found(), (AllEdits{{"before"}})) << "it has no end yet";
    EXPECT_GT(Scanned().frames.size(), 10u);
    journal.EndEdit();
    Note(journal, "behind");
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{"before"}, edit, {"behind"}}));
    EXPECT_EQ(journal.GetDurableSequence(), journal.GetLastSequence());
    EXPECT_EQ(Scanned().end, JournalScan::End::clean);
}

TEST_F(JournalWriterTest, LongEditGivenUpIsTakenBack) {
    Note(journal, "before");
    journal.BeginEdit();
    for (int i = 0; i < 8; ++i) Note(journal, kBig);
    journal.DropEdit();
    Note(journal, "behind");
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{"before"}, {"behind"}}));
    const std::vector<std::uint16_t> codes = Codes();
    EXPECT_EQ(std::count(codes.begin(), codes.end(), kEditGivenUp), 1);
    const JournalScan scan = Scanned();
    EXPECT_EQ(scan.end, JournalScan::End::clean);
    EXPECT_EQ(scan.frames.back().sequence, journal.GetDurableSequence());
}

TEST_F(JournalWriterTest, OneLargeEntryOfAnEditWaitsForTheNext) {
    journal.BeginEdit();
    const std::string large(3 * JournalWriter::kMostWaiting, 'l');
    Note(journal, large);
    EXPECT_FALSE(journal.HasFile());
    Note(journal, "next");
    EXPECT_TRUE(journal.HasFile());
    journal.DropEdit();
    journal.Commit();
    EXPECT_EQ(Found(), AllEdits{});
    EXPECT_EQ(Codes(), (std::vector<std::uint16_t>{3001, kEditGivenUp}));
}

TEST_F(JournalWriterTest, DiskThatRefusesALongEditIsNotAskedAtEveryEntry) {
    disk.SetFault([](long, const std::string&) { return ENOSPC; });
    journal.BeginEdit();
    for (int i = 0; i < 3; ++i) Note(journal, kBig);
    const long operations = disk.GetOperations();
    EXPECT_GT(operations, 0);
    Note(journal, "small");
    EXPECT_EQ(disk.GetOperations(), operations);
    for (int i = 0; i < 3; ++i) Note(journal, kBig);
    EXPECT_GT(disk.GetOperations(), operations);
    journal.EndEdit();
    EXPECT_EQ(journal.Commit(), ENOSPC);
    disk.SetFault({});
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found(), (AllEdits{{kBig, kBig, kBig, "small", kBig, kBig, kBig}}));
}

// --- group commit ------------------------------------------------------------------------------------------

TEST_F(JournalWriterTest, CommitIsDueAWindowAfterTheOldestEntry) {
    EXPECT_EQ(JournalWriter::kWindow, 50ms);
    EXPECT_FALSE(journal.IsDue());
    EXPECT_FALSE(journal.TimeToDue());
    Note(journal, "a");
    EXPECT_EQ(journal.TimeToDue(), 50ms);
    now += 49ms;
    Note(journal, "b");
    EXPECT_EQ(journal.TimeToDue(), 1ms);
    EXPECT_FALSE(journal.IsDue());
    now += 1ms;
    EXPECT_TRUE(journal.IsDue());
    now += 10s;
    EXPECT_EQ(journal.TimeToDue(), 0ms);
    ASSERT_EQ(journal.Commit(), 0);
    EXPECT_FALSE(journal.IsDue());
    EXPECT_FALSE(journal.TimeToDue());
    Note(journal, "c");
    EXPECT_EQ(journal.TimeToDue(), 50ms);
}

TEST_F(JournalWriterTest, CommitIsDueWhenEnoughEntriesWait) {
    EXPECT_EQ(JournalWriter::kMostEntries, 64u);
    for (int i = 0; i < 63; ++i) Note(journal, "a");
    EXPECT_FALSE(journal.IsDue());
    Note(journal, "a");
    EXPECT_TRUE(journal.IsDue());
    EXPECT_EQ(journal.TimeToDue(), 0ms);
    journal.Commit();
    EXPECT_FALSE(journal.IsDue());
}

TEST_F(JournalWriterTest, EntriesOfAnEditWaitFromItsEndOn) {
    journal.BeginEdit();
    for (int i = 0; i < 64; ++i) Note(journal, "a");
    now += 1s;
    EXPECT_FALSE(journal.IsDue());
    EXPECT_FALSE(journal.TimeToDue());
    journal.EndEdit();
    EXPECT_TRUE(journal.IsDue());
    journal.Commit();
    journal.BeginEdit();
    Note(journal, "a");
    now += 1s;
    journal.EndEdit();
    EXPECT_EQ(journal.TimeToDue(), 50ms);
}

TEST_F(JournalWriterTest, CommitThatFailedIsDueAgainAWindowLater) {
    for (int i = 0; i < 64; ++i) Note(journal, "a");
    disk.SetFault([](long, const std::string&) { return ENOSPC; });
    EXPECT_EQ(journal.Commit(), ENOSPC);
    EXPECT_FALSE(journal.IsDue());
    EXPECT_EQ(journal.TimeToDue(), 50ms);
    Note(journal, "a");
    EXPECT_FALSE(journal.IsDue());
    now += 50ms;
    EXPECT_TRUE(journal.IsDue());
    disk.SetFault({});
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Found().size(), 65u);
    Note(journal, "a");
    EXPECT_EQ(journal.TimeToDue(), 50ms);
}

// --- after a save ------------------------------------------------------------------------------------------

TEST_F(JournalWriterTest, RemoveEndsTheFileAndTheNextOneGoesOnCounting) {
    EXPECT_EQ(journal.Remove(), 0) << "there is none";
    Note(journal, "a");
    Note(journal, "b");
    journal.Commit();
    EXPECT_FALSE(journal.SetBase(8, 9));
    Note(journal, "not committed");
    EXPECT_EQ(journal.Remove(), 0);
    EXPECT_TRUE(disk.Names().empty());
    EXPECT_EQ(disk.GetOpenFiles(), 0);
    EXPECT_FALSE(journal.HasFile());
    EXPECT_EQ(journal.GetSize(), 0);
    EXPECT_FALSE(journal.TimeToDue());
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_TRUE(disk.Names().empty());
    EXPECT_TRUE(journal.SetBase(8, 9));
    Note(journal, "c");
    EXPECT_FALSE(journal.SetBase(10, 11));
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(Scanned().header, (JournalHeader{8, 9, 4}));
    EXPECT_EQ(Scanned().end, JournalScan::End::clean);
    EXPECT_EQ(Found(), (AllEdits{{"c"}}));
}

TEST_F(JournalWriterTest, FileThatIsGoneAlreadyIsRemoved) {
    Note(journal, "a");
    journal.Commit();
    disk.Unlink(kJournal);
    EXPECT_EQ(journal.Remove(), 0);
    EXPECT_FALSE(journal.HasFile());
}

TEST_F(JournalWriterTest, FileThatCannotBeRemovedIsReplacedByTheNext) {
    Note(journal, "old");
    journal.Commit();
    disk.SetFault([](long, const std::string& what) { return what == "unlink" ? EACCES : 0; });
    EXPECT_EQ(journal.Remove(), EACCES);
    EXPECT_TRUE(journal.HasFile());
    disk.SetFault({});
    journal.SetBase(8, 9);
    Note(journal, "new");
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(disk.Names(), Names{kJournal});
    EXPECT_EQ(Scanned().header, (JournalHeader{8, 9, 2}));
    EXPECT_EQ(Found(), (AllEdits{{"new"}}));
    EXPECT_EQ(journal.Remove(), 0);
    EXPECT_TRUE(disk.Names().empty());
}

}  // namespace
