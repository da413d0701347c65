// gpsbook sync, killed or refused at any of its calls to the file system: the next one goes on, and nothing
// is lost or there twice.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/FaultRun.h"
#include "tests/Scale.h"
#include "tests/apps/gpsbook/commands/SharedSite.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

/// Files as somebody has left them.
struct Files {
    std::vector<std::pair<std::string, std::string>> all;

    explicit Files(const SharedSite& site) {
        for (const std::string& name : site.Names()) all.emplace_back(name, site.Text(name));
    }
    void PutInto(const SharedSite& site) const {
        for (const auto& [name, bytes] : all) site.Put(name, bytes);
    }
};

/// What there is when both have synced.
struct End {
    std::vector<std::string> table;
    std::int64_t revision = 0;
};

End EndOf(const SharedSite& site) {
    const Outcome first = site.As("anna", FirstSync("site.gpsbook"));
    EXPECT_EQ(first.exitCode, 0) << first;
    site.Sync("bert");
    site.ExpectSame();
    const json status = site.Status("anna");
    EXPECT_EQ(status["new"], json::array());
    EXPECT_EQ(status["changed"], json::array());
    EXPECT_TRUE(status["commit"].is_null());
    return {site.Table("anna"), status["revision"]};
}

struct Case {
    const char* name;
    std::function<void(const SharedSite&)> before;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

class SyncCrash : public testing::TestWithParam<Case> {};

TEST_P(SyncCrash, TheNextSyncGoesOn) {
    SharedSite prepared;
    GetParam().before(prepared);
    const Files files(prepared);
    const auto put = [&](const SharedSite& site) {
        std::filesystem::remove(site.Path("site.gpsbook"));
        files.PutInto(site);
        ::setenv("GPS_SURVEY_DEVICE", site.DeviceOf("anna").c_str(), 1);
    };
    const auto run = [&](const SharedSite& site, int call, int error) {
        return ::test::RunWithFault(
            {GPSBOOK_PROGRAM, "sync", site.Book(), "--store", site.Path("shared.sqlite"), "--project", "Dam",
             "--author", "anna", "--json"},
            site.Path(""), call, error);
    };
    std::vector<std::string> calls;
    End wanted;
    {
        const SharedSite site;
        put(site);
        const ::test::FaultRun whole = run(site, -1, 0);
        ASSERT_EQ(whole.code, 0) << whole.message;
        calls = whole.calls;
        wanted = EndOf(site);
    }
    const int step = Scaled(10) == 10 ? 5 : 29;
    for (int call = 0; call < static_cast<int>(calls.size()); call += step) {
        for (const int error : {::test::kKill, EIO}) {
            const SharedSite site;
            put(site);
            const ::test::FaultRun failed = run(site, call, error);
            EXPECT_TRUE(error == EIO || failed.code == -1) << call;
            const std::string what = calls[static_cast<std::size_t>(call)] +
                                     (error == EIO ? " refused: " + failed.message : " not come to");
            const End found = EndOf(site);
            EXPECT_EQ(found.table, wanted.table) << what;
            EXPECT_EQ(found.revision, wanted.revision) << what;
        }
    }
}

void ShareFromBothSides(const SharedSite& site) {
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Quay/P2"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"add", "bert.gpsbook", "Pier", "name=C"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P4", "code=WALL"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"delete", "bert.gpsbook", "Quay/P3"}).exitCode, 0);
    site.Sync("bert");
}

// The book that a killed sync leaves is lost, and its owner goes back to the backup.
TEST(SyncCrashBackup, SendsNothingTwiceThatTheProjectHas) {
    SharedSite prepared;
    prepared.Share();
    ASSERT_EQ(prepared.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    const std::string store = prepared.Text("shared.sqlite");
    const Files files(prepared);
    const auto killedAt = [&](const SharedSite& site, int call) {
        std::filesystem::remove(site.Path("site.gpsbook"));
        files.PutInto(site);
        ::setenv("GPS_SURVEY_DEVICE", site.DeviceOf("anna").c_str(), 1);
        return ::test::RunWithFault({GPSBOOK_PROGRAM, "sync", site.Book(), "--author", "anna"}, site.Path(""),
                                    call, ::test::kKill);
    };
    const int calls = static_cast<int>(killedAt(SharedSite(), -1).calls.size());
    int putBack = 0;
    for (int call = 0; call < calls; call += Scaled(10) == 10 ? 1 : 7) {
        const SharedSite site;
        killedAt(site, call);
        // As long as the store has a journal of its own, the commit is not taken.
        if (site.Text("shared.sqlite") == store ||
            std::filesystem::exists(site.Path("shared.sqlite-journal")))
            continue;
        ++putBack;
        site.Put("site.gpsbook", site.Text("site.gpsbook.bak"));
        if (site.As("anna", {"sync", "site.gpsbook"}).exitCode == 4) {  // the journal is not the backup's
            const Outcome salvaged = site.As("anna", {"journal", "salvage", "site.gpsbook"});
            EXPECT_EQ(salvaged.exitCode, 0) << call << '\n' << salvaged;
        }
        site.Sync("anna");
        EXPECT_EQ(site.Points("Quay"), "P1 P2 P3 P4 P5") << call;
        EXPECT_EQ(site.Sync("bert")["revision"], 2) << call;
        site.ExpectSame();
    }
    EXPECT_GT(putBack, 3) << "of " << calls << " calls";
}

INSTANTIATE_TEST_SUITE_P(Syncs, SyncCrash,
                         testing::Values(Case{"TheFirstOne",
                                              [](const SharedSite& site) {
                                                  site.MakeBertsBook();
                                                  const Outcome made =
                                                      site.As("bert", FirstSync("bert.gpsbook"));
                                                  ASSERT_EQ(made.exitCode, 0) << made;
                                              }},
                                         Case{"ChangesOfBothSides", ShareFromBothSides}),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace gpsbook::test
