// Sections written and found again, in whole files and in damaged ones.
#include <gtest/gtest.h>

#include <array>

#include "host/project/ContainerReader.h"
#include "host/project/ContainerWriter.h"
#include "host/project/OwnedFile.h"
#include "host/project/ProjectError.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;
using test::KindOf;
using test::ModelDisk;
using Kind = ProjectError::Kind;

constexpr const char* kFile = "/d/file";

struct Section {
    std::string name;
    std::string content;
};

std::string Bytes(std::size_t size, std::uint32_t seed = 1) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>((seed = seed * 1664525 + 1013904223) >> 24);
    return bytes;
}

std::string FileOf(const std::vector<Section>& sections) {
    ModelDisk disk;
    OwnedFile file(disk);
    EXPECT_EQ(disk.Open(kFile, FileOperations::How::createNew, 0600, file.number), 0);
    ContainerWriter writer(disk, file.number);
    EXPECT_EQ(writer.Begin(), 0);
    short version = 10;
    for (const Section& section : sections)
        EXPECT_EQ(writer.Section(section.name, version++, 7,
                                 [&](ofpstream& out) {
                                     out.WriteBytes(section.content.data(), section.content.size());
                                 }),
                  0);
    EXPECT_EQ(writer.End(), 0);
    EXPECT_EQ(writer.GetSize(), static_cast<std::int64_t>(disk.Bytes(kFile).size()));
    return disk.Bytes(kFile);
}

/// What is found in the bytes of a file.
struct Found {
    explicit Found(const std::string& bytes) : file(disk) {
        disk.Put(kFile, bytes);
        EXPECT_EQ(disk.Open(kFile, FileOperations::How::read, 0, file.number), 0);
        container = ReadContainer(disk, file.number, static_cast<std::int64_t>(bytes.size()), kFile);
    }

    std::string Content(const std::string& name, std::vector<SectionSource::BadBlock>* bad = nullptr,
                        bool* whole = nullptr) {
        const FoundSection* const section = container.Find(name);
        if (!section) return "(not found)";
        SectionSource source(disk, file.number, *section);
        std::string content;
        std::array<char, 5000> piece{};
        std::size_t got = 1;
        while (got > 0) {
            EXPECT_EQ(source.Read(piece.data(), piece.size(), got), 0);
            content.append(piece.data(), got);
        }
        if (bad) *bad = source.GetBadBlocks();
        if (whole) *whole = source.IsWhole();
        return content;
    }

    std::string Damages() const {
        DamageReport report;
        report.damages = container.damages;
        return report.Text();
    }

    ModelDisk disk;
    OwnedFile file;
    Container container;
};

const std::vector<Section> kTwo{{"first", "one"}, {"second", "and two"}};

TEST(Container, GivesWhatWasWritten) {
    Found found(FileOf(kTwo));
    EXPECT_EQ(found.Damages(), "");
    ASSERT_EQ(found.container.sections.size(), 2U);
    EXPECT_EQ(found.container.sections[0].entry.version, 10);
    EXPECT_EQ(found.container.sections[1].entry.version, 11);
    EXPECT_EQ(found.container.sections[1].entry.items, 7);
    EXPECT_EQ(found.Content("first"), "one");
    EXPECT_EQ(found.Content("second"), "and two");
    EXPECT_EQ(found.container.Find("third"), nullptr);
}

TEST(Container, ContentsOfEverySizeComeBackInPiecesOfEverySize) {
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 12288U, 300000U}) {
        const std::string content = Bytes(size);
        Found found(FileOf({{"a", content}}));
        EXPECT_EQ(found.Damages(), "");
        for (const std::size_t step : {1U, 7U, 4096U, 4100U, 1000000U}) {
            if (size > 20000 && step < 1000) continue;
            SectionSource source(found.disk, found.file.number, found.container.sections[0]);
            std::string read, piece(step, '\0');
            std::size_t got = 1;
            while (got > 0) {
                ASSERT_EQ(source.Read(piece.data(), step, got), 0);
                read.append(piece.data(), got);
            }
            EXPECT_EQ(read, content) << size << " by " << step;
            EXPECT_TRUE(source.IsWhole());
        }
    }
}

