// ConflictResolution: what a person decides about a conflict.
#pragma once

#include <string>

#include "host/project/Project.h"

namespace gpsproject {

// Each is one edit of the book, and settles the conflict; of many see BookCloud::Settling. Errors:
// ProjectError: notFound (no such conflict, or what it is about is not in the book any more), notHeld (a
// conflict of another kind).

/// What stands in the book stays; of a kept item: it stays deleted, and what was kept of it goes.
void KeepAsItIs(Project& project, int number);

/// The other one's value comes into the book, as an edit: it is sent with the next sync. Positions that were
/// those of their fixes follow a fix or a conversion, and conflicts about them are settled, too.
void TakeTheirs(Project& project, int number);

/// A kept group, or point, comes into the book again, as a new one. A point goes into group `g`; -1: into the
/// one where it was, also when that was added again meanwhile. Returns the group's position.
int AddAgain(Project& project, int number, int g);

}  // namespace gpsproject
