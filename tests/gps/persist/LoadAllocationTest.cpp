// Running out of memory while a book is read: whatever allocation fails, the stream stays in step or the
// failure reaches the caller, and nothing is lost or taken twice.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "gps/options/COpzPostProc.h"
#include "platform/cad/COrkaEng.h"
#include "tests/Heap.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"

namespace {

using test::Book;
using test::FailingHeap;
using test::FailingSize;
using test::Section;

constexpr long long kBookDrawing = 31, kGroupDrawing = 32, kLive = 33, kDefault = 34;

/// Groups of three points each, with texts that need memory of their own.
std::string SavedBook(short version, int groups) {
    test::LooseBook book(kBookDrawing);
    book.map.AddDat(1, 1)->SetNome("a datum with a name that is long enough");
    for (int g = 0; g < groups; ++g) {
        CGrpGps* group = book.lib.AddGrp(false);
        group->SetNomeGrp("a group with a name that is long enough");
        group->SetTargetDrawing(kGroupDrawing);
        group->SetCloudId(100 + g);
        group->GetConvCoord()->SetImp(CConvCoord::impDatSel1, 1);
        group->GetConvCoord()->SetImp(CConvCoord::impDatSel2, 1);
        group->GetConvCoord()->SetImpFlag(true);
        for (int p = 0; p < 3; ++p) {
            CPunGps* point = book.lib.AddPun(g, false);
            point->SetNome("a point with a name that is long enough");
            point->SetNote("a note");
            if (p == 1) point->SetCloudId(1000 + 10 * g);
            if (p == 1) point->CloudItemChanged(4);
        }
    }
    book.lib.GetOpzPostProc()->AddDataPtBaseLineDett("a rover file with a name that is long enough");
    return Section(book.lib, version);
}

CDrawingsMapper Drawings() {
    CDrawingsMapper drawings(kDefault);
    drawings.SetDrawing(kGroupDrawing, kLive);
    return drawings;
}

std::vector<int> Sizes(const CLibGps& book) {
    std::vector<int> sizes;
    for (int g = 0; g < book.GetGrpArSize(); ++g) sizes.push_back(book.GetPunArSize(g));
    return sizes;
}

enum class End { inStep, passedOn, wrong };

/// Reads with the heap that `Failure` makes; what is tested allocates, so everything else stands outside.
template <class Failure>
End ReadWith(Book& book, const std::string& section, short version, Failure failure) {
    ifpstream in(section.data(), section.size(), version);
    CDrawingsMapper drawings = Drawings();
    try {
        const auto heap = failure();
        book.lib.LeggeDaFile(in, true, true, version, "book", drawings);
    } catch (const std::bad_alloc&) {
        return End::passedOn;
    }
    return in.IsOk() && in.GetRemaining() == 0 ? End::inStep : End::wrong;
}

/// What holds of every book: no item is in two collections of its table, each drawing is used as often as it
/// is referred to, and the book can be written.
void ExpectSound(Book& book) {
    std::size_t points = 0;
    for (const int size : Sizes(book.lib)) points += static_cast<std::size_t>(size);
    // An item that ran out of memory on the way to its place may be in none.
    EXPECT_LE(book.bases.GetAdded().size() + book.bases.GetById().size(), Sizes(book.lib).size());
    EXPECT_LE(book.points.GetAdded().size() + book.points.GetById().size(), points);
    for (const long long drawing : {kBookDrawing, kGroupDrawing, kLive, kDefault}) {
        int references = book.lib.GetTargetDrawing() == drawing ? 1 : 0;
        for (int g = 0; g < book.lib.GetGrpArSize(); ++g)
            references += book.lib.GetGrpAt(g)->GetTargetDrawing() == drawing ? 1 : 0;
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(drawing), references) << "drawing " << drawing;
    }
    EXPECT_FALSE(Section(book.lib, 1400).empty());
}

void ExpectNoUsages() {
    for (const long long drawing : {kBookDrawing, kGroupDrawing, kLive, kDefault})
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(drawing), 0) << drawing;
}

TEST(LoadAllocation, EveryFailureLeavesAStreamInStepOrReachesTheCaller) {
    for (const short version : {short{743}, short{1003}, short{1400}}) {
        const std::string section = SavedBook(version, 3);
        for (const long times : {1L, 2L, LONG_MAX}) {
            long inStep = 0, passedOn = 0;
            bool failed = true;
            for (long n = 0; failed; ++n) {
                {
                    Book book(kBookDrawing);
                    const End end = ReadWith(book, section, version, [&] { return FailingHeap(n, times); });
                    failed = FailingHeap::HasFailed();
                    ASSERT_NE(end, End::wrong) << version << ", allocation " << n;
                    (end == End::inStep ? inStep : passedOn) += 1;
                    if (!failed) {
                        EXPECT_EQ(Sizes(book.lib), (std::vector<int>{3, 3, 3}));
                    }
                    ExpectSound(book);
                }
                ExpectNoUsages();
                if (HasFailure()) FAIL() << version << ", allocation " << n << ", " << times << " failures";
            }
            EXPECT_GT(passedOn, 30) << version;
            // Groups and points that could not be made, while there was memory for what follows them.
            if (times == 1) {
                EXPECT_GT(inStep, 12) << version;
            }
        }
    }
}

