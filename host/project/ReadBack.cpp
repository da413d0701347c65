#include "host/project/ReadBack.h"

#include "host/project/SectionWalk.h"
#include "platform/base/ifpstream.h"

namespace gpsproject {

bool ReadsBack(FileOperations& files, int file, const FoundSection& section) {
    SectionSource source(files, file, section);
    ifpstream in(source, section.entry.length, section.entry.version);
    if (section.entry.name == kGpsSection) {
        in.SetPastEndLimit(0);
        try {
            if (WalkSection(in, nullptr) != section.entry.items) return false;
        } catch (const StreamExhausted&) {
            return false;
        }
        if (in.GetRemaining() != 0) return false;
        in.SetPastEndLimit(-1);
    }
    in.Skip(in.GetRemaining());
    return in.IsOk() && source.IsWhole() && source.GetBadCount() == 0;
}

}  // namespace gpsproject
