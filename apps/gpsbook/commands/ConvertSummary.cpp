#include "apps/gpsbook/commands/ConvertSummary.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/readers/Grades.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

constexpr Verdict kLeftOut[] = {Verdict::belowQuality, Verdict::outsideTime, Verdict::thinned,
                                Verdict::alreadyThere};

}  // namespace

std::string SystemLabel(const std::string& crs) {
    constexpr std::size_t most = 60;
    const std::size_t end = std::min(crs.find_first_of("\r\n"), most);
    return crs.size() <= end ? crs : crs.substr(0, end) + "...";
}

std::string Counted(std::int64_t n, const char* one) {
    return fmt::format("{} {}{}", n, one, n == 1 ? "" : "s");
}

namespace {

void Widen(double& low, double& high, double v) {
    low = IsCoordValid(low) ? std::min(low, v) : v;
    high = IsCoordValid(high) ? std::max(high, v) : v;
}

std::string Lines(const Tally& tally) {
    std::string text = tally.lines.size() == 1 ? "line " : "lines ";
    for (std::size_t i = 0; i < tally.lines.size(); ++i)
        text += fmt::format("{}{}", i == 0 ? "" : ", ", tally.lines[i]);
    if (tally.count > static_cast<std::int64_t>(tally.lines.size())) text += ", ...";
    return text;
}

Format FormatOf(const LogReport& log) {
    return log.header.format == "NMEA 0183" ? Format::nmea : Format::pos;
}

std::string QualityList(const LogReport& log) {
    std::string text;
    for (const auto& [code, count] : log.byQuality)
        text += fmt::format("{}{} of quality {} ({})", text.empty() ? "" : ", ", count, code,
                            GradeText(GradeOf(FormatOf(log), code)));
    return text;
}

void AppendTallies(std::string& out,
                   const std::array<Tally, static_cast<std::size_t>(Reason::count_)>& tallies,
                   const char* one, const char* fate) {
    for (std::size_t i = 0; i < tallies.size(); ++i)
        if (tallies[i].count > 0)
            fmt::format_to(std::back_inserter(out), "  {} {}: {} ({})\n", Counted(tallies[i].count, one),
                           fate, ReasonText(static_cast<Reason>(i)), Lines(tallies[i]));
}

Json Number(double v) { return IsCoordValid(v) ? Json(v) : Json(nullptr); }

Json TallyJson(const std::array<Tally, static_cast<std::size_t>(Reason::count_)>& tallies) {
    Json all = Json::object();
    for (std::size_t i = 0; i < tallies.size(); ++i)
        if (tallies[i].count > 0)
            all[std::string(ReasonText(static_cast<Reason>(i)))] = {{"count", tallies[i].count},
                                                                    {"lines", tallies[i].lines}};
    return all;
}

}  // namespace

void AppendLog(std::string& out, const LogReport& log, const FillOptions& fill) {
    const auto add = std::back_inserter(out);
    if (log.header.format.empty()) {
        fmt::format_to(add, "warning: {}: neither an NMEA 0183 nor an RTKLIB .pos log\n", log.file);
        return;
    }
    fmt::format_to(add, "{}: {}, {}, {}", log.file, log.header.format, Counted(log.epochs, "epoch"),
                   Counted(log.points, "point"));
    out += log.points > 0 ? " in group " + log.group + "\n" : "\n";
    if (!log.byQuality.empty()) out += "  " + QualityList(log) + "\n";
    out += ReasonLines(log);
    AppendTallies(out, log.ignored, "other line", "not used");
    const double antenna = log.header.roverAntenna;
    if (IsCoordValid(antenna) && antenna != 0 && antenna != fill.antenna)
        fmt::format_to(add, "  the file names an antenna {:.4f} m above the mark; --antenna says {:.4f}\n",
                       antenna, fill.antenna);
}

