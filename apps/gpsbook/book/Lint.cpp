#include "apps/gpsbook/book/Lint.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_map>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/EpochFilter.h"
#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/fields/Field.h"
#include "apps/gpsbook/fields/TextRules.h"
#include "apps/gpsbook/readers/Calendar.h"
#include "apps/gpsbook/readers/LocalFrame.h"
#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

constexpr std::size_t kMostPlaces = 5;
constexpr double kPlaneTolerance = 0.001;       // plane units; well above what a conversion rounds
constexpr double kPrecisionTolerance = 0.0005;  // metres: logs round to a tenth of a millimetre
constexpr double kPrecisionPart = 0.1;          // of the larger value

/// Findings of one group, by kind and words.
class Findings {
public:
    Findings(std::vector<Finding>& all, int group) : all_(all), group_(group) {}

    void OfGroup(std::string_view kind, std::string what) {
        all_.push_back({kind, group_, 0, {}, std::move(what)});
    }

    void OfPoint(std::string_view kind, const std::string& what, int point) {
        const auto [at, isNew] = index_.try_emplace(std::string(kind) + what, all_.size());
        if (isNew) all_.push_back({kind, group_, 0, {}, what});
        Finding& finding = all_[at->second];
        ++finding.count;
        if (finding.places.size() < kMostPlaces) finding.places.push_back(point);
    }

private:
    std::vector<Finding>& all_;
    int group_;
    std::map<std::string, std::size_t> index_;
};

// What a value is that could not have been entered; empty when it could.
template <class Item>
std::string ValueProblem(const Field<Item>& field, const FieldValue& value) {
    if (const auto* text = std::get_if<std::string>(&value))
        return field.kind == FieldKind::text && !TextProblem(*text).empty()
                   ? std::string(field.name) + " holds ';' or a control character, or is not UTF-8"
                   : "";
    double number = 0;
    if (const auto* real = std::get_if<double>(&value)) {
        if (!IsCoordValid(*real)) return {};  // unset
        number = *real;
    } else if (const auto* single = std::get_if<float>(&value)) {
        number = *single;
    } else if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        number = static_cast<double>(*whole);
    } else {
        return {};
    }
    if (number >= field.low && number <= field.high) return {};
    return fmt::format("{} outside {} to {} {}", field.name, field.low, field.high, field.unit);
}

template <class Item, class Tell>
void LookAtValues(Item& item, const Tell& tell) {
    for (const Field<Item>& field : FieldsOf<Item>()) {
        const std::string problem = ValueProblem(field, field.get(item));
        if (!problem.empty()) tell(field.kind == FieldKind::text ? "text" : "range", problem);
    }
}

bool HasDate(const CPunGps& p) {
    return IsDate({p.GetYear(), p.GetMonth(), p.GetDay()}) && p.GetTod() < 86'401'000;
}

bool HasFix(const CPunGps& p) {
    return HasValue(p.GetLat()) && HasValue(p.GetLong()) && HasValue(p.GetElev());
}

void LookForGaps(const CPunGps& p, int at, Findings& findings) {
    if (p.GetNome().empty()) findings.OfPoint("name-empty", "no name", at);
    if (!HasFix(p)) findings.OfPoint("unset", "no complete position", at);
    if (!HasDate(p)) findings.OfPoint("unset", "no time that exists", at);
    if (!HasValue(p.GetAltAnt()))
        findings.OfPoint("unset", "no antenna height", at);
    else if (p.GetAltAnt() == 0)
        findings.OfPoint("antenna-zero", "antenna height 0", at);
}

