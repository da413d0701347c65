#include "host/base/JournalWriter.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <stdexcept>
#include <utility>

#include "platform/base/LittleEndian.h"

namespace {

constexpr std::size_t kFlagsAt = 38;

std::string FolderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return path.substr(0, std::max<std::size_t>(slash, 1));
}

}  // namespace

JournalWriter::JournalWriter(FileOperations& files, std::string path, std::string projectFile,
                             std::uint64_t id, std::uint64_t base, Now now)
    : files_(files),
      path_(std::move(path)),
      newPath_(path_ + ".new"),
      folder_(FolderOf(path_)),
      projectFile_(std::move(projectFile)),
      id_(id),
      base_(base),
      now_(std::move(now)) {}

JournalWriter::~JournalWriter() { CloseFile(); }

// --- entries -----------------------------------------------------------------------------------------------

ofpstream* JournalWriter::Open(const char* file, int code) {
    if (open_ || failed_ || !file || !*file || file != projectFile_) return nullptr;
    if (code < 0 || code > std::numeric_limits<std::uint16_t>::max()) return nullptr;
    if (!entry_) entry_ = std::make_unique<ofpstream>(kJournalVersion);
    entry_->Clear();
    entry_->SetVersion(kJournalVersion);
    entry_->WriteShort(kJournalVersion);
    code_ = static_cast<std::uint16_t>(code);
    open_ = true;
    return entry_.get();
}

void JournalWriter::Close(ofpstream* entry) {
    if (!open_ || entry != entry_.get()) return;
    const std::size_t size = entry->GetBytes().size();
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        Discard(entry);
        throw std::length_error("an entry of a journal has at most 4 GiB");
    }
    Add(code_, entry->GetBytes());
    Discard(entry);
    if (depth_ > 0 && waiting_.size() - finished_ >= spillAt_) SpillEdit();
}

void JournalWriter::Discard(ofpstream* entry) {
    if (!open_ || entry != entry_.get()) return;
    open_ = false;
    if (entry->GetBytes().size() > kMostWaiting) entry_.reset();
}

void JournalWriter::Add(std::uint16_t code, std::string_view payload) {
    const std::size_t at = waiting_.size();
    const std::size_t end = at + kFrameHeadSize + payload.size();
    if (end > waiting_.capacity()) waiting_.reserve(std::max(end, 2 * waiting_.capacity()));
    // Nothing fails from here on.
    if (unsealed_ != kNone) Seal(unsealed_, true);
    waiting_.append(kFrameHeadSize, '\0');
    waiting_.append(payload);
    FrameHead head;
    head.payloadLength = static_cast<std::uint32_t>(payload.size());
    head.journal = id_;
    head.sequence = ++last_;
    head.durable = durable_;
    head.code = code;
    StoreFrameHead(reinterpret_cast<unsigned char*>(waiting_.data()) + at, head);
    if (depth_ > 0) {
        unsealed_ = at;
        ++editEntries_;
    } else {
        Seal(at, false);
        Finish(1);
    }
}

void JournalWriter::Seal(std::size_t at, bool more) {
    auto* const frame = reinterpret_cast<unsigned char*>(waiting_.data()) + at;
    StoreLittleEndian(frame + kFlagsAt, more ? kMoreFollows : std::uint16_t{0});
    SealFrame(frame, LoadFrameHead(frame)->payloadLength);
}

/// All that waits is complete now, with so many entries more than before.
void JournalWriter::Finish(std::size_t entries) {
    if (finishedEntries_ == 0) oldest_ = now_();
    finished_ = waiting_.size();
    finishedEntries_ += entries;
}

// --- edits -------------------------------------------------------------------------------------------------

void JournalWriter::BeginEdit() { ++depth_; }

void JournalWriter::EndEdit() { LeaveEdit(); }

void JournalWriter::DropEdit() {
    if (depth_ == 0) return;
    if (open_) Discard(entry_.get());
    dropped_ = true;
    LeaveEdit();
}

void JournalWriter::LeaveEdit() {
    if (depth_ == 0 || --depth_ > 0) return;
    if (dropped_) {
        ForgetEdit();
    } else if (unsealed_ != kNone) {
        Seal(unsealed_, false);
        Finish(editEntries_);
    }
    unsealed_ = kNone;
    editEntries_ = 0;
    spillAt_ = kMostWaiting;
    editStored_ = dropped_ = false;
}

// What is in the file already is taken back by a frame that says so. There is room for it: the last of the
// edit's frames has been waiting.
void JournalWriter::ForgetEdit() {
    waiting_.resize(finished_);
    last_ -= editEntries_;
    unsealed_ = kNone;
    if (!editStored_) return;
    unsigned char version[sizeof kJournalVersion];
    StoreLittleEndian(version, static_cast<std::uint16_t>(kJournalVersion));
    Add(kEditGivenUp, {reinterpret_cast<const char*>(version), sizeof version});
}

// All but the last frame, whose flag is not known.
void JournalWriter::SpillEdit() {
    if (unsealed_ == 0) return;
    if (Store(unsealed_, last_ - 1) != 0) {
        spillAt_ = waiting_.size() - finished_ + kMostWaiting;
        refused_ = now_();
        return;
    }
    if (editEntries_ > 1) editStored_ = true;
    editEntries_ = 1;
    unsealed_ = finished_ = finishedEntries_ = 0;
    spillAt_ = kMostWaiting;
}

// --- when and whether --------------------------------------------------------------------------------------

int JournalWriter::Commit() {
    const std::size_t bytes = finished_;
    const int error = Store(bytes, last_ - editEntries_);
    if (error != 0) {
        refused_ = now_();
        return error;
    }
    finished_ = finishedEntries_ = 0;
    if (unsealed_ != kNone) unsealed_ -= bytes;
    return 0;
}

bool JournalWriter::IsDue() const {
    const auto left = TimeToDue();
    return left && *left == Clock::duration::zero();
}

std::optional<JournalWriter::Clock::duration> JournalWriter::TimeToDue() const {
    if (finishedEntries_ == 0) return {};
    if (!refused_ && finishedEntries_ >= kMostEntries) return Clock::duration::zero();
    const auto due = (refused_ ? *refused_ : oldest_) + kWindow;
    return std::max(due - now_(), Clock::duration::zero());
}

int JournalWriter::Remove() {
    CloseFile();
    if (open_) Discard(entry_.get());
    waiting_.clear();
    unsealed_ = kNone;
    finished_ = finishedEntries_ = editEntries_ = 0;
    editStored_ = false;
    durable_ = last_;
    stored_ = 0;
    failed_ = false;
    refused_.reset();
    int error = 0;
    if (!direct_) files_.Unlink(newPath_);  // of an attempt that failed, if it is there
    if (mine_) {
        error = files_.Unlink(path_);
        mine_ = error != 0 && error != ENOENT;
    }
    direct_ = !mine_;
    return mine_ ? error : 0;
}

bool JournalWriter::SetBase(std::uint64_t id, std::uint64_t base) {
    if (stored_ > 0 || !waiting_.empty()) return false;
    id_ = id;
    base_ = base;
    return true;
}
