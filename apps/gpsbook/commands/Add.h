// The command `gpsbook add`: a group or a point that was not measured here.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode` (see ExitCode).
/// Requires: `exitCode` outlives the parsing of the command line.
void AddAddCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
