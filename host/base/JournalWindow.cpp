#include "host/base/JournalWindow.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "host/base/JournalFrame.h"

namespace {

constexpr std::size_t kWindow = 256 * 1024;

}  // namespace

JournalWindow::JournalWindow(FileOperations& files, int file, std::int64_t size)
    : files_(files), file_(file), size_(size), bytes_(new unsigned char[kWindow]) {}

// Fetches from `offset` on, unless it is there; how many bytes of the window stand from there on.
std::size_t JournalWindow::Load(std::int64_t offset) {
    const std::int64_t behind = begin_ + static_cast<std::int64_t>(filled_);
    if (offset >= begin_ && offset < behind) return static_cast<std::size_t>(behind - offset);
    if (error_ != 0) return 0;
    const auto wanted =
        static_cast<std::size_t>(std::min(static_cast<std::int64_t>(kWindow), size_ - offset));
    std::size_t got = 0;
    begin_ = offset;
    filled_ = 0;
    error_ = files_.ReadAt(file_, offset, bytes_.get(), wanted, got);
    if (error_ == 0 && got < wanted) error_ = EIO;
    if (error_ == 0) filled_ = got;
    return filled_;
}

const unsigned char* JournalWindow::At(std::int64_t offset, std::size_t size) {
    if (static_cast<std::int64_t>(size) > size_ - offset) return nullptr;
    if (Load(offset) < size) {
        filled_ = 0;  // it ends in the midst of them
        if (Load(offset) < size) return nullptr;
    }
    return bytes_.get() + (offset - begin_);
}

bool JournalWindow::Crc(std::int64_t offset, std::int64_t size, std::uint32_t& crc) {
    std::uint32_t sum = 0;
    while (size > 0) {
        const std::size_t there = Load(offset);
        if (there == 0) return false;
        const auto step = std::min(size, static_cast<std::int64_t>(there));
        sum = JournalCrc(sum, bytes_.get() + (offset - begin_), static_cast<std::size_t>(step));
        offset += step;
        size -= step;
    }
    crc = sum;
    return true;
}

std::int64_t JournalWindow::Find(std::string_view text, std::int64_t from) {
    const auto length = static_cast<std::int64_t>(text.size());
    while (size_ - from >= length) {
        if (!At(from, text.size())) return size_;
        const std::string_view there(reinterpret_cast<const char*>(bytes_.get()), filled_);
        const std::size_t found = there.find(text, static_cast<std::size_t>(from - begin_));
        if (found != std::string_view::npos) return begin_ + static_cast<std::int64_t>(found);
        from = begin_ + static_cast<std::int64_t>(filled_) - length + 1;
    }
    return size_;
}
