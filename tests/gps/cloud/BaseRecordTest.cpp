// Records of groups, "UBAS" and "IBAS", against lines written by hand.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <set>
#include <string>

#include "gps/cloud/FieldLayout.h"
#include "tests/gps/cloud/CloudBook.h"

namespace {

using test::CloudBook;
using test::Fields;
using test::FillGroup;
using test::kConversion;
using test::kGroup;
using test::Lines;
using test::Split;

/// A filled group known under id 7, with nothing to send.
CGrpGps* Known(CloudBook& book) {
    CGrpGps* group = book.AddGroup(0);
    FillGroup(*group);
    group->SetCloudId(7);
    book.bases.AddItemToTable(group);
    return group;
}

TEST(BaseRecord, NothingChangedIsTheEmptyText) {
    CloudBook book;
    Known(book);
    EXPECT_EQ(book.Changes(book.bases), "");
}

TEST(BaseRecord, NameAndGroupNameAreFiveFields) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(12, "B2");
    group->CloudItemChanged(0x11);
    group->SetNomeGrp("Sud");
    EXPECT_EQ(book.Changes(book.bases), "UBAS;12;17;B2;Sud");
}

TEST(BaseRecord, EachBitHasItsFields) {
    for (const auto& [bit, fields] : kGroup) {
        CloudBook book;
        Known(book)->CloudItemChanged(bit);
        EXPECT_EQ(book.Changes(book.bases), "UBAS;7;" + std::to_string(bit) + ";" + fields);
    }
}

TEST(BaseRecord, AllBitsGoInTheirOrder) {
    CloudBook book;
    Known(book)->CloudItemChanged(0x1FFF);
    EXPECT_EQ(book.Changes(book.bases), "UBAS;7;8191" + Fields(kGroup, 0x1FFF));
}

TEST(BaseRecord, EveryPairOfBitsGoesInTheirOrder) {
    CloudBook book;
    CGrpGps* group = Known(book);
    for (const auto& [one, fieldsOfOne] : kGroup)
        for (const auto& [two, fieldsOfTwo] : kGroup) {
            if (one >= two) continue;
            book.bases.AddItemToTable(group);  // in step again: no bit is left
            group->CloudItemChanged(two);
            group->CloudItemChanged(one);
            ASSERT_EQ(book.Changes(book.bases),
                      "UBAS;7;" + std::to_string(one | two) + Fields(kGroup, one | two));
        }
}

TEST(BaseRecord, ConversionHasSeventyFields) {
    CloudBook book;
    Known(book)->CloudItemChanged(0x1000);
    EXPECT_EQ(Split(book.Changes(book.bases)).size(), 3u + 70u);
}

TEST(BaseRecord, MaskIsPrintedWithItsSign) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7, "B");
    group->CloudItemChanged(0x80000001);
    EXPECT_EQ(book.Changes(book.bases), "UBAS;7;-2147483647;B") << "a bit of nobody has no field";
}

TEST(BaseRecord, IdHas64Bits) {
    CloudBook book;
    book.AddGroup(9223372036854775807, "B")->CloudItemChanged(0x1);
    EXPECT_EQ(book.Changes(book.bases), "UBAS;9223372036854775807;1;B");
}

TEST(BaseRecord, ChangesAreJoinedByLineBreaksInAnyOrder) {
    CloudBook book;
    for (int i = 1; i <= 3; ++i) book.AddGroup(i, "B" + std::to_string(i))->CloudItemChanged(0x1);
    const std::string records = book.Changes(book.bases);
    const auto lines = Lines(records);
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()),
              (std::set<std::string>{"UBAS;1;1;B1", "UBAS;2;1;B2", "UBAS;3;1;B3"}));
    EXPECT_EQ(records.size(), 3u * 11 + 2 * 2) << "no line break at the end";
}

TEST(BaseRecord, ChangedRecordsFollowTheOrderOfTheSet) {
    CloudBook book;
    for (int i = 1; i <= 5; ++i) book.AddGroup(i)->CloudItemChanged(0x8);
    std::string expected;
    for (CCloudItem* item : book.bases.GetChanged())
        expected +=
            (expected.empty() ? "" : "\r\n") + ("UBAS;" + std::to_string(item->GetCloudId())) + ";8;0";
    EXPECT_EQ(book.Changes(book.bases), expected);
}

TEST(BaseRecord, GeneratingChangesNothing) {
    CloudBook book;
    CGrpGps* group = Known(book);
    group->CloudItemChanged(0x5);
    book.AddGroup(0);
    const std::string changes = book.Changes(book.bases), additions = book.Additions(book.bases);
    EXPECT_EQ(group->GetCloudFlag(), 0x5u);
    EXPECT_EQ(book.Changes(book.bases), changes);
    EXPECT_EQ(book.Additions(book.bases), additions);
    EXPECT_EQ(book.notified, 0);
}

