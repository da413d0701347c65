#include "apps/gpsbook/commands/ImportBook.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
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
    bool asNew = false;
    bool json = false;
};

void Run(const Arguments& a) {
    const std::string otherFile = BookFile(a.other);
    NeedTwoBooks(BookFile(a.book), otherFile);
    const auto project = OpenToWrite(a.book);
    const auto other = OpenOther(otherFile);
    const MergedItems made = ImportBook(*project, *other, a.asNew);
    const bool saved = made.IsAnything();
    if (saved) SaveBook(*project);
    NoteOtherDatums(project->GetPath(), made);
    const std::string otherwise =
        saved ? SavedButUntold(project->GetPath()) : "the result could not be written";
    if (a.json) {
        auto json = NewItemsJson(*project, *other, made);
        json["saved"] = saved;
        PrintJson(json, otherwise);
        return;
    }
    if (!saved) return PrintText(other->GetPath() + ": holds no group, nothing is added\n", otherwise);
    PrintText(fmt::format("{}: {} with {} added, {} #{}{}\n", project->GetPath(),
                          Counted(made.groups, "group"), Counted(made.points, "point"),
                          made.groups == 1 ? "to" : "from", made.first, made.groups == 1 ? "" : " on"),
              otherwise);
}

}  // namespace

void AddImportBookCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("import-book", "Put the groups of another book into a book, as new ones");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    command->add_option("OTHER", a->other, "The other book, which stays as it is")
        ->required()
        ->check(Filled());
    command->add_flag("--as-new", a->asNew, "Also from a book of the same shared project");
    command->add_flag("--json", a->json, "Print what was done as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook import-book dam.gpsbook monday.gpsbook");
    command->callback([a, &exitCode] { exitCode = RunCommand("import-book", [&] { Run(*a); }); });
}

}  // namespace gpsbook
