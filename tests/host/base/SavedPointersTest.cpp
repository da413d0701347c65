// References in a stream: their own value, and who learns of them.
#include "platform/base/savedPointers.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"

namespace {

using test::Bytes;
using test::Dump;

constexpr long long kLowest = std::numeric_limits<long long>::min();
constexpr long long kValues[] = {0, 1, -1, 0x0102030405060708, kLowest};

TEST(SavedPointers, EightBytesOfTheirOwnValue) {
    ofpstream out(1400);
    vex::CPtr64Mapper mapper;
    vex::SavePointerToFile(out, 0x0102030405060708, &mapper);
    vex::SavePointerToFile(out, -2, nullptr);
    EXPECT_EQ(Dump(out.GetBytes()), Dump(Bytes().Hex("0807060504030201 feffffffffffffff").Get()));
}

TEST(SavedPointers, ComeBackWithoutTheMapperThatSawThem) {
    ofpstream out(1400);
    {
        vex::CPtr64Mapper mapper;
        for (const long long value : kValues) vex::SavePointerToFile(out, value, &mapper);
    }
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), 1400);
    for (const long long value : kValues) EXPECT_EQ(vex::LoadPointerFromFile(in), value);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(vex::LoadPointerFromFile(in), 0) << "past the end";
    EXPECT_FALSE(in.IsOk());
}

TEST(SavedPointers, MapperKnowsWhatWasWritten) {
    ofpstream out(1400);
    vex::CPtr64Mapper mapper;
    EXPECT_EQ(mapper.GetSize(), 0u);
    vex::SavePointerToFile(out, 7, &mapper);
    vex::SavePointerToFile(out, 9, nullptr);
    vex::SavePointerToFile(out, 7, &mapper);
    EXPECT_TRUE(mapper.IsWritten(7));
    EXPECT_FALSE(mapper.IsWritten(9));
    EXPECT_EQ(mapper.GetSize(), 1u);
    EXPECT_EQ(out.GetPosition(), 24) << "each time it is written";
}

}  // namespace
