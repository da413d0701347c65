#include "platform/base/ifpstream.h"

#include <algorithm>

#include "host/base/FileEnds.h"
#include "platform/base/ofpstream.h"

namespace {

constexpr std::int64_t kWindow = 256 * 1024;
constexpr std::int64_t kLeast = 4096;

}  // namespace

const char* StreamExhausted::what() const noexcept { return "too many reads past the end of a stream"; }

ifpstream::ifpstream(const void* bytes, std::size_t size, short version)
    : begin_(static_cast<const unsigned char*>(bytes)),
      cur_(begin_),
      end_(begin_ + size),
      filled_(size),
      size_(static_cast<std::int64_t>(size)),
      whole_(size_),
      version_(version) {}

ifpstream::ifpstream(const char* file, short version) : version_(version) {
    ownSource_ = std::make_unique<FileSource>(file, size_, error_);
    source_ = ownSource_.get();
    whole_ = size_;
    if (error_ != 0) failedAt_ = 0;
}

ifpstream::ifpstream(StreamSource& source, std::int64_t size, short version)
    : size_(size), whole_(size), source_(&source), version_(version) {}

ifpstream::~ifpstream() = default;

void ifpstream::ReadMarker() {
    unsigned char marker[5];
    const bool there = ReadBytes(marker, sizeof marker);
    headerFlag_ = there && marker[0] != kFileMarker[0];
    knownMarker_ = there && std::memcmp(marker + 1, kFileMarker + 1, sizeof marker - 1) == 0;
}

bool ifpstream::ReadBytes(void* bytes, std::size_t size) {
    const std::int64_t begin = GetPosition();
    const std::size_t got = ReadSome(bytes, size);
    if (got == size) return true;
    std::memset(static_cast<unsigned char*>(bytes) + got, 0, size - got);
    PastEnd(begin);
    return false;
}

void ifpstream::Skip(std::int64_t size) {
    const std::int64_t begin = GetPosition();
    while (size > 0) {
        if (cur_ == end_ && !Fetch(1)) return PastEnd(begin);
        const auto step = std::min(size, static_cast<std::int64_t>(Ahead()));
        cur_ += step;
        size -= step;
    }
}

// Makes `size` bytes stand in the window. False when fewer remain; those then stand in it.
bool ifpstream::Fetch(std::size_t size) {
    if (!source_ || error_ != 0) return false;
    if (!window_) {
        // A short stream gets a short window.
        room_ = static_cast<std::size_t>(std::clamp<std::int64_t>(size_, kLeast, kWindow));
        window_.reset(new unsigned char[room_]);
        begin_ = cur_ = end_ = window_.get();
    }
    filled_ -= static_cast<std::size_t>(cur_ - begin_);
    before_ += cur_ - begin_;
    if (filled_ > 0) std::memmove(window_.get(), cur_, filled_);
    begin_ = cur_ = window_.get();
    while (filled_ < size) {
        // Never beyond the stream's own size: a file that grows meanwhile is read as it was.
        const auto remain = whole_ - before_ - static_cast<std::int64_t>(filled_);
        if (remain <= 0) break;
        const std::size_t want = std::min(room_ - filled_, static_cast<std::size_t>(remain));
        std::size_t got = 0;
        error_ = source_->Read(window_.get() + filled_, want, got);
        if (error_ != 0 || got == 0) {
            whole_ = before_ + static_cast<std::int64_t>(filled_);  // that is all there will be
            break;
        }
        filled_ += got;
    }
    SetEnd(size_, whole_);
    return Ahead() >= size;
}

void ifpstream::SetEnd(std::int64_t end, std::int64_t atMost) {
    size_ = std::max(std::min(end, atMost), GetPosition());
    end_ = begin_ + std::min(static_cast<std::int64_t>(filled_), size_ - before_);
}

// A read that began there did not find its bytes: what remained of them is gone, the stream stands at its
// end.
void ifpstream::PastEnd(std::int64_t begin) {
    if (failedAt_ < 0) failedAt_ = begin;
    cur_ = end_;
    if (pastEndLeft_ < 0) return;
    if (pastEndLeft_ == 0) throw StreamExhausted();
    --pastEndLeft_;
}

void ifpstream::ReadLong(std::string& text, std::int32_t length) {
    // What remains limits a damaged length before anything is allocated for it.
    const std::int64_t begin = GetPosition();
    const auto all = static_cast<std::size_t>(std::clamp<std::int64_t>(GetRemaining(), 0, length));
    text.resize(all);
    const std::size_t got = ReadSome(text.data(), all);
    text.resize(got);
    if (got < static_cast<std::size_t>(length)) PastEnd(begin);
}

std::size_t ifpstream::ReadSome(void* bytes, std::size_t size) {
    auto* at = static_cast<unsigned char*>(bytes);
    std::size_t done = 0;
    while (done < size) {
        if (cur_ == end_ && !Fetch(1)) break;
        const std::size_t step = std::min(size - done, Ahead());
        std::memcpy(at + done, cur_, step);
        cur_ += step;
        done += step;
    }
    return done;
}
