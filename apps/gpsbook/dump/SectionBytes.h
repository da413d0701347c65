// SectionBytes: the bytes of a section of a file, one after another.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/base/StreamEnds.h"

namespace gpsbook {

/// What ended a reading before its end: where, and what is wrong there.
struct SectionDamage {
    std::int64_t offset;  // byte of the file
    std::string what;
};

/// Reads forward through a window; memory does not grow with the file, but for a text that is as long.
class SectionBytes {
public:
    /// `size` bytes of a source, which must outlive the reading; the first of them is byte `begin` of the
    /// file. A source that ends before is damage, met where it ends.
    SectionBytes(StreamSource& source, std::int64_t begin, std::int64_t size)
        : source_(source), begin_(begin), total_(size), size_(size) {}

    std::int64_t Position() const { return begin_ + taken_; }  // byte of the file
    std::int64_t Remaining() const { return size_ - taken_; }

    /// Lets nothing be read beyond the next `bytes` until LiftEnd gets what is returned here.
    /// Errors: SectionDamage when there are not so many.
    std::int64_t SetEnd(std::int64_t bytes);
    void LiftEnd(std::int64_t token) { size_ = token; }

    /// Passes over bytes. Errors: SectionDamage when there are not so many.
    void Skip(std::int64_t bytes);

    // The next value, least significant byte first. Errors: SectionDamage when not all of it is there.
    std::uint64_t Unsigned(int bytes);
    std::int64_t Signed(int bytes);
    std::string Text(std::int64_t bytes);

private:
    void Need(std::int64_t bytes);
    void Take(char* to, std::size_t bytes);

    StreamSource& source_;
    std::int64_t begin_;
    std::int64_t total_;  // of the section
    std::int64_t size_;   // up to the end that is set
    std::int64_t taken_ = 0;
    std::vector<char> window_;
    std::size_t next_ = 0;  // in the window
};

}  // namespace gpsbook
