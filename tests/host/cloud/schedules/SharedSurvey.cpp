#include "tests/host/cloud/schedules/SharedSurvey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "host/cloud/Wire.h"

namespace test {

namespace {

using gpssync::TransportError;

std::vector<std::string> Lines(const std::string& records) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < records.size();) {
        std::size_t end = records.find("\r\n", at);
        if (end == std::string::npos) end = records.size();
        lines.push_back(records.substr(at, end - at));
        at = end + 2;
    }
    return lines;
}

template <class Visit>
void ForEachField(CloudKind kind, std::uint32_t mask, const std::vector<std::string>& fields,
                  std::size_t first, Visit visit) {
    const auto walk = [&](const auto& layout) {
        for (const FieldGroup& group : layout) {
            if ((mask & group.bit) == 0) continue;
            const auto count = static_cast<std::size_t>(group.count);
            visit(group.bit, Join(fields, first, count));
            first += count;
        }
    };
    if (kind == CloudKind::group)
        walk(GRP_FIELDS);
    else
        walk(PUN_FIELDS);
}

[[noreturn]] void Lost() { throw TransportError(TransportError::Kind::noAnswer, "the line is dead"); }

}  // namespace

SharedSurvey::SharedSurvey(std::size_t pageSize)
    : store_(new gpssync::MemoryStore), server_(std::unique_ptr<gpssync::SyncStore>(store_), pageSize) {}

CommitAnswer SharedSurvey::Commit(const Sender& sender, const CloudCommit& commit) {
    CommitAnswer answer = server_.Commit(key_, sender, commit);
    if (seen_.try_emplace(commit.id).second) {
        ++commits;
        Witness(commit, answer);
    } else {
        ++repeated;
    }
    return answer;
}

void SharedSurvey::Witness(const CloudCommit& commit, const CommitAnswer& answer) {
    // Of a conversion it is not told here: values of the map library are part of it.
    std::set<std::pair<std::int64_t, std::uint32_t>> expected, told;
    refused += static_cast<long>(answer.refused.size());
    clashes += static_cast<long>(answer.clashes.size());
    std::int64_t number = 0;
    auto id = answer.ids.begin();
    auto no = answer.refused.begin();
    for (const std::string& line : Lines(commit.records)) {
        ++number;
        const bool isRefused = no != answer.refused.end() && no->number == number;
        if (isRefused) ++no;
        const std::vector<std::string> fields = Split(line);
        const std::string& tag = fields[0];
        if (tag == "DEL") continue;
        const CloudKind kind = tag == "UBAS" || tag == "IBAS" ? CloudKind::group : CloudKind::point;
        const bool added = tag[0] == 'I';
        std::uint32_t mask = kind == CloudKind::group ? kGroupBits : kPointBits;
        std::size_t first = kind == CloudKind::group ? 1 : 2;
        std::int64_t item = 0;
        if (added) {
            ASSERT_NE(id, answer.ids.end());
            item = *id++;
            EXPECT_EQ(item == 0, isRefused);
        } else {
            item = WholeOf(fields[1]);
            mask = static_cast<std::uint32_t>(WholeOf(fields[2]));
            first = 3;
        }
        if (isRefused) continue;
        if (added) {
            const Tag its = TagOf(kind, {fields.begin() + static_cast<std::ptrdiff_t>(first), fields.end()});
            EXPECT_TRUE(tags_.emplace(item, its).second) << "id " << item << " was given before";
            EXPECT_TRUE(ids_.emplace(its, item).second) << "tag " << its << " was sent as a new item twice";
            kinds_[item] = kind;
        }
        ForEachField(kind, mask, fields, first, [&](std::uint32_t bit, const std::string& text) {
            taken_.emplace(item, bit, OwnText(kind, bit, text));
            seen_[commit.id].emplace(tags_.at(item), bit);
            const bool conversion = kind == CloudKind::group && bit == CHG_GRP_CONVCOORD;
            Setter& before = setters_[{item, bit}];
            const bool own = before.revision == answer.revision ||
                             std::count(commit.own.begin(), commit.own.end(), before.revision) > 0;
            if (!added && !conversion && !own && before.revision > commit.revision && before.text != text)
                expected.emplace(item, bit);
            before = {answer.revision, text};
        });
    }
    for (const auto& clash : answer.clashes)
        if (clash.bit != 0 && (clash.kind != CloudKind::group || clash.bit != CHG_GRP_CONVCOORD))
            told.emplace(clash.id, clash.bit);
    EXPECT_EQ(told, expected) << "clashes of the commit";
}

std::int64_t SharedSurvey::IdOf(Tag tag) const {
    const auto found = ids_.find(tag);
    return found == ids_.end() ? 0 : found->second;
}

