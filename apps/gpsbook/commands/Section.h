// The command `gpsbook section`: writes and reads the bare GPS section.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddSectionCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
