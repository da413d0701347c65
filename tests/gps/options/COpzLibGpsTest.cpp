// Options of a field book: defaults, setting, copies, record.
#include "gps/options/COpzLibGps.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "platform/base/CIniFile.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"
#include "tests/Settings.h"

namespace {

using test::Bytes;
using test::Dump;
using test::Settings;

constexpr short kVersions[] = {0,    719,  720,  721,  741,  742,  743,  749,  750,  751,  880,  881,
                               882,  902,  903,  904,  1001, 1002, 1003, 1004, 1005, 1105, 1106, 1107,
                               1299, 1300, 1301, 1310, 1311, 1312, 1399, 1400, 1401, 32767};

void ExpectValues(const COpzLibGps& opz, short valore, bool cmp, bool a, bool b, bool c) {
    EXPECT_EQ(opz.OpzValore, valore);
    EXPECT_EQ(opz.CalcLibCmp, cmp);
    EXPECT_EQ(opz.OpzFlagA, a);
    EXPECT_EQ(opz.OpzFlagB, b);
    EXPECT_EQ(opz.OpzFlagC, c);
}

COpzLibGps Filled() {
    COpzLibGps opz;
    opz.OpzValore = -2;
    opz.CalcLibCmp = false;
    opz.OpzFlagA = true;
    opz.OpzFlagB = true;
    opz.OpzFlagC = true;
    return opz;
}

TEST(OpzLibGps, IsAPlainValue) { EXPECT_FALSE(std::is_polymorphic_v<COpzLibGps>); }

TEST(OpzLibGps, WithoutSettingOnlyCalcLibCmpIsTrue) {
    const Settings settings;
    ExpectValues(COpzLibGps(), 0, true, false, false, false);
}

TEST(OpzLibGps, ConstructionReadsTheSetting) {
    const Settings settings;
    settings.SetText(
        "[OPZ-GPS-VAR]\nCalcLibCmp = 0\nOpzValore = 7\nOpzFlagA = 1\nOpzFlagB = 1\nOpzFlagC = 1\n");
    ExpectValues(COpzLibGps(), 0, false, false, false, false);
}

TEST(OpzLibGps, GetDaIniReadsOnlyCalcLibCmp) {
    const Settings settings;
    COpzLibGps opz = Filled();
    opz.GetDaIni();
    ExpectValues(opz, -2, true, true, true, true);
}

TEST(OpzLibGps, SetInIniWritesOnlyCalcLibCmp) {
    const Settings settings;
    Filled().SetInIni();
    EXPECT_EQ(settings.Text(), "[OPZ-GPS-VAR]\nCalcLibCmp = 0\n");
    COpzLibGps opz;
    EXPECT_FALSE(opz.CalcLibCmp);
    opz.CalcLibCmp = true;
    opz.SetInIni();
    EXPECT_TRUE(CIniFile().GetBool("OPZ-GPS-VAR", "CalcLibCmp", false));
}

TEST(OpzLibGps, CopiesHaveAllFive) {
    const Settings settings;
    const COpzLibGps filled = Filled();
    const COpzLibGps copied(filled);
    ExpectValues(copied, -2, false, true, true, true);
    COpzLibGps assigned;
    EXPECT_EQ(&(assigned = filled), &assigned);
    ExpectValues(assigned, -2, false, true, true, true);
}

TEST(OpzLibGps, RecordIsTheSameInEveryVersion) {
    const Settings settings;
    for (const short version : kVersions) {
        ofpstream out(version);
        Filled().SalvaInFile(out, version);
        EXPECT_EQ(Dump(out.GetBytes()), Dump(Bytes().Hex("feff 00000000 01000000 01000000").Get()))
            << version;
    }
}

TEST(OpzLibGps, EachBoolHasItsPlace) {
    const Settings settings;
    for (int i = 0; i < 3; ++i) {
        COpzLibGps opz;
        opz.CalcLibCmp = i == 0;
        opz.OpzFlagA = i == 1;
        opz.OpzFlagB = i == 2;
        ofpstream out(1400);
        opz.SalvaInFile(out, 1400);
        EXPECT_EQ(Dump(out.GetBytes()), Dump(Bytes().I16(0).I32(i == 0).I32(i == 1).I32(i == 2).Get()));
    }
}

TEST(OpzLibGps, RecordIsReadInEveryVersion) {
    const Settings settings;
    const std::string bytes = Bytes().Hex("3930 00000000 01000000 01000000 2a").Get();
    for (const short version : kVersions) {
        ifpstream in(bytes.data(), bytes.size(), version);
        COpzLibGps opz;
        opz.LeggeDaFile(in, true, version);
        ExpectValues(opz, 12345, false, true, true, false);
        EXPECT_EQ(in.GetPosition(), 14);
        EXPECT_EQ(in.ReadUChar(), 42);
    }
}

TEST(OpzLibGps, PositiveNumbersAreTrue) {
    const Settings settings;
    const struct {
        std::int32_t number;
        bool value;
    } rows[] = {{0, false},  {1, true},   {2, true},          {7, true},
                {-1, false}, {256, true}, {2147483647, true}, {-2147483647 - 1, false}};
    for (const auto& row : rows) {
        const std::string bytes = Bytes().I16(0).I32(row.number).I32(row.number).I32(row.number).Get();
        ifpstream in(bytes.data(), bytes.size(), 1400);
        COpzLibGps opz;
        opz.CalcLibCmp = opz.OpzFlagA = opz.OpzFlagB = !row.value;
        opz.LeggeDaFile(in, true, 1400);
        ExpectValues(opz, 0, row.value, row.value, row.value, false);
    }
}

TEST(OpzLibGps, WithoutLoadTheRecordIsPassedOver) {
    const Settings settings;
    const std::string bytes = Bytes().I16(99).I32(1).I32(0).I32(0).U8(42).Get();
    ifpstream in(bytes.data(), bytes.size(), 1400);
    COpzLibGps opz = Filled();
    opz.LeggeDaFile(in, false, 1400);
    ExpectValues(opz, -2, false, true, true, true);
    EXPECT_EQ(in.GetPosition(), 14);
}

TEST(OpzLibGps, OpzFlagCIsNotInTheRecord) {
    const Settings settings;
    ofpstream out(1400);
    Filled().SalvaInFile(out, 1400);
    for (const bool before : {false, true}) {
        ifpstream in(out.GetBytes().data(), out.GetBytes().size(), 1400);
        COpzLibGps opz;
        opz.OpzFlagC = before;
        opz.LeggeDaFile(in, true, 1400);
        ExpectValues(opz, -2, false, true, true, before);
    }
}

TEST(OpzLibGps, LoadingLeavesTheSettingAlone) {
    const Settings settings;
    settings.SetText("[OPZ-GPS-VAR]\nCalcLibCmp = 1\n");
    ofpstream out(1400);
    Filled().SalvaInFile(out, 1400);
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), 1400);
    COpzLibGps opz;
    opz.LeggeDaFile(in, true, 1400);
    EXPECT_FALSE(opz.CalcLibCmp);
    EXPECT_EQ(settings.Text(), "[OPZ-GPS-VAR]\nCalcLibCmp = 1\n");
    EXPECT_TRUE(COpzLibGps().CalcLibCmp);
}

TEST(OpzLibGps, EveryPrefixGivesWhatItHolds) {
    const Settings settings;
    const std::string bytes = Bytes().I16(-2).I32(1).I32(1).I32(1).Get();
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        ifpstream in(bytes.data(), size, 1400);
        COpzLibGps opz = Filled();
        opz.LeggeDaFile(in, true, 1400);
        ExpectValues(opz, size >= 2 ? -2 : 0, size >= 6, size >= 10, size >= 14, true);
        EXPECT_EQ(in.IsOk(), size == 14);
        EXPECT_EQ(in.GetRemaining(), 0);
    }
}

}  // namespace
