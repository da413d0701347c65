#include "platform/cad/CDrawingsMapper.h"

long long CDrawingsMapper::GetDrawing(long long saved) const {
    const auto found = live_.find(saved);
    if (found != live_.end()) return found->second;
    return keepsUnknown_ ? saved : default_;
}
