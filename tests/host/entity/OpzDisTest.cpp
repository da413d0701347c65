// A display entry: its values, its settings, its copies.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "platform/base/CIniFile.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/entity/COpzDisEgn.h"
#include "tests/Bytes.h"
#include "tests/Settings.h"
#include "tests/host/base/VirtualSlot.h"

namespace {

using test::Bytes;
using test::Dump;
using test::Settings;

struct AfterOpzDis : COpzDisEgn {
    using COpzDisEgn::COpzDisEgn;
    virtual void Next() {}
};

/// Entry whose values are first, first + 1 and so on, in their order.
void Fill(COpzDisEgn& entry, short first) {
    entry.SetVisSimb(first++);
    entry.SetColSimb(first++);
    entry.SetColNome(first++);
    entry.SetColDesc(first++);
    entry.SetColQuot(first++);
    entry.SetTipoSimb(first++);
    entry.SetLwSimb(first++);
    entry.SetLwNameSimb(first++);
    entry.SetLwDescSimb(first++);
    entry.SetLwQuotSimb(first++);
}

/// The values in their order, as text.
std::string Values(const COpzDisEgn& entry) {
    std::string text;
    for (const short value : {entry.GetVisSimb(), entry.GetColSimb(), entry.GetColNome(), entry.GetColDesc(),
                              entry.GetColQuot(), entry.GetTipoSimb(), entry.GetLwSimb(),
                              entry.GetLwNameSimb(), entry.GetLwDescSimb(), entry.GetLwQuotSimb()})
        text += std::to_string(value) + " ";
    return text;
}

constexpr const char* kNew = "1 0 0 0 0 0 0 0 0 0 ";
constexpr const char* kFilled = "10 11 12 13 14 15 16 17 18 19 ";

TEST(OpzDis, VirtualOperationsStandInTheirOrder) {
    EXPECT_TRUE(std::has_virtual_destructor_v<COpzDisEgn>);
    EXPECT_EQ(VirtualSlot(&COpzDisEgn::Clone), 2);
    EXPECT_EQ(VirtualSlot(&COpzDisEgn::IsAllowUseGisSettings), 3);
    EXPECT_EQ(VirtualSlot(&COpzDisEgn::doRisettaOpz), 4);
    EXPECT_EQ(VirtualSlot(&COpzDisEgn::doGetDaIni), 5);
    EXPECT_EQ(VirtualSlot(&COpzDisEgn::doSetInIni), 6);
    EXPECT_EQ(VirtualSlot(&AfterOpzDis::Next), 7);
    EXPECT_EQ(VirtualSlot(&COpzDisEgn::GetDaIni), -1);
}

TEST(OpzDis, NewEntryShowsItsSymbolAndHasNothingElse) {
    const COpzDisEgn entry("X");
    EXPECT_EQ(Values(entry), kNew);
    EXPECT_EQ(entry.GetNomeOpz(), "");
    EXPECT_FALSE(entry.IsAllowUseGisSettings());
}

TEST(OpzDis, EveryValueHasItsOwnPlace) {
    COpzDisEgn entry("X");
    Fill(entry, 10);
    EXPECT_EQ(Values(entry), kFilled);
}

TEST(OpzDis, ResetKeepsTheName) {
    COpzDisEgn entry("X");
    entry.SetNomeOpz("name");
    Fill(entry, 10);
    entry.RisettaOpz();
    EXPECT_EQ(Values(entry), kNew);
    EXPECT_EQ(entry.GetNomeOpz(), "name");
}

TEST(OpzDis, SectionIsTextAndName) {
    COpzDisEgn entry("DIS-GPS");
    EXPECT_EQ(entry.GetSezioneIni(), "DIS-GPS");
    entry.SetNomeOpz("Punti GPS");
    EXPECT_EQ(entry.GetSezioneIni(), "DIS-GPS-Punti GPS");
    entry.SetNomeOpz("Basi GPS");
    EXPECT_EQ(entry.GetSezioneIni(), "DIS-GPS-Basi GPS");
    EXPECT_EQ(COpzDisEgn(nullptr).GetSezioneIni(), "");
}

TEST(OpzDis, AllTenValuesAreWrittenUnderTheirKeys) {
    const Settings settings;
    COpzDisEgn entry("X");
    entry.SetNomeOpz("n");
    Fill(entry, -2);
    entry.SetInIni();
    EXPECT_EQ(settings.Text(),
              "[X-n]\nVisSimb = -2\nColSimb = -1\nColNome = 0\nColDesc = 1\nColQuot = 2\nTipoSimb = 3\n"
              "LwSimb = 4\nLwNameSimb = 5\nLwDescSimb = 6\nLwQuotSimb = 7\n");
}

TEST(OpzDis, BaseReadsNoneOfThem) {
    const Settings settings;
    COpzDisEgn entry("X");
    Fill(entry, 10);
    entry.SetInIni();
    COpzDisEgn other("X");
    other.GetDaIni();
    EXPECT_EQ(Values(other), kNew);
}

TEST(OpzDis, CopyAndCloneHaveEverything) {
    COpzDisEgn entry("X");
    entry.SetNomeOpz("n");
    Fill(entry, 10);
    const std::unique_ptr<COpzDisEgn> clone(entry.Clone());
    COpzDisEgn assigned("Y");
    assigned = entry;
    for (const COpzDisEgn* copy : {clone.get(), &assigned}) {
        EXPECT_EQ(Values(*copy), kFilled);
        EXPECT_EQ(copy->GetSezioneIni(), "X-n");
    }
}

Bytes ValueBytes(short first) {
    Bytes bytes;
    for (int i = 0; i < 10; ++i) bytes.I16(first + i);
    return bytes;
}

TEST(OpzDis, ValuesTakeTwentyBytes) {
    COpzDisEgn entry("X");
    Fill(entry, -3);
    ofpstream out(1400);
    entry.SalvaValori(out);
    EXPECT_EQ(Dump(out.GetBytes()), Dump(ValueBytes(-3).Get()));
}

TEST(OpzDis, ValuesAreReadAllOrNone) {
    const std::string bytes = ValueBytes(10).Get();
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        ifpstream in(bytes.data(), size, 1400);
        COpzDisEgn entry("X");
        entry.LeggeValori(in);
        EXPECT_EQ(Values(entry), size == 20 ? kFilled : kNew) << size;
        EXPECT_EQ(in.GetRemaining(), 0);
        EXPECT_EQ(in.IsOk(), size == 20);
    }
}

}  // namespace
