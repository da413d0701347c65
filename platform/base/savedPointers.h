// savedPointers: references to objects of a session, kept in a project stream.
#pragma once

#include <unordered_set>

#include "platform/base/PlatformExport.h"
#include "platform/base/streams.h"

namespace vex {

/// Remembers which references were written in one save, so that the host knows which objects a project
/// needs.
class GPS_PLATFORM_API CPtr64Mapper {
public:
    void Add(long long pointer) { written_.insert(pointer); }
    bool IsWritten(long long pointer) const { return written_.contains(pointer); }
    std::size_t GetSize() const { return written_.size(); }

private:
    std::unordered_set<long long> written_;
};

/// Writes a reference: 8 bytes, its own value. The mapper, which may be null, remembers it.
GPS_PLATFORM_API void SavePointerToFile(ofpstream& out, long long pointer, CPtr64Mapper* mapper);

/// Reads a reference as it was saved; what it is in this session, another map tells (CDrawingsMapper).
GPS_PLATFORM_API long long LoadPointerFromFile(ifpstream& in);

}  // namespace vex
