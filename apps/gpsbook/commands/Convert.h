// The command `gpsbook convert`: receiver logs to a table with plane coordinates.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode` (see ExitCode).
/// Requires: `exitCode` outlives the parsing of the command line.
void AddConvertCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
