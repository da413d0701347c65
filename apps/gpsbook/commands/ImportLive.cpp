#include "apps/gpsbook/commands/ImportLive.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/BookRows.h"
#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/KnownFixes.h"
#include "apps/gpsbook/book/LiveImport.h"
#include "apps/gpsbook/book/OpenBook.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ImportSummary.h"
#include "apps/gpsbook/commands/Output.h"
#include "apps/gpsbook/commands/TextTable.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/writers/Columns.h"
#include "apps/gpsbook/writers/WriteError.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;
using gpsproject::Project;

constexpr const char* kKept = "what was told to be stored is in the journal of the book all the same";

std::optional<std::chrono::steady_clock::duration> IdleFrom(const std::string& text) {
    constexpr double most = 1e6;
    if (text.empty()) return std::nullopt;
    double seconds = 0;
    if (!ParseNumber(text, seconds) || seconds <= 0 || seconds > most)
        Usage("--idle", fmt::format("\"{}\" is not a number of seconds above 0, up to {:.0f}", text, most));
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds));
}

/// The group that the log goes on in; -1: there is none yet. A program that starts again finds the one that
/// it made before.
int GroupToGoOn(const ImportArguments& a, const CLibGps& book) {
    if (!a.log.group.empty()) return ExistingGroup(book, a.log.group);
    const std::string name = GroupName(a.log, 0);
    return HasGroup(book, name) ? FindGroup(book, name) : -1;
}

void CheckSystem(const ImportArguments& a, const CGrpGps& group) {
    if (a.crs.empty()) return;
    const std::string its = group.GetConvCoord()->GetConvLocal()->GetProiezPla().GetDefinizione();
    if (ProjectionFrom(a.crs).GetDefinizione() != its)
        Usage("--crs", "the group \"" + NameOf(group) +
                           "\" exists and has another system; leave the option out, or choose another group");
}

class Live {
public:
    Live(const ImportArguments& a, const EpochFilterOptions& filter)
        : a_(a), filter_(filter), project_(OpenToWrite(a.book)), book_(project_->GetBook()) {
        project_->GetEdits().End();  // every epoch is an edit of its own
        group_ = GroupToGoOn(a, book_);
        isNew_ = group_ < 0;
        done_.fill = FillFrom(a.log, DefaultsOf(*project_));
        if (isNew_)
            done_.crs = SystemOfNewGroups(a, *project_);
        else
            CheckSystem(a, *book_.GetGrpAt(group_));
    }

    void Run() {
        long next = NextNumber();
        KnownFixes known;
        for (int g = 0; g < book_.GetGrpArSize(); ++g)
            if (a_.skipExisting || g == group_) known.Add(book_, g, 0);
        if (isNew_) {
            AddGroup(book_, GroupName(a_.log, 0), done_.crs);
            group_ = book_.GetGrpArSize() - 1;
        }
        first_ = book_.GetPunArSize(group_);
        const LiveOptions options{IdleFrom(a_.idle), a_.each};
        try {
            done_.logs.push_back(FollowLog(a_.log.logs.front(), *project_, group_, done_.fill, known, filter_,
                                           next, options, WatcherFor(a_.log, a_.log.logs.front()),
                                           [this](const std::vector<int>& points) { Tell(points); }));
        } catch (const CommandError&) {
            Save();
            throw;
        } catch (const WriteError&) {
            Save();
            throw;
        }
        done_.logs.back().group = NameOf(*book_.GetGrpAt(group_));
        Save();
        if (done_.Points() == 0 && done_.AlreadyThere() == 0 && !IsAskedToEnd())
            RefuseWithoutPoints(done_.logs);
        PrintSummary();
    }

