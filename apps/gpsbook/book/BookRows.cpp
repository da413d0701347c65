#include "apps/gpsbook/book/BookRows.h"

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/writers/RowWriter.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

PointRow RowOf(const CGrpGps& group, const CPunGps& p) {
    PointRow row;
    row.group = NameOf(group);
    row.name = p.GetNome();
    row.code = p.GetCode();
    row.year = p.GetYear();
    row.month = p.GetMonth();
    row.day = p.GetDay();
    row.todMs = p.GetTod();
    row.lat = p.GetLat();
    row.lon = p.GetLong();
    row.h = p.GetElev();
    row.antenna = p.GetAltAnt();
    row.east = p.GetCoordX();
    row.north = p.GetCoordY();
    row.height = p.GetCoordZ();
    row.quality = p.GetQua();
    row.gps = p.GetNuGpsUsed();
    row.glonass = p.GetNuGloUsed();
    row.pdop = p.GetPdop();
    row.hrms = p.GetHposRms();
    row.vrms = p.GetVposRms();
    return row;
}

void WriteRows(const CLibGps& book, int group, RowWriter& writer) {
    for (int p = 0; p < book.GetPunArSize(group); ++p) {
        CheckInterrupt();
        writer.Write(RowOf(*book.GetGrpAt(group), *book.GetPunAt(group, p)));
    }
}

}  // namespace gpsbook
