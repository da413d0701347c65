#include "apps/gpsbook/commands/Base.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/book/PlaneRefresh.h"
#include "apps/gpsbook/commands/ChangeReport.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "apps/gpsbook/stations/BaseFrame.h"
#include "apps/gpsbook/stations/StationText.h"
#include "apps/gpsbook/stations/UsedStations.h"
#include "gps/model/CLibGps.h"
#include "gps/model/FrameTags.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using Hit = StationCatalogue::Hit;

struct Arguments {
    std::string book, group, action, tag;
    std::string province, frame, radius;
    bool takeCoordinates = false;
    bool dryRun = false;
    bool json = false;
};

/// What the options say of the station that is looked for.
struct Wanted {
    CTrovaNomeBaseGps::enumProvincia province = CTrovaNomeBaseGps::provTutte;
    std::string frame;
    double radius = 0;  // metres
};

/// A group at work, and what became of it.
struct Work {
    CLibGps& book;
    int g;
    CGrpGps& group;
    std::string name;
    std::optional<Hit> station;
    std::vector<Hit> otherSets;  // of that station, in reach and allowed as well
    std::vector<ItemChanges> changed;
};

void RefuseOptions(const Arguments& a) {
    const auto need = [&](bool given, const char* option) {
        if (given && a.action != "name")
            throw CommandError(exitUsage, std::string(option) + " goes with name only");
    };
    need(!a.province.empty(), "--province");
    need(!a.frame.empty(), "--frame");
    need(!a.radius.empty(), "--radius");
    need(a.takeCoordinates, "--take-coordinates");
    if (a.action == "tag" && a.tag.empty())
        throw CommandError(exitUsage, "tag: say which; give euref, etrf2000 or clear");
    if (a.action != "tag" && !a.tag.empty())
        throw CommandError(exitUsage, "\"" + a.tag + "\" goes with tag only");
    if (a.action.empty() && a.dryRun)
        throw CommandError(exitUsage, "--dry-run goes with tag and name, nothing else changes the book");
}

Wanted WantedFrom(const Arguments& a) {
    Wanted wanted{ProvinceOption(a.province), a.frame, 0};
    wanted.radius = a.radius.empty() ? StationRadius()
                                     : NumberOption("--radius", a.radius, 0, kLargestStationRadius, "metres");
    return wanted;
}

// --- the station at the base -----------------------------------------------------------------------------

StationCatalogue::Position NeedPosition(const Work& w) {
    if (const auto at = BasePosition(w.group)) return *at;
    throw CommandError(exitNotFound, w.name +
                                         ": the base has no complete position; give one with gpsbook set, as "
                                         "base_lat=, base_lon= and base_h=");
}

[[noreturn]] void NoStation(const Work& w, const StationCatalogue::Position& at, const Wanted& wanted) {
    constexpr double kAnywhere = 2e7;  // metres: the earth is smaller
    const StationCatalogue& catalogue = UsedStations().set.catalogue;
    const Station* nearest = catalogue.Find(at, {kAnywhere, wanted.province, wanted.frame});
    std::string text =
        fmt::format("{}: no such station within {} of the base; ", w.name, DistanceText(wanted.radius));
    text += nearest ? "the nearest is " + StationLine(*nearest) + ", " +
                          DistanceText(Distance(nearest->position, at)) +
                          " away; give --radius, or add stations with gpsbook stations add"
                    : "the catalogue has none at all; add some with gpsbook stations add";
    throw CommandError(exitNotFound, text);
}

/// "ETRF2000 2008.0, 3.000 m away; IGb14 2010.0, 2.000 m away".
std::string SetsText(const std::vector<Hit>& sets) {
    std::string text;
    for (const Hit& hit : sets) {
        const Station& s = *hit.station;
        text += (text.empty() ? "" : "; ") + s.frame + (s.epoch.empty() ? "" : ' ' + s.epoch) + ", " +
                DistanceText(hit.distance) + " away";
    }
    return text;
}

[[noreturn]] void NoFittingSet(const Work& w, const Wanted& wanted, const std::vector<Hit>& sets) {
    const std::string tagged = w.name + ": tagged " + FrameOf(w.group).Text();
    const std::string& called = sets.front().station->Called();
    throw CommandError(
        exitNotFound,
        wanted.frame.empty()
            ? fmt::format("{}, and no coordinates of {} fit that: {}. Clear the tag first, or set the other",
                          tagged, called, SetsText(sets))
            : fmt::format("{}, and coordinates in {} do not fit that; {} has {}. Give another --frame, clear "
                          "the tag first, or set the other",
                          tagged, wanted.frame, called, SetsText(sets)));
}

