// The mapper of drawings that waiting items are written with. The journal does not show it: here the host's
// operation that is handed it writes it down.
#include <gtest/gtest.h>

#include <vector>

#include "platform/base/ofpstream.h"
#include "platform/base/savedPointers.h"
#include "tests/gps/cloud/CloudBook.h"
#include "tests/gps/persist/RecordingJournal.h"

namespace {
std::vector<const vex::CPtr64Mapper*> mappers;
}

// In front of the host's own, which the library would call otherwise.
void vex::SavePointerToFile(ofpstream& out, long long pointer, CPtr64Mapper* mapper) {
    mappers.push_back(mapper);
    out.WriteInt64(pointer);
}

namespace {

TEST(WaitingMapper, IsOneForAllGroupsOfACall) {
    test::CloudBook book;
    test::RecordingJournal journal;
    book.lib.SetNomeFile("job");
    book.lib.SetTmpJournal(&journal);
    for (int g = 0; g < 3; ++g) book.AddGroup(0);
    mappers.clear();
    book.bases.StoreTmpItems({book.lib.GetGrpAt(1)}, {});
    book.lib.SetTmpJournal(nullptr);
    ASSERT_EQ(journal.entries.size(), 4u);
    ASSERT_EQ(mappers.size(), 4u);
    for (const vex::CPtr64Mapper* mapper : mappers) {
        EXPECT_NE(mapper, nullptr);
        EXPECT_EQ(mapper, mappers.front());
    }
}

}  // namespace
