// LogArguments: what a command line says of receiver logs and the points that they become.
#pragma once

#include <string>
#include <vector>

#include "apps/gpsbook/book/EpochFilter.h"
#include "apps/gpsbook/book/GroupFiller.h"
#include "apps/gpsbook/book/LogImport.h"

namespace CLI {
class App;
}

namespace gpsbook {

/// The values as they were entered; an empty text was not given, where it has a default.
struct LogArguments {
    std::vector<std::string> logs;
    std::string heights;
    std::string antenna;
    std::string minQuality = "any";
    std::string every;
    std::string from, to;
    std::string prefix = "P";
    std::string start;
    std::string code;
    std::string group;
    bool verbose = false;
};

/// What holds for an option that is not given, as its help says it.
struct LogDefaults {
    std::string antenna = "0.000";
    std::string heights = "antenna";
    std::string start = "1";
    std::string group = "the file's name";
};

void AddLogOptions(CLI::App& command, LogArguments& a, const LogDefaults& defaults);

/// The options --antenna and --heights alone.
void AddHeightOptions(CLI::App& command, std::string& antenna, std::string& heights,
                      const LogDefaults& defaults);

/// Ends the command: exit code exitUsage, "OPTION: problem".
[[noreturn]] void Usage(const std::string& option, const std::string& problem);

/// Refuses a text that cannot be kept in a book. Errors: CommandError (exitUsage).
void CheckText(const std::string& option, const std::string& text);

// The values of the options, checked. Errors: CommandError (exitUsage) naming the option.
HeightsOf HeightsFrom(const std::string& text);
double AntennaFrom(const std::string& text);  // metres
FillOptions FillFrom(const LogArguments& a, const LogDefaults& defaults);
EpochFilterOptions FilterFrom(const LogArguments& a);
long StartFrom(const std::string& text);

/// The name of the group of log i: by --group, else by the file; logs of the same name get -2, -3, ...
std::string GroupName(const LogArguments& a, std::size_t i);

/// Checks that every log can be read and names its group. `output`: a file that is none of the logs; "-" or
/// empty: none. Errors: CommandError.
void CheckLogs(const LogArguments& a, const std::string& output);

/// With --verbose tells of every line on standard error; else null.
LineWatcher WatcherFor(const LogArguments& a, const std::string& log);

/// Why no log gave a point. Errors: CommandError (exitFailure), always.
[[noreturn]] void RefuseWithoutPoints(const std::vector<LogReport>& logs);

}  // namespace gpsbook