/// Finds the nearest station. When its coordinates are taken they have to be in a frame that the base's tag
/// allows: another station that has such is another place, however near it is.
void FindStation(Work& w, const Wanted& wanted, bool takesCoordinates) {
    const StationCatalogue::Position at = NeedPosition(w);
    const StationCatalogue& catalogue = UsedStations().set.catalogue;
    NeedFrame(catalogue, wanted.frame);
    const auto near = catalogue.Near(at, {wanted.radius, wanted.province, wanted.frame});
    if (near.empty()) NoStation(w, at, wanted);
    const std::string& id = near.front().station->id;
    const BaseFrame frame = FrameOf(w.group);
    const bool anyFrame = !takesCoordinates || !frame.IsTagged();
    for (const Hit& hit : near) {
        if (hit.station->id != id || !(anyFrame || !frame.Contradicts(FrameKindOf(hit.station->frame))))
            continue;
        if (w.station)
            w.otherSets.push_back(hit);
        else
            w.station = hit;
    }
    if (w.station) return;
    auto sets = catalogue.Near(at, {kLargestStationRadius, CTrovaNomeBaseGps::provTutte, {}});
    std::erase_if(sets, [&](const Hit& hit) { return hit.station->id != id; });
    NoFittingSet(w, wanted, sets);
}

/// While it lives the library finds one station, whatever it asks for.
class OnlyStation {
public:
    explicit OnlyStation(const Station& station) {
        CTrovaNomeBaseGps::GetInstance()->SetRicerca(
            [&station](double& x, double& y, double& z, CTrovaNomeBaseGps::enumProvincia, std::string& name) {
                x = station.position[0];
                y = station.position[1];
                z = station.position[2];
                name = station.Called();
                return true;
            });
    }
    ~OnlyStation() { CTrovaNomeBaseGps::GetInstance()->SetRicerca({}); }
    OnlyStation(const OnlyStation&) = delete;
    OnlyStation& operator=(const OnlyStation&) = delete;
};

// The library stores the position without a report, but who shares the book has to learn of it.
void TakeCoordinates(Work& w, CTrovaNomeBaseGps::enumProvincia province) {
    CGrpGps& group = w.group;
    const double lat = group.GetBaseLat(), lon = group.GetBaseLong(), h = group.GetBaseElev();
    group.SetNomeCoordBaseFromCoord(province);
    if (group.GetBaseLat() != lat) group.CloudItemChanged(CHG_GRP_BASELAT);
    if (group.GetBaseLong() != lon) group.CloudItemChanged(CHG_GRP_BASELONG);
    if (group.GetBaseElev() != h) group.CloudItemChanged(CHG_GRP_BASEELEV);
    if (!RefreshPlane(w.book, {w.g, -1}))
        std::cerr << "note: plane coordinates stay as they were: the group has no usable conversion; set its "
                     "crs and they follow\n";
}

void Name(Work& w, const Arguments& a, const Wanted& wanted) {
    FindStation(w, wanted, a.takeCoordinates);
    const OnlyStation only(*w.station->station);
    // At the station itself there is nothing to take: the way there and back would round the last digits.
    if (a.takeCoordinates && w.station->distance > 1e-6)
        TakeCoordinates(w, wanted.province);
    else
        w.group.SetNomeBaseFromCoord(wanted.province);
}

// --- the tag ---------------------------------------------------------------------------------------------

void Tag(Work& w, const std::string& tag) {
    const BaseFrame before = FrameOf(w.group);
    if (tag == "clear") {
        while (w.group.ClearBaseEuref()) {
        }
        return;
    }
    const bool etrf2000 = tag == "etrf2000";
    if (before.IsTwofold() || (etrf2000 ? before.euref : before.etrf2000))
        throw CommandError(exitUsage, w.name + ": the base is tagged " + before.Text() +
                                          "; clear that first: gpsbook base BOOK GROUP tag clear");
    w.group.SetBaseEuref(etrf2000 ? BASE_ETRF2000 : BASE_EUREF);
}

// --- what is told ----------------------------------------------------------------------------------------

void Look(Work& w) {
    const auto at = BasePosition(w.group);
    if (!at) return;
    const StationsInUse& used = UsedStations();
    const auto near = used.set.catalogue.Near(*at, {used.radius, CTrovaNomeBaseGps::provTutte, {}});
    for (const Hit& hit : near) {
        if (!w.station)
            w.station = hit;
        else if (hit.station->id == w.station->station->id)
            w.otherSets.push_back(hit);
    }
}

std::string WithoutStation(const Work& w) {
    return Printable(w.name) +
           (BasePosition(w.group) ? ": no station at the base\n" : ": the base has no complete position\n");
}

