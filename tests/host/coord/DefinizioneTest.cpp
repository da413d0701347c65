// The projection by definition: an EPSG code, a PROJ string or WKT, against PROJ's own way there.
#include <gtest/gtest.h>

#include <string>

#include "platform/coord/CProiezPla.h"
#include "tests/host/coord/ProjPeer.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

const char* const kTowgs84 =
    "+proj=tmerc +lat_0=0 +lon_0=15 +k=0.9996 +x_0=2520000 +y_0=0 +ellps=intl "
    "+towgs84=-104.1,-49.1,-9.9,0.971,-2.917,0.714,-11.68 +units=m +no_defs";

const char* const kWkt2 = R"(PROJCRS["belt 12",
    BASEGEOGCRS["WGS 84", DATUM["World Geodetic System 1984",
        ELLIPSOID["WGS 84",6378137,298.257223563,LENGTHUNIT["metre",1]]],
        PRIMEM["Greenwich",0,ANGLEUNIT["degree",0.0174532925199433]]],
    CONVERSION["belt 12", METHOD["Transverse Mercator",ID["EPSG",9807]],
        PARAMETER["Latitude of natural origin",0,ANGLEUNIT["degree",0.0174532925199433]],
        PARAMETER["Longitude of natural origin",12,ANGLEUNIT["degree",0.0174532925199433]],
        PARAMETER["Scale factor at natural origin",0.9996,SCALEUNIT["unity",1]],
        PARAMETER["False easting",3000000,LENGTHUNIT["metre",1]],
        PARAMETER["False northing",0,LENGTHUNIT["metre",1]]],
    CS[Cartesian,2], AXIS["northing",north,ORDER[1]], AXIS["easting",east,ORDER[2]],
        LENGTHUNIT["metre",1]])";

// As programs write it that keep a PROJ string inside the text.
const char* const kWkt1WithProjString = R"(PROJCS["WGS 84 / Pseudo-Mercator",GEOGCS["WGS 84",DATUM["WGS_1984",
    SPHEROID["WGS 84",6378137,298.257223563]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],
    PROJECTION["Mercator_1SP"],PARAMETER["central_meridian",0],PARAMETER["scale_factor",1],
    PARAMETER["false_easting",0],PARAMETER["false_northing",0],UNIT["metre",1],
    AXIS["Easting",EAST],AXIS["Northing",NORTH],EXTENSION["PROJ4",
    "+proj=merc +a=6378137 +b=6378137 +lat_ts=0 +lon_0=0 +x_0=0 +y_0=0 +k=1 +units=m +nadgrids=@null +wktext +no_defs"]])";

struct Row {
    const char* name;
    std::string definition;
    std::string system;  // as PROJ takes it
    double lat, lon;
    double backDegrees;
};

const Row kRows[] = {
    {"UTM 33 north", "EPSG:32633", "EPSG:32633", 45.6, 13.7, 1e-11},
    {"UTM 33 north in small letters", "epsg:32633", "EPSG:32633", 45.6, 13.7, 1e-11},
    {"Gauss-Boaga west with its datum step", "EPSG:3003", "EPSG:3003", 44.5, 9.5, 1e-11},
    {"SWEREF 99 TM, northing first", "EPSG:3006", "EPSG:3006", 59.98, 17.83, 1e-11},
    {"New Zealand TM, northing first", "EPSG:2193", "EPSG:2193", -41.28, 174.73, 1e-11},
    {"Gauss-Krueger with its datum step", "EPSG:31467", "EPSG:31467", 48.7, 9.1, 1e-11},
    {"LAEA Europe", "EPSG:3035", "EPSG:3035", 50.1, 8.7, 1e-11},
    {"PROJ string", "+proj=utm +zone=32 +datum=WGS84 +units=m +no_defs", "EPSG:32632", 45.6, 8.7, 1e-11},
    {"PROJ string with seven parameters", kTowgs84, std::string(kTowgs84) + " +type=crs", 43.1, 12.3, 1e-11},
    {"PROJ string that says what it is", std::string(kTowgs84) + " +type=crs",
     std::string(kTowgs84) + " +type=crs", 43.1, 12.3, 1e-11},
    {"WKT", kWkt2, kWkt2, 42.5, 12.2, 1e-11},
    {"WKT with a PROJ string in it", kWkt1WithProjString, kWkt1WithProjString, 42.5, 12.2, 1e-11},
};

