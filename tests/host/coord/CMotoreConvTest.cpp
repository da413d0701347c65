#include "platform/coord/CMotoreConv.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/coord/CConvCoord.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

// Answers every operation with 1, 2, 3 and remembers what it was asked.
class Scripted : public CMotoreConv {
public:
    bool GrafBaseToGrafWgs(double a, double b, double c, double& x, double& y, double& z) override {
        return Answer("GrafBaseToGrafWgs", {a, b, c}, x, y, z);
    }
    bool GeocBaseToGeocWgs(double a, double b, double c, double& x, double& y, double& z) override {
        return Answer("GeocBaseToGeocWgs", {a, b, c}, x, y, z);
    }
    bool GrafGpsToPlanAtt(double a, double b, double c, double d, double& x, double& y, double& z) override {
        return Answer("GrafGpsToPlanAtt", {a, b, c, d}, x, y, z);
    }
    bool PlanAttToGrafGps(double a, double b, double c, double d, double& x, double& y, double& z) override {
        return Answer("PlanAttToGrafGps", {a, b, c, d}, x, y, z);
    }
    void ShowMessage(bool show) override { messages.push_back(show); }

    bool Answer(const char* name, std::vector<double> args, double& x, double& y, double& z) {
        if (throws) throw std::runtime_error("scripted");
        asked = name;
        arguments = std::move(args);
        x = 1;
        y = 2;
        z = 3;
        return result;
    }

    std::string asked;
    std::vector<double> arguments;
    std::vector<bool> messages;
    bool result = true;
    bool throws = false;
};

struct Operation {
    const char* name;
    std::size_t arguments;
    bool (*call)(const CConvCoord&, Triple&);
};

const Operation kOperations[] = {
    {"GrafBaseToGrafWgs", 3,
     [](const CConvCoord& c, Triple& t) { return c.GrafBaseToGrafWgs(10, 20, 30, t.a, t.b, t.c); }},
    {"GeocBaseToGeocWgs", 3,
     [](const CConvCoord& c, Triple& t) { return c.GeocBaseToGeocWgs(10, 20, 30, t.a, t.b, t.c); }},
    {"GrafGpsToPlanAtt", 4,
     [](const CConvCoord& c, Triple& t) { return c.GrafGpsToPlanAtt(10, 20, 30, 40, t.a, t.b, t.c); }},
    {"PlanAttToGrafGps", 4,
     [](const CConvCoord& c, Triple& t) { return c.PlanAttToGrafGps(10, 20, 30, 40, t.a, t.b, t.c); }},
};

TEST(CMotoreConvTest, TheEngineGetsArgumentsAndGivesResultsUnchanged) {
    Scripted engine;
    CConvCoord c;
    c.SetMotore(&engine);
    for (const Operation& op : kOperations)
        for (const bool result : {true, false}) {
            engine.result = result;
            Triple t;
            EXPECT_EQ(op.call(c, t), result) << op.name;
            EXPECT_EQ(engine.asked, op.name);
            const std::vector<double> four = {10, 20, 30, 40};
            EXPECT_EQ(engine.arguments,
                      std::vector<double>(four.begin(), four.begin() + static_cast<long>(op.arguments)))
                << op.name;
            EXPECT_EQ(Distance(t, 1, 2, 3), 0) << op.name << ": also what a failure left";
        }
}

TEST(CMotoreConvTest, ExceptionsPassThrough) {
    Scripted engine;
    engine.throws = true;
    CConvCoord c;
    c.SetMotore(&engine);
    for (const Operation& op : kOperations) {
        Triple t;
        EXPECT_THROW(op.call(c, t), std::runtime_error) << op.name;
    }
}

TEST(CMotoreConvTest, TheEngineIsToldOfMessagesAndTheSwitchIsKept) {
    Scripted engine;
    CConvCoord c;
    c.SetMotore(&engine);
    c.ShowMessage(false);
    EXPECT_FALSE(c.IsShowMessage());
    c.ShowMessage(true);
    EXPECT_EQ(engine.messages, (std::vector<bool>{false, true}));
}

TEST(CMotoreConvTest, NullGivesTheConversionsOwnComputationsBack) {
    Scripted engine;
    CConvCoord c;
    c.SetMotore(&engine);
    c.SetMotore(nullptr);
    Triple t;
    EXPECT_TRUE(c.GrafBaseToGrafWgs(10, 20, 30, t.a, t.b, t.c));
    EXPECT_EQ(Distance(t, 10, 20, 30), 0);
    EXPECT_TRUE(engine.asked.empty());
}

TEST(CMotoreConvTest, CopiesAndAssignmentsHaveNoEngineOfAnother) {
    Scripted engine;
    CConvCoord c, assigned;
    c.SetMotore(&engine);
    const CConvCoord copy(c);
    assigned = c;
    Triple t;
    EXPECT_TRUE(copy.GrafBaseToGrafWgs(10, 20, 30, t.a, t.b, t.c));
    EXPECT_TRUE(assigned.GrafBaseToGrafWgs(10, 20, 30, t.a, t.b, t.c));
    EXPECT_TRUE(engine.asked.empty());
    CConvCoord plain;
    c = plain;
    EXPECT_TRUE(c.GrafBaseToGrafWgs(10, 20, 30, t.a, t.b, t.c));
    EXPECT_EQ(engine.asked, "GrafBaseToGrafWgs") << "the target keeps its own";
}

}  // namespace
