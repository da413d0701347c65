// What a version has no place for is named, and nothing else is.
#include "host/project/NotHeld.h"

#include <gtest/gtest.h>

#include <functional>

#include "gps/options/COpzPostProc.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;

struct Row {
    const char* name;
    short from;  // the version that has a place for it
    std::function<void(Project&)> set;
    const char* line;
};

COpzPostProc::TDatiStaticPtBaseLine& Observations(Project& p) {
    COpzPostProc& options = *p.GetBook().GetOpzPostProc();
    if (options.GetNumPtBaseLineDett() == 0) options.AddDataPtBaseLineDett("/a.tps");
    return *options.GetDataPtBaseLineDettAt(0);
}

CGrpGps& Group(Project& p) { return *p.GetBook().GetGrpAt(1); }
CPunGps& Point(Project& p) { return *p.GetBook().GetPunAt(1, 2); }

const Row kRows[] = {
    {"FactorA", 750, [](Project& p) { Group(p).SetGrpFactorA(2); },
     "factors of groups (from version 750): 1, the first in group 1"},
    {"FactorB", 750, [](Project& p) { Group(p).SetGrpFactorB(2); },
     "factors of groups (from version 750): 1, the first in group 1"},
    {"Survey", 750, [](Project& p) { Group(p).SetTipoRilievo(1); },
     "survey types of groups (from version 750): 1, the first in group 1"},
    {"Receiver", 750, [](Project& p) { Group(p).SetTipoRicevitore(1); },
     "receiver types of groups (from version 750): 1, the first in group 1"},
    {"Base", 881, [](Project& p) { Point(p).SetGrafBase(45, 13, GPS_VAL_UNSET); },
     "base positions of points (from version 881): 1, the first in group 1, point 2"},
    {"Duplicate", 903, [](Project& p) { Point(p).SetIsSecondaryPtDup(true); },
     "marks of secondary duplicates (from version 903): 1, the first in group 1, point 2"},
    {"PostProcessing", 1002, [](Project& p) { p.GetBook().GetOpzPostProc(); },
     "post-processing options (from version 1002)"},
    {"Drawing", 1004, [](Project& p) { p.GetBook().SetTargetDrawing(5); },
     "drawing of the field book (from version 1004)"},
    {"GroupDrawing", 1004, [](Project& p) { Group(p).SetTargetDrawing(5); },
     "drawings of groups (from version 1004): 1, the first in group 1"},
    {"GroupReserve", 1106, [](Project& p) { Group(p).SetGrpRis32(1); },
     "reserved values of groups (from version 1106): 1, the first in group 1"},
    {"PointReserve", 1106, [](Project& p) { Point(p).SetPunRis32(1); },
     "reserved values of points (from version 1106): 1, the first in group 1, point 2"},
    {"Device", 1311, [](Project& p) { Group(p).SetCloudCreatorDevId(3); },
     "creator devices of groups (from version 1311): 1, the first in group 1"},
};

class NotHeld : public testing::TestWithParam<Row> {};

TEST_P(NotHeld, IsNamedBelowItsVersionAndNotFromThereOn) {
    const Row& row = GetParam();
    Project project;
    for (int g = 0; g < 2; ++g) {
        project.GetBook().AddGrp(false);
        for (int p = 0; p < 3; ++p) project.GetBook().AddPun(g, false);
    }
    EXPECT_TRUE(NotHeldBy(project, 743).empty());
    row.set(project);
    for (const short version : {short{743}, static_cast<short>(row.from - 1)})
        EXPECT_EQ(NotHeldBy(project, version), std::vector<std::string>{row.line}) << version;
    EXPECT_TRUE(NotHeldBy(project, row.from).empty());
    EXPECT_TRUE(NotHeldBy(project, 1400).empty());
}

INSTANTIATE_TEST_SUITE_P(Values, NotHeld, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(NotHeldOfObservationFiles, IsNamedByThePathOfTheFirst) {
    const char* const names =
        "names, numbers and kinds of values of observation files (from version 1003): 1, the first in /a.tps";
    const char* const marks = "marks of observation files (from version 1300): 1, the first in /a.tps";
    struct {
        std::function<void(COpzPostProc::TDatiStaticPtBaseLine&)> set;
        const char* line;
        short from;
    } const rows[] = {
        {[](auto& file) { file.nIdx3 = 2; }, names, 1003},
        {[](auto& file) { file.sText2 = "x"; }, names, 1003},
        {[](auto& file) { file.bAltValue = true; }, names, 1003},
        {[](auto& file) { file.bFlag3 = false; }, marks, 1300},
        {[](auto& file) { file.bFlag4 = true; }, marks, 1300},
    };
    for (const auto& row : rows) {
        Project project;
        row.set(Observations(project));
        EXPECT_EQ(NotHeldBy(project, 1002), std::vector<std::string>{row.line});
        EXPECT_TRUE(NotHeldBy(project, row.from).empty());
    }
    // The other quantity is held as a pair of values, once it has one.
    Project project;
    Observations(project).bAltValue = true;
    Observations(project).dValue = 1;
    EXPECT_TRUE(NotHeldBy(project, 1002).empty());
}

TEST(NotHeldCounts, AreThoseOfTheWholeBook) {
    Project project;
    test::Fill(project, 1, 2, 3);
    const auto lines = NotHeldBy(project, 750);
    EXPECT_EQ(lines[1], "base positions of points (from version 881): 6, the first in group 0, point 0");
}

}  // namespace
