#include "apps/gpsbook/commands/ExchangeOptions.h"

#include <CLI/CLI.hpp>

#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/commands/Positions.h"
#include "apps/gpsbook/commands/Words.h"
#include "platform/base/fileHelpers.h"

namespace gpsbook {

namespace {

// The library understands both separators, so everything that looks at the file does.
std::string FileFrom(const std::string& given, const std::string& book) {
    const std::string file = PercorsoDiSistema(given.c_str());
    if (IsSameFile(file, book))
        throw CommandError(exitUsage, "FILE: \"" + given + "\" is the book itself; give another file");
    return file;
}

}  // namespace

void AddSaveOptions(CLI::App& command, SaveArguments& a) {
    AddBook(command, a.book);
    command.add_option("FILE", a.file, "The file to write")->required()->check(Filled());
    command.add_option("--first", a.first, "Position of the first one, from 0 [0]")
        ->type_name("N")
        ->check(Filled());
    command.add_option("--last", a.last, "Position behind the last one [the end]")
        ->type_name("N")
        ->check(Filled());
    command.add_flag("--overwrite", a.overwrite, "Replace the file when it exists");
    command.add_flag("--force", a.force, "Write also a range that does not exist, with its false count");
    command.add_flag("--json", a.json, "Print what was written as JSON");
}

void AddLoadOptions(CLI::App& command, LoadArguments& a) {
    AddBook(command, a.book);
    command.add_option("FILE", a.file, "The file to read")->required()->check(Filled());
    command.add_option("--after", a.after, "Position behind which they come, -1 for in front of all")
        ->required()
        ->type_name("N")
        ->check(Filled());
    command.add_flag("--force", a.force, "Load whatever is there, damaged or not");
    command.add_flag("--dry-run", a.dryRun, "Tell what would be loaded, and save nothing");
    command.add_flag("--json", a.json, "Print what was loaded as JSON");
}

SaveRange RangeFrom(const SaveArguments& a, const std::string& book, int size) {
    SaveRange range;
    range.file = FileFrom(a.file, book);
    range.first = a.first.empty() ? 0 : AnyPosition("--first", a.first);
    range.last = a.last.empty() ? size : AnyPosition("--last", a.last);
    range.overwrite = a.overwrite;
    range.force = a.force;
    return range;
}

LoadPlace PlaceFrom(const LoadArguments& a, const std::string& book) {
    return {FileFrom(a.file, book), AnyPosition("--after", a.after), a.force};
}

}  // namespace gpsbook
