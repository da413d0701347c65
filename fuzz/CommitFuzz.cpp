// The text of a commit, as a server gets it: whatever it is, every record of it is taken or refused with a
// reason.
#include <memory>
#include <string>

#include "fuzz/Fuzz.h"
#include "host/cloud/CommitRecords.h"
#include "host/cloud/MemoryStore.h"
#include "host/cloud/SyncServer.h"
#include "host/cloud/Wire.h"
#include "tests/host/cloud/Records.h"

namespace {

using gpssync::CommitAnswer;
using gpssync::CommitRecord;
using gpssync::PullRequest;
using gpssync::SyncServer;

// Records and added ones among them, counted as the reader gives them.
void RequireRecordsAgree(const std::string& text, const CommitAnswer& answer) {
    gpssync::CommitReader reader(text);
    CommitRecord record;
    std::size_t added = 0, refused = 0;
    std::int64_t number = 0;
    while (reader.Next(record)) {
        ++number;
        const bool isRefused = refused < answer.refused.size() && answer.refused[refused].number == number;
        fuzz::Require(record.wrong.empty() || isRefused, "a wrong record is refused");
        if (record.act == CommitRecord::Act::add) {
            fuzz::Require(added < answer.ids.size() && (answer.ids[added] == 0) == isRefused,
                          "an added record has an id or is refused");
            ++added;
        }
        if (!isRefused) continue;
        fuzz::Require(!answer.refused[refused].reason.empty(), "a refusal has a reason");
        ++refused;
    }
    fuzz::Require(added == answer.ids.size() && refused == answer.refused.size(),
                  "an answer names nothing that was not sent");
    const auto done = number - static_cast<std::int64_t>(refused);
    fuzz::Require((answer.revision == 0) == (done == 0), "what is taken has a revision");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    SyncServer server(std::make_unique<gpssync::MemoryStore>(), 3);
    const std::string key = server.OpenProject("site", true).key;
    // Two groups with a point each: 1 and 2, 3 and 4.
    server.Commit(
        key, {1, "Anna"},
        test::Commit(std::string(32, '1'), 0,
                     test::Records({test::Group(), test::Point(-1), test::Group("B2"), test::Point(-3)})));
    server.Commit(key, {1, "Anna"}, test::Commit(std::string(32, '2'), 1, "UPTGPS;2;1;P9\r\nUBAS;3;16;S9"));

    const gpssync::CloudCommit commit = test::Commit(std::string(32, '3'), 1, text);
    const CommitAnswer answer = server.Commit(key, {2, "Bruno"}, commit);
    RequireRecordsAgree(text, answer);
    fuzz::Require(gpssync::DecodeAnswer(gpssync::EncodeAnswer(answer)) == answer,
                  "an answer is read as it was");
    fuzz::Require(server.Commit(key, {2, "Bruno"}, commit) == answer, "a commit is answered the same again");

    PullRequest request;
    for (;;) {
        const auto page = server.Pull(key, {3, "Carla"}, request);
        for (const auto& reply : page.replies) {
            const std::size_t fields = reply.deleted ? 2 : reply.kind == gpssync::CloudKind::group ? 86 : 29;
            fuzz::Require(reply.fields.size() == fields, "a reply has all fields");
        }
        fuzz::Require(gpssync::DecodePage(gpssync::EncodePage(page)) == page, "a page is read as it was");
        if (page.last) break;
        request.upTo = page.upTo;
        request.next = page.next;
    }
    return 0;
}
