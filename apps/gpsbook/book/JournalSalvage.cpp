#include "apps/gpsbook/book/JournalSalvage.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <unordered_set>
#include <utility>

#include "apps/gpsbook/book/Address.h"
#include "gps/persist/JournalCodes.h"
#include "gps/persist/StreamVersions.h"
#include "host/base/JournalFrame.h"
#include "host/project/FileMessage.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsbook {

using namespace gpsproject;

namespace {

constexpr const char* kName = "SALVAGED";
constexpr std::ptrdiff_t kCloudRecord = 24;  // bytes, at the end of a group's record
constexpr double kSamePlace = 0.001;         // metres: the same conversion, and not that of another zone

/// A point of an entry, as its record is written today.
struct Candidate {
    int group;
    std::string record;
};

/// Frames of edits that were taken back while they were written do not count.
void DropGivenUp(std::vector<JournalFrame>& frames) {
    std::vector<JournalFrame> kept;
    for (const JournalFrame& frame : frames) {
        if (frame.code == kEditGivenUp) {
            std::uint64_t next = frame.sequence;
            while (!kept.empty() && kept.back().more && kept.back().sequence + 1 == next) {
                next = kept.back().sequence;
                kept.pop_back();
            }
        } else {
            kept.push_back(frame);
        }
    }
    frames = std::move(kept);
}

/// The entries that opening did not bring back, in the order of the file.
std::vector<JournalFrame> FramesLeft(const Project& project) {
    const FoundJournal& found = project.GetJournal();
    const std::vector<JournalFrame>& good = found.scan.frames;
    std::vector<JournalFrame> left;
    if (found.tie == JournalTie::follows) {
        const std::int64_t refused = project.GetReplay().refusedAt;
        auto from = good.end();
        if (refused >= 0)
            from = std::find_if(good.begin(), good.end(),
                                [&](const JournalFrame& frame) { return frame.offset >= refused; });
        else  // the end of an edit that may have been stored is not there
            while (from != good.begin() && (from - 1)->more) --from;
        left.assign(from, good.end());
        const std::uint64_t last = good.empty() ? 0 : good.back().sequence;
        for (const JournalFrame& frame : found.scan.later)
            if (frame.sequence > std::max(last, found.after)) left.push_back(frame);
        std::erase_if(left, [&](const JournalFrame& frame) { return frame.sequence <= found.after; });
    } else {
        left = good;
        left.insert(left.end(), found.scan.later.begin(), found.scan.later.end());
    }
    DropGivenUp(left);
    return left;
}

// Without what a shared project knows of the point: that does not make it another one.
std::string RecordOf(CPunGps& point, ofpstream& scratch) {
    scratch.Clear();
    point.SalvaInFile(scratch, true);
    return std::string(scratch.GetBytes());
}

/// Reads what stands behind the version and the position of a group, and with `point` that of a point. False:
/// it is not what it should be.
bool ReadEntry(const std::string& payload, int& group, int* point,
               const std::function<void(ifpstream&)>& read) {
    ifpstream in(payload.data(), payload.size(), 0);
    in.SetHeaderFlag(true);  // the journal's first byte is not that of an exchange file
    in.SetPastEndLimit(0);
    try {
        in.SetVersion(in.ReadShort());
        if (in.GetVersion() > kVerCorrente) return false;
        group = in.ReadInt();
        if (point) *point = in.ReadInt();
        if (group < 0 || (point && *point < 0)) return false;
        read(in);
    } catch (const StreamExhausted&) {
        return false;
    }
    return in.GetRemaining() == 0;
}

std::string FreeName(const CLibGps& book) {
    const auto taken = [&](const std::string& name) {
        for (int g = 0; g < book.GetGrpArSize(); ++g)
            if (NameOf(*book.GetGrpAt(g)) == name) return true;
        return false;
    };
    std::string name = kName;
    for (int n = 2; taken(name); ++n) name = fmt::format("{}-{}", kName, n);
    return name;
}

/// How many points of a group have the plane coordinates that its conversion gives, and how many others.
struct Agreement {
    int same = 0;
    int other = 0;
};

Agreement AgreementOf(const CLibGps& book, int g) {
    Agreement found;
    const CConvCoord& conversion = *book.GetGrpAt(g)->GetConvCoord();
    for (int p = 0; p < book.GetPunArSize(g); ++p) {
        const CPunGps& point = *book.GetPunAt(g, p);
        if (!point.EstValidoXY() || !IsCoordValid(point.GetLat()) || !IsCoordValid(point.GetLong())) continue;
        double east = 0, north = 0, height = 0;
        const bool is = conversion.GrafGpsToPlanAtt(point.GetLat(), point.GetLong(), point.GetElev(),
                                                    point.GetAltAnt(), east, north, height) &&
                        std::hypot(east - point.GetCoordX(), north - point.GetCoordY()) <= kSamePlace;
        ++(is ? found.same : found.other);
    }
    return found;
}

class Salvager {
public:
    explicit Salvager(Project& project) : project_(project), book_(project.GetBook()) {}

