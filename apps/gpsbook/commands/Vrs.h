// The command `gpsbook vrs`: points measured against a virtual reference station.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddVrsCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
