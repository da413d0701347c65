// The page on options says what the records and the settings are.
#include <gtest/gtest.h>

#include <charconv>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "gps/options/COpzLibGps.h"
#include "gps/options/COpzListDisGps.h"
#include "gps/options/COpzPostProc.h"
#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"
#include "tests/Settings.h"
#include "tests/gps/options/EntryValues.h"

namespace {

using test::Bytes;
using test::Dump;
using test::Settings;

std::string Page() { return test::FileBytes(GPS_SOURCE_DIR "/docs/formats/options.md"); }

using Row = std::map<std::string, std::string>;  // cells by the head of their column

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    for (std::size_t from = 1, to; (to = line.find('|', from)) != std::string::npos; from = to + 1) {
        std::string cell = line.substr(from, to - from);
        cell.erase(0, cell.find_first_not_of(' '));
        cell.erase(cell.find_last_not_of(' ') + 1);
        cells.push_back(cell);
    }
    return cells;
}

/// The first table behind a text.
std::vector<Row> TableBehind(const std::string& text) {
    const std::string page = Page();
    std::vector<Row> rows;
    std::size_t at = page.find(text);
    EXPECT_NE(at, std::string::npos) << text;
    if (at != std::string::npos) at = page.find("\n|", at);
    EXPECT_NE(at, std::string::npos) << text;
    if (at == std::string::npos) return rows;
    std::vector<std::string> heads;
    for (++at; page[at] == '|'; at = page.find('\n', at) + 1) {
        const std::vector<std::string> cells = Cells(page.substr(at, page.find('\n', at) - at));
        if (heads.empty()) {
            heads = cells;
        } else if (!cells[0].starts_with("---")) {
            rows.emplace_back();
            EXPECT_EQ(cells.size(), heads.size());
            for (std::size_t i = 0; i < heads.size(); ++i) rows.back()[heads[i]] = cells[i];
        }
    }
    EXPECT_FALSE(rows.empty()) << text;
    return rows;
}

double Number(const std::string& text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

/// A value in the bytes of its type.
Bytes Coded(const std::string& type, const std::string& value) {
    Bytes bytes;
    const double number = Number(value);
    if (type == "i16")
        bytes.I16(static_cast<int>(number));
    else if (type == "u16")
        bytes.U16(static_cast<unsigned>(number));
    else if (type == "i32" || type == "bool4" || type == "count")
        bytes.I32(static_cast<std::int32_t>(number));
    else if (type == "f64")
        bytes.F64(number);
    else if (type == "string")
        bytes.Text(value);
    else
        ADD_FAILURE() << "unknown type " << type;
    return bytes;
}

/// The bytes of a record as the page tells them in a version: values by field; without one, the default that
/// the page names. A row without type stands for `nested` of its place.
std::string AsThePageSays(const std::vector<Row>& rows, short version,
                          const std::map<std::string, std::string>& values,
                          const std::string& byDefault = "default",
                          const std::vector<std::string>& nested = {}) {
    Bytes bytes;
    std::size_t next = 0;
    for (const Row& row : rows) {
        const auto cell = [&row](const std::string& head) { return row.contains(head) ? row.at(head) : ""; };
        if (!cell("from").empty() && version < Number(cell("from"))) continue;
        if (!cell("below").empty() && version >= Number(cell("below"))) continue;
        if (cell("type").empty()) {
            EXPECT_LT(next, nested.size());
            bytes.Raw(nested.at(next++));
            continue;
        }
        const auto known = values.find(cell("field"));
        bytes.Raw(Coded(cell("type"), known != values.end() ? known->second : cell(byDefault)));
    }
    EXPECT_EQ(next, nested.size());
    return bytes.Get();
}

TEST(OptionsPage, FieldBookOptions) {
    const Settings settings;
    const std::vector<Row> rows = TableBehind("The record, 14 bytes");
    ofpstream fresh(1400), filled(1400);
    COpzLibGps opz;
    opz.SalvaInFile(fresh, 1400);
    EXPECT_EQ(Dump(fresh.GetBytes()),
              Dump(AsThePageSays(rows, 1400, {{"`CalcLibCmp`", "1"}}, "of a new field book")));
    opz.OpzValore = 7;
    opz.CalcLibCmp = false;
    opz.OpzFlagB = true;
    opz.SalvaInFile(filled, 1400);
    EXPECT_EQ(
        Dump(filled.GetBytes()),
        Dump(AsThePageSays(rows, 1400, {{"`OpzValore`", "7"}, {"`CalcLibCmp`", "0"}, {"`OpzFlagB`", "1"}},
                           "of a new field book")));
}

TEST(OptionsPage, DisplayOptions) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    test::Fill(list.GetOpzPun(), 100);
    test::Fill(list.GetOpzGrp(), 200);
    std::string entries;
    for (const auto& [name, first] : {std::pair{"Punti GPS", 100}, std::pair{"Basi GPS", 200}}) {
        std::vector<Row> rows = TableBehind("\nAn entry:");
        ASSERT_EQ(rows.front()["type"], "i32");  // the length of the rest
        rows.erase(rows.begin());
        std::map<std::string, std::string> values = {{"`name`", name}};
        int value = first;
        for (const char* key : {"VisSimb", "ColSimb", "ColNome", "ColDesc", "ColQuot", "TipoSimb", "LwSimb",
                                "LwNameSimb", "LwDescSimb", "LwQuotSimb"})
            values["`" + std::string(key) + "`"] = std::to_string(value++);
        entries += Bytes().Text(AsThePageSays(rows, 1400, values)).Get();
    }
    const std::string data =
        AsThePageSays(TableBehind("Content of form 1"), 741, {{"normal entries", "2"}}, "", {entries});
    const std::string full = AsThePageSays(TableBehind("Content of form 2"), 742,
                                           {{"name of the list", "Entit\xC3\xA0 GPS"},
                                            {"type of the list", "2"},
                                            {"`VisList`", "1"},
                                            {"normal entries", "2"}},
                                           "", {entries, ""});
    const std::vector<Row> envelope = TableBehind("in the same envelope");
    ofpstream before(741), from(742);
    list.SalvaInFile(before, 741, nullptr);
    list.SalvaInFile(from, 742, nullptr);
    const auto whole = [&envelope](const char* form, const std::string& content) {
        return AsThePageSays(
            envelope, 1400,
            {{"form: 1 or 2", form}, {"length of the content", std::to_string(content.size())}}, "",
            {content});
    };
    EXPECT_EQ(Dump(before.GetBytes()), Dump(whole("1", data)));
    EXPECT_EQ(Dump(from.GetBytes()), Dump(whole("2", full)));
}

