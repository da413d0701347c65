#include "platform/coord/CLibMap.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

TEST(CLibMapTest, ANewLibraryHoldsOneIdentityDatum) {
    const CLibMap map;
    EXPECT_EQ(map.GetDatArSize(0, 0), 1);
    ASSERT_NE(map.GetDatAt(0, 0, 0), nullptr);
    EXPECT_TRUE(map.GetDatAt(0, 0, 0)->IsIdentity());
    EXPECT_EQ(map.GetTpDtBaseGps(), 0);
}

TEST(CLibMapTest, WhatDoesNotExistIsNullAndZero) {
    const CLibMap map;
    EXPECT_EQ(map.GetDatArSize(1, 0), 0);
    EXPECT_EQ(map.GetDatArSize(0, 1), 0);
    EXPECT_EQ(map.GetDatArSize(-1, 0), 0);
    for (const int index : {-1, 1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        EXPECT_EQ(map.GetDatAt(0, 0, index), nullptr) << index;
    EXPECT_EQ(map.GetDatAt(1, 0, 0), nullptr);
    EXPECT_EQ(map.GetDatAt(0, -1, 0), nullptr);
}

TEST(CLibMapTest, DatumsAreAppendedUnderTheirSelectorsAndKeepTheirAddress) {
    CLibMap map;
    std::vector<CDatumConv*> made;
    for (int k = 0; k < 100; ++k) made.push_back(map.AddDat(3, 7));
    EXPECT_EQ(map.GetDatArSize(3, 7), 100);
    EXPECT_EQ(map.GetDatArSize(7, 3), 0);
    EXPECT_EQ(map.GetDatArSize(0, 0), 1);
    for (int k = 0; k < 100; ++k) {
        ASSERT_NE(made[static_cast<std::size_t>(k)], nullptr);
        EXPECT_EQ(map.GetDatAt(3, 7, k), made[static_cast<std::size_t>(k)]);
        EXPECT_TRUE(map.GetDatAt(3, 7, k)->IsIdentity());
    }
    const CDatumConv* second = map.AddDat(0, 0);
    EXPECT_EQ(map.GetDatAt(0, 0, 1), second);
}

TEST(CLibMapTest, NegativeSelectorsAreRefused) {
    CLibMap map;
    const auto before = map.GetRevision();
    EXPECT_EQ(map.AddDat(-1, 0), nullptr);
    EXPECT_EQ(map.AddDat(0, -1), nullptr);
    EXPECT_EQ(map.GetDatArSize(-1, 0), 0);
    EXPECT_EQ(map.GetRevision(), before) << "a refusal changes nothing";
}

TEST(CLibMapTest, AFullListIsRefused) {
    CLibMap map;
    for (int k = 0; k < CLibMap::MAX_DATUM; ++k) ASSERT_NE(map.AddDat(2, 2), nullptr);
    EXPECT_EQ(map.AddDat(2, 2), nullptr);
    EXPECT_EQ(map.GetDatArSize(2, 2), CLibMap::MAX_DATUM);
    EXPECT_NE(map.AddDat(2, 3), nullptr) << "another list has room";
}

TEST(CLibMapTest, EveryRealChangeOfADatumCountsTheRevisionUp) {
    CLibMap map;
    auto grows = [&map, last = map.GetRevision()]() mutable {
        const bool grown = map.GetRevision() > last;
        last = map.GetRevision();
        return grown;
    };
    EXPECT_FALSE(grows());
    CDatumConv* added = map.AddDat(1, 1);
    EXPECT_TRUE(grows()) << "AddDat";
    added->SetCoeffToStd(1, 2, 3, 0, 0, 0, 0);
    EXPECT_TRUE(grows()) << "coefficients of an added datum";
    added->SetCoeffToStd(1, 2, 3, 0, 0, 0, 0);
    EXPECT_FALSE(grows()) << "the same coefficients";
    map.GetDatAt(0, 0, 0)->SetCoeffFromStd(1, 0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(grows()) << "coefficients of the first datum";
    map.GetConvDtBaseGps()->SetCoeffToStd(5, 0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(grows()) << "coefficients of the measured datum";
    map.SetTpDtBaseGps(1);
    EXPECT_TRUE(grows()) << "type of the measured datum";
    EXPECT_EQ(map.GetTpDtBaseGps(), 1);
    map.SetTpDtBaseGps(1);
    EXPECT_FALSE(grows()) << "the same type";
}

}  // namespace
