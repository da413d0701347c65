// The command `gpsbook manual`: the manual pages of the program.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program, whose whole command line it describes. When it is run it sets
/// `exitCode`. Requires: `app` and `exitCode` outlive the parsing of the command line.
void AddManualCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
