#include "tests/host/cloud/schedules/ItemTexts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

#include "gps/cloud/FieldLayout.h"
#include "host/project/CloudTables.h"
#include "host/project/KeptItem.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"

namespace test {

namespace {

// Places among the fields of a record, the first of which is the name.
constexpr std::size_t kGroupTag = 4;
constexpr std::size_t kPointTag = 9;
constexpr std::size_t kConversion = 14;
constexpr std::size_t kMapBegin = 39, kMapEnd = 62;
constexpr std::size_t kLocalOrigin = 68;  // latitude, longitude
constexpr std::size_t kCovariances = 21;

gpsproject::CloudTables& Tables() {
    static gpsproject::CloudTables tables;
    return tables;
}

double Number(const std::string& text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

bool IsNumber(const std::string& text) {
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() && std::isfinite(value);
}

// Within a micrometre. One degree is 111 km, and of a longitude less, the farther from the equator.
bool IsSameOrigin(double one, double other, double parallel) {
    constexpr double kDegree = 111'000 / 1.2;  // metres
    return std::abs(one - other) * kDegree * parallel <= 1e-6;
}

bool SameField(CloudKind kind, std::size_t i, const std::vector<std::string>& ones,
               const std::vector<std::string>& others, double unit) {
    const std::string &one = ones[i], &other = others[i];
    if (one == other) return true;
    if (IsNumber(one) && IsNumber(other) && Number(one) == Number(other)) return true;  // 0 and -0
    const bool origin = kind == CloudKind::group && (i == kLocalOrigin || i == kLocalOrigin + 1);
    const bool covariance = kind == CloudKind::point && i >= kCovariances;
    if ((!origin && !covariance) || !IsNumber(one) || !IsNumber(other)) return false;
    const double a = Number(one), b = Number(other);
    if (origin) {
        constexpr double kRadians = std::numbers::pi / 180;
        const bool longitude = i == kLocalOrigin + 1;
        return IsSameOrigin(a, b, longitude ? std::cos(Number(ones[kLocalOrigin]) * kRadians) : 1);
    }
    constexpr double kMost = 1e9;
    return std::abs(std::min(a, kMost) - std::min(b, kMost)) <= unit;
}

template <class Item, std::size_t N>
KeptFields FieldsOfItem(CloudKind kind, Item& item, const std::array<FieldGroup, N>& layout) {
    KeptFields kept{kind, TagOf(item), {}};
    for (const FieldGroup& fields : layout)
        kept.texts.emplace(fields.bit, OwnText(kind, fields.bit, TextOf(item, fields.bit)));
    return kept;
}

}  // namespace

void SetTag(CGrpGps& group, Tag tag) { group.SetCoord(group.GetCoordX(), group.GetCoordY(), tag); }
void SetTag(CPunGps& point, Tag tag) { point.SetTod(static_cast<std::uint32_t>(tag)); }

Tag TagOf(const CGrpGps& group) {
    const double z = group.GetCoordZ();
    return std::abs(z) < 1e9 ? static_cast<Tag>(z) : 0;
}

Tag TagOf(const CPunGps& point) { return static_cast<Tag>(point.GetTod()); }

Tag TagOf(CloudKind kind, const std::vector<std::string>& fields) {
    const std::size_t at = kind == CloudKind::group ? kGroupTag : kPointTag;
    return at < fields.size() ? static_cast<Tag>(Number(fields[at])) : 0;
}

std::string TextOf(CGrpGps& group, std::uint32_t bits) {
    vex::String text;
    Tables().base.GetFields(group, bits, text);
    return std::string(text.View());
}

std::string TextOf(CPunGps& point, std::uint32_t bits) {
    vex::String text;
    Tables().points.GetFields(point, bits, text);
    return std::string(text.View());
}

std::int64_t WholeOf(const std::string& digits) {
    std::int64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

std::vector<std::string> Split(const std::string& fields, char separator) {
    std::vector<std::string> texts;
    for (std::size_t at = 0;;) {
        const std::size_t end = fields.find(separator, at);
        texts.push_back(fields.substr(at, end == std::string::npos ? end : end - at));
        if (end == std::string::npos) return texts;
        at = end + 1;
    }
}

std::string Join(const std::vector<std::string>& fields, std::size_t first, std::size_t count) {
    std::string text;
    for (std::size_t i = first; i < first + count && i < fields.size(); ++i) {
        if (i > first) text += ';';
        text += fields[i];
    }
    return text;
}

std::string OwnText(CloudKind kind, std::uint32_t bit, const std::string& text) {
    if (kind != CloudKind::group || bit != CHG_GRP_CONVCOORD) return text;
    const std::vector<std::string> fields = Split(text);
    constexpr std::size_t kBefore = kMapBegin - kConversion, kBehind = kMapEnd - kConversion;
    return Join(fields, 0, kBefore) + ";...;" + Join(fields, kBehind, fields.size() - kBehind);
}

std::string Difference(CloudKind kind, const std::string& one, const std::string& other, bool map,
                       double unit) {
    if (one == other) return {};
    const std::vector<std::string> a = Split(one), b = Split(other);
    if (a.size() != b.size())
        return std::to_string(a.size()) + " fields and " + std::to_string(b.size()) + " fields";
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!map && kind == CloudKind::group && i >= kMapBegin && i < kMapEnd) continue;
        if (!SameField(kind, i, a, b, unit))
            return "field " + std::to_string(i) + ": '" + a[i] + "' and '" + b[i] + "'";
    }
    return {};
}

std::vector<KeptFields> FieldsOfKept(const gpsproject::CloudConflict& conflict) {
    CLibMap map;
    CLibGps book(nullptr, nullptr, nullptr, &map, 0);
    CDrawingsMapper drawings = CDrawingsMapper::KeepingUnknown();
    std::vector<KeptFields> kept;
    if (conflict.clash.kind == CloudKind::group) {
        if (!gpsproject::PutGroupBack(book, conflict.record, drawings)) return kept;
        kept.push_back(FieldsOfItem(CloudKind::group, *book.GetGrpAt(0), GRP_FIELDS));
    } else {
        book.AddGrp(false);
        if (!gpsproject::PutPointBack(book, 0, conflict.record)) return kept;
    }
    for (int p = 0; p < book.GetPunArSize(0); ++p)
        kept.push_back(FieldsOfItem(CloudKind::point, *book.GetPunAt(0, p), PUN_FIELDS));
    return kept;
}

}  // namespace test
