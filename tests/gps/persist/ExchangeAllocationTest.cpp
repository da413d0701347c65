// Running out of memory while an exchange file is loaded or a journal entry replayed: what could not be made
// is left out, everything else stands in its order.
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "tests/Heap.h"
#include "tests/TempFolder.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"

namespace {

using test::Book;
using test::FailingHeap;
using test::FailingSize;
using test::LooseBook;
using test::Shape;

constexpr const char* kLong = " with a name that is long enough";

std::string Names(CLibGps& book) {
    std::string names;
    for (int g = 0; g < book.GetGrpArSize(); ++g)
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            const std::string& name = book.GetPunAt(g, p)->GetNome();
            names += name.substr(0, name.find(' ')) + " ";
        }
    return names;
}

void ExpectPositionsRight(CLibGps& book) {
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            int foundG = -1, foundP = -1;
            ASSERT_TRUE(book.GetIndiciDiPun(book.GetPunAt(g, p), foundG, foundP));
            ASSERT_EQ(foundG, g);
            ASSERT_EQ(foundP, p);
        }
    }
}

class ExchangeAllocation : public ::testing::Test {
protected:
    ExchangeAllocation() {
        LooseBook from;
        test::Fill(from.lib, {4, 2});
        for (int p = 0; p < 4; ++p) from.lib.GetPunAt(0, p)->SetNome("N" + std::to_string(p) + kLong);
        from.lib.SalvaPuntiInFile(0, 0, 4, points);
        from.lib.SalvaGruppoInFile(0, 2, groups, nullptr);
    }

    const test::TempFolder folder;
    const std::string points = folder / "points", groups = folder / "groups";
};

// --- points ------------------------------------------------------------------------------------------------

TEST_F(ExchangeAllocation, PointThatCannotBeMadeSkipsItsPositionAndNotItsRecord) {
    struct Row {
        long n;
        const char* names;
    };
    for (const Row& row :
         {Row{0, "P0 P1 N0 N1 N2 P2 "}, Row{1, "P0 N0 P1 N1 N2 P2 "}, Row{2, "P0 N0 N1 P1 N2 P2 "},
          Row{3, "P0 N0 N1 N2 P1 P2 "}, Row{4, "P0 N0 N1 N2 N3 P1 P2 "}}) {
        for (const bool asked : {false, true}) {
            LooseBook book;
            test::Fill(book.lib, {3});
            book.lib.SetModifiedFlag(false);
            int g = 0, p = 0;
            if (asked) book.lib.GetIndiciDiPun(book.lib.GetPunAt(0, 2), g, p);
            int result = 0;
            {
                const FailingSize heap(sizeof(CPunGps), row.n);
                result = static_cast<int>(book.lib.CaricaPuntiDaFile(0, 0, 0, points));
            }
            EXPECT_EQ(result, row.n < 4 ? 3 : 0);
            EXPECT_EQ(Names(book.lib), row.names) << row.n;
            EXPECT_TRUE(book.lib.IsModified());
            ExpectPositionsRight(book.lib);
        }
    }
}

TEST_F(ExchangeAllocation, LastCodeWins) {
    for (const long n : {0L, 1L, 2L, 3L, 4L}) {
        LooseBook book;
        test::Fill(book.lib, {3});
        int result = 0;
        {
            const FailingSize heap(sizeof(CPunGps), n);
            result = static_cast<int>(book.lib.CaricaPuntiDaFile(1, 0, 0, points));
        }
        EXPECT_EQ(result, n == 3 ? 3 : 4) << "every point that is read has no plane coordinates: " << n;
    }
}

TEST_F(ExchangeAllocation, WhateverFailsThePointsStandInTheirOrder) {
    for (const long times : {1L, 2L, LONG_MAX}) {
        long passedOn = 0, notInserted = 0;
        bool failed = true;
        for (long n = 0; failed; ++n) {
            Book book;
            book.Fill({3});
            for (int p = 0; p < 3; ++p) book.lib.GetPunAt(0, p)->SetNome("P" + std::to_string(p));
            int g = 0, p = 0, result = -1;
            book.lib.GetIndiciDiPun(book.lib.GetPunAt(0, 2), g, p);
            try {
                const FailingHeap heap(n, times);
                result = static_cast<int>(book.lib.CaricaPuntiDaFile(0, 0, 0, points));
            } catch (const std::bad_alloc&) {
                ++passedOn;
            }
            failed = FailingHeap::HasFailed();
            if (result == 3) ++notInserted;
            const std::string names = Names(book.lib);
            EXPECT_EQ(names.find("P0 "), 0u) << names;
            EXPECT_LT(names.find("P1 "), names.find("P2 ")) << names;
            EXPECT_NE(names.find("P2 "), std::string::npos);
            std::size_t last = 0;
            for (const char* loaded : {"N0 ", "N1 ", "N2 ", "N3 "}) {
                const std::size_t at = names.find(loaded);
                if (at == std::string::npos) continue;
                EXPECT_GT(at, last) << names;
                last = at;
            }
            if (result == 0) {
                EXPECT_EQ(names, "P0 N0 N1 N2 N3 P1 P2 ");
            }
            ExpectPositionsRight(book.lib);
            if (HasFailure()) FAIL() << "allocation " << n << ", " << times << " failures";
        }
        EXPECT_GT(passedOn, 3);
        if (times == 1) {
            EXPECT_GE(notInserted, 4) << "one for each point";
        }
    }
}

