#include "host/project/ContainerFormat.h"

#include <zlib.h>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

namespace {

constexpr short kNoVersion = 0;  // these streams hold no record that asks for one

void WriteMarker(ofpstream& out, std::string_view marker) { out.WriteBytes(marker.data(), marker.size()); }

bool ReadMarker(ifpstream& in, std::string_view marker) {
    std::array<char, kMarkerSize> bytes{};
    return in.ReadBytes(bytes.data(), bytes.size()) && std::string_view(bytes.data(), bytes.size()) == marker;
}

/// What was written, with its checksum behind it.
std::string Checked(ofpstream& out) {
    out.WriteUInt(Crc(out.GetBytes()));
    return std::string(out.GetBytes());
}

/// Whether the stream has just read the checksum of all that stood before it.
bool IsChecked(ifpstream& in, std::string_view bytes) {
    const auto size = static_cast<std::size_t>(in.GetPosition());
    const std::uint32_t crc = in.ReadUInt();
    return in.IsOk() && crc == Crc(bytes.substr(0, size));
}

}  // namespace

std::uint32_t Crc(std::string_view bytes) {
    return static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

std::string FileHead() {
    ofpstream out(kNoVersion);
    WriteMarker(out, kFileMarker);
    WriteMarker(out, kSignature);
    out.WriteUShort(kContainerVersion);
    out.WriteUShort(kContainerVersion);  // the one needed to read it
    return Checked(out);
}

std::optional<std::uint16_t> NeededVersion(std::string_view fileHead) {
    ifpstream in(fileHead.data(), fileHead.size(), kNoVersion);
    if (!ReadMarker(in, kFileMarker) || !ReadMarker(in, kSignature)) return {};
    in.ReadUShort();
    const std::uint16_t needed = in.ReadUShort();
    if (!IsChecked(in, fileHead)) return {};
    return needed;
}

std::string SectionHead(const SectionEntry& entry) {
    ofpstream out(kNoVersion);
    WriteMarker(out, kSectionMarker);
    out.WriteShort(entry.version);
    out.WriteInt64(entry.items);
    out.WriteString(entry.name);
    return Checked(out);
}

std::optional<SectionEntry> ReadSectionHead(std::string_view bytes, std::size_t& size) {
    ifpstream in(bytes.data(), bytes.size(), kNoVersion);
    if (!ReadMarker(in, kSectionMarker)) return {};
    SectionEntry entry;
    entry.version = in.ReadShort();
    entry.items = in.ReadInt64();
    in.ReadString(entry.name);
    if (entry.name.empty() || entry.name.size() > kNameMost || !IsChecked(in, bytes)) return {};
    size = static_cast<std::size_t>(in.GetPosition());
    return entry;
}

std::string SectionEndBytes(const SectionEnd& end) {
    ofpstream out(kNoVersion);
    WriteMarker(out, kSectionEndMarker);
    out.WriteInt64(end.length);
    out.WriteUInt(end.crc);
    out.WriteUInt(end.blocksCrc);
    return Checked(out);
}

std::optional<SectionEnd> ReadSectionEnd(std::string_view bytes) {
    ifpstream in(bytes.data(), bytes.size(), kNoVersion);
    if (!ReadMarker(in, kSectionEndMarker)) return {};
    SectionEnd end;
    end.length = in.ReadInt64();
    end.crc = in.ReadUInt();
    end.blocksCrc = in.ReadUInt();
    if (end.length < 0 || !IsChecked(in, bytes)) return {};
    return end;
}

std::string BlockList(const std::vector<std::uint32_t>& crcs) {
    ofpstream out(kNoVersion);
    for (const std::uint32_t crc : crcs) out.WriteUInt(crc);
    return std::string(out.GetBytes());
}

std::string TableBytes(const std::vector<SectionEntry>& entries) {
    ofpstream out(kNoVersion);
    WriteMarker(out, kTableMarker);
    out.WriteInt(static_cast<std::int32_t>(entries.size()));
    for (const SectionEntry& entry : entries) {
        out.WriteString(entry.name);
        out.WriteShort(entry.version);
        out.WriteInt64(entry.items);
        out.WriteInt64(entry.offset);
        out.WriteInt64(entry.length);
        out.WriteUInt(entry.crc);
    }
    return std::string(out.GetBytes());
}

std::optional<std::vector<SectionEntry>> ReadTable(std::string_view bytes) {
    ifpstream in(bytes.data(), bytes.size(), kNoVersion);
    if (!ReadMarker(in, kTableMarker)) return {};
    std::vector<SectionEntry> entries;
    const std::int32_t count = in.ReadInt();
    for (std::int32_t i = 0; i < count && in.IsOk(); ++i) {
        SectionEntry& entry = entries.emplace_back();
        in.ReadString(entry.name);
        entry.version = in.ReadShort();
        entry.items = in.ReadInt64();
        entry.offset = in.ReadInt64();
        entry.length = in.ReadInt64();
        entry.crc = in.ReadUInt();
    }
    if (!in.IsOk() || in.GetRemaining() != 0) return {};
    return entries;
}

std::string TrailerBytes(const Trailer& trailer) {
    ofpstream out(kNoVersion);
    out.WriteInt64(trailer.tableOffset);
    out.WriteInt64(trailer.tableLength);
    out.WriteUInt(trailer.tableCrc);
    out.WriteInt64(trailer.total);
    WriteMarker(out, kEndMarker);
    return std::string(out.GetBytes());
}

std::optional<Trailer> ReadTrailer(std::string_view bytes) {
    ifpstream in(bytes.data(), bytes.size(), kNoVersion);
    Trailer trailer;
    trailer.tableOffset = in.ReadInt64();
    trailer.tableLength = in.ReadInt64();
    trailer.tableCrc = in.ReadUInt();
    trailer.total = in.ReadInt64();
    if (!ReadMarker(in, kEndMarker)) return {};
    return trailer;
}

}  // namespace gpsproject
