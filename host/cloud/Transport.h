// Transport: how a book reaches a shared project.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "host/project/CloudMessages.h"

namespace gpssync {

using gpsproject::CloudCommit;
using gpsproject::CommitAnswer;
using gpsproject::PullPage;
using gpsproject::PullRequest;

/// Who sends.
struct Sender {
    std::int32_t device = 0;  // 1 or more, one per installation
    std::string author;       // for people
};

/// A project of a server.
struct SharedProject {
    std::string key;  // random, never reused: tells projects apart that have the same name
    std::string name;
    std::int64_t revision = 0;  // 0: nothing was ever committed
    bool made = false;          // by this call
};

/// The message says where, what, and what to do about it.
class TransportError : public std::runtime_error {
public:
    enum class Kind {
        noAnswer,  // nothing is known about what became of the request: repeat it as it is
        notFound,  // there is no such project
        older,     // the project knows less than the book: it was put back to an earlier state
        refused,   // the request is not one that can be answered
        damaged    // the store is damaged, or not one of this system
    };
    TransportError(Kind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}
    Kind GetKind() const { return kind_; }

private:
    Kind kind_;
};

/// Every operation is answered as a whole, or ends with a TransportError.
class Transport {
public:
    virtual ~Transport() = default;

    /// A project by name, made when there is none and `make` says so.
    virtual SharedProject OpenProject(const std::string& name, bool make) = 0;

    /// Takes the records one by one: one that cannot be taken is refused, and the others are done. All that
    /// is done is one revision. A commit that was answered before is answered the same again, and not done
    /// again.
    virtual CommitAnswer Commit(const std::string& projectKey, const Sender& sender,
                                const CloudCommit& commit) = 0;

    /// What others changed.
    virtual PullPage Pull(const std::string& projectKey, const Sender& sender,
                          const PullRequest& request) = 0;
};

}  // namespace gpssync
