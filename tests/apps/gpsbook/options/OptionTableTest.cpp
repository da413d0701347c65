// Every option of a field book: its way to the book, its default, its place in the settings.
#include "apps/gpsbook/options/OptionTable.h"

#include <gtest/gtest.h>

#include <set>

#include "apps/gpsbook/commands/CommandError.h"
#include "platform/base/CIniFile.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/cad/CDrawingsMapper.h"
#include "tests/apps/gpsbook/book/SmallBook.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook::test {
namespace {

/// Settings of its own, none of which is there at the beginning.
class OptionTable : public testing::Test {
protected:
    OptionTable() { ::setenv("GPS_SURVEY_SETTINGS", (folder_ / "settings.ini").c_str(), 1); }

    TestFolder folder_;
};

/// Another value that the option can have.
OptionValue Other(const OptionValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return !*flag;
    if (const auto* number = std::get_if<std::int64_t>(&value)) return *number + 7;
    if (const auto* real = std::get_if<double>(&value)) return *real + 0.25;
    return std::get<std::string>(value) + "x y";
}

TEST_F(OptionTable, NewBookHasTheDefaults) {
    SmallBook book;
    for (const OptionEntry& option : Options())
        EXPECT_EQ(option.get(book.lib), option.byDefault) << option.name;
}

TEST_F(OptionTable, NamesAreThereOnce) {
    std::set<std::string> names;
    for (const OptionEntry& option : Options()) {
        EXPECT_TRUE(names.insert(option.name).second) << option.name;
        EXPECT_EQ(FindOption(option.name), &option);
        EXPECT_TRUE(option.inBook || option.InSettings()) << option.name;
        EXPECT_NE(option.what, "") << option.name;
    }
    EXPECT_EQ(names.size(), 58U);
    EXPECT_EQ(FindOption("points.Nothing"), nullptr);
}

TEST_F(OptionTable, EachIsSetWithoutTouchingTheOthers) {
    for (const OptionEntry& option : Options()) {
        SmallBook book;
        option.set(book.lib, Other(option.byDefault));
        for (const OptionEntry& other : Options())
            EXPECT_EQ(other.get(book.lib), &other == &option ? Other(option.byDefault) : other.byDefault)
                << other.name << " after " << option.name;
    }
}

TEST_F(OptionTable, WhatABookKeepsComesBackFromItsSectionAndNothingElse) {
    SmallBook book;
    for (const OptionEntry& option : Options()) option.set(book.lib, Other(option.byDefault));
    ofpstream out(1400);
    book.lib.SalvaInFile(out, 1400, "", nullptr, nullptr);
    SmallBook again;
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), 1400);
    CDrawingsMapper drawings;
    again.lib.LeggeDaFile(in, true, true, 1400, "", drawings);
    for (const OptionEntry& option : Options())
        EXPECT_EQ(option.get(again.lib), option.inBook ? Other(option.byDefault) : option.byDefault)
            << option.name;
}

TEST_F(OptionTable, WhatStandsInTheSettingsHoldsForNewBooks) {
    for (const OptionEntry& option : Options()) {
        if (!option.InSettings()) continue;
        CIniFile file;
        const OptionValue value = Other(option.byDefault);
        if (const auto* text = std::get_if<std::string>(&value))
            file.WriteString(option.section.c_str(), option.key.c_str(), *text);
        else if (const auto* flag = std::get_if<bool>(&value))
            file.WriteBool(option.section.c_str(), option.key.c_str(), *flag);
        else
            file.WriteLong(option.section.c_str(), option.key.c_str(),
                           static_cast<std::int32_t>(std::get<std::int64_t>(value)));
    }
    SmallBook book;
    for (const OptionEntry& option : Options())
        EXPECT_EQ(option.get(book.lib), option.InSettings() ? Other(option.byDefault) : option.byDefault)
            << option.name;
}

TEST_F(OptionTable, TextsComeBackAsTheyAreShown) {
    for (const OptionEntry& option : Options()) {
        const OptionValue value = Other(option.byDefault);
        EXPECT_EQ(ParseOption(option, OptionText(value)), value) << option.name;
    }
}

TEST_F(OptionTable, ValuesThatCannotBeAreRefused) {
    const std::pair<const char*, std::vector<const char*>> rows[] = {
        {"book.CalcLibCmp", {"", "yes", "2", "TRUE"}},
        {"book.OpzValore", {"", "x", "1.5", "32768", "-32769", "0x10", " 1"}},
        {"postproc.wPar1", {"-1", "65536"}},
        {"postproc.nPar1", {"32768", "-32769"}},
        {"postproc.TpInsCoordBase", {"2147483648", "-2147483649"}},
        {"postproc.dPar1", {"", "nan", "inf", "1,5", "x"}},
        {"postproc.sSuffissoPtNuovi", {"a;b", "a\nb", "\xC3"}},
    };
    for (const auto& [name, texts] : rows)
        for (const char* text : texts) {
            try {
                ParseOption(*FindOption(name), text);
                ADD_FAILURE() << name << " took \"" << text << '"';
            } catch (const CommandError& e) {
                EXPECT_EQ(e.Code(), exitUsage);
                EXPECT_NE(std::string(e.what()).find(name), std::string::npos) << e.what();
            }
        }
    EXPECT_EQ(ParseOption(*FindOption("postproc.sSuffissoPtNuovi"), ""), OptionValue(std::string()));
}

}  // namespace
}  // namespace gpsbook::test
