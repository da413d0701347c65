// The bytes of a section, one value after another.
#include "apps/gpsbook/dump/SectionBytes.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/apps/gpsbook/dump/MemorySource.h"

namespace gpsbook::test {
namespace {

TEST(SectionBytes, ValuesComeLeastSignificantByteFirst) {
    MemorySource source(
        std::string("\x01\xFE\xFF\x78\x56\x34\x12\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"
                    "abc",
                    18));
    SectionBytes bytes(source, 100, 18);
    EXPECT_EQ(bytes.Position(), 100);
    EXPECT_EQ(bytes.Unsigned(1), 1U);
    EXPECT_EQ(bytes.Signed(2), -2);
    EXPECT_EQ(bytes.Unsigned(4), 0x12345678U);
    EXPECT_EQ(bytes.Signed(8), -1);
    EXPECT_EQ(bytes.Text(3), "abc");
    EXPECT_EQ(bytes.Position(), 118);
    EXPECT_EQ(bytes.Remaining(), 0);
}

TEST(SectionBytes, WhatIsNotThereIsDamageWhereItBegins) {
    MemorySource source("abc");
    SectionBytes bytes(source, 10, 3);
    bytes.Unsigned(1);
    try {
        bytes.Unsigned(4);
        FAIL() << "read beyond the end";
    } catch (const SectionDamage& damage) {
        EXPECT_EQ(damage.offset, 11);
        EXPECT_EQ(damage.what, "4 bytes are needed, 2 are left");
    }
}

TEST(SectionBytes, FileThatEndsBeforeItsSectionIsDamage) {
    MemorySource source("abc");
    SectionBytes bytes(source, 0, 1000);
    EXPECT_EQ(bytes.Text(3), "abc");
    EXPECT_THROW(bytes.Unsigned(1), SectionDamage);
}

TEST(SectionBytes, ErrorOfTheSystemIsTold) {
    MemorySource source("abc", EIO);
    SectionBytes bytes(source, 0, 1000);
    try {
        bytes.Text(1000);
        FAIL() << "no error";
    } catch (const SectionDamage& damage) {
        EXPECT_EQ(damage.offset, 3);
        EXPECT_NE(damage.what.find("reading failed: "), std::string::npos) << damage.what;
    }
}

TEST(SectionBytes, NothingIsReadBeyondAnEndThatIsSet) {
    MemorySource source("abcdef");
    SectionBytes bytes(source, 0, 6);
    const std::int64_t token = bytes.SetEnd(2);
    EXPECT_EQ(bytes.Remaining(), 2);
    EXPECT_THROW(bytes.Text(3), SectionDamage);
    EXPECT_THROW(bytes.SetEnd(3), SectionDamage);
    bytes.Skip(2);
    bytes.LiftEnd(token);
    EXPECT_EQ(bytes.Text(4), "cdef");
    EXPECT_THROW(bytes.Skip(1), SectionDamage);
}

TEST(SectionBytes, LongTextsComeInPieces) {
    const std::string text(1'000'000, 'x');
    MemorySource source(text);
    SectionBytes bytes(source, 0, 1'000'000);
    EXPECT_EQ(bytes.Text(1'000'000), text);
}

}  // namespace
}  // namespace gpsbook::test
