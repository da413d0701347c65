// JournalScan: what a journal holds, and where it is not what was written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/base/JournalFrame.h"
#include "host/os/FileOperations.h"
#include "platform/base/PlatformExport.h"

/// A journal's good beginning, and what is known of the rest.
struct JournalScan {
    /// How the good beginning ends.
    enum class End {
        clean,   // with the file
        torn,    // what follows was never said to be stored: it may be cut off
        damaged  // something is wrong that was stored, or may have been: nothing may be cut off
    };

    std::optional<JournalHeader> header;  // nothing: damaged, or never written
    std::vector<JournalFrame> frames;     // undamaged, sequence by sequence from the header's first
    End end = End::clean;
    std::int64_t endOffset = 0;       // behind the last of them
    std::uint64_t lastDurable = 0;    // greatest that an undamaged frame of this journal states, `later` too
    std::vector<JournalFrame> later;  // undamaged frames of this journal behind the place
    std::string what;                 // which byte and what is wrong there; empty when clean

    /// Error number (errno) when the file could not be read: what else is said here then holds for the part
    /// that was read, and `end` is damaged.
    int error = 0;
};

/// Reads a file of `size` bytes through. Memory apart from the lists is bounded, and the time grows with the
/// size, whatever the file holds.
///
/// A frame that is missing, damaged, doubled, skipped or of another journal ends the good beginning. A frame
/// behind it that states a durable sequence shows whether what is missing there had been stored. A frame
/// that is whole but in the wrong place is always damage, as is a file that is no journal at all.
GPS_PLATFORM_API JournalScan ScanJournal(FileOperations& files, int file, std::int64_t size);

/// The payload of a frame that a scan has found, from the version on. An error number of errno, or 0; EIO,
/// too, when the file has become shorter since.
GPS_PLATFORM_API int ReadPayload(FileOperations& files, int file, const JournalFrame& frame,
                                 std::string& payload);
