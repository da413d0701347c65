#include "apps/gpsbook/commands/Export.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/BookRows.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/LogArguments.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TableArguments.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book;
    std::vector<std::string> groups;
    TableArguments table;
    bool json = false;
};

struct Exported {
    std::int64_t points = 0;
    std::int64_t withoutPlane = 0;
    std::int64_t skipped = 0;  // that the format could not hold
    int groups = 0;
    std::string format;
};

std::vector<int> GroupsOf(const Arguments& a, const CLibGps& book) {
    if (!a.groups.empty()) return FindGroups(book, a.groups);
    std::vector<int> all(static_cast<std::size_t>(book.GetGrpArSize()));
    for (std::size_t g = 0; g < all.size(); ++g) all[g] = static_cast<int>(g);
    return all;
}

// Formats in which a point stands at its plane coordinates have one system for all of them.
bool StandsInPlane(TableFormat format) {
    return format == TableFormat::geoPackage || format == TableFormat::dxf ||
           format == TableFormat::flatGeobuf || format == TableFormat::shapefile;
}

PlaneSystem SystemFor(const CLibGps& book, const std::vector<int>& groups, TableFormat format) {
    int first = -1;
    for (const int g : groups) {
        if (book.GetPunArSize(g) == 0) continue;
        if (first < 0) first = g;
        if (TableSystem(*book.GetGrpAt(g)) == TableSystem(*book.GetGrpAt(first))) continue;
        if (StandsInPlane(format))
            Usage(
                "GROUP",
                fmt::format("\"{}\" and \"{}\" have different plane systems, and {} holds one; name "
                            "the groups of one system",
                            NameOf(*book.GetGrpAt(first)), NameOf(*book.GetGrpAt(g)), InfoOf(format).title));
        return {};
    }
    return first < 0 ? PlaneSystem{} : PlaneSystem{TableSystem(*book.GetGrpAt(first))};
}

void Count(const CLibGps& book, int g, Exported& done) {
    const int points = book.GetPunArSize(g);
    done.points += points;
    for (int p = 0; p < points; ++p)
        if (!book.GetPunAt(g, p)->EstValidoXY()) ++done.withoutPlane;
    ++done.groups;
}

std::string Text(const Arguments& a, const Exported& done) {
    std::string out;
    const auto add = std::back_inserter(out);
    if (done.withoutPlane > 0)
        fmt::format_to(add, "warning: without plane coordinates: {}; gpsbook compute makes them\n",
                       Counted(done.withoutPlane, "point"));
    if (done.skipped > 0)
        fmt::format_to(add, "warning: not in the file, since {} holds no point without position: {}\n",
                       done.format, Counted(done.skipped, "point"));
    if (a.table.output != "-")
        fmt::format_to(add, "{}: {}, {} of {}\n", a.table.output, done.format,
                       Counted(done.points - done.skipped, "point"), Counted(done.groups, "group"));
    return out;
}

void Tell(const Arguments& a, const std::string& file, const Exported& done) {
    const std::string otherwise = "the summary could not be written, " + a.table.output + " is complete";
    if (a.table.output == "-")
        std::cerr << Text(a, done);
    else if (a.json)
        PrintJson({{"book", file},
                   {"output", a.table.output},
                   {"format", done.format},
                   {"groups", done.groups},
                   {"points", done.points},
                   {"without_plane", done.withoutPlane},
                   {"skipped", done.skipped}},
                  otherwise);
    else
        PrintText(Text(a, done), otherwise);
}

void Run(const Arguments& a) {
    const TableFormat format = FormatFrom(a.table);
    if (a.json && a.table.output == "-")
        Usage("--json", "would be mixed with the table on standard output; give a file with -o");
    if (a.table.output != "-" && IsSameFile(a.table.output, BookFile(a.book)))
        Usage("--output", "\"" + a.table.output +
                              "\" is the field book itself, which no table replaces; give another name");
    const auto project = OpenToRead(a.book);
    const CLibGps& book = project->GetBook();
    const std::vector<int> groups = GroupsOf(a, book);
    const auto writer =
        MakeRowWriter(format, {a.table.output, a.table.overwrite, nullptr}, SystemFor(book, groups, format));
    Exported done;
    done.format = InfoOf(format).title;
    for (const int g : groups) {
        WriteRows(book, g, *writer);
        Count(book, g, done);
    }
    writer->Close();
    done.skipped = writer->SkippedRows();
    Tell(a, project->GetPath(), done);
    EndReading(*project);
}

void AddOptions(CLI::App& c, Arguments& a) {
    c.add_option("BOOK", a.book, "The field book")->required()->check(Filled());
    c.add_option("GROUP", a.groups, "Groups, by name or position (#0); none: all");
    AddTableOptions(c, a.table);
    c.add_flag("--json", a.json, "Print the summary as JSON");
    c.footer(
        "Examples:\n"
        "  gpsbook export site.gpsbook > site.csv\n"
        "  gpsbook export site.gpsbook monday '#3' -o some.gpkg\n"
        "  gpsbook export site.gpsbook -o site.dxf --overwrite");
}

}  // namespace

void AddExportCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("export", "Write the points of a field book as a table");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = RunCommand("export", [&] { Run(*arguments); }); });
}

}  // namespace gpsbook
