// A program that runs beside the test, which feeds it, stops it or kills it.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/apps/gpsbook/commands/Gpsbook.h"

namespace gpsbook::test {

class Running {
public:
    /// Starts gpsbook in the folder of a workplace. With `pipe` its standard input is fed by Feed; else it is
    /// empty. `mostBytes`: no file of it can grow beyond that; 0: any.
    Running(const Workplace& place, const std::vector<std::string>& arguments, bool pipe,
            std::size_t mostBytes = 0);
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    /// Writes to its standard input; what a program that has ended does not take is lost.
    void Feed(const std::string& text) const;
    void CloseInput();

    /// What it has written to standard output so far.
    std::string Out() const { return ReadFile(kept_ / "out"); }

    /// Waits until `holds` says so of the output; a failure of the test after 20 seconds.
    void WaitFor(const std::function<bool(const std::string& out)>& holds) const;

    void Signal(int number) const;

    /// Waits for its end; a failure of the test, and its end, after 60 seconds.
    Outcome End();

private:
    TestFolder kept_;
    pid_t child_ = -1;
    int input_ = -1;
};

}  // namespace gpsbook::test
