// Copies of points, groups and field books: values, shared pointers, and what a copy does not have.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "gps/model/CLibGps.h"
#include "gps/model/CNotifyDataGPS.h"
#include "platform/coord/CLibMap.h"
#include "platform/entity/CCloudProject.h"
#include "platform/entity/COriData.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/model/Layout.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::ChangeWatch;
using test::DrawingWatch;

// --- points ------------------------------------------------------------------------------------------------

class PointCopy : public testing::Test {
protected:
    PointCopy() {
        group.SetCloudCreatorDevId(31);
        source.SetNome("P1");
        source.SetSecScri("tree");
        source.SetNote("note");
        source.DoSetCoord(1, 2, 3);
        source.SetCodeEgn(4);
        source.SetYear(2024);
        source.SetMonth(6);
        source.SetDay(24);
        source.SetTod(5);
        source.SetHposRms(6);
        source.SetVposRms(7);
        source.SetPdop(8);
        source.SetGdop(9);
        source.SetNuGpsUsed(10);
        source.SetNuGloUsed(11);
        source.SetPosCov_xx(12);
        source.SetPosCov_yy(13);
        source.SetPosCov_zz(14);
        source.SetPosCov_tt(15);
        source.SetPosCov_xy(16);
        source.SetPosCov_xz(17);
        source.SetPosCov_xt(18);
        source.SetPosCov_yz(19);
        source.SetPosCov_yt(20);
        source.SetPosCov_zt(21);
        source.SetLat(22);
        source.SetLong(23);
        source.SetElev(24);
        source.SetAltAnt(25);
        source.SetQua(26);
        source.SetGrafBase(27, 28, 29);
        source.SetIsPrimaryPtDup(true);
        source.SetIsSecondaryPtDup(true);
        source.SetPunRis32(30);
        source.SetCloudId(77);
        source.AddRef();
        source.AddListener([this](int, int, VEXNotifyObject::CNotifyData*) { ++told; });
    }

    void ExpectEqual(CPunGps& copy) {
        EXPECT_EQ(copy.GetNome(), "P1");
        EXPECT_EQ(copy.GetSecScri(), "tree");
        EXPECT_EQ(copy.GetNote(), "note");
        EXPECT_EQ(copy.GetCoordX(), 1);
        EXPECT_EQ(copy.GetCoordY(), 2);
        EXPECT_EQ(copy.GetCoordZ(), 3);
        EXPECT_EQ(copy.GetCodeEgn(), 4u);
        EXPECT_EQ(copy.GetYear(), 2024);
        EXPECT_EQ(copy.GetMonth(), 6);
        EXPECT_EQ(copy.GetDay(), 24);
        EXPECT_EQ(copy.GetTod(), 5u);
        EXPECT_EQ(copy.GetHposRms(), 6);
        EXPECT_EQ(copy.GetVposRms(), 7);
        EXPECT_EQ(copy.GetPdop(), 8);
        EXPECT_EQ(copy.GetGdop(), 9);
        EXPECT_EQ(copy.GetNuGpsUsed(), 10);
        EXPECT_EQ(copy.GetNuGloUsed(), 11);
        EXPECT_EQ(copy.GetPosCov_xx(), 12);
        EXPECT_EQ(copy.GetPosCov_yy(), 13);
        EXPECT_EQ(copy.GetPosCov_zz(), 14);
        EXPECT_EQ(copy.GetPosCov_tt(), 15);
        EXPECT_EQ(copy.GetPosCov_xy(), 16);
        EXPECT_EQ(copy.GetPosCov_xz(), 17);
        EXPECT_EQ(copy.GetPosCov_xt(), 18);
        EXPECT_EQ(copy.GetPosCov_yz(), 19);
        EXPECT_EQ(copy.GetPosCov_yt(), 20);
        EXPECT_EQ(copy.GetPosCov_zt(), 21);
        EXPECT_EQ(copy.GetLat(), 22);
        EXPECT_EQ(copy.GetLong(), 23);
        EXPECT_EQ(copy.GetElev(), 24);
        EXPECT_EQ(copy.GetAltAnt(), 25);
        EXPECT_EQ(copy.GetQua(), 26);
        double lat = 0, lon = 0, h = 0;
        copy.GetGrafBase(lat, lon, h);
        EXPECT_EQ(lat, 27);
        EXPECT_EQ(lon, 28);
        EXPECT_EQ(h, 29);
        EXPECT_TRUE(copy.IsPrimaryPtDup());
        EXPECT_TRUE(copy.IsSecondaryPtDup());
        EXPECT_EQ(copy.GetPunRis32(), 30u);
        EXPECT_EQ(copy.GetCloudCreatorDevId(), 31) << "of the same owner group";
        EXPECT_EQ(copy.GetCloudId(), 77);
        EXPECT_EQ(copy.GetCloudFlag(), source.GetCloudFlag());
        copy.Notify(1, 1, nullptr);
        EXPECT_EQ(told, 0) << "nobody listens to a copy";
    }

