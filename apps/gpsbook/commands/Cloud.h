// The command `gpsbook cloud`: what a book and its shared project differ in, and what becomes of it.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddCloudCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
