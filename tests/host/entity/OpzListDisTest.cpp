// A list of display entries: who owns them, what it answers, its settings.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "platform/entity/COpzListDisEgn.h"
#include "tests/Settings.h"
#include "tests/host/base/VirtualSlot.h"

namespace {

using test::Settings;

struct AfterOpzListDis : COpzListDisEgn {
    virtual void Next() {}
};

/// Counts those that live, and what is asked of it.
class Counted : public COpzDisEgn {
public:
    explicit Counted(const char* name = "") : COpzDisEgn("S") {
        SetNomeOpz(name);
        ++living;
    }
    Counted(const Counted& other) : COpzDisEgn(other) { ++living; }
    Counted& operator=(const Counted&) = delete;
    ~Counted() override { --living; }
    COpzDisEgn* Clone() const override { return new Counted(*this); }
    void doGetDaIni() override { ++reads; }
    void doSetInIni() override { ++writes; }

    int reads = 0, writes = 0;
    static inline int living = 0;
};

TEST(OpzListDis, VirtualOperationsStandInTheirOrder) {
    EXPECT_TRUE(std::has_virtual_destructor_v<COpzListDisEgn>);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::Clone), 2);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::GetDaIniOpzComList), 3);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::SetInIniOpzComList), 4);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::AddOpzNor), 5);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::DelOpzNor), 6);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::DelOpzNorAt), 7);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::AddOpzCom), 8);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::DelOpzCom), 9);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::DelOpzComAt), 10);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::doRisettaOpz), 11);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::doGetDaIni), 12);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::doSetInIni), 13);
    EXPECT_EQ(VirtualSlot(&AfterOpzListDis::Next), 14);
    EXPECT_EQ(VirtualSlot(&COpzListDisEgn::GetDaIni), -1);
}

TEST(OpzListDis, NewListIsEmptyAndVisible) {
    COpzListDisEgn parent;
    const COpzListDisEgn list(&parent, "SEC");
    EXPECT_EQ(list.GetListPadre(), &parent);
    EXPECT_EQ(list.GetSezioneIni(), "SEC");
    EXPECT_EQ(list.GetNomeOpzList(), "");
    EXPECT_EQ(list.GetTipoOpzList(), 0);
    EXPECT_EQ(list.GetVisList(), 1);
    EXPECT_EQ(list.GetNumOpzNor(), 0);
    EXPECT_EQ(list.GetNumOpzCom(), 0);
    EXPECT_EQ(parent.GetListPadre(), nullptr);
    EXPECT_EQ(COpzListDisEgn(nullptr, nullptr).GetSezioneIni(), "");
}

TEST(OpzListDis, EntriesStandInTheOrderOfTheirAddition) {
    COpzListDisEgn list;
    auto* const a = new Counted("a");
    auto* const b = new Counted("b");
    auto* const c = new Counted("c");
    EXPECT_EQ(list.AddOpzNor(a), 0);
    EXPECT_EQ(list.AddOpzNor(b), 1);
    EXPECT_EQ(list.AddOpzCom(c), 0);
    EXPECT_EQ(&list.GetOpzNor(0), a);
    EXPECT_EQ(&list.GetOpzNor(1), b);
    EXPECT_EQ(&list.GetOpzCom(0), c);
    EXPECT_TRUE(list.DelOpzNorAt(0));
    EXPECT_EQ(&list.GetOpzNor(0), b);
    EXPECT_EQ(list.GetNumOpzNor(), 1);
    EXPECT_EQ(list.GetNumOpzCom(), 1);
}

TEST(OpzListDis, ListDeletesItsEntries) {
    {
        COpzListDisEgn list;
        auto* const b = new Counted("b");
        list.AddOpzNor(new Counted("a"));
        list.AddOpzNor(b);
        list.AddOpzCom(new Counted("c"));
        auto* const d = new Counted("d");
        list.AddOpzCom(d);
        EXPECT_EQ(Counted::living, 4);
        EXPECT_TRUE(list.DelOpzNor(b));
        EXPECT_EQ(Counted::living, 3);
        EXPECT_TRUE(list.DelOpzComAt(0));
        EXPECT_EQ(Counted::living, 2);
        EXPECT_EQ(&list.GetOpzCom(0), d);
        EXPECT_TRUE(list.DelOpzCom(d));
        EXPECT_EQ(Counted::living, 1);
    }
    EXPECT_EQ(Counted::living, 0);
}

