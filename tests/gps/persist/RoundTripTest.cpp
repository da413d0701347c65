// Random books at every version: what was read from a record gives the same record again.
#include <gtest/gtest.h>

#include <string>

#include "platform/cad/COrkaEng.h"
#include "tests/Bytes.h"
#include "tests/Scale.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/RandomBook.h"

namespace {

using test::Load;
using test::LooseBook;
using test::RandomBook;
using test::Section;

constexpr short kOldest = 743, kNewest = 1400;

/// Every drawing is found under the value it had.
Load SameDrawings() {
    Load load;
    for (int drawing = 0; drawing < RandomBook::kDrawings; ++drawing)
        load.drawings.SetDrawing(drawing, drawing);
    return load;
}

// From version 1004 the map library is not in the record: it is the same one then.
template <class BookOfKind>
void ExpectSameRecord(short version, unsigned seed) {
    BookOfKind book;
    RandomBook(seed).Fill(book.lib, book.map);
    const std::string first = Section(book.lib, version);
    BookOfKind read;
    if (version >= 1004) {
        ofpstream map(version);
        book.map.SalvaInFile(map, version);
        ifpstream in(map.GetBytes().data(), map.GetBytes().size(), version);
        read.map.LeggeDaFile(in, version);
    }
    ASSERT_TRUE(test::Read(read.lib, first, version, SameDrawings()));
    ASSERT_EQ(read.lib.GetGrpArSize(), book.lib.GetGrpArSize());
    const std::string second = Section(read.lib, version);
    ASSERT_EQ(second.size(), first.size());
    std::size_t at = 0;
    while (at < first.size() && first[at] == second[at]) ++at;
    ASSERT_EQ(at, first.size()) << "the first byte that differs";
}

template <class BookOfKind>
void ExpectSameRecordAtEveryVersion() {
    const long books = Scaled(20);
    for (short version = kOldest; version <= kNewest; ++version) {
        for (long i = 0; i < books; ++i) {
            const unsigned seed = static_cast<unsigned>(version) * 1000 + static_cast<unsigned>(i);
            ExpectSameRecord<BookOfKind>(version, seed);
            if (testing::Test::HasFatalFailure()) FAIL() << "version " << version << ", seed " << seed;
        }
    }
    for (int drawing = 0; drawing < RandomBook::kDrawings; ++drawing)
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(drawing), 0) << drawing;
}

TEST(RoundTrip, WithoutTablesTheRecordIsTheSame) { ExpectSameRecordAtEveryVersion<LooseBook>(); }

TEST(RoundTrip, WithTablesTheRecordIsTheSame) { ExpectSameRecordAtEveryVersion<test::Book>(); }

TEST(RoundTrip, BookFromTheCloudLosesNothingWithoutIt) {
    // Made with tables, opened and saved by someone who does not take part in the cloud.
    for (unsigned seed = 0; seed < 50; ++seed) {
        test::Book book;
        RandomBook(seed).Fill(book.lib, book.map);
        const std::string first = Section(book.lib, kNewest);
        CLibGps read(nullptr, nullptr, nullptr, &book.map, 0);
        ASSERT_TRUE(test::Read(read, first, kNewest, SameDrawings()));
        ASSERT_TRUE(Section(read, kNewest) == first) << seed;
    }
}

}  // namespace
