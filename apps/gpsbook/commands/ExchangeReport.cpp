#include "apps/gpsbook/commands/ExchangeReport.h"

#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"

namespace gpsbook {

using Result = CLibGps::TResActionObj;

std::string ResultText(Result result) {
    switch (result) {
        case Result::done:
            return "done";
        case Result::notCreated:
            return "the file could not be made or written";
        case Result::notOpened:
            return "the file could not be opened";
        case Result::notInserted:
            return "a group or point found no place";
        case Result::noPlaneCoordinates:
            return "a point has no plane coordinates";
    }
    return "";
}

void AddResult(nlohmann::ordered_json& json, Result result) {
    json["result"] = static_cast<int>(result);
    json["resultText"] = ResultText(result);
}

void NoteFalseCount(const std::string& file, ExchangeKind kind, int first, int last, int written) {
    const std::int64_t promised = std::int64_t{last} - first;
    if (promised == written) return;
    const bool points = kind == ExchangeKind::points;
    std::cerr << fmt::format(
        "note: {}: promises {} and holds {}; gpsbook {} load takes it only with --force\n", file,
        Counted(promised, points ? "point" : "group"), written, points ? "points" : "groups");
}

namespace {

void TellNotes(const LoadedItems& loaded) {
    if (!loaded.content.IsWhole())
        std::cerr << "warning: the file is damaged: " << loaded.content.Problem()
                  << "; what stands behind it may be anything\n";
    if (loaded.lostPlane > 0)
        std::cerr << fmt::format(
            "note: plane coordinates that the file has are lost for {}: the conversion here gives none; set "
            "one up and run gpsbook compute\n",
            Counted(loaded.lostPlane, "point"));
    if (loaded.otherDatums > 0)
        std::cerr << fmt::format(
            "note: the datum of {} is none of this book's, or has other values here; plane coordinates are "
            "computed with what this book has\n",
            Counted(loaded.otherDatums, "group"));
    if (loaded.lostFix > 0)
        std::cerr << fmt::format(
            "note: latitude, longitude and height that the file has are lost for {}: they followed from "
            "plane coordinates, and these give none\n",
            Counted(loaded.lostFix, "point"));
}

}  // namespace

void PrintLoad(nlohmann::ordered_json json, const std::string& book, const std::string& into, bool asJson,
               ExchangeKind kind, const LoadedItems& loaded, bool saved) {
    TellNotes(loaded);
    const std::string otherwise = saved ? SavedButUntold(book) : "the result could not be written";
    if (asJson) {
        json["saved"] = saved;
        json["first"] = loaded.first;
        if (kind == ExchangeKind::groups) {
            json["groups"] = loaded.groups;
            json["other_datums"] = loaded.otherDatums;
        }
        json["points"] = loaded.points;
        json["version"] = loaded.content.version;
        json["without_plane"] = loaded.withoutPlane;
        json["lost_plane"] = loaded.lostPlane;
        json["lost_fix"] = loaded.lostFix;
        AddResult(json, loaded.result);
        PrintJson(json, otherwise);
        return;
    }
    const bool groups = kind == ExchangeKind::groups;
    const int items = groups ? loaded.groups : loaded.points;
    std::string text = items == 0 ? "nothing" : Counted(items, groups ? "group" : "point");
    if (groups && items > 0) text += " with " + Counted(loaded.points, "point");
    if (items > 0 && !saved) text += " would be";  // --dry-run
    text += " loaded" + into;
    if (items > 0)
        text += fmt::format(", {} #{}{}", items == 1 ? "to" : "from", loaded.first, items == 1 ? "" : " on");
    PrintText(text + '\n', otherwise);
}

void EndLoad(const std::string& file, const LoadedItems& loaded, bool saved) {
    if (loaded.result == Result::done) return;
    std::string text =
        fmt::format("{}: {} (result {})", file, ResultText(loaded.result), static_cast<int>(loaded.result));
    if (loaded.result == Result::noPlaneCoordinates)
        text +=
            ", and thus no latitude, longitude and height; gpsbook list shows which, gpsbook set gives "
            "them values";
    throw CommandError(exitConflict, text + (saved ? ". The book is saved" : ". Nothing is saved"));
}

}  // namespace gpsbook
