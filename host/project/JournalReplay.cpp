#include "host/project/JournalReplay.h"

#include <cerrno>

#include "gps/options/COpzPostProc.h"
#include "gps/persist/JournalCodes.h"
#include "gps/persist/StreamVersions.h"
#include "host/os/FileOperations.h"
#include "host/project/EditCodes.h"
#include "host/project/FileMessage.h"
#include "host/project/GpsReader.h"
#include "host/project/Project.h"
#include "host/project/SettingsRecord.h"
#include "platform/base/LittleEndian.h"
#include "platform/base/ifpstream.h"
#include "platform/entity/CCloudTable.h"

namespace gpsproject {

namespace {

// A deletion is for the cloud table to know, before the item goes.
void Announce(CCloudItem* item) {
    if (CCloudTable* table = item->GetTable()) table->ItemDeletedLocally(item);
}

/// Applies entries to a book. The library makes what is missing up to an index; here every entry has been
/// written of a book that had the items, so that a gap says that journal and book do not belong together.
class Entries {
public:
    Entries(Project& project, ReplayReport& report)
        : project_(project), book_(project.GetBook()), report_(report) {}

    /// Empty when it was applied, else what is wrong with it.
    std::string Apply(int code, const std::string& payload) {
        ifpstream in(payload.data(), payload.size(), 0);
        in.SetHeaderFlag(true);  // the journal's first byte is not that of an exchange file
        in.SetPastEndLimit(0);
        try {
            const std::string wrong = ApplyOne(code, in, payload);
            if (!wrong.empty()) return wrong;
        } catch (const StreamExhausted&) {
            return "the entry is shorter than its content";
        }
        return in.GetRemaining() == 0 ? "" : "bytes are left over in the entry";
    }

private:
    std::string ApplyOne(int code, ifpstream& in, const std::string& payload) {
        const auto number = [&](std::size_t i) {
            const std::size_t at = 2 + 4 * i;
            return at + 4 <= payload.size()
                       ? static_cast<std::int32_t>(LoadLittleEndian<std::uint32_t>(
                             reinterpret_cast<const unsigned char*>(payload.data()) + at))
                       : -1;
        };
        if (payload.size() < 2) return "the entry is shorter than its content";
        const auto version = static_cast<short>(
            LoadLittleEndian<std::uint16_t>(reinterpret_cast<const unsigned char*>(payload.data())));
        if (version > kVerCorrente)
            return "the entry has version " + std::to_string(version) + "; use a newer program";
        const int groups = book_.GetGrpArSize();
        const bool group = number(0) >= 0 && number(0) < groups;
        const int points = group ? book_.GetPunArSize(number(0)) : 0;
        const bool point = group && number(1) >= 0 && number(1) < points;
        const auto lacks = [&] { return NoPlace(number(0), groups, number(1), points); };
        switch (code) {
            case kTmpGrpGps:
                if (!group && number(0) != groups) return lacks();
                book_.LoadTmpGrpGps(in, true, project_.GetDrawings());
                ++report_.groups;
                return "";
            case kTmpPunGps:
                if (!group || (!point && number(1) != points)) return lacks();
                book_.LoadTmpPunGps(in, true);
                ++report_.points;
                return "";
            case kDelGrpGps: {
                if (!group) return lacks();
                const int g = number(0);
                for (int p = 0; p < points; ++p) Announce(CPunGps::CloudItemOf(book_.GetPunAt(g, p)));
                Announce(CGrpGps::CloudItemOf(book_.GetGrpAt(g)));
                book_.GetGrpAt(g)->AzzeraPunSet();
                book_.LoadDelGrpGps(in, true);
                ++report_.deleted;
                return "";
            }
            case kDelPunGps: {
                if (!point) return lacks();
                Announce(CPunGps::CloudItemOf(book_.GetPunAt(number(0), number(1))));
                int handle = 0;
                book_.LoadDelPunGps(in, true, handle);
                ++report_.deleted;
                return "";
            }
            default:
                break;
        }
        in.SetVersion(in.ReadShort());
        switch (code) {
            case kGroupInserted:
                if (!group && number(0) != groups) return lacks();
                book_.InsGrpAt(in.ReadInt(), false);
                break;
            case kPointInserted: {
                if (!group || (!point && number(1) != points)) return lacks();
                const int g = in.ReadInt();
                book_.InsPunAt(g, in.ReadInt(), false);
                break;
            }
            case kGroupsSwapped: {
                if (!group || number(1) < 0 || number(1) >= groups) return lacks();
                const int i = in.ReadInt();
                book_.GrpGpsSwap(i, in.ReadInt());
                break;
            }
            case kPointsSwapped: {
                if (!point || number(2) < 0 || number(2) >= points) return lacks();
                const int g = in.ReadInt();
                const int i = in.ReadInt();
                book_.PunGpsSwap(g, i, in.ReadInt());
                break;
            }
            case kOptionsChanged:
                ReadOptions(in);
                break;
            case kMapChanged:
                project_.GetMap().LeggeDaFile(in, version);
                break;
            case kSettingsChanged:
                project_.GetSettings().clear();
                ReadSettings(in, project_.GetSettings());
                break;
            case kVersionChanged:
                project_.SetStreamVersion(in.ReadShort());
                break;
            case kCommitBegun:
            case kCommitAnswered:
            case kPageTaken:
            case kConflictDropped:
                if (const std::string wrong = project_.GetCloud().Replay(code, in); !wrong.empty())
                    return wrong;
                break;
            default:
                return "kind " + std::to_string(code) + " is not known; use a newer program";
        }
        book_.SetModifiedFlag(true);
        return "";
    }

