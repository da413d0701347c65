// The command `gpsbook points`: points of a group, to and from a file.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddPointsCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