// The antenna height of most points that have one above 0.
double UsualAntenna(const CLibGps& book, int g) {
    std::map<double, int> heights;
    for (int p = 0; p < book.GetPunArSize(g); ++p)
        if (const double antenna = book.GetPunAt(g, p)->GetAltAnt(); HasValue(antenna) && antenna != 0)
            ++heights[antenna];
    const auto most = std::max_element(heights.begin(), heights.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return most == heights.end() ? GPS_VAL_UNSET : most->first;
}

bool Unlike(double a, double b) {
    return std::abs(a - b) > kPrecisionTolerance + kPrecisionPart * std::max(std::abs(a), std::abs(b));
}

// No variance below 0, and no covariance larger than its two variances allow.
bool CanBe(const Covariance& c) {
    const auto fits = [](double v1, double v2, double cov) {
        return cov * cov <= v1 * v2 * (1 + 1e-3) + 1e-12;
    };
    return c[0] >= 0 && c[1] >= 0 && c[2] >= 0 && fits(c[0], c[1], c[3]) && fits(c[0], c[2], c[4]) &&
           fits(c[1], c[2], c[5]);
}

void LookAtPrecision(const CPunGps& p, int at, Findings& findings) {
    const Covariance xyz{p.GetPosCov_xx(), p.GetPosCov_yy(), p.GetPosCov_zz(),
                         p.GetPosCov_xy(), p.GetPosCov_xz(), p.GetPosCov_yz()};
    if (std::all_of(xyz.begin(), xyz.end(), [](double v) { return v == 0; })) return;  // none
    if (!CanBe(xyz)) return findings.OfPoint("precision", "a covariance that cannot be", at);
    if (!HasValue(p.GetLat()) || !HasValue(p.GetLong())) return;
    const Covariance enu = LocalFrame(p.GetLat(), p.GetLong()).CovToLocal(xyz);
    if (HasValue(p.GetHposRms()) && Unlike(p.GetHposRms(), HorizontalRms(enu)))
        findings.OfPoint("precision", "hrms unlike the covariance", at);
    if (HasValue(p.GetVposRms()) && Unlike(p.GetVposRms(), VerticalRms(enu)))
        findings.OfPoint("precision", "vrms unlike the covariance", at);
}

void LookAtPlane(const CGrpGps& group, const CPunGps& p, int at, Findings& findings) {
    if (!group.IsCdElabValid() || group.IsCodedNE() || p.IsCodedNE()) return;
    double x = 0, y = 0, z = 0;
    const bool has =
        HasFix(p) && HasValue(p.GetAltAnt()) &&
        group.GetConvCoord()->GrafGpsToPlanAtt(p.GetLat(), p.GetLong(), p.GetElev(), p.GetAltAnt(), x, y, z);
    if (!has) return;
    if (!HasValue(p.GetCoordX()) || !HasValue(p.GetCoordY()) || !HasValue(p.GetCoordZ()))
        return findings.OfPoint("plane", "no plane coordinates; gpsbook compute makes them", at);
    const double far =
        std::max({std::abs(p.GetCoordX() - x), std::abs(p.GetCoordY() - y), std::abs(p.GetCoordZ() - z)});
    if (far > kPlaneTolerance)
        findings.OfPoint("plane",
                         "plane coordinates that do not follow from the fix; gpsbook compute makes them anew",
                         at);
}

// The day of a group: that of its date, when it reads as one, else that of its first point with a time.
std::optional<std::int64_t> DayOf(const CLibGps& book, int g) {
    const std::string& date = book.GetGrpAt(g)->GetData();
    if (date.size() >= 10)
        if (const auto bound = ParseTimeBound(date.substr(0, 10) + "T00:00:00Z"); bound && bound->day)
            return bound->day;
    for (int p = 0; p < book.GetPunArSize(g); ++p)
        if (const CPunGps& point = *book.GetPunAt(g, p); HasDate(point))
            return DayNumber({point.GetYear(), point.GetMonth(), point.GetDay()});
    return std::nullopt;
}

void LookForTwins(const CLibGps& book, int g, Findings& findings) {
    std::unordered_map<std::string_view, int> first;
    for (int p = 0; p < book.GetPunArSize(g); ++p) {
        const std::string& name = book.GetPunAt(g, p)->GetNome();
        if (name.empty()) continue;
        const auto [at, isNew] = first.try_emplace(name, p);
        if (!isNew) findings.OfPoint("name-twice", "a name that a point before has", p);
    }
}

void LookAtBase(CGrpGps& group, Findings& findings) {
    const bool has[] = {HasValue(group.GetBaseLat()), HasValue(group.GetBaseLong()),
                        HasValue(group.GetBaseElev()), HasValue(group.GetBaseAltAnt())};
    const auto set = std::count(std::begin(has), std::end(has), true);
    if (set > 0 && set < 4) findings.OfGroup("unset", "only a part of the base's position is known");
}

void LookAtGroup(const CLibGps& book, int g, std::vector<Finding>& all) {
    CGrpGps& group = *book.GetGrpAt(g);
    Findings findings(all, g);
    if (NameOf(group).empty()) findings.OfGroup("name-empty", "no name");
    LookAtValues(group, [&](const char* kind, const std::string& what) { findings.OfGroup(kind, what); });
    LookAtBase(group, findings);
    const int size = book.GetPunArSize(g);
    if (size > 0 && !group.IsCdElabValid())
        findings.OfGroup("conversion", "no usable conversion; gpsbook set GROUP crs=... gives one");
    LookForTwins(book, g, findings);
    const double antenna = UsualAntenna(book, g);
    const auto day = DayOf(book, g);
    for (int p = 0; p < size; ++p) {
        CheckInterrupt();
        CPunGps& point = *book.GetPunAt(g, p);
        LookForGaps(point, p, findings);
        LookAtValues(point,
                     [&](const char* kind, const std::string& what) { findings.OfPoint(kind, what, p); });
        if (HasValue(point.GetAltAnt()) && point.GetAltAnt() != 0 && point.GetAltAnt() != antenna)
            findings.OfPoint("antenna-differs",
                             fmt::format("antenna height other than {:.4f} m of most points", antenna), p);
        LookAtPrecision(point, p, findings);
        LookAtPlane(group, point, p, findings);
        if (day && HasDate(point) && DayNumber({point.GetYear(), point.GetMonth(), point.GetDay()}) != *day)
            findings.OfPoint("day", "a time on another day than the group's", p);
    }
}

void LookForTwinGroups(const CLibGps& book, std::vector<Finding>& all) {
    std::map<std::string, std::vector<int>> places;
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        if (const std::string& name = NameOf(*book.GetGrpAt(g)); !name.empty()) places[name].push_back(g);
    for (auto& [name, groups] : places) {
        if (groups.size() < 2) continue;
        const auto count = static_cast<std::int64_t>(groups.size());
        groups.resize(std::min(groups.size(), kMostPlaces));
        all.push_back({"name-twice", -1, count, groups, "groups of the name \"" + name + "\""});
    }
}

}  // namespace

std::vector<Finding> LintBook(const CLibGps& book) {
    std::vector<Finding> all;
    LookForTwinGroups(book, all);
    for (int g = 0; g < book.GetGrpArSize(); ++g) LookAtGroup(book, g, all);
    return all;
}

}  // namespace gpsbook
