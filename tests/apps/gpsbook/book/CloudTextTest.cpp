// Fields of a shared project in words.
#include "apps/gpsbook/book/CloudText.h"

#include <gtest/gtest.h>

#include "gps/cloud/FieldLayout.h"

namespace gpsbook {
namespace {

using gpsproject::CloudKind;

TEST(CloudText, FieldNamesAreInTheOrderOfBits) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(FieldNames(CloudKind::point, 0), Names());
    EXPECT_EQ(FieldNames(CloudKind::point, CHG_PUN_ALTANT | CHG_NOME), (Names{"name", "antenna"}));
    EXPECT_EQ(FieldNames(CloudKind::group, CHG_GRP_CONVCOORD | CHG_COORD), (Names{"position", "conversion"}));
    EXPECT_EQ(FieldNames(CloudKind::group, ~std::uint32_t{0}).size(), GRP_FIELDS.size());
    EXPECT_EQ(FieldNames(CloudKind::point, ~std::uint32_t{0}).size(), PUN_FIELDS.size());
}

struct Row {
    const char* name;
    CloudKind kind;
    std::uint32_t bit;
    TwoValues fields;
    TwoValues words;
};

TEST(CloudText, ValuesAreInWords) {
    const Row rows[] = {
        {"text", CloudKind::point, CHG_NOME, {"P1", ""}, {"\"P1\"", "\"\""}},
        {"text with a control character", CloudKind::point, CHG_NOME, {"a\tb", "x"}, {"\"a?b\"", "\"x\""}},
        {"number", CloudKind::point, CHG_PUN_ALTANT, {"1.85", "NULLVAL"}, {"1.85", "unset"}},
        {"parts that differ",
         CloudKind::point,
         CHG_COORD,
         {"100.5;200;NULLVAL", "100.5;201;3"},
         {"y 200, z unset", "y 201, z 3"}},
        {"parts that are alike", CloudKind::point, CHG_COORD, {"1;2;3", "1;2;3"}, {"", ""}},
        {"time",
         CloudKind::point,
         CHG_PUN_DATETIME,
         {"2024;5;1;28800000", "2024;5;1;28800500"},
         {"2024-05-01T08:00:00.000Z", "2024-05-01T08:00:00.500Z"}},
        {"time that is none",
         CloudKind::point,
         CHG_PUN_DATETIME,
         {"0;0;0;0", "2024;5;1;0"},
         {"year 0, month 0, day 0", "year 2024, month 5, day 1"}},
        {"covariances in square metres",
         CloudKind::point,
         CHG_PUN_POSCOV,
         {"250000000;0;0;1000000000;0;1", "250000001;0;0;1000000000;0;1"},
         {"cov_xx 0.25", "cov_xx 0.250000001"}},
        {"group", CloudKind::group, CHG_GRP_BASEELEV, {"3", "4"}, {"3", "4"}},
        {"fields of a damaged conflict", CloudKind::point, CHG_COORD, {"1;2", "x"}, {"1;2", "x"}},
        {"bit that is not known", CloudKind::point, std::uint32_t{1} << 31, {"1", "2"}, {"1", "2"}},
    };
    for (const Row& row : rows) {
        const TwoValues words = InWords(row.kind, row.bit, row.fields);
        EXPECT_EQ(words.mine, row.words.mine) << row.name;
        EXPECT_EQ(words.theirs, row.words.theirs) << row.name;
    }
}

TEST(CloudText, RefusedItemsAreNamedByIdOrName) {
    EXPECT_EQ(RefusedItem({CloudKind::point, 7, "", "why"}), "point (id 7)");
    EXPECT_EQ(RefusedItem({CloudKind::group, 0, "Quay", "why"}), "group Quay");
    EXPECT_EQ(RefusedItem({CloudKind::point, 7, "Quay/P1", "why"}), "point Quay/P1 (id 7)");
}

}  // namespace
}  // namespace gpsbook
