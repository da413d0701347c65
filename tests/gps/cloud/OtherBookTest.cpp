// Import and merge of another field book.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "platform/cad/COrkaEng.h"
#include "tests/gps/cloud/CloudBook.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"

namespace {

using test::CloudBook;
using test::DeviceId;
using test::LooseBook;
using test::Shape;

/// "10(20 21) 0(0)": the ids.
std::string Ids(const CLibGps& book) {
    std::string ids;
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        ids += (g > 0 ? " " : "") + std::to_string(book.GetGrpAt(g)->GetCloudId()) + "(";
        for (int p = 0; p < book.GetPunArSize(g); ++p)
            ids += (p > 0 ? " " : "") + std::to_string(book.GetPunAt(g, p)->GetCloudId());
        ids += ")";
    }
    return ids;
}

/// Every point is found where it stands: owners, lists and look-ups agree.
void ExpectInOrder(const CLibGps& book) {
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        int at = -1, in = -1;
        EXPECT_TRUE(book.GetIndiciDiGrp(book.GetGrpAt(g), at));
        EXPECT_EQ(at, g);
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            EXPECT_TRUE(book.GetIndiciDiPun(book.GetPunAt(g, p), in, at)) << g << "/" << p;
            EXPECT_EQ(in, g);
            EXPECT_EQ(at, p);
            EXPECT_EQ(book.GetPunAt(g, p)->GetCloudCreatorDevId(), book.GetGrpAt(g)->GetCloudCreatorDevId());
        }
    }
}

/// Groups G0 and G1 known under 10 and 11, points P0 to P2 in each under 100, 101 …
struct Shared : CloudBook {
    explicit Shared(long long drawing = 0) : CloudBook(drawing) {
        for (int g = 0; g < 2; ++g) {
            AddGroup(10 + g)->SetNomeGrp("G" + std::to_string(g));
            for (int p = 0; p < 3; ++p) AddPoint(g, 100 + 3 * g + p, "P" + std::to_string(p));
        }
        bases.AddItemToTable(lib.GetGrpAt(0));
        bases.AddItemToTable(lib.GetGrpAt(1));
    }
};

// --- import -------------------------------------------------------------------------------------------

TEST(Import, GroupsAndPointsAreAppendedAsNew) {
    Shared source;
    CloudBook book;
    book.AddGroup(5)->SetNomeGrp("here");
    book.AddPoint(0, 50, "mine");
    book.lib.ImportCloudItems(&source.lib);
    EXPECT_EQ(Shape(book.lib), "here(mine) G0(P0 P1 P2) G1(P0 P1 P2)");
    EXPECT_EQ(Ids(book.lib), "5(50) 0(0 0 0) 0(0 0 0)");
    ExpectInOrder(book.lib);
    EXPECT_EQ(book.bases.GetAdded(), (std::vector<CCloudItem*>{book.lib.GetGrpAt(1), book.lib.GetGrpAt(2)}));
    ASSERT_EQ(book.points.GetAdded().size(), 6u);
    EXPECT_EQ(book.points.GetAdded().front(), book.lib.GetPunAt(1, 0));
    EXPECT_EQ(book.points.GetAdded().back(), book.lib.GetPunAt(2, 2));
    EXPECT_EQ(book.bases.GetById().size(), 1u);
    EXPECT_EQ(book.points.GetById().size(), 1u);
    EXPECT_EQ(book.notified, 0);
}

TEST(Import, SourceStaysAsItIs) {
    Shared source;
    {
        CloudBook book;
        book.lib.ImportCloudItems(&source.lib);
    }
    EXPECT_EQ(Shape(source.lib), "G0(P0 P1 P2) G1(P0 P1 P2)");
    EXPECT_EQ(Ids(source.lib), "10(100 101 102) 11(103 104 105)");
    EXPECT_EQ(source.bases.GetById().size(), 2u);
    EXPECT_EQ(source.points.GetById().size(), 6u);
    ExpectInOrder(source.lib);
}

