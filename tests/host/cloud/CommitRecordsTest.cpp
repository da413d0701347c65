// The text of commits: what each record says, and why one cannot be taken.
#include "host/cloud/CommitRecords.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/host/cloud/Records.h"

namespace {

using gpssync::CloudKind;
using gpssync::CommitReader;
using gpssync::CommitRecord;
using gpssync::Unset;
using gpssync::Value;
using Act = CommitRecord::Act;

std::vector<CommitRecord> ReadAll(std::string_view text) {
    std::vector<CommitRecord> records;
    CommitReader reader(text);
    CommitRecord record;
    while (reader.Next(record)) records.push_back(record);
    return records;
}

CommitRecord ReadOne(std::string_view text) {
    const auto records = ReadAll(text);
    EXPECT_EQ(records.size(), 1u);
    return records.empty() ? CommitRecord() : records[0];
}

std::string Wrong(std::string_view text) { return ReadOne(text).wrong; }

std::vector<std::string> Fields(const std::string& record) {
    std::vector<std::string> fields(1);
    for (const char c : record)
        if (c == ';')
            fields.emplace_back();
        else
            fields.back() += c;
    return fields;
}

std::string Joined(const std::vector<std::string>& fields) {
    std::string text;
    for (const std::string& field : fields) text += (&field == &fields.front() ? "" : ";") + field;
    return text;
}

// --- records as they should be -----------------------------------------------------------------------------

TEST(CommitRecords, NoTextIsNoRecord) { EXPECT_TRUE(ReadAll("").empty()); }

TEST(CommitRecords, RecordsAreDividedByLineBreaks) {
    const auto records = ReadAll("DEL;3;1\r\nDEL;4;2\r\nUBAS;7;1;B");
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].id, 1);
    EXPECT_EQ(records[1].id, 2);
    EXPECT_EQ(records[2].id, 7);
    for (const CommitRecord& record : records) EXPECT_EQ(record.wrong, "");
}

TEST(CommitRecords, BreakAtTheEndIsAnEmptyRecord) {
    const auto records = ReadAll("DEL;3;1\r\n");
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[1].wrong, "the record is empty");
}

TEST(CommitRecords, AddedGroupHasItsFieldsInTheirPlaces) {
    const CommitRecord record = ReadOne(test::Group("B1"));
    EXPECT_EQ(record.wrong, "");
    EXPECT_EQ(record.act, Act::add);
    EXPECT_EQ(record.kind, CloudKind::group);
    EXPECT_EQ(record.mask, 0x1FFFu);
    EXPECT_TRUE(record.hasMapDatum);
    ASSERT_EQ(record.values.size(), 84u);
    EXPECT_EQ(gpssync::JoinedText(record.values, 0, 84), test::GroupFields("B1") + ";" + test::Conversion());
    EXPECT_EQ(record.values[0], Value("B1"));
    EXPECT_EQ(record.values[13], Value(std::int64_t{-3}));
    EXPECT_EQ(record.values[gpssync::kSelectedDatum], Value("Lib"));
    EXPECT_EQ(record.values[gpssync::kMapLibrary], Value(std::int64_t{3}));
    EXPECT_EQ(record.values[gpssync::kMapLibrary + 1], Value("Map"));
    EXPECT_EQ(record.values[gpssync::kBehindMap], Value(std::int64_t{4}));
    EXPECT_EQ(record.values[83], Value(-0.002));
}

TEST(CommitRecords, AddedGroupMayLeaveOutTheDatumOfTheMapLibrary) {
    const CommitRecord record = ReadOne(test::Group("B1", test::Conversion("")));
    EXPECT_EQ(record.wrong, "");
    EXPECT_FALSE(record.hasMapDatum);
    EXPECT_EQ(record.values[gpssync::kMapLibrary + 1], Value("Map"));
    EXPECT_EQ(record.values[83], Value(-0.002));
}

TEST(CommitRecords, AddedPointHasItsFieldsInTheirPlaces) {
    const CommitRecord record = ReadOne(test::Point(-12, "P1"));
    EXPECT_EQ(record.wrong, "");
    EXPECT_EQ(record.act, Act::add);
    EXPECT_EQ(record.kind, CloudKind::point);
    EXPECT_EQ(record.parent, -12);
    EXPECT_EQ(record.mask, 0x1FFFFu);
    EXPECT_EQ(gpssync::JoinedText(record.values, 0, 27), test::PointFields("P1"));
}

