// Running out of memory while another book comes in: whatever allocation fails, what is there is whole.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <new>
#include <set>
#include <string>

#include "platform/cad/COrkaEng.h"
#include "tests/Heap.h"
#include "tests/gps/cloud/CloudBook.h"

namespace {

using test::CloudBook;
using test::FailingHeap;

constexpr long long kHere = 501, kThere = 502;

/// Groups and points stand where they are looked for, each point in its own group, and each is either added
/// or known by its id.
void ExpectWhole(CloudBook& book) {
    std::size_t groups = 0, points = 0;
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        int at = -1, in = -1;
        CGrpGps& group = *book.lib.GetGrpAt(g);
        EXPECT_TRUE(book.lib.GetIndiciDiGrp(&group, at));
        EXPECT_EQ(at, g);
        EXPECT_EQ(group.GetTable(), &book.bases);
        ++groups;
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p, ++points) {
            const CPunGps& point = *book.lib.GetPunAt(g, p);
            EXPECT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(g, p), in, at));
            EXPECT_EQ(in, g);
            EXPECT_EQ(at, p);
            EXPECT_EQ(point.GetNome(), "a point of the group with " + group.GetNome());
        }
    }
    EXPECT_EQ(book.bases.GetAdded().size() + book.bases.GetById().size(),
              groups + book.bases.GetDeleted().size());
    EXPECT_EQ(book.points.GetAdded().size() + book.points.GetById().size(),
              points + book.points.GetDeleted().size());
}

struct Source : CloudBook {
    Source() : CloudBook(kThere) {
        for (int g = 0; g < 2; ++g) {
            const std::string name = "a name that no string holds by itself, " + std::to_string(g);
            const std::string pointName = "a point of the group with " + name;
            AddGroup(10 + g, name)->SetNote("a note that no string holds by itself");
            lib.GetGrpAt(g)->InsInPunSetNor(AddPoint(g, 100 + 2 * g, pointName));
            lib.GetGrpAt(g)->InsInPunSetSpc(AddPoint(g, 101 + 2 * g, pointName));
        }
    }
};

using Step = std::function<void(CloudBook&)>;
using Check = std::function<void(CloudBook&, long times)>;

/// Calls an operation with a heap that fails at the first allocation, then at the second, until it comes
/// through; with one failure each or with all that follow. Returns the number of failures.
long FailUntilDone(Source& source, const Step& prepare, const Step& operation, const Check& check) {
    long failures = 0;
    for (const long times : {1L, LONG_MAX})
        for (long n = 0; n < 5'000; ++n) {
            CloudBook book(kHere);
            prepare(book);
            bool failed = false;
            {
                const FailingHeap heap(n, times);
                try {
                    operation(book);
                } catch (const std::bad_alloc&) {
                    ADD_FAILURE() << "what cannot be copied is left out";
                }
                failed = FailingHeap::HasFailed();
            }
            ExpectWhole(book);
            EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kHere) + COrkaEng::GetDrawingRefUsage(kThere),
                      3 + 1 + book.lib.GetGrpArSize());
            ExpectWhole(source);
            check(book, times);
            if (testing::Test::HasFailure()) {
                ADD_FAILURE() << "allocation " << n << ", " << times << " times";
                return failures;
            }
            if (!failed) break;
            ++failures;
        }
    return failures;
}

/// Counts what single failures cost: one group with its points, or one point, and everything else is there.
struct Lost {
    void Count(const CloudBook& book) {
        int here = 0;
        for (int g = 0; g < book.lib.GetGrpArSize(); ++g) here += book.lib.GetPunArSize(g);
        if (book.lib.GetGrpArSize() == 1) {
            ++groups;
            EXPECT_EQ(here, 2) << "the other group is whole";
        } else {
            EXPECT_EQ(book.lib.GetGrpArSize(), 2);
            EXPECT_GE(here, 3) << "the points behind the one left out are there";
            if (here == 3) ++points;
        }
    }
    void ExpectBoth() const {
        EXPECT_GT(groups, 2) << "of each of the two";
        EXPECT_GT(points, 4);
    }

    int groups = 0, points = 0;
};

