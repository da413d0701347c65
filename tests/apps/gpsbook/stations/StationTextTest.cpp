// Stations in words, and what is given of them on a command line.
#include "apps/gpsbook/stations/StationText.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/gpsbook/commands/CommandError.h"
#include "host/coord/Province.h"

namespace gpsbook::test {
namespace {

using Catalogo = CTrovaNomeBaseGps;

Station Udine() {
    Station s;
    s.id = "UDIN";
    s.name = "Udine";
    s.country = "ITA";
    s.province = "UD";
    s.position = {4316423.2699, 1014588.7009, 4569607.1405};
    s.frame = "ETRF2000";
    s.epoch = "2008.0";
    return s;
}

TEST(StationText, LineHasWhatIsKnown) {
    Station s = Udine();
    EXPECT_EQ(StationLine(s), "Udine (UDIN), UD, ETRF2000 2008.0");
    s.name = s.province = s.epoch = "";
    EXPECT_EQ(StationLine(s), "UDIN, ITA, ETRF2000");
    s.country = "";
    EXPECT_EQ(StationLine(s), "UDIN, ETRF2000");
}

TEST(StationText, DistancesAreInMetresUpToAKilometre) {
    EXPECT_EQ(DistanceText(0.0004), "0.000 m");
    EXPECT_EQ(DistanceText(999.9), "999.900 m");
    EXPECT_EQ(DistanceText(1000), "1.00 km");
    EXPECT_EQ(DistanceText(12345), "12.35 km");
}

// Latitude, longitude and height as they were printed with these coordinates; those are on GRS 80, a tenth of
// a millimetre beside WGS 84.
TEST(StationText, JsonHasThePositionInBothForms) {
    Station s = Udine();
    auto json = StationJson(s);
    EXPECT_EQ(json["x"], 4316423.2699);
    EXPECT_NEAR(json["lat"].get<double>(), 46.054805667, 2e-9);
    EXPECT_NEAR(json["lon"].get<double>(), 13.227434722, 2e-9);
    EXPECT_NEAR(json["h"].get<double>(), 180.5686, 2e-4);
    EXPECT_TRUE(json["velocity"].is_null());
    EXPECT_FALSE(json.contains("distance"));
    s.velocity = {0.1, 0.2, -0.3};
    json = StationJson(s, 2.5);
    EXPECT_EQ(json["velocity"].dump(), "[0.1,0.2,-0.3]");
    EXPECT_EQ(json["distance"], 2.5);
}

TEST(StationText, EveryProvinceIsTakenAsAnOption) {
    EXPECT_EQ(ProvinceOption(""), Catalogo::provTutte);
    for (const ProvinciaInfo& p : Province()) EXPECT_EQ(ProvinceOption(std::string(p.sign)), p.provincia);
    try {
        ProvinceOption("XX");
        FAIL();
    } catch (const CommandError& e) {
        EXPECT_EQ(e.Code(), exitUsage);
        EXPECT_NE(std::string(e.what()).find("--province: \"XX\" is no province"), std::string::npos);
    }
}

TEST(StationText, FrameThatNobodyHasIsAnsweredWithThoseThereAre) {
    Station a = Udine(), b = Udine();
    b.frame = "IGS20 (inferred)";
    const StationCatalogue catalogue({a, b, a});
    for (const char* frame : {"", "etrf2000", "IGS20", "igs20 (inferred)"}) NeedFrame(catalogue, frame);
    NeedFrame(StationCatalogue(), "ETRF200");
    try {
        NeedFrame(catalogue, "ETRF200");
        FAIL();
    } catch (const CommandError& e) {
        EXPECT_EQ(e.Code(), exitNotFound);
        EXPECT_STREQ(
            e.what(),
            "--frame: the catalogue has no coordinates in \"ETRF200\"; it has those in ETRF2000, IGS20");
    }
}

TEST(StationText, NumbersAreWholeTextsWithinTheirLimits) {
    EXPECT_EQ(NumberOption("LAT", "-4.5", -90, 90, "degrees"), -4.5);
    EXPECT_EQ(NumberOption("LAT", "90", -90, 90, "degrees"), 90);
    for (const char* text : {"", "90.1", "4,5", "4 ", "x", "nan", "inf", "1e999"})
        EXPECT_THROW(NumberOption("LAT", text, -90, 90, "degrees"), CommandError) << text;
}

}  // namespace
}  // namespace gpsbook::test
