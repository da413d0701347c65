#include "apps/gpsbook/commands/Options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/LogArguments.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/options/OptionTable.h"
#include "apps/gpsbook/options/SettingsNote.h"
#include "apps/gpsbook/writers/WriteError.h"
#include "gps/model/CLibGps.h"
#include "platform/base/CIniFile.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using gpsproject::Project;

struct Arguments {
    std::string book;  // empty: the settings
    std::vector<std::string> items;
    bool json = false;
};

const char* const kFromDefault = "default";
const char* const kFromSettings = "settings";
const char* const kFromBook = "book";

/// An option and the value it is to get.
struct Change {
    const OptionEntry* option;
    OptionValue value;
};

const OptionEntry& Named(const std::string& name) {
    const OptionEntry* option = FindOption(name);
    if (option) return *option;
    std::string like;
    const std::string last = name.substr(name.rfind('.') + 1);
    for (const OptionEntry& o : Options())
        if (!last.empty() && o.name.ends_with("." + last))
            like += (like.empty() ? "; there is " : ", ") + o.name;
    throw CommandError(
        exitNotFound, "there is no option \"" + name + "\"" + like + "; gpsbook options list names them all");
}

std::vector<const OptionEntry*> Chosen(const std::vector<std::string>& names) {
    std::vector<const OptionEntry*> chosen;
    for (const std::string& name : names) chosen.push_back(&Named(name));
    if (!names.empty()) return chosen;
    for (const OptionEntry& option : Options()) chosen.push_back(&option);
    return chosen;
}

bool IsPostProc(const OptionEntry& option) { return option.name.starts_with("postproc."); }

// A book without options of post-processing has those of a new one: reading them must not ask whether it
// has, for that makes them.
const char* SourceOf(const OptionEntry& option, bool ofBook, bool hasPostProc) {
    if (ofBook && option.inBook && (!IsPostProc(option) || hasPostProc)) return kFromBook;
    if (option.InSettings() && CIniFile().HasValue(option.section.c_str(), option.key.c_str()))
        return kFromSettings;
    return kFromDefault;
}

Json ValueJson(const OptionValue& value) {
    return std::visit([](const auto& v) { return Json(v); }, value);
}

void Show(const Arguments& a, bool bare) {
    const auto project = a.book.empty() ? std::make_unique<Project>() : OpenToRead(a.book);
    CLibGps& book = project->GetBook();
    NoteUnusableSettings();
    const bool ofBook = !a.book.empty();
    const bool hasPostProc = book.HasOpzPostProc();
    Json list = Json::array();
    std::string text;
    for (const OptionEntry* option : Chosen(a.items)) {
        const OptionValue value = option->get(book);
        const char* source = SourceOf(*option, ofBook, hasPostProc);
        list.push_back({{"name", option->name},
                        {"value", ValueJson(value)},
                        {"source", source},
                        {"default", ValueJson(option->byDefault)},
                        {"in_book", option->inBook},
                        {"in_settings", option->InSettings()},
                        {"what", option->what}});
        if (bare)
            text += OptionText(value) + '\n';
        else
            fmt::format_to(std::back_inserter(text), "{:<28} {:<12} {:<9} {}\n", option->name,
                           OptionText(value), source, option->what);
    }
    if (a.json)
        PrintJson({{"book", ofBook ? Json(project->GetPath()) : Json(nullptr)},
                   {"settings", CIniFile().GetPath()},
                   {"options", list}});
    else
        PrintText(text);
    if (ofBook) EndReading(*project);
}

[[noreturn]] void RefusePlace(const OptionEntry& option, bool ofBook) {
    if (ofBook)
        Usage(option.name, "is not kept in a book but in the settings of this computer; leave --book out");
    Usage(option.name, "is not kept in the settings but in each book; name one with --book");
}

void WriteSetting(CIniFile& file, const OptionEntry& option, const OptionValue& value) {
    const char* section = option.section.c_str();
    const char* key = option.key.c_str();
    bool written = false;
    switch (option.kind) {
        case OptionKind::boolean:
            written = file.WriteBool(section, key, std::get<bool>(value));
            break;
        case OptionKind::integer:
            written = file.WriteLong(section, key, static_cast<std::int32_t>(std::get<std::int64_t>(value)));
            break;
        case OptionKind::text:
            written = file.WriteString(section, key, std::get<std::string>(value));
            break;
        case OptionKind::real:
            break;  // no setting is one
    }
    if (!written)
        throw WriteError(file.GetPath(),
                         "the settings cannot be written; see whether the file or its folder is "
                         "closed to you, or the disk full");
}

void ResetSetting(CIniFile& file, const OptionEntry& option) {
    if (!file.HasValue(option.section.c_str(), option.key.c_str())) return;
    if (!file.Remove(option.section.c_str(), option.key.c_str()))
        throw WriteError(file.GetPath(),
                         "the settings cannot be written; see whether the file or its folder is "
                         "closed to you, or the disk full");
}

