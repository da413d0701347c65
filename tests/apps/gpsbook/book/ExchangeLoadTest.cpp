// Exchange files into a book: all of a whole one, nothing of a damaged one, and what was noted in between.
#include "apps/gpsbook/book/ExchangeLoad.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>

#include "apps/gpsbook/commands/CommandError.h"
#include "host/project/Project.h"
#include "tests/Scale.h"
#include "tests/TempFolder.h"
#include "tests/apps/gpsbook/book/ExchangeSample.h"
#include "tests/gps/persist/BookParts.h"

namespace gpsbook::test {
namespace {

using gpsproject::Project;
using ::test::ExchangeHead;
using ::test::Section;
using ::test::Shape;
using Result = CLibGps::TResActionObj;

constexpr auto kPoints = ExchangeKind::points;
constexpr auto kGroups = ExchangeKind::groups;

/// A project "G0(P0 P1) G1()" and a file.
class ExchangeLoad : public ::testing::Test {
protected:
    ExchangeLoad() { ::test::Fill(project->GetBook(), {2, 0}); }

    CLibGps& Book() { return project->GetBook(); }
    LoadedItems Take(ExchangeKind kind, int after, bool force = false) {
        const LoadPlace place{file, after, force};
        return kind == kPoints ? LoadPoints(*project, place, 0, false) : LoadGroups(*project, place, 0);
    }

    /// The exit code with which it was refused; nothing when it was loaded.
    std::optional<ExitCode> Refusal(ExchangeKind kind, int after, bool force = false) {
        try {
            Take(kind, after, force);
            return std::nullopt;
        } catch (const CommandError& e) {
            return e.Code();
        }
    }
    void Put(const std::string& bytes) const { ::test::WriteFileBytes(file, bytes); }
    void PutNamed(std::initializer_list<const char*> names) const {
        ::test::Bytes bytes = ExchangeHead(static_cast<std::int32_t>(names.size()));
        for (const char* name : names) {
            CPunGps point(nullptr, false, nullptr);
            point.SetNome(name);
            bytes.Raw(::test::Saved(point, 1400, true));
        }
        Put(bytes.I32(0));
    }

