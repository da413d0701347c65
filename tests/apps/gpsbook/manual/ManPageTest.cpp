// Manual pages as they are written for troff.
#include "apps/gpsbook/manual/ManPage.h"

#include <gtest/gtest.h>

#include "tests/apps/gpsbook/manual/SmallProgram.h"

namespace gpsbook::test {
namespace {

TEST(ManPage, PageOfACommandHasItsPartsInOrder) {
    const SmallProgram program;
    const std::string page = ManPage(Describe(program.app).commands.at(0), "program 1.2");
    const char* const parts[] = {
        ".TH \"PROGRAM\\-PAINT\" 1 \"\" \"program 1.2\"",
        ".SH NAME\nprogram\\-paint \\- Paint it: \\(aqred\\(aq or blue\n",
        ".SH SYNOPSIS\n\\fBprogram paint\\fR \\fIBOOK\\fR [\\fILOG\\fR...] \\fB\\-\\-into\\fR \\fIFILE\\fR "
        "[\\fIOPTIONS\\fR]\n",
        ".SH ARGUMENTS\n.TP\n\\fIBOOK\\fR\nThe book\n.TP\n\\fILOG\\fR...\nLogs\n",
        ".SH OPTIONS\n",
        ".TP\n\\fB\\-c\\fR, \\fB\\-\\-colour\\fR \\fIred|blue|CODE\\fR\nColour [red]\n",
        ".TP\n\\fB\\-\\-wet\\fR\nLeave it wet\n",
        ".SH EXAMPLES\n.EX\nprogram paint a.book\nprogram paint b.book \\-\\-wet\n.EE\n",
        ".SH \"EXIT STATUS\"\n.TP\n\\fB0\\fR\nDone.\n",
        ".TP\n\\fB6\\fR\n",
        ".SH \"SEE ALSO\"\n\\fBprogram\\fR(1)\n"};
    std::size_t at = 0;
    for (const char* part : parts) {
        const std::size_t found = page.find(part, at);
        ASSERT_NE(found, std::string::npos) << part << "\nis missing, or not where it belongs, in\n" << page;
        at = found;
    }
}

TEST(ManPage, CommandsWithinACommandStandOnItsPage) {
    const SmallProgram program;
    const std::string page = ManPage(Describe(program.app).commands.at(1), "program 1.2");
    EXPECT_NE(page.find(".SH SYNOPSIS\n\\fBprogram shelf put\\fR [\\fISIDE\\fR]"), std::string::npos) << page;
    EXPECT_NE(page.find(".SS \"program shelf put\"\n"), std::string::npos) << page;
    EXPECT_NE(page.find("The side\nOne of left, right.\n"), std::string::npos) << page;
    EXPECT_NE(page.find("\n\\&.Where\n"), std::string::npos) << "a dot at the beginning is a request\n"
                                                             << page;
}

TEST(ManPage, PageOfTheProgramListsTheCommandsByGroup) {
    const SmallProgram program;
    const std::string page = ManPage(Describe(program.app), "program 1.2");
    EXPECT_NE(page.find(".SS \"Colours\"\n.TP\n\\fBprogram\\-paint\\fR(1)\n"), std::string::npos) << page;
    EXPECT_NE(page.find(".SH \"SEE ALSO\"\n\\fBprogram\\-paint\\fR(1),\n\\fBprogram\\-shelf\\fR(1)\n"),
              std::string::npos)
        << page;
}

TEST(ManPage, NameOfTheFileIsThatOfTheCommand) {
    const SmallProgram program;
    EXPECT_EQ(ManPageName(Describe(program.app)), "program.1");
    EXPECT_EQ(ManPageName(Describe(program.app).commands.at(0)), "program-paint.1");
}

}  // namespace
}  // namespace gpsbook::test
