// Random commits and pulls: every store does what a simple model of the rules does.
#include <algorithm>
#include <map>
#include <random>

#include "host/cloud/MemoryStore.h"
#include "host/cloud/SqliteStore.h"
#include "tests/Scale.h"
#include "tests/TempFolder.h"
#include "tests/host/cloud/SharedServer.h"

namespace {

using gpsproject::CloudClash;
using gpssync::CloudKind;
using gpssync::CommitAnswer;
using gpssync::Mark;

// Two fields of each kind: name and code text.
struct ModelItem {
    CloudKind kind = CloudKind::group;
    std::int64_t group = 0;
    std::string fields[2];
    Mark created, set[2], deleted;
};

class Model {
public:
    struct Record {
        enum class Act { add, change, remove } act = Act::add;
        CloudKind kind = CloudKind::group;
        std::int64_t id = 0;  // or parent
        unsigned mask = 0;    // 1: name, 2: code text
        std::string fields[2];

        std::string Text() const {
            const bool isGroup = kind == CloudKind::group;
            const std::string number = std::to_string(id);
            if (act == Act::remove) return (isGroup ? "DEL;3;" : "DEL;4;") + number;
            std::string text = fields[0] + ";" + fields[1];
            if (act == Act::change) {
                if (mask != 3) text = fields[mask - 1];
                return (isGroup ? "UBAS;" : "UPTGPS;") + number + ";" + std::to_string(mask) + ";" + text;
            }
            std::string rest;
            for (int i = 0; i < (isGroup ? 82 : 25); ++i) rest += ";0";
            return (isGroup ? "IBAS;" : "IPTGPS;" + number + ";") + text + rest;
        }
    };

    struct Outcome {
        std::vector<std::int64_t> ids, refused;
        std::vector<CloudClash> clashes;
        std::int64_t revision = 0;
    };

    Outcome Commit(std::int32_t device, std::int64_t base, const std::vector<std::int64_t>& own,
                   const std::vector<Record>& records) {
        Outcome outcome;
        now_ = {revision_ + 1, device};
        base_ = base;
        own_ = own;
        std::vector<CloudKind> added;
        for (std::size_t i = 0; i < records.size(); ++i) {
            const Record& record = records[i];
            bool taken = false;
            if (record.act == Record::Act::add) {
                taken = Add(record, outcome.ids, added);
                if (!taken) outcome.ids.push_back(0);
                added.push_back(record.kind);
            } else if (items_.contains(record.id) && items_[record.id].kind == record.kind) {
                taken =
                    record.act == Record::Act::remove ? Remove(record.id, outcome) : Change(record, outcome);
            }
            if (!taken) outcome.refused.push_back(static_cast<std::int64_t>(i) + 1);
        }
        if (outcome.refused.size() < records.size()) {
            outcome.revision = ++revision_;
            commits_[revision_] = {base, own};
        }
        return outcome;
    }

    // Kind, id, and the two fields; deletions as "-kind id", with '!' when it was not seen what the device
    // did, in any order.
    std::vector<std::string> Pull(int device, std::int64_t after,
                                  const std::vector<std::int64_t>& own) const {
        const auto isForeign = [&](const Mark& mark) {
            return mark.revision > after && std::find(own.begin(), own.end(), mark.revision) == own.end();
        };
        std::vector<std::string> texts;
        for (const auto& [id, item] : items_) {
            const std::string head = std::to_string(static_cast<int>(item.kind)) + " " + std::to_string(id);
            if (item.deleted == Mark()) {
                if (isForeign(item.created) || isForeign(item.set[0]) || isForeign(item.set[1]))
                    texts.push_back(head + " " + item.fields[0] + " " + item.fields[1]);
            } else if (isForeign(item.deleted)) {
                const bool withGroup =
                    item.kind == CloudKind::point && items_.at(item.group).deleted == item.deleted;
                if (!withGroup) texts.push_back("-" + head + (IsUnseen(device, id) ? "!" : ""));
            }
        }
        std::sort(texts.begin(), texts.end());
        return texts;
    }

