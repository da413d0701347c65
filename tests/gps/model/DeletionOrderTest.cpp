// The order in which points and groups are destroyed, told by the order in which their memory is freed.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/Heap.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/model/Layout.h"

namespace {

using test::Book;
using test::FreedWatch;

using Addresses = std::vector<const void*>;

/// Group g and its points.
Addresses PartsOf(const CLibGps& book, int g) {
    Addresses parts{book.GetGrpAt(g)};
    for (int p = 0; p < book.GetPunArSize(g); ++p) parts.push_back(book.GetPunAt(g, p));
    return parts;
}

TEST(DeletionOrder, DeletedGroupLosesItsPointsFromTheLastToTheFirst) {
    Book book;
    book.Fill({1, 3, 1});
    const Addresses parts = PartsOf(book.lib, 1);
    const FreedWatch watch(parts);
    book.lib.DelGrpAt(1);
    EXPECT_EQ(watch.Freed(), (Addresses{parts[3], parts[2], parts[1], parts[0]}));
}

TEST(DeletionOrder, DestroyedBookLosesItsGroupsFromTheLastToTheFirst) {
    auto book = std::make_unique<Book>();
    book->Fill({2, 0, 2});
    const Addresses a = PartsOf(book->lib, 0), b = PartsOf(book->lib, 1), c = PartsOf(book->lib, 2);
    Addresses all = a;
    all.insert(all.end(), b.begin(), b.end());
    all.insert(all.end(), c.begin(), c.end());
    const FreedWatch watch(all);
    book.reset();
    EXPECT_EQ(watch.Freed(), (Addresses{c[2], c[1], c[0], b[0], a[2], a[1], a[0]}));
}

TEST(DeletionOrder, GroupAloneDeletesItsPointsFromTheFirstToTheLast) {
    auto group = std::make_unique<CGrpGps>(nullptr, false, nullptr, 0);
    auto& points = CGrpGpsLayout::Points(*group);
    points.push_back(nullptr);  // empty entries are passed over
    for (int i = 0; i < 3; ++i) points.push_back(new CPunGps(nullptr, false, group.get()));
    points.insert(points.begin() + 2, nullptr);
    const Addresses expected{points[1], points[3], points[4], group.get()};
    const FreedWatch watch(expected);
    group.reset();
    EXPECT_EQ(watch.Freed(), expected);
}

TEST(DeletionOrder, GroupGivesItsDrawingBackAfterItsPoints) {
    auto group = std::make_unique<CGrpGps>(nullptr, false, nullptr, 31);
    auto* point = new CPunGps(nullptr, false, group.get());
    CGrpGpsLayout::Points(*group).push_back(point);
    const FreedWatch watch({point});
    std::size_t freedBefore = 99;
    COrkaEng::SetWatcher([&](int, long long) { freedBefore = watch.Freed().size(); });
    group.reset();
    COrkaEng::SetWatcher({});
    EXPECT_EQ(freedBefore, 1u);
}

TEST(DeletionOrder, PointsAreDestroyedAsWhatTheyAre) {
    struct Loud : CPunGps {
        Loud(CGrpGps* group, int& count) : CPunGps(nullptr, false, group), gone(count) {}
        ~Loud() override { ++gone; }
        int& gone;
    };
    int gone = 0;
    {
        CGrpGps group(nullptr, false, nullptr, 0);
        CGrpGpsLayout::Points(group) = {new Loud(&group, gone), new Loud(&group, gone)};
    }
    EXPECT_EQ(gone, 2);
}

}  // namespace
