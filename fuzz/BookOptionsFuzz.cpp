// The record of the field-book options.
#include <memory>

#include "fuzz/Fuzz.h"
#include "gps/options/COpzLibGps.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    const fuzz::Input input(data, size);
    fuzz::RequireSameAgain(
        input, [] { return std::make_unique<COpzLibGps>(); },
        [&](COpzLibGps& options, ifpstream& in) {
            options.LeggeDaFile(in, !input.Switch(0), in.GetVersion());
        },
        [](COpzLibGps& options, ofpstream& out) { options.SalvaInFile(out, out.GetVersion()); });
    return 0;
}
