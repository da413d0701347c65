#include <gtest/gtest.h>

#include <string>

#include "platform/base/vexString.h"

namespace {

using vex::String;
using namespace std::string_literals;

TEST(VexString, NewTextIsEmpty) {
    const String text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_STREQ(text.c_str(), "");
}

TEST(VexString, NullPointerIsTheEmptyText) {
    EXPECT_TRUE(String(static_cast<const char*>(nullptr)).IsEmpty());
}

TEST(VexString, KeepsTheTextItIsMadeOf) {
    EXPECT_EQ(String("base").View(), "base");
    EXPECT_EQ(String("base"s).View(), "base");
    EXPECT_EQ(String(std::string_view("base;rover").substr(0, 4)).View(), "base");
    EXPECT_STREQ(String("base"s).c_str(), "base");
    EXPECT_FALSE(String("base").IsEmpty());
}

TEST(VexString, LengthCountsBytes) {
    EXPECT_EQ(String("citt\xC3\xA0").GetLength(), 6);
    EXPECT_EQ(String("a\0b"s).GetLength(), 3) << "a zero byte is a byte of the text";
}

TEST(VexString, ComparesByteByByte) {
    struct Row {
        const char* name;
        std::string a, b;
        int sign;
    };
    const Row rows[] = {
        {"equal", "P1", "P1", 0},
        {"digits are not numbers", "P10", "P2", -1},
        {"case counts, capitals first", "P1", "p1", -1},
        {"shorter prefix first", "P1", "P10", -1},
        {"longer after its prefix", "P10", "P1", 1},
        {"bytes above 127 come last", "z", "\xC3\xA0", -1},
        {"empty first", "", "a", -1},
    };
    for (const Row& row : rows) {
        const int result = String(row.a).Compare(row.b);
        EXPECT_EQ((result > 0) - (result < 0), row.sign) << row.name;
        EXPECT_EQ(String(row.a) == String(row.b), row.sign == 0) << row.name;
    }
}

TEST(VexString, EmptyClears) {
    String text("UBAS;1");
    text.Empty();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_STREQ(text.c_str(), "");
}

TEST(VexString, AppendsWithoutEndingAtZeroBytes) {
    String text("a");
    text += "b";
    text += std::string_view("\0c", 2);
    EXPECT_EQ(text.View(), "ab\0c"s);
}

TEST(VexString, AppendingToReservedRoomMovesNothing) {
    String text("ab");
    text.Reserve(1000);
    EXPECT_EQ(text.View(), "ab");
    const char* before = text.c_str();
    for (int i = 0; i < 900; ++i) text += "x";
    EXPECT_EQ(text.c_str(), before);
    EXPECT_EQ(text.GetLength(), 902);
}

TEST(VexString, AbsurdReservationsAreIgnored) {
    String text("ab");
    text.Reserve(-1);
    text.Reserve(0);
    EXPECT_EQ(text.View(), "ab");
}

TEST(VexString, CopiesAreIndependent) {
    String text("one");
    String copy(text);
    copy += "two";
    EXPECT_EQ(text.View(), "one");
    EXPECT_EQ(copy.View(), "onetwo");
}

}  // namespace
