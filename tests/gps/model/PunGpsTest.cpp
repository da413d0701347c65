#include "gps/model/CPunGps.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "gps/model/CGrpGps.h"
#include "platform/entity/CCloudManager.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/host/entity/CloudParts.h"

#if defined(__SANITIZE_ADDRESS__)
#define GPS_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define GPS_TEST_SANITIZED 1
#endif
#endif

namespace {

using test::ChangeWatch;

void ExpectNewFix(CPunGps& point) {
    EXPECT_EQ(point.GetYear(), 0);
    EXPECT_EQ(point.GetMonth(), 0);
    EXPECT_EQ(point.GetDay(), 0);
    EXPECT_EQ(point.GetTod(), 0u);
    EXPECT_EQ(point.GetHposRms(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetVposRms(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetPdop(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetGdop(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetNuGpsUsed(), 0);
    EXPECT_EQ(point.GetNuGloUsed(), 0);
    for (const float covariance :
         {point.GetPosCov_xx(), point.GetPosCov_yy(), point.GetPosCov_zz(), point.GetPosCov_tt(),
          point.GetPosCov_xy(), point.GetPosCov_xz(), point.GetPosCov_xt(), point.GetPosCov_yz(),
          point.GetPosCov_yt(), point.GetPosCov_zt()})
        EXPECT_EQ(covariance, 0.0f);
    EXPECT_EQ(point.GetLat(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetLong(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetElev(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetAltAnt(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetQua(), 0);
    double lat = 0, lon = 0, h = 0;
    point.GetGrafBase(lat, lon, h);
    EXPECT_EQ(lat, GPS_VAL_UNSET);
    EXPECT_EQ(lon, GPS_VAL_UNSET);
    EXPECT_EQ(h, GPS_VAL_UNSET);
    EXPECT_FALSE(point.IsPrimaryPtDup());
    EXPECT_FALSE(point.IsSecondaryPtDup());
}

void Fill(CPunGps& point) {
    point.SetNome("P1");
    point.SetSecScri("tree");
    point.SetCodeEgn(3);
    point.DoSetCoord(1, 2, 3);
    point.SetYear(2024);
    point.SetMonth(6);
    point.SetDay(24);
    point.SetTod(43'200'000);
    point.SetHposRms(0.01);
    point.SetVposRms(0.02);
    point.SetPdop(1.5);
    point.SetGdop(1.75);
    point.SetNuGpsUsed(9);
    point.SetNuGloUsed(5);
    point.SetPosCov_xx(1);
    point.SetPosCov_yy(2);
    point.SetPosCov_zz(3);
    point.SetPosCov_tt(4);
    point.SetPosCov_xy(5);
    point.SetPosCov_xz(6);
    point.SetPosCov_xt(7);
    point.SetPosCov_yz(8);
    point.SetPosCov_yt(9);
    point.SetPosCov_zt(10);
    point.SetLat(45);
    point.SetLong(12);
    point.SetElev(100);
    point.SetAltAnt(2);
    point.SetQua(4);
    point.SetGrafBase(45.1, 12.1, 50);
    point.SetIsPrimaryPtDup(true);
    point.SetIsSecondaryPtDup(true);
    point.SetPunRis32(7);
}

TEST(PunGps, NewPointHasNoFix) {
    CPunGps point(nullptr, false, nullptr);
    ExpectNewFix(point);
    EXPECT_EQ(point.GetPunRis32(), 0u);
    EXPECT_EQ(point.GetNome(), "");
    EXPECT_EQ(point.GetCode(), "");
    EXPECT_EQ(point.GetCoordX(), GPS_VAL_UNSET);
}

TEST(PunGps, ConstructionReportsNothing) {
    ChangeWatch watch;
    test::Table table;
    const CPunGps point(&table, false, nullptr);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    EXPECT_EQ(point.GetCloudFlag(), 0u);
}

TEST(PunGps, NewPointEntersItsTableUnlessItComesFromTheCloud) {
    test::Table table;
    CPunGps mine(&table, false, nullptr);
    const CPunGps theirs(&table, true, nullptr);
    EXPECT_EQ(table.GetAdded(), test::Items{&mine});
    EXPECT_EQ(theirs.GetTable(), &table);
}

TEST(PunGps, ResetPutsTheOwnFieldsBack) {
    CGrpGps group(nullptr, false, nullptr, 0);
    group.SetCloudCreatorDevId(55);
    CPunGps point(nullptr, false, &group);
    Fill(point);
    const std::uint32_t mask = point.GetCloudFlag();
    ChangeWatch watch;
    point.AnnullaLeVarPun();
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    EXPECT_EQ(point.GetCloudFlag(), mask) << "what was changed stays marked";
    ExpectNewFix(point);
    EXPECT_EQ(point.GetPunRis32(), 7u);
    EXPECT_EQ(point.GetCloudCreatorDevId(), 55) << "the owner group stays";
    EXPECT_EQ(point.GetNome(), "P1") << "the entity's fields stay";
    EXPECT_EQ(point.GetCode(), "tree");
    EXPECT_EQ(point.GetCodeEgn(), 3u);
    EXPECT_EQ(point.GetCoordX(), 1);
}

TEST(PunGps, FullResetClearsTheEntityTooAndReportsNothing) {
    CGrpGps group(nullptr, false, nullptr, 0);
    group.SetCloudCreatorDevId(55);
    CPunGps point(nullptr, false, &group);
    Fill(point);
    point.SetNote("note");
    ChangeWatch watch;
    point.AnnullaTutteLeVar();
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
    ExpectNewFix(point);
    EXPECT_EQ(point.GetPunRis32(), 7u);
    EXPECT_EQ(point.GetCloudCreatorDevId(), 55);
    EXPECT_EQ(point.GetNome(), "");
    EXPECT_EQ(point.GetCode(), "");
    EXPECT_EQ(point.GetCodeEgn(), 0u);
    EXPECT_EQ(point.GetCoordZ(), GPS_VAL_UNSET);
    EXPECT_EQ(point.GetNote(), "");
}

TEST(PunGps, MarksOfDuplicatesAreStoredWithoutAReport) {
    CPunGps point(nullptr, false, nullptr);
    ChangeWatch watch;
    point.SetIsPrimaryPtDup(true);
    EXPECT_TRUE(point.IsPrimaryPtDup());
    EXPECT_FALSE(point.IsSecondaryPtDup());
    point.SetIsSecondaryPtDup(true);
    point.SetIsPrimaryPtDup(false);
    EXPECT_FALSE(point.IsPrimaryPtDup());
    EXPECT_TRUE(point.IsSecondaryPtDup());
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
}

TEST(PunGps, ReservedValueIsStoredWithoutAReport) {
    CPunGps point(nullptr, false, nullptr);
    ChangeWatch watch;
    point.SetPunRis32(0xFFFFFFFF);
    EXPECT_EQ(point.GetPunRis32(), 0xFFFFFFFFu);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
}

TEST(PunGps, CodeIsTheSecondaryText) {
    CPunGps point(nullptr, false, nullptr);
    ChangeWatch watch;
    point.SetCode("tree");
    EXPECT_EQ(watch.Take(), (ChangeWatch::Calls{{&point, 0x2}}));
    EXPECT_EQ(point.GetSecScri(), "tree");
    EXPECT_EQ(&point.GetCode(), &point.GetSecScri());
    point.SetCode("tree");
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
}

TEST(PunGps, CodeGoesThroughTheVirtualOperation) {
    struct Loud : CPunGps {
        using CPunGps::CPunGps;
        void SetSecScri(const std::string& text) override { CPunGps::SetSecScri(text + "!"); }
    } point(nullptr, false, nullptr);
    point.SetCode("tree");
    EXPECT_EQ(point.GetCode(), "tree!");
}

TEST(PunGps, TypeIsEight) {
    CPunGps point(nullptr, false, nullptr);
    CEgn& entity = point;
    EXPECT_EQ(entity.GetUserType(), 8);
    Fill(point);
    EXPECT_EQ(entity.GetUserType(), 8);
}

TEST(PunGps, CreatorIsThatOfTheOwnerGroup) {
    struct Other : CGrpGps {
        using CGrpGps::CGrpGps;
        int GetCloudCreatorDevId() const override { return 99; }
    };
    CGrpGps group(nullptr, false, nullptr, 0);
    group.SetCloudCreatorDevId(12);
    const CPunGps point(nullptr, false, &group);
    const CCloudItem& item = point;
    EXPECT_EQ(item.GetCloudCreatorDevId(), 12);
    EXPECT_TRUE(item.IsCloudMine(12));
    group.SetCloudCreatorDevId(13);
    EXPECT_EQ(item.GetCloudCreatorDevId(), 13);

    Other other(nullptr, false, nullptr, 0);
    EXPECT_EQ(CPunGps(nullptr, false, &other).GetCloudCreatorDevId(), 99) << "through the group's cloud item";
}

TEST(PunGps, CreatorIsUnknownWithoutAnOwner) {
    EXPECT_EQ(CPunGps(nullptr, false, nullptr).GetCloudCreatorDevId(), -1);
}

TEST(PunGps, ComparisonIsThatOfTheNames) {
    struct Row {
        const char* name;
        const char *a, *b;
        bool equal, less, greater;
    };
    const Row rows[] = {
        {"equal", "P1", "P1", true, false, false},
        {"case counts", "P1", "p1", false, true, false},
        {"digits are bytes", "P10", "P2", false, true, false},
        {"shorter prefix first", "P1", "P10", false, true, false},
        {"bytes above 127 last", "\xC3\xA0", "z", false, false, true},
        {"empty first", "", "A", false, true, false},
    };
    for (const Row& row : rows) {
        CPunGps a(nullptr, false, nullptr), b(nullptr, false, nullptr);
        a.SetNome(row.a);
        b.SetNome(row.b);
        b.SetLat(1);
        EXPECT_EQ(a == b, row.equal) << row.name;
        EXPECT_EQ(a < b, row.less) << row.name;
        EXPECT_EQ(b < a, row.greater) << row.name;
    }
}

// --- the cloud item of a point or group that may be null ---------------------------------------------------

TEST(CloudItemOf, IsThePartOfTheObject) {
    CPunGps point(nullptr, false, nullptr);
    CGrpGps group(nullptr, false, nullptr, 0);
    EXPECT_EQ(CPunGps::CloudItemOf(&point), static_cast<CCloudItem*>(&point));
    EXPECT_EQ(CGrpGps::CloudItemOf(&group), static_cast<CCloudItem*>(&group));
    EXPECT_EQ(static_cast<CEgn&>(point).GetCloudItem(), static_cast<CCloudItem*>(&point));
    EXPECT_EQ(static_cast<CEgn&>(group).GetCloudItem(), static_cast<CCloudItem*>(&group));
}

TEST(CloudItemOf, NullIsNull) {
    EXPECT_EQ(CPunGps::CloudItemOf(nullptr), nullptr);
    EXPECT_EQ(CGrpGps::CloudItemOf(nullptr), nullptr);
}

#if !defined(GPS_TEST_SANITIZED)
// Left out under the sanitizers, which stop at any call on a null object.
TEST(CloudItemOf, QualifiedCallOnNullAnswersNull) {
    const CPunGps* volatile noPoint = nullptr;
    const CGrpGps* volatile noGroup = nullptr;
    const CPunGps* point = noPoint;
    const CGrpGps* group = noGroup;
    EXPECT_EQ(point->CPunGps::GetCloudItem(), nullptr);
    EXPECT_EQ(group->CGrpGps::GetCloudItem(), nullptr);
}
#endif

}  // namespace
