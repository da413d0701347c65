#include "host/cloud/CommitTaker.h"

#include <algorithm>
#include <utility>

namespace gpssync {

namespace {

using Act = CommitRecord::Act;

Mark SetBy(const std::vector<Setter>& setters, std::uint32_t bit, const StoredItem& item) {
    for (const Setter& setter : setters)
        if (setter.bit == bit) return setter.set;
    return item.created;
}

Mark Later(Mark a, Mark b) { return b.revision > a.revision ? b : a; }

bool SameAt(const Values& part, const Values& whole, std::size_t place) {
    return std::equal(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(place));
}

Values PartAt(const Values& whole, std::size_t place, std::size_t count) {
    const auto first = whole.begin() + static_cast<std::ptrdiff_t>(place);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

std::string FieldText(const Values& values, const FieldGroup& fields) {
    return JoinedText(values, static_cast<std::size_t>(fields.first - 2),
                      static_cast<std::size_t>(fields.count));
}

bool SameFields(const Values& a, const Values& b, const FieldGroup& fields) {
    const auto first = static_cast<std::ptrdiff_t>(fields.first - 2);
    return std::equal(a.begin() + first, a.begin() + first + fields.count, b.begin() + first);
}

void CopyFields(const Values& from, Values& to, const FieldGroup& fields) {
    const auto first = static_cast<std::ptrdiff_t>(fields.first - 2);
    std::copy_n(from.begin() + first, fields.count, to.begin() + first);
}

constexpr auto kGroupName = static_cast<std::size_t>(gpsproject::kGroupNameField - 2);  // among the values

const FieldGroup& Conversion() { return GRP_FIELDS.back(); }

}  // namespace

CommitTaker::CommitTaker(SyncStore& store, StoredProject& project, std::int32_t device)
    : store_(store), project_(project), map_(store, project.number), now_{project.revision + 1, device} {}

CommitAnswer CommitTaker::Take(const CloudCommit& commit) {
    answer_.commit = commit.id;
    base_ = commit.revision;
    own_ = commit.own;
    std::sort(own_.begin(), own_.end());
    CommitReader reader(commit.records);
    CommitRecord record;
    std::int64_t number = 0;
    bool any = false;
    while (reader.Next(record)) {
        ++number;
        std::string reason = record.wrong;
        const std::size_t adds = answer_.ids.size() + (record.act == Act::add ? 1 : 0);
        if (reason.empty()) {
            switch (record.act) {
                case Act::change:
                    reason = Change(record);
                    break;
                case Act::add:
                    reason = Add(record);
                    break;
                default:
                    reason = Remove(record);
            }
        }
        if (record.act == Act::add) {
            addedKinds_.push_back(record.kind);
            answer_.ids.resize(adds);  // 0 for a refused one
        }
        if (reason.empty())
            any = true;
        else
            answer_.refused.push_back({number, std::move(reason)});
    }
    if (any) {
        project_.revision = now_.revision;
        answer_.revision = now_.revision;
        store_.AdvanceProject(project_);
    }
    return std::move(answer_);
}

// --- changes -----------------------------------------------------------------------------------------------

std::string CommitTaker::Change(const CommitRecord& record) {
    const std::string what = std::string(NameOf(record.kind)) + " " + std::to_string(record.id);
    if (!store_.FindItem(project_.number, record.kind, record.id, item_))
        return "there is no " + what + " in this project";
    if (item_.deleted != Mark())
        return what + " was deleted " + WhoDeleted(item_) + "; add it again as new to keep the change";

    const std::vector<Setter> setters = SettersOf(item_);
    for (const FieldGroup& fields : FieldGroupsOf(record.kind)) {
        if (!(record.mask & fields.bit)) continue;
        const Mark setBefore = SetBy(setters, fields.bit, item_);
        if (record.kind == CloudKind::group && fields.bit == CHG_GRP_CONVCOORD)
            TakeConversion(record, item_, false, setBefore);
        else if (!SameFields(item_.values, record.values, fields))
            Replaced(item_, fields.bit, FieldText(item_.values, fields), FieldText(record.values, fields),
                     setBefore);
        CopyFields(record.values, item_.values, fields);
        store_.SetSetter(project_.number, record.kind, record.id, {fields.bit, now_});
    }
    item_.changed = now_;
    store_.ChangeItem(project_.number, item_);
    return {};
}

// The map library is shared: its part of the record replaces what any group has set before. That of a new
// group does not replace what its book has not seen: it says what the library was like there, and not what
// somebody changed in it.
void CommitTaker::TakeConversion(const CommitRecord& record, const StoredItem& item, bool added,
                                 Mark setBefore) {
    const MapPlace place = ProjectMap::PlaceOf(record.values);
    const MapPart datum = map_.Datum(place), library = map_.Library();

    // Before: what the record replaces. The datum is the one at the place that the record selects.
    Values before = added ? record.values : item.values, after = record.values;
    std::copy(datum.values.begin(), datum.values.end(), before.begin() + kSelectedDatum);
    std::copy(library.values.begin(), library.values.end(), before.begin() + kMapLibrary);
    const auto keeps = [&](const MapPart& part, std::size_t at) {
        return added && IsForeign(part.set) && !SameAt(part.values, after, at);
    };
    const bool keepsDatum = !record.hasMapDatum || keeps(datum, kSelectedDatum);
    const bool keepsLibrary = keeps(library, kMapLibrary);
    if (keepsDatum) std::copy(datum.values.begin(), datum.values.end(), after.begin() + kSelectedDatum);
    if (keepsLibrary) std::copy(library.values.begin(), library.values.end(), after.begin() + kMapLibrary);

    Mark set;
    bool lost = false;
    const auto replaces = [&](Mark mark) {
        lost = lost || mark != Mark();
        set = Later(set, mark);
    };
    const bool newDatum = !SameAt(datum.values, after, kSelectedDatum);
    const bool newLibrary = !SameAt(library.values, after, kMapLibrary);
    if (newDatum) replaces(datum.set);
    if (newLibrary) replaces(library.set);
    for (auto i = static_cast<std::size_t>(Conversion().first - 2); i < before.size(); ++i)
        if (!IsOfMap(CloudKind::group, i) && before[i] != after[i]) replaces(setBefore);

    if (record.hasMapDatum && (newDatum || datum.set == Mark()))
        map_.SetDatum(place, {now_, PartAt(after, kSelectedDatum, kDatumFields)});
    if (newLibrary || library.set == Mark())
        map_.SetLibrary({now_, PartAt(after, kMapLibrary, kLibraryFields)});
    if (newDatum) MapPartChanged(place, kDatumBit);
    if (newLibrary) MapPartChanged(std::nullopt, kLibraryBit);
    // The book has not seen what is kept, and the group that brought it may be deleted.
    const auto bringBack = [&](std::uint32_t bit, Mark mark) {
        if (IsForeign(mark)) store_.SetSetter(project_.number, item.kind, item.id, {bit, mark});
    };
    if (keepsDatum) bringBack(kDatumBit, datum.set);
    if (keepsLibrary) bringBack(kLibraryBit, library.set);
    if (lost)
        Replaced(item, CHG_GRP_CONVCOORD, FieldText(before, Conversion()), FieldText(after, Conversion()),
                 set);
}

// All who have such a group are told of it: the one that brings the new part may be deleted before they
// come. The groups of this commit need not be named.
void CommitTaker::MapPartChanged(const std::optional<MapPlace>& place, std::uint32_t bit) {
    StoredItem group;
    for (const std::int64_t id : store_.GroupsAt(project_.number, place)) {
        store_.FindItem(project_.number, CloudKind::group, id, group);
        if (group.created == now_) continue;
        group.changed = now_;
        store_.ChangeItem(project_.number, group);
        store_.SetSetter(project_.number, CloudKind::group, id, {bit, now_});
    }
}

void CommitTaker::Replaced(const StoredItem& item, std::uint32_t bit, const std::string& before,
                           const std::string& after, Mark setBefore) {
    store_.AddHistory(project_.number, {item.kind, item.id, bit, before, setBefore, now_});
    if (!IsForeign(setBefore)) return;
    Clash clash = NewClash(item, setBefore);
    clash.bit = bit;
    clash.mine = after;
    clash.theirs = before;
    answer_.clashes.push_back(std::move(clash));
}

// --- additions ---------------------------------------------------------------------------------------------

std::string CommitTaker::Add(CommitRecord& record) {
    StoredItem& item = item_;
    item.kind = record.kind;
    item.group = 0;
    if (record.kind == CloudKind::point) {
        std::string reason = ResolveParent(record.parent, item.group);
        if (!reason.empty()) return reason;
    }
    item.id = ++project_.lastId;
    item.created = item.changed = now_;
    item.deleted = {};
    if (record.kind == CloudKind::group) {
        item.values = record.values;
        store_.AddItem(project_.number, item);
        TakeConversion(record, item, true, {});
        parents_[item.id].clear();  // the id may have been asked for before there was one
    } else {
        item.values.swap(record.values);  // the reader fills what it finds
        store_.AddItem(project_.number, item);
    }
    answer_.ids.push_back(item.id);
    return {};
}

std::string CommitTaker::ResolveParent(std::int64_t parent, std::int64_t& group) {
    group = parent;
    if (parent < 0) {
        const auto count = static_cast<std::int64_t>(answer_.ids.size());
        if (parent < -count)
            return "its group (" + std::to_string(parent) + ") is no added record that comes before it";
        const auto k = static_cast<std::size_t>(-parent - 1);
        if (addedKinds_[k] != CloudKind::group)
            return "its group is to be the added record " + std::to_string(-parent) + ", which is a point";
        group = answer_.ids[k];
        if (group == 0) return "its group, the added record " + std::to_string(-parent) + ", was refused";
    }
    if (group < 1) return "it has no group";
    const auto [known, isNew] = parents_.try_emplace(group);
    if (!isNew) return known->second;
    StoredItem found;
    if (!store_.FindItem(project_.number, CloudKind::group, group, found))
        known->second = "its group " + std::to_string(group) + " is not in this project";
    else if (found.deleted != Mark())
        known->second = "its group " + std::to_string(group) + " was deleted " + WhoDeleted(found) +
                        "; the book keeps both as a conflict, from which they can be added again as new";
    return known->second;
}

// --- deletions ---------------------------------------------------------------------------------------------

std::string CommitTaker::Remove(const CommitRecord& record) {
    if (!store_.FindItem(project_.number, record.kind, record.id, item_))
        return std::string("there is no ") + NameOf(record.kind) + " " + std::to_string(record.id) +
               " in this project";
    if (item_.deleted != Mark()) return {};  // what is wanted is so already
    TellOfDeletion(item_);
    store_.DeleteItem(project_.number, record.kind, record.id, now_);
    if (record.kind == CloudKind::point) return {};

    parents_.erase(record.id);
    store_.ChangedPointsOf(project_.number, record.id, base_,
                           [this](const StoredItem& point) { TellOfDeletion(point); });
    store_.DeletePointsOf(project_.number, record.id, now_);
    return {};
}

// A clash when others added or changed the item after the commit's base.
void CommitTaker::TellOfDeletion(const StoredItem& item) {
    if (item.changed.revision <= base_) return;
    Mark theirs;
    std::string what;
    if (IsForeign(item.created)) {
        theirs = item.created;
        what = "added";
    }
    for (const Setter& setter : SettersOf(item)) {
        if (!IsForeign(setter.set) || setter.set == item.created) continue;
        const auto all = FieldGroupsOf(item.kind);
        const auto fields =
            std::find_if(all.begin(), all.end(), [&](const FieldGroup& f) { return f.bit == setter.bit; });
        if (fields == all.end()) continue;  // of the map library, which stays
        theirs = Later(theirs, setter.set);
        if (!what.empty()) what += ", ";
        what += fields->name;
    }
    if (theirs == Mark()) return;
    Clash clash = NewClash(item, theirs);
    clash.theirs = std::move(what);
    answer_.clashes.push_back(std::move(clash));
}

// --- who ---------------------------------------------------------------------------------------------------

// By the revisions that the book itself made: another book of the same device is another one.
bool CommitTaker::IsForeign(Mark mark) const {
    return mark.revision > base_ && mark != now_ &&
           !std::binary_search(own_.begin(), own_.end(), mark.revision);
}

CommitTaker::Clash CommitTaker::NewClash(const StoredItem& item, Mark theirs) {
    Clash clash;
    clash.kind = item.kind;
    clash.id = item.id;
    // People know a group by its group name; that of its entity is often empty.
    if (item.kind == CloudKind::group) clash.name = std::get<std::string>(item.values[kGroupName]);
    if (clash.name.empty()) clash.name = std::get<std::string>(item.values[0]);
    clash.device = theirs.device;
    clash.author = AuthorOf(theirs.revision);
    clash.revision = theirs.revision;
    return clash;
}

std::vector<Setter> CommitTaker::SettersOf(const StoredItem& item) {
    if (item.changed == item.created) return {};  // as it was made, or changed by the commit that made it
    return store_.SettersOf(project_.number, item.kind, item.id);
}

std::string CommitTaker::WhoDeleted(const StoredItem& item) {
    if (item.deleted == now_) return "by this commit";
    const std::string& author = AuthorOf(item.deleted.revision);
    return "by " + (author.empty() ? std::string() : author + ", ") + "device " +
           std::to_string(item.deleted.device) + ", in revision " + std::to_string(item.deleted.revision);
}

const std::string& CommitTaker::AuthorOf(std::int64_t revision) {
    const auto [known, isNew] = authors_.try_emplace(revision);
    if (isNew) known->second = store_.AuthorOf(project_.number, revision);
    return known->second;
}

}  // namespace gpssync