TEST(OpzListDis, EntryIsHeldOnce) {
    COpzListDisEgn list;
    auto* const a = new Counted("a");
    EXPECT_EQ(list.AddOpzNor(a), 0);
    EXPECT_EQ(list.AddOpzNor(a), -1);
    EXPECT_EQ(list.AddOpzCom(a), -1);
    EXPECT_EQ(list.AddOpzNor(nullptr), -1);
    EXPECT_EQ(list.AddOpzCom(nullptr), -1);
    EXPECT_EQ(list.GetNumOpzNor(), 1);
    EXPECT_EQ(list.GetNumOpzCom(), 0);
}

TEST(OpzListDis, WhatIsNotThereIsNotDeleted) {
    COpzListDisEgn list;
    auto* const normal = new Counted("n");
    auto* const common = new Counted("c");
    list.AddOpzNor(normal);
    list.AddOpzCom(common);
    const Counted foreign("f");
    EXPECT_FALSE(list.DelOpzNor(common));
    EXPECT_FALSE(list.DelOpzCom(normal));
    EXPECT_FALSE(list.DelOpzNor(nullptr));
    EXPECT_FALSE(list.DelOpzNor(const_cast<Counted*>(&foreign)));
    for (const int i : {-1, 1, 2147483647, -2147483647 - 1}) {
        EXPECT_FALSE(list.DelOpzNorAt(i)) << i;
        EXPECT_FALSE(list.DelOpzComAt(i)) << i;
    }
    EXPECT_EQ(list.GetNumOpzNor(), 1);
    EXPECT_EQ(list.GetNumOpzCom(), 1);
}

TEST(OpzListDis, PositionWithoutEntryAnswersOneWithoutEffect) {
    COpzListDisEgn list;
    list.AddOpzNor(new Counted("a"));
    for (const int i : {-1, 1, 2147483647, -2147483647 - 1}) {
        COpzDisEgn& none = list.GetOpzNor(i);
        EXPECT_EQ(none.GetNomeOpz(), "") << i;
        EXPECT_EQ(none.GetColSimb(), 0) << i;
        none.SetNomeOpz("set");
        none.SetColSimb(9);
        EXPECT_EQ(list.GetOpzCom(i).GetColSimb(), 0) << i;
        EXPECT_EQ(list.GetOpzCom(i).GetNomeOpz(), "") << i;
    }
    EXPECT_EQ(list.GetOpzNor(0).GetColSimb(), 0);
    EXPECT_EQ(list.GetNumOpzNor(), 1);
}

void CheckIsDeepCopy(COpzListDisEgn& copy, COpzListDisEgn& list) {
    EXPECT_EQ(copy.GetListPadre(), list.GetListPadre());
    EXPECT_EQ(copy.GetSezioneIni(), "SEC");
    EXPECT_EQ(copy.GetNomeOpzList(), "name");
    EXPECT_EQ(copy.GetTipoOpzList(), 7);
    EXPECT_EQ(copy.GetVisList(), 3);
    ASSERT_EQ(copy.GetNumOpzNor(), 1);
    ASSERT_EQ(copy.GetNumOpzCom(), 1);
    EXPECT_NE(&copy.GetOpzNor(0), &list.GetOpzNor(0));
    EXPECT_NE(&copy.GetOpzCom(0), &list.GetOpzCom(0));
    EXPECT_NE(dynamic_cast<Counted*>(&copy.GetOpzNor(0)), nullptr) << "its class, not the base's";
    EXPECT_EQ(copy.GetOpzNor(0).GetNomeOpz(), "n");
    EXPECT_EQ(copy.GetOpzNor(0).GetColSimb(), 5);
    EXPECT_EQ(copy.GetOpzCom(0).GetNomeOpz(), "c");
    copy.GetOpzNor(0).SetColSimb(6);
    EXPECT_EQ(list.GetOpzNor(0).GetColSimb(), 5);
    copy.GetOpzNor(0).SetColSimb(5);
}

