#include "apps/gpsbook/commands/Manual.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/manual/ManPage.h"
#include "apps/gpsbook/writers/StagedOutput.h"
#include "apps/gpsbook/writers/WriteError.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string command;
    std::string folder;
    bool json = false;
};

Json OptionsJson(const std::vector<OptionDescription>& options) {
    Json list = Json::array();
    for (const OptionDescription& o : options) {
        Json one;
        if (!o.names.empty()) one["names"] = o.names;
        one["value"] = o.value.empty() ? Json(nullptr) : Json(o.value);
        if (!o.words.empty()) one["words"] = o.words;
        one["help"] = o.help;
        one["required"] = o.required;
        one["several"] = o.several;
        list.push_back(std::move(one));
    }
    return list;
}

Json CommandJson(const CommandDescription& command) {
    Json commands = Json::array();
    for (const CommandDescription& within : command.commands) commands.push_back(CommandJson(within));
    return {{"name", command.Joined(" ")},
            {"help", command.help},
            {"arguments", OptionsJson(command.arguments)},
            {"options", OptionsJson(command.options)},
            {"examples", command.examples},
            {"commands", std::move(commands)}};
}

const CommandDescription& Find(const CommandDescription& program, const std::string& name) {
    if (name.empty()) return program;
    std::string known;
    for (const CommandDescription& command : program.commands) {
        if (command.Name() == name) return command;
        known += (known.empty() ? "" : ", ") + command.Name();
    }
    throw CommandError(exitUsage, "COMMAND: \"" + name + "\" is unknown; give one of " + known);
}

void WritePage(const std::filesystem::path& file, const std::string& page) {
    StagedOutput staged(file, true);
    std::ofstream out(staged.File(), std::ios::binary);
    out << page;
    out.close();
    if (!out) throw WriteError(file.string(), "writing failed; see whether the disk is full");
    staged.Commit();
}

void Run(const Arguments& a, const CLI::App& app) {
    const CommandDescription program = Describe(app);
    const CommandDescription& command = Find(program, a.command);
    const std::string version = "gpsbook " GPSBOOK_VERSION;
    if (a.folder.empty()) {
        if (a.json)
            PrintJson(CommandJson(command));
        else
            PrintText(ManPage(command, version));
        return;
    }
    Json written = Json::array();
    const auto write = [&](const CommandDescription& one) {
        const std::filesystem::path file = std::filesystem::path(a.folder) / ManPageName(one);
        WritePage(file, ManPage(one, version));
        written.push_back(file.string());
    };
    write(command);
    if (&command == &program)
        for (const CommandDescription& one : program.commands) write(one);
    if (a.json) PrintJson({{"files", written}});
}

}  // namespace

void AddManualCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("manual", "Print a manual page");
    const auto arguments = std::make_shared<Arguments>();
    command->add_option("COMMAND", arguments->command, "The command; none: the program");
    command
        ->add_option("--folder", arguments->folder,
                     "Write the page into this folder; without COMMAND all of them, older ones are replaced")
        ->type_name("FOLDER")
        ->check(Filled());
    command->add_flag("--json", arguments->json, "Print the command, its arguments and options as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook manual convert | man -l -\n"
        "  gpsbook manual --folder ~/.local/share/man/man1");
    command->callback(
        [arguments, &app, &exitCode] { exitCode = RunCommand("manual", [&] { Run(*arguments, app); }); });
}

}  // namespace gpsbook
