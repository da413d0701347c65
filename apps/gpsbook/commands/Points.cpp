#include "apps/gpsbook/commands/Points.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/ExchangeOptions.h"
#include "apps/gpsbook/commands/ExchangeReport.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

void Save(const SaveArguments& a) {
    const auto project = OpenToRead(a.book);
    EndReading(*project);  // a part of a book is not handed on as the whole
    CLibGps& book = project->GetBook();
    const int group = FindGroup(book, a.group);
    const int size = book.GetPunArSize(group);
    const SaveRange range = RangeFrom(a, project->GetPath(), size);
    SavePoints(book, group, range);
    const int points = CountIn(range, size);
    NoteFalseCount(range.file, ExchangeKind::points, range.first, range.last, points);
    const std::string otherwise = "the result could not be told, " + range.file + " is complete";
    if (a.json) {
        nlohmann::ordered_json json{{"book", project->GetPath()}, {"file", range.file}, {"group", group},
                                    {"first", range.first},       {"last", range.last}, {"points", points}};
        AddResult(json, CLibGps::TResActionObj::done);
        PrintJson(json, otherwise);
        return;
    }
    PrintText(fmt::format("{}: {} of group {}\n", range.file, Counted(points, "point"),
                          Printable(PlaceText(book, {group, -1}))),
              otherwise);
}

void Load(const LoadArguments& a) {
    const auto project = a.dryRun ? OpenToRead(a.book) : OpenToWrite(a.book);
    if (a.dryRun) EndReading(*project);
    CLibGps& book = project->GetBook();
    const int group = FindGroup(book, a.group);
    const LoadPlace place = PlaceFrom(a, project->GetPath());
    const LoadedItems loaded = LoadPoints(*project, place, group, a.fromPlane);
    const bool saved = !a.dryRun && loaded.points > 0;
    if (saved) SaveBook(*project);
    PrintLoad({{"book", project->GetPath()}, {"file", place.file}, {"group", group}}, project->GetPath(),
              " into group " + Printable(PlaceText(book, {group, -1})), a.json, ExchangeKind::points, loaded,
              saved);
    EndLoad(place.file, loaded, saved);
}

void AddSave(CLI::App& points, int& exitCode) {
    CLI::App* c = points.add_subcommand("save", "Write points of a group into a file for another book");
    const auto a = std::make_shared<SaveArguments>();
    c->add_option("--group", a->group, "Group of the points")
        ->required()
        ->type_name("GROUP")
        ->check(Filled());
    AddSaveOptions(*c, *a);
    c->footer(
        "Examples:\n"
        "  gpsbook points save site.gpsbook quay.fcp --group Quay\n"
        "  gpsbook points save site.gpsbook quay.fcp --group Quay --first 10 --last 20");
    c->callback([a, &exitCode] { exitCode = RunCommand("points", [&] { Save(*a); }); });
}

void AddLoad(CLI::App& points, int& exitCode) {
    CLI::App* c = points.add_subcommand("load", "Put the points of a file into a group");
    const auto a = std::make_shared<LoadArguments>();
    c->add_option("--group", a->group, "Group that they come into")
        ->required()
        ->type_name("GROUP")
        ->check(Filled());
    AddLoadOptions(*c, *a);
    c->add_flag("--from-plane", a->fromPlane,
                "Compute fixes from plane coordinates [plane coordinates from fixes]");
    c->footer(
        "Examples:\n"
        "  gpsbook points load dam.gpsbook quay.fcp --group Dam --after -1\n"
        "  gpsbook points load dam.gpsbook quay.fcp --group Dam --after 9 --dry-run");
    c->callback([a, &exitCode] { exitCode = RunCommand("points", [&] { Load(*a); }); });
}

}  // namespace

void AddPointsCommand(CLI::App& app, int& exitCode) {
    CLI::App* points = app.add_subcommand("points", "Carry points of a group to another book by a file");
    points->require_subcommand(1);
    AddSave(*points, exitCode);
    AddLoad(*points, exitCode);
}

}  // namespace gpsbook
