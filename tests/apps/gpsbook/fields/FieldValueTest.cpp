// Values of fields: read, shown, printed for machines.
#include "apps/gpsbook/fields/FieldValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/commands/CommandError.h"
#include "platform/base/GpsValues.h"

namespace gpsbook {
namespace {

using Json = nlohmann::ordered_json;

constexpr FieldInfo kLat{"lat", FieldKind::real, "degrees", -90, 90, 9, Feeds::plane, ""};
constexpr FieldInfo kName{"name", FieldKind::text, "", 0, 0, 0, Feeds::nothing, ""};
constexpr FieldInfo kGps{"gps", FieldKind::whole, "", 0, 255, 0, Feeds::nothing, ""};
constexpr FieldInfo kDrawing{"target_drawing", FieldKind::whole, "", -0x1p63, 0x1p63, 0, Feeds::nothing, ""};
constexpr FieldInfo kCov{"cov_xx", FieldKind::single, "square metres", 0, 1e15, 0, Feeds::nothing, ""};
constexpr FieldInfo kFlag{"flag", FieldKind::flag, "", 0, 0, 0, Feeds::nothing, ""};
constexpr FieldInfo kTime{"time", FieldKind::time, "", 0, 0, 0, Feeds::nothing, ""};
constexpr FieldInfo kCrs{"crs", FieldKind::crs, "", 0, 0, 0, Feeds::groupPlanes, ""};

/// The message of the error, with its exit code checked.
std::string Refusal(const FieldInfo& field, const std::string& text) {
    try {
        ParseValue(field, text);
    } catch (const CommandError& e) {
        EXPECT_EQ(e.Code(), exitUsage) << text;
        return e.what();
    }
    return "accepted";
}

TEST(FieldValue, RealsAreReadInTheirRange) {
    EXPECT_EQ(ParseValue(kLat, "45.5"), FieldValue(45.5));
    EXPECT_EQ(ParseValue(kLat, "-90"), FieldValue(-90.0));
    EXPECT_EQ(ParseValue(kLat, "90"), FieldValue(90.0));
    EXPECT_EQ(Refusal(kLat, "90.0000001"), "lat: 90.0000001 is outside -90 to 90 degrees; check the unit");
    EXPECT_EQ(Refusal(kLat, "-91"), "lat: -91 is outside -90 to 90 degrees; check the unit");
    for (const char* text : {"45,5", "x", "nan", "inf", "1e", "0x10", "45 ", "--1"})
        EXPECT_NE(Refusal(kLat, text).find("is not a number; give -90 to 90 degrees"), std::string::npos)
            << text;
}

TEST(FieldValue, RealsOfAnySizeAreNumbersOutsideTheRange) {
    EXPECT_EQ(Refusal(kCov, "1e30"),
              "cov_xx: 1e30 is outside 0 to 1000000000000000 square metres; check the unit");
    for (const char* text : {"1e16", "-1e16", "1e999", "100000000000000000000"})
        EXPECT_NE(Refusal(kLat, text).find("is outside -90 to 90 degrees"), std::string::npos) << text;
}

TEST(FieldValue, NothingAndUnsetTakeTheValueOfARealATimeAndASystem) {
    for (const char* text : {"", "unset"}) {
        EXPECT_EQ(ParseValue(kLat, text), FieldValue(GPS_VAL_UNSET));
        EXPECT_EQ(ParseValue(kTime, text), FieldValue());
        EXPECT_EQ(ParseValue(kCrs, text), FieldValue());
        EXPECT_EQ(ParseValue(kCov, text), FieldValue(0.0F));
        EXPECT_NE(Refusal(kGps, text).find("always has a value; give 0 to 255"), std::string::npos);
        EXPECT_NE(Refusal(kFlag, text).find("always has a value"), std::string::npos);
    }
    EXPECT_EQ(ParseValue(kName, "unset"), FieldValue(std::string("unset"))) << "a text like any other";
    EXPECT_EQ(ParseValue(kName, ""), FieldValue(std::string()));
}

TEST(FieldValue, WholeNumbersAreReadInTheirRange) {
    EXPECT_EQ(ParseValue(kGps, "255"), FieldValue(std::int64_t{255}));
    EXPECT_EQ(ParseValue(kDrawing, "-9223372036854775808"),
              FieldValue(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(ParseValue(kDrawing, "9223372036854775807"),
              FieldValue(std::numeric_limits<std::int64_t>::max()));
    EXPECT_NE(Refusal(kDrawing, "9223372036854775808").find("not a whole number"), std::string::npos);
    EXPECT_NE(Refusal(kGps, "256").find("256 is outside 0 to 255"), std::string::npos);
    EXPECT_NE(Refusal(kGps, "-1").find("outside"), std::string::npos);
    for (const char* text : {"1.5", "x", "1 ", "+-1"})
        EXPECT_NE(Refusal(kGps, text).find("not a whole number"), std::string::npos) << text;
}

TEST(FieldValue, TimesAreMomentsInUtc) {
    EXPECT_EQ(ParseValue(kTime, "2018-10-04T14:37:51.123+02:00"),
              FieldValue(UtcTime{{2018, 10, 4}, 45471123}));
    EXPECT_EQ(ParseValue(kTime, "2016-12-31T23:59:60.5Z"), FieldValue(UtcTime{{2016, 12, 31}, 86400500}));
    for (const char* text : {"2018-10-04", "12:00", "2018-02-30T00:00:00Z", "yesterday"})
        EXPECT_NE(Refusal(kTime, text).find("is not a time; write it like 2024-05-01T08:00:00.000Z"),
                  std::string::npos)
            << text;
}

TEST(FieldValue, FlagsSystemsAndTextsAreRead) {
    for (const char* text : {"yes", "true", "1"}) EXPECT_EQ(ParseValue(kFlag, text), FieldValue(true));
    for (const char* text : {"no", "false", "0"}) EXPECT_EQ(ParseValue(kFlag, text), FieldValue(false));
    EXPECT_NE(Refusal(kFlag, "maybe").find("neither yes nor no"), std::string::npos);
    EXPECT_EQ(ParseValue(kCrs, "EPSG:32633"), FieldValue(std::string("EPSG:32633")));
    EXPECT_EQ(Refusal(kCrs, "EPSG:99999999").substr(0, 5), "crs: ");
    EXPECT_NE(Refusal(kName, "a;b").find("name: a text cannot hold ';'"), std::string::npos);
}

TEST(FieldValue, TextsForPeopleHaveTheirDecimalsAndUnits) {
    EXPECT_EQ(ValueText(kLat, 45.1234567891), "45.123456789");
    EXPECT_EQ(ValueText(kLat, -1e-12), "0.000000000");
    EXPECT_EQ(ValueText(kLat, GPS_VAL_UNSET), "");
    EXPECT_EQ(ValueText(kCov, 0.0001F), "0.0001");
    EXPECT_EQ(ValueText(kTime, UtcTime{{2018, 10, 4}, 45471123}), "2018-10-04T12:37:51.123Z");
    EXPECT_EQ(ValueWithUnit(kLat, 45.5), "45.500000000 degrees");
    EXPECT_EQ(ValueWithUnit(kLat, GPS_VAL_UNSET), "unset");
    EXPECT_EQ(ValueWithUnit(kFlag, true), "yes");
    EXPECT_EQ(ValueWithUnit(kTime, FieldValue()), "unset");
}

TEST(FieldValue, JsonReadsBackToTheSameValue) {
    for (const double v : {45.123456789012345, 0.1, -1e-300, 1e22, 5e-324, 123456789.98765432}) {
        const std::string text = ValueJson(v).dump();
        EXPECT_EQ(Json::parse(text).get<double>(), v) << text;
    }
    for (const float v : {0.0001F, 1.0F / 3, 3.4e38F, 1e-45F}) {
        const std::string text = ValueJson(v).dump();
        EXPECT_EQ(static_cast<float>(Json::parse(text).get<double>()), v) << text;
    }
    EXPECT_EQ(ValueJson(0.0001F).dump(), "0.0001") << "as it was entered, not as the double next to it";
    EXPECT_EQ(ValueJson(std::int64_t{-9223372036854775807}).dump(), "-9223372036854775807");
    EXPECT_EQ(ValueJson(std::string("ß")).dump(), "\"ß\"");
    EXPECT_EQ(ValueJson(true).dump(), "true");
}

TEST(FieldValue, WhatHasNoValueIsNull) {
    for (const double v : {GPS_VAL_UNSET, 8.5e199, std::nan(""), HUGE_VAL, -HUGE_VAL})
        EXPECT_EQ(ValueJson(v).dump(), "null") << v;
    EXPECT_EQ(ValueJson(FieldValue()).dump(), "null");
}

TEST(FieldValue, AppendedJsonIsTheSameValue) {
    const FieldValue values[] = {45.123456789012345,
                                 0.1,
                                 -1e-300,
                                 5e-324,
                                 1e22,
                                 GPS_VAL_UNSET,
                                 0.0001F,
                                 1.0F / 3,
                                 true,
                                 false,
                                 FieldValue(),
                                 std::int64_t{-7},
                                 std::string("P1"),
                                 std::string("\"\\\n\x01ß"),
                                 std::string(),
                                 UtcTime{{2018, 10, 4}, 45471123}};
    for (const FieldValue& value : values) {
        std::string text = "x";
        AppendJson(text, value);
        EXPECT_EQ(text[0], 'x');
        EXPECT_EQ(Json::parse(text.substr(1)), ValueJson(value)) << text;
    }
    std::string zero;
    AppendJson(zero, -0.0);
    EXPECT_TRUE(std::signbit(Json::parse(zero).get<double>())) << zero;
    std::string text;
    AppendJson(text, std::string("\xFF"));
    EXPECT_EQ(text, "\"\xEF\xBF\xBD\"");
}

TEST(FieldValue, ValuesWithoutOneAreTheSame) {
    EXPECT_TRUE(SameValue(GPS_VAL_UNSET, std::nan("")));
    EXPECT_TRUE(SameValue(FieldValue(), FieldValue()));
    EXPECT_TRUE(SameValue(1.5, 1.5));
    EXPECT_FALSE(SameValue(1.5, GPS_VAL_UNSET));
    EXPECT_FALSE(SameValue(1.5, 1.25));
    EXPECT_FALSE(SameValue(UtcTime{{2018, 10, 4}, 1}, UtcTime{{2018, 10, 4}, 2}));
}

}  // namespace
}  // namespace gpsbook
