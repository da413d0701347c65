#include "host/project/GpsReader.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include "host/project/FileMessage.h"
#include "host/project/SectionDamage.h"
#include "host/project/SectionWalk.h"
#include "platform/base/ifpstream.h"

namespace gpsproject {

namespace {

constexpr std::int64_t kEverything = std::numeric_limits<std::int64_t>::max();

/// Names the records of damages, and counts those before a position that were read without a failure.
class Places : public SectionListener {
public:
    Places(const ifpstream& in, std::int64_t contentBegin, std::int64_t certain, std::vector<Damage>& damages,
           std::size_t first)
        : in_(in), begin_(contentBegin), certain_(certain), damages_(damages), first_(first) {}

    void Record(const SectionRecord& record) override {
        const bool fails = failedEnd_ < 0 && !in_.IsOk();
        if (fails) failedEnd_ = record.end;
        for (std::size_t i = first_; i < damages_.size(); ++i) {
            const std::int64_t at = damages_[i].offset - begin_;
            const bool here = at >= record.begin && at < record.end;
            if ((here || (fails && at == in_.GetFailPosition())) && damages_[i].record.empty())
                damages_[i].record = record.Text();
        }
        if (record.end > certain_ || failedEnd_ >= 0) certain_ = -1;
        if (certain_ < 0 || record.group < 0) return;
        groups_ = record.group + 1;
        points_ = record.point + 1;
    }

    int GetGroups() const { return groups_; }

    /// Of the last of these groups.
    int GetPoints() const { return points_; }

    /// Where the record ends in which a read failed; -1: none did.
    std::int64_t GetFailedEnd() const { return failedEnd_; }

private:
    const ifpstream& in_;
    std::int64_t begin_;
    std::int64_t certain_;
    std::vector<Damage>& damages_;
    std::size_t first_;
    int groups_ = 0;
    int points_ = 0;
    std::int64_t failedEnd_ = -1;
};

void KeepOnly(CLibGps& book, int groups, int points) {
    while (book.GetGrpArSize() > groups) book.DelGrpAt(book.GetGrpArSize() - 1);
    const int last = groups - 1;
    while (book.GetPunArSize(last) > points) book.DelPunAt(last, book.GetPunArSize(last) - 1);
}

class Reading {
public:
    Reading(FileOperations& files, int file, const FoundSection& section, const std::string& path,
            CLibGps& book, CDrawingsMapper& drawings, DamageReport& report)
        : files_(files),
          file_(file),
          section_(section),
          path_(path),
          book_(book),
          drawings_(drawings),
          report_(report) {}

    void All() {
        const std::size_t before = report_.damages.size();
        Read();
        if (report_.damages.size() > before) Place(before);
    }

private:
    void Read();
    void Place(std::size_t firstDamage);

    FileOperations& files_;
    int file_;
    const FoundSection& section_;
    const std::string& path_;
    CLibGps& book_;
    CDrawingsMapper& drawings_;
    DamageReport& report_;
    bool inStep_ = false;                 // the last record ends where the section ends
    std::int64_t certain_ = kEverything;  // up to here what was read is so
    bool failed_ = false;                 // a read did not find its bytes
};

void Reading::Read() {
    const SectionEntry& entry = section_.entry;
    SectionSource source(files_, file_, section_);
    ifpstream in(source, entry.length, entry.version);
    in.SetPastEndLimit(kPastEndReads);
    bool exhausted = false;
    try {
        book_.LeggeDaFile(in, true, true, entry.version, path_.c_str(), drawings_);
    } catch (const StreamExhausted&) {
        exhausted = true;
    }
    const std::int64_t left = in.GetRemaining();
    inStep_ = !exhausted && left == 0 && CountItems(book_) == entry.items;
    in.SetPastEndLimit(-1);
    in.Skip(left);
    failed_ = !in.IsOk();
    if (in.IsOk() && source.IsWhole() && source.GetBadCount() == 0) {
        if (inStep_) return;
        // Every byte is as it was written, and not all of them have become groups and points.
        if (left == 0 && CountItems(book_) < entry.items)
            throw SystemError(path_, "cannot be opened", ENOMEM);
    }
    TellSectionDamage(section_, in, source, report_.damages);
    if (inStep_) return;
    if (left > 0)
        report_.damages.push_back({entry.name, "", entry.offset + entry.length - left,
                                   std::to_string(left) + " bytes are left over behind the last record"});
    for (const auto& bad : source.GetBadBlocks()) {
        if (!bad.repaired) certain_ = std::min(certain_, bad.offset - entry.offset);
    }
}

void Reading::Place(std::size_t firstDamage) {
    SectionSource source(files_, file_, section_);
    ifpstream in(source, section_.entry.length, section_.entry.version);
    Places places(in, section_.entry.offset, certain_, report_.damages, firstDamage);
    in.SetPastEndLimit(kPastEndReads);
    try {
        WalkSection(in, &places);
    } catch (const StreamExhausted&) {  // all that is there has been told
    }
    // A record that failed inside of its own bounds leaves those behind it in step.
    const bool onlyInside = inStep_ && places.GetFailedEnd() < section_.entry.length;
    if ((certain_ == kEverything && !failed_) || onlyInside) return;
    KeepOnly(book_, places.GetGroups(), places.GetPoints());
    const std::int64_t lost = section_.entry.items - CountItems(book_);
    if (lost > 0)
        report_.damages.push_back({section_.entry.name, "", -1,
                                   std::to_string(lost) + " of " + std::to_string(section_.entry.items) +
                                       " groups and points cannot be read"});
}

}  // namespace

std::int64_t CountItems(const CLibGps& book) {
    std::int64_t items = book.GetGrpArSize();
    for (int g = 0; g < book.GetGrpArSize(); ++g) items += book.GetPunArSize(g);
    return items;
}

void ReadGps(FileOperations& files, int file, const FoundSection& section, const std::string& path,
             CLibGps& book, CDrawingsMapper& drawings, DamageReport& report) {
    Reading(files, file, section, path, book, drawings, report).All();
}

}  // namespace gpsproject
