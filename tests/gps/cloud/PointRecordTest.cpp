// Records of points, "UPTGPS" and "IPTGPS", against lines written by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "gps/cloud/FieldLayout.h"
#include "tests/gps/cloud/CloudBook.h"

namespace {

using test::CloudBook;
using test::Fields;
using test::FillPoint;
using test::kPoint;
using test::Lines;
using test::Split;

/// A filled point known under id 8 in a group known under 7, with nothing to send.
CPunGps* Known(CloudBook& book) {
    book.AddGroup(7);
    CPunGps* point = book.AddPoint(0, 0);
    FillPoint(*point);
    point->SetCloudId(8);
    book.points.AddItemToTable(point);
    return point;
}

TEST(PointRecord, NothingChangedIsTheEmptyText) {
    CloudBook book;
    Known(book);
    EXPECT_EQ(book.Changes(book.points), "");
}

TEST(PointRecord, DateAndTimeAreSevenFields) {
    CloudBook book;
    Known(book)->CloudItemChanged(0x10);
    EXPECT_EQ(book.Changes(book.points), "UPTGPS;8;16;2024;5;31;86399");
}

TEST(PointRecord, EachBitHasItsFields) {
    for (const auto& [bit, fields] : kPoint) {
        CloudBook book;
        Known(book)->CloudItemChanged(bit);
        EXPECT_EQ(book.Changes(book.points), "UPTGPS;8;" + std::to_string(bit) + ";" + fields);
    }
}

TEST(PointRecord, AllBitsGoInTheirOrder) {
    CloudBook book;
    Known(book)->CloudItemChanged(0x1FFFF);
    EXPECT_EQ(book.Changes(book.points), "UPTGPS;8;131071" + Fields(kPoint, 0x1FFFF));
}

TEST(PointRecord, EveryPairOfBitsGoesInTheirOrder) {
    CloudBook book;
    CPunGps* point = Known(book);
    for (const auto& [one, fieldsOfOne] : kPoint)
        for (const auto& [two, fieldsOfTwo] : kPoint) {
            if (one >= two) continue;
            book.points.AddItemToTable(point);
            point->CloudItemChanged(two);
            point->CloudItemChanged(one);
            ASSERT_EQ(book.Changes(book.points),
                      "UPTGPS;8;" + std::to_string(one | two) + Fields(kPoint, one | two));
        }
}

TEST(PointRecord, ChangesAreJoinedByLineBreaks) {
    CloudBook book;
    book.AddGroup(7);
    for (int i = 1; i <= 3; ++i) book.AddPoint(0, i)->CloudItemChanged(0x20);
    const std::string records = book.Changes(book.points);
    EXPECT_EQ(Lines(records).size(), 3u);
    EXPECT_EQ(records.size(), 3u * 13 + 2 * 2);
    std::string expected;
    for (CCloudItem* item : book.points.GetChanged())
        expected +=
            (expected.empty() ? "" : "\r\n") + ("UPTGPS;" + std::to_string(item->GetCloudId())) + ";32;0";
    EXPECT_EQ(records, expected) << "in the order of the set";
}

// --- additions ----------------------------------------------------------------------------------------

TEST(PointRecord, AdditionHasTwentyNineFields) {
    CloudBook book;
    book.AddGroup(7);
    FillPoint(*book.AddPoint(0, 0));
    const std::string record = book.Additions(book.points);
    EXPECT_EQ(record, "IPTGPS;7" + Fields(kPoint, 0x1FFFF));
    EXPECT_EQ(Split(record).size(), 29u);
    EXPECT_EQ(book.lastCounter, 1);
}

TEST(PointRecord, NewPointHasUnsetValues) {
    CloudBook book;
    book.AddGroup(7);
    book.AddPoint(0, 0);
    EXPECT_EQ(book.Additions(book.points),
              "IPTGPS;7;;;NULLVAL;NULLVAL;NULLVAL;0;0;0;0;0;0;0;0"
              ";NULLVAL;NULLVAL;NULLVAL;NULLVAL;NULLVAL;NULLVAL;NULLVAL;NULLVAL;0;0;0;0;0;0");
}

TEST(PointRecord, AdditionsAreCountedAndJoined) {
    CloudBook book;
    book.AddGroup(7);
    book.AddPoint(0, 0, "A");
    book.AddPoint(0, 0, "B");
    const std::string records = book.Additions(book.points, 5);
    ASSERT_EQ(Lines(records).size(), 2u);
    EXPECT_EQ(Lines(records)[0].substr(0, 12), "IPTGPS;7;A;;");
    EXPECT_EQ(Lines(records)[1].substr(0, 12), "IPTGPS;7;B;;");
    EXPECT_EQ(book.lastCounter, 7);
    CloudBook empty;
    EXPECT_EQ(empty.Additions(empty.points, 3), "");
    EXPECT_EQ(empty.lastCounter, 3);
}

TEST(PointRecord, ManyRecordsAreThoseOfEachPoint) {
    CloudBook book;
    book.AddGroup(7);
    std::string expected;
    for (int i = 0; i < 500; ++i) {
        CPunGps* point =
            book.AddPoint(0, 0, std::string(static_cast<std::size_t>(i % 7 == 0 ? 20 * i : i % 13), 'n'));
        point->SetLat(45 + i / 1000.0);
        vex::String fields;
        book.points.GetFields(*point, 0x1FFFF, fields);
        expected += (i > 0 ? "\r\nIPTGPS;7;" : "IPTGPS;7;") + std::string(fields.View());
    }
    EXPECT_EQ(book.Additions(book.points), expected);
    EXPECT_EQ(book.lastCounter, 500);
}

TEST(PointRecord, NewGroupIsNamedByTheNumberOfItsRecord) {
    CloudBook book;
    book.AddGroup(0, "first");
    book.AddGroup(70, "known");
    book.AddGroup(0, "second");
    for (int g = 0; g < 3; ++g)
        for (const char* name : {"a", "b"}) book.AddPoint(g, 0, name);
    book.Additions(book.bases);
    EXPECT_EQ(book.lastCounter, 2);
    const auto lines = Lines(book.Additions(book.points, book.lastCounter));
    ASSERT_EQ(lines.size(), 6u);
    const char* expected[] = {"IPTGPS;-1;a;", "IPTGPS;-1;b;", "IPTGPS;70;a;",
                              "IPTGPS;70;b;", "IPTGPS;-2;a;", "IPTGPS;-2;b;"};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(lines[i].substr(0, 12), expected[i]);
    EXPECT_EQ(book.lastCounter, 8);
}

TEST(PointRecord, CounterOfEarlierAdditionsShiftsTheNumber) {
    CloudBook book;
    book.AddGroup(0);
    book.AddPoint(0, 0);
    book.Additions(book.bases, 4);
    EXPECT_EQ(book.Additions(book.points, book.lastCounter).substr(0, 9), "IPTGPS;-5");
}

TEST(PointRecord, CopyWithoutGroupRefersToNone) {
    CloudBook book;
    CPunGps loose(&book.points, false, nullptr);
    EXPECT_EQ(book.Additions(book.points).substr(0, 10), "IPTGPS;0;;");
}

TEST(PointRecord, GroupThatTheServerWillNotKnowIsZero) {
    CloudBook book;
    CGrpGps loose(nullptr, false, nullptr, 0);
    CPunGps point(&book.points, false, &loose);
    EXPECT_EQ(book.Additions(book.points).substr(0, 10), "IPTGPS;0;;");
}

// --- single values ------------------------------------------------------------------------------------

TEST(PointRecord, TimeOfDayIsPrintedWithItsSign) {
    CloudBook book;
    CPunGps* point = Known(book);
    point->SetYear(65535);
    point->SetMonth(255);
    point->SetDay(255);
    point->SetTod(4294967295u);
    vex::String fields;
    book.points.GetFields(*point, 0x10, fields);
    EXPECT_EQ(fields.View(), "65535;255;255;-1");
}

TEST(PointRecord, CovariancesAreWholeNumbers) {
    CloudBook book;
    const auto text = [&](float covariance) {
        char line[64] = "x";
        char* end = book.points.ConcatCovarianceValue(line, covariance);
        EXPECT_EQ(end, line + std::string(line).size());
        return std::string(line);
    };
    EXPECT_EQ(text(0.25F), "x;250000000");
    EXPECT_EQ(text(1.0F), "x;1000000000");
    EXPECT_EQ(text(1.5F), "x;1000000000") << "at most 1";
    EXPECT_EQ(text(3.0F), "x;1000000000");
    EXPECT_EQ(text(INFINITY), "x;1000000000");
    EXPECT_EQ(text(-0.002F), "x;-2000000");
    EXPECT_EQ(text(0.1F), "x;100000001") << "0.1F is 0.100000001490116";
    EXPECT_EQ(text(1e-9F), "x;0") << "cut, not rounded: 1e-9F is a little less";
    EXPECT_EQ(text(-1e-10F), "x;0");
    EXPECT_EQ(text(-1.0F), "x;-1000000000");
    EXPECT_EQ(text(-3.0F), "x;1294967296") << "no lower limit: 32 bits of -3000000000";
    EXPECT_EQ(text(-5.0F), "x;-705032704");
    EXPECT_EQ(text(NAN), "x;0");
    EXPECT_EQ(text(-1e30F), "x;0") << "more than 64 bits";
    EXPECT_EQ(text(-INFINITY), "x;0");
}

TEST(PointRecord, CovariancesOfTheClockAreNeverSent) {
    CloudBook book;
    CPunGps* point = Known(book);
    vex::String before, after;
    book.points.GetFields(*point, 0x1FFFF, before);
    point->SetPosCov_tt(0.5F);
    point->SetPosCov_xt(0.5F);
    point->SetPosCov_yt(0.5F);
    point->SetPosCov_zt(0.5F);
    book.points.GetFields(*point, 0x1FFFF, after);
    EXPECT_EQ(before, after);
    EXPECT_EQ(book.Changes(book.points), "");
}

TEST(PointRecord, TextsOfAnyLengthAreSentWhole) {
    for (const std::size_t size : {2'000u, 2'048u, 5'000u, 300'000u}) {
        CloudBook book;
        CPunGps* point = Known(book);
        point->SetNome(std::string(size, 'n'));
        point->SetSecScri(std::string(size, 's'));
        EXPECT_EQ(book.Changes(book.points),
                  "UPTGPS;8;3;" + std::string(size, 'n') + ";" + std::string(size, 's'));
    }
}

TEST(PointRecord, LongTextLeavesRoomForShortOnesBehindIt) {
    CloudBook book;
    book.AddGroup(7);
    book.AddPoint(0, 0, "A");
    book.AddPoint(0, 0, std::string(10'000, 'x'));
    book.AddPoint(0, 0, "B");
    const auto lines = Lines(book.Additions(book.points));
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[2].size(), lines[0].size());
    EXPECT_EQ(lines[1].size(), lines[0].size() + 9'999);
}

TEST(PointRecord, FieldsOfAMaskHaveNoSeparatorInFront) {
    CloudBook book;
    CPunGps* point = Known(book);
    vex::String fields("old");
    book.points.GetFields(*point, 0x110, fields);
    EXPECT_EQ(fields.View(), "2024;5;31;86399;45.123456789");
    book.points.GetFields(*point, 0, fields);
    EXPECT_EQ(fields.View(), "");
}

TEST(PointRecord, LayoutTellsTheFieldsOfEachBit) {
    int next = 2;
    for (std::size_t i = 0; i < kPoint.size(); ++i) {
        EXPECT_EQ(PUN_FIELDS[i].bit, kPoint[i].first);
        EXPECT_EQ(PUN_FIELDS[i].first, next);
        EXPECT_EQ(static_cast<std::size_t>(PUN_FIELDS[i].count), Split(kPoint[i].second).size());
        next += PUN_FIELDS[i].count;
    }
    EXPECT_EQ(kPoint.size(), PUN_FIELDS.size());
    EXPECT_EQ(next, PUN_REPLY_FIELDS);
}

}  // namespace
