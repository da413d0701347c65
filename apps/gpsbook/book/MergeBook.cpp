#include "apps/gpsbook/book/MergeBook.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "gps/model/CLibGps.h"
#include "gps/persist/StreamVersions.h"
#include "host/project/Project.h"
#include "platform/base/ofpstream.h"

namespace gpsbook {

namespace {

using gpsproject::CloudTables;
using gpsproject::Project;

std::int64_t PointsOf(const CLibGps& book) {
    std::int64_t points = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g) points += book.GetPunArSize(g);
    return points;
}

/// The items of a book as its file would hold them, to know in which of them a merge has filled something.
class Contents {
public:
    explicit Contents(CLibGps& book) : book_(book) {
        for (int g = 0; g < book.GetGrpArSize(); ++g) {
            Row& row = rows_.emplace_back();
            row.group = HashOf(*book.GetGrpAt(g));
            for (int p = 0; p < book.GetPunArSize(g); ++p) row.points.push_back(HashOf(*book.GetPunAt(g, p)));
        }
    }

    /// New items stand behind those that were there.
    void CountChanged(std::int64_t& groups, std::int64_t& points) {
        for (std::size_t g = 0; g < rows_.size(); ++g) {
            const int at = static_cast<int>(g);
            groups += HashOf(*book_.GetGrpAt(at)) != rows_[g].group ? 1 : 0;
            for (std::size_t p = 0; p < rows_[g].points.size(); ++p)
                points += HashOf(*book_.GetPunAt(at, static_cast<int>(p))) != rows_[g].points[p] ? 1 : 0;
        }
    }

private:
    struct Row {
        std::size_t group = 0;
        std::vector<std::size_t> points;
    };

    static std::size_t HashOf(CGrpGps& group) {
        return HashOf(group, [&](ofpstream& out) { group.SalvaInFile(out, true, nullptr); });
    }
    static std::size_t HashOf(CPunGps& point) {
        return HashOf(point, [&](ofpstream& out) { point.SalvaInFile(out, true); });
    }

    template <class Save>
    static std::size_t HashOf(const CEgn& entity, const Save& save) {
        std::string record = Saved(save);
        const std::string plain = Saved([&](ofpstream& out) { entity.CEgn::SalvaInFile(out); });
        if (const std::size_t at = record.find(plain); at != std::string::npos)
            record.erase(at, plain.size());
        // A merge makes 0 of a descriptor that there is none of on both sides: that fills nothing, though the
        // entity takes more room in the file.
        CEgn same(entity);
        same.SetIdentDescr(std::max(same.GetIdentDescr(), 0));
        return std::hash<std::string>()(record + Saved([&](ofpstream& out) { same.SalvaInFile(out); }));
    }
    template <class Save>
    static std::string Saved(const Save& save) {
        ofpstream out(kVerCorrente);
        save(out);
        return std::string(out.GetBytes());
    }

