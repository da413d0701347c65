// The map library's record.
#include <memory>

#include "fuzz/Fuzz.h"
#include "platform/coord/CLibMap.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::RequireSameAgain(
        fuzz::Input(data, size), [] { return std::make_unique<CLibMap>(); },
        [](CLibMap& map, ifpstream& in) { map.LeggeDaFile(in, in.GetVersion()); },
        [](CLibMap& map, ofpstream& out) { map.SalvaInFile(out, out.GetVersion()); });
    return 0;
}
