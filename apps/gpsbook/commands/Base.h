// The command `gpsbook base`: the frame and the station of a group's base.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddBaseCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
