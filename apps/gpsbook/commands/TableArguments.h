// TableArguments: what a command line says of the table of points that is written.
#pragma once

#include <string>

#include "apps/gpsbook/writers/RowWriter.h"

namespace CLI {
class App;
}

namespace gpsbook {

struct TableArguments {
    std::string output = "-";
    std::string format;
    bool overwrite = false;
};

void AddTableOptions(CLI::App& command, TableArguments& a);

/// The format that is named, else told by the ending of the file.
/// Errors: CommandError (exitUsage), also when the format cannot go where it is to go.
TableFormat FormatFrom(const TableArguments& a);

}  // namespace gpsbook
