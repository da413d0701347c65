// Settings: values come back as they were written, and everything that others wrote stays.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "platform/base/CIniFile.h"
#include "tests/Scale.h"
#include "tests/Settings.h"

namespace {

using test::Settings;
using test::TempFolder;

// Every kind of text that a line of such a file could lose or change.
std::vector<std::string> DifficultTexts() {
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte) allBytes += static_cast<char>(byte);
    return {"",
            " ",
            "\t",
            "plain",
            "  blanks around  ",
            "  blanks before",
            "blanks behind  ",
            "\ttabs\t",
            "two words",
            ";",
            "a ; b",
            "# no comment",
            "=",
            "a=b=c",
            "=a",
            "[",
            "]",
            "[section]",
            "a]b",
            "\"",
            "\"\"",
            "\"quoted\"",
            "\"half",
            "half\"",
            "\\",
            "\\n",
            "\\\\x41",
            "D:\\new\\table",
            "\"D:\\new\"",
            "line\nbreak",
            "line\r\nbreak\r",
            "\n",
            std::string("zero\0byte", 9),
            std::string(1, '\0'),
            "Entit\xC3\xA0 GPS",
            "\xE6\xBC\xA2\xE5\xAD\x97 \xF0\x9F\x93\x8D",
            "\xC3",
            "\xFF\xFE",
            "\xC0\xAF",
            "\xED\xA0\x80",
            "\xF4\x90\x80\x80",
            "\xEF\xBB\xBF",
            "<<<END",
            "\x7F",
            "%s $HOME ${HOME} 'single'",
            "0x10",
            std::string(100000, 'x'),
            allBytes};
}

TEST(IniFile, AnyTextComesBack) {
    const Settings settings;
    const std::vector<std::string> texts = DifficultTexts();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string key = "k" + std::to_string(i);
        ASSERT_TRUE(CIniFile().WriteString("S", key.c_str(), texts[i]));
        EXPECT_EQ(CIniFile().GetString("S", key.c_str(), "?"), texts[i]) << i;
    }
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(CIniFile().GetString("S", ("k" + std::to_string(i)).c_str(), "?"), texts[i]) << i;
}

TEST(IniFile, AnyTextWithoutZeroCanBeSectionAndKey) {
    const Settings settings;
    CIniFile ini;
    std::vector<std::string> names;
    for (const std::string& text : DifficultTexts())
        if (text.find('\0') == std::string::npos) names.push_back(text);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const char* const name = names[i].c_str();
        ASSERT_TRUE(ini.WriteString(name, "key", "s" + std::to_string(i))) << i;
        ASSERT_TRUE(ini.WriteString("section", name, "k" + std::to_string(i))) << i;
        ASSERT_TRUE(ini.WriteString(name, name, "b" + std::to_string(i))) << i;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        const char* const name = names[i].c_str();
        EXPECT_EQ(ini.GetString(name, "key", ""), "s" + std::to_string(i)) << i;
        EXPECT_EQ(ini.GetString("section", name, ""), "k" + std::to_string(i)) << i;
        EXPECT_EQ(ini.GetString(name, name, ""), "b" + std::to_string(i)) << i;
    }
}

TEST(IniFile, RandomTextsComeBack) {
    const Settings settings;
    CIniFile ini;
    std::mt19937 random(5);
    const std::string letters("ab =;[]\"\\#\n\r\t\0\xC3\xA0\xFFx41", 20);
    for (long n = 0; n < Scaled(500); ++n) {
        std::string text;
        for (auto length = random() % 12; length > 0; --length) text += letters[random() % letters.size()];
        ASSERT_TRUE(ini.WriteString("S", "k", text));
        ASSERT_EQ(ini.GetString("S", "k", "?"), text);
    }
}

