// JournalParts: what the tests of journals share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/JournalScan.h"
#include "host/base/JournalWriter.h"
#include "tests/host/project/ModelDisk.h"

namespace test {

inline constexpr const char* kBook = "/d/book";
inline constexpr const char* kJournal = "/d/book.journal";
inline constexpr std::uint64_t kId = 0x1122334455667788;
inline constexpr std::uint64_t kBase = 0x99AABBCCDDEEFF01;
inline constexpr std::int64_t kHeader = 33;
inline constexpr std::int64_t kHead = 40;

/// The version that stands before every content.
inline constexpr std::string_view kVersion1400{"\x78\x05", 2};

/// Makes an entry; false when none is taken.
bool Note(JournalWriter& journal, std::string_view content, int code = 3001);

/// What a file of the disk holds as a journal.
JournalScan Scanned(ModelDisk& disk, const std::string& path = kJournal);

/// The same for bytes.
JournalScan ScannedBytes(const std::string& bytes);

/// The content of a frame, without the version.
std::string ContentIn(const std::string& bytes, const JournalFrame& frame);

/// What comes back of a journal: the contents of its edits, as docs/formats/journal.md puts them together.
using Edit = std::vector<std::string>;
std::vector<Edit> Edits(const std::string& bytes, const JournalScan& scan);
std::vector<Edit> Edits(ModelDisk& disk, const std::string& path = kJournal);

}  // namespace test
