// Add records of points, against their numbers in a flat buffer and against snprintf.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "bench/CloudBook.h"
#include "bench/Work.h"

namespace bench {

namespace {

Work Library() {
    return {"cloud.add_records.library", [](std::size_t n) -> Run {
                auto book = std::make_shared<CloudBook>();
                book->Fill(n);
                auto records = std::make_shared<vex::String>();
                return Run{[book, records] {
                               int counter = 0;
                               book->points.GenerateCommitString_Add(counter, *records);
                               Keep(*records);
                           },
                           {}};
            }};
}

constexpr std::size_t kRoom = 512;  // bytes that a point's numbers and texts fit into

std::int32_t Whole(float covariance) {
    return static_cast<std::int32_t>(static_cast<double>(covariance) * 1e9);
}

/// The numbers of a point's record, in its order, each to `put`.
template <class Put>
void EachNumber(const CPunGps& p, Put put) {
    put(p.GetCoordX());
    put(p.GetCoordY());
    put(p.GetCoordZ());
    put(static_cast<std::int32_t>(p.GetCodeEgn()));
    put(static_cast<std::int32_t>(p.GetYear()));
    put(static_cast<std::int32_t>(p.GetMonth()));
    put(static_cast<std::int32_t>(p.GetDay()));
    put(static_cast<std::int32_t>(p.GetTod()));
    put(static_cast<std::int32_t>(p.GetQua()));
    put(static_cast<std::int32_t>(p.GetNuGpsUsed()));
    put(static_cast<std::int32_t>(p.GetNuGloUsed()));
    for (const double value : {p.GetLat(), p.GetLong(), p.GetElev(), p.GetAltAnt(), p.GetPdop(), p.GetGdop(),
                               p.GetHposRms(), p.GetVposRms()})
        put(value);
    for (const float covariance : {p.GetPosCov_xx(), p.GetPosCov_xy(), p.GetPosCov_xz(), p.GetPosCov_yy(),
                                   p.GetPosCov_yz(), p.GetPosCov_zz()})
        put(Whole(covariance));
}

/// The numbers alone, with a ";" in front of each: no texts, no tag, no test for values that are not set.
Work FlatBuffer() {
    return {"cloud.add_records.to_chars", [](std::size_t n) -> Run {
                auto book = std::make_shared<CloudBook>();
                book->Fill(n);
                auto buffer = std::make_shared<std::vector<char>>(n * kRoom);
                return Run{[book, buffer, n] {
                               char* at = buffer->data();
                               for (std::size_t i = 0; i < n; ++i)
                                   EachNumber(*book->lib.GetPunAt(0, static_cast<int>(i)), [&](auto value) {
                                       *at++ = ';';
                                       at = std::to_chars(at, at + 32, value).ptr;
                                   });
                               Keep(*buffer);
                           },
                           {}};
            }};
}

Work Snprintf() {
    return {"cloud.add_records.snprintf", [](std::size_t n) -> Run {
                auto book = std::make_shared<CloudBook>();
                book->Fill(n);
                auto records = std::make_shared<std::string>();
                return Run{[book, records, n] {
                               records->clear();
                               for (std::size_t i = 0; i < n; ++i) {
                                   const CPunGps& p = *book->lib.GetPunAt(0, static_cast<int>(i));
                                   char line[2048];
                                   char* at = line;
                                   char* const end = line + sizeof line;
                                   const auto room = [&] { return static_cast<std::size_t>(end - at); };
                                   at += std::snprintf(at, room(), "IPTGPS;%d;%s;%s", 1, p.GetNome().c_str(),
                                                       p.GetSecScri().c_str());
                                   EachNumber(p, [&](auto value) {
                                       if constexpr (std::is_same_v<decltype(value), double>)
                                           at += std::snprintf(at, room(), ";%.17g", value);
                                       else
                                           at += std::snprintf(at, room(), ";%d", value);
                                   });
                                   at += std::snprintf(at, room(), "\r\n");
                                   records->append(line, at);
                               }
                               Keep(*records);
                           },
                           {}};
            }};
}

}  // namespace

std::vector<Ratio> CloudRecordRatios() {
    const std::vector<std::size_t> counts{10'000, 100'000, 1'000'000};
    return {
        {"cloud.add_records/to_chars", Library(), FlatBuffer(), counts, [](std::size_t) { return 1.1; }, 0,
         1.2},
        {"cloud.add_records/snprintf", Library(), Snprintf(), counts, [](std::size_t) { return 0.3; }, 0, 0}};
}

}  // namespace bench
