// Layout: the records of the GPS section, field by field, as tables.
#pragma once

#include <cstdint>
#include <span>

namespace gpsbook {

enum class FieldType : std::uint8_t {
    u8,
    i16,
    u16,
    i32,
    u32,
    i64,
    f32,
    f64,
    bool4,
    bool2,
    count,
    string,
    drawing
};

/// Name of a type as the documentation has it.
const char* NameOf(FieldType type);

/// Records within records.
enum class RecordId : std::uint8_t {
    none,
    mapLibrary,
    bookOptions,
    displayOptions,
    entity,
    cloud,
    conversion,
    datum,
    projection
};

inline constexpr short kAlways = -32768;
inline constexpr short kNoEnd = 32767;

/// A field, or a record that stands there, in streams of version `from` up to and without `below`.
struct Row {
    FieldType type = FieldType::u8;
    const char* name = nullptr;
    short from = kAlways;
    short below = kNoEnd;
    RecordId record = RecordId::none;  // none: a field

    bool IsIn(short version) const { return version >= from && version < below; }
};

/// The tables of docs/formats/records.md and options.md. Records that are more than one field after another
/// (lists, envelopes) have the rest of their rule in SectionDecoder.
std::span<const Row> BookRows();  // up to the number of groups
std::span<const Row> GroupRows();
std::span<const Row> PointRows();
std::span<const Row> EntityRows();      // up to the byte that tells whether more follows
std::span<const Row> EntityMoreRows();  // what follows
std::span<const Row> CloudRows();
std::span<const Row> ConversionRows();
std::span<const Row> DatumRows();
std::span<const Row> ProjectionRows();
std::span<const Row> MapLibraryRows();  // up to the number of lists
std::span<const Row> BookOptionRows();
std::span<const Row> DisplayEntryRows();
std::span<const Row> PostProcessingRows();  // up to the first list of files
std::span<const Row> ObservationFileRows();

}  // namespace gpsbook
