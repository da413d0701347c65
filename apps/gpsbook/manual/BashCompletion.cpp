#include <functional>

#include "apps/gpsbook/manual/Completion.h"

namespace gpsbook {

namespace {

constexpr char kScript[] = R"bash(
_gpsbook() {
    local cur=${COMP_WORDS[COMP_CWORD]} command=gpsbook option= place=0 word kind i
    COMPREPLY=()
    # What stands before the cursor: the command, an option that waits for its value, the arguments so far.
    # bash makes words of "=" and ":" as well.
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case $word in
        =) continue ;;
        :) ((i++)); continue ;;
        esac
        if [[ -n $option ]]; then
            option=
        elif [[ $word == -?* ]]; then
            [[ -n $(_gpsbook_value "$command $word") ]] && option=$word
        elif [[ " $(_gpsbook_commands "$command") " == *" $word "* ]]; then
            command+="-$word"
        else
            ((place++))
        fi
    done
    [[ $cur == : || ${COMP_WORDS[COMP_CWORD - 1]} == : ]] && return
    [[ $cur == = ]] && cur=

    if [[ -n $option ]]; then
        kind=$(_gpsbook_value "$command $option")
    elif [[ $cur == -* ]]; then
        kind="words $(_gpsbook_options "$command")"
    else
        word=$(_gpsbook_commands "$command")
        if [[ -n $word ]]; then kind="words $word"; else kind=$(_gpsbook_argument "$command" "$place"); fi
    fi
    case $kind in
    words\ *) mapfile -t COMPREPLY < <(compgen -W "${kind#words }" -- "$cur") ;;
    file) mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
    folder) mapfile -t COMPREPLY < <(compgen -d -- "$cur") ;;
    book) mapfile -t COMPREPLY < <(compgen -d -- "$cur"; compgen -f -X '!*.gpsbook' -- "$cur") ;;
    *) return ;;
    esac
    [[ $kind == words\ * ]] || compopt -o filenames 2>/dev/null
    return 0
}

complete -F _gpsbook gpsbook
)bash";

std::string Words(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

// What the script's functions answer: nothing is for a flag, "none" for a value that cannot be completed.
std::string Kind(const OptionDescription& option) {
    switch (option.kind) {
        case ValueKind::words:
            return "words " + Words(option.words);
        case ValueKind::file:
            return "file";
        case ValueKind::folder:
            return "folder";
        case ValueKind::book:
            return "book";
        case ValueKind::none:
            break;
    }
    return "none";
}

void ForEach(const CommandDescription& command, const std::function<void(const CommandDescription&)>& visit) {
    visit(command);
    for (const CommandDescription& within : command.commands) ForEach(within, visit);
}

// A function of the script: a table from its argument to a text.
std::string Function(const std::string& name, const std::string& key, const std::string& rows) {
    return "\n_gpsbook_" + name + "() {\n    case " + key + " in\n" + rows + "    esac\n}\n";
}

std::string Row(const std::string& key, const std::string& answer) {
    return "    " + key + ") echo \"" + answer + "\" ;;\n";
}

std::string Commands(const CommandDescription& program) {
    std::string rows;
    ForEach(program, [&](const CommandDescription& c) {
        std::vector<std::string> names;
        for (const CommandDescription& within : c.commands) names.push_back(within.Name());
        if (!names.empty()) rows += Row(c.Joined("-"), Words(names));
    });
    return Function("commands", "$1", rows);
}

std::string Options(const CommandDescription& program) {
    std::string rows;
    ForEach(program, [&](const CommandDescription& c) {
        std::vector<std::string> names;
        for (const OptionDescription& option : c.options)
            names.insert(names.end(), option.names.begin(), option.names.end());
        rows += Row(c.Joined("-"), Words(names));
    });
    return Function("options", "$1", rows);
}

std::string Values(const CommandDescription& program) {
    std::string rows;
    ForEach(program, [&](const CommandDescription& c) {
        for (const OptionDescription& option : c.options) {
            if (option.value.empty()) continue;
            std::string keys;
            for (const std::string& name : option.names)
                keys += (keys.empty() ? "\"" : " | \"") + c.Joined("-") + ' ' + name + '"';
            rows += Row(keys, Kind(option));
        }
    });
    return Function("value", "$1", rows);
}

std::string Arguments(const CommandDescription& program) {
    std::string rows;
    ForEach(program, [&](const CommandDescription& c) {
        for (std::size_t i = 0; i < c.arguments.size(); ++i) {
            const std::string place = c.arguments[i].several ? "*" : std::to_string(i);
            rows += Row("\"" + c.Joined("-") + " \"" + place, Kind(c.arguments[i]));
        }
    });
    return Function("argument", "\"$1 $2\"", rows);
}

}  // namespace

std::string BashCompletion(const CommandDescription& program) {
    return "# Completion of gpsbook for bash; `gpsbook completion bash` makes it.\n" + Commands(program) +
           Options(program) + Values(program) + Arguments(program) + kScript;
}

}  // namespace gpsbook
