// Runs the program itself, as a shell would, in a folder of its own.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook::test {

/// What a run left behind.
struct Outcome {
    int exitCode = -1;  // -1: it was ended by a signal
    std::string out;
    std::string err;
};

/// For the messages of tests.
std::ostream& operator<<(std::ostream& stream, const Outcome& outcome);

/// What surrounds a run.
struct Surroundings {
    std::string input;                               // on standard input
    std::string outputTo;                            // a device that takes standard output; empty: it is kept
    std::map<std::string, std::string> environment;  // added to that of the test
};

/// A fresh folder in which the program runs; file names of arguments are relative to it.
class Workplace {
public:
    /// Runs gpsbook with these arguments.
    Outcome Run(const std::vector<std::string>& arguments, const Surroundings& surroundings = {}) const;

    /// The same with standard error on a terminal; `err` is what was drawn there.
    Outcome RunOnTerminal(const std::vector<std::string>& arguments) const;

    /// The same with standard input a pipe that stays open. As soon as the output is being prepared in the
    /// folder the program is interrupted as by Ctrl-C, and only then the pipe is closed.
    Outcome RunInterrupted(const std::vector<std::string>& arguments, const std::string& input) const;

    /// `gpsbook convert` with EPSG:32633, where the test logs are.
    Outcome Convert(std::vector<std::string> arguments, const Surroundings& surroundings = {}) const;

    void Put(const std::string& name, const std::string& text) const { WriteFile(folder_ / name, text); }
    std::string Text(const std::string& name) const { return ReadFile(folder_ / name); }
    std::string Path(const std::string& name) const { return folder_ / name; }
    std::vector<std::string> Names() const { return folder_.Names(); }

private:
    TestFolder folder_;
};

/// The lines of a text, without their ends.
std::vector<std::string> LinesOf(const std::string& text);

/// A table as the program writes it: rows of cells by the name of their column.
using CsvRows = std::vector<std::map<std::string, std::string>>;
CsvRows RowsOf(const std::string& csv);

/// A cell as a number; a failure of the test when it is none.
double NumberOf(const std::map<std::string, std::string>& row, const std::string& column);

}  // namespace gpsbook::test
