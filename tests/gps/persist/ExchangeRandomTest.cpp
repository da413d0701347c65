// Random books: what a load of an exchange file makes of them is what inserting one item after the other
// makes.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/MemoryFile.h"
#include "tests/Scale.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/RandomBook.h"

namespace {

using test::Book;
using test::RandomBook;
using test::Section;

// --- the straightforward way -------------------------------------------------------------------------------

/// What a load does, without its shortcut: every item is inserted where it belongs at once.
class Model {
public:
    Model(CLibGps& book, const std::string& bytes) : book_(book), in_(bytes.data(), bytes.size(), 0) {
        in_.ReadMarker();
        in_.ReadString();
        in_.SetVersion(in_.ReadShort());
        count_ = in_.ReadInt();
    }

    int Points(bool fromPlane, int g, int after) {
        int result = 0;
        for (int i = 0; i < count_; ++i) {
            CPunGps* point = book_.InsPunAt(g, after + 1, false);
            ++after;
            if (!point) {
                result = 3;
                continue;
            }
            point->LeggeDaFile(in_);
            if (fromPlane && !point->EstValidoXY()) result = 4;
            fromPlane ? book_.CalcolaCoordGeog(point, g) : book_.CalcolaCoordCart(point, g);
            point->SetCloudNotify(true);
        }
        return result;
    }

    int Groups(int after, CDrawingsMapper& drawings) {
        int result = 0;
        for (int i = 0; i < count_; ++i, ++after) {
            CGrpGps* group = book_.InsGrpAt(after + 1, false);
            if (!group) {
                result = 3;
                continue;
            }
            group->LeggeDaFile(in_, drawings, false);
            const int points = in_.ReadInt();
            for (int j = 0; j < points; ++j) {
                CPunGps* point = book_.AddPun(after + 1, false);
                point->LeggeDaFile(in_);
                book_.CalcolaCoordCart(point, after + 1);
                point->SetCloudNotify(true);
            }
            group->SetCloudNotify(true);
        }
        return result;
    }

private:
    CLibGps& book_;
    ifpstream in_;
    int count_ = 0;
};

// --- random books ------------------------------------------------------------------------------------------

class Dice {
public:
    explicit Dice(unsigned seed) : random_(seed) {}
    int operator()(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

private:
    std::mt19937 random_;
};

/// A random book, some groups of which are long, after random edits. `asked`: positions are looked up in
/// between, so that the book remembers them.
void Make(Book& book, unsigned seed, bool asked) {
    RandomBook(seed).Fill(book.lib, book.map);
    Dice dice(seed);
    const int edits = dice(0, 150);
    for (int i = 0; i < edits && book.lib.GetGrpArSize() > 0; ++i) {
        const int g = dice(0, book.lib.GetGrpArSize() - 1);
        const int p = dice(0, book.lib.GetPunArSize(g));
        const int kind = dice(0, 9), other = dice(0, 1000);
        const int size = book.lib.GetPunArSize(g);
        if (kind == 0)
            book.lib.DelPunAt(g, p);
        else if (kind == 1 && size > 0)
            book.lib.PunGpsSwap(g, p % size, other % size);
        else if (CPunGps* point = book.lib.InsPunAt(g, kind < 6 ? size : p, false))
            point->SetNome("edit " + std::to_string(i));
        int askedG = 0, askedP = 0;
        if (asked && size > 0) book.lib.GetIndiciDiPun(book.lib.GetPunAt(g, other % size), askedG, askedP);
    }
}

/// Where the added items of a table stand, in the table's order; a group has no second position.
using Places = std::vector<std::pair<int, int>>;
Places PlacesOfAdded(const Book& book, const CCloudTable& table) {
    Places places;
    for (const CCloudItem* item : table.GetAdded()) {
        for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
            if (CGrpGps::CloudItemOf(book.lib.GetGrpAt(g)) == item) places.emplace_back(g, -1);
            for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
                if (CPunGps::CloudItemOf(book.lib.GetPunAt(g, p)) == item) places.emplace_back(g, p);
        }
    }
    return places;
}

void ExpectPositionsRight(const Book& book) {
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        int foundG = -1, foundP = -1;
        ASSERT_TRUE(book.lib.GetIndiciDiGrp(book.lib.GetGrpAt(g), foundG));
        ASSERT_EQ(foundG, g);
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p) {
            ASSERT_TRUE(book.lib.GetIndiciDiPun(book.lib.GetPunAt(g, p), foundG, foundP));
            ASSERT_EQ(foundG, g);
            ASSERT_EQ(foundP, p);
        }
    }
}

