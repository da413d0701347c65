#include "apps/gpsbook/book/OpenBook.h"

#include <filesystem>
#include <iostream>
#include <system_error>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"

namespace gpsbook {

namespace {

constexpr const char* kEnding = ".gpsbook";

void TellNotes(const gpsproject::Project& project) {
    for (const std::string& note : project.GetNotes())
        std::cerr << "note: " << project.GetPath() << ": " << note << '\n';
}

}  // namespace

std::string BookFile(const std::string& given) {
    std::error_code ignored;
    const std::string longer = given + kEnding;
    // A folder of the name is no book: observation files lie in site/, beside site.gpsbook.
    const bool taken =
        std::filesystem::exists(given, ignored) && !std::filesystem::is_directory(given, ignored);
    return given.empty() || taken || !std::filesystem::exists(longer, ignored) ? given : longer;
}

bool IsSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

std::string NewBookFile(const std::string& given) {
    const std::filesystem::path path(given);
    return path.has_filename() && !path.has_extension() ? given + kEnding : given;
}

std::unique_ptr<gpsproject::Project> OpenToRead(const std::string& given) {
    auto project = gpsproject::Project::Open(BookFile(given), gpsproject::Project::Mode::read);
    if (project->GetReport().IsDamaged()) std::cerr << project->GetReport().Text();
    TellNotes(*project);
    return project;
}

void EndReading(const gpsproject::Project& project) {
    const gpsproject::DamageReport& report = project.GetReport();
    if (!report.IsDamaged()) return;
    throw CommandError(exitRefused, project.GetPath() + ": damaged; what could be read is shown, " +
                                        Counted(report.groupsRead, "group") + " and " +
                                        Counted(report.pointsRead, "point") +
                                        "; gpsbook export saves it, or go back to the backup");
}

std::unique_ptr<gpsproject::Project> OpenToWrite(const std::string& given) {
    auto project = gpsproject::Project::Open(BookFile(given), gpsproject::Project::Mode::write);
    if (project->GetReport().IsDamaged()) {
        std::cerr << project->GetReport().Text();
        throw CommandError(exitRefused,
                           project->GetPath() +
                               ": damaged, and not written over; gpsbook check tells more, gpsbook export "
                               "saves what can be read, or go back to the backup");
    }
    TellNotes(*project);
    return project;
}

void SaveBook(gpsproject::Project& project) {
    CheckInterrupt();
    project.GetBook().SetModifiedFlag(true);
    project.Save();
    for (const std::string& note : project.GetNotes())
        std::cerr << "note: " << project.GetPath() << ": not kept, version " << project.GetStreamVersion()
                  << " has no place for it: " << note << '\n';
}

}  // namespace gpsbook
