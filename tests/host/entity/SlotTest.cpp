// Order of the virtual operations: a host compiled against these classes calls them by their places.
#include <gtest/gtest.h>

#include <type_traits>

#include "platform/entity/CCloudItem.h"
#include "platform/entity/CCloudTable.h"
#include "platform/entity/CEgn.h"
#include "platform/entity/CLibConOri.h"
#include "tests/host/base/VirtualSlot.h"

namespace {

// One new operation each: it tells how many entries the base's table has.
struct AfterEgn : CEgn {
    virtual void Next() {}
};
struct AfterItem : CCloudItem {
    using CCloudItem::CCloudItem;
    virtual void Next() {}
};
struct AfterTable : CCloudTable {
    AfterTable() : CCloudTable(tabGpsBase) {}
    ~AfterTable() = default;
    virtual void Next() {}
    static int SaveSlot() { return VirtualSlot(&AfterTable::SaveTmpItems); }
};
struct AfterLibConOri : CLibConOri {
    using CLibConOri::CLibConOri;
    virtual void Next() {}
};

TEST(Slots, OfAnEntity) {
    // 0 and 1 are the destructor's.
    EXPECT_TRUE(std::has_virtual_destructor_v<CEgn>);
    EXPECT_EQ(VirtualSlot(&CEgn::GetCloudItem), 2);
    EXPECT_EQ(VirtualSlot(&CEgn::SetNome), 3);
    EXPECT_EQ(VirtualSlot(&CEgn::SetSecScri), 4);
    EXPECT_EQ(VirtualSlot(&CEgn::DoSetCoord), 5);
    EXPECT_EQ(VirtualSlot(&CEgn::SetCodeEgn), 6);
    EXPECT_EQ(VirtualSlot(&CEgn::GetUserType), 7);
    EXPECT_EQ(VirtualSlot(&AfterEgn::Next), 8);
    EXPECT_EQ(VirtualSlot(&CEgn::AnnullaTutteLeVar), -1);
    EXPECT_EQ(VirtualSlot(&CEgn::SetCoord), -1);
}

TEST(Slots, OfACloudItem) {
    EXPECT_FALSE(std::has_virtual_destructor_v<CCloudItem>);
    EXPECT_EQ(VirtualSlot(&CCloudItem::GetCloudCreatorDevId), 0);
    EXPECT_EQ(VirtualSlot(&CCloudItem::ConvCoordChanged), 1);
    EXPECT_EQ(VirtualSlot(&AfterItem::Next), 2);
    EXPECT_EQ(VirtualSlot(&CCloudItem::SetCloudNotify), -1);
    EXPECT_EQ(VirtualSlot(&CCloudItem::SetCloudId), -1);
}

TEST(Slots, OfACloudTable) {
    EXPECT_FALSE(std::has_virtual_destructor_v<CCloudTable>);
    EXPECT_EQ(VirtualSlot(&CCloudTable::SetCloudCreatorDevId), 0);
    EXPECT_EQ(VirtualSlot(&CCloudTable::GenerateCommitString_Change), 1);
    EXPECT_EQ(VirtualSlot(&CCloudTable::GenerateCommitString_Add), 2);
    EXPECT_EQ(VirtualSlot(&CCloudTable::UpdateSuccessful_Del), 3);
    EXPECT_EQ(VirtualSlot(&CCloudTable::UpdateSuccessful_Edit), 4);
    EXPECT_EQ(VirtualSlot(&CCloudTable::Merge), 5);
    EXPECT_EQ(AfterTable::SaveSlot(), 6);
    EXPECT_EQ(VirtualSlot(&AfterTable::Next), 7);
    EXPECT_EQ(VirtualSlot(&CCloudTable::AddItemToTable), -1);
}

TEST(Slots, ALibraryWithOrientationAddsNone) { EXPECT_EQ(VirtualSlot(&AfterLibConOri::Next), 8); }

}  // namespace