    CLibGps& book_;
    std::vector<Row> rows_;
};

bool IsHere(const CCloudTable& table, long long id) {
    CCloudItem* item = nullptr;
    return id > 0 && table.FindItem(id, item) && item;
}

/// What a merge has to add.
MergedItems Missing(CloudTables& tables, const CLibGps& other) {
    MergedItems missing;
    for (int g = 0; g < other.GetGrpArSize(); ++g) {
        missing.groups += IsHere(tables.base, other.GetGrpAt(g)->GetCloudId()) ? 0 : 1;
        for (int p = 0; p < other.GetPunArSize(g); ++p)
            missing.points += IsHere(tables.points, other.GetPunAt(g, p)->GetCloudId()) ? 0 : 1;
    }
    return missing;
}

void RequireAnswered(Project& project) {
    if (!project.GetCloud().GetCommit()) return;
    throw CommandError(
        exitConflict, project.GetPath() +
                          ": has sent what it was not answered yet, so that nobody knows which of its groups "
                          "and points the project has; gpsbook sync it first");
}

void RequireCopies(Project& project, Project& other) {
    const auto refuse = [&](const std::string& why) {
        throw CommandError(exitConflict, why + "; gpsbook import-book takes the groups of " +
                                             other.GetPath() + " over as new ones");
    };
    for (Project* one : {&project, &other})
        if (!one->GetCloud().IsLinked())
            refuse(one->GetPath() + ": is not shared, and merged are copies of a shared book");
    const auto& here = project.GetCloud().GetState().link;
    const auto& there = other.GetCloud().GetState().link;
    if (here.key != there.key)
        refuse(other.GetPath() + ": belongs to the project '" + there.project + "' of " + there.store +
               ", and " + project.GetPath() + " to '" + here.project + "' of " + here.store);
}

bool IsDeletedHere(const CCloudTable& table, long long id) {
    CCloudItem* item = nullptr;
    return id > 0 && table.FindItem(id, item) && !item;
}

/// The merge would bring them back, and take their deletion back with them.
void RequireDeletionsSent(Project& project, Project& other) {
    const CloudTables& tables = project.GetCloud().GetTables();
    const CLibGps& theirs = other.GetBook();
    std::int64_t back = 0;
    for (int g = 0; g < theirs.GetGrpArSize(); ++g) {
        back += IsDeletedHere(tables.base, theirs.GetGrpAt(g)->GetCloudId()) ? 1 : 0;
        for (int p = 0; p < theirs.GetPunArSize(g); ++p)
            back += IsDeletedHere(tables.points, theirs.GetPunAt(g, p)->GetCloudId()) ? 1 : 0;
    }
    if (back == 0) return;
    throw CommandError(exitConflict,
                       fmt::format("{}: {} deleted here, which the project does not know yet, would "
                                   "come back; gpsbook sync it first",
                                   project.GetPath(), Counted(back, "item")));
}

std::int64_t Queued(const CloudTables& tables) {
    return static_cast<std::int64_t>(tables.base.GetDeleted().size() + tables.points.GetDeleted().size());
}

void RequireAll(const Project& other, const MergedItems& made, std::int64_t groups, std::int64_t points) {
    if (made.groups == groups && made.points == points) return;
    throw CommandError(exitFailure, other.GetPath() +
                                        ": out of memory, nothing is saved; close other programs, or allow "
                                        "this one more");
}

void CountNew(const CLibGps& book, MergedItems& made, std::int64_t pointsBefore) {
    made.groups = book.GetGrpArSize() - made.first;
    made.points = PointsOf(book) - pointsBefore;
    for (int g = made.first; g < book.GetGrpArSize(); ++g)
        made.otherDatums += book.GetGrpAt(g)->GetConvCoord()->IsDatumDiverso() ? 1 : 0;
}

}  // namespace

MergedItems MergeBook(Project& project, Project& other) {
    RequireCopies(project, other);
    RequireAnswered(project);
    RequireAnswered(other);
    RequireDeletionsSent(project, other);
    CLibGps& book = project.GetBook();
    CloudTables& tables = project.GetCloud().GetTables();
    const CloudTables& theirs = other.GetCloud().GetTables();
    const MergedItems missing = Missing(tables, other.GetBook());
    const std::int64_t points = PointsOf(book);
    Contents contents(book);

    MergedItems made;
    made.first = book.GetGrpArSize();
    book.MergeCloudItems(&other.GetBook());
    CountNew(book, made, points);
    RequireAll(other, made, missing.groups, missing.points);
    contents.CountChanged(made.filledGroups, made.filledPoints);
    made.asNew = static_cast<std::int64_t>(theirs.base.GetAdded().size() + theirs.points.GetAdded().size());
    // What only the copy still had may have been deleted meanwhile.
    if (made.groups + made.points > made.asNew)
        project.GetCloud().PullAgainAfter(other.GetCloud().GetState());
    made.notTaken = Queued(theirs);
    const auto countChanged = [&](const CCloudTable& from, const CCloudTable& here) {
        for (const CCloudItem* item : from.GetChanged()) {
            CCloudItem* mine = nullptr;
            // What was not here came with its changes.
            if (here.FindItem(item->GetCloudId(), mine) && mine &&
                mine->GetCloudFlag() != item->GetCloudFlag())
                ++made.notTaken;
        }
    };
    countChanged(theirs.base, tables.base);
    countChanged(theirs.points, tables.points);
    return made;
}

MergedItems ImportBook(Project& project, Project& other, bool asNew) {
    const auto& link = project.GetCloud().GetState().link;
    if (!asNew && !link.key.empty() && other.GetCloud().GetState().link.key == link.key)
        throw CommandError(exitConflict,
                           other.GetPath() +
                               ": belongs to the same shared project, in which its groups would be there "
                               "twice; gpsbook merge fills gaps and adds what is missing, --as-new takes all "
                               "of it all the same");
    CLibGps& book = project.GetBook();
    const std::int64_t points = PointsOf(book);
    MergedItems made;
    made.first = book.GetGrpArSize();
    book.ImportCloudItems(&other.GetBook());
    CountNew(book, made, points);
    RequireAll(other, made, other.GetBook().GetGrpArSize(), PointsOf(other.GetBook()));
    return made;
}

}  // namespace gpsbook
