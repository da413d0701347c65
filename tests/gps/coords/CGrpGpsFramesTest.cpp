// The mark of a base's frame, and the points of a group that a virtual reference station served.
#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "gps/model/CLibGps.h"
#include "gps/model/FrameTags.h"
#include "platform/coord/CLibMap.h"
#include "tests/Scale.h"
#include "tests/gps/coords/ScriptedMotore.h"

namespace {

using namespace gpstest;

using Flags = std::vector<std::uint32_t>;

class CGrpGpsFrames : public ::testing::Test {
protected:
    /// The text after a change; "-" in front when the answer was false.
    std::string Set(const std::string& text, int kind) {
        return After(text, [kind](CGrpGps& g) { return g.SetBaseEuref(kind); });
    }
    std::string Clear(const std::string& text) {
        return After(text, [](CGrpGps& g) { return g.ClearBaseEuref(); });
    }

    std::string After(const std::string& text, const std::function<bool(CGrpGps&)>& change) {
        group.SetSecScri(text);
        log.entries.clear();
        const bool answer = change(group);
        EXPECT_EQ(log.Of(&group), group.GetSecScri() != text ? Flags{CHG_SECSCRI} : Flags{}) << text;
        return (answer ? "" : "-") + group.GetSecScri();
    }

    CGrpGps group{nullptr, false, nullptr, 0};
    ReportLog log;
};

TEST_F(CGrpGpsFrames, TagsAndKindsAreThese) {
    EXPECT_EQ(TAG_EUREF, "[WGS84-EUREF]");
    EXPECT_EQ(TAG_ETRF2000, "[WGS84-ETRF2000]");
    EXPECT_EQ(BASE_EUREF, 9);
    EXPECT_EQ(BASE_ETRF2000, 10);
}

TEST_F(CGrpGpsFrames, KindSelectsTheTag) {
    EXPECT_EQ(Set("Base 1", 9), "Base 1 [WGS84-EUREF]");
    EXPECT_EQ(Set("Base 1", 10), "Base 1 [WGS84-ETRF2000]");
    EXPECT_EQ(Set("", 9), " [WGS84-EUREF]");
}

TEST_F(CGrpGpsFrames, UnknownKindSetsNothingAndIsTrueAllTheSame) {
    for (const int kind : {0, 1, 8, 11, -9, -10, INT_MAX, INT_MIN})
        EXPECT_EQ(Set("Base 1", kind), "Base 1") << kind;
}

TEST_F(CGrpGpsFrames, TaggedBaseIsLeftAloneWhateverTheKind) {
    for (const char* text : {"Base 1 [WGS84-EUREF]", "[WGS84-ETRF2000]", "a[WGS84-EUREF]b"})
        for (const int kind : {9, 10, 0}) EXPECT_EQ(Set(text, kind), std::string("-") + text) << kind;
}

TEST_F(CGrpGpsFrames, TagIsFoundAnywhereInItsLetters) {
    for (const char* text : {"[WGS84-EUREF]", "x[WGS84-EUREF]", "[WGS84-ETRF2000]y", "A [WGS84-EUREF] B",
                             "X [WGS84-EUREF] [WGS84-ETRF2000]"}) {
        group.SetSecScri(text);
        EXPECT_TRUE(group.IsBaseEuref()) << text;
    }
    for (const char* text :
         {"", "[wgs84-euref]", "[WGS84-EUREF", "WGS84-ETRF2000]", "[WGS84-ETRF2014]", "[VRS]"}) {
        group.SetSecScri(text);
        EXPECT_FALSE(group.IsBaseEuref()) << text;
    }
}

TEST_F(CGrpGpsFrames, ClearingBringsBackTheText) {
    EXPECT_EQ(Clear("Base 1 [WGS84-EUREF]"), "Base 1");
    EXPECT_EQ(Clear("Base 1 [WGS84-ETRF2000]"), "Base 1");
    EXPECT_EQ(Clear(" [WGS84-EUREF]"), "");
    EXPECT_EQ(Clear("A [WGS84-EUREF] B "), "A  B");
    EXPECT_EQ(Clear("[WGS84-ETRF2000] B"), " B");
}

TEST_F(CGrpGpsFrames, OneTagAtATimeAndThatOfEtrf2000First) {
    EXPECT_EQ(Clear("X [WGS84-EUREF] [WGS84-ETRF2000]"), "X [WGS84-EUREF]");
    EXPECT_EQ(Clear("X [WGS84-ETRF2000] [WGS84-EUREF]"), "X  [WGS84-EUREF]");
    EXPECT_EQ(Clear("X [WGS84-EUREF]"), "X");
    EXPECT_EQ(Clear("X [WGS84-EUREF] [WGS84-EUREF]"), "X  [WGS84-EUREF]");
    EXPECT_EQ(Clear("X"), "-X");
    EXPECT_EQ(Clear("X [wgs84-euref] "), "-X [wgs84-euref] ");
}

// Against a model that is written as one reads the rules, not as the library does it.
TEST_F(CGrpGpsFrames, RandomTextsAreTaggedAndClearedAsAModelDoesIt) {
    const std::vector<std::string> parts{
        "[WGS84-EUREF]", "[WGS84-ETRF2000]", "[VRS]", " ", "  ", "A", "\xC3\xA0", "[", "]", "\t",
        "[wgs84-euref]"};
    std::mt19937 random(2);
    const auto upTo = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n)(random); };
    const auto trimmed = [](std::string t) {
        while (!t.empty() && std::string_view(" \t\r\n\v\f").find(t.back()) != std::string_view::npos)
            t.pop_back();
        return t;
    };
    long cleared = 0, set = 0;
    for (long round = Scaled(20000); round > 0; --round) {
        std::string text;
        for (std::size_t n = upTo(6); n > 0; --n) text += parts[upTo(parts.size() - 1)];
        std::string tag = "[WGS84-ETRF2000]";
        if (text.find(tag) == std::string::npos) tag = "[WGS84-EUREF]";
        const std::size_t at = text.find(tag);
        const bool has = at != std::string::npos;
        EXPECT_EQ(Clear(text), has ? trimmed(text.substr(0, at) + text.substr(at + tag.size())) : "-" + text);
        EXPECT_EQ(Set(text, 10), has ? "-" + text : text + " [WGS84-ETRF2000]");
        ++(has ? cleared : set);
    }
    EXPECT_GT(cleared, 200);
    EXPECT_GT(set, 200);
}