TEST(DefinizioneTest, PlaneCoordinatesAreThoseOfCs2cs) {
    for (const Row& row : kRows) {
        CProiezPla p;
        std::string why;
        ASSERT_TRUE(p.SetDefinizione(row.definition, why)) << row.name << ": " << why;
        EXPECT_EQ(p.GetType(), TpProiezPla::definizione) << row.name;
        const ProjPeer peer = ProjPeer::Systems("EPSG:4326", row.system);
        for (const double dLat : {-0.3, 0.0, 0.31})
            for (const double dLon : {-0.3, 0.0, 0.31}) {
                Triple t, expected, back;
                const double lat = row.lat + dLat, lon = row.lon + dLon;
                ASSERT_TRUE(peer.Forward(lat, lon, 120.5, expected)) << row.name;
                ASSERT_TRUE(p.GrafToPlan(lat, lon, 120.5, t.a, t.b, t.c)) << row.name;
                EXPECT_TRUE(Near(t, expected, 1e-6)) << row.name << " at " << lat << ", " << lon;
                ASSERT_TRUE(p.PlanToGraf(t.a, t.b, t.c, back.a, back.b, back.c)) << row.name;
                EXPECT_NEAR(back.a, lat, row.backDegrees) << row.name;
                EXPECT_NEAR(back.b, lon, row.backDegrees) << row.name;
                EXPECT_NEAR(back.c, 120.5, 1e-5) << row.name;
            }
    }
}

// Easting first, whatever order the definition has: a swapped pair would be far outside these windows.
TEST(DefinizioneTest, EastingComesFirstInEveryDefinition) {
    struct Window {
        const char* code;
        double lat, lon, east, north;
    };
    constexpr Window rows[] = {{"EPSG:3006", 59.982008333333333, 17.835033333333333, 658185.201, 6652797.165},
                               {"EPSG:2193", -41.278026766111, 174.728106738333, 1744733.22, 5428772.5},
                               {"EPSG:31467", 48.7, 9.1, 3507000, 5396000}};
    for (const Window& row : rows) {
        CProiezPla p;
        std::string why;
        ASSERT_TRUE(p.SetDefinizione(row.code, why)) << why;
        Triple t;
        ASSERT_TRUE(p.GrafToPlan(row.lat, row.lon, 0, t.a, t.b, t.c)) << row.code;
        EXPECT_NEAR(t.a, row.east, 1000) << row.code;
        EXPECT_NEAR(t.b, row.north, 1000) << row.code;
    }
}

// A datum step moves the position by tens of metres: without it these systems would come out shifted.
TEST(DefinizioneTest, TheDatumStepBelongsToTheDefinition) {
    for (const char* definition : {"EPSG:3003", kTowgs84}) {
        CProiezPla p;
        std::string why;
        ASSERT_TRUE(p.SetDefinizione(definition, why)) << why;
        const double lon0 = std::string(definition) == "EPSG:3003" ? 9 : 15;
        const double fe = lon0 == 9 ? 1500000 : 2520000;
        const ProjPeer noDatum = ProjPeer::Operation("+proj=tmerc +lon_0=" + Num(lon0) +
                                                     " +k=0.9996 +x_0=" + Num(fe) + " +ellps=intl");
        Triple t, shifted;
        ASSERT_TRUE(p.GrafToPlan(44.5, lon0 + 1, 0, t.a, t.b, t.c));
        ASSERT_TRUE(noDatum.Forward(44.5, lon0 + 1, 0, shifted));
        const double d = std::hypot(t.a - shifted.a, t.b - shifted.b);
        EXPECT_GT(d, 20) << definition;
        EXPECT_LT(d, 500) << definition;
    }
}

TEST(DefinizioneTest, AnEpsgCodeTravelsInTheFiveValues) {
    CProiezPla p, other;
    std::string why;
    ASSERT_TRUE(p.SetDefinizione("EPSG:2193", why));
    EXPECT_FALSE(p.IsDefinizioneText());
    EXPECT_EQ(p.GetValues(), (CProiezPla::Values{2193, 0, 0, 0, 0}));
    EXPECT_EQ(p.GetDefinizione(), "EPSG:2193");
    EXPECT_EQ(p.GetSistema(), "EPSG:2193");
    other.Set(p.GetType(), p.GetValues());
    Triple t, u;
    ASSERT_TRUE(p.GrafToPlan(-41, 174, 5, t.a, t.b, t.c));
    ASSERT_TRUE(other.GrafToPlan(-41, 174, 5, u.a, u.b, u.c));
    EXPECT_EQ(Distance(t, u), 0);
}

