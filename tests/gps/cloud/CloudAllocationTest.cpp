// Running out of memory while another book comes in: whatever allocation fails, what is there is whole.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <new>
#include <string>

#include "platform/cad/COrkaEng.h"
#include "tests/Heap.h"
#include "tests/gps/cloud/CloudBook.h"

namespace {

using test::CloudBook;
using test::FailingHeap;

constexpr long long kHere = 501, kThere = 502;

/// Groups and points stand where they are looked for, and each is either added or known by its id.
void ExpectWhole(CloudBook& book) {
    std::size_t groups = 0, points = 0;
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        int at = -1, in = -1;
        EXPECT_TRUE(book.lib.GetIndiciDiGrp(book.lib.GetGrpAt(g), at));
        EXPECT_EQ(at, g);
        EXPECT_EQ(book.lib.GetGrpAt(g)->GetTable(), &book.bases);
        ++groups;
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p, ++points) {
            EXPECT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(g, p), in, at));
            EXPECT_EQ(at, p);
        }
    }
    EXPECT_EQ(book.bases.GetAdded().size() + book.bases.GetById().size(), groups);
    EXPECT_EQ(book.points.GetAdded().size() + book.points.GetById().size(), points);
}

struct Source : CloudBook {
    Source() : CloudBook(kThere) {
        for (int g = 0; g < 2; ++g) {
            CGrpGps* group = AddGroup(10 + g, "a name that no string holds by itself");
            group->SetNote("a note that no string holds by itself");
            lib.GetGrpAt(g)->InsInPunSetNor(AddPoint(g, 100 + 2 * g, "a point with a name of some length"));
            lib.GetGrpAt(g)->InsInPunSetSpc(AddPoint(g, 101 + 2 * g, "a point with a name of some length"));
        }
    }
};

/// Calls an operation with a heap that fails at the first allocation, then at the second, until it comes
/// through; with one failure each or with all that follow. Returns the number of failures.
long FailUntilDone(Source& source, const std::function<void(CloudBook&)>& prepare,
                   const std::function<void(CloudBook&)>& operation) {
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
                }
                failed = FailingHeap::HasFailed();
            }
            ExpectWhole(book);
            EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kHere) + COrkaEng::GetDrawingRefUsage(kThere),
                      3 + 1 + book.lib.GetGrpArSize());
            ExpectWhole(source);
            if (testing::Test::HasFailure()) return failures;
            if (!failed) break;
            ++failures;
        }
    return failures;
}

TEST(CloudAllocation, FailedImportLeavesWholeGroupsAndPoints) {
    Source source;
    const long failures = FailUntilDone(
        source, [](CloudBook&) {}, [&](CloudBook& book) { book.lib.ImportCloudItems(&source.lib); });
    EXPECT_GT(failures, 40);
    EXPECT_EQ(source.lib.GetPunArSize(0), 2);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kThere), 3) << "the source's own";
}

TEST(CloudAllocation, FailedMergeLeavesWholeGroupsAndPoints) {
    Source source;
    const long failures = FailUntilDone(
        source, [](CloudBook& book) { book.AddGroup(10); },
        [&](CloudBook& book) { book.lib.MergeCloudItems(&source.lib); });
    EXPECT_GT(failures, 20);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kThere), 3);
}

TEST(CloudAllocation, FailedReplyMakesNoItem) {
    test::Reply group = test::GroupReply(), point = test::PointReply();
    group[2] = point[2] = "a name that no string holds by itself";
    group[64] = group[76] = "0";  // no projections: PROJ does not survive a refused allocation
    long failures = 0;
    for (long n = 0;; ++n, ++failures) {
        CloudBook book;
        bool failed = false, applied = false;
        {
            const FailingHeap heap(n, 1);
            try {
                applied = book.bases.UpdateSuccessful_Edit(group) && book.points.UpdateSuccessful_Edit(point);
            } catch (const std::bad_alloc&) {
            }
            failed = FailingHeap::HasFailed();
        }
        ExpectWhole(book);
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
            EXPECT_TRUE(applied);
            break;
        }
    }
    EXPECT_GT(failures, 10);
}

TEST(CloudAllocation, FailedRecordLeavesWhatWaits) {
    CloudBook book;
    test::FillGroup(*book.AddGroup(0));
    const std::string expected = book.Additions(book.bases);
    for (long n = 0;; ++n) {
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
}

}  // namespace
