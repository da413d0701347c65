// Replies about groups: edits of 86 fields and deletions.
#include <gtest/gtest.h>

#include <string>

#include "gps/cloud/FieldLayout.h"
#include "tests/gps/cloud/CloudBook.h"
#include "tests/gps/model/ChangeWatch.h"

namespace {

using test::BaseTable;
using test::ChangeWatch;
using test::CloudBook;
using test::Fields;
using test::GroupReply;
using test::Join;
using test::kGroup;
using test::Reply;
using test::Split;

std::string FieldsOf(CloudBook& book, CGrpGps& group, std::uint32_t mask = 0x1FFF) {
    vex::String fields;
    book.bases.GetFields(group, mask, fields);
    return std::string(fields.View());
}

/// Nothing was applied and nobody was told.
void ExpectRefused(CloudBook& book, const Reply& reply) {
    EXPECT_FALSE(book.bases.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(book.notified, 0);
    EXPECT_EQ(book.lib.GetGrpArSize(), 0);
    EXPECT_TRUE(book.bases.GetById().empty());
    EXPECT_TRUE(book.bases.GetAdded().empty());
}

// --- refused ------------------------------------------------------------------------------------------

TEST(BaseReply, OtherNumberOfFieldsIsRefused) {
    for (const std::size_t fields : {0u, 1u, 2u, 29u, 85u, 87u, 172u}) {
        CloudBook book;
        Reply reply = GroupReply();
        reply.resize(fields, "1");
        ExpectRefused(book, reply);
    }
}

TEST(BaseReply, IdOrCreatorBelowOneIsRefused) {
    for (const char* value : {"0", "-5", "", "x", "-9223372036854775808", "0.9"}) {
        CloudBook book;
        ExpectRefused(book, GroupReply(value));
        ExpectRefused(book, GroupReply("7", value));
    }
}

TEST(BaseReply, CreatorBelowOneIsRefusedForAKnownGroupToo) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7, "mine");
    EXPECT_FALSE(book.bases.UpdateSuccessful_Edit(GroupReply("7", "0")));
    EXPECT_EQ(group->GetNome(), "mine");
    EXPECT_EQ(book.notified, 0);
}

// --- a new group --------------------------------------------------------------------------------------

TEST(BaseReply, UnknownGroupIsAddedWithEveryField) {
    CloudBook book;
    book.AddGroup(3);
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply("7", "55")));
    ASSERT_EQ(book.lib.GetGrpArSize(), 2);
    CGrpGps& group = *book.lib.GetGrpAt(1);
    EXPECT_EQ(group.GetCloudId(), 7);
    EXPECT_EQ(group.GetCloudCreatorDevId(), 55);
    EXPECT_EQ(group.GetNome(), "BASE 1");
    EXPECT_EQ(group.GetSecScri(), "cod");
    EXPECT_EQ(group.GetCoordX(), 100.5);
    EXPECT_EQ(group.GetCoordY(), 200.25);
    EXPECT_EQ(group.GetCoordZ(), -12.125);
    EXPECT_EQ(group.GetCodeEgn(), 78u);
    EXPECT_EQ(group.GetNomeGrp(), "Nord");
    EXPECT_EQ(group.GetTipoRilievo(), 1);
    EXPECT_EQ(group.GetTipoRicevitore(), 0);
    EXPECT_EQ(group.GetBaseLat(), 45.5);
    EXPECT_EQ(group.GetBaseLong(), 9.25);
    EXPECT_EQ(group.GetBaseElev(), 120.75);
    EXPECT_EQ(group.GetBaseAltAnt(), 1.8);
    EXPECT_EQ(group.GetCodeElab(), -3);
    EXPECT_EQ(book.notified, 1);
    EXPECT_TRUE(book.notedRight);
}

