// Search for a point by name or code, against a plain loop of string compares over the same objects.
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "bench/Work.h"
#include "bench/Workload.h"
#include "gps/model/CFindInLibGps.h"

namespace bench {

namespace {

// As long as a name, and alike at the beginning: nobody has it, so that every point is looked at.
std::string Unknown(const std::string& like) { return like.substr(0, like.size() - 1) + '~'; }

Work Library(const char* name, int flags, std::size_t groups) {
    return {name, [=](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n, groups);
                const std::string text = Unknown(book->Points().front()->GetNome());
                return Run{[book, text, flags] {
                               CFindInLibGps find(&book->Get());
                               // From the second half on, so that the search goes round.
                               int g = book->Get().GetGrpArSize() / 2, p = 0;
                               Keep(find.TrovaPunGlobal(text, flags, g, p));
                           },
                           {}};
            }};
}

// What a search from the first point would look at; round a book of many groups one group is seen twice.
Work Loop(const char* name, int flags, std::size_t groups) {
    return {name, [=](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n, groups);
                auto points = std::make_shared<std::vector<CPunGps*>>(book->Points());
                const std::string text = Unknown(points->front()->GetNome());
                const bool byName = (flags & CFindInLibGps::BY_NOME) != 0,
                           byCode = (flags & CFindInLibGps::BY_CODE) != 0;
                return Run{
                    [book, points, text, byName, byCode] {
                        long found = 0;
                        for (const CPunGps* point : *points)
                            if ((byName && point->GetNome() == text) || (byCode && point->GetCode() == text))
                                ++found;
                        Keep(found);
                    },
                    {}};
            }};
}

}  // namespace

std::vector<Ratio> SearchRatios() {
    constexpr int name = CFindInLibGps::BY_NOME, both = name | CFindInLibGps::BY_CODE;
    // The bound is one at 10^6 points; the other counts show how the ratio grows.
    const auto bound = [](std::size_t n) {
        return n == 1'000'000 ? 1.2 : std::numeric_limits<double>::infinity();
    };
    const std::vector<std::size_t> counts{10'000, 100'000, 1'000'000};
    return {
        {"search.name", Library("search.name.library", name, 1000), Loop("search.name.loop", name, 1000),
         counts, bound, 0, 0},
        {"search.both", Library("search.both.library", both, 1000), Loop("search.both.loop", both, 1000),
         counts, bound, 0, 0},
    };
}

}  // namespace bench
