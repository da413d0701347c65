// Device: who this installation is to the projects that it shares, and who uses it.
#pragma once

#include <cstdint>
#include <string>

#include "host/os/FileOperations.h"

namespace gpssync {

inline constexpr std::size_t kMostAuthorBytes = 200;

/// The file that holds the id of this installation: the one that GPS_SURVEY_DEVICE names, else
/// gps-survey/device in $XDG_STATE_HOME, or in ~/.local/state. Empty when there is no home either.
std::string DeviceFile();

/// The id in such a file, from 1 on. Without one a random id is made, once: of two programs that begin at the
/// same time both get the same.
/// Errors: ProjectError: damaged, for a file that holds anything else, which is left alone; system; notFound
/// for an empty name.
std::int32_t DeviceIn(const std::string& file, FileOperations& files = FileOperations::System());

/// The id of this installation.
std::int32_t OwnDevice();

/// Why a text cannot tell others who made a change; empty: it can.
std::string AuthorProblem(const std::string& author);

/// Who is at work, as far as the system knows: "anna@tablet3". It can tell others.
std::string SystemAuthor();

}  // namespace gpssync
