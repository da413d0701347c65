// Answers and pages as JSON text.
#include "host/cloud/Wire.h"

#include <gtest/gtest.h>

namespace {

using gpsproject::CloudKind;
using gpsproject::CommitAnswer;
using gpsproject::PullPage;
using gpssync::DecodeAnswer;
using gpssync::DecodePage;
using gpssync::EncodeAnswer;
using gpssync::EncodePage;

CommitAnswer SomeAnswer() {
    CommitAnswer answer;
    answer.commit = "00112233445566778899aabbccddeeff";
    answer.revision = 9'000'000'000'000'000'001;
    answer.ids = {1, 0, 9'223'372'036'854'775'807};
    answer.refused = {{2, "field 3 (name): \"\xC3\xA8\" is \\ wrong\n"}};
    answer.clashes = {{CloudKind::group, 7, "B1", 4096, "1;2", "NULLVAL;-inf", 2147483647, "Zo\xC3\xAB", 5},
                      {CloudKind::point, 8, "", 0, "", "name, position", 1, "", 6}};
    answer.head = "0123456789abcdef0123456789abcdef";
    return answer;
}

// Members stand in the order of their names, without blanks.
const std::string kAnswer =
    R"({"clashes":[)"
    R"({"author":"Zoë","bit":4096,"device":2147483647,"id":7,"kind":3,"mine":"1;2","name":"B1","revision":5,"theirs":"NULLVAL;-inf"},)"
    R"({"author":"","bit":0,"device":1,"id":8,"kind":4,"mine":"","name":"","revision":6,"theirs":"name, position"}],)"
    R"("commit":"00112233445566778899aabbccddeeff","head":"0123456789abcdef0123456789abcdef","ids":[1,0,9223372036854775807],)"
    R"("refused":[{"number":2,"reason":"field 3 (name): \"è\" is \\ wrong\n"}],"revision":9000000000000000001})";

PullPage SomePage() {
    PullPage page;
    page.upTo = 12;
    page.newest = 13;
    page.head = "ffeeddccbbaa99887766554433221100";
    page.last = false;
    page.next = "1:0:4";
    page.replies = {{CloudKind::group, false, 3, {"1", "3", "B;1"}, 11},
                    {CloudKind::point, true, 4, {"DEL", "2"}, 12, true}};
    page.authors = {{11, "Anna"}, {12, "Bruno"}};
    return page;
}

const std::string kPage =
    R"({"authors":{"11":"Anna","12":"Bruno"},"head":"ffeeddccbbaa99887766554433221100","last":false,"newest":13,"next":"1:0:4","replies":[)"
    R"({"deleted":false,"device":3,"fields":["1","3","B;1"],"kind":3,"revision":11,"unseen":false},)"
    R"({"deleted":true,"device":4,"fields":["DEL","2"],"kind":4,"revision":12,"unseen":true}],"upTo":12})";

std::string With(std::string text, const std::string& what, const std::string& instead) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), instead);
}

TEST(Wire, AnswerIsWrittenAsDocumented) { EXPECT_EQ(EncodeAnswer(SomeAnswer()), kAnswer); }
TEST(Wire, PageIsWrittenAsDocumented) { EXPECT_EQ(EncodePage(SomePage()), kPage); }

TEST(Wire, AnswerIsReadAsItWasWritten) {
    EXPECT_EQ(DecodeAnswer(kAnswer), SomeAnswer());
    EXPECT_EQ(DecodeAnswer(EncodeAnswer({})), CommitAnswer());
}

TEST(Wire, PageIsReadAsItWasWritten) {
    EXPECT_EQ(DecodePage(kPage), SomePage());
    EXPECT_EQ(DecodePage(EncodePage({})), PullPage());
}

TEST(Wire, TextThatIsCutAnywhereIsNoAnswer) {
    for (std::size_t size = 0; size < kAnswer.size(); ++size)
        EXPECT_FALSE(DecodeAnswer(kAnswer.substr(0, size))) << size;
    for (std::size_t size = 0; size < kPage.size(); ++size)
        EXPECT_FALSE(DecodePage(kPage.substr(0, size))) << size;
}

TEST(Wire, TextWithMoreBehindItIsNoAnswer) {
    EXPECT_FALSE(DecodeAnswer(kAnswer + "x"));
    EXPECT_FALSE(DecodePage(kPage + kPage));
}

TEST(Wire, OneIsNotTakenForTheOther) {
    EXPECT_FALSE(DecodeAnswer(kPage));
    EXPECT_FALSE(DecodePage(kAnswer));
}

TEST(Wire, ValuesOfAnotherTypeOrOutOfRangeAreNoAnswer) {
    const std::pair<std::string, std::string> answers[] = {
        {"\"kind\":3", "\"kind\":5"},
        {"\"kind\":3", "\"kind\":\"3\""},
        {"2147483647", "2147483648"},
        {"\"bit\":0", "\"bit\":-1"},
        {"\"bit\":0", "\"bit\":4294967296"},
        {"9223372036854775807", "9223372036854775808"},
        {"[1,0", "[1.5,0"},
        {"[1,0", "[true,0"},
        {"\"number\":2", "\"number\":null"},
        {"\"author\":\"\"", "\"author\":1"},
        {"\"commit\"", "\"commIt\""},
        {"\"revision\":6", "\"revision\":6,\"more\":1"},
        {"\"clashes\":[", "\"clashes\":{"},
        {"\"refused\":[{", "\"refused\":[[{"},
    };
    for (const auto& [what, instead] : answers)
        EXPECT_FALSE(DecodeAnswer(With(kAnswer, what, instead))) << instead;
    const std::pair<std::string, std::string> pages[] = {
        {"\"last\":false", "\"last\":0"},        {"\"deleted\":true", "\"deleted\":1"},
        {"\"next\":\"1:0:4\"", "\"next\":null"}, {"\"upTo\":12", "\"upTo\":\"12\""},
        {"\"11\":\"Anna\"", "\"x\":\"Anna\""},   {"\"11\":\"Anna\"", "\"11\":5"},
        {"\"unseen\":true", "\"unseen\":1"},     {"\"revision\":12", "\"revision\":null"},
        {"\"DEL\",\"2\"", "\"DEL\",2"},          {"\"kind\":4", "\"kind\":2"},
        {"\"head\":\"ffee", "\"heap\":\"ffee"},  {"\"newest\":13", "\"newest\":-1.5"},
    };
    for (const auto& [what, instead] : pages) EXPECT_FALSE(DecodePage(With(kPage, what, instead))) << instead;
}

TEST(Wire, BytesThatAreNotUtf8AreNoAnswer) { EXPECT_FALSE(DecodePage(With(kPage, "Anna", "An\xFFna"))); }

TEST(Wire, BytesThatAreNotUtf8AreWrittenAsTheMarkForThem) {
    CommitAnswer answer;
    answer.commit = "a\xFF";
    const auto read = DecodeAnswer(EncodeAnswer(answer));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->commit, "a\xEF\xBF\xBD");
}

TEST(Wire, TextNestedDeeplyIsNoAnswer) {
    EXPECT_FALSE(DecodeAnswer(std::string(100'000, '[') + std::string(100'000, ']')));
    EXPECT_FALSE(DecodePage(std::string(100'000, '[')));
}

}  // namespace