TEST(CommitRecords, EachBitOfAGroupBringsItsFields) {
    const struct {
        int mask;
        std::string fields;
        std::size_t first, count;
    } bits[] = {{0x1, "B", 0, 1},
                {0x2, "c", 1, 1},
                {0x4, "1;2;3", 2, 3},
                {0x8, "9", 5, 1},
                {0x10, "G", 6, 1},
                {0x20, "1", 7, 1},
                {0x40, "0", 8, 1},
                {0x80, "45.5", 9, 1},
                {0x100, "9.5", 10, 1},
                {0x200, "120", 11, 1},
                {0x400, "2", 12, 1},
                {0x800, "7", 13, 1},
                {0x1000, test::Conversion(), 14, 70}};
    for (const auto& bit : bits) {
        const CommitRecord record = ReadOne("UBAS;5;" + std::to_string(bit.mask) + ";" + bit.fields);
        EXPECT_EQ(record.wrong, "") << bit.mask;
        EXPECT_EQ(record.act, Act::change);
        EXPECT_EQ(record.kind, CloudKind::group);
        EXPECT_EQ(record.id, 5);
        EXPECT_EQ(record.mask, static_cast<std::uint32_t>(bit.mask));
        EXPECT_EQ(gpssync::JoinedText(record.values, bit.first, bit.count), bit.fields);
    }
}

TEST(CommitRecords, EachBitOfAPointBringsItsFields) {
    const struct {
        int mask;
        std::string fields;
        std::size_t first, count;
    } bits[] = {{0x1, "P", 0, 1},
                {0x2, "c", 1, 1},
                {0x4, "1;2;3", 2, 3},
                {0x8, "9", 5, 1},
                {0x10, "2024;5;31;43200", 6, 4},
                {0x20, "4", 10, 1},
                {0x40, "8", 11, 1},
                {0x80, "5", 12, 1},
                {0x100, "45", 13, 1},
                {0x200, "9", 14, 1},
                {0x400, "10", 15, 1},
                {0x800, "2", 16, 1},
                {0x1000, "1", 17, 1},
                {0x2000, "2", 18, 1},
                {0x4000, "3", 19, 1},
                {0x8000, "4", 20, 1},
                {0x10000, "1;2;3;4;5;6", 21, 6}};
    for (const auto& bit : bits) {
        const CommitRecord record = ReadOne("UPTGPS;5;" + std::to_string(bit.mask) + ";" + bit.fields);
        EXPECT_EQ(record.wrong, "") << bit.mask;
        EXPECT_EQ(record.kind, CloudKind::point);
        EXPECT_EQ(gpssync::JoinedText(record.values, bit.first, bit.count), bit.fields);
    }
}

TEST(CommitRecords, AllBitsTogetherStandInTheirOrder) {
    EXPECT_EQ(Wrong("UPTGPS;5;131071;" + test::PointFields("P1")), "");
    EXPECT_EQ(Wrong("UBAS;5;8191;" + test::GroupFields("B1") + ";" + test::Conversion()), "");
    const CommitRecord shorter =
        ReadOne("UBAS;5;8191;" + test::GroupFields("B1") + ";" + test::Conversion(""));
    EXPECT_EQ(shorter.wrong, "");
    EXPECT_FALSE(shorter.hasMapDatum);
}

