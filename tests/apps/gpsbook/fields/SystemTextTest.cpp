// Plane systems as they are entered: what is taken, as what, and what is refused.
#include "apps/gpsbook/fields/SystemText.h"

#include <gtest/gtest.h>

#include "platform/coord/CProiezPla.h"

namespace gpsbook {
namespace {

/// The definition that is kept; what is wrong in angle brackets.
std::string Read(const std::string& text) {
    CProiezPla projection;
    const std::string problem = ReadSystem(text, projection);
    return problem.empty() ? projection.GetDefinizione() : '<' + problem + '>';
}

TEST(SystemText, CodeOrDefinitionIsKeptAsItStands) {
    for (const char* text : {"EPSG:32633", "ESRI:102100", "IGNF:LAMB93", "EPSG:32633+5773",
                             "urn:ogc:def:crs:EPSG::32633", "http://www.opengis.net/def/crs/EPSG/0/32633",
                             "+proj=utm +zone=33 +ellps=WGS84", "proj=utm zone=33 ellps=WGS84"})
        EXPECT_EQ(Read(text), text);
    EXPECT_EQ(Read("epsg:32633"), "EPSG:32633");
    CProiezPla utm;
    ASSERT_EQ(ReadSystem("EPSG:32633", utm), "");
    EXPECT_EQ(Read(utm.GetWkt()), utm.GetWkt());
}

TEST(SystemText, BlanksAroundItDoNotCount) {
    EXPECT_EQ(Read("EPSG:32633 "), "EPSG:32633");
    EXPECT_EQ(Read(" \tEPSG:32633\r\n"), "EPSG:32633");
    EXPECT_EQ(Read(" +proj=utm +zone=33 +ellps=WGS84\n"), "+proj=utm +zone=33 +ellps=WGS84");
    EXPECT_EQ(Read("  WGS 84 / UTM zone 33N "), "EPSG:32633");
}

TEST(SystemText, WholeNameIsKeptAsItsCode) {
    EXPECT_EQ(Read("WGS 84 / UTM zone 33N"), "EPSG:32633");
    EXPECT_EQ(Read("wgs 84 / utm zone 33n"), "EPSG:32633");
    EXPECT_EQ(Read("Monte Mario / Italy zone 2"), "EPSG:3004");
    EXPECT_EQ(Read("WGS 84 / UTM zone 33N + EGM96 height"), "WGS 84 / UTM zone 33N + EGM96 height")
        << "put together of two systems: it has no code";
}

TEST(SystemText, PartOfANameIsRefusedAndWhatWouldBeTakenIsTold) {
    EXPECT_EQ(Read("Monte Mario Italy 2"),
              "<'Monte Mario Italy 2' is not the whole name of a system; if 'Monte Mario / Italy zone 2' is "
              "meant, give EPSG:3004>");
    EXPECT_NE(Read("EPSG: 32633").find("if 'WGS 84 / UTM zone 33N' is meant, give EPSG:32633"),
              std::string::npos);
    for (const char* text : {"32633", "UTM zone 33N", "foo:32633", "EPSG:", "nonsense"})
        EXPECT_EQ(Read(text).front(), '<') << text;
}

TEST(SystemText, SystemThatIsNoPlaneOneIsRefusedAndNothingChanges) {
    CProiezPla projection;
    ASSERT_EQ(ReadSystem("EPSG:32633", projection), "");
    for (const char* text : {"", "  ", "EPSG:4326", "WGS 84", "EPSG:4978", "Monte Mario Italy 2"})
        EXPECT_NE(ReadSystem(text, projection), "") << text;
    EXPECT_EQ(projection.GetDefinizione(), "EPSG:32633");
    EXPECT_NE(Read("EPSG:4326").find("is a geographic system"), std::string::npos);
}

}  // namespace
}  // namespace gpsbook