    /// After the book or its journal was changed by another program: what was measured is saved all the same.
    std::string SaveElsewhere() {
        book_.SetModifiedFlag(true);
        try {
            project_->Save();
            return project_->GetPath() + " is saved all the same";
        } catch (const gpsproject::ProjectError&) {  // it is not the book that was opened
        }
        const std::filesystem::path book(project_->GetPath());
        const std::string stem = (book.parent_path() / book.stem()).string();
        for (int n = 1;; ++n) {
            const std::string name = fmt::format("{}-live-{}{}", stem, n, book.extension().string());
            if (std::filesystem::exists(name)) continue;
            project_->SaveAs(name, false);
            return "the book with what was measured is saved as " + name;
        }
    }

private:
    // The same command line, given again, numbers on.
    long NextNumber() const {
        const long free = FirstFreeNumber(book_, a_.log.prefix);
        if (a_.log.start.empty()) return free;
        const long start = StartFrom(a_.log.start);
        return isNew_ ? start : std::max(start, free);
    }

    std::string Line(int p) const {
        const CGrpGps& group = *book_.GetGrpAt(group_);
        const CPunGps& point = *book_.GetPunAt(group_, p);
        const std::string time = TimeText(RowOf(group, point));
        if (!a_.json) return fmt::format("stored {} {}\n", Printable(PlaceText(book_, {group_, p})), time);
        const Json line{{"stored",
                         {{"group", NameOf(group)},
                          {"point", point.GetNome()},
                          {"index", p},
                          {"time", time.empty() ? Json(nullptr) : Json(time)}}}};
        return line.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
    }

    void Tell(const std::vector<int>& points) const {
        std::string text;
        for (const int p : points) text += Line(p);
        PrintText(text, fmt::format("what was stored could not be told, {} has it", project_->GetPath()));
    }

    void Save() {
        if (book_.GetPunArSize(group_) == first_) {
            if (isNew_) book_.DelGrpAt(group_);
            return;
        }
        try {
            project_->GetEdits().Commit();
        } catch (const gpsproject::ProjectError&) {
            // The save that follows promises more than the journal could.
        }
        book_.SetModifiedFlag(true);
        project_->Save();
        for (const std::string& note : project_->GetNotes())
            std::cerr << fmt::format("note: {}: not kept, version {} has no place for it: {}\n",
                                     project_->GetPath(), project_->GetStreamVersion(), note);
    }

    void PrintSummary() {
        if (done_.Points() > 0) {
            done_.groups = {group_};
            done_.first = {first_};
            for (int p = first_; p < book_.GetPunArSize(group_); ++p)
                done_.extent.Add(*book_.GetPunAt(group_, p));
            if (done_.extent.withoutPlane == done_.Points())
                std::cerr << fmt::format(
                    "note: {}: no new point has plane coordinates; see the system of "
                    "its group\n",
                    project_->GetPath());
        }
        const std::string otherwise = SavedButUntold(project_->GetPath());
        if (!a_.json) return PrintText(ImportText(project_->GetPath(), book_, done_), otherwise);
        const Json line{{"imported", ImportJson(project_->GetPath(), book_, isNew_, done_)}};
        PrintText(line.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n', otherwise);
    }

    const ImportArguments& a_;
    const EpochFilterOptions& filter_;
    const std::unique_ptr<Project> project_;
    CLibGps& book_;
    Imported done_;
    int group_ = -1;
    bool isNew_ = false;
    int first_ = 0;  // position of the first new point
};

}  // namespace

void CheckLive(const ImportArguments& a) {
    if (!a.live && a.each) Usage("--each", "it belongs to --live; without that all is saved at once");
    if (!a.live && !a.idle.empty()) Usage("--idle", "it belongs to --live; without that a log has an end");
    if (!a.live) return;
    if (a.log.logs.size() != 1) Usage("LOG", "with --live one log is followed; start a program for each");
    IdleFrom(a.idle);
}

void ImportLive(const ImportArguments& a, const EpochFilterOptions& filter) {
    Live live(a, filter);
    try {
        live.Run();
    } catch (const gpsproject::ProjectError& e) {
        if (e.GetKind() == gpsproject::ProjectError::Kind::changedOutside)
            throw gpsproject::ProjectError(e.GetKind(),
                                           fmt::format("{}; {}", e.what(), live.SaveElsewhere()));
        if (e.GetKind() != gpsproject::ProjectError::Kind::system) throw;
        throw gpsproject::ProjectError(e.GetKind(), fmt::format("{}; {}", e.what(), kKept));
    }
}

}  // namespace gpsbook
