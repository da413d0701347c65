// References to drawings: who takes and gives back which, and in which order.
#include <gtest/gtest.h>

#include <memory>

#include "gps/model/CLibGps.h"
#include "tests/gps/model/ChangeWatch.h"

namespace {

using test::ChangeWatch;
using test::DrawingWatch;
using Calls = DrawingWatch::Calls;

TEST(DrawingReference, GroupHoldsOneForItsLife) {
    DrawingWatch watch;
    {
        const CGrpGps group(nullptr, false, nullptr, 805);
        EXPECT_EQ(watch.Take(), (Calls{{+1, 805}}));
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(805), 1);
    }
    EXPECT_EQ(watch.Take(), (Calls{{-1, 805}}));
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(805), 0);
}

TEST(DrawingReference, GroupWithoutDrawingCallsAllTheSame) {
    DrawingWatch watch;
    { const CGrpGps group(nullptr, false, nullptr, 0); }
    EXPECT_EQ(watch.Take(), (Calls{{+1, 0}, {-1, 0}}));
}

TEST(DrawingReference, BookHoldsOneForItsLife) {
    DrawingWatch watch;
    { const CLibGps book(nullptr, nullptr, nullptr, nullptr, 805); }
    EXPECT_EQ(watch.Take(), (Calls{{+1, 805}, {-1, 805}}));
    { const CLibGps book(nullptr, nullptr, nullptr, nullptr, 0); }
    EXPECT_EQ(watch.Take(), (Calls{{+1, 0}, {-1, 0}}));
}

// Group and book move their reference by the same rules.
template <class T>
std::unique_ptr<T> Make(long long drawing);
template <>
std::unique_ptr<CGrpGps> Make<CGrpGps>(long long drawing) {
    return std::make_unique<CGrpGps>(nullptr, false, nullptr, drawing);
}
template <>
std::unique_ptr<CLibGps> Make<CLibGps>(long long drawing) {
    return std::make_unique<CLibGps>(nullptr, nullptr, nullptr, nullptr, drawing);
}

template <class T>
class MovedReference : public testing::Test {};
using Holders = testing::Types<CGrpGps, CLibGps>;
TYPED_TEST_SUITE(MovedReference, Holders);

TYPED_TEST(MovedReference, IsGivenBackAndTakenExceptForZero) {
    struct Row {
        const char* name;
        long long from, to;
        Calls move, end;
    };
    const Row rows[] = {
        {"to another", 5, 6, {{-1, 5}, {+1, 6}}, {{-1, 6}}},
        {"to the same", 5, 5, {{-1, 5}, {+1, 5}}, {{-1, 5}}},
        {"to none", 5, 0, {{-1, 5}}, {{-1, 0}}},
        {"from none", 0, 6, {{+1, 6}}, {{-1, 6}}},
        {"none to none", 0, 0, {}, {{-1, 0}}},
        {"negative ids are drawings", -5, -6, {{-1, -5}, {+1, -6}}, {{-1, -6}}},
        {"64 bits",
         0x1'0000'0000,
         0x2'0000'0000,
         {{-1, 0x1'0000'0000}, {+1, 0x2'0000'0000}},
         {{-1, 0x2'0000'0000}}},
    };
    for (const Row& row : rows) {
        auto holder = Make<TypeParam>(row.from);
        DrawingWatch watch;
        holder->SetTargetDrawing(row.to);
        EXPECT_EQ(watch.Take(), row.move) << row.name;
        EXPECT_EQ(holder->GetTargetDrawing(), row.to) << row.name;
        holder.reset();
        EXPECT_EQ(watch.Take(), row.end) << row.name;
    }
}

TYPED_TEST(MovedReference, CountsEndWhereTheyBegan) {
    auto holder = Make<TypeParam>(815);
    holder->SetTargetDrawing(816);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(815), 0);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(816), 1);
    holder->SetTargetDrawing(0);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(816), 0);
    holder.reset();
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(815), 0);
}

TEST(DrawingReference, MovingItIsNoChangeForTheCloud) {
    CGrpGps group(nullptr, false, nullptr, 5);
    ChangeWatch watch;
    group.SetTargetDrawing(6);
    EXPECT_EQ(watch.Take(), ChangeWatch::Calls{});
}

TEST(DrawingReference, GroupsKeepTheirsAndNewOnesGetTheBooksPresentOne) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 5);
    const CGrpGps* before = book.AddGrp(false);
    DrawingWatch watch;
    book.SetTargetDrawing(6);
    EXPECT_EQ(watch.Take(), (Calls{{-1, 5}, {+1, 6}}));
    const CGrpGps* after = book.AddGrp(false);
    const CGrpGps* inserted = book.InsGrpAt(0, false);
    EXPECT_EQ(watch.Take(), (Calls{{+1, 6}, {+1, 6}}));
    EXPECT_EQ(before->GetTargetDrawing(), 5);
    EXPECT_EQ(after->GetTargetDrawing(), 6);
    EXPECT_EQ(inserted->GetTargetDrawing(), 6);
}

TEST(DrawingReference, BookGivesItsOwnBackBeforeTheGroupsFromTheLastToTheFirst) {
    DrawingWatch watch;
    {
        CLibGps book(nullptr, nullptr, nullptr, nullptr, 5);
        for (const long long drawing : {11, 12, 13}) book.AddGrp(false)->SetTargetDrawing(drawing);
        watch.Take();
    }
    EXPECT_EQ(watch.Take(), (Calls{{-1, 5}, {-1, 13}, {-1, 12}, {-1, 11}}));
}

TEST(DrawingReference, DeletedGroupGivesItsOwnBack) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 5);
    book.AddGrp(false)->SetTargetDrawing(11);
    DrawingWatch watch;
    book.DelGrpAt(0);
    EXPECT_EQ(watch.Take(), (Calls{{-1, 11}}));
}

}  // namespace
