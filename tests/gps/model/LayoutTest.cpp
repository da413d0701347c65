// Order of bases, fields and virtual operations: a host compiled against these classes relies on it.
#include "tests/gps/model/Layout.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "gps/model/CNotifyDataGPS.h"
#include "tests/host/base/VirtualSlot.h"

// The classes have bases, for which offsetof is supported conditionally; GCC and Clang support it.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

std::vector<NamedOffset> CPunGpsLayout::Fields() {
    return {
        {"Group", offsetof(CPunGps, Group)},
        {"Year", offsetof(CPunGps, Year)},
        {"Month", offsetof(CPunGps, Month)},
        {"Day", offsetof(CPunGps, Day)},
        {"Tod", offsetof(CPunGps, Tod)},
        {"HposRms", offsetof(CPunGps, HposRms)},
        {"VposRms", offsetof(CPunGps, VposRms)},
        {"Pdop", offsetof(CPunGps, Pdop)},
        {"Gdop", offsetof(CPunGps, Gdop)},
        {"NuGpsUsed", offsetof(CPunGps, NuGpsUsed)},
        {"NuGloUsed", offsetof(CPunGps, NuGloUsed)},
        {"PosCov_xx", offsetof(CPunGps, PosCov_xx)},
        {"PosCov_yy", offsetof(CPunGps, PosCov_yy)},
        {"PosCov_zz", offsetof(CPunGps, PosCov_zz)},
        {"PosCov_tt", offsetof(CPunGps, PosCov_tt)},
        {"PosCov_xy", offsetof(CPunGps, PosCov_xy)},
        {"PosCov_xz", offsetof(CPunGps, PosCov_xz)},
        {"PosCov_xt", offsetof(CPunGps, PosCov_xt)},
        {"PosCov_yz", offsetof(CPunGps, PosCov_yz)},
        {"PosCov_yt", offsetof(CPunGps, PosCov_yt)},
        {"PosCov_zt", offsetof(CPunGps, PosCov_zt)},
        {"Lat", offsetof(CPunGps, Lat)},
        {"Long", offsetof(CPunGps, Long)},
        {"Elev", offsetof(CPunGps, Elev)},
        {"AltAnt", offsetof(CPunGps, AltAnt)},
        {"Qua", offsetof(CPunGps, Qua)},
        {"GrafBase", offsetof(CPunGps, GrafBase)},
        {"PrimaryPtDup", offsetof(CPunGps, PrimaryPtDup)},
        {"SecondaryPtDup", offsetof(CPunGps, SecondaryPtDup)},
        {"PunRis32", offsetof(CPunGps, PunRis32)},
    };
}

std::vector<NamedOffset> CGrpGpsLayout::Fields() {
    return {
        {"GrpFlagRis", offsetof(CGrpGps, GrpFlagRis)},
        {"SpareCursor", offsetof(CGrpGps, SpareCursor)},
        {"PunList", offsetof(CGrpGps, PunList)},
        {"GrpFactorA", offsetof(CGrpGps, GrpFactorA)},
        {"GrpFactorB", offsetof(CGrpGps, GrpFactorB)},
        {"NomeGrp", offsetof(CGrpGps, NomeGrp)},
        {"Oper", offsetof(CGrpGps, Oper)},
        {"Strum", offsetof(CGrpGps, Strum)},
        {"Data", offsetof(CGrpGps, Data)},
        {"Localita", offsetof(CGrpGps, Localita)},
        {"BaseLat", offsetof(CGrpGps, BaseLat)},
        {"BaseLong", offsetof(CGrpGps, BaseLong)},
        {"BaseElev", offsetof(CGrpGps, BaseElev)},
        {"BaseAltAnt", offsetof(CGrpGps, BaseAltAnt)},
        {"BaseSpare1", offsetof(CGrpGps, BaseSpare1)},
        {"BaseSpare2", offsetof(CGrpGps, BaseSpare2)},
        {"BaseSpare3", offsetof(CGrpGps, BaseSpare3)},
        {"CodeElab", offsetof(CGrpGps, CodeElab)},
        {"ConvCoord", offsetof(CGrpGps, ConvCoord)},
        {"TipoRilievo", offsetof(CGrpGps, TipoRilievo)},
        {"TipoRicevitore", offsetof(CGrpGps, TipoRicevitore)},
        {"PunSetNor", offsetof(CGrpGps, PunSetNor)},
        {"PunSetSpc", offsetof(CGrpGps, PunSetSpc)},
        {"TargetDrawing", offsetof(CGrpGps, TargetDrawing)},
        {"GrpRis32", offsetof(CGrpGps, GrpRis32)},
        {"CloudCreatorDevId", offsetof(CGrpGps, CloudCreatorDevId)},
    };
}

