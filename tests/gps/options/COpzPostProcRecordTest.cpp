// The record of the post-processing options: its bytes in every version, what is read from it, and damage.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "gps/options/COpzPostProc.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"
#include "tests/Scale.h"
#include "tests/Settings.h"

namespace {

using test::Bytes;
using test::Dump;
using test::Settings;
using File = COpzPostProc::TDatiStaticPtBaseLine;

constexpr double kUnset = 1.7e200;
constexpr double kLimit = 8.5e199;

std::string Record(const COpzPostProc& opz, short version) {
    ofpstream out(version);
    opz.SalvaInFile(out);
    return std::string(out.GetBytes());
}

/// Reads a whole record.
COpzPostProc Read(const std::string& bytes, short version) {
    ifpstream in(bytes.data(), bytes.size(), version);
    COpzPostProc opz;
    opz.LeggeDaFile(in);
    EXPECT_TRUE(in.IsOk()) << version;
    EXPECT_EQ(in.GetRemaining(), 0) << version;
    return opz;
}

// --- main record -------------------------------------------------------------------------------------------

// The parameters' defaults; without bDettScanned and files.
const Bytes kDefaultPar = Bytes().Hex(
    "0f00 0a00 0600 0300"                                  // wPar1 to wPar4
    "fca9f1d24d62503f 666666666666ee3f"                    // dPar1, dPar2
    "00000000 01000000"                                    // ePar1, bPar1
    "0000000000000000 14000000 0000000000004940 f5030000"  // aValPair
    "00000000 3200"                                        // bPar2, wPar5
    "0000000000000040 000000000000e03f"                    // dPar3, dPar4
    "0000 01000000 0100 01000000 01000000"                 // nPar1, bPar3, wPar6, bPar4, bPar5
    "0000 00000000 01000000 01000000 01000000");           // nPar2, bPar6 to bPar9

constexpr short kVersions[] = {0,    719,  720,  721,  741,  742,  743,  749,  750,  751,  880,  881,
                               882,  902,  903,  904,  1001, 1002, 1003, 1004, 1005, 1105, 1106, 1107,
                               1200, 1299, 1300, 1301, 1310, 1311, 1312, 1399, 1400, 1401, 32767};

TEST(OpzPostProcRecord, DefaultsTakeTheirBytesInEveryVersion) {
    const Settings settings;
    const Bytes wanted = Bytes().Raw(kDefaultPar).I32(0).I32(0).I32(0);
    ASSERT_EQ(wanted.Size(), 124u);
    for (const short version : kVersions)
        EXPECT_EQ(Dump(Record(COpzPostProc(), version)), Dump(wanted.Get())) << version;
}

void FillPar(COpzPostProc::TParPostProc& par) {
    par.wPar1 = 0x0201;
    par.wPar2 = 0xFFFF;
    par.wPar3 = 0x0605;
    par.wPar4 = 0x8007;
    par.dPar1 = 1.5;
    par.dPar2 = -2.5;
    par.ePar1 = static_cast<COpzPostProc::EPar1>(-3);
    par.bPar1 = false;
    par.aValPair[0] = {4.5, -5};
    par.aValPair[1] = {6.5, 7};
    par.bPar2 = true;
    par.wPar5 = 0x0908;
    par.dPar3 = 8.5;
    par.dPar4 = 9.5;
    par.nPar1 = -10;
    par.bPar3 = false;
    par.wPar6 = 0x0B0A;
    par.bPar4 = false;
    par.bPar5 = true;
    par.nPar2 = 12;
    par.bPar6 = true;
    par.bPar7 = false;
    par.bPar8 = true;
    par.bPar9 = false;
}

const Bytes kFilledPar = Bytes()
                             .U16(0x0201)
                             .U16(0xFFFF)
                             .U16(0x0605)
                             .U16(0x8007)
                             .F64(1.5)
                             .F64(-2.5)
                             .I32(-3)
                             .I32(0)
                             .F64(4.5)
                             .I32(-5)
                             .F64(6.5)
                             .I32(7)
                             .I32(1)
                             .U16(0x0908)
                             .F64(8.5)
                             .F64(9.5)
                             .I16(-10)
                             .I32(0)
                             .U16(0x0B0A)
                             .I32(0)
                             .I32(1)
                             .I16(12)
                             .I32(1)
                             .I32(0)
                             .I32(1)
                             .I32(0);

TEST(OpzPostProcRecord, EveryParameterHasItsPlace) {
    const Settings settings;
    COpzPostProc opz;
    FillPar(opz.ParPostProc);
    opz.bDettScanned = true;
    for (const short version : kVersions)
        EXPECT_EQ(Dump(Record(opz, version)), Dump(Bytes().Raw(kFilledPar).I32(1).I32(0).I32(0).Get()));
}

// Everything of the main record as a list of numbers, each with the offset behind it.
struct Field {
    std::size_t end;
    double (*get)(const COpzPostProc&);
    double value;  // in kFilledPar
};

const Field kFields[] = {
    {2, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.wPar1); }, 0x0201},
    {4, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.wPar2); }, 0xFFFF},
    {6, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.wPar3); }, 0x0605},
    {8, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.wPar4); }, 0x8007},
    {16, [](const COpzPostProc& o) { return o.ParPostProc.dPar1; }, 1.5},
    {24, [](const COpzPostProc& o) { return o.ParPostProc.dPar2; }, -2.5},
    {28, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.ePar1); }, -3},
    {32, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar1); }, 0},
    {40, [](const COpzPostProc& o) { return o.ParPostProc.aValPair[0].dVal; }, 4.5},
    {44, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.aValPair[0].nVal); }, -5},
    {52, [](const COpzPostProc& o) { return o.ParPostProc.aValPair[1].dVal; }, 6.5},
    {56, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.aValPair[1].nVal); }, 7},
    {60, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar2); }, 1},
    {62, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.wPar5); }, 0x0908},
    {70, [](const COpzPostProc& o) { return o.ParPostProc.dPar3; }, 8.5},
    {78, [](const COpzPostProc& o) { return o.ParPostProc.dPar4; }, 9.5},
    {80, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.nPar1); }, -10},
    {84, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar3); }, 0},
    {86, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.wPar6); }, 0x0B0A},
    {90, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar4); }, 0},
    {94, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar5); }, 1},
    {96, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.nPar2); }, 12},
    {100, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar6); }, 1},
    {104, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar7); }, 0},
    {108, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar8); }, 1},
    {112, [](const COpzPostProc& o) { return static_cast<double>(o.ParPostProc.bPar9); }, 0},
    {116, [](const COpzPostProc& o) { return static_cast<double>(o.bDettScanned); }, 1},
};

