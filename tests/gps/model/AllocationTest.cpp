// Running out of memory: whatever allocation fails, nothing has been added and nothing is lost.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "platform/cad/COrkaEng.h"
#include "tests/Heap.h"
#include "tests/gps/model/Book.h"

namespace {

using test::Book;
using test::FailingHeap;

constexpr long long kDrawing = 4711;

/// Everything that an addition touches.
struct State {
    std::vector<CGrpGps*> groups;
    std::vector<std::vector<CPunGps*>> points;
    test::Items addedGroups, addedPoints;
    std::size_t knownGroups = 0, knownPoints = 0;
    int drawingUsage = 0;

    explicit State(const Book& book)
        : addedGroups(book.bases.GetAdded()),
          addedPoints(book.points.GetAdded()),
          knownGroups(book.bases.GetById().size()),
          knownPoints(book.points.GetById().size()),
          drawingUsage(COrkaEng::GetDrawingRefUsage(kDrawing)) {
        for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
            groups.push_back(book.lib.GetGrpAt(g));
            points.emplace_back();
            for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
                points.back().push_back(book.lib.GetPunAt(g, p));
        }
    }
    bool operator==(const State&) const = default;
};

/// Calls an addition with a heap that fails at the first allocation, then at the second, and so on until it
/// comes through. Returns the number of failures.
long FailUntilDone(const Book& book, const std::string& name, const std::function<const void*()>& add) {
    for (long n = 0;; ++n) {
        const State before(book);
        bool thrown = false;
        const void* made = nullptr;
        {
            const FailingHeap heap(n);
            try {
                made = add();
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
        }
        EXPECT_EQ(thrown, FailingHeap::HasFailed())
            << name << ": a failure reaches the caller, allocation " << n;
        if (!thrown) {
            EXPECT_NE(made, nullptr) << name;
            EXPECT_FALSE(State(book) == before) << name;
            return n;
        }
        EXPECT_TRUE(State(book) == before) << name << ": allocation " << n << " left something behind";
        if (testing::Test::HasFailure() || n > 10'000) return n;
    }
}

TEST(Allocation, FailedGroupLeavesNothingBehind) {
    Book book(kDrawing);
    long failures = 0;
    // Beyond several growths of the lists: each allocates in other places than the one before.
    for (int i = 0; i < 40 && !HasFailure(); ++i) {
        failures += FailUntilDone(book, "add", [&] { return book.lib.AddGrp(false); });
        failures += FailUntilDone(book, "add from cloud", [&] { return book.lib.AddGrp(true); });
        failures += FailUntilDone(book, "insert", [&] { return book.lib.InsGrpAt(i, false); });
        failures += FailUntilDone(book, "insert from cloud", [&] { return book.lib.InsGrpAt(0, true); });
    }
    EXPECT_EQ(book.lib.GetGrpArSize(), 160);
    EXPECT_GE(failures, 160) << "the group itself, at least";
}

TEST(Allocation, FailedPointLeavesNothingBehind) {
    Book book(kDrawing);
    book.Fill({0, 3});
    long failures = 0;
    for (int i = 0; i < 40 && !HasFailure(); ++i) {
        failures += FailUntilDone(book, "add", [&] { return book.lib.AddPun(0, false); });
        failures += FailUntilDone(book, "add from cloud", [&] { return book.lib.AddPun(0, true); });
        failures += FailUntilDone(book, "insert", [&] { return book.lib.InsPunAt(0, i, false); });
        failures += FailUntilDone(book, "insert from cloud", [&] { return book.lib.InsPunAt(1, 0, true); });
    }
    EXPECT_EQ(book.lib.GetPunArSize(0), 120);
    EXPECT_GE(failures, 160) << "the point itself, at least";
}

TEST(Allocation, FailedAdditionWithoutProjectLeavesNothingBehind) {
    Book book(kDrawing);
    book.project.SetGpsTables(nullptr, nullptr);
    EXPECT_GE(FailUntilDone(book, "group", [&] { return book.lib.AddGrp(false); }), 2);
    EXPECT_GE(FailUntilDone(book, "point", [&] { return book.lib.AddPun(0, false); }), 2);
}

TEST(Allocation, FailedGroupWithADrawingNobodyUsesLeavesNothingBehind) {
    Book book(0);
    book.lib.SetTargetDrawing(kDrawing);
    book.lib.SetTargetDrawing(0);
    ASSERT_EQ(COrkaEng::GetDrawingRefUsage(kDrawing), 0);
    for (int i = 0; i < 3; ++i) FailUntilDone(book, "group", [&] { return book.lib.AddGrp(false); });
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kDrawing), 0);
}

