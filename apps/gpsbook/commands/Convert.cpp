#include "apps/gpsbook/commands/Convert.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/LogImport.h"
#include "apps/gpsbook/book/LogInput.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/writers/RowWriter.h"
#include "gps/coords/FCalcCoord.h"
#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"

namespace gpsbook {

namespace {

struct Arguments {
    std::vector<std::string> logs;
    std::string crs;
    std::string output = "-";
    std::string format;
    std::string heights = "antenna";
    std::string antenna = "0.000";
    std::string minQuality = "any";
    std::string every;
    std::string from, to;
    std::string prefix = "P";
    std::string start = "1";
    std::string code;
    std::string group;
    bool overwrite = false;
    bool json = false;
    bool verbose = false;
};

[[noreturn]] void Usage(const std::string& option, const std::string& problem) {
    throw CommandError(exitUsage, option + ": " + problem);
}

// Names and codes are kept in line-based records: what would break one is refused where it is entered.
bool BreaksRecords(const std::string& text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return c == ';' || static_cast<unsigned char>(c) < 0x20; });
}

void CheckText(const std::string& option, const std::string& text) {
    if (BreaksRecords(text))
        Usage(option, "a name or code cannot hold ';', line breaks or control characters; choose another");
}

double Metres(const std::string& option, const std::string& text) {
    double value = 0;
    if (!ParseNumber(text, value)) Usage(option, "\"" + text + "\" is not a number; write metres like 2.000");
    if (value < 0 || value > 100)
        Usage(option, "\"" + text + "\" is not between 0 and 100 metres; check the unit");
    return value;
}

// Decimal always: a leading zero means nothing.
long StartNumber(const std::string& text) {
    constexpr long most = 999'999'999;
    long value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < 0 || value > most)
        Usage("--start",
              fmt::format("\"{}\" is no number of a point; give a whole number from 0 to {}", text, most));
    return value;
}

FillOptions FillFrom(const Arguments& a) {
    FillOptions fill;
    if (a.heights != "antenna" && a.heights != "marker")
        Usage("--heights", "\"" + a.heights + "\" is unknown; give antenna or marker");
    fill.heights = a.heights == "marker" ? HeightsOf::marker : HeightsOf::antenna;
    fill.antenna = Metres("--antenna", a.antenna);
    CheckText("--prefix", a.prefix);
    CheckText("--code", a.code);
    CheckText("--group", a.group);
    StartNumber(a.start);
    fill.prefix = a.prefix;
    fill.code = a.code;
    return fill;
}

std::optional<TimeBound> Bound(const std::string& option, const std::string& text) {
    if (text.empty()) return std::nullopt;
    const auto bound = ParseTimeBound(text);
    if (!bound)
        Usage(option, "\"" + text +
                          "\" is not a time; write it like 2024-05-01T08:00:00Z, or 08:00:00 for every day");
    return bound;
}

EpochFilterOptions FilterFrom(const Arguments& a) {
    EpochFilterOptions filter;
    const auto quality = ParseMinQuality(a.minQuality);
    if (!quality)
        Usage("--min-quality", "\"" + a.minQuality +
                                   "\" is unknown; give fix, float, dgps, single, any or a code of the file");
    filter.minQuality = *quality;
    filter.from = Bound("--from", a.from);
    filter.to = Bound("--to", a.to);
    if (!a.every.empty() && (!ParseNumber(a.every, filter.every) || filter.every <= 0 || filter.every > 1e6))
        Usage("--every", "\"" + a.every + "\" is not a number of seconds above 0");
    return filter;
}

TableFormat NamedFormat(const Arguments& a) {
    if (!a.format.empty()) {
        if (const auto format = FormatFromOption(a.format)) return *format;
        std::string known;
        for (const TableFormatInfo& info : TableFormats())
            known += (known.empty() ? "" : ", ") + std::string(info.option);
        Usage("--format", "\"" + a.format + "\" is unknown; give one of " + known);
    }
    if (a.output == "-") return TableFormat::csv;
    if (const auto format = FormatFromName(a.output)) return *format;
    Usage("--output", "\"" + a.output + "\": the ending does not tell the format; give one with -f");
}

TableFormat FormatFrom(const Arguments& a) {
    const TableFormat format = NamedFormat(a);
    const TableFormatInfo& info = InfoOf(format);
    if (a.output == "-" && !info.toStandardOutput)
        Usage("--format", std::string(info.title) + " cannot go to standard output; give a file with -o");
    return format;
}

CProiezPla ProjectionFrom(const std::string& crs) {
    CProiezPla projection;
    std::string why;
    if (!projection.SetDefinizione(crs, why)) Usage("--crs", why);
    return projection;
}

