// What every table puts into a commit: real values, deletions, and what is held back from it.
#include <gtest/gtest.h>

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "platform/base/GpsValues.h"
#include "tests/Scale.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::IsChanged;
using test::Item;
using test::Items;
using test::Register;
using test::Table;

// --- real values --------------------------------------------------------------------------------------

std::string Concat(double value, CCloudTable::enumDoubleFormat format = CCloudTable::fmtLineare) {
    char line[64] = "x";
    const char* end = CCloudTable::ConcatDoubleValue(line, value, format);
    EXPECT_EQ(end, line + std::strlen(line));
    return line;
}

TEST(CloudLine, RealValueIsTheShortestThatReadsBack) {
    EXPECT_EQ(Concat(0), "x;0");
    EXPECT_EQ(Concat(-0.0), "x;-0");
    EXPECT_EQ(Concat(1.5), "x;1.5");
    EXPECT_EQ(Concat(0.1), "x;0.1");
    EXPECT_EQ(Concat(45.123456789), "x;45.123456789");
    EXPECT_EQ(Concat(500000), "x;5e+05") << "with an exponent where that is shorter";
    EXPECT_EQ(Concat(500001), "x;500001");
    EXPECT_EQ(Concat(1e-9), "x;1e-09");
    EXPECT_EQ(Concat(-1e300), "x;-1e+300") << "every negative value is set";
    EXPECT_EQ(Concat(-INFINITY), "x;-inf");
}

TEST(CloudLine, ValueThatIsNotSetIsAToken) {
    for (const double value :
         {GPS_VAL_UNSET, GPS_VAL_SET_LIMIT, DBL_MAX, double{INFINITY}, double{NAN}, -double{NAN}})
        EXPECT_EQ(Concat(value), "x;NULLVAL") << value;
    EXPECT_NE(Concat(std::nextafter(GPS_VAL_SET_LIMIT, 0)), "x;NULLVAL");
}

TEST(CloudLine, AllFormatsWriteAlike) {
    for (const double value : {45.5, -9.25, 0.9996, 1.7e200})
        for (const auto format : {CCloudTable::fmtLineare, CCloudTable::fmtAngolo, CCloudTable::fmtFattore})
            EXPECT_EQ(Concat(value, format), Concat(value));
}

TEST(CloudLine, ValuesAreAppendedToTheLineOrItsEnd) {
    char line[64] = "";
    char* end = CCloudTable::ConcatDoubleValue(line, 1, CCloudTable::fmtLineare);
    end = CCloudTable::ConcatDoubleValue(end, 2, CCloudTable::fmtLineare);
    EXPECT_STREQ(line, ";1;2");
    EXPECT_EQ(CCloudTable::ConcatDoubleValue(line, 3, CCloudTable::fmtLineare), line + 6);
    EXPECT_STREQ(line, ";1;2;3");
}

TEST(CloudLine, RandomValuesReadBackInTheRoomThatIsPromised) {
    std::mt19937_64 random(3);
    const long count = Scaled(2'000'000);
    std::size_t longest = 0;
    for (long i = 0; i < count; ++i) {
        const std::uint64_t bits = random();
        double value = 0, back = 0;
        std::memcpy(&value, &bits, sizeof value);
        const std::string line = Concat(value);
        longest = std::max(longest, line.size() - 1);
        if (!IsCoordValid(value)) {
            ASSERT_EQ(line, "x;NULLVAL");
            continue;
        }
        std::from_chars(line.data() + 2, line.data() + line.size(), back);
        ASSERT_EQ(std::memcmp(&value, &back, sizeof value), 0) << line;
    }
    EXPECT_EQ(longest, 25u);
    EXPECT_LT(longest, static_cast<std::size_t>(CCloudTable::MAX_DOUBLE_TEXT));
}

// --- deletions ----------------------------------------------------------------------------------------

std::string Deletions(const CCloudTable& table) {
    vex::String records("of the last commit");
    table.GenerateCommitString_Del(records);
    return std::string(records.View());
}

TEST(CloudLine, DeletionsAreTagKindAndIdInOrderOfIds) {
    for (const auto& [kind, expected] :
         {std::pair{CCloudTable::tabGpsBase, "DEL;3;5\r\nDEL;3;70\r\nDEL;3;9223372036854775807"},
          {CCloudTable::tabGpsPnt, "DEL;4;5\r\nDEL;4;70\r\nDEL;4;9223372036854775807"}}) {
        Table table(kind);
        EXPECT_EQ(Deletions(table), "");
        Item a(&table, false), b(&table, false), c(&table, false), stays(&table, false);
        Register(table, a, 70);
        Register(table, b, 9223372036854775807);
        Register(table, c, 5);
        Register(table, stays, 6);
        for (Item* item : {&a, &b, &c}) table.ItemDeletedLocally(item);
        EXPECT_EQ(Deletions(table), expected);
    }
}

