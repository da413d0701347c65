// LogImport: one log into one group of a field book.
#pragma once

#include <string>

#include "apps/gpsbook/book/GroupFiller.h"
#include "apps/gpsbook/book/LogReport.h"

class CLibGps;

namespace gpsbook {

/// Tells of every line of a log that became no point.
using LineWatcher = GroupFiller::Watcher;

/// Name of the group of a log: the file's name without folder and ending; "stdin" for standard input.
std::string GroupNameOf(const std::string& file);

/// Reads `file` into group `group` of `book`, which exists. Its format is told by its content.
/// Errors: CommandError when the file cannot be read or is no log at all.
LogReport ImportLog(const std::string& file, CLibGps& book, int group, const FillOptions& fill,
                    const EpochFilterOptions& filter, long& nextNumber, bool progress,
                    const LineWatcher& watcher);

}  // namespace gpsbook
