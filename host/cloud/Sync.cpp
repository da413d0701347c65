#include "host/cloud/Sync.h"

#include <algorithm>
#include <random>
#include <set>
#include <string_view>

#include "host/project/HeldBack.h"

namespace gpssync {

namespace {

using gpsproject::BookCloud;
using gpsproject::Project;

std::size_t RefusedDeletions(std::string_view records, const CommitAnswer& answer) {
    if (answer.refused.empty()) return 0;
    std::set<std::int64_t> refused;
    for (const auto& record : answer.refused) refused.insert(record.number);
    std::size_t count = 0;
    for (std::int64_t number = 1; !records.empty(); ++number) {
        if (records.starts_with("DEL;") && refused.contains(number)) ++count;
        const auto end = records.find("\r\n");
        records = end == std::string_view::npos ? std::string_view{} : records.substr(end + 2);
    }
    return count;
}

/// Sends the commit under way, and takes its answer.
void Send(Project& project, Transport& transport, const Sender& sender, SyncReport& report,
          const std::function<void(const char*)>& step) {
    BookCloud& cloud = project.GetCloud();
    const CloudCommit& commit = *cloud.GetCommit();
    // Also one of an earlier sync: it may have ended because the disk did not take the commit.
    step("store the commit");
    project.GetEdits().Commit();
    step("send");
    const CommitAnswer answer = transport.Commit(cloud.GetState().link.key, sender, commit);
    step("take the answer");
    const auto& tables = cloud.GetTables();
    const auto changed = tables.base.GetSentChanged() + tables.points.GetSentChanged();
    const auto deleted = tables.base.GetSentDeleted() + tables.points.GetSentDeleted();
    const std::size_t notDeleted = RefusedDeletions(commit.records, answer);
    if (!cloud.TakeAnswer(answer, sender.device))
        throw TransportError(TransportError::Kind::noAnswer,
                             cloud.GetState().link.store +
                                 ": the answer is not whole, or is one to another commit; sync again");
    const auto added = std::count_if(answer.ids.begin(), answer.ids.end(), [](auto id) { return id > 0; });
    const auto notAdded = answer.ids.size() - static_cast<std::size_t>(added);
    const auto notChanged = answer.refused.size() - std::min(answer.refused.size(), notAdded + notDeleted);
    report.added += static_cast<int>(added);
    report.deleted += static_cast<int>(deleted - std::min(deleted, notDeleted));
    report.changed += static_cast<int>(changed - std::min(changed, notChanged));
    report.refused = static_cast<int>(answer.refused.size());
    step("store the answer");
    project.GetEdits().Commit();
}

/// A pull fixes its revision with its first page, and no server knows less than it has answered before. A
/// page that was made earlier could bring back what has been deleted since.
bool Answers(const PullPage& page, const PullRequest& request, const gpsproject::CloudState& state) {
    if (!page.last && page.next.empty()) return false;
    if (!request.next.empty()) return page.upTo == request.upTo;
    const std::int64_t known = state.own.empty() ? 0 : state.own.back();
    return page.upTo >= std::max(state.revision, known);
}

/// True when positions were computed, which others have to get.
bool Pull(Project& project, Transport& transport, const Sender& sender, SyncReport& report,
          const std::function<void(const char*)>& step) {
    bool computed = false;
    BookCloud& cloud = project.GetCloud();
    PullRequest request = cloud.GetPullRequest();
    for (;;) {
        step("pull");
        const PullPage page = transport.Pull(cloud.GetState().link.key, sender, request);
        if (!Answers(page, request, cloud.GetState()))
            throw TransportError(
                TransportError::Kind::noAnswer,
                cloud.GetState().link.store + ": the answer is one to an earlier request; sync again");
        step("take a page");
        const BookCloud::Taken taken = cloud.TakePage(page);
        report.taken.groups += taken.groups;
        report.taken.points += taken.points;
        report.taken.deleted += taken.deleted;
        report.taken.items.insert(report.taken.items.end(), taken.items.begin(), taken.items.end());
        computed = computed || !taken.computed.empty();
        if (page.last) break;
        const PullRequest now = cloud.GetPullRequest();
        request.known = now.known;
        request.head = now.head;
        request.upTo = page.upTo;
        request.next = page.next;
        project.GetEdits().CommitIfDue();
    }
    step("store what was pulled");
    project.GetEdits().Commit();
    return computed;
}

}  // namespace

SyncReport Sync(Project& project, Transport& transport, const Sender& sender,
                const std::function<void(const char*)>& progress) {
    const auto step = [&progress](const char* what) {
        if (progress) progress(what);
    };
    // What is sent has to be on the disk before.
    if (project.IsReadOnly() || project.GetPath().empty())
        throw gpsproject::ProjectError(
            gpsproject::ProjectError::Kind::readOnly,
            project.GetPath() +
                ": is not open for writing; a book is synced only when its file can be written");
    BookCloud& cloud = project.GetCloud();
    SyncReport report;
    const int lastConflict = cloud.GetState().lastConflict;
    if (cloud.GetCommit()) {
        // Its text is the one that was sent before, whatever was edited since: that follows with the next.
        report.repeated = true;
        Send(project, transport, sender, report, step);
    }
    step("begin a commit");
    if (cloud.HasToSend() && cloud.BeginCommit(RandomHex())) Send(project, transport, sender, report, step);
    // Once more, and not again: what is computed brings nothing to compute. What was refused is told first.
    if (Pull(project, transport, sender, report, step) && report.refused == 0 &&
        cloud.BeginCommit(RandomHex()))
        Send(project, transport, sender, report, step);
    const auto& conflicts = cloud.GetState().conflicts;
    report.conflicts = static_cast<int>(std::count_if(
        conflicts.begin(), conflicts.end(), [&](const auto& one) { return one.number > lastConflict; }));
    report.held = static_cast<int>(gpsproject::FindHeld(project.GetBook(), cloud.GetTables()).size());
    report.revision = cloud.GetState().revision;
    return report;
}

SharedProject LinkBook(Project& project, Transport& transport, const std::string& store,
                       const std::string& name, bool make) {
    BookCloud& cloud = project.GetCloud();
    const SharedProject shared = transport.OpenProject(name, make && !cloud.IsLinked());
    const gpsproject::CloudLink link{store, shared.name, shared.key};
    if (!cloud.IsLinked()) {
        cloud.Link(link);
    } else if (cloud.GetState().link.key != shared.key) {
        const auto& now = cloud.GetState().link;
        throw TransportError(TransportError::Kind::refused,
                             project.GetPath() + ": belongs to the project '" + now.project + "' of " +
                                 now.store + ", and '" + name + "' of " + store +
                                 " is another one; make a new book for it, and use import-book");
    } else if (!(cloud.GetState().link == link)) {
        // Ends here when the project knows less than the book, or has gone on otherwise; what it answers is
        // asked again by the sync.
        PullRequest request = cloud.GetPullRequest();
        request.revision = request.known;
        request.own.clear();
        transport.Pull(shared.key, {1, {}}, request);
        cloud.SetLink(link);
    }
    return shared;
}

std::string RandomHex() {
    std::random_device device;
    std::string hex;
    for (int i = 0; i < 4; ++i) {
        const std::uint32_t bits = device();
        for (int shift = 28; shift >= 0; shift -= 4) hex += "0123456789abcdef"[bits >> shift & 0xF];
    }
    return hex;
}

}  // namespace gpssync
