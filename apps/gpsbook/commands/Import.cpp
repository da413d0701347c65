#include "apps/gpsbook/commands/Import.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/BookSettings.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/LogImport.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/LogArguments.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "gps/coords/FCalcCoord.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book;
    LogArguments log;
    std::string crs;
    bool json = false;
};

/// What was imported, for the summary.
struct Imported {
    std::vector<LogReport> logs;
    std::vector<int> groups;  // positions of those that got points, each once
    std::vector<int> first;   // their first new point
    Extent extent;
    std::string crs;  // of new groups; empty: the groups were there
    FillOptions fill;

    std::int64_t Points() const {
        std::int64_t n = 0;
        for (const LogReport& log : logs) n += log.points;
        return n;
    }
};

/// What is not given and the book knows.
LogDefaults DefaultsOf(gpsproject::Project& project) {
    LogDefaults defaults;
    if (const std::string antenna = SettingOf(project, kSettingAntenna); !antenna.empty())
        defaults.antenna = antenna;
    if (const std::string heights = SettingOf(project, kSettingHeights); !heights.empty())
        defaults.heights = heights;
    return defaults;
}

// The number behind the prefix, all digits; -1 for another name.
long NumberBehind(const std::string& name, const std::string& prefix) {
    if (!name.starts_with(prefix)) return -1;
    const char* const begin = name.data() + prefix.size();
    const char* const end = name.data() + name.size();
    long number = -1;
    const auto [stop, error] = std::from_chars(begin, end, number);
    return error == std::errc{} && stop == end && *begin != '-' ? number : -1;
}

// Numbers go on where the book ends, so that no name is there twice.
long FirstFreeNumber(const CLibGps& book, const std::string& prefix) {
    long last = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        for (int p = 0; p < book.GetPunArSize(g); ++p)
            last = std::max(last, NumberBehind(book.GetPunAt(g, p)->GetNome(), prefix));
    return last + 1;
}

bool HasGroup(const CLibGps& book, const std::string& name) {
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        if (NameOf(*book.GetGrpAt(g)) == name) return true;
    return false;
}

// The group that --group names when it is there already; -1: new groups are made.
int ExistingGroup(const CLibGps& book, const std::string& group) {
    if (group.empty()) return -1;
    if (!group.starts_with('#') && !HasGroup(book, group)) return -1;
    return FindGroup(book, group);
}

// Of a name that the book has already the new group gets -2, -3, ...; of one that was asked for it is told.
std::string NewName(const Arguments& a, const CLibGps& book, std::size_t log) {
    const std::string wanted = GroupName(a.log, log);
    if (!HasGroup(book, wanted)) return wanted;
    if (!a.log.group.empty())
        Usage("--group",
              "\"" + wanted + "\" exists already; import into it by its own name, or choose another");
    std::string name;
    for (int n = 2; name.empty() || HasGroup(book, name); ++n) name = fmt::format("{}-{}", wanted, n);
    return name;
}

void ImportAll(const Arguments& a, CLibGps& book, int existing, const EpochFilterOptions& filter,
               Imported& done) {
    long next = a.log.start.empty() ? FirstFreeNumber(book, a.log.prefix) : StartFrom(a.log.start);
    for (std::size_t i = 0; i < a.log.logs.size(); ++i) {
        const std::string& log = a.log.logs[i];
        const int g = existing >= 0 ? existing : book.GetGrpArSize();
        if (existing < 0) AddGroup(book, NewName(a, book, i), done.crs);
        const int before = book.GetPunArSize(g);
        LogReport report = ImportLog(log, book, g, done.fill, filter, next, !a.json && !a.log.verbose,
                                     WatcherFor(a.log, log));
        report.group = NameOf(*book.GetGrpAt(g));
        if (report.points == 0 && existing < 0) {
            book.DelGrpAt(g);
        } else if (report.points > 0 && (done.groups.empty() || done.groups.back() != g)) {
            done.groups.push_back(g);
            done.first.push_back(before);
        }
        done.logs.push_back(std::move(report));
    }
}

// Points that were there are not touched: what is computed of them stays as it was.
void ComputePlane(CLibGps& book, bool newGroups, Imported& done) {
    for (std::size_t i = 0; i < done.groups.size(); ++i) {
        const int g = done.groups[i];
        if (newGroups) FCalcCoordGrpGps(&book, g);
        for (int p = done.first[i]; p < book.GetPunArSize(g); ++p) {
            CPunGps* point = book.GetPunAt(g, p);
            if (!newGroups) book.CalcolaCoordCart(point, g);
            done.extent.Add(*point);
        }
    }
    if (newGroups && done.extent.withoutPlane == done.Points())
        Usage("--crs", "no point has plane coordinates in '" + done.crs +
                           "'; give the system of the place where they were measured");
}

