// The command `gpsbook export`: writes the points of a field book as a table.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddExportCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
