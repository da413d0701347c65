#include "apps/gpsbook/commands/Check.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/Lint.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/ReportJson.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "apps/gpsbook/stations/BaseFrame.h"
#include "apps/gpsbook/stations/StationLint.h"
#include "apps/gpsbook/stations/UsedStations.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book;
    std::string ignore;
    bool json = false;
};

std::string KindList() {
    std::string list;
    for (const LintKind& kind : kLintKinds) list += (list.empty() ? "" : ", ") + std::string(kind.name);
    return list;
}

std::set<std::string> IgnoredFrom(const std::string& list) {
    std::set<std::string> ignored;
    for (std::size_t begin = 0; !list.empty() && begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string name = list.substr(begin, end - begin);
        if (name.empty())
            throw CommandError(exitUsage, "--ignore: \"" + list +
                                              "\" has an empty name; give names with one comma "
                                              "between them");
        bool known = false;
        for (const LintKind& kind : kLintKinds) known = known || name == kind.name;
        if (!known)
            throw CommandError(exitUsage,
                               "--ignore: \"" + name + "\" is unknown; give some of " + KindList());
        ignored.insert(name);
        begin = end + 1;
    }
    return ignored;
}

std::string PlacesText(const Finding& f) {
    std::string text;
    for (const int place : f.places) text += fmt::format("{}#{}", text.empty() ? "" : ", ", place);
    if (f.count > static_cast<std::int64_t>(f.places.size())) text += ", ...";
    return text;
}

std::string FindingText(const CLibGps& book, const Finding& f) {
    std::string line;
    if (f.group < 0)
        line = fmt::format("{} ({})", Printable(f.what), PlacesText(f));
    else if (f.count == 0)
        line = fmt::format("{}: {}", Printable(PlaceText(book, {f.group, -1})), f.what);
    else
        line = fmt::format("{}: {}: {} ({})", Printable(PlaceText(book, {f.group, -1})),
                           Counted(f.count, "point"), f.what, PlacesText(f));
    return fmt::format("{} [{}]\n", line, f.kind);
}

Json FindingJson(const CLibGps& book, const Finding& f) {
    return {{"kind", std::string(f.kind)},
            {"group", f.group >= 0 ? Json(f.group) : Json(nullptr)},
            {"name", f.group >= 0 ? Json(PlaceText(book, {f.group, -1})) : Json(nullptr)},
            {"count", f.count},
            {f.group >= 0 ? "points" : "groups", f.places},
            {"what", f.what}};
}

/// How the coordinates of a group are to be read, where its tags or those of its points say so.
struct GroupFrame {
    int group;
    std::string base;  // empty: the base has no tag
    std::int64_t vrs;  // points measured against a virtual station
};

std::vector<GroupFrame> FramesOf(const CLibGps& book) {
    std::vector<GroupFrame> all;
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        GroupFrame frame{g, FrameOf(*book.GetGrpAt(g)).Text(), 0};
        for (int p = 0; p < book.GetPunArSize(g); ++p) frame.vrs += book.GetPunAt(g, p)->IsPointVrs() ? 1 : 0;
        if (!frame.base.empty() || frame.vrs > 0) all.push_back(std::move(frame));
    }
    return all;
}

std::string FrameText(const CLibGps& book, const GroupFrame& f) {
    std::string line = Printable(PlaceText(book, {f.group, -1})) + ": ";
    if (!f.base.empty()) line += "base in " + f.base;
    if (f.vrs > 0)
        line +=
            (f.base.empty() ? "" : "; ") + Counted(f.vrs, "point") + " measured against a virtual station";
    return line + '\n';
}

std::string Text(gpsproject::Project& project, const std::vector<Finding>& findings) {
    CLibGps& book = project.GetBook();
    std::int64_t points = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g) points += book.GetPunArSize(g);
    std::string out;
    for (const GroupFrame& frame : FramesOf(book)) out += FrameText(book, frame);
    for (const Finding& finding : findings) out += FindingText(book, finding);
    return out + fmt::format("{}: {}, {}, {}, {}\n", project.GetPath(),
                             project.GetReport().IsDamaged() ? "damaged" : "whole",
                             Counted(book.GetGrpArSize(), "group"), Counted(points, "point"),
                             Counted(static_cast<std::int64_t>(findings.size()), "finding"));
}

Json CheckJson(gpsproject::Project& project, const std::vector<Finding>& findings) {
    Json all = Json::array();
    for (const Finding& finding : findings) all.push_back(FindingJson(project.GetBook(), finding));
    Json frames = Json::array();
    for (const GroupFrame& f : FramesOf(project.GetBook()))
        frames.push_back({{"group", f.group},
                          {"name", PlaceText(project.GetBook(), {f.group, -1})},
                          {"base", f.base.empty() ? Json(nullptr) : Json(f.base)},
                          {"vrs", f.vrs}});
    return {{"book", project.GetPath()},
            {"version", project.GetStreamVersion()},
            {"damaged", project.GetReport().IsDamaged()},
            {"damages", DamagesJson(project.GetReport())},
            {"notes", project.GetNotes()},
            {"frames", frames},
            {"findings", all}};
}

void Run(const Arguments& a) {
    const std::set<std::string> ignored = IgnoredFrom(a.ignore);
    const auto project = OpenToRead(a.book);
    std::vector<Finding> findings = LintBook(project->GetBook());
    std::vector<Finding> bases = LintBases(project->GetBook(), UsedStations());
    std::move(bases.begin(), bases.end(), std::back_inserter(findings));
    std::erase_if(findings, [&](const Finding& f) { return ignored.contains(std::string(f.kind)); });
    if (a.json)
        PrintJson(CheckJson(*project, findings));
    else
        PrintText(Text(*project, findings));
    EndReading(*project);
    if (!findings.empty())
        throw CommandError(
            exitConflict,
            fmt::format("{}: {}; see what is meant, or leave kinds out with --ignore", project->GetPath(),
                        Counted(static_cast<std::int64_t>(findings.size()), "finding")));
}

}  // namespace

void AddCheckCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("check", "Check the file of a book, and look for what is wrong in it");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    const CLI::Validator filled([](const std::string& t) { return t.empty() ? "the value is empty" : ""; },
                                "");
    command->add_option("--ignore", a->ignore, "Kinds of findings that are left out: " + KindList())
        ->type_name("KINDS")
        ->check(filled);
    command->add_flag("--json", a->json, "Print what was found as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook check site.gpsbook\n"
        "  gpsbook check site.gpsbook --ignore antenna-zero,day\n"
        "  gpsbook check site.gpsbook --json | jq .findings");
    command->callback([a, &exitCode] { exitCode = RunCommand("check", [&] { Run(*a); }); });
}

}  // namespace gpsbook
