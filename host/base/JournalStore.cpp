// JournalStore: how a journal's writer gets its entries onto the disk.
#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "host/base/JournalScan.h"
#include "host/base/JournalWriter.h"

namespace {

// For whom the project is not, its journal is not either: it gets the project's rights when they are known.
constexpr std::uint32_t kOnlyOwner = 0600;

constexpr std::size_t kCopied = 64 * 1024;  // bytes at once

class OpenFile {
public:
    explicit OpenFile(FileOperations& files) : files_(files) {}
    ~OpenFile() {
        if (number >= 0) files_.Close(number);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int Release() { return std::exchange(number, -1); }

    int number = -1;

private:
    FileOperations& files_;
};

}  // namespace

/// Stores the first bytes of what waits, up to a sequence.
int JournalWriter::Store(std::size_t bytes, std::uint64_t lastOfThem) {
    if (failed_) return EIO;
    if (bytes == 0) return 0;
    if (stored_ == 0) first_ = durable_ + 1;
    int error = 0;
    try {
        error = StoreSomewhere(bytes);
    } catch (const std::bad_alloc&) {
        error = ENOMEM;
    }
    if (error != 0) return error;
    stored_ += static_cast<std::int64_t>(bytes + (stored_ == 0 ? kJournalHeaderSize : 0));
    durable_ = lastOfThem;
    refused_.reset();
    waiting_.erase(0, bytes);
    if (waiting_.empty() && waiting_.capacity() > 4 * kMostWaiting) std::string().swap(waiting_);
    return 0;
}

int JournalWriter::StoreSomewhere(std::size_t bytes) {
    if (file_ >= 0) {
        if (Append(bytes) == 0) return 0;
        CloseFile();
        if (failed_) return ESTALE;
    } else if (direct_) {
        if (Create(bytes) == 0) return 0;
    }
    return Rewrite(bytes);
}

int JournalWriter::Append(std::size_t bytes) {
    if (const int error = files_.Write(file_, waiting_.data(), bytes)) return error;
    if (const int error = files_.SyncData(file_)) return error;
    return CheckName();
}

// What is stored in a file without a name is gone with the program: somebody took the journal for a leftover.
int JournalWriter::CheckName() {
    FileOperations::Facts here, named;
    if (const int error = files_.GetFacts(file_, here)) return error;
    const int error = files_.GetFacts(path_, named);
    if (error != 0 && error != ENOENT) return error;
    failed_ = error == ENOENT || named.device != here.device || named.inode != here.inode;
    return failed_ ? ESTALE : 0;
}

int JournalWriter::Create(std::size_t bytes) {
    const std::string content = NewHeader().append(waiting_, 0, bytes);
    direct_ = false;
    OpenFile made(files_);
    if (const int error = files_.Open(path_, FileOperations::How::createNew, kOnlyOwner, made.number))
        return error;
    mine_ = true;
    GiveRights(made.number);
    if (const int error = files_.Write(made.number, content.data(), content.size())) return error;
    if (const int error = files_.SyncData(made.number)) return error;
    if (const int error = files_.SyncFolder(folder_)) return error;
    file_ = made.Release();
    return 0;
}

// The file of that name stays as it is until the new one is complete on the disk.
int JournalWriter::Rewrite(std::size_t bytes) {
    if (const int error = CheckReplaceable()) return error;
    if (const int error = files_.Unlink(newPath_); error != 0 && error != ENOENT) return error;
    const std::string header = NewHeader();
    OpenFile made(files_);
    if (const int error = files_.Open(newPath_, FileOperations::How::createNew, kOnlyOwner, made.number))
        return error;
    GiveRights(made.number);
    const auto fill = [&] {
        if (const int error = stored_ > 0 ? CopyStored(made.number)
                                          : files_.Write(made.number, header.data(), header.size()))
            return error;
        if (const int error = files_.Write(made.number, waiting_.data(), bytes)) return error;
        if (const int error = files_.SyncData(made.number)) return error;
        return files_.Rename(newPath_, path_);
    };
    if (const int error = fill()) {
        files_.Unlink(newPath_);
        return error;
    }
    mine_ = true;
    if (const int error = files_.SyncFolder(folder_)) return error;
    file_ = made.Release();
    return 0;
}

// A journal of somebody else may be all that is left of their edits.
int JournalWriter::CheckReplaceable() const {
    if (mine_) return 0;
    FileOperations::Facts facts;
    const int error = files_.GetFacts(path_, facts);
    if (error == 0) return facts.regular && facts.size == 0 ? 0 : EEXIST;
    return error == ENOENT ? 0 : error;
}

/// Copies what is stored; both sides are checked.
int JournalWriter::CopyStored(int to) {
    OpenFile from(files_);
    int error = files_.Open(path_, FileOperations::How::read, 0, from.number);
    if (error == ENOENT) failed_ = true;
    if (error != 0) return error;
    if (!HoldsStored(from.number, error)) {
        failed_ = error == 0;
        return failed_ ? EIO : error;
    }
    std::string part(kCopied, '\0');
    for (std::int64_t at = 0; at < stored_;) {
        const auto wanted =
            static_cast<std::size_t>(std::min(stored_ - at, static_cast<std::int64_t>(kCopied)));
        std::size_t got = 0;
        if ((error = files_.ReadAt(from.number, at, part.data(), wanted, got)) != 0) return error;
        if (got < wanted) return EIO;
        if ((error = files_.Write(to, part.data(), got)) != 0) return error;
        at += static_cast<std::int64_t>(got);
    }
    if (HoldsStored(to, error)) return 0;
    return error != 0 ? error : EIO;
}

/// Whether the file begins with all that is stored. `error`: that it could not be read.
bool JournalWriter::HoldsStored(int file, int& error) const {
    FileOperations::Facts facts;
    error = files_.GetFacts(file, facts);
    if (error != 0 || facts.size < stored_) return false;
    const JournalScan scan = ScanJournal(files_, file, stored_);
    error = scan.error;
    return error == 0 && scan.end == JournalScan::End::clean &&
           scan.header == JournalHeader{id_, base_, first_} && !scan.frames.empty() &&
           scan.frames.back().sequence == durable_;
}

void JournalWriter::GiveRights(int file) const {
    FileOperations::Facts project;
    if (files_.GetFacts(projectFile_, project) == 0) files_.CopyRights(file, project);
}

std::string JournalWriter::NewHeader() const { return JournalHeaderBytes({id_, base_, first_}); }

void JournalWriter::CloseFile() {
    if (file_ >= 0) files_.Close(std::exchange(file_, -1));
}
