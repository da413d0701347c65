#include "apps/gpsbook/book/PointFilter.h"

#include <charconv>

#include "apps/gpsbook/book/Glob.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/readers/Calendar.h"
#include "gps/model/CPunGps.h"

namespace gpsbook {

namespace {

// Below 0, 0 or above 0 as the point lies before, at or after the bound. Requires: the point has a time.
std::int64_t Compare(const CPunGps& p, const TimeBound& bound) {
    const std::int64_t days = bound.day ? DayNumber({p.GetYear(), p.GetMonth(), p.GetDay()}) - *bound.day : 0;
    return days * kDayMs + p.GetTod() - bound.todMs;
}

}  // namespace

bool PointFilter::Takes(const CPunGps& p) const {
    if (!qualities.empty() && !qualities.contains(p.GetQua())) return false;
    if (!name.empty() && !FitsGlob(name, p.GetNome())) return false;
    if (!code.empty() && !FitsGlob(code, p.GetCode())) return false;
    if (!from && !to) return true;
    if (!IsDate({p.GetYear(), p.GetMonth(), p.GetDay()})) return false;
    return (!from || Compare(p, *from) >= 0) && (!to || Compare(p, *to) <= 0);
}

std::set<int> ParseQualities(const std::string& text) {
    std::set<int> codes;
    const char* at = text.data();
    const char* end = at + text.size();
    while (true) {
        int code = 0;
        const auto [stop, error] = std::from_chars(at, end, code);
        if (error != std::errc{} || (stop != end && *stop != ','))
            throw CommandError(exitUsage,
                               "--quality: \"" + text + "\" is no list of codes; write it like 4 or 4,5");
        codes.insert(code);
        if (stop == end) return codes;
        at = stop + 1;
    }
}

}  // namespace gpsbook
