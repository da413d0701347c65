// RunCommand: runs the work of a command and tells of its errors.
#pragma once

#include <functional>
#include <string>

#include "apps/gpsbook/commands/CommandError.h"
#include "host/cloud/Transport.h"
#include "host/project/ProjectError.h"

namespace gpsbook {

/// The exit code of a project that could not be opened or saved.
ExitCode ExitCodeOf(gpsproject::ProjectError::Kind kind);

/// The exit code of a shared project that did not do what was asked.
ExitCode ExitCodeOf(gpssync::TransportError::Kind kind);

/// Runs `work` and returns the exit code. An error is told on standard error, behind "gpsbook NAME: ".
/// std::bad_alloc goes on to the caller.
int RunCommand(const std::string& name, const std::function<void()>& work);

}  // namespace gpsbook
