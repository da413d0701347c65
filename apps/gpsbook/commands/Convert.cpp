#include "apps/gpsbook/commands/Convert.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/BookRows.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/LogImport.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/LogArguments.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TableArguments.h"
#include "gps/coords/FCalcCoord.h"
#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"

namespace gpsbook {

namespace {

struct Arguments {
    LogArguments log;
    TableArguments table;
    std::string crs;
    bool json = false;
};

const LogDefaults kDefaults;

// One group a file; a file without points leaves none behind.
void ImportAll(const Arguments& a, const FillOptions& fill, const EpochFilterOptions& filter, CLibGps& book,
               ConvertResult& result) {
    long next = StartFrom(a.log.start.empty() ? kDefaults.start : a.log.start);
    for (std::size_t i = 0; i < a.log.logs.size(); ++i) {
        const std::string& log = a.log.logs[i];
        const int g = book.GetGrpArSize();
        const CGrpGps& group = AddGroup(book, GroupName(a.log, i), a.crs);
        LogReport report =
            ImportLog(log, book, g, fill, filter, next, !a.json && !a.log.verbose, WatcherFor(a.log, log));
        report.group = group.GetNome();
        if (report.points == 0) book.DelGrpAt(g);
        result.logs.push_back(std::move(report));
    }
}

// A system of another planet, say: the table would be one without plane coordinates.
void RefuseUnreached(const ConvertResult& result) {
    if (result.extent.withoutPlane == result.Points())
        Usage("--crs", "no point has plane coordinates in '" + result.crs +
                           "'; give the system of the place where they were measured");
}

void PrintSummary(const Arguments& a, const ConvertResult& result) {
    const std::string otherwise = "the summary could not be written, " + a.table.output + " is complete";
    if (a.table.output == "-")  // the table is on standard output already
        std::cerr << SummaryText(result);
    else if (a.json)
        PrintJson(SummaryJson(result), otherwise);
    else
        PrintText(SummaryText(result), otherwise);
}

void Run(const Arguments& a) {
    // All that can be wrong is found before anything is read or written.
    const FillOptions fill = FillFrom(a.log, kDefaults);
    const EpochFilterOptions filter = FilterFrom(a.log);
    const TableFormat format = FormatFrom(a.table);
    const std::string& output = a.table.output;
    if (a.json && output == "-")
        Usage("--json", "would be mixed with the table on standard output; give a file with -o");
    const CProiezPla projection = ProjectionFrom(a.crs);  // kept: the groups share what it costs to make
    CheckLogs(a.log, output);
    const auto writer =
        MakeRowWriter(format, {output, a.table.overwrite, nullptr}, {TableSystem(projection)});

    CLibMap map;
    CLibGps book(nullptr, nullptr, nullptr, &map, 0);
    ConvertResult result;
    result.crs = projection.GetDefinizione();
    result.fill = fill;
    result.output = output;
    result.format = InfoOf(format).title;
    ImportAll(a, fill, filter, book, result);
    if (result.Points() == 0) RefuseWithoutPoints(result.logs);
    FCalcCoordLibGps(&book, &book);
    result.extent = ExtentOf(book);
    RefuseUnreached(result);
    for (int g = 0; g < book.GetGrpArSize(); ++g) WriteRows(book, g, *writer);
    writer->Close();
    result.skippedRows = writer->SkippedRows();
    PrintSummary(a, result);
}

void AddOptions(CLI::App& c, Arguments& a) {
    c.add_option("--crs", a.crs, "Plane system: EPSG:code, a PROJ string, WKT or a whole name")
        ->required()
        ->type_name("CRS");
    AddLogOptions(c, a.log, kDefaults);
    AddTableOptions(c, a.table);
    c.add_flag("--json", a.json, "Print the summary as JSON");
    c.footer(
        "Examples:\n"
        "  gpsbook convert walk.nmea --crs EPSG:32633 > walk.csv\n"
        "  gpsbook convert mon.nmea tue.pos --crs EPSG:32633 --antenna 2.000 -o week.gpkg\n"
        "  gpsbook convert walk.nmea --crs EPSG:32633 --min-quality fix --every 5 -o walk.dxf");
}

}  // namespace

void AddConvertCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("convert", "Convert receiver logs to points with plane coordinates");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = RunCommand("convert", [&] { Run(*arguments); }); });
}

}  // namespace gpsbook
