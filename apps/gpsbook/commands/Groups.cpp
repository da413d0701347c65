#include "apps/gpsbook/commands/Groups.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/ExchangeOptions.h"
#include "apps/gpsbook/commands/ExchangeReport.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/Positions.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

void Save(const SaveArguments& a) {
    const auto project = OpenToRead(a.book);
    EndReading(*project);  // a part of a book is not handed on as the whole
    CLibGps& book = project->GetBook();
    const int size = book.GetGrpArSize();
    const SaveRange range = RangeFrom(a, project->GetPath(), size);
    SaveGroups(book, range);
    const int groups = CountIn(range, size);
    NoteFalseCount(range.file, ExchangeKind::groups, range.first, range.last, groups);
    std::int64_t points = 0;
    for (int g = std::max(range.first, 0); g < std::min(range.last, size); ++g)
        points += book.GetPunArSize(g);
    const std::string otherwise = "the result could not be told, " + range.file + " is complete";
    if (a.json) {
        nlohmann::ordered_json json{{"book", project->GetPath()}, {"file", range.file},
                                    {"first", range.first},       {"last", range.last},
                                    {"groups", groups},           {"points", points}};
        AddResult(json, CLibGps::TResActionObj::done);
        PrintJson(json, otherwise);
        return;
    }
    PrintText(fmt::format("{}: {} with {}\n", range.file, Counted(groups, "group"), Counted(points, "point")),
              otherwise);
}

short ModeFrom(const std::string& text) {
    const int mode = text.empty() ? 0 : AnyPosition("--mode", text);
    if (mode < std::numeric_limits<short>::min() || mode > std::numeric_limits<short>::max())
        throw CommandError(exitUsage, "--mode: \"" + text + "\" is no mode; give 0, or leave it out");
    return static_cast<short>(mode);
}

void Load(const LoadArguments& a) {
    const short mode = ModeFrom(a.mode);
    const auto project = a.dryRun ? OpenToRead(a.book) : OpenToWrite(a.book);
    if (a.dryRun) EndReading(*project);
    const LoadPlace place = PlaceFrom(a, project->GetPath());
    const LoadedItems loaded = LoadGroups(*project, place, mode);
    const bool saved = !a.dryRun && loaded.groups > 0;
    if (saved) SaveBook(*project);
    PrintLoad({{"book", project->GetPath()}, {"file", place.file}}, project->GetPath(), "", a.json,
              ExchangeKind::groups, loaded, saved);
    EndLoad(place.file, loaded, saved);
}

void AddSave(CLI::App& groups, int& exitCode) {
    CLI::App* c = groups.add_subcommand("save", "Write groups into a file for another book");
    const auto a = std::make_shared<SaveArguments>();
    AddSaveOptions(*c, *a);
    c->footer(
        "Examples:\n"
        "  gpsbook groups save site.gpsbook site.fcg\n"
        "  gpsbook groups save site.gpsbook two.fcg --first 1 --last 3");
    c->callback([a, &exitCode] { exitCode = RunCommand("groups", [&] { Save(*a); }); });
}

void AddLoad(CLI::App& groups, int& exitCode) {
    CLI::App* c = groups.add_subcommand("load", "Put the groups of a file into a book");
    const auto a = std::make_shared<LoadArguments>();
    AddLoadOptions(*c, *a);
    c->add_option("--mode", a->mode, "Mode of the load; only 0 does something [0]")
        ->type_name("M")
        ->check(Filled());
    c->footer(
        "Examples:\n"
        "  gpsbook groups load dam.gpsbook site.fcg --after -1\n"
        "  gpsbook groups load dam.gpsbook site.fcg --after 4 --dry-run");
    c->callback([a, &exitCode] { exitCode = RunCommand("groups", [&] { Load(*a); }); });
}

}  // namespace

void AddGroupsCommand(CLI::App& app, int& exitCode) {
    CLI::App* groups =
        app.add_subcommand("groups", "Carry groups with their points to another book by a file");
    groups->require_subcommand(1);
    AddSave(*groups, exitCode);
    AddLoad(*groups, exitCode);
}

}  // namespace gpsbook
