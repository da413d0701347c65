// vex_sprintf: its formats, and lines that are built from themselves.
#include "platform/base/vexSprintf.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

TEST(VexSprintf, TextAndNumberAreAppendedToTheLineItself) {
    char line[64] = "UBAS";
    EXPECT_EQ(vex_sprintf(line, "%s;%d", line, 17), 7);
    EXPECT_STREQ(line, "UBAS;17");
    EXPECT_EQ(vex_sprintf(line, "%s;%s", line, "name"), 12);
    EXPECT_EQ(vex_sprintf(line, "%s\r\n", line), 14);
    EXPECT_STREQ(line, "UBAS;17;name\r\n");
}

TEST(VexSprintf, LineMayStandAnywhereAmongTheArguments) {
    char line[64] = "abc";
    vex_sprintf(line, "<%s|%s>", line, line);
    EXPECT_STREQ(line, "<abc|abc>");
    vex_sprintf(line, "%s%s", "x", line + 4);
    EXPECT_STREQ(line, "x|abc>") << "a part of it, too";
}

TEST(VexSprintf, NothingIsWrittenBehindTheZeroByte) {
    char line[8] = {'a', 'b', '\0', '#', '#', '#', '#', '#'};
    EXPECT_EQ(vex_sprintf(line, "%s%s", line, "c"), 3);
    EXPECT_EQ(std::string(line, 8), std::string("abc\0####", 8));
}

TEST(VexSprintf, WholeNumbersHaveAllTheirWidths) {
    char line[128];
    vex_sprintf(line, "%d %i %u", INT_MIN, INT_MAX, UINT_MAX);
    EXPECT_STREQ(line, "-2147483648 2147483647 4294967295");
    vex_sprintf(line, "%I64d %I64u", LLONG_MIN, ULLONG_MAX);
    EXPECT_STREQ(line, "-9223372036854775808 18446744073709551615") << "no column of 64";
    vex_sprintf(line, "%lld %llu", LLONG_MAX, ULLONG_MAX);
    EXPECT_STREQ(line, "9223372036854775807 18446744073709551615");
    vex_sprintf(line, "%ld %lu", -5L, 5UL);
    EXPECT_STREQ(line, "-5 5");
    vex_sprintf(line, "%hd %hu", 65537, 65537);
    EXPECT_STREQ(line, "1 1") << "of the lower 16 bits";
    vex_sprintf(line, "%x %X %I64x", 0xABCDu, 0xABCDu, 0x123456789ABCDEFull);
    EXPECT_STREQ(line, "abcd ABCD 123456789abcdef");
}

TEST(VexSprintf, NumbersBehindOthersAreTakenAtTheirWidth) {
    char line[128] = "UBAS";
    vex_sprintf(line, "%s;%I64d;%d;%s", line, 1LL << 40, -1, "end");
    EXPECT_STREQ(line, "UBAS;1099511627776;-1;end");
}

TEST(VexSprintf, CharactersAndPercentSigns) {
    char line[32];
    EXPECT_EQ(vex_sprintf(line, "100%%%c%c", 'a', ';'), 6);
    EXPECT_STREQ(line, "100%a;");
    EXPECT_EQ(vex_sprintf(line, "plain"), 5);
    EXPECT_STREQ(line, "plain");
    EXPECT_EQ(vex_sprintf(line, ""), 0);
    EXPECT_STREQ(line, "");
}

TEST(VexSprintf, NullTextIsEmpty) {
    char line[32];
    EXPECT_EQ(vex_sprintf(line, "<%s>", static_cast<const char*>(nullptr)), 2);
    EXPECT_STREQ(line, "<>");
}

TEST(VexSprintf, UnknownFormatWritesNothing) {
    for (const char* format : {"%f", "%5d", "%-d", "%.2f", "%p", "%", "%ls", "%hc", "%l%", "%I32d", "%q"}) {
        char line[32] = "before";
        EXPECT_EQ(vex_sprintf(line, format, 1, 1), -1) << format;
        EXPECT_STREQ(line, "before") << format;
    }
}

TEST(VexSprintf, LineMayBeOfAnyLength) {
    std::string line(200'000, '\0');
    const std::string text(99'999, 'x');
    EXPECT_EQ(vex_sprintf(line.data(), "%s", text.c_str()), 99'999);
    EXPECT_EQ(vex_sprintf(line.data(), "%s;%s", line.data(), "end"), 100'003);
    EXPECT_EQ(std::string(line.c_str()), text + ";end");
}

}  // namespace
