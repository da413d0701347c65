// Items and tables for tests: the platform's own, made so that a test can destroy and watch them.
#pragma once

#include <utility>
#include <vector>

#include "platform/entity/CCloudItem.h"
#include "platform/entity/CCloudTable.h"

namespace test {

/// An item that nothing else is part of, with a creator device of its own.
struct Item final : CCloudItem {
    using CCloudItem::CCloudItem;
    int GetCloudCreatorDevId() const override { return creator; }
    int creator = -1;
};

/// A table that writes down whose creator device it was told.
struct Table final : CCloudTable {
    explicit Table(enumTable kind = tabGpsPnt) : CCloudTable(kind) {}
    Table(const Table&) = default;
    Table& operator=(const Table&) = default;
    ~Table() = default;

    void SetCloudCreatorDevId(CCloudItem* item, int devId) override { named.emplace_back(item, devId); }

    std::vector<std::pair<CCloudItem*, int>> named;
};

/// Puts an item in step with the server under an id.
inline void Register(CCloudTable& table, CCloudItem& item, long long id) {
    item.SetCloudId(id);
    table.AddItemToTable(&item);
}

/// What FindItem answers, in one word.
enum class Known { no, item, tombstone };
inline Known Find(const CCloudTable& table, long long id, const CCloudItem* expected = nullptr) {
    CCloudItem* item = nullptr;
    if (!table.FindItem(id, item)) return Known::no;
    if (!item) return Known::tombstone;
    return !expected || item == expected ? Known::item : Known::no;
}

using Items = std::vector<CCloudItem*>;

inline bool IsChanged(const CCloudTable& table, const CCloudItem& item) {
    return table.GetChanged().count(const_cast<CCloudItem*>(&item)) == 1;
}

}  // namespace test
