#include "bench/Workload.h"

#include <fmt/format.h>

#include <array>

namespace bench {

std::uint64_t Random::Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

double Random::Uniform(double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(Next() >> 11) * 0x1p-53);
}

std::size_t Random::Below(std::size_t n) { return static_cast<std::size_t>(Next() % n); }

Fix MakeFix(std::size_t i) {
    static constexpr std::array<const char*, 4> codes{"VERTEX", "EDGE", "ROAD-AXIS", "BM"};
    Random r(i + 1);
    Fix f;
    f.name = fmt::format("P{:07}", i);
    f.code = codes[r.Below(codes.size())];
    f.year = 2024;
    f.month = static_cast<unsigned char>(1 + r.Below(12));
    f.day = static_cast<unsigned char>(1 + r.Below(28));
    f.tod = static_cast<std::uint32_t>(r.Below(86'400'000));
    f.lat = r.Uniform(36, 47);
    f.lon = r.Uniform(6.6, 18.5);
    f.h = r.Uniform(0, 3000);
    f.antenna = 1.5 + 0.1 * static_cast<double>(r.Below(8));
    f.hrms = r.Uniform(0.004, 0.05);
    f.vrms = r.Uniform(0.006, 0.08);
    f.pdop = r.Uniform(1, 4);
    f.quality = static_cast<int>(1 + r.Below(5));
    f.gps = static_cast<unsigned char>(5 + r.Below(8));
    f.glonass = static_cast<unsigned char>(r.Below(8));
    for (float& c : f.cov) c = static_cast<float>(r.Uniform(1e-5, 1e-3));
    return f;
}

std::vector<Fix> MakeFixes(std::size_t n) {
    std::vector<Fix> fixes;
    fixes.reserve(n);
    for (std::size_t i = 0; i < n; ++i) fixes.push_back(MakeFix(i));
    return fixes;
}

void Fill(CPunGps& p, const Fix& f) {
    p.SetNome(f.name);
    p.SetSecScri(f.code);
    p.SetYear(f.year);
    p.SetMonth(f.month);
    p.SetDay(f.day);
    p.SetTod(f.tod);
    p.SetLat(f.lat);
    p.SetLong(f.lon);
    p.SetElev(f.h);
    p.SetAltAnt(f.antenna);
    p.SetHposRms(f.hrms);
    p.SetVposRms(f.vrms);
    p.SetPdop(f.pdop);
    p.SetQua(f.quality);
    p.SetNuGpsUsed(f.gps);
    p.SetNuGloUsed(f.glonass);
    p.SetPosCov_xx(f.cov[0]);
    p.SetPosCov_yy(f.cov[1]);
    p.SetPosCov_zz(f.cov[2]);
    p.SetPosCov_xy(f.cov[3]);
    p.SetPosCov_xz(f.cov[4]);
    p.SetPosCov_yz(f.cov[5]);
}

void Fill(PlainPoint& p, const Fix& f) {
    p.name = f.name;
    p.secScri = f.code;
    p.year = f.year;
    p.month = f.month;
    p.day = f.day;
    p.tod = f.tod;
    p.lat = f.lat;
    p.lon = f.lon;
    p.h = f.h;
    p.antenna = f.antenna;
    p.hrms = f.hrms;
    p.vrms = f.vrms;
    p.pdop = f.pdop;
    p.quality = f.quality;
    p.gps = f.gps;
    p.glonass = f.glonass;
    p.cov[0] = f.cov[0];
    p.cov[1] = f.cov[1];
    p.cov[2] = f.cov[2];
    p.cov[4] = f.cov[3];
    p.cov[5] = f.cov[4];
    p.cov[7] = f.cov[5];
}

Book::Book(std::size_t n, std::size_t groups)
    : book_(std::make_unique<CLibGps>(nullptr, nullptr, nullptr, &map_, 0)) {
    for (std::size_t g = 0; g < groups; ++g) {
        CGrpGps* group = book_->AddGrp(false);
        group->SetCodeElab(1);
        const std::size_t from = n * g / groups, to = n * (g + 1) / groups;
        for (std::size_t i = from; i < to; ++i) Fill(*book_->AddPun(static_cast<int>(g), false), MakeFix(i));
    }
}

std::vector<CPunGps*> Book::Points() const {
    std::vector<CPunGps*> points;
    for (int g = 0; g < book_->GetGrpArSize(); ++g)
        for (int p = 0; p < book_->GetPunArSize(g); ++p) points.push_back(book_->GetPunAt(g, p));
    return points;
}

void Book::SetConversions(void (*set)(CConvCoord&)) {
    for (int g = 0; g < book_->GetGrpArSize(); ++g) set(*book_->GetGrpAt(g)->GetConvCoord());
}

}  // namespace bench
