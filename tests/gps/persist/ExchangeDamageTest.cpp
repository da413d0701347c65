// Damaged exchange files: cut anywhere, any bit turned over. A load ends, and what came of it is a book like
// any other.
#include <gtest/gtest.h>

#include <string>

#include "platform/cad/COrkaEng.h"
#include "tests/MemoryFile.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/ExchangeBytes.h"
#include "tests/gps/persist/ExchangeGuard.h"

namespace {

using test::Book;
using test::ExchangeKind;
using test::LooseBook;

/// Two groups with three points, of a version that others may have written, too.
std::string SampleFile(ExchangeKind kind, short version) {
    LooseBook book;
    test::Fill(book.lib, {0, 0});
    test::FillGoldenGroup(*book.lib.GetGrpAt(1));
    book.lib.GetGrpAt(1)->SetCodeElab(1);
    test::Bytes bytes = test::ExchangeHead(kind == ExchangeKind::points ? 3 : 2, version);
    CPunGps point(nullptr, false, nullptr);
    test::FillGoldenPoint(point);
    const std::string record = test::PointCopy(point, version);
    if (kind == ExchangeKind::points) return bytes.Raw(record).Raw(record).Raw(record).I32(0);
    const auto group = [&](int g) { return test::Saved(*book.lib.GetGrpAt(g), version, true); };
    return bytes.Raw(group(0)).I32(1).Raw(record).Raw(group(1)).I32(2).Raw(record).Raw(record).I32(0);
}

class ExchangeDamage : public ::testing::TestWithParam<ExchangeKind> {
protected:
    /// Loads into a book in a cloud project and uses what came of it: saves it again.
    void Load(const std::string& bytes) {
        file.Write(bytes);
        Book book(8);
        book.Fill({2});
        CDrawingsMapper drawings;
        const auto result = GetParam() == ExchangeKind::points
                                ? book.lib.CaricaPuntiDaFile(0, 0, 0, file.Name())
                                : book.lib.CaricaGruppoDaFile(0, -1, file.Name(), drawings);
        EXPECT_EQ(static_cast<int>(result), 0) << "nobody looks at the stream";
        std::size_t points = 0;
        for (int g = 0; g < book.lib.GetGrpArSize(); ++g)
            points += static_cast<std::size_t>(book.lib.GetPunArSize(g));
        EXPECT_EQ(book.points.GetAdded().size() + book.points.GetById().size(), points);
        EXPECT_EQ(book.bases.GetAdded().size() + book.bases.GetById().size(),
                  static_cast<std::size_t>(book.lib.GetGrpArSize()));
        EXPECT_LE(points, 200u);
        EXPECT_FALSE(test::Section(book.lib, 1400).empty());
    }

    test::MemoryFile file;
};

TEST_P(ExchangeDamage, EveryCutLeavesABook) {
    for (const short version : {short{741}, short{1003}, short{1400}}) {
        const std::string whole = SampleFile(GetParam(), version);
        for (std::size_t size = 0; size <= whole.size(); ++size) {
            ASSERT_TRUE(test::IsBounded(whole.substr(0, size), GetParam())) << "the counts are small";
            Load(whole.substr(0, size));
            if (HasFailure()) FAIL() << version << ": cut at " << size;
        }
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(8), 0);
}

TEST_P(ExchangeDamage, EveryTurnedBitLeavesABook) {
    for (const short version : {short{741}, short{1003}, short{1400}}) {
        const std::string whole = SampleFile(GetParam(), version);
        std::size_t loaded = 0;
        for (std::size_t at = 0; at < whole.size(); ++at) {
            for (int bit = 0; bit < 8; ++bit) {
                std::string bytes = whole;
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
                if (!test::IsBounded(bytes, GetParam())) continue;
                ++loaded;
                Load(bytes);
                if (HasFailure()) FAIL() << version << ": bit " << bit << " of byte " << at;
            }
        }
        EXPECT_GT(loaded, whole.size() * 8 / 10 * 9) << "only large counts were left out";
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(8), 0);
}

INSTANTIATE_TEST_SUITE_P(, ExchangeDamage, testing::Values(ExchangeKind::points, ExchangeKind::groups),
                         [](const auto& kind) {
                             return kind.param == ExchangeKind::points ? "Points" : "Groups";
                         });

}  // namespace
