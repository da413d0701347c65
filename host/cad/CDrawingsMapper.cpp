#include "platform/cad/CDrawingsMapper.h"

long long CDrawingsMapper::GetDrawing(long long saved) const {
    const auto found = live_.find(saved);
    return found == live_.end() ? default_ : found->second;
}
