// Logs for the tests of whole commands, written out by hand.
#pragma once

#include <string>

#include "tests/apps/gpsbook/readers/Collector.h"

namespace gpsbook::test {

/// A GGA near 45.65 N, 13.76 E (UTM zone 33), height 18 + 45 = 63 m.
inline std::string Position(const std::string& time, int quality) {
    return Sentence("GNGGA," + time + ",4539.00000000,N,01345.60000000,E," + std::to_string(quality) +
                    ",15,0.8,18.0000,M,45.0000,M,1.0,0001");
}

/// Ten seconds from 08:00 on 1 May 2024: qualities 1, 1, 5, 5, 4, 4, 4, 4, 2, 4.
inline std::string TenSeconds() {
    const int qualities[] = {1, 1, 5, 5, 4, 4, 4, 4, 2, 4};
    std::string log = Rmc("080000.00", "010524");
    for (std::size_t i = 0; i < 10; ++i) log += Position("08000" + std::to_string(i) + ".00", qualities[i]);
    return log;
}

/// Three usable epochs, and one of every kind that is not, each on the line that its comment says.
inline std::string DamagedLog() {
    const std::string tail = ",4,15,0.8,18.0000,M,45.0000,M,1.0,0001";
    std::string log = Rmc("080000.00", "010524");                                   // 1
    log += Position("080000.00", 4);                                                // 2
    log += "$GNGGA,080001.00,4539.0,N,01345.6,E,4,15,0.8,18.0,M,45.0,M,,*00\r\n";   // 3: bad checksum
    log += "$GNGGA,080002.00,4539.0,N,01345.6,E,4,15,0.8,18.0,M,45.0,M,,\r\n";      // 4: none
    log += "$GNGGA,080003.00,4539.0,N,013" + Position("080004.00", 5);              // 5: cut, and a good one
    log += Sentence("GNGGA,080005.00,4539.0,N,,E" + tail);                          // 6: empty field
    log += Sentence("GNGGA,080006.00,45x9.0,N,01345.6,E" + tail);                   // 7: bad number
    log += Sentence("GNGGA,080007.00,4539.0,N,01345.6,E,4,15,0.8,nan,M,45.0,M,,");  // 8: bad number
    log += Position("080008.00", 0);                                                // 9: no fix
    log += Sentence("GNGGA,250009.00,4539.0,N,01345.6,E" + tail);                   // 10: bad time
    log += Sentence("GNGGA,080010.00,9139.0,N,01345.6,E" + tail);                   // 11: latitude
    log += Sentence("GNGGA,080011.00,4539.0,N,18145.6,E" + tail);                   // 12: longitude
    log += Sentence("GNGGA,080012.00,4539.0,N,01345.6,E,4,15,0.8,18.0,M,,M,,");     // 13: no separation
    log += Sentence("GNRMC,080013.00,A,4539.0,N,01345.6,E,0.0,,320524,,,R");        // 14: ignored, bad date
    log += Position("080014.00", 4);                                                // 15
    return log;
}

/// The header and rows of a .pos file. `kind`: what the line in brackets says, `titles`: of the coordinates.
inline std::string PosFile(const std::string& kind, const std::string& titles, const std::string& reference,
                           const std::string& rows) {
    return "% program   : written by hand\n% antenna1  :  ( 0.0000  0.0000  0.0000)\n"
           "% antenna2  :  ( 0.0000  0.0000  1.5000)\n% ref pos   : " +
           reference + "\n%\n% (" + kind +
           ",Q=1:fix,2:float,3:sbas,4:dgps,5:single,6:ppp,ns=# of satellites)\n%  GPST  " + titles +
           "  Q  ns  sd  sd  sd  sd  sd  sd age(s)  ratio\n" + rows;
}

}  // namespace gpsbook::test
