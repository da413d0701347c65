#include "gps/model/PositionIndex.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <utility>

#include "tests/Heap.h"
#include "tests/Scale.h"

namespace {

// Addresses as a heap gives them; nothing stands there.
const void* Key(int n) {
    return reinterpret_cast<const void*>(0x10000 + static_cast<std::uintptr_t>(n) * 16);
}

TEST(PositionIndex, NewOneKnowsNothing) {
    PositionIndex index;
    EXPECT_TRUE(index.IsEmpty());
    EXPECT_FALSE(index.Find(Key(1)));
    index.Erase(Key(1));
    EXPECT_TRUE(index.IsEmpty());
}

TEST(PositionIndex, LaterPlaceReplacesTheFormer) {
    PositionIndex index;
    index.Set(Key(1), 2, 3);
    index.Set(Key(1), 4, 5);
    ASSERT_TRUE(index.Find(Key(1)));
    EXPECT_EQ(index.Find(Key(1))->group, 4);
    EXPECT_EQ(index.Find(Key(1))->at, 5);
    index.Erase(Key(1));
    EXPECT_TRUE(index.IsEmpty());
}

TEST(PositionIndex, ClearForgetsEverythingAndCanBeUsedAgain) {
    PositionIndex index;
    for (int n = 0; n < 100; ++n) index.Set(Key(n), n, n);
    index.Clear();
    EXPECT_TRUE(index.IsEmpty());
    EXPECT_FALSE(index.Find(Key(7)));
    index.Set(Key(7), 1, 2);
    ASSERT_TRUE(index.Find(Key(7)));
    EXPECT_EQ(index.Find(Key(7))->at, 2);
}

TEST(PositionIndex, AnswersAsAMapDoes) {
    PositionIndex index;
    std::map<int, std::pair<int, int>> model;
    std::mt19937 random(7);
    const long operations = Scaled(1'000'000);
    for (long n = 0; n < operations; ++n) {
        const int key = static_cast<int>(random() % 2000), group = static_cast<int>(random() % 20) - 1,
                  at = static_cast<int>(random() % 1000);
        if (random() % 2) {
            index.Set(Key(key), group, at);
            model[key] = {group, at};
        } else {
            index.Erase(Key(key));
            model.erase(key);
        }
        const int asked = static_cast<int>(random() % 2000);
        const auto place = index.Find(Key(asked));
        const auto expected = model.find(asked);
        ASSERT_EQ(place.has_value(), expected != model.end()) << "operation " << n;
        if (!place) continue;
        ASSERT_EQ(std::make_pair(place->group, place->at), expected->second) << "operation " << n;
    }
    for (const auto& [key, value] : model) ASSERT_TRUE(index.Find(Key(key)));
    EXPECT_EQ(index.IsEmpty(), model.empty());
}

TEST(PositionIndex, WithoutMemoryItForgets) {
    PositionIndex index;
    bool failed = false;
    {
        const test::FailingHeap heap(1);  // the first entries still find room
        for (int n = 0; n < 1000 && !failed; ++n) {
            index.Set(Key(n), n, n);
            failed = test::FailingHeap::HasFailed();
        }
    }
    EXPECT_TRUE(failed);
    EXPECT_TRUE(index.IsEmpty());
    EXPECT_FALSE(index.Find(Key(0)));
    index.Set(Key(0), 1, 2);
    EXPECT_TRUE(index.Find(Key(0)));
}

}  // namespace
