// The GPS section, written and read, against packing the same bytes into and out of one flat buffer.
#include <cstdlib>
#include <cstring>
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

// Where the kernel's page cache would be: bytes are copied to memory that is there already.
class CopySink : public StreamSink {
public:
    explicit CopySink(std::vector<unsigned char>& to) : to_(to) {}
    int Write(const void* bytes, std::size_t size) override {
        if (at_ + size > to_.size()) return 28;  // no space
        std::memcpy(to_.data() + at_, bytes, size);
        at_ += size;
        return 0;
    }
    std::size_t Size() const { return at_; }

private:
    std::vector<unsigned char>& to_;
    std::size_t at_ = 0;
};

template <class T>
unsigned char* Put(unsigned char* at, const T& value) {
    std::memcpy(at, &value, sizeof value);
    return at + sizeof value;
}

unsigned char* Put(unsigned char* at, const std::string& text) {
    at = Put(at, static_cast<std::int32_t>(text.size()));
    std::memcpy(at, text.data(), text.size());
    return at + text.size();
}

template <class T>
const unsigned char* Get(const unsigned char* at, T& value) {
    std::memcpy(&value, at, sizeof value);
    return at + sizeof value;
}

const unsigned char* Get(const unsigned char* at, std::string& text) {
    std::int32_t length = 0;
    at = Get(at, length);
    text.assign(reinterpret_cast<const char*>(at), static_cast<std::size_t>(length));
    return at + length;
}

// The bytes of a point record of the newest version, field by field.
unsigned char* Pack(const PlainPoint& p, unsigned char* at) {
    at = Put(at, p.name);
    at = Put(at, p.secScri);
    at = Put(at, p.code);
    at = Put(at, p.validity);
    at = Put(at, p.x);
    at = Put(at, p.y);
    at = Put(at, p.z);
    *at++ = 0;
    at = Put(at, p.lat);
    at = Put(at, p.lon);
    at = Put(at, p.h);
    at = Put(at, p.antenna);
    at = Put(at, p.quality);
    at = Put(at, static_cast<short>(p.primary));
    at = Put(at, static_cast<short>(p.secondary));
    at = Put(at, p.year);
    at = Put(at, p.month);
    at = Put(at, p.day);
    at = Put(at, p.tod);
    at = Put(at, p.hrms);
    at = Put(at, p.vrms);
    at = Put(at, p.gps);
    at = Put(at, p.glonass);
    at = Put(at, p.cov);
    at = Put(at, p.pdop);
    at = Put(at, p.gdop);
    at = Put(at, p.base);
    at = Put(at, p.spare);
    at = Put(at, p.id);
    at = Put(at, p.mask);
    at = Put(at, p.since);
    at = Put(at, p.ticket);
    return at;
}

const unsigned char* Unpack(PlainPoint& p, const unsigned char* at) {
    short primary = 0, secondary = 0;
    at = Get(at, p.name);
    at = Get(at, p.secScri);
    at = Get(at, p.code);
    at = Get(at, p.validity);
    at = Get(at, p.x);
    at = Get(at, p.y);
    at = Get(at, p.z);
    ++at;
    at = Get(at, p.lat);
    at = Get(at, p.lon);
    at = Get(at, p.h);
    at = Get(at, p.antenna);
    at = Get(at, p.quality);
    at = Get(at, primary);
    at = Get(at, secondary);
    at = Get(at, p.year);
    at = Get(at, p.month);
    at = Get(at, p.day);
    at = Get(at, p.tod);
    at = Get(at, p.hrms);
    at = Get(at, p.vrms);
    at = Get(at, p.gps);
    at = Get(at, p.glonass);
    at = Get(at, p.cov);
    at = Get(at, p.pdop);
    at = Get(at, p.gdop);
    at = Get(at, p.base);
    at = Get(at, p.spare);
    at = Get(at, p.id);
    at = Get(at, p.mask);
    at = Get(at, p.since);
    at = Get(at, p.ticket);
    p.primary = primary > 0;
    p.secondary = secondary > 0;
    return at;
}

struct Plain {
    std::vector<std::unique_ptr<PlainPoint>> points;
    std::vector<unsigned char> buffer;
};

std::shared_ptr<Plain> MakePacked(std::size_t n) {
    auto plain = std::make_shared<Plain>();
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < n; ++i) {
        plain->points.push_back(MakePlainPoint(i));
        bytes += kPointBytes + plain->points.back()->name.size() + plain->points.back()->secScri.size();
    }
    plain->buffer.resize(bytes);
    unsigned char* at = plain->buffer.data();
    for (const auto& p : plain->points) at = Pack(*p, at);
    return plain;
}

Work WriteSection() {
    return {"section.write.library", [](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                auto to = std::make_shared<std::vector<unsigned char>>(SectionOf(book->Get()).size());
                return Run{[book, to] {
                               CopySink sink(*to);
                               ofpstream out(sink, kVersion);
                               book->Get().SalvaInFile(out, kVersion, "", nullptr, nullptr);
                               if (!out.Close() || sink.Size() != to->size()) std::abort();
                           },
                           {}};
            }};
}

Work WriteFlat() {
    return {"section.write.flat", [](std::size_t n) -> Run {
                auto plain = MakePacked(n);
                return Run{[plain] {
                               unsigned char* at = plain->buffer.data();
                               for (const auto& p : plain->points) at = Pack(*p, at);
                               Keep(at);
                           },
                           {}};
            }};
}

Work ReadSection() {
    return {"section.read.library", [](std::size_t n) -> Run {
                auto bytes = std::make_shared<std::string>(SectionOf(Book(n).Get()));
                return Run{[bytes, n] {
                               CLibMap map;
                               CLibGps book(nullptr, nullptr, nullptr, &map, 0);
                               CDrawingsMapper drawings;
                               ifpstream in(bytes->data(), bytes->size(), kVersion);
                               book.LeggeDaFile(in, true, true, kVersion, "", drawings);
                               if (!in.IsOk() || static_cast<std::size_t>(book.GetPunArSize(0)) != n)
                                   std::abort();
                           },
                           {}};
            }};
}

Work ReadFlat() {
    return {"section.read.flat", [](std::size_t n) -> Run {
                auto plain = MakePacked(n);
                plain->points.clear();
                return Run{[plain, n] {
                               std::vector<std::unique_ptr<PlainPoint>> points;
                               points.reserve(n);
                               const unsigned char* at = plain->buffer.data();
                               for (std::size_t i = 0; i < n; ++i) {
                                   points.push_back(std::make_unique<PlainPoint>());
                                   at = Unpack(*points.back(), at);
                               }
                               Keep(at);
                           },
                           {}};
            }};
}

}  // namespace

std::string SectionOf(CLibGps& book) {
    ofpstream out(kVersion);
    book.SalvaInFile(out, kVersion, "", nullptr, nullptr);
    return std::string(out.GetBytes());
}

std::vector<Ratio> SectionRatios() {
    const std::vector<std::size_t> counts{10'000, 100'000, 1'000'000};
    const auto bound = [](std::size_t n) {
        return n >= 1'000'000 ? 1.5 : std::numeric_limits<double>::infinity();
    };
    return {{"section.write", WriteSection(), WriteFlat(), counts, bound, 0, 1.2},
            {"section.read", ReadSection(), ReadFlat(), counts, bound, 0, 1.2}};
}

}  // namespace bench
