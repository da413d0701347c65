// JournalRecover: `gpsbook journal replay` and `gpsbook journal salvage`.
#pragma once

#include <cstdint>
#include <string>

namespace gpsbook {

/// "1 entry", "2 entries"
std::string CountedEntries(std::int64_t n);

// Errors: CommandError, ProjectError; the book and its journal are as they were then.
void ReplayJournal(const std::string& book, bool json);
void SalvageJournal(const std::string& book, bool json);

}  // namespace gpsbook
