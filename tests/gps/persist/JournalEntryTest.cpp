// The journal entries of changed and deleted groups and points as they are written.
#include <gtest/gtest.h>

#include <string>

#include "platform/base/savedPointers.h"
#include "tests/Bytes.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/model/Layout.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/GoldenRecords.h"
#include "tests/gps/persist/RecordingJournal.h"

namespace {

using test::Bytes;
using test::Dump;
using test::LooseBook;
using test::RecordingJournal;
using test::Section;

/// Groups of 1, 3 and 0 points, with a journal.
class JournalEntry : public ::testing::Test {
protected:
    JournalEntry() {
        test::Fill(book.lib, {1, 3, 0});
        book.lib.SetNomeFile("site.prj");
        book.lib.SetTmpJournal(&journal);
    }

    void ExpectOne(int code, const std::string& bytes) {
        ASSERT_EQ(journal.entries.size(), 1u);
        EXPECT_EQ(journal.entries[0].file, "site.prj");
        EXPECT_EQ(journal.entries[0].code, code);
        EXPECT_EQ(Dump(journal.entries[0].bytes), Dump(bytes));
        EXPECT_FALSE(journal.IsOpen()) << "the entry was handed back";
        EXPECT_EQ(journal.strangers, 0);
    }

    void SaveAll(CGrpGps* group, CPunGps* point) {
        book.lib.SaveTmpGrpGps(group, nullptr);
        book.lib.SaveDelGrpGps(group);
        book.lib.SaveTmpPunGps(point);
        book.lib.SaveDelPunGps(point);
    }

