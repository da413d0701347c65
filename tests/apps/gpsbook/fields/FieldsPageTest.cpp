// The page of the fields says what the tables say.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include "apps/gpsbook/fields/Field.h"
#include "gps/model/CGrpGps.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

const char* KindText(FieldKind kind) {
    switch (kind) {
        case FieldKind::text:
            return "text";
        case FieldKind::real:
            return "real";
        case FieldKind::single:
            return "single";
        case FieldKind::whole:
            return "whole";
        case FieldKind::flag:
            return "flag";
        case FieldKind::time:
            return "time";
        case FieldKind::crs:
            return "crs";
    }
    return "";
}

/// "| `lat` | real | degrees, -90 to 90 |"
std::string LineBegin(const FieldInfo& field) {
    std::string range;
    if (field.high > 9e18) {
        range = "64 bits";
    } else if (field.high > field.low) {
        if (*field.unit != '\0') range = std::string(field.unit) + ", ";
        range += fmt::format("{:.0f} to {:.0f}", field.low, field.high);
    }
    return fmt::format("\n| `{}` | {} |{}{} |", field.name, KindText(field.kind), range.empty() ? "" : " ",
                       range);
}

template <class Item>
void ExpectOnPage(const std::string& page) {
    std::size_t at = 0;
    std::size_t rows = 0;
    for (const Field<Item>& field : FieldsOf<Item>()) {
        const std::size_t found = page.find(LineBegin(field), at);
        ASSERT_NE(found, std::string::npos) << LineBegin(field) << " is missing, or not where it belongs";
        at = found + 1;
    }
    for (std::size_t row = page.find("\n| `"); row != std::string::npos; row = page.find("\n| `", row + 1))
        ++rows;
    EXPECT_EQ(rows, FieldsOf<Item>().size()) << "a field that is none";
}

TEST(FieldsPage, EveryFieldIsThereWithItsKindUnitAndRange) {
    const std::string page = ReadFile(std::string(GPSBOOK_PAGES) + "/formats/fields.md");
    const std::size_t points = page.find("## Points");
    const std::size_t groups = page.find("## Groups");
    ASSERT_LT(points, groups);
    ExpectOnPage<CPunGps>(page.substr(points, groups - points));
    ExpectOnPage<CGrpGps>(page.substr(groups));
}

}  // namespace
}  // namespace gpsbook