std::vector<NamedOffset> CLibGpsLayout::Fields() {
    return {
        {"OpzLib", offsetof(CLibGps, OpzLib)},
        {"OpzListDis", offsetof(CLibGps, OpzListDis)},
        {"GrpList", offsetof(CLibGps, GrpList)},
        {"StreamVersion", offsetof(CLibGps, StreamVersion)},
        {"StreamFlag", offsetof(CLibGps, StreamFlag)},
        {"OpzWarning", offsetof(CLibGps, OpzWarning)},
        {"ArchLibMap", offsetof(CLibGps, ArchLibMap)},
        {"OpzPostProc", offsetof(CLibGps, OpzPostProc)},
        {"TargetDrawing", offsetof(CLibGps, TargetDrawing)},
    };
}

namespace {

void ExpectInOrder(const std::vector<NamedOffset>& fields) {
    for (std::size_t i = 1; i < fields.size(); ++i)
        EXPECT_LT(fields[i - 1].offset, fields[i].offset)
            << fields[i].name << " after " << fields[i - 1].name;
}

template <class Base, class Derived>
std::ptrdiff_t BaseOffset(Derived& object) {
    return reinterpret_cast<char*>(static_cast<Base*>(&object)) - reinterpret_cast<char*>(&object);
}

TEST(Layout, FieldsOfAPointAreInTheirOrder) { ExpectInOrder(CPunGpsLayout::Fields()); }
TEST(Layout, FieldsOfAGroupAreInTheirOrder) { ExpectInOrder(CGrpGpsLayout::Fields()); }
TEST(Layout, FieldsOfAFieldBookAreInTheirOrder) { ExpectInOrder(CLibGpsLayout::Fields()); }

TEST(Layout, EntityComesBeforeTheCloudItemAndBothBeforeTheFields) {
    CPunGps point(nullptr, false, nullptr);
    CGrpGps group(nullptr, false, nullptr, 0);
    EXPECT_EQ(BaseOffset<CEgn>(point), 0);
    EXPECT_EQ(BaseOffset<CEgn>(group), 0);
    EXPECT_GE(BaseOffset<CCloudItem>(point), static_cast<std::ptrdiff_t>(sizeof(CEgn)));
    EXPECT_GE(BaseOffset<CCloudItem>(group), static_cast<std::ptrdiff_t>(sizeof(CEgn)));
    EXPECT_LT(BaseOffset<CCloudItem>(point),
              static_cast<std::ptrdiff_t>(CPunGpsLayout::Fields().front().offset));
    EXPECT_LT(BaseOffset<CCloudItem>(group),
              static_cast<std::ptrdiff_t>(CGrpGpsLayout::Fields().front().offset));
}

TEST(Layout, FieldTypesHaveTheirWidths) {
    CPunGps point(nullptr, false, nullptr);
    EXPECT_EQ(sizeof point.GetYear(), 2u);
    EXPECT_EQ(sizeof point.GetMonth(), 1u);
    EXPECT_EQ(sizeof point.GetDay(), 1u);
    EXPECT_EQ(sizeof point.GetTod(), 4u);
    EXPECT_EQ(sizeof point.GetQua(), 4u);
    EXPECT_EQ(sizeof point.GetNuGpsUsed(), 1u);
    EXPECT_EQ(sizeof point.GetPosCov_xx(), 4u);
    EXPECT_EQ(sizeof point.GetPunRis32(), 4u);
    EXPECT_EQ(sizeof CGrpGps(point.GetCloudItem()->GetTable(), false, nullptr, 0).GetCodeElab(), 2u);
    EXPECT_EQ(sizeof CGrpGps(nullptr, false, nullptr, 0).GetTargetDrawing(), 8u);
}

// One new operation each: it tells how many entries the base's table has.
struct AfterLibGps : CLibGps {
    using CLibGps::CLibGps;
    virtual void Next() {}
};
struct AfterPunGps : CPunGps {
    using CPunGps::CPunGps;
    virtual void Next() {}
};
struct AfterGrpGps : CGrpGps {
    using CGrpGps::CGrpGps;
    virtual void Next() {}
};
struct AfterNotifyData : CNotifyDataGPS {
    using CNotifyDataGPS::CNotifyDataGPS;
    virtual void Next() {}
};

TEST(Slots, OfAPoint) {
    // 0 and 1 are the destructor's; an operation of the second base is repeated after those of the first.
    EXPECT_EQ(VirtualSlot(&CPunGps::GetCloudItem), 2);
    EXPECT_EQ(VirtualSlot(&CPunGps::SetNome), 3);
    EXPECT_EQ(VirtualSlot(&CPunGps::SetSecScri), 4);
    EXPECT_EQ(VirtualSlot(&CPunGps::DoSetCoord), 5);
    EXPECT_EQ(VirtualSlot(&CPunGps::SetCodeEgn), 6);
    EXPECT_EQ(VirtualSlot(&CPunGps::GetUserType), 7);
    EXPECT_EQ(VirtualSlot(&CPunGps::GetCloudCreatorDevId), 8);
    EXPECT_EQ(VirtualSlot(&AfterPunGps::Next), 9);
    EXPECT_EQ(VirtualSlot(&CPunGps::AnnullaTutteLeVar), -1);
    EXPECT_EQ(VirtualSlot(&CPunGps::SetCode), -1);
}

TEST(Slots, OfAGroup) {
    EXPECT_EQ(VirtualSlot(&CGrpGps::GetCloudItem), 2);
    EXPECT_EQ(VirtualSlot(&CGrpGps::SetNome), 3);
    EXPECT_EQ(VirtualSlot(&CGrpGps::SetSecScri), 4);
    EXPECT_EQ(VirtualSlot(&CGrpGps::DoSetCoord), 5);
    EXPECT_EQ(VirtualSlot(&CGrpGps::SetCodeEgn), 6);
    EXPECT_EQ(VirtualSlot(&CGrpGps::GetUserType), 7);
    EXPECT_EQ(VirtualSlot(&CGrpGps::GetCloudCreatorDevId), 8);
    EXPECT_EQ(VirtualSlot(&CGrpGps::ConvCoordChanged), 9);
    EXPECT_EQ(VirtualSlot(&AfterGrpGps::Next), 10);
    EXPECT_EQ(VirtualSlot(&CGrpGps::SetCloudCreatorDevId), -1);
}

TEST(Slots, OfAFieldBook) {
    EXPECT_EQ(VirtualSlot(&CLibGps::SetModifiedFlag), 2);
    EXPECT_EQ(VirtualSlot(&CLibGps::IsModified), 3);
    EXPECT_EQ(VirtualSlot(&CLibGps::SetAutoSaved), 4);
    EXPECT_EQ(VirtualSlot(&CLibGps::IsAutoSaved), 5);
    EXPECT_EQ(VirtualSlot(&AfterLibGps::Next), 8) << "the field book adds none";
    EXPECT_EQ(VirtualSlot(static_cast<void (CLibGen::*)(ofpstream&, short)>(&CLibGen::SalvaInFile)), 6);
    EXPECT_EQ(VirtualSlot(static_cast<void (CLibGen::*)(ifpstream&, short)>(&CLibGen::LeggeDaFile)), 7);
}

TEST(Slots, OfAPayload) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CNotifyDataGPS>);
    EXPECT_EQ(VirtualSlot(&AfterNotifyData::Next), 2) << "nothing but the destructor";
}

// The overridden operations are reached through the first base: nothing else stands behind its places.
TEST(Slots, OverridesAreReachedThroughTheEntity) {
    CPunGps point(nullptr, false, nullptr);
    CEgn& entity = point;
    entity.SetNome("P1");
    entity.SetSecScri("tree");
    entity.DoSetCoord(1, 2, 3);
    entity.SetCodeEgn(4);
    EXPECT_EQ(point.GetCloudFlag(), 0xFu) << "each reported as a point's";
    EXPECT_EQ(entity.GetCloudItem(), static_cast<CCloudItem*>(&point));
    EXPECT_EQ(entity.GetUserType(), 8);
}

}  // namespace
