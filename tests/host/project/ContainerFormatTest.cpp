// The bytes of a project file, by its page, and every part that is damaged.
#include "host/project/ContainerFormat.h"

#include <gtest/gtest.h>

#include <fstream>

#include "host/os/FileOperations.h"
#include "host/project/ContainerWriter.h"
#include "host/project/OwnedFile.h"
#include "platform/base/ofpstream.h"
#include "tests/TempFolder.h"

namespace {

using namespace gpsproject;
using namespace std::string_literals;

/// A line of the example: its address, and the bytes behind it.
struct Line {
    std::size_t at;
    std::string bytes;
};

std::vector<Line> ExampleOfPage() {
    std::ifstream page(GPS_SOURCE_DIR "/docs/formats/project-file.md");
    std::vector<Line> lines;
    std::string text;
    while (std::getline(page, text) && text != "## Example") {
    }
    while (std::getline(page, text)) {
        if (text.size() < 6 || text.find_first_not_of("0123456789abcdef") != 4) continue;
        Line line{std::stoul(text.substr(0, 4), nullptr, 16), {}};
        for (std::size_t i = 6; i + 2 <= text.size() && text[i] != ' '; i += 3)
            line.bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
        lines.push_back(line);
    }
    return lines;
}

TEST(ContainerFormat, ExampleOfThePageIsWhatIsWritten) {
    const test::TempFolder folder;
    FileOperations& files = FileOperations::System();
    OwnedFile file(files);
    ASSERT_EQ(files.Open(folder / "file", FileOperations::How::createNew, 0600, file.number), 0);
    ContainerWriter writer(files, file.number);
    ASSERT_EQ(writer.Begin(), 0);
    ASSERT_EQ(writer.Section("project", 1400, 0,
                             [](ofpstream& out) {
                                 out.WriteInt(1);
                                 out.WriteString("name");
                                 out.WriteString("Dam");
                             }),
              0);
    ASSERT_EQ(writer.Section("note", 0, 0, [](ofpstream& out) { out.WriteBytes("hello", 5); }), 0);
    ASSERT_EQ(writer.End(), 0);
    EXPECT_EQ(writer.GetSize(), 302);

    const std::string written = test::FileBytes(folder / "file");
    const std::vector<Line> lines = ExampleOfPage();
    ASSERT_GT(lines.size(), 40U);
    std::size_t at = 0;
    for (const Line& line : lines) {
        EXPECT_EQ(line.at, at);
        EXPECT_EQ(written.substr(at, line.bytes.size()), line.bytes) << "at " << at;
        at += line.bytes.size();
    }
    EXPECT_EQ(at, written.size());
}

/// CRC-32 by its definition, bit by bit.
std::uint32_t SlowCrc(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

TEST(ContainerFormat, ChecksumIsCrc32) {
    EXPECT_EQ(Crc("123456789"), 0xCBF43926U);
    for (const std::string& text : {""s, "a"s, "hello"s, std::string(5000, '\x5a')})
        EXPECT_EQ(Crc(text), SlowCrc(text));
}

TEST(ContainerFormat, FileHeadHasMarkerSignatureAndVersions) {
    const std::string head = "\x89GPS\r\n\x1a\nGPS BOOK\x01\x00\x01\x00\xab\x1e\x74\xb3"s;
    EXPECT_EQ(FileHead(), head);
    EXPECT_EQ(NeededVersion(head), 1);
}

// Every part: what was written is read again, and with any bit turned, or cut anywhere, it is no such part.
template <class Read>
void EveryDamageIsSeen(const std::string& bytes, Read read) {
    ASSERT_TRUE(read(bytes));
    for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_FALSE(read(damaged)) << "bit " << bit;
    }
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(read(bytes.substr(0, size))) << size << " bytes";
}

TEST(ContainerFormat, DamagedFileHeadIsNone) {
    EveryDamageIsSeen(FileHead(), [](const std::string& b) { return NeededVersion(b).has_value(); });
}

TEST(ContainerFormat, DamagedSectionHeadIsNone) {
    EveryDamageIsSeen(SectionHead({"gps", 1400, 17, -1, 0, 0}), [](const std::string& b) {
        std::size_t size = 0;
        return ReadSectionHead(b, size).has_value();
    });
}

TEST(ContainerFormat, DamagedSectionEndIsNone) {
    EveryDamageIsSeen(SectionEndBytes({1000, 1, 2}),
                      [](const std::string& b) { return ReadSectionEnd(b).has_value(); });
}

TEST(ContainerFormat, SectionHeadKeepsItsValues) {
    const std::string bytes = SectionHead({"gps", -5, 1LL << 40, -1, 0, 0});
    std::size_t size = 0;
    const auto entry = ReadSectionHead(bytes + "what follows", size);
    ASSERT_TRUE(entry);
    EXPECT_EQ(size, bytes.size());
    EXPECT_EQ(entry->name, "gps");
    EXPECT_EQ(entry->version, -5);
    EXPECT_EQ(entry->items, 1LL << 40);
}

TEST(ContainerFormat, SectionWithoutNameOrWithALongOneIsNone) {
    std::size_t size = 0;
    EXPECT_FALSE(ReadSectionHead(SectionHead({"", 1, 0, -1, 0, 0}), size));
    EXPECT_TRUE(ReadSectionHead(SectionHead({std::string(64, 'n'), 1, 0, -1, 0, 0}), size));
    EXPECT_FALSE(ReadSectionHead(SectionHead({std::string(65, 'n'), 1, 0, -1, 0, 0}), size));
}

TEST(ContainerFormat, TableIsReadWholeOrNotAtAll) {
    const std::vector<SectionEntry> entries{{"gps", 1400, 3, 60, 100, 5}, {"map", 1400, 0, 300, 0, 0}};
    const std::string bytes = TableBytes(entries);
    EXPECT_EQ(ReadTable(bytes), entries);
    EXPECT_FALSE(ReadTable(bytes + "x"));
    for (std::size_t size = 0; size < bytes.size(); ++size) EXPECT_FALSE(ReadTable(bytes.substr(0, size)));
}

TEST(ContainerFormat, AbsurdCountOfTheTableEndsAtOnce) {
    std::string bytes = TableBytes({});
    bytes[8] = bytes[9] = bytes[10] = '\xff';
    bytes[11] = '\x7f';
    EXPECT_FALSE(ReadTable(bytes));
}

}  // namespace
