#include "apps/gpsbook/commands/LogArguments.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iostream>

#include "apps/gpsbook/book/LogInput.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Filled.h"
#include "apps/gpsbook/fields/TextRules.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/writers/TableText.h"

namespace gpsbook {

namespace {

std::optional<TimeBound> Bound(const std::string& option, const std::string& text) {
    if (text.empty()) return std::nullopt;
    const auto bound = ParseTimeBound(text);
    if (!bound)
        Usage(option, "\"" + text +
                          "\" is not a time; write it like 2024-05-01T08:00:00Z, or 08:00:00 for every day");
    return bound;
}

// A file can be called what no text is: '?' stands for such a byte. What else a name cannot hold stays, and
// is refused.
std::string NameOfFile(const std::string& log) {
    std::string name = GroupNameOf(log);
    const std::string clean = CleanText(name);
    for (std::size_t i = 0; i < name.size() && i < clean.size(); ++i)
        if (static_cast<unsigned char>(name[i]) >= 0x80) name[i] = clean[i];
    return name;
}

}  // namespace

void Usage(const std::string& option, const std::string& problem) {
    throw CommandError(exitUsage, option + ": " + problem);
}

void CheckText(const std::string& option, const std::string& text) {
    if (const std::string problem = TextProblem(text); !problem.empty()) Usage(option, problem);
}

HeightsOf HeightsFrom(const std::string& text) {
    if (text != "antenna" && text != "marker")
        Usage("--heights", "\"" + text + "\" is unknown; give antenna or marker");
    return text == "marker" ? HeightsOf::marker : HeightsOf::antenna;
}

double AntennaFrom(const std::string& text) {
    double value = 0;
    const bool read = ParseNumber(text, value);
    if (!read && !IsNumber(text))
        Usage("--antenna", "\"" + text + "\" is not a number; write metres like 2.000");
    if (!read || value < 0 || value > 100)
        Usage("--antenna", "\"" + text + "\" is not between 0 and 100 metres; check the unit");
    return value;
}

// Decimal always: a leading zero means nothing.
long StartFrom(const std::string& text) {
    constexpr long most = 999'999'999;
    long value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < 0 || value > most)
        Usage("--start",
              fmt::format("\"{}\" is no number of a point; give a whole number from 0 to {}", text, most));
    return value;
}

FillOptions FillFrom(const LogArguments& a, const LogDefaults& defaults) {
    FillOptions fill;
    fill.heights = HeightsFrom(a.heights.empty() ? defaults.heights : a.heights);
    fill.antenna = AntennaFrom(a.antenna.empty() ? defaults.antenna : a.antenna);
    CheckText("--prefix", a.prefix);
    CheckText("--code", a.code);
    CheckText("--group", a.group);
    if (!a.start.empty()) StartFrom(a.start);
    fill.prefix = a.prefix;
    fill.code = a.code;
    return fill;
}

EpochFilterOptions FilterFrom(const LogArguments& a) {
    EpochFilterOptions filter;
    const auto quality = ParseMinQuality(a.minQuality);
    if (!quality)
        Usage("--min-quality", "\"" + a.minQuality +
                                   "\" is unknown; give fix, float, dgps, single, any or a code of the file");
    filter.minQuality = *quality;
    filter.from = Bound("--from", a.from);
    filter.to = Bound("--to", a.to);
    if (!a.every.empty() && (!ParseNumber(a.every, filter.every) || filter.every <= 0 || filter.every > 1e6))
        Usage("--every", "\"" + a.every + "\" is not a number of seconds above 0");
    return filter;
}

std::string GroupName(const LogArguments& a, std::size_t i) {
    if (a.group.empty()) {
        const std::string name = NameOfFile(a.logs[i]);
        const auto before = std::count_if(a.logs.begin(), a.logs.begin() + static_cast<std::ptrdiff_t>(i),
                                          [&](const std::string& log) { return NameOfFile(log) == name; });
        return before == 0 ? name : fmt::format("{}-{}", name, before + 1);
    }
    return a.logs.size() == 1 ? a.group : fmt::format("{}-{}", a.group, i + 1);
}