void ExpectSame(Book& book, Book& model) {
    ASSERT_TRUE(Section(book.lib, 1400) == Section(model.lib, 1400));
    ASSERT_EQ(PlacesOfAdded(book, book.points), PlacesOfAdded(model, model.points));
    ASSERT_EQ(PlacesOfAdded(book, book.bases), PlacesOfAdded(model, model.bases));
    ASSERT_EQ(book.points.GetById().size(), model.points.GetById().size());
    ASSERT_EQ(book.points.GetChanged().size(), model.points.GetChanged().size());
    ASSERT_EQ(book.bases.GetById().size(), model.bases.GetById().size());
    ExpectPositionsRight(book);
}

TEST(ExchangeRandom, LoadedPointsStandAsThoughInsertedOneByOne) {
    const test::MemoryFile memory;
    const std::string& file = memory.Name();
    const long rounds = Scaled(3000);
    for (long seed = 0; seed < rounds; ++seed) {
        Dice dice(static_cast<unsigned>(seed));
        Book from, book, model;
        Make(from, static_cast<unsigned>(seed) + 100'000, false);
        Make(book, static_cast<unsigned>(seed), seed % 2 == 0);
        Make(model, static_cast<unsigned>(seed), false);
        for (int load = 0; load < 3; ++load) {
            const int fromG = dice(0, 4), first = dice(-2, 10);
            ASSERT_EQ(static_cast<int>(from.lib.SalvaPuntiInFile(fromG, first, first + dice(0, 40), file)),
                      0);
            const std::string bytes = memory.Bytes();
            const int g = dice(-1, book.lib.GetGrpArSize()), after = dice(-4, book.lib.GetPunArSize(g) + 2);
            const bool fromPlane = dice(0, 1) == 1;
            const int result = static_cast<int>(book.lib.CaricaPuntiDaFile(fromPlane, g, after, file));
            ASSERT_EQ(result, Model(model.lib, bytes).Points(fromPlane, g, after)) << "seed " << seed;
            ExpectSame(book, model);
            if (HasFatalFailure()) FAIL() << "seed " << seed << ", load " << load;
        }
    }
}

TEST(ExchangeRandom, LoadedGroupsStandAsThoughInsertedOneByOne) {
    const test::MemoryFile memory;
    const std::string& file = memory.Name();
    const long rounds = Scaled(2000);
    for (long seed = 0; seed < rounds; ++seed) {
        Dice dice(static_cast<unsigned>(seed));
        Book from, book, model;
        Make(from, static_cast<unsigned>(seed) + 100'000, false);
        Make(book, static_cast<unsigned>(seed), seed % 2 == 0);
        Make(model, static_cast<unsigned>(seed), false);
        for (int load = 0; load < 2; ++load) {
            // Groups that are all there: out of step a count can be any number.
            const int groups = from.lib.GetGrpArSize();
            const int first = dice(0, groups);
            ASSERT_EQ(static_cast<int>(from.lib.SalvaGruppoInFile(first, dice(first, groups), file, nullptr)),
                      0);
            const std::string bytes = memory.Bytes();
            const int after = dice(-3, book.lib.GetGrpArSize() + 1);
            CDrawingsMapper drawings;
            const int result = static_cast<int>(book.lib.CaricaGruppoDaFile(0, after, file, drawings));
            ASSERT_EQ(result, Model(model.lib, bytes).Groups(after, drawings)) << "seed " << seed;
            ExpectSame(book, model);
            if (HasFatalFailure()) FAIL() << "seed " << seed << ", load " << load;
        }
    }
}

}  // namespace
