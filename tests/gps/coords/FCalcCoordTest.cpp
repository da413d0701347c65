// Plane coordinates of a group and of the whole field book.
#include "gps/coords/FCalcCoord.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "gps/model/CLibGps.h"
#include "tests/gps/coords/ScriptedMotore.h"

namespace {

using namespace gpstest;

using Calls = std::vector<ScriptedMotore::Call>;

const ScriptedMotore::Call kOff{"ShowMessage", {0}};
const ScriptedMotore::Call kOn{"ShowMessage", {1}};

constexpr std::uint32_t kXyz = CEgn::VLDT_XY | CEgn::VLDT_Z;

class FCalcCoordTest : public ::testing::Test {
protected:
    FCalcCoordTest() : book(nullptr, nullptr, nullptr, nullptr, 0) {}

    // A ready group with a base at (40 + g, 9, 100, 2) and points at (45, i, 100, 1.8).
    CGrpGps* AddReady(int points) {
        CGrpGps* group = book.AddGrp(false);
        const int g = book.GetGrpArSize() - 1;
        group->GetConvCoord()->SetMotore(&engine);
        group->GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        group->SetCodeElab(1);
        SetBase(*group, 40 + g, 9, 100, 2);
        for (int i = 0; i < points; ++i) SetFix(*book.AddPun(g, false), 45, i, 100, 1.8);
        book.SetModifiedFlag(false);
        return group;
    }

    ScriptedMotore engine;
    CLibGps book;
};

TEST_F(FCalcCoordTest, TheBaseComesFirstAndThePointsInTheirOrderBetweenTheMessageSwitches) {
    AddReady(3);
    FCalcCoordGrpGps(&book, 0);
    EXPECT_EQ(engine.calls, (Calls{kOff,
                                   {"GrafGpsToPlanAtt", {40, 9, 100, 2}},
                                   {"GrafGpsToPlanAtt", {45, 0, 100, 1.8}},
                                   {"GrafGpsToPlanAtt", {45, 1, 100, 1.8}},
                                   {"GrafGpsToPlanAtt", {45, 2, 100, 1.8}},
                                   kOn}));
    EXPECT_EQ(Plane(*book.GetGrpAt(0)), (Triple{11, 22, 33}));
    EXPECT_EQ(book.GetGrpAt(0)->GetVldtEgn(), kXyz);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Plane(*book.GetPunAt(0, i)), (Triple{11, 22, 33})) << i;
        EXPECT_EQ(book.GetPunAt(0, i)->GetVldtEgn(), kXyz) << i;
    }
    EXPECT_TRUE(book.IsModified());
}

TEST_F(FCalcCoordTest, WithoutPointsOnlyTheBaseIsRecomputed) {
    AddReady(0);
    FCalcCoordGrpGps(&book, 0);
    EXPECT_EQ(engine.calls, (Calls{kOff, {"GrafGpsToPlanAtt", {40, 9, 100, 2}}, kOn}));
}

TEST_F(FCalcCoordTest, AGroupThatIsNotReadyIsLeftAloneButSwitchesAndMarks) {
    for (const bool code : {false, true}) {
        CGrpGps* group = AddReady(1);
        const int g = book.GetGrpArSize() - 1;
        if (code)
            group->SetCodeElab(2);
        else
            group->GetConvCoord()->SetImp(CConvCoord::impPronta, 0);
        group->SetCoord(1, 2, 3);
        book.GetPunAt(g, 0)->SetCoord(4, 5, 6);
        group->GetConvCoord()->ShowMessage(false);
        engine.calls.clear();
        ReportLog log;
        FCalcCoordGrpGps(&book, g);
        EXPECT_EQ(engine.calls, (Calls{kOff, kOn}));
        EXPECT_TRUE(group->GetConvCoord()->IsShowMessage()) << "on afterwards, whatever it was";
        EXPECT_EQ(Plane(*group), (Triple{1, 2, 3}));
        EXPECT_EQ(Plane(*book.GetPunAt(g, 0)), (Triple{4, 5, 6}));
        EXPECT_EQ(group->GetVldtEgn(), 0u) << "no validity computed";
        EXPECT_EQ(book.GetPunAt(g, 0)->GetVldtEgn(), 0u);
        EXPECT_TRUE(log.entries.empty());
        EXPECT_TRUE(book.IsModified());
    }
}

TEST_F(FCalcCoordTest, AnUndefinedValueClearsTheBaseAndThePointsGoOn) {
    for (int k = 0; k < 4; ++k) {
        CGrpGps* group = AddReady(1);
        const int g = book.GetGrpArSize() - 1;
        SetBase(*group, k == 0 ? GPS_VAL_UNSET : 40, k == 1 ? kNan : 9, k == 2 ? 8.5e199 : 100,
                k == 3 ? GPS_VAL_UNSET : 2);
        group->SetCoord(1, 2, 3);
        group->SetVldtEgn(kXyz);
        engine.calls.clear();
        FCalcCoordGrpGps(&book, g);
        EXPECT_EQ(Plane(*group), kUnset) << k;
        EXPECT_EQ(group->GetVldtEgn(), 0u) << k;
        EXPECT_EQ(engine.calls, (Calls{kOff, {"GrafGpsToPlanAtt", {45, 0, 100, 1.8}}, kOn})) << k;
    }
}

