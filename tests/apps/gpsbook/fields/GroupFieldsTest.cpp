// The table of a group's fields: every one is got, set and reported as the library does it.
#include <gtest/gtest.h>

#include <set>

#include "apps/gpsbook/fields/Assignment.h"
#include "gps/model/CGrpGps.h"
#include "platform/coord/CLibMap.h"

namespace gpsbook {
namespace {

struct Row {
    const char* field;
    const char* text;
    std::uint32_t bits;  // that are reported
};

/// A value for every field of a group, and what setting it reports.
const Row kRows[] = {
    {"name", "Quay", CHG_NOME | CHG_GRP_NOMEGRP},
    {"entity_name", "Quay base", CHG_NOME},
    {"code", "B", CHG_SECSCRI},
    {"operator", "A. Verdi", 0},
    {"instrument", "rover 3", 0},
    {"date", "2024-05-01", 0},
    {"place", "harbour", 0},
    {"base_lat", "45.65", CHG_GRP_BASELAT},
    {"base_lon", "13.76", CHG_GRP_BASELONG},
    {"base_h", "60.125", CHG_GRP_BASEELEV},
    {"base_antenna", "1.5", CHG_GRP_BASEALTANT},
    {"east", "733000.5", CHG_COORD},
    {"north", "5001000.25", CHG_COORD},
    {"height", "58.5", CHG_COORD},
    {"crs", "EPSG:32633", CHG_GRP_CONVCOORD | CHG_GRP_CODEELAB},
    {"processing_code", "-32768", CHG_GRP_CODEELAB},
    {"survey_type", "3", CHG_GRP_TIPORILIEVO},
    {"receiver_type", "255", CHG_GRP_TIPORICEVITORE},
    {"text3", "third", 0},
    {"notes", "a note", 0},
    {"photos", "one.jpg", 0},
    {"attributes", "red", 0},
    {"descriptor", "17", 0},
    {"gis_handle", "18", 0},
    {"entity_code", "20037", CHG_CODEEGN},
    {"validity", "16", 0},
    {"factor_a", "1.000001", 0},
    {"factor_b", "0.999999", 0},
    {"spare1", "-1.5", 0},
    {"spare2", "2.5", 0},
    {"spare3", "3.5", 0},
    {"flag", "yes", 0},
    {"reserved", "4294967295", 0},
    {"target_drawing", "9223372036854775807", 0},
    {"creator_device", "-2147483648", 0},
};

TEST(GroupFields, EachIsSetReportedAndGot) {
    ASSERT_EQ(std::size(kRows), GroupFields().size()) << "a field has no row here";
    for (const Row& row : kRows) {
        const GroupField* field = FindField<CGrpGps>(row.field);
        ASSERT_NE(field, nullptr) << row.field;
        CLibMap map;
        CGrpGps group(nullptr, false, &map, 0);
        const FieldValue value = ParseValue(*field, row.text);
        EXPECT_FALSE(SameValue(field->get(group), value)) << row.field << " is not the default";
        field->set(group, value);
        EXPECT_EQ(field->get(group), value) << row.field;
        EXPECT_EQ(group.GetCloudFlag(), row.bits) << row.field;
        group.SetTargetDrawing(0);
    }
}

TEST(GroupFields, EachSetsNothingElse) {
    for (const Row& row : kRows) {
        CLibMap map;
        CGrpGps group(nullptr, false, &map, 0);
        const std::vector<FieldValue> before = ValuesOf(group);
        const GroupField& field = *FindField<CGrpGps>(row.field);
        field.set(group, ParseValue(field, row.text));
        for (const FieldChange& change : ChangesSince(before, group)) {
            const std::string name = change.field->name;
            const bool belongs = (std::string("name") == row.field && name == "entity_name") ||
                                 (std::string("crs") == row.field && name == "processing_code");
            EXPECT_TRUE(name == row.field || belongs) << row.field << " sets " << name;
        }
        group.SetTargetDrawing(0);
    }
}

TEST(GroupFields, NamesAreDifferentAndReadAsFields) {
    std::set<std::string> names;
    for (const GroupField& field : GroupFields()) {
        EXPECT_TRUE(names.insert(field.name).second) << field.name;
        EXPECT_TRUE(IsAssignment(std::string(field.name) + "=")) << field.name;
        EXPECT_STRNE(field.help, "") << field.name;
    }
}

TEST(GroupFields, SystemMakesTheConversionUsableAndNoSystemUnusable) {
    CLibMap map;
    CGrpGps group(nullptr, false, &map, 0);
    group.SetCodeElab(6);
    const GroupField& crs = *FindField<CGrpGps>("crs");
    crs.set(group, std::string("EPSG:32633"));
    EXPECT_TRUE(group.IsCdElabValid());
    EXPECT_EQ(group.GetCodeElab(), 7) << "other bits stay";
    crs.set(group, FieldValue());
    EXPECT_FALSE(group.IsCdElabValid());
    EXPECT_EQ(group.GetCodeElab(), 6);
    EXPECT_FALSE(IsSet(crs.get(group)));
}

}  // namespace
}  // namespace gpsbook