TEST(DefinizioneTest, ATextHasNoPlaceInTheFiveValues) {
    CProiezPla p;
    std::string why;
    ASSERT_TRUE(p.SetDefinizione(kTowgs84, why));
    EXPECT_TRUE(p.IsDefinizioneText());
    EXPECT_EQ(p.GetValues(), (CProiezPla::Values{0, 0, 0, 0, 0}));
    EXPECT_EQ(p.GetDefinizione(), kTowgs84);
    p.Set(TpProiezPla::definizione, {0, 0, 0, 0, 0});
    EXPECT_FALSE(p.IsDefinizioneText()) << "a type that is set drops the text";
    Triple t;
    EXPECT_FALSE(p.GrafToPlan(43, 12, 0, t.a, t.b, t.c));
    EXPECT_TRUE(AllUnset(t));
}

TEST(DefinizioneTest, WhatIsNoProjectedSystemIsRefusedWithItsNameAndChangesNothing) {
    struct Refusal {
        const char* text;
        const char* says;
    };
    constexpr Refusal rows[] = {{"EPSG:99999", "not a coordinate system"},
                                {"EPSG:0", "not a coordinate system"},
                                {"EPSG:", "not a coordinate system"},
                                {"EPSG:4326", "geographic"},
                                {"EPSG:4979", "geographic"},
                                {"EPSG:4978", "geocentric"},
                                {"EPSG:5703", "not a projected"},
                                {"+proj=longlat +datum=WGS84", "geographic"},
                                {"", "not a coordinate system"},
                                {"my own system", "not a coordinate system"},
                                {"+proj=nosuchthing", "not a coordinate system"},
                                {"PROJCRS[\"broken\"", "not a coordinate system"}};
    for (const Refusal& row : rows) {
        CProiezPla p;
        std::string why;
        ASSERT_TRUE(p.SetDefinizione("EPSG:32633", why));
        EXPECT_FALSE(p.SetDefinizione(row.text, why)) << row.text;
        EXPECT_NE(why.find(row.says), std::string::npos) << row.text << ": " << why;
        EXPECT_NE(why.find(std::string("'") + row.text + "'"), std::string::npos) << why;
        EXPECT_EQ(p.GetDefinizione(), "EPSG:32633") << row.text;
        Triple t;
        EXPECT_TRUE(p.GrafToPlan(45, 15, 0, t.a, t.b, t.c)) << row.text;
        EXPECT_NEAR(t.a, 500000, 1e-6) << row.text;
    }
}

TEST(DefinizioneTest, AGoodDefinitionLeavesNoMessage) {
    CProiezPla p;
    std::string why = "left over";
    ASSERT_TRUE(p.SetDefinizione("EPSG:32633", why));
    EXPECT_TRUE(why.empty());
}

// A code that arrives in the five values has not passed the check of the text.
TEST(DefinizioneTest, ACodeOfAnotherKindInTheFiveValuesFails) {
    for (const double code : {4326.0, 4978.0, 5703.0, 99999.0, 0.0, -1.0, 32633.5, 1e300, kNan, kInf}) {
        CProiezPla p;
        p.Set(TpProiezPla::definizione, {code, 0, 0, 0, 0});
        Triple t, g;
        EXPECT_FALSE(p.GrafToPlan(45, 15, 0, t.a, t.b, t.c)) << code;
        EXPECT_TRUE(AllUnset(t)) << code;
        EXPECT_FALSE(p.PlanToGraf(15, 45, 0, g.a, g.b, g.c)) << code;
        EXPECT_TRUE(AllUnset(g)) << code;
    }
}

TEST(DefinizioneTest, OneTextAfterAnotherTakesEffect) {
    CProiezPla p;
    std::string why;
    Triple t, u, expected;
    ASSERT_TRUE(p.SetDefinizione("+proj=utm +zone=32 +datum=WGS84", why)) << why;
    ASSERT_TRUE(p.GrafToPlan(45, 10, 0, t.a, t.b, t.c));
    ASSERT_TRUE(p.SetDefinizione("+proj=utm +zone=33 +datum=WGS84", why)) << why;
    ASSERT_TRUE(p.GrafToPlan(45, 10, 0, u.a, u.b, u.c));
    ASSERT_TRUE(ProjPeer::Systems("EPSG:4326", "EPSG:32633").Forward(45, 10, 0, expected));
    EXPECT_TRUE(Near(u, expected, 1e-6));
    EXPECT_GT(Distance(t, u), 1000);
}

}  // namespace
