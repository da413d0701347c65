#include "apps/gpsbook/commands/MergeReport.h"

#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"

namespace gpsbook {

void NeedTwoBooks(const std::string& book, const std::string& other) {
    if (IsSameFile(book, other))
        throw CommandError(exitUsage, "OTHER: \"" + other + "\" is the book itself; give another one");
}

std::unique_ptr<gpsproject::Project> OpenOther(const std::string& file) {
    auto other = OpenToRead(file);
    if (!other->GetReport().IsDamaged()) return other;
    const bool journal = IsOnlyJournalDamaged(*other);
    throw CommandError(
        exitRefused,
        file + (journal
                    ? ": its journal is damaged or not its own; nothing is taken over; gpsbook journal "
                      "verify tells more, gpsbook journal salvage takes what can be used and keeps the rest"
                    : ": damaged; nothing is taken over; gpsbook check tells more, gpsbook export saves "
                      "what can be read, or go back to its backup"));
}

void NoteOtherDatums(const std::string& book, const MergedItems& made) {
    if (made.otherDatums == 0) return;
    std::cerr << fmt::format(
        "note: {}: the datum of {} is none of this book's, or has other values here; the plane coordinates "
        "are "
        "those of the other book, and would become others when they are computed again\n",
        book, Counted(made.otherDatums, "new group"));
}

nlohmann::ordered_json NewItemsJson(const gpsproject::Project& project, const gpsproject::Project& other,
                                    const MergedItems& made) {
    return {{"book", project.GetPath()},
            {"other", other.GetPath()},
            {"first", made.groups > 0 ? nlohmann::ordered_json(made.first) : nullptr},
            {"groups", made.groups},
            {"points", made.points},
            {"other_datums", made.otherDatums}};
}

}  // namespace gpsbook
