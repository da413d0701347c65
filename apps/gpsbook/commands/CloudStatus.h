// CloudStatus: what a book and its shared project differ in.
#pragma once

#include <string>

namespace gpsbook {

/// Errors: as of a command.
void TellCloudStatus(const std::string& book, bool json);

}  // namespace gpsbook
