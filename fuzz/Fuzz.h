// Fuzz: what the targets share. A target reads bytes as a damaged file would give them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace fuzz {

/// The first three bytes of an input are the version of the stream and switches of the target.
struct Input {
    Input(const std::uint8_t* data, std::size_t size);

    bool Switch(int bit) const { return (switches >> bit & 1) != 0; }

    short version = 0;
    unsigned switches = 0;
    std::string_view bytes;
};

/// An input for the corpus.
std::string MakeInput(short version, unsigned switches, std::string_view bytes);

/// Reads past the end that a target allows, as whoever opens a project does.
inline constexpr int kPastEndLimit = 4096;

/// What came of reading.
struct Read {
    bool whole = false;          // every byte was there; some may be left
    std::int64_t remaining = 0;  // bytes that were not asked for
};

/// Calls `read` on a stream over the bytes, with the limit of reads past its end.
Read ReadAll(std::string_view bytes, short version, const std::function<void(ifpstream&)>& read);

/// The bytes that `write` writes.
std::string Written(short version, const std::function<void(ofpstream&)>& write);

/// Ends the program, so that the input is kept, when it does not hold.
void Require(bool holds, const char* what);

/// Settings of whoever runs the targets play no part in them.
void ForgetSettings();

/// Reading a record, writing what was read, and reading that gives the same record once more. `make` makes a
/// new object each time.
template <class Make, class ReadIn, class WriteOut>
void RequireSameAgain(const Input& input, Make make, ReadIn read, WriteOut write) {
    auto first = make();
    const Read damaged = ReadAll(input.bytes, input.version, [&](ifpstream& in) { read(*first, in); });
    const std::string saved = Written(input.version, [&](ofpstream& out) { write(*first, out); });
    if (!damaged.whole) return;
    auto second = make();
    const Read again = ReadAll(saved, input.version, [&](ifpstream& in) { read(*second, in); });
    Require(again.whole && again.remaining == 0, "what was written is read whole");
    Require(Written(input.version, [&](ofpstream& out) { write(*second, out); }) == saved,
            "what was read is written again as it was");
}

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
