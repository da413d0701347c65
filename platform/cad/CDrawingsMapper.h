// CDrawingsMapper: from drawing references as saved to the drawings of this session.
#pragma once

#include <unordered_map>

#include "platform/base/PlatformExport.h"

/// A loaded project refers to its drawings by the values they had when it was saved; the host fills this
/// map while it loads the drawings.
class GPS_PLATFORM_API CDrawingsMapper {
public:
    explicit CDrawingsMapper(long long defaultDrawing = 0) : default_(defaultDrawing) {}

    /// The drawing saved as `saved` is now `live`. A later entry for the same value replaces the former.
    void SetDrawing(long long saved, long long live) { live_[saved] = live; }

    /// A map that answers a value that is not known with itself. For a program that has no drawings, but must
    /// not take from a project those of the program that has them.
    static CDrawingsMapper KeepingUnknown() {
        CDrawingsMapper mapper;
        mapper.keepsUnknown_ = true;
        return mapper;
    }

    /// The live drawing of a saved value; the default drawing for a value that is not known, unless the map
    /// keeps those.
    long long GetDrawing(long long saved) const;

    /// Drawing for what was saved without a reference. Default: 0, no drawing.
    long long GetDefaultDrawing() const { return default_; }

private:
    long long default_;
    bool keepsUnknown_ = false;
    std::unordered_map<long long, long long> live_;
};