    test::Table table;
    CGrpGps group{nullptr, false, nullptr, 0};
    CPunGps source{&table, false, &group};
    int told = 0;
};

TEST_F(PointCopy, ConstructedCopyIsADetachedValue) {
    ChangeWatch watch;
    CPunGps copy(source);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    ExpectEqual(copy);
    EXPECT_EQ(copy.GetTable(), nullptr);
    EXPECT_EQ(copy.GetRefCount(), 0);
    EXPECT_TRUE(CGrpGpsLayout::Points(group).empty()) << "no group learns of the copy";
}

TEST_F(PointCopy, AssignmentTakesAllValuesAndKeepsTableAndReferences) {
    test::Table other;
    CPunGps copy(&other, false, nullptr);
    copy.AddRef();
    copy.AddRef();
    ChangeWatch watch;
    copy = source;
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    ExpectEqual(copy);
    EXPECT_EQ(copy.GetTable(), &other);
    EXPECT_EQ(test::Find(other, 77, &copy), test::Known::item);
    EXPECT_EQ(copy.GetRefCount(), 2);
}

// --- groups ------------------------------------------------------------------------------------------------

class GroupCopy : public testing::Test {
protected:
    GroupCopy() {
        source.SetNome("B1");
        source.DoSetCoord(1, 2, 3);
        source.SetGrpFlagRis(true);
        source.SetGrpFactorA(4);
        source.SetGrpFactorB(5);
        source.SetNomeGrp("quarry");
        source.SetLabels("o", "s", "d", "l");
        source.SetBaseLat(6);
        source.SetBaseLong(7);
        source.SetBaseElev(8);
        source.SetBaseAltAnt(9);
        source.SetBaseSpare1(10);
        source.SetBaseSpare2(11);
        source.SetBaseSpare3(12);
        source.SetCodeElab(13);
        source.SetTipoRilievo(14);
        source.SetTipoRicevitore(15);
        source.SetGrpRis32(16);
        source.SetCloudCreatorDevId(17);
        source.GetConvCoord()->SetImp(1, 18);
        source.InsInPunSetNor(&normal);
        source.InsInPunSetSpc(&special);
        source.SetCloudId(77);
        source.AddRef();
        source.AddListener([this](int, int, VEXNotifyObject::CNotifyData*) { ++told; });
        CGrpGpsLayout::Points(source) = {&normal, &special};
    }
    ~GroupCopy() override { CGrpGpsLayout::Points(source).clear(); }  // the points are the test's

