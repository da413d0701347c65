#include "host/project/ContainerReader.h"

#include <algorithm>
#include <set>

#include "host/project/ContainerScan.h"
#include "host/project/FileMessage.h"

namespace gpsproject {

namespace {

class Parser {
public:
    Parser(FileOperations& files, int file, std::int64_t size, const std::string& name)
        : files_(files), file_(file), size_(size), name_(name) {}

    Container Parse();

private:
    std::string Bytes(std::int64_t offset, std::int64_t length);
    void Say(std::int64_t offset, const std::string& what) {
        container_.damages.push_back({"container", "", offset, what});
    }
    bool CheckHead();
    bool ReadByTable();
    bool CheckPlaces(const std::vector<SectionEntry>& entries, std::int64_t tableOffset);
    void CheckParts(FoundSection& section);

    FileOperations& files_;
    int file_;
    std::int64_t size_;
    const std::string& name_;
    Container container_;
};

/// Bytes of the file; fewer where it ends.
std::string Parser::Bytes(std::int64_t offset, std::int64_t length) {
    if (offset < 0 || offset >= size_) return {};
    std::string bytes(static_cast<std::size_t>(std::min(length, size_ - offset)), '\0');
    std::size_t got = 0;
    if (const int error = files_.ReadAt(file_, offset, bytes.data(), bytes.size(), got))
        throw SystemError(name_, "cannot be read", error);
    bytes.resize(got);
    return bytes;
}

/// Whether it is a project beyond doubt.
bool Parser::CheckHead() {
    const std::string head = Bytes(0, kFileHeadSize);
    if (const auto needed = NeededVersion(head)) {
        if (*needed > kContainerVersion)
            throw ProjectError(ProjectError::Kind::tooNew,
                               name_ + ": needs version " + std::to_string(*needed) +
                                   " of the file format, and this program knows version " +
                                   std::to_string(kContainerVersion) + "; use a newer program");
        return true;
    }
    Say(0, "the beginning of the file is not what was written");
    return head.starts_with(kFileMarker) || std::string_view(head).substr(0, 16).ends_with(kSignature) ||
           Bytes(size_ - static_cast<std::int64_t>(kMarkerSize), kMarkerSize) == kEndMarker;
}

bool Parser::CheckPlaces(const std::vector<SectionEntry>& entries, std::int64_t tableOffset) {
    std::int64_t begin = kFileHeadSize;
    for (const SectionEntry& entry : entries) {
        const auto head = kSectionHeadLeast + static_cast<std::int64_t>(entry.name.size());
        if (entry.length < 0 || entry.length > size_ || entry.offset != begin + head) return false;
        begin = entry.offset + entry.length + kSectionEndSize + 4 * BlocksOf(entry.length);
    }
    return begin == tableOffset;
}

/// What stands around a section's content says the same as the table.
void Parser::CheckParts(FoundSection& section) {
    const SectionEntry& entry = section.entry;
    SectionEntry asInHead = entry;
    asInHead.offset = -1;
    asInHead.length = 0;
    asInHead.crc = 0;
    const std::string head = SectionHead(asInHead);
    const std::int64_t begin = entry.offset - static_cast<std::int64_t>(head.size());
    if (Bytes(begin, static_cast<std::int64_t>(head.size())) != head)
        container_.damages.push_back(
            {entry.name, "", begin, "the head of the section is not what was written"});
    if (!ReadBlocks(files_, file_, size_, section))
        container_.damages.push_back(
            {entry.name, "", entry.offset + entry.length, "the end of the section is not what was written"});
}

bool Parser::ReadByTable() {
    const std::int64_t trailerAt = size_ - kTrailerSize;
    const auto trailer =
        trailerAt < kFileHeadSize ? std::nullopt : ReadTrailer(Bytes(trailerAt, kTrailerSize));
    if (!trailer) {
        Say(size_, "the end of the file is not what was written; it may be cut");
        return false;
    }
    if (trailer->total != size_ || trailer->tableOffset < kFileHeadSize || trailer->tableOffset > trailerAt ||
        trailer->tableLength != trailerAt - trailer->tableOffset) {
        Say(trailerAt, "the file has " + std::to_string(size_) + " bytes, and its end mark says otherwise");
        return false;
    }
    const std::string table = Bytes(trailer->tableOffset, trailer->tableLength);
    const auto entries = ReadTable(table);
    if (!entries || Crc(table) != trailer->tableCrc || !CheckPlaces(*entries, trailer->tableOffset)) {
        Say(trailer->tableOffset, "the table of sections is not what was written");
        return false;
    }
    for (const SectionEntry& entry : *entries) {
        FoundSection& section = container_.sections.emplace_back(FoundSection{entry, true, {}});
        CheckParts(section);
    }
    return true;
}

Container Parser::Parse() {
    const bool known = CheckHead();
    if (known && !ReadByTable()) {
        if (const int error = ScanSections(files_, file_, size_, container_.sections, container_.damages))
            throw SystemError(name_, "cannot be read", error);
        for (FoundSection& section : container_.sections) {
            if (section.checked && !ReadBlocks(files_, file_, size_, section))
                container_.damages.push_back({section.entry.name, "",
                                              section.entry.offset + section.entry.length,
                                              "the checksums of the section are not what was written"});
        }
    }
    std::set<std::string> names;
    std::erase_if(container_.sections, [&](const FoundSection& section) {
        const bool twice = !names.insert(section.entry.name).second;
        if (twice)
            container_.damages.push_back({section.entry.name, "", section.entry.offset,
                                          "the section is there twice; the first is read"});
        return twice;
    });
    if (container_.sections.empty())
        throw ProjectError(
            ProjectError::Kind::damaged,
            name_ + (known ? ": damaged, and nothing in it can be read; take a copy of it, such as "
                             "its backup"
                           : ": is no GPS survey project; choose another file"));
    return std::move(container_);
}

}  // namespace

const FoundSection* Container::Find(std::string_view name) const {
    for (const FoundSection& section : sections) {
        if (section.entry.name == name) return &section;
    }
    return nullptr;
}

Container ReadContainer(FileOperations& files, int file, std::int64_t size, const std::string& name) {
    return Parser(files, file, size, name).Parse();
}

bool ReadBlocks(FileOperations& files, int file, std::int64_t size, FoundSection& section) {
    const SectionEntry& entry = section.entry;
    const std::int64_t endAt = entry.offset + entry.length;
    const std::int64_t listSize = 4 * BlocksOf(entry.length);
    if (endAt + kSectionEndSize + listSize > size) return false;
    std::string bytes(static_cast<std::size_t>(kSectionEndSize + listSize), '\0');
    std::size_t got = 0;
    if (files.ReadAt(file, endAt, bytes.data(), bytes.size(), got) != 0 || got != bytes.size()) return false;
    const auto end = ReadSectionEnd(bytes);
    const std::string_view list = std::string_view(bytes).substr(static_cast<std::size_t>(kSectionEndSize));
    if (!end || end->length != entry.length || end->crc != entry.crc || end->blocksCrc != Crc(list))
        return false;
    section.blocks.clear();
    section.blocks.reserve(list.size() / 4);
    for (std::size_t i = 0; i < list.size(); i += 4) {
        std::uint32_t crc = 0;
        for (std::size_t b = 0; b < 4; ++b)
            crc |= static_cast<std::uint32_t>(static_cast<unsigned char>(list[i + b])) << (8 * b);
        section.blocks.push_back(crc);
    }
    return true;
}

}  // namespace gpsproject
