#include "apps/gpsbook/commands/Stations.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/stations/StationText.h"
#include "apps/gpsbook/stations/UsedStations.h"
#include "platform/coord/CEllissoide.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using Hit = StationCatalogue::Hit;

constexpr double kHighest = 10'000;   // metres: no station is that far above or below the ellipsoid
constexpr double kNear = 100;         // kilometres, unless given
constexpr double kFarthest = 12'800;  // kilometres: straight through the earth
constexpr double kOnePlace = 100;     // metres: an id that stands farther apart is that of two stations
constexpr std::size_t kMostProblems = 20;

struct Arguments {
    std::string file, lat, lon, within, metres;
    std::string province, frame;
    int count = 0;
    bool replace = false;
    bool dryRun = false;
    bool json = false;
};

std::string SetsText(std::size_t n) { return fmt::format("{} set{} of coordinates", n, n == 1 ? "" : "s"); }

std::string Problem(const std::string& file, const StationProblem& p) {
    return p.line == 0 ? file + ": " + p.what : fmt::format("{}: line {}: {}", file, p.line, p.what);
}

// --- list and near ---------------------------------------------------------------------------------------

std::string TableText(const std::vector<Hit>& hits, bool distances) {
    std::vector<TextTable::Column> columns{{"id"},       {"name"},      {"country"},
                                           {"province"}, {"lat", true}, {"lon", true},
                                           {"h", true},  {"frame"},     {"epoch"}};
    if (distances) columns.insert(columns.begin(), {"distance", true});
    TextTable table(std::move(columns));
    const auto cells = [&](const Hit& hit) {
        const Station& s = *hit.station;
        double lat = 0, lon = 0, h = 0;
        CEllissoide().GeocToGraf(s.position[0], s.position[1], s.position[2], lat, lon, h);
        std::vector<std::string> row{s.id,
                                     s.name,
                                     s.country,
                                     s.province,
                                     fmt::format("{:.9f}", lat),
                                     fmt::format("{:.9f}", lon),
                                     fmt::format("{:.4f}", h),
                                     s.frame,
                                     s.epoch};
        if (distances) row.insert(row.begin(), DistanceText(hit.distance));
        return row;
    };
    for (const Hit& hit : hits) table.Measure(cells(hit));
    std::string text = hits.empty() ? "" : table.Head();
    for (const Hit& hit : hits) text += table.Line(cells(hit));
    return text;
}

void Tell(const Arguments& a, const std::vector<Hit>& hits, bool distances) {
    if (a.json) {
        Json all = Json::array();
        for (const Hit& hit : hits)
            all.push_back(StationJson(*hit.station, distances ? std::optional(hit.distance) : std::nullopt));
        return PrintJson({{"stations", all}});
    }
    std::map<std::string_view, int> ids;
    for (const Hit& hit : hits) ++ids[hit.station->id];
    PrintText(TableText(hits, distances) +
              fmt::format("{}, {}\n", Counted(static_cast<std::int64_t>(ids.size()), "station"),
                          SetsText(hits.size())));
}

void List(const Arguments& a) {
    const StationCatalogue::Query query{0, ProvinceOption(a.province), a.frame};
    NeedFrame(UsedStations().set.catalogue, a.frame);
    std::vector<Hit> all;
    for (const Station& station : UsedStations().set.catalogue.Stations())
        if (StationCatalogue::Fits(station, query)) all.push_back({&station, 0});
    Tell(a, all, false);
}

