// SharedBook: a book that belongs to a shared project, and the store that it is shared through.
#pragma once

#include <memory>
#include <string>

#include "host/cloud/Transport.h"
#include "host/project/Project.h"

namespace gpsbook {

/// New groups of a shared book are this installation's from now on. Nothing for a book that is not shared.
/// Errors: ProjectError when the id of this installation cannot be read or made.
void UseOwnDevice(gpsproject::Project& project);

/// A store as the book remembers it. A relative name, given for the folder that the program runs in, becomes
/// one for the folder of the book's file, so that book and store can move together; another one stays.
std::string StoreToRemember(const std::string& book, const std::string& given);

/// The file of the store that a book remembers, or that it would remember.
std::string StoreFile(const std::string& book, const std::string& remembered);

/// The store of a book. With `make` one that is not there is made.
/// Errors: CommandError (exitNotFound) for one that is not there; TransportError.
std::unique_ptr<gpssync::Transport> OpenStoreOf(const std::string& book, const std::string& remembered,
                                                bool make);

/// Saves a book whose steps with the shared project are in its journal, and have to stay: a save that fails
/// leaves the journal as it is. Errors: ProjectError.
void SaveSynced(gpsproject::Project& project);

}  // namespace gpsbook
