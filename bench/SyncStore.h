// What the cases of shared projects share.
#pragma once

#include "bench/Work.h"

namespace bench {

// New points inserted with SQLite in one transaction, and read by another connection: into the store's own
// table, and into one that has the same columns and nothing else.
Work BareStoreWork();
Work BareTableWork();

}  // namespace bench
