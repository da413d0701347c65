#include "apps/gpsbook/commands/Add.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "apps/gpsbook/book/BookSettings.h"
#include "apps/gpsbook/book/EditItem.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/Positions.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "apps/gpsbook/fields/FieldsJson.h"

namespace gpsbook {

namespace {

struct Arguments {
    std::string book;
    std::vector<std::string> words;
    std::string at;
    bool json = false;
};

bool IsNamed(const std::vector<Assignment>& assignments) {
    for (const Assignment& assignment : assignments)
        if (assignment.field == "name" && !assignment.text.empty()) return true;
    return false;
}

bool Gives(const std::vector<Assignment>& assignments, const std::string& field) {
    for (const Assignment& assignment : assignments)
        if (assignment.field == field) return true;
    return false;
}

// A group without a system of its own gets that of the book.
Place AddGroup(gpsproject::Project& project, std::vector<Assignment> assignments, const std::string& at) {
    CLibGps& book = project.GetBook();
    const std::string crs = SettingOf(project, kSettingCrs);
    if (!crs.empty() && !Gives(assignments, "crs")) assignments.push_back({"crs", crs});
    const std::vector<Edit<CGrpGps>> edits = ParseEdits<CGrpGps>(assignments);
    const int g = InsertPosition("--at", at, book.GetGrpArSize());
    book.InsGrpAt(g, false);
    project.GetEdits().GroupInserted(g);
    EditGroup(project.GetEdits(), g, edits, false);
    return {g, -1};
}

// A point remembers where its base stood, as one that was measured.
Place AddPoint(gpsproject::BookEdits& notes, int g, const std::vector<Assignment>& assignments,
               const std::string& at) {
    CLibGps& book = notes.GetBook();
    const std::vector<Edit<CPunGps>> edits = ParseEdits<CPunGps>(assignments);
    const Place place{g, InsertPosition("--at", at, book.GetPunArSize(g))};
    const CGrpGps& group = *book.GetGrpAt(g);
    book.InsPunAt(g, place.point, false)
        ->SetGrafBase(group.GetBaseLat(), group.GetBaseLong(), group.GetBaseElev());
    notes.PointInserted(g, place.point);
    EditPoint(notes, place, edits, false);
    return place;
}

void WarnOfTwins(const CLibGps& book, const Place& added) {
    const auto tell = [](const std::string& name, int twin) {
        std::cerr << fmt::format("note: there is another \"{}\" at #{}; name them by position from now on\n",
                                 name, twin);
    };
    if (added.IsPoint()) {
        const std::string& name = book.GetPunAt(added.group, added.point)->GetNome();
        for (int p = 0; p < book.GetPunArSize(added.group); ++p)
            if (p != added.point && book.GetPunAt(added.group, p)->GetNome() == name) return tell(name, p);
        return;
    }
    const std::string& name = NameOf(*book.GetGrpAt(added.group));
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        if (g != added.group && NameOf(*book.GetGrpAt(g)) == name) return tell(name, g);
}

void Print(const Arguments& a, const gpsproject::Project& project, CLibGps& book, const Place& place) {
    const std::string otherwise = SavedButUntold(project.GetPath());
    if (!a.json) {
        PrintText(fmt::format("{} {}: added at #{}\n", place.IsPoint() ? "point" : "group",
                              Printable(PlaceText(book, place)), place.IsPoint() ? place.point : place.group),
                  otherwise);
        return;
    }
    PrintJson({{"book", project.GetPath()},
               {"group", place.group},
               {"point", place.IsPoint() ? nlohmann::ordered_json(place.point) : nullptr},
               {"name", PlaceText(book, place)},
               {"fields", place.IsPoint() ? FieldsJson(*book.GetPunAt(place.group, place.point))
                                          : FieldsJson(*book.GetGrpAt(place.group))}},
              otherwise);
}

void Run(const Arguments& a) {
    const Words words = SplitWords(a.words);
    if (words.addresses.size() > 1)
        throw CommandError(exitUsage, "\"" + words.addresses[1] +
                                          "\": a point is added to one group; give one group, or none to "
                                          "add a group");
    if (!IsNamed(words.assignments)) throw CommandError(exitUsage, "no name is given; give one like name=P1");
    const auto project = OpenToWrite(a.book);
    CLibGps& book = project->GetBook();
    const Place place =
        words.addresses.empty()
            ? AddGroup(*project, words.assignments, a.at)
            : AddPoint(project->GetEdits(), FindGroup(book, words.addresses[0]), words.assignments, a.at);
    WarnOfTwins(book, place);
    SaveBook(*project);
    Print(a, *project, book, place);
}

}  // namespace

void AddAddCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("add", "Add a group, or a point to a group");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    AddWords(*command, "WHAT", a->words, "The group for a point, none for a group, and fields: FIELD=VALUE")
        ->required();
    command->add_option("--at", a->at, "Position that it gets, from 0 [at the end]")->type_name("N");
    command->add_flag("--json", a->json, "Print what was added as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook add site.gpsbook name=Quay date=2024-05-01 base_lat=45.65 base_lon=13.76 base_h=60\n"
        "  gpsbook add site.gpsbook Quay name=P1 lat=45.65 lon=13.76 h=63.000 antenna=2.000");
    command->callback([a, &exitCode] { exitCode = RunCommand("add", [&] { Run(*a); }); });
}

}  // namespace gpsbook
