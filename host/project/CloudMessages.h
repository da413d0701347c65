// CloudMessages: what a book and a sync server tell each other.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/base/vexString.h"

namespace gpsproject {

/// Of an item; the numbers are those of the cloud tables.
enum class CloudKind : std::uint8_t { group = 3, point = 4 };

/// What a book sends at once.
struct CloudCommit {
    std::string id;                 // random, made by the book: 32 hexadecimal digits
    std::int64_t revision = 0;      // up to which the book has taken what others changed
    std::string head;               // of the revision `known`, as the book was told; empty: it knows none
    std::vector<std::int64_t> own;  // later revisions that are the book's own
    std::string records;            // "\r\n" between two
    std::int64_t known = 0;         // the newest revision of which anything is in the book

    bool operator==(const CloudCommit&) const = default;
};

struct RefusedRecord {
    std::int64_t number = 0;  // of the record in its commit, counted from 1
    std::string reason;       // for people: what is wrong, and what to do

    bool operator==(const RefusedRecord&) const = default;
};

/// Somebody else had changed what a commit changes, after the revision that the commit was made on. The
/// commit has won; the history of the project keeps the other value.
struct CloudClash {
    CloudKind kind = CloudKind::point;
    std::int64_t id = 0;
    std::string name;         // of the item
    std::uint32_t bit = 0;    // change bit of the fields; 0: the commit deletes the item
    std::string mine;         // fields as the commit has them, joined by ';'
    std::string theirs;       // fields as they were set by the other one
    std::int32_t device = 0;  // who had set them, and in which revision
    std::string author;
    std::int64_t revision = 0;

    bool operator==(const CloudClash&) const = default;
};

struct CommitAnswer {
    std::string commit;                  // its id
    std::int64_t revision = 0;           // of the project with this commit; 0: nothing of it was taken
    std::vector<std::int64_t> ids;       // of the added records, in their order; 0: refused
    std::vector<RefusedRecord> refused;  // in the order of records; the others are done
    std::vector<CloudClash> clashes;
    std::string head{};  // random, of this revision alone: what has it has all that was before; empty: none

    bool operator==(const CommitAnswer&) const = default;
};

/// The state of one item, or that it was deleted.
struct CloudReply {
    CloudKind kind = CloudKind::point;
    bool deleted = false;
    std::int32_t device = 0;          // who changed it last
    std::vector<vex::String> fields;  // 86, 29, or 2 of a deletion
    std::int64_t revision = 0;        // in which it was changed last
    bool unseen = false;  // it was deleted by somebody who had not seen what the asking device did to it

    bool operator==(const CloudReply&) const = default;
};

struct PullRequest {
    std::int64_t revision = 0;      // what is newer is wanted
    std::string head;               // as in a commit
    std::vector<std::int64_t> own;  // but not what was changed only by these later revisions: the book's own
    std::int64_t upTo = 0;          // as the page before told; 0: this is the first
    std::string next;               // as the page before told
    std::int64_t known = 0;         // as in a commit; also when `revision` is an older one once more
};

/// A part of what is newer: first groups, then points, then deletions.
struct PullPage {
    std::int64_t upTo = 0;  // the book has this revision when it has taken the last page
    std::string head;       // of the newest revision, as in an answer; empty: there is none yet
    bool last = true;
    std::string next;  // where the next page begins
    std::vector<CloudReply> replies;
    std::map<std::int64_t, std::string> authors;  // who made the revisions of `replies`
    std::int64_t newest = 0;  // revision of the project when the page was made: it may tell of all until then

    bool operator==(const PullPage&) const = default;
};

}  // namespace gpsproject
