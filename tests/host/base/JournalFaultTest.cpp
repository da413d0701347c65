// The writer of a journal on a disk that refuses, and loses its power: what was said to be stored comes back,
// in order, once.
#include <gtest/gtest.h>

#include <cerrno>
#include <random>

#include "tests/Scale.h"
#include "tests/host/base/JournalParts.h"

namespace {

using test::Edit;
using test::kBase;
using test::kBook;
using test::kId;
using test::kJournal;
using test::ModelDisk;
using test::Note;
using AllEdits = std::vector<Edit>;
using Names = std::vector<std::string>;

constexpr const char* kNew = "/d/book.journal.new";

/// A writer, and beside it what must come back.
struct Session {
    explicit Session(ModelDisk& files) : disk(files), journal(files, kJournal, kBook, kId, kBase) {}

    void Add(const std::string& content) {
        EXPECT_TRUE(Note(journal, content));
        made.push_back({content});
    }
    void AddEdit(const Edit& edit) {
        journal.BeginEdit();
        for (const std::string& content : edit) EXPECT_TRUE(Note(journal, content));
        journal.EndEdit();
        made.push_back(edit);
    }
    int Commit() {
        const int error = journal.Commit();
        if (error == 0) stored = made.size();
        return error;
    }
    /// Whether this is what must come back: all that was stored, and of the rest the first ones.
    testing::AssertionResult IsRight(const AllEdits& found) const {
        if (found.size() < stored)
            return testing::AssertionFailure() << found.size() << " of " << stored << " stored edits";
        if (found.size() > made.size() || !std::equal(found.begin(), found.end(), made.begin()))
            return testing::AssertionFailure() << "other edits than were made";
        return testing::AssertionSuccess();
    }

