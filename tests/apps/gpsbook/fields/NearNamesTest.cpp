// Names that are like one that does not exist.
#include "apps/gpsbook/fields/NearNames.h"

#include <gtest/gtest.h>

namespace gpsbook {
namespace {

using Names = std::vector<std::string>;

Names Near(const std::string& wanted, const Names& all) {
    NearNames near(wanted);
    for (const std::string& name : all) near.Consider(name);
    return near.Names();
}

TEST(NearNames, MistypedNamesAreFoundNearestFirst) {
    EXPECT_EQ(Near("antena", {"antenna", "lat", "base_antenna"}), Names{"antenna"});
    EXPECT_EQ(Near("QUAY", {"Quay", "Pier"}), Names{"Quay"}) << "case aside";
    EXPECT_EQ(Near("Quya", {"Quay", "Quo"}), (Names{"Quay"})) << "two letters exchanged are one slip";
    EXPECT_EQ(Near("lat", {"late", "lat0", "let", "xyz"}), (Names{"late", "lat0", "let"}));
}

TEST(NearNames, AtMostThreeAreTold) {
    EXPECT_EQ(Near("P1", {"P2", "P3", "P4", "P5", "p1"}), (Names{"p1", "P2", "P3"}));
}

TEST(NearNames, NamesThatAreUnlikeAndThoseThatAreLongAreNot) {
    EXPECT_EQ(Near("Quay", {"Pier", "", "Harbour"}), Names{});
    EXPECT_EQ(Near(std::string(65, 'a'), {std::string(65, 'a')}), Names{});
}

TEST(NearNames, QuestionReadsAsOne) {
    NearNames near("P1");
    EXPECT_EQ(near.Question(), "");
    near.Consider("P2");
    EXPECT_EQ(near.Question(), "; is it P2?");
    near.Consider("P3");
    EXPECT_EQ(near.Question(), "; is it P2 or P3?");
    near.Consider("P4");
    near.Consider("P4");
    EXPECT_EQ(near.Question(), "; is it P2, P3 or P4?");
}

}  // namespace
}  // namespace gpsbook
