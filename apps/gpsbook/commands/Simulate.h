// The command `gpsbook simulate`: makes the log of a receiver.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`: 0 done, 1 the log could not be
/// written, 2 options that cannot be met. Requires: `exitCode` outlives the parsing of the command line.
void AddSimulateCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