TEST(Import, EveryFieldIsCopied) {
    CloudBook source, book;
    test::FillGroup(*source.AddGroup(10));
    test::FillPoint(*source.AddPoint(0, 100));
    source.lib.GetGrpAt(0)->SetNote("note of the group");
    source.lib.GetPunAt(0, 0)->SetNote("note of the point");
    source.lib.GetPunAt(0, 0)->SetPunRis32(7);
    test::FillGroup(*book.AddGroup(0));  // the datums of the map library, which is this book's own
    book.lib.ImportCloudItems(&source.lib);
    vex::String fields;
    book.bases.GetFields(*book.lib.GetGrpAt(1), 0x1FFF, fields);
    EXPECT_EQ(";" + std::string(fields.View()), test::Fields(test::kGroup, 0x1FFF));
    book.points.GetFields(*book.lib.GetPunAt(1, 0), 0x1FFFF, fields);
    EXPECT_EQ(";" + std::string(fields.View()), test::Fields(test::kPoint, 0x1FFFF));
    EXPECT_EQ(book.lib.GetGrpAt(1)->GetNote(), "note of the group");
    EXPECT_EQ(book.lib.GetPunAt(1, 0)->GetNote(), "note of the point");
    EXPECT_EQ(book.lib.GetPunAt(1, 0)->GetPunRis32(), 7u);
    EXPECT_EQ(book.lib.GetGrpAt(1)->GetConvCoord()->GetLibMap(), &book.map);
}

TEST(Import, MasksAreDropped) {
    Shared source;
    source.lib.GetGrpAt(0)->CloudItemChanged(0x4);
    source.lib.GetPunAt(0, 0)->CloudItemChanged(0x4);
    CloudBook book;
    book.lib.ImportCloudItems(&source.lib);
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetCloudFlag(), 0u);
    EXPECT_EQ(book.lib.GetPunAt(0, 0)->GetCloudFlag(), 0u);
    EXPECT_TRUE(book.bases.GetChanged().empty());
}

TEST(Import, KnownItemsKeepTheirIds) {
    Shared source, book;
    book.lib.ImportCloudItems(&source.lib);
    EXPECT_EQ(Ids(book.lib), "10(100 101 102) 11(103 104 105) 0(0 0 0) 0(0 0 0)");
    CCloudItem* item = nullptr;
    EXPECT_TRUE(book.bases.FindItem(10, item));
    EXPECT_EQ(item, book.lib.GetGrpAt(0));
    EXPECT_TRUE(book.points.FindItem(105, item));
    EXPECT_EQ(item, book.lib.GetPunAt(1, 2));
}

TEST(Import, DeletionThatWaitsIsStillSent) {
    Shared source, book;
    book.points.ItemDeletedLocally(book.lib.GetPunAt(0, 1));
    book.lib.DelPunAt(0, 1);
    for (int p = 0; p < 3; ++p) book.points.ItemDeletedLocally(book.lib.GetPunAt(1, p));
    book.bases.ItemDeletedLocally(book.lib.GetGrpAt(1));
    book.lib.DelGrpAt(1);
    book.lib.ImportCloudItems(&source.lib);
    EXPECT_EQ(Ids(book.lib), "10(100 102) 0(0 0 0) 0(0 0 0)");
    EXPECT_EQ(book.bases.GetDeleted(), std::set<long long>{11});
    EXPECT_EQ(book.points.GetDeleted(), (std::set<long long>{101, 103, 104, 105}));
    CCloudItem* item = book.lib.GetGrpAt(0);
    EXPECT_TRUE(book.bases.FindItem(11, item));
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(book.bases.GetAdded().size(), 2u);
}

TEST(Import, PointSetsOfTheCopyAreEmpty) {
    Shared source;
    source.lib.GetGrpAt(0)->InsInPunSetNor(source.lib.GetPunAt(0, 0));
    source.lib.GetGrpAt(0)->InsInPunSetSpc(source.lib.GetPunAt(0, 1));
    CloudBook book;
    book.lib.ImportCloudItems(&source.lib);
    CGrpGps& copy = *book.lib.GetGrpAt(0);
    EXPECT_EQ(copy.GetPunSetNorBegin(), copy.GetPunSetNorEnd());
    EXPECT_TRUE(copy.GetPunSetSpcEmpty());
    EXPECT_FALSE(source.lib.GetGrpAt(0)->GetPunSetSpcEmpty());
    source.lib.GetGrpAt(0)->AzzeraPunSet();
}

