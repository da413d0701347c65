#include "apps/gpsbook/commands/Merge.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/MergeBook.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/MergeReport.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/Words.h"

namespace gpsbook {

namespace {

struct Arguments {
    std::string book;
    std::string other;
    bool json = false;
};

void NoteRest(const std::string& book, const std::string& other, const MergedItems& made) {
    const auto note = [](const std::string& text) { std::cerr << "note: " << text << '\n'; };
    if (made.asNew > 0)
        note(fmt::format(
            "{}: {} that the project does not know became new ones of {}; when {} is merged once more, or is "
            "synced itself, they are there once more",
            other, Counted(made.asNew, "item"), book, other));
    if (made.notTaken > 0)
        note(
            fmt::format("{}: {} changed or deleted there and not sent stay as they are here; gpsbook sync {} "
                        "sends that",
                        other, Counted(made.notTaken, "item"), other));
}

void Run(const Arguments& a) {
    const std::string otherFile = BookFile(a.other);
    NeedTwoBooks(BookFile(a.book), otherFile);
    const auto project = OpenToWrite(a.book);
    const auto other = OpenOther(otherFile);
    const MergedItems made = MergeBook(*project, *other);
    SaveBook(*project);
    NoteOtherDatums(project->GetPath(), made);
    NoteRest(project->GetPath(), other->GetPath(), made);
    const std::string otherwise = SavedButUntold(project->GetPath());
    if (a.json) {
        auto json = NewItemsJson(*project, *other, made);
        json["filled"] = {{"groups", made.filledGroups}, {"points", made.filledPoints}};
        json["unknown_to_project"] = made.asNew;
        json["not_taken"] = made.notTaken;
        PrintJson(json, otherwise);
        return;
    }
    PrintText(fmt::format("{}: added {} and {}, filled gaps of {} and {}\n", project->GetPath(),
                          Counted(made.groups, "group"), Counted(made.points, "point"),
                          Counted(made.filledGroups, "group"), Counted(made.filledPoints, "point")),
              otherwise);
}

}  // namespace

void AddMergeCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("merge", "Fill a shared book from another copy of it");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    command->add_option("OTHER", a->other, "The copy, which stays as it is")->required()->check(Filled());
    command->add_flag("--json", a->json, "Print what was done as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook merge site.gpsbook /media/stick/site.gpsbook");
    command->callback([a, &exitCode] { exitCode = RunCommand("merge", [&] { Run(*a); }); });
}

}  // namespace gpsbook
