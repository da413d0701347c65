// A field book with one group and one point, from the fix to plane coordinates.
#include <charconv>
#include <iostream>
#include <string>

#include "gps/coords/FCalcCoord.h"
#include "gps/model/CLibGps.h"
#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"

namespace {

// A length in metres with four decimals, whatever the locale.
std::string Metres(double value) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 4).ptr};
}

}  // namespace

int main() {
    CLibMap map;  // must outlive the field book
    CLibGps book(nullptr, nullptr, nullptr, &map, 0);

    CGrpGps* group = book.AddGrp(false);
    group->SetNomeGrp("first survey");

    CConvCoord* conversion = group->GetConvCoord();
    std::string why;
    if (!conversion->GetConvLocal()->SetDefinizione("EPSG:32633", why)) {
        std::cerr << why << '\n';
        return 1;
    }
    conversion->SetImp(CConvCoord::impPronta, 1);  // the conversion is set up
    group->SetCodeElab(1);                         // and counts as valid

    CPunGps* point = book.AddPun(0, false);
    point->SetNome("P1");
    point->SetLat(45.65);   // degrees
    point->SetLong(13.76);  // degrees
    point->SetElev(62.0);   // metres, phase centre
    point->SetAltAnt(2.0);  // metres

    FCalcCoordLibGps(&book, nullptr);
    if (!point->EstValidoXY()) {
        std::cerr << "P1 has no plane coordinates\n";
        return 1;
    }
    std::cout << Metres(point->GetCoordX()) << ' ' << Metres(point->GetCoordY()) << ' '
              << Metres(point->GetCoordZ()) << '\n';
    return 0;
}
