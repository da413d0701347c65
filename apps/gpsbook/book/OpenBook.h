// OpenBook: opening and saving the book that a command works on.
#pragma once

#include <memory>
#include <string>

#include "host/project/Project.h"

namespace gpsbook {

/// The file that is meant: as given, or with ".gpsbook" behind it when only that, or a folder of the
/// shorter name, exists.
std::string BookFile(const std::string& given);

/// Whether two names lead to the same file that exists.
bool IsSameFile(const std::string& a, const std::string& b);

/// The name of a new book: as given, with ".gpsbook" behind it when it has no ending.
/// Errors: CommandError (exitUsage) for a name that can only be that of a folder.
std::string NewBookFile(const std::string& given);

/// Refuses a name that a file has, unless it is to be replaced. Errors: CommandError (exitFailure).
void NeedFreeName(const std::string& file, bool overwrite);

/// Saves a project as a new book under a name from NewBookFile; one that exists is replaced only with
/// `overwrite`. Errors: CommandError, ProjectError; nothing is made then.
void SaveNewBook(gpsproject::Project& project, const std::string& file, bool overwrite);

/// Opens a book to read it. What is wrong or worth telling goes to standard error; of a damaged one the
/// object holds what could be read. Errors: ProjectError.
std::unique_ptr<gpsproject::Project> OpenToRead(const std::string& given);

/// Whether the file is whole, and only the journal beside it is damaged or not its own.
bool IsOnlyJournalDamaged(const gpsproject::Project& project);

/// What a replay brought back: "3 edits: 1 group, 12 points".
std::string ReplayText(const gpsproject::ReplayReport& replay);

/// To be called when all that could be read is told of. Errors: CommandError (exitRefused) for a damaged
/// book, so that nobody takes a part for the whole.
void EndReading(const gpsproject::Project& project);

/// Opens a book to change it. Errors: ProjectError; CommandError (exitRefused) for a damaged one, which is
/// never written over.
std::unique_ptr<gpsproject::Project> OpenToWrite(const std::string& given);

/// Saves what was changed; what the stream version of the book has no place for is told of. Errors:
/// ProjectError, and CommandError when the program was asked to end; the file is as it was then.
void SaveBook(gpsproject::Project& project);

}  // namespace gpsbook
