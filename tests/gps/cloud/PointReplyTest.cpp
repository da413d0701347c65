// Replies about points: edits of 29 fields and deletions.
#include <gtest/gtest.h>

#include <string>

#include "gps/cloud/FieldLayout.h"
#include "tests/gps/cloud/CloudBook.h"
#include "tests/gps/model/ChangeWatch.h"

namespace {

using test::ChangeWatch;
using test::CloudBook;
using test::Fields;
using test::Join;
using test::kPoint;
using test::PointReply;
using test::Reply;
using test::Split;

std::string FieldsOf(CloudBook& book, CPunGps& point, std::uint32_t mask = 0x1FFFF) {
    vex::String fields;
    book.points.GetFields(point, mask, fields);
    return std::string(fields.View());
}

/// Nothing was applied and nobody was told.
void ExpectRefused(CloudBook& book, const Reply& reply) {
    EXPECT_FALSE(book.points.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(book.notified, 0);
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    EXPECT_TRUE(book.points.GetById().empty());
    EXPECT_TRUE(book.points.GetAdded().empty());
}

// --- refused ------------------------------------------------------------------------------------------

TEST(PointReply, OtherNumberOfFieldsIsRefused) {
    for (const std::size_t fields : {0u, 2u, 28u, 30u, 86u}) {
        CloudBook book;
        book.AddGroup(7);
        Reply reply = PointReply();
        reply.resize(fields, "1");
        ExpectRefused(book, reply);
    }
}

TEST(PointReply, IdsBelowOneAreRefused) {
    for (const char* value : {"0", "-5", "", "x"}) {
        CloudBook book;
        book.AddGroup(7);
        ExpectRefused(book, PointReply(value));
        ExpectRefused(book, PointReply("8", value));
    }
}

TEST(PointReply, GroupBelowOneIsRefusedForAKnownPointToo) {
    CloudBook book;
    book.AddGroup(7);
    CPunGps* point = book.AddPoint(0, 8, "mine");
    EXPECT_FALSE(book.points.UpdateSuccessful_Edit(PointReply("8", "0")));
    EXPECT_EQ(point->GetNome(), "mine");
    EXPECT_EQ(book.notified, 0);
}

TEST(PointReply, UnknownGroupMakesNoPoint) {
    CloudBook book;
    book.AddGroup(7);
    ExpectRefused(book, PointReply("8", "9"));
}

TEST(PointReply, DeletedGroupMakesNoPoint) {
    CloudBook book;
    book.AddGroup(3);
    CGrpGps* group = book.AddGroup(7);
    book.bases.ItemDeletedLocally(group);
    book.lib.DelGrpAt(1);
    ExpectRefused(book, PointReply("8", "7"));
}

TEST(PointReply, GroupThatTheBookDoesNotHoldMakesNoPoint) {
    CloudBook book;
    book.AddGroup(3);
    CGrpGps loose(&book.bases, false, &book.map, 0);
    loose.SetCloudId(7);
    book.bases.AddItemToTable(&loose);
    ExpectRefused(book, PointReply("8", "7"));
}

// --- a new point --------------------------------------------------------------------------------------

TEST(PointReply, UnknownPointIsAddedToItsGroupWithEveryField) {
    CloudBook book;
    book.AddGroup(6);
    book.AddGroup(7);
    book.AddPoint(1, 80);
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply("8", "7")));
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    ASSERT_EQ(book.lib.GetPunArSize(1), 2);
    CPunGps& point = *book.lib.GetPunAt(1, 1);
    EXPECT_EQ(point.GetCloudId(), 8);
    EXPECT_EQ(point.GetNome(), "P 100");
    EXPECT_EQ(point.GetSecScri(), "spigolo");
    EXPECT_EQ(point.GetCoordX(), 1.5);
    EXPECT_EQ(point.GetCoordY(), 2.5);
    EXPECT_EQ(point.GetCoordZ(), 3.5);
    EXPECT_EQ(point.GetCodeEgn(), 9u);
    EXPECT_EQ(point.GetYear(), 2024);
    EXPECT_EQ(point.GetMonth(), 5);
    EXPECT_EQ(point.GetDay(), 31);
    EXPECT_EQ(point.GetTod(), 86399u);
    EXPECT_EQ(point.GetQua(), 4);
    EXPECT_EQ(point.GetNuGpsUsed(), 10);
    EXPECT_EQ(point.GetNuGloUsed(), 7);
    EXPECT_EQ(point.GetLat(), 45.123456789);
    EXPECT_EQ(point.GetLong(), -9.25);
    EXPECT_EQ(point.GetElev(), 1.7e200);
    EXPECT_EQ(point.GetAltAnt(), 2);
    EXPECT_EQ(point.GetPdop(), 1.25);
    EXPECT_EQ(point.GetGdop(), 2.25);
    EXPECT_EQ(point.GetHposRms(), 0.011);
    EXPECT_EQ(point.GetVposRms(), 0.022);
    EXPECT_EQ(point.GetPosCov_xx(), 0.25F);
    EXPECT_EQ(point.GetPosCov_xy(), -0.002F);
    EXPECT_EQ(point.GetPosCov_xz(), 0);
    EXPECT_EQ(point.GetPosCov_yy(), 1);
    EXPECT_EQ(point.GetPosCov_yz(), 0.5F);
    EXPECT_EQ(point.GetPosCov_zz(), 0.125F);
    EXPECT_EQ(book.notified, 1);
    EXPECT_TRUE(book.notedRight);
}

