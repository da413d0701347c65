// Both readers: the same result however the file is cut into pieces, and no harm from any bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "apps/gpsbook/readers/Format.h"
#include "tests/apps/gpsbook/readers/Collector.h"

namespace gpsbook {
namespace {

using test::Collector;
using test::Everything;

const std::string& PosLog() {
    static const std::string log =
        "% program   : one\r\n% antenna2  : ( 0.0 0.0 0.1010)\n% ref pos   : 40.086179918-105.206044414 "
        "1575.6355\n"
        "% (e/n/u-baseline=WGS84,Q=1:fix)\n%  GPST  e-baseline(m) n-baseline(m) u-baseline(m) Q ns age(s) "
        "ratio\n"
        "2015/12/14 17:24:57.000 -0.6970 0.1185 -2.5211 2 14 1.3662 1.5742 3.4640 -0.5676 -0.4186 -0.8436 "
        "-1.00 0.0\n"
        "2015/12/14 17:24:58.000 -0.6970 0.1185 -2.5211 0 14 1.3662 1.5742 3.4640 -0.5676 -0.4186 -0.8436 "
        "-1.00 0.0\n"
        "# comment\n\n2015/12/14 17:24:5\n%  UTC  latitude(d'\") longitude(d'\") height(m) Q ns age(s) "
        "ratio\r\n"
        "1875,149097.5,40,05,10.2,-105,12,21.7,1573.1,1,14,0.0024,0.0024,0.0069,0.0008,-0.0013,-0.0024,0.0,"
        "12.0\r\n"
        "1875,149098.5,40,05,10.2,-105,12,21.7,1573.1,1,14,0.0024,0.0024,0.0069,0.0008,-0.0013,-0.0024,0.0,"
        "12.0";
    return log;
}

struct Sample {
    const char* name;
    Format format;
    std::string log;
};

std::vector<Sample> Samples() {
    return {{"NMEA", Format::nmea, test::MixedNmeaLog()}, {"pos", Format::pos, PosLog()}};
}

std::vector<std::string> ReadInPieces(Format format, std::string_view log,
                                      const std::vector<std::size_t>& cuts) {
    Collector sink;
    const std::unique_ptr<LogReader> reader = MakeReader(format, sink);
    std::size_t from = 0;
    for (const std::size_t cut : cuts) {
        // A piece of its own, so that a reader that kept a pointer into an old piece is caught.
        const std::string piece(log.substr(from, cut - from));
        reader->Feed(piece);
        from = cut;
    }
    reader->Feed(std::string(log.substr(from)));
    reader->Finish();
    return Everything(sink);
}

TEST(Pieces, TheSamplesHaveSomethingOfEverything) {
    for (const Sample& sample : Samples()) {
        Collector sink;
        const std::unique_ptr<LogReader> reader = MakeReader(sample.format, sink);
        reader->Feed(sample.log);
        reader->Finish();
        EXPECT_GE(sink.epochs.size(), 3U) << sample.name;
        EXPECT_GE(sink.rejected.size(), 2U) << sample.name;
    }
}

TEST(Pieces, ACutAtAnyByteChangesNothing) {
    for (const Sample& sample : Samples()) {
        const auto whole = ReadInPieces(sample.format, sample.log, {});
        for (std::size_t cut = 0; cut <= sample.log.size(); ++cut) {
            ASSERT_EQ(ReadInPieces(sample.format, sample.log, {cut}), whole)
                << sample.name << " cut at " << cut;
        }
    }
}

TEST(Pieces, ByteByByteIsTheSameAsAtOnce) {
    for (const Sample& sample : Samples()) {
        std::vector<std::size_t> cuts;
        for (std::size_t i = 0; i < sample.log.size(); ++i) cuts.push_back(i);
        EXPECT_EQ(ReadInPieces(sample.format, sample.log, cuts), ReadInPieces(sample.format, sample.log, {}))
            << sample.name;
    }
}

TEST(Pieces, RandomCutsChangeNothing) {
    std::mt19937 random(20240822);
    for (const Sample& sample : Samples()) {
        const auto whole = ReadInPieces(sample.format, sample.log, {});
        std::uniform_int_distribution<std::size_t> anywhere(0, sample.log.size());
        for (int run = 0; run < 300; ++run) {
            std::vector<std::size_t> cuts(static_cast<std::size_t>(run % 20));
            for (std::size_t& cut : cuts) cut = anywhere(random);
            std::sort(cuts.begin(), cuts.end());
            ASSERT_EQ(ReadInPieces(sample.format, sample.log, cuts), whole) << sample.name << " run " << run;
        }
    }
}

// What must hold whatever the bytes are.
void ExpectSound(const Collector& c) {
    for (const Epoch& e : c.epochs) {
        ASSERT_TRUE(e.lat >= -90.0 && e.lat <= 90.0);
        ASSERT_TRUE(e.lon >= -180.0 && e.lon <= 180.0);
        ASSERT_TRUE(e.height > -1e16 && e.height < 1e16);
        ASSERT_GE(e.line, 1);
        ASSERT_NE(e.quality, 0);
        ASSERT_TRUE(e.month >= 1 && e.month <= 12 && e.day >= 1 && e.day <= 31);
        ASSERT_LT(e.todMs, 86'401'000U);
    }
    for (const auto* reports : {&c.rejected, &c.ignored}) {
        for (const test::Report& r : *reports) {
            ASSERT_LE(r.detail.size(), 80U);
            ASSERT_TRUE(std::all_of(r.detail.begin(), r.detail.end(),
                                    [](char ch) { return ch >= ' ' && ch <= '~'; }));
        }
    }
}

TEST(Damage, RandomBytesDoNoHarm) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> byte(0, 255);
    // Bytes that mean something come often, so that states change.
    const std::string special = "$$$\n\r*,,,%#GPGGA0123456789.-+/: ";
    std::uniform_int_distribution<std::size_t> pick(0, special.size() - 1);
    for (int run = 0; run < 200; ++run) {
        std::string bytes(3000, '\0');
        for (char& c : bytes) c = run % 2 == 0 ? static_cast<char>(byte(random)) : special[pick(random)];
        DetectFormat(bytes);
        for (const Format format : {Format::nmea, Format::pos}) {
            Collector sink;
            const std::unique_ptr<LogReader> reader = MakeReader(format, sink);
            reader->Feed(bytes);
            reader->Finish();
            ExpectSound(sink);
        }
    }
}

TEST(Damage, MutatedLogsDoNoHarm) {
    std::mt19937 random(2);
    std::uniform_int_distribution<int> byte(0, 255);
    for (const Sample& sample : Samples()) {
        std::uniform_int_distribution<std::size_t> anywhere(0, sample.log.size() - 200);
        for (int run = 0; run < 2000; ++run) {
            std::string log = sample.log;
            for (int change = 0; change <= run % 7; ++change) {
                const std::size_t at = anywhere(random);
                if (change % 3 == 0) log[at] = static_cast<char>(byte(random));
                if (change % 3 == 1) log.erase(at, static_cast<std::size_t>(byte(random)) % 40);
                if (change % 3 == 2) log.insert(at, log.substr(at / 2, 30));
                log.resize(std::max(log.size(), sample.log.size()), '9');
            }
            DetectFormat(log);
            Collector sink;
            const std::unique_ptr<LogReader> reader = MakeReader(sample.format, sink);
            reader->Feed(log);
            reader->Finish();
            ExpectSound(sink);
        }
    }
}

// A sentence whose checksum is right though its content is not: the fields themselves are under test.
TEST(Damage, MutatedFieldsWithRightChecksumsDoNoHarm) {
    std::mt19937 random(3);
    const std::string bodies[] = {
        "GNGGA,231408.25,4503.94632,N,00739.54368,E,5,12,0.82,257.4,M,47.2,M,0.0,0041",
        "GNRMC,231408.25,A,4503.94632,N,00739.54368,E,0.013,,110425,,,R", "GNZDA,231408.25,11,04,2025,00,00",
        "GNGST,231408.25,32,0.19,0.12,97,0.049,0.078,0.088",
        "GNGSA,A,3,30,11,09,07,05,13,20,,,,,,1.42,0.82,1.17,1"};
    const std::string characters = "0123456789.,,,--eENSWx";
    std::uniform_int_distribution<std::size_t> pick(0, characters.size() - 1);
    for (int run = 0; run < 300; ++run) {
        std::string log;
        for (int i = 0; i < 20; ++i) {
            std::string body = bodies[static_cast<std::size_t>(i) % std::size(bodies)];
            std::uniform_int_distribution<std::size_t> anywhere(6, body.size() - 1);
            if (run % 3 != 0) body[anywhere(random)] = characters[pick(random)];
            if (run % 3 == 2) body.erase(anywhere(random));
            log += test::Sentence(body);
        }
        Collector sink;
        const std::unique_ptr<LogReader> reader = MakeReader(Format::nmea, sink);
        reader->Feed(log);
        reader->Finish();
        ExpectSound(sink);
        ASSERT_EQ(sink.epochs.size() + sink.rejected.size(), 4U)
            << "every GGA is accepted once or rejected once";
    }
}

TEST(Damage, EveryPositionIsAcceptedOnceOrRejectedOnce) {
    const std::string log = test::MixedNmeaLog();
    Collector sink;
    const std::unique_ptr<LogReader> reader = MakeReader(Format::nmea, sink);
    reader->Feed(log);
    reader->Finish();
    // Nine with an address at a '$' outside comments: seven whole ones with a fix, one cut, one without a
    // fix.
    EXPECT_EQ(sink.epochs.size(), 7U);
    EXPECT_EQ(sink.Rejected(Reason::cutLine), 1U);
    EXPECT_EQ(sink.Rejected(Reason::noFix), 1U);
    EXPECT_EQ(sink.rejected.size(), 2U);
    EXPECT_EQ(sink.ignored.size(), 2U)
        << "an RMC with a wrong checksum, a ZDA with a date that does not exist";
}

}  // namespace
}  // namespace gpsbook
