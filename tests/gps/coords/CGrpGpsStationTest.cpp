// A base named after the permanent station at its position.
#include <gtest/gtest.h>

#include <stdexcept>

#include "gps/model/CGrpGps.h"
#include "platform/coord/CEllissoide.h"
#include "tests/gps/coords/ScriptedMotore.h"

namespace {

using namespace gpstest;

using Catalogo = CTrovaNomeBaseGps;
using Flags = std::vector<std::uint32_t>;

constexpr double kLat = 46.05, kLon = 13.23, kH = 180.5;

Triple Geoc(double lat, double lon, double h) {
    Triple t;
    CEllissoide().GrafToGeoc(lat, lon, h, t[0], t[1], t[2]);
    return t;
}

/// A catalogue that answers as a test says.
class CGrpGpsStation : public ::testing::Test {
protected:
    struct Call {
        Triple at;
        Catalogo::enumProvincia provincia;
    };

    CGrpGpsStation() {
        Catalogo::GetInstance()->SetRicerca(
            [this](double& x, double& y, double& z, Catalogo::enumProvincia provincia, std::string& name) {
                calls.push_back({{x, y, z}, provincia});
                if (throws) throw std::runtime_error("catalogue");
                x = answer[0];
                y = answer[1];
                z = answer[2];
                name = "Udine";
                return found;
            });
        SetBase(group, kLat, kLon, kH, 1.5);
        group.SetNomeGrp("Monday");
        group.SetNome("Monday");
    }
    ~CGrpGpsStation() override { Catalogo::GetInstance()->SetRicerca({}); }

    CGrpGps group{nullptr, false, nullptr, 0};
    std::vector<Call> calls;
    Triple answer = Geoc(46.0505, 13.2306, 181.25);
    bool found = true;
    bool throws = false;
};

TEST_F(CGrpGpsStation, EntityIsNamedAfterTheStationAndTheGroupKeepsItsName) {
    ReportLog log;
    group.SetNomeBaseFromCoord(Catalogo::provUD);
    EXPECT_EQ(group.GetNome(), "Udine");
    EXPECT_EQ(group.GetNomeGrp(), "Monday");
    EXPECT_EQ(Stored(group), (Triple{kLat, kLon, kH})) << "the position is that of before";
    EXPECT_EQ(log.Of(&group), (Flags{CHG_NOME}));
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].at, Geoc(kLat, kLon, kH)) << "geocentric, phase centre";
    EXPECT_EQ(calls[0].provincia, Catalogo::provUD);
}

TEST_F(CGrpGpsStation, NameGoesThroughTheVirtualSetter) {
    struct Listening : CGrpGps {
        Listening() : CGrpGps(nullptr, false, nullptr, 0) {}
        void SetNome(const std::string& nome) override {
            names.push_back(nome);
            CGrpGps::SetNome(nome);
        }
        std::vector<std::string> names;
    } listening;
    SetBase(listening, kLat, kLon, kH, 1.5);
    listening.SetNomeBaseFromCoord(Catalogo::provTutte);
    listening.SetNomeCoordBaseFromCoord(Catalogo::provTutte);
    EXPECT_EQ(listening.names, (std::vector<std::string>{"Udine", "Udine"}));
    found = false;
    listening.SetNomeBaseFromCoord(Catalogo::provTutte);
    listening.SetNomeCoordBaseFromCoord(Catalogo::provTutte);
    EXPECT_EQ(listening.names.size(), 2U);
}

