// The field-book record as it is read: into new and filled books, with everything or with nothing kept.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/Bytes.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/GoldenRecords.h"

namespace {

using test::Book;
using test::Bytes;
using test::DrawingWatch;
using test::Fill;
using test::Load;
using test::LooseBook;
using test::Read;
using test::Section;
using test::SetOptions;
using test::Shape;
using Calls = DrawingWatch::Calls;

constexpr long long kSavedBook = 1000, kSavedGroup = 1001;
constexpr long long kLiveBook = 2000, kLiveGroup = 2001, kDefault = 9;

CDrawingsMapper Drawings() {
    CDrawingsMapper drawings(kDefault);
    drawings.SetDrawing(kSavedBook, kLiveBook);
    drawings.SetDrawing(kSavedGroup, kLiveGroup);
    return drawings;
}

// --- what comes back ---------------------------------------------------------------------------------------

TEST(BookRead, GroupsAndPointsComeBackAtEveryVersion) {
    for (const short version : test::VersionsAroundThresholds()) {
        if (version == 742) continue;  // is written in another form than it is read
        LooseBook book, read;
        Fill(book.lib, {2, 0, 3});
        ASSERT_TRUE(Read(read.lib, Section(book.lib, version), version)) << version;
        EXPECT_EQ(Shape(read.lib), "G0(P0 P1) G1() G2(P0 P1 P2)") << version;
        EXPECT_EQ(read.lib.GetPunAt(2, 1)->GetCloudCreatorDevId(), 1)
            << "the owner is the group it stands in";
    }
}

TEST(BookRead, EmptyBookComesBack) {
    for (const short version : test::VersionsAroundThresholds()) {
        LooseBook book, read;
        ASSERT_TRUE(Read(read.lib, Section(book.lib, version), version)) << version;
        EXPECT_EQ(read.lib.GetGrpArSize(), 0);
        EXPECT_FALSE(read.lib.HasOpzPostProc());
    }
}

TEST(BookRead, GroupsAreAppendedBehindThoseThatAreThere) {
    LooseBook book, read;
    Fill(book.lib, {2, 1});
    Fill(read.lib, {3, 0});
    CPunGps* const first = read.lib.GetPunAt(0, 0);
    ASSERT_TRUE(Read(read.lib, Section(book.lib, 1400), 1400));
    EXPECT_EQ(Shape(read.lib), "G0(P0 P1 P2) G1() G0(P0 P1) G1(P0)");
    EXPECT_EQ(read.lib.GetPunAt(0, 0), first);
    int g = -1, p = -1;
    EXPECT_TRUE(read.lib.GetIndiciDiPun(read.lib.GetPunAt(2, 1), g, p));
    EXPECT_EQ(g, 2);
    EXPECT_EQ(p, 1);
}

TEST(BookRead, ArgumentAndStreamMayBeOfTwoVersions) {
    struct Row {
        short argument, stream;
    };
    for (const Row& row : {Row{1003, 1400}, Row{1400, 1003}, Row{743, 1400}, Row{1400, 743}, Row{1004, 1001},
                           Row{1001, 1004}}) {
        LooseBook book, read(3);
        Fill(book.lib, {2, 1});
        book.lib.GetOpzPostProc();
        ASSERT_TRUE(Read(read.lib, Section(book.lib, row.argument, row.stream), row.argument, row.stream))
            << row.argument << ", " << row.stream;
        EXPECT_EQ(Shape(read.lib), "G0(P0 P1) G1(P0)");
        EXPECT_EQ(read.lib.GetStreamVersion(), row.argument);
        EXPECT_EQ(read.lib.HasOpzPostProc(), row.stream >= 1002);
    }
}

TEST(BookRead, NegativeCountsAreNone) {
    for (const std::int32_t count : {-1, std::numeric_limits<std::int32_t>::min()}) {
        LooseBook book, read;
        Fill(book.lib, {0});
        const std::string group = test::Saved(*book.lib.GetGrpAt(0), 1001);
        LooseBook empty;
        std::string head = Section(empty.lib, 1001);
        head.resize(head.size() - 4);
        ASSERT_TRUE(Read(read.lib, Bytes().Raw(head).I32(count), 1001));
        EXPECT_EQ(read.lib.GetGrpArSize(), 0);
        ASSERT_TRUE(Read(read.lib, Bytes().Raw(head).I32(1).Raw(group).I32(count), 1001));
        EXPECT_EQ(Shape(read.lib), "G0()");
    }
}

TEST(BookRead, FileNameVersionAndFlagAreKept) {
    LooseBook book;
    const std::string section = Section(book.lib, 1400);
    for (const bool entities : {true, false}) {
        LooseBook read;
        ifpstream in(section.data(), section.size(), 1400);
        CDrawingsMapper drawings;
        read.lib.LeggeDaFile(in, true, entities, 1400, "D:\\Jobs\\Site7.prj", drawings);
        EXPECT_EQ(read.lib.GetNomeFile(), "D:\\Jobs\\Site7.prj");
        EXPECT_EQ(read.lib.GetStreamVersion(), 1400);
        EXPECT_EQ(read.lib.GetStreamFlag(), entities);
        ifpstream again(section.data(), section.size(), 1400);
        read.lib.LeggeDaFile(again, true, entities, 1400, nullptr, drawings);
        EXPECT_EQ(read.lib.GetNomeFile(), "");
    }
}

TEST(BookRead, FileNameIsKeptWhenTheStreamEndsAtOnce) {
    for (const short version : {short{1003}, short{1400}}) {
        LooseBook read;
        ifpstream in("", 0, version);
        in.SetPastEndLimit(0);
        CDrawingsMapper drawings;
        EXPECT_THROW(read.lib.LeggeDaFile(in, true, true, version, "new name", drawings), StreamExhausted);
        EXPECT_EQ(read.lib.GetNomeFile(), "new name") << version;
    }
}

TEST(BookRead, MarkOfModificationStays) {
    for (const bool modified : {true, false}) {
        LooseBook book, read;
        Fill(book.lib, {1});
        read.lib.SetModifiedFlag(modified);
        ASSERT_TRUE(Read(read.lib, Section(book.lib, 1400), 1400));
        EXPECT_EQ(read.lib.IsModified(), modified);
    }
}

// --- options -----------------------------------------------------------------------------------------------

TEST(BookRead, OptionsComeBackWithTheFlag) {
    for (const short version : {short{743}, short{1002}, short{1003}, short{1004}, short{1400}}) {
        LooseBook book, read;
        SetOptions(book.lib);
        ASSERT_TRUE(Read(read.lib, Section(book.lib, version), version));
        EXPECT_EQ(read.lib.GetOpzLibGps().OpzValore, 17);
        EXPECT_FALSE(read.lib.GetOpzLibGps().CalcLibCmp);
        EXPECT_TRUE(read.lib.GetOpzLibGps().OpzFlagA);
        EXPECT_EQ(read.lib.GetOpzListDisGps().GetOpzPun().GetColSimb(), 12);
        EXPECT_EQ(read.lib.GetOpzListDisGps().GetOpzGrp().GetColNome(), 13);
        ASSERT_EQ(read.lib.HasOpzPostProc(), version >= 1002) << version;
        if (version < 1002) continue;
        EXPECT_EQ(read.lib.GetOpzPostProc()->ParPostProc.wPar1, 99);
        EXPECT_EQ(read.lib.GetOpzPostProc()->GetIdPtBaseLineDettByFile("rover"), 0);
        EXPECT_EQ(read.lib.GetOpzPostProc()->GetIdPtBaseLineBaseByFile("base"), 0);
    }
}

TEST(BookRead, WithoutTheFlagOptionsArePassedOver) {
    for (const short version : test::VersionsAroundThresholds()) {
        if (version == 742) continue;
        LooseBook book, read;
        SetOptions(book.lib);
        Fill(book.lib, {1, 2});
        Load load;
        load.options = false;
        ASSERT_TRUE(Read(read.lib, Section(book.lib, version), version, load)) << version;
        EXPECT_EQ(Shape(read.lib), "G0(P0) G1(P0 P1)");
        EXPECT_EQ(read.lib.GetOpzLibGps().OpzValore, 0);
        EXPECT_TRUE(read.lib.GetOpzLibGps().CalcLibCmp);
        EXPECT_EQ(read.lib.GetOpzListDisGps().GetOpzPun().GetColSimb(), 5);
        EXPECT_FALSE(read.lib.HasOpzPostProc());
    }
}

TEST(BookRead, WithoutTheFlagThePresentOptionsStay) {
    for (const short version : {short{1299}, short{1300}, short{1400}}) {
        LooseBook book, read;
        SetOptions(book.lib);
        read.lib.GetOpzLibGps().OpzValore = 3;
        read.lib.GetOpzListDisGps().GetOpzGrp().SetColNome(4);
        read.lib.GetOpzPostProc()->ParPostProc.wPar1 = 5;
        read.lib.GetOpzPostProc()->AddDataPtBaseLineBase("kept");
        Load load;
        load.options = false;
        ASSERT_TRUE(Read(read.lib, Section(book.lib, version), version, load)) << version;
        EXPECT_EQ(read.lib.GetOpzLibGps().OpzValore, 3);
        EXPECT_EQ(read.lib.GetOpzListDisGps().GetOpzGrp().GetColNome(), 4);
        EXPECT_EQ(read.lib.GetOpzPostProc()->ParPostProc.wPar1, 5);
        EXPECT_EQ(read.lib.GetOpzPostProc()->GetNumPtBaseLineDett(), 0);
        EXPECT_EQ(read.lib.GetOpzPostProc()->GetNumPtBaseLineBase(), 1);
    }
}

TEST(BookRead, PostProcessingOptionsOfARecordWithoutThemStay) {
    LooseBook book, read;
    read.lib.GetOpzPostProc()->AddDataPtBaseLineDett("kept");
    ASSERT_TRUE(Read(read.lib, Section(book.lib, 1400), 1400));
    EXPECT_EQ(read.lib.GetOpzPostProc()->GetNumPtBaseLineDett(), 1);
}

TEST(BookRead, ReadingTwiceDoublesTheFiles) {
    LooseBook book, read;
    SetOptions(book.lib);
    const std::string section = Section(book.lib, 1400);
    ASSERT_TRUE(Read(read.lib, section, 1400));
    ASSERT_TRUE(Read(read.lib, section, 1400));
    EXPECT_EQ(read.lib.GetOpzPostProc()->GetNumPtBaseLineDett(), 2);
    EXPECT_EQ(read.lib.GetOpzPostProc()->GetNumPtBaseLineBase(), 2);
}

TEST(BookRead, AnyMarkButZeroAnnouncesPostProcessingOptions) {
    LooseBook book;
    SetOptions(book.lib);
    ofpstream options(1400);
    book.lib.GetOpzPostProc()->SalvaInFile(options);
    std::string section = Section(book.lib, 1400);
    const std::size_t at = section.size() - options.GetBytes().size() - 1;
    ASSERT_EQ(section[at], 1);
    for (const char mark : {'\x02', '\x7F', '\xFF'}) {
        section[at] = mark;
        LooseBook read;
        ASSERT_TRUE(Read(read.lib, section, 1400));
        EXPECT_EQ(read.lib.GetOpzPostProc()->GetNumPtBaseLineDett(), 1);
    }
}

// --- nothing kept ------------------------------------------------------------------------------------------

TEST(BookRead, WithoutTheFlagNoEntityIsAddedAndAllIsConsumed) {
    for (const short version : test::VersionsAroundThresholds()) {
        if (version == 742) continue;
        for (const bool options : {true, false}) {
            LooseBook book, read;
            Fill(book.lib, {2, 0, 3});
            SetOptions(book.lib);
            Fill(read.lib, {1});
            Load load;
            load.options = options;
            load.entities = false;
            ASSERT_TRUE(Read(read.lib, Section(book.lib, version), version, load)) << version;
            EXPECT_EQ(Shape(read.lib), "G0(P0)") << version;
            EXPECT_EQ(read.lib.GetOpzLibGps().OpzValore, options ? 17 : 0);
        }
    }
}

TEST(BookRead, DiscardedEntitiesEnterNoTable) {
    LooseBook book;
    Fill(book.lib, {2, 1});
    book.lib.GetGrpAt(0)->SetCloudId(5);
    Book read;
    Load load;
    load.entities = false;
    ASSERT_TRUE(Read(read.lib, Section(book.lib, 1400), 1400, load));
    EXPECT_TRUE(read.bases.GetAdded().empty());
    EXPECT_TRUE(read.points.GetAdded().empty());
    EXPECT_TRUE(read.bases.GetById().empty());
}

// --- the cloud ---------------------------------------------------------------------------------------------

TEST(BookRead, BookInStepWithTheServerStaysSo) {
    Book book;
    book.Fill({2, 1});
    long long id = 100;
    for (int g = 0; g < 2; ++g) {
        test::Register(book.bases, *book.lib.GetGrpAt(g), ++id);
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
            test::Register(book.points, *book.lib.GetPunAt(g, p), ++id);
    }
    book.lib.GetPunAt(0, 1)->SetLat(45);
    const std::string section = Section(book.lib, 1400);

    Book read;
    test::ChangeWatch watch;
    ASSERT_TRUE(Read(read.lib, section, 1400));
    EXPECT_TRUE(watch.Take().empty()) << "reading reports no change";
    EXPECT_TRUE(read.bases.GetAdded().empty()) << "nothing is sent a second time";
    EXPECT_TRUE(read.points.GetAdded().empty());
    EXPECT_EQ(read.bases.GetById().size(), 2u);
    EXPECT_EQ(read.points.GetById().size(), 3u);
    EXPECT_TRUE(read.bases.GetChanged().empty());
    EXPECT_EQ(read.points.GetChanged(), std::set<CCloudItem*>{read.lib.GetPunAt(0, 1)});
    EXPECT_TRUE(Section(read.lib, 1400) == section);
}

TEST(BookRead, ItemsThatWereNotSentAreAddedInTheirOrder) {
    Book book;
    book.Fill({1, 3});
    book.lib.PunGpsSwap(1, 0, 2);  // order of the list is not order of creation
    const std::string section = Section(book.lib, 1400);
    Book read;
    ASSERT_TRUE(Read(read.lib, section, 1400));
    EXPECT_EQ(read.points.GetAdded(), (test::Items{read.lib.GetPunAt(0, 0), read.lib.GetPunAt(1, 2),
                                                   read.lib.GetPunAt(1, 1), read.lib.GetPunAt(1, 0)}));
    EXPECT_TRUE(Section(read.lib, 1400) == section);
}

TEST(BookRead, ItemsFromTheCloudAreNotSentBack) {
    Book book;
    CGrpGps* group = book.lib.AddGrp(true);
    group->SetCloudId(70);
    book.lib.AddPun(0, true)->SetCloudId(71);
    book.lib.AddPun(0, true);  // not yet given its id
    const std::string section = Section(book.lib, 1400);
    ASSERT_TRUE(book.points.GetAdded().empty());
    Book read;
    ASSERT_TRUE(Read(read.lib, section, 1400));
    EXPECT_TRUE(read.bases.GetAdded().empty());
    EXPECT_EQ(Find(read.bases, 70, read.lib.GetGrpAt(0)), test::Known::item);
    EXPECT_EQ(Find(read.points, 71, read.lib.GetPunAt(0, 0)), test::Known::item);
    EXPECT_EQ(read.points.GetAdded(), test::Items{read.lib.GetPunAt(0, 1)})
        << "without an id no server knows it";
    EXPECT_EQ(read.lib.GetPunAt(0, 0)->GetTicket(), 0) << "a ticket is drawn by those that are sent";
}

TEST(BookRead, SameBookTwiceGivesNewItemsTheSecondTime) {
    Book book;
    book.Fill({1});
    test::Register(book.bases, *book.lib.GetGrpAt(0), 7);
    const std::string section = Section(book.lib, 1400);
    Book read;
    ASSERT_TRUE(Read(read.lib, section, 1400));
    ASSERT_TRUE(Read(read.lib, section, 1400));
    EXPECT_EQ(Find(read.bases, 7, read.lib.GetGrpAt(0)), test::Known::item);
    EXPECT_EQ(read.lib.GetGrpAt(1)->GetCloudId(), 0);
    EXPECT_EQ(read.bases.GetAdded(), test::Items{read.lib.GetGrpAt(1)});
    ASSERT_EQ(read.points.GetAdded().size(), 2u);
    EXPECT_NE(read.points.GetAdded()[0]->GetTicket(), read.points.GetAdded()[1]->GetTicket());
}

// --- drawings ----------------------------------------------------------------------------------------------

TEST(BookRead, DrawingsAreGivenBackAndTakenInThisOrder) {
    LooseBook book(kSavedBook);
    Fill(book.lib, {1});
    book.lib.GetGrpAt(0)->SetTargetDrawing(kSavedGroup);
    const std::string section = Section(book.lib, 1400);
    {
        LooseBook read(3);
        Load load;
        load.drawings = Drawings();
        DrawingWatch watch;
        ASSERT_TRUE(Read(read.lib, section, 1400, load));
        EXPECT_EQ(watch.Take(), (Calls{{-1, 3},              // the book gives its own back
                                       {+1, kLiveBook},      // and takes that of the record
                                       {+1, kLiveBook},      // a new group takes the book's
                                       {-1, kLiveBook},      // which it gives back
                                       {+1, kLiveGroup}}));  // for that of its record
        EXPECT_EQ(read.lib.GetTargetDrawing(), kLiveBook);
        EXPECT_EQ(read.lib.GetGrpAt(0)->GetTargetDrawing(), kLiveGroup);
    }
    for (const long long drawing : {3LL, kLiveBook, kLiveGroup})
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(drawing), 0) << drawing;
}

