#include "apps/gpsbook/book/LiveImport.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "apps/gpsbook/book/GroupSystem.h"
#include "apps/gpsbook/book/KnownFixes.h"
#include "tests/apps/gpsbook/commands/Logs.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook::test {
namespace {

using gpsproject::Project;

/// A book with one empty group, into which a log of 200 epochs is followed.
struct Followed {
    explicit Followed(const LiveOptions& given) {
        std::string text = Rmc("080000.00", "010524");
        for (int i = 0; i < 200; ++i) text += Position(fmt::format("08{:02}{:02}.00", i / 60, i % 60), 4);
        WriteFile(folder / "walk.nmea", text);
        {
            Project made;
            made.SaveAs(Book(), false);
        }
        project = Project::Open(Book(), Project::Mode::write);
        AddGroup(project->GetBook(), "walk", "EPSG:32633");
        LiveOptions options = given;
        options.idle = std::chrono::milliseconds(30);
        KnownFixes known;
        long next = 1;
        report = FollowLog(folder / "walk.nmea", *project, 0, {}, known, {}, next, options, {},
                           [&](const std::vector<int>& points) {
                               told.insert(told.end(), points.begin(), points.end());
                               if (std::filesystem::exists(Journal()))
                                   longest = std::max(longest, std::filesystem::file_size(Journal()));
                           });
    }

    std::string Book() const { return folder / "site.gpsbook"; }
    std::string Journal() const { return folder / "site.gpsbook.journal"; }

    /// Points that are in the file of the book, without its journal.
    int Saved() const {
        std::filesystem::copy_file(Book(), folder / "alone.gpsbook",
                                   std::filesystem::copy_options::overwrite_existing);
        const auto alone = Project::Open(folder / "alone.gpsbook", Project::Mode::read);
        return alone->GetBook().GetGrpArSize() == 0 ? 0 : alone->GetBook().GetPunArSize(0);
    }

    TestFolder folder;
    std::unique_ptr<Project> project;
    LogReport report;
    std::vector<int> told;
    std::uintmax_t longest = 0;  // bytes of the journal
};

TEST(LiveImport, EveryPointIsToldOnceInItsOrder) {
    const Followed log({});
    EXPECT_EQ(log.report.points, 200);
    ASSERT_EQ(log.told.size(), 200U);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(log.told[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(log.Saved(), 0) << "all of it is in the journal";
}

TEST(LiveImport, LongJournalIsTakenIntoTheBookInBetween) {
    LiveOptions options;
    options.each = true;
    options.longestJournal = 5000;
    const Followed log(options);
    EXPECT_EQ(log.told.size(), 200U);
    EXPECT_LT(log.longest, 6000U);
    EXPECT_GT(log.Saved(), 150);
    EXPECT_LT(log.Saved(), 201);
    const auto again = Project::Open(log.Book(), Project::Mode::read);
    EXPECT_EQ(again->GetBook().GetPunArSize(0), 200) << "the rest is in the journal";
    EXPECT_FALSE(again->GetReport().IsDamaged());
}

TEST(LiveImport, PositionThatIsTwiceInTheLogIsStoredOnce) {
    const TestFolder folder;
    WriteFile(folder / "a.nmea", Rmc("080000.00", "010524") + Position("080000.00", 4) +
                                     Position("080000.00", 4) + Position("080001.00", 4));
    Project made;
    made.SaveAs(folder / "b.gpsbook", false);
    AddGroup(made.GetBook(), "a", "EPSG:32633");
    KnownFixes known;
    long next = 1;
    LiveOptions options;
    options.idle = std::chrono::milliseconds(30);
    const LogReport report = FollowLog(folder / "a.nmea", made, 0, {}, known, {}, next, options, {},
                                       [](const std::vector<int>&) {});
    EXPECT_EQ(report.points, 2);
    EXPECT_EQ(report.AlreadyThere(), 1);
}

}  // namespace
}  // namespace gpsbook::test
