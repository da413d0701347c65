// The conversion record: its bytes, with those of datum and projection, and what reading it does not do.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"
#include "tests/Bytes.h"
#include "tests/host/coord/CountingItem.h"
#include "tests/host/coord/Values.h"

namespace {

using gpstest::CountingItem;
using gpstest::CountingWhole;
using gpstest::Triple;
using test::Bytes;
using test::Dump;

// --- by hand -----------------------------------------------------------------------------------------------

Bytes NewDatum() { return Bytes().Text("").U8(0).F64(0, 7).F64(GPS_VAL_UNSET, 2); }
Bytes NewProjection() { return Bytes().I32(0).F64(0, 5).Text(""); }

Bytes RomaDatum() {
    Bytes bytes;
    bytes.Text("Roma 40").U8(1);
    for (const double c : {-104.1, -49.1, -9.9, 0.971, -2.917, 0.714, -11.68}) bytes.F64(c);
    return bytes.F64(42.5).F64(12.5);
}

void SetRoma(CDatumConv& datum) {
    datum.SetNome("Roma 40");
    datum.SetCoeffFromStd(-104.1, -49.1, -9.9, 0.971, -2.917, 0.714, -11.68);
    datum.SetGrafOrigine(42.5, 12.5);
}

Bytes Envelope(const std::string& payload, int form = 1) {
    return Bytes().I32(form).I32(static_cast<std::int32_t>(payload.size())).Raw(payload);
}

// The payload of a conversion with a value of its own in every field; the project's datum is Roma.
Bytes FullPayload() {
    Bytes bytes;
    for (const int s : {1, 2, 3, 4, 0, 6, 7, 8, 9, -10}) bytes.I32(s);
    bytes.U8(1).F64(6378200.5).F64(298.5).I32(1);
    bytes.Text("Own").U8(0);
    for (const double c : {1., 2., 3., 4., 5., 6., 7.}) bytes.F64(c);
    bytes.F64(44.25).F64(GPS_VAL_UNSET);
    bytes.I32(1).F64(0).F64(9).F64(1500000).F64(0).F64(0.9996).Text("");
    for (const double v : {1500000.5, 5000000.25, 100., 200., 1.0001, -12.5}) bytes.F64(v);
    bytes.I32(2).F64(45.5).F64(0.00001).F64(-0.00002);
    bytes.I32(4).F64(45).F64(11).F64(10).F64(20).F64(1).Text("");
    return bytes.U8(1).Raw(RomaDatum());
}

/// A map library with Roma at (3, 4, 0).
std::unique_ptr<CLibMap> RomaMap() {
    auto map = std::make_unique<CLibMap>();
    SetRoma(*map->AddDat(3, 4));
    return map;
}

void Fill(CConvCoord& conv) {
    const int settings[] = {1, 2, 3, 4, 0, 6, 7, 8, 9, -10};
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) conv.SetImp(k, settings[k - 1]);
    conv.SetImpFlag(true);
    conv.SetImpReal(1, 6378200.5);
    conv.SetImpReal(2, 298.5);
    conv.SetTpDtBaseGps(CConvCoord::dtProprio);
    conv.GetConvDtBaseGps()->SetNome("Own");
    conv.GetConvDtBaseGps()->SetCoeffToStd(1, 2, 3, 4, 5, 6, 7);
    conv.GetConvDtBaseGps()->SetGrafOrigine(44.25, GPS_VAL_UNSET);
    conv.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 1500000, 0, 0.9996);
    conv.GetConvLocal()->SetRotoTras(1500000.5, 5000000.25, 100, 200, 1.0001, -12.5);
    conv.GetConvAltez()->SetTpCalcPt(CConvAltez::tpPiano);
    conv.GetConvAltez()->SetCoeff(45.5, 0.00001, -0.00002);
    conv.GetConvAltez()->SetTpProiezPlaEx(TpProiezPla::stereografica, 45, 11, 10, 20, 1);
}

