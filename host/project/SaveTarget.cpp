#include "host/project/SaveTarget.h"

#include <cerrno>

#include "host/project/FileMessage.h"
#include "host/project/JournalFile.h"
#include "host/project/SafeReplace.h"

namespace gpsproject {

SaveTarget FindSaveTarget(FileOperations& files, const std::string& name, bool overwrite) {
    using Kind = ProjectError::Kind;
    if (name.empty() || name.find('\0') != std::string::npos)
        throw ProjectError(Kind::notFound,
                           "the name of the file is empty or holds a zero byte; give another one");
    SaveTarget target;
    if (const int error = files.Resolve(name, target.path)) throw SystemError(name, "cannot be saved", error);
    if (target.path.ends_with(kSavingEnding) || target.path.ends_with(kJournalEnding))
        throw ProjectError(
            Kind::exists, name + ": names with this ending are kept for saving and journals; choose another");
    FileOperations::Facts facts;
    int error = files.GetFacts(target.path, facts);
    if (error == ENOENT) return target;
    if (error != 0) throw SystemError(name, "cannot be saved", error);
    if (!facts.regular)
        throw ProjectError(Kind::exists,
                           name + ": is no ordinary file and cannot be replaced; choose another name");
    if (!overwrite)
        throw ProjectError(Kind::exists,
                           name + ": there is a file of this name; choose another, or overwrite it");
    error = files.CheckWritable(target.path);
    if (error != 0) throw SystemError(name, "may not be replaced", error);
    target.former = facts;
    return target;
}

}  // namespace gpsproject