TEST(CloudLine, GoneWithoutDeletionIsNotSent) {
    Table table;
    {
        Item item(&table, false);
        Register(table, item, 5);
    }
    EXPECT_EQ(Deletions(table), "");
}

// --- held back ---------------------------------------------------------------------------------------------

TEST(CloudHold, HeldItemsAreNotSent) {
    Table table;
    Item a(&table, false), b(&table, false), c(&table, false), changed(&table, false), other(&table, false);
    Register(table, changed, 5);
    Register(table, other, 6);
    changed.CloudItemChanged(0x4);
    other.CloudItemChanged(0x8);
    table.HoldBack({&b, &changed});
    EXPECT_EQ(table.GetAdded(), (Items{&a, &c}));
    EXPECT_FALSE(IsChanged(table, changed));
    EXPECT_TRUE(IsChanged(table, other));
    ASSERT_TRUE(table.BeginCommit());
    EXPECT_EQ(table.GetSentAdded(), 2u);
    EXPECT_EQ(table.GetSentChanged(), 1u);
    table.ReleaseHeld();
    EXPECT_EQ(table.GetAdded(), (Items{&a, &b, &c})) << "back at its place";
    EXPECT_TRUE(IsChanged(table, changed));
    EXPECT_EQ(changed.GetCloudFlag(), 0x4u);
    EXPECT_TRUE(table.ConfirmAdded({21, 23}, 1));
    EXPECT_EQ(table.GetAdded(), Items{&b});
    EXPECT_EQ(a.GetCloudId(), 21);
    EXPECT_EQ(c.GetCloudId(), 23);
    table.ConfirmChanged({5, 6});
    EXPECT_TRUE(IsChanged(table, changed)) << "it was not sent";
    EXPECT_FALSE(IsChanged(table, other));
}

TEST(CloudHold, ItemsKeepTheirTicketsAndOrder) {
    Table table;
    Item a(&table, false), b(&table, false), c(&table, false), d(&table, false);
    table.HoldBack({&d, &a, &b});
    EXPECT_EQ(table.GetAdded(), Items{&c});
    Item later(&table, false);
    table.ReleaseHeld();
    EXPECT_EQ(table.GetAdded(), (Items{&a, &b, &c, &d, &later}));
    EXPECT_EQ(a.GetTicket(), 1);
    EXPECT_EQ(d.GetTicket(), 4);
    EXPECT_EQ(later.GetTicket(), 5);
}

TEST(CloudHold, HeldParentIsNoParent) {
    Table table;
    Item a(&table, false), b(&table, false);
    EXPECT_EQ(CCloudTable::CalcParentId(&b, &table, 2), -2);
    table.HoldBack({&a});
    EXPECT_EQ(CCloudTable::CalcParentId(&a, &table, 1), 0);
    EXPECT_EQ(CCloudTable::CalcParentId(&b, &table, 1), -1) << "its record is the first now";
    table.ReleaseHeld();
    EXPECT_EQ(CCloudTable::CalcParentId(&a, &table, 2), -1);
}

TEST(CloudHold, ItemsThatDoNotWaitArePassedOver) {
    Table table, other;
    Item known(&table, false), foreign(&other, false), a(&table, false);
    Register(table, known, 5);
    table.HoldBack({nullptr, &known, &foreign, &a, &a});
    table.ReleaseHeld();
    EXPECT_EQ(table.GetAdded(), Items{&a});
    EXPECT_EQ(other.GetAdded(), Items{&foreign});
    EXPECT_FALSE(IsChanged(table, known));
    table.ReleaseHeld();
    EXPECT_EQ(table.GetAdded(), Items{&a});
}

TEST(CloudHold, HoldingTwiceIsHoldingBoth) {
    Table table;
    Item a(&table, false), b(&table, false);
    table.HoldBack({&b});
    table.HoldBack({&a});
    EXPECT_TRUE(table.GetAdded().empty());
    table.ReleaseHeld();
    EXPECT_EQ(table.GetAdded(), (Items{&a, &b}));
}

TEST(CloudHold, AssigningToATableForgetsWhatItHeld) {
    Table table;
    Item a(&table, false), changed(&table, false);
    Register(table, changed, 5);
    changed.CloudItemChanged(0x4);
    table.HoldBack({&a, &changed});
    table = Table();
    table.ReleaseHeld();
    EXPECT_TRUE(table.GetAdded().empty());
    EXPECT_TRUE(table.GetChanged().empty());
}

}  // namespace
