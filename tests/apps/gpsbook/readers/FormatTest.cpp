#include "apps/gpsbook/readers/Format.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/apps/gpsbook/readers/Collector.h"

namespace gpsbook {
namespace {

const std::string kPosRow =
    "2024/06/24 08:20:00.000   35.134699011  136.977575483   104.8619   1  42   0.0024   0.0024   0.0069   "
    "0.0008  "
    "-0.0013  -0.0024   0.00   12.0\n";

TEST(DetectFormat, TellsFormatsByContent) {
    using namespace std::string_literals;
    struct Row {
        const char* name;
        std::string head;
        Format format;
    };
    const std::string gga = test::Gga("120000.00");
    const Row rows[] = {
        {"NMEA", gga, Format::nmea},
        {"NMEA after comments", "# Name: a receiver\n# Date: 2020\n" + gga, Format::nmea},
        {"NMEA after binary frames", "\xB5\x62\x01\x07\0\0\n\xD3\0\x13"s + gga, Format::nmea},
        {"NMEA with LF only", test::Sentence("GPTXT,01,01,02,HELLO", "\n"), Format::nmea},
        {"maker's own sentences", test::Sentence("PSRFEPE,074150.799,V,,,,,"), Format::nmea},
        {"damaged NMEA", "$GPGGA,120000.00,45*00\r\n", Format::nmea},
        {"NMEA whose head is cut in a sentence", gga + "$GPGG", Format::nmea},
        {"pos by column titles", "%  GPST  latitude(deg) longitude(deg) height(m)\n", Format::pos},
        {"pos by the line of the kind", "% (x/y/z-ecef=WGS84,Q=1:fix)\n", Format::pos},
        {"pos after other header lines", "\n% program : RTKPOST\n% (e/n/u-baseline=WGS84,Q=1)\n",
         Format::pos},
        {"pos after comments", "# kept by someone\n%  UTC  latitude(deg)\n", Format::pos},
        {"pos without header", kPosRow, Format::pos},
        {"pos without header, weeks", "2328 385200.000" + kPosRow.substr(23), Format::pos},
        {"pos with a byte order mark", "\xEF\xBB\xBF%  GPST  x-ecef(m)\r\n", Format::pos},
        {"nothing", "", Format::unknown},
        {"text", "Dear surveyor,\nthe weather is fine: $100 and 50%.\n", Format::unknown},
        {"percent lines of something else", "% Matlab comment\nx = 1;\n", Format::unknown},
        {"table of numbers", "1 2 3 4 5 6 7\n1 2 3 4 5 6 7\n", Format::unknown},
        {"binary", std::string(1000, '\0') + "$$$\xFF"s, Format::unknown},
        {"only an unused address", "$GPGSV,3,1,11*00\r\n", Format::unknown},
    };
    for (const Row& row : rows) EXPECT_EQ(DetectFormat(row.head), row.format) << row.name;
}

TEST(DetectFormat, LooksAt64KiB) {
    const std::string gga = test::Gga("120000.00");
    EXPECT_EQ(DetectFormat(std::string(kDetectBytes - gga.size(), '\x01') + gga), Format::nmea);
    EXPECT_EQ(DetectFormat(std::string(kDetectBytes, '\x01') + gga), Format::unknown);
}

TEST(MakeReader, MakesTheReaderOfTheFormat) {
    test::Collector sink;
    EXPECT_EQ(MakeReader(Format::nmea, sink)->Header().format, "NMEA 0183");
    EXPECT_EQ(MakeReader(Format::pos, sink)->Header().format, "RTKLIB pos");
    EXPECT_EQ(MakeReader(Format::unknown, sink), nullptr);
}

}  // namespace
}  // namespace gpsbook
