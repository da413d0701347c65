#include "apps/gpsbook/commands/JournalRecover.h"

#include <fmt/format.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/JournalEntries.h"
#include "apps/gpsbook/book/JournalSalvage.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/book/SharedBook.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "host/project/EditCodes.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using gpsproject::Project;
using gpsproject::ReplayReport;

Json ReplayJson(const std::string& book, const ReplayReport& replay) {
    return {{"book", book},
            {"edits", replay.edits},
            {"entries", replay.entries},
            {"unfinished", replay.unfinished},
            {"groups", replay.groups},
            {"points", replay.points},
            {"deleted", replay.deleted}};
}

std::string CameBack(const ReplayReport& replay) {
    std::string text = replay.edits == 0 ? "nothing to bring back" : ReplayText(replay) + " came back";
    if (replay.unfinished > 0)
        text +=
            fmt::format("; {} of edits that are not complete left out", CountedEntries(replay.unfinished));
    return text;
}

std::string GroupText(const CLibGps& book, const SalvagedGroup& made) {
    return fmt::format("  {}: {}, which the journal has in its group #{}{}\n",
                       Printable(PlaceText(book, {made.group, -1})), Counted(made.points, "point"), made.from,
                       made.conversion ? "" : "; no conversion is known that gives their plane coordinates");
}

std::string Text(Project& project, const SalvageReport& done, const std::string& kept) {
    const CLibGps& book = project.GetBook();
    std::string text = project.GetPath() + ": " + CameBack(project.GetReplay()) + '\n';
    for (const SalvagedGroup& made : done.groups) text += GroupText(book, made);
    if (done.there > 0) text += fmt::format("  {} in the book already\n", Counted(done.there, "point"));
    if (done.unreadable > 0)
        text += fmt::format("  {} of points that cannot be read\n", CountedEntries(done.unreadable));
    for (const auto& [code, count] : done.left)
        text += fmt::format("  not taken: {} ({}, {})\n", CountedEntries(count), code, EntryKind(code));
    return text + fmt::format("{}: saved, with {} more; the journal is kept as {}\n", project.GetPath(),
                              Counted(done.points, "point"), kept);
}

Json SalvageJson(Project& project, const SalvageReport& done, const std::string& kept) {
    Json json = ReplayJson(project.GetPath(), project.GetReplay());
    Json groups = Json::array(), left = Json::array();
    for (const SalvagedGroup& made : done.groups)
        groups.push_back({{"index", made.group},
                          {"name", NameOf(*project.GetBook().GetGrpAt(made.group))},
                          {"group_in_journal", made.from},
                          {"points", made.points},
                          {"conversion", made.conversion}});
    for (const auto& [code, count] : done.left)
        left.push_back({{"code", code}, {"kind", EntryKind(code)}, {"entries", count}});
    json["salvaged"] = done.points;
    json["salvaged_groups"] = groups;
    json["already_there"] = done.there;
    json["unreadable"] = done.unreadable;
    json["not_taken"] = left;
    json["kept_journal"] = kept.empty() ? Json(nullptr) : Json(kept);
    return json;
}

}  // namespace

std::string CountedEntries(std::int64_t n) { return fmt::format("{} {}", n, n == 1 ? "entry" : "entries"); }

void ReplayJournal(const std::string& book, bool json) {
    const auto project = OpenToWrite(book);  // which brings everything back, and saves it
    const ReplayReport& replay = project->GetReplay();
    const std::string otherwise = SavedButUntold(project->GetPath());
    if (json) return PrintJson(ReplayJson(project->GetPath(), replay), otherwise);
    PrintText(
        fmt::format("{}: {}{}\n", project->GetPath(), CameBack(replay), replay.edits > 0 ? "; saved" : ""),
        otherwise);
}

// What the project has answered is not known any more: its answer would have said which items it has.
void NoteLostCommit(const Project& project, const SalvageReport& done) {
    if (!done.left.contains(gpsproject::kCommitBegun)) return;
    std::cerr
        << "note: " << project.GetPath()
        << ": the journal holds steps of a sync that cannot be taken; what was new and sent then may be "
           "in the project already, and will be there twice after the next sync: look for it there\n";
}

void SalvageJournal(const std::string& book, bool json) {
    const auto project = Project::Open(BookFile(book), Project::Mode::salvage);
    if (project->GetReport().IsDamaged()) {
        std::cerr << project->GetReport().Text();
        throw CommandError(exitRefused, project->GetPath() +
                                            ": the book itself is damaged; bring it back first, its backup "
                                            "perhaps, and salvage its journal then");
    }
    for (const std::string& note : project->GetNotes()) std::cerr << "note: " << note << '\n';
    SalvageReport done;
    std::string kept;
    if (NeedsSalvage(*project)) {
        UseOwnDevice(*project);
        done = SalvagePoints(*project);
        project->GetBook().SetModifiedFlag(true);
        kept = project->SaveAndSetJournalAside();
        NoteLostCommit(*project, done);
    } else if (project->GetReplay().edits > 0) {
        project->Save();
    }
    const std::string otherwise = SavedButUntold(project->GetPath());
    if (json) return PrintJson(SalvageJson(*project, done, kept), otherwise);
    if (!kept.empty()) return PrintText(Text(*project, done, kept), otherwise);
    PrintText(fmt::format("{}: nothing to salvage, {}{}\n", project->GetPath(),
                          CameBack(project->GetReplay()), project->GetReplay().edits > 0 ? "; saved" : ""),
              otherwise);
}

}  // namespace gpsbook
