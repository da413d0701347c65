// Groups and points that leave the book, and what a cloud table hears of it.
#include "apps/gpsbook/book/Deletion.h"

#include <gtest/gtest.h>

#include "tests/apps/gpsbook/book/SmallBook.h"
#include "tests/gps/model/Book.h"

namespace gpsbook::test {
namespace {

TEST(Deletion, PlacesGoEachOnceInAnyOrder) {
    SmallBook book;
    book.Group("A", {"0", "1", "2", "3"});
    book.Group("B", {"0"});
    book.Group("C", {"0", "1"});
    const std::vector<Place> places{{2, 1}, {0, 3}, {1, -1}, {0, 1}, {1, 0}, {0, 3}};
    EXPECT_EQ(PointsWithin(book.lib, places), 4) << "the point of B goes with B";
    DeletePlaces(book.edits, places);
    EXPECT_EQ(book.GroupNames(), "A C");
    EXPECT_EQ(book.Names(0), "0 2");
    EXPECT_EQ(book.Names(1), "0");
}

TEST(Deletion, ItemsKnownToTheCloudAreAnnouncedWithTheirPoints) {
    ::test::Book book;
    book.Fill({2, 1});
    const auto know = [](CCloudItem* item, long long id) {
        item->SetCloudId(id);
        item->GetTable()->AddItemToTable(item);
    };
    know(CGrpGps::CloudItemOf(book.lib.GetGrpAt(0)), 10);
    know(CPunGps::CloudItemOf(book.lib.GetPunAt(0, 1)), 21);
    know(CPunGps::CloudItemOf(book.lib.GetPunAt(1, 0)), 30);

    gpsproject::BookEdits edits{book.lib};  // without a journal
    DeletePlaces(edits, {{1, 0}});
    EXPECT_EQ(book.points.GetDeleted(), (std::set<long long>{30}));
    EXPECT_TRUE(book.bases.GetDeleted().empty());
    DeletePlaces(edits, {{0, -1}});
    EXPECT_EQ(book.points.GetDeleted(), (std::set<long long>{21, 30})) << "a point without id is not sent";
    EXPECT_EQ(book.bases.GetDeleted(), (std::set<long long>{10}));
}

}  // namespace
}  // namespace gpsbook::test
