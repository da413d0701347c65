// The points that are measured: the same in every run, around Italy.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"

namespace bench {

/// A fix with everything that a point holds of it.
struct Fix {
    std::string name, code;
    unsigned short year;
    unsigned char month, day;
    std::uint32_t tod;            // milliseconds
    double lat, lon, h, antenna;  // degrees, degrees, metres, metres
    double hrms, vrms, pdop;      // metres, metres, dimensionless
    int quality;
    unsigned char gps, glonass;
    float cov[6];  // square metres
};

Fix MakeFix(std::size_t i);
std::vector<Fix> MakeFixes(std::size_t n);

/// A splitmix64 generator: the same numbers everywhere.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t Next();
    double Uniform(double lo, double hi);
    std::size_t Below(std::size_t n);

private:
    std::uint64_t state_;
};

/// Fills a point through its setters.
void Fill(CPunGps& point, const Fix& fix);

/// An ordinary object with the same fields as a point, filled by plain assignment.
struct PlainPoint {
    std::string name, secScri, terScri, note, nomiFoto = "******", attribDis;
    double x = GPS_VAL_UNSET, y = GPS_VAL_UNSET, z = GPS_VAL_UNSET;  // metres
    std::uint32_t code = 0, validity = 0;
    int references = 0, identDescr = -1, gisHandle = 0;
    void* listeners = nullptr;
    void* table = nullptr;
    long long id = 0, ticket = 0;
    std::uint32_t mask = 0, since = 0;
    bool reporting = true;
    void* group = nullptr;
    unsigned short year = 0;
    unsigned char month = 0, day = 0;
    std::uint32_t tod = 0;
    double hrms = GPS_VAL_UNSET, vrms = GPS_VAL_UNSET, pdop = GPS_VAL_UNSET, gdop = GPS_VAL_UNSET;
    unsigned char gps = 0, glonass = 0;
    float cov[10]{};
    double lat = GPS_VAL_UNSET, lon = GPS_VAL_UNSET, h = GPS_VAL_UNSET, antenna = GPS_VAL_UNSET;
    int quality = 0;
    double base[3] = {GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET};
    bool primary = false, secondary = false;
    std::uint32_t spare = 0;
};
void Fill(PlainPoint& point, const Fix& fix);

/// A book with n points in `groups` groups.
class Book {
public:
    explicit Book(std::size_t n, std::size_t groups = 1);

    CLibGps& Get() { return *book_; }
    std::vector<CPunGps*> Points() const;

    /// Every group gets this conversion.
    void SetConversions(void (*set)(CConvCoord&));

private:
    CLibMap map_;
    std::unique_ptr<CLibGps> book_;
};

}  // namespace bench
