// A scripted engine behind a conversion, and small things that the tests of derived coordinates share.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "gps/model/CGrpGps.h"
#include "gps/model/CLibGps.h"
#include "gps/model/CPunGps.h"
#include "platform/coord/CMotoreConv.h"

namespace gpstest {

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// Prefilled into outputs, so that one that was not written is seen.
inline constexpr double kUntouched = -4711.25;

using Triple = std::array<double, 3>;

inline constexpr Triple kUntouchedTriple = {kUntouched, kUntouched, kUntouched};
inline constexpr Triple kUnset = {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET};

/// Bit for bit, so that NaN equals itself and -0.0 does not equal 0.0.
inline bool IsSame(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// Answers a conversion's operations as a test says, and keeps what was asked.
class ScriptedMotore : public CMotoreConv {
public:
    struct Call {
        std::string name;
        std::vector<double> arguments;
        bool operator==(const Call&) const = default;
    };

    bool GrafBaseToGrafWgs(double lat, double lon, double h, double& a, double& b, double& c) override;
    bool GeocBaseToGeocWgs(double x, double y, double z, double& a, double& b, double& c) override;
    bool GrafGpsToPlanAtt(double lat, double lon, double h, double alt, double& a, double& b,
                          double& c) override;
    bool PlanAttToGrafGps(double e, double n, double h, double alt, double& a, double& b, double& c) override;
    void ShowMessage(bool show) override { calls.push_back({"ShowMessage", {show ? 1.0 : 0.0}}); }

    std::vector<Call> calls;
    Triple answer = {11, 22, 33};
    bool result = true;
    bool throws = false;
    std::function<void(const Call&)> onCall;  // looks at the world in the middle of a call

private:
    bool Answer(Call call, double& a, double& b, double& c);
};

/// What items report while it lives: one entry a call, at its entry.
class ReportLog {
public:
    struct Entry {
        const CCloudItem* item;
        std::uint32_t flag;
        bool operator==(const Entry&) const = default;
    };

    ReportLog();
    ~ReportLog();
    ReportLog(const ReportLog&) = delete;
    ReportLog& operator=(const ReportLog&) = delete;

    /// Flags of one item, in order.
    std::vector<std::uint32_t> Of(const CCloudItem* item) const;

    std::vector<Entry> entries;
};

/// Stored position of a point, of a group's base, and plane coordinates of an entity.
Triple Stored(const CPunGps& point);
Triple Stored(const CGrpGps& group);
Triple Plane(const CEgn& entity);

void SetFix(CPunGps& point, double lat, double lon, double h, double altAnt);
void SetBase(CGrpGps& group, double lat, double lon, double h, double altAnt);

}  // namespace gpstest