TEST(BaseReply, ConversionIsWrittenFieldByField) {
    CloudBook book;
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply()));
    CConvCoord& conv = *book.lib.GetGrpAt(0)->GetConvCoord();
    const int settings[] = {11, 12, 2, 3, 1, 16, 17, 18, 19, 20};
    for (int k = 1; k <= 10; ++k) EXPECT_EQ(conv.GetImp(k), settings[k - 1]) << k;
    EXPECT_EQ(conv.GetImpReal(1), 6378200.5);
    EXPECT_EQ(conv.GetImpReal(2), 298.5);
    EXPECT_TRUE(conv.GetImpFlag());
    EXPECT_EQ(conv.GetTpDtBaseGps(), 1);
    const auto expectDatum = [](const CDatumConv* datum, const char* name, bool fromStd, double first,
                                double lat) {
        ASSERT_NE(datum, nullptr) << name;
        bool dir = !fromStd;
        double c[7] = {}, g1 = 0, g2 = 0;
        datum->GetCoeff(dir, c[0], c[1], c[2], c[3], c[4], c[5], c[6]);
        datum->GetGrafOrigine(g1, g2);
        EXPECT_EQ(datum->GetNome(), name);
        EXPECT_EQ(dir, fromStd) << name;
        for (int i = 0; i < 7; ++i) EXPECT_NEAR(c[i], first + 0.1 * i, 1e-12) << name << " c" << i + 1;
        EXPECT_EQ(g1, lat) << name;
        EXPECT_EQ(g2, lat - 29) << name;
    };
    expectDatum(conv.GetConvDtBaseGps(), "own", true, 0.1, 41.5);
    EXPECT_EQ(book.map.GetDatArSize(2, 3), 2) << "as many as the index needs";
    expectDatum(book.map.GetDatAt(2, 3, 1), "Roma 40", false, 1.1, 42.5);
    EXPECT_EQ(book.map.GetTpDtBaseGps(), 2);
    expectDatum(book.map.GetConvDtBaseGps(), "library", true, 2.1, 43.5);
    const CConvLocal& local = *conv.GetConvLocal();
    EXPECT_EQ(local.GetTpProiezPla(), 1);
    double p1, p2, p3, p4, p5;
    local.GetDatiProiezPlaEx(p1, p2, p3, p4, p5);
    EXPECT_EQ(p1, 0.5);
    EXPECT_EQ(p2, 9);
    EXPECT_EQ(p3, 500000);
    EXPECT_EQ(p4, -12.5);
    EXPECT_EQ(p5, 0.9996);
    double o1, o2, o3, o4;
    local.GetOrigin(o1, o2, o3, o4);
    EXPECT_EQ(o3, 1000.5);
    EXPECT_EQ(o4, 2000.5);
    EXPECT_EQ(local.GetScala(), 1.0001);
    EXPECT_EQ(local.GetAngRot(), 0.25);
    const CConvAltez& height = *conv.GetConvAltez();
    EXPECT_EQ(height.GetTpProiezPla(), 4);
    EXPECT_EQ(height.GetTpCalcPt(), 2);
    height.GetDatiProiezPlaEx(p1, p2, p3, p4, p5);
    EXPECT_EQ(p1, 44.5);
    EXPECT_EQ(p2, 11.5);
    EXPECT_EQ(p3, 600100);
    EXPECT_EQ(p4, 100);
    EXPECT_EQ(p5, 0.9999);
    height.GetCoeff(p1, p2, p3);
    EXPECT_EQ(p1, 0.5);
    EXPECT_EQ(p2, 0.001);
    EXPECT_EQ(p3, -0.002);
}

TEST(BaseReply, OriginComesBackThroughTheNewProjection) {
    CloudBook book;
    Reply reply = GroupReply();
    reply[16 + 1] = "2";  // International 1924, which the projection is on; a new group is on WGS 84
    reply[65] = "0";      // latitude of origin
    reply[68] = "0";      // false northing
    reply[70] = "45";
    reply[71] = "9";
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    double o1 = 0, o2 = 0, o3 = 0, o4 = 0;
    book.lib.GetGrpAt(0)->GetConvCoord()->GetConvLocal()->GetOrigin(o1, o2, o3, o4);
    EXPECT_NEAR(o1, 500000, 1e-6) << "on the central meridian";
    EXPECT_NEAR(o2, 4983043.122, 1e-3) << "meridian arc to 45 degrees, times 0.9996; 4982950.400 on WGS 84";
    EXPECT_EQ(o3, 1000.5);
}

