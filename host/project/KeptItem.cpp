#include "host/project/KeptItem.h"

#include "gps/persist/StreamVersions.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/cad/CDrawingsMapper.h"

namespace gpsproject {

namespace {

ofpstream& Begin(ofpstream& out, int groups) {
    out.WriteShort(kVerCorrente);
    out.WriteInt(groups);
    return out;
}

}  // namespace

std::string KeepGroup(CLibGps& book, int g) {
    ofpstream out(kVerCorrente);
    Begin(out, 1);
    book.GetGrpAt(g)->SalvaInFile(out, true, nullptr);
    out.WriteInt(book.GetPunArSize(g));
    for (int p = 0; p < book.GetPunArSize(g); ++p) book.GetPunAt(g, p)->SalvaInFile(out, true);
    return std::string(out.GetBytes());
}

std::string KeepPoint(CLibGps& book, int g, int p) {
    ofpstream out(kVerCorrente);
    Begin(out, 0);
    book.GetPunAt(g, p)->SalvaInFile(out, true);
    return std::string(out.GetBytes());
}

bool PutGroupBack(CLibGps& book, const std::string& kept, CDrawingsMapper& drawings) {
    ifpstream in(kept.data(), kept.size(), 0);
    in.SetVersion(in.ReadShort());
    if (in.GetVersion() > kVerCorrente || in.ReadInt() != 1 || !in.IsOk()) return false;
    const int g = book.GetGrpArSize();
    CGrpGps* group = book.AddGrp(false);
    group->LeggeDaFile(in, drawings, true);
    const int points = in.ReadInt();
    for (int p = 0; p < points && in.IsOk(); ++p) book.AddPun(g, false)->LeggeDaFile(in);
    if (in.IsOk() && in.GetRemaining() == 0) return true;
    book.DelGrpAt(g);
    return false;
}

bool PutPointBack(CLibGps& book, int g, const std::string& kept) {
    ifpstream in(kept.data(), kept.size(), 0);
    in.SetVersion(in.ReadShort());
    if (in.GetVersion() > kVerCorrente || in.ReadInt() != 0 || !in.IsOk()) return false;
    CPunGps* point = book.AddPun(g, false);
    if (!point) return false;
    point->LeggeDaFile(in);
    if (in.IsOk() && in.GetRemaining() == 0) return true;
    book.DelPunAt(g, book.GetPunArSize(g) - 1);
    return false;
}

}  // namespace gpsproject
