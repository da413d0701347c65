// The map library's record: its bytes, what reading replaces, and damage.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"
#include "tests/Bytes.h"
#include "tests/host/coord/Values.h"

namespace {

using test::Bytes;
using test::Dump;

Bytes Datum(const char* name, double tx) {
    return Bytes().Text(name).U8(0).F64(tx).F64(0, 6).F64(GPS_VAL_UNSET, 2);
}

void Set(CDatumConv& datum, const char* name, double tx) {
    datum.SetNome(name);
    datum.SetCoeffToStd(tx, 0, 0, 0, 0, 0, 0);
}

Bytes Envelope(const std::string& payload, int form = 1) {
    return Bytes().I32(form).I32(static_cast<std::int32_t>(payload.size())).Raw(payload);
}

Bytes FullPayload() {
    return Bytes()
        .I32(2)
        .Raw(Datum("measured", 7))
        .I32(3)
        .I32(0)
        .I32(0)
        .I32(1)
        .Raw(Datum("", 0))
        .I32(1)
        .I32(0)
        .I32(2)
        .Raw(Datum("b", 2))
        .Raw(Datum("c", 3))
        .I32(1)
        .I32(5)
        .I32(1)
        .Raw(Datum("d", 4));
}

void Fill(CLibMap& map) {
    Set(*map.AddDat(1, 5), "d", 4);
    Set(*map.AddDat(1, 0), "b", 2);
    Set(*map.AddDat(1, 0), "c", 3);
    map.SetTpDtBaseGps(2);
    Set(*map.GetConvDtBaseGps(), "measured", 7);
}

std::string Record(CLibMap& map) {
    ofpstream out(1003);
    map.SalvaInFile(out, 1003);
    return std::string(out.GetBytes());
}

bool Read(CLibMap& map, const std::string& bytes) {
    ifpstream in(bytes.data(), bytes.size(), 1003);
    map.LeggeDaFile(in, 1003);
    return in.IsOk() && in.GetRemaining() == 0;
}

TEST(MapRecord, OfANewLibraryHoldsOneDatum) {
    CLibMap map;
    EXPECT_EQ(
        Dump(Record(map)),
        Dump(Envelope(Bytes().I32(0).Raw(Datum("", 0)).I32(1).I32(0).I32(0).I32(1).Raw(Datum("", 0))).Get()));
}

TEST(MapRecord, HoldsListsInOrderOfTheirSelectors) {
    CLibMap map;
    Fill(map);
    EXPECT_EQ(Dump(Record(map)), Dump(Envelope(FullPayload()).Get()));
}

TEST(MapRecord, ComesBackAndReplacesAllDatums) {
    CLibMap read;
    Set(*read.AddDat(9, 9), "former", 1);
    Set(*read.AddDat(1, 0), "former", 1);
    ASSERT_TRUE(Read(read, Envelope(FullPayload())));
    EXPECT_EQ(read.GetDatArSize(9, 9), 0);
    EXPECT_EQ(read.GetDatArSize(0, 0), 1);
    ASSERT_EQ(read.GetDatArSize(1, 0), 2);
    EXPECT_EQ(read.GetDatAt(1, 0, 0)->GetNome(), "b");
    EXPECT_EQ(read.GetDatAt(1, 0, 1)->GetNome(), "c");
    EXPECT_EQ(read.GetDatAt(1, 5, 0)->GetNome(), "d");
    EXPECT_EQ(read.GetTpDtBaseGps(), 2);
    EXPECT_EQ(read.GetConvDtBaseGps()->GetNome(), "measured");
    EXPECT_EQ(Dump(Record(read)), Dump(Envelope(FullPayload()).Get()));
}

TEST(MapRecord, ConversionsSeeTheNewDatums) {
    CLibMap map;
    CConvCoord conv(&map);
    conv.SetTpDtBaseGps(CConvCoord::dtLibreria);
    gpstest::Triple before, after;
    ASSERT_TRUE(conv.GeocBaseToGeocWgs(4.6e6, 9e5, 4.3e6, before.a, before.b, before.c));
    EXPECT_EQ(before.a, 4.6e6);
    ASSERT_TRUE(Read(map, Envelope(FullPayload())));
    ASSERT_TRUE(conv.GeocBaseToGeocWgs(4.6e6, 9e5, 4.3e6, after.a, after.b, after.c));
    EXPECT_EQ(after.a, 4.6e6 + 7);
    map.GetConvDtBaseGps()->SetCoeffToStd(8, 0, 0, 0, 0, 0, 0);
    ASSERT_TRUE(conv.GeocBaseToGeocWgs(4.6e6, 9e5, 4.3e6, after.a, after.b, after.c));
    EXPECT_EQ(after.a, 4.6e6 + 8) << "what was read reports its changes to the library";
}

TEST(MapRecord, SelectedDatumIsFoundAnewAfterReading) {
    // The datum that a conversion had in hand is gone.
    CLibMap map;
    Fill(map);
    CConvCoord conv(&map);
    conv.SetImp(CConvCoord::impDatSel1, 1);
    conv.SetImpFlag(true);
    conv.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 0, 0, 1);
    gpstest::Triple before, same, none;
    ASSERT_TRUE(conv.GrafGpsToPlanAtt(45, 11, 100, 0, before.a, before.b, before.c));
    ASSERT_TRUE(Read(map, Record(map)));
    ASSERT_TRUE(conv.GrafGpsToPlanAtt(45, 11, 100, 0, same.a, same.b, same.c));
    EXPECT_TRUE(gpstest::Near(same, before, 0));
    ASSERT_TRUE(Read(map, Envelope(Bytes().I32(0).Raw(Datum("", 0)).I32(0))));
    EXPECT_FALSE(conv.GrafGpsToPlanAtt(45, 11, 100, 0, none.a, none.b, none.c));
}