TEST(OpzPostProcRecord, EveryParameterIsReadAndEveryPrefixGivesWhatItHolds) {
    const Settings settings;
    const std::string record = Bytes().Raw(kFilledPar).I32(1).I32(0).I32(0).Get();
    for (std::size_t size = 0; size <= record.size(); ++size) {
        ifpstream in(record.data(), size, 1400);
        COpzPostProc opz;
        opz.LeggeDaFile(in);
        for (const Field& field : kFields)
            ASSERT_EQ(field.get(opz), size >= field.end ? field.value : 0)
                << size << " field to " << field.end;
        EXPECT_EQ(opz.GetNumPtBaseLineDett() + opz.GetNumPtBaseLineBase(), 0);
        EXPECT_EQ(in.IsOk(), size == 124) << size;
        EXPECT_EQ(in.GetRemaining(), 0) << size;
    }
}

TEST(OpzPostProcRecord, ChoicesAndFurtherParametersAreNotInIt) {
    const Settings settings;
    const std::string record = Record(COpzPostProc(), 1400);
    ifpstream in(record.data(), record.size(), 1400);
    COpzPostProc opz;
    opz.TpInsCoordBase = 5;
    opz.sSuffissoPtVecchi = "kept";
    opz.dExtra1 = 6;
    opz.nExtra5 = 7;
    opz.LeggeDaFile(in);
    EXPECT_EQ(opz.TpInsCoordBase, 5);
    EXPECT_EQ(opz.sSuffissoPtVecchi, "kept");
    EXPECT_EQ(opz.dExtra1, 6);
    EXPECT_EQ(opz.nExtra5, 7);
    COpzPostProc other;
    other.TpInsCoordBase = 5;
    other.dExtra1 = 6;
    EXPECT_EQ(Dump(Record(other, 1400)), Dump(record));
}

TEST(OpzPostProcRecord, WideNumbersLoseTheirHighHalf) {
    const Settings settings;
    const struct {
        std::int32_t set, read;
    } rows[] = {{32767, 32767}, {-32768, -32768}, {32768, -32768}, {65535, -1}, {65536, 0}, {-65537, -1}};
    for (const auto& row : rows) {
        COpzPostProc opz;
        opz.ParPostProc.nPar1 = row.set;
        opz.ParPostProc.nPar2 = row.set;
        const COpzPostProc read = Read(Record(opz, 1400), 1400);
        EXPECT_EQ(read.ParPostProc.nPar1, row.read);
        EXPECT_EQ(read.ParPostProc.nPar2, row.read);
    }
}