    SalvageReport Run() {
        Collect();
        LeaveOutWhatIsThere();
        for (const auto& [from, records] : wanted_) AddGroup(from, records);
        return std::move(report_);
    }

private:
    void Collect() {
        const FoundJournal& found = project_.GetJournal();
        std::string payload;
        for (const JournalFrame& frame : FramesLeft(project_)) {
            if (const int error = ReadPayload(project_.GetFiles(), project_.GetJournalFile(), frame, payload))
                throw SystemError(found.path, "cannot be read", error);
            if (frame.code == kTmpPunGps) {
                TakePoint(payload);
                continue;
            }
            ++report_.left[frame.code];
            if (frame.code == kTmpGrpGps)
                TakeGroup(payload);
            else
                states_.clear();  // from here on positions may be those of other points
        }
    }

    void TakePoint(const std::string& payload) {
        CPunGps point(nullptr, false, nullptr);
        int group = -1, at = -1;
        if (!ReadEntry(payload, group, &at, [&](ifpstream& in) { point.LeggeDaFile(in); })) {
            ++report_.unreadable;
            return;
        }
        // A later entry at the same place is a later state of the same point.
        const auto [state, isNew] = states_.try_emplace({group, at}, candidates_.size());
        if (isNew)
            candidates_.push_back({group, RecordOf(point, scratch_)});
        else
            candidates_[state->second].record = RecordOf(point, scratch_);
    }

    // The last one: it is nearest to how the group was.
    void TakeGroup(const std::string& payload) {
        CGrpGps group(nullptr, false, &project_.GetMap(), 0);
        int index = -1;
        const auto read = [&](ifpstream& in) { group.LeggeDaFile(in, project_.GetDrawings(), true); };
        if (!ReadEntry(payload, index, nullptr, read)) return;
        // What is salvaged is new: its id may be that of another project, or of something deleted here.
        std::string entry = payload;
        std::fill(entry.end() - kCloudRecord, entry.end(), '\0');
        groups_[index] = std::move(entry);
    }

    void LeaveOutWhatIsThere() {
        std::unordered_set<std::string_view> asked, there;
        for (const Candidate& candidate : candidates_) asked.insert(candidate.record);
        for (int g = 0; g < book_.GetGrpArSize(); ++g) {
            for (int p = 0; p < book_.GetPunArSize(g); ++p) {
                const std::string record = RecordOf(*book_.GetPunAt(g, p), scratch_);
                if (const auto found = asked.find(record); found != asked.end()) there.insert(*found);
            }
        }
        for (const Candidate& candidate : candidates_) {
            if (there.insert(candidate.record).second)  // of equal ones the first
                wanted_[candidate.group].push_back(&candidate.record);
            else
                ++report_.there;
        }
    }

    void AddGroup(int from, const std::vector<const std::string*>& records) {
        const std::string name = FreeName(book_);
        book_.AddGrp(false);
        SalvagedGroup made;
        made.group = book_.GetGrpArSize() - 1;
        made.from = from;
        for (const std::string* record : records) {
            ifpstream in(record->data(), record->size(), kVerCorrente);
            book_.AddPun(made.group, false)->LeggeDaFile(in);
            ++made.points;
        }
        CGrpGps& group = *book_.GetGrpAt(made.group);
        made.conversion = TakeFromEntry(from, made.group) || TakeFromBook(from, made.group);
        if (!made.conversion) {
            *group.GetConvCoord() = CConvCoord(&project_.GetMap());
            group.SetCodeElab(static_cast<short>(group.GetCodeElab() & ~1));
        }
        group.SetNome(name);
        group.SetNomeGrp(name);
        report_.points += made.points;
        report_.groups.push_back(made);
    }

    bool TakeFromEntry(int from, int g) {
        const auto entry = groups_.find(from);
        if (entry == groups_.end()) return false;
        CGrpGps& group = *book_.GetGrpAt(g);
        int ignored = 0;
        ReadEntry(entry->second, ignored, nullptr,
                  [&](ifpstream& in) { group.LeggeDaFile(in, project_.GetDrawings(), true); });
        return group.IsCdElabValid() && AgreementOf(book_, g).other == 0;
    }

    // A foreign journal may count other groups: without a point that tells so, it is not taken for the same.
    bool TakeFromBook(int from, int g) {
        if (from >= g - static_cast<int>(report_.groups.size())) return false;
        CGrpGps& group = *book_.GetGrpAt(g);
        const CGrpGps& there = *book_.GetGrpAt(from);
        if (!there.IsCdElabValid()) return false;
        *group.GetConvCoord() = *there.GetConvCoord();
        group.SetCodeElab(static_cast<short>(group.GetCodeElab() | 1));
        const Agreement found = AgreementOf(book_, g);
        return found.other == 0 && (found.same > 0 || project_.GetJournal().tie == JournalTie::follows);
    }

    std::map<std::pair<int, int>, std::size_t> states_;  // candidates by group and point
    Project& project_;
    CLibGps& book_;
    SalvageReport report_;
    ofpstream scratch_{kVerCorrente};
    std::vector<Candidate> candidates_;
    std::map<int, std::string> groups_;                      // entries by position
    std::map<int, std::vector<const std::string*>> wanted_;  // records by position
};

}  // namespace

bool NeedsSalvage(const Project& project) {
    const FoundJournal& found = project.GetJournal();
    switch (found.tie) {
        case JournalTie::foreign:
            return true;
        case JournalTie::follows:
            return found.scan.end != JournalScan::End::clean || project.GetReplay().refusedAt >= 0;
        case JournalTie::none:
        case JournalTie::saved:
            break;
    }
    return false;
}

SalvageReport SalvagePoints(Project& project) { return Salvager(project).Run(); }

}  // namespace gpsbook