TEST(BaseReply, EveryFieldComesOutAtItsPlaceInARecord) {
    for (std::size_t i = 2; i < GRP_REPLY_FIELDS; ++i) {
        if (i == 70 || i == 71) continue;  // they go through the projection
        CloudBook book;
        Reply reply = GroupReply();
        const std::string old(reply[i].View());
        const bool text = i == 2 || i == 3 || i == 8 || i == 30 || i == 41 || i == 53;
        const bool flag = i == 9 || i == 10 || i == 23 || i == 31 || i == 42 || i == 54;
        reply[i] = text ? old + "'" : flag ? (old == "1" ? "0" : "1") : std::string("4");
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
        EXPECT_EQ(FieldsOf(book, *book.lib.GetGrpAt(0)), Join(reply, 2)) << "field " << i;
    }
}

TEST(BaseReply, NewGroupIsInStepThoughItsFieldsWereReported) {
    CloudBook book;
    ChangeWatch watch;
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply()));
    std::vector<std::uint32_t> flags;
    for (const auto& [item, flag] : watch.Take()) {
        EXPECT_EQ(item, book.lib.GetGrpAt(0));
        if (flags.empty() || flags.back() != flag) flags.push_back(flag);
    }
    // Receiver type 0 is what a new group has; it is stored, and not reported.
    EXPECT_EQ(flags, (std::vector<std::uint32_t>{0x1, 0x4, 0x8, 0x2, 0x10, 0x20, 0x80, 0x100, 0x200, 0x400,
                                                 0x800, 0x1000}))
        << "name, position, entity code and then code text";
    CCloudItem* item = nullptr;
    EXPECT_TRUE(book.bases.FindItem(7, item));
    EXPECT_EQ(item, book.lib.GetGrpAt(0));
    EXPECT_EQ(item->GetCloudFlag(), 0u);
    EXPECT_TRUE(item->IsCloudNotify());
    EXPECT_TRUE(book.bases.GetChanged().empty());
    EXPECT_TRUE(book.bases.GetAdded().empty());
    EXPECT_EQ(book.Changes(book.bases), "");
}

TEST(BaseReply, NewGroupHasItsIdAndCreatorBeforeItsFields) {
    CloudBook book;
    long calls = 0;
    CCloudItem::SetObserver([&](const CCloudItem& item, std::uint32_t) {
        ++calls;
        EXPECT_EQ(item.GetCloudId(), 7);
        EXPECT_EQ(item.GetCloudCreatorDevId(), 55);
    });
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply("7", "55")));
    CCloudItem::SetObserver({});
    EXPECT_GT(calls, 11);
}

TEST(BaseReply, IdsHave64Bits) {
    CloudBook book;
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply("4294967303")));
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply("9223372036854775807")));
    ASSERT_EQ(book.lib.GetGrpArSize(), 2);
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetCloudId(), 4294967303);
    EXPECT_EQ(book.lib.GetGrpAt(1)->GetCloudId(), 9223372036854775807);
    Reply reply = GroupReply("4294967303");
    reply[2] = "renamed";
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    ASSERT_EQ(book.lib.GetGrpArSize(), 2);
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetNome(), "renamed");
    EXPECT_TRUE(book.bases.UpdateSuccessful_Del(Split("DEL;4294967303")));
    ASSERT_EQ(book.lib.GetGrpArSize(), 1);
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetCloudId(), 9223372036854775807);
}

TEST(BaseReply, ListenersFindTheReplyApplied) {
    CloudBook book;
    std::string told;
    book.lib.AddListener([&](int, int, auto*) {
        CCloudItem* item = nullptr;
        told += book.bases.FindItem(7, item) && item == book.lib.GetGrpAt(0) && item ? "known " : "gone ";
        if (CGrpGps* group = book.lib.GetGrpAt(0)) told += FieldsOf(book, *group, 0x401) + " ";
    });
    Reply reply = GroupReply();
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    reply[2] = "renamed";
    reply[14] = "2.5";
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    EXPECT_TRUE(book.bases.UpdateSuccessful_Del(Split("DEL;7")));
    EXPECT_EQ(told, "known BASE 1;1.8 known renamed;2.5 gone ");
}