template <class T>
std::string Record(T& part) {
    ofpstream out(1400);
    if constexpr (std::is_same_v<T, CConvCoord>)
        part.SalvaInFile(out, 1400);
    else
        part.SalvaInFile(out);
    return std::string(out.GetBytes());
}

template <class T>
void Read(T& part, const std::string& bytes) {
    ifpstream in(bytes.data(), bytes.size(), 1400);
    if constexpr (std::is_same_v<T, CConvCoord>)
        part.LeggeDaFile(in, 1400);
    else
        part.LeggeDaFile(in);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.GetRemaining(), 0);
}

// --- datum -------------------------------------------------------------------------------------------------

TEST(DatumRecord, IsNameDirectionCoefficientsAndOrigin) {
    CDatumConv datum;
    EXPECT_EQ(Dump(Record(datum)), Dump(NewDatum().Get()));
    SetRoma(datum);
    EXPECT_EQ(Dump(Record(datum)), Dump(RomaDatum().Get()));
}

TEST(DatumRecord, ComesBackAndConvertsAsBefore) {
    CDatumConv datum, read;
    SetRoma(datum);
    ASSERT_TRUE(read.IsIdentity());
    Read(read, RomaDatum());
    EXPECT_TRUE(read == datum);
    EXPECT_FALSE(read.IsIdentity());
    Triple a, b;
    datum.ToStd(4.6e6, 9e5, 4.3e6, a.a, a.b, a.c);
    EXPECT_TRUE(read.ToStd(4.6e6, 9e5, 4.3e6, b.a, b.b, b.c));
    EXPECT_TRUE(gpstest::Near(b, a, 0));
    Read(read, NewDatum());
    EXPECT_TRUE(read.IsIdentity()) << "what was computed from the coefficients is computed anew";
}

TEST(DatumRecord, ReadingChangesNothingForAnyone) {
    CountingWhole whole;
    CDatumConv datum;
    datum.BindTo(&whole);
    Read(datum, RomaDatum());
    EXPECT_EQ(whole.changes, 0);
    EXPECT_GT(whole.assignments, 0) << "but what was prepared from it is out of date";
}

// --- projection --------------------------------------------------------------------------------------------

TEST(ProjectionRecord, IsTypeValuesAndDefinition) {
    CProiezPla projection;
    EXPECT_EQ(Dump(Record(projection)), Dump(NewProjection().Get()));
    projection.Set(TpProiezPla::lambert2SP, {1, 2, 3, 4, 5});
    EXPECT_EQ(Dump(Record(projection)),
              Dump(Bytes().I32(3).F64(1).F64(2).F64(3).F64(4).F64(5).Text("").Get()));
}

TEST(ProjectionRecord, EpsgCodeIsANumberAndAnotherDefinitionItsText) {
    std::string why;
    CProiezPla code, text;
    ASSERT_TRUE(code.SetDefinizione("EPSG:32632", why)) << why;
    EXPECT_EQ(Dump(Record(code)), Dump(Bytes().I32(6).F64(32632).F64(0, 4).Text("").Get()));
    const std::string definition =
        "+proj=tmerc +lat_0=45 +lon_0=11 +k=1 +x_0=0 +y_0=0 +ellps=GRS80 +type=crs";
    ASSERT_TRUE(text.SetDefinizione(definition, why)) << why;
    EXPECT_EQ(Dump(Record(text)), Dump(Bytes().I32(6).F64(0, 5).Text(definition).Get()));
}

TEST(ProjectionRecord, ProjectsAsBefore) {
    CProiezPla projection, read;
    projection.Set(TpProiezPla::mercatoreTrasversa, {0, 9, 500000, 0, 0.9996});
    double x, y, z, xRead, yRead, zRead;
    EXPECT_FALSE(read.GrafToPlan(45, 11, 0, xRead, yRead, zRead))
        << "it has no projection yet, and remembers that";
    Read(read, Record(projection));
    ASSERT_TRUE(projection.GrafToPlan(45, 11, 0, x, y, z));
    ASSERT_TRUE(read.GrafToPlan(45, 11, 0, xRead, yRead, zRead));
    EXPECT_EQ(xRead, x);
    EXPECT_EQ(yRead, y);
}