TEST(Import, CreatorIsThatOfTheSource) {
    Shared source;
    source.lib.GetGrpAt(0)->SetCloudCreatorDevId(77);
    const DeviceId device(5);
    CloudBook book;
    book.lib.ImportCloudItems(&source.lib);
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetCloudCreatorDevId(), 77);
    EXPECT_EQ(book.lib.GetPunAt(0, 0)->GetCloudCreatorDevId(), 77);
    EXPECT_EQ(book.lib.GetCurrGrp(), nullptr) << "in the cloud none of the groups is of this device";
}

TEST(Import, ItselfIsAppendedOnce) {
    Shared book;
    book.lib.ImportCloudItems(&book.lib);
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1 P2) G1(P0 P1 P2) G0(P0 P1 P2) G1(P0 P1 P2)");
    EXPECT_EQ(Ids(book.lib), "10(100 101 102) 11(103 104 105) 0(0 0 0) 0(0 0 0)");
    ExpectInOrder(book.lib);
}

TEST(Import, NothingIsNothing) {
    Shared book;
    book.lib.ImportCloudItems(nullptr);
    CloudBook empty;
    book.lib.ImportCloudItems(&empty.lib);
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1 P2) G1(P0 P1 P2)");
}

TEST(Import, BookOutsideTheCloudTakesThemToo) {
    Shared source;
    LooseBook book;
    book.lib.ImportCloudItems(&source.lib);
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1 P2) G1(P0 P1 P2)");
    EXPECT_EQ(Ids(book.lib), "0(0 0 0) 0(0 0 0)");
    ExpectInOrder(book.lib);
    LooseBook other;
    CloudBook cloud;
    other.lib.ImportCloudItems(&book.lib);
    cloud.lib.ImportCloudItems(&book.lib);
    EXPECT_EQ(cloud.points.GetAdded().size(), 6u);
}

// --- merge --------------------------------------------------------------------------------------------

TEST(MergeBooks, WithoutCloudProjectNothingHappens) {
    Shared source;
    LooseBook book;
    book.lib.MergeCloudItems(&source.lib);
    EXPECT_EQ(book.lib.GetGrpArSize(), 0);
    CCloudProject noTables;
    CLibGps other(&noTables, nullptr, nullptr, nullptr, 0);
    other.MergeCloudItems(&source.lib);
    EXPECT_EQ(other.GetGrpArSize(), 0);
    Shared here;
    here.lib.MergeCloudItems(nullptr);
    EXPECT_EQ(Shape(here.lib), "G0(P0 P1 P2) G1(P0 P1 P2)");
}

TEST(MergeBooks, KnownItemsAreFilledAndUnknownOnesCopied) {
    Shared source, book;
    book.lib.DelPunAt(1, 2);  // not known here
    source.lib.GetGrpAt(0)->SetNote("group");
    source.lib.GetPunAt(0, 1)->SetNote("point");
    source.lib.GetGrpAt(1)->SetNomeGrp("renamed there");
    source.AddGroup(12)->SetNomeGrp("G2");
    source.AddPoint(2, 120, "P120");
    book.lib.MergeCloudItems(&source.lib);
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1 P2) G1(P0 P1 P2) G2(P120)");
    EXPECT_EQ(Ids(book.lib), "10(100 101 102) 11(103 104 105) 12(120)");
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetNote(), "group");
    EXPECT_EQ(book.lib.GetPunAt(0, 1)->GetNote(), "point");
    ExpectInOrder(book.lib);
    EXPECT_TRUE(book.bases.GetAdded().empty()) << "a copy with an id is not sent as new";
    EXPECT_TRUE(book.points.GetAdded().empty());
    CCloudItem* item = nullptr;
    EXPECT_TRUE(book.bases.FindItem(12, item)) << "later replies find it";
    EXPECT_EQ(item, book.lib.GetGrpAt(2));
    EXPECT_TRUE(book.points.FindItem(105, item));
    EXPECT_EQ(item, book.lib.GetPunAt(1, 2));
    EXPECT_EQ(book.notified, 0);
}

TEST(MergeBooks, PointComesIntoTheLocalGroupOfItsGroup) {
    Shared book;
    CloudBook source;
    source.AddGroup(11);
    source.AddPoint(0, 200, "new");
    source.AddPoint(0, 100, "known elsewhere");
    book.lib.MergeCloudItems(&source.lib);
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1 P2) G1(P0 P1 P2 new)");
    ExpectInOrder(book.lib);
}

