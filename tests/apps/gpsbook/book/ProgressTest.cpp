#include "apps/gpsbook/book/Progress.h"

#include <gtest/gtest.h>

#include <string>

namespace gpsbook {
namespace {

TEST(Progress, BarShowsNameCellsAndPercent) {
    struct Row {
        std::int64_t done, total;
        std::size_t full;  // cells of 30
        const char* percent;
    };
    const Row rows[] = {
        {0, 1000, 0, "  0%"},     {33, 1000, 0, "  3%"},
        {34, 100, 10, " 34%"},    {500, 1000, 15, " 50%"},
        {999, 1000, 29, " 99%"},  {1000, 1000, 30, "100%"},
        {2000, 1000, 30, "100%"}, {-5, 1000, 0, "  0%"},
        {0, 0, 30, "100%"},       {1LL << 50, 1LL << 51, 15, " 50%"},
    };
    for (const Row& row : rows) {
        const std::string cells = std::string(row.full, '#') + std::string(30 - row.full, '.');
        EXPECT_EQ(Progress::Bar("a.nmea", row.done, row.total), "a.nmea [" + cells + "] " + row.percent)
            << row.done << " of " << row.total;
    }
}

TEST(Progress, NothingIsDrawnWhereNoTerminalIs) {
    testing::internal::CaptureStderr();
    {
        Progress bar("a.nmea", 1LL << 30, true);
        bar.Show(1LL << 29);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace gpsbook
