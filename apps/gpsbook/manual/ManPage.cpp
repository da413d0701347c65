#include "apps/gpsbook/manual/ManPage.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "apps/gpsbook/commands/CommandError.h"

namespace gpsbook {

namespace {

constexpr std::pair<ExitCode, const char*> kExitTexts[] = {
    {exitDone, "Done."},
    {exitFailure, "The work could not be done."},
    {exitUsage, "The command line is wrong."},
    {exitConflict, "A conflict: a book that another program is writing, or that was changed meanwhile."},
    {exitRefused, "A damaged file, or one that is not what it should be."},
    {exitNotFound, "A file, group or point that does not exist."},
    {exitServer, "Server or network."},
};

// Text for troff: no sign of it may be taken for a request, and a hyphen stays one that can be copied.
std::string Escaped(const std::string& text) {
    std::string out;
    bool lineBegins = true;
    for (const char c : text) {
        if (lineBegins && (c == '.' || c == '\'')) out += "\\&";
        lineBegins = c == '\n';
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else if (c == '\'')
            out += "\\(aq";
        else if (c == '`')
            out += "\\(ga";
        else if (c == '^')
            out += "\\(ha";
        else if (c == '~')
            out += "\\(ti";
        else
            out += c;
    }
    return out;
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }

std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fR"; }

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

std::string Argument(const OptionDescription& argument) {
    const std::string name = Italic(argument.value) + (argument.several ? "..." : "");
    return argument.required ? name : "[" + name + "]";
}

void AppendSynopsis(std::string& out, const CommandDescription& command) {
    out += Bold(command.Joined(" "));
    for (const OptionDescription& argument : command.arguments) out += ' ' + Argument(argument);
    for (const OptionDescription& option : command.options)
        if (option.required) out += ' ' + Bold(option.names.back()) + ' ' + Italic(option.value);
    if (!command.commands.empty()) out += ' ' + Italic("COMMAND");
    out += " [" + Italic("OPTIONS") + "]\n";
}

void AppendOption(std::string& out, const OptionDescription& option) {
    out += ".TP\n";
    std::string names;
    for (const std::string& name : option.names) names += (names.empty() ? "" : ", ") + Bold(name);
    if (names.empty()) {
        names = Italic(option.value) + (option.several ? "..." : "");
    } else if (!option.value.empty()) {
        names += ' ' + Italic(option.value);
    }
    out += names + '\n' + Escaped(option.help) + '\n';
    if (option.kind == ValueKind::words && option.names.empty()) {
        std::string words;
        for (const std::string& word : option.words) words += (words.empty() ? "" : ", ") + word;
        out += "One of " + Escaped(words) + ".\n";
    }
}

void AppendExamples(std::string& out, const std::string& examples) {
    out += ".EX\n" + Escaped(examples) + ".EE\n";
}

// A command and what it takes; commands within it follow, one by one.
void AppendWithin(std::string& out, const CommandDescription& command) {
    out += ".SS \"" + Escaped(command.Joined(" ")) + "\"\n";
    AppendSynopsis(out, command);
    out += ".PP\n" + Escaped(command.help) + ".\n";
    for (const OptionDescription& argument : command.arguments) AppendOption(out, argument);
    for (const OptionDescription& option : command.options) AppendOption(out, option);
    if (!command.examples.empty()) {
        out += ".PP\n";
        AppendExamples(out, command.examples);
    }
}

void AppendCommandList(std::string& out, const CommandDescription& program) {
    std::vector<std::string> groups;
    for (const CommandDescription& c : program.commands)
        if (std::find(groups.begin(), groups.end(), c.group) == groups.end()) groups.push_back(c.group);
    for (const std::string& group : groups) {
        out += ".SS \"" + Escaped(group) + "\"\n";
        for (const CommandDescription& c : program.commands)
            if (c.group == group) out += ".TP\n" + Bold(c.Joined("-")) + "(1)\n" + Escaped(c.help) + '\n';
    }
}

bool IsProgram(const CommandDescription& command) { return command.path.size() == 1; }

}  // namespace

std::string ManPageName(const CommandDescription& command) { return command.Joined("-") + ".1"; }

std::string ManPage(const CommandDescription& command, const std::string& version) {
    const std::string name = command.Joined("-");
    std::string out = ".TH \"" + Escaped(Upper(name)) + "\" 1 \"\" \"" + Escaped(version) +
                      "\" \"GPS survey field book\"\n";
    out += ".SH NAME\n" + Escaped(name) + " \\- " + Escaped(command.help) + '\n';
    out += ".SH SYNOPSIS\n";
    if (command.commands.empty() || IsProgram(command)) {
        AppendSynopsis(out, command);
    } else {
        for (const CommandDescription& within : command.commands) {
            if (&within != &command.commands.front()) out += ".br\n";
            AppendSynopsis(out, within);
        }
    }
    if (!command.arguments.empty()) {
        out += ".SH ARGUMENTS\n";
        for (const OptionDescription& argument : command.arguments) AppendOption(out, argument);
    }
    if (!command.commands.empty()) {
        out += ".SH COMMANDS\n";
        if (IsProgram(command))
            AppendCommandList(out, command);
        else
            for (const CommandDescription& within : command.commands) AppendWithin(out, within);
    }
    out += ".SH OPTIONS\n";
    for (const OptionDescription& option : command.options) AppendOption(out, option);
    if (!command.examples.empty()) {
        out += ".SH EXAMPLES\n";
        AppendExamples(out, command.examples);
    }
    out += ".SH \"EXIT STATUS\"\n";
    for (const auto& [code, text] : kExitTexts)
        out += ".TP\n" + Bold(std::to_string(code)) + '\n' + Escaped(text) + '\n';
    out += ".SH \"SEE ALSO\"\n";
    if (!IsProgram(command)) {
        out += Bold(command.path.front()) + "(1)\n";
    } else {
        for (const CommandDescription& c : command.commands)
            out += Bold(c.Joined("-")) + (&c == &command.commands.back() ? "(1)\n" : "(1),\n");
    }
    return out;
}

}  // namespace gpsbook