TEST(Container, FileWithoutSectionsHasNothingToGive) {
    EXPECT_EQ(KindOf([] { Found{FileOf({})}; }), Kind::damaged);
}

TEST(Container, OtherFilesAreNoProjects) {
    for (const std::string& bytes : {std::string(), std::string("x"), std::string("a,b,c\n1,2,3\n"),
                                     Bytes(1000), std::string(1000, '\0')}) {
        std::string message;
        EXPECT_EQ(KindOf([&] { Found{bytes}; }, &message), Kind::damaged);
        EXPECT_NE(message.find("is no GPS survey project"), std::string::npos) << message;
    }
}

TEST(Container, NewerFormatIsRefusedByName) {
    std::string bytes = FileOf(kTwo);
    bytes[18] = 2;  // needed version
    const std::uint32_t crc = Crc(bytes.substr(0, 20));
    for (std::size_t i = 0; i < 4; ++i) bytes[20 + i] = static_cast<char>(crc >> (8 * i) & 0xFF);
    std::string message;
    EXPECT_EQ(KindOf([&] { Found{bytes}; }, &message), Kind::tooNew);
    EXPECT_NE(message.find("version 2"), std::string::npos) << message;
}

TEST(Container, NewerFormatThatCanBeReadIsRead) {
    std::string bytes = FileOf(kTwo);
    bytes[16] = 2;  // version that was written
    const std::uint32_t crc = Crc(bytes.substr(0, 20));
    for (std::size_t i = 0; i < 4; ++i) bytes[20 + i] = static_cast<char>(crc >> (8 * i) & 0xFF);
    EXPECT_EQ(Found(bytes).Damages(), "");
}

// Every bit of a file is covered by something: with any of them wrong the file is not taken for whole, and
// both contents are still there, or one of them when its head is lost together with nothing else.
TEST(Container, EveryWrongBitIsSeenAndBothContentsAreStillRead) {
    const std::string whole = FileOf(kTwo);
    for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
        std::string bytes = whole;
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << (bit % 8)));
        Found found(bytes);
        std::vector<SectionSource::BadBlock> bad1, bad2;
        EXPECT_EQ(found.Content("first", &bad1), "one") << "bit " << bit;
        EXPECT_EQ(found.Content("second", &bad2), "and two") << "bit " << bit;
        EXPECT_EQ(found.container.damages.size() + bad1.size() + bad2.size(), 1U) << "bit " << bit << "\n"
                                                                                  << found.Damages();
    }
}

/// `left`: bytes from the beginning of the content to the cut. A marker that is cut is not known as one.
void ExpectContent(const std::string& found, const std::string& whole, std::size_t left) {
    const bool inMarker = left > whole.size() && left < whole.size() + kMarkerSize;
    EXPECT_EQ(inMarker ? found.substr(0, whole.size()) : found, whole.substr(0, left)) << left;
    EXPECT_LE(found.size(), left);
}

TEST(Container, EveryCutFileGivesWhatItHolds) {
    const std::string whole = FileOf(kTwo);
    const std::size_t firstContent = whole.find("one"), secondContent = whole.find("and two");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string bytes = whole.substr(0, size);
        if (size < firstContent) {
            EXPECT_EQ(KindOf([&] { Found{bytes}; }), Kind::damaged) << size;
            continue;
        }
        Found found(bytes);
        EXPECT_NE(found.Damages(), "") << size;
        ExpectContent(found.Content("first"), "one", size - firstContent);
        if (size < secondContent)
            EXPECT_EQ(found.container.Find("second"), nullptr) << size;
        else
            ExpectContent(found.Content("second"), "and two", size - secondContent);
    }
}

TEST(Container, BytesBehindTheEndAreDamage) {
    Found found(FileOf(kTwo) + "x");
    EXPECT_NE(found.Damages(), "");
    EXPECT_EQ(found.Content("first"), "one");
    EXPECT_EQ(found.Content("second"), "and two");
}

