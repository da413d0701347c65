// A command that is killed at any of its calls to the file system: it has happened, or it has not.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "tests/FaultRun.h"
#include "tests/Scale.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using Words = std::vector<std::string>;

/// GGA sentences with the checksum that belongs to them.
std::string Log() {
    std::string log;
    for (int second = 0; second < 3; ++second) {
        std::string body =
            "GNRMC,10111" + std::to_string(second) + ".00,A,4539.0000,N,01346.0000,E,0.0,0.0,010524,,,R";
        for (const std::string& sentence :
             {body, "GNGGA,10111" + std::to_string(second) +
                        ".00,4539.0000,N,01346.0000,E,4,12,0.7,60.0,M,45.0,M,1.0,0000"}) {
            unsigned sum = 0;
            for (const char c : sentence) sum ^= static_cast<unsigned char>(c);
            const char* const digits = "0123456789ABCDEF";
            log += "$" + sentence + "*" + digits[sum >> 4] + digits[sum & 15] + "\r\n";
        }
    }
    return log;
}

/// A site with what the commands need, and the whole book as bytes that tell every difference.
class CrashSite : public Site {
public:
    CrashSite() {
        Put("walk.nmea", Log());
        Put("rover.tps", "observations");
        EXPECT_EQ(Run({"points", "save", "site.gpsbook", "some.points", "--group", "Quay"}).exitCode, 0);
        EXPECT_EQ(Run({"groups", "save", "site.gpsbook", "some.groups"}).exitCode, 0);
        // Something to compute.
        EXPECT_EQ(Run({"set", "site.gpsbook", "Quay/P2", "h=70", "--keep-plane"}).exitCode, 0);
    }

    Words Command(const Words& arguments) const {
        Words command{GPSBOOK_PROGRAM};
        for (const std::string& argument : arguments) {
            const bool isFile = argument == "BOOK" || argument.ends_with(".nmea") ||
                                argument.ends_with(".tps") || argument.ends_with(".points") ||
                                argument.ends_with(".groups");
            command.push_back(argument == "BOOK" ? Book() : isFile ? Path(argument) : argument);
        }
        return command;
    }

    std::string Content() const {
        const Outcome written =
            Run({"section", "write", "site.gpsbook", "section.bin", "--version", "1400", "--overwrite"});
        EXPECT_EQ(written.exitCode, 0) << written.err;
        const std::string bytes = Text("section.bin");
        const Outcome removed = Run({"info", "site.gpsbook"});
        EXPECT_EQ(removed.exitCode, 0) << removed.err;
        return bytes;
    }
};

struct Case {
    std::string name;
    Words arguments;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

class Crash : public testing::TestWithParam<Case> {};

// The path of the folder is in the options of post-processing: compared is what has the same length for all.
std::string WithoutFolder(std::string bytes, const std::string& folder) {
    for (std::size_t at; (at = bytes.find(folder)) != std::string::npos;)
        bytes.replace(at, folder.size(), "F");
    return bytes;
}

std::string FolderOf(const CrashSite& site) {
    const std::string book = site.Book();
    return book.substr(0, book.rfind('/'));
}

TEST_P(Crash, AtAnyCallLeavesTheBookBeforeOrAfter) {
    std::string before, after;
    std::vector<std::string> calls;
    {
        const CrashSite site;
        before = WithoutFolder(site.Content(), FolderOf(site));
        const ::test::FaultRun run =
            ::test::RunWithFault(site.Command(GetParam().arguments), FolderOf(site), -1, 0);
        ASSERT_EQ(run.code, 0) << run.message;
        calls = run.calls;
        after = WithoutFolder(site.Content(), FolderOf(site));
    }
    ASSERT_TRUE(before != after) << "the command changes nothing";
    const auto placed = std::find_if(calls.rbegin(), calls.rend(),
                                     [](const std::string& call) { return call.ends_with(" rename"); });
    ASSERT_NE(placed, calls.rend());
    const int rename = static_cast<int>(calls.rend() - placed) - 1;

    // In a short run every few calls; in front of the renaming always.
    const int step = Scaled(10) == 10 ? 1 : 19;
    std::vector<int> moments{rename};
    for (int call = 0; call < static_cast<int>(calls.size()); call += step) moments.push_back(call);
    for (const int call : moments) {
        const CrashSite site;
        const ::test::FaultRun run =
            ::test::RunWithFault(site.Command(GetParam().arguments), FolderOf(site), call, ::test::kKill);
        EXPECT_EQ(run.code, -1) << "killed at call " << call;
        const std::string found = WithoutFolder(site.Content(), FolderOf(site));
        // Behind the commit of the journal the edit is stored, though the book is not saved yet.
        if (call >= rename)
            EXPECT_TRUE(found == after) << GetParam().name << " killed at call " << call;
        else
            EXPECT_TRUE(found == before || found == after) << GetParam().name << " killed at call " << call;
        // The next command goes on as if nothing had been.
        const Outcome next = site.Run({"set", "site.gpsbook", "#0", "place=Here"});
        EXPECT_EQ(next.exitCode, 0) << next.err;
        const auto names = site.Names();
        EXPECT_EQ(std::count_if(names.begin(), names.end(),
                                [](const std::string& name) {
                                    return name.ends_with(".journal") || name.ends_with(".saving");
                                }),
                  0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Commands, Crash,
    testing::Values(
        Case{"AddGroup", {"add", "BOOK", "name=Mole", "--at", "0"}},
        Case{"AddPoint", {"add", "BOOK", "Quay", "name=New", "lat=45.65", "lon=13.76", "h=63", "--at", "1"}},
        Case{"SetPoint", {"set", "BOOK", "Quay/#0..", "antenna=1.7"}},
        Case{"SetGroup", {"set", "BOOK", "Quay", "operator=Verdi", "name=Key"}},
        Case{"DeletePoint", {"delete", "BOOK", "Quay/P2"}}, Case{"DeleteGroup", {"delete", "BOOK", "Quay"}},
        Case{"MoveGroup", {"move", "BOOK", "Pier", "--to", "0"}},
        Case{"MovePoints", {"move", "BOOK", "Quay/P3", "Quay/P4", "--to", "0"}},
        Case{"MoveAcross", {"move", "BOOK", "Quay/P1", "--group", "Pier", "--to", "1"}},
        Case{"SwapGroups", {"swap", "BOOK", "Quay", "Pier"}},
        Case{"SwapPoints", {"swap", "BOOK", "Quay/P1", "Quay/P4"}},
        Case{"Compute", {"compute", "BOOK", "Quay"}},
        Case{"Options", {"options", "set", "points.ColSimb=3", "--book", "BOOK"}},
        Case{"PostProc", {"postproc", "add", "BOOK", "rover.tps"}},
        Case{"LoadPoints", {"points", "load", "BOOK", "some.points", "--group", "Pier", "--after", "0"}},
        Case{"LoadGroups", {"groups", "load", "BOOK", "some.groups", "--after", "0"}},
        Case{"BaseTag", {"base", "BOOK", "Quay", "tag", "euref"}},
        Case{"Vrs", {"vrs", "BOOK", "Quay", "set"}},
        Case{"ImportNewGroup", {"import", "BOOK", "walk.nmea", "--crs", "EPSG:32633"}},
        Case{"ImportOldGroup", {"import", "BOOK", "walk.nmea", "--group", "Quay"}}),
    [](const auto& command) { return command.param.name; });

}  // namespace
}  // namespace gpsbook::test