TEST(OptionsPage, PostProcessingOptions) {
    const Settings settings;
    const std::vector<Row> main = TableBehind("The record, 124 bytes");
    const std::vector<Row> file = TableBehind("\nA file:");
    COpzPostProc opz;
    opz.vecPtBaseLineDett.resize(1);
    opz.vecPtBaseLineBase.resize(2);
    COpzPostProc::TDatiStaticPtBaseLine& filled = opz.vecPtBaseLineBase[1];
    filled.bFlag1 = false;
    filled.bFlag3 = false;
    filled.bFlag4 = true;
    filled.sText1 = "one";
    filled.sFile = "file";
    filled.nIdx2 = 2;
    filled.nIdx3 = 3;
    filled.sText2 = "two";
    filled.bAltValue = true;
    filled.dValue = 4.5;
    filled.dA1 = 11;
    filled.dA2 = 12;
    filled.dA3 = 13;
    filled.dB1 = 21;
    filled.dB2 = 22;
    filled.dB3 = 23;
    const std::map<std::string, std::string> values = {
        {"`bFlag1`", "0"},    {"`bFlag3`", "0"},   {"`bFlag4`", "1"},   {"`sText1`", "one"},
        {"`sFile`", "file"},  {"`nIdx2`", "2"},    {"`nIdx3`", "3"},    {"`sText2`", "two"},
        {"`bAltValue`", "1"}, {"`dValue`", "4.5"}, {"`second`", "4.5"}, {"`dA1`", "11"},
        {"`dA2`", "12"},      {"`dA3`", "13"},     {"`dB1`", "21"},     {"`dB2`", "22"},
        {"`dB3`", "23"}};
    for (const short version :
         {short{743}, short{1002}, short{1003}, short{1299}, short{1300}, short{1400}}) {
        ofpstream out(version);
        opz.SalvaInFile(out);
        const std::string fresh = AsThePageSays(file, version, {});
        EXPECT_EQ(Dump(out.GetBytes()),
                  Dump(AsThePageSays(main, version, {{"rover files", "1"}, {"base files", "2"}}, "default",
                                     {fresh, fresh + AsThePageSays(file, version, values)})))
            << version;
    }
}

/// The settings file that holds the page's keys with their defaults.
std::string Defaults(const std::string& section, const std::vector<Row>& rows, const std::string& head,
                     const std::string& column) {
    std::string text = "[" + section + "]\n";
    for (const Row& row : rows) {
        const std::string key = row.at(head), value = row.at(column);
        std::string plain = value.substr(0, value.find_first_of(";,"));
        if (plain.starts_with('`')) plain = plain.substr(1, plain.size() - 2);
        text += key.substr(1, key.size() - 2) + " = " + (plain.empty() ? "\"\"" : plain) + "\n";
    }
    return text;
}

TEST(OptionsPage, SettingsAndTheirDefaults) {
    {
        const Settings settings;
        COpzLibGps().SetInIni();
        EXPECT_EQ(settings.Text(), Defaults("OPZ-GPS-VAR", TableBehind("\n## Field-book options"),
                                            "key of `OPZ-GPS-VAR`", "default"));
    }
    {
        const Settings settings;
        COpzPostProc().SetInIni();
        EXPECT_EQ(settings.Text(), Defaults("OPZ-POST-PROC", TableBehind("\n## Post-processing options"),
                                            "key of `OPZ-POST-PROC`", "default"));
    }
    const Settings settings;
    COpzListDisGps(nullptr).SetInIni();
    std::vector<Row> list, entries;
    for (const Row& row : TableBehind("| `DIS-GPS-Basi GPS` | bases |\n\n"))
        (row.at("section") == "list" ? list : entries).push_back(row);
    EXPECT_EQ(settings.Text(), Defaults("DIS-GPS", list, "key", "default of points") + "\n" +
                                   Defaults("DIS-GPS-Punti GPS", entries, "key", "default of points") + "\n" +
                                   Defaults("DIS-GPS-Basi GPS", entries, "key", "default of bases"));
}

}  // namespace
