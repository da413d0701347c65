// Saving and reading a book are silent: nobody is notified, no field counts as changed, no mark is set.
#include <gtest/gtest.h>

#include <string>

#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/GoldenRecords.h"

namespace {

using test::Book;
using test::Section;

constexpr short kVersions[] = {741, 743, 1002, 1003, 1004, 1400};

/// A book in step with the cloud, with a value in every field: a change of any of them would be seen.
struct InStep : Book {
    InStep() {
        map.AddDat(2, 3)->SetNome("Roma 40");
        test::SetOptions(lib);
        Fill({2, 0});
        test::FillGoldenGroup(*lib.GetGrpAt(0));
        test::FillGoldenPoint(*lib.GetPunAt(0, 0));
        test::Register(bases, *lib.GetGrpAt(0), 1);
        test::Register(bases, *lib.GetGrpAt(1), 2);
        test::Register(points, *lib.GetPunAt(0, 0), 3);
        test::Register(points, *lib.GetPunAt(0, 1), 4);
    }
};

/// What a book, its map library and all items tell while it lives.
class Listener {
public:
    explicit Listener(Book& book) : book_(book) {
        const auto count = [this](int, int, VEXNotifyObject::CNotifyData*) { ++told_; };
        inBook_ = book_.lib.AddListener(count);
        inMap_ = book_.map.AddListener(count);
    }
    ~Listener() {
        book_.lib.RemoveListener(inBook_);
        book_.map.RemoveListener(inMap_);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// How much was told since the last time.
    std::size_t Take() {
        const int told = told_;
        told_ = 0;
        return static_cast<std::size_t>(told) + changes_.Take().size();
    }

private:
    Book& book_;
    test::ChangeWatch changes_;
    int inBook_ = 0, inMap_ = 0;
    int told_ = 0;
};

void ExpectNothingChanged(const Book& book) {
    EXPECT_TRUE(book.bases.GetChanged().empty());
    EXPECT_TRUE(book.points.GetChanged().empty());
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        EXPECT_EQ(book.lib.GetGrpAt(g)->GetCloudFlag(), 0u) << g;
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
            EXPECT_EQ(book.lib.GetPunAt(g, p)->GetCloudFlag(), 0u) << g << "/" << p;
    }
}

TEST(BookSilence, ListenerHearsWhatIsTold) {
    InStep book;
    Listener listener(book);
    book.lib.Notify(1, 1, nullptr);
    book.map.Notify(1, 1, nullptr);
    book.lib.GetPunAt(0, 0)->SetElev(-1);
    book.lib.GetGrpAt(0)->GetConvCoord()->SetImp(1, 3);
    EXPECT_EQ(listener.Take(), 4u);
    EXPECT_EQ(listener.Take(), 0u);
}

TEST(BookSilence, SavingTellsNothingAndSetsNoMark) {
    for (const short version : kVersions) {
        for (const bool marked : {false, true}) {
            InStep book;
            if (marked) book.lib.SetModifiedFlag(true);
            book.lib.SetAutoSaved();
            Listener listener(book);
            Section(book.lib, version);
            EXPECT_EQ(listener.Take(), 0u) << version;
            ExpectNothingChanged(book);
            EXPECT_EQ(book.lib.IsModified(), marked) << version;
            EXPECT_TRUE(book.lib.IsAutoSaved()) << version;
        }
    }
}

TEST(BookSilence, ReadingTellsNothingAndSetsNoMark) {
    for (const short version : kVersions) {
        InStep source;
        const std::string section = Section(source.lib, version);
        for (const bool options : {true, false}) {
            for (const bool entities : {true, false}) {
                Book book;
                book.Fill({1});
                test::Register(book.bases, *book.lib.GetGrpAt(0), 11);
                test::Register(book.points, *book.lib.GetPunAt(0, 0), 12);
                Listener listener(book);
                test::Load load;
                load.options = options;
                load.entities = entities;
                ASSERT_TRUE(test::Read(book.lib, section, version, load)) << version;
                ASSERT_EQ(book.lib.GetGrpArSize(), entities ? 3 : 1);
                EXPECT_EQ(listener.Take(), 0u) << version;
                ExpectNothingChanged(book);
                EXPECT_FALSE(book.lib.IsModified()) << version;
                EXPECT_FALSE(book.lib.IsAutoSaved()) << version;
            }
        }
    }
}

}  // namespace
