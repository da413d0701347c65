// The command `gpsbook merge`: fills a book from another copy of it.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddMergeCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
