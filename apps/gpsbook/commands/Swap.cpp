#include "apps/gpsbook/commands/Swap.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

struct Arguments {
    std::string book;
    std::string first, second;
    bool json = false;
};

void Exchange(gpsproject::BookEdits& edits, const Place& a, const Place& b) {
    CLibGps& book = edits.GetBook();
    if (a.IsPoint() != b.IsPoint())
        throw CommandError(exitUsage, "a group and a point cannot change places; give two of a kind");
    if (a == b) throw CommandError(exitUsage, "both are the same; give two that differ");
    if (!a.IsPoint()) {
        book.GrpGpsSwap(a.group, b.group);
        return edits.GroupsSwapped(a.group, b.group);
    }
    if (a.group != b.group)
        throw CommandError(
            exitUsage, "the points are of different groups; gpsbook move --group brings a point to another");
    book.PunGpsSwap(a.group, a.point, b.point);
    edits.PointsSwapped(a.group, a.point, b.point);
}

nlohmann::ordered_json PlaceJson(const CLibGps& book, const Place& place) {
    return {{"group", place.group},
            {"point", place.IsPoint() ? nlohmann::ordered_json(place.point) : nullptr},
            {"name", PlaceText(book, place)}};
}

void Run(const Arguments& a) {
    const auto project = OpenToWrite(a.book);
    CLibGps& book = project->GetBook();
    const Place first = FindPlace(book, a.first);
    const Place second = FindPlace(book, a.second);
    const std::string names = PlaceText(book, first) + " and " + PlaceText(book, second);
    Exchange(project->GetEdits(), first, second);
    SaveBook(*project);
    const std::string otherwise = SavedButUntold(project->GetPath());
    if (a.json)  // what stands where now
        PrintJson(
            {{"book", project->GetPath()}, {"swapped", {PlaceJson(book, first), PlaceJson(book, second)}}},
            otherwise);
    else
        PrintText(Printable(names) + " have changed places\n", otherwise);
}

}  // namespace

void AddSwapCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("swap", "Let two groups, or two points of a group, change places");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    command->add_option("FIRST", a->first, "A group or a point")->required();
    command->add_option("SECOND", a->second, "Another group, or another point of the same group")->required();
    command->add_flag("--json", a->json, "Print what stands where now as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook swap site.gpsbook Quay Pier\n"
        "  gpsbook swap site.gpsbook 'Quay/#0' 'Quay/#4'");
    command->callback([a, &exitCode] { exitCode = RunCommand("swap", [&] { Run(*a); }); });
}

}  // namespace gpsbook
