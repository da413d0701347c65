#include "apps/gpsbook/book/BookSummary.h"

#include "apps/gpsbook/book/BookRows.h"
#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

BookSummary SummaryOf(const CLibGps& book) {
    BookSummary summary;
    summary.groups = book.GetGrpArSize();
    for (int g = 0; g < summary.groups; ++g) {
        const CGrpGps& group = *book.GetGrpAt(g);
        if (group.IsCdElabValid())
            summary.systems.insert(group.GetConvCoord()->GetConvLocal()->GetProiezPla().GetSistema());
        else
            ++summary.groupsWithoutSystem;
        for (int p = 0; p < book.GetPunArSize(g); ++p) {
            const CPunGps& point = *book.GetPunAt(g, p);
            ++summary.points;
            ++summary.byQuality[point.GetQua()];
            if (!HasValue(point.GetLat()) || !HasValue(point.GetLong()) || !HasValue(point.GetElev()))
                ++summary.withoutFix;
            std::string time =
                TimeText(RowOf(group, point));  // texts of one form: their order is that of time
            if (time.empty()) continue;
            if (summary.first.empty() || time < summary.first) summary.first = time;
            if (time > summary.last) summary.last = std::move(time);
        }
    }
    summary.extent = ExtentOf(book);
    return summary;
}

}  // namespace gpsbook
