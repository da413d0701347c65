// No memory in the middle of a sync: the step can be taken again, and is then whole; so is what the journal
// brings back.
#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "host/project/HeldBack.h"
#include "tests/Heap.h"
#include "tests/host/project/SharedBook.h"

namespace {

using test::AcceptAll;
using test::CloudKind;
using test::CloudReply;
using test::CommitAnswer;
using test::DeletionOf;
using test::FailingHeap;
using test::GroupReply;
using test::kCommit2;
using test::OutlineOf;
using test::PageOf;
using test::PointReply;
using test::Project;
using test::SharedDisk;
using Mode = Project::Mode;
using Step = std::function<void(Project&)>;

/// Takes a step of a book that is as `prepare` makes it, with one allocation after the other refused, and
/// then once more with enough memory.
void TryEveryAllocation(const Step& prepare, const Step& step) {
    std::string expected;
    {
        SharedDisk disk;
        const auto project = disk.Open(Mode::write);
        test::Settle(*project);
        prepare(*project);
        step(*project);
        expected = OutlineOf(*project);
    }
    for (long n = 0;; ++n) {
        SharedDisk disk;
        const auto project = disk.Open(Mode::write);
        test::Settle(*project);
        prepare(*project);
        bool refused = false, failed = false;
        {
            const FailingHeap heap(n, 1);
            try {
                step(*project);
            } catch (const std::bad_alloc&) {
                refused = true;
            } catch (const gpsproject::ProjectError&) {
                refused = true;  // an edit that could not be noted
            }
            failed = FailingHeap::HasFailed();
        }
        if (refused) step(*project);
        ASSERT_EQ(OutlineOf(*project), expected) << "allocation " << n;
        project->GetEdits().Commit();
        const auto opened = disk.Open(Mode::read);
        ASSERT_FALSE(opened->GetReport().IsDamaged()) << n << ": " << opened->GetReport().Text();
        ASSERT_EQ(OutlineOf(*opened), expected) << "allocation " << n << ", after a crash";
        if (!failed) {
            EXPECT_GT(n, 10) << "allocations of the step";
            break;
        }
    }
}

void Edit(Project& project) {
    test::RenamePoint(project, 0, 0, "a name that is too long to stand in the text itself");
    test::RenamePoint(project, 1, 0, "held;back");
    test::DeletePoint(project, 0, 1);
    test::AddGroup(project, "C");
    test::AddPoint(project, 2, "C1");
    test::AddPoint(project, 0, "A3");
}

TEST(CloudOutOfMemory, CommitIsMadeWholeOrNotAtAll) {
    TryEveryAllocation(Edit, [](Project& project) { ASSERT_TRUE(project.GetCloud().BeginCommit(kCommit2)); });
}

TEST(CloudOutOfMemory, AnswerCanBeTakenAgain) {
    const CommitAnswer answer{
        kCommit2,
        2,
        {20, 0, 22},
        {{3, "refused, for a reason that is longer than a short text"}},
        {{CloudKind::point, 3, "a name of some length", 1, "mine, at some length", "theirs", 2, "Bruno", 1},
         {CloudKind::point, 4, "", 0, "", "a list of fields that is long enough", 2, "Bruno", 1}}};
    TryEveryAllocation(
        [](Project& project) {
            Edit(project);
            ASSERT_TRUE(project.GetCloud().BeginCommit(kCommit2));
        },
        [&](Project& project) { ASSERT_TRUE(project.GetCloud().TakeAnswer(answer, 1)); });
}

/// Without a projection: the library behind it does not survive a refused allocation.
CloudReply PlainGroup(std::int64_t id) {
    CloudReply reply = GroupReply(id, "C");
    reply.fields[64] = "0";
    return reply;
}

TEST(CloudOutOfMemory, PageCanBeTakenAgain) {
    const auto page = PageOf(5, {PlainGroup(11), PointReply(12, 11, "a point with a name of some length"),
                                 PointReply(4, 1, "another name of some length, for a known one"),
                                 DeletionOf(CloudKind::group, 2)});
    TryEveryAllocation([](Project&) {}, [&](Project& project) { project.GetCloud().TakePage(page); });
}

TEST(CloudOutOfMemory, WhatIsHeldBackWaitsAgain) {
    SharedDisk disk;
    const auto project = disk.Open(Mode::write);
    test::AddGroup(*project, "held;back");
    test::AddPoint(*project, 0, "held;back");
    auto& tables = project->GetCloud().GetTables();
    const auto held = gpsproject::FindHeld(project->GetBook(), tables);
    ASSERT_EQ(held.size(), 2U);
    const auto groups = tables.base.GetAdded(), points = tables.points.GetAdded();
    long n = 0;
    for (bool failed = true; failed; ++n) {
        {
            const FailingHeap heap(n, 1);
            try {
                const gpsproject::Holding holding(tables, held);
            } catch (const std::bad_alloc&) {
            }
            failed = FailingHeap::HasFailed();
        }
        ASSERT_EQ(tables.base.GetAdded(), groups) << n;
        ASSERT_EQ(tables.points.GetAdded(), points) << n;
    }
    EXPECT_GT(n, 2) << "allocations of it";
}

}  // namespace
