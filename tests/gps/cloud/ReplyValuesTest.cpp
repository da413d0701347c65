// Numbers of replies: as C reads them, in every locale.
#include "gps/cloud/ReplyValues.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include "platform/base/GpsValues.h"
#include "tests/Scale.h"

namespace {

TEST(ReplyValues, WholeNumbersAreReadAsCDoes) {
    EXPECT_EQ(ToInt("0"), 0);
    EXPECT_EQ(ToInt("42"), 42);
    EXPECT_EQ(ToInt("-5"), -5);
    EXPECT_EQ(ToInt("+5"), 5);
    EXPECT_EQ(ToInt(" \t\n\v\f\r 7"), 7);
    EXPECT_EQ(ToInt("12abc"), 12) << "what follows is passed over";
    EXPECT_EQ(ToInt("12.9"), 12);
    EXPECT_EQ(ToInt("007"), 7);
    EXPECT_EQ(ToInt("0x10"), 0);
    for (const char* none : {"", " ", "-", "+", "abc", "- 5", "--5", "+-5", "-+5", ".5", ";", "NULLVAL"})
        EXPECT_EQ(ToInt(none), 0) << none;
    EXPECT_EQ(ToInt(std::string("1\0002", 3)), 1) << "a zero byte ends the number";
}

TEST(ReplyValues, WholeNumbersBeyondTheirTypeAreItsNearest) {
    EXPECT_EQ(ToInt("2147483647"), INT_MAX);
    EXPECT_EQ(ToInt("2147483648"), INT_MAX);
    EXPECT_EQ(ToInt("-2147483648"), INT_MIN);
    EXPECT_EQ(ToInt("-2147483649"), INT_MIN);
    EXPECT_EQ(ToInt("99999999999999999999999"), INT_MAX);
    EXPECT_EQ(ToInt64("9223372036854775807"), LLONG_MAX);
    EXPECT_EQ(ToInt64("9223372036854775808"), LLONG_MAX);
    EXPECT_EQ(ToInt64("-9223372036854775808"), LLONG_MIN);
    EXPECT_EQ(ToInt64("-9223372036854775809"), LLONG_MIN);
    EXPECT_EQ(ToInt64("+4294967296 "), 4294967296);
}

TEST(ReplyValues, RealNumbersAreReadAsCDoes) {
    EXPECT_EQ(ToDouble("1.5"), 1.5);
    EXPECT_EQ(ToDouble("-1.5e3"), -1500);
    EXPECT_EQ(ToDouble("+1E-3"), 0.001);
    EXPECT_EQ(ToDouble(" \t2.5 rest"), 2.5);
    EXPECT_EQ(ToDouble(".5"), 0.5);
    EXPECT_EQ(ToDouble("5."), 5);
    EXPECT_EQ(ToDouble("1e"), 1) << "an exponent without digits is none";
    EXPECT_EQ(ToDouble("1,5"), 1);
    EXPECT_EQ(ToDouble("5e+05"), 500000);
    EXPECT_TRUE(std::signbit(ToDouble("-0")));
    EXPECT_EQ(ToDouble("inf"), INFINITY);
    EXPECT_EQ(ToDouble("-Infinity"), -INFINITY);
    EXPECT_TRUE(std::isnan(ToDouble("nan")));
    EXPECT_TRUE(std::isnan(ToDouble("NAN(7)")));
    EXPECT_EQ(ToDouble("0x1A"), 26);
    EXPECT_EQ(ToDouble("-0x1.8p1"), -3);
    EXPECT_EQ(ToDouble("0x.8"), 0.5);
    for (const char* zero : {"0xg", "0x", "0x.", "0x-1", "0xinf", "0x 1"})
        EXPECT_EQ(ToDouble(zero), 0) << zero;
    for (const char* none : {"", " ", "-", "+", ".", "abc", "--5", "+-5", "e5", "NULLVAL"})
        EXPECT_EQ(ToDouble(none), 0) << none;
}

TEST(ReplyValues, RealNumbersBeyondTheirTypeAreInfiniteOrZero) {
    EXPECT_EQ(ToDouble("1e400"), INFINITY);
    EXPECT_EQ(ToDouble("-1e400"), -INFINITY);
    EXPECT_EQ(ToDouble("123456789e395"), INFINITY);
    EXPECT_EQ(ToDouble("1" + std::string(400, '0')), INFINITY);
    EXPECT_EQ(ToDouble("1" + std::string(400, '0') + "e-395"), 1e5);
    EXPECT_EQ(ToDouble("1e99999999999999999999"), INFINITY);
    EXPECT_EQ(ToDouble("1e-400"), 0);
    EXPECT_EQ(ToDouble("0." + std::string(400, '0') + "1"), 0);
    EXPECT_EQ(ToDouble("1e-99999999999999999999"), 0);
    EXPECT_EQ(ToDouble("0e99999999999999999999"), 0);
    EXPECT_EQ(ToDouble("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(ToDouble("5e-324"), std::numeric_limits<double>::denorm_min());
}

TEST(ReplyValues, HexadecimalNumbersBeyondTheirTypeAreInfiniteOrZero) {
    EXPECT_EQ(ToDouble("0x1p1024"), INFINITY);
    EXPECT_EQ(ToDouble("-0x1p1024"), -INFINITY);
    EXPECT_EQ(ToDouble("0X.0000001P2000"), INFINITY);
    EXPECT_EQ(ToDouble("0x1" + std::string(300, '0')), INFINITY);
    EXPECT_EQ(ToDouble("0x1p99999999999999999999"), INFINITY);
    for (const char* zero : {"0x1p-2000", "0x8p-1080", "0x1p-1075", "-0xFFFFFFFFp-2000", "0x100000000p-1200",
                             "0x1p-99999999999999999999", "0x0p2000", "0x0.00p99999999999999999999"})
        EXPECT_EQ(ToDouble(zero), 0) << zero;
    EXPECT_TRUE(std::signbit(ToDouble("-0x1p-2000")));
    EXPECT_EQ(ToDouble("0x0." + std::string(300, '0') + "1"), 0);
    EXPECT_EQ(ToDouble("0x1p-1074"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(ToDouble("0x1.fffffffffffffp1023"), std::numeric_limits<double>::max());
    EXPECT_EQ(ToDouble("0x3p+-2"), 3) << "an exponent has one sign";
    EXPECT_EQ(ToDouble("0x3P+-2"), 3);
}

void ExpectAsTheCLibraryReads(const std::string& text) {
    const double expected = std::strtod(text.c_str(), nullptr), read = ToDouble(text);
    ASSERT_TRUE(expected == read || (std::isnan(expected) && std::isnan(read)))
        << '"' << text << "\" is " << expected << ", not " << read;
}

TEST(ReplyValues, RandomTextsAreReadAsTheCLibraryReadsThem) {
    std::mt19937 random(7);
    const std::string letters = "0123456789012345678900..eE+-  xXinfa;N",
                      hexLetters = "01234567890000..eaFpP+-";
    const auto pick = [&](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    const long count = Scaled(2'000'000);
    for (long i = 0; i < count; ++i) {
        std::string text, hex = "0x";
        for (std::size_t n = pick(14); n > 0; --n) text += letters[pick(letters.size())];
        for (std::size_t n = pick(14); n > 0; --n) hex += hexLetters[pick(hexLetters.size())];
        ExpectAsTheCLibraryReads(text);
        ExpectAsTheCLibraryReads(hex);
        if (testing::Test::HasFatalFailure()) return;
        ASSERT_EQ(ToInt64(text), std::strtoll(text.c_str(), nullptr, 10)) << '"' << text << '"';
    }
}

TEST(ReplyValues, TokenIsUnset) {
    EXPECT_EQ(ReplyReal("NULLVAL"), GPS_VAL_UNSET);
    EXPECT_EQ(ReplyReal("nullval"), 0);
    EXPECT_EQ(ReplyReal("NULLVAL "), 0);
    EXPECT_EQ(ReplyReal(" NULLVAL"), 0);
    EXPECT_EQ(ReplyReal("NULLVA"), 0);
    EXPECT_EQ(ReplyReal("1.7e200"), GPS_VAL_UNSET);
}

TEST(ReplyValues, FlagsHaveTwoRules) {
    EXPECT_TRUE(ReplyIsOne("1"));
    for (const char* no : {"", "0", "2", "01", "1 ", " 1", "+1", "-1", "true"})
        EXPECT_FALSE(ReplyIsOne(no)) << no;
    for (const char* yes : {"1", "2", "01", " 1", "+1", "1x", "2147483648"})
        EXPECT_TRUE(ReplyFlag(yes)) << yes;
    for (const char* no : {"", "0", "-1", "x1", "0.9"}) EXPECT_FALSE(ReplyFlag(no)) << no;
}

}  // namespace