TEST(OpzPostProcRecord, OnlyOneIsTrue) {
    const Settings settings;
    for (const std::int32_t number :
         {0, 1, 2, -1, 256, 0x01000000, std::numeric_limits<std::int32_t>::max()}) {
        const Bytes file = Bytes()
                               .I32(number)
                               .I32(number)
                               .I32(number)
                               .Text("")
                               .Text("")
                               .I32(0)
                               .I32(0)
                               .Text("")
                               .I32(number)
                               .F64(0, 8);
        const Bytes record = Bytes()
                                 .U16(0)
                                 .U16(0)
                                 .U16(0)
                                 .U16(0)
                                 .F64(0, 2)
                                 .I32(0)
                                 .I32(number)
                                 .F64(0)
                                 .I32(0)
                                 .F64(0)
                                 .I32(0)
                                 .I32(number)
                                 .U16(0)
                                 .F64(0, 2)
                                 .U16(0)
                                 .I32(number)
                                 .U16(0)
                                 .I32(number)
                                 .I32(number)
                                 .U16(0)
                                 .I32(number)
                                 .I32(number)
                                 .I32(number)
                                 .I32(number)
                                 .I32(number)
                                 .I32(1)
                                 .Raw(file)
                                 .I32(0);
        const COpzPostProc opz = Read(record.Get(), 1400);
        const COpzPostProc::TParPostProc& par = opz.ParPostProc;
        const File& read = opz.vecPtBaseLineDett.at(0);
        for (const bool value :
             {par.bPar1, par.bPar2, par.bPar3, par.bPar4, par.bPar5, par.bPar6, par.bPar7, par.bPar8,
              par.bPar9, opz.bDettScanned, read.bFlag1, read.bFlag3, read.bFlag4, read.bAltValue})
            EXPECT_EQ(value, number == 1) << number;
    }
}

// --- records of files --------------------------------------------------------------------------------------

File FilledFile() {
    File file;
    file.bFlag1 = false;
    file.bFileExists = true;
    file.bFlag2 = true;
    file.bFlag3 = false;
    file.bFlag4 = true;
    file.nIdx1 = 50;
    file.sText1 = "one";
    file.sFile = "D:\\a.tps";
    file.nIdx2 = -2;
    file.nIdx3 = 3;
    file.sText2 = "two";
    file.bAltValue = true;
    file.dValue = 3.5;
    file.dA1 = 11;
    file.dA2 = 12;
    file.dA3 = 13;
    file.dB1 = 21;
    file.dB2 = 22;
    file.dB3 = 23;
    file.vecStringResults1 = {"line"};
    file.vecStringResults2 = {"line"};
    file.sWork1 = "work";
    file.nWork64 = 64;
    return file;
}

/// The record of FilledFile, by the layout of each version.
Bytes FilledFileBytes(short version) {
    Bytes bytes;
    bytes.I32(0);
    if (version >= 1300) bytes.I32(0).I32(1);
    bytes.Text("one").Text("D:\\a.tps").I32(-2);
    if (version >= 1003)
        bytes.I32(3).Text("two").I32(1).F64(3.5);
    else
        bytes.F64(kUnset).F64(3.5);
    return bytes.F64(11).F64(12).F64(13).F64(21).F64(22).F64(23).F64(0.0);
}

Bytes DefaultFileBytes(short version) {
    Bytes bytes;
    bytes.I32(1);
    if (version >= 1300) bytes.I32(1).I32(0);
    bytes.Text("").Text("").I32(-1);
    if (version >= 1003)
        bytes.I32(1).Text("").I32(0).F64(kUnset);
    else
        bytes.F64(kUnset).F64(kUnset);
    return bytes.F64(kUnset, 6).F64(0.0);
}

