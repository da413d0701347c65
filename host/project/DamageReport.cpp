#include "host/project/DamageReport.h"

namespace gpsproject {

std::string DamageReport::Text() const {
    std::string text;
    for (const Damage& damage : damages) {
        text += damage.section;
        if (!damage.record.empty()) text += ", " + damage.record;
        if (damage.offset >= 0) text += ", byte " + std::to_string(damage.offset);
        text += ": " + damage.what + '\n';
    }
    if (IsDamaged() && !backup.empty()) text += "the book as it was saved before is " + backup + '\n';
    return text;
}

}  // namespace gpsproject