    void ExpectEqual(CGrpGps& copy) {
        EXPECT_EQ(copy.GetNome(), "B1");
        EXPECT_EQ(copy.GetCoordZ(), 3);
        EXPECT_TRUE(copy.GetGrpFlagRis());
        EXPECT_TRUE(CGrpGpsLayout::IsSpareCursorNull(copy));
        EXPECT_EQ(CGrpGpsLayout::Points(copy), (std::vector<CPunGps*>{&normal, &special}));
        EXPECT_EQ(copy.GetGrpFactorA(), 4);
        EXPECT_EQ(copy.GetGrpFactorB(), 5);
        EXPECT_EQ(copy.GetNomeGrp(), "quarry");
        EXPECT_EQ(copy.GetOper(), "o");
        EXPECT_EQ(copy.GetStrum(), "s");
        EXPECT_EQ(copy.GetData(), "d");
        EXPECT_EQ(copy.GetLocalita(), "l");
        EXPECT_EQ(copy.GetBaseLat(), 6);
        EXPECT_EQ(copy.GetBaseLong(), 7);
        EXPECT_EQ(copy.GetBaseElev(), 8);
        EXPECT_EQ(copy.GetBaseAltAnt(), 9);
        EXPECT_EQ(copy.GetBaseSpare1(), 10);
        EXPECT_EQ(copy.GetBaseSpare2(), 11);
        EXPECT_EQ(copy.GetBaseSpare3(), 12);
        EXPECT_EQ(copy.GetCodeElab(), 13);
        EXPECT_EQ(copy.GetConvCoord()->GetImp(1), 18);
        EXPECT_EQ(copy.GetTipoRilievo(), 14);
        EXPECT_EQ(copy.GetTipoRicevitore(), 15);
        EXPECT_EQ(*copy.GetPunSetNorBegin(), &normal);
        EXPECT_EQ(*copy.GetPunSetSpcBegin(), &special);
        EXPECT_EQ(copy.GetTargetDrawing(), 61);
        EXPECT_EQ(copy.GetGrpRis32(), 16u);
        EXPECT_EQ(copy.GetCloudCreatorDevId(), 17);
        EXPECT_EQ(copy.GetCloudId(), 77);
        EXPECT_EQ(copy.GetCloudFlag(), source.GetCloudFlag());
        copy.Notify(1, 1, nullptr);
        EXPECT_EQ(told, 0) << "nobody listens to a copy";
    }

    CLibMap map;
    test::Table table{CCloudTable::tabGpsBase};
    CGrpGps source{&table, false, &map, 61};
    CPunGps normal{nullptr, false, &source}, special{nullptr, false, &source};
    int told = 0;
};

TEST_F(GroupCopy, ConstructedCopyListsTheSamePointsAndTakesNoDrawingReference) {
    ChangeWatch watch;
    DrawingWatch drawings;
    CGrpGps copy(source);
    EXPECT_EQ(drawings.Take(), DrawingWatch::Calls{});
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    ExpectEqual(copy);
    EXPECT_EQ(copy.GetTable(), nullptr);
    EXPECT_EQ(copy.GetRefCount(), 0);
    CGrpGpsLayout::Points(copy).clear();
}

TEST_F(GroupCopy, AssignmentTakesAllValuesAndNoDrawingReference) {
    test::Table otherTable(CCloudTable::tabGpsBase);
    CGrpGps copy(&otherTable, false, nullptr, 62);
    copy.AddRef();
    copy.AddRef();
    ChangeWatch watch;
    DrawingWatch drawings;
    copy = source;
    EXPECT_EQ(drawings.Take(), DrawingWatch::Calls{});
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    ExpectEqual(copy);
    EXPECT_EQ(copy.GetTable(), &otherTable);
    EXPECT_EQ(copy.GetRefCount(), 2);
    CGrpGpsLayout::Points(copy).clear();
}

TEST_F(GroupCopy, ConversionOfACopyReportsToNobody) {
    CGrpGps copy(source);
    CGrpGpsLayout::Points(copy).clear();
    EXPECT_EQ(copy.GetConvCoord()->GetLibMap(), &map);
    ChangeWatch watch;
    copy.GetConvCoord()->SetImp(2, 99);
    EXPECT_EQ(copy.GetConvCoord()->GetImp(2), 99);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    source.GetConvCoord()->SetImp(2, 98);
    EXPECT_EQ(watch.Take(), (ChangeWatch::Calls{{&source, 0x1000}})) << "the source's still does";
}

TEST_F(GroupCopy, ConversionOfAnAssignedGroupReportsToItself) {
    CLibMap otherMap;
    CGrpGps copy(nullptr, false, &otherMap, 0);
    copy = source;
    CGrpGpsLayout::Points(copy).clear();
    EXPECT_EQ(copy.GetConvCoord()->GetLibMap(), &otherMap);
    ChangeWatch watch;
    copy.GetConvCoord()->SetImp(2, 99);
    EXPECT_EQ(watch.Take(), (ChangeWatch::Calls{{&copy, 0x1000}}));
}

