#include "apps/gpsbook/commands/Find.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "gps/model/CFindInLibGps.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book, text, by, from;
    bool next = false;
    bool all = false;
    bool json = false;
};

int FlagsFrom(const std::string& by) {
    if (by == "code") return CFindInLibGps::BY_CODE;
    if (by == "both") return CFindInLibGps::BY_NOME | CFindInLibGps::BY_CODE;
    return CFindInLibGps::BY_NOME;
}

int PositionFrom(std::string_view text, const std::string& option) {
    if (text.starts_with('#')) text.remove_prefix(1);
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc{} && stop == end && value >= 0) return value;
    throw CommandError(
        exitUsage,
        "--from: \"" + option + "\" is no place; give the positions of a group and a point, such as 0,7");
}

Place StartFrom(const CLibGps& book, const Arguments& a) {
    if (a.from.empty()) return {0, 0};
    const std::size_t comma = std::min(a.from.find(','), a.from.size());
    const int g = PositionFrom(std::string_view(a.from).substr(0, comma), a.from);
    const int p = PositionFrom(std::string_view(a.from).substr(std::min(comma + 1, a.from.size())), a.from);
    if (g >= book.GetGrpArSize() || p >= book.GetPunArSize(g))
        throw CommandError(
            exitNotFound,
            fmt::format("--from: there is no point {} in a group {}; gpsbook list BOOK --points "
                        "shows those there are",
                        p, g));
    return {g, a.next ? p + 1 : p};
}

/// One after the other, until the first one comes round again.
std::vector<Place> Find(CLibGps& book, const Arguments& a) {
    CFindInLibGps find(&book);
    std::vector<Place> hits;
    Place at = StartFrom(book, a);
    const int flags = FlagsFrom(a.by);
    while (find.TrovaPunGlobal(a.text, flags, at.group, at.point) >= 0) {
        CheckInterrupt();
        if (!hits.empty() && at == hits.front()) break;
        hits.push_back(at);
        if (!a.all) break;
        ++at.point;
    }
    return hits;
}

void Run(const Arguments& a) {
    if (a.next && a.from.empty())
        throw CommandError(exitUsage, "--next needs --from, the place of the point found last");
    const auto project = OpenToRead(a.book);
    CLibGps& book = project->GetBook();
    const std::vector<Place> hits = Find(book, a);
    Json found = Json::array();
    std::string text;
    for (const Place& place : hits) {
        const CPunGps& point = *book.GetPunAt(place.group, place.point);
        if (a.json) {
            found.push_back({{"group", place.group},
                             {"point", place.point},
                             {"address", PlaceText(book, place)},
                             {"name", point.GetNome()},
                             {"code", point.GetCode()},
                             {"vrs", point.IsPointVrs()}});
            continue;
        }
        fmt::format_to(std::back_inserter(text), "{},{}  {}", place.group, place.point,
                       Printable(PlaceText(book, place)));
        if (!point.GetCode().empty()) text += "  " + Printable(point.GetCode());
        text += '\n';
    }
    if (a.json)
        PrintJson({{"book", project->GetPath()}, {"text", a.text}, {"found", found}});
    else
        PrintText(text);
    EndReading(*project);
    if (hits.empty())
        throw CommandError(
            exitNotFound, fmt::format("{}: no point has the {} \"{}\"; capital and small letters differ, and "
                                      "gpsbook list takes * and ?",
                                      project->GetPath(), a.by == "both" ? "name or code" : a.by, a.text));
}

}  // namespace

void AddFindCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("find", "Find points by their name or code");
    const auto a = std::make_shared<Arguments>();
    a->by = "name";
    AddBook(*command, a->book);
    command->add_option("TEXT", a->text, "The name or code, as it stands")->required();
    command->add_option("--by", a->by, "What is compared [name]")
        ->type_name("name|code|both")
        ->check(CLI::IsMember({"name", "code", "both"}));
    command->add_option("--from", a->from, "Where the search begins: positions of group and point [0,0]")
        ->type_name("G,P")
        ->check(Filled());
    command->add_flag("--next", a->next, "Begin behind that point, not with it");
    command->add_flag("--all", a->all, "All points, in the order in which they are found");
    command->add_flag("--json", a->json, "Print what was found as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook find site.gpsbook P12\n"
        "  gpsbook find site.gpsbook KERB --by code --all\n"
        "  gpsbook find site.gpsbook P12 --from 0,11 --next");
    command->callback([a, &exitCode] { exitCode = RunCommand("find", [&] { Run(*a); }); });
}

}  // namespace gpsbook