    void ReadOptions(ifpstream& in) {
        book_.GetOpzLibGps().LeggeDaFile(in, true, in.GetVersion());
        book_.GetOpzListDisGps().LeggeDaFile(in, true, in.GetVersion());
        if (in.ReadUChar() == 0) return;
        *book_.GetOpzPostProc() = COpzPostProc();  // its record adds to the lists of files
        book_.GetOpzPostProc()->LeggeDaFile(in);
    }

    static std::string NoPlace(int g, int groups, int p, int points) {
        return "it concerns group " + std::to_string(g) + ", item " + std::to_string(p) +
               ", and the book has " + std::to_string(groups) + " groups, and " + std::to_string(points) +
               " points there: this journal does not continue this book";
    }

    Project& project_;
    CLibGps& book_;
    ReplayReport& report_;
};

}  // namespace

ReplayReport Replay(Project& project, FileOperations& files, int file, const std::string& path,
                    const std::vector<JournalFrame>& frames, std::uint64_t after) {
    ReplayReport report;
    Entries entries(project, report);
    std::string payload;
    std::size_t begin = 0;  // of the edit
    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (frames[i].sequence <= after) {
            begin = i + 1;
            continue;
        }
        if (frames[i].more) continue;
        if (frames[i].code == kEditGivenUp) {
            report.unfinished += static_cast<std::int64_t>(i - begin);
        } else {
            for (std::size_t k = begin; k <= i; ++k) {
                if (const int error = ReadPayload(files, file, frames[k], payload))
                    throw SystemError(path, "cannot be read", error);
                const std::string wrong = entries.Apply(frames[k].code, payload);
                if (!wrong.empty()) {
                    report.refusedAt = frames[k].offset;
                    report.refused = wrong;
                    return report;
                }
                ++report.entries;
            }
            ++report.edits;
        }
        begin = i + 1;
        report.upTo = frames[i].sequence;
    }
    if (!frames.empty()) report.upTo = frames.back().sequence;
    report.unfinished += static_cast<std::int64_t>(frames.size() - begin);
    return report;
}

}  // namespace gpsproject
