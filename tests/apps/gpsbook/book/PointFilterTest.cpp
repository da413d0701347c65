// Which points a list tells of.
#include "apps/gpsbook/book/PointFilter.h"

#include <gtest/gtest.h>

#include "apps/gpsbook/commands/CommandError.h"
#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

CPunGps Point() {
    CPunGps point(nullptr, false, nullptr);
    SetFix(point, 45, 13, 60, 2);  // 2024-05-01T08:00:00Z, quality 4
    point.SetNome("P12");
    point.SetCode("KERB");
    return point;
}

TEST(PointFilter, NothingGivenTakesEveryPoint) {
    const PointFilter filter;
    EXPECT_TRUE(filter.IsEmpty());
    EXPECT_TRUE(filter.Takes(Point()));
    EXPECT_TRUE(filter.Takes(CPunGps(nullptr, false, nullptr)));
}

TEST(PointFilter, AllThatIsGivenHasToHold) {
    const auto takes = [](auto&& set) {
        PointFilter filter;
        set(filter);
        EXPECT_FALSE(filter.IsEmpty());
        return filter.Takes(Point());
    };
    EXPECT_TRUE(takes([](PointFilter& f) { f.qualities = {4}; }));
    EXPECT_TRUE(takes([](PointFilter& f) { f.qualities = {1, 4, 5}; }));
    EXPECT_FALSE(takes([](PointFilter& f) { f.qualities = {5}; }));
    EXPECT_TRUE(takes([](PointFilter& f) { f.name = "P1*"; }));
    EXPECT_FALSE(takes([](PointFilter& f) { f.name = "P1"; }));
    EXPECT_TRUE(takes([](PointFilter& f) { f.code = "K?RB"; }));
    EXPECT_FALSE(takes([](PointFilter& f) { f.code = "X*"; }));
    EXPECT_FALSE(takes([](PointFilter& f) {
        f.qualities = {4};
        f.name = "Q*";
    }));
}

TEST(PointFilter, TimesAreIncludedAndAPointWithoutTimeIsOutside) {
    const auto takes = [](const char* from, const char* to, const CPunGps& point) {
        PointFilter filter;
        if (*from) filter.from = ParseTimeBound(from);
        if (*to) filter.to = ParseTimeBound(to);
        return filter.Takes(point);
    };
    EXPECT_TRUE(takes("2024-05-01T08:00:00Z", "", Point()));
    EXPECT_TRUE(takes("", "2024-05-01T08:00:00Z", Point()));
    EXPECT_FALSE(takes("2024-05-01T08:00:00.001Z", "", Point()));
    EXPECT_FALSE(takes("", "2024-05-01T07:59:59.999Z", Point()));
    EXPECT_FALSE(takes("", "2024-04-30T23:00:00Z", Point()));
    EXPECT_TRUE(takes("07:00", "09:00", Point()));
    EXPECT_FALSE(takes("09:00", "", Point()));
    EXPECT_FALSE(takes("00:00", "", CPunGps(nullptr, false, nullptr)));
}

TEST(PointFilter, QualitiesAreAListOfCodes) {
    EXPECT_EQ(ParseQualities("4"), (std::set<int>{4}));
    EXPECT_EQ(ParseQualities("5,4,4"), (std::set<int>{4, 5}));
    EXPECT_EQ(ParseQualities("-1"), (std::set<int>{-1}));
    for (const char* text : {"", "4,", ",4", "fix", "4;5", "4 5", "4.5", "99999999999"})
        EXPECT_THROW(ParseQualities(text), CommandError) << text;
}

}  // namespace
}  // namespace gpsbook::test