void TellChanges(const Arguments& a, const std::string& where, const std::vector<Change>& changes) {
    const std::string otherwise = "the result could not be told, " + where + " is saved";
    Json list = Json::array();
    std::string text;
    for (const Change& change : changes) {
        list.push_back({{"name", change.option->name}, {"value", ValueJson(change.value)}});
        text += change.option->name + " = " + OptionText(change.value) + '\n';
    }
    if (a.json)
        PrintJson({{a.book.empty() ? "settings" : "book", where}, {"options", list}}, otherwise);
    else
        PrintText(text, otherwise);
}

void ApplyToBook(const Arguments& a, std::vector<Change> changes) {
    const auto project = OpenToWrite(a.book);
    // All options set back: those of post-processing are not made for it in a book that has none.
    if (a.items.empty() && !project->GetBook().HasOpzPostProc())
        std::erase_if(changes, [](const Change& c) { return IsPostProc(*c.option); });
    for (const Change& change : changes) change.option->set(project->GetBook(), change.value);
    project->GetEdits().OptionsChanged();
    SaveBook(*project);
    TellChanges(a, project->GetPath(), changes);
}

void Set(const Arguments& a) {
    std::vector<Change> changes;
    for (const std::string& item : a.items) {
        const std::size_t at = item.find('=');
        if (at == std::string::npos)
            Usage("NAME=VALUE", "\"" + item + "\" has no '='; write it like points.ColSimb=3");
        const OptionEntry& option = Named(item.substr(0, at));
        if (std::any_of(changes.begin(), changes.end(), [&](const Change& c) { return c.option == &option; }))
            Usage(option.name, "given twice; give one value");
        if (a.book.empty() ? !option.InSettings() : !option.inBook) RefusePlace(option, !a.book.empty());
        changes.push_back({&option, ParseOption(option, item.substr(at + 1))});
    }
    if (!a.book.empty()) return ApplyToBook(a, changes);
    CIniFile file;
    const bool damaged = file.GetState() == CIniFile::State::Damaged;
    for (const Change& change : changes) WriteSetting(file, *change.option, change.value);
    NoteKeptSettings(file, damaged);
    TellChanges(a, file.GetPath(), changes);
}

// In a book: back to what a new book has on this computer. In the settings: back to the default.
void Reset(const Arguments& a) {
    std::vector<Change> changes;
    Project fresh;
    for (const OptionEntry* option : Chosen(a.items)) {
        const bool here = a.book.empty() ? option->InSettings() : option->inBook;
        if (!here && !a.items.empty()) RefusePlace(*option, !a.book.empty());
        if (here)
            changes.push_back({option, a.book.empty() ? option->byDefault : option->get(fresh.GetBook())});
    }
    if (!a.book.empty()) return ApplyToBook(a, changes);
    NoteUnusableSettings();
    CIniFile file;
    for (const Change& change : changes) ResetSetting(file, *change.option);
    TellChanges(a, file.GetPath(), changes);
}

using Work = void (*)(const Arguments&);

CLI::App* AddWithin(CLI::App& options, const char* name, const char* help, const char* item,
                    const char* itemHelp, bool needed, Work work, int& exitCode) {
    CLI::App* command = options.add_subcommand(name, help);
    const auto a = std::make_shared<Arguments>();
    command->add_option(item, a->items, itemHelp)->required(needed);
    command->add_option("--book", a->book, "The field book; without it the settings of this computer")
        ->type_name("BOOK")
        ->check(Filled());
    command->add_flag("--json", a->json, "Print the result as JSON");
    command->callback([a, work, &exitCode] { exitCode = RunCommand("options", [&] { work(*a); }); });
    return command;
}

}  // namespace

void AddOptionsCommand(CLI::App& app, int& exitCode) {
    CLI::App* options =
        app.add_subcommand("options", "List, get, set and reset options of books and settings");
    options->require_subcommand(1);
    AddWithin(
        *options, "list", "List options with their values, and where each comes from", "NAME",
        "Options, like points.ColSimb; none: all", false, [](const Arguments& a) { Show(a, false); },
        exitCode)
        ->footer(
            "Examples:\n"
            "  gpsbook options list\n"
            "  gpsbook options list --book site.gpsbook");
    AddWithin(
        *options, "get", "Print the values of options, one a line", "NAME", "Options, like points.ColSimb",
        true, [](const Arguments& a) { Show(a, true); }, exitCode)
        ->footer(
            "Examples:\n"
            "  gpsbook options get points.ColSimb --book site.gpsbook");
    AddWithin(*options, "set", "Set options; all of them, or none when one cannot be", "NAME=VALUE",
              "Options and their values, like points.ColSimb=3", true, Set, exitCode)
        ->footer(
            "Examples:\n"
            "  gpsbook options set points.ColSimb=3 points.TipoSimb=1 --book site.gpsbook\n"
            "  gpsbook options set postproc.sSuffissoPtVecchi=_BEFORE");
    AddWithin(*options, "reset",
              "Set options back: in the settings to the defaults, in a book to those of a new one", "NAME",
              "Options, like points.ColSimb; none: all", false, Reset, exitCode)
        ->footer(
            "Examples:\n"
            "  gpsbook options reset points.ColSimb --book site.gpsbook");
}

}  // namespace gpsbook
