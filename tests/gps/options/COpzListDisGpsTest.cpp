// The list of GPS display options: what it holds, its copies, the form of its record in each version.
#include "gps/options/COpzListDisGps.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "gps/options/COpzDisGrpGps.h"
#include "gps/options/COpzDisPunGps.h"
#include "platform/base/CIniFile.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/entity/CSymbolUsedTracer.h"
#include "tests/Bytes.h"
#include "tests/Settings.h"
#include "tests/gps/options/EntryValues.h"
#include "tests/host/base/VirtualSlot.h"

/// The two pointers that nothing looks through.
struct COpzListDisGpsLayout {
    static const COpzDisPunGps* Pun(const COpzListDisGps& list) { return list.opzPun_; }
    static const COpzDisGrpGps* Grp(const COpzListDisGps& list) { return list.opzGrp_; }
};

namespace {

using test::Bytes;
using test::Dump;
using test::Fill;
using test::Settings;
using test::Values;
using Layout = COpzListDisGpsLayout;

constexpr const char* kPunDefaults = "1 5 5 5 5 3 0 0 0 0";
constexpr const char* kGrpDefaults = "1 4 4 4 4 6 0 0 0 0";

struct After : COpzListDisGps {
    using COpzListDisGps::COpzListDisGps;
    virtual void Next() {}
};

TEST(OpzListDisGps, AddsNoVirtualOperation) {
    EXPECT_EQ(VirtualSlot(&COpzListDisGps::Clone), 2);
    EXPECT_EQ(VirtualSlot(&COpzListDisGps::doSetInIni), 13);
    EXPECT_EQ(VirtualSlot(&After::Next), 14);
    EXPECT_EQ(VirtualSlot(&COpzListDisGps::SalvaInFile), -1);
    EXPECT_EQ(sizeof(COpzListDisGps), sizeof(COpzListDisEgn) + 2 * sizeof(void*));
}

TEST(OpzListDisGps, NewListHasAPointAndABaseEntry) {
    const Settings settings;
    COpzListDisEgn parent;
    COpzListDisGps list(&parent);
    EXPECT_EQ(list.GetListPadre(), &parent);
    EXPECT_EQ(list.GetSezioneIni(), "DIS-GPS");
    EXPECT_EQ(list.GetNomeOpzList(), "Entit\xC3\xA0 GPS");
    EXPECT_EQ(list.GetTipoOpzList(), 2);
    ASSERT_EQ(list.GetNumOpzNor(), 2);
    EXPECT_EQ(list.GetNumOpzCom(), 0);
    EXPECT_EQ(list.GetOpzNor(0).GetNomeOpz(), "Punti GPS");
    EXPECT_EQ(list.GetOpzNor(1).GetNomeOpz(), "Basi GPS");
    EXPECT_NE(dynamic_cast<COpzDisPunGps*>(&list.GetOpzPun()), nullptr);
    EXPECT_NE(dynamic_cast<COpzDisGrpGps*>(&list.GetOpzGrp()), nullptr);
    EXPECT_EQ(Values(list.GetOpzPun()), kPunDefaults);
    EXPECT_EQ(Values(list.GetOpzGrp()), kGrpDefaults);
    EXPECT_EQ(settings.Text(), "") << "nothing is written";
}

TEST(OpzListDisGps, EntriesReadTheSettingsUnderTheirNames) {
    const Settings settings;
    CIniFile ini;
    ASSERT_TRUE(ini.WriteShort("DIS-GPS", "VisList", 0));
    ASSERT_TRUE(ini.WriteShort("DIS-GPS", "ColSimb", 99));
    ASSERT_TRUE(ini.WriteShort("DIS-GPS-Punti GPS", "VisSimb", 20));
    ASSERT_TRUE(ini.WriteShort("DIS-GPS-Punti GPS", "ColSimb", 21));
    ASSERT_TRUE(ini.WriteShort("DIS-GPS-Basi GPS", "VisSimb", 30));
    ASSERT_TRUE(ini.WriteShort("DIS-GPS-Basi GPS", "ColSimb", 31));
    COpzListDisGps list(nullptr);
    EXPECT_EQ(list.GetVisList(), 0);
    EXPECT_EQ(Values(list.GetOpzPun()), "1 21 5 5 5 3 0 0 0 0");
    EXPECT_EQ(Values(list.GetOpzGrp()), "30 31 4 4 4 6 0 0 0 0");
}

TEST(OpzListDisGps, SettingsOfPointsAndBasesStayApart) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    Fill(list.GetOpzPun(), 100);
    Fill(list.GetOpzGrp(), 200);
    list.SetInIni();
    COpzListDisGps other(nullptr);
    EXPECT_EQ(Values(other.GetOpzPun()), "1 101 102 103 104 105 106 107 108 109");
    EXPECT_EQ(Values(other.GetOpzGrp()), "200 201 202 203 204 205 206 207 208 209");
}

