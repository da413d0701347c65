// White space at the end of a text.
#include "platform/base/StringTrimRight.h"

#include <gtest/gtest.h>

namespace {

std::string Trimmed(std::string text) {
    StringTrimRight(text);
    return text;
}

TEST(StringTrimRight, EveryWhiteSpaceAtTheEndGoes) {
    for (const char c : {' ', '\t', '\r', '\n', '\v', '\f'}) EXPECT_EQ(Trimmed(std::string("A") + c), "A");
    EXPECT_EQ(Trimmed("A \t\r\n\v\f "), "A");
    EXPECT_EQ(Trimmed(" \t "), "");
    EXPECT_EQ(Trimmed(""), "");
}

TEST(StringTrimRight, WhatIsBeforeAndWithinStays) {
    EXPECT_EQ(Trimmed("  A  B  "), "  A  B");
    EXPECT_EQ(Trimmed("\tA"), "\tA");
}

// 0xA0, 0x85 are white space in some locales; here they end "à", "Å" and an ellipsis.
TEST(StringTrimRight, NoOtherByteIsWhiteSpace) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = std::string("A") + static_cast<char>(byte);
        if (byte == ' ' || (byte >= 9 && byte <= 13)) continue;
        EXPECT_EQ(Trimmed(text), text) << byte;
    }
    EXPECT_EQ(Trimmed("citt\xC3\xA0 "), "citt\xC3\xA0");
    EXPECT_EQ(Trimmed("\xC3\x85"), "\xC3\x85");
}

}  // namespace
