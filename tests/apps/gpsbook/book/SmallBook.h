// SmallBook: a field book with groups and points by name, as the tests of its commands need one.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "gps/model/CLibGps.h"
#include "host/project/BookEdits.h"
#include "platform/coord/CLibMap.h"

namespace gpsbook::test {

struct SmallBook {
    SmallBook() : lib(nullptr, nullptr, nullptr, &map, 0) {}

    /// Appends a group with points of these names.
    CGrpGps& Group(const std::string& name, std::initializer_list<const char*> points = {}) {
        const int g = lib.GetGrpArSize();
        CGrpGps& group = *lib.AddGrp(false);
        group.SetNomeGrp(name);
        group.SetNome(name);
        for (const char* point : points) lib.AddPun(g, false)->SetNome(point);
        return group;
    }

    /// The names of a group's points, separated by blanks.
    std::string Names(int g) const {
        std::string names;
        for (int p = 0; p < lib.GetPunArSize(g); ++p)
            names += (p == 0 ? "" : " ") + lib.GetPunAt(g, p)->GetNome();
        return names;
    }

    std::string GroupNames() const {
        std::string names;
        for (int g = 0; g < lib.GetGrpArSize(); ++g)
            names += (g == 0 ? "" : " ") + lib.GetGrpAt(g)->GetNomeGrp();
        return names;
    }

    CLibMap map;
    CLibGps lib;
    gpsproject::BookEdits edits{lib};  // without a journal
};

/// UTM zone 33 in a group; the conversion is usable then.
inline void SetUtm33(CGrpGps& group) {
    std::string why;
    group.GetConvCoord()->GetConvLocal()->SetDefinizione("EPSG:32633", why);
    group.GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
    group.SetCodeElab(1);
}

/// A fix on 1 May 2024, 08:00, that nothing is wrong with.
inline void SetFix(CPunGps& point, double lat, double lon, double h, double antenna) {
    point.SetYear(2024);
    point.SetMonth(5);
    point.SetDay(1);
    point.SetTod(8 * 3'600'000);
    point.SetLat(lat);
    point.SetLong(lon);
    point.SetElev(h);
    point.SetAltAnt(antenna);
    point.SetQua(4);
}

}  // namespace gpsbook::test