TEST(OpzListDisGps, ResetGivesBothEntriesTheirDefaults) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    Fill(list.GetOpzPun(), 100);
    Fill(list.GetOpzGrp(), 200);
    list.RisettaOpz();
    EXPECT_EQ(Values(list.GetOpzPun()), kPunDefaults);
    EXPECT_EQ(Values(list.GetOpzGrp()), kGrpDefaults);
}

TEST(OpzListDisGps, EntriesAreFoundByTheirPositionOnly) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    const COpzDisEgn* const base = &list.GetOpzGrp();
    ASSERT_TRUE(list.DelOpzNorAt(0));
    EXPECT_EQ(&list.GetOpzPun(), base);
    auto* const other = new COpzDisEgn("other");
    list.AddOpzNor(other);
    EXPECT_EQ(&list.GetOpzGrp(), other);
    list.DelOpzNorAt(0);
    list.DelOpzNorAt(0);
    EXPECT_EQ(list.GetOpzPun().GetNomeOpz(), "") << "no entry, no crash";
}

TEST(OpzListDisGps, CopiesHaveTheirOwnEntriesButTheSourcesPointers) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    Fill(list.GetOpzPun(), 100);
    EXPECT_EQ(Layout::Pun(list), &list.GetOpzPun());
    EXPECT_EQ(Layout::Grp(list), &list.GetOpzGrp());

    COpzListDisGps copied(list);
    COpzListDisGps assigned(nullptr);
    assigned = list;
    const std::unique_ptr<COpzListDisEgn> clone(static_cast<COpzListDisEgn&>(list).Clone());
    auto* const cloned = dynamic_cast<COpzListDisGps*>(clone.get());
    ASSERT_NE(cloned, nullptr);
    for (COpzListDisGps* copy : {&copied, &assigned, cloned}) {
        EXPECT_EQ(Layout::Pun(*copy), &list.GetOpzPun());
        EXPECT_EQ(Layout::Grp(*copy), &list.GetOpzGrp());
        EXPECT_NE(&copy->GetOpzPun(), &list.GetOpzPun());
        EXPECT_EQ(&copy->GetOpzPun(), &copy->GetOpzNor(0));
        EXPECT_EQ(&copy->GetOpzGrp(), &copy->GetOpzNor(1));
        EXPECT_NE(dynamic_cast<COpzDisPunGps*>(&copy->GetOpzPun()), nullptr);
        EXPECT_EQ(Values(copy->GetOpzPun()), Values(list.GetOpzPun()));
        EXPECT_EQ(copy->GetNomeOpzList(), "Entit\xC3\xA0 GPS");
        EXPECT_EQ(copy->GetTipoOpzList(), 2);
    }
}

TEST(OpzListDisGps, CopyOutlivesItsSource) {
    const Settings settings;
    auto list = std::make_unique<COpzListDisGps>(nullptr);
    Fill(list->GetOpzGrp(), 7);
    COpzListDisGps copy(*list);
    list.reset();
    EXPECT_EQ(Values(copy.GetOpzGrp()), "7 8 9 10 11 12 13 14 15 16");
    const COpzListDisGps again(copy);
    EXPECT_EQ(again.GetNumOpzNor(), 2);
}

// --- record ------------------------------------------------------------------------------------------------

Bytes EntryBytes(const char* name, int length, const char* values) {
    return Bytes().I32(length).Text(name).Hex(values);
}

// Point entry 100 to 109, base entry 200 to 209.
const Bytes kPun = EntryBytes("Punti GPS", 33, "6400 6500 6600 6700 6800 6900 6a00 6b00 6c00 6d00");
const Bytes kGrp = EntryBytes("Basi GPS", 32, "c800 c900 ca00 cb00 cc00 cd00 ce00 cf00 d000 d100");
const Bytes kDataList = Bytes().I32(1).I32(77).I32(2).Raw(kPun).Raw(kGrp);
const Bytes kFull =
    Bytes().I32(2).I32(102).Text("Entit\xC3\xA0 GPS").I32(2).I16(1).I32(2).Raw(kPun).Raw(kGrp).I32(0);

struct Tracer : CSymbolUsedTracer {
    void SymbolUsed(short tipoSimb) override { told += std::to_string(tipoSimb) + " "; }
    std::string told;
};

TEST(OpzListDisGps, WrittenFormChangesAtVersion742) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    Fill(list.GetOpzPun(), 100);
    Fill(list.GetOpzGrp(), 200);
    for (int v = 0; v <= 1401; ++v) {
        const auto version = static_cast<short>(v);
        ofpstream out(version);
        Tracer tracer;
        list.SalvaInFile(out, version, &tracer);
        ASSERT_EQ(Dump(out.GetBytes()), Dump((v < 742 ? kDataList : kFull).Get())) << v;
        ASSERT_EQ(tracer.told, v < 742 ? "" : "105 205 ") << v;
    }
}

