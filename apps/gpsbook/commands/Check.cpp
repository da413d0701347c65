#include "apps/gpsbook/commands/Check.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
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

std::string Text(gpsproject::Project& project, const std::vector<Finding>& findings) {
    CLibGps& book = project.GetBook();
    std::int64_t points = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g) points += book.GetPunArSize(g);
    std::string out;
    for (const Finding& finding : findings) out += FindingText(book, finding);
    return out + fmt::format("{}: {}, {}, {}, {}\n", project.GetPath(),
                             project.GetReport().IsDamaged() ? "damaged" : "whole",
                             Counted(book.GetGrpArSize(), "group"), Counted(points, "point"),
                             Counted(static_cast<std::int64_t>(findings.size()), "finding"));
}

Json CheckJson(gpsproject::Project& project, const std::vector<Finding>& findings) {
    Json all = Json::array();
    for (const Finding& finding : findings) all.push_back(FindingJson(project.GetBook(), finding));
    return {{"file", project.GetPath()},
            {"version", project.GetStreamVersion()},
            {"damaged", project.GetReport().IsDamaged()},
            {"damages", DamagesJson(project.GetReport())},
            {"notes", project.GetNotes()},
            {"findings", all}};
}

void Run(const Arguments& a) {
    const std::set<std::string> ignored = IgnoredFrom(a.ignore);
    const auto project = OpenToRead(a.book);
    std::vector<Finding> findings = LintBook(project->GetBook());
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
