// Unsynced: the file system without waiting for the disk, to measure what a program itself costs.
#pragma once

#include "host/os/FileOperations.h"

namespace bench {

class Unsynced : public FileOperations {
public:
    int Open(const std::string& path, How how, std::uint32_t mode, int& file) override {
        return files_.Open(path, how, mode, file);
    }
    int Close(int file) override { return files_.Close(file); }
    int ReadAt(int file, std::int64_t offset, void* bytes, std::size_t size, std::size_t& got) override {
        return files_.ReadAt(file, offset, bytes, size, got);
    }
    int Write(int file, const void* bytes, std::size_t size) override {
        return files_.Write(file, bytes, size);
    }
    int Truncate(int file, std::int64_t size) override { return files_.Truncate(file, size); }
    int Sync(int) override { return 0; }
    int SyncData(int) override { return 0; }
    int SyncFolder(const std::string&) override { return 0; }
    int Rename(const std::string& from, const std::string& to) override { return files_.Rename(from, to); }
    int Link(const std::string& from, const std::string& to) override { return files_.Link(from, to); }
    int Unlink(const std::string& path) override { return files_.Unlink(path); }
    int GetFacts(const std::string& path, Facts& facts) override { return files_.GetFacts(path, facts); }
    int GetFacts(int file, Facts& facts) override { return files_.GetFacts(file, facts); }
    int CheckWritable(const std::string& path) override { return files_.CheckWritable(path); }
    int CopyRights(int file, const Facts& from) override { return files_.CopyRights(file, from); }
    int Resolve(const std::string& path, std::string& resolved) override {
        return files_.Resolve(path, resolved);
    }
    int Lock(int file) override { return files_.Lock(file); }

private:
    FileOperations& files_ = FileOperations::System();
};

}  // namespace bench
