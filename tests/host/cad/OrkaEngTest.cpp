#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/cad/COrkaEng.h"

namespace {

// Drawings that no other test uses: the engine is one for the process.
constexpr long long kA = 71001, kB = 0x7000'0000'0000'0001;

TEST(OrkaEng, CountsUsagesOfEachDrawing) {
    COrkaEng::AddDrawingRefUsage(kA);
    COrkaEng::AddDrawingRefUsage(kA);
    COrkaEng::AddDrawingRefUsage(kB);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kA), 2);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kB), 1);
    COrkaEng::SubDrawingRefUsage(kA);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kA), 1);
    COrkaEng::SubDrawingRefUsage(kA);
    COrkaEng::SubDrawingRefUsage(kB);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kA), 0);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kB), 0);
}

TEST(OrkaEng, ReleasingAnUnusedDrawingHasNoEffect) {
    COrkaEng::SubDrawingRefUsage(kA);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kA), 0);
    COrkaEng::AddDrawingRefUsage(kA);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kA), 1);
    COrkaEng::SubDrawingRefUsage(kA);
}

TEST(OrkaEng, DrawingZeroIsNotCounted) {
    COrkaEng::AddDrawingRefUsage(0);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(0), 0);
    COrkaEng::SubDrawingRefUsage(0);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(0), 0);
}

TEST(OrkaEng, WatcherIsToldOfEveryCall) {
    std::vector<std::pair<int, long long>> calls;
    COrkaEng::SetWatcher([&](int step, long long drawing) { calls.emplace_back(step, drawing); });
    COrkaEng::AddDrawingRefUsage(kA);
    COrkaEng::AddDrawingRefUsage(0);
    COrkaEng::SubDrawingRefUsage(kA);
    COrkaEng::SubDrawingRefUsage(kA);
    COrkaEng::SubDrawingRefUsage(0);
    COrkaEng::SetWatcher({});
    COrkaEng::AddDrawingRefUsage(kA);
    COrkaEng::SubDrawingRefUsage(kA);
    const std::vector<std::pair<int, long long>> expected{{+1, kA}, {+1, 0}, {-1, kA}, {-1, kA}, {-1, 0}};
    EXPECT_EQ(calls, expected);
}

}  // namespace
