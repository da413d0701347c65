// PullReader: what is newer in a project, page by page.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>

#include "host/cloud/ProjectMap.h"
#include "host/cloud/SyncStore.h"
#include "host/cloud/Transport.h"

namespace gpssync {

/// Reads one page, inside one transaction. Groups in order of ids, points in order of ids, then deletions of
/// groups and of points. A book that deletes a group deletes its points: those that went with their group are
/// not named.
class PullReader {
public:
    /// Errors: TransportError (refused) for a `next` that no page has told.
    PullReader(SyncStore& store, const StoredProject& project, std::int32_t device,
               const PullRequest& request, std::size_t pageSize);

    PullPage Read();

private:
    // Where a page begins: behind an item, or behind a deletion.
    struct Place {
        int stage = 0;  // groups, points, deletions of groups, deletions of points
        Deletion after;
    };

    static std::optional<Place> ReadPlace(const std::string& next);
    std::string PlaceText() const;

    std::size_t ReadItems(CloudKind kind, std::size_t limit);
    std::size_t ReadDeletions(CloudKind kind, std::size_t limit);
    void AddReply(StoredItem& item);

    SyncStore& store_;
    const StoredProject& project_;
    std::size_t pageSize_;
    ProjectMap map_;
    PullWindow window_;
    Place place_;
    PullPage page_;
    std::set<std::int64_t> revisions_;  // of the replies
};

}  // namespace gpssync
