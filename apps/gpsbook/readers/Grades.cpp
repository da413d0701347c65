#include "apps/gpsbook/readers/Grades.h"

namespace gpsbook {

namespace {

Grade NmeaGrade(int quality) {
    switch (quality) {
        case 4:
            return Grade::fixed;
        case 5:
            return Grade::floating;
        case 2:
        case 3:
        case 9:
            return Grade::dgps;
        case 1:
            return Grade::single;
        default:
            return Grade::estimated;
    }
}

Grade PosGrade(int quality) {
    switch (quality) {
        case 1:
            return Grade::fixed;
        case 2:
        case 6:
            return Grade::floating;
        case 3:
        case 4:
            return Grade::dgps;
        case 5:
            return Grade::single;
        default:
            return Grade::estimated;
    }
}

}  // namespace

Grade GradeOf(Format format, int quality) {
    return format == Format::pos ? PosGrade(quality) : NmeaGrade(quality);
}

std::string_view GradeText(Grade grade) {
    switch (grade) {
        case Grade::fixed:
            return "fixed";
        case Grade::floating:
            return "float";
        case Grade::dgps:
            return "dgps";
        case Grade::single:
            return "single";
        case Grade::estimated:
            return "estimated";
    }
    return "estimated";
}

}  // namespace gpsbook