// In a straight line, and level: the position is taken as high as each station.
void Near(const Arguments& a) {
    const double lat = NumberOption("LAT", a.lat, -90, 90, "degrees");
    const double lon = NumberOption("LON", a.lon, -180, 180, "degrees");
    const double within =
        a.within.empty() ? kNear : NumberOption("--within", a.within, 0, kFarthest, "kilometres");
    const auto at = [&](double h) {
        StationCatalogue::Position p{};
        CEllissoide().GrafToGeoc(lat, lon, h, p[0], p[1], p[2]);
        return p;
    };
    NeedFrame(UsedStations().set.catalogue, a.frame);
    std::vector<Hit> hits = UsedStations().set.catalogue.Near(
        at(0), {within * 1000 + kHighest, ProvinceOption(a.province), a.frame});
    for (Hit& hit : hits) {
        double sLat = 0, sLon = 0, h = 0;
        const auto& p = hit.station->position;
        CEllissoide().GeocToGraf(p[0], p[1], p[2], sLat, sLon, h);
        hit.distance = Distance(p, at(h));
    }
    std::erase_if(hits, [&](const Hit& hit) { return hit.distance > within * 1000; });
    std::stable_sort(hits.begin(), hits.end(),
                     [](const Hit& x, const Hit& y) { return x.distance < y.distance; });
    if (hits.empty())
        throw CommandError(exitNotFound,
                           fmt::format("no such station within {} km; give --within, or add stations "
                                       "with gpsbook stations add",
                                       within));
    if (a.count > 0 && hits.size() > static_cast<std::size_t>(a.count))
        hits.resize(static_cast<std::size_t>(a.count));
    Tell(a, hits, true);
}

// --- add -------------------------------------------------------------------------------------------------

void RefuseProblems(const std::string& file, const StationTable& table) {
    if (table.problems.empty()) return;
    for (std::size_t i = 1; i < table.problems.size() && i < kMostProblems; ++i)
        std::cerr << Problem(file, table.problems[i]) << '\n';
    if (table.problems.size() > kMostProblems)
        std::cerr << "... and " << table.problems.size() - kMostProblems << " more\n";
    const bool missing = table.problems[0].what.starts_with("there is no such file");
    throw CommandError(missing ? exitNotFound : exitRefused,
                       Problem(file, table.problems[0]) + "; nothing was added");
}

/// Stations that are there, and what a table does to them.
struct Merged {
    std::vector<Station> stations;
    std::size_t added = 0, replaced = 0, same = 0;
};

Merged Merge(const Arguments& a, const std::vector<Station>& own, const std::vector<Station>& more) {
    Merged merged{own, 0, 0, 0};
    std::map<Station::SetKey, std::size_t> places;
    for (std::size_t i = 0; i < own.size(); ++i) places.emplace(own[i].Set(), i);
    for (const Station& station : more) {
        const auto [at, isNew] = places.try_emplace(station.Set(), merged.stations.size());
        if (isNew) {
            merged.stations.push_back(station);
            ++merged.added;
        } else if (merged.stations[at->second] == station) {
            ++merged.same;
        } else if (!a.replace) {
            throw CommandError(
                exitConflict,
                fmt::format("{}: {} in {} was added before with other values; see which hold, and "
                            "give --replace to take those of the file. Nothing was added",
                            a.file, station.id, station.frame));
        } else {
            merged.stations[at->second] = station;
            ++merged.replaced;
        }
    }
    return merged;
}

/// How many sets of a table stand in the shipped catalogue with other values.
std::size_t ShippedReplaced(const std::vector<Station>& more) {
    const std::string path = ShippedStationsPath();
    if (path.empty()) return 0;
    const StationTable shipped = ReadStationFile(path);
    std::map<Station::SetKey, const Station*> sets;
    for (const Station& station : shipped.stations) sets.emplace(station.Set(), &station);
    return static_cast<std::size_t>(std::count_if(more.begin(), more.end(), [&](const Station& station) {
        const auto found = sets.find(station.Set());
        return found != sets.end() && !(*found->second == station);
    }));
}

/// The table of added stations as it stands, with the stations of another.
Merged Joined(const Arguments& a, const StationTable& own, const StationTable& table) {
    RefuseProblems(OwnStationsPath(), own);
    return Merge(a, own.stations, table.stations);
}

/// Reads, merges and writes while no other process can: what it adds at the same time stays.
Merged Save(const Arguments& a, const std::string& path, const StationTable& table) {
    Merged merged;
    const OwnStationsChange change =
        ChangeOwnStations([&](const StationTable& own) -> std::optional<std::vector<Station>> {
            merged = Joined(a, own, table);
            if (merged.added + merged.replaced == 0) return std::nullopt;
            return merged.stations;
        });
    if (!change.done)
        throw CommandError(exitFailure, path +
                                            ": cannot be written; see whether the folder may be written to, "
                                            "and whether the disk is full. A table holds 16 MiB at most");
    if (!change.kept.empty())
        std::cerr << "note: " << path << " was not as this program writes it; what remarks, columns and "
                  << "order it had are kept in " << change.kept << '\n';
    return merged;
}

