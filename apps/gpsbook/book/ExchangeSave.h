// ExchangeSave: points or groups of a book, written as a file for another book.
#pragma once

#include <string>

class CLibGps;

namespace gpsbook {

/// Positions from `first` up to but not including `last`.
struct SaveRange {
    std::string file;
    int first = 0;
    int last = 0;
    bool overwrite = false;  // a file of the name is replaced
    bool force = false;      // also a range in which nothing stands: the count in the file is wrong then
};

/// Writes them; `file` appears complete, or stays as it was.
/// Errors: CommandError (exitUsage) for a range that the book does not have; without `force` each such, with
/// it one of more than kMostMissing positions outside. WriteError when the file cannot be made or written.
void SavePoints(CLibGps& book, int group, const SaveRange& range);
void SaveGroups(CLibGps& book, const SaveRange& range);

/// How many of the positions exist.
int CountIn(const SaveRange& range, int size);

}  // namespace gpsbook