    const ::test::TempFolder folder;
    const std::string file = folder / "file";
    std::unique_ptr<Project> project = std::make_unique<Project>();
};

TEST_F(ExchangeLoad, PointsStandBehindThePosition) {
    PutNamed({"A", "B"});
    const LoadedItems loaded = Take(kPoints, 0);
    EXPECT_EQ(Shape(Book()), "G0(P0 A B P1) G1()");
    EXPECT_EQ(loaded.result, Result::done);
    EXPECT_EQ(loaded.first, 1);
    EXPECT_EQ(loaded.points, 2);
    EXPECT_EQ(Take(kPoints, -1).first, 0);
    EXPECT_EQ(Take(kPoints, 5).first, 6);
    EXPECT_EQ(Shape(Book()), "G0(A B P0 A B P1 A B) G1()");
}

TEST_F(ExchangeLoad, GroupsStandBehindThePosition) {
    Put(SampleFile(kGroups));
    const LoadedItems loaded = Take(kGroups, 0);
    EXPECT_EQ(loaded.first, 1);
    EXPECT_EQ(loaded.groups, 2);
    EXPECT_EQ(loaded.points, 3);
    EXPECT_EQ(Shape(Book()), "G0(P0 P1) Gruppo 1(P1) Gruppo 1(P1 P1) G1()");
}

TEST_F(ExchangeLoad, PositionThatDoesNotExistIsRefused) {
    PutNamed({"A"});
    for (const int after : {-2, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        EXPECT_EQ(Refusal(kPoints, after), exitUsage) << after;
    Put(SampleFile(kGroups));
    for (const int after : {-2, 2}) EXPECT_EQ(Refusal(kGroups, after), exitUsage) << after;
    EXPECT_EQ(Shape(Book()), "G0(P0 P1) G1()");
}

TEST_F(ExchangeLoad, ForcedPositionIsThatOfTheLibrary) {
    PutNamed({"A", "B"});
    const LoadedItems loaded = Take(kPoints, -2, true);
    EXPECT_EQ(loaded.result, Result::notInserted);
    EXPECT_EQ(loaded.points, 1);
    EXPECT_EQ(loaded.first, 0);
    EXPECT_EQ(Shape(Book()), "G0(A P0 P1) G1()") << "the second place gets the first record";
    EXPECT_EQ(Take(kPoints, 3, true).points, 0);
    EXPECT_EQ(Take(kPoints, std::numeric_limits<int>::max(), true).result, Result::notInserted);
    EXPECT_EQ(Shape(Book()), "G0(A P0 P1) G1()");
}

TEST_F(ExchangeLoad, ModeThatLoadsNothingIsRefusedUnlessItIsForced) {
    Put(SampleFile(kGroups));
    EXPECT_THROW(LoadGroups(*project, {file, -1, false}, 1), CommandError);
    const LoadedItems loaded = LoadGroups(*project, {file, -1, true}, 1);
    EXPECT_EQ(loaded.result, Result::done);
    EXPECT_EQ(loaded.groups, 0);
    EXPECT_EQ(loaded.lostPlane, 0) << "nothing is lost of what was not to be loaded";
    EXPECT_EQ(Shape(Book()), "G0(P0 P1) G1()");
}

TEST_F(ExchangeLoad, LostPlaneCoordinatesAreCounted) {
    Put(SampleFile(kPoints));
    const LoadedItems without = Take(kPoints, -1);
    EXPECT_EQ(without.lostPlane, 3) << "the group has no conversion";
    EXPECT_EQ(without.withoutPlane, 3);
    SetUtm33(*Book().GetGrpAt(0));
    const LoadedItems with = Take(kPoints, -1);
    EXPECT_EQ(with.lostPlane, 0);
    EXPECT_EQ(with.withoutPlane, 0);
}

TEST_F(ExchangeLoad, GroupsWithAnotherDatumAreCounted) {
    Project other;
    CConvCoord& conversion = *other.GetBook().AddGrp(false)->GetConvCoord();
    other.GetMap().AddDat(0, 0)->SetCoeffFromStd(1, 2, 3, 0, 0, 0, 0);
    conversion.SetImp(CConvCoord::impDatIndice, 1);
    conversion.SetImpFlag(true);
    other.GetBook().AddGrp(false);
    ASSERT_EQ(other.GetBook().SalvaGruppoInFile(0, 2, file, nullptr), Result::done);
    EXPECT_EQ(Take(kGroups, -1).otherDatums, 1);
    project->GetMap().AddDat(0, 0)->SetCoeffFromStd(1, 2, 3, 0, 0, 0, 0);
    EXPECT_EQ(Take(kGroups, -1).otherDatums, 0) << "the same datum is here, too";
}

TEST_F(ExchangeLoad, FixesFromPlaneCoordinates) {
    SetUtm33(*Book().GetGrpAt(0));
    CPunGps plane(nullptr, false, nullptr), fix(nullptr, false, nullptr);
    plane.SetCoord(500000, 5000000, 100);  // on the central meridian
    plane.SetAltAnt(2);
    SetFix(fix, 45, 15, 60, 2);
    const auto both = [&] {
        return ExchangeHead(2)
            .Raw(::test::Saved(plane, 1400, true))
            .Raw(::test::Saved(fix, 1400, true))
            .I32(0);
    };
    Put(both());
    const LoadedItems loaded = LoadPoints(*project, {file, -1, false}, 0, true);
    EXPECT_EQ(loaded.result, Result::noPlaneCoordinates);
    EXPECT_EQ(loaded.points, 2);
    EXPECT_NEAR(Book().GetPunAt(0, 0)->GetLong(), 15, 1e-9);
    EXPECT_FALSE(HasFix(*Book().GetPunAt(0, 1)));
}

TEST_F(ExchangeLoad, FileOfTheOtherKindSaysSo) {
    const auto told = [&](ExchangeKind kind) -> std::string {
        try {
            Take(kind, -1);
        } catch (const CommandError& e) {
            return e.what();
        }
        return "";
    };
    Put(SampleFile(kGroups));
    EXPECT_NE(told(kPoints).find("it is a file of groups: gpsbook groups load reads it"), std::string::npos)
        << told(kPoints);
    Put(SampleFile(kPoints));
    EXPECT_NE(told(kGroups).find("it is a file of points: gpsbook points load reads it"), std::string::npos)
        << told(kGroups);
}

TEST_F(ExchangeLoad, CountThatWouldFillTheMemoryIsNeverTaken) {
    const std::string point = SamplePoint(), group = SampleGroup();
    for (const std::int32_t beyond : {1'000'001, 0x7FFFFFFE}) {
        Put(ExchangeHead(beyond + 1).Raw(point));
        EXPECT_EQ(Refusal(kPoints, -1, true), exitRefused);
        Put(ExchangeHead(beyond));
        EXPECT_EQ(Refusal(kGroups, -1, true), exitRefused);
        Put(ExchangeHead(1).Raw(group).I32(beyond));
        EXPECT_EQ(Refusal(kGroups, -1, true), exitRefused);
    }
    EXPECT_EQ(Shape(Book()), "G0(P0 P1) G1()");
    Put(ExchangeHead(1000).Raw(point));
    EXPECT_EQ(Take(kPoints, -1, true).points, 1000) << "as the library does it";
}

TEST_F(ExchangeLoad, EveryCutChangesNothingUnlessItIsForced) {
    for (const ExchangeKind kind : {kPoints, kGroups}) {
        const std::string whole = SampleFile(kind);
        const std::string before = Section(Book(), 1400);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Put(whole.substr(0, size));
            ASSERT_EQ(Refusal(kind, 0), exitRefused) << size;
            ASSERT_TRUE(Section(Book(), 1400) == before) << size;
        }
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Put(whole.substr(0, size));
            project = std::make_unique<Project>();
            ::test::Fill(Book(), {2, 0});
            const LoadedItems loaded = Take(kind, 0, true);
            ASSERT_EQ(loaded.result, Result::done) << size;
            const int promised = size < 18 ? 0 : kind == kPoints ? 3 : 2;
            ASSERT_EQ(kind == kPoints ? loaded.points : loaded.groups, promised) << size;
        }
    }
}

/// The values of all groups and points, one by one. A conversion counts as one value. Plane coordinates of
/// points are left out: they follow from the conversion and the fix.
std::vector<std::string> ValuesIn(CLibGps& book) {
    std::vector<std::string> values;
    const auto add = [&](const std::string& text, bool point) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            const std::string name = line.substr(0, line.find('='));
            if (name == line)
                values.back() += line;  // of the conversion
            else if (!point || (name != "x" && name != "y" && name != "z" && name != "validita"))
                values.push_back(line);
        }
    };
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        add(::test::ValuesOf(*book.GetGrpAt(g)), false);
        for (int p = 0; p < book.GetPunArSize(g); ++p) add(::test::ValuesOf(*book.GetPunAt(g, p)), true);
    }
    return values;
}

