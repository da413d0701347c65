// What is read from the definition of a command line.
#include "apps/gpsbook/manual/CommandDescription.h"

#include <gtest/gtest.h>

#include "tests/apps/gpsbook/manual/SmallProgram.h"

namespace gpsbook::test {
namespace {

using Names = std::vector<std::string>;

const OptionDescription& Option(const CommandDescription& command, const std::string& name) {
    static const OptionDescription none;
    for (const OptionDescription& option : command.options)
        if (option.names.back() == name) return option;
    ADD_FAILURE() << "no option " << name;
    return none;
}

TEST(CommandDescription, CommandsComeInTheirOrderWithPathAndGroup) {
    const SmallProgram program;
    const CommandDescription all = Describe(program.app);
    EXPECT_EQ(all.Joined(" "), "program");
    ASSERT_EQ(all.commands.size(), 2U);
    EXPECT_EQ(all.commands[0].Joined("-"), "program-paint");
    EXPECT_EQ(all.commands[0].help, "Paint it: 'red' or blue");
    EXPECT_EQ(all.commands[0].group, "Colours");
    ASSERT_EQ(all.commands[1].commands.size(), 1U);
    EXPECT_EQ(all.commands[1].commands[0].Joined(" "), "program shelf put");
}

TEST(CommandDescription, OptionsHaveTheirNamesValuesAndWords) {
    const SmallProgram program;
    const CommandDescription paint = Describe(program.app).commands.at(0);
    const OptionDescription& colour = Option(paint, "--colour");
    EXPECT_EQ(colour.names, (Names{"-c", "--colour"}));
    EXPECT_EQ(colour.value, "red|blue|CODE");
    EXPECT_EQ(colour.kind, ValueKind::words);
    EXPECT_EQ(colour.words, (Names{"red", "blue"})) << "CODE only stands for one";
    EXPECT_FALSE(colour.required);
    EXPECT_EQ(Option(paint, "--into").kind, ValueKind::file);
    EXPECT_TRUE(Option(paint, "--into").required);
    EXPECT_EQ(Option(paint, "--size").kind, ValueKind::none);
    EXPECT_EQ(Option(paint, "--size").value, "M");
    EXPECT_EQ(Option(paint, "--wet").value, "");
    EXPECT_EQ(Option(paint, "--help").value, "");
    EXPECT_EQ(paint.options.size(), 5U);
}

TEST(CommandDescription, ArgumentsTellWhatTheyAreByTheirName) {
    const SmallProgram program;
    const CommandDescription all = Describe(program.app);
    const CommandDescription& paint = all.commands.at(0);
    ASSERT_EQ(paint.arguments.size(), 2U);
    EXPECT_EQ(paint.arguments[0].value, "BOOK");
    EXPECT_EQ(paint.arguments[0].kind, ValueKind::book);
    EXPECT_TRUE(paint.arguments[0].required);
    EXPECT_FALSE(paint.arguments[0].several);
    EXPECT_EQ(paint.arguments[1].kind, ValueKind::file);
    EXPECT_FALSE(paint.arguments[1].required);
    EXPECT_TRUE(paint.arguments[1].several);
    const CommandDescription& put = all.commands.at(1).commands.at(0);
    EXPECT_EQ(put.arguments.at(0).value, "SIDE");
    EXPECT_EQ(put.arguments.at(0).words, (Names{"left", "right"}));
    EXPECT_EQ(Option(put, "--folder").kind, ValueKind::folder);
}

TEST(CommandDescription, ExamplesAreTheLinesOfTheFooter) {
    const SmallProgram program;
    const CommandDescription all = Describe(program.app);
    EXPECT_EQ(all.commands.at(0).examples, "program paint a.book\nprogram paint b.book --wet\n");
    EXPECT_EQ(all.commands.at(1).examples, "");
}

}  // namespace
}  // namespace gpsbook::test
