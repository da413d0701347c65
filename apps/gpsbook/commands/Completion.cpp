#include "apps/gpsbook/commands/Completion.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/manual/Completion.h"

namespace gpsbook {

namespace {

struct Arguments {
    std::string shell;
    bool json = false;
};

void Run(const Arguments& a, const CLI::App& app) {
    std::string script;
    if (a.shell == "bash")
        script = BashCompletion(Describe(app));
    else if (a.shell == "zsh")
        script = ZshCompletion(Describe(app));
    else
        throw CommandError(exitUsage, "SHELL: \"" + a.shell + "\" is unknown; give bash or zsh");
    if (a.json)
        PrintJson({{"shell", a.shell}, {"script", script}});
    else
        PrintText(script);
}

}  // namespace

void AddCompletionCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("completion", "Print what lets a shell complete the command line");
    const auto arguments = std::make_shared<Arguments>();
    command->add_option("SHELL", arguments->shell, "The shell: bash or zsh")
        ->required()
        ->type_name("bash|zsh");
    command->add_flag("--json", arguments->json, "Print the script within JSON");
    command->footer(
        "Examples:\n"
        "  source <(gpsbook completion bash)\n"
        "  gpsbook completion zsh > ~/.zfunc/_gpsbook");
    command->callback(
        [arguments, &app, &exitCode] { exitCode = RunCommand("completion", [&] { Run(*arguments, app); }); });
}

}  // namespace gpsbook