TEST_F(FCalcCoordTest, AnUndefinedValueClearsThePointAndTheNextGoesOn) {
    for (int k = 0; k < 4; ++k) {
        AddReady(2);
        const int g = book.GetGrpArSize() - 1;
        CPunGps* point = book.GetPunAt(g, 0);
        SetFix(*point, k == 0 ? GPS_VAL_UNSET : 45, k == 1 ? kNan : 9, k == 2 ? 8.5e199 : 100,
               k == 3 ? GPS_VAL_UNSET : 1.8);
        point->SetCoord(1, 2, 3);
        point->SetVldtEgn(kXyz);
        FCalcCoordGrpGps(&book, g);
        EXPECT_EQ(Plane(*point), kUnset) << k;
        EXPECT_EQ(point->GetVldtEgn(), 0u) << k;
        EXPECT_EQ(Plane(*book.GetPunAt(g, 1)), (Triple{11, 22, 33})) << k;
    }
}

TEST_F(FCalcCoordTest, AFailedConversionClearsBaseAndPoints) {
    CGrpGps* group = AddReady(2);
    group->SetCoord(1, 2, 3);
    book.GetPunAt(0, 1)->SetCoord(1, 2, 3);
    engine.result = false;
    FCalcCoordGrpGps(&book, 0);
    EXPECT_EQ(engine.calls.size(), 5u);
    EXPECT_EQ(Plane(*group), kUnset);
    EXPECT_EQ(Plane(*book.GetPunAt(0, 0)), kUnset);
    EXPECT_EQ(Plane(*book.GetPunAt(0, 1)), kUnset);
}

TEST_F(FCalcCoordTest, APointCodedNeIsClearedAndOnlyThat) {
    AddReady(3);
    for (int i = 0; i < 3; ++i) book.GetPunAt(0, i)->SetCoord(1, 2, 3);
    book.GetPunAt(0, 1)->SetCodeEgn(CEgn::CODE_NE);
    FCalcCoordGrpGps(&book, 0);
    EXPECT_EQ(Plane(*book.GetPunAt(0, 0)), (Triple{11, 22, 33}));
    EXPECT_EQ(Plane(*book.GetPunAt(0, 1)), kUnset);
    EXPECT_EQ(Plane(*book.GetPunAt(0, 2)), (Triple{11, 22, 33}));
    EXPECT_EQ(engine.calls.size(), 5u) << "the point coded NE is not converted";
}

TEST_F(FCalcCoordTest, AGroupCodedNeClearsItselfAndAllItsPoints) {
    CGrpGps* group = AddReady(2);
    group->SetCodeEgn(CEgn::CODE_NE);
    group->SetCoord(1, 2, 3);
    group->SetVldtEgn(kXyz);
    for (int i = 0; i < 2; ++i) {
        book.GetPunAt(0, i)->SetCoord(1, 2, 3);
        book.GetPunAt(0, i)->SetVldtEgn(kXyz);
    }
    FCalcCoordGrpGps(&book, 0);
    EXPECT_EQ(engine.calls, (Calls{kOff, kOn}));
    EXPECT_EQ(Plane(*group), kUnset);
    EXPECT_EQ(group->GetVldtEgn(), 0u);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Plane(*book.GetPunAt(0, i)), kUnset) << i;
        EXPECT_EQ(book.GetPunAt(0, i)->GetVldtEgn(), 0u) << i;
    }
}

TEST_F(FCalcCoordTest, ARecomputationThatChangesNothingReportsNothing) {
    CGrpGps* group = AddReady(2);
    book.GetPunAt(0, 1)->SetCodeEgn(CEgn::CODE_NE);
    {
        ReportLog log;
        FCalcCoordGrpGps(&book, 0);
        EXPECT_EQ(log.Of(group), (std::vector<std::uint32_t>{CHG_COORD}));
        EXPECT_EQ(log.Of(book.GetPunAt(0, 0)), (std::vector<std::uint32_t>{CHG_COORD}));
        EXPECT_TRUE(log.Of(book.GetPunAt(0, 1)).empty()) << "unset before and after";
    }
    ReportLog log;
    FCalcCoordGrpGps(&book, 0);
    EXPECT_TRUE(log.entries.empty());
    EXPECT_TRUE(book.IsModified()) << "marked all the same";
}

TEST_F(FCalcCoordTest, CoordinatesAreNotClearedInBetween) {
    CGrpGps* group = AddReady(1);
    group->SetCoord(1, 2, 3);
    Triple during = kUntouchedTriple;
    engine.onCall = [&](const ScriptedMotore::Call&) {
        if (IsSame(during[0], kUntouched)) during = Plane(*group);
    };
    FCalcCoordGrpGps(&book, 0);
    EXPECT_EQ(during, (Triple{1, 2, 3}));
}

