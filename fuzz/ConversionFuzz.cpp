// The conversion record, and a conversion made of whatever values: it may fail, it may not do harm.
#include <memory>

#include "fuzz/Fuzz.h"
#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"

namespace {

struct Conversion {
    CLibMap map;
    CConvCoord conv{&map};
};

// Definitions by text are left out: PROJ reads files that they name.
bool IsHarmless(const CConvCoord& conv) {
    return !conv.GetConvLocal()->GetProiezPla().IsDefinizioneText() &&
           !conv.GetConvAltez()->GetProiezPla().IsDefinizioneText();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Input input(data, size);
    const auto read = [](Conversion& c, ifpstream& in) { c.conv.LeggeDaFile(in, in.GetVersion()); };
    const auto write = [](Conversion& c, ofpstream& out) { c.conv.SalvaInFile(out, out.GetVersion()); };
    fuzz::RequireSameAgain(
        input, [] { return std::make_unique<Conversion>(); }, read, write);

    Conversion c;
    fuzz::ReadAll(input.bytes, input.version, [&](ifpstream& in) { read(c, in); });
    c.conv.IsDatumDiverso();
    if (!input.Switch(0) || !IsHarmless(c.conv)) return 0;
    double x, y, z, a, b;
    c.conv.GrafBaseToGrafWgs(45, 11, 100, x, y, z);
    c.conv.GeocBaseToGeocWgs(4.4e6, 8.6e5, 4.5e6, x, y, z);
    if (c.conv.GrafGpsToPlanAtt(45, 11, 100, 2, x, y, z)) c.conv.PlanAttToGrafGps(x, y, z, 2, a, b, z);
    return 0;
}
