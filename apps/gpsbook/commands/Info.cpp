#include "apps/gpsbook/commands/Info.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/BookSummary.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CloudJson.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/ReportJson.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "apps/gpsbook/writers/PointRow.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book;
    bool json = false;
};

std::int64_t SizeOf(const std::string& file) {
    std::error_code failed;
    const auto size = std::filesystem::file_size(file, failed);
    return failed ? -1 : static_cast<std::int64_t>(size);
}

std::string RangeText(const char* name, double low, double high) {
    return fmt::format("{} {:.4f} to {:.4f}", name, low, high);
}

std::string Text(gpsproject::Project& project, const BookSummary& s) {
    std::string out =
        fmt::format("{}: {} bytes, stream version {}{}\n", project.GetPath(), SizeOf(project.GetPath()),
                    project.GetStreamVersion(), project.GetReport().IsDamaged() ? ", damaged" : "");
    const auto add = std::back_inserter(out);
    for (const auto& [key, value] : project.GetSettings())
        fmt::format_to(add, "  {}: {}\n", Printable(key), Printable(value));
    if (gpsproject::BookCloud& cloud = project.GetCloud(); cloud.IsLinked())
        fmt::format_to(add, "  shared: project {} of {}, revision {}{}\n",
                       Printable(cloud.GetState().link.project), Printable(cloud.GetState().link.store),
                       cloud.GetState().revision, cloud.HasToSend() ? ", with something to send" : "");
    fmt::format_to(add, "  {}, {}\n", Counted(s.groups, "group"), Counted(s.points, "point"));
    for (const auto& [code, count] : s.byQuality) fmt::format_to(add, "  {} of quality {}\n", count, code);
    if (!s.first.empty()) fmt::format_to(add, "  from {} to {}\n", s.first, s.last);
    for (const std::string& system : s.systems) fmt::format_to(add, "  plane system {}\n", Printable(system));
    if (s.groupsWithoutSystem > 0)
        fmt::format_to(add, "  {} without a usable conversion\n", Counted(s.groupsWithoutSystem, "group"));
    if (IsCoordValid(s.extent.eastMin))
        fmt::format_to(add, "  {}, {}, {}\n", RangeText("east", s.extent.eastMin, s.extent.eastMax),
                       RangeText("north", s.extent.northMin, s.extent.northMax),
                       RangeText("height", s.extent.heightMin, s.extent.heightMax));
    if (s.withoutFix > 0)
        fmt::format_to(add, "  {} without a complete fix\n", Counted(s.withoutFix, "point"));
    if (s.extent.withoutPlane > 0)
        fmt::format_to(add, "  {} without plane coordinates\n", Counted(s.extent.withoutPlane, "point"));
    return out;
}

Json Number(double v) { return HasValue(v) ? Json(v) : Json(nullptr); }
Json TextOrNull(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

Json SharedJson(gpsproject::Project& project) {
    gpsproject::BookCloud& cloud = project.GetCloud();
    if (!cloud.IsLinked()) return nullptr;
    Json json = LinkJson(project);
    json.erase("book");
    json["to_send"] = cloud.HasToSend();
    json["conflicts"] = cloud.GetState().conflicts.size();
    return json;
}

Json InfoJson(gpsproject::Project& project, const BookSummary& s) {
    Json qualities = Json::object();
    for (const auto& [code, count] : s.byQuality) qualities[fmt::format("{}", code)] = count;
    Json settings = Json::object();
    for (const auto& [key, value] : project.GetSettings()) settings[key] = value;
    return {{"book", project.GetPath()},
            {"bytes", SizeOf(project.GetPath())},
            {"version", project.GetStreamVersion()},
            {"settings", settings},
            {"shared", SharedJson(project)},
            {"groups", s.groups},
            {"points", s.points},
            {"by_quality", qualities},
            {"first", TextOrNull(s.first)},
            {"last", TextOrNull(s.last)},
            {"systems", s.systems},
            {"groups_without_system", s.groupsWithoutSystem},
            {"extent",
             {{"east", {Number(s.extent.eastMin), Number(s.extent.eastMax)}},
              {"north", {Number(s.extent.northMin), Number(s.extent.northMax)}},
              {"height", {Number(s.extent.heightMin), Number(s.extent.heightMax)}}}},
            {"without_fix", s.withoutFix},
            {"without_plane", s.extent.withoutPlane},
            {"damaged", project.GetReport().IsDamaged()},
            {"damages", DamagesJson(project.GetReport())},
            {"notes", project.GetNotes()}};
}

void Run(const Arguments& a) {
    const auto project = OpenToRead(a.book);
    const BookSummary summary = SummaryOf(project->GetBook());
    if (a.json)
        PrintJson(InfoJson(*project, summary));
    else
        PrintText(Text(*project, summary));
    EndReading(*project);
}

}  // namespace

void AddInfoCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("info", "Tell what a book holds");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    command->add_flag("--json", a->json, "Print it as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook info site.gpsbook\n"
        "  gpsbook info site.gpsbook --json | jq .points");
    command->callback([a, &exitCode] { exitCode = RunCommand("info", [&] { Run(*a); }); });
}

}  // namespace gpsbook
