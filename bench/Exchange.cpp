// Exchange files, written and loaded, against the same records in a section; a load in the middle of a group
// against one at its end.
#include <cstdlib>
#include <limits>
#include <memory>

#include "bench/Store.h"
#include "bench/Work.h"
#include "bench/Workload.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/cad/CDrawingsMapper.h"

namespace bench {

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

// A file that is there in full when the measuring begins: it is overwritten, never made anew.
std::string ExchangeFile(CLibGps& book, std::size_t n) {
    const std::string file = ScratchFile("points");
    Require(book.SalvaPuntiInFile(0, 0, static_cast<int>(n), file) == CLibGen::TResActionObj::done);
    return file;
}

void WriteSectionTo(CLibGps& book, const std::string& file) {
    ofpstream out(file.c_str(), kVersion);
    book.SalvaInFile(out, kVersion, "", nullptr, nullptr);
    Require(out.Close());
}

Work SaveExchange() {
    return {"exchange.save.points", [](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                return Run{[book, n] { ExchangeFile(book->Get(), n); }, {}};
            }};
}

Work SaveSection() {
    return {"exchange.save.section", [](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                return Run{[book] { WriteSectionTo(book->Get(), ScratchFile("section")); }, {}};
            }};
}

// The group has no valid conversion, so that what is measured is the records; recomputation has figures of
// its own.
Work LoadExchange() {
    return {"exchange.load.points", [](std::size_t n) -> Run {
                const std::string file = ExchangeFile(Book(n).Get(), n);
                return Run{
                    [file, n] {
                        CLibMap map;
                        CLibGps book(nullptr, nullptr, nullptr, &map, 0);
                        book.AddGrp(false);
                        Require(book.CaricaPuntiDaFile(0, 0, -1, file) == CLibGen::TResActionObj::done);
                        Require(static_cast<std::size_t>(book.GetPunArSize(0)) == n);
                    },
                    {}};
            }};
}

Work LoadSection() {
    return {"exchange.load.section", [](std::size_t n) -> Run {
                const std::string file = ScratchFile("section");
                WriteSectionTo(Book(n).Get(), file);
                return Run{[file, n] {
                               CLibMap map;
                               CLibGps book(nullptr, nullptr, nullptr, &map, 0);
                               CDrawingsMapper drawings;
                               ifpstream in(file.c_str(), kVersion);
                               book.LeggeDaFile(in, true, true, kVersion, "", drawings);
                               Require(in.IsOk() && static_cast<std::size_t>(book.GetPunArSize(0)) == n);
                           },
                           {}};
            }};
}

// A file of n points into a group of n points whose positions have been asked for, all of them.
Work LoadInto(const char* name, bool middle) {
    return {name, [middle](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                book->Get().GetGrpAt(0)->SetCodeElab(0);
                const std::string file = ExchangeFile(book->Get(), n);
                const int at = static_cast<int>(middle ? n / 2 : n);
                return Run{[book, file, at] {
                               Require(book->Get().CaricaPuntiDaFile(0, 0, at - 1, file) ==
                                       CLibGen::TResActionObj::done);
                           },
                           [book, n] {
                               // Back to what it was: points of the former load go, and all are found anew.
                               CLibGps& b = book->Get();
                               for (int p = b.GetPunArSize(0) - 1; p >= static_cast<int>(n); --p)
                                   b.DelPunAt(0, p);
                               int g = 0, found = 0;
                               for (int p = 0; p < static_cast<int>(n); ++p)
                                   b.GetIndiciDiPun(b.GetPunAt(0, p), g, found);
                           }};
            }};
}

}  // namespace

std::vector<Ratio> ExchangeRatios() {
    const std::vector<std::size_t> counts{10'000, 100'000, 1'000'000};
    const auto at = [](std::size_t count, double bound) {
        return [count, bound](std::size_t n) {
            return n == count ? bound : std::numeric_limits<double>::infinity();
        };
    };
    return {{"exchange.save", SaveExchange(), SaveSection(), counts, at(100'000, 1.5)},
            {"exchange.load", LoadExchange(), LoadSection(), counts, at(100'000, 1.5)},
            {"exchange.load.middle", LoadInto("exchange.load.into_the_middle", true),
             LoadInto("exchange.load.at_the_end", false), counts, at(100'000, 3.0)}};
}

}  // namespace bench
