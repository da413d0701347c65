// SqliteStore: projects in one SQLite file, which several programs may use.
#pragma once

#include <memory>
#include <string>

#include "host/cloud/SyncStore.h"
#include "host/cloud/Transport.h"

namespace gpssync {

/// See docs/formats/store.md.
class SqliteStore : public SyncStore {
public:
    static constexpr int kPatience = 10'000;  // milliseconds that others may hold the file

    /// Nothing is opened before it is used, and nothing made unless a transaction may (Access::make). Another
    /// program's file is never written.
    explicit SqliteStore(std::string path, int patience = kPatience);
    ~SqliteStore() override;
    SqliteStore(const SqliteStore&) = delete;
    SqliteStore& operator=(const SqliteStore&) = delete;

    std::string GetName() const override { return path_; }

    void Begin(Access access) override;
    void Commit() override;
    void Rollback() noexcept override;

    std::optional<StoredProject> FindProjectByName(const std::string& name) override;
    std::optional<StoredProject> FindProjectByKey(const std::string& key) override;
    StoredProject AddProject(const std::string& key, const std::string& name) override;
    void AdvanceProject(const StoredProject& project) override;

    std::optional<StoredCommit> FindCommit(std::int64_t project, const std::string& id) override;
    void AddCommit(std::int64_t project, const StoredCommit& commit) override;
    std::string HeadOf(std::int64_t project, std::int64_t revision) override;
    std::string AuthorOf(std::int64_t project, std::int64_t revision) override;

    bool FindItem(std::int64_t project, CloudKind kind, std::int64_t id, StoredItem& item) override;
    void AddItem(std::int64_t project, const StoredItem& item) override;
    void ChangeItem(std::int64_t project, const StoredItem& item) override;
    void DeleteItem(std::int64_t project, CloudKind kind, std::int64_t id, Mark deleted) override;
    void DeletePointsOf(std::int64_t project, std::int64_t group, Mark deleted) override;
    void ChangedPointsOf(std::int64_t project, std::int64_t group, std::int64_t after,
                         const TakeItem& take) override;
    std::vector<Setter> SettersOf(std::int64_t project, CloudKind kind, std::int64_t id) override;
    void SetSetter(std::int64_t project, CloudKind kind, std::int64_t id, const Setter& setter) override;
    void AddHistory(std::int64_t project, const HistoryEntry& entry) override;
    std::vector<HistoryEntry> HistoryOf(std::int64_t project, CloudKind kind, std::int64_t id) override;

    std::optional<MapPart> MapDatum(std::int64_t project, MapPlace place) override;
    void SetMapDatum(std::int64_t project, MapPlace place, const MapPart& datum) override;
    std::optional<MapPart> MapLibrary(std::int64_t project) override;
    void SetMapLibrary(std::int64_t project, const MapPart& library) override;
    std::vector<std::int64_t> GroupsAt(std::int64_t project, const std::optional<MapPlace>& place) override;

    std::size_t Newer(std::int64_t project, CloudKind kind, const PullWindow& window, std::int64_t after,
                      std::size_t limit, const TakeItem& take) override;
    std::vector<Deletion> NewerDeletions(std::int64_t project, CloudKind kind, const PullWindow& window,
                                         const Deletion& after, std::size_t limit) override;

private:
    struct Connection;

    void Open(bool make);
    std::int64_t LastIdAt(std::int64_t project, std::int64_t revision);

    std::string path_;
    int patience_;
    std::unique_ptr<Connection> connection_;
};

/// The projects of a file, for a program that shares it with others.
std::unique_ptr<Transport> OpenStore(const std::string& path);

}  // namespace gpssync
