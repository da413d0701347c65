// Single sentences: what makes a position, and what makes it unusable.
#include "apps/gpsbook/readers/NmeaReader.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/apps/gpsbook/readers/Collector.h"

namespace gpsbook {
namespace {

using test::Collector;
using test::Gga;
using test::Rmc;
using test::Sentence;

Collector Read(const std::string& log) {
    Collector sink;
    NmeaReader reader(sink);
    reader.Feed(log);
    reader.Finish();
    return sink;
}

const std::string kDate = Rmc("120000.00", "110425");

TEST(NmeaReader, ReadsEveryFieldOfAPosition) {
    const Collector c =
        Read("\n" + Sentence("GNGGA,231408.25,4503.94632,N,00739.54368,E,5,12,0.82,257.4,M,47.2,M,0.0,0041") +
             Rmc("231408.25", "110425"));
    ASSERT_EQ(c.epochs.size(), 1U);
    const Epoch& e = c.epochs[0];
    EXPECT_EQ(e.line, 2);
    EXPECT_EQ(e.year, 2025);
    EXPECT_EQ(e.month, 4);
    EXPECT_EQ(e.day, 11);
    EXPECT_EQ(e.todMs, ((23 * 60 + 14) * 60 + 8) * 1000 + 250U);
    EXPECT_DOUBLE_EQ(e.lat, 45 + 3.94632 / 60);
    EXPECT_DOUBLE_EQ(e.lon, 7 + 39.54368 / 60);
    EXPECT_DOUBLE_EQ(e.height, 257.4 + 47.2);
    EXPECT_EQ(e.quality, 5);
    EXPECT_EQ(e.grade, Grade::floating);
    EXPECT_EQ(e.satGps, 12) << "without GSA the total stands for GPS";
    EXPECT_EQ(e.satGlonass, 0);
    EXPECT_FALSE(IsCoordValid(e.pdop));
    EXPECT_FALSE(IsCoordValid(e.hrms));
    EXPECT_FALSE(IsCoordValid(e.vrms));
    EXPECT_FALSE(e.hasCov);
    EXPECT_TRUE(c.rejected.empty());
    EXPECT_TRUE(c.ignored.empty());
}

TEST(NmeaReader, SouthAndWestAreNegative) {
    const Collector c = Read(kDate + Sentence("GPGGA,120000.00,3354.5,S,07036.75,W,1,9,,500.0,M,-29.5,M,,"));
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_DOUBLE_EQ(c.epochs[0].lat, -(33 + 54.5 / 60));
    EXPECT_DOUBLE_EQ(c.epochs[0].lon, -(70 + 36.75 / 60));
    EXPECT_DOUBLE_EQ(c.epochs[0].height, 470.5);
}

TEST(NmeaReader, EdgesOfTheEarthAreAccepted) {
    const Collector c = Read(kDate + Sentence("GPGGA,120000.00,9000.0,S,18000.0,W,1,9,,0.0,M,0.0,M,,") +
                             Sentence("GPGGA,120000.00,9000.0,N,18000.0,E,1,9,,0.0,M,0.0,M,,"));
    EXPECT_EQ(c.epochs.size(), 2U);
}

TEST(NmeaReader, AnyTalkerGivesPositions) {
    for (const char* talker : {"GP", "GN", "GL", "GA", "GB", "BD", "QZ", "GQ", "II"}) {
        EXPECT_EQ(Read(kDate + Gga("120000.00", talker)).epochs.size(), 1U) << talker;
    }
}

TEST(NmeaReader, QualityDecidesTheGrade) {
    const std::pair<int, Grade> rows[] = {{1, Grade::single},    {2, Grade::dgps},      {3, Grade::dgps},
                                          {4, Grade::fixed},     {5, Grade::floating},  {6, Grade::estimated},
                                          {7, Grade::estimated}, {8, Grade::estimated}, {9, Grade::dgps}};
    for (const auto& [quality, grade] : rows) {
        const Collector c =
            Read(kDate + Sentence(fmt::format("GPGGA,120000.00,4503.9,N,00739.5,E,{},9,1.0,257.4,M,47.2,M,,",
                                              quality)));
        ASSERT_EQ(c.epochs.size(), 1U) << quality;
        EXPECT_EQ(c.epochs[0].quality, quality);
        EXPECT_EQ(c.epochs[0].grade, grade) << quality;
    }
}

TEST(NmeaReader, UnusablePositionsAreRejectedOnceWithTheirReason) {
    struct Row {
        const char* name;
        std::string line;
        Reason reason;
    };
    const std::string good = "GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,";
    const auto body = [](const char* text) { return Sentence(text); };
    const Row rows[] = {
        {"no checksum", "$" + good + "\r\n", Reason::missingChecksum},
        {"address only", "$GPGGA\r\n", Reason::cutLine},
        {"cut before the line end", "$GPGGA,120000.00,4503.9,N,007\r\n", Reason::cutLine},
        {"cut in its last field but one", "$" + good.substr(0, good.rfind(',')) + "\r\n", Reason::cutLine},
        {"wrong checksum", "$" + good + "*00\r\n", Reason::badChecksum},
        {"one digit of checksum", "$" + good + "*5\r\n", Reason::badChecksum},
        {"no digit of checksum", "$" + good + "*\r\n", Reason::badChecksum},
        {"no hex digit", "$" + good + "*3)\r\n", Reason::badChecksum},
        {"text behind the checksum", Sentence(good, "") + "0,12\r\n", Reason::badChecksum},
        {"second checksum", Sentence(good, "") + "*4E\r\n", Reason::badChecksum},
        {"another sentence inside", "$GPGGA,120000.00,45$GPTXT,x*00\r\n", Reason::cutLine},
        {"another sentence inside the checksum", "$" + good + "*5$GPTXT,x*00\r\n", Reason::cutLine},
        {"longer than a sentence", "$GPGGA," + std::string(600, '1') + "\r\n", Reason::cutLine},
        {"too few fields", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M"), Reason::cutLine},
        {"no fields", body("GPGGA"), Reason::cutLine},
        {"empty quality", body("GPGGA,120000.00,4503.9,N,00739.5,E,,9,1.0,257.4,M,47.2,M,,"),
         Reason::emptyField},
        {"no fix", body("GPGGA,120000.00,4503.9,N,00739.5,E,0,9,1.0,257.4,M,47.2,M,,"), Reason::noFix},
        {"no fix and nothing else", body("GPGGA,,,,,,0,,,,,,,,"), Reason::noFix},
        {"empty time", body("GPGGA,,4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::emptyField},
        {"empty latitude", body("GPGGA,120000.00,,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::emptyField},
        {"empty N/S", body("GPGGA,120000.00,4503.9,,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::emptyField},
        {"empty longitude", body("GPGGA,120000.00,4503.9,N,,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::emptyField},
        {"empty E/W", body("GPGGA,120000.00,4503.9,N,00739.5,,4,9,1.0,257.4,M,47.2,M,,"), Reason::emptyField},
        {"empty altitude", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,,M,47.2,M,,"),
         Reason::emptyField},
        {"altitude and separation empty", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,,,,,,"),
         Reason::emptyField},
        {"no separation", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M,,M,,"),
         Reason::noSeparation},
        {"letter as quality", body("GPGGA,120000.00,4503.9,N,00739.5,E,A,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"letters in latitude", body("GPGGA,120000.00,45x3.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"latitude nan", body("GPGGA,120000.00,nan,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::badNumber},
        {"sign in latitude", body("GPGGA,120000.00,-4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"sign in minutes", body("GPGGA,120000.00,45-3.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"60 minutes of latitude", body("GPGGA,120000.00,4560.0,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"60 minutes of longitude", body("GPGGA,120000.00,4503.9,N,00760.0,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"unknown hemisphere", body("GPGGA,120000.00,4503.9,E,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"longitude north", body("GPGGA,120000.00,4503.9,N,00739.5,N,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"altitude inf", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,inf,M,47.2,M,,"),
         Reason::badNumber},
        {"altitude of no measurement", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,1e200,M,47.2,M,,"),
         Reason::badNumber},
        {"altitude in feet", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,F,47.2,M,,"),
         Reason::badNumber},
        {"separation with two points", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M,4.7.2,M,,"),
         Reason::badNumber},
        {"letters as satellites", body("GPGGA,120000.00,4503.9,N,00739.5,E,4,xx,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"letters in time", body("GPGGA,12o000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::badNumber},
        {"short time", body("GPGGA,1200,4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::badNumber},
        {"hour 24", body("GPGGA,240000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::badTime},
        {"minute 60", body("GPGGA,126000.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::badTime},
        {"second 61", body("GPGGA,120061.00,4503.9,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"), Reason::badTime},
        {"beyond the pole", body("GPGGA,120000.00,9000.0001,N,00739.5,E,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::latitudeRange},
        {"beyond the date line", body("GPGGA,120000.00,4503.9,N,18000.0001,W,4,9,1.0,257.4,M,47.2,M,,"),
         Reason::longitudeRange},
    };
    for (const Row& row : rows) {
        const Collector c = Read(kDate + "\n" + row.line + Rmc("120001.00", "110425"));
        EXPECT_TRUE(c.epochs.empty()) << row.name;
        ASSERT_EQ(c.rejected.size(), 1U) << row.name;
        EXPECT_EQ(ReasonText(c.rejected[0].reason), ReasonText(row.reason)) << row.name;
        EXPECT_EQ(c.rejected[0].line, 3) << row.name;
        EXPECT_NE(c.rejected[0].detail.find("$GPGGA"), std::string::npos) << row.name;
        EXPECT_LE(c.rejected[0].detail.size(), 80U) << row.name;
        EXPECT_TRUE(c.ignored.empty()) << row.name;
    }
}

TEST(NmeaReader, TheFirstFailingCheckGivesTheReason) {
    struct Row {
        const char* body;
        Reason reason;
    };
    const Row rows[] = {
        {"GPGGA,xx,,N,,E,,9,1.0", Reason::cutLine},
        {"GPGGA,xx,9x,N,,E,,9,1.0,1,M,,M", Reason::emptyField},
        {"GPGGA,xx,9x,N,,E,0,9,1.0,1,M,,M", Reason::noFix},
        {"GPGGA,xx,9x,N,,E,1,9,1.0,1,M,,M", Reason::emptyField},
        {"GPGGA,120000,9100.0,N,1x,E,1,9,1.0,1,M,,M", Reason::badNumber},
        {"GPGGA,120000,9100.0,N,18100.0,E,1,9,1.0,1,M,,M", Reason::latitudeRange},
        {"GPGGA,120000,4500.0,N,18100.0,E,1,9,1.0,1,M,,M", Reason::longitudeRange},
    };
    for (const Row& row : rows) {
        const Collector c = Read(Sentence(row.body));  // no date either
        ASSERT_EQ(c.rejected.size(), 1U) << row.body;
        EXPECT_EQ(ReasonText(c.rejected[0].reason), ReasonText(row.reason)) << row.body;
    }
    const Collector c = Read("$GPGGA,,,*00\r\n");
    ASSERT_EQ(c.rejected.size(), 1U);
    EXPECT_EQ(c.rejected[0].reason, Reason::badChecksum) << "before its missing fields";
}

TEST(NmeaReader, TheFieldToBlameIsNamed) {
    const Collector c =
        Read(kDate + Sentence("GPGGA,120000.00,4503.9,N,0073\x01,E,4,9,1.0,257.4,M,47.2,M,,"));
    ASSERT_EQ(c.rejected.size(), 1U);
    EXPECT_EQ(c.rejected[0].detail,
              "longitude: $GPGGA,120000.00,4503.9,N,0073?,E,4,9,1.0,257.4,M,47.2,M,,*77");
}

TEST(NmeaReader, ReadingGoesOnAtADollarInsideASentence) {
    const Collector c = Read(kDate + "$GPGGA,120000" + Gga("120001.00"));
    ASSERT_EQ(c.rejected.size(), 1U);
    EXPECT_EQ(c.rejected[0].reason, Reason::cutLine);
    EXPECT_EQ(c.rejected[0].line, 2);
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_EQ(c.epochs[0].line, 2);
}

TEST(NmeaReader, TwoWholeSentencesOnOneLineBothCount) {
    const Collector c = Read(Sentence("GPRMC,120000.00,A,,,,,,,110425,,,A", "") + Gga("120000.00"));
    EXPECT_EQ(c.epochs.size(), 1U);
    EXPECT_TRUE(c.ignored.empty());
}

TEST(NmeaReader, BinaryBytesBetweenSentencesAreSkipped) {
    using namespace std::string_literals;
    const std::string binary = "\xB5\x62\x0A$\x01\xD3$GP\0\n#\x07$\xFFz"s;
    const Collector c = Read(binary + kDate + binary + Gga("120000.00") + binary + Gga("120001.00") + binary);
    EXPECT_EQ(c.epochs.size(), 2U);
    EXPECT_TRUE(c.rejected.empty());
    EXPECT_TRUE(c.ignored.empty());
}

TEST(NmeaReader, BinaryBytesMayFollowTheChecksum) {
    using namespace std::string_literals;
    std::string gga = Gga("120000.00");
    gga.resize(gga.size() - 2);
    EXPECT_EQ(Read(kDate + gga + "\xB5\x62\0\x01\n"s).epochs.size(), 1U);
}

TEST(NmeaReader, ByteInsideASentenceIsABadChecksum) {
    std::string gga = Gga("120000.00");
    gga.insert(20, 1, '\x01');
    const Collector c = Read(kDate + gga);
    ASSERT_EQ(c.rejected.size(), 1U);
    EXPECT_EQ(c.rejected[0].reason, Reason::badChecksum);
}

TEST(NmeaReader, LineEndsMayBeLfOrCrLfOrTheEndOfTheFile) {
    std::string last = Gga("120001.00");
    last.resize(last.size() - 2);
    std::string lf = Gga("120000.00");
    lf.erase(lf.size() - 2, 1);
    const Collector c = Read(kDate + lf + last);
    ASSERT_EQ(c.epochs.size(), 2U);
    EXPECT_EQ(c.epochs[0].line, 2);
    EXPECT_EQ(c.epochs[1].line, 3);
}

TEST(NmeaReader, LowerCaseChecksumsAreRead) {
    // A time whose checksum has a letter.
    std::string withLetter;
    for (int second = 0; second < 60 && withLetter.empty(); ++second) {
        std::string s = Gga(fmt::format("1200{:02}.00", second));
        char& digit = s[s.size() - 3];
        if (digit >= 'A' && digit <= 'F') {
            digit = static_cast<char>(digit - 'A' + 'a');
            withLetter = s;
        }
    }
    ASSERT_FALSE(withLetter.empty());
    EXPECT_EQ(Read(kDate + withLetter).epochs.size(), 1U);
}

TEST(NmeaReader, CommentLinesAreNoSentences) {
    const Collector c = Read("# was " + Gga("110000.00") + kDate + "#" + Gga("115959.00") + Gga("120000.00"));
    ASSERT_EQ(c.epochs.size(), 1U);
    EXPECT_EQ(c.epochs[0].line, 4);
    EXPECT_TRUE(c.rejected.empty());
}

TEST(NmeaReader, ASentenceBehindBinaryBytesThatBeginWithAHashCounts) {
    using namespace std::string_literals;
    EXPECT_EQ(Read(kDate + "#\x03\xB5\x62"s + Gga("120000.00")).epochs.size(), 1U);
}

TEST(NmeaReader, OtherSentencesAndBrokenAddressesAreNotReported) {
    const Collector c =
        Read("$GPGSV,3,1,11*00\r\n$&bTXT,01,01,02,LLC*53\r\n$GPGG,1*00\r\n$gpgga,1*00\r\n$GPGGAX,1*00\r\n" +
             std::string("$PGGGA1,x\r\n$1PGGA,1*00\r\n$,*00\r\n$\r\n$*\r\n"));
    EXPECT_TRUE(c.rejected.empty());
    EXPECT_TRUE(c.ignored.empty());
    EXPECT_TRUE(c.epochs.empty());
}

TEST(NmeaReader, DamagedSentencesOfOtherUseAreIgnoredWithTheirReason) {
    struct Row {
        const char* name;
        std::string line;
        Reason reason;
    };
    const Row rows[] = {
        {"RMC with a wrong checksum", "$GPRMC,120000.00,A,,,,,,,110425*00\n", Reason::badChecksum},
        {"RMC without checksum", "$GPRMC,120000.00,A,,,,,,,110425\n", Reason::missingChecksum},
        {"RMC cut", "$GPRMC,120000.00,A,,$GPTXT,\n", Reason::cutLine},
        {"RMC short", Sentence("GPRMC,120000.00,A,,,"), Reason::cutLine},
        {"RMC hour 25", Sentence("GPRMC,250000.00,A,,,,,,,110425"), Reason::badTime},
        {"RMC time of letters", Sentence("GPRMC,12ab00.00,A,,,,,,,110425"), Reason::badNumber},
        {"RMC February 30", Sentence("GPRMC,120000.00,A,,,,,,,300225"), Reason::badTime},
        {"RMC date of letters", Sentence("GPRMC,120000.00,A,,,,,,,11042x"), Reason::badNumber},
        {"RMC date too long", Sentence("GPRMC,120000.00,A,,,,,,,11042025"), Reason::badNumber},
        {"ZDA wrong checksum", "$GPZDA,120000.00,11,04,2025,00,00*00\n", Reason::badChecksum},
        {"ZDA short", Sentence("GPZDA,120000.00,11,04"), Reason::cutLine},
        {"ZDA day 32", Sentence("GPZDA,120000.00,32,01,2025,00,00"), Reason::badTime},
        {"ZDA month of letters", Sentence("GPZDA,120000.00,11,Ap,2025,00,00"), Reason::badNumber},
        {"GST wrong checksum", "$GPGST,120000.00,1,1,1,1,1,1,1*00\n", Reason::badChecksum},
        {"GST short", Sentence("GPGST,120000.00,1,1,1,1,1,1"), Reason::cutLine},
        {"GST of letters", Sentence("GPGST,120000.00,1,1,1,1,1,x,1"), Reason::badNumber},
        {"GST below zero", Sentence("GPGST,120000.00,1,1,1,1,1,-1,1"), Reason::badNumber},
        {"GSA wrong checksum", "$GPGSA,A,3,01,,,,,,,,,,,,1.0,1.0,1.0*00\n", Reason::badChecksum},
        {"GSA short", Sentence("GPGSA,A,3,01,,,,,,,,,,,,1.0"), Reason::cutLine},
        {"GSA satellite of letters", Sentence("GPGSA,A,3,0x,,,,,,,,,,,,1.0,1.0,1.0"), Reason::badNumber},
        {"GSA satellite 256", Sentence("GPGSA,A,3,256,,,,,,,,,,,,1.0,1.0,1.0"), Reason::badNumber},
        {"GSA PDOP of letters", Sentence("GPGSA,A,3,01,,,,,,,,,,,,x,1.0,1.0"), Reason::badNumber},
    };
    for (const Row& row : rows) {
        const Collector c = Read("\n" + row.line);
        ASSERT_EQ(c.ignored.size(), 1U) << row.name;
        EXPECT_EQ(ReasonText(c.ignored[0].reason), ReasonText(row.reason)) << row.name;
        EXPECT_EQ(c.ignored[0].line, 2) << row.name;
        EXPECT_TRUE(c.rejected.empty()) << row.name;
    }
}

TEST(NmeaReader, EmptyFieldsOfSentencesWithoutAFixAreNoDamage) {
    const Collector c =
        Read(Sentence("GNRMC,,V,,,,,,,,,,N") + Sentence("GNRMC,120000.00,V,,,,,,,,,,N") +
             Sentence("GPZDA,,,,,,") + Sentence("GPZDA,120000.00,,,,,") + Sentence("GPGST,,,,,,,,") +
             Sentence("GPGST,120000.00,,,,,,,") + Sentence("GPGSA,A,1,,,,,,,,,,,,,,,"));
    EXPECT_TRUE(c.ignored.empty());
    EXPECT_TRUE(c.rejected.empty());
}

}  // namespace
}  // namespace gpsbook
