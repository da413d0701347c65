// MergeReport: what came of putting a book into another one.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "apps/gpsbook/book/MergeBook.h"
#include "host/project/Project.h"

namespace gpsbook {

/// Errors: CommandError (exitUsage) when both names lead to the same book.
void NeedTwoBooks(const std::string& book, const std::string& other);

/// The book that is put into another one. A part of it is not taken for the whole.
/// Errors: ProjectError; CommandError (exitRefused) for a damaged one.
std::unique_ptr<gpsproject::Project> OpenOther(const std::string& file);

/// Tells of new groups whose plane coordinates would become others here.
void NoteOtherDatums(const std::string& book, const MergedItems& made);

/// Both books, and what is new in the first one.
nlohmann::ordered_json NewItemsJson(const gpsproject::Project& project, const gpsproject::Project& other,
                                    const MergedItems& made);

}  // namespace gpsbook
