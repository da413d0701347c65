// SharedBook: a book on a disk in memory that belongs to a shared project, and what a server tells it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/project/Project.h"
#include "tests/host/project/JournalDisk.h"

namespace test {

using gpsproject::BookCloud;
using gpsproject::CloudCommit;
using gpsproject::CloudConflict;
using gpsproject::CloudKind;
using gpsproject::CloudReply;
using gpsproject::CommitAnswer;
using gpsproject::PullPage;

inline const gpsproject::CloudLink kLink{"/s/store", "site", "0123456789abcdef0123456789abcdef"};
inline const std::string kCommit1 = "11111111111111111111111111111111";
inline const std::string kCommit2 = "22222222222222222222222222222222";

/// Groups "A" with points "A1" and "A2", and "B" with "B1".
void FillSmall(Project& project);

/// A disk with such a book: linked and saved, everything new.
struct SharedDisk : JournalDisk {
    explicit SharedDisk(short version = Project::kNewestVersion);
};

// --- edits, noted ------------------------------------------------------------------------------------------

void AddGroup(Project& project, const char* name);
void AddPoint(Project& project, int g, const char* name);
void RenamePoint(Project& project, int g, int p, const char* name);
void DeletePoint(Project& project, int g, int p);
void DeleteGroup(Project& project, int g);

// --- what a server tells -----------------------------------------------------------------------------------

/// Takes everything of the commit under way; new items get ids from `firstId` on. Heads are ids of commits.
CommitAnswer AcceptAll(Project& project, std::int64_t revision, std::int64_t firstId);

/// Everything new is accepted as revision 1: the groups get ids 1 and 2, the points 3, 4 and 5.
void Settle(Project& project);

/// As device 2 has set it; `name` is that of the entity, or of the group as well.
CloudReply GroupReply(std::int64_t id, const std::string& name);
CloudReply PointReply(std::int64_t id, std::int64_t group, const std::string& name);
CloudReply DeletionOf(CloudKind kind, std::int64_t id);

/// The only page of a pull; `head` is the commit that became the revision. Replies without a revision are of
/// this one.
PullPage PageOf(std::int64_t upTo, std::vector<CloudReply> replies, const std::string& head = {});

// --- what there is -----------------------------------------------------------------------------------------

/// State and tables, as the file keeps them.
std::string CloudBytesOf(Project& project);

/// Book, state, and what the tables hold.
std::string EverythingOf(Project& project);

/// The same without what no two sessions need to agree about: tickets of items that have their ids.
std::string OutlineOf(Project& project);

/// "A(A1 A2) B(B1)"
std::string NamesIn(Project& project);

long long IdOfGroup(Project& project, int g);
long long IdOfPoint(Project& project, int g, int p);

}  // namespace test