TEST(OpzListDisGps, FormGoesByTheArgumentNotByTheStream) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    Fill(list.GetOpzPun(), 100);
    Fill(list.GetOpzGrp(), 200);
    ofpstream older(1400), newer(700);
    list.SalvaInFile(older, 741, nullptr);
    list.SalvaInFile(newer, 742, nullptr);
    EXPECT_EQ(Dump(older.GetBytes()), Dump(kDataList.Get()));
    EXPECT_EQ(Dump(newer.GetBytes()), Dump(kFull.Get()));
}

TEST(OpzListDisGps, ReadingGoesByNameFromVersion720On) {
    const Settings settings;
    // The entries the other way round: names and positions disagree.
    const std::string record = Bytes().I32(1).I32(77).I32(2).Raw(kGrp).Raw(kPun).Get();
    for (int v = 0; v <= 1401; ++v) {
        COpzListDisGps list(nullptr);
        ifpstream in(record.data(), record.size(), 1400);  // the argument counts, not the stream
        list.LeggeDaFile(in, true, static_cast<short>(v));
        ASSERT_EQ(list.GetOpzPun().GetVisSimb(), v < 720 ? 200 : 100) << v;
        ASSERT_EQ(list.GetOpzGrp().GetVisSimb(), v < 720 ? 100 : 200) << v;
        ASSERT_EQ(in.GetRemaining(), 0) << v;
        ASSERT_TRUE(in.IsOk()) << v;
    }
}

TEST(OpzListDisGps, SavedInAnyVersionItIsReadBack) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    Fill(list.GetOpzPun(), -5);
    Fill(list.GetOpzGrp(), 32758);
    for (int v = 0; v <= 1400; ++v) {
        const auto version = static_cast<short>(v);
        ofpstream out(version);
        list.SalvaInFile(out, version, nullptr);
        out.WriteInt(4711);
        ifpstream in(out.GetBytes().data(), out.GetBytes().size(), version);
        COpzListDisGps other(nullptr);
        other.LeggeDaFile(in, true, version);
        ASSERT_EQ(Values(other.GetOpzPun()), "-5 -4 -3 -2 -1 0 1 2 3 4") << v;
        ASSERT_EQ(Values(other.GetOpzGrp()), "32758 32759 32760 32761 32762 32763 32764 32765 32766 32767")
            << v;
        ASSERT_EQ(in.ReadInt(), 4711) << v;
    }
}

TEST(OpzListDisGps, WithoutLoadTheRecordIsPassedOver) {
    const Settings settings;
    for (const Bytes& record : {kDataList, kFull}) {
        for (const short version : {short{719}, short{720}, short{742}, short{1400}}) {
            COpzListDisGps list(nullptr);
            ifpstream in(record.Get().data(), record.Size(), version);
            list.LeggeDaFile(in, false, version);
            EXPECT_EQ(in.GetRemaining(), 0);
            EXPECT_TRUE(in.IsOk());
            EXPECT_EQ(Values(list.GetOpzPun()), kPunDefaults);
            EXPECT_EQ(Values(list.GetOpzGrp()), kGrpDefaults);
        }
    }
}

TEST(OpzListDisGps, LoadingLeavesTheSettingsAlone) {
    const Settings settings;
    COpzListDisGps list(nullptr);
    ifpstream in(kFull.Get().data(), kFull.Size(), 1400);
    list.LeggeDaFile(in, true, 1400);
    EXPECT_EQ(settings.Text(), "");
    EXPECT_EQ(list.GetOpzPun().GetVisSimb(), 100);
}

TEST(OpzListDisGps, EveryPrefixSetsWholeEntriesOnly) {
    const Settings settings;
    const std::string record = kFull.Get();
    const std::size_t pun = 8 + 15 + 4 + 2 + 4 + 37, grp = pun + 36;
    ASSERT_EQ(record.size(), grp + 4);
    for (std::size_t size = 0; size < record.size(); ++size) {
        COpzListDisGps list(nullptr);
        ifpstream in(record.data(), size, 1400);
        list.LeggeDaFile(in, true, 1400);
        EXPECT_EQ(list.GetOpzPun().GetVisSimb(), size >= pun ? 100 : 1) << size;
        EXPECT_EQ(list.GetOpzPun().GetLwQuotSimb(), size >= pun ? 109 : 0) << size;
        EXPECT_EQ(list.GetOpzGrp().GetVisSimb(), size >= grp ? 200 : 1) << size;
        EXPECT_FALSE(in.IsOk()) << size;
        EXPECT_EQ(in.GetRemaining(), 0) << size;
    }
}

}  // namespace