TEST(MergeBooks, MaskOfACopyComesWithIt) {
    CloudBook book, source;
    source.AddGroup(10)->CloudItemChanged(0x5);
    source.AddPoint(0, 100)->CloudItemChanged(0x6);
    book.lib.MergeCloudItems(&source.lib);
    EXPECT_EQ(book.lib.GetGrpAt(0)->GetCloudFlag(), 0x5u);
    EXPECT_EQ(book.bases.GetChanged().count(book.lib.GetGrpAt(0)), 1u);
    EXPECT_EQ(book.lib.GetPunAt(0, 0)->GetCloudFlag(), 0x6u);
    EXPECT_EQ(book.points.GetChanged().count(book.lib.GetPunAt(0, 0)), 1u);
}

TEST(MergeBooks, ItemsWithoutIdAreAddedAtEveryCall) {
    CloudBook book, source;
    source.AddGroup(0)->SetNomeGrp("new");
    source.AddPoint(0, 0, "P");
    book.lib.MergeCloudItems(&source.lib);
    book.lib.MergeCloudItems(&source.lib);
    EXPECT_EQ(Shape(book.lib), "new(P) new(P)");
    EXPECT_EQ(book.bases.GetAdded().size(), 2u) << "they are new here";
    EXPECT_EQ(book.points.GetAdded().size(), 2u);
    ExpectInOrder(book.lib);
}

TEST(MergeBooks, ItemDeletedHereComesBack) {
    Shared source, book;
    book.points.ItemDeletedLocally(book.lib.GetPunAt(0, 1));
    book.lib.DelPunAt(0, 1);
    book.lib.MergeCloudItems(&source.lib);
    EXPECT_EQ(Ids(book.lib), "10(100 102 101) 11(103 104 105)");
    EXPECT_TRUE(book.points.GetDeleted().empty()) << "what is here again is not to be deleted there";
}

TEST(MergeBooks, ItselfStaysAsItIs) {
    Shared book;
    book.lib.MergeCloudItems(&book.lib);
    EXPECT_EQ(Shape(book.lib), "G0(P0 P1 P2) G1(P0 P1 P2)");
    ExpectInOrder(book.lib);
}

TEST(MergeBooks, SourceStaysAsItIs) {
    Shared source;
    {
        CloudBook book;
        book.lib.MergeCloudItems(&source.lib);
        EXPECT_EQ(Ids(book.lib), Ids(source.lib));
    }
    EXPECT_EQ(Shape(source.lib), "G0(P0 P1 P2) G1(P0 P1 P2)");
    EXPECT_EQ(source.points.GetById().size(), 6u);
    ExpectInOrder(source.lib);
}

// --- drawings -----------------------------------------------------------------------------------------

TEST(OtherBook, EveryCopyCountsOneUsageOfTheDrawingItHas) {
    constexpr long long kHere = 301, kThere = 302;
    const auto usage = [](long long drawing) { return COrkaEng::GetDrawingRefUsage(drawing); };
    ASSERT_EQ(usage(kHere) + usage(kThere), 0);
    {
        Shared source(kThere);
        ASSERT_EQ(usage(kThere), 3) << "the book and two groups";
        {
            CloudBook book(kHere);
            book.lib.ImportCloudItems(&source.lib);
            EXPECT_EQ(book.lib.GetGrpAt(0)->GetTargetDrawing(), kThere) << "as it was copied";
            EXPECT_EQ(usage(kHere), 1) << "the book alone";
            EXPECT_EQ(usage(kThere), 5);
            book.lib.MergeCloudItems(&source.lib);
            EXPECT_EQ(usage(kHere), 1);
            EXPECT_EQ(usage(kThere), 7);
        }
        EXPECT_EQ(usage(kHere), 0);
        EXPECT_EQ(usage(kThere), 3);
        CloudBook same(kThere);
        same.lib.ImportCloudItems(&source.lib);
        EXPECT_EQ(usage(kThere), 3 + 3);
    }
    EXPECT_EQ(usage(kThere), 0);
}

}  // namespace
