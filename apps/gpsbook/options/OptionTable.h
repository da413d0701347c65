// OptionTable: every option of a field book by its name, with the way to it.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class CLibGps;

namespace gpsbook {

enum class OptionKind : std::uint8_t { boolean, integer, real, text };

/// The unit of a real one is that of the program that uses it.
using OptionValue = std::variant<bool, std::int64_t, double, std::string>;

struct OptionEntry {
    std::string name;  // "book.CalcLibCmp", "points.ColSimb", "postproc.wPar1"
    OptionKind kind;
    std::int64_t least = 0;  // of an integer
    std::int64_t most = 0;
    bool inBook = false;  // a book keeps it
    std::string section;  // in the settings of this computer; empty: not there
    std::string key;
    std::string what;
    OptionValue byDefault;
    std::function<OptionValue(CLibGps&)> get;
    std::function<void(CLibGps&, const OptionValue&)> set;

    bool InSettings() const { return !section.empty(); }
};

/// All options, in the order in which they are listed. The values of a book that has none of its own are
/// those of the settings, where they stand there, else the defaults.
const std::vector<OptionEntry>& Options();

/// Null when there is none of that name.
const OptionEntry* FindOption(std::string_view name);

/// The value as it is entered and shown.
std::string OptionText(const OptionValue& value);

/// Reads what was entered. Errors: CommandError (exitUsage) that says what is expected.
OptionValue ParseOption(const OptionEntry& option, const std::string& text);

}  // namespace gpsbook
