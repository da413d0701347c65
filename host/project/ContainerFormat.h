// ContainerFormat: the parts of a project file and their bytes; docs/formats/project-file.md shows them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gpsproject {

// A marker begins with a byte that is no text and holds both line ends: a transfer that changes texts, or
// cuts the eighth bit, shows at once.
inline constexpr std::string_view kFileMarker{"\211GPS\r\n\032\n", 8};
inline constexpr std::string_view kSectionMarker{"\211SEC\r\n\032\n", 8};
inline constexpr std::string_view kSectionEndMarker{"\211END\r\n\032\n", 8};
inline constexpr std::string_view kTableMarker{"\211TAB\r\n\032\n", 8};
inline constexpr std::string_view kEndMarker{"\211EOF\r\n\032\n", 8};
inline constexpr std::size_t kMarkerSize = 8;

inline constexpr std::string_view kSignature{"GPS BOOK"};

/// Version of the container. A reader of an older one stops at a file that needs a newer one.
inline constexpr std::uint16_t kContainerVersion = 1;

// Bytes of the parts that are always as long.
inline constexpr std::int64_t kFileHeadSize = 24;
inline constexpr std::int64_t kSectionEndSize = 28;  // and 4 for each block
inline constexpr std::int64_t kTrailerSize = 36;
inline constexpr std::int64_t kSectionHeadLeast = 26;  // and the name
inline constexpr std::size_t kNameMost = 64;

/// Contents are checked in blocks: damage is known to one of them.
inline constexpr std::int64_t kBlock = 4096;

// Names of sections.
inline constexpr std::string_view kGpsSection = "gps";
inline constexpr std::string_view kMapSection = "map";
inline constexpr std::string_view kSettingsSection = "project";
inline constexpr std::string_view kJournalSection = "journal";
inline constexpr std::string_view kCloudSection = "cloud";

constexpr std::int64_t BlocksOf(std::int64_t length) { return (length + kBlock - 1) / kBlock; }

/// What the table holds of a section.
struct SectionEntry {
    std::string name;
    short version = 0;         // of the stream in it
    std::int64_t items = 0;    // of the field book: groups and points; else 0
    std::int64_t offset = -1;  // of the content in the file
    std::int64_t length = 0;
    std::uint32_t crc = 0;

    bool operator==(const SectionEntry&) const = default;
};

struct SectionEnd {
    std::int64_t length = 0;
    std::uint32_t crc = 0;        // of the content
    std::uint32_t blocksCrc = 0;  // of the list that follows
};

struct Trailer {
    std::int64_t tableOffset = 0;
    std::int64_t tableLength = 0;
    std::uint32_t tableCrc = 0;
    std::int64_t total = 0;  // bytes of the file
};

// The bytes of each part, and back. Nothing is given for bytes that are not that part, whole and undamaged.

std::string FileHead();
std::string SectionHead(const SectionEntry& entry);
std::string SectionEndBytes(const SectionEnd& end);
std::string BlockList(const std::vector<std::uint32_t>& crcs);
std::string TableBytes(const std::vector<SectionEntry>& entries);
std::string TrailerBytes(const Trailer& trailer);

/// The version that a reader must know.
std::optional<std::uint16_t> NeededVersion(std::string_view fileHead);

/// The head at the beginning of `bytes`, which may go on behind it; `size`: its bytes.
std::optional<SectionEntry> ReadSectionHead(std::string_view bytes, std::size_t& size);
std::optional<SectionEnd> ReadSectionEnd(std::string_view bytes);
std::optional<std::vector<SectionEntry>> ReadTable(std::string_view bytes);
std::optional<Trailer> ReadTrailer(std::string_view bytes);

std::uint32_t Crc(std::string_view bytes);

}  // namespace gpsproject
