// The pages of the commands and formats say what the program does.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/readers/Epoch.h"
#include "apps/gpsbook/writers/Columns.h"
#include "apps/gpsbook/writers/RowWriter.h"
#include "tests/apps/gpsbook/commands/Gpsbook.h"

namespace gpsbook::test {
namespace {

std::string Page(const std::string& name) { return ReadFile(std::string(GPSBOOK_PAGES) + "/" + name); }

bool IsLower(char c) { return c >= 'a' && c <= 'z'; }

/// Before a '-' that is a hyphen, or the second of two, and begins no option.
bool IsOfWord(char c) { return IsLower(c) || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-'; }

/// The options in a text: "--antenna", "-o".
std::set<std::string> OptionsIn(const std::string& text) {
    std::set<std::string> options;
    for (std::size_t i = 0; i + 2 < text.size(); ++i) {
        if (text[i] != '-' || (i > 0 && IsOfWord(text[i - 1]))) continue;
        std::size_t end = i + 1;
        if (text[end] == '-') ++end;
        const std::size_t name = end;
        while (end < text.size() && (IsLower(text[end]) || (end > name && text[end] == '-'))) ++end;
        if (end > name) options.insert(text.substr(i, end - i));
    }
    return options;
}

/// A page without its blocks, in which options of other commands may stand.
std::string WithoutBlocks(const std::string& page) {
    std::string text;
    for (std::size_t at = 0; at < page.size();) {
        const std::size_t begin = std::min(page.find("```", at), page.size());
        text += page.substr(at, begin - at);
        const std::size_t end = begin == page.size() ? begin : page.find("```", begin + 3);
        at = end >= page.size() ? page.size() : end + 3;
    }
    return text;
}

/// The names of all options of a command and of those within it.
std::set<std::string> OptionsOf(const nlohmann::json& command) {
    std::set<std::string> options;
    for (const nlohmann::json& option : command["options"])
        for (const std::string name : option["names"]) options.insert(name);
    for (const nlohmann::json& within : command["commands"]) options.merge(OptionsOf(within));
    return options;
}

nlohmann::json Commands() {
    const Outcome outcome = Workplace().Run({"manual", "--json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    return nlohmann::json::parse(outcome.out)["commands"];
}

std::string LastWord(const std::string& text) { return text.substr(text.rfind(' ') + 1); }

TEST(Pages, EveryOptionOfACommandIsOnItsPageAndNoOther) {
    const nlohmann::json commands = Commands();
    ASSERT_GT(commands.size(), 3U);
    for (const nlohmann::json& command : commands) {
        const std::string name = LastWord(command["name"]);
        const std::string page = Page("commands/" + name + ".md");
        EXPECT_EQ(OptionsIn(WithoutBlocks(page)), OptionsOf(command)) << name;
    }
}

TEST(Pages, EveryCommandIsOnTheOverview) {
    const std::string page = Page("gpsbook.md");
    for (const nlohmann::json& command : Commands()) {
        const std::string name = LastWord(command["name"]);
        EXPECT_NE(page.find("| [`gpsbook " + name + "`](commands/" + name + ".md) |"), std::string::npos)
            << name;
    }
}

TEST(Pages, EveryReasonIsOnThePageOfLogs) {
    const std::string page = Page("formats/logs.md");
    for (int i = 0; i < static_cast<int>(Reason::count_); ++i) {
        const std::string reason(ReasonText(static_cast<Reason>(i)));
        EXPECT_NE(page.find("| " + reason + " |"), std::string::npos) << reason;
    }
}

TEST(Pages, ColumnsAreOnThePageOfTheTableInTheirOrder) {
    const std::string page = Page("formats/table.md");
    std::size_t at = page.find("## Columns");
    ASSERT_NE(at, std::string::npos);
    for (const Column& column : kColumns) {
        const std::size_t found = page.find("| `" + std::string(column.name) + "` |", at);
        ASSERT_NE(found, std::string::npos) << column.name << " is missing, or not where it belongs";
        at = found;
    }
    const std::size_t end = page.find("\n## ", at);
    EXPECT_EQ(page.substr(at, end - at).find("\n| `"), std::string::npos) << "a column that is not written";
}

TEST(Pages, EveryFormatWithItsEndingsIsOnThePageOfTheTable) {
    const std::string page = Page("formats/table.md");
    for (const TableFormatInfo& info : TableFormats()) {
        const std::size_t at = page.find("| `" + std::string(info.option) + "` |");
        ASSERT_NE(at, std::string::npos) << info.option;
        const std::string line = page.substr(at, page.find('\n', at) - at);
        EXPECT_NE(line.find(info.title), std::string::npos) << line;
        for (const std::string_view ending : info.endings)
            EXPECT_NE(line.find("`" + std::string(ending) + "`"), std::string::npos)
                << ending << " in " << line;
    }
}

TEST(Pages, EveryExitCodeIsOnTheOverview) {
    const std::string page = Page("gpsbook.md");
    for (const int code :
         {exitDone, exitFailure, exitUsage, exitConflict, exitRefused, exitNotFound, exitServer})
        EXPECT_NE(page.find("\n| " + std::to_string(code) + " |"), std::string::npos) << code;
}

}  // namespace
}  // namespace gpsbook::test
