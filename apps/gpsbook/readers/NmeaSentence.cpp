#include "apps/gpsbook/readers/NmeaSentence.h"

#include <algorithm>
#include <cstring>

namespace gpsbook {

namespace {

// How far one search looks ahead: bounds the work on streams of nothing but '$' or nothing but line ends.
constexpr std::ptrdiff_t kWindow = 512;

const char* Find(const char* begin, const char* end, char wanted) {
    const auto* found =
        static_cast<const char*>(std::memchr(begin, wanted, static_cast<std::size_t>(end - begin)));
    return found != nullptr ? found : end;
}

// 0 to 15; -1 for any other character.
int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

bool IsCapital(char c) { return c >= 'A' && c <= 'Z'; }

bool IsAddressCharacter(char c) { return IsCapital(c) || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

bool IsControl(char c) {
    return (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\r') || c == 0x7f;
}

}  // namespace

void NmeaScanner::Put(std::string_view bytes) {
    pos_ = bytes.data();
    end_ = bytes.data() + bytes.size();
}

bool NmeaScanner::Next(NmeaText& out) {
    while (pos_ != end_) {
        switch (state_) {
            case State::between:
                SkipToSentence();
                break;
            case State::comment:
                SkipComment();
                break;
            case State::sentence:
                if (TakeSentence(out)) return true;
                break;
        }
    }
    return false;
}

bool NmeaScanner::Last(NmeaText& out) {
    if (state_ != State::sentence) return false;
    out = {std::string_view(buffer_.data(), kept_), line_, false};
    state_ = State::between;
    return true;
}

void NmeaScanner::NextLine() {
    ++line_;
    ++pos_;
    lineStart_ = true;
}

void NmeaScanner::SkipToSentence() {
    if (lineStart_ && *pos_ == '#') {
        state_ = State::comment;
        lineStart_ = false;
        return;
    }
    lineStart_ = false;
    if (*pos_ == '\n') {
        NextLine();
    } else if (*pos_ == '$') {
        ++pos_;
        kept_ = 0;
        state_ = State::sentence;
    } else {
        const char* stop = pos_ + std::min(end_ - pos_, kWindow);
        pos_ = Find(pos_, Find(pos_, stop, '\n'), '$');
    }
}

void NmeaScanner::SkipComment() {
    pos_ = std::find_if(pos_, end_, IsControl);  // LF is a control character too
    if (pos_ == end_) return;
    state_ = State::between;
}

bool NmeaScanner::TakeSentence(NmeaText& out) {
    const auto room = static_cast<std::ptrdiff_t>(kLongest - kept_);
    const char* stop = pos_ + std::min(end_ - pos_, room);
    const char* close = Find(pos_, stop, '$');
    close = Find(pos_, close, '\n');
    close = Find(pos_, close, '\r');
    const bool goesOn = close == stop && stop - pos_ < room;
    const auto length = static_cast<std::size_t>(close - pos_);
    std::string_view text(pos_, length);
    if (kept_ > 0 || goesOn) {
        std::memcpy(buffer_.data() + kept_, pos_, length);
        kept_ += length;
        text = std::string_view(buffer_.data(), kept_);
    }
    pos_ = close;  // what ended the sentence is looked at again between the sentences
    if (goesOn) return false;
    state_ = State::between;
    out = {text, line_, close == stop || *close == '$'};
    return true;
}

SentenceKind KindOf(std::string_view text) {
    if (text.size() < 5 || !IsCapital(text[0]) || !IsCapital(text[1])) return SentenceKind::none;
    if (text.size() > 5 && IsAddressCharacter(text[5])) return SentenceKind::none;
    const std::string_view type = text.substr(2, 3);
    if (type == "GGA") return SentenceKind::gga;
    if (type == "RMC") return SentenceKind::rmc;
    if (type == "ZDA") return SentenceKind::zda;
    if (type == "GST") return SentenceKind::gst;
    if (type == "GSA") return SentenceKind::gsa;
    return SentenceKind::none;
}

namespace {

std::ptrdiff_t Commas(std::string_view text) { return std::count(text.begin(), text.end(), ','); }

// Fewest commas of a whole sentence, those of the oldest versions included.
std::ptrdiff_t CommasOf(SentenceKind kind) {
    switch (kind) {
        case SentenceKind::gga:
            return 14;
        case SentenceKind::rmc:
            return 9;  // up to the date
        case SentenceKind::zda:
            return 6;
        case SentenceKind::gst:
            return 8;
        case SentenceKind::gsa:
            return 17;
        case SentenceKind::none:
            break;
    }
    return 0;
}

}  // namespace

std::optional<Reason> CheckSentence(const NmeaText& sentence, std::string_view& body) {
    const std::size_t star = sentence.text.find('*');
    if (star == std::string_view::npos) {
        const bool cut = sentence.interrupted || Commas(sentence.text) < CommasOf(KindOf(sentence.text));
        return cut ? Reason::cutLine : Reason::missingChecksum;
    }
    const std::string_view rest = sentence.text.substr(star + 1);
    if (rest.size() < 2) return sentence.interrupted ? Reason::cutLine : Reason::badChecksum;
    const int high = HexDigit(rest[0]);
    const int low = HexDigit(rest[1]);
    if (high < 0 || low < 0) return Reason::badChecksum;
    if (rest.size() > 2 && rest[2] > ' ' && rest[2] <= '~') return Reason::badChecksum;
    body = sentence.text.substr(0, star);
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    if (sum != static_cast<unsigned>(high * 16 + low)) return Reason::badChecksum;
    return std::nullopt;
}

NmeaFields::NmeaFields(std::string_view body) {
    while (count_ < kMost) {
        const std::size_t comma = body.find(',');
        field_[count_++] = body.substr(0, comma);
        if (comma == std::string_view::npos) return;
        body.remove_prefix(comma + 1);
    }
}

}  // namespace gpsbook
