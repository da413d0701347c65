// Running out of memory: a clone is null then, and an assignment that fails changes nothing.
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "gps/options/COpzDisGrpGps.h"
#include "gps/options/COpzDisPunGps.h"
#include "gps/options/COpzListDisGps.h"
#include "tests/Heap.h"
#include "tests/Settings.h"

namespace {

using test::FailingHeap;

/// Clones with a heap that fails at the first allocation, then at the second, and so on. Returns the
/// failures.
template <class Source>
long FailUntilCloned(const Source& source) {
    for (long n = 0;; ++n) {
        decltype(source.Clone()) clone = nullptr;
        bool failed = false;
        {
            const FailingHeap heap(n);
            clone = source.Clone();
            failed = FailingHeap::HasFailed();
        }
        EXPECT_EQ(clone == nullptr, failed) << n;
        delete clone;
        if (!failed) return n;
    }
}

const std::string kLong(100, 'x');  // too long to be kept without an allocation

TEST(CloneMemory, EntryIsNullWithoutMemory) {
    COpzDisEgn egn(kLong.c_str());
    COpzDisPunGps pun(kLong.c_str());
    COpzDisGrpGps grp(kLong.c_str());
    for (COpzDisEgn* entry : {&egn, static_cast<COpzDisEgn*>(&pun), static_cast<COpzDisEgn*>(&grp)}) {
        entry->SetNomeOpz(kLong);
        EXPECT_EQ(FailUntilCloned(*entry), 3) << "the object, its section, its name";
    }
}

TEST(CloneMemory, ListIsNullWithoutMemory) {
    const test::Settings settings;
    COpzListDisGps list(nullptr);
    list.SetNomeOpzList(kLong);
    list.AddOpzCom(new COpzDisEgn("common"));
    // Itself, its name, two lists of entries, three entries.
    EXPECT_EQ(FailUntilCloned(static_cast<const COpzListDisEgn&>(list)), 7);
}

TEST(CloneMemory, EntryOfAFailedAdditionIsGone) {
    COpzListDisEgn list;
    auto* const entry = new COpzDisEgn(kLong.c_str());  // the leak checker looks for it
    const FailingHeap heap(0);
    EXPECT_THROW(list.AddOpzNor(entry), std::bad_alloc);
    EXPECT_EQ(list.GetNumOpzNor(), 0);
}

TEST(CloneMemory, FailedAssignmentChangesNothing) {
    const test::Settings settings;
    COpzListDisGps source(nullptr);
    source.SetNomeOpzList(kLong);
    source.SetTipoOpzList(9);
    source.GetOpzPun().SetColSimb(77);
    bool failed = true;
    for (long n = 0; failed; ++n) {
        COpzListDisGps target(nullptr);
        const COpzDisEgn* const pun = &target.GetOpzPun();
        {
            const FailingHeap heap(n);
            try {
                target = source;
            } catch (const std::bad_alloc&) {
            }
            failed = FailingHeap::HasFailed();
        }
        EXPECT_EQ(target.GetOpzPun().GetColSimb(), failed ? 5 : 77) << n;
        EXPECT_EQ(target.GetTipoOpzList(), failed ? 2 : 9) << n;
        EXPECT_EQ(target.GetNomeOpzList() == kLong, !failed) << n;
        EXPECT_EQ(&target.GetOpzPun() == pun, failed) << n;
    }
}

TEST(CloneMemory, ConstructionThatFailsLeavesNothing) {
    const test::Settings settings;
    bool failed = true;
    long failures = 0;
    for (long n = 0; failed; ++n) {
        const FailingHeap heap(n);
        try {
            const COpzListDisGps list(nullptr);  // the leak checker looks at what is left
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        failed = FailingHeap::HasFailed();
        ASSERT_LT(n, 10000);
    }
    EXPECT_GT(failures, 3);
}

}  // namespace
