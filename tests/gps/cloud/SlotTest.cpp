// The tables have the virtual operations of their base, in its order, and no other.
#include <gtest/gtest.h>

#include "tests/gps/cloud/CloudBook.h"
#include "tests/host/base/VirtualSlot.h"

namespace {

/// The base by itself.
struct Plain : CCloudTable {
    Plain() : CCloudTable(tabGpsBase) {}
    ~Plain() = default;
};

template <class Table>
struct After : Table {
    using Table::Table;
    virtual void Next() {}
};

TEST(CloudTableSlots, NoneIsAddedToThoseOfTheBase) {
    EXPECT_EQ(VirtualSlot(&After<Plain>::Next), VirtualSlot(&After<CGpsBaseCloudTable>::Next));
    EXPECT_EQ(VirtualSlot(&After<Plain>::Next), VirtualSlot(&After<CGpsPntCloudTable>::Next));
}

TEST(CloudTableSlots, CallsThroughTheBaseReachTheTable) {
    test::CloudBook book;
    CGrpGps* group = book.AddGroup(0, "G");
    book.AddPoint(0, 0, "P");
    CCloudTable& bases = book.bases;
    CCloudTable& points = book.points;
    int counter = 0;
    vex::String records;
    bases.GenerateCommitString_Add(counter, records);
    EXPECT_EQ(records.View().substr(0, 7), "IBAS;G;");
    points.GenerateCommitString_Add(counter, records);
    EXPECT_EQ(records.View().substr(0, 12), "IPTGPS;-1;P;");
    EXPECT_EQ(counter, 2);
    bases.SetCloudCreatorDevId(group, 31);
    EXPECT_EQ(group->GetCloudCreatorDevId(), 31);
    points.SetCloudCreatorDevId(book.lib.GetPunAt(0, 0), 32);
    EXPECT_EQ(group->GetCloudCreatorDevId(), 31) << "a point has no creator of its own";
    EXPECT_TRUE(bases.UpdateSuccessful_Edit(test::GroupReply("7")));
    EXPECT_TRUE(points.UpdateSuccessful_Edit(test::PointReply("8", "7")));
    EXPECT_EQ(points.Merge(book.lib.GetPunAt(1, 0)), book.lib.GetPunAt(1, 0));
    EXPECT_TRUE(points.UpdateSuccessful_Del(test::Split("DEL;8")));
    EXPECT_TRUE(bases.UpdateSuccessful_Del(test::Split("DEL;7")));
}

}  // namespace