    RecordingJournal journal;
    LooseBook book;
};

// --- bytes -------------------------------------------------------------------------------------------------

TEST_F(JournalEntry, ChangedGroupIsItsPositionAndItsRecord) {
    CGrpGps& group = *book.lib.AddGrp(false);
    test::FillGoldenGroup(group);
    book.lib.SaveTmpGrpGps(&group, nullptr);
    ExpectOne(3001, Bytes().Hex("7805 03000000").Raw(Join(test::GroupRows(group), 1400)));
}

TEST_F(JournalEntry, ChangedPointIsItsPositionsAndItsRecord) {
    CPunGps& point = *book.lib.GetPunAt(1, 2);
    test::FillGoldenPoint(point);
    book.lib.SaveTmpPunGps(&point);
    ExpectOne(
        3002,
        Bytes().Hex("7805 01000000 02000000").Raw(Join(test::PointRows(point, test::Rms742::asRead), 1400)));
}

TEST_F(JournalEntry, DeletedGroupIsItsPosition) {
    book.lib.SaveDelGrpGps(book.lib.GetGrpAt(1));
    ExpectOne(3011, Bytes().Hex("7805 01000000"));
}

TEST_F(JournalEntry, DeletedPointIsItsPositions) {
    book.lib.SaveDelPunGps(book.lib.GetPunAt(1, 0));
    ExpectOne(3012, Bytes().Hex("7805 01000000 00000000"));
}

TEST_F(JournalEntry, RecordsHoldTheStateOfTheCloud) {
    CGrpGps& group = *book.lib.AddGrp(false);
    CPunGps& point = *book.lib.AddPun(3, false);
    test::FillGoldenGroup(group);
    test::FillGoldenPoint(point);
    book.lib.SaveTmpGrpGps(&group, nullptr);
    book.lib.SaveTmpPunGps(&point);
    ASSERT_EQ(journal.entries.size(), 2u);
    const auto last24 = [](const std::string& bytes) { return Dump(bytes.substr(bytes.size() - 24)); };
    EXPECT_EQ(last24(journal.entries[0].bytes),
              Dump(Bytes().Hex("0102030405060708 01000080 01000080 0000000000000000").Get()));
    EXPECT_EQ(last24(journal.entries[1].bytes),
              Dump(Bytes().Hex("9210000000000000 21000000 21000000 0000000000000000").Get()));
}

TEST_F(JournalEntry, MapperLearnsOfTheGroupsDrawing) {
    book.lib.GetGrpAt(0)->SetTargetDrawing(77);
    vex::CPtr64Mapper mapper;
    book.lib.SaveTmpGrpGps(book.lib.GetGrpAt(0), &mapper);
    EXPECT_TRUE(mapper.IsWritten(77));
    EXPECT_EQ(mapper.GetSize(), 1u);
    book.lib.GetGrpAt(0)->SetTargetDrawing(0);
}

// --- positions ---------------------------------------------------------------------------------------------

TEST_F(JournalEntry, PositionsAreThoseOfTheMoment) {
    CGrpGps* const group = book.lib.GetGrpAt(1);
    CPunGps* const point = book.lib.GetPunAt(1, 1);
    book.lib.SaveDelPunGps(point);
    book.lib.InsGrpAt(0, false);
    book.lib.InsPunAt(2, 0, false);
    book.lib.PunGpsSwap(2, 2, 3);
    book.lib.SaveDelPunGps(point);
    book.lib.SaveDelGrpGps(group);
    ASSERT_EQ(journal.entries.size(), 3u);
    EXPECT_EQ(Dump(journal.entries[0].bytes), Dump(Bytes().Hex("7805 01000000 01000000").Get()));
    EXPECT_EQ(Dump(journal.entries[1].bytes), Dump(Bytes().Hex("7805 02000000 03000000").Get()));
    EXPECT_EQ(Dump(journal.entries[2].bytes), Dump(Bytes().Hex("7805 02000000").Get()));
}

// --- nothing is noted --------------------------------------------------------------------------------------

TEST_F(JournalEntry, NothingIsNotedOfNull) {
    SaveAll(nullptr, nullptr);
    EXPECT_EQ(journal.asked, 0);
}

TEST_F(JournalEntry, NothingIsNotedOfCopies) {
    CGrpGps group(*book.lib.GetGrpAt(2));  // one without points, which its copy would destroy
    CPunGps point(*book.lib.GetPunAt(1, 1));
    SaveAll(&group, &point);
    EXPECT_EQ(journal.asked, 0) << "no entry is begun that would stay empty";
}

TEST_F(JournalEntry, NothingIsNotedOfItemsOfAnotherBook) {
    LooseBook other;
    test::Fill(other.lib, {1, 3, 0});
    SaveAll(other.lib.GetGrpAt(1), other.lib.GetPunAt(1, 1));
    EXPECT_EQ(journal.asked, 0);
}

TEST_F(JournalEntry, NothingIsNotedWithoutJournal) {
    book.lib.SetTmpJournal(nullptr);
    SaveAll(book.lib.GetGrpAt(1), book.lib.GetPunAt(1, 1));
    EXPECT_EQ(journal.asked, 0);
}

TEST_F(JournalEntry, NothingIsNotedWithoutFileName) {
    book.lib.SetNomeFile("");
    SaveAll(book.lib.GetGrpAt(1), book.lib.GetPunAt(1, 1));
    EXPECT_EQ(journal.asked, 0);
}

TEST_F(JournalEntry, NothingIsNotedWhenTheJournalRefuses) {
    journal.takes = false;
    SaveAll(book.lib.GetGrpAt(1), book.lib.GetPunAt(1, 1));
    EXPECT_EQ(journal.asked, 4) << "each asks for itself";
    EXPECT_TRUE(journal.entries.empty());
    EXPECT_EQ(journal.strangers, 0) << "nothing is handed back that was not given";
}

TEST_F(JournalEntry, NothingIsNotedWhileAnotherEntryIsOpen) {
    ofpstream* const other = book.lib.GetFileOutTmp("site.prj", 9001);
    ASSERT_NE(other, nullptr);
    SaveAll(book.lib.GetGrpAt(1), book.lib.GetPunAt(1, 1));
    book.lib.CloseFileOutTmp(other);
    ASSERT_EQ(journal.entries.size(), 1u);
    EXPECT_EQ(Dump(journal.entries[0].bytes), Dump(Bytes().Hex("7805").Get()));
    SaveAll(book.lib.GetGrpAt(1), book.lib.GetPunAt(1, 1));
    EXPECT_EQ(journal.entries.size(), 5u);
}

TEST_F(JournalEntry, CopyOfTheBookNotesNothing) {
    CLibGps copy(book.lib);
    copy.SaveDelGrpGps(book.lib.GetGrpAt(1));
    copy.SaveTmpPunGps(book.lib.GetPunAt(1, 1));
    CLibGpsLayout::Groups(copy).clear();  // only one of the books may destroy them
    EXPECT_EQ(journal.asked, 0);
}

// --- the file's name ---------------------------------------------------------------------------------------

TEST_F(JournalEntry, FileNameIsThatOfTheLastSaveOrLoad) {
    ofpstream out(1400);
    book.lib.SalvaInFile(out, 1400, "saved.prj", nullptr, nullptr);
    book.lib.SaveDelGrpGps(book.lib.GetGrpAt(0));
    LooseBook read;
    read.lib.SetTmpJournal(&journal);
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), 1400);
    CDrawingsMapper drawings;
    read.lib.LeggeDaFile(in, true, true, 1400, "loaded.prj", drawings);
    read.lib.SaveDelPunGps(read.lib.GetPunAt(1, 1));
    ASSERT_EQ(journal.entries.size(), 2u);
    EXPECT_EQ(journal.entries[0].file, "saved.prj");
    EXPECT_EQ(journal.entries[1].file, "loaded.prj");
}

// --- what stays as it was ----------------------------------------------------------------------------------

TEST_F(JournalEntry, NotingChangesNothingInTheBook) {
    book.lib.SetModifiedFlag(false);
    book.lib.SetStreamVersion(7);
    const std::string before = Section(book.lib, 1400);
    book.lib.SetStreamVersion(7);
    book.lib.SetNomeFile("site.prj");
    test::ChangeWatch watch;
    SaveAll(book.lib.GetGrpAt(1), book.lib.GetPunAt(1, 1));
    EXPECT_EQ(journal.entries.size(), 4u);
    EXPECT_TRUE(watch.Take().empty());
    EXPECT_FALSE(book.lib.IsModified());
    EXPECT_EQ(book.lib.GetStreamVersion(), 7);
    EXPECT_EQ(book.lib.GetNomeFile(), "site.prj");
    EXPECT_TRUE(Section(book.lib, 1400) == before);
}

}  // namespace
