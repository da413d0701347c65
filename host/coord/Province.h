// Province: the provinces in which permanent stations stand, by sign and name.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/coord/CTrovaNomeBaseGps.h"

/// A province, or one of the two answers that are none: any, and abroad.
struct ProvinciaInfo {
    CTrovaNomeBaseGps::enumProvincia provincia;
    std::string_view sign;  // "UD"; "any", "abroad"
    std::string_view name;  // "Udine"
    std::string_view region;
};

/// All of them, in the order of the enumeration.
GPS_PLATFORM_API std::span<const ProvinciaInfo> Province();

GPS_PLATFORM_API const ProvinciaInfo& InfoOf(CTrovaNomeBaseGps::enumProvincia provincia);

/// The province of a sign or a name, in large or small letters; of a name in two languages, "Bolzano/Bozen",
/// the part before the '/' counts. Nothing for a text that is neither.
GPS_PLATFORM_API std::optional<CTrovaNomeBaseGps::enumProvincia> ProvinciaFrom(std::string_view text);
