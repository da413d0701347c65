// Words: the arguments behind the book that are addresses and fields with values.
#pragma once

#include <string>
#include <vector>

#include "apps/gpsbook/fields/Assignment.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace gpsbook {

struct Words {
    std::vector<std::string> addresses;
    std::vector<Assignment> assignments;
};

/// Tells addresses and assignments apart; they may stand in any order.
Words SplitWords(const std::vector<std::string>& words);

/// An argument that takes any number of words. One in square brackets is taken for a list by the parser: a
/// group of such a name is addressed by its position.
CLI::Option* AddWords(CLI::App& command, const std::string& name, std::vector<std::string>& words,
                      const std::string& help);

/// The argument BOOK.
CLI::Option* AddBook(CLI::App& command, std::string& book);

}  // namespace gpsbook