// --- a known group ------------------------------------------------------------------------------------

TEST(BaseReply, KnownGroupTakesEveryFieldButItsCreator) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7, "old");
    group->SetCloudCreatorDevId(4);
    book.bases.AddItemToTable(group);
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply("7", "55")));
    EXPECT_EQ(book.lib.GetGrpArSize(), 1);
    EXPECT_EQ(";" + FieldsOf(book, *group), Fields(kGroup, 0x1FFF));
    EXPECT_EQ(group->GetCloudCreatorDevId(), 4);
    EXPECT_EQ(group->GetCloudFlag(), 0u);
    EXPECT_TRUE(book.bases.GetChanged().empty());
    EXPECT_EQ(book.notified, 1);
    EXPECT_TRUE(book.notedRight);
}

TEST(BaseReply, LocalNameAndPositionWin) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7, "old");
    group->SetNome("mine");
    group->SetCoord(1, 2, 3);
    ASSERT_EQ(group->GetCloudFlag(), 0x5u);
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply()));
    EXPECT_EQ(FieldsOf(book, *group, 0x5), "mine;1;2;3");
    EXPECT_EQ(";" + FieldsOf(book, *group, 0x1FFA), Fields(kGroup, 0x1FFA));
    EXPECT_EQ(group->GetCloudFlag(), 0x5u) << "what is not confirmed stays marked";
    EXPECT_EQ(book.bases.GetChanged().count(group), 1u);
}

TEST(BaseReply, EachChangedFieldWinsAlone) {
    for (const auto& [bit, fields] : kGroup) {
        CloudBook book;
        CGrpGps* group = book.AddGroup(7, "old");
        const std::string before = FieldsOf(book, *group, bit);
        group->CloudItemChanged(bit);
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply()));
        if (bit != 0x1000) {
            EXPECT_EQ(FieldsOf(book, *group, bit), before) << bit;
        } else {
            EXPECT_EQ(group->GetConvCoord()->GetImp(1), 0) << "no field of the conversion is stored";
            EXPECT_EQ(book.map.GetDatArSize(2, 3), 0);
        }
        EXPECT_EQ(";" + FieldsOf(book, *group, 0x1FFF & ~bit), Fields(kGroup, 0x1FFF & ~bit)) << bit;
        EXPECT_EQ(group->GetCloudFlag(), bit);
    }
}

TEST(BaseReply, ReportingIsOnAgainAfterwards) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    group->SetCloudNotify(false);
    ChangeWatch watch;
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply()));
    EXPECT_TRUE(group->IsCloudNotify()) << "one switch, not nested";
    EXPECT_GT(watch.Take().size(), 12u) << "setters report; with the switch off nothing is kept";
    EXPECT_EQ(group->GetCloudFlag(), 0u);
}

TEST(BaseReply, TombstoneTakesNothingAndIsNotified) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    book.bases.ItemDeletedLocally(group);
    book.lib.DelGrpAt(0);
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply()));
    EXPECT_EQ(book.lib.GetGrpArSize(), 0);
    EXPECT_EQ(book.bases.GetDeleted().size(), 1u) << "the deletion still waits";
    EXPECT_EQ(book.notified, 1);
}

TEST(BaseReply, MapLibraryIsThatOfAllGroups) {
    CloudBook book;
    CGrpGps* other = book.AddGroup(3);
    book.bases.UpdateSuccessful_Edit(GroupReply("7"));
    Reply reply = GroupReply("8");
    reply[41] = "renamed";
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(Split(FieldsOf(book, *book.lib.GetGrpAt(1)))[39].View(), "renamed")
        << "as the first group has it";
    EXPECT_EQ(other->GetCloudFlag(), 0u);
    EXPECT_TRUE(book.bases.GetChanged().empty()) << "no other group has changed";
}

