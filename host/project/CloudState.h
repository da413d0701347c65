// CloudState: what a book knows of the shared project that it belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/project/CloudMessages.h"

class ifpstream;
class ofpstream;

namespace gpsproject {

/// Where the shared project is.
struct CloudLink {
    std::string store;    // file of a store, or address of a server
    std::string project;  // its name there
    std::string key;      // the project's own: it is the same one as long as this is the same

    bool operator==(const CloudLink&) const = default;
};

/// Two wanted different things, or somebody deleted what was not finished here. It stays until a person
/// decides, or others go on: then what it tells is not what there is any more.
///
/// Where it is about no field the values of `clash` tell more: `theirs` of deletedHere what the other one had
/// done, "added", names of fields, or both; `mine` of kept is "unseen" when the other one had not seen all
/// that was sent from here, and "unseen, unsent" when something was not sent as well.
struct CloudConflict {
    enum class Kind : std::uint8_t {
        field,        // both set it; here stands `mine`
        deletedHere,  // deleted here, changed there; it is deleted
        kept          // deleted there, unconfirmed here; it is deleted, and `record` holds it whole
    };

    int number = 0;  // by which a person names it
    Kind kind = Kind::field;
    CloudClash clash;             // `device` and `author`: of the other one
    std::string group;            // of a point: name of its group
    std::int64_t groupId = 0;     // and its id; of one that was added again and has none yet: -ticket
    std::string record;           // kept: see KeptItem.h
    std::int32_t keptPoints = 0;  // kept: points in it

    bool operator==(const CloudConflict&) const = default;
};

/// A record that the server did not take.
struct CloudRefusal {
    CloudKind kind = CloudKind::point;
    std::int64_t id = 0;  // 0: of an item that is new
    std::string name;
    std::string reason;

    bool operator==(const CloudRefusal&) const = default;
};

struct CloudState {
    CloudLink link;
    std::int64_t revision = 0;          // all that others did until then is in the book
    std::int64_t known = 0;             // the newest one of which anything is in the book
    std::string head;                   // of that one, as the server told; empty: there is none yet
    std::vector<std::int64_t> own;      // later ones, which are commits of this book
    std::int64_t again = -1;            // what came since then is wanted once more; -1: it is not
    std::optional<CloudCommit> commit;  // sent, or to be sent, and not answered
    int lastConflict = 0;
    std::vector<CloudConflict> conflicts;
    std::vector<CloudRefusal> refusals;  // of the last commit

    bool operator==(const CloudState&) const = default;
};

// Records of section and journal; docs/formats/cloud-state.md shows them. What a damaged stream does not hold
// is left out.

void WriteCloudState(ofpstream& out, const CloudState& state);
void ReadCloudState(ifpstream& in, CloudState& state);

void WriteCommit(ofpstream& out, const CloudCommit& commit);
CloudCommit ReadCommit(ifpstream& in);

void WriteAnswer(ofpstream& out, const CommitAnswer& answer);
CommitAnswer ReadAnswer(ifpstream& in);

void WritePage(ofpstream& out, const PullPage& page);
PullPage ReadPage(ifpstream& in);

}  // namespace gpsproject
