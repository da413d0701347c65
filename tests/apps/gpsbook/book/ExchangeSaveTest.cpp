// Ranges of a book into exchange files.
#include "apps/gpsbook/book/ExchangeSave.h"

#include <gtest/gtest.h>

#include <limits>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/writers/WriteError.h"
#include "tests/apps/gpsbook/book/ExchangeSample.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"
#include "tests/gps/persist/BookParts.h"

namespace gpsbook::test {
namespace {

using ::test::Dump;
using ::test::ExchangeHead;

constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

class ExchangeSave : public ::testing::Test {
protected:
    ExchangeSave() { ::test::Fill(book.lib, {3, 1}); }
    SaveRange Range(int first, int last, bool force = false) const {
        return {file, first, last, true, force};
    }
    std::string Point(int p) { return ::test::Saved(*book.lib.GetPunAt(0, p), 1400, true); }
    std::string Bytes() const { return Dump(::test::FileBytes(file)); }

    ::test::LooseBook book;
    const TestFolder folder;
    const std::string file = folder / "file";
};

TEST_F(ExchangeSave, RangeEndsBeforeItsLastPosition) {
    SavePoints(book.lib, 0, Range(1, 3));
    EXPECT_EQ(Bytes(), Dump(ExchangeHead(2).Raw(Point(1)).Raw(Point(2)).I32(0).Get()));
    SavePoints(book.lib, 0, Range(3, 3));
    EXPECT_EQ(Bytes(), Dump(ExchangeHead(0).I32(0).Get()));
    SaveGroups(book.lib, Range(1, 2));
    const std::string group = ::test::Saved(*book.lib.GetGrpAt(1), 1400, true);
    const std::string point = ::test::Saved(*book.lib.GetPunAt(1, 0), 1400, true);
    EXPECT_EQ(Bytes(), Dump(ExchangeHead(1).Raw(group).I32(1).Raw(point).I32(0).Get()));
}

TEST_F(ExchangeSave, RangeThatDoesNotExistIsRefusedAndTheFileStays) {
    WriteFile(file, "before");
    for (const auto& [first, last] : {std::pair{-1, 2}, {0, 4}, {2, 1}, {4, 4}, {0, kMost}, {kLeast, 1}}) {
        EXPECT_THROW(SavePoints(book.lib, 0, Range(first, last)), CommandError) << first << ", " << last;
        EXPECT_THROW(SaveGroups(book.lib, Range(first, last)), CommandError) << first << ", " << last;
    }
    EXPECT_EQ(ReadFile(file), "before");
    EXPECT_EQ(folder.Names().size(), 1u);
}

TEST_F(ExchangeSave, ForcedRangeHasTheCountThatWasAskedFor) {
    SavePoints(book.lib, 0, Range(-1, 5, true));
    EXPECT_EQ(Bytes(), Dump(ExchangeHead(6).Raw(Point(0)).Raw(Point(1)).Raw(Point(2)).I32(0).Get()));
    SavePoints(book.lib, 0, Range(2, 0, true));
    EXPECT_EQ(Bytes(), Dump(ExchangeHead(-2).I32(0).Get()));
    SaveGroups(book.lib, Range(2, 4, true));
    EXPECT_EQ(Bytes(), Dump(ExchangeHead(2).I32(0).I32(0).I32(0).Get()));
    for (const auto& [first, last] : {std::pair{0, kMost}, {kLeast, 0}, {kLeast, kMost}, {3, 1'000'004}}) {
        EXPECT_THROW(SavePoints(book.lib, 0, Range(first, last, true)), CommandError);
        EXPECT_THROW(SaveGroups(book.lib, Range(first, last, true)), CommandError);
    }
    SavePoints(book.lib, 0, Range(3, 1'000'003, true));
    EXPECT_EQ(Bytes(), Dump(ExchangeHead(1'000'000).I32(0).Get()));
}

TEST_F(ExchangeSave, PositionsThatExistAreCounted) {
    EXPECT_EQ(CountIn(Range(0, 3), 3), 3);
    EXPECT_EQ(CountIn(Range(-5, 2), 3), 2);
    EXPECT_EQ(CountIn(Range(2, 9), 3), 1);
    EXPECT_EQ(CountIn(Range(3, 3), 3), 0);
    EXPECT_EQ(CountIn(Range(5, kLeast), 3), 0);
    EXPECT_EQ(CountIn(Range(kLeast, kMost), 3), 3);
}

TEST_F(ExchangeSave, FailedWriteLeavesTheOldFile) {
    WriteFile(file, "before");
    {
        const FileSizeLimit limit(100);
        EXPECT_THROW(SavePoints(book.lib, 0, Range(0, 3)), WriteError);
        EXPECT_THROW(SaveGroups(book.lib, Range(0, 2)), WriteError);
    }
    EXPECT_EQ(ReadFile(file), "before");
    EXPECT_EQ(folder.Names().size(), 1u) << "nothing is left beside it";
}

}  // namespace
}  // namespace gpsbook::test
