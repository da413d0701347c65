#include "apps/gpsbook/commands/Set.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/EditItem.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ChangeReport.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/Words.h"

namespace gpsbook {

namespace {

struct Arguments {
    std::string book;
    std::vector<std::string> words;
    bool keepPlane = false;
    bool dryRun = false;
    bool json = false;
};

struct Result {
    std::vector<ItemChanges> items;  // only those that changed
    std::size_t asked = 0;
    int pointsRefreshed = 0;
    std::size_t planeLeft = 0;
};

template <class Item>
void RefuseSameName(const std::vector<Edit<Item>>& edits, std::size_t items) {
    if (items > 1 && Sets(edits, "name"))
        throw CommandError(exitUsage, "name: the same name for several; give names one by one");
}

// All values are checked for all items before the first one is stored.
Result Apply(gpsproject::BookEdits& edits, const std::vector<Place>& places,
             const std::vector<Assignment>& assignments, bool keepPlane) {
    std::size_t points = 0;
    for (const Place& place : places) points += place.IsPoint() ? 1 : 0;
    std::vector<Edit<CPunGps>> forPoints;
    std::vector<Edit<CGrpGps>> forGroups;
    if (points > 0) forPoints = ParseEdits<CPunGps>(assignments);
    if (points < places.size()) forGroups = ParseEdits<CGrpGps>(assignments);
    RefuseSameName(forPoints, points);
    RefuseSameName(forGroups, places.size() - points);

    Result result;
    result.asked = places.size();
    const CLibGps& book = edits.GetBook();
    for (const Place& place : places) {
        std::string text = PlaceText(book, place);
        EditResult edit = place.IsPoint() ? EditPoint(edits, place, forPoints, keepPlane)
                                          : EditGroup(edits, place.group, forGroups, keepPlane);
        result.pointsRefreshed += edit.pointsRefreshed;
        result.planeLeft += edit.planeLeft ? 1U : 0U;
        if (!edit.changes.empty()) result.items.push_back({place, std::move(text), std::move(edit.changes)});
    }
    return result;
}

void Print(const Arguments& a, const std::string& file, const Result& result) {
    const bool saved = !a.dryRun && !result.items.empty();
    const std::string otherwise = saved ? SavedButUntold(file) : "the result could not be written";
    if (a.json) {
        PrintJson({{"book", file},
                   {"saved", saved},
                   {"asked", result.asked},
                   {"changed", ChangesJson(result.items)},
                   {"points_refreshed", result.pointsRefreshed},
                   {"plane_left", result.planeLeft}},
                  otherwise);
        return;
    }
    std::string text = ChangesText(result.items);
    if (result.items.empty()) text = "nothing changed: the values are those of before\n";
    if (result.pointsRefreshed > 0)
        text +=
            fmt::format("plane coordinates of {} computed anew\n", Counted(result.pointsRefreshed, "point"));
    if (a.dryRun) text += "not saved (--dry-run)\n";
    PrintText(text, otherwise);
}

void Run(const Arguments& a) {
    const Words words = SplitWords(a.words);
    if (words.addresses.empty())
        throw CommandError(exitUsage,
                           "no group or point is named; give its name or position, like Quay/P1 or '#0'");
    if (words.assignments.empty())
        throw CommandError(exitUsage, "no field is given; give one like antenna=1.800");
    const auto project = a.dryRun ? OpenToRead(a.book) : OpenToWrite(a.book);
    if (a.dryRun) EndReading(*project);
    CLibGps& book = project->GetBook();
    const Result result =
        Apply(project->GetEdits(), FindPlaces(book, words.addresses), words.assignments, a.keepPlane);
    if (!a.dryRun && !result.items.empty()) SaveBook(*project);
    if (result.planeLeft > 0)
        std::cerr << "note: plane coordinates stay as they were: the group has no usable conversion; set its "
                     "crs and they follow\n";
    Print(a, project->GetPath(), result);
}

}  // namespace

void AddSetCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("set", "Change fields of groups and points");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    AddWords(*command, "WHAT", a->words, "Groups and points, and what is to change: FIELD=VALUE")->required();
    command->add_flag("--keep-plane", a->keepPlane,
                      "Leave plane coordinates as they are when the fix they come from changes");
    command->add_flag("--dry-run", a->dryRun, "Tell what would change, and save nothing");
    command->add_flag("--json", a->json, "Print what changed as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook set site.gpsbook Quay/P1 code=KERB antenna=1.800\n"
        "  gpsbook set site.gpsbook 'Quay/#0..' antenna=1.800\n"
        "  gpsbook set site.gpsbook '#0' name=Quay operator='A. Verdi' crs=EPSG:32633");
    command->callback([a, &exitCode] { exitCode = RunCommand("set", [&] { Run(*a); }); });
}

}  // namespace gpsbook