TEST(OpzPostProcRecord, FilesTakeTheBytesOfTheirVersion) {
    const Settings settings;
    COpzPostProc opz;
    opz.vecPtBaseLineDett = {FilledFile(), File()};
    opz.vecPtBaseLineBase = {File(), File(), FilledFile()};
    for (const short version : kVersions) {
        const std::size_t size = version >= 1300 ? 100 : version >= 1003 ? 92 : 88;
        ASSERT_EQ(DefaultFileBytes(version).Size(), size) << version;
        EXPECT_EQ(Dump(Record(opz, version)), Dump(Bytes()
                                                       .Raw(kDefaultPar)
                                                       .I32(0)
                                                       .I32(2)
                                                       .Raw(FilledFileBytes(version))
                                                       .Raw(DefaultFileBytes(version))
                                                       .I32(3)
                                                       .Raw(DefaultFileBytes(version))
                                                       .Raw(DefaultFileBytes(version))
                                                       .Raw(FilledFileBytes(version))
                                                       .Get()))
            << version;
    }
}

TEST(OpzPostProcRecord, UnsetDoubleHasItsBits) {
    const Settings settings;
    EXPECT_EQ(Dump(Bytes().F64(kUnset).Get()), Dump(Bytes().Hex("991377b76ec48169").Get()));
}

void ExpectFilledFile(const File& read, short version) {
    const File fresh;
    EXPECT_FALSE(read.bFlag1) << version;
    EXPECT_EQ(read.bFlag3, version < 1300) << version;
    EXPECT_EQ(read.bFlag4, version >= 1300) << version;
    EXPECT_EQ(read.sText1, "one") << version;
    EXPECT_EQ(read.sFile, "D:\\a.tps") << version;
    EXPECT_EQ(read.nIdx2, -2) << version;
    EXPECT_EQ(read.nIdx3, version >= 1003 ? 3 : 1) << version;
    EXPECT_EQ(read.sText2, version >= 1003 ? "two" : "") << version;
    EXPECT_TRUE(read.bAltValue) << version;
    EXPECT_EQ(read.dValue, 3.5) << version;
    EXPECT_EQ(read.dA1, 11) << version;
    EXPECT_EQ(read.dA2, 12) << version;
    EXPECT_EQ(read.dA3, 13) << version;
    EXPECT_EQ(read.dB1, 21) << version;
    EXPECT_EQ(read.dB2, 22) << version;
    EXPECT_EQ(read.dB3, 23) << version;
    // Never in the record.
    EXPECT_EQ(read.bFileExists, fresh.bFileExists);
    EXPECT_EQ(read.bFlag2, fresh.bFlag2);
    EXPECT_EQ(read.nIdx1, fresh.nIdx1);
    EXPECT_TRUE(read.vecStringResults1.empty());
    EXPECT_TRUE(read.vecStringResults2.empty());
    EXPECT_EQ(read.sWork1, "");
    EXPECT_EQ(read.nWork64, -1);
}

TEST(OpzPostProcRecord, FilesAreReadInEveryVersion) {
    const Settings settings;
    for (const short version : kVersions) {
        const Bytes record = Bytes()
                                 .Raw(kDefaultPar)
                                 .I32(1)
                                 .I32(1)
                                 .Raw(FilledFileBytes(version))
                                 .I32(2)
                                 .Raw(DefaultFileBytes(version))
                                 .Raw(FilledFileBytes(version));
        const COpzPostProc opz = Read(record.Get(), version);
        EXPECT_TRUE(opz.bDettScanned);
        ASSERT_EQ(opz.GetNumPtBaseLineDett(), 1);
        ASSERT_EQ(opz.GetNumPtBaseLineBase(), 2);
        ExpectFilledFile(opz.vecPtBaseLineDett[0], version);
        ExpectFilledFile(opz.vecPtBaseLineBase[1], version);
        EXPECT_EQ(opz.vecPtBaseLineBase[0].dValue, kUnset);
        EXPECT_FALSE(opz.vecPtBaseLineBase[0].bAltValue);
    }
}

TEST(OpzPostProcRecord, ReservedDoubleMayHoldAnything) {
    const Settings settings;
    std::string file = FilledFileBytes(1400).Get();
    file.replace(file.size() - 8, 8, Bytes().F64(123).Get());
    const COpzPostProc opz = Read(Bytes().Raw(kDefaultPar).I32(0).I32(1).Raw(file).I32(0).Get(), 1400);
    ExpectFilledFile(opz.vecPtBaseLineDett.at(0), 1400);
}

