#include "apps/gpsbook/book/CloudText.h"

#include <fmt/format.h>

#include <span>
#include <string_view>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CLibGps.h"
#include "host/cloud/ItemFields.h"

namespace gpsbook {

namespace {

using gpsproject::CloudConflict;
using gpsproject::CloudKind;
using gpsproject::CloudRefusal;
using gpsproject::Project;

constexpr std::string_view kUnset = "NULLVAL";

std::vector<std::string_view> Split(std::string_view fields) {
    std::vector<std::string_view> texts;
    for (;;) {
        const std::size_t end = fields.find(';');
        texts.push_back(fields.substr(0, end));
        if (end == std::string_view::npos) return texts;
        fields.remove_prefix(end + 1);
    }
}

const FieldGroup* GroupOf(CloudKind kind, std::uint32_t bit) {
    for (const FieldGroup& group : gpssync::FieldGroupsOf(kind))
        if (group.bit == bit) return &group;
    return nullptr;
}

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

}  // namespace

const char* KindText(CloudKind kind) { return gpssync::NameOf(kind); }

std::vector<std::string> FieldNames(CloudKind kind, std::uint32_t mask) {
    std::vector<std::string> names;
    for (const FieldGroup& group : gpssync::FieldGroupsOf(kind))
        if ((mask & group.bit) != 0) names.emplace_back(group.name);
    return names;
}

TwoValues InWords(CloudKind kind, std::uint32_t bit, const TwoValues& values) {
    const FieldGroup* const group = GroupOf(kind, bit);
    const auto mine = Split(values.mine), theirs = Split(values.theirs);
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

std::string ConflictItem(Project& project, const CloudConflict& conflict) {
    CLibGps& book = project.GetBook();
    auto& tables = project.GetCloud().GetTables();
    const bool group = conflict.clash.kind == CloudKind::group;
    const CCloudTable& table = group ? static_cast<const CCloudTable&>(tables.base) : tables.points;
    CCloudItem* item = nullptr;
    Place place;
    if (table.FindItem(conflict.clash.id, item) && item) {
        const bool found = group ? book.GetIndiciDiGrp(static_cast<CGrpGps*>(item), place.group)
                                 : book.GetIndiciDiPun(static_cast<CPunGps*>(item), place.group, place.point);
        if (found) return PlaceText(book, place);
    }
    return group || conflict.group.empty() ? conflict.clash.name : conflict.group + '/' + conflict.clash.name;
}

std::string ConflictLine(Project& project, const CloudConflict& conflict) {
    const auto& clash = conflict.clash;
    std::string line = fmt::format("{}: {} {} (id {})", conflict.number, KindText(clash.kind),
                                   Printable(ConflictItem(project, conflict)), clash.id);
    switch (conflict.kind) {
        case CloudConflict::Kind::field: {
            const auto names = FieldNames(clash.kind, clash.bit);
            const TwoValues words = InWords(clash.kind, clash.bit, {clash.mine, clash.theirs});
            line += fmt::format(", {}: here {}, there {}, set by {}", names.empty() ? "?" : names.front(),
                                words.mine, words.theirs, Who(clash));
            break;
        }
        case CloudConflict::Kind::deletedHere:
            line += fmt::format(": deleted here, and changed there by {}; it is deleted", Who(clash));
            break;
        case CloudConflict::Kind::kept:
            line += fmt::format(
                ": deleted there by {}, with changes here that were not sent; it is kept{}", Who(clash),
                clash.kind == CloudKind::group ? ", with " + Counted(conflict.keptPoints, "point") : "");
            break;
    }
    return line + '\n';
}

std::string RefusedItem(const CloudRefusal& refusal) {
    if (refusal.id > 0) return fmt::format("{} (id {})", KindText(refusal.kind), refusal.id);
    return fmt::format("{} {}", KindText(refusal.kind), Printable(refusal.name));
}

}  // namespace gpsbook
