// WriteError: why an output could not be written.
#pragma once

#include <stdexcept>
#include <string>

namespace gpsbook {

/// The message names the file, says what is wrong and what to do about it.
class WriteError : public std::runtime_error {
public:
    WriteError(const std::string& file, const std::string& problem)
        : std::runtime_error(file + ": " + problem) {}
};

}  // namespace gpsbook