TEST(IniFile, MissingFileSectionAndKeyGiveTheDefault) {
    const Settings settings;
    const CIniFile missing;
    EXPECT_EQ(missing.GetString("S", "k", "d"), "d");
    EXPECT_EQ(missing.GetString("S", "k", nullptr), "");
    EXPECT_TRUE(missing.GetBool("S", "k", true));
    EXPECT_EQ(missing.GetShort("S", "k", -3), -3);
    EXPECT_EQ(missing.GetLong("S", "k", 70000), 70000);
    EXPECT_FALSE(missing.HasValue("S", "k"));
    settings.SetText("[S]\nother = 1\n");
    EXPECT_EQ(CIniFile().GetString("S", "k", "d"), "d");
    EXPECT_EQ(CIniFile().GetString("T", "other", "d"), "d");
    EXPECT_TRUE(CIniFile().HasValue("S", "other"));
}

TEST(IniFile, NullCountsAsTheEmptyText) {
    const Settings settings;
    ASSERT_TRUE(CIniFile().WriteString(nullptr, nullptr, "v"));
    EXPECT_EQ(CIniFile().GetString("", "", "d"), "v");
}

TEST(IniFile, NamesAreComparedWithCase) {
    const Settings settings;
    CIniFile ini;
    ASSERT_TRUE(ini.WriteString("S", "k", "1"));
    ASSERT_TRUE(ini.WriteString("s", "k", "2"));
    ASSERT_TRUE(ini.WriteString("S", "K", "3"));
    EXPECT_EQ(ini.GetString("S", "k", ""), "1");
    EXPECT_EQ(ini.GetString("s", "k", ""), "2");
    EXPECT_EQ(ini.GetString("S", "K", ""), "3");
}

TEST(IniFile, BoolsAreOneZeroTrueAndFalse) {
    const Settings settings;
    settings.SetText("[S]\na = 1\nb = 0\nc = true\nd = false\ne = 2\nf =\ng = yes\nh = TRUE\n");
    const CIniFile ini;
    for (const bool byDefault : {false, true}) {
        EXPECT_TRUE(ini.GetBool("S", "a", byDefault));
        EXPECT_FALSE(ini.GetBool("S", "b", byDefault));
        EXPECT_TRUE(ini.GetBool("S", "c", byDefault));
        EXPECT_FALSE(ini.GetBool("S", "d", byDefault));
        for (const char* other : {"e", "f", "g", "h"})
            EXPECT_EQ(ini.GetBool("S", other, byDefault), byDefault) << other;
    }
}

TEST(IniFile, WrittenBoolIsOneOrZero) {
    const Settings settings;
    CIniFile ini;
    ASSERT_TRUE(ini.WriteBool("S", "a", true));
    ASSERT_TRUE(ini.WriteBool("S", "b", false));
    EXPECT_EQ(settings.Text(), "[S]\na = 1\nb = 0\n");
}

