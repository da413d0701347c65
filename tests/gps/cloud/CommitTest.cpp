// A whole commit of a book, by hand, and what its answer leaves.
#include <gtest/gtest.h>

#include <string>

#include "tests/gps/cloud/CloudBook.h"

namespace {

using test::CloudBook;
using test::Fields;
using test::kGroup;
using test::kPoint;

std::string Commit(CloudBook& book) {
    vex::String records;
    book.project.GenerateCommit(records);
    return std::string(records.View());
}

/// A group and a point known to the server and changed, a new group with a new point, a new point in the
/// known group, and one group and one point deleted.
struct Edited : CloudBook {
    Edited() {
        AddGroup(10, "known");
        AddPoint(0, 100, "P");
        AddPoint(0, 101, "gone");
        AddGroup(11, "gone");
        CGrpGps* added = AddGroup(0);
        test::FillGroup(*added);
        test::FillPoint(*AddPoint(2, 0));
        test::FillPoint(*AddPoint(0, 0));
        lib.GetGrpAt(0)->SetNome("renamed");
        lib.GetPunAt(0, 0)->SetQua(5);
        points.ItemDeletedLocally(lib.GetPunAt(0, 1));
        lib.DelPunAt(0, 1);
        bases.ItemDeletedLocally(lib.GetGrpAt(1));
        lib.DelGrpAt(1);
    }
};

TEST(Commit, PartsStandInTheirOrder) {
    Edited book;
    EXPECT_EQ(Commit(book),
              "UBAS;10;1;renamed\r\n"
              "UPTGPS;100;32;5\r\n"
              "IBAS" +
                  Fields(kGroup, 0x1FFF) + "\r\nIPTGPS;-1" + Fields(kPoint, 0x1FFFF) + "\r\nIPTGPS;10" +
                  Fields(kPoint, 0x1FFFF) +
                  "\r\nDEL;3;11\r\n"
                  "DEL;4;101");
}

TEST(Commit, AnswerLeavesNothingToSend) {
    Edited book;
    ASSERT_TRUE(book.bases.BeginCommit());
    ASSERT_TRUE(book.points.BeginCommit());
    EXPECT_TRUE(book.bases.ConfirmAdded({12}, 5));
    EXPECT_TRUE(book.points.ConfirmAdded({102, 103}, 5));
    book.bases.ConfirmChanged({10});
    book.points.ConfirmChanged({100});
    for (CCloudTable* table :
         {static_cast<CCloudTable*>(&book.bases), static_cast<CCloudTable*>(&book.points)}) {
        table->ConfirmDeleted();
        table->EndCommit();
    }
    EXPECT_EQ(Commit(book), "");
    EXPECT_EQ(book.lib.GetGrpAt(1)->GetCloudId(), 12);
    EXPECT_EQ(book.lib.GetPunAt(1, 0)->GetCloudId(), 102);
    EXPECT_EQ(book.lib.GetPunAt(0, 1)->GetCloudId(), 103);
    EXPECT_EQ(book.lib.GetPunAt(1, 0)->GetCloudCreatorDevId(), 5);
    // What comes back about them is theirs, and no second item.
    EXPECT_TRUE(book.bases.UpdateSuccessful_Edit(test::GroupReply("12", "5")));
    EXPECT_TRUE(book.points.UpdateSuccessful_Edit(test::PointReply("102", "12")));
    EXPECT_EQ(book.lib.GetGrpArSize(), 2);
    EXPECT_EQ(book.lib.GetPunArSize(1), 1);
    EXPECT_EQ(Commit(book), "");
}

TEST(Commit, EditOfANewItemIsPartOfItsAddition) {
    CloudBook book;
    book.AddGroup(0, "first name")->SetNome("second name");
    EXPECT_EQ(Commit(book).substr(0, 16), "IBAS;second name");
    EXPECT_EQ(book.Changes(book.bases), "");
}

}  // namespace