TEST(OpzPostProcRecord, OldFilesHoldTwoValues) {
    const Settings settings;
    const double nan = std::nan("");
    const double above = std::nextafter(kLimit, 1e300), below = std::nextafter(kLimit, 0.0);
    const struct {
        double first, second;
        bool alt;
        double value;
    } rows[] = {
        {kUnset, 3.5, true, 3.5},
        {3.5, kUnset, false, 3.5},
        {kUnset, kUnset, false, kUnset},
        {3.5, 4.5, false, 3.5},
        {kUnset, -3.5, true, -3.5},
        {above, below, true, below},
        {kLimit, 3.5, false, kLimit},     // not above the limit
        {kUnset, kLimit, false, kUnset},  // not below it
        {above, kLimit, false, above},
        {std::numeric_limits<double>::infinity(), 3.5, true, 3.5},
        {kUnset, -std::numeric_limits<double>::infinity(), true, -std::numeric_limits<double>::infinity()},
        {nan, 3.5, false, nan},
        {kUnset, nan, false, kUnset},
    };
    for (const auto& row : rows) {
        const Bytes file = Bytes().I32(1).Text("").Text("f").I32(0).F64(row.first).F64(row.second).F64(0, 7);
        const COpzPostProc opz = Read(Bytes().Raw(kDefaultPar).I32(0).I32(1).Raw(file).I32(0).Get(), 1002);
        const File& read = opz.vecPtBaseLineDett.at(0);
        EXPECT_EQ(read.bAltValue, row.alt) << row.first << " " << row.second;
        if (std::isnan(row.value))
            EXPECT_TRUE(std::isnan(read.dValue));
        else
            EXPECT_EQ(read.dValue, row.value) << row.first << " " << row.second;
    }
}

TEST(OpzPostProcRecord, OldFilesAreWrittenWithTheValueInItsPlace) {
    const Settings settings;
    for (const bool alt : {false, true}) {
        COpzPostProc opz;
        opz.AddDataPtBaseLineDett("");
        opz.vecPtBaseLineDett[0].bAltValue = alt;
        opz.vecPtBaseLineDett[0].dValue = 3.5;
        const std::string pair = Record(opz, 1002).substr(120 + 16, 16);
        EXPECT_EQ(Dump(pair), Dump(Bytes().F64(alt ? kUnset : 3.5).F64(alt ? 3.5 : kUnset).Get()));
    }
}

TEST(OpzPostProcRecord, ReadingAppendsToTheLists) {
    const Settings settings;
    COpzPostProc opz;
    opz.AddDataPtBaseLineDett("d");
    opz.AddDataPtBaseLineBase("b");
    const std::string record = Record(opz, 1400);
    for (int i = 0; i < 2; ++i) {
        ifpstream in(record.data(), record.size(), 1400);
        opz.LeggeDaFile(in);
    }
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 3);
    EXPECT_EQ(opz.GetNumPtBaseLineBase(), 3);
}

TEST(OpzPostProcRecord, SavedAndReadItIsTheSame) {
    const Settings settings;
    COpzPostProc opz;
    FillPar(opz.ParPostProc);
    opz.bDettScanned = true;
    opz.vecPtBaseLineDett = {FilledFile(), File()};
    opz.vecPtBaseLineBase = {FilledFile()};
    for (int v = 700; v <= 1400; ++v) {
        const auto version = static_cast<short>(v);
        const std::string record = Record(opz, version);
        ASSERT_EQ(Dump(Record(Read(record, version), version)), Dump(record)) << v;
    }
}

TEST(OpzPostProcRecord, TextsAreBytes) {
    const Settings settings;
    COpzPostProc opz;
    opz.AddDataPtBaseLineDett(std::string("a\0\xFF\r\n", 5));
    opz.vecPtBaseLineDett[0].sText2 = std::string(100000, 'x');
    const COpzPostProc read = Read(Record(opz, 1400), 1400);
    EXPECT_EQ(read.vecPtBaseLineDett.at(0).sFile, std::string("a\0\xFF\r\n", 5));
    EXPECT_EQ(read.vecPtBaseLineDett.at(0).sText2.size(), 100000u);
}

// --- damage ------------------------------------------------------------------------------------------------

TEST(OpzPostProcRecord, CountsAndLengthsBelowOneAreNone) {
    const Settings settings;
    for (const std::int32_t none : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        const Bytes file = Bytes().I32(1).I32(none).I32(none).I32(7).F64(0, 9);
        const COpzPostProc opz = Read(Bytes().Raw(kDefaultPar).I32(0).I32(none).I32(1).Raw(file).Get(), 1002);
        EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
        ASSERT_EQ(opz.GetNumPtBaseLineBase(), 1);
        EXPECT_EQ(opz.vecPtBaseLineBase[0].nIdx2, 7);
        EXPECT_EQ(opz.vecPtBaseLineBase[0].sFile, "");
    }
}

