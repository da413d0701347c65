// The command `gpsbook move`: groups and points change their place.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode` (see ExitCode).
/// Requires: `exitCode` outlives the parsing of the command line.
void AddMoveCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
