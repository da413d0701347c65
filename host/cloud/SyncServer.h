// SyncServer: the rules of shared projects, over any store.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>

#include "host/cloud/SyncStore.h"
#include "host/cloud/Transport.h"

namespace gpssync {

/// Why a text cannot be the name of a project; empty: it can.
std::string ProjectNameProblem(const std::string& name);

/// May be used by several threads. Nothing is kept between two calls but in the store.
class SyncServer : public Transport {
public:
    static constexpr std::size_t kPageSize = 10'000;  // replies of one page of a pull

    explicit SyncServer(std::unique_ptr<SyncStore> store, std::size_t pageSize = kPageSize);

    SharedProject OpenProject(const std::string& name, bool make) override;
    CommitAnswer Commit(const std::string& projectKey, const Sender& sender,
                        const CloudCommit& commit) override;

    /// Pages of one pull are not one transaction: what changes between two is given as it is then, what is
    /// added or deleted waits for the next pull.
    PullPage Pull(const std::string& projectKey, const Sender& sender, const PullRequest& request) override;

    /// Values of an item that were replaced, oldest first.
    std::vector<HistoryEntry> History(const std::string& projectKey, CloudKind kind, std::int64_t id);

private:
    StoredProject Find(const std::string& projectKey);
    std::string Where() const;

    std::mutex mutex_;
    std::unique_ptr<SyncStore> store_;
    std::size_t pageSize_;
};

}  // namespace gpssync
