#include "host/project/ContainerScan.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>

namespace gpsproject {

namespace {

constexpr std::size_t kWindow = 256 * 1024;

/// The longest part that is looked at where its marker stands.
constexpr std::size_t kPartMost = static_cast<std::size_t>(kSectionHeadLeast) + kNameMost;

/// The bytes that all markers have in common are looked for: the first one, and the last four.
bool LooksLikeMarker(std::string_view bytes) {
    return bytes.size() >= kMarkerSize && bytes.substr(4, 4) == kSectionMarker.substr(4, 4);
}

int ForMarkers(FileOperations& files, int file, std::int64_t size,
               const std::function<void(std::int64_t, std::string_view)>& found) {
    std::string window;
    std::int64_t begin = 0;
    while (begin < size) {
        window.resize(static_cast<std::size_t>(std::min<std::int64_t>(kWindow, size - begin)));
        std::size_t got = 0;
        if (const int error = files.ReadAt(file, begin, window.data(), window.size(), got)) return error;
        const std::string_view bytes(window.data(), got);
        const bool last = got < window.size() || begin + static_cast<std::int64_t>(got) >= size;
        // The last bytes of a window are looked at in the next one, where what follows them stands, too.
        const std::size_t end = last ? got : got - kPartMost;
        std::size_t at = 0;
        while (at < end && (at = bytes.find(kSectionMarker[0], at)) < end) {
            if (LooksLikeMarker(bytes.substr(at)))
                found(begin + static_cast<std::int64_t>(at), bytes.substr(at, kPartMost));
            ++at;
        }
        if (last) break;
        begin += static_cast<std::int64_t>(end);
    }
    return 0;
}

struct Head {
    SectionEntry entry;  // with the offset of its content
    std::int64_t begin;
};

struct End {
    std::int64_t at;
    SectionEnd bytes;
};

struct Marks {
    std::vector<Head> heads;               // in order
    std::map<std::int64_t, End> ends;      // by where the content begins
    std::vector<std::int64_t> boundaries;  // where a content without an end ends at the latest; in order
};

int FindMarks(FileOperations& files, int file, std::int64_t size, Marks& marks) {
    return ForMarkers(files, file, size, [&](std::int64_t at, std::string_view bytes) {
        std::size_t headSize = 0;
        if (auto entry = ReadSectionHead(bytes, headSize)) {
            entry->offset = at + static_cast<std::int64_t>(headSize);
            marks.heads.push_back({*entry, at});
            marks.boundaries.push_back(at);
        } else if (const auto end = ReadSectionEnd(bytes)) {
            if (at - end->length >= kFileHeadSize + kSectionHeadLeast)
                marks.ends.emplace(at - end->length, End{at, *end});
            marks.boundaries.push_back(at);
        } else if (bytes.starts_with(kTableMarker) || bytes.starts_with(kSectionEndMarker)) {
            marks.boundaries.push_back(at);
        }
    });
}

}  // namespace

int ScanSections(FileOperations& files, int file, std::int64_t size, std::vector<FoundSection>& sections,
                 std::vector<Damage>& damages) {
    Marks marks;
    if (const int error = FindMarks(files, file, size, marks)) return error;
    std::int64_t done = 0;  // marks before it belong to a content
    for (const Head& head : marks.heads) {
        if (head.begin < done) continue;
        FoundSection section{head.entry, false, {}};
        if (const auto end = marks.ends.find(head.entry.offset); end != marks.ends.end()) {
            section.entry.length = end->second.bytes.length;
            section.entry.crc = end->second.bytes.crc;
            section.checked = true;
            done = end->second.at;
            marks.ends.erase(end);
        } else {
            const auto next =
                std::lower_bound(marks.boundaries.begin(), marks.boundaries.end(), head.entry.offset);
            const std::int64_t stop = next == marks.boundaries.end() ? size : *next;
            section.entry.length = stop - head.entry.offset;
            damages.push_back({head.entry.name, "", stop,
                               stop == size ? "the file is cut here, in the section"
                                            : "the end of the section is not what was written"});
            done = stop;
        }
        sections.push_back(section);
    }
    // An end that belongs to no head that was found, outside of the sections that were.
    for (const auto& [begin, end] : marks.ends) {
        const auto behind = std::upper_bound(
            sections.begin(), sections.end(), end.at,
            [](std::int64_t at, const FoundSection& section) { return at < section.entry.offset; });
        const bool inside =
            behind != sections.begin() && end.at < behind[-1].entry.offset + behind[-1].entry.length;
        if (!inside)
            damages.push_back({"container", "", begin,
                               "a section of " + std::to_string(end.bytes.length) +
                                   " bytes begins here whose name is lost"});
    }
    return 0;
}

}  // namespace gpsproject