// --- values -------------------------------------------------------------------------------------------

TEST(BaseReply, OnlyOneIsTrueForTypes) {
    for (const auto& [text, type] : {std::pair{"0", 0}, {"1", 1}, {"2", 0}, {"01", 0}, {"", 0}}) {
        CloudBook book;
        Reply reply = GroupReply();
        reply[9] = reply[10] = text;
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
        EXPECT_EQ(book.lib.GetGrpAt(0)->GetTipoRilievo(), type) << text;
        EXPECT_EQ(book.lib.GetGrpAt(0)->GetTipoRicevitore(), type) << text;
    }
}

TEST(BaseReply, AnythingFromOneOnIsTrueForFlags) {
    for (const auto& [text, flag] :
         {std::pair{"0", false}, {"1", true}, {"2", true}, {"-1", false}, {"x", false}}) {
        CloudBook book;
        Reply reply = GroupReply();
        reply[23] = reply[31] = reply[42] = reply[54] = text;
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
        const auto parts = Split(FieldsOf(book, *book.lib.GetGrpAt(0)));
        for (const std::size_t at : {23u, 31u, 42u, 54u})
            EXPECT_EQ(parts[at - 2].View(), flag ? "1" : "0") << text;
    }
}

TEST(BaseReply, WholeNumbersTakeTheWidthOfTheirField) {
    CloudBook book;
    Reply reply = GroupReply();
    reply[7] = "-1";
    reply[15] = "65539";
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetCodeEgn(), 4294967295u);
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetCodeElab(), 3);
}

TEST(BaseReply, TokenMakesEveryRealFieldUnset) {
    const auto read = [](std::size_t field, const char* text) {
        CloudBook book;
        Reply reply = GroupReply();
        reply[field] = text;
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
        return std::string(Split(FieldsOf(book, *book.lib.GetGrpAt(0)))[field - 2].View());
    };
    int reals = 0;
    for (const auto& [first, last] : {std::pair{4u, 6u},
                                      {11u, 14u},
                                      {21u, 22u},
                                      {32u, 40u},
                                      {43u, 51u},
                                      {55u, 63u},
                                      {65u, 75u},
                                      {78u, 85u}})
        for (std::size_t i = first; i <= last; ++i, ++reals) {
            EXPECT_EQ(read(i, "NULLVAL"), "NULLVAL") << i;
            if (i == 70 || i == 71) continue;  // a latitude of 0 goes through the projection
            EXPECT_EQ(read(i, "nullval"), "0") << i;
        }
    EXPECT_EQ(reals, 55);
}

TEST(BaseReply, TextsMayBeOfAnyLength) {
    CloudBook book;
    Reply reply = GroupReply();
    for (const std::size_t i : {2u, 3u, 8u, 30u, 41u, 53u}) reply[i] = std::string(5'000 + i, 'x');
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(FieldsOf(book, *book.lib.GetGrpAt(0)), Join(reply, 2));
}

TEST(BaseReply, SelectedDatumThatCannotBeIsLeftOut) {
    for (const auto& [list, index] : {std::pair{"-1", "0"}, {"2", "-1"}, {"2", "2147483647"}}) {
        CloudBook book;
        Reply reply = GroupReply();
        reply[18] = list;
        reply[20] = index;
        EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply)) << list << " " << index;
        EXPECT_EQ(book.map.GetConvDtBaseGps()->GetNome(), "library") << "the rest is stored";
        EXPECT_LE(book.map.GetDatArSize(2, 3), CLibMap::MAX_DATUM);
    }
}

TEST(BaseReply, DatumsBeforeTheSelectedOneAreAdded) {
    CloudBook book;
    Reply reply = GroupReply();
    reply[20] = "5";
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(book.map.GetDatArSize(2, 3), 6);
    EXPECT_EQ(book.map.GetDatAt(2, 3, 5)->GetNome(), "Roma 40");
    EXPECT_EQ(book.map.GetDatAt(2, 3, 4)->GetNome(), "");
    reply[20] = "3";
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(reply));
    EXPECT_EQ(book.map.GetDatArSize(2, 3), 6) << "none is added where there is one";
}

