#include "apps/gpsbook/commands/Program.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/commands/Add.h"
#include "apps/gpsbook/commands/Base.h"
#include "apps/gpsbook/commands/Check.h"
#include "apps/gpsbook/commands/Cloud.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/Completion.h"
#include "apps/gpsbook/commands/Compute.h"
#include "apps/gpsbook/commands/Convert.h"
#include "apps/gpsbook/commands/Delete.h"
#include "apps/gpsbook/commands/Dump.h"
#include "apps/gpsbook/commands/Export.h"
#include "apps/gpsbook/commands/Find.h"
#include "apps/gpsbook/commands/Groups.h"
#include "apps/gpsbook/commands/Import.h"
#include "apps/gpsbook/commands/ImportBook.h"
#include "apps/gpsbook/commands/Info.h"
#include "apps/gpsbook/commands/Journal.h"
#include "apps/gpsbook/commands/List.h"
#include "apps/gpsbook/commands/Manual.h"
#include "apps/gpsbook/commands/Merge.h"
#include "apps/gpsbook/commands/Move.h"
#include "apps/gpsbook/commands/New.h"
#include "apps/gpsbook/commands/Options.h"
#include "apps/gpsbook/commands/Points.h"
#include "apps/gpsbook/commands/PostProc.h"
#include "apps/gpsbook/commands/Section.h"
#include "apps/gpsbook/commands/Set.h"
#include "apps/gpsbook/commands/Show.h"
#include "apps/gpsbook/commands/Simulate.h"
#include "apps/gpsbook/commands/Stations.h"
#include "apps/gpsbook/commands/Swap.h"
#include "apps/gpsbook/commands/Sync.h"
#include "apps/gpsbook/commands/Vrs.h"

namespace gpsbook {

namespace {

/// A command, and the heading under which it is listed.
struct Entry {
    const char* heading;
    void (*add)(CLI::App& app, int& exitCode);
};

constexpr char kLogs[] = "Receiver logs";
constexpr char kBooks[] = "Field books";
constexpr char kEditing[] = "Editing";
constexpr char kSharing[] = "Sharing";
constexpr char kStations[] = "Permanent stations";
constexpr char kInside[] = "What a file holds";
constexpr char kShell[] = "Shell";

/// All commands, in the order of the help, the manual and the completion, which are all made from it.
constexpr Entry kCommands[] = {
    {kLogs, AddConvertCommand},     {kLogs, AddSimulateCommand},      {kBooks, AddNewCommand},
    {kBooks, AddImportCommand},     {kBooks, AddExportCommand},       {kBooks, AddPointsCommand},
    {kBooks, AddGroupsCommand},     {kBooks, AddInfoCommand},         {kBooks, AddListCommand},
    {kBooks, AddShowCommand},       {kBooks, AddFindCommand},         {kBooks, AddCheckCommand},
    {kEditing, AddSetCommand},      {kEditing, AddAddCommand},        {kEditing, AddDeleteCommand},
    {kEditing, AddMoveCommand},     {kEditing, AddSwapCommand},       {kEditing, AddComputeCommand},
    {kEditing, AddOptionsCommand},  {kEditing, AddPostProcCommand},   {kEditing, AddBaseCommand},
    {kEditing, AddVrsCommand},      {kSharing, AddSyncCommand},       {kSharing, AddCloudCommand},
    {kSharing, AddMergeCommand},    {kSharing, AddImportBookCommand}, {kStations, AddStationsCommand},
    {kInside, AddDumpCommand},      {kInside, AddSectionCommand},     {kInside, AddJournalCommand},
    {kShell, AddCompletionCommand}, {kShell, AddManualCommand},
};

void AddCommands(CLI::App& app, int& exitCode) {
    for (const Entry& entry : kCommands) {
        entry.add(app, exitCode);
        app.get_subcommands([](CLI::App*) { return true; }).back()->group(entry.heading);
    }
}

// Help and version are asked for and go to standard output; everything else is a wrong command line.
int Answer(const CLI::App& app, const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e, std::cout, std::cerr);
    const std::vector<CLI::App*> commands = app.get_subcommands();
    const std::string name = commands.empty() ? "gpsbook" : "gpsbook " + commands.front()->get_name();
    std::cerr << name << ": " << e.what() << "; " << name << " --help tells more\n";
    return exitUsage;
}

}  // namespace

int RunProgram(int argc, const char* const* argv) {
    int exitCode = exitDone;
    WatchForInterrupt();
    try {
        CLI::App app("GPS survey field book: receiver logs, points, plane coordinates", "gpsbook");
        app.set_version_flag("--version", "gpsbook " GPSBOOK_VERSION);
        app.require_subcommand(0, 1);  // none is refused below, with the names of those there are
        AddCommands(app, exitCode);
        app.footer("gpsbook COMMAND --help tells more of a command.");
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& e) {
            return Answer(app, e);
        }
        if (app.get_subcommands().empty()) {
            std::cerr << "gpsbook: no command is given; --help lists them\n";
            return exitUsage;
        }
    } catch (const std::bad_alloc&) {
        std::cerr << "gpsbook: out of memory; close other programs, or allow this one more. "
                     "Of logs, read fewer at once, or thin them with --every\n";
        return exitFailure;
    } catch (const std::exception& e) {
        std::cerr << "gpsbook: " << e.what() << '\n';
        return exitFailure;
    }
    return exitCode;
}

}  // namespace gpsbook
