// Damaged project files: told, never written over, and read as far as they go.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "host/project/ContainerReader.h"
#include "host/project/ContainerWriter.h"
#include "host/project/GpsReader.h"
#include "host/project/GpsSection.h"
#include "host/project/OwnedFile.h"
#include "host/project/Project.h"
#include "platform/base/ofpstream.h"
#include "tests/Scale.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;
using test::ContentOf;
using test::KindOf;
using test::ModelDisk;
using Kind = ProjectError::Kind;
using Mode = Project::Mode;

constexpr const char* kBook = "/d/book";

/// The bytes of a saved book, and what it holds.
struct Sample {
    explicit Sample(short version, int groups = 2, int points = 3) : project(version, disk) {
        test::Fill(project, 1, groups, points);
        project.SaveAs(kBook, false);
        bytes = disk.Bytes(kBook);
        OwnedFile file(disk);
        EXPECT_EQ(disk.Open(kBook, FileOperations::How::read, 0, file.number), 0);
        for (const auto& section :
             ReadContainer(disk, file.number, static_cast<std::int64_t>(bytes.size()), kBook).sections) {
            if (section.entry.name == "gps") gps = section.entry;
        }
    }
    ModelDisk disk;
    Project project;
    std::string bytes;
    SectionEntry gps;
};

/// A disk with these bytes as a book, and what is opened from it.
struct Damaged {
    explicit Damaged(const std::string& damagedBytes) : bytes(damagedBytes) { disk.Put(kBook, bytes); }

    /// Null when nothing can be read.
    Project* Open(Mode mode = Mode::write) {
        try {
            project = Project::Open(kBook, mode, disk);
        } catch (const ProjectError& e) {
            EXPECT_EQ(e.GetKind(), Kind::damaged) << e.what();
            message = e.what();
        }
        EXPECT_EQ(disk.Bytes(kBook), bytes) << "the source is untouched";
        EXPECT_EQ(disk.Names(), std::vector<std::string>{kBook}) << "and not locked";
        return project.get();
    }

    std::string bytes;
    ModelDisk disk;
    std::unique_ptr<Project> project;
    std::string message;
};

std::string Flipped(std::string bytes, std::size_t bit) {
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << (bit % 8)));
    return bytes;
}

/// Whether the groups and points of a book are the first ones of another.
bool IsBeginningOf(CLibGps& part, CLibGps& whole) {
    const auto bytesOf = [](CPunGps& point) {
        ofpstream out(1400);
        point.SalvaInFile(out, true);
        return std::string(out.GetBytes());
    };
    if (part.GetGrpArSize() > whole.GetGrpArSize()) return false;
    for (int g = 0; g < part.GetGrpArSize(); ++g) {
        if (part.GetGrpAt(g)->GetNomeGrp() != whole.GetGrpAt(g)->GetNomeGrp()) return false;
        const bool last = g + 1 == part.GetGrpArSize();
        if (part.GetPunArSize(g) > whole.GetPunArSize(g)) return false;
        if (!last && part.GetPunArSize(g) != whole.GetPunArSize(g)) return false;
        for (int p = 0; p < part.GetPunArSize(g); ++p) {
            if (bytesOf(*part.GetPunAt(g, p)) != bytesOf(*whole.GetPunAt(g, p))) return false;
        }
    }
    return true;
}

class EveryDamage : public testing::TestWithParam<short> {};

// Any single wrong bit is told with its place, and everything is read as it was written.
TEST_P(EveryDamage, OneWrongBitLosesNothing) {
    const Sample sample(GetParam());
    const auto content = [&] {
        const auto whole = Project::Open(kBook, Mode::read, const_cast<Sample&>(sample).disk);
        return ContentOf(*whole);
    }();
    for (std::size_t bit = 0; bit < 8 * sample.bytes.size() && !HasFailure(); ++bit) {
        Damaged damaged(Flipped(sample.bytes, bit));
        Project* const project = damaged.Open();
        ASSERT_NE(project, nullptr) << bit << damaged.message;
        ASSERT_TRUE(project->GetReport().IsDamaged()) << bit;
        ASSERT_TRUE(project->IsReadOnly()) << bit;
        ASSERT_EQ(ContentOf(*project), content) << bit << "\n" << project->GetReport().Text();
        ASSERT_EQ(project->GetReport().damages.size(), 1U) << bit << "\n" << project->GetReport().Text();
        const auto byte = static_cast<std::int64_t>(bit / 8);
        if (byte >= sample.gps.offset && byte < sample.gps.offset + sample.gps.length) {
            const Damage& damage = project->GetReport().damages[0];
            ASSERT_EQ(damage.section, "gps") << bit;
            ASSERT_EQ(damage.offset, byte) << bit;
            ASSERT_NE(damage.record, "") << bit;
        }
    }
}