Json LogJson(const LogReport& log) {
    Json qualities = Json::object();
    for (const auto& [code, count] : log.byQuality) qualities[std::to_string(code)] = count;
    Json filtered = Json::object();
    for (const Verdict v : kLeftOut)
        if (const auto n = log.filtered[static_cast<std::size_t>(v)]; n > 0) filtered[VerdictText(v)] = n;
    Json base = nullptr;
    if (log.header.hasBase)
        base = {{"lat", log.header.baseLat},
                {"lon", log.header.baseLon},
                {"h", log.header.baseHeight},
                {"antenna", Number(log.header.baseAntenna)}};
    return {{"file", log.file},
            {"format", log.header.format},
            {"group", log.points > 0 ? Json(log.group) : Json(nullptr)},
            {"epochs", log.epochs},
            {"points", log.points},
            {"by_quality", qualities},
            {"base", base},
            {"rover_antenna", Number(log.header.roverAntenna)},
            {"rejected", TallyJson(log.rejected)},
            {"filtered", filtered},
            {"ignored", TallyJson(log.ignored)}};
}

std::int64_t ConvertResult::Points() const {
    std::int64_t n = 0;
    for (const LogReport& log : logs) n += log.points;
    return n;
}

void Extent::Add(const CPunGps& point) {
    if (!point.EstValidoXY()) {
        ++withoutPlane;
        return;
    }
    Widen(eastMin, eastMax, point.GetCoordX());
    Widen(northMin, northMax, point.GetCoordY());
    Widen(heightMin, heightMax, point.GetCoordZ());
}

Extent ExtentOf(const CLibGps& book) {
    Extent extent;
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        for (int p = 0; p < book.GetPunArSize(g); ++p) extent.Add(*book.GetPunAt(g, p));
    return extent;
}

std::string ReasonLines(const LogReport& log) {
    std::string out;
    AppendTallies(out, log.rejected, "epoch", "rejected");
    for (const Verdict v : kLeftOut)
        if (const auto n = log.filtered[static_cast<std::size_t>(v)]; n > 0)
            fmt::format_to(std::back_inserter(out), "  {} left out: {}\n", Counted(n, "epoch"),
                           VerdictText(v));
    return out;
}

void AppendExtent(std::string& out, const Extent& extent, const std::string& crs) {
    const auto add = std::back_inserter(out);
    if (IsCoordValid(extent.eastMin))
        fmt::format_to(add, "{}: east {:.4f} to {:.4f}, north {:.4f} to {:.4f}, height {:.4f} to {:.4f}\n",
                       SystemLabel(crs), extent.eastMin, extent.eastMax, extent.northMin, extent.northMax,
                       extent.heightMin, extent.heightMax);
    if (extent.withoutPlane > 0)
        fmt::format_to(add, "warning: without plane coordinates in {}: {}; is it the right system?\n",
                       SystemLabel(crs), Counted(extent.withoutPlane, "point"));
}

Json ExtentJson(const Extent& extent) {
    return {{"east", {Number(extent.eastMin), Number(extent.eastMax)}},
            {"north", {Number(extent.northMin), Number(extent.northMax)}},
            {"height", {Number(extent.heightMin), Number(extent.heightMax)}}};
}

std::string SummaryText(const ConvertResult& r) {
    std::string out;
    for (const LogReport& log : r.logs) AppendLog(out, log, r.fill);
    const auto add = std::back_inserter(out);
    fmt::format_to(add,
                   "heights in the log: of the {}; antenna height {:.4f} m; in the table: h of the phase "
                   "centre, height of "
                   "the ground mark\n",
                   r.fill.heights == HeightsOf::marker ? "marker" : "antenna", r.fill.antenna);
    AppendExtent(out, r.extent, r.crs);
    if (r.skippedRows > 0)
        fmt::format_to(add, "warning: not in the file, since {} holds no point without position: {}\n",
                       r.format, Counted(r.skippedRows, "point"));
    if (r.output != "-")
        fmt::format_to(add, "{}: {}, {}\n", r.output, r.format, Counted(r.Points() - r.skippedRows, "point"));
    return out;
}

Json SummaryJson(const ConvertResult& r) {
    Json logs = Json::array();
    for (const LogReport& log : r.logs) logs.push_back(LogJson(log));
    return {{"points", r.Points()},
            {"files", logs},
            {"crs", r.crs},
            {"heights", r.fill.heights == HeightsOf::marker ? "marker" : "antenna"},
            {"antenna", r.fill.antenna},
            {"extent", ExtentJson(r.extent)},
            {"without_plane", r.extent.withoutPlane},
            {"skipped", r.skippedRows},
            {"output", r.output},
            {"format", r.format}};
}

}  // namespace gpsbook
