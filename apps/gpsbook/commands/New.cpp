#include "apps/gpsbook/commands/New.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/BookSettings.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/book/VersionLimits.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/LogArguments.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/options/SettingsNote.h"

namespace gpsbook {

namespace {

using gpsproject::Project;

struct Arguments {
    std::string book;
    std::string crs;
    std::string name;
    std::string antenna;
    std::string heights;
    std::string version = std::to_string(Project::kNewestVersion);
    bool overwrite = false;
    bool json = false;
};

void Tell(const Arguments& a, const std::string& file, const std::string& crs, short version) {
    const std::vector<std::string> missing = NotHeldIn(version);
    const std::string otherwise = "the result could not be told, " + file + " is complete";
    if (a.json) {
        PrintJson({{"book", file}, {"crs", crs}, {"stream_version", version}, {"not_held", missing}},
                  otherwise);
        return;
    }
    std::string text =
        fmt::format("{}: new field book, {}, stream version {}\n", file, SystemLabel(crs), version);
    if (!missing.empty()) {
        fmt::format_to(std::back_inserter(text), "version {} has no place for:\n", version);
        for (const std::string& what : missing) text += "  " + what + '\n';
    }
    PrintText(text, otherwise);
}

void Run(const Arguments& a) {
    const std::string file = NewBookFile(a.book);
    const short version = StreamVersionFrom("--stream-version", a.version);
    const std::string crs = ProjectionFrom(a.crs).GetDefinizione();
    CheckText("--name", a.name);
    NoteUnusableSettings();  // a new book takes its options from them
    Project project(version);
    gpsproject::ProjectSettings& settings = project.GetSettings();
    settings[kSettingCrs] = crs;
    if (!a.name.empty()) settings[kSettingName] = a.name;
    if (!a.antenna.empty()) settings[kSettingAntenna] = fmt::format("{}", AntennaFrom(a.antenna));
    if (!a.heights.empty()) {
        HeightsFrom(a.heights);
        settings[kSettingHeights] = a.heights;
    }
    SaveNewBook(project, file, a.overwrite);
    Tell(a, file, crs, version);
}

void AddOptions(CLI::App& c, Arguments& a) {
    c.add_option("BOOK", a.book, "The field book to make; .gpsbook is put behind a name without ending")
        ->required()
        ->check(Filled());
    c.add_option("--crs", a.crs, "Plane system of its groups: EPSG:code, a PROJ string, WKT or a whole name")
        ->required()
        ->type_name("CRS");
    c.add_option("--name", a.name, "Name of the project")->type_name("TEXT");
    AddHeightOptions(c, a.antenna, a.heights, {});
    c.add_option("--stream-version", a.version,
                 fmt::format("Version in which it is kept, {} to {} [{}]", Project::kOldestVersion,
                             Project::kNewestVersion, Project::kNewestVersion))
        ->type_name("V")
        ->check(Filled());
    c.add_flag("--overwrite", a.overwrite, "Replace a book that exists; it is kept as backup");
    c.add_flag("--json", a.json, "Print what was made as JSON");
    c.footer(
        "Examples:\n"
        "  gpsbook new site.gpsbook --crs EPSG:32633\n"
        "  gpsbook new site --crs EPSG:32633 --name \"Quay, north side\" --antenna 2.000\n"
        "  gpsbook new old.gpsbook --crs EPSG:32633 --stream-version 903");
}

}  // namespace

void AddNewCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("new", "Make an empty field book");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = RunCommand("new", [&] { Run(*arguments); }); });
}

}  // namespace gpsbook
