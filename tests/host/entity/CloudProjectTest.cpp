// One commit of a project: the parts of both tables, in their order.
#include "platform/entity/CCloudProject.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host/entity/CloudParts.h"

namespace {

/// A table that writes down its calls and answers with texts of its own.
struct Spoken final : CCloudTable {
    Spoken(enumTable kind, std::vector<std::string>& log) : CCloudTable(kind), log_(log) {}

    void GenerateCommitString_Change(vex::String& records) override {
        log_.push_back("change " + std::to_string(GetKind()));
        records = change;
    }
    void GenerateCommitString_Add(int& counter, vex::String& records) override {
        log_.push_back("add " + std::to_string(GetKind()) + " from " + std::to_string(counter));
        counter += adds;
        records = add;
    }

    vex::String change, add;
    int adds = 0;

private:
    std::vector<std::string>& log_;
};

std::string Commit(CCloudProject& project) {
    vex::String records("of the last commit");
    project.GenerateCommit(records);
    return std::string(records.View());
}

struct Project {
    Project() { project.SetGpsTables(&base, &points); }
    ~Project() = default;

    std::vector<std::string> log;
    Spoken base{CCloudTable::tabGpsBase, log}, points{CCloudTable::tabGpsPnt, log};
    CCloudProject project;
};

TEST(CloudProject, PartsGoInTheirOrderWithOneCounter) {
    Project p;
    p.base.change = "UBAS\r\nUBAS";
    p.points.change = "UPTGPS";
    p.base.add = "IBAS\r\nIBAS";
    p.base.adds = 2;
    p.points.add = "IPTGPS";
    p.points.adds = 1;
    test::Item base(&p.base, false), point(&p.points, false);
    test::Register(p.base, base, 5);
    test::Register(p.points, point, 6);
    p.base.ItemDeletedLocally(&base);
    p.points.ItemDeletedLocally(&point);
    EXPECT_EQ(Commit(p.project), "UBAS\r\nUBAS\r\nUPTGPS\r\nIBAS\r\nIBAS\r\nIPTGPS\r\nDEL;3;5\r\nDEL;4;6");
    EXPECT_EQ(p.log, (std::vector<std::string>{"change 3", "change 4", "add 3 from 0", "add 4 from 2"}));
}

TEST(CloudProject, EmptyPartsLeaveNoLine) {
    Project p;
    EXPECT_EQ(Commit(p.project), "");
    p.points.change = "UPTGPS";
    EXPECT_EQ(Commit(p.project), "UPTGPS");
    p.points.add = "IPTGPS";
    EXPECT_EQ(Commit(p.project), "UPTGPS\r\nIPTGPS");
    p.points.change.Empty();
    EXPECT_EQ(Commit(p.project), "IPTGPS");
}

TEST(CloudProject, WithoutTablesThereIsNothingToSend) {
    CCloudProject none;
    EXPECT_EQ(Commit(none), "");
    Project p;
    p.base.add = "IBAS";
    p.project.SetGpsTables(&p.base, nullptr);
    EXPECT_EQ(Commit(p.project), "");
    EXPECT_TRUE(p.log.empty());
}

}  // namespace
