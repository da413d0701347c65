#include "apps/gpsbook/readers/FieldText.h"

#include <gtest/gtest.h>

#include <cmath>

namespace gpsbook {
namespace {

TEST(ParseNumber, ReadsDecimalsExactly) {
    struct Row {
        const char* text;
        double value;
    };
    const Row rows[] = {{"0", 0.0},
                        {"257.4", 257.4},
                        {"-31.442", -31.442},
                        {"+7.5", 7.5},
                        {".5", 0.5},
                        {"5.", 5.0},
                        {"00016", 16.0},
                        {"-0028", -28.0},
                        {"40.086179918", 40.086179918},
                        {"12118.8446777", 12118.8446777},
                        {"3655334.3694", 3655334.3694},
                        {"0.12345678901234567890", 0.12345678901234567890},
                        {"1234567890123.4567", 1234567890123.4567},
                        {"1e-5", 1e-5},
                        {"-2.5E3", -2500.0}};
    for (const Row& row : rows) {
        double v = 99.0;
        EXPECT_TRUE(ParseNumber(row.text, v)) << row.text;
        EXPECT_EQ(v, row.value) << row.text;
    }
}

TEST(ParseNumber, KeepsTheSignOfZero) {
    double v = 1.0;
    ASSERT_TRUE(ParseNumber("-0", v));
    EXPECT_TRUE(std::signbit(v));
}

TEST(ParseNumber, RefusesEverythingElse) {
    for (const char* text :
         {"",     "-",        "+",   ".",    "-.",    "1,5",  "1.2.3", "12a",     "a12",
          " 1",   "1 ",       "--1", "+-1",  "-+1",   "nan",  "NaN",   "-nan",    "inf",
          "-inf", "infinity", "1e",  "0x10", "1e400", "1e16", "-1e16", "1.7e200", "12345678901234567890"}) {
        double v = 99.0;
        EXPECT_FALSE(ParseNumber(text, v)) << text;
        EXPECT_EQ(v, 99.0) << text;
    }
}

TEST(ParseCount, ReadsOneToSixDigits) {
    int v = 0;
    EXPECT_TRUE(ParseCount("007", v));
    EXPECT_EQ(v, 7);
    EXPECT_TRUE(ParseCount("999999", v));
    EXPECT_EQ(v, 999999);
    for (const char* text : {"", "1234567", "-1", "+1", "1.0", "1 ", "a"}) {
        EXPECT_FALSE(ParseCount(text, v)) << text;
    }
}

TEST(ParseTimeOfDay, RoundsToMilliseconds) {
    struct Row {
        const char* h;
        const char* m;
        const char* s;
        std::uint32_t ms;
    };
    const Row rows[] = {
        {"00", "00", "00", 0},          {"07", "41", "58.799", 27718799},  {"13", "28", "19.60", 48499600},
        {"00", "00", "00.0004", 0},     {"00", "00", "00.0005", 1},        {"00", "00", "00.00049999", 0},
        {"00", "00", "01.", 1000},      {"23", "59", "59.9999", 86399999}, {"23", "59", "60", 86400000},
        {"23", "59", "60.5", 86400500}, {"23", "59", "60.9999", 86400999}, {"12", "34", "56.9996", 45297000}};
    for (const Row& row : rows) {
        std::uint32_t ms = 1;
        EXPECT_EQ(ParseTimeOfDay(row.h, row.m, row.s, ms), std::nullopt) << row.h << row.m << row.s;
        EXPECT_EQ(ms, row.ms) << row.h << row.m << row.s;
    }
}

TEST(ParseTimeOfDay, TellsNonsenseFromTimesThatDoNotExist) {
    struct Row {
        const char* h;
        const char* m;
        const char* s;
        Reason reason;
    };
    const Row rows[] = {{"24", "00", "00", Reason::badTime},     {"12", "60", "00", Reason::badTime},
                        {"12", "00", "61", Reason::badTime},     {"ab", "00", "00", Reason::badNumber},
                        {"12", "0x", "00", Reason::badNumber},   {"12", "00", "1x", Reason::badNumber},
                        {"12", "00", "10.a", Reason::badNumber}, {"12", "00", "10.0000a", Reason::badNumber},
                        {"012", "00", "10", Reason::badNumber},  {"12", "000", "10", Reason::badNumber},
                        {"12", "00", "", Reason::badNumber},     {"12", "00", "-1", Reason::badNumber}};
    for (const Row& row : rows) {
        std::uint32_t ms = 0;
        EXPECT_EQ(ParseTimeOfDay(row.h, row.m, row.s, ms), row.reason)
            << row.h << ':' << row.m << ':' << row.s;
    }
}

TEST(DegreesOfDms, TheSignOfTheDegreesHoldsForAll) {
    double angle = 0.0;
    ASSERT_TRUE(DegreesOfDms(-0.0, 30.0, 36.0, angle));
    EXPECT_DOUBLE_EQ(angle, -0.51);
    ASSERT_TRUE(DegreesOfDms(45.0, 15.0, 0.0, angle));
    EXPECT_DOUBLE_EQ(angle, 45.25);
    EXPECT_FALSE(DegreesOfDms(45.0, 60.0, 0.0, angle));
    EXPECT_FALSE(DegreesOfDms(45.0, 0.0, 60.0, angle));
    EXPECT_FALSE(DegreesOfDms(45.0, -1.0, 0.0, angle));
}

TEST(ShownText, IsShortAndPrintable) {
    EXPECT_EQ(ShownText("latitude", "$GP\x01\xFF,\r"), "latitude: $GP??,?");
    EXPECT_EQ(ShownText("", "abc"), "abc");
    EXPECT_EQ(ShownText("field", std::string(500, 'x')).size(), 80U);
    EXPECT_EQ(Trimmed(" \ta b\t "), "a b");
    EXPECT_EQ(Trimmed(" \t "), "");
}

TEST(ReasonText, EveryReasonHasItsOwnText) {
    const int count = static_cast<int>(Reason::count_);
    for (int i = 0; i < count; ++i) {
        EXPECT_NE(ReasonText(static_cast<Reason>(i)), "unknown reason") << i;
        for (int j = 0; j < i; ++j) {
            EXPECT_NE(ReasonText(static_cast<Reason>(i)), ReasonText(static_cast<Reason>(j)));
        }
    }
}

}  // namespace
}  // namespace gpsbook