/// A group that keeps the texts it is given.
class ListeningGroup : public CGrpGps {
public:
    ListeningGroup() : CGrpGps(nullptr, false, nullptr, 0) {}
    void SetSecScri(const std::string& text) override {
        texts.push_back(text);
        CGrpGps::SetSecScri(text);
    }
    std::vector<std::string> texts;
};

TEST(GroupTags, GoThroughTheVirtualSetter) {
    ListeningGroup group;
    EXPECT_TRUE(group.SetBaseEuref(9));
    EXPECT_TRUE(group.ClearBaseEuref());
    EXPECT_TRUE(group.SetBaseEuref(10));
    EXPECT_EQ(group.texts, (std::vector<std::string>{" [WGS84-EUREF]", "", " [WGS84-ETRF2000]"}));
}

TEST(GroupTags, WhatSetsNoTextDoesNotCallTheSetter) {
    ListeningGroup group;
    for (const int kind : {0, 8, 11, -9}) EXPECT_TRUE(group.SetBaseEuref(kind));
    EXPECT_FALSE(group.ClearBaseEuref());
    EXPECT_TRUE(group.texts.empty());
    group.SetBaseEuref(9);
    group.texts.clear();
    for (const int kind : {0, 9, 10}) EXPECT_FALSE(group.SetBaseEuref(kind));
    EXPECT_TRUE(group.texts.empty());
}

/// A group whose points have these texts.
class VrsOfAGroup : public ::testing::Test {
protected:
    void Fill(const std::vector<std::string>& texts) {
        book.AddGrp(false);
        for (const std::string& text : texts) book.AddPun(0, false)->SetSecScri(text);
    }
    CGrpGps& Group() { return *book.GetGrpAt(0); }
    std::vector<std::string> Texts() {
        std::vector<std::string> texts;
        for (int p = 0; p < book.GetPunArSize(0); ++p) texts.push_back(book.GetPunAt(0, p)->GetSecScri());
        return texts;
    }

    CLibMap map;
    CLibGps book{nullptr, nullptr, nullptr, &map, 0};
    std::vector<int> changed{77, 78};  // what was in the list is of no interest
};

TEST_F(VrsOfAGroup, AllButTheKeptPointAreCleared) {
    Fill({"A [VRS]", "B", "C [VRS]", " [VRS]"});
    EXPECT_TRUE(Group().ClearAllPointVrs(2, changed));
    EXPECT_EQ(changed, (std::vector<int>{0, 3}));
    EXPECT_EQ(Texts(), (std::vector<std::string>{"A", "B", "C [VRS]", ""}));
}

