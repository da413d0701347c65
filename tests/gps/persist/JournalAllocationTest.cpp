// Running out of memory in the middle of a journal entry: there is no half of it, and the next one is noted.
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/Heap.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/RecordingJournal.h"

namespace {

using test::FailingHeap;
using test::LooseBook;
using test::RecordingJournal;

class JournalAllocation : public ::testing::Test {
protected:
    JournalAllocation() {
        test::Fill(book.lib, {1});
        const std::string longText(20'000, 'x');  // the entry has to grow while it is written
        book.lib.GetGrpAt(0)->SetNomeGrp(longText);
        book.lib.GetPunAt(0, 0)->SetNome(longText);
        book.lib.SetNomeFile("book");
        book.lib.SetTmpJournal(&journal);
    }
    ~JournalAllocation() override { book.lib.SetTmpJournal(nullptr); }

    /// Notes with every allocation failing in turn; returns how many have failed.
    template <class Note>
    int FailEach(Note note) {
        for (int n = 0;; ++n) {
            journal.entries.clear();
            bool failed = false;
            {
                const FailingHeap heap(n, 1);
                try {
                    note();
                } catch (const std::bad_alloc&) {
                    failed = true;
                }
                if (!failed && !FailingHeap::HasFailed()) return n;
            }
            EXPECT_FALSE(journal.IsOpen()) << n;
            EXPECT_EQ(journal.entries.size(), failed ? 0U : 1U) << n;
        }
    }

    RecordingJournal journal;
    LooseBook book;
};

TEST_F(JournalAllocation, PointIsNotedWholeOrNotAtAll) {
    EXPECT_GT(FailEach([&] { book.lib.SaveTmpPunGps(book.lib.GetPunAt(0, 0)); }), 2);
    EXPECT_EQ(journal.entries.size(), 1U);
    EXPECT_EQ(journal.strangers, 0);
}

TEST_F(JournalAllocation, GroupIsNotedWholeOrNotAtAll) {
    EXPECT_GT(FailEach([&] { book.lib.SaveTmpGrpGps(book.lib.GetGrpAt(0), nullptr); }), 2);
    EXPECT_EQ(journal.entries.size(), 1U);
    EXPECT_EQ(journal.strangers, 0);
}

}  // namespace
