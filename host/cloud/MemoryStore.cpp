#include "host/cloud/MemoryStore.h"

#include <algorithm>
#include <utility>

#include "host/cloud/ProjectMap.h"

namespace gpssync {

namespace {

struct KeptItem {
    StoredItem item;
    std::map<std::uint32_t, Mark> setters;  // by bit
};

using Items = std::map<std::int64_t, KeptItem>;

bool IsOwn(const PullWindow& window, std::int64_t revision) {
    return std::find(window.own.begin(), window.own.end(), revision) != window.own.end();
}

// Newer than the window, by somebody else.
bool IsForeign(const PullWindow& window, const Mark& mark) {
    return mark.revision > window.revision && !IsOwn(window, mark.revision);
}

// Whether the device that asks made an item, or set a field of it, and the commit had not seen that.
bool IsUnseenBy(const StoredCommit& commit, const PullWindow& window, const KeptItem& kept) {
    const auto isUnseen = [&](const Mark& mark) {
        return mark.device == window.device && mark.revision > commit.base &&
               mark.revision < commit.revision &&
               std::find(commit.own.begin(), commit.own.end(), mark.revision) == commit.own.end();
    };
    return isUnseen(kept.item.created) ||
           std::any_of(kept.setters.begin(), kept.setters.end(), [&](const auto& setter) {
               return setter.first < kDatumBit && isUnseen(setter.second);
           });
}

bool IsNewer(const PullWindow& window, const KeptItem& kept) {
    const StoredItem& item = kept.item;
    if (item.created.revision > window.upTo) return false;
    if (item.deleted.revision != 0 && item.deleted.revision <= window.upTo) return false;
    if (IsForeign(window, item.created) || IsForeign(window, item.changed)) return true;
    return std::any_of(kept.setters.begin(), kept.setters.end(),
                       [&](const auto& setter) { return IsForeign(window, setter.second); });
}

}  // namespace

struct MemoryStore::Content {
    StoredProject project;
    std::map<std::string, StoredCommit> commits;
    std::map<CloudKind, Items> items;
    std::vector<HistoryEntry> history;
    std::map<MapPlace, MapPart> mapData;
    std::map<int, MapPart> mapLibrary;  // at most one
};

MemoryStore::MemoryStore() = default;
MemoryStore::~MemoryStore() = default;

std::unique_ptr<MemoryStore> MemoryStore::Copy() const {
    auto copy = std::make_unique<MemoryStore>();
    for (const auto& content : projects_) copy->projects_.push_back(std::make_unique<Content>(*content));
    return copy;
}

void MemoryStore::Begin(Access) { open_ = true; }

void MemoryStore::Commit() {
    undo_.clear();
    open_ = false;
}

void MemoryStore::Rollback() noexcept {
    for (; !undo_.empty(); undo_.pop_back()) undo_.back()();
    open_ = false;
}

MemoryStore::Content& MemoryStore::Of(std::int64_t project) {
    return *projects_.at(static_cast<std::size_t>(project));
}

// Keeps the value, and how to undo that.
template <class Map, class Key, class T>
void MemoryStore::Put(Map& map, const Key& key, T value) {
    const auto found = map.find(key);
    if (found == map.end()) {
        undo_.push_back([&map, key] { map.erase(key); });
        map.emplace(key, std::move(value));
    } else {
        // The slot is made first, so that want of memory leaves everything as it was.
        auto before = std::make_shared<T>(std::move(value));
        undo_.push_back([&map, key, before] { std::swap(map.find(key)->second, *before); });
        std::swap(found->second, *before);
    }
}

// --- projects ----------------------------------------------------------------------------------------------

std::optional<StoredProject> MemoryStore::FindProjectByName(const std::string& name) {
    for (const auto& content : projects_)
        if (content->project.name == name) return content->project;
    return std::nullopt;
}

std::optional<StoredProject> MemoryStore::FindProjectByKey(const std::string& key) {
    for (const auto& content : projects_)
        if (content->project.key == key) return content->project;
    return std::nullopt;
}

StoredProject MemoryStore::AddProject(const std::string& key, const std::string& name) {
    auto content = std::make_unique<Content>();
    content->project = {static_cast<std::int64_t>(projects_.size()), key, name, 0, 0};
    projects_.reserve(projects_.size() + 1);
    undo_.push_back([this] { projects_.pop_back(); });
    projects_.push_back(std::move(content));
    return projects_.back()->project;
}

void MemoryStore::AdvanceProject(const StoredProject& project) {
    StoredProject& kept = Of(project.number).project;
    undo_.push_back([&kept, revision = kept.revision, lastId = kept.lastId] {
        kept.revision = revision;
        kept.lastId = lastId;
    });
    kept.revision = project.revision;
    kept.lastId = project.lastId;
}

// --- commits -----------------------------------------------------------------------------------------------

std::optional<StoredCommit> MemoryStore::FindCommit(std::int64_t project, const std::string& id) {
    const auto& commits = Of(project).commits;
    const auto found = commits.find(id);
    if (found == commits.end()) return std::nullopt;
    return found->second;
}

void MemoryStore::AddCommit(std::int64_t project, const StoredCommit& commit) {
    Put(Of(project).commits, commit.id, commit);
}

const StoredCommit& MemoryStore::CommitAt(std::int64_t project, std::int64_t revision) {
    static const StoredCommit none;
    if (revision < 1) return none;  // commits of which nothing was taken
    for (const auto& [id, commit] : Of(project).commits)
        if (commit.revision == revision) return commit;
    return none;
}

std::string MemoryStore::HeadOf(std::int64_t project, std::int64_t revision) {
    return CommitAt(project, revision).head;
}

std::string MemoryStore::AuthorOf(std::int64_t project, std::int64_t revision) {
    return CommitAt(project, revision).author;
}

// --- items -------------------------------------------------------------------------------------------------

bool MemoryStore::FindItem(std::int64_t project, CloudKind kind, std::int64_t id, StoredItem& item) {
    const Items& items = Of(project).items[kind];
    const auto found = items.find(id);
    if (found == items.end()) return false;
    item = found->second.item;
    return true;
}

void MemoryStore::AddItem(std::int64_t project, const StoredItem& item) {
    Put(Of(project).items[item.kind], item.id, KeptItem{item, {}});
}

void MemoryStore::ChangeItem(std::int64_t project, const StoredItem& item) {
    Items& items = Of(project).items[item.kind];
    KeptItem kept = items.at(item.id);
    kept.item.values = item.values;
    kept.item.changed = item.changed;
    Put(items, item.id, std::move(kept));
}

void MemoryStore::DeleteItem(std::int64_t project, CloudKind kind, std::int64_t id, Mark deleted) {
    Mark& mark = Of(project).items[kind].at(id).item.deleted;
    undo_.push_back([&mark, before = mark] { mark = before; });
    mark = deleted;
}

void MemoryStore::DeletePointsOf(std::int64_t project, std::int64_t group, Mark deleted) {
    for (const auto& [id, kept] : Of(project).items[CloudKind::point])
        if (kept.item.group == group && kept.item.deleted == Mark())
            DeleteItem(project, CloudKind::point, id, deleted);
}

void MemoryStore::ChangedPointsOf(std::int64_t project, std::int64_t group, std::int64_t after,
                                  const TakeItem& take) {
    StoredItem point;
    for (const auto& [id, kept] : Of(project).items[CloudKind::point]) {
        if (kept.item.group != group || kept.item.deleted != Mark() || kept.item.changed.revision <= after)
            continue;
        point = kept.item;
        take(point);
    }
}

std::vector<Setter> MemoryStore::SettersOf(std::int64_t project, CloudKind kind, std::int64_t id) {
    std::vector<Setter> setters;
    for (const auto& [bit, set] : Of(project).items[kind].at(id).setters) setters.push_back({bit, set});
    return setters;
}

void MemoryStore::SetSetter(std::int64_t project, CloudKind kind, std::int64_t id, const Setter& setter) {
    Put(Of(project).items[kind].at(id).setters, setter.bit, setter.set);
}

void MemoryStore::AddHistory(std::int64_t project, const HistoryEntry& entry) {
    auto& history = Of(project).history;
    undo_.push_back([&history, size = history.size()] { history.resize(size); });
    history.push_back(entry);
}

std::vector<HistoryEntry> MemoryStore::HistoryOf(std::int64_t project, CloudKind kind, std::int64_t id) {
    std::vector<HistoryEntry> entries;
    for (const HistoryEntry& entry : Of(project).history)
        if (entry.kind == kind && entry.id == id) entries.push_back(entry);
    return entries;
}

// --- the map library ---------------------------------------------------------------------------------------

std::optional<MapPart> MemoryStore::MapDatum(std::int64_t project, MapPlace place) {
    const auto& data = Of(project).mapData;
    const auto found = data.find(place);
    if (found == data.end()) return std::nullopt;
    return found->second;
}

void MemoryStore::SetMapDatum(std::int64_t project, MapPlace place, const MapPart& datum) {
    Put(Of(project).mapData, place, datum);
}

std::optional<MapPart> MemoryStore::MapLibrary(std::int64_t project) {
    const auto& library = Of(project).mapLibrary;
    if (library.empty()) return std::nullopt;
    return library.begin()->second;
}

void MemoryStore::SetMapLibrary(std::int64_t project, const MapPart& library) {
    Put(Of(project).mapLibrary, 0, library);
}

std::vector<std::int64_t> MemoryStore::GroupsAt(std::int64_t project, const std::optional<MapPlace>& place) {
    std::vector<std::int64_t> ids;
    for (const auto& [id, kept] : Of(project).items[CloudKind::group])
        if (kept.item.deleted == Mark() && (!place || ProjectMap::PlaceOf(kept.item.values) == *place))
            ids.push_back(id);
    return ids;
}

// --- what is newer -----------------------------------------------------------------------------------------

std::size_t MemoryStore::Newer(std::int64_t project, CloudKind kind, const PullWindow& window,
                               std::int64_t after, std::size_t limit, const TakeItem& take) {
    std::size_t given = 0;
    StoredItem item;
    const Items& items = Of(project).items[kind];
    for (auto at = items.upper_bound(after); at != items.end() && given < limit; ++at) {
        if (!IsNewer(window, at->second)) continue;
        item = at->second.item;
        take(item);
        ++given;
    }
    return given;
}

std::vector<Deletion> MemoryStore::NewerDeletions(std::int64_t project, CloudKind kind,
                                                  const PullWindow& window, const Deletion& after,
                                                  std::size_t limit) {
    std::vector<Deletion> deletions;
    const Items& groups = Of(project).items[CloudKind::group];
    const auto isBehind = [&](const StoredItem& item) {
        return std::pair(item.deleted.revision, item.id) > std::pair(after.deleted.revision, after.id);
    };
    for (const auto& [id, kept] : Of(project).items[kind]) {
        const StoredItem& item = kept.item;
        if (!IsForeign(window, item.deleted) || item.deleted.revision > window.upTo || !isBehind(item))
            continue;
        if (kind == CloudKind::point && groups.at(item.group).item.deleted == item.deleted) continue;
        const StoredCommit& commit = CommitAt(project, item.deleted.revision);
        bool unseen = IsUnseenBy(commit, window, kept);
        if (kind == CloudKind::group)
            for (const auto& [pointId, point] : Of(project).items[CloudKind::point])
                if (point.item.group == id && point.item.deleted == item.deleted)
                    unseen = unseen || IsUnseenBy(commit, window, point);
        deletions.push_back({id, item.deleted, unseen});
    }
    std::sort(deletions.begin(), deletions.end(), [](const Deletion& a, const Deletion& b) {
        return std::pair(a.deleted.revision, a.id) < std::pair(b.deleted.revision, b.id);
    });
    if (deletions.size() > limit) deletions.resize(limit);
    return deletions;
}

}  // namespace gpssync
