#include "apps/gpsbook/readers/Format.h"

#include <algorithm>

#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/readers/NmeaReader.h"
#include "apps/gpsbook/readers/NmeaSentence.h"
#include "apps/gpsbook/readers/PosReader.h"

namespace gpsbook {

namespace {

enum class NmeaEvidence : std::uint8_t { none, address, sentence };

// An address is at least talker or maker and type: capitals and digits, beginning with a capital.
bool HasAddress(std::string_view text) {
    const std::string_view address = text.substr(0, text.find_first_of(",*"));
    if (address.size() < 4 || address.size() == text.size() || address[0] < 'A' || address[0] > 'Z')
        return false;
    return std::all_of(address.begin(), address.end(),
                       [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

NmeaEvidence FindSentence(std::string_view head) {
    NmeaEvidence found = NmeaEvidence::none;
    NmeaScanner scanner;
    scanner.Put(head);
    NmeaText text;
    bool more = scanner.Next(text);
    while (more) {
        std::string_view body;
        if (HasAddress(text.text) && !CheckSentence(text, body)) return NmeaEvidence::sentence;
        if (KindOf(text.text) != SentenceKind::none) found = NmeaEvidence::address;
        more = scanner.Next(text) || scanner.Last(text);
    }
    return found;
}

// A row without a header: date or week, time, then numbers only.
bool IsPosRow(std::string_view line) {
    constexpr std::size_t kColumns = 15;  // time, three coordinates, Q, ns, six of precision, age, ratio
    const PosColumns columns(line);
    if (columns.Count() < kColumns) return false;
    for (std::size_t i = 2; i < kColumns; ++i) {
        double value = 0.0;
        if (!ParseNumber(columns[i], value)) return false;
    }
    const std::string_view day = columns[0];
    const std::string_view time = columns[1];
    if (std::count(day.begin(), day.end(), '/') == 2 && std::count(time.begin(), time.end(), ':') == 2)
        return true;
    int week = 0;
    double seconds = 0.0;
    return ParseCount(day, week) && ParseNumber(time, seconds);
}

bool HasPosLine(std::string_view head) {
    PosHeader header;
    while (!head.empty()) {
        const std::size_t end = head.find('\n');
        std::string_view line = head.substr(0, end);
        head.remove_prefix(end == std::string_view::npos ? head.size() : end + 1);
        if (line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
        if (line.ends_with('\r')) line.remove_suffix(1);
        line = Trimmed(line);
        if (line.empty()) continue;
        if (line.front() == '%') {
            header.Take(line);
            if (header.coordinates != PosCoordinates::unknown) return true;
        } else if (IsPosRow(line)) {
            return true;
        }
    }
    return false;
}

}  // namespace

Format DetectFormat(std::string_view head) {
    head = head.substr(0, kDetectBytes);
    const NmeaEvidence nmea = FindSentence(head);
    if (nmea == NmeaEvidence::sentence) return Format::nmea;
    if (HasPosLine(head)) return Format::pos;
    return nmea == NmeaEvidence::address ? Format::nmea : Format::unknown;
}

std::unique_ptr<LogReader> MakeReader(Format format, EpochSink& sink) {
    switch (format) {
        case Format::nmea:
            return std::make_unique<NmeaReader>(sink);
        case Format::pos:
            return std::make_unique<PosReader>(sink);
        case Format::unknown:
            break;
    }
    return nullptr;
}

}  // namespace gpsbook
