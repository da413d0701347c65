#include "apps/gpsbook/commands/Move.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/book/PlaneRefresh.h"
#include "apps/gpsbook/book/Reorder.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/Positions.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using gpsproject::BookEdits;

struct Arguments {
    std::string book;
    std::vector<std::string> addresses;
    std::string to;
    std::string group;
    bool json = false;
};

struct Result {
    int asked = 0;
    int group = -1;  // of the points; -1 for groups
    int first = 0;   // where the first of them stands now
    bool changed = false;
    bool copied = false;
    bool planeLeft = false;
};

std::vector<int> PositionsOf(const std::vector<Place>& places) {
    std::vector<int> positions;
    for (const Place& place : places) positions.push_back(place.IsPoint() ? place.point : place.group);
    return positions;
}

// All groups, or all points of one group.
void CheckAlike(const std::vector<Place>& places) {
    for (const Place& place : places) {
        if (place.IsPoint() != places.front().IsPoint())
            throw CommandError(exitUsage, "groups and points cannot be moved at once; give one kind");
        if (place.IsPoint() && place.group != places.front().group)
            throw CommandError(exitUsage, "the points are of several groups; move those of one at a time");
    }
}

Result MoveGroups(BookEdits& edits, const std::vector<int>& groups, const std::string& to) {
    const int size = edits.GetBook().GetGrpArSize();
    const int room = size - static_cast<int>(groups.size());
    Result result;
    result.first = InsertPosition("--to", to, room);
    const std::vector<int> order = OrderAfterMove(size, groups, result.first);
    result.changed = !std::is_sorted(order.begin(), order.end());
    OrderGroups(edits, order);
    return result;
}

Result MoveWithin(BookEdits& edits, int group, const std::vector<int>& points, const std::string& to) {
    const int size = edits.GetBook().GetPunArSize(group);
    Result result;
    result.group = group;
    result.first = InsertPosition("--to", to, size - static_cast<int>(points.size()));
    const std::vector<int> order = OrderAfterMove(size, points, result.first);
    result.changed = !std::is_sorted(order.begin(), order.end());
    OrderPoints(edits, group, order);
    return result;
}

Result MoveAcross(BookEdits& edits, int from, const std::vector<int>& points, int group,
                  const std::string& to) {
    CLibGps& book = edits.GetBook();
    Result result;
    result.group = group;
    result.first = InsertPosition("--to", to, book.GetPunArSize(group));
    result.changed = result.copied = true;
    MoveToGroup(edits, from, points, group, result.first);
    // The fix is what was measured; the plane coordinates follow from it by the conversion of the group.
    for (int p = result.first; p < result.first + static_cast<int>(points.size()); ++p) {
        result.planeLeft = !RefreshPlane(book, {group, p});
        edits.PointChanged(group, p);
    }
    return result;
}

Result Apply(BookEdits& edits, const Arguments& a) {
    const CLibGps& book = edits.GetBook();
    const std::vector<Place> places = FindPlaces(book, a.addresses);
    CheckAlike(places);
    const std::vector<int> positions = PositionsOf(places);
    Result result;
    if (!places.front().IsPoint()) {
        if (!a.group.empty())
            throw CommandError(exitUsage, "--group: a group does not stand in another one; give points");
        result = MoveGroups(edits, positions, a.to);
    } else {
        const int from = places.front().group;
        const int group = a.group.empty() ? from : FindGroup(book, a.group);
        result = group == from ? MoveWithin(edits, from, positions, a.to)
                               : MoveAcross(edits, from, positions, group, a.to);
    }
    result.asked = static_cast<int>(places.size());
    return result;
}

void Print(const Arguments& a, const std::string& file, const CLibGps& book, const Result& r) {
    const std::string otherwise = r.changed ? SavedButUntold(file) : "the result could not be written";
    if (a.json) {
        PrintJson({{"book", file},
                   {"saved", r.changed},
                   {"moved", r.changed ? r.asked : 0},
                   {"group", r.group >= 0 ? nlohmann::ordered_json(r.group) : nullptr},
                   {"first", r.first},
                   {"new_points", r.copied}},
                  otherwise);
        return;
    }
    const bool points = r.group >= 0;
    std::string text = Counted(r.asked, points ? "point" : "group");
    if (!r.changed) {
        PrintText(fmt::format("nothing to do: {} at #{} already\n",
                              text + (r.asked == 1 ? " stands" : " stand"), r.first),
                  otherwise);
        return;
    }
    text += " moved";
    if (points) text += " in group " + Printable(PlaceText(book, {r.group, -1}));
    PrintText(
        fmt::format("{}, {} #{}{}\n", text, r.asked == 1 ? "to" : "from", r.first, r.asked == 1 ? "" : " on"),
        otherwise);
}

void Run(const Arguments& a) {
    const auto project = OpenToWrite(a.book);
    CLibGps& book = project->GetBook();
    const Result result = Apply(project->GetEdits(), a);
    if (result.changed) SaveBook(*project);
    if (result.copied)
        std::cerr << "note: the points are new ones with the same values; a shared book deletes the former "
                     "and adds these\n";
    if (result.planeLeft)
        std::cerr << "note: plane coordinates stay as they were: the group has no usable conversion\n";
    Print(a, project->GetPath(), book, result);
}

}  // namespace

void AddMoveCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("move", "Move groups or points to another place");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    AddWords(*command, "WHAT", a->addresses, "Groups, or points of one group")->required();
    command->add_option("--to", a->to, "Position of the first of them afterwards, from 0 [at the end]")
        ->type_name("N");
    command->add_option("--group", a->group, "Group that points move to [their own]")->type_name("GROUP");
    command->add_flag("--json", a->json, "Print what was done as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook move site.gpsbook '#3' --to 0\n"
        "  gpsbook move site.gpsbook Quay/P7 --to 1\n"
        "  gpsbook move site.gpsbook 'Quay/#10..' --group Pier");
    command->callback([a, &exitCode] { exitCode = RunCommand("move", [&] { Run(*a); }); });
}

}  // namespace gpsbook