TEST(PointReply, EveryFieldComesOutAtItsPlaceInARecord) {
    for (std::size_t i = 2; i < PUN_REPLY_FIELDS; ++i) {
        CloudBook book;
        book.AddGroup(7);
        Reply reply = PointReply();
        reply[i] = i < 4 ? std::string(reply[i].View()) + "'" : std::string(i < 23 ? "3" : "375000000");
        EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
        EXPECT_EQ(FieldsOf(book, *book.lib.GetPunAt(0, 0)), Join(reply, 2)) << "field " << i;
    }
}

TEST(PointReply, NewPointIsInStepThoughItsFieldsWereReported) {
    CloudBook book;
    book.AddGroup(7);
    Reply reply = PointReply();
    reply[17] = "100";  // a height that a new point does not have
    ChangeWatch watch;
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
    std::vector<std::uint32_t> flags;
    for (const auto& [item, flag] : watch.Take()) {
        EXPECT_EQ(item, book.lib.GetPunAt(0, 0));
        if (flags.empty() || flags.back() != flag) flags.push_back(flag);
    }
    std::vector<std::uint32_t> inOrder;
    for (std::uint32_t bit = 1; bit <= 0x10000; bit <<= 1) inOrder.push_back(bit);
    EXPECT_EQ(flags, inOrder);
    CCloudItem* item = nullptr;
    EXPECT_TRUE(book.points.FindItem(8, item));
    EXPECT_EQ(item, book.lib.GetPunAt(0, 0));
    EXPECT_EQ(item->GetCloudFlag(), 0u);
    EXPECT_TRUE(book.points.GetChanged().empty());
    EXPECT_TRUE(book.points.GetAdded().empty());
}

TEST(PointReply, NewPointHasItsIdBeforeItsFields) {
    CloudBook book;
    book.AddGroup(7);
    long calls = 0;
    CCloudItem::SetObserver([&](const CCloudItem& item, std::uint32_t) {
        ++calls;
        EXPECT_EQ(item.GetCloudId(), 8);
    });
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply()));
    CCloudItem::SetObserver({});
    EXPECT_GT(calls, 15);
}

TEST(PointReply, IdsHave64Bits) {
    CloudBook book;
    book.AddGroup(2147483647);  // what 32 bits would make of the id below
    book.AddGroup(4294967303);
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply("4294967304", "4294967303")));
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply("4294967305", "4294967303")));
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    ASSERT_EQ(book.lib.GetPunArSize(1), 2);
    EXPECT_EQ(book.lib.GetPunAt(1, 0)->GetCloudId(), 4294967304);
    Reply reply = PointReply("4294967305", "4294967303");
    reply[2] = "renamed";
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
    ASSERT_EQ(book.lib.GetPunArSize(1), 2);
    EXPECT_EQ(book.lib.GetPunAt(1, 1)->GetNome(), "renamed");
    EXPECT_TRUE(book.points.UpdateSuccessful_Del(Split("DEL;4294967304")));
    ASSERT_EQ(book.lib.GetPunArSize(1), 1);
    EXPECT_EQ(book.lib.GetPunAt(1, 0)->GetCloudId(), 4294967305);
}

TEST(PointReply, ListenersFindTheReplyApplied) {
    CloudBook book;
    book.AddGroup(7);
    std::string told;
    book.lib.AddListener([&](int, int, auto*) {
        CCloudItem* item = nullptr;
        CPunGps* point = book.lib.GetPunAt(0, 0);
        told += book.points.FindItem(8, item) && item == point && item ? "known " : "gone ";
        if (point) told += FieldsOf(book, *point, 0x10001) + " ";
    });
    Reply reply = PointReply();
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
    reply[2] = "renamed";
    for (std::size_t i = 23; i < 29; ++i) reply[i] = "0";
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
    EXPECT_TRUE(book.points.UpdateSuccessful_Del(Split("DEL;8")));
    EXPECT_EQ(told,
              "known P 100;250000000;-2000000;0;1000000000;500000000;125000000 "
              "known renamed;0;0;0;0;0;0 gone ");
}

// --- a known point ------------------------------------------------------------------------------------

