#include "platform/base/ofpstream.h"

#include <algorithm>

#include "host/base/FileEnds.h"

namespace {

// Large enough that calls to the system cost nothing beside the bytes, small enough to stay in the cache.
constexpr std::size_t kWindow = 256 * 1024;
constexpr std::size_t kMemoryStart = 4096;

}  // namespace

ofpstream::ofpstream(short version) : version_(version) {}

ofpstream::ofpstream(const char* file, short version) : version_(version) {
    ownSink_ = std::make_unique<FileSink>(file, error_);
    sink_ = ownSink_.get();
}

ofpstream::ofpstream(const char* file, short version, const char* signature) : ofpstream(file, version) {
    signature_ = signature;
    WriteBytes(kFileMarker, sizeof kFileMarker);
}

ofpstream::ofpstream(StreamSink& sink, short version) : sink_(&sink), version_(version) {}

ofpstream::~ofpstream() { Close(); }

void ofpstream::Flush() {
    if (!sink_ || cur_ == begin_) return;
    const auto size = static_cast<std::size_t>(cur_ - begin_);
    cur_ = begin_;
    Pass(begin_, size);
}

bool ofpstream::Close() {
    if (closed_) return IsOk();
    Flush();
    closed_ = true;
    if (sink_) {
        const int error = sink_->Close();
        if (error_ == 0) error_ = error;
    }
    return IsOk();
}

std::string_view ofpstream::GetBytes() const {
    if (sink_) return {};
    return {reinterpret_cast<const char*>(begin_), static_cast<std::size_t>(cur_ - begin_)};
}

void ofpstream::MakeRoom(std::size_t size) {
    const auto used = static_cast<std::size_t>(cur_ - begin_);
    if (sink_ && begin_) {
        Flush();
        return;  // the window is larger than any block
    }
    std::size_t grown = sink_ ? kWindow : std::max(2 * used, kMemoryStart);
    while (grown - used < size) grown *= 2;
    std::unique_ptr<unsigned char[]> window(new unsigned char[grown]);
    if (used > 0) std::memcpy(window.get(), begin_, used);
    window_ = std::move(window);
    begin_ = window_.get();
    cur_ = begin_ + used;
    end_ = begin_ + grown;
}

void ofpstream::WriteLong(const void* bytes, std::size_t size) {
    if (sink_ && size >= kWindow) {
        Flush();
        Pass(bytes, size);
        return;
    }
    MakeRoom(size);
    std::memcpy(cur_, bytes, size);
    cur_ += size;
}

void ofpstream::Pass(const void* bytes, std::size_t size) {
    before_ += static_cast<std::int64_t>(size);
    if (error_ == 0) error_ = sink_->Write(bytes, size);
}
