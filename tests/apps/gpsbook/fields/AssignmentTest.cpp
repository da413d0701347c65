// FIELD=VALUE on a command line.
#include "apps/gpsbook/fields/Assignment.h"

#include <gtest/gtest.h>

#include "apps/gpsbook/commands/CommandError.h"
#include "gps/model/CGrpGps.h"

namespace gpsbook {
namespace {

TEST(Assignment, WhatStandsBeforeTheFirstEqualsSignTells) {
    for (const char* text : {"lat=45", "cov_xx=", "text3=a=b", "x9=1"})
        EXPECT_TRUE(IsAssignment(text)) << text;
    for (const char* text : {"lat", "=45", "Quay=1", "a b=1", "Quay/P1", "#0", "a-b=1", ""})
        EXPECT_FALSE(IsAssignment(text)) << text;
    const Assignment a = SplitAssignment("notes=a=b");
    EXPECT_EQ(a.field, "notes");
    EXPECT_EQ(a.text, "a=b");
}

template <class Item>
std::string Refusal(const std::vector<Assignment>& assignments) {
    try {
        ParseEdits<Item>(assignments);
    } catch (const CommandError& e) {
        EXPECT_EQ(e.Code(), exitUsage);
        return e.what();
    }
    return "accepted";
}

TEST(Assignment, UnknownFieldsAndThoseGivenTwiceAreRefused) {
    EXPECT_EQ(Refusal<CPunGps>({{"antena", "1"}}), "\"antena\" is no field of a point; is it antenna?");
    EXPECT_EQ(Refusal<CGrpGps>({{"lat", "45"}}),
              "\"lat\" is no field of a group; gpsbook show --json tells all fields");
    EXPECT_EQ(Refusal<CPunGps>({{"lat", "45"}, {"lat", "46"}}), "lat: given twice; give one value");
    EXPECT_EQ(Refusal<CPunGps>({{"lat", "45"}, {"lon", "181"}}),
              "lon: 181 is outside -180 to 180 degrees; check the unit");
}

TEST(Assignment, ValuesAreStoredInTheOrderOfTheTable) {
    CGrpGps group(nullptr, false, nullptr, 0);
    Store(group, ParseEdits<CGrpGps>({{"entity_name", "Base"}, {"name", "Quay"}}));
    EXPECT_EQ(group.GetNomeGrp(), "Quay");
    EXPECT_EQ(group.GetNome(), "Base") << "the name, which sets both, comes first";
}

TEST(Assignment, ChangesTellWhatDiffers) {
    CPunGps point(nullptr, false, nullptr);
    point.SetLat(45);
    const std::vector<FieldValue> before = ValuesOf(point);
    EXPECT_TRUE(ChangesSince(before, point).empty());
    point.SetLat(46);
    point.SetNome("P1");
    const std::vector<FieldChange> changes = ChangesSince(before, point);
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_STREQ(changes[0].field->name, "name");
    EXPECT_STREQ(changes[1].field->name, "lat");
    EXPECT_EQ(changes[1].before, FieldValue(45.0));
    EXPECT_EQ(changes[1].after, FieldValue(46.0));
}

TEST(Assignment, PartsOfATimeAreToldOnlyWhereTheyMakeNone) {
    CPunGps point(nullptr, false, nullptr);
    const std::vector<FieldValue> before = ValuesOf(point);
    Store(point, ParseEdits<CPunGps>({{"time", "2024-05-01T08:00:00Z"}}));
    ASSERT_EQ(ChangesSince(before, point).size(), 1U);
    EXPECT_STREQ(ChangesSince(before, point)[0].field->name, "time");
    Store(point, ParseEdits<CPunGps>({{"month", "0"}}));
    const std::vector<FieldChange> changes = ChangesSince(before, point);
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_STREQ(changes[0].field->name, "year");
}

}  // namespace
}  // namespace gpsbook
