// The command `gpsbook import-book`: takes the groups of another book over as new ones.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddImportBookCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
