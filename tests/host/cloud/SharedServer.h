// SharedServer: a server with one project, and what devices ask of it in tests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/cloud/SyncServer.h"
#include "tests/host/cloud/Records.h"

namespace test {

using gpssync::CloudKind;

class SharedServer {
public:
    explicit SharedServer(std::unique_ptr<gpssync::SyncStore> store,
                          std::size_t pageSize = gpssync::SyncServer::kPageSize)
        : server_(std::move(store), pageSize), key_(server_.OpenProject("site", true).key) {}

    gpssync::SyncServer& Get() { return server_; }
    const std::string& Key() const { return key_; }

    /// A commit of its own by device 1 (Anna), 2 (Bruno) or another one; `own`: as its book has them.
    gpssync::CommitAnswer Send(int device, std::int64_t base, const std::vector<std::string>& records,
                               std::vector<std::int64_t> own = {}) {
        gpssync::CloudCommit commit = test::Commit(NewId(), base, Records(records));
        commit.own = std::move(own);
        return server_.Commit(key_, Who(device), commit);
    }

    /// All pages of a pull.
    std::vector<gpsproject::CloudReply> Pull(int device, std::int64_t revision,
                                             std::vector<std::int64_t> own = {}) {
        std::vector<gpsproject::CloudReply> replies;
        gpssync::PullRequest request{revision, {}, std::move(own), 0, ""};
        for (;;) {
            gpssync::PullPage page = server_.Pull(key_, Who(device), request);
            replies.insert(replies.end(), page.replies.begin(), page.replies.end());
            if (page.last) return replies;
            request.upTo = page.upTo;
            request.next = page.next;
        }
    }

    /// The same, as texts.
    std::vector<std::string> PullTexts(int device, std::int64_t revision,
                                       std::vector<std::int64_t> own = {}) {
        std::vector<std::string> texts;
        for (const auto& reply : Pull(device, revision, std::move(own))) texts.push_back(Text(reply));
        return texts;
    }

    static gpssync::Sender Who(int device) {
        return {device, device == 1 ? "Anna" : device == 2 ? "Bruno" : "device " + std::to_string(device)};
    }

    std::string NewId() {
        std::string id = std::to_string(++commits_);
        return std::string(32 - id.size(), '0') + id;
    }

private:
    gpssync::SyncServer server_;
    std::string key_;
    long commits_ = 0;
};

}  // namespace test
