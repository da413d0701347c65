// CPointerRef: a reference count carried by an object.
#pragma once

#include "platform/base/PlatformExport.h"

/// Counts references that a host holds on an object. It only counts: nothing is destroyed at zero, because
/// the field book decides the life of its items. No virtual operation.
/// A copy starts at zero and an assignment leaves the count alone: references are to one object.
class GPS_PLATFORM_API CPointerRef {
public:
    CPointerRef() = default;
    CPointerRef(const CPointerRef&) noexcept {}
    CPointerRef& operator=(const CPointerRef&) noexcept { return *this; }

    int AddRef() { return ++count_; }

    /// Returns the remaining count; stays at 0 when there is nothing to release.
    int ReleaseRef() { return count_ > 0 ? --count_ : 0; }

    int GetRefCount() const { return count_; }

protected:
    ~CPointerRef() = default;  // never destroyed through this class

private:
    int count_ = 0;
};
