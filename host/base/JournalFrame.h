// JournalFrame: the parts of a journal and their bytes; docs/formats/journal.md shows them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/PlatformExport.h"

/// A journal begins with these; the first one is not ':', so that what follows may be applied.
inline constexpr std::string_view kJournalMarker{"J\1\1\0\0", 5};
inline constexpr std::string_view kFrameMagic{"GFRM", 4};

inline constexpr std::size_t kJournalHeaderSize = 33;
inline constexpr std::size_t kFrameHeadSize = 40;

/// Version of every entry, which its payload begins with.
inline constexpr short kJournalVersion = 1400;

/// Code of a frame without content: the frames of the unfinished edit before it do not count.
inline constexpr std::uint16_t kEditGivenUp = 9000;

/// What a journal is and which state it continues.
struct JournalHeader {
    std::uint64_t id = 0;             // random: no two journals have the same
    std::uint64_t base = 0;           // digest of the project file whose edits follow
    std::uint64_t firstSequence = 0;  // of its first frame

    bool operator==(const JournalHeader&) const = default;
};

/// One entry, and where it stands in the file.
struct JournalFrame {
    std::uint64_t sequence = 0;
    std::uint64_t durable = 0;  // up to this one all were on the disk when it was written; 0: none
    std::uint16_t code = 0;
    bool more = false;                // frames of the same edit follow
    std::int64_t offset = 0;          // of the frame
    std::int64_t payloadOffset = 0;   // of the payload, which begins with the 16-bit version
    std::uint32_t payloadLength = 0;  // bytes

    bool operator==(const JournalFrame&) const = default;
};

/// What stands before a payload.
struct FrameHead {
    std::uint32_t crc = 0;  // of all behind it, payload included
    std::uint32_t payloadLength = 0;
    std::uint64_t journal = 0;  // id
    std::uint64_t sequence = 0;
    std::uint64_t durable = 0;
    std::uint16_t code = 0;
    std::uint16_t flags = 0;
};

inline constexpr std::uint16_t kMoreFollows = 1;  // the only flag
inline constexpr std::size_t kFrameChecked = 8;   // the checksum covers the frame from this byte on

GPS_PLATFORM_API std::string JournalHeaderBytes(const JournalHeader& header);

/// Nothing for bytes that are no header, whole and undamaged. More may follow.
GPS_PLATFORM_API std::optional<JournalHeader> ReadJournalHeader(std::string_view bytes);

/// A whole frame; the checksum in `head` plays no part.
GPS_PLATFORM_API std::string FrameBytes(FrameHead head, std::string_view payload);

/// The head of a frame at `at`, kFrameHeadSize bytes, without its checksum, which SealFrame adds when the
/// payload stands behind it.
GPS_PLATFORM_API void StoreFrameHead(unsigned char* at, const FrameHead& head);
GPS_PLATFORM_API void SealFrame(unsigned char* at, std::size_t payloadLength);

/// Nothing when no frame begins there. Whether it is undamaged is another question.
GPS_PLATFORM_API std::optional<FrameHead> LoadFrameHead(const unsigned char* at);

/// CRC-32 of zlib, continued from that of the bytes before.
GPS_PLATFORM_API std::uint32_t JournalCrc(std::uint32_t before, const void* bytes, std::size_t size);