TEST_F(GroupCopy, CopyOutlivesItsSource) {
    auto original = std::make_unique<CGrpGps>(nullptr, false, &map, 0);
    CGrpGps copy(*original);
    original.reset();
    copy.GetConvCoord()->SetImp(1, 5);  // a copy that reported to its source would reach into freed memory
    copy.SetNomeGrp("quarry");
    EXPECT_EQ(copy.GetCloudFlag(), 0x10u);
}

// --- field books -------------------------------------------------------------------------------------------

TEST(BookCopy, SharesTheGroupsAndTakesNoDrawingReference) {
    CLibMap map, otherMap;
    COriData orientation;
    CCloudProject project(false);
    CLibGps book(&project, nullptr, &orientation, &map, 71);
    book.SetOpzWarning(true);
    book.SetModifiedFlag(true);
    book.SetNomeFile("a.prj");
    CGrpGps* group = book.AddGrp(false);
    CPunGps* point = book.AddPun(0, false);

    DrawingWatch drawings;
    CLibGps copy(book);
    CLibGps assigned(nullptr, nullptr, nullptr, &otherMap, 72);
    drawings.Take();
    assigned = book;
    EXPECT_EQ(drawings.Take(), DrawingWatch::Calls{}) << "an assignment takes and gives back nothing";
    for (CLibGps* other : {&copy, &assigned}) {
        EXPECT_EQ(other->GetGrpArSize(), 1);
        EXPECT_EQ(other->GetGrpAt(0), group);
        EXPECT_EQ(other->GetPunAt(0, 0), point);
        EXPECT_EQ(other->GetArchLibMap(), &map);
        EXPECT_EQ(other->GetTargetDrawing(), 71);
        EXPECT_EQ(other->GetCloudProject(), &project);
        EXPECT_EQ(other->GetOriData(), &orientation);
        EXPECT_TRUE(other->GetOpzWarning());
        EXPECT_TRUE(other->IsModified());
        EXPECT_EQ(other->GetNomeFile(), "a.prj");
        int g = -1, p = -1;
        EXPECT_TRUE(other->GetIndiciDiPun(point, g, p));
        EXPECT_EQ(g, 0);
        EXPECT_EQ(p, 0);
        CLibGpsLayout::Groups(*other).clear();  // only one of the books may destroy them
    }
    EXPECT_EQ(book.GetGrpAt(0), group);
}

TEST(BookCopy, ConstructionTakesNoReferenceAndDestructionGivesOneBack) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 71);
    DrawingWatch drawings;
    { const CLibGps copy(book); }
    EXPECT_EQ(drawings.Take(), (DrawingWatch::Calls{{-1, 71}}));
}

// --- payload -----------------------------------------------------------------------------------------------

TEST(NotifyData, HoldsItsTwoValuesInOrder) {
    const CNotifyDataGPS data(3, -4);
    EXPECT_EQ(data.nData1, 3);
    EXPECT_EQ(data.nData2, -4);
    EXPECT_LT(static_cast<const void*>(&data.nData1), static_cast<const void*>(&data.nData2));
    EXPECT_EQ(sizeof data.nData1, 4u);
}

TEST(NotifyData, IsCopiedWithBothValues) {
    const CNotifyDataGPS data(3, -4);
    const CNotifyDataGPS copy(data);
    EXPECT_EQ(copy.nData1, 3);
    EXPECT_EQ(copy.nData2, -4);
    CNotifyDataGPS assigned(0, 0);
    assigned = data;
    EXPECT_EQ(assigned.nData1, 3);
    EXPECT_EQ(assigned.nData2, -4);
}

TEST(NotifyData, TravelsThroughANotificationOfTheBook) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    int first = 0;
    book.AddListener([&](int, int, VEXNotifyObject::CNotifyData* data) {
        const auto* numbers = dynamic_cast<CNotifyDataGPS*>(data);
        first = numbers ? numbers->nData1 : -1;
    });
    CNotifyDataGPS data(12, 13);
    book.Notify(5, 6, &data);
    EXPECT_EQ(first, 12);
    book.Notify(1, 1, nullptr);
    EXPECT_EQ(first, -1);
}

}  // namespace
