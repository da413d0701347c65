#include "apps/gpsbook/book/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace gpsbook {

namespace {

constexpr std::int64_t kWorthABar = 16 << 20;  // bytes; below it is read before an eye could follow

std::int64_t Percent(std::int64_t done, std::int64_t total) {
    return std::clamp<std::int64_t>(done * 100 / total, 0, 100);
}

}  // namespace

Progress::Progress(std::string what, std::int64_t total, bool wanted)
    : what_(std::move(what)),
      total_(total),
      on_(wanted && total >= kWorthABar && isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    if (on_) fmt::print(stderr, "\r\x1b[K");
}

void Progress::Show(std::int64_t done) {
    if (!on_ || Percent(done, total_) == shown_) return;
    shown_ = Percent(done, total_);
    fmt::print(stderr, "\r{}", Bar(what_, done, total_));
    (void)std::fflush(stderr);
}

std::string Progress::Bar(const std::string& what, std::int64_t done, std::int64_t total) {
    constexpr std::int64_t cells = 30;
    const std::int64_t percent = total > 0 ? Percent(done, total) : 100;
    const auto full = static_cast<std::size_t>(percent * cells / 100);
    return fmt::format("{} [{}{}] {:3}%", what, std::string(full, '#'), std::string(cells - full, '.'),
                       percent);
}

}  // namespace gpsbook
