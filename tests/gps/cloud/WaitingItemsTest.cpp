// Waiting items in the journal: which are written, and in which order.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "gps/persist/JournalCodes.h"
#include "platform/base/ifpstream.h"
#include "tests/gps/cloud/CloudBook.h"
#include "tests/gps/persist/RecordingJournal.h"

namespace {

using test::CloudBook;
using test::RecordingJournal;

struct Journaled : CloudBook {
    Journaled() {
        lib.SetNomeFile("job");
        lib.SetTmpJournal(&journal);
    }
    ~Journaled() { lib.SetTmpJournal(nullptr); }

    /// The positions in the entries, "g" or "g/p".
    std::vector<std::string> Positions(int code) {
        std::vector<std::string> positions;
        for (const RecordingJournal::Entry& entry : journal.entries) {
            EXPECT_EQ(entry.code, code);
            EXPECT_EQ(entry.file, "job");
            ifpstream in(entry.bytes.data(), entry.bytes.size(), RecordingJournal::kVersion);
            in.ReadShort();
            std::string at = std::to_string(in.ReadInt());
            if (code == kTmpPunGps) at += "/" + std::to_string(in.ReadInt());
            positions.push_back(at);
        }
        return positions;
    }

    RecordingJournal journal;
};

TEST(WaitingItems, GroupsGoInOrderOfTheFourCollections) {
    Journaled book;
    book.AddGroup(10);
    book.AddGroup(0);
    book.AddGroup(11);
    book.AddGroup(0);
    book.AddGroup(12);
    const auto at = [&](int g) { return static_cast<CCloudItem*>(book.lib.GetGrpAt(g)); };
    at(0)->CloudItemChanged(0x1);
    at(2)->CloudItemChanged(0x1);
    const std::set<CCloudItem*> others{at(4), at(1)};
    std::vector<std::string> expected{"3", "0", "3"};
    for (CCloudItem* item : others) expected.push_back(item == at(4) ? "4" : "1");
    expected.push_back("1");
    expected.push_back("3");
    for (CCloudItem* item : book.bases.GetChanged()) expected.push_back(item == at(0) ? "0" : "2");
    book.bases.StoreTmpItems({at(3), at(0), at(3)}, others);
    EXPECT_EQ(book.Positions(kTmpGrpGps), expected) << "once for each place where an item stands";
}

TEST(WaitingItems, PointsGoInOrderOfTheFourCollections) {
    Journaled book;
    book.AddGroup(10);
    book.AddGroup(11);
    book.AddPoint(0, 20);
    book.AddPoint(0, 0);
    book.AddPoint(1, 21);
    book.AddPoint(1, 0);
    const auto at = [&](int g, int p) { return static_cast<CCloudItem*>(book.lib.GetPunAt(g, p)); };
    at(0, 0)->CloudItemChanged(0x1);
    book.points.StoreTmpItems({at(1, 0)}, {at(0, 1)});
    EXPECT_EQ(book.Positions(kTmpPunGps), (std::vector<std::string>{"1/0", "0/1", "0/1", "1/1", "0/0"}));
}

TEST(WaitingItems, NothingWaitingIsNoEntry) {
    Journaled book;
    book.AddGroup(10);
    book.AddPoint(0, 20);
    book.bases.StoreTmpItems({}, {});
    book.points.StoreTmpItems({}, {});
    EXPECT_TRUE(book.journal.entries.empty());
}

TEST(WaitingItems, NullAndForeignItemsArePassedOver) {
    Journaled book;
    book.AddGroup(0);
    book.AddPoint(0, 0);
    CGrpGps group(nullptr, false, &book.map, 0);
    CPunGps point(nullptr, false, &group);
    book.bases.StoreTmpItems({nullptr, &group}, {});
    EXPECT_EQ(book.Positions(kTmpGrpGps), std::vector<std::string>{"0"});
    book.journal.entries.clear();
    book.points.StoreTmpItems({nullptr, &point}, {});
    EXPECT_EQ(book.Positions(kTmpPunGps), std::vector<std::string>{"0/0"});
}

TEST(WaitingItems, WithoutBookNothingIsWritten) {
    Journaled book;
    book.AddGroup(0);
    book.AddPoint(0, 0);
    book.bases.SetOwner(nullptr);
    book.points.SetOwner(nullptr);
    book.bases.StoreTmpItems({book.lib.GetGrpAt(0)}, {});
    book.points.StoreTmpItems({book.lib.GetPunAt(0, 0)}, {});
    EXPECT_TRUE(book.journal.entries.empty());
}

}  // namespace
