#include "host/cloud/SyncServer.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "host/base/Utf8.h"
#include "host/cloud/CommitTaker.h"
#include "host/cloud/PullReader.h"
#include "host/cloud/Sync.h"
#include "host/cloud/Wire.h"

namespace gpssync {

namespace {

using Kind = TransportError::Kind;

constexpr std::size_t kLongestName = 200;  // bytes

// Why a text is no name that can be shown in a line.
std::string NameProblem(std::string_view name) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    if (name.size() > kLongestName) return "is longer than 200 bytes";
    if (std::any_of(name.begin(), name.end(), isControl))
        return "has a line break or control character in it";
    if (!IsUtf8(name)) return "is not UTF-8";
    return {};
}

void RequireName(const char* what, const std::string& problem) {
    if (problem.empty()) return;
    throw TransportError(Kind::refused, std::string("the ") + what + " " + problem + "; choose another");
}

void CheckSender(const Sender& sender) {
    if (sender.device < 1)
        throw TransportError(Kind::refused, "device " + std::to_string(sender.device) +
                                                ": a device has a number of 1 or more");
    RequireName("author's name", NameProblem(sender.author));
}

// Eight bytes at a time by FNV-1a, 64 bits (G. Fowler, L. C. Noll, K.-P. Vo), and the length. It tells a
// repeated commit from one that has come under its id by mistake.
std::string DigestOf(const CloudCommit& commit) {
    std::uint64_t hash = 0xCBF29CE484222325;
    std::string_view rest = commit.records;
    while (!rest.empty()) {
        std::uint64_t word = 0;
        const std::size_t size = std::min(rest.size(), sizeof word);
        for (std::size_t i = 0; i < size; ++i)
            word |= std::uint64_t{static_cast<unsigned char>(rest[i])} << 8 * i;
        rest.remove_prefix(size);
        hash = (hash ^ word) * 0x100000001B3;
        hash ^= hash >> 32;  // the product moves nothing downwards
    }
    char digits[16];
    const auto written = std::to_chars(digits, digits + sizeof digits, hash, 16);
    return std::string(digits, written.ptr) + ";" + std::to_string(commit.records.size()) + ";" +
           std::to_string(commit.revision);
}

void CheckCommit(const CloudCommit& commit) {
    const auto isHex = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
    if (commit.id.size() != 32 || !std::all_of(commit.id.begin(), commit.id.end(), isHex))
        throw TransportError(Kind::refused, "the id of a commit is 32 hexadecimal digits in lower case");
}

[[noreturn]] void RefuseAsOlder(const std::string& where, const StoredProject& project,
                                const std::string& why) {
    throw TransportError(Kind::older,
                         where + "project " + project.name + " " + why +
                             ". Put back the newer store; or make a new book, sync it, and bring along what "
                             "this one has with import-book --as-new: what both have is there twice then");
}

// The newest revision that a commit or a pull tells that its book knows.
template <class Request>
std::int64_t NewestOf(const Request& request) {
    std::int64_t newest = std::max(request.revision, request.known);
    for (const std::int64_t own : request.own) newest = std::max(newest, own);
    return newest;
}

// A head is random and given once: where the newest revision that the book knows has the same, all before it
// is the same too. The id of a commit would not do: one that was sent again may stand behind others there.
template <class Request>
void CheckKnown(SyncStore& store, const std::string& where, const StoredProject& project,
                const Request& request) {
    if (request.revision < 0) throw TransportError(Kind::refused, "a revision is 0 or more");
    const std::int64_t newest = NewestOf(request);
    if (newest > project.revision)
        RefuseAsOlder(where, project,
                      "is at revision " + std::to_string(project.revision) +
                          ", but the book knows revision " + std::to_string(newest) +
                          ": the store was put back to an earlier state");
    if (request.head.empty() || store.HeadOf(project.number, newest) == request.head) return;
    RefuseAsOlder(where, project,
                  "has another revision " + std::to_string(newest) +
                      " than the one that the book knows: the store was put back to an earlier "
                      "state, and has gone on since");
}

}  // namespace

std::string ProjectNameProblem(const std::string& name) {
    const std::string problem = name.empty() ? "is empty" : NameProblem(name);
    return problem.empty() ? problem : "the name " + problem;
}