TEST_P(EveryDamage, CutFileGivesTheGroupsAndPointsBeforeTheCut) {
    Sample sample(GetParam());
    const auto whole =
        Project::Open(kBook, Mode::read, sample.disk);  // without what the version does not hold
    int most = 0;
    for (std::size_t size = 0; size < sample.bytes.size() && !HasFailure(); ++size) {
        Damaged damaged(sample.bytes.substr(0, size));
        Project* const project = damaged.Open();
        if (!project) {
            ASSERT_LT(size, 100U) << damaged.message;
            continue;
        }
        ASSERT_TRUE(project->GetReport().IsDamaged()) << size;
        ASSERT_TRUE(project->IsReadOnly()) << size;
        ASSERT_TRUE(IsBeginningOf(project->GetBook(), whole->GetBook())) << size;
        // It never becomes less with more of the file.
        const int items = static_cast<int>(CountItems(project->GetBook()));
        ASSERT_GE(items, most) << size;
        ASSERT_EQ(project->GetReport().groupsRead + project->GetReport().pointsRead, items);
        most = items;
    }
    EXPECT_EQ(most, 8);
}

INSTANTIATE_TEST_SUITE_P(Versions, EveryDamage, testing::Values(743, 1003, 1400));

TEST(Damage, RecordAndByteAreNamed) {
    const Sample sample(1400);
    std::string bytes = sample.bytes;
    const std::size_t at = bytes.find("P1.1.2");
    bytes[at] ^= 0x20;
    Damaged damaged(bytes);
    ASSERT_NE(damaged.Open(), nullptr);
    EXPECT_EQ(damaged.project->GetReport().Text(),
              "gps, group 1, point 2, byte " + std::to_string(at) +
                  ": one bit was wrong; it has been read as it was written\n");
}

TEST(Damage, CutRecordIsNamed) {
    const Sample sample(1400);
    Damaged damaged(sample.bytes.substr(0, sample.bytes.find("P1.1.2") + 50));
    ASSERT_NE(damaged.Open(), nullptr);
    const std::string text = damaged.project->GetReport().Text();
    EXPECT_NE(text.find("gps, group 1, point 2, byte "), std::string::npos) << text;
    EXPECT_NE(text.find("1 of 8 groups and points cannot be read"), std::string::npos) << text;
    EXPECT_EQ(damaged.project->GetReport().pointsRead, 5);
}

TEST(Damage, BackupIsNamed) {
    const Sample sample(1400);
    Damaged damaged(Flipped(sample.bytes, 5000));
    damaged.disk.Put("/d/book.bak", sample.bytes);
    const auto project = Project::Open(kBook, Mode::read, damaged.disk);
    EXPECT_EQ(project->GetReport().backup, "/d/book.bak");
    EXPECT_NE(project->GetReport().Text().find("/d/book.bak"), std::string::npos);

    damaged.disk.Put(kBook, "not a project any more");
    std::string message;
    EXPECT_EQ(KindOf([&] { Project::Open(kBook, Mode::read, damaged.disk); }, &message), Kind::damaged);
    EXPECT_NE(message.find("/d/book.bak"), std::string::npos) << message;
}

