#include "platform/base/CLibGen.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/base/ofpstream.h"
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

// --- journal -----------------------------------------------------------------------------------------------

/// One stream for all entries, and who asked for them.
struct OneStreamJournal : TmpJournal {
    ofpstream* Open(const char* file, int code) override {
        opened.emplace_back(file, code);
        return gives ? &stream : nullptr;
    }
    void Close(ofpstream* entry) override { closed.push_back(entry); }
    void Discard(ofpstream* entry) override { givenUp.push_back(entry); }

    bool gives = true;
    ofpstream stream{1400};
    std::vector<std::pair<std::string, int>> opened;
    std::vector<ofpstream*> closed;
    std::vector<ofpstream*> givenUp;
};

TEST(LibGen, EntryIsTheJournalsOwnStream) {
    OneStreamJournal journal;
    CLibGen lib;
    lib.SetTmpJournal(&journal);
    EXPECT_EQ(lib.GetTmpJournal(), &journal);
    EXPECT_EQ(lib.GetFileOutTmp("a.prj", 3002), &journal.stream);
    EXPECT_EQ(journal.opened, (std::vector<std::pair<std::string, int>>{{"a.prj", 3002}}));
    EXPECT_TRUE(journal.closed.empty());
    lib.CloseFileOutTmp(&journal.stream);
    EXPECT_EQ(journal.closed, std::vector<ofpstream*>{&journal.stream});
}

TEST(LibGen, EntryThatIsDroppedIsNotClosed) {
    OneStreamJournal journal;
    CLibGen lib;
    lib.SetTmpJournal(&journal);
    lib.DropFileOutTmp(lib.GetFileOutTmp("a.prj", 3002));
    lib.DropFileOutTmp(nullptr);
    EXPECT_TRUE(journal.closed.empty());
    EXPECT_EQ(journal.givenUp, std::vector<ofpstream*>{&journal.stream});
}

TEST(LibGen, WithoutJournalThereAreNoEntries) {
    CLibGen lib;
    EXPECT_EQ(lib.GetTmpJournal(), nullptr);
    EXPECT_EQ(lib.GetFileOutTmp("a.prj", 3001), nullptr);
    ofpstream stray(1400);
    lib.CloseFileOutTmp(&stray);
    lib.CloseFileOutTmp(nullptr);
}

TEST(LibGen, WithoutFileNameTheJournalIsNotAsked) {
    OneStreamJournal journal;
    CLibGen lib;
    lib.SetTmpJournal(&journal);
    EXPECT_EQ(lib.GetFileOutTmp("", 3001), nullptr);
    EXPECT_EQ(lib.GetFileOutTmp(nullptr, 3001), nullptr);
    EXPECT_TRUE(journal.opened.empty());
}

TEST(LibGen, EntryThatTheJournalRefusesIsNotClosed) {
    OneStreamJournal journal;
    journal.gives = false;
    CLibGen lib;
    lib.SetTmpJournal(&journal);
    ofpstream* const entry = lib.GetFileOutTmp("a.prj", 3001);
    EXPECT_EQ(entry, nullptr);
    lib.CloseFileOutTmp(entry);
    EXPECT_TRUE(journal.closed.empty());
}

TEST(LibGen, CopyHasNoJournalAndAssignmentKeepsTheTargets) {
    OneStreamJournal journal, other;
    CLibGen lib;
    lib.SetTmpJournal(&journal);
    const CLibGen copy(lib);
    EXPECT_EQ(copy.GetTmpJournal(), nullptr);
    CLibGen target;
    target = lib;
    EXPECT_EQ(target.GetTmpJournal(), nullptr);
    target.SetTmpJournal(&other);
    target = lib;
    EXPECT_EQ(target.GetTmpJournal(), &other);
    EXPECT_EQ(lib.GetTmpJournal(), &journal);
}

TEST(LibGen, NumbersOfResultsAreFixed) {
    using Result = CLibGen::TResActionObj;
    EXPECT_EQ(static_cast<int>(Result::done), 0);
    EXPECT_EQ(static_cast<int>(Result::notCreated), 1);
    EXPECT_EQ(static_cast<int>(Result::notOpened), 2);
    EXPECT_EQ(static_cast<int>(Result::notInserted), 3);
    EXPECT_EQ(static_cast<int>(Result::noPlaneCoordinates), 4);
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