TEST(MapRecord, FieldsOfALaterFormArePassedOver) {
    const std::string bytes = Envelope(FullPayload().Raw("more"), 2).I32(4711);
    CLibMap read;
    ifpstream in(bytes.data(), bytes.size(), 1003);
    read.LeggeDaFile(in, 1003);
    EXPECT_EQ(in.ReadInt(), 4711);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(Dump(Record(read)), Dump(Envelope(FullPayload()).Get()));
}

TEST(MapRecord, CutPayloadLeavesTheStreamInStep) {
    const std::string payload = FullPayload();
    for (std::size_t size = 0; size < payload.size(); ++size) {
        const std::string bytes = Envelope(payload.substr(0, size)).I32(4711);
        CLibMap read;
        ifpstream in(bytes.data(), bytes.size(), 1003);
        read.LeggeDaFile(in, 1003);
        ASSERT_EQ(in.ReadInt(), 4711) << size;
    }
}

TEST(MapRecord, CountsThatThePayloadCannotHoldEnd) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (const std::string& lists :
         {Bytes().I32(kMost).Get(), Bytes().I32(kMost).I32(0).I32(0).I32(kMost).Get(),
          Bytes().I32(kMost).I32(-1).I32(0).I32(kMost).Raw(Datum("x", 1)).Get(), Bytes().I32(-5).Get(),
          Bytes().I32(1).I32(0).I32(0).I32(-5).Get()}) {
        const std::string bytes = Envelope(Bytes().I32(0).Raw(Datum("", 0)).Raw(lists)).I32(4711);
        CLibMap read;
        ifpstream in(bytes.data(), bytes.size(), 1003);
        read.LeggeDaFile(in, 1003);
        EXPECT_EQ(in.ReadInt(), 4711);
        EXPECT_LE(read.GetDatArSize(0, 0), 1);
    }
}

TEST(MapRecord, DatumsBeyondAFullListAreDropped) {
    Bytes payload = Bytes().I32(0).Raw(Datum("", 0)).I32(1).I32(0).I32(0).I32(CLibMap::MAX_DATUM + 1);
    for (int i = 0; i <= CLibMap::MAX_DATUM; ++i) payload.Raw(Datum("d", i + 1));
    CLibMap read;
    EXPECT_TRUE(Read(read, Envelope(payload)));
    EXPECT_EQ(read.GetDatArSize(0, 0), CLibMap::MAX_DATUM);
}

}  // namespace
