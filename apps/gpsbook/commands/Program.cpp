#include "apps/gpsbook/commands/Program.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/Convert.h"
#include "apps/gpsbook/commands/Simulate.h"

namespace gpsbook {

int RunProgram(int argc, const char* const* argv) {
    int exitCode = exitDone;
    WatchForInterrupt();
    try {
        CLI::App app("GPS survey field book: receiver logs, points, plane coordinates", "gpsbook");
        app.set_version_flag("--version", "gpsbook " GPSBOOK_VERSION);
        app.require_subcommand(0, 1);  // none is refused below, with the names of those there are
        AddConvertCommand(app, exitCode);
        AddSimulateCommand(app, exitCode);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& e) {
            // Help and version are asked for and go to standard output; everything else is a wrong command
            // line.
            const int code = app.exit(e, std::cout, std::cerr);
            return code == 0 ? exitDone : exitUsage;
        }
        if (app.get_subcommands().empty()) {
            std::cerr << "gpsbook: no command is given; give convert or simulate, --help tells more\n";
            return exitUsage;
        }
    } catch (const std::bad_alloc&) {
        std::cerr << "gpsbook: out of memory; convert fewer logs at once, or thin them with --every\n";
        return exitFailure;
    } catch (const std::exception& e) {
        std::cerr << "gpsbook: " << e.what() << '\n';
        return exitFailure;
    }
    return exitCode;
}

}  // namespace gpsbook
