#include "apps/gpsbook/commands/Show.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/ConversionText.h"
#include "apps/gpsbook/book/DerivedCoordinates.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/RunCommand.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/commands/Words.h"
#include "apps/gpsbook/fields/FieldsJson.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

struct Arguments {
    std::string book;
    std::string address;
    bool json = false;
};

template <class Item>
std::string FieldsText(Item& item) {
    std::size_t width = 0;
    for (const Field<Item>& field : FieldsOf<Item>()) width = std::max(width, WidthOf(field.name));
    std::string out;
    for (const Field<Item>& field : FieldsOf<Item>()) {
        const FieldValue value = field.get(item);
        std::string line =
            fmt::format("  {:<{}}  {}", field.name, width, Printable(ValueWithUnit(field, value)));
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + '\n';
    }
    return out;
}

std::string CloudText(const CCloudItem& item) {
    const std::string id = item.GetCloudId() > 0 ? fmt::format("{}", item.GetCloudId()) : "none yet";
    return fmt::format("cloud: id {}, fields changed since the last exchange 0x{:x}\n", id,
                       item.GetCloudFlag());
}

Json CloudJson(const CCloudItem& item) {
    return {{"id", item.GetCloudId() > 0 ? Json(item.GetCloudId()) : Json(nullptr)},
            {"changed", item.GetCloudFlag()}};
}

std::string GroupText(CLibGps& book, int g) {
    CGrpGps& group = *book.GetGrpAt(g);
    return fmt::format("group #{}: {}, {}\n", g, Printable(PlaceText(book, {g, -1})),
                       Counted(book.GetPunArSize(g), "point")) +
           FieldsText(group) + "base\n" + DerivedText(DerivedOf(group)) + "conversion\n" +
           ConversionText(group) + CloudText(*CGrpGps::CloudItemOf(&group));
}

Json GroupJson(CLibGps& book, int g) {
    CGrpGps& group = *book.GetGrpAt(g);
    return {{"kind", "group"},
            {"group", g},
            {"address", PlaceText(book, {g, -1})},
            {"points", book.GetPunArSize(g)},
            {"fields", FieldsJson(group)},
            {"derived", DerivedJson(DerivedOf(group))},
            {"conversion", ConversionJson(group)},
            {"cloud", CloudJson(*CGrpGps::CloudItemOf(&group))}};
}

std::string PointText(CLibGps& book, const Place& place) {
    CGrpGps& group = *book.GetGrpAt(place.group);
    CPunGps& point = *book.GetPunAt(place.group, place.point);
    return fmt::format("point #{} of group #{}: {}\n", place.point, place.group,
                       Printable(PlaceText(book, place))) +
           FieldsText(point) + "positions\n" + DerivedText(DerivedOf(point, group)) +
           CloudText(*CPunGps::CloudItemOf(&point));
}

Json PointJson(CLibGps& book, const Place& place) {
    CGrpGps& group = *book.GetGrpAt(place.group);
    CPunGps& point = *book.GetPunAt(place.group, place.point);
    return {{"kind", "point"},
            {"group", place.group},
            {"point", place.point},
            {"address", PlaceText(book, place)},
            {"fields", FieldsJson(point)},
            {"derived", DerivedJson(DerivedOf(point, group))},
            {"cloud", CloudJson(*CPunGps::CloudItemOf(&point))}};
}

void Run(const Arguments& a) {
    const auto project = OpenToRead(a.book);
    CLibGps& book = project->GetBook();
    const Place place = FindPlace(book, a.address);
    if (a.json)
        PrintJson(place.IsPoint() ? PointJson(book, place) : GroupJson(book, place.group));
    else
        PrintText(place.IsPoint() ? PointText(book, place) : GroupText(book, place.group));
    EndReading(*project);
}

}  // namespace

void AddShowCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("show", "Show everything about one group or point");
    const auto a = std::make_shared<Arguments>();
    AddBook(*command, a->book);
    command->add_option("WHAT", a->address, "A group or a point: Quay, Quay/P1, '#0', 'Quay/#7'")->required();
    command->add_flag("--json", a->json, "Print it as JSON");
    command->footer(
        "Examples:\n"
        "  gpsbook show site.gpsbook Quay\n"
        "  gpsbook show site.gpsbook Quay/P1\n"
        "  gpsbook show site.gpsbook '#0/#3' --json");
    command->callback([a, &exitCode] { exitCode = RunCommand("show", [&] { Run(*a); }); });
}

}  // namespace gpsbook
