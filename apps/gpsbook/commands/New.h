// The command `gpsbook new`: makes an empty field book.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddNewCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
