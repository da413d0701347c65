// The frame of a base by its tags.
#include "apps/gpsbook/stations/BaseFrame.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/coord/CEllissoide.h"
#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

class BaseFrames : public ::testing::Test {
protected:
    BaseFrame Of(const std::string& text) {
        group.SetSecScri(text);
        return FrameOf(group);
    }

    SmallBook book;
    CGrpGps& group = book.Group("Quay");
};

TEST_F(BaseFrames, TagsOfTheTextTell) {
    EXPECT_EQ(Of("").Text(), "");
    EXPECT_FALSE(Of("EUREF").IsTagged());
    EXPECT_EQ(Of("B [WGS84-EUREF]").Text(), "EUREF");
    EXPECT_EQ(Of("B [WGS84-ETRF2000]").Text(), "ETRF2000");
    EXPECT_EQ(Of("[WGS84-ETRF2000] [WGS84-EUREF]").Text(), "EUREF and ETRF2000");
    EXPECT_TRUE(Of("[WGS84-ETRF2000] [WGS84-EUREF]").IsTwofold());
}

TEST_F(BaseFrames, TagAllowsItsOwnKindOfFrameAndWhatIsNotKnown) {
    const auto allows = [&](const std::string& text) {
        std::string kinds;
        const BaseFrame frame = Of(text);
        if (!frame.Contradicts(FrameKind::etrf2000)) kinds += "etrf2000 ";
        if (!frame.Contradicts(FrameKind::european)) kinds += "european ";
        if (!frame.Contradicts(FrameKind::global)) kinds += "global ";
        if (!frame.Contradicts(FrameKind::unknown)) kinds += "unknown ";
        return kinds;
    };
    EXPECT_EQ(allows(""), "etrf2000 european global unknown ");
    EXPECT_EQ(allows("[WGS84-EUREF]"), "european unknown ");
    EXPECT_EQ(allows("[WGS84-ETRF2000]"), "etrf2000 unknown ");
}

TEST_F(BaseFrames, PositionNeedsAllThreeValues) {
    group.SetBaseLat(46);
    group.SetBaseLong(13);
    EXPECT_FALSE(BasePosition(group));
    group.SetBaseElev(180);
    const auto at = BasePosition(group);
    ASSERT_TRUE(at);
    double x, y, z;
    CEllissoide().GrafToGeoc(46, 13, 180, x, y, z);
    EXPECT_EQ(*at, (StationCatalogue::Position{x, y, z}));
    group.SetBaseLat(std::nan(""));
    EXPECT_FALSE(BasePosition(group));
}

TEST_F(BaseFrames, GroupAndEntityMayGoByTheStationsNameOrId) {
    Station station;
    station.id = "UDIN";
    station.name = "Udine";
    EXPECT_FALSE(IsNamedAfter(group, station));
    for (const char* name : {"Udine", "UDINE", "udin", "UDIN"}) {
        group.SetNome(name);
        EXPECT_TRUE(IsNamedAfter(group, station)) << name;
        group.SetNome("Quay");
        group.SetNomeGrp(name);
        EXPECT_TRUE(IsNamedAfter(group, station)) << name;
        group.SetNomeGrp("Quay");
    }
    group.SetNome("Udine 2");
    EXPECT_FALSE(IsNamedAfter(group, station));
    group.SetNome("");
    station.name = "";
    EXPECT_FALSE(IsNamedAfter(group, station)) << "no name is not the name of a station without one";
}

}  // namespace
}  // namespace gpsbook::test
