#include "platform/entity/CEgn.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

void ExpectNew(const CEgn& entity) {
    EXPECT_EQ(entity.GetNome(), "");
    EXPECT_EQ(entity.GetSecScri(), "");
    EXPECT_EQ(entity.GetCodeEgn(), 0u);
    EXPECT_EQ(entity.GetCoordX(), GPS_VAL_UNSET);
    EXPECT_EQ(entity.GetCoordY(), GPS_VAL_UNSET);
    EXPECT_EQ(entity.GetCoordZ(), GPS_VAL_UNSET);
    EXPECT_EQ(entity.GetVldtEgn(), 0u);
    EXPECT_EQ(entity.GetTerScri(), "");
    EXPECT_EQ(entity.GetNote(), "");
    EXPECT_EQ(entity.GetNomiFoto_Raw(), "******");
    EXPECT_EQ(entity.GetAttribDis(), "");
    EXPECT_EQ(entity.GetIdentDescr(), -1);
    EXPECT_EQ(entity.GetGisHandle(), 0);
    EXPECT_FALSE(entity.EstValidoXY());
    EXPECT_FALSE(entity.IsCodedNE());
}

void Fill(CEgn& entity) {
    entity.SetNome("P1");
    entity.SetSecScri("tree");
    entity.SetCodeEgn(77);
    entity.DoSetCoord(1.5, 2.5, 3.5);
    entity.SetVldtEgn(0x13);
    entity.SetTerScri("third");
    entity.SetNote("a note");
    entity.SetNomiFoto_Raw("a.jpg");
    entity.SetAttribDis("layer=3");
    entity.SetIdentDescr(4);
    entity.SetGisHandle(5);
}

void ExpectFilled(const CEgn& entity) {
    EXPECT_EQ(entity.GetNome(), "P1");
    EXPECT_EQ(entity.GetSecScri(), "tree");
    EXPECT_EQ(entity.GetCodeEgn(), 77u);
    EXPECT_EQ(entity.GetCoordX(), 1.5);
    EXPECT_EQ(entity.GetCoordY(), 2.5);
    EXPECT_EQ(entity.GetCoordZ(), 3.5);
    EXPECT_EQ(entity.GetVldtEgn(), 0x13u);
    EXPECT_EQ(entity.GetTerScri(), "third");
    EXPECT_EQ(entity.GetNote(), "a note");
    EXPECT_EQ(entity.GetNomiFoto_Raw(), "a.jpg");
    EXPECT_EQ(entity.GetAttribDis(), "layer=3");
    EXPECT_EQ(entity.GetIdentDescr(), 4);
    EXPECT_EQ(entity.GetGisHandle(), 5);
}

TEST(Egn, NewEntityHasTheDefaults) { ExpectNew(CEgn()); }

TEST(Egn, KeepsWhatIsStored) {
    CEgn entity;
    Fill(entity);
    ExpectFilled(entity);
}

TEST(Egn, CopiesShareNeitherTextsNorNumbers) {
    CEgn entity, descriptor;
    Fill(entity);
    descriptor.SetIdentDescr(8);
    CEgn copy(entity), assigned(descriptor);
    assigned = entity;
    copy.SetNote("another");
    copy.SetIdentDescr(9);
    assigned.SetTerScri("another");
    ExpectFilled(entity);
    EXPECT_EQ(assigned.GetNote(), "a note");
    EXPECT_EQ(assigned.GetIdentDescr(), 4);
    assigned = descriptor;
    EXPECT_EQ(assigned.GetIdentDescr(), 8);
    EXPECT_EQ(assigned.GetNote(), "");
    assigned.SetNote("mine");
    EXPECT_EQ(descriptor.GetNote(), "");
}

TEST(Egn, ResetIsANewEntity) {
    CEgn entity;
    Fill(entity);
    entity.AnnullaTutteLeVar();
    ExpectNew(entity);
}

TEST(Egn, ResetDoesNotGoThroughTheVirtualSetters) {
    struct Counting : CEgn {
        int calls = 0;
        void SetNome(const std::string& nome) override { ++calls, CEgn::SetNome(nome); }
        void SetSecScri(const std::string& text) override { ++calls, CEgn::SetSecScri(text); }
        void DoSetCoord(double x, double y, double z) override { ++calls, CEgn::DoSetCoord(x, y, z); }
        void SetCodeEgn(unsigned long code) override { ++calls, CEgn::SetCodeEgn(code); }
    } entity;
    Fill(entity);
    ASSERT_EQ(entity.calls, 4);
    entity.AnnullaTutteLeVar();
    EXPECT_EQ(entity.calls, 4);
    ExpectNew(entity);
}

