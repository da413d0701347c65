#include "apps/gpsbook/book/ExchangeLoad.h"

#include <fmt/format.h>

#include <algorithm>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "host/os/FileOperations.h"
#include "host/project/Project.h"

namespace gpsbook {

namespace {

using gpsproject::Project;
using Result = CLibGps::TResActionObj;

/// Tells whether a file is still the one that was looked through.
class SameFile {
public:
    explicit SameFile(const std::string& file) : file_(file) {
        known_ = FileOperations::System().GetFacts(file, facts_) == 0;
    }
    void Require() const {
        FileOperations::Facts now;
        if (known_ && FileOperations::System().GetFacts(file_, now) == 0 && now.IsSameContent(facts_)) return;
        throw CommandError(exitConflict, file_ +
                                             ": was changed while it was read, nothing is saved; try "
                                             "again when its writer is done");
    }

private:
    std::string file_;
    FileOperations::Facts facts_;
    bool known_ = false;
};

// A file of the other kind looks damaged; it is not.
std::string Advice(const std::string& file, ExchangeKind kind) {
    const bool points = kind == ExchangeKind::points;
    if (CheckExchangeFile(file, points ? ExchangeKind::groups : ExchangeKind::points).IsWhole())
        return points ? "it is a file of groups: gpsbook groups load reads it"
                      : "it is a file of points: gpsbook points load reads it";
    return "nothing is loaded; --force takes from it what the damage leaves, right or wrong";
}

ExchangeContent CheckFile(const LoadPlace& place, ExchangeKind kind) {
    ExchangeContent content = CheckExchangeFile(place.file, kind);
    if (content.missing > kMostMissing)
        throw CommandError(exitRefused,
                           place.file + ": " + content.Problem() +
                               ". It promises so much more than it holds that not even --force takes it");
    if (!content.IsWhole() && !place.force)
        throw CommandError(exitRefused,
                           place.file + ": " + content.Problem() + "; " + Advice(place.file, kind));
    return content;
}

void CheckAfter(const LoadPlace& place, const std::string& whose, int size, const char* one) {
    if (place.force || (place.after >= -1 && place.after < size)) return;
    throw CommandError(
        exitUsage, fmt::format("--after: {} is no position here, {} has {}; give -1 to {}, -1 for in front "
                               "of all",
                               place.after, whose, Counted(size, one), size - 1));
}

// The first place that an insertion can have got.
int FirstPlace(const LoadPlace& place, int size) {
    return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{place.after} + 1, 0, size));
}

/// Counts new points, and notes them.
class NewPoints {
public:
    NewPoints(Project& project, LoadedItems& loaded) : project_(project), loaded_(loaded) {}

    void Take(int g, int first, int end) {
        for (int p = first; p < end; ++p) {
            const CPunGps& point = *project_.GetBook().GetPunAt(g, p);
            ++loaded_.points;
            plane_ += point.EstValidoXY() ? 1 : 0;
            fix_ += HasFix(point) ? 1 : 0;
            project_.GetEdits().PointInserted(g, p);
        }
    }

    void End() {
        loaded_.withoutPlane = loaded_.points - plane_;
        loaded_.lostPlane = std::max<std::int64_t>(loaded_.content.withPlane - plane_, 0);
        loaded_.lostFix = std::max<std::int64_t>(loaded_.content.withFix - fix_, 0);
    }

private:
    Project& project_;
    LoadedItems& loaded_;
    int plane_ = 0;
    int fix_ = 0;
};

// Every place existed: what found none lacked memory.
void RequireAll(const LoadPlace& place, Result result) {
    if (result == Result::notOpened)
        throw CommandError(exitFailure, place.file + ": could not be opened a second time; try again");
    if (result == Result::notInserted && !place.force)
        throw CommandError(exitFailure, place.file +
                                            ": out of memory, nothing is saved; close other programs, or "
                                            "allow this one more");
}

}  // namespace

LoadedItems LoadPoints(Project& project, const LoadPlace& place, int group, bool fromPlane) {
    CLibGps& book = project.GetBook();
    const int before = book.GetPunArSize(group);
    CheckAfter(place, "group " + PlaceText(book, {group, -1}), before, "point");
    LoadedItems loaded;
    const SameFile same(place.file);
    loaded.content = CheckFile(place, ExchangeKind::points);
    loaded.result = book.CaricaPuntiDaFile(fromPlane ? 1 : 0, group, place.after, place.file);
    same.Require();
    RequireAll(place, loaded.result);
    loaded.first = FirstPlace(place, before);
    NewPoints points(project, loaded);
    points.Take(group, loaded.first, loaded.first + book.GetPunArSize(group) - before);
    points.End();
    return loaded;
}

LoadedItems LoadGroups(Project& project, const LoadPlace& place, short mode) {
    CLibGps& book = project.GetBook();
    const int before = book.GetGrpArSize();
    if (mode != 0 && !place.force)
        throw CommandError(exitUsage, fmt::format("--mode: {} loads nothing; only 0 does something", mode));
    CheckAfter(place, "the book", before, "group");
    LoadedItems loaded;
    const SameFile same(place.file);
    loaded.content = CheckFile(place, ExchangeKind::groups);
    loaded.result = book.CaricaGruppoDaFile(mode, place.after, place.file, project.GetDrawings());
    same.Require();
    RequireAll(place, loaded.result);
    loaded.first = FirstPlace(place, before);
    loaded.groups = book.GetGrpArSize() - before;
    NewPoints points(project, loaded);
    for (int g = loaded.first; g < loaded.first + loaded.groups; ++g) {
        project.GetEdits().GroupInserted(g);
        loaded.otherDatums += book.GetGrpAt(g)->GetConvCoord()->IsDatumDiverso() ? 1 : 0;
        points.Take(g, 0, book.GetPunArSize(g));
    }
    if (mode == 0) points.End();
    return loaded;
}

}  // namespace gpsbook
