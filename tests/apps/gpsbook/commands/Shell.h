// Runs shells for the tests of what is made for them.
#pragma once

#include <string>
#include <vector>

namespace gpsbook::test {

/// What `command` of sh writes to both of its outputs, run in a folder; its exit code goes to `exitCode`.
std::string OutputOf(const std::string& folder, const std::string& command, int& exitCode);

/// Types into an interactive shell on a terminal of its own and reads until `awaited` appears; returns all
/// that was drawn. At most 30 seconds.
std::string Typed(const std::vector<std::string>& shell, const std::string& folder, const std::string& keys,
                  const std::string& awaited);

}  // namespace gpsbook::test