std::string Text(const std::string& file, const CLibGps& book, const Imported& done) {
    std::string out;
    for (const LogReport& log : done.logs) AppendLog(out, log, done.fill);
    const auto add = std::back_inserter(out);
    fmt::format_to(add, "heights in the log: of the {}; antenna height {:.4f} m\n",
                   done.fill.heights == HeightsOf::marker ? "marker" : "antenna", done.fill.antenna);
    AppendExtent(out, done.extent, done.crs.empty() ? "system of the group" : done.crs);
    std::int64_t all = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g) all += book.GetPunArSize(g);
    fmt::format_to(add, "{}: {} added, {} in {} now\n", file, Counted(done.Points(), "point"),
                   Counted(all, "point"), Counted(book.GetGrpArSize(), "group"));
    return out;
}

Json Summary(const std::string& file, const CLibGps& book, bool newGroups, const Imported& done) {
    Json logs = Json::array(), groups = Json::array();
    for (const LogReport& log : done.logs) logs.push_back(LogJson(log));
    for (std::size_t i = 0; i < done.groups.size(); ++i) {
        const int g = done.groups[i];
        groups.push_back({{"index", g},
                          {"name", NameOf(*book.GetGrpAt(g))},
                          {"new", newGroups},
                          {"added", book.GetPunArSize(g) - done.first[i]}});
    }
    return {{"book", file},
            {"points", done.Points()},
            {"groups", groups},
            {"files", logs},
            {"crs", done.crs.empty() ? Json(nullptr) : Json(done.crs)},
            {"heights", done.fill.heights == HeightsOf::marker ? "marker" : "antenna"},
            {"antenna", done.fill.antenna},
            {"extent", ExtentJson(done.extent)},
            {"without_plane", done.extent.withoutPlane}};
}

std::string SystemOfNewGroups(const Arguments& a, gpsproject::Project& project) {
    const std::string crs = a.crs.empty() ? SettingOf(project, kSettingCrs) : a.crs;
    if (crs.empty())
        Usage("--crs",
              "the book has no plane system for new groups; give one, or a group that exists with "
              "--group");
    return ProjectionFrom(crs).GetDefinizione();
}

void Run(const Arguments& a) {
    const EpochFilterOptions filter = FilterFrom(a.log);
    FillFrom(a.log, {});
    CheckLogs(a.log, "");
    if (!a.crs.empty()) ProjectionFrom(a.crs);
    for (const std::string& log : a.log.logs) {
        std::error_code differs;
        if (log != "-" && std::filesystem::equivalent(log, BookFile(a.book), differs))
            Usage("LOG", "\"" + log + "\" is the field book itself; give receiver logs");
    }

    const auto project = OpenToWrite(a.book);
    CLibGps& book = project->GetBook();
    const int existing = ExistingGroup(book, a.log.group);
    Imported done;
    done.fill = FillFrom(a.log, DefaultsOf(*project));
    if (existing < 0)
        done.crs = SystemOfNewGroups(a, *project);
    else if (!a.crs.empty())
        Usage("--crs", "the group \"" + NameOf(*book.GetGrpAt(existing)) +
                           "\" exists and has its system; leave the option out");
    ImportAll(a, book, existing, filter, done);
    if (done.Points() == 0) RefuseWithoutPoints(done.logs);
    ComputePlane(book, existing < 0, done);
    SaveBook(*project);
    const std::string otherwise = "the summary could not be written, " + project->GetPath() + " is saved";
    if (a.json)
        PrintJson(Summary(project->GetPath(), book, existing < 0, done), otherwise);
    else
        PrintText(Text(project->GetPath(), book, done), otherwise);
}

void AddOptions(CLI::App& c, Arguments& a) {
    c.add_option("BOOK", a.book, "The field book")->required();
    AddLogOptions(c, a.log,
                  {"that of the book, else 0.000", "that of the book, else antenna", "the next that is free",
                   "the file's name"});
    c.add_option("--crs", a.crs,
                 "Plane system of new groups: EPSG:code, a PROJ string or WKT [that of the book]")
        ->type_name("CRS")
        ->check(Filled());
    c.add_flag("--json", a.json, "Print the summary as JSON");
    c.footer(
        "Examples:\n"
        "  gpsbook import site.gpsbook monday.nmea tuesday.pos --antenna 2.000\n"
        "  gpsbook import site.gpsbook more.nmea --group monday --min-quality fix\n"
        "  gpsbook simulate --base 45.65,13.76,60 | gpsbook import site.gpsbook - --group trial");
}

}  // namespace

void AddImportCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("import", "Put receiver logs into a field book");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = RunCommand("import", [&] { Run(*arguments); }); });
}

}  // namespace gpsbook
