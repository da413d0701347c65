#include "apps/gpsbook/commands/CloudStatus.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/CloudText.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CloudJson.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "gps/model/CLibGps.h"
#include "host/project/CloudItems.h"
#include "host/project/HeldBack.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using gpsproject::CloudKind;
using gpsproject::HeldItem;
using gpsproject::Project;

constexpr std::size_t kMostIds = 20;

/// An item that waits to be sent.
struct Waiting {
    Place place;
    CloudKind kind;
    std::int64_t id;     // 0: it is new
    std::uint32_t mask;  // of what changed
};

/// In the order of the book.
struct Status {
    std::vector<Waiting> added, changed;
    std::vector<HeldItem> held;
};

// The tables hold nothing but the book's groups and points.
template <class Items>
void Find(CLibGps& book, CloudKind kind, const Items& items, std::vector<Waiting>& found) {
    for (CCloudItem* item : items) {
        if (const auto place = gpsproject::PlaceOf(book, kind, item))
            found.push_back({{place->g, place->p}, kind, item->GetCloudId(), item->GetCloudFlag()});
    }
    std::sort(found.begin(), found.end(),
              [](const Waiting& a, const Waiting& b) { return a.place < b.place; });
}

Status StatusOf(Project& project) {
    CLibGps& book = project.GetBook();
    auto& tables = project.GetCloud().GetTables();
    Status status;
    Find(book, CloudKind::group, tables.base.GetAdded(), status.added);
    Find(book, CloudKind::point, tables.points.GetAdded(), status.added);
    Find(book, CloudKind::group, tables.base.GetChanged(), status.changed);
    Find(book, CloudKind::point, tables.points.GetChanged(), status.changed);
    status.held = gpsproject::FindHeld(book, tables);
    return status;
}

std::int64_t CountOf(const std::vector<Waiting>& items, CloudKind kind) {
    return std::count_if(items.begin(), items.end(), [&](const Waiting& one) { return one.kind == kind; });
}

Json StatusJson(Project& project, const Status& status) {
    const CLibGps& book = project.GetBook();
    const auto& state = project.GetCloud().GetState();
    const auto& tables = project.GetCloud().GetTables();
    Json json = LinkJson(project);
    json["commit"] =
        state.commit ? Json{{"id", state.commit->id}, {"revision", state.commit->revision}} : Json(nullptr);
    json["new"] = Json::array();
    for (const Waiting& one : status.added) json["new"].push_back(PlaceJson(book, one.place));
    json["changed"] = Json::array();
    for (const Waiting& one : status.changed) {
        Json item = PlaceJson(book, one.place);
        item["id"] = one.id;
        item["fields"] = FieldNames(one.kind, one.mask);
        json["changed"].push_back(item);
    }
    json["deleted"] = {{"groups", tables.base.GetDeleted()}, {"points", tables.points.GetDeleted()}};
    json["held"] = HeldJson(project);
    json["refused"] = RefusedJson(state);
    json["conflicts"] = Json::array();
    for (const auto& conflict : state.conflicts) json["conflicts"].push_back(ConflictJson(project, conflict));
    return json;
}

std::string Joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

std::string Ids(const char* kind, const std::set<long long>& ids) {
    if (ids.empty()) return "";
    std::string text = fmt::format("    {}", Counted(static_cast<std::int64_t>(ids.size()), kind));
    std::size_t told = 0;
    for (const long long id : ids) {
        if (told == kMostIds) return text + ", ...\n";
        text += fmt::format("{}{}", told++ == 0 ? (ids.size() == 1 ? ": id " : ": ids ") : ", ", id);
    }
    return text + '\n';
}

std::string Text(Project& project, const Status& status) {
    const CLibGps& book = project.GetBook();
    const auto& state = project.GetCloud().GetState();
    const auto& tables = project.GetCloud().GetTables();
    const auto place = [&](const Place& at) { return Printable(PlaceText(book, at)); };
    std::string text =
        fmt::format("{}: project {} of {}, revision {}\n", project.GetPath(), Printable(state.link.project),
                    Printable(state.link.store), state.revision);
    if (state.commit)
        text += "  a commit was sent, or was to be, and is not answered: gpsbook sync repeats it\n";
    const auto counts = [](const char* what, std::int64_t groups, std::int64_t points) {
        return fmt::format("  {}: {}, {}\n", what, Counted(groups, "group"), Counted(points, "point"));
    };
    const auto head = [&](const char* what, const std::vector<Waiting>& items) {
        return counts(what, CountOf(items, CloudKind::group), CountOf(items, CloudKind::point));
    };
    text += head("new", status.added);
    text += FirstLines(status.added, [&](const Waiting& one) { return place(one.place); });
    text += head("changed", status.changed);
    text += FirstLines(status.changed, [&](const Waiting& one) {
        return place(one.place) + ": " + Joined(FieldNames(one.kind, one.mask));
    });
    const auto& groups = tables.base.GetDeleted();
    const auto& points = tables.points.GetDeleted();
    text +=
        counts("deleted", static_cast<std::int64_t>(groups.size()), static_cast<std::int64_t>(points.size()));
    text += Ids("group", groups) + Ids("point", points);
    if (!status.held.empty()) {
        text += "  held back, since no record can carry it:\n";
        text += FirstLines(status.held, [&](const HeldItem& one) {
            return place({one.g, one.p}) + ": " + one.why;
        });
    }
    if (!state.refusals.empty()) {
        text += "  refused by the project:\n";
        text += FirstLines(state.refusals, [&](const gpsproject::CloudRefusal& refusal) {
            return RefusedItem(refusal) + ": " + Printable(refusal.reason);
        });
    }
    if (!state.conflicts.empty()) {
        text += "  conflicts, which gpsbook cloud resolve settles:\n";
        text += FirstLines(state.conflicts, [&](const gpsproject::CloudConflict& conflict) {
            std::string line = ConflictLine(project, conflict);
            line.pop_back();
            return line;
        });
    }
    return text;
}

}  // namespace

void TellCloudStatus(const std::string& book, bool json) {
    const auto project = OpenToRead(book);
    const Status status = StatusOf(*project);
    if (json)
        PrintJson(StatusJson(*project, status));
    else if (project->GetCloud().IsLinked())
        PrintText(Text(*project, status));
    else
        PrintText(project->GetPath() + ": is not shared; gpsbook sync shares it\n");
    EndReading(*project);
}

}  // namespace gpsbook
