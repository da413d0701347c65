// The command `gpsbook dump`: shows the GPS section of a book field by field.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddDumpCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
