// Reports of changed fields: the mask, the changed items, the observer.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/host/entity/CloudParts.h"

namespace {

using test::IsChanged;
using test::Item;
using test::Items;
using test::Register;
using test::Table;

TEST(CloudChange, BitsGatherInTheMask) {
    Table table;
    Item item(&table, false);
    item.CloudItemChanged(0x1);
    item.CloudItemChanged(0x10);
    item.CloudItemChanged(0x1);
    EXPECT_EQ(item.GetCloudFlag(), 0x11u);
}

TEST(CloudChange, NewItemIsNotAChangedOne) {
    Table table;
    Item item(&table, false);
    item.CloudItemChanged(0x4);
    EXPECT_TRUE(table.GetChanged().empty()) << "it is sent whole";
    EXPECT_EQ(table.GetAdded(), Items{&item});
    EXPECT_EQ(item.GetCloudFlag(), 0x4u);
}

TEST(CloudChange, KnownItemBecomesAChangedOne) {
    Table table;
    Item item(&table, false), other(&table, false);
    Register(table, item, 5);
    Register(table, other, 6);
    item.CloudItemChanged(0x4);
    EXPECT_TRUE(IsChanged(table, item));
    EXPECT_FALSE(IsChanged(table, other));
    item.CloudItemChanged(0x8);
    EXPECT_EQ(table.GetChanged().size(), 1u);
    EXPECT_EQ(item.GetCloudFlag(), 0xCu);
}

TEST(CloudChange, ReportWithoutBitsChangesNothing) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(0);
    EXPECT_TRUE(table.GetChanged().empty()) << "a changed item has something to send";
}

TEST(CloudChange, ReportingOffRemembersNothing) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.SetCloudNotify(false);
    item.CloudItemChanged(0x4);
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_TRUE(table.GetChanged().empty());
    item.SetCloudNotify(true);
    EXPECT_EQ(item.GetCloudFlag(), 0u) << "what was not remembered does not come back";
    item.CloudItemChanged(0x8);
    EXPECT_TRUE(IsChanged(table, item));
}

TEST(CloudChange, ItemRemovedFromTheTableIsNotAChangedOne) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    table.DelItemFromTable(5);
    item.CloudItemChanged(0x4);
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_EQ(item.GetCloudFlag(), 0x4u);
}

TEST(CloudChange, ObserverIsToldAtEntryEvenWhileReportingIsOff) {
    std::vector<std::pair<const CCloudItem*, std::uint32_t>> told;
    std::vector<std::uint32_t> masks;
    CCloudItem::SetObserver([&](const CCloudItem& item, std::uint32_t flag) {
        told.emplace_back(&item, flag);
        masks.push_back(item.GetCloudFlag());
    });
    Item item(nullptr, false);
    item.CloudItemChanged(0x4);
    item.SetCloudNotify(false);
    item.CloudItemChanged(0x8);
    CCloudItem::SetObserver({});
    item.SetCloudNotify(true);
    item.CloudItemChanged(0x10);

    using Told = std::vector<std::pair<const CCloudItem*, std::uint32_t>>;
    EXPECT_EQ(told, (Told{{&item, 0x4}, {&item, 0x8}}));
    EXPECT_EQ(masks, (std::vector<std::uint32_t>{0, 0x4})) << "told before the bits are stored";
    EXPECT_EQ(item.GetCloudFlag(), 0x14u);
}

}  // namespace