// --- additions ----------------------------------------------------------------------------------------

TEST(BaseRecord, AdditionHasAllFieldsWithoutIdAndMask) {
    CloudBook book;
    FillGroup(*book.AddGroup(0));
    EXPECT_EQ(book.Additions(book.bases), "IBAS" + Fields(kGroup, 0x1FFF));
    EXPECT_EQ(book.lastCounter, 1);
}

TEST(BaseRecord, NewGroupHasUnsetValuesAndTheDefaultDatums) {
    CloudBook book;
    book.AddGroup(0);
    const std::string datum = ";;0;0;0;0;0;0;0;0;NULLVAL;NULLVAL";
    EXPECT_EQ(book.Additions(book.bases),
              "IBAS;;;NULLVAL;NULLVAL;NULLVAL;0;;0;0;NULLVAL;NULLVAL;NULLVAL;NULLVAL;0"
              ";0;0;0;0;0;0;0;0;0;0;0;0;0;0" +
                  datum + datum + ";0" + datum +
                  ";0;0;0;0;0;0;NULLVAL;NULLVAL;NULLVAL;NULLVAL;NULLVAL;NULLVAL"
                  ";0;0;0;0;0;0;0;0;0;0");
}

TEST(BaseRecord, NothingAddedLeavesTheCounter) {
    CloudBook book;
    EXPECT_EQ(book.Additions(book.bases, 4), "");
    EXPECT_EQ(book.lastCounter, 4);
}

TEST(BaseRecord, AdditionsGoInOrderOfCreationAndAreCounted) {
    CloudBook book;
    for (const char* name : {"A", "B", "C"}) book.AddGroup(0, name);
    const std::string records = book.Additions(book.bases, 10);
    const auto lines = Lines(records);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].substr(0, 8), "IBAS;A;;");
    EXPECT_EQ(lines[1].substr(0, 8), "IBAS;B;;");
    EXPECT_EQ(lines[2].substr(0, 8), "IBAS;C;;");
    EXPECT_NE(records.back(), '\n');
    EXPECT_EQ(book.lastCounter, 13);
}

// --- single values ------------------------------------------------------------------------------------

TEST(BaseRecord, TypesAreSentAsZeroOrOne) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    for (const int type : {0, 1, 2, 255}) {
        group->SetTipoRilievo(static_cast<unsigned char>(type));
        group->SetTipoRicevitore(static_cast<unsigned char>(type));
        vex::String fields;
        book.bases.GetFields(*group, 0x60, fields);
        EXPECT_EQ(fields.View(), type == 0 ? "0;0" : "1;1") << type;
    }
}

TEST(BaseRecord, EntityCodeIsPrintedWithItsSign) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    group->SetCodeEgn(0xFFFFFFFF);
    vex::String fields;
    book.bases.GetFields(*group, 0x8, fields);
    EXPECT_EQ(fields.View(), "-1");
    group->SetCodeEgn(0x7FFFFFFF);
    book.bases.GetFields(*group, 0x8, fields);
    EXPECT_EQ(fields.View(), "2147483647");
}

TEST(BaseRecord, ValuesThatAreNotSetAreAToken) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    group->SetBaseLat(GPS_VAL_UNSET);
    group->SetBaseLong(NAN);
    group->SetBaseElev(INFINITY);
    group->SetBaseAltAnt(-INFINITY);
    vex::String fields;
    book.bases.GetFields(*group, 0x780, fields);
    EXPECT_EQ(fields.View(), "NULLVAL;NULLVAL;NULLVAL;-inf");
}

// --- conversion ---------------------------------------------------------------------------------------

TEST(BaseRecord, MissingSelectedDatumShortensTheRecord) {
    CloudBook book;
    CGrpGps* group = Known(book);
    std::string expected = kConversion;
    expected.erase(expected.find(";" + test::kDatumSelected), test::kDatumSelected.size() + 1);
    expected.replace(expected.find("2;3;1;"), 6, "2;3;2;");
    group->GetConvCoord()->SetImp(CConvCoord::impDatIndice, 2);
    book.bases.AddItemToTable(group);
    group->CloudItemChanged(0x1000);
    EXPECT_EQ(book.Changes(book.bases), "UBAS;7;4096;" + expected);
    EXPECT_EQ(Split(expected).size(), 59u);
}

