#include "apps/gpsbook/manual/Completion.h"

namespace gpsbook {

namespace {

// Text within single quotes, in which _arguments and _describe give ":" and brackets a meaning.
std::string Escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '\'') {
            out += "'\\''";
            continue;
        }
        if (c == ':' || c == '[' || c == ']' || c == '\\') out += '\\';
        out += c;
    }
    return out;
}

std::string Action(const OptionDescription& option) {
    switch (option.kind) {
        case ValueKind::words: {
            std::string words;
            for (const std::string& word : option.words) words += (words.empty() ? "" : " ") + word;
            return "(" + words + ")";
        }
        case ValueKind::file:
            return "_files";
        case ValueKind::folder:
            return "_files -/";
        case ValueKind::book:
            return "_files -g \"*.gpsbook(-.)\"";
        case ValueKind::none:
            break;
    }
    return " ";
}

std::string ValueOf(const OptionDescription& option) {
    // The words themselves are offered; a message with all of them would only repeat them.
    return Escaped(option.kind == ValueKind::words ? "value" : option.value) + ':' + Action(option);
}

std::string OptionSpec(const OptionDescription& option) {
    std::string all;
    for (const std::string& name : option.names) all += (all.empty() ? "" : " ") + name;
    std::string specs;
    for (const std::string& name : option.names) {
        const bool isLong = name.starts_with("--");
        const char* valued = option.value.empty() ? "" : (isLong ? "=" : "+");
        specs += " \\\n        '(" + all + ")" + name + valued + "[" + Escaped(option.help) + "]";
        if (!option.value.empty()) specs += ':' + ValueOf(option);
        specs += "'";
    }
    return specs;
}

std::string ArgumentSpec(const OptionDescription& argument) {
    const char* where = argument.several ? "*:" : (argument.required ? ":" : "::");
    return std::string(" \\\n        '") + where + ValueOf(argument) + "'";
}

std::string FunctionName(const CommandDescription& command) { return "_" + command.Joined("_"); }

void AppendFunction(std::string& out, const CommandDescription& command) {
    for (const CommandDescription& within : command.commands) AppendFunction(out, within);
    out += "\n" + FunctionName(command) + "() {\n";
    if (command.commands.empty()) {
        out += "    _arguments -s -S";
        for (const OptionDescription& option : command.options) out += OptionSpec(option);
        for (const OptionDescription& argument : command.arguments) out += ArgumentSpec(argument);
        out += "\n}\n";
        return;
    }
    out += "    local curcontext=$curcontext state line\n    typeset -A opt_args\n    _arguments -C -S";
    for (const OptionDescription& option : command.options) out += OptionSpec(option);
    out +=
        " \\\n        '1:command:->command' '*::argument:->argument' && return\n    case $state in\n    "
        "command)\n"
        "        local -a commands=(";
    for (const CommandDescription& within : command.commands)
        out += "\n            '" + within.Name() + ":" + Escaped(within.help) + "'";
    out +=
        "\n        )\n        _describe command commands\n        ;;\n    argument)\n        case $line[1] "
        "in\n";
    for (const CommandDescription& within : command.commands)
        out += "        " + within.Name() + ") " + FunctionName(within) + " ;;\n";
    out += "        esac\n        ;;\n    esac\n}\n";
}

}  // namespace

std::string ZshCompletion(const CommandDescription& program) {
    std::string out =
        "#compdef gpsbook\n# Completion of gpsbook for zsh; `gpsbook completion zsh` makes it.\n";
    AppendFunction(out, program);
    // Called by the completion system, or read in once by `source`.
    out +=
        "\nif [[ $funcstack[1] == _gpsbook ]]; then\n    _gpsbook \"$@\"\nelse\n    compdef _gpsbook "
        "gpsbook\nfi\n";
    return out;
}

}  // namespace gpsbook