TEST(Damage, DamagedFileIsNotWrittenOverAndGoesUnderAnotherName) {
    const Sample sample(1400);
    Damaged damaged(Flipped(sample.bytes, 8 * sample.bytes.find("P1.0.0")));
    Project* const project = damaged.Open(Mode::write);
    ASSERT_NE(project, nullptr);
    std::string message;
    EXPECT_EQ(KindOf([&] { project->Save(); }, &message), Kind::readOnly);
    EXPECT_NE(message.find("damaged"), std::string::npos) << message;
    EXPECT_EQ(KindOf([&] { project->SaveAs(kBook, true); }), Kind::readOnly);
    EXPECT_EQ(damaged.disk.Bytes(kBook), damaged.bytes);
    project->SaveAs("/d/rescued", false);
    EXPECT_FALSE(project->IsReadOnly());
    EXPECT_FALSE(project->GetReport().IsDamaged());
    EXPECT_EQ(damaged.disk.Bytes("/d/rescued"), sample.bytes);
}

// Bytes that are wrong inside of values leave the records in step: all of them are given, and the report says
// which part is not to be trusted.
TEST(Damage, WrongValuesLeaveTheOtherRecordsReadable) {
    Sample sample(1400, 1, 100);
    std::string bytes = sample.bytes;
    const std::size_t at =
        bytes.find("P1.0.50") + 23;  // easting: behind the name, the code, the entity code and the validity
    for (std::size_t i = 0; i < 8; ++i) bytes[at + i] ^= 0x55;
    Damaged damaged(bytes);
    ASSERT_NE(damaged.Open(), nullptr);
    EXPECT_EQ(damaged.project->GetReport().pointsRead, 100);
    const auto& damages = damaged.project->GetReport().damages;
    ASSERT_EQ(damages.size(), 1U) << damaged.project->GetReport().Text();
    EXPECT_LE(damages[0].offset, static_cast<std::int64_t>(at));
    EXPECT_GT(damages[0].offset + 4096, static_cast<std::int64_t>(at));
    EXPECT_EQ(damaged.project->GetBook().GetPunAt(0, 99)->GetNome(), "P1.0.99");
}

// A lost sector puts the records out of step: what is before it is given, and nothing that is made up.
TEST(Damage, LostSectorLosesWhatIsBehindIt) {
    Sample sample(1400, 1, 200);
    for (std::size_t at = static_cast<std::size_t>(sample.gps.offset); at + 512 < sample.bytes.size();
         at += 1531) {
        std::string bytes = sample.bytes;
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), 512, '\0');
        Damaged damaged(bytes);
        ASSERT_NE(damaged.Open(), nullptr);
        const auto& report = damaged.project->GetReport();
        EXPECT_TRUE(report.IsDamaged());
        CLibGps& book = damaged.project->GetBook();
        int sure = 0;  // points whose record ends before the block with the sector
        for (int p = 0; p < 200; ++p) {
            const std::size_t name =
                sample.bytes.find("P1.0." + std::to_string(p + 1) + std::string(1, '\4'));
            if (name == std::string::npos || name + 4106 > at) break;
            sure = p;
        }
        EXPECT_GE(book.GetPunArSize(0), sure);
        for (int p = 0; p < sure; ++p)
            EXPECT_EQ(book.GetPunAt(0, p)->GetNome(), "P1.0." + std::to_string(p)) << at;
        EXPECT_LE(CountItems(book), 201) << "nothing made up";
    }
}

// Contents that are wrong although every checksum is right, as an evil or broken program writes them: any
// single bit, and any end.
class EvilContent : public testing::TestWithParam<short> {};

std::string FileWith(const std::string& gps, const std::string& map, short version) {
    ModelDisk disk;
    OwnedFile file(disk);
    disk.Open(kBook, FileOperations::How::createNew, 0600, file.number);
    ContainerWriter writer(disk, file.number);
    writer.Begin();
    writer.Section("map", version, 0, [&](ofpstream& out) { out.WriteBytes(map.data(), map.size()); });
    writer.Section("gps", version, 8, [&](ofpstream& out) { out.WriteBytes(gps.data(), gps.size()); });
    writer.End();
    return disk.Bytes(kBook);
}

