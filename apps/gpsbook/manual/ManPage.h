// ManPage: the manual page of a command, for man(1).
#pragma once

#include <string>

#include "apps/gpsbook/manual/CommandDescription.h"

namespace gpsbook {

/// The page of the program or of one of its commands, in the man macros of troff. Commands within a command
/// stand on its page. `version`: "gpsbook 1.0". The same input gives the same page, on any day.
std::string ManPage(const CommandDescription& command, const std::string& version);

/// Name of the page's file: "gpsbook.1", "gpsbook-convert.1".
std::string ManPageName(const CommandDescription& command);

}  // namespace gpsbook
