// Sync: brings a book and its shared project together.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "host/cloud/Transport.h"
#include "host/project/Project.h"

namespace gpssync {

/// What one sync did.
struct SyncReport {
    bool repeated = false;  // a commit of an earlier sync was answered now
    int changed = 0;        // records sent and taken by the server
    int added = 0;
    int deleted = 0;
    int refused = 0;                     // records that the server did not take (CloudState::refusals)
    int held = 0;                        // items that no record can carry (FindHeld)
    gpsproject::BookCloud::Taken taken;  // of what others did
    int conflicts = 0;                   // new ones, of both ways, that are not settled
    std::int64_t revision = 0;           // of the project that the book has now
};

/// Sends what waits in the book and takes what others changed. Positions that are computed then
/// (BookCloud::TakePage) are sent at once, too, unless records of the commit before were refused. The book is
/// linked (BookCloud::Link), and the transport leads to its project. What was sent or taken is on the disk at
/// the end, in the journal; when an error ends it in between, the book stands at the last step that was
/// finished, and the next sync goes on.
///
/// `progress`, which may be empty, is called between two steps with what comes next; it may throw.
///
/// Errors: TransportError; ProjectError; std::bad_alloc.
SyncReport Sync(gpsproject::Project& project, Transport& transport, const Sender& sender,
                const std::function<void(const char* what)>& progress = {});

/// A project's own link to a project of a server, made there when there is none and `make` says so.
/// Errors: TransportError; `refused` when the book belongs to another one, `older` when a new place of its
/// own one knows less than the book. The link stays then as it was.
SharedProject LinkBook(gpsproject::Project& project, Transport& transport, const std::string& store,
                       const std::string& name, bool make);

/// 32 hexadecimal digits, random.
std::string RandomHex();

}  // namespace gpssync
