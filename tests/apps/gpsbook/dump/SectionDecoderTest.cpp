// Sections written by hand from the tables of the layout, taken apart.
#include "apps/gpsbook/dump/SectionDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <chrono>

#include "tests/apps/gpsbook/dump/MemorySource.h"

namespace gpsbook::test {
namespace {

/// Puts values one after another.
class Bytes {
public:
    Bytes& U8(unsigned v) { return Number(v, 1); }
    Bytes& I16(int v) { return Number(static_cast<std::uint64_t>(v), 2); }
    Bytes& I32(std::int64_t v) { return Number(static_cast<std::uint64_t>(v), 4); }
    Bytes& I64(std::int64_t v) { return Number(static_cast<std::uint64_t>(v), 8); }
    Bytes& F32(float v) { return Number(std::bit_cast<std::uint32_t>(v), 4); }
    Bytes& F64(double v) { return Number(std::bit_cast<std::uint64_t>(v), 8); }
    Bytes& Text(const std::string& v) {
        I32(static_cast<std::int64_t>(v.size()));
        bytes_ += v;
        return *this;
    }
    Bytes& Doubles(int n, double first) {
        for (int i = 0; i < n; ++i) F64(first + i);
        return *this;
    }
    Bytes& Put(const Bytes& other) {
        bytes_ += other.bytes_;
        return *this;
    }
    Bytes& Sized(const Bytes& other) {
        I32(static_cast<std::int64_t>(other.bytes_.size()));
        return Put(other);
    }
    const std::string& Get() const { return bytes_; }
    std::int64_t Size() const { return static_cast<std::int64_t>(bytes_.size()); }

private:
    Bytes& Number(std::uint64_t v, int bytes) {
        for (int i = 0; i < bytes; ++i) bytes_ += static_cast<char>(v >> (8 * i) & 0xFF);
        return *this;
    }
    std::string bytes_;
};

Bytes Entity(const std::string& name, bool more) {
    Bytes b;
    b.Text(name).Text("code").I32(7).I32(3).Doubles(3, 100).U8(more ? 1 : 0);
    if (more) b.Text("third").Text("notes").Text("******").Text("").I32(-1).I32(0);
    return b;
}

Bytes Datum() { return Bytes().Text("D").U8(0).Doubles(7, 1).Doubles(2, 45); }

Bytes Projection() { return Bytes().I32(6).F64(32633).Doubles(4, 0).Text(""); }

Bytes Conversion(bool selected) {
    Bytes b;
    for (int i = 0; i < 10; ++i) b.I32(i);
    b.U8(1).F64(6378137).F64(298.25).I32(0).Put(Datum()).Put(Projection()).Doubles(6, 0);
    b.I32(0).Doubles(3, 0).Put(Projection()).U8(selected ? 1 : 0);
    if (selected) b.Put(Datum());
    return Bytes().I32(1).Sized(b);
}

Bytes Cloud() { return Bytes().I64(9).I32(1).I32(0).I64(4); }

Bytes MapLibrary() {
    Bytes b;
    b.I32(0).Put(Datum()).I32(1).I32(0).I32(2).I32(1).Put(Datum());
    return Bytes().I32(1).Sized(b);
}

Bytes DisplayEntry(const std::string& name, int extra) {
    Bytes b;
    b.Text(name);
    for (int i = 0; i < 10; ++i) b.I16(i);
    for (int i = 0; i < extra; ++i) b.U8(0xEE);
    return Bytes().Sized(b);
}

Bytes Display(short version) {
    Bytes b;
    if (version >= 742) b.Text("L").I32(2).I16(1);
    b.I32(2).Put(DisplayEntry("points", 0)).Put(DisplayEntry("bases", 2));
    if (version >= 742) b.I32(0);
    return Bytes().I32(version >= 742 ? 2 : 1).Sized(b);
}

Bytes Group(short v) {
    Bytes b;
    b.Text("Quay").Text("op").Text("").Text("2024-05-01");
    if (v >= 1004) b.I64(77);
    if (v >= 742) b.Put(Entity("Quay", false)).Text("place").Doubles(3, 1.7e200).Doubles(4, 45);
    if (v >= 750) b.F64(1).F64(1).U8(2).U8(3);
    b.I16(1).I32(0).Put(Conversion(v % 2 == 0));
    if (v >= 1106) b.I32(5);
    if (v >= 1311) b.I32(12);
    return b.Put(Cloud());
}

Bytes Point(short v) {
    Bytes b = Entity("P1", true);
    if (v < 1003) b.Doubles(3, 4'000'000);
    b.F64(45.5).F64(13.25).F64(62).F64(2).I32(4).I16(1).I16(0);
    if (v >= 742) {
        b.I16(2024).U8(5).U8(1).I32(28'800'000);
        if (v >= 743)
            b.F64(0.25).F64(0.5);
        else
            b.F32(0.25F).F32(0.5F);
        b.U8(8).U8(6);
        for (int i = 0; i < 10; ++i) b.F32(static_cast<float>(i));
    }
    if (v >= 743) b.F64(1.5).F64(2.5);
    if (v >= 881) b.Doubles(3, 45);
    if (v >= 1106) b.I32(6);
    return b.Put(Cloud());
}

Bytes ObservationFile(short v) {
    Bytes b;
    b.I32(1);
    if (v >= 1300) b.I32(1).I32(0);
    b.Text("t1").Text("/a.tps").I32(-1);
    if (v >= 1003)
        b.I32(1).Text("t2").I32(0).F64(3.5);
    else
        b.F64(3.5).F64(1.7e200);
    return b.Doubles(3, 1).Doubles(3, 2).F64(0);
}

Bytes PostProcessing(short v) {
    Bytes b;
    b.I16(15).I16(10).I16(6).I16(3).F64(0.001).F64(0.95).I32(0).I32(1).F64(0).I32(20).F64(50).I32(1013).I32(
        0);
    b.I16(50).F64(2).F64(0.5).I16(0).I32(1).I16(1).I32(1).I32(1).I16(0).I32(0).I32(1).I32(1).I32(1).I32(1);
    b.I32(2).Put(ObservationFile(v)).Put(ObservationFile(v)).I32(1).Put(ObservationFile(v));
    return b;
}

/// A section with two groups, the second of which has a point.
Bytes Section(short v) {
    Bytes b;
    if (v < 1004)
        b.Put(MapLibrary());
    else
        b.I64(55);
    b.I16(1).I32(1).I32(0).I32(1).Put(Display(v)).I32(2);
    b.Put(Group(v)).I32(0).Put(Group(v)).I32(1).Put(Point(v));
    if (v >= 1002) b.U8(1).Put(PostProcessing(v));
    return b;
}

constexpr short kThresholds[] = {720, 742, 743, 750, 881, 903, 1002, 1003, 1004, 1106, 1300, 1311, 1400};

std::vector<short> Versions() {
    std::vector<short> all;
    for (const short t : kThresholds)
        for (const int d : {-1, 0, 1}) all.push_back(static_cast<short>(t + d));
    return all;
}

TEST(SectionDecoder, SectionsOfEveryLayoutEndWithTheirLastByte) {
    for (const short version : Versions()) {
        const Decoded decoded = Decode(Section(version).Get(), version);
        EXPECT_TRUE(decoded.whole) << version << ": byte " << decoded.damage.offset << ": "
                                   << decoded.damage.what;
        EXPECT_EQ(decoded.groups, 2) << version;
        EXPECT_EQ(decoded.points, 1) << version;
    }
}

TEST(SectionDecoder, FieldsHaveTheirValuesAndPlaces) {
    const Decoded decoded = Decode(Section(1400).Get(), 1400, 1000);
    ASSERT_TRUE(decoded.whole) << decoded.damage.what;
    const auto& sink = decoded.sink;
    const KeptField& first = sink.fields.front();
    EXPECT_EQ(first.offset, 1000);
    EXPECT_EQ(first.record + "|" + first.field + "|" + first.type, "book|target drawing|drawing");
    EXPECT_EQ(std::get<std::int64_t>(first.value), 55);
    const std::string point = "group 1, point 0";
    const std::pair<const char*, double> reals[] = {
        {"latitude", 45.5},       {"longitude", 13.25},  {"height", 62},       {"antenna", 2},
        {"horizontal RMS", 0.25}, {"vertical RMS", 0.5}, {"covariance zt", 9}, {"GDOP", 2.5},
        {"base height", 47},      {"entity.north", 101}};
    for (const auto& [name, value] : reals) {
        const KeptField* field = sink.Find(point, name);
        ASSERT_NE(field, nullptr) << name;
        EXPECT_EQ(std::get<double>(field->value), value) << name;
    }
    const std::pair<const char*, std::int64_t> numbers[] = {
        {"quality", 4},  {"primary duplicate", 1},    {"year", 2024},           {"month", 5},
        {"day", 1},      {"time of day", 28'800'000}, {"GPS satellites", 8},    {"reserved number", 6},
        {"cloud.id", 9}, {"cloud.ticket", 4},         {"entity.descriptor", -1}};
    for (const auto& [name, value] : numbers) {
        const KeptField* field = sink.Find(point, name);
        ASSERT_NE(field, nullptr) << name;
        EXPECT_EQ(std::get<std::int64_t>(field->value), value) << name;
    }
    EXPECT_EQ(std::get<std::string>(sink.Find(point, "entity.third text")->value), "third");
    EXPECT_EQ(std::get<std::string>(sink.Find("group 0", "place")->value), "place");
    EXPECT_EQ(std::get<std::int64_t>(sink.Find("group 0", "creator device")->value), 12);
    EXPECT_EQ(std::get<std::string>(sink.Find("post-processing, rover file 1", "sFile")->value), "/a.tps");
    EXPECT_NE(sink.Find("group 0", "conversion.selected datum.name"), nullptr);
}

TEST(SectionDecoder, OffsetsAreThoseOfTheFile) {
    const short version = 1400;
    const Decoded decoded = Decode(Section(version).Get(), version, 64);
    // Behind the drawing, the options and the display list stand the number of groups and the first group.
    const std::int64_t count = 64 + 8 + 14 + Display(version).Size();
    EXPECT_EQ(decoded.sink.Find("book", "groups")->offset, count);
    EXPECT_EQ(decoded.sink.Find("group 0", "name of the group")->offset, count + 4);
    EXPECT_EQ(decoded.sink.Find("group 1", "name of the group")->offset,
              count + 4 + Group(version).Size() + 4);
}

TEST(SectionDecoder, FieldsThatAVersionDoesNotHaveAreNotFound) {
    struct Case {
        const char* record;
        const char* field;
        short from;
    };
    const Case cases[] = {{"group 0", "place", 742},
                          {"group 0", "factor A", 750},
                          {"group 0", "target drawing", 1004},
                          {"group 0", "reserved number", 1106},
                          {"group 0", "creator device", 1311},
                          {"group 1, point 0", "year", 742},
                          {"group 1, point 0", "PDOP", 743},
                          {"group 1, point 0", "base latitude", 881},
                          {"group 1, point 0", "reserved number", 1106},
                          {"book", "post-processing options follow", 1002},
                          {"post-processing, rover file 0", "sText2", 1003},
                          {"post-processing, rover file 0", "bFlag3", 1300}};
    for (const short version : Versions()) {
        const Decoded decoded = Decode(Section(version).Get(), version);
        for (const Case& c : cases)
            EXPECT_EQ(decoded.sink.Find(c.record, c.field) != nullptr, version >= c.from)
                << c.record << ' ' << c.field << ' ' << version;
        EXPECT_EQ(decoded.sink.Find("group 1, point 0", "geocentric X") != nullptr, version < 1003)
            << version;
        EXPECT_EQ(decoded.sink.Find("book", "map library.lists") != nullptr, version < 1004) << version;
    }
}

TEST(SectionDecoder, RmsOfOldPointsIsSinglePrecision) {
    const Decoded decoded = Decode(Section(742).Get(), 742);
    const KeptField* rms = decoded.sink.Find("group 1, point 0", "horizontal RMS");
    ASSERT_NE(rms, nullptr);
    EXPECT_EQ(rms->type, "f32");
    EXPECT_EQ(std::get<double>(rms->value), 0.25);
}

TEST(SectionDecoder, WhatALaterProgramAppendedIsPassedOver) {
    const Decoded decoded = Decode(Section(1400).Get(), 1400);
    const KeptField* unknown = decoded.sink.Find("book", "display options.entry 1.unknown");
    ASSERT_NE(unknown, nullptr);
    EXPECT_EQ(unknown->type, "bytes");
    EXPECT_EQ(std::get<std::int64_t>(unknown->value), 2);
}

TEST(SectionDecoder, BytesBehindTheLastRecordAreDamage) {
    std::string bytes = Section(1400).Get();
    const auto size = static_cast<std::int64_t>(bytes.size());
    bytes += "xy";
    const Decoded decoded = Decode(bytes, 1400);
    EXPECT_FALSE(decoded.whole);
    EXPECT_EQ(decoded.damage.offset, size);
    EXPECT_EQ(decoded.damage.what, "2 bytes follow the last record");
}

TEST(SectionDecoder, EveryCutSectionIsDamageBehindTheFieldsThatAreThere) {
    for (const short version : {short{741}, short{742}, short{903}, short{1400}}) {
        const std::string bytes = Section(version).Get();
        const Decoded all = Decode(bytes, version);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            const Decoded decoded = Decode(bytes.substr(0, size), version);
            EXPECT_FALSE(decoded.whole) << version << ' ' << size;
            ASSERT_LE(decoded.damage.offset, static_cast<std::int64_t>(size)) << version;
            ASSERT_LE(decoded.sink.fields.size(), all.sink.fields.size());
            ASSERT_TRUE(std::equal(decoded.sink.fields.begin(), decoded.sink.fields.end(),
                                   all.sink.fields.begin(),
                                   [](const KeptField& a, const KeptField& b) {
                                       return a.offset == b.offset && a.field == b.field;
                                   }))
                << version << ' ' << size;
        }
    }
}

class LastOffset : public StoredFieldSink {
public:
    void Take(const StoredField& field) override { offset = field.offset; }
    std::int64_t offset = 0;
};

TEST(SectionDecoder, NoFlippedBitMakesItReadBeyondTheEnd) {
    const std::string bytes = Section(1400).Get();
    const auto size = static_cast<std::int64_t>(bytes.size());
    int whole = 0, damaged = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        for (int bit = 0; bit < 8; ++bit) {
            std::string flipped = bytes;
            flipped[i] = static_cast<char>(flipped[i] ^ (1 << bit));
            MemorySource source(std::move(flipped));
            SectionBytes section(source, 0, size);
            LastOffset sink;
            try {
                SectionDecoder(section, 1400, sink).Run();
                ++whole;
            } catch (const SectionDamage& damage) {
                ++damaged;
                ASSERT_LE(damage.offset, size) << i << ' ' << bit;
            }
            ASSERT_LT(sink.offset, size) << i << ' ' << bit;
        }
    EXPECT_GT(whole, 0) << "a value that is another one is no damage of the layout";
    EXPECT_GT(damaged, 0);
}

TEST(SectionDecoder, AbsurdCountEndsAtOnce) {
    Bytes section;
    section.I64(0).I16(0).I32(1).I32(0).I32(0).Put(Display(1400)).I32(0x7FFFFFFF);
    const auto begin = std::chrono::steady_clock::now();
    const Decoded decoded = Decode(section.Get(), 1400);
    EXPECT_FALSE(decoded.whole);
    EXPECT_EQ(decoded.damage.what, "4 bytes are needed, 0 are left");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

TEST(SectionDecoder, NegativeLengthOfAnEnvelopeIsDamage) {
    Bytes section;
    section.I64(0).I16(0).I32(1).I32(0).I32(0).I32(2).I32(-1);
    const Decoded decoded = Decode(section.Get(), 1400);
    EXPECT_EQ(decoded.damage.offset, section.Size() - 4);
    EXPECT_EQ(decoded.damage.what, "a length of -1 bytes");
}

}  // namespace
}  // namespace gpsbook::test
