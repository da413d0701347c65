#include "apps/gpsbook/commands/Delete.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Deletion.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book;
    std::vector<std::string> addresses;
    bool dryRun = false;
    bool json = false;
};

/// What goes, told before it is gone.
struct Result {
    Json items = Json::array();
    std::string lines;
    int groups = 0;
    int points = 0;
};

Result Describe(const CLibGps& book, const std::vector<Place>& places) {
    constexpr std::size_t mostLines = 20;
    Result result;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Place& place = places[i];
        const std::string text = PlaceText(book, place);
        const int points = place.IsPoint() ? 1 : book.GetPunArSize(place.group);
        result.groups += place.IsPoint() ? 0 : 1;
        result.items.push_back({{"group", place.group},
                                {"point", place.IsPoint() ? Json(place.point) : Json(nullptr)},
                                {"name", text},
                                {"points", points}});
        if (i < mostLines)
            result.lines +=
                Printable(text) + (place.IsPoint() ? "\n" : ", " + Counted(points, "point") + "\n");
    }
    if (places.size() > mostLines)
        result.lines += fmt::format("... and {} more\n", places.size() - mostLines);
    result.points = PointsWithin(book, places);
    return result;
}

void Run(const Arguments& a) {
    const auto project = a.dryRun ? OpenToRead(a.book) : OpenToWrite(a.book);
    if (a.dryRun) EndReading(*project);
    CLibGps& book = project->GetBook();
    const std::vector<Place> places = FindPlaces(book, a.addresses);
    const Result result = Describe(book, places);
    if (!a.dryRun) {
        DeletePlaces(project->GetEdits(), places);
        SaveBook(*project);
    }
    const std::string otherwise =
        a.dryRun ? "the result could not be written" : SavedButUntold(project->GetPath());
    if (a.json)
        PrintJson({{"book", project->GetPath()},
                   {"saved", !a.dryRun},
                   {"groups", result.groups},
                   {"points", result.points},
                   {"deleted", result.items}},
                  otherwise);
    else
        PrintText(fmt::format("{}{}: {} and {}\n", result.lines,
                              a.dryRun ? "would be deleted (--dry-run)" : "deleted",
                              Counted(result.groups, "group"), Counted(result.points, "point")),
                  otherwise);
}

}  // namespace

void AddDeleteCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("delete", "Delete groups and points");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    AddWords(*command, "WHAT", a->addresses, "Groups and points; with a group its points go, too")
        ->required();
    command->add_flag("--dry-run", a->dryRun, "Tell what would go, and save nothing");
    command->add_flag("--json", a->json, "Print what was deleted as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook delete site.gpsbook Quay/P1 Quay/P7\n"
        "  gpsbook delete site.gpsbook 'Quay/#10..#19' --dry-run\n"
        "  gpsbook delete site.gpsbook '#2'");
    command->callback([a, &exitCode] { exitCode = RunCommand("delete", [&] { Run(*a); }); });
}

}  // namespace gpsbook