TEST(BaseRecord, OriginIsSentAsLatitudeAndLongitude) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    CConvLocal& local = *group->GetConvCoord()->GetConvLocal();
    local.SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0, 0.9996);
    local.SetRotoTras(500000, 0, 7, 8, 1, 0);
    vex::String fields;
    book.bases.GetFields(*group, 0x1000, fields);
    const auto parts = Split(fields.View());
    ASSERT_EQ(parts.size(), 70u);
    const auto real = [](const vex::String& text) {
        double value = 0;
        std::from_chars(text.c_str(), text.c_str() + text.GetLength(), value);
        return value;
    };
    EXPECT_NEAR(real(parts[54]), 0, 1e-11) << "latitude of the projection's origin";
    EXPECT_NEAR(real(parts[55]), 9, 1e-11);
    EXPECT_EQ(parts[56].View(), "7");
    EXPECT_EQ(parts[57].View(), "8");
}

TEST(BaseRecord, ConversionWithoutMapLibraryHasNoDatumsOfIt) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    test::BaseTable table;
    CGrpGps* group = book.AddGrp(false);
    FillGroup(*group);
    vex::String fields;
    table.GetFields(*group, 0x1000, fields);
    const auto parts = Split(fields.View());
    ASSERT_EQ(parts.size(), 70u - 22);
    EXPECT_EQ(parts[14].View(), "own");
    EXPECT_EQ(parts[25].View(), "0") << "the type of a datum that is not there";
    EXPECT_EQ(parts[26].View(), "1") << "the projection follows";
}

TEST(BaseRecord, BlocksAreAppendedToTheLineOrItsEnd) {
    CloudBook book;
    CDatumConv datum;
    datum.SetNome("D");
    const std::string block = ";D;0;0;0;0;0;0;0;0;NULLVAL;NULLVAL";
    char line[256] = "begun";
    char* end = book.bases.ConcatDatumConv(line, &datum);
    EXPECT_EQ(std::string(line), "begun" + block);
    EXPECT_EQ(end, line + 5 + block.size());
    end = book.bases.ConcatDatumConv(end, &datum);
    EXPECT_EQ(std::string(line), "begun" + block + block);
    EXPECT_EQ(book.bases.ConcatDatumConv(line, nullptr), end) << "a null datum appends nothing";
    EXPECT_EQ(std::string(line), "begun" + block + block);

    CGrpGps* group = Known(book);
    char longer[2048] = "UBAS;7;4096";
    end = book.bases.ConcatConvCoord(longer, group->GetConvCoord());
    EXPECT_EQ(std::string(longer), "UBAS;7;4096;" + kConversion);
    EXPECT_EQ(*end, '\0');
    EXPECT_EQ(end, longer + std::string(longer).size());
}

// --- long texts ---------------------------------------------------------------------------------------

TEST(BaseRecord, TextsOfAnyLengthAreSentWhole) {
    for (const std::size_t size : {2'000u, 2'048u, 5'000u, 300'000u}) {
        CloudBook book;
        CGrpGps* group = book.AddGroup(0);
        FillGroup(*group);
        const auto text = [size](char c) { return std::string(size, c); };
        group->SetNome(text('n'));
        group->SetSecScri(text('s'));
        group->SetNomeGrp(text('g'));
        group->GetConvCoord()->GetConvDtBaseGps()->SetNome(text('o'));
        book.map.GetDatAt(2, 3, 1)->SetNome(text('d'));
        book.map.GetConvDtBaseGps()->SetNome(text('l'));
        std::string expected = "IBAS" + Fields(kGroup, 0x1FFF);
        for (const auto& [from, to] : {std::pair{"BASE 1", 'n'},
                                       {"cod", 's'},
                                       {"Nord", 'g'},
                                       {"own", 'o'},
                                       {"Roma 40", 'd'},
                                       {"library", 'l'}})
            expected.replace(expected.find(from), std::string(from).size(), text(to));
        EXPECT_EQ(book.Additions(book.bases), expected);
    }
}

