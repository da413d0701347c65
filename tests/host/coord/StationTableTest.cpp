// Tables of stations, read and written.
#include "host/coord/StationTable.h"

#include <gtest/gtest.h>

namespace {

using Catalogo = CTrovaNomeBaseGps;

const std::string kHead = "id,name,country,region,province,x,y,z,frame,epoch,vx,vy,vz,source\n";
const std::string kUdine =
    "UDIN,Udine,ITA,Friuli-Venezia "
    "Giulia,UD,4316423.2699,1014588.7009,4569607.1405,ETRF2000,2008.0,,,,printed\n";

/// "line: words" of every problem.
std::string Problems(const std::string& text) {
    std::string out;
    for (const StationProblem& p : ReadStationTable(text).problems)
        out += std::to_string(p.line) + ": " + p.what + '\n';
    return out;
}

/// A row with one cell replaced.
std::string With(std::size_t cell, const std::string& value) {
    std::string row = kUdine;
    std::size_t begin = 0;
    for (; cell > 0; --cell) begin = row.find(',', begin) + 1;
    const std::size_t end = row.find_first_of(",\n", begin);
    return kHead + row.replace(begin, end - begin, value);
}

TEST(StationTable, ARowGivesAStation) {
    const StationTable table = ReadStationTable(kHead + kUdine);
    ASSERT_EQ(table.stations.size(), 1U);
    EXPECT_TRUE(table.problems.empty());
    EXPECT_TRUE(table.passedOver.empty());
    const Station& s = table.stations[0];
    EXPECT_EQ(s.id, "UDIN");
    EXPECT_EQ(s.name, "Udine");
    EXPECT_EQ(s.country, "ITA");
    EXPECT_EQ(s.region, "Friuli-Venezia Giulia");
    EXPECT_EQ(s.province, "UD");
    EXPECT_EQ(s.provincia, Catalogo::provUD);
    EXPECT_EQ(s.position, (std::array{4316423.2699, 1014588.7009, 4569607.1405}));
    EXPECT_EQ(s.frame, "ETRF2000");
    EXPECT_EQ(s.epoch, "2008.0");
    EXPECT_FALSE(s.velocity);
    EXPECT_EQ(s.source, "printed");
}

TEST(StationTable, ColumnsStandInAnyOrderAndSomeMayBeMissing) {
    const StationTable table =
        ReadStationTable("FRAME,remark,Z_m,Y,x,id4\nETRF2000,old,4569607,1014588,4316423,UDIN\n");
    ASSERT_EQ(table.stations.size(), 1U);
    EXPECT_EQ(table.stations[0].id, "UDIN");
    EXPECT_EQ(table.stations[0].position, (std::array{4316423., 1014588., 4569607.}));
    EXPECT_EQ(table.stations[0].provincia, Catalogo::provTutte);
    EXPECT_EQ(table.passedOver, std::vector<std::string>{"remark"});
}

TEST(StationTable, LinesWithoutCellsAndRemarksArePassedOver) {
    const StationTable table =
        ReadStationTable("\xEF\xBB\xBF# from the page\r\n\r\n" + kHead + "  \n# the only one\n" + kUdine);
    EXPECT_EQ(table.stations.size(), 1U);
    EXPECT_TRUE(table.problems.empty());
}

TEST(StationTable, LastLineNeedsNoEnd) {
    std::string text = kHead + kUdine;
    text.pop_back();
    EXPECT_EQ(ReadStationTable(text).stations.size(), 1U);
}

TEST(StationTable, QuotedCellsHoldCommasAndQuotes) {
    const StationTable table = ReadStationTable(With(13, "\"page \"\"A\"\", release 2\" "));
    ASSERT_EQ(table.stations.size(), 1U);
    EXPECT_EQ(table.stations[0].source, "page \"A\", release 2");
    EXPECT_EQ(ReadStationTable(With(1, "\"\"")).stations[0].name, "");
    EXPECT_EQ(ReadStationTable(With(1, "\" a \"")).stations[0].name, " a ");
    EXPECT_EQ(ReadStationTable(With(1, "  Udine\t")).stations[0].name, "Udine");
}

TEST(StationTable, QuoteThatIsNotClosedIsNamed) {
    const std::string problem = "2: a quote is not closed, or something stands behind it\n";
    EXPECT_EQ(Problems(With(13, "\"printed")), problem);
    EXPECT_EQ(Problems(With(13, "\"printed\" twice")), problem);
    EXPECT_EQ(Problems(With(13, "\"printed\"\"")), problem);
}

TEST(StationTable, ProvinceIsASignOrAName) {
    EXPECT_EQ(ReadStationTable(With(4, "Bolzano/Bozen")).stations[0].provincia, Catalogo::provBZ);
    EXPECT_EQ(ReadStationTable(With(4, "")).stations[0].provincia, Catalogo::provTutte);
    for (const std::string text : {"XX", "any", "Abroad"})
        EXPECT_EQ(Problems(With(4, text)),
                  "2: \"" + text + "\" is no province of Italy; give its sign, such as UD, or its name\n");
}

TEST(StationTable, StationOfAnotherCountryIsAbroadWhateverItsProvince) {
    const StationTable table = ReadStationTable(kHead +
                                                "MALA,Malaga,ESP,,Malaga,5103282.405,-392096.768,3793146.874,"
                                                "ETRF2000,2010.0,0.0001,-0.0033,-0.0009,x\n");
    ASSERT_EQ(table.stations.size(), 1U);
    EXPECT_EQ(table.stations[0].provincia, Catalogo::provEstero);
    EXPECT_EQ(table.stations[0].province, "Malaga");
    EXPECT_EQ(table.stations[0].velocity, (std::array{0.0001, -0.0033, -0.0009}));
}

TEST(StationTable, WhatIsMissingOrWrongInARowIsNamed) {
    EXPECT_EQ(Problems(With(0, "")), "2: no id; give one, such as the first four letters of its files\n");
    EXPECT_EQ(Problems(With(8, "")), "2: no frame; say \"not stated\" when it is not known\n");
    EXPECT_EQ(Problems(With(5, "")), "2: x is \"\", which is no number; give metres with a decimal point\n");
    for (const char* number :
         {"4 316 423", "4316423m", "4316423.", "nan", "inf", "1e400", "\"4316423,27\"", "+4316423"}) {
        const std::string problem = Problems(With(5, number));
        EXPECT_EQ(problem.empty(), std::string(number) == "4316423.") << number << ' ' << problem;
    }
    EXPECT_EQ(Problems(With(5, "0")),
              "2: x, y, z are no place on the earth; give geocentric coordinates in metres\n");
    EXPECT_EQ(Problems(With(10, "0.01")),
              "2: vy is \"\"; give all three velocities in metres a year, or none\n");
    EXPECT_EQ(Problems(kHead + "UDIN,Udine\n"),
              "2: 2 cells where the first line has 14; quote a cell that holds a comma\n");
}

TEST(StationTable, TextsThatABookCannotHoldAreRefused) {
    EXPECT_EQ(Problems(With(1, "U;dine")), "2: the name holds ';', which no name can; choose another\n");
    EXPECT_EQ(Problems(With(0, "U;D")), "2: the id holds ';', which no name can; choose another\n");
    EXPECT_EQ(Problems(With(13, "page; release")), "");
    EXPECT_EQ(Problems(With(1, "U\x01")), "2: the name holds a control character\n");
    EXPECT_EQ(Problems(With(3, "\xE0")),
              "2: the region holds bytes that are not UTF-8; save the table as UTF-8\n");
}

TEST(StationTable, SameStationInTheSameFrameAndEpochTwiceIsNamed) {
    const StationTable table = ReadStationTable(kHead + kUdine + kUdine);
    EXPECT_EQ(table.stations.size(), 1U);
    ASSERT_EQ(table.problems.size(), 1U);
    EXPECT_EQ(table.problems[0].line, 3U);
    EXPECT_EQ(table.problems[0].what,
              "UDIN in ETRF2000 at this epoch is in line 2 already; keep one of them");
    std::string remarked = kUdine;
    remarked.insert(remarked.find("2008.0") + 6, " (national realisation)");
    EXPECT_EQ(Problems(kHead + kUdine + remarked),
              "3: UDIN in ETRF2000 at this epoch is in line 2 already; keep one of them\n");
}

TEST(StationTable, LinesWithoutAProblemAreTakenAllTheSame) {
    const StationTable table = ReadStationTable(With(0, "") + kUdine);
    EXPECT_EQ(table.stations.size(), 1U);
    EXPECT_EQ(table.problems.size(), 1U);
}

TEST(StationTable, TableWithoutNeededColumnsHasOneProblem) {
    for (const char* text :
         {"id;x;y;z;frame\nUDIN;1;2;3;ETRF2000\n", "name,x,y,z,frame\nUdine,1,2,3,ETRF2000\n", "id,x,y,z\n",
          "not a table at all"}) {
        const StationTable table = ReadStationTable(text);
        EXPECT_TRUE(table.stations.empty()) << text;
        ASSERT_EQ(table.problems.size(), 1U) << text;
        EXPECT_EQ(table.problems[0].line, 1U);
        EXPECT_NE(table.problems[0].what.find("no column "), std::string::npos) << table.problems[0].what;
    }
    EXPECT_EQ(Problems("id,x,x_m,y,z,frame\n"), "1: the column x_m is there twice\n");
    EXPECT_EQ(Problems(""), "0: the table is empty; its first line names the columns\n");
    EXPECT_EQ(Problems("# nothing\n"), "0: the table is empty; its first line names the columns\n");
}

TEST(StationTable, WhatIsWrittenIsRead) {
    const std::string text =
        kHead + kUdine +
        "MALA,\"Malaga, "
        "port\",ESP,,,5103282.405,-392096.768,3793146.874,ETRF2014,,0.0001,-0.0033,-0.0009,\"\"\"x\"\"\"\n"
        "\"#1\",\" a\",,,,4316423,1014588,4569607,not stated,,,,,\n";
    const StationTable table = ReadStationTable(text);
    EXPECT_EQ(table.stations.size(), 3U);
    EXPECT_TRUE(table.problems.empty());
    EXPECT_EQ(WriteStationTable(table.stations), text);
    EXPECT_EQ(ReadStationTable(WriteStationTable(table.stations)).stations, table.stations);
}

TEST(StationTable, SmallestVelocityIsWrittenAsItWas) {
    Station s = ReadStationTable(kHead + kUdine).stations[0];
    s.velocity = {5e-324, -1e-300, 0};
    EXPECT_EQ(ReadStationTable(WriteStationTable({s})).stations, std::vector<Station>{s});
}

// Whatever the bytes are: no crash, and every line is told of or taken.
TEST(StationTable, CutOrDamagedTextIsReadOrNamed) {
    const std::string text = kHead + kUdine;
    for (std::size_t size = 0; size <= text.size(); ++size) {
        const StationTable table = ReadStationTable(text.substr(0, size));
        EXPECT_LE(table.stations.size() + table.problems.size(), 1U) << size;
    }
    for (std::size_t at = 0; at < text.size(); ++at)
        for (const char c : {'\0', '"', ',', '\n', '\xFF', ' '}) {
            std::string damaged = text;
            damaged[at] = c;
            const StationTable table = ReadStationTable(damaged);
            EXPECT_LE(table.stations.size(), 1U);
        }
}

}  // namespace