std::string Text(const Work& w, const Arguments& a) {
    const BaseFrame frame = FrameOf(w.group);
    std::string text;
    if (a.action.empty()) {
        text += fmt::format("{}: base {}\n", Printable(w.name),
                            frame.IsTagged() ? "in " + frame.Text() : "without a frame");
        if (!w.station) text += WithoutStation(w);
    }
    if (w.station) {
        text += fmt::format("{}: at {}, {} away\n", Printable(w.name),
                            Printable(StationLine(*w.station->station)), DistanceText(w.station->distance));
        const FrameKind kind = FrameKindOf(w.station->station->frame);
        if (frame.Contradicts(kind))
            text += fmt::format("{}: the base is tagged {}, these coordinates are in {}\n", Printable(w.name),
                                frame.Text(), Printable(w.station->station->frame));
    }
    if (a.takeCoordinates && !w.otherSets.empty())
        text += fmt::format("{}: note: {} has other coordinates: {}{}\n", Printable(w.name),
                            Printable(w.station->station->Called()), Printable(SetsText(w.otherSets)),
                            a.frame.empty() ? "; --frame chooses" : "");
    text += ChangesText(w.changed);
    if (!a.action.empty() && w.changed.empty()) text += "nothing changed: the values are those of before\n";
    if (a.dryRun) text += "not saved (--dry-run)\n";
    return text;
}

Json SetsJson(const std::vector<Hit>& sets) {
    Json all = Json::array();
    for (const Hit& hit : sets)
        all.push_back(
            {{"frame", hit.station->frame}, {"epoch", hit.station->epoch}, {"distance", hit.distance}});
    return all;
}

Json ResultJson(const std::string& file, const Work& w, bool saved) {
    const BaseFrame frame = FrameOf(w.group);
    return {{"book", file},
            {"saved", saved},
            {"group", w.g},
            {"name", w.name},
            {"frame", frame.IsTagged() ? Json(frame.Text()) : Json(nullptr)},
            {"station", w.station ? StationJson(*w.station->station, w.station->distance) : Json(nullptr)},
            {"other_sets", SetsJson(w.otherSets)},
            {"changed", ChangesJson(w.changed)}};
}

void Run(const Arguments& a) {
    RefuseOptions(a);
    const Wanted wanted = WantedFrom(a);
    const bool writes = !a.action.empty() && !a.dryRun;
    const auto project = writes ? OpenToWrite(a.book) : OpenToRead(a.book);
    if (!writes) EndReading(*project);
    CLibGps& book = project->GetBook();
    const int g = FindGroup(book, a.group);
    Work w{book, g, *book.GetGrpAt(g), PlaceText(book, {g}), {}, {}, {}};
    const std::vector<FieldValue> before = ValuesOf(w.group);
    if (a.action == "tag") Tag(w, a.tag);
    if (a.action == "name") Name(w, a, wanted);
    if (a.action.empty()) Look(w);
    if (auto changes = ChangesSince(before, w.group); !changes.empty())
        w.changed.push_back({{g}, w.name, std::move(changes)});
    const bool saved = writes && !w.changed.empty();
    if (saved) {
        project->GetEdits().GroupChanged(g);
        SaveBook(*project);
    }
    const std::string file = project->GetPath();
    const std::string otherwise = saved ? SavedButUntold(file) : "the result could not be written";
    if (a.json)
        PrintJson(ResultJson(file, w, saved), otherwise);
    else
        PrintText(Text(w, a), otherwise);
}

void AddOptions(CLI::App& c, Arguments& a) {
    AddBook(c, a.book);
    c.add_option("GROUP", a.group, "The group: its name or position")->required()->check(Filled());
    c.add_option("ACTION", a.action, "Sets a tag, or takes over a station; nothing: tells what is known")
        ->type_name("tag|name")
        ->check(CLI::IsMember({"tag", "name"}));
    c.add_option("TAG", a.tag, "The frame of the base's coordinates, behind tag")
        ->type_name("euref|etrf2000|clear")
        ->check(CLI::IsMember({"euref", "etrf2000", "clear"}));
    c.add_option("--province", a.province, "Only stations in this province: its sign or name, any, abroad")
        ->type_name("PROVINCE")
        ->check(Filled());
    c.add_option("--frame", a.frame, "Only coordinates in this frame, such as ETRF2000")
        ->type_name("FRAME")
        ->check(Filled());
    c.add_option("--radius", a.radius, "How far from the base a station may be, instead of the setting")
        ->type_name("METRES")
        ->check(Filled());
    c.add_flag("--take-coordinates", a.takeCoordinates,
               "With name: the station's position becomes the base's");
    c.add_flag("--dry-run", a.dryRun, "Tell what would change, and save nothing");
    c.add_flag("--json", a.json, "Print the result as JSON");
    c.footer(
        "Examples:\n"
        "  gpsbook base site.gpsbook Quay\n"
        "  gpsbook base site.gpsbook Quay tag etrf2000\n"
        "  gpsbook base site.gpsbook Quay name --province UD --take-coordinates --dry-run");
}

}  // namespace

void AddBaseCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("base", "Tell and set the frame of a base, and name it by its station");
    const auto a = std::make_shared<Arguments>();
    AddOptions(*command, *a);
    command->callback([a, &exitCode] { exitCode = RunCommand("base", [&] { Run(*a); }); });
}

}  // namespace gpsbook
