#include "apps/gpsbook/commands/CloudJson.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "apps/gpsbook/book/CloudText.h"
#include "host/project/HeldBack.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using gpsproject::CloudConflict;
using gpsproject::CloudState;
using gpsproject::Project;

const char* KindWord(CloudConflict::Kind kind) {
    switch (kind) {
        case CloudConflict::Kind::field:
            return "field";
        case CloudConflict::Kind::deletedHere:
            return "deleted-here";
        case CloudConflict::Kind::kept:
            break;
    }
    return "kept";
}

/// What stands between ", " in a text.
Json Listed(std::string_view text) {
    Json list = Json::array();
    while (!text.empty()) {
        const std::size_t end = text.find(", ");
        list.push_back(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 2);
    }
    return list;
}

}  // namespace

Json LinkJson(Project& project) {
    const bool linked = project.GetCloud().IsLinked();
    const CloudState& state = project.GetCloud().GetState();
    const auto orNull = [&](const std::string& text) { return linked ? Json(text) : Json(nullptr); };
    return {{"book", project.GetPath()},
            {"store", orNull(state.link.store)},
            {"project", orNull(state.link.project)},
            {"key", orNull(state.link.key)},
            {"revision", linked ? Json(state.revision) : Json(nullptr)}};
}

Json PlaceJson(const CLibGps& book, const Place& place) {
    return {{"kind", place.IsPoint() ? "point" : "group"},
            {"group", place.group},
            {"point", place.IsPoint() ? Json(place.point) : Json(nullptr)},
            {"name", PlaceText(book, place)}};
}

Json HeldJson(Project& project) {
    const CLibGps& book = project.GetBook();
    Json all = Json::array();
    for (const auto& one : gpsproject::FindHeld(project.GetBook(), project.GetCloud().GetTables())) {
        Json item = PlaceJson(book, {one.g, one.p});
        item["why"] = one.why;
        all.push_back(item);
    }
    return all;
}

Json RefusedJson(const CloudState& state) {
    Json all = Json::array();
    for (const gpsproject::CloudRefusal& refusal : state.refusals)
        all.push_back({{"kind", KindText(refusal.kind)},
                       {"id", refusal.id > 0 ? Json(refusal.id) : Json(nullptr)},
                       {"name", refusal.name.empty() ? Json(nullptr) : Json(refusal.name)},
                       {"reason", refusal.reason}});
    return all;
}

Json ConflictJson(Project& project, const CloudConflict& conflict) {
    const auto& clash = conflict.clash;
    const bool field = conflict.kind == CloudConflict::Kind::field;
    Json json{{"number", conflict.number},
              {"what", KindWord(conflict.kind)},
              {"kind", KindText(clash.kind)},
              {"id", clash.id},
              {"name", ConflictItem(project, conflict)}};
    const auto names = FieldNames(clash.kind, clash.bit);
    const ConflictValues now = field ? ValuesOf(project, conflict) : ConflictValues{};
    json["field"] = field && !names.empty() ? Json(names.front()) : Json(nullptr);
    json["mine"] = now.here ? Json(now.words.mine) : Json(nullptr);
    json["theirs"] = field ? Json(now.words.theirs) : Json(nullptr);
    json["author"] = clash.author;
    json["device"] = clash.device;
    json["revision"] = clash.revision;
    if (conflict.kind == CloudConflict::Kind::deletedHere) json["there"] = Listed(clash.theirs);
    if (conflict.kind == CloudConflict::Kind::kept) {
        json["points"] = conflict.keptPoints;
        json["why"] = clash.mine.empty() ? Json::array({"unsent"}) : Listed(clash.mine);
    }
    return json;
}

}  // namespace gpsbook
