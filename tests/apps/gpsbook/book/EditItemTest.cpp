// Edits, and the plane coordinates that follow them.
#include "apps/gpsbook/book/EditItem.h"

#include <gtest/gtest.h>

#include "apps/gpsbook/book/PlaneRefresh.h"
#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

/// The names of what changed, separated by blanks.
std::string Changed(const EditResult& result) {
    std::string names;
    for (const FieldChange& change : result.changes)
        names += (names.empty() ? "" : " ") + std::string(change.field->name);
    return names;
}

class EditItem : public ::testing::Test {
protected:
    EditItem() {
        SetUtm33(book.Group("Quay", {"P1", "P2"}));
        for (int p = 0; p < 2; ++p) {
            SetFix(*book.lib.GetPunAt(0, p), 45.65, 13.76, 63, 2);
            RefreshPlane(book.lib, {0, p});
        }
    }

    EditResult Point(const std::vector<Assignment>& a, bool keepPlane = false) {
        return EditPoint(book.edits, {0, 0}, ParseEdits<CPunGps>(a), keepPlane);
    }
    EditResult Group(const std::vector<Assignment>& a, bool keepPlane = false) {
        return EditGroup(book.edits, 0, ParseEdits<CGrpGps>(a), keepPlane);
    }
    CPunGps& P1() { return *book.lib.GetPunAt(0, 0); }

    SmallBook book;
};

TEST_F(EditItem, PlaneCoordinatesFollowTheFix) {
    EXPECT_DOUBLE_EQ(P1().GetCoordZ(), 61);
    EXPECT_EQ(Changed(Point({{"antenna", "1.5"}})), "antenna height");
    EXPECT_DOUBLE_EQ(P1().GetCoordZ(), 61.5);
    EXPECT_EQ(Changed(Point({{"lat", ""}})), "lat east north height");
    EXPECT_FALSE(P1().EstValidoXY());
    EXPECT_EQ(Changed(Point({{"code", "KERB"}})), "code");
}

TEST_F(EditItem, PlaneCoordinatesStayWhenTheyAreGivenOrKept) {
    EXPECT_EQ(Changed(Point({{"antenna", "1.5"}, {"east", "7"}})), "antenna east");
    EXPECT_DOUBLE_EQ(P1().GetCoordX(), 7);
    EXPECT_DOUBLE_EQ(P1().GetCoordZ(), 61);
    EXPECT_EQ(Changed(Point({{"antenna", "1.25"}}, true)), "antenna");
}

TEST_F(EditItem, PlaneCoordinatesStayWithoutAUsableConversion) {
    book.lib.GetGrpAt(0)->SetCodeElab(0);
    const EditResult result = Point({{"antenna", "1.5"}});
    EXPECT_TRUE(result.planeLeft);
    EXPECT_EQ(Changed(result), "antenna");
    EXPECT_TRUE(P1().EstValidoXY());
    EXPECT_FALSE(Point({{"code", "x"}}).planeLeft) << "nothing had to follow";
}

TEST_F(EditItem, PointCodedToBeWithoutHasNone) {
    P1().SetCodeEgn(CEgn::CODE_NE);
    Point({{"antenna", "1.5"}});
    EXPECT_FALSE(P1().EstValidoXY());
}

TEST_F(EditItem, BaseHasPlaneCoordinatesOfItsOwn) {
    CGrpGps& group = *book.lib.GetGrpAt(0);
    EXPECT_EQ(Changed(Group({{"base_lat", "45.65"}, {"base_lon", "13.76"}})), "base_lat base_lon");
    EXPECT_FALSE(group.EstValidoXY());
    EXPECT_EQ(Changed(Group({{"base_h", "60"}, {"base_antenna", "1.5"}})),
              "base_h base_antenna east north height");
    EXPECT_DOUBLE_EQ(group.GetCoordZ(), 58.5);
    EXPECT_NEAR(group.GetCoordX(), P1().GetCoordX(), 1e-6);
    EXPECT_DOUBLE_EQ(P1().GetCoordZ(), 61) << "points are not touched";
}

TEST_F(EditItem, AnotherSystemMovesAllPoints) {
    const double east = P1().GetCoordX();
    const EditResult result = Group({{"crs", "EPSG:32632"}});
    EXPECT_EQ(result.pointsRefreshed, 2);
    EXPECT_EQ(Changed(result), "crs");
    EXPECT_GT(P1().GetCoordX(), east + 100'000);
    EXPECT_TRUE(Group({{"crs", ""}}).planeLeft);
    EXPECT_GT(P1().GetCoordX(), east + 100'000) << "what was computed stays";
}

TEST_F(EditItem, SameValuesChangeNothing) {
    EXPECT_EQ(Changed(Point({{"lat", "45.65"}, {"name", "P1"}})), "");
    EXPECT_EQ(Changed(Group({{"name", "Quay"}})), "");
}

}  // namespace
}  // namespace gpsbook::test
