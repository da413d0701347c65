// ItemFields: the fields of groups and points, in the order of records and replies.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <span>

#include "host/project/CloudItems.h"

namespace gpssync {

using gpsproject::CloudKind;
using gpsproject::FieldGroupsOf;

enum class FieldType : std::uint8_t { text, real, whole };

struct Field {
    const char* column;  // in a store, and for people
    FieldType type;
    std::int64_t least = 0;  // of a whole number
    std::int64_t most = 0;
};

namespace field {
using Limits = std::numeric_limits<std::int32_t>;
constexpr Field Text(const char* column) { return {column, FieldType::text}; }
constexpr Field Real(const char* column) { return {column, FieldType::real}; }
constexpr Field Whole(const char* column, std::int64_t least = Limits::min(),
                      std::int64_t most = Limits::max()) {
    return {column, FieldType::whole, least, most};
}
constexpr Field Flag(const char* column) { return Whole(column, 0, 1); }
constexpr Field Byte(const char* column) { return Whole(column, 0, 255); }
}  // namespace field

/// Field i is field i + 2 of a reply. Reals: metres, degrees for latitudes, longitudes and origins, and what
/// the conversion says of its own.
inline constexpr std::array<Field, PUN_REPLY_FIELDS - 2> kPointFields{{
    field::Text("name"),
    field::Text("code_text"),
    field::Real("x"),
    field::Real("y"),
    field::Real("z"),
    field::Whole("entity_code"),
    field::Whole("year", 0, 65535),
    field::Byte("month"),
    field::Byte("day"),
    field::Whole("time_of_day"),
    field::Whole("quality"),
    field::Byte("gps_satellites"),
    field::Byte("glonass_satellites"),
    field::Real("latitude"),
    field::Real("longitude"),
    field::Real("elevation"),
    field::Real("antenna"),
    field::Real("pdop"),
    field::Real("gdop"),
    field::Real("horizontal_rms"),
    field::Real("vertical_rms"),
    field::Whole("cov_xx"),
    field::Whole("cov_xy"),
    field::Whole("cov_xz"),
    field::Whole("cov_yy"),
    field::Whole("cov_yz"),
    field::Whole("cov_zz"),
}};

inline constexpr std::array<Field, GRP_REPLY_FIELDS - 2> kGroupFields{{
    field::Text("name"),
    field::Text("code_text"),
    field::Real("x"),
    field::Real("y"),
    field::Real("z"),
    field::Whole("entity_code"),
    field::Text("group_name"),
    field::Flag("survey_type"),
    field::Flag("receiver_type"),
    field::Real("base_latitude"),
    field::Real("base_longitude"),
    field::Real("base_elevation"),
    field::Real("base_antenna"),
    field::Whole("processing_code", -32768, 32767),
    field::Whole("setting_1"),
    field::Whole("setting_2"),
    field::Whole("map_selector_1"),
    field::Whole("map_selector_2"),
    field::Whole("map_index"),
    field::Real("real_1"),
    field::Real("real_2"),
    field::Flag("setting_flag"),
    field::Whole("setting_6"),
    field::Whole("setting_7"),
    field::Whole("setting_8"),
    field::Whole("setting_9"),
    field::Whole("setting_10"),
    field::Whole("datum_type"),
    field::Text("datum_name"),
    field::Flag("datum_direction"),
    field::Real("datum_c1"),
    field::Real("datum_c2"),
    field::Real("datum_c3"),
    field::Real("datum_c4"),
    field::Real("datum_c5"),
    field::Real("datum_c6"),
    field::Real("datum_c7"),
    field::Real("datum_latitude"),
    field::Real("datum_longitude"),
    field::Text("selected_name"),  // the map library's part begins here
    field::Flag("selected_direction"),
    field::Real("selected_c1"),
    field::Real("selected_c2"),
    field::Real("selected_c3"),
    field::Real("selected_c4"),
    field::Real("selected_c5"),
    field::Real("selected_c6"),
    field::Real("selected_c7"),
    field::Real("selected_latitude"),
    field::Real("selected_longitude"),
    field::Whole("map_datum_type"),
    field::Text("map_datum_name"),
    field::Flag("map_datum_direction"),
    field::Real("map_datum_c1"),
    field::Real("map_datum_c2"),
    field::Real("map_datum_c3"),
    field::Real("map_datum_c4"),
    field::Real("map_datum_c5"),
    field::Real("map_datum_c6"),
    field::Real("map_datum_c7"),
    field::Real("map_datum_latitude"),
    field::Real("map_datum_longitude"),  // and ends here
    field::Whole("plane_type"),
    field::Real("plane_p1"),
    field::Real("plane_p2"),
    field::Real("plane_p3"),
    field::Real("plane_p4"),
    field::Real("plane_p5"),
    field::Real("local_latitude"),
    field::Real("local_longitude"),
    field::Real("local_x"),
    field::Real("local_y"),
    field::Real("local_scale"),
    field::Real("local_angle"),
    field::Whole("height_type"),
    field::Whole("height_method"),
    field::Real("height_p1"),
    field::Real("height_p2"),
    field::Real("height_p3"),
    field::Real("height_p4"),
    field::Real("height_p5"),
    field::Real("fit_1"),
    field::Real("fit_2"),
    field::Real("fit_3"),
}};

/// Places in kGroupFields. The map library belongs to the project, not to a group: what a group's record says
/// of it is kept once, the datum by the three numbers that select it.
inline constexpr std::size_t kMapSelector = 16;    // three numbers
inline constexpr std::size_t kSelectedDatum = 39;  // the datum that they select
inline constexpr std::size_t kMapLibrary = 50;     // type and datum of the library itself
inline constexpr std::size_t kBehindMap = 62;
inline constexpr std::size_t kDatumFields = kMapLibrary - kSelectedDatum;
inline constexpr std::size_t kLibraryFields = kBehindMap - kMapLibrary;

/// Bits of setters beside those of the fields: since then a group has another datum from the map library, or
/// another datum of the library itself, though nobody changed the group. They are bits of their own: who sets
/// a group's conversion later has not seen these.
inline constexpr std::uint32_t kDatumBit = 0x40000000;
inline constexpr std::uint32_t kLibraryBit = 0x80000000;

inline std::span<const Field> FieldsOf(CloudKind kind) {
    if (kind == CloudKind::group) return kGroupFields;
    return kPointFields;
}

/// The fields that a store keeps with the item itself: not the map library's.
inline constexpr bool IsOfMap(CloudKind kind, std::size_t i) {
    return kind == CloudKind::group && i >= kSelectedDatum && i < kBehindMap;
}

inline const char* NameOf(CloudKind kind) { return kind == CloudKind::group ? "group" : "point"; }

}  // namespace gpssync