TEST(Allocation, DrawingCountsEndAtZero) {
    {
        Book book(kDrawing);
        for (int i = 0; i < 5; ++i) FailUntilDone(book, "group", [&] { return book.lib.AddGrp(false); });
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kDrawing), 6);
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kDrawing), 0);
}

TEST(Allocation, LookUpsNeedNoMemory) {
    Book book(kDrawing);
    book.Fill({3, 3, 3});
    book.lib.GrpGpsSwap(0, 2);
    CGrpGps* last = book.lib.GetGrpAt(2);
    CPunGps* point = book.lib.GetPunAt(1, 2);
    CPunGps copy(*point);
    int i = -1, g = -1, p = -1;
    bool foundGroup = false, foundPoint = false, foundCopy = true;
    {
        const FailingHeap heap(0);
        foundGroup = book.lib.GetIndiciDiGrp(last, i);
        foundPoint = book.lib.GetIndiciDiPun(point, g, p);
        int other = -1;
        foundCopy = book.lib.GetIndiciDiPun(&copy, g, other);
    }
    EXPECT_TRUE(foundGroup);
    EXPECT_EQ(i, 2);
    EXPECT_TRUE(foundPoint);
    EXPECT_EQ(g, 1);
    EXPECT_EQ(p, 2);
    EXPECT_FALSE(foundCopy);
}

TEST(Allocation, ReservationsBeyondTheMemoryAreHintsWithoutEffect) {
    Book book(kDrawing);
    book.Fill({2});
    const State before(book);
    {
        const test::SmallHeap heap(1u << 20);
        book.lib.GrpArReserve(INT_MAX);
        EXPECT_TRUE(FailingHeap::HasFailed()) << "the room was asked for";
        EXPECT_EQ(book.lib.GrpArAddReserve(INT_MAX), INT_MAX);
        book.lib.PunArReserve(0, INT_MAX);
        EXPECT_EQ(book.lib.PunArAddReserve(0, INT_MAX), INT_MAX);
    }
    EXPECT_TRUE(State(book) == before);
    EXPECT_NE(book.lib.AddPun(0, false), nullptr);
}

// A setter does not fail when the table has no memory to note the item: the change is found when it is asked
// for.
TEST(Allocation, ChangeOfAKnownItemIsNotLostWithoutMemory) {
    Book book;
    book.Fill({1});
    CPunGps& point = *book.lib.GetPunAt(0, 0);
    point.SetCloudId(7);
    ASSERT_TRUE(book.points.AddItemToTable(&point));
    {
        const FailingHeap heap(0);
        EXPECT_NO_THROW(point.SetElev(1));
        EXPECT_TRUE(FailingHeap::HasFailed());
    }
    EXPECT_EQ(point.GetCloudFlag(), CHG_PUN_ELEV);
    EXPECT_EQ(book.points.GetChanged().count(&point), 1U);
}

TEST(Allocation, DrawingThatCannotBeCountedIsNotHeld) {
    constexpr long long other = 881;
    Book book;
    book.Fill({0});
    CGrpGps& group = *book.lib.GetGrpAt(0);
    {
        const FailingHeap heap(0);
        EXPECT_THROW(group.SetTargetDrawing(other), std::bad_alloc);
    }
    EXPECT_EQ(group.GetTargetDrawing(), 0);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(other), 0);
}

}  // namespace
