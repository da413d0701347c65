#include "apps/gpsbook/commands/CloudJson.h"

#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/CloudText.h"

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
    const TwoValues words = InWords(clash.kind, clash.bit, {clash.mine, clash.theirs});
    json["field"] = field && !names.empty() ? Json(names.front()) : Json(nullptr);
    json["mine"] = field ? Json(words.mine) : Json(nullptr);
    json["theirs"] = field ? Json(words.theirs) : Json(nullptr);
    json["author"] = clash.author;
    json["device"] = clash.device;
    json["revision"] = clash.revision;
    if (conflict.kind == CloudConflict::Kind::kept) json["points"] = conflict.keptPoints;
    return json;
}

}  // namespace gpsbook