std::map<Tag, SharedSurvey::Item> SharedSurvey::Everything() {
    std::map<Tag, Item> all;
    PullRequest request;
    for (;;) {
        const PullPage page = server_.Pull(key_, {999, "witness"}, request);
        for (const auto& reply : page.replies) {
            if (reply.deleted) continue;  // of what nobody has told it of
            std::vector<std::string> fields;
            for (const vex::String& field : reply.fields) fields.emplace_back(field.View());
            const std::int64_t id = WholeOf(fields[0]), second = WholeOf(fields[1]);
            fields.erase(fields.begin(), fields.begin() + 2);
            const Item item{reply.kind, id, reply.kind == CloudKind::point ? second : 0,
                            Join(fields, 0, fields.size())};
            const Tag tag = TagOf(reply.kind, fields);
            EXPECT_TRUE(all.emplace(tag, item).second) << "tag " << tag << " is there twice";
        }
        if (page.last) return all;
        request.upTo = page.upTo;
        request.next = page.next;
    }
}

std::vector<std::string> SharedSurvey::MissingValues() {
    std::vector<std::string> missing;
    std::int64_t last = 0;
    std::vector<std::string> values;
    std::set<std::pair<std::uint32_t, std::string>> former;
    for (const auto& [id, bit, value] : taken_) {
        const CloudKind kind = kinds_.at(id);
        if (id != last) {
            last = id;
            former.clear();
            for (const auto& entry : server_.History(key_, kind, id))
                former.emplace(entry.bit, OwnText(kind, entry.bit, entry.value));
            gpssync::StoredItem item;
            const gpssync::StoreTransaction reading(*store_, gpssync::SyncStore::Access::read);
            const auto project = store_->FindProjectByKey(key_);
            if (!store_->FindItem(project->number, kind, id, item)) {
                missing.push_back("item " + std::to_string(id));
                continue;
            }
            values = Split(gpssync::JoinedText(item.values, 0, item.values.size()));
            ForEachField(kind, kind == CloudKind::group ? kGroupBits : kPointBits, values, 0,
                         [&](std::uint32_t its, const std::string& text) {
                             former.emplace(its, OwnText(kind, its, text));
                         });
        }
        if (!former.contains({bit, value}))
            missing.push_back("item " + std::to_string(id) + ", bit " + std::to_string(bit) + ": '" + value +
                              "'");
    }
    return missing;
}

// --- lines -------------------------------------------------------------------------------------------------

Mishap BadLine::Draw() {
    Mishap mishap = std::exchange(next_, Mishap::none);
    if (oneIn_ > 0 && random_() % static_cast<unsigned>(oneIn_) == 0)
        mishap = static_cast<Mishap>(1 + random_() % (kMishaps - 1));
    if (mishap != Mishap::none) ++mishaps;
    return mishap;
}

gpssync::SharedProject BadLine::OpenProject(const std::string& name, bool make) {
    auto project = survey_.GetServer().OpenProject(name, make);
    survey_.SetKey(project.key);
    return project;
}

CommitAnswer BadLine::Commit(const std::string& key, const Sender& sender, const CloudCommit& commit) {
    EXPECT_EQ(key, survey_.GetKey());
    const Mishap mishap = Draw();
    if (mishap == Mishap::requestLost) Lost();
    if (mishap == Mishap::earlierRequest && !commits_.empty())
        survey_.Commit(sender, commits_[random_() % commits_.size()]);
    for (const CloudCommit& before : commits_)
        if (before.id == commit.id) {
            EXPECT_EQ(before, commit) << "a repeated commit is not as it was";
        }
    commits_.push_back(commit);
    const CommitAnswer answer = survey_.Commit(sender, commit);
    if (mishap == Mishap::doubled) {
        EXPECT_EQ(survey_.Commit(sender, commit), answer);
    }
    for (const auto& clash : answer.clashes)
        EXPECT_GT(clash.revision, known_) << "a clash with what the book knows";
    answers_.push_back(answer);
    if (mishap == Mishap::answerLost) Lost();
    if (mishap == Mishap::earlierAnswer) return answers_[random_() % answers_.size()];
    if (mishap == Mishap::answerCut) {
        const std::string wire = gpssync::EncodeAnswer(answer);
        EXPECT_EQ(gpssync::DecodeAnswer(wire), answer);
        EXPECT_FALSE(gpssync::DecodeAnswer(std::string_view(wire).substr(0, random_() % wire.size())));
        if (answer.ids.empty() || random_() % 2 == 0) Lost();
        CommitAnswer cut = answer;
        cut.ids.pop_back();
        return cut;
    }
    return answer;
}

PullPage BadLine::Pull(const std::string& key, const Sender& sender, const PullRequest& request) {
    const Mishap mishap = Draw();
    if (mishap == Mishap::requestLost) Lost();
    const PullPage page = survey_.GetServer().Pull(key, sender, request);
    if (mishap == Mishap::doubled) {
        EXPECT_EQ(survey_.GetServer().Pull(key, sender, request), page);
    }
    pages_.push_back(page);
    if (mishap == Mishap::answerLost) Lost();
    if (mishap == Mishap::earlierAnswer) return pages_[random_() % pages_.size()];
    if (mishap == Mishap::answerCut) {
        const std::string wire = gpssync::EncodePage(page);
        EXPECT_EQ(gpssync::DecodePage(wire), page);
        EXPECT_FALSE(gpssync::DecodePage(std::string_view(wire).substr(0, random_() % wire.size())));
        Lost();
    }
    return page;
}

}  // namespace test
