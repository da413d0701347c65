#include "apps/gpsbook/commands/Compute.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "gps/coords/FCalcCoord.h"
#include "gps/model/CLibGps.h"
#include "platform/base/GpsValues.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using Values = std::array<double, 3>;  // metres, or degrees, degrees and metres

struct Arguments {
    std::string book;
    std::vector<std::string> places;
    bool reverse = false;
    bool allowLoss = false;
    bool json = false;
};

/// What became of the coordinates. Bases are counted with the points, in the direction that computes them.
struct Outcome {
    std::int64_t computed = 0;  // have coordinates now
    std::int64_t without = 0;   // have none
    std::int64_t gained = 0;    // had none before
    std::int64_t changed = 0;   // had others
    std::int64_t lost = 0;
    std::vector<std::string> losers;  // the first of those that lost theirs
    std::vector<Place> touched;       // with a group its points
    std::vector<std::string> idle;    // groups without a usable conversion, which stay as they are
};

constexpr std::size_t kNamed = 5;

bool Has(const Values& v) { return IsCoordValid(v[0]) && IsCoordValid(v[1]); }

Values PlaneOf(const CEgn& e) { return {e.GetCoordX(), e.GetCoordY(), e.GetCoordZ()}; }
Values FixOf(CPunGps& p) { return {p.GetLat(), p.GetLong(), p.GetElev()}; }

void Judge(const Values& before, const Values& after, const std::string& name, Outcome& out) {
    ++(Has(after) ? out.computed : out.without);
    if (Has(after) && !Has(before)) ++out.gained;
    if (Has(after) && Has(before) && after != before) ++out.changed;
    if (Has(after) || !Has(before)) return;
    ++out.lost;
    if (out.losers.size() < kNamed) out.losers.push_back(name);
}

void ComputeGroup(CLibGps& book, int g, Outcome& out) {
    CGrpGps& group = *book.GetGrpAt(g);
    std::vector<Values> before;
    const int points = book.GetPunArSize(g);
    before.reserve(static_cast<std::size_t>(points));
    for (int p = 0; p < points; ++p) before.push_back(PlaneOf(*book.GetPunAt(g, p)));
    const Values base = PlaneOf(group);
    FCalcCoordGrpGps(&book, g);
    if (group.AreBaseCoordValid() || Has(base))
        Judge(base, PlaneOf(group), "the base of " + PlaceText(book, {g}), out);
    for (int p = 0; p < points; ++p)
        Judge(before[static_cast<std::size_t>(p)], PlaneOf(*book.GetPunAt(g, p)), PlaceText(book, {g, p}),
              out);
}

void ComputePoint(CLibGps& book, const Place& place, bool reverse, Outcome& out) {
    CPunGps& point = *book.GetPunAt(place.group, place.point);
    const auto values = [&] { return reverse ? FixOf(point) : PlaneOf(point); };
    const Values before = values();
    if (reverse)
        book.CalcolaCoordGeog(&point, place.group);
    else
        book.CalcolaCoordCart(&point, place.group);
    Judge(before, values(), PlaceText(book, place), out);
}

// A group without a usable conversion is left alone in both directions, and so are its points: what they
// have may come from elsewhere.
void ComputePlace(CLibGps& book, const Place& place, bool reverse, Outcome& out) {
    CheckInterrupt();
    if (!book.GetGrpAt(place.group)->IsCdElabValid()) {
        const std::string name = PlaceText(book, {place.group});
        if (out.idle.empty() || out.idle.back() != name) out.idle.push_back(name);
        return;
    }
    out.touched.push_back(place);
    if (place.IsPoint()) return ComputePoint(book, place, reverse, out);
    if (!reverse) return ComputeGroup(book, place.group, out);
    for (int p = 0; p < book.GetPunArSize(place.group); ++p)
        ComputePoint(book, {place.group, p}, reverse, out);
}

