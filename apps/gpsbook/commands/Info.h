// The command `gpsbook info`: what a book holds, on one page.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode` (see ExitCode).
/// Requires: `exitCode` outlives the parsing of the command line.
void AddInfoCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
