// CLibGps: files that carry points or groups from one field book to another.
#include <cstdint>

#include "gps/model/CLibGps.h"
#include "gps/persist/OrNull.h"
#include "gps/persist/RoomFor.h"
#include "gps/persist/StreamVersions.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/cad/CLoadGisBinderNew.h"

namespace {

using Result = CLibGen::TResActionObj;

constexpr const char* kSignature = "FCP";

// Intended: last - first, also where that is negative or more than there are.
void WriteHead(ofpstream& out, int first, int last) {
    out.WriteString(out.GetSignature());
    out.WriteShort(out.GetVersion());
    out.WriteInt(
        static_cast<std::int32_t>(static_cast<std::uint32_t>(last) - static_cast<std::uint32_t>(first)));
}

Result WriteEnd(ofpstream& out) {
    out.WriteInt(0);  // nobody reads it
    return out.Close() ? Result::done : Result::notCreated;
}

// Intended: neither marker nor signature is compared; the version decides how the records are read.
int ReadHead(ifpstream& in) {
    in.ReadMarker();
    in.ReadString();
    in.SetVersion(in.ReadShort());
    return in.ReadInt();
}

}  // namespace

/// Points inserted one behind the other. Inserting each by itself would move all that stand behind it once
/// for every point; instead they are appended, and brought to their place together.
class CLibGps::PunRun {
public:
    PunRun(CLibGps& book, int g) : book_(book), g_(g) {}
    ~PunRun() { Place(); }
    PunRun(const PunRun&) = delete;
    PunRun& operator=(const PunRun&) = delete;

    /// What InsPunAt does, seen from after the run: the position counts as if every point stood in its place
    /// already. Positions grow from call to call.
    CPunGps* Insert(std::int64_t p) {
        const int size = book_.GetPunArSize(g_);
        if (p < 0 || p > size) return nullptr;
        if (p != at_ + (size - first_)) {
            Place();
            at_ = static_cast<int>(p);
            first_ = size;
        }
        return book_.AddPun(g_, false);
    }

private:
    void Place() {
        if (first_ >= 0) book_.PlacePunTail(g_, first_, at_);
    }

    CLibGps& book_;
    int g_;
    // Where the first point of the run belongs, and where it stands. At the beginning a run that appends.
    int at_ = -1;
    int first_ = -1;
};

CLibGps::TResActionObj CLibGps::SalvaPuntiInFile(int g, int first, int last, const std::string& file) {
    StreamVersion = kVerCorrente;
    ofpstream out(file.c_str(), kVerCorrente, kSignature);
    if (!out.IsOk()) return Result::notCreated;
    WriteHead(out, first, last);
    for (int p = first; p < last; ++p) {
        if (CPunGps* point = GetPunAt(g, p)) point->SalvaInFile(out, true);
    }
    return WriteEnd(out);
}

CLibGps::TResActionObj CLibGps::SalvaGruppoInFile(int first, int last, const std::string& file,
                                                  vex::CPtr64Mapper* mapper) {
    StreamVersion = kVerCorrente;
    ofpstream out(file.c_str(), kVerCorrente, kSignature);
    if (!out.IsOk()) return Result::notCreated;
    WriteHead(out, first, last);
    for (int g = first; g < last; ++g) {
        if (CGrpGps* group = GetGrpAt(g)) group->SalvaInFile(out, true, mapper);
        const int points = GetPunArSize(g);
        out.WriteInt(points);
        for (int p = 0; p < points; ++p) GetPunAt(g, p)->SalvaInFile(out, true);
    }
    return WriteEnd(out);
}

CLibGps::TResActionObj CLibGps::CaricaPuntiDaFile(int fromPlane, int g, int after, const std::string& file) {
    CLoadGisBinderNew::GetInstance()->Clear();
    StreamVersion = kVerCorrente;
    ifpstream in(file.c_str(), kVerCorrente);
    if (!in.IsOk()) return Result::notOpened;
    const int count = ReadHead(in);
    SetModifiedFlag(true);
    PunArAddReserve(g, RoomFor(in, count));

    Result result = Result::done;
    PunRun run(*this, g);
    for (std::int64_t i = 1; i <= count; ++i) {
        CPunGps* point = OrNull([&] { return run.Insert(after + i); });
        if (!point) {
            result = Result::notInserted;
            continue;
        }
        point->LeggeDaFile(in);
        if (fromPlane != 0) {
            if (!point->EstValidoXY()) result = Result::noPlaneCoordinates;
            CalcolaCoordGeog(point, g);
        } else {
            CalcolaCoordCart(point, g);
        }
        point->SetCloudNotify(true);
    }
    return result;
}

CLibGps::TResActionObj CLibGps::CaricaGruppoDaFile(short mode, int after, const std::string& file,
                                                   CDrawingsMapper& drawings) {
    CLoadGisBinderNew::GetInstance()->Clear();
    if (mode != 0) return Result::done;
    StreamVersion = kVerCorrente;
    ifpstream in(file.c_str(), kVerCorrente);
    if (!in.IsOk()) return Result::notOpened;
    const int count = ReadHead(in);
    SetModifiedFlag(true);

    Result result = Result::done;
    for (std::int64_t i = 1; i <= count; ++i) {
        const std::int64_t at = after + i;
        if (at < 0 || at > GetGrpArSize()) {
            result = Result::notInserted;
            continue;
        }
        const int g = static_cast<int>(at);
        CGrpGps* group = OrNull([&] { return InsGrpAt(g, false); });
        if (!group) {
            result = Result::notInserted;
            continue;
        }
        group->LeggeDaFile(in, drawings, false);
        const int points = in.ReadInt();
        PunArAddReserve(g, RoomFor(in, points));
        for (int p = 0; p < points; ++p) {
            CPunGps* point = OrNull([&] { return AddPun(g, false); });
            if (!point) {
                result = Result::notInserted;
                continue;
            }
            point->LeggeDaFile(in);
            CalcolaCoordCart(point, g);
            point->SetCloudNotify(true);
        }
        group->SetCloudNotify(true);
    }
    return result;
}