SyncServer::SyncServer(std::unique_ptr<SyncStore> store, std::size_t pageSize)
    : store_(std::move(store)), pageSize_(pageSize) {}

SharedProject SyncServer::OpenProject(const std::string& name, bool make) {
    RequireName("project's name", name.empty() ? "is empty" : NameProblem(name));
    const std::scoped_lock lock(mutex_);
    SharedProject shared;
    const auto fill = [&](const StoredProject& project) {
        shared = {project.key, project.name, project.revision, shared.made};
    };
    try {
        StoreTransaction transaction(*store_, SyncStore::Access::read);
        if (const auto project = store_->FindProjectByName(name)) fill(*project);
        transaction.Commit();
    } catch (const TransportError& error) {
        if (!make || error.GetKind() != Kind::notFound) throw;
    }
    if (!shared.key.empty()) return shared;
    if (!make)
        throw TransportError(Kind::notFound,
                             Where() + "there is no project " + name +
                                 " in this store; look at its name, as those who share it have it, and at "
                                 "that of the store");
    StoreTransaction transaction(*store_, SyncStore::Access::make);
    auto project = store_->FindProjectByName(name);  // another program may have made it meanwhile
    if (!project) {
        shared.made = true;
        project = store_->AddProject(RandomHex(), name);
    }
    fill(*project);
    transaction.Commit();
    return shared;
}

CommitAnswer SyncServer::Commit(const std::string& projectKey, const Sender& sender,
                                const CloudCommit& commit) {
    CheckSender(sender);
    CheckCommit(commit);
    const std::string digest = DigestOf(commit);
    const std::scoped_lock lock(mutex_);
    StoreTransaction transaction(*store_, SyncStore::Access::write);
    StoredProject project = Find(projectKey);
    if (const auto before = store_->FindCommit(project.number, commit.id)) {
        if (before->digest != digest)
            throw TransportError(Kind::refused, "commit " + commit.id +
                                                    " was answered before, with other records; send these "
                                                    "under an id of their own");
        auto answer = DecodeAnswer(before->answer);
        if (!answer)
            throw TransportError(Kind::damaged, "the answer to commit " + commit.id +
                                                    " that is kept cannot be read; check the store");
        return std::move(*answer);
    }
    CheckKnown(*store_, Where(), project, commit);
    CommitAnswer answer = CommitTaker(*store_, project, sender.device).Take(commit);
    if (answer.revision > 0) answer.head = RandomHex();
    store_->AddCommit(project.number,
                      {commit.id, sender.device, answer.revision, project.lastId, digest,
                       EncodeAnswer(answer), answer.head, sender.author, commit.revision, commit.own});
    transaction.Commit();
    return answer;
}

PullPage SyncServer::Pull(const std::string& projectKey, const Sender& sender, const PullRequest& request) {
    CheckSender(sender);
    const std::scoped_lock lock(mutex_);
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    const StoredProject project = Find(projectKey);
    CheckKnown(*store_, Where(), project, request);
    CheckKnown(*store_, Where(), project, PullRequest{request.upTo, {}, {}, 0, {}});
    PullPage page = PullReader(*store_, project, sender.device, request, pageSize_).Read();
    transaction.Commit();
    return page;
}

std::vector<HistoryEntry> SyncServer::History(const std::string& projectKey, CloudKind kind,
                                              std::int64_t id) {
    const std::scoped_lock lock(mutex_);
    StoreTransaction transaction(*store_, SyncStore::Access::read);
    std::vector<HistoryEntry> entries = store_->HistoryOf(Find(projectKey).number, kind, id);
    transaction.Commit();
    return entries;
}

StoredProject SyncServer::Find(const std::string& projectKey) {
    const auto project = store_->FindProjectByKey(projectKey);
    if (!project)
        throw TransportError(Kind::notFound,
                             Where() + "the project of the book (key " + projectKey +
                                 ") is not in this store; put back the store that has it, or give the place "
                                 "to which it was moved");
    return *project;
}

std::string SyncServer::Where() const {
    const std::string name = store_->GetName();
    return name.empty() ? name : name + ": ";
}

}  // namespace gpssync
