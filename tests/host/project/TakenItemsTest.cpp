// What others did, item by item.
#include <gtest/gtest.h>

#include "gps/model/ChangeBits.h"
#include "tests/host/project/SharedBook.h"

namespace {

using test::CloudKind;
using test::DeletionOf;
using test::GroupReply;
using test::PageOf;
using test::PointReply;
using test::Project;
using TakenItem = test::BookCloud::TakenItem;
using What = TakenItem::What;

/// Groups 1 and 2 with points 3 and 4, and 5: as everybody has them.
class TakenItems : public testing::Test {
protected:
    TakenItems() { test::Settle(*project_); }

    std::vector<TakenItem> Take(const std::vector<gpsproject::CloudReply>& replies) {
        return project_->GetCloud().TakePage(PageOf(2, replies)).items;
    }

    test::SharedDisk disk_;
    std::unique_ptr<Project> project_ = disk_.Open(Project::Mode::write);
};

TEST_F(TakenItems, NewOnesAreNamedAsTheyCameIn) {
    const auto items = Take({GroupReply(11, "C"), PointReply(12, 11, "C1")});
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].what, What::added);
    EXPECT_EQ(items[0].kind, CloudKind::group);
    EXPECT_EQ(items[0].id, 11);
    EXPECT_EQ(items[0].name, "Site");
    EXPECT_EQ(items[0].group, "");
    EXPECT_EQ(items[0].fields, 0U);
    EXPECT_EQ(items[0].device, 2);
    EXPECT_EQ(items[0].author, "Bruno");
    EXPECT_EQ(items[1].what, What::added);
    EXPECT_EQ(items[1].kind, CloudKind::point);
    EXPECT_EQ(items[1].id, 12);
    EXPECT_EQ(items[1].name, "C1");
    EXPECT_EQ(items[1].group, "Site");
}

TEST_F(TakenItems, ChangedOnesTellTheFieldsThatAreOthersNow) {
    Take({PointReply(3, 1, "first")});
    const auto items = Take({PointReply(3, 1, "second")});
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].what, What::changed);
    EXPECT_EQ(items[0].name, "second");
    EXPECT_EQ(items[0].group, "A");
    EXPECT_EQ(items[0].fields, CHG_NOME);
}

TEST_F(TakenItems, FieldThatWaitsHereHasNotComeIn) {
    Take({PointReply(3, 1, "first")});
    test::RenamePoint(*project_, 0, 0, "mine");
    EXPECT_TRUE(Take({PointReply(3, 1, "second")}).empty());
    EXPECT_EQ(project_->GetBook().GetPunAt(0, 0)->GetNome(), "mine");
}

TEST_F(TakenItems, DeletedOnesAreNamedAsTheyWere) {
    const auto items = Take({DeletionOf(CloudKind::point, 3), DeletionOf(CloudKind::group, 2)});
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].what, What::deleted);
    EXPECT_EQ(items[0].name, "A1");
    EXPECT_EQ(items[0].group, "A");
    EXPECT_EQ(items[1].kind, CloudKind::group);
    EXPECT_EQ(items[1].name, "B");
}

TEST_F(TakenItems, WhatWasNeverHereOrIsAsHereIsNotAmongThem) {
    Take({PointReply(3, 1, "first")});
    EXPECT_TRUE(Take({PointReply(3, 1, "first"), DeletionOf(CloudKind::point, 77)}).empty());
}

}  // namespace
