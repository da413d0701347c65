#include "gps/model/ListMoves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {

// A list whose items are the positions at which they were noted; -1 for items that came later.
class List {
public:
    explicit List(int size) : items_(static_cast<std::size_t>(size)) {
        std::iota(items_.begin(), items_.end(), 0);
    }

    void Insert(int at, int count = 1) {
        for (int i = 0; i < count; ++i) {
            moves.Inserted(at, Size());
            items_.insert(items_.begin() + at, -1);
        }
    }
    void Delete(int at, int count = 1) {
        for (int i = 0; i < count; ++i) {
            moves.Deleted(at, Size());
            items_.erase(items_.begin() + at);
        }
    }
    void ExpectExact() const {
        for (int now = 0; now < Size(); ++now) {
            const int noted = items_[static_cast<std::size_t>(now)];
            if (noted < 0) continue;
            EXPECT_EQ(moves.Now(noted), now) << "noted at " << noted;
            EXPECT_EQ(moves.Noted(now), noted) << "now at " << now;
        }
    }
    int Size() const { return static_cast<int>(items_.size()); }

    ListMoves moves;

private:
    std::vector<int> items_;
};

TEST(ListMoves, NothingMovesWithoutEdits) {
    const List list(10);
    list.ExpectExact();
}

TEST(ListMoves, AppendingAndDeletingAtTheEndMovesNothing) {
    List list(10);
    for (int i = 0; i < 100; ++i) list.Insert(list.Size());
    for (int i = 0; i < 105; ++i) list.Delete(list.Size() - 1);
    list.Insert(1);  // the log still has all its room
    list.ExpectExact();
}

TEST(ListMoves, ManyInsertionsInOnePlaceAreOneMove) {
    List list(100);
    for (const int at : {10, 20, 30, 40, 50, 60, 70, 80}) list.Insert(at, 50);
    list.ExpectExact();
}

TEST(ListMoves, ManyDeletionsInOnePlaceAreOneMove) {
    List list(200);
    for (const int at : {10, 20, 30, 40, 50, 60, 70, 80}) list.Delete(at, 5);
    list.ExpectExact();
}

TEST(ListMoves, DeletingBackwardsIsOneMove) {
    List list(100);
    for (int at = 60; at > 20; --at) list.Delete(at);
    list.ExpectExact();
}

TEST(ListMoves, TakingBackAnInsertionLeavesNothing) {
    List list(100);
    for (int round = 0; round < 50; ++round) {  // more rounds than the log has entries
        list.Insert(round, 30);
        list.Delete(round, 30);
    }
    list.Insert(7, 3);
    list.ExpectExact();
}

TEST(ListMoves, UpToSixteenPlacesInAnyOrderAreExact) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        List list(300);
        for (int edit = 0; edit < static_cast<int>(1 + seed % 16); ++edit) {
            const int count = static_cast<int>(1 + random() % 9);
            const int at = static_cast<int>(random() % 250);
            if (random() % 2)
                list.Insert(at, count);
            else
                list.Delete(at, std::min(count, list.Size() - at));
        }
        list.ExpectExact();
        if (HasFailure()) FAIL() << "seed " << seed;
    }
}

TEST(ListMoves, WhatCameLaterIsNotedAtItsNeighbour) {
    List list(10);
    list.Insert(4, 3);
    for (const int at : {4, 5, 6}) EXPECT_EQ(list.moves.Now(list.moves.Noted(at)), 7) << at;
    EXPECT_EQ(list.moves.Noted(3), 3);
}

TEST(ListMoves, ClearForgetsAllMoves) {
    List list(10);
    list.Insert(0, 5);
    list.moves.Clear();
    EXPECT_EQ(list.moves.Now(3), 3);
    EXPECT_EQ(list.moves.Noted(3), 3);
}

}  // namespace