TEST_F(ExchangeLoad, EveryTurnedBitIsRefusedOrChangesAValueOnly) {
    for (const ExchangeKind kind : {kPoints, kGroups}) {
        const std::string whole = SampleFile(kind);
        Put(whole);
        Take(kind, 0);
        const std::vector<std::string> values = ValuesIn(Book());
        long accepted = 0, refused = 0;
        const long step = 100 / Scaled(100);  // every bit, or one of ten
        for (long n = 0; n < static_cast<long>(whole.size()) * 8; n += step) {
            const auto at = static_cast<std::size_t>(n / 8);
            std::string bytes = whole;
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << (n % 8)));
            Put(bytes);
            project = std::make_unique<Project>();
            ::test::Fill(Book(), {2, 0});
            const std::string before = Section(Book(), 1400);
            if (const auto code = Refusal(kind, 0)) {
                ASSERT_EQ(*code, exitRefused) << n;
                ASSERT_TRUE(Section(Book(), 1400) == before) << n;
                ++refused;
                continue;
            }
            ++accepted;
            const std::vector<std::string> now = ValuesIn(Book());
            ASSERT_EQ(now.size(), values.size()) << n << ": other groups and points";
            int others = 0;
            for (std::size_t i = 0; i < now.size(); ++i) others += now[i] == values[i] ? 0 : 1;
            ASSERT_LE(others, 1) << n << ": a bit belongs to one value";
            ASSERT_GE(at, 12u) << "marker and signature were not looked at";
        }
        EXPECT_GT(accepted, refused / 10) << "most bits belong to values";
        EXPECT_GT(refused, 10);
    }
}

// --- the journal -------------------------------------------------------------------------------------------

/// Loads into a saved book and goes away without saving it.
std::string AfterACrash(const std::string& book, const std::function<void(Project&)>& load) {
    std::string expected;
    {
        Project project;
        ::test::Fill(project.GetBook(), {2, 0});
        project.SaveAs(book, true);
    }
    {
        const auto project = Project::Open(book, Project::Mode::write);
        project->GetEdits().Begin();
        load(*project);
        project->GetEdits().End();
        project->GetEdits().Commit();
        expected = Section(project->GetBook(), 1400);
    }
    const auto project = Project::Open(book, Project::Mode::read);
    EXPECT_FALSE(project->GetReport().IsDamaged()) << project->GetReport().Text();
    EXPECT_TRUE(Section(project->GetBook(), 1400) == expected) << Shape(project->GetBook());
    return Shape(project->GetBook());
}

TEST_F(ExchangeLoad, WhatWasLoadedComesBackFromTheJournal) {
    const std::string book = folder / "book.gpsbook";
    PutNamed({"A", "B"});
    const auto points = [&](int after) {
        return AfterACrash(book, [&](Project& p) { LoadPoints(p, {file, after, false}, 0, false); });
    };
    EXPECT_EQ(points(-1), "G0(A B P0 P1) G1()");
    EXPECT_EQ(points(0), "G0(P0 A B P1) G1()");
    EXPECT_EQ(points(1), "G0(P0 P1 A B) G1()");
    Put(SampleFile(kGroups));
    const auto groups = [&](int after) {
        return AfterACrash(book, [&](Project& p) { LoadGroups(p, {file, after, false}, 0); });
    };
    EXPECT_EQ(groups(-1), "Gruppo 1(P1) Gruppo 1(P1 P1) G0(P0 P1) G1()");
    EXPECT_EQ(groups(0), "G0(P0 P1) Gruppo 1(P1) Gruppo 1(P1 P1) G1()");
    EXPECT_EQ(groups(1), "G0(P0 P1) G1() Gruppo 1(P1) Gruppo 1(P1 P1)");
}

}  // namespace
}  // namespace gpsbook::test