TEST_P(EvilContent, IsReadWithoutHarm) {
    const short version = GetParam();
    Project project(version);
    test::Fill(project, 1);
    ofpstream gps(version), map(version);
    project.GetBook().SalvaInFile(gps, version, "", nullptr, nullptr);
    project.GetMap().SalvaInFile(map, version);
    const std::string gpsBytes(gps.GetBytes()), mapBytes(map.GetBytes());
    {
        Damaged whole(FileWith(gpsBytes, mapBytes, version));
        const auto opened = Project::Open(kBook, Mode::read, whole.disk);
        ASSERT_EQ(opened->GetReport().Text(), "");
    }
    const auto look = [&](const std::string& bytes) {
        Damaged damaged(bytes);
        const auto opened = Project::Open(kBook, Mode::read, damaged.disk);
        opened->GetReport().Text();
        EXPECT_LE(CountItems(opened->GetBook()), 200);
    };
    for (std::size_t bit = 0; bit < 8 * gpsBytes.size(); ++bit)
        look(FileWith(Flipped(gpsBytes, bit), mapBytes, version));
    for (std::size_t bit = 0; bit < 8 * mapBytes.size(); ++bit)
        look(FileWith(gpsBytes, Flipped(mapBytes, bit), version));
    for (std::size_t size = 0; size < gpsBytes.size(); ++size)
        look(FileWith(gpsBytes.substr(0, size), mapBytes, version));
    for (std::size_t size = 0; size < mapBytes.size(); ++size)
        look(FileWith(gpsBytes, mapBytes.substr(0, size), version));
}

INSTANTIATE_TEST_SUITE_P(Versions, EvilContent, testing::Values(743, 1003, 1400));

TEST(Damage, ManyRandomDamagesAreReadWithoutHarm) {
    const Sample sample(1400, 3, 20);
    std::uint32_t x = 1;
    const auto next = [&] { return (x = x * 1664525 + 1013904223) >> 8; };
    const long cases = ScaledSessions(20'000);
    long opened = 0;
    for (long i = 0; i < cases && !HasFailure(); ++i) {
        std::string bytes = sample.bytes;
        for (std::uint32_t n = 1 + next() % 5; n > 0; --n) {
            const std::size_t at = next() % bytes.size();
            const std::size_t size = std::min<std::size_t>(1 + next() % 300, bytes.size() - at);
            switch (next() % 4) {
                case 0:
                    bytes.erase(at, size);
                    break;
                case 1:
                    bytes.insert(at, bytes.substr(next() % (at + 1), size));
                    break;
                case 2:
                    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, '\0');
                    break;
                default:
                    bytes[at] = static_cast<char>(next());
                    break;
            }
        }
        Damaged damaged(bytes);
        if (Project* const project = damaged.Open(Mode::read)) {
            ++opened;
            EXPECT_EQ(project->GetReport().IsDamaged(), bytes != sample.bytes) << i;
        }
    }
    EXPECT_GT(opened, cases / 2);
}

TEST(Damage, AbsurdCountsEndAtOnce) {
    ofpstream out(1400);
    Project empty;
    empty.GetBook().SalvaInFile(out, 1400, "", nullptr, nullptr);
    std::string gps(out.GetBytes());
    gps.resize(gps.size() - 1);
    gps.replace(gps.size() - 4, 4, "\xff\xff\xff\x7f");
    ofpstream map(1400);
    empty.GetMap().SalvaInFile(map, 1400);
    Damaged damaged(FileWith(gps, std::string(map.GetBytes()), 1400));
    const auto begin = std::chrono::steady_clock::now();
    const auto project = Project::Open(kBook, Mode::read, damaged.disk);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    EXPECT_TRUE(project->GetReport().IsDamaged());
    EXPECT_EQ(project->GetBook().GetGrpArSize(), 0);
}

TEST(DamageReport, TextHasALineForEachDamage) {
    DamageReport report;
    EXPECT_FALSE(report.IsDamaged());
    EXPECT_EQ(report.Text(), "");
    report.damages = {{"gps", "group 3", 17, "is wrong"}, {"map", "", -1, "is not there"}};
    EXPECT_TRUE(report.IsDamaged());
    EXPECT_EQ(report.Text(), "gps, group 3, byte 17: is wrong\nmap: is not there\n");
}

}  // namespace
