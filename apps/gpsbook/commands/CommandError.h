// CommandError: a command that cannot go on, with the exit code of the program.
#pragma once

#include <stdexcept>
#include <string>

namespace gpsbook {

/// Exit codes of the program; the numbers are documented and never change.
enum ExitCode : int {
    exitDone = 0,
    exitFailure = 1,   // the work could not be done
    exitUsage = 2,     // the command line is wrong
    exitConflict = 3,  // a book that others write or have changed, findings of a check
    exitRefused = 4,   // a damaged file, or one that is not what it should be
    exitNotFound = 5,  // a file or an item that does not exist
    exitServer = 6     // server or network
};

/// The message says where, what is wrong and what to do.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
    ExitCode Code() const { return code_; }

private:
    ExitCode code_;
};

}  // namespace gpsbook