TEST(BookRead, DiscardedGroupGivesBackWhatItTook) {
    LooseBook book(kSavedBook);
    Fill(book.lib, {1});
    book.lib.GetGrpAt(0)->SetTargetDrawing(kSavedGroup);
    const std::string section = Section(book.lib, 1400);
    LooseBook read(3);
    Load load;
    load.drawings = Drawings();
    load.entities = false;
    DrawingWatch watch;
    ASSERT_TRUE(Read(read.lib, section, 1400, load));
    EXPECT_EQ(
        watch.Take(),
        (Calls{
            {-1, 3}, {+1, kLiveBook}, {+1, kLiveBook}, {-1, kLiveBook}, {+1, kLiveGroup}, {-1, kLiveGroup}}));
    EXPECT_EQ(read.lib.GetTargetDrawing(), kLiveBook) << "the book's own is read all the same";
}

TEST(BookRead, OldBooksGetTheDefaultDrawing) {
    LooseBook book(kSavedBook);
    Fill(book.lib, {0});
    const std::string section = Section(book.lib, 1003);
    LooseBook read(3);
    Load load;
    load.drawings = Drawings();
    ASSERT_TRUE(Read(read.lib, section, 1003, load));
    EXPECT_EQ(read.lib.GetTargetDrawing(), kDefault);
    EXPECT_EQ(read.lib.GetGrpAt(0)->GetTargetDrawing(), kDefault);
}

