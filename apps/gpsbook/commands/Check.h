// The command `gpsbook check`: whether a book is whole, and what looks wrong in it.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode` (see ExitCode).
/// Requires: `exitCode` outlives the parsing of the command line.
void AddCheckCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
