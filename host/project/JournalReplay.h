// JournalReplay: brings back the edits that stand in a journal and not in the saved book.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/base/JournalScan.h"

class FileOperations;

namespace gpsproject {

class Project;

/// What a replay brought back.
struct ReplayReport {
    std::int64_t edits = 0;
    std::int64_t entries = 0;
    std::int64_t unfinished = 0;  // entries of edits that were given up or that the crash cut short
    std::uint64_t upTo = 0;       // sequence of the last entry that counts as taken in
    std::int64_t groups = 0;      // group records that were read: added or changed
    std::int64_t points = 0;      // point records that were read
    std::int64_t deleted = 0;     // groups and points

    /// Byte of the first entry that could not be applied, and why; -1: all were.
    std::int64_t refusedAt = -1;
    std::string refused;
};

/// Applies the entries of `frames` with a sequence above `after` to the project's book, edit by edit: one
/// whose end is missing is not applied. It stops in front of an edit with an entry that does not fit the
/// book; nothing of that edit is applied unless its first entries fit.
/// Errors: ProjectError (system) when the journal cannot be read, std::bad_alloc.
ReplayReport Replay(Project& project, FileOperations& files, int file, const std::string& path,
                    const std::vector<JournalFrame>& frames, std::uint64_t after);

}  // namespace gpsproject
