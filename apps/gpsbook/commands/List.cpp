#include "apps/gpsbook/commands/List.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <numeric>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/book/PointFilter.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "apps/gpsbook/fields/NearNames.h"
#include "apps/gpsbook/stations/BaseFrame.h"
#include "apps/gpsbook/writers/TextOutput.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book;
    std::vector<std::string> groups;
    std::string quality, name, code, from, to;
    std::string fields;
    bool points = false;
    bool json = false;
};

std::optional<TimeBound> Bound(const std::string& option, const std::string& text) {
    if (text.empty()) return std::nullopt;
    const auto bound = ParseTimeBound(text);
    if (!bound)
        throw CommandError(exitUsage, option + ": \"" + text +
                                          "\" is not a time; write it like 2024-05-01T08:00:00Z, or 08:00:00 "
                                          "for every day");
    return bound;
}

PointFilter FilterFrom(const Arguments& a) {
    PointFilter filter;
    if (!a.quality.empty()) filter.qualities = ParseQualities(a.quality);
    filter.name = a.name;
    filter.code = a.code;
    filter.from = Bound("--from", a.from);
    filter.to = Bound("--to", a.to);
    return filter;
}

std::vector<const PointField*> FieldsFrom(const std::string& list, std::vector<const PointField*> otherwise) {
    if (list.empty()) return otherwise;
    std::vector<const PointField*> fields;
    if (list == "all") {
        for (const PointField& field : PointFields()) fields.push_back(&field);
        return fields;
    }
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string name = list.substr(begin, end - begin);
        if (name.empty())
            throw CommandError(exitUsage, "--fields: \"" + list +
                                              "\" has an empty name; give names with one comma "
                                              "between them");
        const PointField* field = FindField<CPunGps>(name);
        if (!field) {
            NearNames near(name);
            for (const PointField& known : PointFields()) near.Consider(known.name);
            throw CommandError(exitUsage,
                               "--fields: \"" + name + "\" is no field of a point" + near.Question());
        }
        fields.push_back(field);
        begin = end + 1;
    }
    return fields;
}

// What fits a terminal.
std::vector<const PointField*> ShortFields() {
    std::vector<const PointField*> fields;
    for (const char* name :
         {"name", "code", "time", "lat", "lon", "h", "antenna", "east", "north", "height", "quality"})
        fields.push_back(FindField<CPunGps>(name));
    return fields;
}

std::vector<const PointField*> TableFields() {
    std::vector<const PointField*> fields;
    for (const PointField& field : PointFields().first(kPointColumns)) fields.push_back(&field);
    return fields;
}