    std::int64_t Revision() const { return revision_; }
    std::int64_t LastId() const { return lastId_; }
    const std::map<std::int64_t, ModelItem>& Items() const { return items_; }

private:
    bool Add(const Record& record, std::vector<std::int64_t>& ids, const std::vector<CloudKind>& added) {
        std::int64_t group = 0;
        if (record.kind == CloudKind::point) {
            group = record.id;
            if (group < 0) {
                const auto k = static_cast<std::size_t>(-group - 1);
                if (k >= ids.size() || added[k] != CloudKind::group) return false;
                group = ids[k];
            }
            const auto found = items_.find(group);
            if (found == items_.end() || found->second.kind != CloudKind::group ||
                found->second.deleted != Mark())
                return false;
        }
        ModelItem& item = items_[++lastId_];
        item = {record.kind, group, {record.fields[0], record.fields[1]}, now_, {now_, now_}, {}};
        ids.push_back(lastId_);
        return true;
    }

    bool Change(const Record& record, Outcome& outcome) {
        ModelItem& item = items_[record.id];
        if (item.deleted != Mark()) return false;
        for (unsigned i = 0; i < 2; ++i) {
            if (!(record.mask >> i & 1)) continue;
            if (item.fields[i] != record.fields[i] && IsForeign(item.set[i]))
                outcome.clashes.push_back({item.kind, record.id, Called(item), 1U << i, record.fields[i],
                                           item.fields[i], item.set[i].device, Name(item.set[i].device),
                                           item.set[i].revision});
            item.fields[i] = record.fields[i];
            item.set[i] = now_;
        }
        return true;
    }

    bool Remove(std::int64_t id, Outcome& outcome) {
        ModelItem& item = items_[id];
        if (item.deleted != Mark()) return true;
        Tell(id, outcome);
        item.deleted = now_;
        if (item.kind == CloudKind::point) return true;
        for (auto& [pointId, point] : items_) {
            if (point.group != id || point.deleted != Mark()) continue;
            Tell(pointId, outcome);
            point.deleted = now_;
        }
        return true;
    }

    bool IsUnseen(int device, std::int64_t id) const {
        const ModelItem& item = items_.at(id);
        const auto& [base, own] = commits_.at(item.deleted.revision);
        for (const Mark& mark : {item.created, item.set[0], item.set[1]})
            if (mark.device == device && mark.revision > base && mark.revision < item.deleted.revision &&
                std::find(own.begin(), own.end(), mark.revision) == own.end())
                return true;
        if (item.kind == CloudKind::point) return false;
        return std::any_of(items_.begin(), items_.end(), [&](const auto& point) {
            return point.second.group == id && point.second.deleted == item.deleted &&
                   IsUnseen(device, point.first);
        });
    }

    void Tell(std::int64_t id, Outcome& outcome) {
        const ModelItem& item = items_[id];
        std::string what;
        Mark last;
        if (IsForeign(item.created)) {
            what = "added";
            last = item.created;
        }
        const char* const names[] = {"name", "code-text"};
        for (int i = 0; i < 2; ++i) {
            if (item.set[i] == item.created || !IsForeign(item.set[i])) continue;
            what += (what.empty() ? "" : ", ") + std::string(names[i]);
            if (item.set[i].revision > last.revision) last = item.set[i];
        }
        if (!what.empty())
            outcome.clashes.push_back(
                {item.kind, id, Called(item), 0, "", what, last.device, Name(last.device), last.revision});
    }

    bool IsForeign(const Mark& mark) const {
        return mark.revision > base_ && mark.revision != now_.revision &&
               std::find(own_.begin(), own_.end(), mark.revision) == own_.end();
    }
    // A group by its group name, which stays as the records above have it.
    static std::string Called(const ModelItem& item) {
        return item.kind == CloudKind::group ? "0" : item.fields[0];
    }
    static std::string Name(int device) { return test::SharedServer::Who(device).author; }

    std::map<std::int64_t, ModelItem> items_;
    std::map<std::int64_t, std::pair<std::int64_t, std::vector<std::int64_t>>> commits_;  // base and own
    std::int64_t revision_ = 0, lastId_ = 0;
    Mark now_;
    std::int64_t base_ = 0;
    std::vector<std::int64_t> own_;
};

class Randomly {
public:
    explicit Randomly(unsigned seed) : engine_(seed) {}

    std::int64_t Below(std::int64_t n) {
        return std::uniform_int_distribution<std::int64_t>(0, n - 1)(engine_);
    }

    // Some of those behind one.
    std::vector<std::int64_t> RevisionsOf(const Model& model, std::int64_t after) {
        std::vector<std::int64_t> some;
        for (std::int64_t revision = after + 1; revision <= model.Revision(); ++revision)
            if (Below(3) == 0) some.push_back(revision);
        return some;
    }

