// The record of the post-processing options, with its lists of observation files.
#include <memory>

#include "fuzz/Fuzz.h"
#include "gps/options/COpzPostProc.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    fuzz::RequireSameAgain(
        fuzz::Input(data, size), [] { return std::make_unique<COpzPostProc>(); },
        [](COpzPostProc& options, ifpstream& in) { options.LeggeDaFile(in); },
        [](COpzPostProc& options, ofpstream& out) { options.SalvaInFile(out); });
    return 0;
}
