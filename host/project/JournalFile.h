// JournalFile: the journal beside a project's file, and how it belongs to it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/base/JournalScan.h"
#include "host/os/FileOperations.h"
#include "host/project/ContainerFormat.h"

class ifpstream;
class ofpstream;

namespace gpsproject {

/// Behind the name of the project's file.
inline constexpr const char* kJournalEnding = ".journal";

/// Behind the name of a journal that is not this project's any more; a number follows.
inline constexpr const char* kKeptEnding = ".kept-";

/// What a project's file says of the journal whose edits are in it.
struct JournalMark {
    std::uint64_t id = 0;        // 0: none
    std::uint64_t sequence = 0;  // of the last entry that is in the file

    bool operator==(const JournalMark&) const = default;
};

void WriteMark(ofpstream& out, const JournalMark& mark);
JournalMark ReadMark(ifpstream& in);

/// By which a journal knows the file that it continues: FNV-1a, 64 bits, of the table with the checksums of
/// all contents (G. Fowler, L. C. Noll, K.-P. Vo).
std::uint64_t DigestOf(const std::vector<SectionEntry>& sections);

/// How a journal belongs to the file it stands beside.
enum class JournalTie : std::uint8_t {
    none,     // there is no journal, or nothing in it
    follows,  // it holds edits that the file does not have
    saved,    // all its edits are in the file: the program ended between save and clearing up
    foreign,  // it was begun on another save, or beside another file
};

struct FoundJournal {
    std::string path;
    JournalTie tie = JournalTie::none;
    JournalScan scan;
    std::uint64_t after = 0;  // entries up to this one are in the file

    /// Sequence of the last entry that could be read, also behind damage.
    std::uint64_t GetLast() const;

    /// Bytes that cannot be read stand before entries, or are entries, that had been stored.
    bool IsDamaged() const { return tie != JournalTie::saved && scan.end == JournalScan::End::damaged; }
};

/// Looks at the journal beside `target`. Its file stays open in `file` (-1: none): a program that writes the
/// project may take it away meanwhile. Errors: ProjectError (system).
FoundJournal FindJournal(FileOperations& files, const std::string& target,
                         const std::vector<SectionEntry>& sections, const JournalMark& mark, int& file);

}  // namespace gpsproject
