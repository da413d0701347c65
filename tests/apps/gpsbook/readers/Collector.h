// What the reader tests share: a sink that keeps everything, and sentences with their checksums.
#pragma once

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "apps/gpsbook/readers/Epoch.h"

namespace gpsbook::test {

struct Report {
    Reason reason;
    std::int64_t line;
    std::string detail;
};

/// Keeps what a reader delivers; `order` has the lines of accepted and reported ones as they came.
class Collector : public EpochSink {
public:
    std::vector<Epoch> epochs;
    std::vector<Report> rejected;
    std::vector<Report> ignored;
    std::vector<std::int64_t> order;

    void Accept(const Epoch& epoch) override {
        epochs.push_back(epoch);
        order.push_back(epoch.line);
    }
    void Reject(Reason reason, std::int64_t line, std::string_view detail) override {
        rejected.push_back({reason, line, std::string(detail)});
        order.push_back(line);
    }
    void Ignore(Reason reason, std::int64_t line, std::string_view detail) override {
        ignored.push_back({reason, line, std::string(detail)});
        order.push_back(line);
    }

    std::size_t Rejected(Reason reason) const {
        return static_cast<std::size_t>(std::count_if(rejected.begin(), rejected.end(),
                                                      [&](const Report& r) { return r.reason == reason; }));
    }
};

/// Everything a collector holds, comparable and printable.
inline std::vector<std::string> Everything(const Collector& c) {
    std::vector<std::string> all;
    for (const Epoch& e : c.epochs) {
        all.push_back(fmt::format("accepted {} {}-{}-{} {} {} {} {} q{} {} {}/{} {} {} {} {} {}", e.line,
                                  e.year, e.month, e.day, e.todMs, e.lat, e.lon, e.height, e.quality,
                                  static_cast<int>(e.grade), e.satGps, e.satGlonass, e.pdop, e.hrms, e.vrms,
                                  e.hasCov, fmt::join(e.cov, " ")));
    }
    for (const auto* reports : {&c.rejected, &c.ignored}) {
        for (const Report& r : *reports) {
            all.push_back(fmt::format("{} {} {} {}", reports == &c.rejected ? "rejected" : "ignored",
                                      ReasonText(r.reason), r.line, r.detail));
        }
    }
    for (const std::int64_t line : c.order) all.push_back(fmt::format("line {}", line));
    return all;
}

/// `body` with '$', its checksum and a line end.
inline std::string Sentence(std::string_view body, std::string_view end = "\r\n") {
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string s = "$" + std::string(body) + "*";
    s += digits[sum / 16];
    s += digits[sum % 16];
    s += end;
    return s;
}

/// A fixed position at `time` (hhmmss.ss).
inline std::string Gga(std::string_view time, std::string_view talker = "GN") {
    return Sentence(std::string(talker) + "GGA," + std::string(time) +
                    ",4503.94632,N,00739.54368,E,4,12,0.82,257.4,M,47.2,M,1.0,0041");
}

/// A valid RMC with a date (ddmmyy).
inline std::string Rmc(std::string_view time, std::string_view date) {
    return Sentence("GNRMC," + std::string(time) + ",A,4503.94632,N,00739.54368,E,0.013,," +
                    std::string(date) + ",,,R");
}

/// A log with every sentence that is used, damaged ones, binary bytes, comments and all line ends.
inline std::string MixedNmeaLog() {
    using namespace std::string_literals;
    std::string log = "# a comment with $GPGGA,120000*00 in it\n";
    log += Gga("235958.00") + Sentence("GNGSA,A,3,01,02,03,,,,,,,,,,1.5,0.8,1.2,1");
    log += "\xB5\x62\x01\n#\x02$\x07\xFF"s + Rmc("235959.00", "311220") + Gga("235959.00");
    log += Sentence("GNGST,235959.00,12,0.03,0.02,30,0.028,0.022,0.05") + "$GPGGA,0000" + Gga("000000.00");
    log += Sentence("GNGSA,A,3,65,70,,,,,,,,,,,1.7,0.8,1.2", "\n") + "$GPTXT,broken\n\n";
    log += Sentence("GPGGA,000001.00,4503.9,N,00739.5,E,0,,,,M,,M,,", "\n") + "$GPRMC,000001.00,A*00\r\n";
    log +=
        Sentence("GPZDA,000002.00,32,01,2021,00,00") + Gga("000002.00") + "$" + std::string(700, 'x') + "\n";
    log += Gga("000003.00", "GP") + Gga("000003.00", "GN");
    log += Sentence("GPGGA,000004.00,4503.9,N,00739.5,E,4,12,0.82,257.4,M,47.2,M,,", "");
    return log;
}

}  // namespace gpsbook::test
