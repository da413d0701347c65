// CommandDescription: a command as its help, its manual page and the completion of a shell need it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace gpsbook {

/// What a shell can offer for a value.
enum class ValueKind : std::uint8_t { none, words, file, folder, book };

/// An option or an argument.
struct OptionDescription {
    std::vector<std::string> names;  // "-o", "--output"; empty for an argument
    std::string value;               // "FILE", "antenna|marker", name of an argument; empty for a flag
    std::string help;
    bool required = false;
    bool several = false;
    ValueKind kind = ValueKind::none;
    std::vector<std::string> words;  // when the value is one of them
};

/// A command, or the program itself.
struct CommandDescription {
    std::vector<std::string> path;  // "gpsbook", "section", "write"
    std::string help;               // one line
    std::string group;              // heading in the list of commands
    std::string examples;           // lines of a shell; empty: none
    std::vector<OptionDescription> options;
    std::vector<OptionDescription> arguments;
    std::vector<CommandDescription> commands;

    const std::string& Name() const { return path.back(); }

    /// The path with something between its words.
    std::string Joined(const char* between) const;
};

/// Heading above the examples in a command's footer; lines follow that are indented by two blanks.
inline constexpr char kExamplesHeading[] = "Examples:\n";

/// Reads everything from the definition of the command line, so that there is one source. The name of a
/// value says what it is: BOOK, FILE, LOG, FOLDER, or words with "|" between them.
CommandDescription Describe(const CLI::App& app);

}  // namespace gpsbook
