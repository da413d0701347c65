// LiveImport: a log that is still being written, epoch by epoch into one group of a field book.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/gpsbook/book/GroupFiller.h"
#include "apps/gpsbook/book/LogImport.h"
#include "apps/gpsbook/book/LogReport.h"
#include "host/project/Project.h"

namespace gpsbook {

struct LiveOptions {
    std::optional<std::chrono::steady_clock::duration> idle;  // ends after so long without a byte
    bool each = false;                                        // every epoch waits for the disk by itself

    /// Bytes of the journal after which the book is saved in between, so that a crash leaves little to do.
    std::int64_t longestJournal = 64 * 1024 * 1024;
};

/// What is told of points, by their positions in the group, when they are on the disk and not before.
using StoredTeller = std::function<void(const std::vector<int>& points)>;

/// Follows `file` into group `group` until it ends, is idle, or the program is asked to end. Every epoch is
/// an edit of the project. A group that was appended for the log and has no points yet comes into the journal
/// with the first of them. At the end all is on the disk, and the book is not saved.
///
/// `fill.known`: fixes that are left out; those that are stored are added to it.
/// Errors: CommandError when the log cannot be read or is none; ProjectError when the disk does not take the
/// journal: what was told of is kept then.
LogReport FollowLog(const std::string& file, gpsproject::Project& project, int group, FillOptions fill,
                    KnownFixes& known, const EpochFilterOptions& filter, long& nextNumber,
                    const LiveOptions& options, const LineWatcher& watcher, const StoredTeller& tell);

}  // namespace gpsbook
