// The command `gpsbook stations`: the catalogue of permanent stations.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddStationsCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
