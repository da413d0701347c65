// COpzPostProcStream: the record of the post-processing options in a project.
#include "gps/options/COpzPostProc.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace {

using Dati = COpzPostProc::TDatiStaticPtBaseLine;
using Par = COpzPostProc::TParPostProc;

constexpr short kVerOneValue = 1003;   // one value and which one it is, where there were two
constexpr short kVerMoreFlags = 1300;  // bFlag3, bFlag4

// In this record a bool is true when its number is exactly 1; other records have rules of their own.
void WriteBool(ofpstream& out, bool value) { out.WriteInt(value ? 1 : 0); }
bool ReadBool(ifpstream& in) { return in.ReadInt() == 1; }

// The stored 16 bits of a wider number, and back with their sign.
void WriteLow16(ofpstream& out, std::int32_t value) { out.WriteShort(static_cast<short>(value)); }
std::int32_t ReadLow16(ifpstream& in) { return in.ReadShort(); }

void WritePar(ofpstream& out, const Par& par) {
    out.WriteUShort(par.wPar1);
    out.WriteUShort(par.wPar2);
    out.WriteUShort(par.wPar3);
    out.WriteUShort(par.wPar4);
    out.WriteDouble(par.dPar1);
    out.WriteDouble(par.dPar2);
    out.WriteInt(par.ePar1);
    WriteBool(out, par.bPar1);
    for (const Par::TValPair& pair : par.aValPair) {
        out.WriteDouble(pair.dVal);
        out.WriteInt(pair.nVal);
    }
    WriteBool(out, par.bPar2);
    out.WriteUShort(par.wPar5);
    out.WriteDouble(par.dPar3);
    out.WriteDouble(par.dPar4);
    WriteLow16(out, par.nPar1);
    WriteBool(out, par.bPar3);
    out.WriteUShort(par.wPar6);
    WriteBool(out, par.bPar4);
    WriteBool(out, par.bPar5);
    WriteLow16(out, par.nPar2);
    WriteBool(out, par.bPar6);
    WriteBool(out, par.bPar7);
    WriteBool(out, par.bPar8);
    WriteBool(out, par.bPar9);
}

void ReadPar(ifpstream& in, Par& par) {
    par.wPar1 = in.ReadUShort();
    par.wPar2 = in.ReadUShort();
    par.wPar3 = in.ReadUShort();
    par.wPar4 = in.ReadUShort();
    par.dPar1 = in.ReadDouble();
    par.dPar2 = in.ReadDouble();
    par.ePar1 = static_cast<COpzPostProc::EPar1>(in.ReadInt());
    par.bPar1 = ReadBool(in);
    for (Par::TValPair& pair : par.aValPair) {
        pair.dVal = in.ReadDouble();
        pair.nVal = in.ReadInt();
    }
    par.bPar2 = ReadBool(in);
    par.wPar5 = in.ReadUShort();
    par.dPar3 = in.ReadDouble();
    par.dPar4 = in.ReadDouble();
    par.nPar1 = ReadLow16(in);
    par.bPar3 = ReadBool(in);
    par.wPar6 = in.ReadUShort();
    par.bPar4 = ReadBool(in);
    par.bPar5 = ReadBool(in);
    par.nPar2 = ReadLow16(in);
    par.bPar6 = ReadBool(in);
    par.bPar7 = ReadBool(in);
    par.bPar8 = ReadBool(in);
    par.bPar9 = ReadBool(in);
}

// Old files hold both quantities, of which one is unset.
void WriteTwoValues(ofpstream& out, const Dati& file) {
    out.WriteDouble(file.bAltValue ? GPS_VAL_UNSET : file.dValue);
    out.WriteDouble(file.bAltValue ? file.dValue : GPS_VAL_UNSET);
}

void ReadTwoValues(ifpstream& in, Dati& file) {
    const double first = in.ReadDouble();
    const double second = in.ReadDouble();
    // Intended: neither test is the negation of IsCoordValid. The limit itself and NaN are on neither side.
    file.bAltValue = first > GPS_VAL_SET_LIMIT && second < GPS_VAL_SET_LIMIT;
    file.dValue = file.bAltValue ? second : first;
}

void WriteFile(ofpstream& out, const Dati& file) {
    const short version = out.GetVersion();
    WriteBool(out, file.bFlag1);
    if (version >= kVerMoreFlags) {
        WriteBool(out, file.bFlag3);
        WriteBool(out, file.bFlag4);
    }
    out.WriteString(file.sText1);
    out.WriteString(file.sFile);
    out.WriteInt(file.nIdx2);
    if (version >= kVerOneValue) {
        out.WriteInt(file.nIdx3);
        out.WriteString(file.sText2);
        WriteBool(out, file.bAltValue);
        out.WriteDouble(file.dValue);
    } else {
        WriteTwoValues(out, file);
    }
    for (const double value : {file.dA1, file.dA2, file.dA3, file.dB1, file.dB2, file.dB3})
        out.WriteDouble(value);
    out.WriteDouble(0.0);  // reserved
}

Dati ReadFile(ifpstream& in) {
    const short version = in.GetVersion();
    Dati file;
    file.bFlag1 = ReadBool(in);
    if (version >= kVerMoreFlags) {
        file.bFlag3 = ReadBool(in);
        file.bFlag4 = ReadBool(in);
    }
    in.ReadString(file.sText1);
    in.ReadString(file.sFile);
    file.nIdx2 = in.ReadInt();
    if (version >= kVerOneValue) {
        file.nIdx3 = in.ReadInt();
        in.ReadString(file.sText2);
        file.bAltValue = ReadBool(in);
        file.dValue = in.ReadDouble();
    } else {
        ReadTwoValues(in, file);
    }
    for (double* value : {&file.dA1, &file.dA2, &file.dA3, &file.dB1, &file.dB2, &file.dB3})
        *value = in.ReadDouble();
    in.ReadDouble();  // reserved
    return file;
}

void WriteFiles(ofpstream& out, const std::vector<Dati>& files) {
    out.WriteInt(static_cast<std::int32_t>(files.size()));
    for (const Dati& file : files) WriteFile(out, file);
}

void ReadFiles(ifpstream& in, std::vector<Dati>& files) {
    const std::int32_t count = in.ReadInt();
    for (std::int32_t i = 0; i < count; ++i) files.push_back(ReadFile(in));
}

}  // namespace

void COpzPostProc::SalvaInFile(ofpstream& out) const {
    WritePar(out, ParPostProc);
    WriteBool(out, bDettScanned);
    WriteFiles(out, vecPtBaseLineDett);
    WriteFiles(out, vecPtBaseLineBase);
}

void COpzPostProc::LeggeDaFile(ifpstream& in) {
    ReadPar(in, ParPostProc);
    bDettScanned = ReadBool(in);
    ReadFiles(in, vecPtBaseLineDett);
    ReadFiles(in, vecPtBaseLineBase);
}
