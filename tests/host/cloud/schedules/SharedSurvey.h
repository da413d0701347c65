// SharedSurvey: a shared project in memory with a witness of what it took, and bad lines to it.
#pragma once

#include <map>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "host/cloud/MemoryStore.h"
#include "host/cloud/SyncServer.h"
#include "tests/host/cloud/schedules/ItemTexts.h"

namespace test {

using gpssync::CloudCommit;
using gpssync::CommitAnswer;
using gpssync::PullPage;
using gpssync::PullRequest;
using gpssync::Sender;

/// What the server has said that it took, kept beside it.
class SharedSurvey {
public:
    explicit SharedSurvey(std::size_t pageSize);

    gpssync::SyncServer& GetServer() { return server_; }
    const std::string& GetKey() const { return key_; }
    void SetKey(const std::string& key) { key_ = key; }

    /// To the server; a commit that comes for the first time is witnessed.
    CommitAnswer Commit(const Sender& sender, const CloudCommit& commit);

    /// Whether the server said that it took this value of a field.
    bool WasTaken(std::int64_t id, std::uint32_t bit, const std::string& value) const {
        return taken_.contains({id, bit, value});
    }

    /// Items and change bits that a commit has set; null: it never came.
    using Fields = std::set<std::pair<Tag, std::uint32_t>>;
    const Fields* TakenBy(const std::string& commit) const {
        const auto found = seen_.find(commit);
        return found == seen_.end() ? nullptr : &found->second;
    }

    /// Ids that were given, and to what.
    const std::map<std::int64_t, Tag>& GetTags() const { return tags_; }
    std::int64_t IdOf(Tag tag) const;

    struct Item {
        CloudKind kind;
        std::int64_t id;
        std::int64_t group;  // of a point
        std::string text;    // all fields
    };
    /// All that is there, by tag, as a device that comes new is told.
    std::map<Tag, Item> Everything();

    /// Says what is wrong with what the server keeps: each value that it took stands in it, or in its
    /// history.
    std::vector<std::string> MissingValues();

    long commits = 0, repeated = 0, refused = 0, clashes = 0;

private:
    void Witness(const CloudCommit& commit, const CommitAnswer& answer);

    gpssync::MemoryStore* store_;  // the server's
    gpssync::SyncServer server_;
    std::string key_;
    std::map<std::string, Fields> seen_;  // by commit
    std::map<std::int64_t, Tag> tags_;
    std::map<Tag, std::int64_t> ids_;
    std::map<std::int64_t, CloudKind> kinds_;
    std::set<std::tuple<std::int64_t, std::uint32_t, std::string>> taken_;

    struct Setter {
        std::int64_t revision = 0;
        std::string text;
    };
    std::map<std::pair<std::int64_t, std::uint32_t>, Setter> setters_;  // the last one of each field
};

/// What happens to a message on its way.
enum class Mishap { none, requestLost, answerLost, doubled, earlierAnswer, earlierRequest, answerCut };
inline constexpr int kMishaps = 7;

/// A device's way to the server. What is to happen to the next messages is said before.
class BadLine : public gpssync::Transport {
public:
    BadLine(SharedSurvey& survey, std::mt19937& random) : survey_(survey), random_(random) {}

    /// One in so many messages has a mishap; 0: none has.
    void SetOneIn(int n) { oneIn_ = n; }

    /// What the book knows: nobody has to be told of a clash with that.
    void SetKnown(std::int64_t revision) { known_ = revision; }

    const CommitAnswer& GetLastAnswer() const { return answers_.back(); }

    /// The next message alone.
    void SetNext(Mishap mishap) { next_ = mishap; }

    gpssync::SharedProject OpenProject(const std::string& name, bool make) override;
    CommitAnswer Commit(const std::string& key, const Sender& sender, const CloudCommit& commit) override;
    PullPage Pull(const std::string& key, const Sender& sender, const PullRequest& request) override;

    /// The program ends, and with it the line: what was asked of it before is not answered any more.
    void HangUp() {
        answers_.clear();
        pages_.clear();
    }

    long mishaps = 0;

private:
    Mishap Draw();

    SharedSurvey& survey_;
    std::mt19937& random_;
    int oneIn_ = 0;
    std::int64_t known_ = 0;
    Mishap next_ = Mishap::none;
    std::vector<CloudCommit> commits_;  // that were sent before
    std::vector<CommitAnswer> answers_;
    std::vector<PullPage> pages_;
};

}  // namespace test