TEST(OpzListDis, CopiesHaveEntriesOfTheirOwn) {
    {
        COpzListDisEgn parent;
        COpzListDisEgn list(&parent, "SEC");
        list.SetNomeOpzList("name");
        list.SetTipoOpzList(7);
        list.SetVisList(3);
        list.AddOpzNor(new Counted("n"));
        list.GetOpzNor(0).SetColSimb(5);
        list.AddOpzCom(new Counted("c"));

        COpzListDisEgn copied(list);
        CheckIsDeepCopy(copied, list);
        const std::unique_ptr<COpzListDisEgn> clone(list.Clone());
        CheckIsDeepCopy(*clone, list);
        COpzListDisEgn assigned;
        assigned.AddOpzNor(new Counted("former"));
        assigned.AddOpzNor(new Counted("former"));
        assigned = list;
        CheckIsDeepCopy(assigned, list);
        const COpzListDisEgn& self = assigned;
        assigned = self;
        CheckIsDeepCopy(assigned, list);
        EXPECT_EQ(Counted::living, 8) << "the former entries are gone";
    }
    EXPECT_EQ(Counted::living, 0);
}

TEST(OpzListDis, ResetReachesEveryEntry) {
    COpzListDisEgn list;
    list.SetVisList(0);
    list.AddOpzNor(new Counted("n"));
    list.AddOpzCom(new Counted("c"));
    list.GetOpzNor(0).SetVisSimb(9);
    list.GetOpzCom(0).SetVisSimb(9);
    list.RisettaOpz();
    EXPECT_EQ(list.GetVisList(), 1);
    EXPECT_EQ(list.GetOpzNor(0).GetVisSimb(), 1);
    EXPECT_EQ(list.GetOpzCom(0).GetVisSimb(), 1);
}

TEST(OpzListDis, SettingsAreThoseOfTheListAndOfEveryEntry) {
    const Settings settings;
    COpzListDisEgn list(nullptr, "SEC");
    auto* const normal = new Counted("n");
    auto* const common = new Counted("c");
    list.AddOpzNor(normal);
    list.AddOpzCom(common);
    list.SetVisList(-4);
    list.SetInIni();
    EXPECT_EQ(settings.Text(), "[SEC]\nVisList = -4\n");
    EXPECT_EQ(normal->writes, 1);
    EXPECT_EQ(common->writes, 1);
    list.SetVisList(5);
    list.GetDaIni();
    EXPECT_EQ(list.GetVisList(), -4);
    EXPECT_EQ(normal->reads, 1);
    EXPECT_EQ(common->reads, 1);
    list.GetDaIniOpzComList();
    list.SetInIniOpzComList();
    EXPECT_EQ(normal->reads, 1);
    EXPECT_EQ(normal->writes, 1);
    EXPECT_EQ(common->reads, 2);
    EXPECT_EQ(common->writes, 2);
}

TEST(OpzListDis, AssignedToItselfItKeepsItsEntries) {
    const Settings settings;
    COpzListDisEgn list;
    auto* const entry = new Counted("n");
    list.AddOpzNor(entry);
    const COpzListDisEgn& itself = list;
    list = itself;
    ASSERT_EQ(list.GetNumOpzNor(), 1);
    EXPECT_EQ(&list.GetOpzNor(0), entry);
}

TEST(OpzListDis, WithoutSettingItIsVisible) {
    const Settings settings;
    COpzListDisEgn list;
    list.SetVisList(0);
    list.GetDaIni();
    EXPECT_EQ(list.GetVisList(), 1);
}

}  // namespace