TEST(LoadAllocation, PointThatCannotBeMadeEndsTheAddingOfPoints) {
    const std::string section = SavedBook(1400, 3);
    struct Row {
        long n;
        std::vector<int> sizes;
    };
    for (const Row& row : {Row{0, {0, 0, 0}}, Row{1, {1, 0, 0}}, Row{3, {3, 0, 0}}, Row{4, {3, 1, 0}},
                           Row{8, {3, 3, 2}}, Row{9, {3, 3, 3}}}) {
        Book book;
        ASSERT_EQ(ReadWith(book, section, 1400, [&] { return FailingSize(sizeof(CPunGps), row.n); }),
                  End::inStep);
        EXPECT_EQ(FailingHeap::HasFailed(), row.n < 9);
        EXPECT_EQ(Sizes(book.lib), row.sizes) << row.n;
        for (int g = 0; g < 3; ++g) EXPECT_EQ(book.lib.GetGrpAt(g)->GetCloudId(), 100 + g) << "read in step";
        EXPECT_EQ(book.lib.GetOpzPostProc()->GetNumPtBaseLineDett(), 1) << "what follows, too";
    }
}

TEST(LoadAllocation, GroupThatCannotBeMadeEndsTheAddingOfGroupsAndPoints) {
    const std::string section = SavedBook(1400, 3);
    struct Row {
        long n;
        std::vector<int> sizes;
    };
    for (const Row& row : {Row{0, {}}, Row{1, {3}}, Row{2, {3, 3}}, Row{3, {3, 3, 3}}}) {
        Book book;
        ASSERT_EQ(ReadWith(book, section, 1400, [&] { return FailingSize(sizeof(CGrpGps), row.n); }),
                  End::inStep);
        EXPECT_EQ(FailingHeap::HasFailed(), row.n < 3);
        EXPECT_EQ(Sizes(book.lib), row.sizes) << row.n;
        EXPECT_EQ(book.lib.GetOpzPostProc()->GetNumPtBaseLineDett(), 1) << "what follows is read";
    }
}

TEST(LoadAllocation, RoomThatCannotBeReservedIsNoFailure) {
    const std::string section = SavedBook(1400, 200);
    Book book;
    // A size that no list has which grows by doubling: it is the room for all groups, asked for before there
    // is any.
    ASSERT_EQ(ReadWith(book, section, 1400, [] { return FailingSize(200 * sizeof(CGrpGps*), 0); }),
              End::inStep);
    EXPECT_TRUE(FailingHeap::HasFailed());
    EXPECT_EQ(Sizes(book.lib), std::vector<int>(200, 3));
}

TEST(LoadAllocation, RoomForPointsIsAskedForInTheNewGroup) {
    test::LooseBook saved;
    saved.lib.AddGrp(false);
    for (int p = 0; p < 200; ++p) saved.lib.AddPun(0, false);
    Book book;
    book.Fill({5});  // it is not this group that the points come to
    ASSERT_EQ(
        ReadWith(book, Section(saved.lib, 1400), 1400, [] { return FailingSize(200 * sizeof(CPunGps*), 0); }),
        End::inStep);
    EXPECT_TRUE(FailingHeap::HasFailed()) << "asked for, and gone on without";
    EXPECT_EQ(Sizes(book.lib), (std::vector<int>{5, 200}));
}

/// Reads on a heap that refuses large pieces; the limit of the stream ends it.
void ExpectNoLargePiece(const std::string& section, short version) {
    Book book;
    const test::SmallHeap heap(64 * 1024);
    ifpstream in(section.data(), section.size(), version);
    in.SetPastEndLimit(4096);
    CDrawingsMapper drawings = Drawings();
    EXPECT_THROW(book.lib.LeggeDaFile(in, true, true, version, "book", drawings), StreamExhausted);
    EXPECT_FALSE(FailingHeap::HasFailed());
}

TEST(LoadAllocation, CountNeverReservesMoreThanTheBytesCouldHold) {
    // At a version without post-processing options the counts are the last bytes of a record.
    const std::string most = "\xFF\xFF\xFF\x7F";
    for (const bool points : {false, true}) {
        test::LooseBook book;
        if (points) book.lib.AddGrp(false);
        std::string section = Section(book.lib, 1001);
        section.replace(section.size() - 4, 4, most);
        ExpectNoLargePiece(section, 1001);
    }
    // Where a drawing stands first; then options, an empty display list and the count of groups.
    const std::string shortest = std::string(8 + 14 + 8, '\0') + most;
    for (const short version : {short{1004}, short{1400}}) ExpectNoLargePiece(shortest, version);
}

}  // namespace
