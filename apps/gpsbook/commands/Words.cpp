#include "apps/gpsbook/commands/Words.h"

#include <CLI/CLI.hpp>

#include "apps/gpsbook/commands/Filled.h"

namespace gpsbook {

Words SplitWords(const std::vector<std::string>& words) {
    Words split;
    for (const std::string& word : words) {
        if (IsAssignment(word))
            split.assignments.push_back(SplitAssignment(word));
        else
            split.addresses.push_back(word);
    }
    return split;
}

CLI::Option* AddWords(CLI::App& command, const std::string& name, std::vector<std::string>& words,
                      const std::string& help) {
    return command.add_option(name, words, help);
}

CLI::Option* AddBook(CLI::App& command, std::string& book) {
    return command.add_option("BOOK", book, "The book")->required()->check(Filled());
}

}  // namespace gpsbook