TEST(ProjectionRecord, WhatThisInstallationDoesNotKnowSurvives) {
    for (const std::string& bytes : {Bytes().I32(6).F64(0, 5).Text("+proj=of_next_year").Get(),
                                     Bytes().I32(6).F64(999999).F64(0, 4).Text("").Get(),
                                     Bytes().I32(42).F64(1).F64(2).F64(3).F64(4).F64(5).Text("").Get()}) {
        CProiezPla read;
        Read(read, bytes);
        double x, y, z;
        EXPECT_FALSE(read.GrafToPlan(45, 11, 0, x, y, z));
        EXPECT_EQ(Dump(Record(read)), Dump(bytes));
    }
}

// --- conversion --------------------------------------------------------------------------------------------

TEST(ConversionRecord, OfANewConversion) {
    CConvCoord conv;
    Bytes payload;
    for (int i = 0; i < 10; ++i) payload.I32(0);
    payload.U8(0).F64(0, 2).I32(0).Raw(NewDatum());
    payload.Raw(NewProjection()).F64(GPS_VAL_UNSET, 6);
    payload.I32(0).F64(0, 3).Raw(NewProjection());
    payload.U8(0);
    EXPECT_EQ(Dump(Record(conv)), Dump(Envelope(payload).Get()));
}

TEST(ConversionRecord, HoldsEveryValueAndTheSelectedDatum) {
    const auto map = RomaMap();
    CConvCoord conv(map.get());
    Fill(conv);
    EXPECT_EQ(Dump(Record(conv)), Dump(Envelope(FullPayload()).Get()));
}

TEST(ConversionRecord, WithoutFlagNoDatumIsSelected) {
    const auto map = RomaMap();
    CConvCoord conv(map.get());
    Fill(conv);
    conv.SetImpFlag(false);
    const std::string bytes = Record(conv);
    EXPECT_EQ(bytes.back(), '\0');
    EXPECT_EQ(bytes.size(), 8 + FullPayload().Size() - RomaDatum().Size());
}

TEST(ConversionRecord, ComesBackWhole) {
    const auto map = RomaMap();
    CConvCoord conv(map.get()), read(map.get());
    Fill(conv);
    Read(read, Envelope(FullPayload()));
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) EXPECT_EQ(read.GetImp(k), conv.GetImp(k)) << k;
    EXPECT_TRUE(read.IsConvCoordReady());
    EXPECT_TRUE(read.GetImpFlag());
    EXPECT_EQ(read.GetImpReal(1), 6378200.5);
    EXPECT_EQ(read.GetImpReal(2), 298.5);
    EXPECT_EQ(read.GetTpDtBaseGps(), CConvCoord::dtProprio);
    EXPECT_TRUE(*read.GetConvDtBaseGps() == *conv.GetConvDtBaseGps());
    EXPECT_EQ(read.GetConvLocal()->GetTpProiezPla(), TpProiezPla::mercatoreTrasversa);
    EXPECT_EQ(read.GetConvLocal()->GetAngRot(), -12.5);
    EXPECT_EQ(read.GetConvAltez()->GetTpCalcPt(), CConvAltez::tpPiano);
    double c1, c2, c3;
    read.GetConvAltez()->GetCoeff(c1, c2, c3);
    EXPECT_EQ(c1, 45.5);
    EXPECT_EQ(c3, -0.00002);
    EXPECT_EQ(read.GetConvAltez()->GetTpProiezPla(), TpProiezPla::stereografica);
    EXPECT_EQ(Dump(Record(read)), Dump(Record(conv)));
}

