#include "apps/gpsbook/book/ExchangeCheck.h"

#include <fmt/format.h>

#include <cerrno>
#include <limits>
#include <system_error>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "gps/model/CGrpGps.h"
#include "gps/model/CPunGps.h"
#include "host/project/Project.h"
#include "host/project/SectionDamage.h"
#include "platform/base/GpsValues.h"
#include "platform/base/ifpstream.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"

namespace gpsbook {

namespace {

using gpsproject::Project;

constexpr std::string_view kSignature = "FCP";

class Walk {
public:
    Walk(ifpstream& in, ExchangeKind kind, ExchangeContent& found)
        : in_(in), found_(found), groups_(kind == ExchangeKind::groups) {}

    void All() {
        Head();
        try {
            if (groups_)
                Groups(found_.count);
            else
                Points(found_.count);
        } catch (const StreamExhausted&) {
            Wrong(in_.GetFailPosition(), "it promises more than could ever be there");
            found_.missing = std::numeric_limits<std::int64_t>::max();
        }
        if (found_.IsWhole()) End();
    }

private:
    void Head() {
        in_.ReadMarker();
        const bool marked = in_.IsOk() && !in_.GetHeaderFlag() && in_.HasKnownMarker();
        if (!marked) Wrong(0, "it does not begin as an exchange file");
        const std::int64_t signature = in_.GetPosition();
        if (in_.ReadString() != kSignature) Wrong(signature, "its signature is not that of an exchange file");
        const std::int64_t version = in_.GetPosition();
        in_.SetVersion(found_.version = in_.ReadShort());
        const std::int64_t count = in_.GetPosition();
        found_.count = in_.ReadInt();
        if (!in_.IsOk()) return Wrong(in_.GetFailPosition(), "the file ends within its head");
        if (found_.version < Project::kOldestVersion || found_.version > Project::kNewestVersion)
            Wrong(version, fmt::format("its records are of version {}; those from {} to {} can be read",
                                       found_.version, Project::kOldestVersion, Project::kNewestVersion));
        if (found_.count < 0)
            Wrong(count, fmt::format("the number of {} is {}", groups_ ? "groups" : "points", found_.count));
    }

    void Groups(int count) {
        CLibMap map;
        CGrpGps group(nullptr, false, &map, 0);
        CDrawingsMapper drawings;
        for (int g = 0; g < count; ++g) {
            at_.group = g;
            if (IsMissing(count - g)) return;
            group.LeggeDaFile(in_, drawings, false);
            const std::int64_t at = in_.GetPosition();
            const int points = in_.ReadInt();
            EndRecord();
            ++found_.groups;
            if (points < 0) Wrong(at, fmt::format("the number of its points is {}", points));
            Points(points);
        }
        at_.group = -1;
    }

    void Points(int count) {
        for (int p = 0; p < count; ++p) {
            at_.point = p;
            if (IsMissing(count - p)) break;
            point_.LeggeDaFile(in_);
            EndRecord();
            ++found_.points;
            found_.withPlane += point_.EstValidoXY() ? 1 : 0;
            found_.withFix += HasFix(point_) ? 1 : 0;
        }
        at_.point = -1;
    }

    // Whether the file ends before this record, of `left` that are still promised.
    bool IsMissing(int left) {
        in_.SetPastEndLimit(gpsproject::kPastEndReads);  // each record has its own
        if (in_.GetRemaining() > 0) return false;
        Wrong(in_.GetPosition(), "the file ends before it");
        found_.missing += left;
        return true;
    }

    void EndRecord() {
        if (!in_.IsOk()) Wrong(in_.GetFailPosition(), "the record wants more from here on than there is");
    }

    void End() {
        const std::int64_t at = in_.GetPosition();
        const int zero = in_.ReadInt();
        if (!in_.IsOk()) return Wrong(at, "the 0 behind the last record is missing");
        if (zero != 0)
            return Wrong(at, fmt::format("behind the last record stands {} in the place of 0", zero));
        if (const std::int64_t left = in_.GetRemaining())
            Wrong(in_.GetPosition(), Counted(left, "byte") + " left over behind the end");
    }

    void Wrong(std::int64_t offset, const std::string& what) {
        if (!found_.IsWhole()) return;
        found_.offset = offset;
        found_.record = RecordText();
        found_.wrong = what;
    }

    std::string RecordText() const {
        std::string text = at_.group < 0 ? "" : fmt::format("group {}", at_.group);
        if (at_.point >= 0) text += fmt::format("{}point {}", text.empty() ? "" : ", ", at_.point);
        return text;
    }

    ifpstream& in_;
    ExchangeContent& found_;
    const bool groups_;
    CPunGps point_{nullptr, false, nullptr};
    struct {
        int group = -1;
        int point = -1;
    } at_;  // the record that is being read; -1: none
};

void RefuseUnreadable(const std::string& file, int error) {
    if (error == ENOENT || error == ENOTDIR)
        throw CommandError(exitNotFound, file + ": there is no such file; check the name");
    if (error == EISDIR || error == EINVAL)
        throw CommandError(exitRefused, file + ": is no ordinary file; give the name of an exchange file");
    throw CommandError(exitFailure, file + ": cannot be read (" + std::generic_category().message(error) +
                                        "); check its permissions");
}

}  // namespace

std::string ExchangeContent::Problem() const {
    return fmt::format("byte {}{}{}: {}", offset, record.empty() ? "" : ", ", record, wrong);
}

bool HasFix(const CPunGps& point) {
    return IsCoordValid(point.GetLat()) && IsCoordValid(point.GetLong()) && IsCoordValid(point.GetElev());
}

ExchangeContent CheckExchangeFile(const std::string& file, ExchangeKind kind) {
    ExchangeContent found;
    ifpstream in(file.c_str(), Project::kNewestVersion);
    if (in.GetError() != 0) RefuseUnreadable(file, in.GetError());
    Walk(in, kind, found).All();
    if (in.GetError() != 0) RefuseUnreadable(file, in.GetError());
    return found;
}

}  // namespace gpsbook