std::vector<int> GroupsFrom(const CLibGps& book, const Arguments& a) {
    if (!a.groups.empty()) return FindGroups(book, a.groups);
    std::vector<int> all(static_cast<std::size_t>(book.GetGrpArSize()));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

// --- JSON ------------------------------------------------------------------------------------------------

std::string Dumped(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

std::string GroupJson(CLibGps& book, int g) {
    CGrpGps& group = *book.GetGrpAt(g);
    Json object{{"index", g}};
    for (const GroupField& field : GroupFields()) object[field.name] = ValueJson(field.get(group));
    const BaseFrame frame = FrameOf(group);
    object["frame"] = frame.IsTagged() ? Json(frame.Text()) : Json(nullptr);
    object["size"] = book.GetPunArSize(g);
    return Dumped(object);
}

bool IsName(const PointField& field) { return std::string_view(field.name) == "name"; }

// A point a line, written as it is made: a book may be larger than the memory that is left.
void WriteJson(TextOutput& out, CLibGps& book, const Arguments& a, int version) {
    const PointFilter filter = FilterFrom(a);
    const std::vector<const PointField*> fields = FieldsFrom(a.fields, TableFields());
    out.Append(fmt::format("{{\n  \"version\": {},\n  \"groups\": [", version));
    const char* before = "\n";
    std::string line;
    for (const int g : GroupsFrom(book, a)) {
        std::string head = GroupJson(book, g);
        head.pop_back();
        out.Append(fmt::format("{}    {},\"points\":[", before, head));
        before = ",\n";
        const char* beforePoint = "\n";
        std::string groupName;
        AppendJson(groupName, NameOf(*book.GetGrpAt(g)));
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            CheckInterrupt();
            CPunGps& point = *book.GetPunAt(g, p);
            if (!filter.Takes(point)) continue;
            line = fmt::format("{}      {{\"index\":{},\"group\":{},\"name\":", beforePoint, p, groupName);
            AppendJson(line, point.GetNome());
            for (const PointField* field : fields) {
                if (IsName(*field)) continue;  // stands there already
                line.append(",\"").append(field->name).append("\":");
                AppendJson(line, field->get(point));
            }
            line += '}';
            out.Append(line);
            beforePoint = ",\n";
        }
        out.Append("]}");
    }
    out.Append("\n  ]\n}\n");
}

// --- text ------------------------------------------------------------------------------------------------

void WriteGroups(TextOutput& out, CLibGps& book) {
    std::vector<TextTable::Column> columns{
        {"#", true},        {"name"},           {"date"},         {"points", true},
        {"base_lat", true}, {"base_lon", true}, {"base_h", true}, {"crs"}};
    // Most books have no tags: no column for nothing.
    bool frames = false;
    for (int g = 0; g < book.GetGrpArSize(); ++g) frames = frames || FrameOf(*book.GetGrpAt(g)).IsTagged();
    if (frames) columns.push_back({"frame"});
    TextTable table(std::move(columns));
    const auto cells = [&](int g) {
        CGrpGps& group = *book.GetGrpAt(g);
        std::vector<std::string> row{fmt::format("{}", g), Printable(NameOf(group)),
                                     Printable(group.GetData()), fmt::format("{}", book.GetPunArSize(g))};
        for (const char* name : {"base_lat", "base_lon", "base_h", "crs"}) {
            const GroupField& field = *FindField<CGrpGps>(name);
            std::string text = Printable(ValueText(field, field.get(group)));
            constexpr std::size_t most = 40;  // a system as WKT has a thousand
            if (text.size() > most) text = Printable(text.substr(0, most)) + "...";
            row.push_back(std::move(text));
        }
        if (frames) row.push_back(FrameOf(group).Text());
        return row;
    };
    for (int g = 0; g < book.GetGrpArSize(); ++g) table.Measure(cells(g));
    out.Append(table.Head());
    for (int g = 0; g < book.GetGrpArSize(); ++g) out.Append(table.Line(cells(g)));
}

std::int64_t WritePoints(TextOutput& out, CLibGps& book, int g, const PointFilter& filter,
                         const std::vector<const PointField*>& fields) {
    std::vector<TextTable::Column> columns{{"#", true}};
    for (const PointField* field : fields)
        columns.push_back({field->name, field->kind != FieldKind::text && field->kind != FieldKind::time});
    TextTable table(std::move(columns));
    const auto cells = [&](int p) {
        std::vector<std::string> row{fmt::format("{}", p)};
        for (const PointField* field : fields)
            row.push_back(Printable(ValueText(*field, field->get(*book.GetPunAt(g, p)))));
        return row;
    };
    std::vector<int> taken;
    for (int p = 0; p < book.GetPunArSize(g); ++p) {
        CheckInterrupt();
        if (!filter.Takes(*book.GetPunAt(g, p))) continue;
        taken.push_back(p);
        table.Measure(cells(p));
    }
    if (taken.empty() && !filter.IsEmpty()) return 0;
    const std::string some = filter.IsEmpty() ? "" : fmt::format("{} of ", taken.size());
    out.Append(fmt::format("#{} {}: {}{}\n", g, Printable(NameOf(*book.GetGrpAt(g))), some,
                           Counted(book.GetPunArSize(g), "point")));
    if (!taken.empty()) out.Append(table.Head());
    for (const int p : taken) out.Append(table.Line(cells(p)));
    return static_cast<std::int64_t>(taken.size());
}

void WriteText(TextOutput& out, CLibGps& book, const Arguments& a) {
    const PointFilter filter = FilterFrom(a);
    const std::vector<const PointField*> fields = FieldsFrom(a.fields, ShortFields());
    const std::vector<int> groups = GroupsFrom(book, a);
    if (groups.empty()) {
        out.Append("no groups\n");
        return;
    }
    if (a.groups.empty() && filter.IsEmpty() && a.fields.empty() && !a.points) return WriteGroups(out, book);
    std::int64_t taken = 0;
    for (const int g : groups) taken += WritePoints(out, book, g, filter, fields);
    if (taken == 0 && !filter.IsEmpty()) out.Append("no point fits\n");
}

void Run(const Arguments& a) {
    FilterFrom(a);  // what is wrong with the command line is told before the book is read
    FieldsFrom(a.fields, {});
    const auto project = OpenToRead(a.book);
    TextOutput out({"-", false, nullptr});
    if (a.json)
        WriteJson(out, project->GetBook(), a, project->GetStreamVersion());
    else
        WriteText(out, project->GetBook(), a);
    out.Close();
    EndReading(*project);
}

}  // namespace

void AddListCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("list", "List groups, or the points of groups");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    AddWords(*command, "GROUP", a->groups, "Groups whose points are listed [all groups, without points]");
    const CLI::Validator filled([](const std::string& t) { return t.empty() ? "the value is empty" : ""; },
                                "");
    command->add_flag("--points", a->points, "List the points of all groups");
    command->add_option("--quality", a->quality, "Points with one of these codes: 4 or 4,5")
        ->type_name("CODES")
        ->check(filled);
    command->add_option("--name", a->name, "Points with such a name; * and ? stand for others")
        ->type_name("PATTERN")
        ->check(filled);
    command->add_option("--code", a->code, "Points with such a code; * and ? stand for others")
        ->type_name("PATTERN")
        ->check(filled);
    command->add_option("--from", a->from, "Points from this time on: RFC 3339, or UTC time of day")
        ->type_name("TIME")
        ->check(filled);
    command->add_option("--to", a->to, "Points up to this time")->type_name("TIME")->check(filled);
    command->add_option("--fields", a->fields, "What is listed of points: NAME,NAME,... or all")
        ->type_name("NAMES")
        ->check(filled);
    command->add_flag("--json", a->json, "Print groups with their points as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook list site.gpsbook\n"
        "  gpsbook list site.gpsbook Quay --quality 4 --name 'P1*'\n"
        "  gpsbook list site.gpsbook --json --fields name,lat,lon,h | jq .groups");
    command->callback([a, &exitCode] { exitCode = RunCommand("list", [&] { Run(*a); }); });
}

}  // namespace gpsbook