/// The groups and points of the source were here once; they have been deleted, and the server is to be told.
void DeleteAll(CloudBook& book) {
    for (int g = 0; g < 2; ++g) {
        book.AddGroup(10 + g);
        for (int p = 0; p < 2; ++p) book.points.ItemDeletedLocally(book.AddPoint(g, 100 + 2 * g + p));
        book.bases.ItemDeletedLocally(book.lib.GetGrpAt(g));
    }
    book.lib.DelGrpAt(1);
    book.lib.DelGrpAt(0);
}

/// An id either has its item here or its deletion waits.
void ExpectHereOrDeleted(const CCloudTable& table, long long id) {
    CCloudItem* item = nullptr;
    EXPECT_TRUE(table.FindItem(id, item)) << id;
    EXPECT_EQ(table.GetDeleted().count(id), item ? 0u : 1u) << id;
}

TEST(CloudAllocation, ImportLeavesOutWhatThereIsNoMemoryFor) {
    Source source;
    Lost lost;
    const long failures = FailUntilDone(
        source, [](CloudBook&) {}, [&](CloudBook& book) { book.lib.ImportCloudItems(&source.lib); },
        [&](CloudBook& book, long times) {
            if (times == 1) lost.Count(book);
        });
    EXPECT_GT(failures, 40);
    lost.ExpectBoth();
    EXPECT_EQ(source.lib.GetPunArSize(0), 2);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kThere), 3) << "the source's own";
}

TEST(CloudAllocation, MergeLeavesOutWhatThereIsNoMemoryFor) {
    Source source;
    Lost lost;
    const long failures = FailUntilDone(
        source, [](CloudBook&) {}, [&](CloudBook& book) { book.lib.MergeCloudItems(&source.lib); },
        [&](CloudBook& book, long times) {
            if (times == 1) lost.Count(book);
        });
    EXPECT_GT(failures, 40);
    lost.ExpectBoth();
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kThere), 3);
}

TEST(CloudAllocation, ImportLosesNoDeletionThatWaits) {
    Source source;
    const long failures = FailUntilDone(
        source, DeleteAll, [&](CloudBook& book) { book.lib.ImportCloudItems(&source.lib); },
        [](CloudBook& book, long) {
            EXPECT_EQ(book.bases.GetDeleted(), (std::set<long long>{10, 11}));
            EXPECT_EQ(book.points.GetDeleted(), (std::set<long long>{100, 101, 102, 103}));
        });
    EXPECT_GT(failures, 40);
}

TEST(CloudAllocation, MergeLosesNoDeletionOfWhatDoesNotComeBack) {
    Source source;
    const long failures = FailUntilDone(
        source, DeleteAll, [&](CloudBook& book) { book.lib.MergeCloudItems(&source.lib); },
        [](CloudBook& book, long) {
            for (const long long id : {10, 11}) ExpectHereOrDeleted(book.bases, id);
            for (const long long id : {100, 101, 102, 103}) ExpectHereOrDeleted(book.points, id);
        });
    EXPECT_GT(failures, 40);
}

TEST(CloudAllocation, FailureWhileGapsAreFilledLeaves) {
    Source source;
    CloudBook book(kHere);
    book.AddGroup(10, source.lib.GetGrpAt(0)->GetNome());
    {
        const FailingHeap heap(0);
        EXPECT_THROW(book.lib.MergeCloudItems(&source.lib), std::bad_alloc) << "the note of a known group";
    }
    ExpectWhole(book);
    EXPECT_TRUE(book.lib.GetGrpAt(0)->IsCloudNotify());
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kThere), 3);
}

TEST(CloudAllocation, ReplyIsRefusedWithoutMemoryForItsItem) {
    test::Reply group = test::GroupReply(), point = test::PointReply();
    CloudBook book;
    {
        const test::FailingSize heap(sizeof(CGrpGps), 0);
        EXPECT_FALSE(book.bases.UpdateSuccessful_Edit(group));
    }
    EXPECT_EQ(book.lib.GetGrpArSize(), 0);
    EXPECT_TRUE(book.bases.GetById().empty());
    EXPECT_EQ(book.notified, 0);
    book.AddGroup(7);
    {
        const test::FailingSize heap(sizeof(CPunGps), 0);
        EXPECT_FALSE(book.points.UpdateSuccessful_Edit(point));
    }
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    EXPECT_TRUE(book.points.GetById().empty());
    EXPECT_EQ(book.notified, 0);
}

