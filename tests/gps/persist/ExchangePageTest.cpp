// The page about exchange files, docs/formats/exchange.md, against the bytes: files are decoded by its tables
// and those of the records' page, and by nothing else.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/TempFolder.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/FormatPage.h"
#include "tests/gps/persist/GoldenRecords.h"

namespace {

using test::DecodedRow;
using test::LooseBook;
using test::PageDecoder;
using test::PageTables;
using Values = std::vector<std::string>;

const PageTables& Pages() {
    static const PageTables tables = [] {
        PageTables both = test::ReadPage(GPS_SOURCE_DIR "/docs/formats/records.md");
        both.merge(test::ReadPage(GPS_SOURCE_DIR "/docs/formats/exchange.md"));
        return both;
    }();
    return tables;
}

/// Values of the one row of that place and number.
Values At(const std::vector<DecodedRow>& rows, const std::string& place, const std::string& number) {
    for (const DecodedRow& row : rows)
        if (row.place == place && row.number == number) return row.values;
    ADD_FAILURE() << "the page has no row " << number << " of " << place;
    return {};
}

void ExpectHead(const std::vector<DecodedRow>& rows, const char* count) {
    EXPECT_EQ(At(rows, "file", "1"), (Values{"58", "1", "1", "0", "0"}));
    EXPECT_EQ(At(rows, "file", "2"), Values{"FCP"});
    EXPECT_EQ(At(rows, "file", "3"), Values{"1400"});
    EXPECT_EQ(At(rows, "file", "4"), Values{count});
    EXPECT_EQ(At(rows, "file", "6"), Values{"0"});
}

void ExpectNoCloudState(const std::vector<DecodedRow>& rows, std::size_t items) {
    std::size_t found = 0;
    for (const DecodedRow& row : rows) {
        if (!row.place.ends_with("/cloud")) continue;
        EXPECT_EQ(row.values, Values{"0"}) << row.place << ", row " << row.number;
        ++found;
    }
    EXPECT_EQ(found, 4 * items);
}

struct Golden : LooseBook {
    Golden() {
        test::Fill(lib, {2, 0, 1});
        test::FillGoldenGroup(*lib.GetGrpAt(0));
        test::FillGoldenPoint(*lib.GetPunAt(0, 1));
        lib.GetPunAt(0, 0)->SetCloudId(5);
    }
};

TEST(ExchangePage, DecodesAPointFile) {
    const test::TempFolder folder;
    const std::string file = folder / "points";
    Golden book;
    ASSERT_EQ(static_cast<int>(book.lib.SalvaPuntiInFile(0, 0, 2, file)), 0);
    const std::string bytes = test::FileBytes(file);
    PageDecoder decoder(Pages(), bytes, 1400);
    decoder.Record("Point file", "file");
    EXPECT_EQ(decoder.Position(), bytes.size()) << "the page ends where the file ends";
    ExpectHead(decoder.Rows(), "2");
    EXPECT_EQ(At(decoder.Rows(), "file/point 0/entity", "1"), Values{"P0"});
    EXPECT_EQ(At(decoder.Rows(), "file/point 1/entity", "1"), Values{"P1"});
    EXPECT_EQ(At(decoder.Rows(), "file/point 1", "3"), (Values{"45.125", "11.25", "100.5", "1.75"}));
    EXPECT_EQ(At(decoder.Rows(), "file/point 1", "16"), Values{"4275878552"});
    ExpectNoCloudState(decoder.Rows(), 2);
}

TEST(ExchangePage, DecodesAGroupFile) {
    const test::TempFolder folder;
    const std::string file = folder / "groups";
    Golden book;
    ASSERT_EQ(static_cast<int>(book.lib.SalvaGruppoInFile(0, 3, file, nullptr)), 0);
    const std::string bytes = test::FileBytes(file);
    PageDecoder decoder(Pages(), bytes, 1400);
    decoder.Record("Group file", "file");
    EXPECT_EQ(decoder.Position(), bytes.size());
    ExpectHead(decoder.Rows(), "3");
    EXPECT_EQ(At(decoder.Rows(), "file/group 0", "1"), Values{"Gruppo 1"});
    EXPECT_EQ(At(decoder.Rows(), "file/group 0", "17"), Values{"-77"});
    EXPECT_EQ(At(decoder.Rows(), "file/group 0/point 1/entity", "1"), Values{"P1"});
    EXPECT_EQ(At(decoder.Rows(), "file/group 1", "1"), Values{"G1"});
    EXPECT_EQ(At(decoder.Rows(), "file/group 2/point 0/entity", "1"), Values{"P0"});
    ExpectNoCloudState(decoder.Rows(), 6);
}

TEST(ExchangePage, DecodesFilesOfNothing) {
    const test::TempFolder folder;
    const std::string file = folder / "nothing";
    LooseBook book;
    ASSERT_EQ(static_cast<int>(book.lib.SalvaPuntiInFile(0, 0, 0, file)), 0);
    const std::string bytes = test::FileBytes(file);
    EXPECT_EQ(bytes.size(), 22u) << "as the page says";
    for (const char* table : {"Point file", "Group file"}) {
        PageDecoder decoder(Pages(), bytes, 1400);
        decoder.Record(table, "file");
        EXPECT_EQ(decoder.Position(), bytes.size());
        ExpectHead(decoder.Rows(), "0");
    }
}

}  // namespace
