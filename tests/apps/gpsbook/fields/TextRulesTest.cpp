// Which texts may be entered.
#include "apps/gpsbook/fields/TextRules.h"

#include <gtest/gtest.h>

namespace gpsbook {
namespace {

TEST(TextRules, TextsThatRecordsCanCarryAreAccepted) {
    for (const char* text : {"", "P1", "day one", "-S-", "#0", "a/b", "a=b", "Grüppe 漢 😀", "unset"})
        EXPECT_EQ(TextProblem(text), "") << text;
}

TEST(TextRules, WhatBreaksARecordIsRefusedAndSaysWhy) {
    const std::string nul("a\0b", 3);
    const std::pair<std::string, const char*> rows[] = {{"a;b", "';'"},
                                                        {"a\nb", "line breaks"},
                                                        {"a\rb", "line breaks"},
                                                        {"a\tb", "control characters"},
                                                        {nul, "control characters"},
                                                        {"\x7F", "control characters"},
                                                        {"\xFF", "not UTF-8"},
                                                        {"\xC0\xAF", "not UTF-8"},
                                                        {"\xED\xA0\x80", "not UTF-8"},
                                                        {"caf\xE9", "not UTF-8"}};
    for (const auto& [text, why] : rows)
        EXPECT_NE(TextProblem(text).find(why), std::string::npos) << text << ": " << TextProblem(text);
}

}  // namespace
}  // namespace gpsbook
