// A small command line with one of everything, for the tests of what is made from it.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace gpsbook::test {

/// A program with the commands "paint" and "shelf put".
struct SmallProgram {
    SmallProgram() {
        CLI::App* paint = app.add_subcommand("paint", "Paint it: 'red' or blue");
        paint->group("Colours");
        paint->add_option("BOOK", book, "The book")->required();
        paint->add_option("LOG", logs, "Logs");
        paint->add_option("-c,--colour", colour, "Colour [red]")->type_name("red|blue|CODE");
        paint->add_option("--into", into, "Where it goes")->type_name("FILE")->required();
        paint->add_option("--size", size, "In metres")->type_name("M");
        paint->add_flag("--wet", wet, "Leave it wet");
        paint->footer("Examples:\n  program paint a.book\n  program paint b.book --wet");
        CLI::App* shelf = app.add_subcommand("shelf", "Shelves");
        CLI::App* put = shelf->add_subcommand("put", "Put something on it");
        put->add_option("SIDE", side, "The side")->type_name("left|right");
        put->add_option("--folder", into, ".Where")->type_name("FOLDER");
    }

    CLI::App app{"Paints things", "program"};
    std::string book, colour, into, size, side;
    std::vector<std::string> logs;
    bool wet = false;
};

}  // namespace gpsbook::test