TEST(BaseRecord, LongestNumbersFit) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(0);
    constexpr double kLong = -1.2345678901234568e-300;
    constexpr int kLowest = -2147483647 - 1;
    group->SetCoord(kLong, kLong, kLong);
    group->SetCodeEgn(0x80000000);
    group->SetBaseLat(kLong);
    group->SetBaseLong(kLong);
    group->SetBaseElev(kLong);
    group->SetBaseAltAnt(kLong);
    group->SetCodeElab(-32768);
    CConvCoord& conversion = *group->GetConvCoord();
    const auto fill = [](CDatumConv* datum) {
        datum->SetCoeffFromStd(kLong, kLong, kLong, kLong, kLong, kLong, kLong);
        datum->SetGrafOrigine(kLong, kLong);
    };
    for (int k = 1; k <= 10; ++k)
        if (k < 3 || k > 5) conversion.SetImp(k, kLowest);
    conversion.SetImpReal(1, kLong);
    conversion.SetImpReal(2, kLong);
    conversion.SetTpDtBaseGps(kLowest);
    fill(conversion.GetConvDtBaseGps());
    fill(book.map.GetDatAt(0, 0, 0));
    fill(book.map.GetConvDtBaseGps());
    book.map.SetTpDtBaseGps(kLowest);
    conversion.GetConvLocal()->SetTpProiezPlaEx(kLowest, kLong, kLong, kLong, kLong, kLong);
    conversion.GetConvLocal()->SetRotoTras(kLong, kLong, kLong, kLong, kLong, kLong);
    conversion.GetConvAltez()->SetTpProiezPlaEx(kLowest, kLong, kLong, kLong, kLong, kLong);
    conversion.GetConvAltez()->SetTpCalcPt(kLowest);
    conversion.GetConvAltez()->SetCoeff(kLong, kLong, kLong);
    const std::string record = book.Additions(book.bases);
    EXPECT_EQ(Split(record).size(), 85u);
    EXPECT_GT(record.size(), 1'400u);
    EXPECT_LT(record.size(), 2'048u);
    EXPECT_EQ(Split(record)[84].View(), "-1.2345678901234568e-300");
}

// --- fields by mask -----------------------------------------------------------------------------------

TEST(BaseRecord, FieldsOfAMaskHaveNoSeparatorInFront) {
    CloudBook book;
    CGrpGps* group = Known(book);
    vex::String fields("old");
    book.bases.GetFields(*group, 0x14, fields);
    EXPECT_EQ(fields.View(), "100.5;200.25;-12.125;Nord");
    book.bases.GetFields(*group, 0, fields);
    EXPECT_EQ(fields.View(), "");
    book.bases.GetFields(*group, 0x1FFF, fields);
    EXPECT_EQ(";" + std::string(fields.View()), Fields(kGroup, 0x1FFF));
    group->SetNome("");
    book.bases.GetFields(*group, 0x3, fields);
    EXPECT_EQ(fields.View(), ";cod") << "an empty name is a field, too";
}

TEST(BaseRecord, LayoutTellsTheFieldsOfEachBit) {
    int next = 2;
    for (std::size_t i = 0; i < kGroup.size(); ++i) {
        EXPECT_EQ(GRP_FIELDS[i].bit, kGroup[i].first);
        EXPECT_EQ(GRP_FIELDS[i].first, next);
        EXPECT_EQ(static_cast<std::size_t>(GRP_FIELDS[i].count), Split(kGroup[i].second).size());
        next += GRP_FIELDS[i].count;
    }
    EXPECT_EQ(kGroup.size(), GRP_FIELDS.size());
    EXPECT_EQ(next, GRP_REPLY_FIELDS);
}

// --- table --------------------------------------------------------------------------------------------

TEST(BaseTable, IsOfTheKindOfBases) {
    CloudBook book;
    EXPECT_EQ(book.bases.GetKind(), 3);
    EXPECT_EQ(book.points.GetKind(), 4);
}

TEST(BaseTable, CreatorIsThatOfTheGroup) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(7);
    book.bases.SetCloudCreatorDevId(group, 99);
    EXPECT_EQ(group->GetCloudCreatorDevId(), 99);
    book.bases.SetCloudCreatorDevId(nullptr, 5);
    EXPECT_EQ(group->GetCloudCreatorDevId(), 99);
}

TEST(BaseTable, ConfirmationNamesTheCreator) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(0);
    book.bases.BeginCommit();
    book.bases.ConfirmAdded({31}, 88);
    EXPECT_EQ(group->GetCloudCreatorDevId(), 88);
    EXPECT_EQ(group->GetCloudId(), 31);
}

TEST(BaseTable, CopyIsASnapshotOfWhatWaits) {
    CloudBook book;
    book.AddGroup(0, "new");
    book.AddGroup(3, "known")->CloudItemChanged(0x1);
    CGpsBaseCloudTable copy(book.bases);
    EXPECT_EQ(book.Changes(copy), "UBAS;3;1;known");
    EXPECT_EQ(book.Additions(copy), book.Additions(book.bases));
    CGpsBaseCloudTable assigned;
    assigned = book.bases;
    EXPECT_EQ(book.Changes(assigned), "UBAS;3;1;known");
    EXPECT_EQ(assigned.GetOwner(), &book.lib);
    CGpsPntCloudTable points(&copy);
    points = book.points;
    book.AddPoint(0, 0, "P");
    points = book.points;
    EXPECT_EQ(book.Additions(points, 1).substr(0, 13), "IPTGPS;-1;P;;") << "with the base table of the other";
}

}  // namespace