void Add(const Arguments& a) {
    const StationTable table = ReadStationFile(a.file);
    RefuseProblems(a.file, table);
    const std::string path = OwnStationsPath();
    if (path.empty())
        throw CommandError(exitFailure,
                           "there is no home folder to add stations in; name a settings file in "
                           "GPS_SURVEY_SETTINGS");
    const Merged merged = a.dryRun ? Joined(a, ReadOwnStations(), table) : Save(a, path, table);
    const bool saved = !a.dryRun && merged.added + merged.replaced > 0;
    if (!table.passedOver.empty()) {
        std::string names;
        for (const std::string& name : table.passedOver) names += (names.empty() ? "" : ", ") + name;
        std::cerr << "note: " << a.file << ": columns that are not taken over: " << names << '\n';
    }
    const std::size_t shipped = ShippedReplaced(table.stations);
    if (shipped > 0)
        std::cerr << "note: " << SetsText(shipped) << " of " << a.file << " instead of "
                  << (shipped == 1 ? "one" : "those") << " of the catalogue that comes with the program\n";
    const std::string otherwise =
        saved ? "the result could not be told, " + path + " is written" : "the result could not be written";
    if (a.json)
        return PrintJson({{"file", path},
                          {"saved", saved},
                          {"added", merged.added},
                          {"replaced", merged.replaced},
                          {"same", merged.same},
                          {"instead_of_shipped", shipped}},
                         otherwise);
    PrintText(fmt::format("{}: {} added, {} replaced, {} there already{}\n", path, merged.added,
                          merged.replaced, merged.same, a.dryRun ? "; not saved (--dry-run)" : ""),
              otherwise);
}

// --- check -----------------------------------------------------------------------------------------------

/// What the look-up could go wrong by, and what is missing to use coordinates.
std::vector<std::string> Doubts(const StationCatalogue& catalogue, double radius) {
    std::vector<std::string> all;
    std::map<std::string_view, const Station*> first;
    for (const Station& s : catalogue.Stations()) {
        const auto [at, isNew] = first.try_emplace(s.id, &s);
        if (!isNew && Distance(at->second->position, s.position) > kOnePlace)
            all.push_back(fmt::format("{}: {} apart in {} and {}; one id is one station", s.id,
                                      DistanceText(Distance(at->second->position, s.position)),
                                      at->second->frame, s.frame));
        for (const Hit& hit : catalogue.Near(s.position, {radius, CTrovaNomeBaseGps::provTutte, {}}))
            if (hit.station > &s && hit.station->id != s.id)
                all.push_back(
                    fmt::format("{} and {}: {} apart, nearer than the search radius of {}; a base there "
                                "gets the nearer of them",
                                s.id, hit.station->id, DistanceText(hit.distance), DistanceText(radius)));
        if (FrameKindOf(s.frame) == FrameKind::unknown)
            all.push_back(
                fmt::format("{}: the frame \"{}\" is not known; nothing can contradict it", s.id, s.frame));
    }
    return all;
}

void Check(const Arguments& a) {
    const StationsInUse& used = GetStationsInUse();
    Json files = Json::array();
    std::string text;
    std::size_t findings = 0;
    for (const StationFile& file : used.set.files) {
        Json problems = Json::array();
        for (const StationProblem& p : file.problems) {
            problems.push_back({{"line", p.line}, {"what", p.what}});
            text += Printable(Problem(file.path, p)) + '\n';
        }
        findings += file.problems.size();
        files.push_back({{"file", file.path}, {"sets", file.stations}, {"problems", problems}});
        text += fmt::format("{}: {}, {}\n", file.path, SetsText(file.stations),
                            Counted(static_cast<std::int64_t>(file.problems.size()), "problem"));
    }
    const std::vector<std::string> doubts = Doubts(used.set.catalogue, used.radius);
    for (const std::string& doubt : doubts) text += Printable(doubt) + '\n';
    findings += doubts.size();
    if (used.set.files.empty()) text += "there is no catalogue; add stations with gpsbook stations add\n";
    text += fmt::format("search radius {}\n", DistanceText(used.radius));
    if (a.json)
        PrintJson({{"files", files}, {"doubts", doubts}, {"radius", used.radius}});
    else
        PrintText(text);
    if (findings > 0)
        throw CommandError(exitConflict, Counted(static_cast<std::int64_t>(findings), "finding") +
                                             "; lines with problems are not used, mend them in their file");
}