TEST(CloudAllocation, FailedReplyMakesNoItem) {
    test::Reply group = test::GroupReply(), point = test::PointReply();
    group[2] = "a name that no string holds by itself";
    point[2] = "a point of the group with a name that no string holds by itself";
    group[64] = group[76] = "0";  // no projections: PROJ does not survive a refused allocation
    long refused = 0, thrown = 0;
    for (long n = 0;; ++n) {
        CloudBook book;
        bool failed = false, groupApplied = false, pointApplied = false;
        {
            const FailingHeap heap(n, 1);
            try {
                groupApplied = book.bases.UpdateSuccessful_Edit(group);
                pointApplied = groupApplied && book.points.UpdateSuccessful_Edit(point);
                if (!pointApplied) ++refused;
            } catch (const std::bad_alloc&) {
                ++thrown;
            }
            failed = FailingHeap::HasFailed();
        }
        ExpectWhole(book);
        EXPECT_EQ(book.notified, (groupApplied ? 1 : 0) + (pointApplied ? 1 : 0)) << "of what was applied";
        EXPECT_TRUE(book.bases.GetAdded().empty());
        EXPECT_TRUE(book.points.GetAdded().empty());
        for (const auto& [id, item] : book.bases.GetById()) EXPECT_EQ(id, 7);
        // The same replies once more: nothing is there twice.
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(group));
        EXPECT_TRUE(book.points.UpdateSuccessful_Edit(point));
        EXPECT_EQ(book.lib.GetGrpArSize(), 1);
        EXPECT_EQ(book.lib.GetPunArSize(0), 1);
        if (HasFailure()) return;
        if (!failed) {
            EXPECT_TRUE(pointApplied);
            break;
        }
    }
    EXPECT_GT(refused, 3) << "no room for the item itself";
    EXPECT_GT(thrown, 6) << "no room for its fields";
}

TEST(CloudAllocation, ReplyAboutAKnownItemCanBeAppliedOnceMore) {
    test::Reply group = test::GroupReply();
    group[2] = "a name that no string holds by itself";
    group[64] = group[76] = "0";  // no projections: PROJ does not survive a refused allocation
    for (long n = 0, failures = 0;; ++n) {
        CloudBook book;
        CGrpGps* known = book.AddGroup(7, "old");
        bool failed = false;
        {
            const FailingHeap heap(n, 1);
            try {
                book.bases.UpdateSuccessful_Edit(group);
            } catch (const std::bad_alloc&) {
                ++failures;
                EXPECT_EQ(book.notified, 0);
            }
            failed = FailingHeap::HasFailed();
        }
        EXPECT_EQ(book.lib.GetGrpArSize(), 1);
        EXPECT_TRUE(known->IsCloudNotify());
        EXPECT_EQ(known->GetCloudFlag(), 0u) << "what is not stored is not marked as changed here";
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(group));
        EXPECT_EQ(known->GetNome(), group[2].View());
        if (failed) continue;
        EXPECT_GT(failures, 3);
        break;
    }
}

TEST(CloudAllocation, FailedRecordLeavesWhatWaits) {
    CloudBook book;
    test::FillGroup(*book.AddGroup(0));
    const std::string expected = book.Additions(book.bases);
    long failures = 0;
    for (long n = 0;; ++n, ++failures) {
        bool failed = false;
        {
            const FailingHeap heap(n, 1);
            int counter = 0;
            try {
                vex::String records;
                book.bases.GenerateCommitString_Add(counter, records);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(counter, 0);
            }
            failed = FailingHeap::HasFailed();
        }
        EXPECT_EQ(book.Additions(book.bases), expected);
        if (!failed) break;
    }
    EXPECT_GT(failures, 1) << "the line and the records";
}

}  // namespace