void Note(gpsproject::BookEdits& edits, const Place& place) {
    if (place.IsPoint()) return edits.PointChanged(place.group, place.point);
    edits.GroupChanged(place.group);
    for (int p = 0; p < edits.GetBook().GetPunArSize(place.group); ++p) edits.PointChanged(place.group, p);
}

void RefuseLoss(const Arguments& a, const Outcome& out) {
    if (out.lost == 0 || a.allowLoss) return;
    std::string names;
    for (const std::string& name : out.losers) names += (names.empty() ? "" : ", ") + name;
    if (out.lost > static_cast<std::int64_t>(out.losers.size())) names += ", ...";
    throw CommandError(
        exitFailure,
        fmt::format("{} would lose {} ({}): {} cannot be computed, for a value is missing or lies "
                    "outside the system; nothing was changed. Give what is missing, or --allow-loss",
                    Counted(out.lost, "point"),
                    a.reverse ? "latitude, longitude and height" : "plane coordinates", names,
                    out.lost == 1 ? "it" : "they"));
}

std::string Text(const std::string& file, bool reverse, bool saved, const Outcome& out) {
    std::string text;
    const auto add = std::back_inserter(text);
    for (const std::string& group : out.idle)
        fmt::format_to(add, "{}: no usable conversion; left as it is\n", group);
    fmt::format_to(add, "{}: {} with {} ({} gained, {} changed), {} without ({} lost)\n", file,
                   Counted(out.computed, "point"),
                   reverse ? "latitude, longitude and height" : "plane coordinates", out.gained, out.changed,
                   out.without, out.lost);
    if (!saved) fmt::format_to(add, "{}: everything was as computed; not saved again\n", file);
    return text;
}

void Run(const Arguments& a) {
    const auto project = OpenToWrite(a.book);
    CLibGps& book = project->GetBook();
    Outcome out;
    if (a.places.empty()) {
        for (int g = 0; g < book.GetGrpArSize(); ++g) ComputePlace(book, {g}, a.reverse, out);
    } else {
        int whole = -1;  // a group that was named, whose points have had their turn
        for (const Place& place : FindPlaces(book, a.places)) {
            if (place.IsPoint() && place.group == whole) continue;
            if (!place.IsPoint()) whole = place.group;
            ComputePlace(book, place, a.reverse, out);
        }
    }
    RefuseLoss(a, out);
    const bool changes = out.gained + out.changed + out.lost > 0;
    if (changes) {
        for (const Place& place : out.touched) Note(project->GetEdits(), place);
        SaveBook(*project);
    }
    const std::string otherwise = "the summary could not be written, " + project->GetPath() + " is saved";
    if (a.json)
        PrintJson({{"book", project->GetPath()},
                   {"reverse", a.reverse},
                   {"computed", out.computed},
                   {"without", out.without},
                   {"gained", out.gained},
                   {"changed", out.changed},
                   {"lost", out.lost},
                   {"no_conversion", out.idle},
                   {"saved", changes}},
                  otherwise);
    else
        PrintText(Text(project->GetPath(), a.reverse, changes, out), otherwise);
}

void AddOptions(CLI::App& c, Arguments& a) {
    c.add_option("BOOK", a.book, "The field book")->required()->check(Filled());
    c.add_option("PLACE", a.places, "Groups and points: NAME, #0, GROUP/POINT, GROUP/#3..#7; none: all");
    c.add_flag("--reverse", a.reverse, "From plane coordinates to latitude, longitude and height");
    c.add_flag("--allow-loss", a.allowLoss,
               "Also where coordinates are lost because they cannot be computed");
    c.add_flag("--json", a.json, "Print the outcome as JSON");
    c.footer(
        "Examples:\n"
        "  gpsbook compute site.gpsbook\n"
        "  gpsbook compute site.gpsbook monday '#2/P7'\n"
        "  gpsbook compute site.gpsbook designed --reverse");
}

}  // namespace

void AddComputeCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("compute", "Compute plane or geographic coordinates anew");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = RunCommand("compute", [&] { Run(*arguments); }); });
}

}  // namespace gpsbook
