// RandomEdits: edits of a project's book as a program makes them, each noted.
#pragma once

#include <random>

#include "host/project/Project.h"

namespace test {

/// One edit of one or several steps, complete when it returns. Not stored: see BookEdits::Commit.
void EditSomething(gpsproject::Project& project, std::mt19937& random);

}  // namespace test