// --- groups ------------------------------------------------------------------------------------------------

TEST_F(ExchangeAllocation, PointOfAGroupThatCannotBeMadeIsThree) {
    for (const long n : {0L, 3L, 5L}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        CDrawingsMapper drawings;
        int result = 0;
        {
            const FailingSize heap(sizeof(CPunGps), n);
            result = static_cast<int>(book.lib.CaricaGruppoDaFile(0, -1, groups, drawings));
        }
        EXPECT_EQ(result, 3) << n;
        EXPECT_TRUE(book.lib.IsModified());
        // The record that was not read is the next one's: from there on the file is read out of step.
        EXPECT_EQ(book.lib.GetPunArSize(0), n < 4 ? 3 : 4);
        EXPECT_EQ(book.lib.GetGrpArSize(), 3);
        EXPECT_EQ(book.lib.GetPunAt(2, 0)->GetNome(), "P0") << "what was there is the last group";
        ExpectPositionsRight(book.lib);
    }
}

TEST_F(ExchangeAllocation, GroupThatCannotBeMadeIsThree) {
    LooseBook book;
    test::Fill(book.lib, {1, 1});
    CDrawingsMapper drawings;
    int result = 0;
    {
        const FailingSize heap(sizeof(CGrpGps), 0);
        result = static_cast<int>(book.lib.CaricaGruppoDaFile(0, -1, groups, drawings));
    }
    EXPECT_EQ(result, 3);
    ASSERT_EQ(book.lib.GetGrpArSize(), 3);
    EXPECT_EQ(book.lib.GetGrpAt(1)->GetNomeGrp(), "G0") << "the first record, at the second position";
    EXPECT_EQ(book.lib.GetPunArSize(1), 4);
}

// --- replay ------------------------------------------------------------------------------------------------

/// A changed group or point, and the entry of a deletion behind it.
std::string Entry(bool group, int g, int p) {
    LooseBook book;
    test::Fill(book.lib, {1});
    book.lib.GetGrpAt(0)->SetNomeGrp("R" + std::string(kLong));
    book.lib.GetPunAt(0, 0)->SetNome("R" + std::string(kLong));
    ofpstream out(1400);
    out.WriteShort(1400);
    out.WriteInt(g);
    if (!group) out.WriteInt(p);
    if (group)
        book.lib.GetGrpAt(0)->SalvaInFile(out, false, nullptr);
    else
        book.lib.GetPunAt(0, 0)->SalvaInFile(out, false);
    return std::string(out.GetBytes());
}

TEST(ReplayAllocation, WhatCannotBeMadeIsDiscardedInStep) {
    struct Row {
        bool group;
        int g, p;
        std::size_t size;
        long n;
        const char* shape;
    };
    for (const Row& row :
         {Row{true, 2, 0, sizeof(CGrpGps), 0, "G0(P0)"}, Row{true, 2, 0, sizeof(CGrpGps), 1, "G0(P0) ()"},
          Row{false, 2, 1, sizeof(CGrpGps), 1, "G0(P0) ()"},
          Row{false, 2, 1, sizeof(CPunGps), 0, "G0(P0) () ()"},
          Row{false, 2, 1, sizeof(CPunGps), 1, "G0(P0) () ()"},
          Row{false, 0, 2, sizeof(CPunGps), 1, "G0(P0 )"}}) {
        LooseBook book;
        test::Fill(book.lib, {1});
        book.lib.SetModifiedFlag(false);
        const std::string entry = Entry(row.group, row.g, row.p);
        ifpstream in(entry.data(), entry.size(), 0);
        in.SetHeaderFlag(true);
        CDrawingsMapper drawings;
        bool applied = true;
        {
            const FailingSize heap(row.size, row.n);
            applied = row.group ? book.lib.LoadTmpGrpGps(in, true, drawings)
                                : book.lib.LoadTmpPunGps(in, true) != nullptr;
        }
        EXPECT_FALSE(applied);
        EXPECT_TRUE(in.IsOk());
        EXPECT_EQ(in.GetRemaining(), 0);
        EXPECT_FALSE(book.lib.IsModified());
        EXPECT_EQ(Shape(book.lib), row.shape) << row.g << ", " << row.p;
    }
}

TEST(ReplayAllocation, EveryFailureLeavesAStreamInStepOrReachesTheCaller) {
    for (const bool group : {true, false}) {
        const std::string entry = Entry(group, 2, 2);
        long inStep = 0, passedOn = 0;
        bool failed = true;
        for (long n = 0; failed; ++n) {
            Book book;
            book.Fill({1});
            ifpstream in(entry.data(), entry.size(), 0);
            in.SetHeaderFlag(true);
            CDrawingsMapper drawings;
            try {
                const FailingHeap heap(n, 1);
                if (group)
                    book.lib.LoadTmpGrpGps(in, true, drawings);
                else
                    book.lib.LoadTmpPunGps(in, true);
                EXPECT_TRUE(in.IsOk());
                EXPECT_EQ(in.GetRemaining(), 0) << n;
                ++inStep;
            } catch (const std::bad_alloc&) {
                ++passedOn;
            }
            failed = FailingHeap::HasFailed();
            EXPECT_EQ(book.lib.GetPunArSize(0), 1);
            ExpectPositionsRight(book.lib);
            ASSERT_FALSE(HasFailure()) << n;
        }
        EXPECT_GT(inStep, 2);
        EXPECT_GT(passedOn, 0);
    }
}

}  // namespace
