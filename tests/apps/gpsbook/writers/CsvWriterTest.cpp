#include "apps/gpsbook/writers/CsvWriter.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>

#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

const std::string kHeader =
    "group,name,code,time,lat,lon,h,antenna,east,north,height,quality,gps,glonass,pdop,hrms,vrms\n";

/// What the rows become, without the header.
std::string Csv(const std::vector<PointRow>& rows) {
    std::ostringstream out;
    const auto writer = MakeRowWriter(TableFormat::csv, {"-", false, &out}, {});
    for (const PointRow& row : rows) writer->Write(row);
    writer->Close();
    EXPECT_EQ(out.str().substr(0, kHeader.size()), kHeader);
    return out.str().substr(kHeader.size());
}

PointRow Named(const std::string& name) {
    PointRow row;
    row.name = name;
    return row;
}

TEST(CsvWriter, FullRowHasEveryColumnWithItsDecimals) {
    EXPECT_EQ(Csv({FullRow()}),
              "Grüppe 1,\"P\"\"1\"\" "
              "ß漢\",\"čep,x\",2018-10-04T12:37:51.123Z,45.123456789,11.987654321,123.4567,2.0000,"
              "733000.1234,5001000.9876,80.4321,4,8,5,1.25,0.0123,0.0456\n");
}

TEST(CsvWriter, UnsetNumberIsAnEmptyCell) { EXPECT_EQ(Csv({BareRow()}), ",bare,,,,,,,,,,0,0,0,,,\n"); }

TEST(CsvWriter, ZeroIsAValueAndHasNoSign) {
    PointRow row = BareRow();
    row.h = -0.00001;
    row.antenna = 0.0;
    row.hrms = -0.0;
    EXPECT_EQ(Csv({row}), ",bare,,,,,0.0000,0.0000,,,,0,0,0,,0.0000,\n");
}

TEST(CsvWriter, OnlyTextThatNeedsItIsQuoted) {
    struct Row {
        const char* name;
        const char* cell;
    };
    const Row rows[] = {
        {"plain", "plain"},
        {"with blank", "with blank"},
        {"semi;colon", "semi;colon"},
        {"a,b", "\"a,b\""},
        {"say \"a\"", "\"say \"\"a\"\"\""},
        {"two\nlines", "\"two\nlines\""},
        {"carriage\rreturn", "\"carriage\rreturn\""},
        {"\"", "\"\"\"\""},
        {"", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Csv({Named(row.name)}), std::string(",") + row.cell + ",,,,,,,,,,0,0,0,,,\n");
}

TEST(CsvWriter, RowsKeepTheirOrder) {
    EXPECT_EQ(Csv({Named("b"), Named("a")}), ",b,,,,,,,,,,0,0,0,,,\n,a,,,,,,,,,,0,0,0,,,\n");
}

TEST(CsvWriter, TableWithoutRowsHasItsHeader) { EXPECT_EQ(Csv({}), ""); }

TEST(CsvWriter, LocaleWithDecimalCommaChangesNothing) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::string before = Csv({FullRow()});
    const std::locale old = std::locale::global(std::locale(std::locale::classic(), new Comma));
    const std::string after = Csv({FullRow()});
    std::locale::global(old);
    EXPECT_EQ(before, after);
}

TEST(CsvWriter, FileHoldsTheSameBytesAsStandardOutput) {
    const TestFolder folder;
    const std::vector<PointRow> rows(2000, FullRow());  // several flushes
    const auto writer = MakeRowWriter(TableFormat::csv, {folder / "t.csv", false, nullptr}, {});
    for (const PointRow& row : rows) writer->Write(row);
    writer->Close();
    EXPECT_EQ(ReadFile(folder / "t.csv"), kHeader + Csv(rows));
    EXPECT_EQ(writer->SkippedRows(), 0);
}

TEST(CsvWriter, StreamThatFailsIsReported) {
    struct Full : std::streambuf {
        std::streamsize xsputn(const char*, std::streamsize) override { return 0; }
        int_type overflow(int_type) override { return traits_type::eof(); }
    } full;
    std::ostream out(&full);
    const auto writer = MakeRowWriter(TableFormat::csv, {"-", false, &out}, {});
    writer->Write(FullRow());
    try {
        writer->Close();
        FAIL() << "no error";
    } catch (const WriteError& e) {
        EXPECT_NE(std::string(e.what()).find("standard output: writing failed"), std::string::npos)
            << e.what();
    }
}

TEST(CsvWriter, FullDiskIsReportedAndTheOldTableStays) {
    const TestFolder folder;
    WriteFile(folder / "t.csv", "old");
    {
        const FileSizeLimit limit(4096);
        const auto writer = MakeRowWriter(TableFormat::csv, {folder / "t.csv", true, nullptr}, {});
        const auto writeAll = [&] {
            for (int i = 0; i < 100; ++i) writer->Write(FullRow());
            writer->Close();
        };
        EXPECT_THROW(writeAll(), WriteError);
    }
    EXPECT_EQ(ReadFile(folder / "t.csv"), "old");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"t.csv"});
}

}  // namespace
}  // namespace gpsbook
