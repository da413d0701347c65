#include "apps/gpsbook/manual/CommandDescription.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace gpsbook {

namespace {

bool IsWord(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
    });
}

// "fix|float|CODE": the words, without what only stands for one.
std::vector<std::string> WordsOf(const std::string& value) {
    std::vector<std::string> words;
    std::size_t begin = 0;
    while (begin <= value.size()) {
        const std::size_t end = std::min(value.find('|', begin), value.size());
        if (std::string word = value.substr(begin, end - begin); IsWord(word))
            words.push_back(std::move(word));
        begin = end + 1;
    }
    return words;
}

ValueKind KindOf(const std::string& value) {
    if (value == "BOOK" || value == "OTHER") return ValueKind::book;
    if (value == "FOLDER") return ValueKind::folder;
    if (value == "FILE" || value == "LOG") return ValueKind::file;
    return value.find('|') == std::string::npos ? ValueKind::none : ValueKind::words;
}

OptionDescription Describe(const CLI::Option& option) {
    OptionDescription d;
    for (const std::string& name : option.get_snames()) d.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) d.names.push_back("--" + name);
    if (option.get_positional() && d.names.empty()) {
        const std::string type = option.get_type_name();
        d.value = option.get_name(true);
        // An argument of some words has them as its type: SHELL is bash|zsh.
        d.kind = KindOf(type.find('|') == std::string::npos ? d.value : type);
        if (d.kind == ValueKind::words) d.words = WordsOf(type);
    } else if (option.get_type_size_max() > 0) {
        d.value = option.get_type_name();
        d.kind = KindOf(d.value);
        if (d.kind == ValueKind::words) d.words = WordsOf(d.value);
    }
    d.help = option.get_description();
    d.required = option.get_required();
    d.several = option.get_expected_max() > 1;
    return d;
}

std::string ExamplesOf(const CLI::App& app) {
    const std::string footer = app.get_footer();
    const std::size_t at = footer.find(kExamplesHeading);
    if (at == std::string::npos) return {};
    std::string lines;
    std::size_t begin = at + sizeof kExamplesHeading - 1;
    while (begin < footer.size()) {
        const std::size_t end = std::min(footer.find('\n', begin), footer.size());
        std::string line = footer.substr(begin, end - begin);
        if (line.starts_with("  ")) line.erase(0, 2);
        lines += line + '\n';
        begin = end + 1;
    }
    return lines;
}

CommandDescription Describe(const CLI::App& app, std::vector<std::string> path) {
    CommandDescription d;
    path.push_back(app.get_name());
    d.help = app.get_description();
    d.group = app.get_group();
    d.examples = ExamplesOf(app);
    for (const CLI::Option* option : app.get_options()) {
        OptionDescription one = Describe(*option);
        (one.names.empty() ? d.arguments : d.options).push_back(std::move(one));
    }
    // A null filter gives all commands, not those that were called.
    for (const CLI::App* command : app.get_subcommands(std::function<bool(const CLI::App*)>{}))
        d.commands.push_back(Describe(*command, path));
    d.path = std::move(path);
    return d;
}

}  // namespace

std::string CommandDescription::Joined(const char* between) const {
    std::string text;
    for (const std::string& word : path) text += (text.empty() ? "" : between) + word;
    return text;
}

CommandDescription Describe(const CLI::App& app) { return Describe(app, {}); }

}  // namespace gpsbook
