// The command `gpsbook sync`: shares a book with others.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddSyncCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
