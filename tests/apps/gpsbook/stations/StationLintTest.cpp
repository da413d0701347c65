// Bases that stand at stations under other names, or in frames other than their tags say.
#include "apps/gpsbook/stations/StationLint.h"

#include <gtest/gtest.h>

#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

constexpr double kX = 4316423.2699, kY = 1014588.7009, kZ = 4569607.1405;

Station At(const std::string& id, const std::string& name, double dx, const std::string& frame) {
    Station s;
    s.id = id;
    s.name = name;
    s.position = {kX + dx, kY, kZ};
    s.frame = frame;
    return s;
}

class StationLint : public ::testing::Test {
protected:
    /// A group whose base is `dx` metres beside the station.
    CGrpGps& Base(const std::string& name, double dx, const std::string& text = "") {
        CGrpGps& group = book.Group(name);
        group.SetGeocCeFaMis(kX + dx, kY, kZ);
        group.SetSecScri(text);
        return group;
    }

    /// "kind group: what" of every finding, a line each.
    std::string Found(double radius = 5) {
        StationsInUse stations{{StationCatalogue(catalogue), {}}, radius};
        std::string text;
        for (const Finding& f : LintBases(book.lib, stations)) {
            EXPECT_EQ(f.count, 0);
            text += std::string(f.kind) + ' ' + std::to_string(f.group) + ": " + f.what + '\n';
        }
        return text;
    }

    SmallBook book;
    std::vector<Station> catalogue{At("UDIN", "Udine", 0, "ETRF2000"),
                                   At("UDIN", "Udine", 0.1, "ETRF89 (IGM95)"),
                                   At("UDIN", "Udine", 0.8, "IGb14")};
};

TEST_F(StationLint, BaseAtAStationUnderAnotherNameIsNamed) {
    Base("Quay", -0.25);
    EXPECT_EQ(
        Found(),
        "base-name 0: 0.250 m from the station Udine (UDIN), under another name; gpsbook base names it\n");
}

TEST_F(StationLint, BaseOfTheStationsNameIsAllRight) {
    Base("udine", 0);
    Base("UDIN", 4);
    EXPECT_EQ(Found(), "");
}

TEST_F(StationLint, BaseBeyondTheRadiusIsOfNoStation) {
    Base("Quay", -5.01);
    EXPECT_EQ(Found(), "");
    EXPECT_NE(Found(5.02), "");
    EXPECT_EQ(Found(0), "");
}

TEST_F(StationLint, BaseWithoutAPositionIsOfNoStation) {
    Base("Quay", 0).SetBaseElev(GPS_VAL_UNSET);
    book.Group("Pier");
    EXPECT_EQ(Found(), "");
}

TEST_F(StationLint, TagThatTheCoordinatesContradictIsNamed) {
    Base("Udine", 0, "[WGS84-EUREF]");
    Base("Udine", 0.1, "[WGS84-ETRF2000]");
    Base("Udine", 0.81, "[WGS84-ETRF2000]");
    EXPECT_EQ(
        Found(),
        "base-frame 0: tagged EUREF, with the coordinates of Udine in ETRF2000; gpsbook base sets another "
        "tag, or takes other coordinates\n"
        "base-frame 1: tagged ETRF2000, with the coordinates of Udine in ETRF89 (IGM95); gpsbook base sets "
        "another tag, or takes other coordinates\n"
        "base-frame 2: tagged ETRF2000, with the coordinates of Udine in IGb14; gpsbook base sets another "
        "tag, or takes other coordinates\n");
}

TEST_F(StationLint, TagThatFitsOrCannotBeJudgedIsAllRight) {
    Base("Udine", 0, "[WGS84-ETRF2000]");
    Base("Udine", 0.1, "[WGS84-EUREF]");
    Base("Udine", 0.4, "[WGS84-EUREF]");  // near, but at nobody's coordinates
    Base("Udine", 0.8);
    Base("Hill", 500, "[WGS84-EUREF]");
    EXPECT_EQ(Found(), "");
    catalogue[0].frame = "not stated";
    book.lib.GetGrpAt(0)->SetSecScri("[WGS84-EUREF]");
    EXPECT_EQ(Found(), "");
}

TEST_F(StationLint, OneSetOfCoordinatesThatFitsIsEnough) {
    catalogue[1].position[0] = kX + 0.01;
    Base("Udine", 0, "[WGS84-EUREF]");
    EXPECT_EQ(Found(), "");
}

TEST_F(StationLint, BothTagsAtOnceContradictEachOther) {
    book.Group("Quay").SetSecScri("[WGS84-EUREF] [WGS84-ETRF2000]");
    EXPECT_EQ(Found(), "base-frame 0: tagged EUREF and ETRF2000; gpsbook base clears and sets tags\n");
}

TEST_F(StationLint, FrameIsJudgedWhateverTheRadius) {
    Base("Udine", 0, "[WGS84-EUREF]");
    EXPECT_NE(Found(0), "");
}

}  // namespace
}  // namespace gpsbook::test
