// How GPS points are drawn: defaults, settings, copies.
#include "gps/options/COpzDisPunGps.h"

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
constexpr const char* kDefaults = "1 5 5 5 5 3 0 0 0 0";

struct After : COpzDisPunGps {
    using COpzDisPunGps::COpzDisPunGps;
    virtual void Next() {}
};

TEST(OpzDisPunGps, AddsNoVirtualOperationAndNoData) {
    EXPECT_TRUE((std::is_base_of_v<COpzDisEgn, COpzDisPunGps>));
    EXPECT_EQ(sizeof(COpzDisPunGps), sizeof(COpzDisEgn));
    EXPECT_EQ(VirtualSlot(&COpzDisPunGps::Clone), 2);
    EXPECT_EQ(VirtualSlot(&COpzDisPunGps::IsAllowUseGisSettings), 3);
    EXPECT_EQ(VirtualSlot(&COpzDisPunGps::doRisettaOpz), 4);
    EXPECT_EQ(VirtualSlot(&COpzDisPunGps::doGetDaIni), 5);
    EXPECT_EQ(VirtualSlot(&COpzDisPunGps::doSetInIni), 6);
    EXPECT_EQ(VirtualSlot(&After::Next), 7);
}

TEST(OpzDisPunGps, NewEntryHasTheValuesOfTheBase) {
    const Settings settings;
    settings.SetText("[X]\nColSimb = 9\n");
    EXPECT_EQ(Values(COpzDisPunGps("X")), kBase);
}

TEST(OpzDisPunGps, GisSettingsMayTakeTheirPlace) {
    const COpzDisPunGps entry("X");
    EXPECT_TRUE(entry.IsAllowUseGisSettings());
}

TEST(OpzDisPunGps, ResetGivesTheDefaults) {
    COpzDisPunGps entry("X");
    Fill(entry, 50);
    COpzDisEgn& base = entry;
    base.RisettaOpz();
    EXPECT_EQ(Values(entry), kDefaults);
}

TEST(OpzDisPunGps, WithoutSettingsVisibilityStaysAndTheOthersGetTheirDefaults) {
    const Settings settings;
    COpzDisPunGps entry("X");
    Fill(entry, 50);
    entry.GetDaIni();
    EXPECT_EQ(Values(entry), "50 5 5 5 5 3 0 0 0 0");
}

TEST(OpzDisPunGps, VisibilityIsWrittenButNotRead) {
    const Settings settings;
    COpzDisPunGps entry("X");
    Fill(entry, 50);
    entry.SetInIni();
    EXPECT_EQ(CIniFile().GetShort("X", "VisSimb", -1), 50);
    COpzDisPunGps other("X");
    other.GetDaIni();
    EXPECT_EQ(Values(other), "1 51 52 53 54 55 56 57 58 59");
}

TEST(OpzDisPunGps, EveryKeySetsItsOwnValue) {
    const struct {
        const char* key;
        const char* values;
    } rows[] = {{"VisSimb", "1 5 5 5 5 3 0 0 0 0"},     {"ColSimb", "1 77 5 5 5 3 0 0 0 0"},
                {"ColNome", "1 5 77 5 5 3 0 0 0 0"},    {"ColDesc", "1 5 5 77 5 3 0 0 0 0"},
                {"ColQuot", "1 5 5 5 77 3 0 0 0 0"},    {"TipoSimb", "1 5 5 5 5 77 0 0 0 0"},
                {"LwSimb", "1 5 5 5 5 3 77 0 0 0"},     {"LwNameSimb", "1 5 5 5 5 3 0 77 0 0"},
                {"LwDescSimb", "1 5 5 5 5 3 0 0 77 0"}, {"LwQuotSimb", "1 5 5 5 5 3 0 0 0 77"}};
    for (const auto& row : rows) {
        const Settings settings;
        ASSERT_TRUE(CIniFile().WriteShort("X-n", row.key, 77));
        COpzDisPunGps entry("X");
        entry.SetNomeOpz("n");
        entry.GetDaIni();
        EXPECT_EQ(Values(entry), row.values) << row.key;
    }
}

TEST(OpzDisPunGps, SettingBeyondSixteenBitsIsTheEndOfTheRange) {
    const Settings settings;
    settings.SetText("[X]\nColSimb = 40000\nLwSimb = -40000\nColNome = red\n");
    COpzDisPunGps entry("X");
    entry.GetDaIni();
    EXPECT_EQ(entry.GetColSimb(), 32767);
    EXPECT_EQ(entry.GetLwSimb(), -32768);
    EXPECT_EQ(entry.GetColNome(), 5);
}

TEST(OpzDisPunGps, CopiesAreOfItsClassAndReadNoSettings) {
    const Settings settings;
    settings.SetText("[X-n]\nColSimb = 9\n");
    COpzDisPunGps entry("X");
    entry.SetNomeOpz("n");
    Fill(entry, 50);
    const COpzDisEgn& base = entry;
    const std::unique_ptr<COpzDisEgn> clone(base.Clone());
    ASSERT_NE(dynamic_cast<COpzDisPunGps*>(clone.get()), nullptr);
    COpzDisPunGps assigned("Y");
    assigned = entry;
    for (const COpzDisEgn* copy :
         {static_cast<const COpzDisEgn*>(clone.get()), static_cast<const COpzDisEgn*>(&assigned)}) {
        EXPECT_EQ(Values(*copy), Values(entry));
        EXPECT_EQ(copy->GetSezioneIni(), "X-n");
    }
}

}  // namespace
