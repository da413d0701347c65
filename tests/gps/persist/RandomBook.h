// RandomBook: fills a field book with anything that one can hold.
#pragma once

#include <random>

#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"

namespace test {

class RandomBook {
public:
    explicit RandomBook(unsigned seed) : random_(seed) {}

    /// Groups, points, options and datums; some made here, some come from the cloud. Cloud ids are unique
    /// in the book.
    void Fill(CLibGps& book, CLibMap& map);

    /// A drawing of the book or of its groups is one of these.
    static constexpr int kDrawings = 5;

private:
    int Number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
    bool OneIn(int n) { return Number(n) == 0; }
    std::uint32_t Bits() { return static_cast<std::uint32_t>(random_()); }
    short Short() { return static_cast<short>(Bits()); }
    unsigned char Byte() { return static_cast<unsigned char>(Bits()); }
    double Real();
    float Single();
    std::string Text();

    template <class T>
    void Entity(T& egn, bool fromCloud);
    void Conversion(CConvCoord& conversion);
    void Group(CGrpGps& group, bool fromCloud);
    void Point(CPunGps& point, bool fromCloud);
    void Options(CLibGps& book);

    std::mt19937 random_;
    long long lastId_ = 0;
};

}  // namespace test
