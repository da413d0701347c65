#include "apps/gpsbook/book/CloudText.h"

#include <fmt/format.h>

#include <string_view>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CLibGps.h"
#include "host/cloud/ItemFields.h"
#include "host/project/CloudItems.h"

namespace gpsbook {

namespace {

using gpsproject::CloudConflict;
using gpsproject::CloudKind;
using gpsproject::CloudRefusal;
using gpsproject::Project;
using gpsproject::SplitFields;

constexpr std::string_view kUnset = "NULLVAL";

std::string ValueText(const gpssync::Field& field, std::uint32_t bit, std::string_view value) {
    if (field.type == gpssync::FieldType::text) return fmt::format("\"{}\"", Printable(value));
    if (value == kUnset) return "unset";
    double number = 0;
    // Records hold covariances as whole numbers of 1e-9 square metres.
    if (bit == CHG_PUN_POSCOV && ParseNumber(value, number)) return fmt::format("{}", number / 1e9);
    return Printable(value);
}

/// Empty when it is no time that exists.
std::string TimeOf(const std::vector<std::string_view>& fields) {
    double parts[4] = {};
    for (std::size_t i = 0; i < 4; ++i)
        if (!ParseNumber(fields[i], parts[i]) || parts[i] < 0 || parts[i] >= kDayMs) return {};
    UtcTime time;
    time.date = {static_cast<int>(parts[0]), static_cast<int>(parts[1]), static_cast<int>(parts[2])};
    time.todMs = static_cast<std::uint32_t>(parts[3]);
    return IsDate(time.date) ? TimeText(time) : "";
}

std::string Who(const gpsproject::CloudClash& clash) {
    return fmt::format("{} in revision {}", Printable(clash.author), clash.revision);
}

/// Of a deleted item, what the other one had done to it.
std::string DoneThere(const std::string& what) {
    constexpr std::string_view added = "added";
    if (what.empty()) return "changed there";
    if (what == added) return "added there";
    if (!what.starts_with("added, ")) return fmt::format("changed there ({})", Printable(what));
    return fmt::format("added and changed there ({})", Printable(what.substr(added.size() + 2)));
}

const char* WhyKept(const std::string& why) {
    if (why.empty()) return "with changes here that were not sent";
    if (why == "unseen") return "who had not seen all that was sent from here";
    return "who had not seen all that was sent from here, with changes here that were not sent";
}

}  // namespace

const char* KindText(CloudKind kind) { return gpssync::NameOf(kind); }

std::vector<std::string> FieldNames(CloudKind kind, std::uint32_t mask) {
    std::vector<std::string> names;
    for (const FieldGroup& group : gpsproject::FieldGroupsOf(kind))
        if ((mask & group.bit) != 0) names.emplace_back(group.name);
    return names;
}

TwoValues InWords(CloudKind kind, std::uint32_t bit, const TwoValues& values) {
    const FieldGroup* const group = gpsproject::FieldGroupOf(kind, bit);
    const auto mine = SplitFields(values.mine), theirs = SplitFields(values.theirs);
    const auto count = static_cast<std::size_t>(group ? group->count : 0);
    if (!group || mine.size() != count || theirs.size() != count)
        return {Printable(values.mine), Printable(values.theirs)};
    if (bit == CHG_PUN_DATETIME && kind == CloudKind::point) {
        TwoValues times{TimeOf(mine), TimeOf(theirs)};
        if (!times.mine.empty() && !times.theirs.empty()) return times;
    }
    const auto fields = gpssync::FieldsOf(kind).subspan(static_cast<std::size_t>(group->first) - 2, count);
    const std::uint32_t scaled = kind == CloudKind::point ? bit : 0;
    if (count == 1) return {ValueText(fields[0], scaled, mine[0]), ValueText(fields[0], scaled, theirs[0])};
    TwoValues words;
    for (std::size_t i = 0; i < count; ++i) {
        if (mine[i] == theirs[i]) continue;
        const char* const before = words.mine.empty() ? "" : ", ";
        words.mine += fmt::format("{}{} {}", before, fields[i].column, ValueText(fields[i], scaled, mine[i]));
        words.theirs +=
            fmt::format("{}{} {}", before, fields[i].column, ValueText(fields[i], scaled, theirs[i]));
    }
    return words;
}

ConflictValues ValuesOf(Project& project, const CloudConflict& conflict) {
    const auto& clash = conflict.clash;
    const auto here = project.GetCloud().ValueHere(conflict);
    return {here.has_value(), here == clash.theirs,
            InWords(clash.kind, clash.bit, {here.value_or(clash.mine), clash.theirs})};
}

std::string ConflictItem(Project& project, const CloudConflict& conflict) {
    const CLibGps& book = project.GetBook();
    const auto& tables = project.GetCloud().GetTables();
    const bool group = conflict.clash.kind == CloudKind::group;
    CCloudItem* const item = FindItem(tables, conflict.clash.kind, conflict.clash.id);
    if (const auto place = PlaceOf(book, conflict.clash.kind, item))
        return PlaceText(book, {place->g, place->p});
    return group || conflict.group.empty() ? conflict.clash.name : conflict.group + '/' + conflict.clash.name;
}

std::string ConflictLine(Project& project, const CloudConflict& conflict) {
    const auto& clash = conflict.clash;
    std::string line = fmt::format("{}: {} {} (id {})", conflict.number, KindText(clash.kind),
                                   Printable(ConflictItem(project, conflict)), clash.id);
    switch (conflict.kind) {
        case CloudConflict::Kind::field: {
            const auto names = FieldNames(clash.kind, clash.bit);
            const ConflictValues now = ValuesOf(project, conflict);
            line += fmt::format(", {}: ", names.empty() ? "?" : names.front());
            line += now.same    ? "by now the same here and there"
                    : !now.here ? fmt::format("not in the book any more, there {}", now.words.theirs)
                                : fmt::format("here {}, there {}", now.words.mine, now.words.theirs);
            line += ", set by " + Who(clash);
            break;
        }
        case CloudConflict::Kind::deletedHere:
            line += fmt::format(": deleted here, and {} by {}; it is deleted", DoneThere(clash.theirs),
                                Who(clash));
            break;
        case CloudConflict::Kind::kept:
            line += fmt::format(
                ": deleted there by {}, {}; it is kept{}", Who(clash), WhyKept(clash.mine),
                clash.kind == CloudKind::group ? ", with " + Counted(conflict.keptPoints, "point") : "");
            break;
    }
    return line + '\n';
}

std::string RefusedItem(const CloudRefusal& refusal) {
    std::string text = KindText(refusal.kind);
    if (!refusal.name.empty() || refusal.id < 1) text += ' ' + Printable(refusal.name);
    if (refusal.id > 0) text += fmt::format(" (id {})", refusal.id);
    return text;
}

}  // namespace gpsbook
