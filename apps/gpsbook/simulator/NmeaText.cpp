#include "apps/gpsbook/simulator/NmeaText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <span>

namespace gpsbook {

namespace {

constexpr std::array kGpsNumbers{2, 5, 7, 9, 12, 13, 15, 18, 21, 24, 26, 29};
constexpr std::array kGlonassNumbers{65, 66, 67, 72, 74, 75, 81, 82, 84};
constexpr double kMetresPerSecondInKnots = 3600.0 / 1852.0;

void AppendSentence(std::string& out, std::string_view body) {
    fmt::format_to(std::back_inserter(out), "${}*{:02X}\r\n", body, NmeaChecksum(body));
}

std::string TimeOfDay(std::uint32_t todMs) {
    constexpr std::uint32_t lastMinute = 1439;
    const std::uint32_t minutes =
        std::min(todMs / 60000, lastMinute);  // a leap second is the 60th of the last
    const std::uint32_t ms = todMs - minutes * 60000;
    return fmt::format("{:02}{:02}{:02}.{:03}", minutes / 60, minutes % 60, ms / 1000, ms % 1000);
}

/// Degrees and minutes with the half of the world. Rounded as one number, so that minutes stay below 60.
std::string Angle(double degrees, int degreeDigits, char positive, char negative) {
    constexpr std::int64_t unitsPerMinute = 100'000'000;
    const std::int64_t units = std::llround(std::fabs(degrees) * 60.0 * static_cast<double>(unitsPerMinute));
    const std::int64_t minutes = units / unitsPerMinute;
    return fmt::format("{:0{}}{:02}.{:08},{}", minutes / 60, degreeDigits, minutes % 60,
                       units % unitsPerMinute, degrees < 0.0 && units != 0 ? negative : positive);
}

std::string Place(const SimulatedEpoch& e) {
    return Angle(e.lat, 2, 'N', 'S') + "," + Angle(e.lon, 3, 'E', 'W');
}

double Rounded(double metres) { return static_cast<double>(std::llround(metres * 10000.0)) / 10000.0 + 0.0; }

void AppendGga(std::string& out, const SimulatedEpoch& e, double separation) {
    const int quality = e.solution == Solution::fixed ? 4 : e.solution == Solution::floating ? 5 : 1;
    const double shown = Rounded(separation);
    AppendSentence(
        out, fmt::format("GNGGA,{},{},{},{:02},{:.1f},{:.4f},M,{:.4f},M,{}", TimeOfDay(e.utc.todMs), Place(e),
                         quality, e.gps + e.glonass, e.pdop / 2.0, Rounded(e.h - shown), shown,
                         e.solution == Solution::single ? "," : "1.0,0001"));
}

void AppendRmc(std::string& out, const SimulatedEpoch& e) {
    const char mode = e.solution == Solution::fixed ? 'R' : e.solution == Solution::floating ? 'F' : 'A';
    AppendSentence(out, fmt::format("GNRMC,{},A,{},{:.2f},{:.2f},{:02}{:02}{:02},,,{}",
                                    TimeOfDay(e.utc.todMs), Place(e), e.speed * kMetresPerSecondInKnots,
                                    e.course, e.utc.date.day, e.utc.date.month, e.utc.date.year % 100, mode));
}

void AppendGst(std::string& out, const SimulatedEpoch& e) {
    // East and north are alike and independent: the error ellipse is a circle.
    AppendSentence(
        out, fmt::format("GNGST,{},{:.4f},{:.4f},{:.4f},0.0,{:.4f},{:.4f},{:.4f}", TimeOfDay(e.utc.todMs),
                         std::hypot(e.sigma, e.sigmaUp), e.sigma, e.sigma, e.sigma, e.sigma, e.sigmaUp));
}

void AppendGsa(std::string& out, const SimulatedEpoch& e, std::span<const int> used, int system) {
    std::string body = "GNGSA,A,3";
    for (std::size_t i = 0; i < 12; ++i) {
        body += ',';
        if (i < used.size()) body += fmt::format("{:02}", used[i]);
    }
    const double hdop = e.pdop / 2.0;
    AppendSentence(out, fmt::format("{},{:.2f},{:.2f},{:.2f},{}", body, e.pdop, hdop,
                                    std::sqrt(e.pdop * e.pdop - hdop * hdop), system));
}

void AppendGsv(std::string& out, const SimulatedEpoch& e, std::span<const int> seen,
               std::string_view talker) {
    const std::size_t sentences = (seen.size() + 3) / 4;
    const std::int64_t minutes = e.gpsMs / 60000;
    for (std::size_t s = 0; s < sentences; ++s) {
        std::string body = fmt::format("{}GSV,{},{},{:02}", talker, sentences, s + 1, seen.size());
        for (std::size_t i = 4 * s; i < std::min(seen.size(), 4 * s + 4); ++i) {
            // Anywhere above the horizon and slowly moving: nobody computes with it.
            const std::int64_t number = seen[i];
            body += fmt::format(",{:02},{:02},{:03},{:02}", number, 10 + (number * 37 + minutes / 4) % 80,
                                (number * 71 + minutes / 2) % 360, 30 + (number * 13) % 20);
        }
        AppendSentence(out, body);
    }
}

}  // namespace

unsigned NmeaChecksum(std::string_view body) {
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    return sum;
}

void AppendNmea(std::string& out, const SimulatedEpoch& epoch, const SimulationOptions& options) {
    const std::span<const int> gps(kGpsNumbers.data(), static_cast<std::size_t>(epoch.gps));
    const std::span<const int> glonass(kGlonassNumbers.data(), static_cast<std::size_t>(epoch.glonass));
    AppendGga(out, epoch, options.separation);
    AppendRmc(out, epoch);
    AppendGst(out, epoch);
    AppendGsa(out, epoch, gps, 1);
    AppendGsa(out, epoch, glonass, 2);
    if (!options.satellitesInView) return;
    AppendGsv(out, epoch, gps, "GP");
    AppendGsv(out, epoch, glonass, "GL");
}

}  // namespace gpsbook