TEST(PointReply, KnownPointTakesEveryFieldAndStaysInItsGroup) {
    CloudBook book;
    book.AddGroup(6);
    book.AddGroup(7);
    CPunGps* point = book.AddPoint(0, 8, "old");
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply("8", "7")));
    EXPECT_EQ(book.lib.GetPunAt(0, 0), point);
    EXPECT_EQ(book.lib.GetPunArSize(1), 0);
    EXPECT_EQ(";" + FieldsOf(book, *point), Fields(kPoint, 0x1FFFF));
    EXPECT_EQ(point->GetCloudFlag(), 0u);
    EXPECT_TRUE(book.points.GetChanged().empty());
    EXPECT_EQ(book.notified, 1);
}

TEST(PointReply, KnownPointNeedsNoKnownGroup) {
    CloudBook book;
    book.AddGroup(0);
    CPunGps* point = book.AddPoint(0, 8, "old");
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply("8", "12345")));
    EXPECT_EQ(point->GetNome(), "P 100");
}

TEST(PointReply, EachChangedFieldWinsAlone) {
    for (const auto& [bit, fields] : kPoint) {
        CloudBook book;
        book.AddGroup(7);
        CPunGps* point = book.AddPoint(0, 8, "old");
        point->SetElev(5);
        book.points.AddItemToTable(point);
        const std::string before = FieldsOf(book, *point, bit);
        point->CloudItemChanged(bit);
        EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply()));
        EXPECT_EQ(FieldsOf(book, *point, bit), before) << bit;
        EXPECT_EQ(";" + FieldsOf(book, *point, 0x1FFFF & ~bit), Fields(kPoint, 0x1FFFF & ~bit)) << bit;
        EXPECT_EQ(point->GetCloudFlag(), bit);
        EXPECT_EQ(book.points.GetChanged().count(point), 1u);
    }
}

TEST(PointReply, OneOfTheTimesKeepsThemAll) {
    CloudBook book;
    book.AddGroup(7);
    CPunGps* point = book.AddPoint(0, 8);
    point->SetDay(17);
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply()));
    EXPECT_EQ(FieldsOf(book, *point, 0x10), "0;0;17;0");
}

TEST(PointReply, ReportingIsOnAgainAfterwards) {
    CloudBook book;
    book.AddGroup(7);
    CPunGps* point = book.AddPoint(0, 8);
    point->SetCloudNotify(false);
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply()));
    EXPECT_TRUE(point->IsCloudNotify());
    EXPECT_EQ(point->GetCloudFlag(), 0u);
}

TEST(PointReply, TombstoneTakesNothingAndIsNotified) {
    CloudBook book;
    book.AddGroup(7);
    CPunGps* point = book.AddPoint(0, 8);
    book.points.ItemDeletedLocally(point);
    book.lib.DelPunAt(0, 0);
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply()));
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
    EXPECT_EQ(book.points.GetDeleted().size(), 1u);
    EXPECT_EQ(book.notified, 1);
}

// --- values -------------------------------------------------------------------------------------------

TEST(PointReply, WholeNumbersTakeTheWidthOfTheirField) {
    CloudBook book;
    book.AddGroup(7);
    Reply reply = PointReply();
    reply[7] = "-2";
    reply[8] = "65537";
    reply[9] = "257";
    reply[10] = "-1";
    reply[11] = "-1";
    reply[12] = "-2147483648";
    reply[13] = "258";
    reply[14] = "511";
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
    CPunGps& point = *book.lib.GetPunAt(0, 0);
    EXPECT_EQ(point.GetCodeEgn(), 4294967294u);
    EXPECT_EQ(point.GetYear(), 1);
    EXPECT_EQ(point.GetMonth(), 1);
    EXPECT_EQ(point.GetDay(), 255);
    EXPECT_EQ(point.GetTod(), 4294967295u);
    EXPECT_EQ(point.GetQua(), -2147483647 - 1);
    EXPECT_EQ(point.GetNuGpsUsed(), 2);
    EXPECT_EQ(point.GetNuGloUsed(), 255);
}

TEST(PointReply, CovariancesAreDividedAsRealNumbers) {
    for (const auto& [text, value] : {std::pair{"250000000", 0.25F},
                                      {"1", 1e-9F},
                                      {"-2000000", -0.002F},
                                      {"1000000000", 1.0F},
                                      {"4000000000", 2.147483647F},
                                      {"NULLVAL", 0.0F},
                                      {"0.5", 0.0F},
                                      {"", 0.0F}}) {
        CloudBook book;
        book.AddGroup(7);
        Reply reply = PointReply();
        for (std::size_t i = 23; i < 29; ++i) reply[i] = text;
        EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
        CPunGps& point = *book.lib.GetPunAt(0, 0);
        for (const float covariance : {point.GetPosCov_xx(), point.GetPosCov_xy(), point.GetPosCov_xz(),
                                       point.GetPosCov_yy(), point.GetPosCov_yz(), point.GetPosCov_zz()})
            EXPECT_EQ(covariance, value) << text;
    }
}

