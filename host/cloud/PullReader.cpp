#include "host/cloud/PullReader.h"

#include <charconv>
#include <utility>

namespace gpssync {

namespace {

constexpr int kStages = 4;

}  // namespace

PullReader::PullReader(SyncStore& store, const StoredProject& project, std::int32_t device,
                       const PullRequest& request, std::size_t pageSize)
    : store_(store), project_(project), pageSize_(pageSize), map_(store, project.number) {
    window_ = {request.revision, request.own, request.next.empty() ? project.revision : request.upTo, device};
    if (request.next.empty()) return;
    const auto place = ReadPlace(request.next);
    if (!place)
        throw TransportError(TransportError::Kind::refused,
                             "the pull goes on where no page has ended; begin it anew");
    place_ = *place;
}

PullPage PullReader::Read() {
    page_.upTo = window_.upTo;
    page_.newest = project_.revision;
    page_.head = store_.HeadOf(project_.number, page_.newest);
    while (page_.replies.size() < pageSize_ && place_.stage < kStages) {
        const std::size_t limit = pageSize_ - page_.replies.size();
        const CloudKind kind = place_.stage % 2 == 0 ? CloudKind::group : CloudKind::point;
        const std::size_t read = place_.stage < 2 ? ReadItems(kind, limit) : ReadDeletions(kind, limit);
        if (read < limit) place_ = {place_.stage + 1, {}};
    }
    page_.last = place_.stage == kStages;
    if (!page_.last) page_.next = PlaceText();
    for (const std::int64_t revision : revisions_)
        page_.authors.emplace(revision, store_.AuthorOf(project_.number, revision));
    return std::move(page_);
}

std::size_t PullReader::ReadItems(CloudKind kind, std::size_t limit) {
    return store_.Newer(project_.number, kind, window_, place_.after.id, limit, [this](StoredItem& item) {
        AddReply(item);
        place_.after.id = item.id;
    });
}

void PullReader::AddReply(StoredItem& item) {
    if (item.kind == CloudKind::group) map_.Fill(item.values);
    page_.replies.emplace_back();
    auto& reply = page_.replies.back();
    reply.kind = item.kind;
    reply.device = item.changed.device;
    reply.revision = item.changed.revision;
    reply.fields.reserve(item.values.size() + 2);
    reply.fields.emplace_back(std::to_string(item.id));
    reply.fields.emplace_back(
        std::to_string(item.kind == CloudKind::group ? item.created.device : item.group));
    NumberText room;
    for (const Value& value : item.values) reply.fields.emplace_back(TextOf(value, room));
    revisions_.insert(reply.revision);
}

std::size_t PullReader::ReadDeletions(CloudKind kind, std::size_t limit) {
    const auto deletions = store_.NewerDeletions(project_.number, kind, window_, place_.after, limit);
    for (const Deletion& deletion : deletions) {
        page_.replies.push_back({kind,
                                 true,
                                 deletion.deleted.device,
                                 {vex::String("DEL"), vex::String(std::to_string(deletion.id))},
                                 deletion.deleted.revision,
                                 deletion.unseen});
        revisions_.insert(deletion.deleted.revision);
    }
    if (!deletions.empty()) place_.after = deletions.back();
    return deletions.size();
}

// --- places ------------------------------------------------------------------------------------------------

std::string PullReader::PlaceText() const {
    return std::to_string(place_.stage) + ":" + std::to_string(place_.after.deleted.revision) + ":" +
           std::to_string(place_.after.id);
}

std::optional<PullReader::Place> PullReader::ReadPlace(const std::string& next) {
    std::int64_t numbers[3] = {};
    const char* at = next.data();
    const char* const end = at + next.size();
    for (int i = 0; i < 3; ++i) {
        if (i > 0 && (at == end || *at++ != ':')) return std::nullopt;
        const auto [behind, error] = std::from_chars(at, end, numbers[i]);
        if (error != std::errc() || numbers[i] < 0) return std::nullopt;
        at = behind;
    }
    if (at != end || numbers[0] >= kStages) return std::nullopt;
    return Place{static_cast<int>(numbers[0]), {numbers[2], {numbers[1], 0}}};
}

}  // namespace gpssync