TEST(Egn, CodeHolds32Bits) {
    CEgn entity;
    entity.SetCodeEgn(0xFFFFFFFFFFFFFFFF);
    EXPECT_EQ(entity.GetCodeEgn(), 0xFFFFFFFFu);
    entity.SetCodeEgn(0x1'0000'0005);
    EXPECT_EQ(entity.GetCodeEgn(), 5u);
}

TEST(Egn, SetCoordGoesThroughTheVirtualOperation) {
    struct Shifted : CEgn {
        void DoSetCoord(double x, double y, double z) override { CEgn::DoSetCoord(x + 1, y + 2, z + 3); }
    } entity;
    entity.SetCoord(10, 20, 30);
    EXPECT_EQ(entity.GetCoordX(), 11);
    EXPECT_EQ(entity.GetCoordY(), 22);
    EXPECT_EQ(entity.GetCoordZ(), 33);
}

TEST(Egn, BaseHasNoTypeAndNoCloudItem) {
    CEgn entity;
    EXPECT_EQ(entity.GetUserType(), 0);
    EXPECT_EQ(entity.GetCloudItem(), nullptr);
}

TEST(Egn, ValidityFollowsTheCoordinates) {
    constexpr double no = GPS_VAL_UNSET;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        const char* name;
        double x, y, z;
        bool xy;
        std::uint32_t validity;
    };
    const Row rows[] = {
        {"all set", 1, 2, 3, true, 0x3},          {"no height", 1, 2, no, true, 0x1},
        {"height only", no, no, 3, false, 2},     {"no easting", no, 2, 3, false, 2},
        {"no northing", 1, no, 3, false, 2},      {"nothing", no, no, no, false, 0},
        {"not numbers", nan, nan, nan, false, 0},
    };
    for (const Row& row : rows) {
        CEgn entity;
        entity.SetVldtEgn(0x30 | 0x3);
        entity.DoSetCoord(row.x, row.y, row.z);
        EXPECT_EQ(entity.EstValidoXY(), row.xy) << row.name << ": looks at the values";
        EXPECT_EQ(entity.GetVldtEgn(), 0x33u) << row.name << ": not before it is computed";
        entity.CalcolaValiditaXYZ();
        EXPECT_EQ(entity.GetVldtEgn(), 0x30 | row.validity) << row.name << ": other bits stay";
    }
}

TEST(Egn, NeIsACodeOfItsOwn) {
    CEgn entity;
    entity.SetCodeEgn(CEgn::CODE_NE);
    EXPECT_TRUE(entity.IsCodedNE());
    entity.SetCodeEgn(CEgn::CODE_NE + 1);
    EXPECT_FALSE(entity.IsCodedNE());
}

TEST(Egn, CopyHasTheValuesButNeitherListenersNorReferences) {
    CEgn entity;
    Fill(entity);
    entity.AddRef();
    int told = 0;
    entity.AddListener([&](int, int, VEXNotifyObject::CNotifyData*) { ++told; });

    CEgn copy(entity);
    ExpectFilled(copy);
    EXPECT_EQ(copy.GetRefCount(), 0);
    copy.Notify(1, 1, nullptr);
    EXPECT_EQ(told, 0);

    CEgn assigned;
    assigned.AddRef();
    assigned.AddRef();
    assigned = entity;
    ExpectFilled(assigned);
    EXPECT_EQ(assigned.GetRefCount(), 2);
    assigned.Notify(1, 1, nullptr);
    EXPECT_EQ(told, 0);

    copy.SetNote("another");
    EXPECT_EQ(entity.GetNote(), "a note") << "copies share nothing";
}

TEST(Egn, AssignmentOfAPlainEntityTakesTheRareTextsAway) {
    CEgn entity;
    Fill(entity);
    entity = CEgn();
    ExpectNew(entity);
}

TEST(Egn, AssignmentToItselfKeepsTheValues) {
    CEgn entity;
    Fill(entity);
    const CEgn& same = entity;
    entity = same;
    ExpectFilled(entity);
}

TEST(Egn, IsASourceAndIsCounted) {
    EXPECT_TRUE((std::is_base_of_v<VEXNotifySource, CEgn>));
    EXPECT_TRUE((std::is_base_of_v<CPointerRef, CEgn>));
    EXPECT_TRUE(std::has_virtual_destructor_v<CEgn>);
}

}  // namespace
