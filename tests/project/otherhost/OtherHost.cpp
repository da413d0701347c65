// Ends with 0 when the field book works on this host's platform and calls this host's engine.
#include <iostream>

#include "gps/model/CLibGps.h"
#include "platform/cad/COrkaEng.h"
#include "platform/coord/CLibMap.h"

int main() {
    CLibMap map;
    {
        CLibGps book(nullptr, nullptr, nullptr, &map, 7);
        book.AddGrp(false);
        book.AddPun(0, false);
        if (book.GetPunArSize(0) != 1) {
            std::cerr << "the group has " << book.GetPunArSize(0) << " points, not 1\n";
            return 1;
        }
    }
    // The field book and its group: each takes the drawing and gives it back.
    if (COrkaEng::GetCalls() != 4) {
        std::cerr << "the engine was called " << COrkaEng::GetCalls() << " times, not 4\n";
        return 1;
    }
    return 0;
}