TEST(CommitRecords, MinusInfinityIsANumberAndMinusZeroIsZero) {
    const CommitRecord record = ReadOne("UPTGPS;5;4;-inf;-0;NULLVAL");
    EXPECT_EQ(record.wrong, "");
    EXPECT_EQ(record.values[2], Value(-std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(std::signbit(std::get<double>(record.values[3])));
    EXPECT_EQ(record.values[4], Value(Unset()));
}

TEST(CommitRecords, MemoryOfARecordIsUsedAgainWithoutATrace) {
    const std::string text = test::Records(
        {test::Group("B1", test::Conversion("")), test::Point(-1), "DEL;4;8", test::Group("B2")});
    CommitReader reader(text);
    CommitRecord record;
    ASSERT_TRUE(reader.Next(record));
    ASSERT_TRUE(reader.Next(record));
    EXPECT_EQ(record.parent, -1);
    EXPECT_TRUE(record.hasMapDatum);
    EXPECT_EQ(gpssync::JoinedText(record.values, 0, record.values.size()), test::PointFields("P1"));
    ASSERT_TRUE(reader.Next(record));
    EXPECT_EQ(record.act, Act::remove);
    EXPECT_EQ(record.mask, 0u);
    EXPECT_EQ(record.parent, 0);
    ASSERT_TRUE(reader.Next(record));
    EXPECT_EQ(gpssync::JoinedText(record.values, 0, 84), test::GroupFields("B2") + ";" + test::Conversion());
    EXPECT_FALSE(reader.Next(record));
}

// --- why one cannot be taken -------------------------------------------------------------------------------

TEST(CommitRecords, UnknownKindsOfRecordsAreRefused) {
    EXPECT_EQ(Wrong("XBAS;1"), "there is no kind of record \"XBAS\"");
    EXPECT_EQ(Wrong("ubas;1;1;B"), "there is no kind of record \"ubas\"");
    EXPECT_EQ(Wrong(";1;1;B"), "the record is empty");
    EXPECT_EQ(Wrong(std::string(40, 'X')), "there is no kind of record \"" + std::string(40, 'X') + "\"");
    // Cut before a character, not inside it.
    EXPECT_EQ(Wrong(std::string(39, 'X') + "\xC3\xA8"),
              "there is no kind of record \"" + std::string(39, 'X') + "...\"");
    EXPECT_EQ(Wrong(std::string(41, 'X')), "there is no kind of record \"" + std::string(40, 'X') + "...\"");
}

TEST(CommitRecords, BytesThatNoTextHasAreRefused) {
    EXPECT_EQ(Wrong("UBAS;1;1;B\xC3"), "the record is not UTF-8");
    EXPECT_EQ(Wrong("\xFF"), "the record is not UTF-8");
    EXPECT_EQ(Wrong(std::string("UBAS;1;1;B\0", 11)), "the record holds a zero byte");
    EXPECT_EQ(Wrong("UBAS;1;1;B\nC"), "the record holds a line break");
    EXPECT_EQ(Wrong("UBAS;1;1;B\rC"), "the record holds a line break");
}

TEST(CommitRecords, AddedRecordThatIsWrongIsStillAnAddedOne) {
    for (const std::string text : {"IBAS", "IBAS;", "IPTGPS", "IPTGPS;x", "IBAS;\xFF", "IPTGPS;1;\n"}) {
        const CommitRecord record = ReadOne(text);
        EXPECT_EQ(record.act, Act::add) << text;
        EXPECT_NE(record.wrong, "") << text;
    }
    EXPECT_EQ(ReadOne("IBASX;1").act, Act::unknown);
}

TEST(CommitRecords, IdsBelowOneOrNoNumbersAreRefused) {
    for (const std::string tag : {"UBAS;", "UPTGPS;", "DEL;3;", "DEL;4;"}) {
        const std::string behind = tag[0] == 'D' ? "" : ";1;N";
        EXPECT_EQ(Wrong(tag + "0" + behind), "the id is 0; ids are 1 or more");
        EXPECT_EQ(Wrong(tag + "-5" + behind), "the id is -5; ids are 1 or more");
        EXPECT_EQ(Wrong(tag + "x" + behind), "the id \"x\" is no whole number of 64 bits");
        EXPECT_EQ(Wrong(tag + "" + behind), "the id \"\" is no whole number of 64 bits");
        EXPECT_EQ(Wrong(tag + "1.5" + behind), "the id \"1.5\" is no whole number of 64 bits");
        EXPECT_EQ(Wrong(tag + "9223372036854775808" + behind),
                  "the id \"9223372036854775808\" is no whole number of 64 bits");
        EXPECT_EQ(Wrong(tag + "9223372036854775807" + behind), "");
    }
    EXPECT_EQ(Wrong("UBAS"), "the record ends before the id");
    EXPECT_EQ(Wrong("DEL;3"), "the record ends before the id");
}

TEST(CommitRecords, MasksThatNothingBelongsToAreRefused) {
    EXPECT_EQ(Wrong("UBAS;1"), "the record ends before the mask");
    EXPECT_EQ(Wrong("UBAS;1;"), "the mask \"\" is no whole number of 32 bits");
    EXPECT_EQ(Wrong("UBAS;1;x"), "the mask \"x\" is no whole number of 32 bits");
    EXPECT_EQ(Wrong("UBAS;1;4294967296"), "the mask \"4294967296\" is no whole number of 32 bits");
    EXPECT_EQ(Wrong("UBAS;1;0"), "the mask is 0: the record changes nothing");
    EXPECT_EQ(Wrong("UBAS;1;8192;x"),
              "the mask 8192 has bits that a group does not have; the book was written by a newer program");
    EXPECT_EQ(Wrong("UPTGPS;1;131072;x"),
              "the mask 131072 has bits that a point does not have; the book was written by a newer program");
    EXPECT_EQ(Wrong("UPTGPS;1;-1;x"),
              "the mask -1 has bits that a point does not have; the book was written by a newer program");
}

TEST(CommitRecords, OtherNumbersOfFieldsAreRefused) {
    EXPECT_EQ(Wrong("UBAS;1;1"), "the record has 3 fields instead of 4");
    EXPECT_EQ(Wrong("UBAS;1;1;a;b"), "the record has 5 fields instead of 4");
    EXPECT_EQ(Wrong("UPTGPS;1;16;1;2;3"), "the record has 6 fields instead of 7");
    EXPECT_EQ(Wrong(test::Group() + ";1"), "the record has 86 fields instead of 85");
    EXPECT_EQ(Wrong(test::Group("B1", "1")), "the record has 16 fields instead of 85");
    EXPECT_EQ(Wrong(test::Point(1) + ";"), "the record has 30 fields instead of 29");
    EXPECT_EQ(Wrong("IPTGPS;1;P;c"), "the record has 4 fields instead of 29");
    EXPECT_EQ(Wrong("DEL;3;1;2"), "the record has more than 3 fields");
    // Only a conversion has fields that may be left out.
    EXPECT_EQ(Wrong("UBAS;1;4111;B"), "the record has 4 fields instead of 79");
}

TEST(CommitRecords, EveryNumberOfFieldsButTheRightOnesIsRefused) {
    for (const std::string& whole : {test::Group(), test::Point(1), "UBAS;1;4096;" + test::Conversion()}) {
        std::vector<std::string> fields = Fields(whole);
        const std::size_t right = fields.size();
        fields.resize(right + 3, "0");
        for (; fields.size() > 3; fields.pop_back()) {
            const bool taken = Wrong(Joined(fields)).empty();
            if (fields.size() == right) {
                EXPECT_TRUE(taken);
            } else if (fields.size() + 11 != right || whole.starts_with("IPTGPS")) {
                EXPECT_FALSE(taken) << fields.size();
            }
        }
    }
}

TEST(CommitRecords, DeletionsAreOfGroupsAndPoints) {
    EXPECT_EQ(ReadOne("DEL;3;7").kind, CloudKind::group);
    EXPECT_EQ(ReadOne("DEL;4;7").kind, CloudKind::point);
    EXPECT_EQ(ReadOne("DEL;4;7").act, Act::remove);
    EXPECT_EQ(Wrong("DEL;5;7"), "nothing of kind \"5\" can be deleted, only groups (3) and points (4)");
    EXPECT_EQ(Wrong("DEL"), "nothing of kind \"\" can be deleted, only groups (3) and points (4)");
}

TEST(CommitRecords, GroupOfAPointIsAWholeNumber) {
    EXPECT_EQ(Wrong("IPTGPS;x;" + test::PointFields("P")), "the group \"x\" is no whole number of 64 bits");
    EXPECT_EQ(Wrong("IPTGPS;;" + test::PointFields("P")), "the group \"\" is no whole number of 64 bits");
    EXPECT_EQ(Wrong("IPTGPS"), "the group \"\" is no whole number of 64 bits");
}

// Every field of every kind is looked at by itself.
TEST(CommitRecords, EachFieldTakesWhatItsTypeHasAndNothingElse) {
    const auto check = [](const std::string& whole, std::size_t front,
                          std::span<const gpssync::Field> fields) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const auto with = [&](const std::string& text) {
                std::vector<std::string> all = Fields(whole);
                all[front + i] = text;
                return Wrong(Joined(all));
            };
            const auto reason = [&](const std::string& text, const std::string& what) {
                return "field " + std::to_string(front + i + 1) + " (" + fields[i].column + "): \"" + text +
                       "\" " + what;
            };
            if (fields[i].type == gpssync::FieldType::text) {
                EXPECT_EQ(with(""), "");
                EXPECT_EQ(with("x"), "");
                continue;
            }
            const bool isReal = fields[i].type == gpssync::FieldType::real;
            const std::string noNumber = isReal ? "is no number" : "is no whole number";
            for (const std::string text :
                 {"", "x", " 1", "1 ", "+1", "1x", "0x1", "1,5", "nan", "-nan", "nullval"})
                EXPECT_EQ(with(text), reason(text, noNumber));
            if (isReal) {
                for (const std::string text : {"0", "-1e200", "8.4e199", "NULLVAL", "-inf", "1.5"})
                    EXPECT_EQ(with(text), "") << text;
                for (const std::string text : {"inf", "-infinity", "1.7e200", "8.5e199"})
                    EXPECT_EQ(with(text), reason(text, "is out of range"));
                EXPECT_EQ(with("1e999"), reason("1e999", "is no number"));
            } else {
                const auto least = fields[i].least, most = fields[i].most;
                EXPECT_EQ(with(std::to_string(least)), "");
                EXPECT_EQ(with(std::to_string(most)), "");
                const std::string what =
                    "is not between " + std::to_string(least) + " and " + std::to_string(most);
                for (const auto outside : {least - 1, most + 1})
                    EXPECT_EQ(with(std::to_string(outside)), reason(std::to_string(outside), what));
                for (const std::string text : {"1.5", "NULLVAL", "1e2", "9223372036854775808"})
                    EXPECT_EQ(with(text), reason(text, noNumber));
            }
        }
    };
    check(test::Point(1), 2, gpssync::kPointFields);
    check("UPTGPS;1;131071;" + test::PointFields("P"), 3, gpssync::kPointFields);
    check(test::Group(), 1, gpssync::kGroupFields);
    check("UBAS;1;8191;" + test::GroupFields("B") + ";" + test::Conversion(), 3, gpssync::kGroupFields);
}