TEST(PointReply, UnreadableNumbersAreZero) {
    CloudBook book;
    book.AddGroup(7);
    Reply reply = PointReply();
    for (std::size_t i = 4; i < 29; ++i) reply[i] = "?";
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(FieldsOf(book, *book.lib.GetPunAt(0, 0), 0x1FFFC),
              "0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0");
}

TEST(PointReply, FieldsOfOneBitAreStoredAndReported) {
    for (const FieldGroup& field : PUN_FIELDS) {
        CloudBook book;
        book.AddGroup(7);
        CPunGps* point = book.AddPoint(0, 8, "old");
        point->SetElev(5);
        book.points.AddItemToTable(point);
        const Reply reply = PointReply();
        book.points.SetFields(*point, field.bit, &reply[static_cast<std::size_t>(field.first)]);
        EXPECT_EQ(point->GetCloudFlag(), field.bit) << field.name;
        EXPECT_EQ(";" + FieldsOf(book, *point, field.bit), Fields(kPoint, field.bit));
        book.points.AddItemToTable(point);
        book.points.SetFields(*point, 0x20000, &reply[0]);
        EXPECT_EQ(point->GetCloudFlag(), 0u) << "a bit of nobody has no field";
    }
}

// --- deletions ----------------------------------------------------------------------------------------

TEST(PointDeletion, PointLeavesTableAndBook) {
    CloudBook book;
    book.AddGroup(7);
    CPunGps* a = book.AddPoint(0, 81);
    book.AddPoint(0, 82)->CloudItemChanged(0x1);
    CPunGps* c = book.AddPoint(0, 83);
    EXPECT_TRUE(book.points.UpdateSuccessful_Del(Split("anything;82")));
    ASSERT_EQ(book.lib.GetPunArSize(0), 2);
    EXPECT_EQ(book.lib.GetPunAt(0, 0), a);
    EXPECT_EQ(book.lib.GetPunAt(0, 1), c);
    EXPECT_EQ(book.points.GetById().size(), 2u);
    EXPECT_TRUE(book.points.GetChanged().empty());
    EXPECT_TRUE(book.points.GetDeleted().empty());
    EXPECT_EQ(book.notified, 1);
    EXPECT_TRUE(book.notedRight);
    EXPECT_FALSE(book.points.UpdateSuccessful_Del(Split("anything;82")));
    EXPECT_EQ(book.notified, 1);
}

TEST(PointDeletion, OtherNumberOfFieldsAndUnknownPointsAreRefused) {
    CloudBook book;
    book.AddGroup(7);
    book.AddPoint(0, 8);
    for (const char* reply : {"8", "DEL;8;8", "DEL;9", "DEL;0", "DEL;"})
        EXPECT_FALSE(book.points.UpdateSuccessful_Del(Split(reply))) << reply;
    EXPECT_EQ(book.lib.GetPunArSize(0), 1);
    EXPECT_EQ(book.points.GetById().size(), 1u);
    EXPECT_EQ(book.notified, 0);
}

TEST(PointDeletion, PointThatTheBookDoesNotHoldHasLeftTheTable) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    CPunGps loose(&book.points, false, group);
    loose.SetCloudId(8);
    book.points.AddItemToTable(&loose);
    EXPECT_FALSE(book.points.UpdateSuccessful_Del(Split("DEL;8")));
    EXPECT_TRUE(book.points.GetById().empty());
    EXPECT_EQ(book.notified, 0);
}

TEST(PointReply, WithoutBookKnownPointsAreEditedAndNoneMade) {
    CloudBook book;
    book.AddGroup(7);
    CPunGps* point = book.AddPoint(0, 8);
    book.points.SetOwner(nullptr);
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(PointReply("8")));
    EXPECT_EQ(point->GetNome(), "P 100");
    EXPECT_FALSE(book.points.UpdateSuccessful_Edit(PointReply("9")));
    EXPECT_FALSE(book.points.UpdateSuccessful_Del(Split("DEL;8")));
    EXPECT_TRUE(book.points.GetById().empty());
    EXPECT_EQ(book.lib.GetPunArSize(0), 1);
    EXPECT_EQ(book.notified, 0);
}

TEST(PointReply, WithoutBaseTableNoPointIsMade) {
    CloudBook book;
    book.AddGroup(7);
    CGpsPntCloudTable alone(nullptr);
    alone.SetOwner(&book.lib);
    EXPECT_FALSE(alone.UpdateSuccessful_Edit(PointReply()));
    EXPECT_EQ(book.lib.GetPunArSize(0), 0);
}

}  // namespace
