// ImportLive: `gpsbook import --live`.
#pragma once

#include "apps/gpsbook/commands/ImportTarget.h"

namespace gpsbook {

/// Refuses what does not go together with --live, or without it. Errors: CommandError (exitUsage).
void CheckLive(const ImportArguments& a);

/// Follows the log until it ends, and saves the book. Errors: CommandError, ProjectError, WriteError; what
/// was told to be stored is kept in any case.
void ImportLive(const ImportArguments& a, const EpochFilterOptions& filter);

}  // namespace gpsbook
