#include "host/coord/StationFiles.h"

#include <dlfcn.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

#include "host/base/SettingsFile.h"
#include "platform/base/CIniFile.h"
#include "platform/base/fileHelpers.h"

namespace {

constexpr const char* kSection = "STATIONS";
constexpr const char* kRadius = "RADIUS";  // metres, as text

// The way from the library to what is installed with it; a build tree has the same arrangement as most
// installations.
#ifdef GPS_STATIONS_FROM_LIBRARY
constexpr const char* kFromLibrary = GPS_STATIONS_FROM_LIBRARY;
#else
constexpr const char* kFromLibrary = "../share/gps-survey/stations.csv";
#endif
constexpr const char* kFromBuild = "../share/gps-survey/stations.csv";

std::string FolderOf(const std::string& path) {
    const std::size_t end = path.find_last_of("/\\");
    return end == std::string::npos ? std::string() : path.substr(0, end + 1);
}

// The folder of the library that this code is in, wherever it has been moved to.
std::string LibraryFolder() {
    static const char here = 0;
    Dl_info info{};
    if (dladdr(&here, &info) == 0 || !info.dli_fname) return {};
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(info.dli_fname, nullptr), &std::free);
    return FolderOf(real ? real.get() : info.dli_fname);
}

// Added stations replace those of the same id, frame and epoch, in their places.
void Merge(std::vector<Station>& all, std::vector<Station> more) {
    using Key = std::tuple<std::string_view, std::string_view, std::string_view>;
    const auto keyOf = [](const Station& s) { return Key(s.id, s.frame, s.epoch); };
    std::map<Key, std::size_t> places;
    const std::vector<Station> before = std::move(all);
    for (std::size_t i = 0; i < before.size(); ++i) places.emplace(keyOf(before[i]), i);
    std::vector<Station> merged = before;
    for (Station& station : more) {
        const auto found = places.find(keyOf(station));
        if (found == places.end())
            merged.push_back(std::move(station));
        else
            merged[found->second] = std::move(station);
    }
    all = std::move(merged);
}

std::unique_ptr<StationsInUse>& InUse() {
    static std::unique_ptr<StationsInUse> inUse;
    return inUse;
}

}  // namespace

std::string ShippedStationsPath() {
    if (const char* other = std::getenv("GPS_SURVEY_STATIONS")) return other;
    const std::string folder = LibraryFolder();
    for (const char* way : {kFromLibrary, kFromBuild})
        if (const std::string path = std::filesystem::path(folder + way).lexically_normal().string();
            FEsisteIlFile(path.c_str()))
            return path;
    return {};
}

std::string OwnStationsPath() {
    const std::string settings = CIniFile::GetDefaultPath();
    return settings.empty() ? std::string() : FolderOf(settings) + "stations.csv";
}

double StationRadius() {
    const std::string text = CIniFile().GetString(kSection, kRadius, "");
    double radius = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, radius);
    const bool usable = error == std::errc{} && stop == end && radius >= 0 && radius <= kLargestStationRadius;
    return usable ? radius : kStationRadius;
}

bool SetStationRadius(double radius) {
    if (!(radius >= 0 && radius <= kLargestStationRadius)) return false;
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), radius).ptr;
    return CIniFile().WriteString(kSection, kRadius, std::string(text.data(), end));
}

StationTable ReadStationFile(const std::string& path) {
    using State = SettingsText::State;
    const SettingsText file = ReadSettings(path);
    switch (file.state) {
        case State::Readable:
            return ReadStationTable(file.text);
        case State::Missing:
            return {{}, {{0, "there is no such file; check the name"}}, {}};
        case State::Damaged:
            return {{}, {{0, "no table of stations: it holds zero bytes, or is larger than 16 MiB"}}, {}};
        case State::Refused:
            break;
    }
    return {{}, {{0, "the file cannot be read; check its permissions"}}, {}};
}

StationSet LoadStations() {
    std::vector<Station> all;
    StationSet set;
    const std::string own = OwnStationsPath();
    for (const std::string& path : {ShippedStationsPath(), own}) {
        if (path.empty() || (path == own && !FEsisteIlFile(path.c_str()))) continue;
        StationTable table = ReadStationFile(path);
        set.files.push_back(
            {path, table.stations.size(), std::move(table.problems), std::move(table.passedOver)});
        Merge(all, std::move(table.stations));
    }
    set.catalogue = StationCatalogue(std::move(all));
    return set;
}

bool WriteOwnStations(const std::vector<Station>& stations) {
    const std::string path = OwnStationsPath();
    const std::string text = WriteStationTable(stations);
    return !path.empty() && ChangeSettings(path, [&](const SettingsText&) {
        return SettingsChange{text, false};
    });
}

const StationsInUse& GetStationsInUse() {
    if (!InUse()) InUse() = std::make_unique<StationsInUse>(StationsInUse{LoadStations(), StationRadius()});
    return *InUse();
}

void ForgetStations() { InUse().reset(); }
