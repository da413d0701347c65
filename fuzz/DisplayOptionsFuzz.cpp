// The record of the display options, in both of its forms.
#include <memory>

#include "fuzz/Fuzz.h"
#include "gps/options/COpzListDisGps.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    const fuzz::Input input(data, size);
    fuzz::RequireSameAgain(
        input, [] { return std::make_unique<COpzListDisGps>(nullptr); },
        [&](COpzListDisGps& list, ifpstream& in) { list.LeggeDaFile(in, !input.Switch(0), in.GetVersion()); },
        [](COpzListDisGps& list, ofpstream& out) { list.SalvaInFile(out, out.GetVersion(), nullptr); });
    return 0;
}
