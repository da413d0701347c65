// No memory: nothing that was closed is lost, nothing that was not is stored.
#include <gtest/gtest.h>

#include <cerrno>
#include <new>

#include "tests/Heap.h"
#include "tests/host/base/JournalParts.h"

namespace {

using test::Edit;
using test::FailingHeap;
using test::kBase;
using test::kBook;
using test::kId;
using test::kJournal;
using AllEdits = std::vector<Edit>;

const std::string kLong(9000, 'l');

class JournalHeap : public testing::TestWithParam<long> {};

// Whichever allocation fails, for once or from there on.
TEST_P(JournalHeap, LosesNothingThatWasClosed) {
    for (long n = 0;; ++n) {
        test::ModelDisk disk;
        JournalWriter journal(disk, kJournal, kBook, kId, kBase);
        ASSERT_TRUE(test::Note(journal, "stored"));
        ASSERT_EQ(journal.Commit(), 0);
        std::string taken;  // short: it needs no heap
        bool failed = false;
        {
            const FailingHeap heap(n, GetParam());
            for (const char* content : {"a", "b", "c"}) {
                ofpstream* entry = nullptr;
                try {
                    entry = journal.Open(kBook, 3001);
                    ASSERT_TRUE(entry) << n;
                    entry->WriteBytes(content, 1);
                    if (*content == 'b') entry->WriteBytes(kLong.data(), kLong.size());
                    journal.Close(entry);
                    taken += content;
                } catch (const std::bad_alloc&) {
                    if (entry) journal.Discard(entry);
                }
            }
            failed = FailingHeap::HasFailed();
        }
        ASSERT_EQ(journal.Commit(), 0) << n;
        AllEdits expected{{"stored"}};
        for (const char content : taken)
            expected.push_back({content == 'b' ? content + kLong : Edit::value_type(1, content)});
        ASSERT_EQ(test::Edits(disk), expected) << n;
        if (!failed) {
            EXPECT_GT(n, 1);
            EXPECT_EQ(taken.size(), 3u);
            break;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Times, JournalHeap, testing::Values(1L, LONG_MAX),
                         [](const auto& times) { return times.param == 1 ? "Once" : "FromThereOn"; });

TEST(JournalOutOfMemory, EntryIsStillOpenAndCanBeClosedAgain) {
    test::ModelDisk disk;
    JournalWriter journal(disk, kJournal, kBook, kId, kBase);
    ofpstream* const entry = journal.Open(kBook, 3001);
    entry->WriteBytes(kLong.data(), kLong.size());
    {
        const FailingHeap heap(0);
        EXPECT_THROW(journal.Close(entry), std::bad_alloc);
    }
    EXPECT_EQ(journal.GetLastSequence(), 0u);
    EXPECT_FALSE(journal.Open(kBook, 3001)) << "it is still open";
    journal.Close(entry);
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_EQ(test::Edits(disk), (AllEdits{{kLong}}));
}

TEST(JournalOutOfMemory, GivingALongEditUpNeedsNone) {
    test::ModelDisk disk;
    JournalWriter journal(disk, kJournal, kBook, kId, kBase);
    journal.BeginEdit();
    const std::string big(600'000, 'b');
    for (int i = 0; i < 4; ++i) test::Note(journal, big);
    ASSERT_TRUE(journal.HasFile());
    {
        const FailingHeap heap(0);
        journal.DropEdit();
        EXPECT_FALSE(FailingHeap::HasFailed());
    }
    EXPECT_EQ(journal.Commit(), 0);
    EXPECT_TRUE(test::Edits(disk).empty());
    EXPECT_EQ(test::Scanned(disk).frames.back().code, kEditGivenUp);
}

// A file that cannot be replaced for want of memory is as good as one that the disk refused.
TEST(JournalOutOfMemory, CommitThatFindsNoneLeavesTheEntriesWaiting) {
    for (long n = 0;; ++n) {
        bool refuse = true;
        test::ModelDisk disk;
        JournalWriter journal(disk, kJournal, kBook, kId, kBase);
        test::Note(journal, "a");
        ASSERT_EQ(journal.Commit(), 0);
        test::Note(journal, "b");
        disk.SetFault([&](long, const std::string& what) {
            if (what != "sync" || !refuse) return 0;
            refuse = false;
            return EIO;
        });
        int error = 0;
        bool failed = false;
        try {
            const FailingHeap heap(n);
            error = journal.Commit();
            failed = FailingHeap::HasFailed();
        } catch (const std::bad_alloc&) {  // the disk of this test has none either
            error = ENOMEM;
            failed = true;
        }
        if (error != 0) {
            ASSERT_EQ(journal.GetDurableSequence(), 1u) << n;
            ASSERT_EQ(test::Edits(disk).at(0), Edit{"a"}) << n;
            ASSERT_EQ(journal.Commit(), 0) << n;
        }
        ASSERT_EQ(test::Edits(disk), (AllEdits{{"a"}, {"b"}})) << n;
        if (!failed) {
            EXPECT_EQ(error, 0);
            EXPECT_GT(n, 5);
            break;
        }
    }
}

}  // namespace
