#include "apps/gpsbook/commands/Import.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/KnownFixes.h"
#include "apps/gpsbook/book/LogImport.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/ImportLive.h"
#include "apps/gpsbook/commands/ImportSummary.h"
#include "apps/gpsbook/commands/ImportTarget.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "gps/coords/FCalcCoord.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

// Of a name that the book has already the new group gets -2, -3, ...; of one that was asked for it is told.
std::string NewName(const ImportArguments& a, const CLibGps& book, std::size_t log) {
    const std::string wanted = GroupName(a.log, log);
    if (!HasGroup(book, wanted)) return wanted;
    if (!a.log.group.empty())
        Usage("--group",
              "\"" + wanted + "\" exists already; import into it by its own name, or choose another");
    std::string name;
    for (int n = 2; name.empty() || HasGroup(book, name); ++n) name = fmt::format("{}-{}", wanted, n);
    return name;
}

void ImportAll(const ImportArguments& a, CLibGps& book, int existing, const EpochFilterOptions& filter,
               Imported& done) {
    KnownFixes known;
    for (int g = 0; g < book.GetGrpArSize(); ++g) known.Add(book, g, 0);
    FillOptions fill = done.fill;
    fill.known = &known;
    fill.skipKnown = a.skipExisting;
    long next = a.log.start.empty() ? FirstFreeNumber(book, a.log.prefix) : StartFrom(a.log.start);
    for (std::size_t i = 0; i < a.log.logs.size(); ++i) {
        const std::string& log = a.log.logs[i];
        const int g = existing >= 0 ? existing : book.GetGrpArSize();
        if (existing < 0) AddGroup(book, NewName(a, book, i), done.crs);
        const int before = book.GetPunArSize(g);
        LogReport report =
            ImportLog(log, book, g, fill, filter, next, !a.json && !a.log.verbose, WatcherFor(a.log, log));
        report.group = NameOf(*book.GetGrpAt(g));
        if (report.points == 0 && existing < 0) {
            book.DelGrpAt(g);
        } else if (report.points > 0 && (done.groups.empty() || done.groups.back() != g)) {
            done.groups.push_back(g);
            done.first.push_back(before);
        }
        if (report.points > 0) known.Add(book, g, before);  // the same log may be named twice
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

void Note(gpsproject::BookEdits& edits, const Imported& done) {
    for (std::size_t i = 0; i < done.groups.size(); ++i) {
        const int g = done.groups[i];
        edits.GroupChanged(g);  // at the end it is a new one; one that was there may have got a base
        for (int p = done.first[i]; p < edits.GetBook().GetPunArSize(g); ++p) edits.PointChanged(g, p);
    }
}

// "7 of these epochs are already in group walk"; with several groups a number for each.
void NoteAlreadyThere(const CLibGps& book, const Imported& done) {
    for (const LogReport& log : done.logs) {
        std::string groups;
        for (const auto& [group, count] : log.alreadyIn)
            groups += fmt::format("{}{} of these epochs are already in group {}", groups.empty() ? "" : ", ",
                                  count, Printable(PlaceText(book, {group, -1})));
        if (!groups.empty())
            std::cerr << fmt::format(
                "note: {}: {} (same time and position); --skip-existing leaves them out\n", log.file, groups);
    }
}

void Run(const ImportArguments& a) {
    const EpochFilterOptions filter = FilterFrom(a.log);
    FillFrom(a.log, {});
    CheckLive(a);
    CheckLogs(a.log, "");
    if (!a.crs.empty()) ProjectionFrom(a.crs);
    for (const std::string& log : a.log.logs) {
        std::error_code differs;
        if (log != "-" && std::filesystem::equivalent(log, BookFile(a.book), differs))
            Usage("LOG", "\"" + log + "\" is the field book itself; give receiver logs");
    }

    if (a.live) return ImportLive(a, filter);
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
    const bool added = done.Points() > 0;
    if (!added && done.AlreadyThere() == 0) RefuseWithoutPoints(done.logs);
    if (added) {
        ComputePlane(book, existing < 0, done);
        Note(project->GetEdits(), done);
        SaveBook(*project);
    }
    if (!a.skipExisting) NoteAlreadyThere(book, done);
    const std::string otherwise =
        added ? "the summary could not be written, " + project->GetPath() + " is saved"
              : "the summary could not be written";
    if (a.json)
        PrintJson(ImportJson(project->GetPath(), book, existing < 0, done), otherwise);
    else
        PrintText(ImportText(project->GetPath(), book, done), otherwise);
}

void AddOptions(CLI::App& c, ImportArguments& a) {
    c.add_option("BOOK", a.book, "The field book")->required()->check(Filled());
    AddLogOptions(c, a.log,
                  {"that of the book, else 0.000", "that of the book, else antenna", "the next that is free",
                   "the file's name"});
    c.add_option(
         "--crs", a.crs,
         "Plane system of new groups: EPSG:code, a PROJ string, WKT or a whole name [that of the book]")
        ->type_name("CRS")
        ->check(Filled());
    c.add_flag("--skip-existing", a.skipExisting,
               "Leave out epochs that the book has already, with the same time and position");
    c.add_flag(
        "--live", a.live,
        "Follow a log that is still being written, or standard input: each epoch is stored as it comes");
    c.add_option("--idle", a.idle, "With --live: end after so long without anything new [never]")
        ->type_name("SECONDS")
        ->check(Filled());
    c.add_flag("--each", a.each, "With --live: every epoch waits for the disk by itself");
    c.add_flag("--json", a.json, "Print the summary as JSON; with --live one line for each epoch stored");
    c.footer(
        "Examples:\n"
        "  gpsbook import site.gpsbook monday.nmea tuesday.pos --antenna 2.000\n"
        "  gpsbook import site.gpsbook more.nmea --group monday --min-quality fix\n"
        "  gpsbook simulate --base 45.65,13.76,60 | gpsbook import site.gpsbook - --group trial\n"
        "  gpsbook import site.gpsbook /var/log/rover.nmea --live --idle 600");
}

}  // namespace

void AddImportCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("import", "Put receiver logs into a field book");
    const auto arguments = std::make_shared<ImportArguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = RunCommand("import", [&] { Run(*arguments); }); });
}

}  // namespace gpsbook