TEST(IniFile, NumberBeyondTheRangeGivesItsEnd) {
    const Settings settings;
    settings.SetText("[S]\na = 32767\nb = 32768\nc = -32769\nd = 2147483648\ne = -99999999999999999999\n");
    const CIniFile ini;
    EXPECT_EQ(ini.GetShort("S", "a", 1), 32767);
    EXPECT_EQ(ini.GetShort("S", "b", 1), 32767);
    EXPECT_EQ(ini.GetShort("S", "c", 1), -32768);
    EXPECT_EQ(ini.GetLong("S", "b", 1), 32768);
    EXPECT_EQ(ini.GetLong("S", "d", 1), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(ini.GetLong("S", "e", 1), std::numeric_limits<std::int32_t>::min());
}

TEST(IniFile, WhatIsNoNumberGivesTheDefault) {
    const Settings settings;
    settings.SetText("[S]\na = 5x\nb =\nc = x5\nd = 1.5\ne = - 5\nf = 5 6\ng = 0x10\n");
    for (const char* key : {"a", "b", "c", "d", "e", "f", "g"}) {
        EXPECT_EQ(CIniFile().GetShort("S", key, 7), 7) << key;
        EXPECT_EQ(CIniFile().GetLong("S", key, 8), 8) << key;
    }
}

TEST(IniFile, NumbersComeBackAtTheEndsOfTheirRange) {
    const Settings settings;
    CIniFile ini;
    for (const short value :
         {std::numeric_limits<short>::min(), short{-1}, short{0}, std::numeric_limits<short>::max()}) {
        ASSERT_TRUE(ini.WriteShort("S", "k", value));
        EXPECT_EQ(ini.GetShort("S", "k", 9), value);
    }
    for (const std::int32_t value :
         {std::numeric_limits<std::int32_t>::min(), -1, 0, std::numeric_limits<std::int32_t>::max()}) {
        ASSERT_TRUE(ini.WriteLong("S", "k", value));
        EXPECT_EQ(ini.GetLong("S", "k", 9), value);
    }
}

TEST(IniFile, PlainTextStandsInTheFileAsItIs) {
    const Settings settings;
    CIniFile ini;
    ASSERT_TRUE(ini.WriteString("DIS-GPS-Punti GPS", "path", "D:\\new\\Entit\xC3\xA0"));
    EXPECT_EQ(settings.Text(), "[DIS-GPS-Punti GPS]\npath = D:\\new\\Entit\xC3\xA0\n");
}

TEST(IniFile, DifficultTextStandsInQuotes) {
    const Settings settings;
    CIniFile ini;
    ASSERT_TRUE(ini.WriteString("a]", "b=", std::string(" \"\\\r\n\t;\xFF\0", 9)));
    EXPECT_EQ(settings.Text(), "[\"a\\x5D\"]\n\"b\\x3D\" = \" \\\"\\\\\\r\\n\\t;\\xFF\\x00\"\n");
}

TEST(IniFile, FileIsUtf8WhateverIsWritten) {
    const struct {
        const char* text;
        const char* written;
    } rows[] = {
        {"\xC3", "\"\\xC3\""},
        {"\xC3x", "\"\\xC3x\""},
        {"\x80", "\"\\x80\""},
        {"\xC1\xBF", "\"\\xC1\\xBF\""},                    // longer than needed
        {"\xE0\x9F\xBF", "\"\\xE0\\x9F\\xBF\""},           // longer than needed
        {"\xF0\x8F\xBF\xBF", "\"\\xF0\\x8F\\xBF\\xBF\""},  // longer than needed
        {"\xED\xA0\x80", "\"\\xED\\xA0\\x80\""},           // half of a pair
        {"\xF4\x90\x80\x80", "\"\\xF4\\x90\\x80\\x80\""},  // beyond the last character
        {"\xF5\x80\x80\x80", "\"\\xF5\\x80\\x80\\x80\""},  // beyond the last character
        {"\xC2\x80", "\xC2\x80"},
        {"\xE0\xA0\x80", "\xE0\xA0\x80"},
        {"\xED\x9F\xBF", "\xED\x9F\xBF"},
        {"\xF0\x90\x80\x80", "\xF0\x90\x80\x80"},
        {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
    };
    for (const auto& row : rows) {
        const Settings settings;
        ASSERT_TRUE(CIniFile().WriteString("S", "k", row.text));
        EXPECT_EQ(settings.Text(), "[S]\nk = " + std::string(row.written) + "\n");
        EXPECT_EQ(CIniFile().GetString("S", "k", "?"), row.text);
    }
}

TEST(IniFile, WhatPeopleWroteIsTakenAsItStands) {
    const Settings settings;
    settings.SetText("[S]\r\n a\t=  D:\\new  \r\nb=\"x;y\"\nc = \"bad \\q\"\nd = \"in\"side\"\ne = \"\n");
    const CIniFile ini;
    EXPECT_EQ(ini.GetString("S", "a", "?"), "D:\\new");
    EXPECT_EQ(ini.GetString("S", "b", "?"), "x;y");
    EXPECT_EQ(ini.GetString("S", "c", "?"), "\"bad \\q\"");
    EXPECT_EQ(ini.GetString("S", "d", "?"), "\"in\"side\"");
    EXPECT_EQ(ini.GetString("S", "e", "?"), "\"");
}

constexpr const char* kForeign =
    "; mine, please keep\n"
    "\n"
    "top = level\n"
    "  [S]  ; first\n"
    "# about a\n"
    "a=1\n"
    "nonsense without sign\n"
    "   b   =   two   \n"
    "\n"
    "\n"
    "[T]\n"
    "a = other\n"
    "; the end";

TEST(IniFile, AWriteChangesItsLineOnly) {
    const Settings settings;
    settings.SetText(kForeign);
    ASSERT_TRUE(CIniFile().WriteString("S", "b", "3"));
    std::string wanted = kForeign;
    wanted.replace(wanted.find("   two   "), 9, " 3");
    EXPECT_EQ(settings.Text(), wanted);
}

TEST(IniFile, ANewKeyStandsBehindTheLastLineOfItsSection) {
    const Settings settings;
    settings.SetText(kForeign);
    ASSERT_TRUE(CIniFile().WriteString("S", "new", "3"));
    std::string wanted = kForeign;
    wanted.insert(wanted.find("\n\n\n[T]") + 1, "new = 3\n");
    EXPECT_EQ(settings.Text(), wanted);
}

TEST(IniFile, ANewKeyOfTheLastSectionEndsTheLineBeforeIt) {
    const Settings settings;
    settings.SetText(kForeign);
    ASSERT_TRUE(CIniFile().WriteString("T", "new", "3"));
    EXPECT_EQ(settings.Text(), std::string(kForeign) + "\nnew = 3\n");
}

TEST(IniFile, ANewSectionIsAppended) {
    const Settings settings;
    settings.SetText(kForeign);
    ASSERT_TRUE(CIniFile().WriteString("U", "new", "3"));
    EXPECT_EQ(settings.Text(), std::string(kForeign) + "\n\n[U]\nnew = 3\n");
}

TEST(IniFile, OfSeveralLinesTheLastOneCountsAndIsChanged) {
    const Settings settings;
    settings.SetText("[S]\na = 1\n[T]\n[S]\na = 2\n");
    EXPECT_EQ(CIniFile().GetString("S", "a", ""), "2");
    ASSERT_TRUE(CIniFile().WriteString("S", "a", "3"));
    EXPECT_EQ(settings.Text(), "[S]\na = 1\n[T]\n[S]\na = 3\n");
}

TEST(IniFile, LineBreaksAndByteOrderMarkStay) {
    const Settings settings;
    settings.SetText("\xEF\xBB\xBF[S]\r\na = 1\r\n");
    EXPECT_EQ(CIniFile().GetString("S", "a", ""), "1");
    ASSERT_TRUE(CIniFile().WriteString("S", "a", "2"));
    ASSERT_TRUE(CIniFile().WriteString("S", "b", "3"));
    ASSERT_TRUE(CIniFile().WriteString("T", "c", "4"));
    EXPECT_EQ(settings.Text(), "\xEF\xBB\xBF[S]\r\na = 2\r\nb = 3\r\n\r\n[T]\r\nc = 4\r\n");
}

TEST(IniFile, RemoveTakesEveryLineOfTheKey) {
    const Settings settings;
    settings.SetText("[S]\n; kept\na = 1\nb = 2\na = 3\n[T]\na = 4\n");
    ASSERT_TRUE(CIniFile().Remove("S", "a"));
    EXPECT_EQ(settings.Text(), "[S]\n; kept\nb = 2\n[T]\na = 4\n");
    EXPECT_FALSE(CIniFile().HasValue("S", "a"));
    EXPECT_TRUE(CIniFile().Remove("S", "a"));
}

TEST(IniFile, WritingThePresentValueLeavesTheFileAlone) {
    const Settings settings;
    CIniFile ini;
    ASSERT_TRUE(ini.WriteString("S", "k", "v"));
    struct stat before {
    }, after{};
    ASSERT_EQ(stat(settings.Path().c_str(), &before), 0);
    ASSERT_TRUE(ini.WriteString("S", "k", "v"));
    ASSERT_EQ(stat(settings.Path().c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
}

TEST(IniFile, EveryReadLooksAtTheFile) {
    const Settings settings;
    const CIniFile early;
    settings.SetText("[S]\nk = 1\n");
    EXPECT_EQ(early.GetString("S", "k", ""), "1");
    settings.SetText("[S]\nk = 2\n");
    EXPECT_EQ(early.GetString("S", "k", ""), "2");
}

TEST(IniFile, FirstWriteMakesTheFolder) {
    const TempFolder folder;
    CIniFile ini(folder / "a/b/settings.ini");
    EXPECT_EQ(ini.GetString("S", "k", "d"), "d");
    EXPECT_NE(access((folder / "a").c_str(), F_OK), 0) << "a read makes nothing";
    ASSERT_TRUE(ini.WriteString("S", "k", "v"));
    EXPECT_EQ(test::FileBytes(folder / "a/b/settings.ini"), "[S]\nk = v\n");
    EXPECT_NE(access((folder / "a/b/settings.ini.tmp").c_str(), F_OK), 0) << "nothing is left behind";
}

TEST(IniFile, LinkAndPermissionsStay) {
    const TempFolder folder;
    test::WriteFileBytes(folder / "real.ini", "[S]\nk = 1\n");
    ASSERT_EQ(chmod((folder / "real.ini").c_str(), 0640), 0);
    ASSERT_EQ(symlink("real.ini", (folder / "link.ini").c_str()), 0);
    ASSERT_TRUE(CIniFile(folder / "link.ini").WriteString("S", "k", "2"));
    EXPECT_EQ(test::FileBytes(folder / "real.ini"), "[S]\nk = 2\n");
    struct stat facts {};
    ASSERT_EQ(lstat((folder / "link.ini").c_str(), &facts), 0);
    EXPECT_TRUE(S_ISLNK(facts.st_mode));
    ASSERT_EQ(stat((folder / "real.ini").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0640u);
}

// --- where the settings are --------------------------------------------------------------------------------

/// Sets variables of the environment and puts them back.
class Environment {
public:
    ~Environment() {
        for (const auto& [name, value] : before_) Put(name, value);
    }
    void Set(const char* name, std::optional<std::string> value) {
        const char* const old = std::getenv(name);
        before_.insert(before_.begin(), {name, old ? std::optional<std::string>(old) : std::nullopt});
        Put(name, value);
    }

private:
    static void Put(const char* name, const std::optional<std::string>& value) {
        if (value)
            setenv(name, value->c_str(), 1);
        else
            unsetenv(name);
    }
    std::vector<std::pair<const char*, std::optional<std::string>>> before_;
};

TEST(IniFile, SettingsAreWhereTheEnvironmentSays) {
    Environment environment;
    environment.Set("GPS_SURVEY_SETTINGS", "/x/own.ini");
    environment.Set("XDG_CONFIG_HOME", "/x/config");
    environment.Set("HOME", "/x/home");
    EXPECT_EQ(CIniFile::GetDefaultPath(), "/x/own.ini");
    EXPECT_EQ(CIniFile().GetPath(), "/x/own.ini");
    environment.Set("GPS_SURVEY_SETTINGS", "");
    EXPECT_EQ(CIniFile::GetDefaultPath(), "/x/config/gps-survey/settings.ini");
    environment.Set("XDG_CONFIG_HOME", "relative");
    EXPECT_EQ(CIniFile::GetDefaultPath(), "/x/home/.config/gps-survey/settings.ini");
    environment.Set("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(CIniFile::GetDefaultPath(), "/x/home/.config/gps-survey/settings.ini");
    environment.Set("HOME", std::nullopt);
    EXPECT_EQ(CIniFile::GetDefaultPath(), "");
    EXPECT_EQ(CIniFile().GetString("S", "k", "d"), "d");
    EXPECT_FALSE(CIniFile().WriteString("S", "k", "v"));
}

}  // namespace
