// How GPS bases are drawn: defaults, settings, copies.
#include "gps/options/COpzDisGrpGps.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "platform/base/CIniFile.h"
#include "tests/Settings.h"
#include "tests/gps/options/EntryValues.h"
#include "tests/host/base/VirtualSlot.h"

namespace {

using test::Fill;
using test::Settings;
using test::Values;

constexpr const char* kBase = "1 0 0 0 0 0 0 0 0 0";
constexpr const char* kDefaults = "1 4 4 4 4 6 0 0 0 0";

struct After : COpzDisGrpGps {
    using COpzDisGrpGps::COpzDisGrpGps;
    virtual void Next() {}
};

TEST(OpzDisGrpGps, AddsNoVirtualOperationAndNoData) {
    EXPECT_TRUE((std::is_base_of_v<COpzDisEgn, COpzDisGrpGps>));
    EXPECT_EQ(sizeof(COpzDisGrpGps), sizeof(COpzDisEgn));
    EXPECT_EQ(VirtualSlot(&COpzDisGrpGps::Clone), 2);
    EXPECT_EQ(VirtualSlot(&COpzDisGrpGps::IsAllowUseGisSettings), 3);
    EXPECT_EQ(VirtualSlot(&COpzDisGrpGps::doRisettaOpz), 4);
    EXPECT_EQ(VirtualSlot(&COpzDisGrpGps::doGetDaIni), 5);
    EXPECT_EQ(VirtualSlot(&COpzDisGrpGps::doSetInIni), 6);
    EXPECT_EQ(VirtualSlot(&After::Next), 7);
}

TEST(OpzDisGrpGps, NewEntryHasTheValuesOfTheBase) {
    const Settings settings;
    settings.SetText("[X]\nColSimb = 9\n");
    EXPECT_EQ(Values(COpzDisGrpGps("X")), kBase);
}

TEST(OpzDisGrpGps, GisSettingsMayNotTakeTheirPlace) {
    const COpzDisGrpGps entry("X");
    EXPECT_FALSE(entry.IsAllowUseGisSettings());
}

TEST(OpzDisGrpGps, ResetGivesTheDefaults) {
    COpzDisGrpGps entry("X");
    Fill(entry, 50);
    COpzDisEgn& base = entry;
    base.RisettaOpz();
    EXPECT_EQ(Values(entry), kDefaults);
}

TEST(OpzDisGrpGps, WithoutSettingsAllValuesGetTheirDefaults) {
    const Settings settings;
    COpzDisGrpGps entry("X");
    Fill(entry, 50);
    entry.GetDaIni();
    EXPECT_EQ(Values(entry), kDefaults);
}

TEST(OpzDisGrpGps, AllTenValuesAreWrittenAndRead) {
    const Settings settings;
    COpzDisGrpGps entry("X");
    Fill(entry, 50);
    entry.SetInIni();
    COpzDisGrpGps other("X");
    other.GetDaIni();
    EXPECT_EQ(Values(other), "50 51 52 53 54 55 56 57 58 59");
}

TEST(OpzDisGrpGps, EveryKeySetsItsOwnValue) {
    const struct {
        const char* key;
        const char* values;
    } rows[] = {{"VisSimb", "77 4 4 4 4 6 0 0 0 0"},    {"ColSimb", "1 77 4 4 4 6 0 0 0 0"},
                {"ColNome", "1 4 77 4 4 6 0 0 0 0"},    {"ColDesc", "1 4 4 77 4 6 0 0 0 0"},
                {"ColQuot", "1 4 4 4 77 6 0 0 0 0"},    {"TipoSimb", "1 4 4 4 4 77 0 0 0 0"},
                {"LwSimb", "1 4 4 4 4 6 77 0 0 0"},     {"LwNameSimb", "1 4 4 4 4 6 0 77 0 0"},
                {"LwDescSimb", "1 4 4 4 4 6 0 0 77 0"}, {"LwQuotSimb", "1 4 4 4 4 6 0 0 0 77"}};
    for (const auto& row : rows) {
        const Settings settings;
        ASSERT_TRUE(CIniFile().WriteShort("X-n", row.key, 77));
        COpzDisGrpGps entry("X");
        entry.SetNomeOpz("n");
        entry.GetDaIni();
        EXPECT_EQ(Values(entry), row.values) << row.key;
    }
}

TEST(OpzDisGrpGps, SettingBeyondSixteenBitsIsTheEndOfTheRange) {
    const Settings settings;
    settings.SetText("[X]\nColSimb = 40000\nLwSimb = -40000\nColNome = red\n");
    COpzDisGrpGps entry("X");
    entry.GetDaIni();
    EXPECT_EQ(entry.GetColSimb(), 32767);
    EXPECT_EQ(entry.GetLwSimb(), -32768);
    EXPECT_EQ(entry.GetColNome(), 4);
}

TEST(OpzDisGrpGps, CopiesAreOfItsClassAndReadNoSettings) {
    const Settings settings;
    settings.SetText("[X-n]\nColSimb = 9\n");
    COpzDisGrpGps entry("X");
    entry.SetNomeOpz("n");
    Fill(entry, 50);
    const COpzDisEgn& base = entry;
    const std::unique_ptr<COpzDisEgn> clone(base.Clone());
    ASSERT_NE(dynamic_cast<COpzDisGrpGps*>(clone.get()), nullptr);
    COpzDisGrpGps assigned("Y");
    assigned = entry;
    for (const COpzDisEgn* copy :
         {static_cast<const COpzDisEgn*>(clone.get()), static_cast<const COpzDisEgn*>(&assigned)}) {
        EXPECT_EQ(Values(*copy), Values(entry));
        EXPECT_EQ(copy->GetSezioneIni(), "X-n");
    }
}

}  // namespace
