#include "apps/gpsbook/commands/Simulate.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/simulator/Simulator.h"
#include "apps/gpsbook/writers/Columns.h"
#include "apps/gpsbook/writers/StagedOutput.h"
#include "apps/gpsbook/writers/WriteError.h"

namespace gpsbook {

namespace {

struct Arguments {
    SimulationOptions simulation;
    std::string output = "-";
    bool overwrite = false;
    bool json = false;
};

const std::map<std::string, Track> kTracks{
    {"line", Track::line}, {"circle", Track::circle}, {"stops", Track::stops}};
const std::map<std::string, QualityPlan> kQualities{{"mixed", QualityPlan::mixed},
                                                    {"fix", QualityPlan::fixed},
                                                    {"float", QualityPlan::floating},
                                                    {"single", QualityPlan::single}};
const std::map<std::string, LogForm> kForms{{"nmea", LogForm::nmea},
                                            {"pos", LogForm::pos},
                                            {"pos-xyz", LogForm::posXyz},
                                            {"pos-enu", LogForm::posEnu}};

/// Numbers are read with a decimal point in any locale.
double Number(const std::string& option, std::string_view text) {
    double value = 0.0;
    if (!ParseNumber(text, value))
        throw CLI::ValidationError(option, fmt::format("\"{}\" is not a number; write it like 12.5", text));
    return value;
}

void SetBase(SimulationOptions& simulation, const std::string& text) {
    const std::size_t first = text.find(',');
    const std::size_t second = first == std::string::npos ? first : text.find(',', first + 1);
    if (second == std::string::npos)
        throw CLI::ValidationError("--base",
                                   "\"" + text + "\" is not LAT,LON,H; write it like 45.0649,7.6592,300");
    const std::string_view all(text);
    simulation.baseLat = Number("--base", all.substr(0, first));
    simulation.baseLon = Number("--base", all.substr(first + 1, second - first - 1));
    simulation.baseHeight = Number("--base", all.substr(second + 1));
}

void SetStart(SimulationOptions& simulation, const std::string& text) {
    const std::optional<UtcTime> start = ParseRfc3339(text);
    if (!start)
        throw CLI::ValidationError("--from",
                                   "\"" + text + "\" is not a time; write it like 2024-05-01T08:00:00Z");
    simulation.start = *start;
}

template <typename Value>
void AddChoice(CLI::App& command, const std::string& name, Value& value,
               const std::map<std::string, Value>& choices, const std::string& help) {
    std::string names, alternatives;
    for (const auto& [choice, unused] : choices) {
        names += (names.empty() ? "" : ", ") + choice;
        alternatives += (alternatives.empty() ? "" : "|") + choice;
    }
    const std::string option = name.substr(0, name.find(','));
    command
        .add_option_function<std::string>(
            name,
            [&value, &choices, option, names](const std::string& text) {
                const auto found = choices.find(text);
                if (found == choices.end())
                    throw CLI::ValidationError(option, "\"" + text + "\" is unknown; give one of " + names);
                value = found->second;
            },
            help)
        ->type_name(alternatives);
}

void AddNumber(CLI::App& command, const std::string& name, double& value, const std::string& type,
               const std::string& help) {
    command
        .add_option_function<std::string>(
            name, [&value, name](const std::string& text) { value = Number(name, text); },
            fmt::format("{} [{}]", help, value))
        ->type_name(type);
}

void AddOptions(CLI::App& command, Arguments& arguments) {
    SimulationOptions& s = arguments.simulation;
    command
        .add_option_function<std::string>(
            "--base", [&s](const std::string& text) { SetBase(s, text); },
            "Base: degrees, degrees and metres above the ellipsoid, WGS 84 [0,0,0]")
        ->type_name("LAT,LON,H");
    AddChoice(command, "--track", s.track, kTracks, "Way of the rover [line]");
    AddNumber(command, "--length", s.length, "M", "Length of the line, or of a side of the grid of stops");
    AddNumber(command, "--radius", s.radius, "M", "Radius of the circle");
    command.add_option("--epochs", s.epochs, "Number of epochs [600]")->type_name("N");
    AddNumber(command, "--rate", s.rate, "HZ", "Epochs a second");
    AddNumber(command, "--noise", s.noise, "M", "Standard deviation of east and of north when fixed");
    AddChoice(command, "--quality", s.quality, kQualities, "Solutions that are found [mixed]");
    command.add_option("--seed", s.seed, "Another seed gives another noise [1]")->type_name("N");
    command
        .add_option_function<std::string>(
            "--from", [&s](const std::string& text) { SetStart(s, text); }, "Start [2024-05-01T08:00:00Z]")
        ->type_name("RFC3339");
    AddNumber(command, "--separation", s.separation, "M", "Geoid above the ellipsoid");
    AddChoice(command, "-f,--format", s.form, kForms, "Form of the log [nmea]");
    command.add_flag("--gsv", s.satellitesInView, "Tell of the satellites in view as well (nmea)");
    command.add_option("-o,--output", arguments.output, "File to write, - for standard output [-]")
        ->type_name("FILE");
    command.add_flag("--overwrite", arguments.overwrite, "Replace the file when it exists");
    command.add_flag("--json", arguments.json, "Print what was made as JSON");
    command.footer(
        "Examples:\n"
        "  gpsbook simulate --base 45.65,13.76,60 --track stops --seed 7 -o site.nmea\n"
        "  gpsbook simulate --base 45.65,13.76,60 | gpsbook convert - --crs EPSG:32633 > site.csv");
}

SimulationSummary WriteLog(const Arguments& arguments) {
    if (arguments.output == "-") {
        const SimulationSummary summary = Simulate(arguments.simulation, std::cout);
        if (!std::cout.flush())
            throw WriteError("standard output", "writing failed; see whether its reader has gone");
        return summary;
    }
    StagedOutput staged(arguments.output, arguments.overwrite);
    std::ofstream file(staged.File(), std::ios::binary);
    const SimulationSummary summary = Simulate(arguments.simulation, file);
    file.close();
    if (!file) throw WriteError(arguments.output, "writing failed; see whether the disk is full");
    staged.Commit();
    return summary;
}

void PrintSummary(const Arguments& arguments, const SimulationSummary& summary) {
    if (arguments.json) {
        const nlohmann::ordered_json made{
            {"file", arguments.output},         {"epochs", summary.epochs},      {"fixed", summary.fixed},
            {"float", summary.floating},        {"single", summary.single},      {"bytes", summary.bytes},
            {"first", TimeText(summary.first)}, {"last", TimeText(summary.last)}};
        std::cout << made.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n'
                  << std::flush;
    } else if (arguments.output != "-") {
        std::cerr << fmt::format("{}: {} epochs, {} fixed, {} float, {} single\n", arguments.output,
                                 summary.epochs, summary.fixed, summary.floating, summary.single);
    }
}

int Run(const Arguments& arguments) {
    constexpr int done = 0;
    constexpr int failure = 1;
    constexpr int usage = 2;
    std::optional<std::string> problem = OptionProblem(arguments.simulation);
    if (!problem && arguments.json && arguments.output == "-")
        problem = "--json would be mixed with the log on standard output; give a file with -o";
    if (problem) {
        std::cerr << "gpsbook simulate: " << *problem << '\n';
        return usage;
    }
    try {
        PrintSummary(arguments, WriteLog(arguments));
    } catch (const WriteError& e) {
        std::cerr << "gpsbook simulate: " << e.what() << '\n';
        return failure;
    }
    return done;
}

}  // namespace

void AddSimulateCommand(CLI::App& app, int& exitCode) {
    CLI::App* command = app.add_subcommand("simulate", "Make the log of a rover near a base");
    const auto arguments = std::make_shared<Arguments>();
    AddOptions(*command, *arguments);
    command->callback([arguments, &exitCode] { exitCode = Run(*arguments); });
}

}  // namespace gpsbook