TEST_F(VrsOfAGroup, WithoutVirtualPointsNothingHappens) {
    Fill({"A", "B ", "[vrs]"});
    ReportLog log;
    EXPECT_FALSE(Group().ClearAllPointVrs(1, changed));
    EXPECT_TRUE(changed.empty());
    EXPECT_TRUE(log.entries.empty());
    EXPECT_EQ(Texts(), (std::vector<std::string>{"A", "B ", "[vrs]"}));
}

TEST_F(VrsOfAGroup, OnlyTheKeptOneIsNoChange) {
    Fill({"A", "B [VRS]"});
    EXPECT_FALSE(Group().ClearAllPointVrs(1, changed));
    EXPECT_TRUE(changed.empty());
}

TEST_F(VrsOfAGroup, KeptPositionOutsideKeepsNone) {
    for (const int kept : {-1, 2, 100, INT_MIN, INT_MAX}) {
        CLibGps other(nullptr, nullptr, nullptr, &map, 0);
        other.AddGrp(false);
        other.AddPun(0, false)->SetSecScri("A [VRS]");
        other.AddPun(0, false)->SetSecScri("B [VRS]");
        EXPECT_TRUE(other.GetGrpAt(0)->ClearAllPointVrs(kept, changed)) << kept;
        EXPECT_EQ(changed, (std::vector<int>{0, 1})) << kept;
    }
}

TEST_F(VrsOfAGroup, GroupWithoutPointsEmptiesTheList) {
    Fill({});
    EXPECT_FALSE(Group().ClearAllPointVrs(-1, changed));
    EXPECT_TRUE(changed.empty());
}

TEST_F(VrsOfAGroup, PointWithTwoMarksKeepsTheSecond) {
    Fill({"A [VRS] [VRS]"});
    EXPECT_TRUE(Group().ClearAllPointVrs(-1, changed));
    EXPECT_EQ(Texts(), (std::vector<std::string>{"A  [VRS]"}));
    EXPECT_TRUE(Group().ClearAllPointVrs(-1, changed));
    EXPECT_EQ(Texts(), (std::vector<std::string>{"A"}));
}

// Against a model that is written as one reads the rules, not as the library does it.
TEST_F(VrsOfAGroup, RandomTextsAreClearedAsAModelDoesIt) {
    const std::vector<std::string> parts{"[VRS]", "[VRS]", "[vrs]", "[V", "RS]", " ", "A", "\t", "\xC3\xA0"};
    std::mt19937 random(7);
    const auto upTo = [&](int n) { return std::uniform_int_distribution<int>(0, n)(random); };
    const auto cleared = [](std::string text) {
        text.erase(text.find("[VRS]"), 5);
        while (!text.empty() && std::string_view(" \t\r\n\v\f").find(text.back()) != std::string_view::npos)
            text.pop_back();
        return text;
    };
    long some = 0, none = 0;
    for (long round = Scaled(3000); round > 0; --round) {
        std::vector<std::string> texts(static_cast<std::size_t>(upTo(6)));
        for (std::string& text : texts)
            for (int n = upTo(5); n > 0; --n) text += parts[static_cast<std::size_t>(upTo(8))];
        CLibGps other(nullptr, nullptr, nullptr, &map, 0);
        other.AddGrp(false);
        for (const std::string& text : texts) other.AddPun(0, false)->SetSecScri(text);
        const int kept = upTo(8) - 1;
        std::vector<int> expected;
        for (int i = 0; i < static_cast<int>(texts.size()); ++i) {
            std::string& text = texts[static_cast<std::size_t>(i)];
            if (i == kept || text.find("[VRS]") == std::string::npos) continue;
            text = cleared(text);
            expected.push_back(i);
        }
        ASSERT_EQ(other.GetGrpAt(0)->ClearAllPointVrs(kept, changed), !expected.empty());
        ASSERT_EQ(changed, expected);
        for (int i = 0; i < static_cast<int>(texts.size()); ++i)
            ASSERT_EQ(other.GetPunAt(0, i)->GetSecScri(), texts[static_cast<std::size_t>(i)]);
        ++(expected.empty() ? none : some);
    }
    EXPECT_GT(some, 50);
    EXPECT_GT(none, 50);
}

TEST_F(VrsOfAGroup, EachChangedPointReportsItsTextAndNoOther) {
    Fill({"A [VRS]", "B", "C [VRS]"});
    ReportLog log;
    Group().ClearAllPointVrs(0, changed);
    EXPECT_EQ(log.entries, (std::vector<ReportLog::Entry>{{book.GetPunAt(0, 2), CHG_SECSCRI}}));
}

}  // namespace
