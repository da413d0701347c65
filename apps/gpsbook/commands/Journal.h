// The command `gpsbook journal`: looks into the journal of a book, and brings back what it holds.
#pragma once

namespace CLI {
class App;
}

namespace gpsbook {

/// Adds the command to the program. When it is run it sets `exitCode`.
/// Requires: `exitCode` outlives the parsing of the command line.
void AddJournalCommand(CLI::App& app, int& exitCode);

}  // namespace gpsbook
