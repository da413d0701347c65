// The position of a point by its pointer, against a find in an unordered_map of pointers.
#include <limits>
#include <memory>
#include <unordered_map>
#include <utility>

#include "bench/Work.h"
#include "bench/Workload.h"

namespace bench {

namespace {

enum class Order { forward, random };

std::vector<CPunGps*> Questions(const Book& book, Order order) {
    std::vector<CPunGps*> points = book.Points();
    if (order == Order::forward) return points;
    Random r(4711);
    for (std::size_t i = points.size(); i > 1; --i) std::swap(points[i - 1], points[r.Below(i)]);
    return points;
}

long AskAll(const CLibGps& book, const std::vector<CPunGps*>& questions) {
    long sum = 0;
    for (CPunGps* point : questions) {
        int g = 0, p = 0;
        book.GetIndiciDiPun(point, g, p);
        sum += p;
    }
    return sum;
}

// Puts `inserts` new points into the middle of the list and takes those of the pass before out: all positions
// behind are wrong in what was remembered. Nothing for 0.
std::function<void()> Unsettle(const std::shared_ptr<Book>& book, std::size_t n, int inserts) {
    if (inserts == 0) return {};
    auto at = std::make_shared<int>(static_cast<int>(n / 2));
    return [book, at, inserts, n] {
        CLibGps& b = book->Get();
        if (b.GetPunArSize(0) > static_cast<int>(n))
            for (int i = 0; i < inserts; ++i) b.DelPunAt(0, *at);
        *at = static_cast<int>(n / 4) + (*at + 4711) % static_cast<int>(n / 2);
        for (int i = 0; i < inserts; ++i) b.InsPunAt(0, *at, false);
    };
}

Work Library(const char* name, Order order, int inserts) {
    return {name, [=](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                auto questions = std::make_shared<std::vector<CPunGps*>>(Questions(*book, order));
                return Run{[book, questions] { Keep(AskAll(book->Get(), *questions)); },
                           Unsettle(book, n, inserts)};
            }};
}

// The map's positions are not put right after the insertions: only its find is measured. The insertions are
// made all the same, so that both begin with the same caches.
Work Map(const char* name, Order order, int inserts) {
    return {name, [=](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                auto questions = std::make_shared<std::vector<CPunGps*>>(Questions(*book, order));
                auto map = std::make_shared<std::unordered_map<const CPunGps*, int>>();
                int position = 0;
                for (CPunGps* p : book->Points()) map->emplace(p, position++);
                return Run{[book, questions, map] {
                               long sum = 0;
                               for (CPunGps* point : *questions) sum += map->find(point)->second;
                               Keep(sum);
                           },
                           Unsettle(book, n, inserts)};
            }};
}

}  // namespace

std::vector<Ratio> PositionRatios() {
    // The bound is one at 10^5 points; the other counts show how the ratio grows.
    const auto bound = [](std::size_t n) {
        return n == 100'000 ? 1.0 : std::numeric_limits<double>::infinity();
    };
    const std::vector<std::size_t> counts{10'000, 100'000, 1'000'000};
    return {
        {"position.forward", Library("position.forward.library", Order::forward, 0),
         Map("position.forward.unordered_map", Order::forward, 0), counts, bound, 10, 0},
        {"position.random", Library("position.random.library", Order::random, 0),
         Map("position.random.unordered_map", Order::random, 0), counts, bound, 10, 1.2},
        {"position.random.after_inserts", Library("position.inserts.library", Order::random, 100),
         Map("position.inserts.unordered_map", Order::random, 100), counts, bound, 10, 0},
    };
}

}  // namespace bench
