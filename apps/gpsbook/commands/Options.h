// The command `gpsbook options`: the options of a field book and of the settings.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddOptionsCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