// --- radius ----------------------------------------------------------------------------------------------

void Radius(const Arguments& a) {
    if (!a.metres.empty()) {
        const double radius = NumberOption("METRES", a.metres, 0, kLargestStationRadius, "metres");
        if (!SetStationRadius(radius))
            throw CommandError(exitFailure,
                               "the settings cannot be written; see whether their folder may be");
    }
    const double radius = StationRadius();
    if (a.json)
        PrintJson({{"radius", radius}});
    else
        PrintText(DistanceText(radius) + '\n');
}

// --- the command line ------------------------------------------------------------------------------------

using Work = void (*)(const Arguments&);

CLI::App* AddWithin(CLI::App& stations, const std::shared_ptr<Arguments>& a, const char* name,
                    const char* help, const char* examples, Work work, int& exitCode) {
    CLI::App* c = stations.add_subcommand(name, help);
    c->add_flag("--json", a->json, "Print the result as JSON");
    c->footer(examples);
    c->callback([a, work, &exitCode] { exitCode = RunCommand("stations", [&] { work(*a); }); });
    return c;
}

void AddFilters(CLI::App& c, Arguments& a) {
    c.add_option("--province", a.province, "Only stations in this province: its sign or name, any, abroad")
        ->type_name("PROVINCE")
        ->check(Filled());
    c.add_option("--frame", a.frame, "Only coordinates in this frame, such as ETRF2000")
        ->type_name("FRAME")
        ->check(Filled());
}

}  // namespace

void AddStationsCommand(CLI::App& app, int& exitCode) {
    CLI::App* stations = app.add_subcommand("stations", "The catalogue of permanent stations");
    stations->require_subcommand(1);
    const auto a = std::make_shared<Arguments>();
    CLI::App* c = AddWithin(*stations, a, "list", "List the stations",
                            "Examples:\n"
                            "  gpsbook stations list --province UD --frame ETRF2000",
                            List, exitCode);
    AddFilters(*c, *a);
    c = AddWithin(*stations, a, "near", "List the stations near a position",
                  "Examples:\n"
                  "  gpsbook stations near 46.05 13.23 --within 30 --count 5",
                  Near, exitCode);
    c->add_option("LAT", a->lat, "Latitude in degrees, north positive")->required()->check(Filled());
    c->add_option("LON", a->lon, "Longitude in degrees, east positive")->required()->check(Filled());
    c->add_option("--within", a->within, "How far, in a straight line [100]")
        ->type_name("KILOMETRES")
        ->check(Filled());
    c->add_option("--count", a->count, "At most so many sets of coordinates")
        ->type_name("NUMBER")
        ->check(CLI::PositiveNumber);
    AddFilters(*c, *a);
    c = AddWithin(*stations, a, "add", "Add the stations of a table to the catalogue",
                  "Examples:\n"
                  "  gpsbook stations add regional-network.csv --dry-run",
                  Add, exitCode);
    c->add_option("FILE", a->file, "A table of stations, comma-separated")->required()->check(Filled());
    c->add_flag("--replace", a->replace, "Also where stations were added before with other values");
    c->add_flag("--dry-run", a->dryRun, "Tell what would be added, and write nothing");
    AddWithin(*stations, a, "check", "Check the files of the catalogue, and what they hold",
              "Examples:\n"
              "  gpsbook stations check",
              Check, exitCode);
    c = AddWithin(*stations, a, "radius", "Tell, or set, how far from a base its station is looked for",
                  "Examples:\n"
                  "  gpsbook stations radius 2.5",
                  Radius, exitCode);
    c->add_option("METRES", a->metres, "The new search radius")->check(Filled());
}

}  // namespace gpsbook
