// One point between its fix and its plane coordinates.
#include <gtest/gtest.h>

#include <stdexcept>

#include "gps/model/CLibGps.h"
#include "tests/gps/coords/ScriptedMotore.h"

namespace {

using namespace gpstest;

using Calls = std::vector<ScriptedMotore::Call>;

class CLibGpsCoordTest : public ::testing::Test {
protected:
    CLibGpsCoordTest() : book(nullptr, nullptr, nullptr, nullptr, 0) {
        book.AddGrp(false);
        group = book.AddGrp(false);
        point = book.AddPun(1, false);
        group->GetConvCoord()->SetMotore(&engine);
        group->GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        group->SetCodeElab(1);
        SetFix(*point, 45, 9, 100, 1.8);
        book.SetModifiedFlag(false);
    }

    ScriptedMotore engine;
    CLibGps book;
    CGrpGps* group;
    CPunGps* point;
};

constexpr std::uint32_t kXyz = CEgn::VLDT_XY | CEgn::VLDT_Z;

TEST_F(CLibGpsCoordTest, CartTakesThePlaneCoordinatesFromTheConversionOfTheGroupNamed) {
    book.CalcolaCoordCart(point, 1);
    EXPECT_EQ(engine.calls, (Calls{{"GrafGpsToPlanAtt", {45, 9, 100, 1.8}}}));
    EXPECT_EQ(Plane(*point), (Triple{11, 22, 33}));
    EXPECT_EQ(point->GetVldtEgn(), kXyz);
    EXPECT_EQ(Stored(*point), (Triple{45, 9, 100}));
    EXPECT_FALSE(book.IsModified()) << "one point does not mark the field book";
}

TEST_F(CLibGpsCoordTest, CartClearsBeforeItAsks) {
    point->SetCoord(1, 2, 3);
    Triple during = kUntouchedTriple;
    engine.onCall = [&](const ScriptedMotore::Call&) { during = Plane(*point); };
    book.CalcolaCoordCart(point, 1);
    EXPECT_EQ(during, kUnset);
    EXPECT_EQ(Plane(*point), (Triple{11, 22, 33}));
}

TEST_F(CLibGpsCoordTest, CartReportsTwiceWhenTheSamePositionComesBack) {
    point->SetCoord(11, 22, 33);
    ReportLog log;
    book.CalcolaCoordCart(point, 1);
    EXPECT_EQ(log.Of(point), (std::vector<std::uint32_t>{CHG_COORD, CHG_COORD})) << "to unset, and back";
}

TEST_F(CLibGpsCoordTest, CartReportsOnceWhenThereWasNoPosition) {
    ReportLog log;
    book.CalcolaCoordCart(point, 1);
    EXPECT_EQ(log.Of(point), (std::vector<std::uint32_t>{CHG_COORD}));
}

TEST_F(CLibGpsCoordTest, CartClearsAPointThatCannotBeConverted) {
    struct Case {
        const char* name;
        std::function<void()> prepare;
        std::size_t calls;
    };
    const Case cases[] = {
        {"conversion not ready", [&] { group->GetConvCoord()->SetImp(CConvCoord::impPronta, 0); }, 0},
        {"processing code without bit 0", [&] { group->SetCodeElab(2); }, 0},
        {"no latitude", [&] { point->SetLat(GPS_VAL_UNSET); }, 0},
        {"no longitude", [&] { point->SetLong(kNan); }, 0},
        {"no height", [&] { point->SetElev(8.5e199); }, 0},
        {"no antenna height", [&] { point->SetAltAnt(GPS_VAL_UNSET); }, 0},
        {"conversion fails", [&] { engine.result = false; }, 1},
    };
    for (const Case& c : cases) {
        group->GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        group->SetCodeElab(1);
        SetFix(*point, 45, 9, 100, 1.8);
        engine.result = true;
        engine.calls.clear();
        point->SetCoord(1, 2, 3);
        point->SetVldtEgn(kXyz | 0x100);
        c.prepare();
        book.CalcolaCoordCart(point, 1);
        EXPECT_EQ(Plane(*point), kUnset) << c.name;
        EXPECT_EQ(point->GetVldtEgn(), 0x100u) << c.name << ": validity computed whatever happened";
        EXPECT_EQ(engine.calls.size(), c.calls) << c.name;
    }
}

TEST_F(CLibGpsCoordTest, CartClearsWithAGroupThatDoesNotExist) {
    for (const int g : {-1, 2, 1000}) {
        point->SetCoord(1, 2, 3);
        point->SetVldtEgn(kXyz);
        book.CalcolaCoordCart(point, g);
        EXPECT_EQ(Plane(*point), kUnset) << g;
        EXPECT_EQ(point->GetVldtEgn(), 0u) << g;
    }
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(CLibGpsCoordTest, CartTakesTheGroupByNumberNotThePointsOwner) {
    point->SetCoord(1, 2, 3);
    book.CalcolaCoordCart(point, 0);  // not ready
    EXPECT_EQ(Plane(*point), kUnset);
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(CLibGpsCoordTest, CartComputesAPointCodedNe) {
    point->SetCodeEgn(CEgn::CODE_NE);
    group->SetCodeEgn(CEgn::CODE_NE);
    book.CalcolaCoordCart(point, 1);
    EXPECT_EQ(Plane(*point), (Triple{11, 22, 33}));
}

TEST_F(CLibGpsCoordTest, ProcessingCodesCountByTheirLowestBit) {
    constexpr short kValid[] = {1, 3, -1, 0x7fff}, kNotValid[] = {0, 2, -2};
    for (const short code : kValid) {
        group->SetCodeElab(code);
        engine.calls.clear();
        book.CalcolaCoordCart(point, 1);
        EXPECT_EQ(engine.calls.size(), 1u) << code;
    }
    for (const short code : kNotValid) {
        group->SetCodeElab(code);
        engine.calls.clear();
        book.CalcolaCoordCart(point, 1);
        EXPECT_TRUE(engine.calls.empty()) << code;
    }
}

TEST_F(CLibGpsCoordTest, NeitherDirectionTouchesTheMessages) {
    group->GetConvCoord()->ShowMessage(false);
    engine.calls.clear();
    point->SetCoord(1, 2, 3);
    book.CalcolaCoordGeog(point, 1);
    book.CalcolaCoordCart(point, 1);
    EXPECT_FALSE(group->GetConvCoord()->IsShowMessage());
    for (const auto& call : engine.calls) EXPECT_NE(call.name, "ShowMessage");
}

TEST_F(CLibGpsCoordTest, GeogTakesTheFixFromTheConversionWithTheNotifyingSetters) {
    point->SetCoord(1, 2, 3);
    ReportLog log;
    book.CalcolaCoordGeog(point, 1);
    EXPECT_EQ(engine.calls, (Calls{{"PlanAttToGrafGps", {1, 2, 3, 1.8}}}));
    EXPECT_EQ(Stored(*point), (Triple{11, 22, 33}));
    EXPECT_EQ(point->GetAltAnt(), 1.8);
    EXPECT_EQ(Plane(*point), (Triple{1, 2, 3}));
    EXPECT_EQ(log.Of(point), (std::vector<std::uint32_t>{CHG_PUN_LAT, CHG_PUN_LONG, CHG_PUN_ELEV}));
    EXPECT_EQ(point->GetVldtEgn(), kXyz);
    EXPECT_FALSE(book.IsModified());
}

TEST_F(CLibGpsCoordTest, GeogReportsOnlyWhatDiffers) {
    point->SetCoord(1, 2, 3);
    SetFix(*point, 11, 5, 33, 1.8);
    ReportLog log;
    book.CalcolaCoordGeog(point, 1);
    EXPECT_EQ(log.Of(point), (std::vector<std::uint32_t>{CHG_PUN_LONG}));
}

TEST_F(CLibGpsCoordTest, GeogLeavesAPointOfAGroupThatIsNotReadyExactlyAsItWas) {
    point->SetCoord(1, 2, 3);
    point->SetVldtEgn(0);
    for (int which = 0; which < 4; ++which) {
        group->GetConvCoord()->SetImp(CConvCoord::impPronta, which == 0 ? 0 : 1);
        group->SetCodeElab(which == 1 ? 0 : 1);
        ReportLog log;
        book.CalcolaCoordGeog(point, which == 2 ? -1 : which == 3 ? 2 : 1);
        EXPECT_EQ(Stored(*point), (Triple{45, 9, 100})) << which;
        EXPECT_EQ(point->GetVldtEgn(), 0u) << which << ": not even its validity is computed";
        EXPECT_TRUE(log.entries.empty()) << which;
    }
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(CLibGpsCoordTest, GeogClearsTheFixWhenAnInputIsUndefined) {
    for (int k = 0; k < 4; ++k) {
        SetFix(*point, 45, 9, 100, k == 3 ? GPS_VAL_UNSET : 1.8);
        point->SetCoord(k == 0 ? GPS_VAL_UNSET : 1, k == 1 ? kNan : 2, k == 2 ? 8.5e199 : 3);
        point->SetVldtEgn(0);
        ReportLog log;
        book.CalcolaCoordGeog(point, 1);
        EXPECT_EQ(Stored(*point), kUnset) << k;
        EXPECT_EQ(log.Of(point), (std::vector<std::uint32_t>{CHG_PUN_LAT, CHG_PUN_LONG, CHG_PUN_ELEV})) << k;
        EXPECT_EQ(point->GetVldtEgn(), k < 2 ? CEgn::VLDT_Z : k == 2 ? CEgn::VLDT_XY : kXyz) << k;
    }
    EXPECT_TRUE(engine.calls.empty());
}

TEST_F(CLibGpsCoordTest, GeogClearsTheFixWhenTheConversionFailsWhateverItLeft) {
    point->SetCoord(1, 2, 3);
    engine.result = false;
    ReportLog log;
    book.CalcolaCoordGeog(point, 1);
    EXPECT_EQ(engine.calls.size(), 1u);
    EXPECT_EQ(Stored(*point), kUnset);
    EXPECT_EQ(point->GetAltAnt(), 1.8);
    EXPECT_EQ(point->GetVldtEgn(), kXyz);
    EXPECT_EQ(log.Of(point), (std::vector<std::uint32_t>{CHG_PUN_LAT, CHG_PUN_LONG, CHG_PUN_ELEV}));
}

TEST_F(CLibGpsCoordTest, ExceptionsPassThrough) {
    engine.throws = true;
    point->SetCoord(1, 2, 3);
    EXPECT_THROW(book.CalcolaCoordGeog(point, 1), std::runtime_error);
    EXPECT_EQ(Stored(*point), (Triple{45, 9, 100}));
    EXPECT_THROW(book.CalcolaCoordCart(point, 1), std::runtime_error);
    EXPECT_EQ(Plane(*point), kUnset) << "cleared before the conversion was asked";
}

TEST_F(CLibGpsCoordTest, AFixReturnsThroughTheRealConversion) {
    group->GetConvCoord()->SetMotore(nullptr);
    group->GetConvCoord()->GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0,
                                                            0.9996);
    SetFix(*point, 45.25, 9.75, 100.0, 1.8);
    book.CalcolaCoordCart(point, 1);
    EXPECT_EQ(point->GetCoordZ(), 98.2);
    point->SetLat(0);
    point->SetLong(0);
    point->SetElev(0);
    book.CalcolaCoordGeog(point, 1);
    EXPECT_NEAR(point->GetLat(), 45.25, 1e-11);
    EXPECT_NEAR(point->GetLong(), 9.75, 1e-11);
    EXPECT_NEAR(point->GetElev(), 100.0, 1e-5);
}

}  // namespace
