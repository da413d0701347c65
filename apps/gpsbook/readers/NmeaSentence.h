// NMEA 0183 sentences: found in a stream of bytes, checked, and split into fields.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "apps/gpsbook/readers/FieldText.h"

namespace gpsbook {

/// The text after a '$', up to the end of its line, the next '$', or the longest length.
struct NmeaText {
    std::string_view text;     // without the '$' and without CR or LF
    std::int64_t line = 0;     // from 1
    bool interrupted = false;  // ended by another '$' or by its length
};

/// Finds what follows each '$' in a stream that may hold anything else between.
///
/// Lines that begin with '#' are comments, as long as they are text: a control byte shows that the '#' was
/// part of a binary frame, and a sentence behind it counts. What is found does not depend on how the stream
/// is cut into pieces. Memory: one buffer of `kLongest` bytes.
class NmeaScanner {
public:
    /// Longest text of a sentence; what is longer is cut there.
    static constexpr std::size_t kLongest = 511;

    /// Takes the next piece. Requires: Next() has returned false for the piece before; `bytes` lives until
    /// then.
    void Put(std::string_view bytes);

    /// The next text that is complete. `out` is valid until the next call. False: the piece is used up.
    bool Next(NmeaText& out);

    /// At the end of the stream: the text that no line end closed. False: there is none.
    bool Last(NmeaText& out);

private:
    enum class State : std::uint8_t { between, comment, sentence };

    void SkipToSentence();
    void SkipComment();
    bool TakeSentence(NmeaText& out);
    void NextLine();

    const char* pos_ = nullptr;
    const char* end_ = nullptr;
    State state_ = State::between;
    bool lineStart_ = true;
    std::int64_t line_ = 1;
    std::size_t kept_ = 0;  // bytes of the sentence that began in an earlier piece
    std::array<char, kLongest> buffer_{};
};

/// The sentences that a position is assembled from.
enum class SentenceKind : std::uint8_t { none, gga, rmc, zda, gst, gsa };

/// The kind of a sentence by its address: two letters of a talker, three of the sentence.
/// Any other text, damaged addresses included, is none.
SentenceKind KindOf(std::string_view text);

/// Verifies the end of a sentence and its checksum; `body` gets the text before the '*'.
/// Behind the two digits only blanks and bytes that are no text are accepted: other text shows that two
/// lines ran together.
/// On error: missingChecksum, badChecksum; cutLine when the next '$' came before the checksum was complete.
std::optional<Reason> CheckSentence(const NmeaText& sentence, std::string_view& body);

/// The fields of a sentence; field 0 is the address. Fields from `kMost` on are dropped.
class NmeaFields {
public:
    static constexpr std::size_t kMost = 24;

    explicit NmeaFields(std::string_view body);

    std::size_t Count() const { return count_; }

    /// Field `i`; empty when the sentence has fewer.
    std::string_view operator[](std::size_t i) const { return i < count_ ? field_[i] : std::string_view{}; }

private:
    std::array<std::string_view, kMost> field_;
    std::size_t count_ = 0;
};

}  // namespace gpsbook
