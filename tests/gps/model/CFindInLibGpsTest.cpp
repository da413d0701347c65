// Points found by name and code.
#include "gps/model/CFindInLibGps.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "gps/model/PointSearch.h"
#include "tests/Scale.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/Layout.h"

namespace {

constexpr int kName = 1, kCode = 2, kBoth = 3;

/// A book whose points are called by their positions: "g.p", with code "c g.p".
class FindInLibGps : public ::testing::Test {
protected:
    void Fill(std::initializer_list<int> sizes) {
        book.Fill(sizes);
        for (int g = 0; g < book.lib.GetGrpArSize(); ++g)
            for (int p = 0; p < book.lib.GetPunArSize(g); ++p) {
                const std::string place = std::to_string(g) + '.' + std::to_string(p);
                At(g, p).SetNome(place);
                At(g, p).SetSecScri("c " + place);
            }
    }
    CPunGps& At(int g, int p) { return *book.lib.GetPunAt(g, p); }

    /// "found g p" of a search through the book.
    std::string Global(const std::string& text, int flags, int g, int p) {
        const int found = find.TrovaPunGlobal(text, flags, g, p);
        return std::to_string(found) + ' ' + std::to_string(g) + ' ' + std::to_string(p);
    }
    std::string Local(const std::string& text, int flags, int g, int p) {
        const int found = find.TrovaPunLocal(text, flags, g, p);
        return std::to_string(found) + ' ' + std::to_string(p);
    }

