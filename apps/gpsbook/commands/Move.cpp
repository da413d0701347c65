#include "apps/gpsbook/commands/Move.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
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

struct Arguments {
    std::string book;
    std::vector<std::string> addresses;
    std::string to;
    std::string group;
    bool json = false;
};

struct Result {
    int moved = 0;
    int group = -1;  // of the points; -1 for groups
    int first = 0;   // where the first of them stands now
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

Result MoveGroups(CLibGps& book, const std::vector<int>& groups, const std::string& to) {
    const int size = book.GetGrpArSize();
    const int room = size - static_cast<int>(groups.size());
    Result result;
    result.first = InsertPosition("--to", to, room);
    OrderGroups(book, OrderAfterMove(size, groups, result.first));
    return result;
}

Result MoveWithin(CLibGps& book, int group, const std::vector<int>& points, const std::string& to) {
    const int size = book.GetPunArSize(group);
    Result result;
    result.group = group;
    result.first = InsertPosition("--to", to, size - static_cast<int>(points.size()));
    OrderPoints(book, group, OrderAfterMove(size, points, result.first));
    return result;
}

Result MoveAcross(CLibGps& book, int from, const std::vector<int>& points, int group, const std::string& to) {
    Result result;
    result.group = group;
    result.first = InsertPosition("--to", to, book.GetPunArSize(group));
    result.copied = true;
    MoveToGroup(book, from, points, group, result.first);
    // The fix is what was measured; the plane coordinates follow from it by the conversion of the group.
    for (std::size_t i = 0; i < points.size(); ++i)
        result.planeLeft = !RefreshPlane(book, {group, result.first + static_cast<int>(i)});
    return result;
}

Result Apply(CLibGps& book, const Arguments& a) {
    const std::vector<Place> places = FindPlaces(book, a.addresses);
    CheckAlike(places);
    const std::vector<int> positions = PositionsOf(places);
    Result result;
    if (!places.front().IsPoint()) {
        if (!a.group.empty())
            throw CommandError(exitUsage, "--group: a group does not stand in another one; give points");
        result = MoveGroups(book, positions, a.to);
    } else {
        const int from = places.front().group;
        const int group = a.group.empty() ? from : FindGroup(book, a.group);
        result = group == from ? MoveWithin(book, from, positions, a.to)
                               : MoveAcross(book, from, positions, group, a.to);
    }
    result.moved = static_cast<int>(places.size());
    return result;
}

void Print(const Arguments& a, const std::string& file, const CLibGps& book, const Result& r) {
    const std::string otherwise = SavedButUntold(file);
    if (a.json) {
        PrintJson({{"file", file},
                   {"moved", r.moved},
                   {"group", r.group >= 0 ? nlohmann::ordered_json(r.group) : nullptr},
                   {"first", r.first},
                   {"new_points", r.copied}},
                  otherwise);
        return;
    }
    const bool points = r.group >= 0;
    std::string text = Counted(r.moved, points ? "point" : "group") + " moved";
    if (points) text += " in group " + Printable(PlaceText(book, {r.group, -1}));
    PrintText(
        fmt::format("{}, {} #{}{}\n", text, r.moved == 1 ? "to" : "from", r.first, r.moved == 1 ? "" : " on"),
        otherwise);
}

void Run(const Arguments& a) {
    const auto project = OpenToWrite(a.book);
    CLibGps& book = project->GetBook();
    const Result result = Apply(book, a);
    SaveBook(*project);
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
