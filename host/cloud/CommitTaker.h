// CommitTaker: the rules by which a commit becomes part of a project.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/cloud/CommitRecords.h"
#include "host/cloud/ProjectMap.h"
#include "host/cloud/SyncStore.h"
#include "host/cloud/Transport.h"

namespace gpssync {

/// Takes one commit, inside one transaction. The project is advanced when anything was taken.
class CommitTaker {
public:
    CommitTaker(SyncStore& store, StoredProject& project, std::int32_t device);

    CommitAnswer Take(const CloudCommit& commit);

private:
    using Clash = gpsproject::CloudClash;

    std::string Change(const CommitRecord& record);
    std::string Add(CommitRecord& record);
    std::string Remove(const CommitRecord& record);

    std::string ResolveParent(std::int64_t parent, std::int64_t& group);
    void TakeConversion(const CommitRecord& record, const StoredItem& item, bool added, Mark setBefore);
    void MapPartChanged(const std::optional<MapPlace>& place, std::uint32_t bit);
    void Replaced(const StoredItem& item, std::uint32_t bit, const std::string& before,
                  const std::string& after, Mark setBefore);
    void TellOfDeletion(const StoredItem& item);
    Clash NewClash(const StoredItem& item, Mark theirs);

    std::vector<Setter> SettersOf(const StoredItem& item);
    bool IsForeign(Mark mark) const;
    std::string WhoDeleted(const StoredItem& item);
    const std::string& AuthorOf(std::int64_t revision);

    SyncStore& store_;
    StoredProject& project_;
    ProjectMap map_;
    Mark now_;
    std::int64_t base_ = 0;          // what the commit was made on
    std::vector<std::int64_t> own_;  // later revisions that its book made, in order
    CommitAnswer answer_;
    StoredItem item_;
    std::vector<CloudKind> addedKinds_;                      // of the added records, as answer_.ids
    std::unordered_map<std::int64_t, std::string> parents_;  // groups asked for: why they take no points
    std::map<std::int64_t, std::string> authors_;            // of revisions
};

}  // namespace gpssync
