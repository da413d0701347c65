// CPunGps: the point record of the project stream.
#include "gps/model/CPunGps.h"
#include "gps/persist/StreamVersions.h"
#include "platform/base/BlockWriter.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace {

// Fields between entity and cloud record, at most.
constexpr std::size_t kFieldBytes = 150;

// Intended: 2 bytes, and any positive number is true; groups and options have other forms.
void WriteMark(BlockWriter& out, bool mark) { out.WriteShort(mark ? 1 : 0); }
bool ReadMark(ifpstream& in) { return in.ReadShort() > 0; }

}  // namespace

void CPunGps::SalvaInFile(ofpstream& out, bool cloudFlag) {
    const short version = out.GetVersion();
    CEgn::SalvaInFile(out);
    if (version < kVerSenzaGeocentriche) {
        double x, y, z;
        GetGeocCeFaMis(x, y, z);
        out.WriteDouble(x);
        out.WriteDouble(y);
        out.WriteDouble(z);
    }
    {
        BlockWriter fields(out, kFieldBytes);
        fields.WriteDouble(Lat);
        fields.WriteDouble(Long);
        fields.WriteDouble(Elev);
        fields.WriteDouble(AltAnt);
        fields.WriteInt(Qua);
        WriteMark(fields, PrimaryPtDup);
        WriteMark(fields, SecondaryPtDup && version >= kVerSecondaPunDup);
        if (version >= kVerEntita) {
            fields.WriteUShort(Year);
            fields.WriteUChar(Month);
            fields.WriteUChar(Day);
            fields.WriteUInt(Tod);
            // Intended: doubles at 742 too, though that version is read with floats here. Such streams exist
            // to be read; none is written for use.
            fields.WriteDouble(HposRms);
            fields.WriteDouble(VposRms);
            fields.WriteUChar(NuGpsUsed);
            fields.WriteUChar(NuGloUsed);
            for (const float c : {PosCov_xx, PosCov_yy, PosCov_zz, PosCov_tt, PosCov_xy, PosCov_xz, PosCov_xt,
                                  PosCov_yz, PosCov_yt, PosCov_zt})
                fields.WriteFloat(c);
        }
        if (version >= kVerRmsDouble) {
            fields.WriteDouble(Pdop);
            fields.WriteDouble(Gdop);
        }
        if (version >= kVerGrafBase) {
            for (const double value : GrafBase) fields.WriteDouble(value);
        }
        if (version >= kVerRiserve) fields.WriteUInt(PunRis32);
    }
    CCloudItem::SalvaInFile(out, version, cloudFlag);
}

void CPunGps::LeggeDaFile(ifpstream& in) {
    const short version = in.GetVersion();
    CEgn::LeggeDaFile(in);
    // Geocentric coordinates follow from the geographic ones: what an old stream says is passed over.
    if (version < kVerSenzaGeocentriche) {
        for (int i = 0; i < 3; ++i) in.ReadDouble();
    }
    Lat = in.ReadDouble();
    Long = in.ReadDouble();
    Elev = in.ReadDouble();
    AltAnt = in.ReadDouble();
    Qua = in.ReadInt();
    PrimaryPtDup = ReadMark(in);
    SecondaryPtDup = ReadMark(in);
    if (version >= kVerEntita) {
        Year = in.ReadUShort();
        Month = in.ReadUChar();
        Day = in.ReadUChar();
        Tod = in.ReadUInt();
        HposRms = version >= kVerRmsDouble ? in.ReadDouble() : static_cast<double>(in.ReadFloat());
        VposRms = version >= kVerRmsDouble ? in.ReadDouble() : static_cast<double>(in.ReadFloat());
        NuGpsUsed = in.ReadUChar();
        NuGloUsed = in.ReadUChar();
        for (float* c : {&PosCov_xx, &PosCov_yy, &PosCov_zz, &PosCov_tt, &PosCov_xy, &PosCov_xz, &PosCov_xt,
                         &PosCov_yz, &PosCov_yt, &PosCov_zt})
            *c = in.ReadFloat();
    }
    if (version >= kVerRmsDouble) {
        Pdop = in.ReadDouble();
        Gdop = in.ReadDouble();
    }
    if (version >= kVerGrafBase) {
        for (double& value : GrafBase) value = in.ReadDouble();
    }
    if (version >= kVerRiserve) PunRis32 = in.ReadUInt();
    CCloudItem::LeggeDaFile(in, version);
}