std::string GroupName(const Arguments& a, std::size_t i) {
    if (a.group.empty()) {
        // Logs of the same name in several folders: -2, -3, ... from the second on.
        const std::string name = GroupNameOf(a.logs[i]);
        const auto before = std::count_if(a.logs.begin(), a.logs.begin() + static_cast<std::ptrdiff_t>(i),
                                          [&](const std::string& log) { return GroupNameOf(log) == name; });
        return before == 0 ? name : fmt::format("{}-{}", name, before + 1);
    }
    return a.logs.size() == 1 ? a.group : fmt::format("{}-{}", a.group, i + 1);
}

void CheckInputs(const Arguments& a) {
    if (std::count(a.logs.begin(), a.logs.end(), "-") > 1)
        Usage("LOG", "standard input (-) can be read only once");
    for (std::size_t i = 0; i < a.logs.size(); ++i) {
        const std::string& log = a.logs[i];
        LogInput::Check(log);
        if (BreaksRecords(GroupName(a, i)))
            Usage("LOG", "\"" + log +
                             "\" gives its group a name with ';' or a control character; name the group "
                             "with --group");
        std::error_code differs;
        if (log != "-" && a.output != "-" && std::filesystem::equivalent(log, a.output, differs))
            Usage("--output", "\"" + a.output +
                                  "\" is one of the logs, and a log is never replaced; give "
                                  "another name");
    }
}

// One group a file; a file without points leaves none behind.
void ImportAll(const Arguments& a, const FillOptions& fill, const EpochFilterOptions& filter, CLibGps& book,
               ConvertResult& result) {
    long next = StartNumber(a.start);
    for (std::size_t i = 0; i < a.logs.size(); ++i) {
        const std::string& log = a.logs[i];
        const int g = book.GetGrpArSize();
        CGrpGps* group = book.AddGrp(false);
        group->SetNome(GroupName(a, i));
        group->SetNomeGrp(group->GetNome());
        CConvCoord* conversion = group->GetConvCoord();
        std::string why;
        conversion->GetConvLocal()->SetDefinizione(a.crs, why);
        conversion->SetImp(CConvCoord::impPronta, 1);
        group->SetCodeElab(1);  // bit 0: the conversion counts as valid

        LineWatcher watcher;
        if (a.verbose)
            watcher = [&log](std::int64_t line, std::string_view reason, std::string_view detail) {
                std::cerr << fmt::format("{}:{}: {}{}{}\n", log, line, reason, detail.empty() ? "" : ": ",
                                         detail);
            };
        LogReport report = ImportLog(log, book, g, fill, filter, next, !a.json && !a.verbose, watcher);
        report.group = group->GetNome();
        if (report.points == 0) book.DelGrpAt(g);
        result.logs.push_back(std::move(report));
    }
}

void RefuseEmpty(const ConvertResult& result) {
    if (result.Points() > 0) return;
    std::string message = "no usable epoch:";
    for (const LogReport& log : result.logs) {
        std::string reasons = ReasonLines(log);
        if (reasons.empty())
            reasons = log.header.format.empty()
                          ? "  no position found: neither an NMEA 0183 nor an RTKLIB .pos log\n"
                          : "  no position found in it\n";
        message += "\n" + log.file + ":\n" + reasons.substr(0, reasons.size() - 1);
    }
    throw CommandError(exitFailure, message);
}

// A system of another planet, say: the table would be one without plane coordinates.
void RefuseUnreached(const ConvertResult& result) {
    if (result.extent.withoutPlane == result.Points())
        Usage("--crs", "no point has plane coordinates in '" + result.crs +
                           "'; give the system of the place where they were measured");
}

PointRow RowOf(const CGrpGps& group, const CPunGps& p) {
    PointRow row;
    row.group = group.GetNome();
    row.name = p.GetNome();
    row.code = p.GetCode();
    row.year = p.GetYear();
    row.month = p.GetMonth();
    row.day = p.GetDay();
    row.todMs = p.GetTod();
    row.lat = p.GetLat();
    row.lon = p.GetLong();
    row.h = p.GetElev();
    row.antenna = p.GetAltAnt();
    row.east = p.GetCoordX();
    row.north = p.GetCoordY();
    row.height = p.GetCoordZ();
    row.quality = p.GetQua();
    row.gps = p.GetNuGpsUsed();
    row.glonass = p.GetNuGloUsed();
    row.pdop = p.GetPdop();
    row.hrms = p.GetHposRms();
    row.vrms = p.GetVposRms();
    return row;
}

std::int64_t WriteRows(const CLibGps& book, RowWriter& writer) {
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            CheckInterrupt();
            writer.Write(RowOf(*book.GetGrpAt(g), *book.GetPunAt(g, p)));
        }
    writer.Close();
    return writer.SkippedRows();
}

