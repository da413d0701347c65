#include "apps/gpsbook/book/OpenBook.h"

#include <filesystem>
#include <iostream>
#include <string_view>
#include <system_error>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/SharedBook.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"

namespace gpsbook {

namespace {

constexpr const char* kEnding = ".gpsbook";
constexpr const char* kJournalAdvice =
    "gpsbook journal verify tells more, gpsbook journal salvage takes what can be used and keeps the rest";

void TellNotes(const gpsproject::Project& project) {
    for (const std::string& note : project.GetNotes())
        std::cerr << "note: " << project.GetPath() << ": " << note << '\n';
    const gpsproject::ReplayReport& replay = project.GetReplay();
    if (replay.edits == 0) return;
    // A reader cannot tell whether the one who edits has crashed or is still at work.
    std::cerr << "note: " << project.GetPath() << ": " << ReplayText(replay)
              << (project.IsReadOnly() ? ", of a session that has not saved, are in what is read\n"
                                       : ", of a session that ended before it saved, came back\n");
}

// Also when there is no such folder: a file cannot be called so.
bool NamesFolder(const std::filesystem::path& path) {
    return !path.has_filename() || path.filename() == "." || path.filename() == "..";
}

}  // namespace

std::string BookFile(const std::string& given) {
    std::error_code ignored;
    const std::string longer = given + kEnding;
    // A folder of the name is no book: observation files lie in site/, beside site.gpsbook.
    const bool taken =
        std::filesystem::exists(given, ignored) && !std::filesystem::is_directory(given, ignored);
    return NamesFolder(given) || taken || !std::filesystem::exists(longer, ignored) ? given : longer;
}

bool IsSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

std::string NewBookFile(const std::string& given) {
    const std::filesystem::path path(given);
    if (NamesFolder(path))
        throw CommandError(exitUsage,
                           "BOOK: \"" + given + "\" names a folder; give the name of a file in it");
    return path.has_extension() ? given : given + kEnding;
}

void NeedFreeName(const std::string& file, bool overwrite) {
    std::error_code ignored;
    if (!overwrite && std::filesystem::is_regular_file(file, ignored))
        throw CommandError(exitFailure, file +
                                            ": there is a file of this name; choose another, or replace "
                                            "it with --overwrite");
}

void SaveNewBook(gpsproject::Project& project, const std::string& file, bool overwrite) {
    NeedFreeName(file, overwrite);
    std::error_code ignored;
    const bool isThere = std::filesystem::exists(file, ignored);
    try {
        project.SaveAs(file, overwrite);
    } catch (const gpsproject::ProjectError& e) {
        // What holds for a file that stays would be wrong of one that never was.
        constexpr std::string_view stays = ", the file is as it was";
        std::string text = e.what();
        const std::size_t at = text.find(stays);
        if (isThere || at == std::string::npos) throw;
        throw gpsproject::ProjectError(e.GetKind(), text.erase(at, stays.size()));
    }
}

std::unique_ptr<gpsproject::Project> OpenToRead(const std::string& given) {
    auto project = gpsproject::Project::Open(BookFile(given), gpsproject::Project::Mode::read);
    if (project->GetReport().IsDamaged()) std::cerr << project->GetReport().Text();
    TellNotes(*project);
    return project;
}

bool IsOnlyJournalDamaged(const gpsproject::Project& project) {
    // It is looked at only beside a file that is whole.
    return project.GetReport().IsDamaged() && !project.GetJournal().path.empty();
}

std::string ReplayText(const gpsproject::ReplayReport& replay) {
    std::string text = Counted(replay.edits, "edit");
    const char* before = " (";
    const auto add = [&](std::int64_t n, const char* one, const char* what) {
        if (n == 0) return;
        text += before + Counted(n, one) + what;
        before = ", ";
    };
    add(replay.groups, "group", " stored");
    add(replay.points, "point", " stored");
    add(replay.deleted, "item", " deleted");
    return text + (replay.groups + replay.points + replay.deleted > 0 ? ")" : "");
}

void EndReading(const gpsproject::Project& project) {
    const gpsproject::DamageReport& report = project.GetReport();
    if (!report.IsDamaged()) return;
    if (IsOnlyJournalDamaged(project))
        throw CommandError(exitRefused, project.GetPath() +
                                            ": its journal is damaged or not its own; what is shown may lack "
                                            "the last edits; " +
                                            kJournalAdvice);
    throw CommandError(exitRefused, project.GetPath() + ": damaged; what could be read is shown, " +
                                        Counted(report.groupsRead, "group") + " and " +
                                        Counted(report.pointsRead, "point") +
                                        "; gpsbook export saves it, or go back to the backup");
}

std::unique_ptr<gpsproject::Project> OpenToWrite(const std::string& given) {
    auto project = gpsproject::Project::Open(BookFile(given), gpsproject::Project::Mode::write);
    if (project->GetReport().IsDamaged()) {
        std::cerr << project->GetReport().Text();
        if (IsOnlyJournalDamaged(*project))
            throw CommandError(exitRefused, project->GetPath() +
                                                ": is not written while its journal is damaged or not its "
                                                "own; " +
                                                kJournalAdvice);
        throw CommandError(exitRefused,
                           project->GetPath() +
                               ": damaged, and not written over; gpsbook check tells more, gpsbook export "
                               "saves what can be read, or go back to the backup");
    }
    TellNotes(*project);
    UseOwnDevice(*project);
    project->GetEdits().Begin();
    return project;
}

void SaveBook(gpsproject::Project& project) {
    CheckInterrupt();
    project.GetBook().SetModifiedFlag(true);
    project.GetEdits().End();
    try {
        project.GetEdits().Commit();
    } catch (const gpsproject::ProjectError&) {
        // The save that follows promises more than the journal could.
    }
    try {
        project.Save();
    } catch (...) {
        // A command that failed has changed nothing: not later either.
        if (project.GetBook().IsModified() && !project.DropEdits())
            std::cerr
                << "note: " << project.GetPath()
                << ": its journal cannot be removed; the edit comes back when the book is opened again\n";
        throw;
    }
    for (const std::string& note : project.GetNotes())
        std::cerr << "note: " << project.GetPath() << ": not kept, version " << project.GetStreamVersion()
                  << " has no place for it: " << note << '\n';
}

}  // namespace gpsbook
