// No memory: nothing is lost. Little memory: damaged files do not ask for more than they are worth.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <new>

#include "host/project/ContainerWriter.h"
#include "host/project/GpsSection.h"
#include "host/project/OwnedFile.h"
#include "host/project/Project.h"
#include "platform/base/ofpstream.h"
#include "tests/Heap.h"
#include "tests/TempFolder.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;
using test::ContentOf;
using test::FailingHeap;
using test::TempFolder;
using Mode = Project::Mode;

enum class End { done, refused };

/// Calls with a heap that fails at the n-th allocation.
template <class Call>
End WithFailure(long n, bool onwards, Call call) {
    const FailingHeap heap(n, onwards ? LONG_MAX : 1);
    try {
        call();
        return End::done;
    } catch (const std::bad_alloc&) {
        return End::refused;
    } catch (const ProjectError&) {
        return End::refused;
    }
}

class OutOfMemory : public testing::TestWithParam<bool> {};

// Whatever allocation of a save fails, for once or from there on: the old file is as it was, or the new one
// is complete and Save has said so.
TEST_P(OutOfMemory, SaveKeepsTheOldFileOrPlacesTheNewOne) {
    const TempFolder folder;
    Project project;
    test::Fill(project, 1);
    project.SaveAs(folder / "book", false);
    project.Save();
    const std::string old = test::FileBytes(folder / "book");
    test::Fill(project, 2);
    const auto content = ContentOf(project);
    for (long n = 0;; ++n) {
        const End end = WithFailure(n, GetParam(), [&] { project.Save(); });
        const bool failed = FailingHeap::HasFailed();
        ASSERT_EQ(folder.Names(), (test::Names{"book", "book.bak", "book.lock"})) << n;
        ASSERT_EQ(ContentOf(project), content) << n;
        ASSERT_EQ(project.GetBook().GetNomeFile(), folder / "book") << n;
        if (end == End::refused) {
            ASSERT_TRUE(test::FileBytes(folder / "book") == old) << n;
        } else {
            ASSERT_EQ(ContentOf(*Project::Open(folder / "book", Mode::read)), content) << n;
        }
        if (!failed) {
            EXPECT_GT(n, 50) << "allocations of a save";
            EXPECT_EQ(end, End::done);
            break;
        }
    }
}

TEST_P(OutOfMemory, FirstSaveMakesTheWholeFileOrNone) {
    for (long n = 0;; ++n) {
        const TempFolder folder;
        Project project;
        test::Fill(project, 1);
        const End end = WithFailure(n, GetParam(), [&] { project.SaveAs(folder / "book", false); });
        if (end == End::refused) {
            ASSERT_EQ(folder.Names(), test::Names{}) << n;
            ASSERT_EQ(project.GetPath(), "");
            ASSERT_EQ(project.GetBook().GetNomeFile(), "");
        } else {
            ASSERT_EQ(folder.Names(), (test::Names{"book", "book.lock"})) << n;
        }
        if (!FailingHeap::HasFailed()) break;
    }
}

// A book that is not whole must not look like one: it would be saved over the file that is.
TEST_P(OutOfMemory, OpeningGivesAllOrNothing) {
    const TempFolder folder;
    test::Content content;
    {
        Project project;
        test::Fill(project, 1);
        content = ContentOf(project);
        project.SaveAs(folder / "book", false);
    }
    for (long n = 0;; ++n) {
        std::unique_ptr<Project> project;
        const End end =
            WithFailure(n, GetParam(), [&] { project = Project::Open(folder / "book", Mode::write); });
        if (end == End::done) {
            ASSERT_EQ(ContentOf(*project), content) << n;
            ASSERT_FALSE(project->IsReadOnly()) << n << project->GetReport().Text();
        } else {
            ASSERT_EQ(folder.Names(), test::Names{"book"}) << n;
        }
        if (!FailingHeap::HasFailed()) break;
    }
}