TEST(CommitRecords, LimitsAreThoseOfTheFields) {
    const auto limits = [](std::span<const gpssync::Field> fields, std::size_t i) {
        return std::pair(fields[i].least, fields[i].most);
    };
    using Pair = std::pair<std::int64_t, std::int64_t>;
    const Pair flag{0, 1}, byte{0, 255}, all{-2147483648LL, 2147483647LL};
    EXPECT_EQ(limits(gpssync::kGroupFields, 7), flag);  // survey type
    EXPECT_EQ(limits(gpssync::kGroupFields, 8), flag);  // receiver type
    EXPECT_EQ(limits(gpssync::kGroupFields, 13), (Pair{-32768, 32767}));
    EXPECT_EQ(limits(gpssync::kGroupFields, 21), flag);
    EXPECT_EQ(limits(gpssync::kGroupFields, 29), flag);  // directions of the three datums
    EXPECT_EQ(limits(gpssync::kGroupFields, 40), flag);
    EXPECT_EQ(limits(gpssync::kGroupFields, 52), flag);
    EXPECT_EQ(limits(gpssync::kGroupFields, 5), all);
    EXPECT_EQ(limits(gpssync::kPointFields, 5), all);
    EXPECT_EQ(limits(gpssync::kPointFields, 6), (Pair{0, 65535}));
    for (const std::size_t i : {7u, 8u, 11u, 12u}) EXPECT_EQ(limits(gpssync::kPointFields, i), byte);
    EXPECT_EQ(limits(gpssync::kPointFields, 9), all);  // time of day
    EXPECT_EQ(limits(gpssync::kPointFields, 10), all);
    EXPECT_EQ(limits(gpssync::kPointFields, 21), all);  // covariances
}

TEST(CommitRecords, ColumnsHaveNamesOfTheirOwn) {
    for (const auto fields : {gpssync::FieldsOf(CloudKind::group), gpssync::FieldsOf(CloudKind::point)})
        for (std::size_t i = 0; i < fields.size(); ++i)
            for (std::size_t k = 0; k < i; ++k) EXPECT_STRNE(fields[i].column, fields[k].column);
}

}  // namespace
