// The command `gpsbook completion`: lets a shell complete the command line.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program, whose whole command line it describes. When it is run it sets
/// `exitCode`. Requires: `app` and `exitCode` outlive the parsing of the command line.
void AddCompletionCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