TEST_P(OutOfMemory, ReadingASectionAddsAllOrNothing) {
    const TempFolder folder;
    Project source;
    test::Fill(source, 1);
    WriteSection(source, folder / "section", 1400, false);
    for (long n = 0;; ++n) {
        Project project;
        test::Fill(project, 2);
        const auto before = ContentOf(project);
        const End end = WithFailure(n, GetParam(), [&] { ReadSection(folder / "section", 1400, project); });
        ASSERT_EQ(project.GetBook().GetGrpArSize(), end == End::done ? 4 : 2) << n;
        ASSERT_EQ(ContentOf(project) == before, end == End::refused) << n;
        if (!FailingHeap::HasFailed()) break;
    }
}

INSTANTIATE_TEST_SUITE_P(Failures, OutOfMemory, testing::Bool(),
                         [](const auto& heap) { return heap.param ? "Onwards" : "Once"; });

// --- damaged files ------------------------------------------------------------------------------------

constexpr std::size_t kFixed = 16 * 1024 * 1024;

void ExpectBounded(const std::string& path, const std::string& bytes, const std::string& what) {
    test::WriteFileBytes(path, bytes);
    const test::MeasuredHeap heap;
    try {
        const auto project = Project::Open(path, Mode::read);
        project->GetReport().Text();
    } catch (const ProjectError&) {
    }
    ASSERT_LE(test::MeasuredHeap::GetPeak(), 32 * bytes.size() + kFixed) << what;
}

std::string FileWith(const std::string& path, const std::string& gps) {
    ::unlink(path.c_str());
    FileOperations& files = FileOperations::System();
    OwnedFile file(files);
    files.Open(path, FileOperations::How::createNew, 0600, file.number);
    ContainerWriter writer(files, file.number);
    writer.Begin();
    writer.Section("gps", 1400, 8, [&](ofpstream& out) { out.WriteBytes(gps.data(), gps.size()); });
    writer.End();
    return test::FileBytes(path);
}

TEST(DamagedFile, TakesMemoryByItsSizeAndNotByItsCounts) {
    const TempFolder folder;
    Project project;
    test::Fill(project, 1);
    project.SaveAs(folder / "book", false);
    const std::string bytes = test::FileBytes(folder / "book");
    for (std::size_t byte = 0; byte < bytes.size() && !HasFailure(); ++byte) {
        std::string damaged = bytes;
        std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(byte),
                    std::min<std::size_t>(4, bytes.size() - byte), '\x7f');
        ExpectBounded(folder / "damaged", damaged, "byte " + std::to_string(byte));
    }
}

// The same with checksums that are right.
TEST(DamagedFile, EvilCountsTakeNoMemory) {
    const TempFolder folder;
    Project project;
    test::Fill(project, 1);
    ofpstream out(1400);
    project.GetBook().SalvaInFile(out, 1400, "", nullptr, nullptr);
    const std::string gps(out.GetBytes());
    for (std::size_t byte = 0; byte + 4 <= gps.size() && !HasFailure(); ++byte) {
        std::string evil = gps;
        evil.replace(byte, 4, std::string("\xff\xff\xff\x7f"));
        ExpectBounded(folder / "evil", FileWith(folder / "made", evil), "byte " + std::to_string(byte));
    }
}

TEST(DamagedFile, LargeOnesStayBounded) {
    const TempFolder folder;
    Project project;
    test::Fill(project, 1, 1, 10'000);
    project.SaveAs(folder / "book", false);
    std::string bytes = test::FileBytes(folder / "book");
    ExpectBounded(folder / "damaged", bytes, "whole");
    ExpectBounded(folder / "damaged", bytes.substr(0, bytes.size() / 2), "cut");
    bytes[bytes.size() / 2] ^= 1;
    ExpectBounded(folder / "damaged", bytes, "one bit");
    std::fill_n(bytes.begin() + 2000, bytes.size() / 2, '\0');
    ExpectBounded(folder / "damaged", bytes, "half of it zeros");
    std::string marks = FileHead();
    const std::string head = SectionHead({"a", 1, 0, -1, 0, 0});
    while (marks.size() < 2'000'000) marks += head + SectionEndBytes({100, 0, 0});
    ExpectBounded(folder / "damaged", marks, "nothing but marks");
    // The smallest groups, as many as fit.
    ofpstream out(743);
    for (int i = 0; i < 100'000; ++i) out.WriteInt(0);
    ExpectBounded(folder / "damaged", FileWith(folder / "made", std::string(out.GetBytes())), "zeros");
}

}  // namespace
