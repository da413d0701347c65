// Whether a text is UTF-8.
#include "host/base/Utf8.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

TEST(Utf8, WholeCharactersAreTaken) {
    for (const char* text :
         {"", "A", "citt\xC3\xA0", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
          "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "\xE2\x82\xAC!"})
        EXPECT_TRUE(IsUtf8(text)) << text;
}

TEST(Utf8, OtherBytesAreNot) {
    for (const char* text :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE2\x82",
          "\xE2\x82(", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "A\xE0"})
        EXPECT_FALSE(IsUtf8(text)) << text;
}

// Every character as it is encoded by arithmetic, and that character with its last byte missing.
TEST(Utf8, EveryCharacterIsTakenAndCutShortIsNot) {
    for (std::uint32_t c = 0x80; c <= 0x10FFFF; ++c) {
        if (c == 0xD800) c = 0xE000;
        std::string text;
        const auto rest = [&](int shift) { text += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
        if (c < 0x800) {
            text += static_cast<char>(0xC0 | (c >> 6));
        } else if (c < 0x10000) {
            text += static_cast<char>(0xE0 | (c >> 12));
            rest(6);
        } else {
            text += static_cast<char>(0xF0 | (c >> 18));
            rest(12);
            rest(6);
        }
        rest(0);
        ASSERT_TRUE(IsUtf8(text)) << c;
        text.pop_back();
        ASSERT_FALSE(IsUtf8(text)) << c;
    }
}

}  // namespace
