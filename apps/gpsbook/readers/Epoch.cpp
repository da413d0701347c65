#include "apps/gpsbook/readers/Epoch.h"

namespace gpsbook {

std::string_view ReasonText(Reason r) {
    switch (r) {
        case Reason::badChecksum:
            return "bad checksum";
        case Reason::missingChecksum:
            return "missing checksum";
        case Reason::cutLine:
            return "cut line";
        case Reason::emptyField:
            return "empty field";
        case Reason::badNumber:
            return "bad number";
        case Reason::noFix:
            return "no fix";
        case Reason::noDate:
            return "no date";
        case Reason::badTime:
            return "bad time";
        case Reason::latitudeRange:
            return "latitude out of range";
        case Reason::longitudeRange:
            return "longitude out of range";
        case Reason::noSeparation:
            return "no geoid separation";
        case Reason::count_:
            break;
    }
    return "unknown reason";
}

}  // namespace gpsbook
