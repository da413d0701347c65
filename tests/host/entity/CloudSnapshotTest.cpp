// A snapshot of a table whose changed items have outgrown memory: it has them all.
#include <gtest/gtest.h>

#include <set>

#include "tests/Heap.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::FailingHeap;
using test::Item;
using test::Register;
using test::Table;

struct CloudSnapshot : testing::Test {
    CloudSnapshot() {
        Register(table, item, 7);
        const FailingHeap heap(0);
        item.CloudItemChanged(0x1);
    }
    Table table;
    Item item{&table, false};
};

TEST_F(CloudSnapshot, CopyHasTheItemThatTheSetHadNoRoomFor) {
    const Table copy(table);
    EXPECT_EQ(copy.GetChanged(), std::set<CCloudItem*>{&item});
    EXPECT_EQ(table.GetChanged(), std::set<CCloudItem*>{&item});
}

TEST_F(CloudSnapshot, AssignmentHasTheItemThatTheSetHadNoRoomFor) {
    Table copy;
    copy = table;
    EXPECT_EQ(copy.GetChanged(), std::set<CCloudItem*>{&item});
    EXPECT_EQ(table.GetChanged(), std::set<CCloudItem*>{&item});
}

}  // namespace