    test::Book book;
    CFindInLibGps find{&book.lib};
};

TEST_F(FindInLibGps, AnEmptyBookHasNothing) {
    EXPECT_EQ(Global("", kBoth, 0, 0), "-1 0 0");
    EXPECT_EQ(Global("A1", kBoth, 5, 7), "-1 5 7");
    EXPECT_EQ(Local("A1", kBoth, 0, 3), "-1 3");
}

TEST_F(FindInLibGps, GroupsWithoutPointsHaveNothing) {
    book.Fill({0, 0});
    EXPECT_EQ(Global("", kBoth, 1, 4), "-1 1 4");
}

TEST_F(FindInLibGps, TheStartPointItselfIsFoundAtOnce) {
    Fill({2, 5, 2});
    EXPECT_EQ(Global("1.3", kName, 1, 3), "3 1 3");
    EXPECT_EQ(Local("1.3", kName, 1, 3), "3 3");
}

TEST_F(FindInLibGps, TheSecondRoundReachesTheStartGroupFromItsFirstPoint) {
    Fill({2, 5, 2});
    EXPECT_EQ(Global("1.0", kName, 1, 3), "0 1 0");
    EXPECT_EQ(Global("0.1", kName, 1, 3), "1 0 1");
    EXPECT_EQ(Global("2.1", kName, 1, 3), "1 2 1");
}

TEST_F(FindInLibGps, AlongTheWayTheFirstOneIsTaken) {
    Fill({3, 3, 3});
    for (const auto& [g, p] : {std::pair{0, 1}, {1, 0}, {1, 2}, {2, 1}}) At(g, p).SetNome("X");
    EXPECT_EQ(Global("X", kName, 1, 1), "2 1 2");
    EXPECT_EQ(Global("X", kName, 1, 3), "1 2 1") << "behind the last point of the group";
    EXPECT_EQ(Global("X", kName, 2, 2), "1 0 1");
    EXPECT_EQ(Global("X", kName, 0, 2), "0 1 0");
}

TEST_F(FindInLibGps, ALocalSearchStaysInItsGroupAndGoesForward) {
    Fill({3, 3});
    EXPECT_EQ(Local("0.1", kName, 0, 0), "1 1");
    EXPECT_EQ(Local("0.1", kName, 0, 2), "-1 2");
    EXPECT_EQ(Local("1.1", kName, 0, 0), "-1 0");
}

TEST_F(FindInLibGps, CodeIsFoundThoughAnotherPointHasThatName) {
    Fill({4});
    At(0, 0).SetNome("KERB");
    At(0, 2).SetSecScri("KERB");
    EXPECT_EQ(Global("KERB", kCode, 0, 0), "2 0 2");
    EXPECT_EQ(Global("KERB", kName, 0, 0), "0 0 0");
    EXPECT_EQ(Global("KERB", kBoth, 0, 1), "2 0 2");
    EXPECT_EQ(Global("KERB", kBoth, 0, 0), "0 0 0");
}

TEST_F(FindInLibGps, WithoutAFlagNothingIsFound) {
    Fill({2});
    for (const int flags : {0, 4, 8, -4, INT_MIN}) {
        EXPECT_EQ(Global("0.0", flags, 0, 0), "-1 0 0") << flags;
        EXPECT_EQ(Local("0.0", flags, 0, 0), "-1 0") << flags;
    }
    EXPECT_EQ(Global("0.1", kName | 4, 0, 0), "1 0 1") << "bits that are not known do no harm";
    EXPECT_EQ(Global("c 0.1", -1, 0, 0), "1 0 1");
}

TEST_F(FindInLibGps, TextsAreEqualByteByByte) {
    Fill({1});
    At(0, 0).SetNome("a1");
    for (const char* other : {"A1", "a", "a1 ", " a1", "a*", "a?", ""})
        EXPECT_EQ(Global(other, kName, 0, 0), "-1 0 0") << other;
    EXPECT_EQ(Global("a1", kName, 0, 0), "0 0 0");
    const std::string zero("a\0b", 3);
    At(0, 0).SetNome(zero);
    EXPECT_EQ(Global("a", kName, 0, 0), "-1 0 0");
    EXPECT_EQ(Global(zero, kName, 0, 0), "0 0 0");
    At(0, 0).SetNome("");
    EXPECT_EQ(Global("", kName, 0, 0), "0 0 0") << "no name is a name, too";
}

TEST_F(FindInLibGps, GroupsOutsideAreEmpty) {
    Fill({2, 2});
    for (const int g : {INT_MIN, -5, -1, 2, 3, INT_MAX}) {
        EXPECT_EQ(Local("0.0", kName, g, 0), "-1 0") << g;
        EXPECT_EQ(Global("0.0", kName, g, 1), "0 0 0") << g;
        EXPECT_EQ(Global("1.1", kName, g, 1), "1 1 1") << g;
        EXPECT_EQ(Global("none", kName, g, 1), "-1 " + std::to_string(g) + " 1");
    }
}

TEST_F(FindInLibGps, PointsOutsideAreNone) {
    Fill({3, 3});
    EXPECT_EQ(Global("1.0", kName, 1, 3), "0 1 0");
    EXPECT_EQ(Global("1.0", kName, 1, INT_MAX), "0 1 0");
    EXPECT_EQ(Global("1.0", kName, 1, -1), "0 1 0");
    EXPECT_EQ(Local("1.0", kName, 1, INT_MIN), "0 0");
    EXPECT_EQ(Local("1.0", kName, 1, INT_MAX), "-1 " + std::to_string(INT_MAX));
}

TEST_F(FindInLibGps, APlaceWithoutAPointIsPassedOver) {
    Fill({3});
    CPunGps*& place = CGrpGpsLayout::Points(*book.lib.GetGrpAt(0))[1];
    CPunGps* const point = std::exchange(place, nullptr);
    EXPECT_EQ(Global("0.2", kName, 0, 0), "2 0 2");
    EXPECT_EQ(Global("0.1", kName, 0, 0), "-1 0 0");
    place = point;
}

TEST_F(FindInLibGps, ACopySearchesTheSameBook) {
    Fill({2});
    const CFindInLibGps other(nullptr);
    CFindInLibGps copy(other);
    copy = find;
    int g = 0, p = 0;
    EXPECT_EQ(CFindInLibGps(copy).TrovaPunGlobal("0.1", kName, g, p), 1);
    EXPECT_TRUE(std::has_virtual_destructor_v<CFindInLibGps>);
    EXPECT_EQ(sizeof(CFindInLibGps), 2 * sizeof(void*)) << "the book and the virtual table";
}

// Places in the order in which they come: the way round the book, written down one after the other.
std::vector<std::pair<int, int>> WayFrom(const CLibGps& book, int g, int p) {
    std::vector<std::pair<int, int>> way;
    const int groups = book.GetGrpArSize();
    const auto through = [&](int group, int from) {
        for (int i = from; i < book.GetPunArSize(group); ++i) way.emplace_back(group, i);
    };
    through(g, p);
    for (int group = g + 1; group < groups; ++group) through(group, 0);
    for (int group = 0; group < groups && group <= std::max(g < 0 ? groups : g, 0); ++group)
        through(group, 0);
    return way;
}

bool Fits(const CPunGps& point, const std::string& text, int flags) {
    return ((flags & 1) != 0 && point.GetNome() == text) || ((flags & 2) != 0 && point.GetSecScri() == text);
}

TEST(FindInLibGpsRandom, EverySearchFromEveryStartFindsWhatAModelFinds) {
    std::mt19937 random(20261121);
    const auto upTo = [&](int n) { return std::uniform_int_distribution<int>(0, n)(random); };
    long found = 0, missed = 0;
    for (long round = Scaled(20000); round > 0; --round) {
        test::Book book;
        for (int g = upTo(5); g > 0; --g) book.Fill({upTo(6)});
        const int groups = book.lib.GetGrpArSize();
        for (int g = 0; g < groups; ++g)
            for (int p = 0; p < book.lib.GetPunArSize(g); ++p) {
                book.lib.GetPunAt(g, p)->SetNome(std::string(1, static_cast<char>('a' + upTo(9))));
                book.lib.GetPunAt(g, p)->SetSecScri(std::string(1, static_cast<char>('a' + upTo(9))));
            }
        CFindInLibGps find(&book.lib);
        for (int start = -1; start <= groups; ++start)
            for (int from = 0; from <= book.lib.GetPunArSize(start) + 1; ++from) {
                const std::string text(1, static_cast<char>('a' + upTo(10)));
                const int flags = upTo(3);
                std::pair<int, int> expected{start, from};
                bool is = false;
                for (const auto& [g, p] : WayFrom(book.lib, start, from))
                    if (Fits(*book.lib.GetPunAt(g, p), text, flags)) {
                        expected = {g, p};
                        is = true;
                        break;
                    }
                ++(is ? found : missed);
                int g = start, p = from;
                EXPECT_EQ(find.TrovaPunGlobal(text, flags, g, p), is ? expected.second : -1);
                ASSERT_EQ(std::pair(g, p), expected) << start << ' ' << from << ' ' << text << ' ' << flags;
                int local = from;
                const bool inStart = is && expected.first == start && expected.second >= from;
                EXPECT_EQ(find.TrovaPunLocal(text, flags, start, local), inStart ? expected.second : -1);
                EXPECT_EQ(local, inStart ? expected.second : from);
            }
    }
    EXPECT_GT(found, 500);
    EXPECT_GT(missed, 500);
}

TEST(FindInLibGpsRandom, NoPointIsLookedAtMoreThanTwiceAndEachAtLeastOnce) {
    std::mt19937 random(7);
    const auto upTo = [&](int n) { return std::uniform_int_distribution<int>(0, n)(random); };
    for (long round = Scaled(20000); round > 0; --round) {
        test::Book book;
        for (int g = upTo(5); g > 0; --g) book.Fill({upTo(6)});
        std::map<const CPunGps*, int> looked;
        for (int start = -2; start <= book.lib.GetGrpArSize() + 1; ++start)
            for (int from = -1; from <= book.lib.GetPunArSize(start); ++from) {
                looked.clear();
                int g = start, p = from;
                EXPECT_FALSE(FirstInBook(book.lib, g, p, [&](const CPunGps& point) {
                    ++looked[&point];
                    return false;
                }));
                std::size_t points = 0;
                for (int i = 0; i < book.lib.GetGrpArSize(); ++i)
                    points += static_cast<std::size_t>(book.lib.GetPunArSize(i));
                EXPECT_EQ(looked.size(), points);
                for (const auto& [point, times] : looked) EXPECT_LE(times, 2);
            }
    }
}

}  // namespace
