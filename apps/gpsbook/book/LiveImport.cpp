#include "apps/gpsbook/book/LiveImport.h"

#include <algorithm>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/KnownFixes.h"
#include "apps/gpsbook/book/LiveLog.h"
#include "apps/gpsbook/book/PlaneRefresh.h"
#include "apps/gpsbook/readers/Format.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using gpsproject::BookEdits;
using gpsproject::Edit;
using gpsproject::Project;

/// Stores what the filler makes of each epoch.
class Storer : public EpochSink {
public:
    Storer(Project& project, int group, GroupFiller& filler, KnownFixes& known, const LiveOptions& options,
           const StoredTeller& tell)
        : project_(project),
          book_(project.GetBook()),
          edits_(project.GetEdits()),
          group_(group),
          isNew_(book_.GetPunArSize(group) == 0 && group + 1 == book_.GetGrpArSize()),
          filler_(filler),
          known_(known),
          options_(options),
          tell_(tell) {}

    void SetHeader(const LogHeader* header) { header_ = header; }

    void Accept(const Epoch& epoch) override {
        const int p = book_.GetPunArSize(group_);
        {
            Edit edit(edits_);
            filler_.Accept(epoch);
            if (book_.GetPunArSize(group_) == p) return;
            Complete(p);
            edit.Done();
        }
        known_.Add(book_, group_, p);
        waiting_.push_back(p);
        if (options_.each) edits_.Commit();
        Settle();
    }

    void Reject(Reason reason, std::int64_t line, std::string_view detail) override {
        filler_.Reject(reason, line, detail);
    }
    void Ignore(Reason reason, std::int64_t line, std::string_view detail) override {
        filler_.Ignore(reason, line, detail);
    }

    /// Commits what has waited long enough, and tells of what is stored.
    void Settle() {
        if (waiting_.empty() || !edits_.CommitIfDue()) return;
        tell_(waiting_);
        waiting_.clear();
        if (edits_.GetStoredSize() <= options_.longestJournal) return;
        book_.SetModifiedFlag(true);
        project_.Save();
    }

    void SettleAll() {
        if (!waiting_.empty()) edits_.Commit();
        Settle();
    }

private:
    /// What follows from a point that has come: base and date of the group, plane coordinates.
    void Complete(int p) {
        CGrpGps& group = *book_.GetGrpAt(group_);
        const std::string date = group.GetData();
        const bool base = group.AreBaseCoordValid();
        filler_.FillGroup(*header_);
        const bool changed = group.GetData() != date || group.AreBaseCoordValid() != base;
        if (isNew_ && changed) RefreshPlane(book_, {group_, -1});
        book_.CalcolaCoordCart(book_.GetPunAt(group_, p), group_);
        if (isNew_ && !noted_)
            edits_.GroupInserted(group_);
        else if (changed)
            edits_.GroupChanged(group_);
        noted_ = true;
        edits_.PointInserted(group_, p);
    }

    Project& project_;
    CLibGps& book_;
    BookEdits& edits_;
    const int group_;
    const bool isNew_;
    GroupFiller& filler_;
    KnownFixes& known_;
    const LiveOptions& options_;
    const StoredTeller& tell_;
    const LogHeader* header_ = nullptr;
    bool noted_ = false;
    std::vector<int> waiting_;  // points that are not told of
};

/// Lines that are complete: the rest of the last one could be taken for something else.
std::string_view WholeLines(std::string_view text) {
    const std::size_t end = text.rfind('\n');
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
}

}  // namespace

LogReport FollowLog(const std::string& file, Project& project, int group, FillOptions fill, KnownFixes& known,
                    const EpochFilterOptions& filter, long& nextNumber, const LiveOptions& options,
                    const LineWatcher& watcher, const StoredTeller& tell) {
    LogReport report;
    report.file = file;
    fill.known = &known;
    fill.skipKnown = true;
    LiveLog log(file, options.idle);

    std::string head;
    Format format = Format::unknown;
    while (format == Format::unknown && head.size() < kDetectBytes && !log.HasEnded() && !IsAskedToEnd()) {
        const std::string_view piece = log.Next(std::chrono::seconds(1));
        head += piece;
        if (!piece.empty()) format = DetectFormat(WholeLines(head));
    }
    if (format == Format::unknown) format = DetectFormat(head);
    if (format == Format::unknown) return report;  // no position in it: said with the reasons

    GroupFiller filler(project.GetBook(), group, fill, EpochFilter(filter, format), nextNumber, report);
    filler.SetWatcher(watcher);
    Storer storer(project, group, filler, known, options, tell);
    const auto reader = MakeReader(format, storer);
    filler.SetHeader(&reader->Header());
    storer.SetHeader(&reader->Header());
    reader->Feed(head);
    bool behind = true;  // there may be more already
    while (!log.HasEnded() && !IsAskedToEnd()) {
        using Duration = LiveLog::Clock::duration;
        const auto due = project.GetEdits().TimeToDue();
        const std::string_view piece =
            log.Next(due ? std::chrono::duration_cast<Duration>(*due) : Duration::max());
        behind = !piece.empty();
        if (behind) reader->Feed(piece);
        storer.Settle();
    }
    // In the midst of a file the last epoch may lack what follows; who starts again meets it whole.
    if (!behind || !log.CanStartAgain()) reader->Finish();
    storer.SettleAll();
    report.header.format = reader->Header().format;
    return report;
}

}  // namespace gpsbook
