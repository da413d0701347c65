#include "platform/base/CLibGen.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "tests/host/base/VirtualSlot.h"

namespace {

TEST(LibGen, NewLibraryIsUnmodifiedAndUnnamed) {
    CLibGen lib;
    EXPECT_FALSE(lib.IsModified());
    EXPECT_FALSE(lib.IsAutoSaved());
    EXPECT_EQ(lib.GetNomeFile(), "");
}

TEST(LibGen, ModifiedFlagIsKept) {
    CLibGen lib;
    lib.SetModifiedFlag(true);
    EXPECT_TRUE(lib.IsModified());
    lib.SetModifiedFlag(false);
    EXPECT_FALSE(lib.IsModified());
}

TEST(LibGen, ModificationEndsTheAutosavedState) {
    CLibGen lib;
    lib.SetModifiedFlag(true);
    lib.SetAutoSaved();
    EXPECT_TRUE(lib.IsAutoSaved());
    EXPECT_TRUE(lib.IsModified()) << "an autosave is not a save";
    lib.SetModifiedFlag(true);
    EXPECT_FALSE(lib.IsAutoSaved());
}

TEST(LibGen, SavingKeepsTheAutosavedState) {
    CLibGen lib;
    lib.SetAutoSaved();
    lib.SetModifiedFlag(false);
    EXPECT_TRUE(lib.IsAutoSaved());
}

TEST(LibGen, FileNameIsKept) {
    CLibGen lib;
    lib.SetNomeFile("survey.prj");
    EXPECT_EQ(lib.GetNomeFile(), "survey.prj");
}

TEST(LibGen, CopyHasFlagsAndNameButNoListener) {
    CLibGen lib;
    int told = 0;
    lib.AddListener([&](int, int, VEXNotifyObject::CNotifyData*) { ++told; });
    lib.SetModifiedFlag(true);
    lib.SetAutoSaved();
    lib.SetNomeFile("a.prj");

    CLibGen copy(lib);
    EXPECT_TRUE(copy.IsModified());
    EXPECT_TRUE(copy.IsAutoSaved());
    EXPECT_EQ(copy.GetNomeFile(), "a.prj");
    copy.Notify(1, 1, nullptr);
    EXPECT_EQ(told, 0);

    CLibGen assigned;
    assigned = lib;
    EXPECT_TRUE(assigned.IsModified());
    EXPECT_EQ(assigned.GetNomeFile(), "a.prj");
    assigned.Notify(1, 1, nullptr);
    EXPECT_EQ(told, 0);
}

// Its one new operation tells how many entries the base's table has.
struct AfterLibGen : CLibGen {
    virtual void Next() {}
};

TEST(LibGen, VirtualOperationsStandInTheirOrder) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CLibGen>);
    EXPECT_EQ(VirtualSlot(&CLibGen::SetModifiedFlag), 2);
    EXPECT_EQ(VirtualSlot(&CLibGen::IsModified), 3);
    EXPECT_EQ(VirtualSlot(&CLibGen::SetAutoSaved), 4);
    EXPECT_EQ(VirtualSlot(&CLibGen::IsAutoSaved), 5);
    EXPECT_EQ(VirtualSlot(&CLibGen::SalvaInFile), 6);
    EXPECT_EQ(VirtualSlot(&CLibGen::LeggeDaFile), 7);
    EXPECT_EQ(VirtualSlot(&AfterLibGen::Next), 8);
    EXPECT_EQ(VirtualSlot(&CLibGen::GetNomeFile), -1);
}

}  // namespace