TEST(ConversionRecord, ConvertsAsBeforeAlsoWhenItHadConvertedBefore) {
    const auto map = RomaMap();
    CConvCoord conv(map.get()), read(map.get());
    Fill(conv);
    Triple there, before, after;
    ASSERT_TRUE(conv.GrafGpsToPlanAtt(45, 11, 100, 2, there.a, there.b, there.c));
    EXPECT_FALSE(read.GrafGpsToPlanAtt(45, 11, 100, 2, before.a, before.b, before.c));
    Read(read, Record(conv));
    ASSERT_TRUE(read.GrafGpsToPlanAtt(45, 11, 100, 2, after.a, after.b, after.c));
    EXPECT_TRUE(gpstest::Near(after, there, 0));
    Read(conv,
         Envelope(std::string(FullPayload().Get()).replace(0, 4, 4, '\0')));  // not ready, else the same
    EXPECT_FALSE(conv.IsConvCoordReady());
}

TEST(ConversionRecord, ReadingReportsNothing) {
    CountingItem item;
    const auto map = RomaMap();
    CConvCoord read(map.get(), &item);
    Read(read, Envelope(FullPayload()));
    EXPECT_EQ(item.changes, 0);
    read.SetImp(6, 60);
    EXPECT_EQ(item.changes, 1) << "and it still reports its changes";
    read.GetConvLocal()->SetRotoTras(1, 2, 3, 4, 5, 6);
    read.GetConvDtBaseGps()->SetNome("New");
    read.GetConvAltez()->SetTpCalcPt(0);
    EXPECT_EQ(item.changes, 4);
}

TEST(ConversionRecord, MessageSwitchIsNotInIt) {
    CConvCoord read;
    read.ShowMessage(false);
    Read(read, Envelope(FullPayload()));
    EXPECT_FALSE(read.IsShowMessage());
}

TEST(ConversionRecord, UnknownSettingsSurvive) {
    std::string payload = FullPayload();
    payload.replace(4, 4, Bytes().I32(-77).Get());             // ellipsoid
    payload.replace(40 + 1 + 16, 4, Bytes().I32(1234).Get());  // measured datum
    CConvCoord read;
    Read(read, Envelope(payload));
    double x, y, z;
    EXPECT_FALSE(read.GrafGpsToPlanAtt(45, 11, 100, 2, x, y, z));
    EXPECT_EQ(Dump(Record(read)), Dump(Envelope(payload).Get()));
}

TEST(ConversionRecord, IsTheSameInEveryVersion) {
    const auto map = RomaMap();
    CConvCoord conv(map.get());
    Fill(conv);
    for (const short version : {short{0}, short{741}, short{1003}, short{1400}}) {
        ofpstream out(version);
        conv.SalvaInFile(out, version);
        EXPECT_EQ(out.GetBytes(), Record(conv)) << version;
    }
}

// --- damage and forms to come ----------------------------------------------------------------------------

TEST(ConversionRecord, FieldsOfALaterFormArePassedOver) {
    const std::string bytes = Envelope(FullPayload().Raw("a field of tomorrow"), 2).I32(4711);
    CConvCoord read;
    ifpstream in(bytes.data(), bytes.size(), 1400);
    read.LeggeDaFile(in, 1400);
    EXPECT_EQ(in.ReadInt(), 4711);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(Dump(Record(read)), Dump(Envelope(FullPayload()).Get()));
}

TEST(ConversionRecord, CutPayloadLeavesTheStreamInStep) {
    const std::string payload = FullPayload();
    for (std::size_t size = 0; size < payload.size(); ++size) {
        const std::string bytes = Envelope(payload.substr(0, size)).I32(4711);
        CConvCoord read;
        ifpstream in(bytes.data(), bytes.size(), 1400);
        read.LeggeDaFile(in, 1400);
        ASSERT_EQ(in.ReadInt(), 4711) << size;
        ASSERT_FALSE(in.IsOk()) << size;
    }
}

// --- the selected datum ------------------------------------------------------------------------------------

class SelectedDatum : public testing::Test {
protected:
    SelectedDatum() {
        Fill(saved);
        record = Record(saved);
    }
    bool IsDifferentIn(CLibMap* library) {
        CConvCoord read(library);
        Read(read, record);
        return read.IsDatumDiverso();
    }

