// GroupFiller: turns the epochs of one log into the points of one group.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "apps/gpsbook/book/EpochFilter.h"
#include "apps/gpsbook/book/LogReport.h"
#include "apps/gpsbook/readers/Epoch.h"

class CGrpGps;
class CLibGps;
class CPunGps;

namespace gpsbook {

class KnownFixes;

/// What the heights of a log are those of.
enum class HeightsOf : std::uint8_t { antenna, marker };

struct FillOptions {
    HeightsOf heights = HeightsOf::antenna;
    double antenna = 0;  // metres, phase centre above the ground mark
    std::string prefix = "P";
    std::string code;
    const KnownFixes* known = nullptr;  // fixes that are looked for; null: none
    bool skipKnown = false;             // and left out
};

/// Adds one point an accepted epoch to a group, through the setters of the library. Heights in the book are
/// those of the phase centre: h = height + antenna for a log of marker heights, h = height otherwise.
class GroupFiller : public EpochSink {
public:
    /// Told of every line that became no point: its number, the reason, what stands there.
    using Watcher = std::function<void(std::int64_t line, std::string_view reason, std::string_view detail)>;

    /// `nextNumber`: number of the next point's name, counted up. `group`: position in the book.
    GroupFiller(CLibGps& book, int group, const FillOptions& fill, const EpochFilter& filter,
                long& nextNumber, LogReport& report);

    /// The header that the reader keeps, looked at with every epoch: a file may hold several sessions, each
    /// with its base. `header` must outlive the reading.
    void SetHeader(const LogHeader* header) { header_ = header; }

    void SetWatcher(Watcher watcher) { watcher_ = std::move(watcher); }

    void Accept(const Epoch& epoch) override;
    void Reject(Reason reason, std::int64_t line, std::string_view detail) override;
    void Ignore(Reason reason, std::int64_t line, std::string_view detail) override;

    /// Stores what the log says of its base, the first one of several, and the date of the first point, in a
    /// group that has none.
    void FillGroup(const LogHeader& header);

private:
    double HeightOf(const Epoch& epoch) const;  // metres, phase centre
    bool LeavesOut(const Epoch& epoch);
    void FillPoint(CPunGps& point, const Epoch& epoch);
    void FillBase(CPunGps& point, const LogHeader& header) const;

    CLibGps& book_;
    int group_;
    FillOptions fill_;
    EpochFilter filter_;
    long& nextNumber_;
    LogReport& report_;
    const LogHeader* header_ = nullptr;
    LogHeader first_;  // with the first base met
    Watcher watcher_;
    std::string name_;  // of the next point, kept to be filled anew without allocation
};

}  // namespace gpsbook
