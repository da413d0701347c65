#include "apps/gpsbook/readers/NmeaEpochs.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

#include "apps/gpsbook/readers/LocalFrame.h"

namespace gpsbook {

namespace {

int CountBits(const std::array<std::uint64_t, 4>& set) {
    int count = 0;
    for (const std::uint64_t word : set) count += std::popcount(word);
    return count;
}

// Covariance of east and north from the error ellipse with semi-axes a, b and the semi-major axis at t from
// true north, where (east, north) = (sin t, cos t):  cov_en = (a^2 - b^2) sin t cos t.
// Figures are printed with few digits: |cov_en| is held to sigma_lat sigma_lon, so that the matrix stays one
// of covariances.
double EastNorthCovariance(const NmeaPrecision& p) {
    if (!IsCoordValid(p.semiMajor) || !IsCoordValid(p.semiMinor) || !IsCoordValid(p.orientation)) return 0.0;
    const double t = p.orientation * std::numbers::pi / 180.0;
    const double cov = (p.semiMajor * p.semiMajor - p.semiMinor * p.semiMinor) * std::sin(t) * std::cos(t);
    const double limit = p.sigmaLat * p.sigmaLon;
    return std::clamp(cov, -limit, limit);
}

void SetPrecision(const NmeaPrecision& p, Epoch& epoch) {
    const bool plan = IsCoordValid(p.sigmaLat) && IsCoordValid(p.sigmaLon);
    if (plan) epoch.hrms = std::sqrt(p.sigmaLat * p.sigmaLat + p.sigmaLon * p.sigmaLon);
    if (IsCoordValid(p.sigmaAlt)) epoch.vrms = p.sigmaAlt;
    if (!plan || !IsCoordValid(p.sigmaAlt)) return;
    const Covariance enu{p.sigmaLon * p.sigmaLon,
                         p.sigmaLat * p.sigmaLat,
                         p.sigmaAlt * p.sigmaAlt,
                         EastNorthCovariance(p),
                         0.0,
                         0.0};
    epoch.cov = LocalFrame(epoch.lat, epoch.lon).CovToGeocentric(enu);
    epoch.hasCov = true;
}

void SetDate(const CivilDate& date, Epoch& epoch) {
    epoch.year = date.year;
    epoch.month = date.month;
    epoch.day = date.day;
}

}  // namespace

void NmeaEpochs::Enter(std::uint32_t todMs) {
    if (todMs_ && *todMs_ != todMs) Close();
    todMs_ = todMs;
}

void NmeaEpochs::AddPosition(const Epoch& position) {
    items_.emplace_back().epoch = position;
    ++positions_;
}

void NmeaEpochs::AddDate(const CivilDate& date, DateSource source) {
    if (source <= dateSource_) return;
    date_ = date;
    dateSource_ = source;
}

void NmeaEpochs::AddPrecision(const NmeaPrecision& precision) {
    if (!precision_) precision_ = precision;
}

void NmeaEpochs::AddSatellites(const NmeaSatellites& satellites) {
    for (std::size_t i = 0; i < satellites_.gps.size(); ++i) {
        satellites_.gps[i] |= satellites.gps[i];
        satellites_.glonass[i] |= satellites.glonass[i];
    }
    satellites_.any |= satellites.any;
    if (!IsCoordValid(satellites_.pdop)) satellites_.pdop = satellites.pdop;
}

void NmeaEpochs::Reject(Reason reason, std::int64_t line, std::string detail) {
    Report(ItemKind::rejected, reason, line, std::move(detail));
}

void NmeaEpochs::Ignore(Reason reason, std::int64_t line, std::string detail) {
    Report(ItemKind::ignored, reason, line, std::move(detail));
}

void NmeaEpochs::Report(ItemKind kind, Reason reason, std::int64_t line, std::string detail) {
    Item& item = items_.emplace_back();
    item.kind = kind;
    item.reason = reason;
    item.epoch.line = line;
    item.detail = std::move(detail);
    if (items_.size() == 1) Deliver();  // nothing before it waits
}

void NmeaEpochs::Finish() {
    Close();
    for (Item& item : items_) {
        if (item.kind != ItemKind::position) continue;
        item.kind = ItemKind::rejected;
        item.detail = "no sentence with a date in the whole log";
    }
    Deliver();
}

void NmeaEpochs::Close() {
    for (std::size_t i = open_; i < items_.size(); ++i) {
        if (items_[i].kind == ItemKind::position) Complete(items_[i].epoch);
    }
    Date();
    if (knownDate_) {
        Deliver();
    } else {
        open_ = items_.size();
    }
    todMs_.reset();
    positions_ = 0;
    dateSource_ = DateSource::none;
    precision_.reset();
    satellites_ = {};
}

void NmeaEpochs::Complete(Epoch& epoch) const {
    if (satellites_.any) {
        epoch.satGps = CountBits(satellites_.gps);
        epoch.satGlonass = CountBits(satellites_.glonass);
    }
    epoch.pdop = satellites_.pdop;
    if (precision_) SetPrecision(*precision_, epoch);
}

// Finds the date of the epoch that ends, and gives it to its positions.
void NmeaEpochs::Date() {
    if (!todMs_) return;
    if (dateSource_ != DateSource::none) {
        const bool first = !knownDate_;
        knownDate_ = date_;
        knownTodMs_ = *todMs_;
        if (first) DateBackwards();
    } else if (knownDate_ && positions_ > 0) {
        if (knownTodMs_ > *todMs_ + kHalfDayMs) knownDate_ = AddDays(*knownDate_, 1);
        knownTodMs_ = *todMs_;
    }
    if (!knownDate_) return;
    for (std::size_t i = open_; i < items_.size(); ++i) SetDate(*knownDate_, items_[i].epoch);
}

// Dates what waited for the first date: backwards in the file, a day earlier at every midnight.
void NmeaEpochs::DateBackwards() {
    CivilDate date = *knownDate_;
    std::uint32_t laterTodMs = knownTodMs_;
    for (std::size_t i = open_; i-- > 0;) {
        if (items_[i].kind != ItemKind::position) continue;
        Epoch& epoch = items_[i].epoch;
        if (epoch.todMs > laterTodMs + kHalfDayMs) date = AddDays(date, -1);
        laterTodMs = epoch.todMs;
        SetDate(date, epoch);
    }
}

void NmeaEpochs::Deliver() {
    for (const Item& item : items_) {
        switch (item.kind) {
            case ItemKind::position:
                sink_.Accept(item.epoch);
                break;
            case ItemKind::rejected:
                sink_.Reject(item.reason, item.epoch.line, item.detail);
                break;
            case ItemKind::ignored:
                sink_.Ignore(item.reason, item.epoch.line, item.detail);
                break;
        }
    }
    items_.clear();
    open_ = 0;
}

}  // namespace gpsbook
