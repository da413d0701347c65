// ItemTexts: the fields of groups and points as texts, by which books are compared.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "gps/model/CLibGps.h"
#include "host/project/CloudState.h"

namespace test {

using gpsproject::CloudKind;

/// Every item that a test makes has a number of its own, in a field that is never edited: it tells items
/// apart, whatever ids they have.
using Tag = std::int32_t;

/// The tag stands in a group's height and in a point's time of day.
void SetTag(CGrpGps& group, Tag tag);
void SetTag(CPunGps& point, Tag tag);
Tag TagOf(const CGrpGps& group);
Tag TagOf(const CPunGps& point);
Tag TagOf(CloudKind kind, const std::vector<std::string>& fields);  // all of an item, as in a record

/// Fields of change bits, as a change record has them.
std::string TextOf(CGrpGps& group, std::uint32_t bits);
std::string TextOf(CPunGps& point, std::uint32_t bits);

inline constexpr std::uint32_t kGroupBits = 0x1FFF;
inline constexpr std::uint32_t kPointBits = 0x1FFFF;

std::int64_t WholeOf(const std::string& digits);
std::vector<std::string> Split(const std::string& fields, char separator = ';');
std::string Join(const std::vector<std::string>& fields, std::size_t first, std::size_t count);

/// The text of one bit without what is not the item's own: a conversion's record also holds values of the
/// map library, which all groups share.
std::string OwnText(CloudKind kind, std::uint32_t bit, const std::string& text);

/// What is wrong when two items do not have the same fields (all of them, as in a record): empty when they
/// have. Covariances are the same when both are at least 1, or within `unit` 1e-9; the origin of the local
/// system within 1e-6 m. With `map` false the values of the map library are not compared.
std::string Difference(CloudKind kind, const std::string& one, const std::string& other, bool map = true,
                       double unit = 1);

/// An item of a kept conflict, with the texts of its bits.
struct KeptFields {
    CloudKind kind;
    Tag tag;
    std::map<std::uint32_t, std::string> texts;

    bool Has(std::uint32_t bit, const std::string& text) const {
        const auto found = texts.find(bit);
        return found != texts.end() && found->second == text;
    }
};
std::vector<KeptFields> FieldsOfKept(const gpsproject::CloudConflict& conflict);

}  // namespace test