    std::vector<Model::Record> Records(const Model& model) {
        std::vector<Model::Record> records(static_cast<std::size_t>(Below(7)));
        for (Model::Record& record : records) {
            using Act = Model::Record::Act;
            const std::int64_t what = Below(10);
            record.act = what < 4 ? Act::add : what < 8 ? Act::change : Act::remove;
            record.kind = Below(3) == 0 ? CloudKind::group : CloudKind::point;
            record.id = 1 + Below(model.LastId() + 2);
            // Mostly what is there; deletions of groups take much with them and are rarer.
            const auto found = model.Items().find(record.id);
            if (found != model.Items().end() && Below(8) > 0) record.kind = found->second.kind;
            if (record.act == Act::remove && record.kind == CloudKind::group && Below(3) > 0)
                record.act = Act::change;
            if (record.act == Act::add && Below(2) == 0) record.id = -1 - Below(4);
            record.mask = static_cast<unsigned>(1 + Below(3));
            for (std::string& field : record.fields)
                field = std::string(1, static_cast<char>('a' + Below(3)));
        }
        return records;
    }

private:
    std::mt19937 engine_;
};

std::vector<std::string> Short(const std::vector<gpsproject::CloudReply>& replies) {
    std::vector<std::string> texts;
    for (const auto& reply : replies) {
        std::string text = std::to_string(static_cast<int>(reply.kind)) + " ";
        if (reply.deleted)
            text = "-" + text + std::string(reply.fields[1].View()) + (reply.unseen ? "!" : "");
        else
            text += std::string(reply.fields[0].View()) + " " + std::string(reply.fields[2].View()) + " " +
                    std::string(reply.fields[3].View());
        texts.push_back(text);
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

std::vector<std::string> Texts(const std::vector<CloudClash>& clashes) {
    std::vector<std::string> texts;
    for (const CloudClash& clash : clashes)
        texts.push_back(std::to_string(static_cast<int>(clash.kind)) + " " + std::to_string(clash.id) + " " +
                        clash.name + " bit " + std::to_string(clash.bit) + ": " + clash.mine + " for " +
                        clash.theirs + " of " + clash.author + ", " + std::to_string(clash.device) + ", in " +
                        std::to_string(clash.revision));
    return texts;
}

void RunSchedule(unsigned seed, std::unique_ptr<gpssync::SyncStore> store) {
    Randomly random(seed);
    test::SharedServer server(std::move(store), static_cast<std::size_t>(1 + random.Below(5)));
    Model model;
    for (int step = 0; step < 25; ++step) {
        const int device = static_cast<int>(1 + random.Below(3));
        const std::int64_t base = random.Below(model.Revision() + 1);
        const auto records = random.Records(model);
        std::vector<std::string> texts;
        for (const auto& record : records) texts.push_back(record.Text());
        const auto own = random.RevisionsOf(model, base);
        const auto expected = model.Commit(device, base, own, records);
        const CommitAnswer answer = server.Send(device, base, texts, own);
        const std::string where =
            "seed " + std::to_string(seed) + ", step " + std::to_string(step) + ":\n" + test::Records(texts);
        ASSERT_EQ(answer.ids, expected.ids) << where;
        ASSERT_EQ(answer.revision, expected.revision) << where;
        std::vector<std::int64_t> refused;
        for (const auto& refusal : answer.refused) refused.push_back(refusal.number);
        ASSERT_EQ(refused, expected.refused) << where;
        ASSERT_EQ(Texts(answer.clashes), Texts(expected.clashes)) << where;

        const std::int64_t after = random.Below(model.Revision() + 1);
        const auto ownThen = random.RevisionsOf(model, after);
        const int asks = static_cast<int>(1 + random.Below(4));
        ASSERT_EQ(Short(server.Pull(asks, after, ownThen)), model.Pull(asks, after, ownThen))
            << where << "\nafter " << after << " by " << asks;
    }
}

TEST(ServerRandom, MemoryStoreDoesWhatTheModelDoes) {
    for (long seed = 0; seed < Scaled(4000); ++seed) {
        RunSchedule(static_cast<unsigned>(seed), std::make_unique<gpssync::MemoryStore>());
        if (::testing::Test::HasFatalFailure()) return;
    }
}

TEST(ServerRandom, SqliteStoreDoesWhatTheModelDoes) {
    const test::TempFolder folder;
    for (long seed = 0; seed < Scaled(200); ++seed) {
        const std::string path = folder / std::to_string(seed);
        RunSchedule(static_cast<unsigned>(seed), std::make_unique<gpssync::SqliteStore>(path));
        if (::testing::Test::HasFatalFailure()) return;
        std::filesystem::remove(path);
    }
}

}  // namespace
