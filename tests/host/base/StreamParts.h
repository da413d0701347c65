// Ends of streams for tests: memory that can fail and that gives its bytes in pieces.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/StreamEnds.h"

namespace test {

/// Takes up to `capacity` bytes; the write that does not fit takes nothing and fails with `error`.
class MemorySink : public StreamSink {
public:
    explicit MemorySink(std::size_t capacity = static_cast<std::size_t>(-1), int error = 0)
        : capacity_(capacity), error_(error) {}

    int Write(const void* bytes, std::size_t size) override {
        sizes.push_back(size);
        if (taken.size() + size > capacity_) return error_;
        taken.append(static_cast<const char*>(bytes), size);
        return 0;
    }
    int Close() override {
        ++closed;
        return closeError;
    }

    std::string taken;
    std::vector<std::size_t> sizes;  // of every call
    int closed = 0;
    int closeError = 0;

private:
    std::size_t capacity_;
    int error_;
};

/// Gives at most `piece` bytes a call; after `failAfter` bytes it fails with `error`.
class MemorySource : public StreamSource {
public:
    MemorySource(std::string_view bytes, std::size_t piece,
                 std::size_t failAfter = static_cast<std::size_t>(-1), int error = 0)
        : bytes_(bytes), piece_(piece), failAfter_(failAfter), error_(error) {}

    int Read(void* bytes, std::size_t size, std::size_t& got) override {
        if (ended) ++callsAfterEnd;
        got = 0;
        if (at_ >= failAfter_) {
            ended = true;
            return error_;
        }
        got = std::min({size, piece_, bytes_.size() - at_, failAfter_ - at_});
        std::memcpy(bytes, bytes_.data() + at_, got);
        at_ += got;
        ended = got == 0;
        return 0;
    }

    bool ended = false;
    int callsAfterEnd = 0;

private:
    std::string bytes_;
    std::size_t piece_;
    std::size_t failAfter_;
    int error_;
    std::size_t at_ = 0;
};

}  // namespace test
