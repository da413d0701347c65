// What is known of a frame from its name.
#include "host/coord/Station.h"

#include <gtest/gtest.h>

namespace {

TEST(Station, FramesAreOfTheKindThatTheirNamesTell) {
    for (const char* frame : {"ETRF2000", "etrf 2000", "ETRF2000 (R14)", "ETRF2000-RDN", "RDN2008"})
        EXPECT_EQ(FrameKindOf(frame), FrameKind::etrf2000) << frame;
    for (const char* frame : {"ETRF89 (IGM95)", "ETRF2014", "ETRF2020", "ETRS89", "EUREF"})
        EXPECT_EQ(FrameKindOf(frame), FrameKind::european) << frame;
    for (const char* frame : {"ITRF2005", "IGb14", "IGS20", "WGS84", "WGS 84 (G2139)", "IGS20 (inferred)"})
        EXPECT_EQ(FrameKindOf(frame), FrameKind::global) << frame;
    for (const char* frame : {"", "not stated", "GDA94", "local", "x ETRF2000"})
        EXPECT_EQ(FrameKindOf(frame), FrameKind::unknown) << frame;
}

TEST(Station, IsCalledByItsNameOrElseByItsId) {
    Station station;
    station.id = "UDIN";
    EXPECT_EQ(station.Called(), "UDIN");
    station.name = "Udine";
    EXPECT_EQ(station.Called(), "Udine");
}

TEST(Station, SetsOfCoordinatesAreOfAStationAFrameAndAnEpoch) {
    Station a;
    a.id = "UDIN";
    a.frame = "ETRF2000";
    a.epoch = "2008.0";
    Station b = a;
    b.name = "Udine";
    b.position = {1, 2, 3};
    EXPECT_TRUE(a.IsSameSet(b));
    for (std::string Station::*part : {&Station::id, &Station::frame, &Station::epoch}) {
        Station other = a;
        other.*part = "x";
        EXPECT_FALSE(a.IsSameSet(other));
    }
}

TEST(Station, RemarkInBracketsTellsNoSetsApart) {
    EXPECT_EQ(WithoutRemark("2008.0 (national realisation)"), "2008.0");
    EXPECT_EQ(WithoutRemark("IGS20 (inferred; label absent)"), "IGS20");
    for (const char* text : {"", "2008.0", "ETRF89 (IGM95)", "ETRF2000 (R14)", "WGS84(x)", "IGS20 (x) y"})
        EXPECT_EQ(WithoutRemark(text), text) << "a name as it stands";
    Station a;
    a.id = "UDIN";
    a.frame = "IGS20 (inferred)";
    a.epoch = "2008.0 (national realisation)";
    Station b = a;
    b.frame = "IGS20";
    b.epoch = "2008.0";
    EXPECT_TRUE(a.IsSameSet(b));
    a.frame = "ETRF2000 (R14)";
    b.frame = "ETRF2000 (R05)";
    EXPECT_FALSE(a.IsSameSet(b)) << "realisations of one frame";
}

}  // namespace