    ModelDisk& disk;
    JournalWriter journal;
    AllEdits made;
    std::size_t stored = 0;
};

// --- one refusal --------------------------------------------------------------------------------------

/// Refuses one kind of operation so many times.
ModelDisk::Fault Refuse(const std::string& operation, int times) {
    return [operation, times](long, const std::string& what) mutable {
        return what == operation && times-- > 0 ? EIO : 0;
    };
}

class JournalRefusal : public testing::TestWithParam<const char*> {};

TEST_P(JournalRefusal, OfTheFirstFileIsMadeGoodByAnotherFile) {
    ModelDisk disk;
    Session session(disk);
    session.Add("a");
    session.AddEdit({"b", "c"});
    disk.SetFault(Refuse(GetParam(), 1));
    EXPECT_EQ(session.Commit(), 0);
    EXPECT_EQ(test::Edits(disk), session.made);
    EXPECT_EQ(disk.Names(), Names{kJournal});
    session.Add("d");
    EXPECT_EQ(session.Commit(), 0);
    EXPECT_EQ(test::Edits(disk), session.made);
    EXPECT_EQ(test::Scanned(disk).end, JournalScan::End::clean);
    EXPECT_EQ(disk.GetOpenFiles(), 1);
}

TEST_P(JournalRefusal, OfALaterCommitMovesEverythingToAnotherFile) {
    ModelDisk disk;
    Session session(disk);
    session.Add("a");
    ASSERT_EQ(session.Commit(), 0);
    FileOperations::Facts before, after;
    disk.GetFacts(kJournal, before);
    session.AddEdit({"b", "c"});
    disk.SetFault(Refuse(GetParam(), 1));
    const std::string operation = GetParam();
    const bool asked = operation == "write" || operation == "sync" || operation == "facts";
    EXPECT_EQ(session.Commit(), 0);
    disk.SetFault({});
    disk.GetFacts(kJournal, after);
    EXPECT_EQ(after.inode != before.inode, asked) << "never again on the same file";
    EXPECT_EQ(test::Edits(disk), session.made);
    EXPECT_EQ(test::Scanned(disk).end, JournalScan::End::clean);
    EXPECT_EQ(session.journal.GetSize(), static_cast<std::int64_t>(disk.Bytes(kJournal).size()));
    EXPECT_EQ(disk.Names(), Names{kJournal});
    EXPECT_EQ(disk.GetOpenFiles(), 1);
}

INSTANTIATE_TEST_SUITE_P(Operations, JournalRefusal,
                         testing::Values("open", "write", "sync", "sync folder", "rights", "facts"),
                         [](const auto& name) {
                             std::string text = name.param;
                             std::erase(text, ' ');
                             return text;
                         });

TEST(JournalFault, EntriesWaitInTheirOrderWhileTheDiskRefuses) {
    ModelDisk disk;
    Session session(disk);
    session.Add("a");
    ASSERT_EQ(session.Commit(), 0);
    const std::string before = disk.Bytes(kJournal);
    disk.SetFault([](long, const std::string& what) { return what == "sync" ? ENOSPC : 0; });
    for (const char* content : {"b", "c", "d"}) {
        session.Add(content);
        EXPECT_EQ(session.Commit(), ENOSPC);
        EXPECT_EQ(session.journal.GetDurableSequence(), 1u);
        EXPECT_EQ(disk.Bytes(kJournal).substr(0, before.size()), before);
        EXPECT_EQ(disk.Names(), Names{kJournal});
        EXPECT_EQ(disk.GetOpenFiles(), 0);
    }
    disk.SetFault({});
    EXPECT_EQ(session.Commit(), 0);
    EXPECT_EQ(session.journal.GetDurableSequence(), 4u);
    EXPECT_EQ(test::Edits(disk), session.made);
}

TEST(JournalFault, LeftoverOfAnEarlierAttemptIsReplaced) {
    ModelDisk disk;
    Session session(disk);
    session.Add("a");
    ASSERT_EQ(session.Commit(), 0);
    disk.Put(kNew, "left over");
    session.Add("b");
    disk.SetFault(Refuse("sync", 1));
    EXPECT_EQ(session.Commit(), 0);
    EXPECT_EQ(disk.Names(), Names{kJournal});
    EXPECT_EQ(test::Edits(disk), session.made);
}

TEST(JournalFault, RemoveTakesTheLeftoverOfAFailedAttemptToo) {
    ModelDisk disk;
    Session session(disk);
    session.Add("a");
    ASSERT_EQ(session.Commit(), 0);
    session.Add("b");
    disk.SetFault([](long, const std::string& what) { return what == "sync" || what == "unlink" ? EIO : 0; });
    EXPECT_EQ(session.Commit(), EIO);
    disk.SetFault([](long, const std::string& what) { return what == "rename" || what == "sync" ? EIO : 0; });
    EXPECT_EQ(session.Commit(), EIO);
    disk.SetFault({});
    EXPECT_EQ(session.journal.Remove(), 0);
    EXPECT_TRUE(disk.Names().empty());
}

// What was stored is not there any more: the file is evidence, and is not replaced by one without it.
TEST(JournalFault, StoredFramesThatAreDamagedMeanwhileAreNotPaperedOver) {
    ModelDisk disk;
    Session session(disk);
    session.Add("a");
    session.Add("b");
    ASSERT_EQ(session.Commit(), 0);
    disk.Damage(kJournal, 8 * 80);
    const std::string damaged = disk.Bytes(kJournal);
    session.Add("c");
    ASSERT_EQ(session.Commit(), 0) << "nobody reads what was written";
    session.Add("d");
    disk.SetFault(Refuse("sync", 1));
    EXPECT_EQ(session.Commit(), EIO);
    EXPECT_TRUE(session.journal.HasFailed());
    EXPECT_EQ(disk.Bytes(kJournal).substr(0, damaged.size()), damaged);
    EXPECT_EQ(disk.Names(), Names{kJournal});
    EXPECT_FALSE(session.journal.Open(kBook, 3001));
    disk.SetFault({});
    EXPECT_EQ(session.journal.Commit(), EIO);
    EXPECT_EQ(session.journal.GetDurableSequence(), 3u);
    // The project has been saved meanwhile.
    EXPECT_EQ(session.journal.Remove(), 0);
    EXPECT_FALSE(session.journal.HasFailed());
    EXPECT_TRUE(Note(session.journal, "e"));
    EXPECT_EQ(session.journal.Commit(), 0);
    EXPECT_EQ(test::Edits(disk), (AllEdits{{"e"}}));
}

TEST(JournalFault, StoredFileThatIsGoneOrCutIsNotPaperedOver) {
    for (const bool gone : {true, false}) {
        ModelDisk disk;
        Session session(disk);
        session.Add("a");
        ASSERT_EQ(session.Commit(), 0);
        disk.Unlink(kJournal);
        if (!gone) disk.Put(kJournal, JournalHeaderBytes({kId, kBase, 1}));
        session.Add("b");
        disk.SetFault(Refuse("write", 1));
        EXPECT_NE(session.Commit(), 0);
        EXPECT_TRUE(session.journal.HasFailed());
        EXPECT_EQ(disk.Has(kJournal), !gone);
    }
}

// --- every refusal ------------------------------------------------------------------------------------

/// Edits of all kinds with commits in between, of which some may fail.
void Work(Session& session) {
    session.Add("1");
    session.Commit();
    session.AddEdit({"2", "3"});
    session.Add("4");
    session.Commit();
    session.journal.BeginEdit();
    Note(session.journal, "given up");
    session.journal.DropEdit();
    session.Add("5");
    session.Commit();
    session.Add("6");
    session.Commit();
}

TEST(JournalFault, EachRefusalAloneCostsNothing) {
    long operations = 0;
    for (long at = 0; at == 0 || at < operations; ++at) {
        ModelDisk disk;
        Session session(disk);
        disk.SetFault([at](long n, const std::string&) { return n == at ? EIO : 0; });
        Work(session);
        disk.SetFault({});
        EXPECT_EQ(session.Commit(), 0) << at;
        EXPECT_EQ(session.stored, 5u) << at;
        EXPECT_EQ(test::Edits(disk), session.made) << at;
        EXPECT_EQ(test::Scanned(disk).end, JournalScan::End::clean) << at;
        EXPECT_EQ(disk.Names(), Names{kJournal}) << at;
        operations = std::max(operations, disk.GetOperations());
    }
    EXPECT_GT(operations, 12);
}

TEST(JournalFault, EachPairOfRefusalsKeepsWhatWasStored) {
    for (long first = 0; first < 20; ++first) {
        for (long second = first + 1; second < 45; ++second) {
            ModelDisk disk;
            Session session(disk);
            disk.SetFault([=](long n, const std::string&) { return n == first || n == second ? EIO : 0; });
            Work(session);
            disk.SetFault({});
            if (disk.Has(kJournal)) {
                EXPECT_TRUE(session.IsRight(test::Edits(disk))) << first << ", " << second;
            } else {
                EXPECT_EQ(session.stored, 0u) << first << ", " << second;
            }
            EXPECT_EQ(session.Commit(), 0) << first << ", " << second;
            EXPECT_EQ(test::Edits(disk), session.made) << first << ", " << second;
            EXPECT_EQ(disk.Names(), Names{kJournal}) << first << ", " << second;
        }
    }
}

// --- loss of power ------------------------------------------------------------------------------------

/// Some edits and commits, in any order; `size` makes contents of it.
template <class Size>
void RandomWork(Session& session, std::mt19937& random, Size size) {
    int number = 0;
    const auto content = [&] { return std::to_string(++number) + std::string(size(), '.'); };
    for (auto step = 2 + random() % 12; step > 0; --step) {
        switch (random() % 8) {
            case 0:
            case 1:
            case 2:
                session.Add(content());
                break;
            case 3: {
                Edit edit;
                for (auto n = 1 + random() % 4; n > 0; --n) edit.push_back(content());
                session.AddEdit(edit);
                break;
            }
            case 4:
                session.journal.BeginEdit();
                for (auto n = random() % 5; n > 0; --n) Note(session.journal, content());
                session.journal.DropEdit();
                break;
            default:
                session.Commit();
        }
    }
}

/// What is found after the loss, and that it can be told from damage.
void ExpectRight(const Session& session, ModelDisk& after, long number) {
    if (!after.Has(kJournal)) {
        ASSERT_EQ(session.stored, 0u) << "case " << number;
        return;
    }
    const JournalScan scan = test::Scanned(after);
    ASSERT_NE(scan.end, JournalScan::End::damaged) << "case " << number << ": " << scan.what;
    ASSERT_TRUE(session.IsRight(test::Edits(after))) << "case " << number;
}

void LosePower(long cases, unsigned seed, bool refusals,
               const std::function<std::size_t(std::mt19937&)>& size) {
    std::mt19937 random(seed);
    long cut = 0, whole = 0, more = 0;
    for (long i = 0; i < cases && !testing::Test::HasFailure(); ++i) {
        std::mt19937 faults(random());
        ModelDisk disk;
        Session session(disk);
        const long at = static_cast<long>(random() % 60);
        disk.SetFault([&, at](long n, const std::string&) {
            return n >= at || (refusals && faults() % 12 == 0) ? EIO : 0;
        });
        RandomWork(session, random, [&] { return size(random); });
        const auto after = disk.AfterPowerLoss(random);
        ExpectRight(session, *after, i);
        if (testing::Test::HasFailure()) return;
        const std::size_t found = after->Has(kJournal) ? test::Edits(*after).size() : 0;
        (found > session.stored ? more : session.stored == session.made.size() ? whole : cut) += 1;
    }
    EXPECT_GT(cut, cases / 100);
    EXPECT_GT(whole, cases / 100);
    EXPECT_GT(more, cases / 100);
    testing::Test::RecordProperty("cases", std::to_string(cases));
}

std::size_t Short(std::mt19937& random) { return random() % 40; }

TEST(JournalPowerLoss, KeepsWhatWasStored) { LosePower(Scaled(100'000), 11, false, Short); }

TEST(JournalPowerLoss, KeepsWhatWasStoredOnADiskThatRefusesNowAndThen) {
    LosePower(Scaled(100'000), 12, true, Short);
}

// Edits that go to the disk before their end.
TEST(JournalPowerLoss, KeepsLongEditsWholeOrNotAtAll) {
    LosePower(Scaled(600), 13, true,
              [](std::mt19937& random) { return random() % 3 == 0 ? random() % 900'000 : random() % 40; });
}

// After a save: the former journal is removed, and the next one made, with power lost in between.
TEST(JournalPowerLoss, LeavesTheFormerJournalOrTheNextOne) {
    std::mt19937 random(14);
    const long cases = Scaled(20'000);
    long former = 0, next = 0, none = 0;
    for (long i = 0; i < cases && !HasFailure(); ++i) {
        std::mt19937 faults(random());
        ModelDisk disk;
        JournalWriter journal(disk, kJournal, kBook, kId, kBase);
        Note(journal, "former");
        ASSERT_EQ(journal.Commit(), 0);
        const long at = disk.GetOperations() + static_cast<long>(random() % 14);
        disk.SetFault([&, at](long n, const std::string&) { return n >= at || faults() % 8 == 0 ? EIO : 0; });
        journal.Remove();
        ASSERT_TRUE(journal.SetBase(8, 9));
        Note(journal, "next");
        const bool stored = journal.Commit() == 0;
        const auto after = disk.AfterPowerLoss(random);
        if (!after->Has(kJournal)) {
            ASSERT_FALSE(stored) << i;
            ++none;
            continue;
        }
        const JournalScan scan = test::Scanned(*after);
        const AllEdits found = test::Edits(*after);
        ASSERT_NE(scan.end, JournalScan::End::damaged) << i;
        if (scan.header == JournalHeader{kId, kBase, 1}) {
            ASSERT_EQ(found, (AllEdits{{"former"}})) << i;
            ASSERT_FALSE(stored) << i;
            ++former;
        } else if (!found.empty()) {
            ASSERT_EQ(scan.header, (JournalHeader{8, 9, 2})) << i;
            ASSERT_EQ(found, (AllEdits{{"next"}})) << i;
            ++next;
        } else {
            ASSERT_FALSE(stored) << i;
            ++none;
        }
    }
    EXPECT_GT(former, cases / 100);
    EXPECT_GT(next, cases / 100);
    EXPECT_GT(none, cases / 100);
}

}  // namespace
