// ExchangeOptions: what the commands that save and load exchange files are told.
#pragma once

#include <string>

#include "apps/gpsbook/book/ExchangeLoad.h"
#include "apps/gpsbook/book/ExchangeSave.h"

namespace CLI {
class App;
}

namespace gpsbook {

struct SaveArguments {
    std::string book, file, group, first, last;
    bool overwrite = false;
    bool force = false;
    bool json = false;
};

struct LoadArguments {
    std::string book, file, group, after, mode;
    bool fromPlane = false;
    bool force = false;
    bool dryRun = false;
    bool json = false;
};

/// BOOK, FILE and what both kinds of files have. The arguments outlive the parsing.
void AddSaveOptions(CLI::App& command, SaveArguments& a);
void AddLoadOptions(CLI::App& command, LoadArguments& a);

/// The range that is meant in a list of `size`. Errors: CommandError (exitUsage), also for the book itself in
/// the place of the file.
SaveRange RangeFrom(const SaveArguments& a, const std::string& book, int size);

/// The place that is meant. Errors: as above.
LoadPlace PlaceFrom(const LoadArguments& a, const std::string& book);

}  // namespace gpsbook