    std::unique_ptr<CLibMap> map = RomaMap();
    CConvCoord saved{map.get()};
    std::string record;
};

TEST_F(SelectedDatum, OfTheSameLibraryIsNotDifferent) {
    EXPECT_FALSE(saved.IsDatumDiverso()) << "nothing was read";
    EXPECT_FALSE(IsDifferentIn(map.get()));
    EXPECT_FALSE(IsDifferentIn(RomaMap().get()));
}

TEST_F(SelectedDatum, IsDifferentWhenAnyValueIs) {
    struct Change {
        const char* name;
        void (*make)(CDatumConv& datum);
    };
    const Change changes[] = {
        {"name", [](CDatumConv& d) { d.SetNome("Roma"); }},
        {"direction",
         [](CDatumConv& d) { d.SetCoeffToStd(-104.1, -49.1, -9.9, 0.971, -2.917, 0.714, -11.68); }},
        {"scale",
         [](CDatumConv& d) { d.SetCoeffFromStd(-104.1, -49.1, -9.9, 0.971, -2.917, 0.714, -11.69); }},
        {"origin", [](CDatumConv& d) { d.SetGrafOrigine(42.5, 12.6); }},
    };
    for (const Change& change : changes) {
        const auto other = RomaMap();
        change.make(*other->GetDatAt(3, 4, 0));
        EXPECT_TRUE(IsDifferentIn(other.get())) << change.name;
    }
}

TEST_F(SelectedDatum, IsDifferentWhenTheLibraryDoesNotHaveIt) {
    CLibMap other;
    EXPECT_TRUE(IsDifferentIn(&other));
    EXPECT_TRUE(IsDifferentIn(nullptr));
}

TEST_F(SelectedDatum, SurvivesASaveWithoutIt) {
    CConvCoord read(nullptr);
    Read(read, record);
    EXPECT_EQ(Dump(Record(read)), Dump(record)) << "the values are all that is known of it";
    const CConvCoord copy(read);
    EXPECT_TRUE(copy.IsDatumDiverso()) << "a copy knows as much";
}

TEST_F(SelectedDatum, AnotherSelectionForgetsIt) {
    CLibMap other;
    CConvCoord read(&other);
    Read(read, record);
    read.SetImp(CConvCoord::impPronta, 2);
    EXPECT_TRUE(read.IsDatumDiverso()) << "this setting selects nothing";
    read.SetImp(CConvCoord::impDatIndice, 1);
    EXPECT_FALSE(read.IsDatumDiverso());
    EXPECT_EQ(Record(read).back(), '\0') << "and it is not written under another name";

    Read(read, record);
    ASSERT_TRUE(read.IsDatumDiverso());
    read.SetImpFlag(false);
    EXPECT_FALSE(read.IsDatumDiverso());
}

TEST_F(SelectedDatum, RecordWithoutOneForgetsTheFormer) {
    CLibMap other;
    CConvCoord read(&other);
    Read(read, record);
    ASSERT_TRUE(read.IsDatumDiverso());
    CConvCoord plain;
    Read(read, Record(plain));
    EXPECT_FALSE(read.IsDatumDiverso());
}

TEST_F(SelectedDatum, WithoutTheFlagItPlaysNoPart) {
    std::string bytes = record;
    bytes[8 + 40] = 0;  // flag B of a damaged or foreign record, with a datum all the same
    CLibMap other;
    CConvCoord read(&other);
    Read(read, bytes);
    EXPECT_FALSE(read.IsDatumDiverso());
}

TEST_F(SelectedDatum, FollowsTheLibrary) {
    const auto other = RomaMap();
    CConvCoord read(other.get());
    Read(read, record);
    other->GetDatAt(3, 4, 0)->SetNome("changed");
    EXPECT_TRUE(read.IsDatumDiverso());
    other->GetDatAt(3, 4, 0)->SetNome("Roma 40");
    EXPECT_FALSE(read.IsDatumDiverso());
}

}  // namespace