TEST(BaseReply, NullDatumTakesNothing) {
    CloudBook book;
    CGpsBaseCloudTable::TDatumConvValues values;
    values.Nome = "x";
    book.bases.SetDatumConv(nullptr, values);
    CDatumConv datum;
    book.bases.SetDatumConv(&datum, values);
    EXPECT_EQ(datum.GetNome(), "x");
}

TEST(BaseReply, ValuesMadeByHandAreStoredAsThoseOfAReply) {
    CloudBook book;
    CConvCoord& conversion = *book.AddGroup(7)->GetConvCoord();
    CGpsBaseCloudTable::TConvCoordValues values;
    values.S1 = 5;
    values.S3 = 2;
    values.S4 = 3;
    values.DtBaseGps.Nome = "own";
    values.MapTpDtBaseGps = 2;
    values.MapDatum.Nome = "selected";
    values.MapDtBaseGps.Nome = "library";
    values.TpCalcPt = 1;
    book.bases.SetConvCoord(&conversion, values);
    EXPECT_EQ(conversion.GetImp(1), 5);
    EXPECT_EQ(conversion.GetConvDtBaseGps()->GetNome(), "own");
    ASSERT_EQ(book.map.GetDatArSize(2, 3), 1);
    EXPECT_EQ(book.map.GetDatAt(2, 3, 0)->GetNome(), "selected");
    EXPECT_EQ(book.map.GetTpDtBaseGps(), 2);
    EXPECT_EQ(book.map.GetConvDtBaseGps()->GetNome(), "library");
    EXPECT_EQ(conversion.GetConvAltez()->GetTpCalcPt(), 1);
}

TEST(BaseReply, ConversionWithoutMapLibraryTakesTheRest) {
    CLibGps lib(nullptr, nullptr, nullptr, nullptr, 0);
    BaseTable table;
    CGrpGps* group = lib.AddGrp(false);
    const Reply reply = GroupReply();
    table.SetFields(*group, 0x1000, &reply[16]);
    EXPECT_EQ(group->GetConvCoord()->GetConvDtBaseGps()->GetNome(), "own");
    EXPECT_EQ(group->GetConvCoord()->GetConvAltez()->GetTpCalcPt(), 2);
}

TEST(BaseReply, FieldsOfOneBitAreStoredAndReported) {
    for (const FieldGroup& field : GRP_FIELDS) {
        CloudBook book;
        CGrpGps* group = book.AddGroup(7, "old");
        if (field.bit == 0x40) group->SetTipoRicevitore(1);
        book.bases.AddItemToTable(group);
        const Reply reply = GroupReply();
        book.bases.SetFields(*group, field.bit, &reply[static_cast<std::size_t>(field.first)]);
        EXPECT_EQ(group->GetCloudFlag(), field.bit) << field.name;
        EXPECT_EQ(";" + FieldsOf(book, *group, field.bit), Fields(kGroup, field.bit));
        book.bases.AddItemToTable(group);
        const std::string all = FieldsOf(book, *group);
        book.bases.SetFields(*group, 0x2000, &reply[0]);
        EXPECT_EQ(FieldsOf(book, *group), all) << "a bit of nobody has no field";
        EXPECT_EQ(group->GetCloudFlag(), 0u);
    }
}

// --- deletions ----------------------------------------------------------------------------------------

TEST(BaseDeletion, OtherNumberOfFieldsIsRefused) {
    CloudBook book;
    book.AddGroup(7);
    for (const char* reply : {"7", "DEL;7;7"})
        EXPECT_FALSE(book.bases.UpdateSuccessful_Del(Split(reply))) << reply;
    EXPECT_FALSE(book.bases.UpdateSuccessful_Del({}));
    EXPECT_EQ(book.lib.GetGrpArSize(), 1);
    EXPECT_EQ(book.notified, 0);
}