void CheckLogs(const LogArguments& a, const std::string& output) {
    if (std::count(a.logs.begin(), a.logs.end(), "-") > 1)
        Usage("LOG", "standard input (-) can be read only once");
    for (std::size_t i = 0; i < a.logs.size(); ++i) {
        const std::string& log = a.logs[i];
        LogInput::Check(log);
        if (!TextProblem(GroupName(a, i)).empty())
            Usage("LOG", "\"" + log + "\" gives no name of a group: " + TextProblem(GroupName(a, i)) +
                             ", or name the group with --group");
        std::error_code differs;
        if (log != "-" && output != "-" && std::filesystem::equivalent(log, output, differs))
            Usage("--output", "\"" + output +
                                  "\" is one of the logs, and a log is never replaced; give "
                                  "another name");
    }
}

LineWatcher WatcherFor(const LogArguments& a, const std::string& log) {
    if (!a.verbose) return {};
    return [log](std::int64_t line, std::string_view reason, std::string_view detail) {
        std::cerr << fmt::format("{}:{}: {}{}{}\n", log, line, reason, detail.empty() ? "" : ": ", detail);
    };
}

void RefuseWithoutPoints(const std::vector<LogReport>& logs) {
    std::string message = "no usable epoch:";
    for (const LogReport& log : logs) {
        std::string reasons = ReasonLines(log);
        if (reasons.empty())
            reasons = log.header.format.empty()
                          ? "  no position found: neither an NMEA 0183 nor an RTKLIB .pos log\n"
                          : "  no position found in it\n";
        message += "\n" + log.file + ":\n" + reasons.substr(0, reasons.size() - 1);
    }
    throw CommandError(exitFailure, message);
}

void AddHeightOptions(CLI::App& command, std::string& antenna, std::string& heights,
                      const LogDefaults& defaults) {
    command
        .add_option("--antenna", antenna,
                    "Antenna height above the ground mark in metres [" + defaults.antenna + "]")
        ->type_name("M")
        ->check(Filled());
    command
        .add_option("--heights", heights,
                    "What the heights of the log are those of [" + defaults.heights + "]")
        ->type_name("antenna|marker")
        ->check(Filled());
}

void AddLogOptions(CLI::App& command, LogArguments& a, const LogDefaults& defaults) {
    command
        .add_option("LOG", a.logs,
                    "Logs: NMEA 0183 or RTKLIB .pos, told apart by content; - for standard input")
        ->required()
        ->check(Filled());
    AddHeightOptions(command, a.antenna, a.heights, defaults);
    command
        .add_option("--min-quality", a.minQuality, "Lowest quality taken, or a code of the file's own [any]")
        ->type_name("fix|float|dgps|single|any|CODE");
    command.add_option("--every", a.every, "Take epochs at least so many seconds apart")
        ->type_name("SECONDS")
        ->check(Filled());
    command.add_option("--from", a.from, "Take epochs from this time on: RFC 3339, or UTC time of day")
        ->type_name("TIME")
        ->check(Filled());
    command.add_option("--to", a.to, "Take epochs up to this time")->type_name("TIME")->check(Filled());
    command.add_option("--prefix", a.prefix, "Names of points begin with it [P]")->type_name("TEXT");
    command.add_option("--start", a.start, "Number of the first point [" + defaults.start + "]")
        ->type_name("N")
        ->check(Filled());
    command.add_option("--code", a.code, "Code of the points")->type_name("TEXT");
    command
        .add_option("--group", a.group,
                    "Name of the group; with several logs -1, -2, ... follow [" + defaults.group + "]")
        ->type_name("NAME")
        ->check(Filled());
    command.add_flag("--verbose", a.verbose, "Name every line that became no point");
}

}  // namespace gpsbook
