// The table of a point's fields: every one is got, set and reported as the library does it.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "apps/gpsbook/fields/Assignment.h"
#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CGrpGps.h"

namespace gpsbook {
namespace {

struct Row {
    const char* field;
    const char* text;
    std::uint32_t bits;  // that are reported
};

/// A value for every field of a point, and what setting it reports.
const Row kRows[] = {
    {"name", "P7", CHG_NOME},
    {"code", "KERB", CHG_SECSCRI},
    {"time", "2018-10-04T12:37:51.123Z", CHG_PUN_DATETIME},
    {"lat", "45.1234567890123", CHG_PUN_LAT},
    {"lon", "-11.9", CHG_PUN_LONG},
    {"h", "123.4567", CHG_PUN_ELEV},
    {"antenna", "1.8", CHG_PUN_ALTANT},
    {"east", "733000.5", CHG_COORD},
    {"north", "5001000.25", CHG_COORD},
    {"height", "-80.5", CHG_COORD},
    {"quality", "4", CHG_PUN_QUA},
    {"gps", "8", CHG_PUN_NUGPS},
    {"glonass", "5", CHG_PUN_NUGLO},
    {"pdop", "1.25", CHG_PUN_PDOP},
    {"hrms", "0.0123", CHG_PUN_HPOSRMS},
    {"vrms", "0.0456", CHG_PUN_VPOSRMS},
    {"gdop", "2.5", CHG_PUN_GDOP},
    {"cov_xx", "0.0001", CHG_PUN_POSCOV},
    {"cov_yy", "0.0002", CHG_PUN_POSCOV},
    {"cov_zz", "0.0003", CHG_PUN_POSCOV},
    {"cov_tt", "0.0004", 0},
    {"cov_xy", "-0.00005", CHG_PUN_POSCOV},
    {"cov_xz", "0.00006", CHG_PUN_POSCOV},
    {"cov_xt", "0.00007", 0},
    {"cov_yz", "-0.00008", CHG_PUN_POSCOV},
    {"cov_yt", "0.00009", 0},
    {"cov_zt", "-0.0001", 0},
    {"base_lat", "45.5", 0},
    {"base_lon", "12.5", 0},
    {"base_h", "60.25", 0},
    {"primary_duplicate", "yes", 0},
    {"secondary_duplicate", "yes", 0},
    {"text3", "third", 0},
    {"notes", "a note", 0},
    {"photos", "one.jpg", 0},
    {"attributes", "red", 0},
    {"descriptor", "17", 0},
    {"gis_handle", "-18", 0},
    {"entity_code", "4294967295", CHG_CODEEGN},
    {"validity", "16", 0},
    {"reserved", "4294967295", 0},
    {"year", "2020", CHG_PUN_DATETIME},
    {"month", "12", CHG_PUN_DATETIME},
    {"day", "31", CHG_PUN_DATETIME},
    {"tod", "86400999", CHG_PUN_DATETIME},
};

TEST(PointFields, EachIsSetReportedAndGot) {
    ASSERT_EQ(std::size(kRows), PointFields().size()) << "a field has no row here";
    for (const Row& row : kRows) {
        const PointField* field = FindField<CPunGps>(row.field);
        ASSERT_NE(field, nullptr) << row.field;
        CPunGps point(nullptr, false, nullptr);
        const FieldValue value = ParseValue(*field, row.text);
        EXPECT_FALSE(SameValue(field->get(point), value)) << row.field << " is not the default";
        field->set(point, value);
        EXPECT_EQ(field->get(point), value) << row.field;
        EXPECT_EQ(point.GetCloudFlag(), row.bits) << row.field;
    }
}

TEST(PointFields, EachSetsNothingElse) {
    for (const Row& row : kRows) {
        CPunGps point(nullptr, false, nullptr);
        const std::vector<FieldValue> before = ValuesOf(point);
        const PointField& field = *FindField<CPunGps>(row.field);
        field.set(point, ParseValue(field, row.text));
        for (const FieldChange& change : ChangesSince(before, point)) {
            const std::string name = change.field->name;
            EXPECT_EQ(name, row.field) << row.field << " sets " << name;
        }
    }
}

TEST(PointFields, ColumnsOfATableStandFirstUnderTheirNames) {
    ASSERT_EQ(kColumns.size(), kPointColumns + 1) << "the group is a column, too";
    for (std::size_t i = 0; i < kPointColumns; ++i) EXPECT_STREQ(PointFields()[i].name, kColumns[i + 1].name);
}

TEST(PointFields, NamesAreDifferentAndReadAsFields) {
    std::set<std::string> names;
    for (const PointField& field : PointFields()) {
        EXPECT_TRUE(names.insert(field.name).second) << field.name;
        EXPECT_TRUE(IsAssignment(std::string(field.name) + "=")) << field.name;
        EXPECT_STRNE(field.help, "") << field.name;
    }
}

TEST(PointFields, NewPointHasNoValuesWhereThereCanBeNone) {
    CPunGps point(nullptr, false, nullptr);
    for (const PointField& field : PointFields()) {
        const bool canBeUnset = field.kind == FieldKind::real || field.kind == FieldKind::time;
        EXPECT_EQ(IsSet(field.get(point)), !canBeUnset) << field.name;
    }
}

TEST(PointFields, TimeTakenAwayLeavesNoPart) {
    CPunGps point(nullptr, false, nullptr);
    const PointField& time = *FindField<CPunGps>("time");
    time.set(point, ParseValue(time, "2018-10-04T12:37:51.123Z"));
    time.set(point, FieldValue());
    EXPECT_EQ(point.GetYear(), 0);
    EXPECT_EQ(point.GetMonth(), 0);
    EXPECT_EQ(point.GetDay(), 0);
    EXPECT_EQ(point.GetTod(), 0U);
}

TEST(PointFields, TimeThatDoesNotExistIsNoneButItsPartsAreThere) {
    CPunGps point(nullptr, false, nullptr);
    point.SetYear(2018);
    point.SetMonth(2);
    point.SetDay(30);
    EXPECT_FALSE(IsSet(FindField<CPunGps>("time")->get(point)));
    EXPECT_EQ(FindField<CPunGps>("day")->get(point), FieldValue(std::int64_t{30}));
}

TEST(PointFields, PlaneCoordinatesKeepTheValidityWordInStep) {
    CPunGps point(nullptr, false, nullptr);
    FindField<CPunGps>("east")->set(point, 1.0);
    EXPECT_EQ(point.GetVldtEgn(), 0U);
    FindField<CPunGps>("north")->set(point, 2.0);
    EXPECT_EQ(point.GetVldtEgn(), CEgn::VLDT_XY);
    FindField<CPunGps>("height")->set(point, 3.0);
    EXPECT_EQ(point.GetVldtEgn(), CEgn::VLDT_XY | CEgn::VLDT_Z);
}

}  // namespace
}  // namespace gpsbook
