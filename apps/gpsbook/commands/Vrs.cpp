#include "apps/gpsbook/commands/Vrs.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ChangeReport.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book, place, action, keep;
    bool dryRun = false;
    bool json = false;
};

/// The points that are meant, all of one group, and what became of them.
struct Work {
    CLibGps& book;
    int g;
    std::vector<int> points;
    std::vector<ItemChanges> changed;
    std::vector<int> marked;  // those with a mark afterwards
};

// Of a group all points, else those that are named.
Work WorkFrom(CLibGps& book, const std::string& address) {
    const std::vector<Place> places = FindPlaces(book, address);
    Work w{book, places.front().group, {}, {}, {}};
    for (const Place& place : places) {
        if (place.group != w.g || (places.size() > 1 && !place.IsPoint()))
            throw CommandError(exitUsage,
                               "\"" + address + "\" means several groups; give one, or points of one");
        if (place.IsPoint()) w.points.push_back(place.point);
    }
    if (places.front().IsPoint()) return w;
    for (int p = 0; p < book.GetPunArSize(w.g); ++p) w.points.push_back(p);
    return w;
}

// A number is a position, with or without '#'.
int KeptFrom(const Work& w, const Arguments& a) {
    const bool number = a.keep.find_first_not_of("0123456789") == std::string::npos;
    const Place kept = FindPlace(w.book, fmt::format("#{}/{}{}", w.g, number ? "#" : "", a.keep));
    if (static_cast<int>(w.points.size()) != w.book.GetPunArSize(w.g))
        throw CommandError(exitUsage, "--keep goes with a whole group; name that, not points of it");
    return kept.point;
}

void Set(Work& w) {
    for (const int p : w.points) w.book.GetPunAt(w.g, p)->SetPointAsVrs();
}

// A text may have the mark more than once; afterwards it has none.
void Clear(Work& w, int kept) {
    const bool whole = static_cast<int>(w.points.size()) == w.book.GetPunArSize(w.g);
    std::vector<int> cleared;
    if (whole)
        while (w.book.GetGrpAt(w.g)->ClearAllPointVrs(kept, cleared)) {
        }
    else
        for (const int p : w.points)
            while (w.book.GetPunAt(w.g, p)->ClearPointAsVrs()) {
            }
}

void Change(Work& w, const Arguments& a) {
    const int kept = a.keep.empty() ? -1 : KeptFrom(w, a);
    std::vector<std::string> codes;
    for (const int p : w.points) codes.push_back(w.book.GetPunAt(w.g, p)->GetCode());
    if (a.action == "set")
        Set(w);
    else if (a.action == "clear" || kept >= 0)
        Clear(w, kept);
    const FieldInfo* const code = FindField<CPunGps>("code");
    for (std::size_t i = 0; i < w.points.size(); ++i) {
        const CPunGps& point = *w.book.GetPunAt(w.g, w.points[i]);
        const Place place{w.g, w.points[i]};
        if (point.IsPointVrs()) w.marked.push_back(place.point);
        if (point.GetCode() != codes[i])
            w.changed.push_back({place, PlaceText(w.book, place), {{code, codes[i], point.GetCode()}}});
    }
    if (kept >= 0 && !w.book.GetPunAt(w.g, kept)->IsPointVrs())
        std::cerr << "note: " << PlaceText(w.book, {w.g, kept})
                  << " has no mark itself: no point of the group has one now\n";
}

std::string Text(const Work& w, const Arguments& a, bool asked) {
    std::string text;
    if (!asked)
        for (const int p : w.marked)
            fmt::format_to(std::back_inserter(text), "#{} {}\n", p, Printable(PlaceText(w.book, {w.g, p})));
    text += ChangesText(w.changed);
    if (asked && w.changed.empty()) text += "nothing changed: the points are marked as before\n";
    text +=
        fmt::format("{}: {} of {} measured against a virtual station\n", Printable(PlaceText(w.book, {w.g})),
                    w.marked.size(), Counted(static_cast<std::int64_t>(w.points.size()), "point"));
    if (a.dryRun) text += "not saved (--dry-run)\n";
    return text;
}

void Run(const Arguments& a) {
    if (!a.keep.empty() && a.action == "set")
        throw CommandError(exitUsage, "--keep goes with clear, or alone");
    const bool asked = !a.action.empty() || !a.keep.empty();
    const bool writes = asked && !a.dryRun;
    const auto project = writes ? OpenToWrite(a.book) : OpenToRead(a.book);
    if (!writes) EndReading(*project);
    Work w = WorkFrom(project->GetBook(), a.place);
    Change(w, a);
    const bool saved = writes && !w.changed.empty();
    if (saved) {
        for (const ItemChanges& item : w.changed)
            project->GetEdits().PointChanged(item.place.group, item.place.point);
        SaveBook(*project);
    }
    const std::string file = project->GetPath();
    const std::string otherwise = saved ? SavedButUntold(file) : "the result could not be written";
    if (a.json)
        PrintJson({{"book", file},
                   {"saved", saved},
                   {"group", w.g},
                   {"name", PlaceText(w.book, {w.g})},
                   {"points", w.points.size()},
                   {"vrs", w.marked},
                   {"changed", ChangesJson(w.changed)}},
                  otherwise);
    else
        PrintText(Text(w, a, asked), otherwise);
}

}  // namespace

void AddVrsCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("vrs", "Tell and mark the points measured against a virtual reference station");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    command->add_option("GROUP", a->place, "The group, or points of it: NAME, GROUP/POINT, GROUP/#3..#7")
        ->required()
        ->check(Filled());
    command
        ->add_option("ACTION", a->action,
                     "Marks points, or clears their marks; nothing: tells which are marked")
        ->type_name("set|clear")
        ->check(CLI::IsMember({"set", "clear"}));
    command->add_option("--keep", a->keep, "Clear all points of the group but this one: its position or name")
        ->type_name("POINT")
        ->check(Filled());
    command->add_flag("--dry-run", a->dryRun, "Tell what would change, and save nothing");
    command->add_flag("--json", a->json, "Print the result as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook vrs site.gpsbook Quay\n"
        "  gpsbook vrs site.gpsbook 'Quay/#3..#7' set\n"
        "  gpsbook vrs site.gpsbook Quay --keep 2");
    command->callback([a, &exitCode] { exitCode = RunCommand("vrs", [&] { Run(*a); }); });
}

}  // namespace gpsbook
