#include <gtest/gtest.h>

#include <limits>

#include "platform/cad/CDrawingsMapper.h"

namespace {

TEST(DrawingsMapper, AnswersTheLiveDrawingOfASavedOne) {
    CDrawingsMapper mapper(99);
    mapper.SetDrawing(5, 1005);
    mapper.SetDrawing(6, 1006);
    EXPECT_EQ(mapper.GetDrawing(5), 1005);
    EXPECT_EQ(mapper.GetDrawing(6), 1006);
}

TEST(DrawingsMapper, AnswersTheDefaultForAnUnknownOne) {
    CDrawingsMapper mapper(99);
    mapper.SetDrawing(5, 1005);
    EXPECT_EQ(mapper.GetDrawing(7), 99);
    EXPECT_EQ(mapper.GetDrawing(1005), 99) << "live values are not looked up";
    EXPECT_EQ(mapper.GetDefaultDrawing(), 99);
}

TEST(DrawingsMapper, DefaultIsNoDrawing) {
    const CDrawingsMapper mapper;
    EXPECT_EQ(mapper.GetDefaultDrawing(), 0);
    EXPECT_EQ(mapper.GetDrawing(1), 0);
}

TEST(DrawingsMapper, LaterEntryReplacesTheFormer) {
    CDrawingsMapper mapper;
    mapper.SetDrawing(5, 1);
    mapper.SetDrawing(5, 2);
    EXPECT_EQ(mapper.GetDrawing(5), 2);
}

TEST(DrawingsMapper, KeepingOneAnswersAnUnknownOneWithItself) {
    constexpr long long low = std::numeric_limits<long long>::min();
    CDrawingsMapper mapper = CDrawingsMapper::KeepingUnknown();
    EXPECT_EQ(mapper.GetDrawing(7), 7);
    EXPECT_EQ(mapper.GetDrawing(low), low);
    EXPECT_EQ(mapper.GetDrawing(0), 0);
    EXPECT_EQ(mapper.GetDefaultDrawing(), 0);
    mapper.SetDrawing(7, 1007);
    EXPECT_EQ(mapper.GetDrawing(7), 1007);
}

TEST(DrawingsMapper, KeepsAll64Bits) {
    constexpr long long big = std::numeric_limits<long long>::max();
    constexpr long long low = std::numeric_limits<long long>::min();
    CDrawingsMapper mapper(-1);
    mapper.SetDrawing(low, big);
    EXPECT_EQ(mapper.GetDrawing(low), big);
    EXPECT_EQ(mapper.GetDrawing(0), -1) << "0 is looked up as any other value";
    mapper.SetDrawing(0, 3);
    EXPECT_EQ(mapper.GetDrawing(0), 3);
}

}  // namespace
