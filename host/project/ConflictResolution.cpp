#include "host/project/ConflictResolution.h"

#include <vector>

#include "host/project/CloudItems.h"
#include "host/project/KeptItem.h"

namespace gpsproject {

namespace {

using Kind = ProjectError::Kind;

[[noreturn]] void Refuse(Kind kind, const Project& project, int number, const std::string& why) {
    throw ProjectError(kind, project.GetPath() + ": conflict " + std::to_string(number) + " " + why);
}

// A copy: what is settled leaves the list.
CloudConflict Find(Project& project, int number) {
    if (const CloudConflict* found = project.GetCloud().FindConflict(number)) return *found;
    throw ProjectError(Kind::notFound, project.GetPath() + ": there is no conflict " +
                                           std::to_string(number) + "; see which there are with the status");
}

/// By its id, or, of a group that was added again and has none yet, by its ticket, which is negative then.
int PlaceOfGroup(Project& project, std::int64_t id) {
    const CLibGps& book = project.GetBook();
    if (id > 0) {
        CCloudItem* const group = FindItem(project.GetCloud().GetTables(), CloudKind::group, id);
        return PlaceOf(book, CloudKind::group, group).value_or(ItemPlace()).g;
    }
    for (int g = 0; g < book.GetGrpArSize() && id < 0; ++g)
        if (book.GetGrpAt(g)->GetCloudId() < 1 && book.GetGrpAt(g)->GetTicket() == -id) return g;
    return -1;
}

}  // namespace

void KeepAsItIs(Project& project, int number) {
    Find(project, number);
    project.GetCloud().DropConflict(number);
}

void TakeTheirs(Project& project, int number) {
    const CloudConflict conflict = Find(project, number);
    if (conflict.kind != CloudConflict::Kind::field)
        Refuse(Kind::notHeld, project, number, "is not about a field; it has no other value to take");
    const CloudClash& clash = conflict.clash;
    const auto parts = SplitFields(clash.theirs);
    const std::vector<vex::String> texts(parts.begin(), parts.end());
    const FieldGroup* const fields = FieldGroupOf(clash.kind, clash.bit);
    if (!fields || static_cast<int>(texts.size()) != fields->count)
        Refuse(Kind::damaged, project, number,
               "does not hold the fields that it is about; settle it by hand");
    CloudTables& tables = project.GetCloud().GetTables();
    CLibGps& book = project.GetBook();
    const bool group = clash.kind == CloudKind::group;
    const auto place = PlaceOf(book, clash.kind, FindItem(tables, clash.kind, clash.id));
    if (!place) Refuse(Kind::notFound, project, number, "is about an item that is not in the book any more");
    const auto [g, p] = *place;
    BookEdits& edits = project.GetEdits();
    DerivedPositions derived(book);
    if (group ? (clash.bit & kBaseFix) : (clash.bit & kPointFix)) derived.LookAtPoint(g, p);
    if (group && (clash.bit & kConversion)) {
        vex::String ours;
        tables.base.GetFields(*book.GetGrpAt(g), clash.bit, ours);
        IsOtherMap(ours.View(), clash.theirs) ? derived.LookAtAll() : derived.LookAtGroup(g);
    }
    Edit edit(edits);
    if (group) {
        CGrpGps& its = *book.GetGrpAt(g);
        tables.base.SetFields(its, clash.bit, texts.data());
        // A datum of the map library is part of it, and reports nothing.
        if (clash.bit == CHG_GRP_CONVCOORD) its.CloudItemChanged(clash.bit);
        edits.GroupChanged(g);
        if (clash.bit == CHG_GRP_CONVCOORD) edits.MapChanged();  // its datums are the library's
    } else {
        tables.points.SetFields(*book.GetPunAt(g, p), clash.bit, texts.data());
        edits.PointChanged(g, p);
    }
    const std::vector<DerivedPositions::Place> computed = derived.Recompute();
    for (const DerivedPositions::Place& at : computed)
        at.p < 0 ? edits.GroupChanged(at.g) : edits.PointChanged(at.g, at.p);
    for (const int moot : project.GetCloud().FindConflictsOfPositions(computed))
        project.GetCloud().DropConflict(moot);
    project.GetCloud().DropConflict(number);
    edit.Done();
}

int AddAgain(Project& project, int number, int g) {
    const CloudConflict conflict = Find(project, number);
    if (conflict.kind != CloudConflict::Kind::kept)
        Refuse(Kind::notHeld, project, number, "is not about an item that was kept");
    CLibGps& book = project.GetBook();
    BookEdits& edits = project.GetEdits();
    Edit edit(edits);
    bool whole = false;
    std::int64_t ticket = 0;
    if (conflict.clash.kind == CloudKind::group) {
        whole = PutGroupBack(book, conflict.record, project.GetDrawings());
        if (whole) {
            g = book.GetGrpArSize() - 1;
            ticket = book.GetGrpAt(g)->GetTicket();
            edits.GroupInserted(g);
            for (int p = 0; p < book.GetPunArSize(g); ++p) edits.PointInserted(g, p);
        }
    } else {
        if (g < 0) g = PlaceOfGroup(project, conflict.groupId);
        if (!book.GetGrpAt(g))
            Refuse(Kind::notFound, project, number,
                   "is about a point of the group '" + conflict.group +
                       "', which is not in the book; name the group that it goes into");
        whole = PutPointBack(book, g, conflict.record);
        if (whole) edits.PointInserted(g, book.GetPunArSize(g) - 1);
    }
    if (!whole) Refuse(Kind::damaged, project, number, "holds a damaged record; nothing was added");
    project.GetCloud().DropConflict(number, ticket);
    edit.Done();
    return g;
}

}  // namespace gpsproject
