#include "host/project/ConflictResolution.h"

#include <vector>

#include "gps/cloud/FieldLayout.h"
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

std::vector<vex::String> Split(const std::string& fields) {
    std::vector<vex::String> texts;
    for (std::size_t at = 0;;) {
        const std::size_t end = fields.find(';', at);
        texts.emplace_back(std::string_view(fields).substr(at, end == std::string::npos ? end : end - at));
        if (end == std::string::npos) return texts;
        at = end + 1;
    }
}

int CountOf(CloudKind kind, std::uint32_t bit) {
    if (kind == CloudKind::group) {
        for (const FieldGroup& fields : GRP_FIELDS)
            if (fields.bit == bit) return fields.count;
    } else {
        for (const FieldGroup& fields : PUN_FIELDS)
            if (fields.bit == bit) return fields.count;
    }
    return 0;
}

int PlaceOfGroup(CLibGps& book, std::int64_t id) {
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        if (book.GetGrpAt(g)->GetCloudId() == id) return g;
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
    const std::vector<vex::String> texts = Split(clash.theirs);
    if (static_cast<int>(texts.size()) != CountOf(clash.kind, clash.bit))
        Refuse(Kind::damaged, project, number,
               "does not hold the fields that it is about; settle it by hand");
    CloudTables& tables = project.GetCloud().GetTables();
    CLibGps& book = project.GetBook();
    CCloudItem* item = nullptr;
    const bool group = clash.kind == CloudKind::group;
    CCloudTable& table = group ? static_cast<CCloudTable&>(tables.base) : tables.points;
    int g = -1, p = -1;
    const bool here = table.FindItem(clash.id, item) && item &&
                      (group ? book.GetIndiciDiGrp(static_cast<CGrpGps*>(item), g)
                             : book.GetIndiciDiPun(static_cast<CPunGps*>(item), g, p));
    if (!here) Refuse(Kind::notFound, project, number, "is about an item that is not in the book any more");
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
    if (conflict.clash.kind == CloudKind::group) {
        whole = PutGroupBack(book, conflict.record, project.GetDrawings());
        if (whole) {
            g = book.GetGrpArSize() - 1;
            edits.GroupInserted(g);
            for (int p = 0; p < book.GetPunArSize(g); ++p) edits.PointInserted(g, p);
        }
    } else {
        if (g < 0) g = PlaceOfGroup(book, conflict.groupId);
        if (!book.GetGrpAt(g))
            Refuse(Kind::notFound, project, number,
                   "is about a point of the group '" + conflict.group +
                       "', which is not in the book; name the group that it goes into");
        whole = PutPointBack(book, g, conflict.record);
        if (whole) edits.PointInserted(g, book.GetPunArSize(g) - 1);
    }
    if (!whole) Refuse(Kind::damaged, project, number, "holds a damaged record; nothing was added");
    project.GetCloud().DropConflict(number);
    edit.Done();
    return g;
}

}  // namespace gpsproject
