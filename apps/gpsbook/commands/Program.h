// The program gpsbook: its command line.
#pragma once

namespace gpsbook {

/// Runs the program and returns its exit code (see ExitCode).
int RunProgram(int argc, const char* const* argv);

}  // namespace gpsbook