TEST(Container, LostTableAndLostHeadLoseOneSection) {
    std::string bytes = FileOf(kTwo);
    bytes[24] ^= 1;                // the head of the first section
    bytes[bytes.size() - 1] ^= 1;  // the trailer
    Found found(bytes);
    EXPECT_EQ(found.container.Find("first"), nullptr);
    EXPECT_EQ(found.Content("second"), "and two");
    EXPECT_NE(found.Damages().find("whose name is lost"), std::string::npos) << found.Damages();
}

TEST(Container, LostTableAndLostEndLeaveTheContentUnchecked) {
    std::string bytes = FileOf(kTwo);
    bytes[bytes.find("one") + 3] ^= 1;  // the end of the first section
    bytes[bytes.size() - 1] ^= 1;
    Found found(bytes);
    EXPECT_EQ(found.Content("second"), "and two");
    EXPECT_TRUE(found.Content("first").starts_with("one"));
    EXPECT_FALSE(found.container.Find("first")->checked);
}

// A container inside a section is a content like any other: its marks are not taken for those of the file.
TEST(Container, ContainerInsideASectionStaysInsideIt) {
    const std::string inner = FileOf({{"inner", "deep"}});
    std::string bytes = FileOf({{"outer", inner}, {"second", "and two"}});
    EXPECT_EQ(Found(bytes).Content("outer"), inner);
    bytes[bytes.size() - 1] ^= 1;
    Found found(bytes);
    EXPECT_EQ(found.Content("outer"), inner);
    EXPECT_EQ(found.Content("second"), "and two");
    EXPECT_EQ(found.container.sections.size(), 2U);
}

TEST(Container, SectionThatIsThereTwiceIsReadOnceAndTold) {
    Found found(FileOf({{"a", "one"}, {"a", "two"}}));
    EXPECT_EQ(found.container.sections.size(), 1U);
    EXPECT_EQ(found.Content("a"), "one");
    EXPECT_NE(found.Damages().find("there twice"), std::string::npos) << found.Damages();
}

TEST(Container, OneWrongBitInALongContentIsPutRight) {
    const std::string content = Bytes(100000);
    std::string bytes = FileOf({{"a", content}});
    const std::size_t begin = bytes.find(content);
    bytes[begin + 54321] ^= 0x10;
    std::vector<SectionSource::BadBlock> bad;
    bool whole = false;
    EXPECT_EQ(Found(bytes).Content("a", &bad, &whole), content);
    EXPECT_TRUE(whole);
    ASSERT_EQ(bad.size(), 1U);
    EXPECT_TRUE(bad[0].repaired);
    EXPECT_EQ(bad[0].offset, static_cast<std::int64_t>(begin + 54321));
}

TEST(Container, MoreWrongBytesAreHandedOutAsTheyAreAndToldByBlock) {
    const std::string content = Bytes(100000);
    std::string bytes = FileOf({{"a", content}});
    const std::size_t begin = bytes.find(content);
    for (std::size_t i = 50000; i < 50010; ++i) bytes[begin + i] = 'x';
    std::vector<SectionSource::BadBlock> bad;
    bool whole = true;
    EXPECT_EQ(Found(bytes).Content("a", &bad, &whole), bytes.substr(begin, content.size()));
    EXPECT_FALSE(whole);
    ASSERT_EQ(bad.size(), 1U);
    EXPECT_FALSE(bad[0].repaired);
    EXPECT_EQ(bad[0].offset, static_cast<std::int64_t>(begin + 49152));
    EXPECT_EQ(bad[0].size, 4096);
}

// Marks of sections that lead nowhere, as many as fit: time and memory grow with the file, not faster.
TEST(Container, FileFullOfFalseMarksIsReadInItsTime) {
    std::string bytes = FileHead();
    const std::string head = SectionHead({"a", 1, 0, -1, 0, 0});
    for (std::int64_t i = 0; bytes.size() < 4'000'000; ++i)
        bytes += head + SectionEndBytes({100 * (i % 40000), 0, 0});
    Found found(bytes);
    EXPECT_EQ(found.container.sections.size(), 1U) << "all have one name";
}

}  // namespace
