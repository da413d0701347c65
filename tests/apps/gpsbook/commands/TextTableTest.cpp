// Columns of text for people.
#include "apps/gpsbook/commands/TextTable.h"

#include <gtest/gtest.h>

namespace gpsbook::test {
namespace {

TEST(TextTable, ColumnsAreAsWideAsTheirWidestCell) {
    TextTable table({{"#", true}, {"name"}, {"h", true}});
    const std::vector<std::vector<std::string>> rows{{"9", "Grüppe", ""}, {"10", "a", "1.5"}};
    for (const auto& row : rows) table.Measure(row);
    EXPECT_EQ(table.Head(), "   #  name      h\n");
    EXPECT_EQ(table.Line(rows[0]), "   9  Grüppe\n") << "nothing stands behind the last cell";
    EXPECT_EQ(table.Line(rows[1]), "  10  a       1.5\n");
}

TEST(TextTable, CellWiderThanItsColumnIsNotCut) {
    const TextTable table({{"a"}, {"b"}});
    EXPECT_EQ(table.Line({"long", "x"}), "  long  x\n");
}

TEST(TextTable, WhatATerminalCannotShowIsAQuestionMark) {
    EXPECT_EQ(Printable("a\x1B[0m\n\t\xFFß"), "a?[0m???ß");
    EXPECT_EQ(WidthOf("Grüppe 漢"), 8U);
}

}  // namespace
}  // namespace gpsbook::test
