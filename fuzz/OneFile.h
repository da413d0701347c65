// OneFile: a disk with one file, which is never written.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include "fuzz/Fuzz.h"
#include "host/os/FileOperations.h"

namespace fuzz {

class OneFile : public FileOperations {
public:
    static constexpr int kFile = 3;  // its number when it is open

    OneFile(const char* path, std::string_view bytes) : path_(path), bytes_(bytes) {}

    int Open(const std::string& path, How how, std::uint32_t, int& file) override {
        if (how != How::read) return EROFS;
        if (path != path_) return ENOENT;
        file = kFile;
        return 0;
    }
    int Close(int) override { return 0; }
    int ReadAt(int, std::int64_t offset, void* bytes, std::size_t size, std::size_t& got) override {
        Require(offset >= 0, "no read before the beginning");
        const auto at = std::min(static_cast<std::size_t>(offset), bytes_.size());
        got = std::min(size, bytes_.size() - at);
        std::memcpy(bytes, bytes_.data() + at, got);
        return 0;
    }
    int Write(int, const void*, std::size_t) override { return EROFS; }
    int Truncate(int, std::int64_t) override { return EROFS; }
    int Sync(int) override { return EROFS; }
    int SyncData(int) override { return EROFS; }
    int SyncFolder(const std::string&) override { return EROFS; }
    int Rename(const std::string&, const std::string&) override { return EROFS; }
    int Link(const std::string&, const std::string&) override { return EROFS; }
    int Unlink(const std::string&) override { return EROFS; }
    int GetFacts(const std::string& path, Facts& facts) override {
        return path == path_ ? GetFacts(kFile, facts) : ENOENT;
    }
    int GetFacts(int, Facts& facts) override {
        facts = {};
        facts.regular = true;
        facts.size = static_cast<std::int64_t>(bytes_.size());
        return 0;
    }
    int CheckWritable(const std::string&) override { return EROFS; }
    int CopyRights(int, const Facts&) override { return EROFS; }
    int Resolve(const std::string& path, std::string& resolved) override {
        resolved = path;
        return 0;
    }
    int Lock(int) override { return 0; }

private:
    std::string path_;
    std::string_view bytes_;
};

}  // namespace fuzz