TEST(BaseDeletion, GroupLeavesTableAndBookWithItsPoints) {
    CloudBook book;
    book.AddGroup(3);
    book.AddGroup(7);
    book.AddPoint(1, 71);
    book.AddPoint(1, 72);
    book.AddPoint(1, 0);
    CPunGps* stays = book.AddPoint(0, 31);
    EXPECT_TRUE(book.bases.UpdateSuccessful_Del(Split("what stands here is not read;7")));
    EXPECT_EQ(book.lib.GetGrpArSize(), 1);
    EXPECT_EQ(book.bases.GetById().size(), 1u);
    EXPECT_EQ(book.points.GetById().size(), 1u);
    EXPECT_EQ(book.points.GetById().count(31), 1u);
    EXPECT_TRUE(book.points.GetAdded().empty());
    EXPECT_TRUE(book.bases.GetDeleted().empty()) << "nothing goes back to the server";
    EXPECT_TRUE(book.points.GetDeleted().empty());
    EXPECT_EQ(book.lib.GetPunAt(0, 0), stays);
    EXPECT_EQ(book.notified, 1);
    EXPECT_TRUE(book.notedRight);
    EXPECT_FALSE(book.points.UpdateSuccessful_Del(Split("DEL;71"))) << "it went with its group";
    EXPECT_EQ(book.notified, 1);
}

TEST(BaseDeletion, ChangedGroupLeavesTheChangedOnes) {
    CloudBook book;
    book.AddGroup(7)->CloudItemChanged(0x1);
    EXPECT_TRUE(book.bases.UpdateSuccessful_Del(Split(";7")));
    EXPECT_TRUE(book.bases.GetChanged().empty());
    EXPECT_EQ(book.Changes(book.bases), "");
}

TEST(BaseDeletion, UnknownGroupIsRefused) {
    CloudBook book;
    book.AddGroup(7);
    for (const char* id : {"8", "0", "-7", "", "x"}) {
        EXPECT_FALSE(book.bases.UpdateSuccessful_Del(Split(std::string("DEL;") + id))) << id;
    }
    EXPECT_EQ(book.lib.GetGrpArSize(), 1);
    EXPECT_EQ(book.notified, 0);
}

TEST(BaseDeletion, GroupThatTheBookDoesNotHoldHasLeftTheTable) {
    CloudBook book;
    CGrpGps loose(&book.bases, false, &book.map, 0);
    loose.SetCloudId(7);
    book.bases.AddItemToTable(&loose);
    EXPECT_FALSE(book.bases.UpdateSuccessful_Del(Split("DEL;7")));
    EXPECT_TRUE(book.bases.GetById().empty());
    EXPECT_EQ(loose.GetCloudId(), 7);
    EXPECT_EQ(book.notified, 0);
}

TEST(BaseDeletion, DeletionOnBothSidesIsDone) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    book.bases.ItemDeletedLocally(group);
    book.lib.DelGrpAt(0);
    EXPECT_FALSE(book.bases.UpdateSuccessful_Del(Split("DEL;7"))) << "there was no group";
    EXPECT_TRUE(book.bases.GetDeleted().empty()) << "nor anything left to send";
    EXPECT_TRUE(book.bases.GetById().empty());
    EXPECT_EQ(book.notified, 0);
}

// --- a table whose book is not there ------------------------------------------------------------------

TEST(BaseReply, WithoutBookKnownGroupsAreEditedAndNoneMade) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    book.bases.SetOwner(nullptr);
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(GroupReply("7")));
    EXPECT_EQ(group->GetNome(), "BASE 1");
    EXPECT_FALSE(book.bases.UpdateSuccessful_Edit(GroupReply("8")));
    EXPECT_FALSE(book.bases.UpdateSuccessful_Del(Split("DEL;7")));
    EXPECT_TRUE(book.bases.GetById().empty()) << "the step in the table was taken";
    EXPECT_EQ(book.lib.GetGrpArSize(), 1);
    EXPECT_EQ(book.notified, 0);
}

}  // namespace
