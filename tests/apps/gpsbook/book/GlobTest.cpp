// Names with wildcards.
#include "apps/gpsbook/book/Glob.h"

#include <gtest/gtest.h>

#include <string>

namespace gpsbook {
namespace {

TEST(Glob, PatternsFitWholeTexts) {
    struct Row {
        const char* pattern;
        const char* text;
        bool fits;
    };
    const Row rows[] = {{"P1", "P1", true},
                        {"P1", "P10", false},
                        {"P*", "P10", true},
                        {"*", "", true},
                        {"", "", true},
                        {"", "a", false},
                        {"?", "", false},
                        {"P?", "P1", true},
                        {"P?", "P10", false},
                        {"*1", "P11", true},
                        {"*1", "P12", false},
                        {"a*b*c", "axxbyyc", true},
                        {"a*b*c", "axxbyy", false},
                        {"**a**", "a", true},
                        {"?*", "a", true},
                        {"ß?", "ßß", true},
                        {"?", "漢", true},
                        {"*?", "漢", true},
                        {"a*?b", "aéb", true},
                        {"a?b", "aéb", true},
                        {"a??b", "aéb", false},
                        {"p1", "P1", false},
                        {"[a]", "a", false},
                        {"[a]", "[a]", true}};
    for (const Row& row : rows)
        EXPECT_EQ(FitsGlob(row.pattern, row.text), row.fits) << row.pattern << " and " << row.text;
}

TEST(Glob, PatternOfManyStarsEndsSoon) {
    const std::string text(20'000, 'a');
    std::string pattern;
    for (int i = 0; i < 100; ++i) pattern += "*a";
    EXPECT_FALSE(FitsGlob(pattern + "*b", text));
}

TEST(Glob, TextThatIsNoUtf8IsGoneThrough) {
    EXPECT_TRUE(FitsGlob("?", "\xFF"));
    EXPECT_TRUE(FitsGlob("*x", "\xE2\x82x"));
    EXPECT_TRUE(FitsGlob("a*", "a\xE2"));
}

}  // namespace
}  // namespace gpsbook
