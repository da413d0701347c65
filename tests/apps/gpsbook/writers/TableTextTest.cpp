#include "apps/gpsbook/writers/TableText.h"

#include <gtest/gtest.h>

namespace gpsbook {
namespace {

struct Row {
    const char* name;
    std::string_view text;
    const char* expected;
};

TEST(CleanText, ReplacesWhatIsNoTextAndKeepsTheRest) {
    using std::string_view_literals::operator""sv;
    const Row rows[] = {
        {"plain", "abc", "abc"},
        {"empty", "", ""},
        {"two, three and four bytes", "ü漢\xF0\x9F\x93\x8D", "ü漢\xF0\x9F\x93\x8D"},
        {"tab and line feed stay", "a\tb\nc", "a\tb\nc"},
        {"controls", "a\x01\x1B\x7F\rb", "a????b"},
        {"zero byte", "a\0b"sv, "a?b"},
        {"lone continuation", "a\x80z", "a?z"},
        {"Latin-1", "Gr\xFCn", "Gr?n"},
        {"cut at the end", "a\xE6\xBC", "a??"},
        {"overlong slash", "\xC0\xAF", "??"},
        {"overlong in three bytes", "\xE0\x80\xAF", "???"},
        {"overlong in four bytes", "\xF0\x80\x80\xAF", "????"},
        {"surrogate", "\xED\xA0\x80", "???"},
        {"last before the surrogates", "\xED\x9F\xBF", "\xED\x9F\xBF"},
        {"beyond U+10FFFF", "\xF4\x90\x80\x80", "????"},
    };
    for (const Row& row : rows) EXPECT_EQ(CleanText(row.text), row.expected) << row.name;
}

TEST(DrawingLayer, IsANameThatDrawingsAllow) {
    const Row rows[] = {
        {"plain", "Group 1", "Group 1"},
        {"none", "", "0"},
        {"forbidden characters", "a<b>c/d\\e\"f:g;h?i*j|k=l`m'n,o", "a_b_c_d_e_f_g_h_i_j_k_l_m_n_o"},
        {"Windows-1252", "Grüße",
         "Gr\xFC\xDF"
         "e"},
        {"first and last of the common range", "\xC2\xA0ÿ", "\xA0\xFF"},
        {"control of the second block", "\xC2\x85", "_"},
        {"beyond it", "č漢\xF0\x9F\x93\x8Dx", "___x"},
    };
    for (const Row& row : rows) EXPECT_EQ(DrawingLayer(row.text), row.expected) << row.name;
}

TEST(LabelStyle, EscapesTheText) {
    EXPECT_EQ(LabelStyle("a \"b\" \\c {d}", "0.5g"), "LABEL(f:\"Arial\",t:\"a \\\"b\\\" \\\\c (d)\",s:0.5g)");
}

}  // namespace
}  // namespace gpsbook
