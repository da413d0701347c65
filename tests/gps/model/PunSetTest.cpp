// The two point sets of a group, and their order.
#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "gps/model/CGrpGps.h"

namespace {

/// The operations of one of the two sets, which are the same.
struct SetOps {
    const char* name;
    bool (CGrpGps::*insert)(CPunGps*);
    void (CGrpGps::*erase)(CGrpGps::PunSet::iterator);
    CGrpGps::PunSet::iterator (CGrpGps::*lower)(CPunGps*);
    CGrpGps::PunSet::iterator (CGrpGps::*upper)(CPunGps*);
    CGrpGps::PunSet::iterator (CGrpGps::*begin)();
    CGrpGps::PunSet::iterator (CGrpGps::*end)();
};

void PrintTo(const SetOps& ops, std::ostream* out) { *out << ops.name; }

class PunSet : public testing::TestWithParam<SetOps> {
protected:
    CPunGps Point(const std::string& name) {
        CPunGps point(nullptr, false, &group);
        point.SetNome(name);
        return point;
    }
    bool Insert(CPunGps& point) { return (group.*GetParam().insert)(&point); }
    auto Lower(CPunGps& point) { return (group.*GetParam().lower)(&point); }
    auto Upper(CPunGps& point) { return (group.*GetParam().upper)(&point); }
    auto Begin() { return (group.*GetParam().begin)(); }
    auto End() { return (group.*GetParam().end)(); }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (auto it = Begin(); it != End(); IncrPunGpsItr(it)) names.push_back((*it)->GetNome());
        return names;
    }

    CGrpGps group{nullptr, false, nullptr, 0};
};

TEST_P(PunSet, IsInOrderOfNameByteByByte) {
    CPunGps p2 = Point("P2"), lower = Point("p1"), p10 = Point("P10"), p1 = Point("P1"), empty = Point("");
    for (CPunGps* point : {&p2, &lower, &p10, &p1, &empty}) EXPECT_TRUE(Insert(*point));
    EXPECT_EQ(Names(), (std::vector<std::string>{"", "P1", "P10", "P2", "p1"}));
}

TEST_P(PunSet, KeepsTheFirstOfEqualNames) {
    CPunGps first = Point("P1"), second = Point("P1");
    EXPECT_TRUE(Insert(first));
    EXPECT_FALSE(Insert(second));
    ASSERT_EQ(std::distance(Begin(), End()), 1);
    EXPECT_EQ(*Begin(), &first);
}

TEST_P(PunSet, BoundsAreThoseOfTheName) {
    CPunGps a = Point("A"), c = Point("C"), e = Point("E"), b = Point("B"), other = Point("C"),
            z = Point("Z");
    for (CPunGps* point : {&a, &c, &e}) Insert(*point);
    EXPECT_EQ(*Lower(c), &c);
    EXPECT_EQ(*Upper(c), &e);
    EXPECT_EQ(*Lower(other), &c) << "by name, not by identity";
    EXPECT_EQ(*Lower(b), &c);
    EXPECT_EQ(*Upper(b), &c);
    EXPECT_EQ(Lower(z), End());
    EXPECT_EQ(Upper(z), End());
}

TEST_P(PunSet, ErasesAtAnIterator) {
    CPunGps a = Point("A"), b = Point("B"), c = Point("C");
    for (CPunGps* point : {&a, &b, &c}) Insert(*point);
    (group.*GetParam().erase)(Lower(b));
    EXPECT_EQ(Names(), (std::vector<std::string>{"A", "C"}));
    EXPECT_EQ(b.GetNome(), "B") << "the point stays";
}

TEST_P(PunSet, IteratorAdvancesByOne) {
    CPunGps a = Point("A"), b = Point("B");
    Insert(a);
    Insert(b);
    CGrpGps::PunSet::iterator it = Begin();
    IncrPunGpsItr(it);
    EXPECT_EQ(*it, &b);
    IncrPunGpsItr(it);
    EXPECT_EQ(it, End());
}

INSTANTIATE_TEST_SUITE_P(, PunSet,
                         testing::Values(SetOps{"Normal", &CGrpGps::InsInPunSetNor, &CGrpGps::TolDaPunSetNor,
                                                &CGrpGps::GetPunSetNorLoBo, &CGrpGps::GetPunSetNorUpBo,
                                                &CGrpGps::GetPunSetNorBegin, &CGrpGps::GetPunSetNorEnd},
                                         SetOps{"Special", &CGrpGps::InsInPunSetSpc, &CGrpGps::TolDaPunSetSpc,
                                                &CGrpGps::GetPunSetSpcLoBo, &CGrpGps::GetPunSetSpcUpBo,
                                                &CGrpGps::GetPunSetSpcBegin, &CGrpGps::GetPunSetSpcEnd}),
                         [](const auto& ops) { return std::string(ops.param.name); });

TEST(PunSets, AreIndependentAndEmptiedTogether) {
    CGrpGps group(nullptr, false, nullptr, 0);
    CPunGps a(nullptr, false, &group), b(nullptr, false, &group);
    a.SetNome("A");
    b.SetNome("B");
    EXPECT_TRUE(group.GetPunSetSpcEmpty());
    group.InsInPunSetNor(&a);
    EXPECT_TRUE(group.GetPunSetSpcEmpty());
    group.InsInPunSetSpc(&b);
    EXPECT_FALSE(group.GetPunSetSpcEmpty());
    EXPECT_EQ(*group.GetPunSetNorBegin(), &a);
    EXPECT_EQ(*group.GetPunSetSpcBegin(), &b);

    group.AzzeraPunSet();
    EXPECT_EQ(group.GetPunSetNorBegin(), group.GetPunSetNorEnd());
    EXPECT_TRUE(group.GetPunSetSpcEmpty());
    EXPECT_EQ(a.GetNome(), "A") << "the points stay";
}

TEST(NomeMinGps, ComparesNamesOnly) {
    CPunGps a(nullptr, false, nullptr), b(nullptr, false, nullptr);
    const NomeMinGps<CPunGps*> less{};
    EXPECT_FALSE(less(&a, &b));
    EXPECT_FALSE(less(&b, &a)) << "equal names are one key";
    a.SetNome("P10");
    b.SetNome("P2");
    EXPECT_TRUE(less(&a, &b));
    EXPECT_FALSE(less(&b, &a));
}

}  // namespace