TEST(BookRead, UsageOfTheDrawingIsRightWhenTheStreamEndsBeforeIt) {
    for (const short version : {short{1003}, short{1400}}) {
        LooseBook read(3);
        ifpstream in("abc", 3, version);
        in.SetPastEndLimit(0);
        CDrawingsMapper drawings = Drawings();
        EXPECT_THROW(read.lib.LeggeDaFile(in, true, true, version, "book", drawings), StreamExhausted);
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(read.lib.GetTargetDrawing()), 1);
        EXPECT_EQ(read.lib.GetTargetDrawing(), version < 1004 ? kDefault : 3);
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(3), 0);
}

// --- the map library -----------------------------------------------------------------------------------

TEST(BookRead, MapLibraryComesWithOldBooks) {
    for (const short version : {short{743}, short{1003}, short{1004}}) {
        LooseBook book, read;
        book.map.AddDat(2, 3)->SetNome("Roma 40");
        ASSERT_TRUE(Read(read.lib, Section(book.lib, version), version));
        EXPECT_EQ(read.map.GetDatArSize(2, 3), version < 1004 ? 1 : 0) << version;
    }
}

TEST(BookRead, WithoutMapLibraryItsRecordIsPassedOver) {
    LooseBook book;
    Fill(book.lib, {2});
    book.map.AddDat(2, 3)->SetNome("Roma 40");
    CLibGps read(nullptr, nullptr, nullptr, nullptr, 0);
    ASSERT_TRUE(Read(read, Section(book.lib, 1003), 1003));
    EXPECT_EQ(Shape(read), "G0(P0 P1)");
}

}  // namespace