TEST_F(CGrpGpsStation, NameThatItHasIsNoChange) {
    group.SetNome("Udine");
    ReportLog log;
    group.SetNomeBaseFromCoord(Catalogo::provTutte);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(CGrpGpsStation, PositionOfTheStationIsTakenWithoutAReport) {
    ReportLog log;
    group.SetNomeCoordBaseFromCoord(Catalogo::provTutte);
    EXPECT_NEAR(group.GetBaseLat(), 46.0505, 1e-12);
    EXPECT_NEAR(group.GetBaseLong(), 13.2306, 1e-12);
    EXPECT_NEAR(group.GetBaseElev(), 181.25, 1e-6);
    EXPECT_EQ(group.GetBaseAltAnt(), 1.5);
    EXPECT_EQ(group.GetNome(), "Udine");
    EXPECT_EQ(group.GetNomeGrp(), "Monday");
    EXPECT_EQ(log.Of(&group), (Flags{CHG_NOME}));
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].at, Geoc(kLat, kLon, kH));
}

TEST_F(CGrpGpsStation, PositionIsStoredBeforeTheNameIsReported) {
    double lat = 0;
    CCloudItem::SetObserver([&](const CCloudItem&, std::uint32_t) { lat = group.GetBaseLat(); });
    group.SetNomeCoordBaseFromCoord(Catalogo::provTutte);
    CCloudItem::SetObserver({});
    EXPECT_NEAR(lat, 46.0505, 1e-12);
}

TEST_F(CGrpGpsStation, WithoutAStationNothingChanges) {
    found = false;
    ReportLog log;
    group.SetNomeBaseFromCoord(Catalogo::provTutte);
    group.SetNomeCoordBaseFromCoord(Catalogo::provTutte);
    EXPECT_EQ(calls.size(), 2U);
    EXPECT_EQ(group.GetNome(), "Monday");
    EXPECT_EQ(Stored(group), (Triple{kLat, kLon, kH}));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(CGrpGpsStation, BaseWithoutAPositionIsNotLookedFor) {
    for (const double v : {GPS_VAL_UNSET, 8.5e199, kNan}) {
        SetBase(group, v, v, v, 1.5);
        group.SetNomeBaseFromCoord(Catalogo::provTutte);
        group.SetNomeCoordBaseFromCoord(Catalogo::provTutte);
        EXPECT_TRUE(calls.empty()) << v;
        EXPECT_EQ(group.GetNome(), "Monday");
    }
}

// With a part of the position the ellipsoid gives what it gives: it is looked for when one value is defined.
TEST_F(CGrpGpsStation, BaseOfWhichAPartIsKnownIsLookedForWhenAComponentIsDefined) {
    for (int mask = 1; mask < 7; ++mask) {
        SetBase(group, mask & 1 ? kLat : GPS_VAL_UNSET, mask & 2 ? kLon : GPS_VAL_UNSET,
                mask & 4 ? kH : GPS_VAL_UNSET, 1.5);
        Triple t;
        group.GetGeocCeFaMis(t[0], t[1], t[2]);
        const bool one = IsCoordValid(t[0]) || IsCoordValid(t[1]) || IsCoordValid(t[2]);
        calls.clear();
        group.SetNomeBaseFromCoord(Catalogo::provTutte);
        EXPECT_EQ(calls.size(), one ? 1U : 0U) << mask;
    }
}

TEST_F(CGrpGpsStation, EveryProvinceGoesThroughUnchanged) {
    for (int p = Catalogo::provTutte; p <= Catalogo::provEstero; ++p) {
        calls.clear();
        group.SetNomeBaseFromCoord(static_cast<Catalogo::enumProvincia>(p));
        group.SetNomeCoordBaseFromCoord(static_cast<Catalogo::enumProvincia>(p));
        ASSERT_EQ(calls.size(), 2U);
        EXPECT_EQ(calls[0].provincia, p);
        EXPECT_EQ(calls[1].provincia, p);
    }
}

TEST_F(CGrpGpsStation, ExceptionsPassThroughAndNothingIsChanged) {
    throws = true;
    EXPECT_THROW(group.SetNomeCoordBaseFromCoord(Catalogo::provTutte), std::runtime_error);
    EXPECT_EQ(group.GetNome(), "Monday");
    EXPECT_EQ(Stored(group), (Triple{kLat, kLon, kH}));
}

}  // namespace
