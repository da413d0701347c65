// The mark of points measured against a virtual reference station.
#include <gtest/gtest.h>

#include <random>

#include "gps/model/CPunGps.h"
#include "gps/model/FrameTags.h"
#include "tests/Scale.h"
#include "tests/gps/coords/ScriptedMotore.h"

namespace {

using namespace gpstest;

using Flags = std::vector<std::uint32_t>;

class CPunGpsFrames : public ::testing::Test {
protected:
    /// The text after the mark was set, or cleared; "-" in front when the answer was false.
    std::string Set(const std::string& text) { return After(text, &CPunGps::SetPointAsVrs); }
    std::string Clear(const std::string& text) { return After(text, &CPunGps::ClearPointAsVrs); }

    std::string After(const std::string& text, bool (CPunGps::*change)()) {
        point.SetSecScri(text);
        log.entries.clear();
        const bool changed = (point.*change)();
        EXPECT_EQ(log.Of(&point), changed ? Flags{CHG_SECSCRI} : Flags{}) << text;
        return (changed ? "" : "-") + point.GetSecScri();
    }

    CPunGps point{nullptr, false, nullptr};
    ReportLog log;
};

TEST_F(CPunGpsFrames, TheTagIsTheseFiveBytes) { EXPECT_EQ(TAG_VRS, "[VRS]"); }

TEST_F(CPunGpsFrames, MarkComesBehindABlank) {
    EXPECT_EQ(Set("KERB"), "KERB [VRS]");
    EXPECT_EQ(Set(""), " [VRS]");
    EXPECT_EQ(Set("KERB "), "KERB  [VRS]");
    EXPECT_EQ(Set("citt\xC3\xA0"), "citt\xC3\xA0 [VRS]");
    EXPECT_EQ(Set("[vrs]"), "[vrs] [VRS]") << "small letters are no mark";
}

TEST_F(CPunGpsFrames, MarkThatIsThereIsNotSetAgain) {
    for (const char* text : {"KERB [VRS]", "A [VRS] B", "[VRS]", "x[VRS]y", "[[VRS]]"})
        EXPECT_EQ(Set(text), std::string("-") + text);
}

TEST_F(CPunGpsFrames, MarkIsFoundAnywhereInItsLetters) {
    for (const char* text : {"[VRS]", "a[VRS]", "[VRS]a", "A [VRS] B", "\xC3\xA0[VRS]"}) {
        point.SetSecScri(text);
        EXPECT_TRUE(point.IsPointVrs()) << text;
    }
    for (const char* text : {"", "VRS", "[VRS", "VRS]", "[vrs]", "[Vrs]", "[ VRS]", "[VR S]"}) {
        point.SetSecScri(text);
        EXPECT_FALSE(point.IsPointVrs()) << text;
    }
}

TEST_F(CPunGpsFrames, ClearingRemovesTheFirstMarkAndWhiteSpaceAtTheEnd) {
    EXPECT_EQ(Clear("KERB [VRS]"), "KERB");
    EXPECT_EQ(Clear(" [VRS]"), "");
    EXPECT_EQ(Clear("A [VRS] B"), "A  B") << "both blanks stay";
    EXPECT_EQ(Clear("[VRS] B"), " B") << "the blank at the front stays";
    EXPECT_EQ(Clear("[VRS]B"), "B");
    EXPECT_EQ(Clear("A [VRS] B \t\r\n"), "A  B");
    EXPECT_EQ(Clear("A [VRS] [VRS]"), "A  [VRS]") << "the second stays";
    EXPECT_EQ(Clear("A [VRS] "), "A");
    EXPECT_EQ(Clear("[V[VRS]RS]"), "[VRS]") << "what grows together is not looked at";
    EXPECT_EQ(Clear("citt\xC3\xA0 [VRS]"), "citt\xC3\xA0");
}

TEST_F(CPunGpsFrames, WithoutAMarkNothingIsCleared) {
    for (const char* text : {"", "KERB  ", "[vrs] "}) EXPECT_EQ(Clear(text), std::string("-") + text);
}

// Against a model that is written as one reads the rules, not as the library does it.
TEST_F(CPunGpsFrames, RandomTextsAreMarkedAndClearedAsAModelDoesIt) {
    const std::vector<std::string> parts{"[VRS]", "[VRS]", "[vrs]", "[V",       "RS]",
                                         " ",     "  ",    "A",     "\xC3\xA0", "\t"};
    std::mt19937 random(3);
    const auto upTo = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n)(random); };
    long marked = 0, plain = 0;
    for (long round = Scaled(20000); round > 0; --round) {
        std::string text;
        for (std::size_t n = upTo(6); n > 0; --n) text += parts[upTo(parts.size() - 1)];
        const std::size_t at = text.find("[VRS]");
        if (at == std::string::npos) {
            ASSERT_EQ(Clear(text), "-" + text);
            ASSERT_EQ(Set(text), text + " [VRS]");
            ++plain;
            continue;
        }
        ASSERT_EQ(Set(text), "-" + text);
        std::string rest = text.substr(0, at) + text.substr(at + 5);
        while (!rest.empty() && std::string_view(" \t\r\n\v\f").find(rest.back()) != std::string_view::npos)
            rest.pop_back();
        ASSERT_EQ(Clear(text), rest);
        ++marked;
    }
    EXPECT_GT(marked, 200);
    EXPECT_GT(plain, 200);
}

/// A point that keeps the texts it is given.
class ListeningPoint : public CPunGps {
public:
    ListeningPoint() : CPunGps(nullptr, false, nullptr) {}
    void SetSecScri(const std::string& text) override {
        texts.push_back(text);
        CPunGps::SetSecScri(text);
    }
    std::vector<std::string> texts;
};

TEST(PointMark, GoesThroughTheVirtualSetterAndOnlyWhenItChanges) {
    ListeningPoint point;
    EXPECT_FALSE(point.ClearPointAsVrs());
    EXPECT_TRUE(point.SetPointAsVrs());
    EXPECT_FALSE(point.SetPointAsVrs());
    EXPECT_TRUE(point.ClearPointAsVrs());
    EXPECT_EQ(point.texts, (std::vector<std::string>{" [VRS]", ""}));
}

TEST_F(CPunGpsFrames, SetAndClearBringBackATextWithoutWhiteSpaceAtItsEnd) {
    for (const char* text : {"", "KERB", " A  B", "\xE2\x82\xAC"}) {
        point.SetSecScri(text);
        EXPECT_TRUE(point.SetPointAsVrs());
        EXPECT_TRUE(point.IsPointVrs());
        EXPECT_TRUE(point.ClearPointAsVrs());
        EXPECT_EQ(point.GetSecScri(), text);
    }
}

}  // namespace