void PrintSummary(const Arguments& a, const ConvertResult& result) {
    if (a.output == "-") {  // the table is on standard output already
        std::cerr << SummaryText(result);
        return;
    }
    if (a.json)
        std::cout << SummaryJson(result).dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
                  << '\n';
    else
        std::cout << SummaryText(result);
    if (!std::cout.flush())
        throw WriteError("standard output", "the summary could not be written, " + a.output +
                                                " is complete; see whether its "
                                                "reader has gone");
}

void Run(const Arguments& a) {
    // All that can be wrong is found before anything is read or written.
    const FillOptions fill = FillFrom(a);
    const EpochFilterOptions filter = FilterFrom(a);
    const TableFormat format = FormatFrom(a);
    if (a.json && a.output == "-")
        Usage("--json", "would be mixed with the table on standard output; give a file with -o");
    const CProiezPla projection = ProjectionFrom(a.crs);  // kept: the groups share what it costs to make
    CheckInputs(a);
    const auto writer =
        MakeRowWriter(format, {a.output, a.overwrite, nullptr},
                      {projection.IsDefinizioneText() ? projection.GetWkt() : projection.GetDefinizione()});

    CLibMap map;
    CLibGps book(nullptr, nullptr, nullptr, &map, 0);
    ConvertResult result;
    result.crs = projection.GetDefinizione();
    result.fill = fill;
    result.output = a.output;
    result.format = InfoOf(format).title;
    ImportAll(a, fill, filter, book, result);
    RefuseEmpty(result);
    FCalcCoordLibGps(&book, &book);
    result.extent = ExtentOf(book);
    RefuseUnreached(result);
    result.skippedRows = WriteRows(book, *writer);
    PrintSummary(a, result);
}

// An empty value is a slip, such as a variable of a script that is not set; taken for "not given" it would
// switch a filter off without a word.
std::string EmptyProblem(const std::string& text) { return text.empty() ? "the value is empty" : ""; }

void AddOptions(CLI::App& c, Arguments& a) {
    const CLI::Validator filled(EmptyProblem, "");
    c.add_option("LOG", a.logs, "Logs: NMEA 0183 or RTKLIB .pos, told apart by content; - for standard input")
        ->required();
    c.add_option("--crs", a.crs, "Plane system: EPSG:code, a PROJ string or WKT")
        ->required()
        ->type_name("CRS");
    c.add_option("--antenna", a.antenna, "Antenna height above the ground mark in metres [0.000]")
        ->type_name("M");
    c.add_option("--heights", a.heights,
                 "What the heights of the log are those of: antenna, marker [antenna]")
        ->type_name("OF");
    c.add_option("-o,--output", a.output, "File to write, - for standard output [-]")->type_name("FILE");
    c.add_option("-f,--format", a.format,
                 "Format: csv, geojson, gpkg, kml, gpx, dxf, fgb, shp [by the file's ending, else csv]")
        ->type_name("FORMAT")
        ->check(filled);
    c.add_flag("--overwrite", a.overwrite, "Replace the file when it exists");
    c.add_option("--min-quality", a.minQuality,
                 "Lowest quality taken: fix, float, dgps, single, any, or a code of the file [any]")
        ->type_name("QUALITY");
    c.add_option("--every", a.every, "Take epochs at least so many seconds apart")
        ->type_name("SECONDS")
        ->check(filled);
    c.add_option("--from", a.from, "Take epochs from this time on: RFC 3339, or UTC time of day")
        ->type_name("TIME")
        ->check(filled);
    c.add_option("--to", a.to, "Take epochs up to this time")->type_name("TIME")->check(filled);
    c.add_option("--prefix", a.prefix, "Names of points begin with it [P]")->type_name("TEXT");
    c.add_option("--start", a.start, "Number of the first point [1]")->type_name("N");
    c.add_option("--code", a.code, "Code of the points")->type_name("TEXT");
    c.add_option("--group", a.group,
                 "Name of the group; with several logs -1, -2, ... follow [the file's name]")
        ->type_name("NAME")
        ->check(filled);
    c.add_flag("--json", a.json, "Print the summary as JSON");
    c.add_flag("--verbose", a.verbose, "Name every line that became no point");
}

}  // namespace

void AddConvertCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("convert", "Convert receiver logs to points with plane coordinates");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] {
        try {
            Run(*arguments);
            exitCode = exitDone;
        } catch (const CommandError& e) {
            std::cerr << "gpsbook convert: " << e.what() << '\n';
            exitCode = e.Code();
        } catch (const WriteError& e) {
            std::cerr << "gpsbook convert: " << e.what() << '\n';
            exitCode = exitFailure;
        }
    });
}

}  // namespace gpsbook
