// File names against patterns.
#include "host/os/PatternMatch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/Scale.h"

namespace {

TEST(PatternMatch, StarIsAnyText) {
    EXPECT_TRUE(PatternMatch("*", ""));
    EXPECT_TRUE(PatternMatch("*", "anything"));
    EXPECT_TRUE(PatternMatch("*.tps", ".tps"));
    EXPECT_TRUE(PatternMatch("*.tps", "a.tps.tps"));
    EXPECT_TRUE(PatternMatch("a*c", "ac"));
    EXPECT_TRUE(PatternMatch("a**c", "abbc"));
    EXPECT_FALSE(PatternMatch("*.tps", "a.tps.bak"));
    EXPECT_FALSE(PatternMatch("*.tps", "atps"));
    EXPECT_FALSE(PatternMatch("a*c", "acd"));
    EXPECT_FALSE(PatternMatch("", "a"));
    EXPECT_TRUE(PatternMatch("", ""));
}

TEST(PatternMatch, QuestionMarkIsOneCharacter) {
    EXPECT_TRUE(PatternMatch("a?c", "abc"));
    EXPECT_TRUE(PatternMatch("a?c",
                             "a\xC3\xA0"
                             "c"));
    EXPECT_TRUE(PatternMatch("?", "\xE6\xBC\xA2"));
    EXPECT_FALSE(PatternMatch("a?c", "ac"));
    EXPECT_FALSE(PatternMatch("?", ""));
    EXPECT_FALSE(PatternMatch("?", "ab"));
}

TEST(PatternMatch, LettersMatchWithoutCase) {
    EXPECT_TRUE(PatternMatch("*.tps", "A.TPS"));
    EXPECT_TRUE(PatternMatch("*.TPS", "a.Tps"));
    EXPECT_TRUE(PatternMatch("@[`{", "@[`{"));
    EXPECT_FALSE(PatternMatch("@", "`"));  // as far apart as A and a
    EXPECT_FALSE(PatternMatch("[", "{"));
}

bool Slow(const std::string& pattern, const std::string& name, std::size_t p = 0, std::size_t n = 0) {
    if (p == pattern.size()) return n == name.size();
    if (pattern[p] == '*')
        return Slow(pattern, name, p + 1, n) || (n < name.size() && Slow(pattern, name, p, n + 1));
    return n < name.size() && (pattern[p] == '?' || pattern[p] == name[n]) &&
           Slow(pattern, name, p + 1, n + 1);
}

TEST(PatternMatch, AgreesWithItsDefinition) {
    std::mt19937 random(3);
    long matched = 0;
    for (long n = 0; n < Scaled(200000); ++n) {
        std::string pattern, name;
        for (auto length = random() % 7; length > 0; --length) pattern += "ab*?"[random() % 4];
        for (auto length = random() % 8; length > 0; --length) name += "ab"[random() % 2];
        ASSERT_EQ(PatternMatch(pattern, name), Slow(pattern, name)) << pattern << " " << name;
        matched += Slow(pattern, name) ? 1 : 0;
    }
    EXPECT_GT(matched, Scaled(200000) / 20);
}

TEST(PatternMatch, ManyStarsTakeNoTime) {
    std::string pattern;
    for (int i = 0; i < 60; ++i) pattern += "*a";
    EXPECT_FALSE(PatternMatch(pattern + "b", std::string(200, 'a')));
}

}  // namespace
