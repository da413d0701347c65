#include "host/coord/StationFiles.h"

#include <dlfcn.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
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
    const std::vector<Station> before = std::move(all);
    std::map<Station::SetKey, std::size_t> places;
    for (std::size_t i = 0; i < before.size(); ++i) places.emplace(before[i].Set(), i);
    std::vector<Station> merged = before;
    for (Station& station : more) {
        const auto found = places.find(station.Set());
        if (found == places.end())
            merged.push_back(std::move(station));
        else
            merged[found->second] = std::move(station);
    }
    all = std::move(merged);
}

StationTable TableOf(const SettingsText& file, const std::string& path) {
    using State = SettingsText::State;
    const auto problem = [](const char* what) { return StationTable{{}, {{0, what}}, {}}; };
    std::error_code unknown;
    switch (file.state) {
        case State::Readable:
            return ReadStationTable(file.text);
        case State::Missing:
            return problem("there is no such file; check the name");
        case State::Damaged:
            return problem("no table of stations: it holds zero bytes, or is larger than 16 MiB");
        case State::Refused:
            break;
    }
    if (std::filesystem::is_directory(path, unknown))
        return problem("this is a folder; give the file of a table in it");
    if (std::filesystem::is_other(path, unknown))
        return problem("this is no file but a pipe or device; write the table to a file first");
    return problem("the file cannot be read; check its permissions");
}

// No table yet is a table without stations.
StationTable OwnTableOf(const SettingsText& file, const std::string& path) {
    return file.state == SettingsText::State::Missing ? StationTable{} : TableOf(file, path);
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

StationTable ReadStationFile(const std::string& path) { return TableOf(ReadSettings(path), path); }

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

OwnStationsChange ChangeOwnStations(
    const std::function<std::optional<std::vector<Station>>(const StationTable&)>& change) {
    const std::string path = OwnStationsPath();
    OwnStationsChange result;
    if (path.empty()) return result;
    const auto changeText = [&](const SettingsText& old) -> SettingsChange {
        const StationTable before = OwnTableOf(old, path);
        const auto after = change(before);
        if (!after) return {old.text};
        // What would not be written again as it stands is more than stations.
        const bool more = !old.text.empty() && old.text != WriteStationTable(before.stations);
        return {WriteStationTable(*after), more, ".old"};
    };
    result.done = ChangeSettings(path, changeText, &result.kept);
    return result;
}

StationTable ReadOwnStations() {
    const std::string path = OwnStationsPath();
    return path.empty() ? StationTable{} : OwnTableOf(ReadSettings(path), path);
}

const StationsInUse& GetStationsInUse() {
    if (!InUse()) InUse() = std::make_unique<StationsInUse>(StationsInUse{LoadStations(), StationRadius()});
    return *InUse();
}

void ForgetStations() { InUse().reset(); }
