// ProjPeer: PROJ called directly, to compare the conversions with.
#pragma once

#include <proj.h>

#include <memory>
#include <string>

#include "tests/host/coord/Values.h"

namespace gpstest {

/// A number as PROJ reads it back to the last bit.
std::string Num(double v);

/// One transformation object of PROJ in a context of its own, with no code of the host in between.
/// Throws std::runtime_error when PROJ refuses the text: then the test itself is wrong.
class ProjPeer {
public:
    /// An operation or pipeline, as `cct` takes it.
    static ProjPeer Operation(const std::string& text);

    /// From one coordinate system to another, longitude before latitude, as `cs2cs` takes them.
    static ProjPeer Systems(const std::string& from, const std::string& to);

    /// Degrees and metres to whatever the transformation gives (degrees again for angles).
    bool Forward(double lat, double lon, double h, Triple& out) const;

    /// From the plane (or geocentric) side; angles come out in degrees as latitude, longitude.
    bool Inverse(double x, double y, double z, Triple& out) const;

private:
    struct FreePj {
        void operator()(PJ* p) const { proj_destroy(p); }
    };
    struct FreeContext {
        void operator()(PJ_CONTEXT* c) const { proj_context_destroy(c); }
    };
    ProjPeer();

    std::unique_ptr<PJ_CONTEXT, FreeContext> context_;
    std::unique_ptr<PJ, FreePj> pj_;
    bool radians_ = false;  // of the geographic side
};

}  // namespace gpstest