TEST(OpzPostProcRecord, EveryPrefixOfAFileGivesWhatItHolds) {
    const Settings settings;
    for (const short version : {short{1002}, short{1003}, short{1299}, short{1300}, short{1400}}) {
        const std::string before = Bytes().Raw(kDefaultPar).I32(1).Get();
        const std::string record = before + Bytes().I32(1).Raw(FilledFileBytes(version)).I32(0).Get();
        const std::size_t start = before.size() + 4;
        const std::size_t flags = start + 4 + (version >= 1300 ? 8 : 0);
        const std::size_t text1 = flags + 4, file = text1 + 3 + 4, idx2 = file + 8 + 4;
        const std::size_t value = version >= 1003 ? idx2 + 4 + 7 + 4 + 8 : idx2 + 16;
        const std::size_t a1 = value + 8, b3 = value + 48, end = b3 + 8;
        ASSERT_EQ(record.size(), end + 4);
        for (std::size_t size = before.size(); size < record.size(); ++size) {
            ifpstream in(record.data(), size, version);
            COpzPostProc opz;
            opz.LeggeDaFile(in);
            EXPECT_FALSE(in.IsOk()) << size;
            EXPECT_EQ(in.GetRemaining(), 0) << size;
            EXPECT_TRUE(opz.bDettScanned);
            EXPECT_EQ(opz.GetNumPtBaseLineBase(), 0);
            ASSERT_EQ(opz.GetNumPtBaseLineDett(), size >= start ? 1 : 0) << size;
            if (size < start) continue;
            const File& read = opz.vecPtBaseLineDett[0];
            EXPECT_FALSE(read.bFlag1) << size;
            if (version >= 1300) {
                EXPECT_EQ(read.bFlag4, size >= flags) << size;
            }
            // Of a text that is cut, what remains.
            EXPECT_EQ(read.sText1, size >= text1 ? std::string("one").substr(0, size - text1) : "") << size;
            EXPECT_EQ(read.sFile, size >= file ? std::string("D:\\a.tps").substr(0, size - file) : "")
                << size;
            EXPECT_EQ(read.nIdx2, size >= idx2 ? -2 : 0) << size;
            if (version >= 1003) {
                EXPECT_EQ(read.dValue, size >= value ? 3.5 : 0.0) << size;
                EXPECT_EQ(read.bAltValue, size >= value - 8) << size;
            }
            EXPECT_EQ(read.dA1, size >= a1 ? 11 : 0) << size;
            EXPECT_EQ(read.dB3, size >= b3 ? 23 : 0) << size;
        }
    }
}

TEST(OpzPostProcRecord, CountBeyondTheStreamEndsByTheStreamsLimit) {
    const Settings settings;
    const std::string record = Bytes()
                                   .Raw(kDefaultPar)
                                   .I32(0)
                                   .I32(std::numeric_limits<std::int32_t>::max())
                                   .Raw(FilledFileBytes(1400))
                                   .Get();
    ifpstream in(record.data(), record.size(), 1400);
    in.SetPastEndLimit(4096);
    COpzPostProc opz;
    EXPECT_THROW(opz.LeggeDaFile(in), StreamExhausted);
    ASSERT_GE(opz.GetNumPtBaseLineDett(), 1) << "what was read stays";
    EXPECT_LE(opz.GetNumPtBaseLineDett(), 1000);
    ExpectFilledFile(opz.vecPtBaseLineDett[0], 1400);
}

TEST(OpzPostProcRecord, NoBitFlipBreaksTheObject) {
    const Settings settings;
    COpzPostProc full;
    full.vecPtBaseLineDett = {FilledFile()};
    full.vecPtBaseLineBase = {FilledFile(), File()};
    for (const short version : {short{1002}, short{1200}, short{1400}}) {
        const std::string record = Record(full, version);
        for (std::size_t bit = 0; bit < record.size() * 8; ++bit) {
            std::string damaged = record;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
            ifpstream in(damaged.data(), damaged.size(), version);
            in.SetPastEndLimit(4096);
            COpzPostProc opz;
            try {
                opz.LeggeDaFile(in);
            } catch (const StreamExhausted&) {
            }
            ASSERT_LE(in.GetPosition(), static_cast<std::int64_t>(damaged.size()));
            for (const File& file : opz.vecPtBaseLineDett) ASSERT_LE(file.sFile.size(), damaged.size());
        }
    }
}

}  // namespace
