// ProjectError: why a project could not be opened or saved.
#pragma once

#include <stdexcept>
#include <string>

namespace gpsproject {

/// The message says where, what, and what to do about it.
class ProjectError : public std::runtime_error {
public:
    enum class Kind {
        notFound,        // there is no such file
        exists,          // there is one already, and it is not to be replaced
        locked,          // another process is writing it
        damaged,         // not a project, or a damaged one
        changedOutside,  // the file is not the one that was opened
        readOnly,        // opened read-only: nothing is saved over it
        tooNew,          // of a later version of the format
        notHeld,         // something in the project does not fit into the version asked for
        system           // the system refused: no permission, disk full
    };

    ProjectError(Kind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}
    Kind GetKind() const { return kind_; }

private:
    Kind kind_;
};

}  // namespace gpsproject
