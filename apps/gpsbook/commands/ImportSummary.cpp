#include "apps/gpsbook/commands/ImportSummary.h"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

using Json = nlohmann::ordered_json;

std::string ImportText(const std::string& file, const CLibGps& book, const Imported& done) {
    std::string out;
    for (const LogReport& log : done.logs) AppendLog(out, log, done.fill);
    const auto add = std::back_inserter(out);
    fmt::format_to(add, "heights in the log: of the {}; antenna height {:.4f} m\n",
                   done.fill.heights == HeightsOf::marker ? "marker" : "antenna", done.fill.antenna);
    AppendExtent(out, done.extent, done.crs.empty() ? "system of the group" : done.crs);
    std::int64_t all = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g) all += book.GetPunArSize(g);
    fmt::format_to(add, "{}: {}, {} in {} now\n", file,
                   done.Points() == 0 ? "nothing to add" : Counted(done.Points(), "point") + " added",
                   Counted(all, "point"), Counted(book.GetGrpArSize(), "group"));
    return out;
}

Json ImportJson(const std::string& file, const CLibGps& book, bool newGroups, const Imported& done) {
    Json logs = Json::array(), groups = Json::array();
    for (const LogReport& log : done.logs) {
        logs.push_back(LogJson(log));
        logs.back()["already_there"] = log.AlreadyThere();
    }
    for (std::size_t i = 0; i < done.groups.size(); ++i) {
        const int g = done.groups[i];
        groups.push_back({{"index", g},
                          {"name", NameOf(*book.GetGrpAt(g))},
                          {"new", newGroups},
                          {"added", book.GetPunArSize(g) - done.first[i]}});
    }
    return {{"book", file},
            {"saved", done.Points() > 0},
            {"points", done.Points()},
            {"already_there", done.AlreadyThere()},
            {"groups", groups},
            {"files", logs},
            {"crs", done.crs.empty() ? Json(nullptr) : Json(done.crs)},
            {"heights", done.fill.heights == HeightsOf::marker ? "marker" : "antenna"},
            {"antenna", done.fill.antenna},
            {"extent", ExtentJson(done.extent)},
            {"without_plane", done.extent.withoutPlane}};
}

}  // namespace gpsbook
