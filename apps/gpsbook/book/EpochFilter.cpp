#include "apps/gpsbook/book/EpochFilter.h"

#include <cmath>
#include <cstdlib>

#include "apps/gpsbook/readers/Calendar.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/readers/Grades.h"
#include "apps/gpsbook/simulator/SimulationOptions.h"

namespace gpsbook {

namespace {

std::int64_t DayOf(const Epoch& e) { return DayNumber({e.year, e.month, e.day}); }

// Below 0, 0 or above 0 as the epoch lies before, at or after the bound.
std::int64_t Compare(const Epoch& epoch, const TimeBound& bound) {
    const std::int64_t days = bound.day ? DayOf(epoch) - *bound.day : 0;
    return days * kDayMs + epoch.todMs - bound.todMs;
}

}  // namespace

std::optional<MinQuality> ParseMinQuality(const std::string& text) {
    if (text == "any") return MinQuality{};
    if (text == "fix" || text == "fixed") return MinQuality{Grade::fixed, {}};
    if (text == "float") return MinQuality{Grade::floating, {}};
    if (text == "dgps") return MinQuality{Grade::dgps, {}};
    if (text == "single") return MinQuality{Grade::single, {}};
    int code = 0;
    if (!ParseCount(text, code) || code > 9) return std::nullopt;
    return MinQuality{{}, code};
}

std::optional<TimeBound> ParseTimeBound(const std::string& text) {
    if (const auto utc = ParseRfc3339(text)) return TimeBound{DayNumber(utc->date), utc->todMs};
    const std::size_t first = text.find(':');
    if (first != 2) return std::nullopt;
    const std::size_t second = text.find(':', first + 1);
    const std::string seconds = second == std::string::npos ? "00" : text.substr(second + 1);
    const std::string minutes = text.substr(3, second == std::string::npos ? second : second - 3);
    std::uint32_t todMs = 0;
    if (ParseTimeOfDay(text.substr(0, 2), minutes, seconds, todMs)) return std::nullopt;
    const bool leapSecond = seconds.starts_with("60");
    if (leapSecond && todMs < kDayMs) return std::nullopt;  // only the last minute of a day can have one
    return TimeBound{{}, todMs};
}

const char* VerdictText(Verdict verdict) {
    switch (verdict) {
        case Verdict::belowQuality:
            return "below --min-quality";
        case Verdict::outsideTime:
            return "outside --from/--to";
        case Verdict::thinned:
            return "closer than --every";
        case Verdict::alreadyThere:
            return "in the book already";
        case Verdict::take:
            break;
    }
    return "taken";
}

bool EpochFilter::GoodEnough(const Epoch& epoch) const {
    const MinQuality& wanted = options_.minQuality;
    if (wanted.grade) return epoch.grade >= *wanted.grade;
    if (!wanted.code) return true;
    // The codes of a format are not in order of quality: a code stands for its grade.
    return epoch.grade >= GradeOf(format_, *wanted.code);
}

Verdict EpochFilter::Judge(const Epoch& epoch) {
    if (!GoodEnough(epoch)) return Verdict::belowQuality;
    if (options_.from && Compare(epoch, *options_.from) < 0) return Verdict::outsideTime;
    if (options_.to && Compare(epoch, *options_.to) > 0) return Verdict::outsideTime;
    const std::int64_t now = DayOf(epoch) * kDayMs + epoch.todMs;
    const auto every = static_cast<std::int64_t>(std::llround(options_.every * 1000));
    if (lastTakenMs_ && std::abs(now - *lastTakenMs_) < every) return Verdict::thinned;
    lastTakenMs_ = now;
    return Verdict::take;
}

}  // namespace gpsbook
