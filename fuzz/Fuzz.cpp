#include "fuzz/Fuzz.h"

#include <stdlib.h>

#include <cstdio>
#include <cstdlib>

namespace fuzz {

Input::Input(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return;
    version = static_cast<short>(static_cast<std::uint16_t>(data[0] | data[1] << 8));
    switches = data[2];
    bytes = {reinterpret_cast<const char*>(data) + 3, size - 3};
}

std::string MakeInput(short version, unsigned switches, std::string_view bytes) {
    std::string input;
    input += static_cast<char>(version & 0xFF);
    input += static_cast<char>(version >> 8 & 0xFF);
    input += static_cast<char>(switches & 0xFF);
    input += bytes;
    return input;
}

Read ReadAll(std::string_view bytes, short version, const std::function<void(ifpstream&)>& read) {
    ifpstream in(bytes.data(), bytes.size(), version);
    in.SetPastEndLimit(kPastEndLimit);
    try {
        read(in);
    } catch (const StreamExhausted&) {
        return {};
    }
    return {in.IsOk(), in.GetRemaining()};
}

std::string Written(short version, const std::function<void(ofpstream&)>& write) {
    ofpstream out(version);
    write(out);
    return std::string(out.GetBytes());
}

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fputs("does not hold: ", stderr);
    std::fputs(what, stderr);
    std::fputs("\n", stderr);
    std::abort();
}

void ForgetSettings() {
    static const int once = ::setenv("GPS_SURVEY_SETTINGS", "/dev/null/none", 1);
    static_cast<void>(once);
}

}  // namespace fuzz
