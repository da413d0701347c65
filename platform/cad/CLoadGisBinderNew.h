// CLoadGisBinderNew: ties between GIS handles and entities while files are loaded.
#pragma once

#include <unordered_map>

#include "platform/base/PlatformExport.h"

class CEgn;

/// What a GIS learns of the entities that a load brings: each is noted under the handle that it has in the
/// file, so that records that come later can refer to it. One for the whole process; every exchange file
/// begins with an empty one. It neither owns nor looks into the entities: who takes one out of its field book
/// clears it first.
class GPS_PLATFORM_API CLoadGisBinderNew {
public:
    static CLoadGisBinderNew* GetInstance();

    CLoadGisBinderNew(const CLoadGisBinderNew&) = delete;
    CLoadGisBinderNew& operator=(const CLoadGisBinderNew&) = delete;

    void Clear() { bound_.clear(); }

    /// A later entity under the same handle replaces the former.
    void Bind(int handle, CEgn* entity) { bound_[handle] = entity; }

    /// Null when nothing has that handle.
    CEgn* Find(int handle) const;

    bool IsEmpty() const { return bound_.empty(); }

private:
    CLoadGisBinderNew() = default;

    std::unordered_map<int, CEgn*> bound_;
};