TEST_F(FCalcCoordTest, ThePositionItselfIsNotTouched) {
    CGrpGps* group = AddReady(1);
    FCalcCoordGrpGps(&book, 0);
    EXPECT_EQ(Stored(*group), (Triple{40, 9, 100}));
    EXPECT_EQ(Stored(*book.GetPunAt(0, 0)), (Triple{45, 0, 100}));
}

TEST_F(FCalcCoordTest, AGroupThatDoesNotExistDoesNothingAtAll) {
    AddReady(1);
    for (const int g : {-1, 1, 1000}) {
        FCalcCoordGrpGps(&book, g);
        EXPECT_FALSE(book.IsModified()) << g;
    }
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(FCalcCoordTest, NoFieldBookIsNoFault) {
    FCalcCoordGrpGps(nullptr, 0);
    FCalcCoordLibGps(nullptr, nullptr);
    SUCCEED();
}

TEST_F(FCalcCoordTest, AFieldBookWithoutGroupsIsNotMarked) {
    FCalcCoordLibGps(&book, nullptr);
    EXPECT_FALSE(book.IsModified());
}

TEST_F(FCalcCoordTest, TheWholeBookGoesGroupByGroupInOrder) {
    AddReady(1);
    CGrpGps* second = AddReady(0);
    AddReady(1);
    second->SetCodeElab(0);
    book.SetModifiedFlag(false);
    VEXNotifySource source;
    int told = 0;
    source.AddListener([&told](int, int, VEXNotifyObject::CNotifyData*) { ++told; });
    FCalcCoordLibGps(&book, &source);
    EXPECT_EQ(engine.calls, (Calls{kOff,
                                   {"GrafGpsToPlanAtt", {40, 9, 100, 2}},
                                   {"GrafGpsToPlanAtt", {45, 0, 100, 1.8}},
                                   kOn,
                                   kOff,
                                   kOn,
                                   kOff,
                                   {"GrafGpsToPlanAtt", {42, 9, 100, 2}},
                                   {"GrafGpsToPlanAtt", {45, 0, 100, 1.8}},
                                   kOn}));
    EXPECT_TRUE(book.IsModified());
    EXPECT_EQ(told, 0) << "the source is not used";
}

TEST_F(FCalcCoordTest, EveryGroupUsesItsOwnConversion) {
    AddReady(1);
    CGrpGps* second = AddReady(1);
    ScriptedMotore other;
    other.answer = {7, 8, 9};
    second->GetConvCoord()->SetMotore(&other);
    FCalcCoordLibGps(&book, nullptr);
    EXPECT_EQ(Plane(*book.GetPunAt(0, 0)), (Triple{11, 22, 33}));
    EXPECT_EQ(Plane(*book.GetPunAt(1, 0)), (Triple{7, 8, 9}));
}

TEST_F(FCalcCoordTest, ExceptionsPassThrough) {
    AddReady(1);
    engine.throws = true;
    EXPECT_THROW(FCalcCoordGrpGps(&book, 0), std::runtime_error);
    EXPECT_THROW(FCalcCoordLibGps(&book, nullptr), std::runtime_error);
}

// Through a derived field book: the mark is set by the virtual operation.
TEST_F(FCalcCoordTest, TheMarkIsSetThroughTheVirtualOperationOnceAGroup) {
    class Counting : public CLibGps {
    public:
        Counting() : CLibGps(nullptr, nullptr, nullptr, nullptr, 0) {}
        void SetModifiedFlag(bool modified) override { marks.push_back(modified); }
        std::vector<bool> marks;
    };
    Counting counting;
    counting.AddGrp(false);
    counting.AddGrp(false);
    FCalcCoordLibGps(&counting, nullptr);
    EXPECT_EQ(counting.marks, (std::vector<bool>{true, true}));
}

TEST_F(FCalcCoordTest, TheRealConversionPutsTheGroundMarkIntoThePlane) {
    CGrpGps* group = AddReady(1);
    group->GetConvCoord()->SetMotore(nullptr);
    group->GetConvCoord()->GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0,
                                                            0.9996);
    SetBase(*group, 45.0, 9.0, 152.5, 2.5);
    SetFix(*book.GetPunAt(0, 0), 45.0, 9.0, 100.0, 1.8);
    FCalcCoordGrpGps(&book, 0);
    // On the central meridian the northing is the scale times the length of the meridian to 45 degrees.
    EXPECT_NEAR(group->GetCoordX(), 500000, 1e-6);
    EXPECT_NEAR(group->GetCoordY(), 0.9996 * 4984944.378, 1e-3);
    EXPECT_EQ(group->GetCoordZ(), 150.0);
    EXPECT_EQ(book.GetPunAt(0, 0)->GetCoordZ(), 98.2);
}

}  // namespace
