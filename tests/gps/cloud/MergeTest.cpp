// Merge of one group or point: gaps are filled, values stay.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/gps/cloud/CloudBook.h"
#include "tests/gps/model/ChangeWatch.h"

namespace {

using test::ChangeWatch;
using test::CloudBook;

/// The same group, and the same point, in two copies of a project.
struct TwoCopies {
    TwoCopies() {
        for (CloudBook* book : {&here, &there}) {
            book->AddGroup(7, "G");
            book->AddPoint(0, 8, "P");
        }
    }
    CGrpGps& Group() { return *here.lib.GetGrpAt(0); }
    CPunGps& Point() { return *here.lib.GetPunAt(0, 0); }
    CGrpGps& OtherGroup() { return *there.lib.GetGrpAt(0); }
    CPunGps& OtherPoint() { return *there.lib.GetPunAt(0, 0); }
    void MergeGroup() { EXPECT_EQ(here.bases.Merge(&OtherGroup()), &Group()); }
    void MergePoint() { EXPECT_EQ(here.points.Merge(&OtherPoint()), &Point()); }
    void MergeBoth() {
        MergeGroup();
        MergePoint();
    }

    CloudBook here, there;
};

struct TextRow {
    const char* name;
    const std::string& (CEgn::*get)() const;
    void (CEgn::*set)(const std::string&);
};
constexpr TextRow kTexts[] = {{"third text", &CEgn::GetTerScri, &CEgn::SetTerScri},
                              {"notes", &CEgn::GetNote, &CEgn::SetNote},
                              {"display attributes", &CEgn::GetAttribDis, &CEgn::SetAttribDis}};

TEST(Merge, EmptyTextsAreFilled) {
    for (const TextRow& row : kTexts) {
        TwoCopies two;
        (two.OtherGroup().*row.set)("abc");
        (two.OtherPoint().*row.set)("def");
        two.MergeBoth();
        EXPECT_EQ((two.Group().*row.get)(), "abc") << row.name;
        EXPECT_EQ((two.Point().*row.get)(), "def") << row.name;
    }
}

TEST(Merge, TextsStay) {
    for (const TextRow& row : kTexts) {
        for (const char* incoming : {"abc", ""}) {
            TwoCopies two;
            (two.Group().*row.set)("mine");
            (two.Point().*row.set)("mine");
            (two.OtherGroup().*row.set)(incoming);
            (two.OtherPoint().*row.set)(incoming);
            two.MergeBoth();
            EXPECT_EQ((two.Group().*row.get)(), "mine") << row.name;
            EXPECT_EQ((two.Point().*row.get)(), "mine") << row.name;
        }
    }
}

TEST(Merge, PhotoNamesAreEmptyAsSixStarsOnly) {
    const auto merged = [](const char* local, const char* incoming) {
        TwoCopies two;
        two.Group().SetNomiFoto_Raw(local);
        two.Point().SetNomiFoto_Raw(local);
        two.OtherGroup().SetNomiFoto_Raw(incoming);
        two.OtherPoint().SetNomiFoto_Raw(incoming);
        two.MergeBoth();
        EXPECT_EQ(two.Group().GetNomiFoto_Raw(), two.Point().GetNomiFoto_Raw());
        return two.Point().GetNomiFoto_Raw();
    };
    EXPECT_EQ(merged("******", "a.jpg"), "a.jpg");
    EXPECT_EQ(merged("******", ""), "") << "what comes in may be empty";
    EXPECT_EQ(merged("", "a.jpg"), "");
    EXPECT_EQ(merged("b.jpg", "a.jpg"), "b.jpg");
    EXPECT_EQ(merged("*****", "a.jpg"), "*****");
}

TEST(Merge, ValidityIsFilledWhenZero) {
    TwoCopies two;
    two.OtherGroup().SetVldtEgn(3);
    two.OtherPoint().SetVldtEgn(2);
    two.Group().SetVldtEgn(0);
    two.Point().SetVldtEgn(1);
    two.MergeBoth();
    EXPECT_EQ(two.Group().GetVldtEgn(), 3u);
    EXPECT_EQ(two.Point().GetVldtEgn(), 1u);
}

TEST(Merge, DescriptorIsFilledWhenThereIsNone) {
    TwoCopies two;
    for (CEgn* egn : {static_cast<CEgn*>(&two.Group()), static_cast<CEgn*>(&two.Point())})
        egn->SetGisHandle(5);
    two.Point().SetIdentDescr(0);
    two.OtherGroup().SetIdentDescr(42);
    two.OtherPoint().SetIdentDescr(42);
    two.MergeBoth();
    EXPECT_EQ(two.Group().GetIdentDescr(), 42);
    EXPECT_EQ(two.Point().GetIdentDescr(), 0) << "only -1 is none";
}

TEST(Merge, GisHandleBecomesTheDescriptor) {
    const auto merged = [](int descr, int gis, int otherDescr, int otherGis) {
        TwoCopies two;
        for (CEgn* egn : {static_cast<CEgn*>(&two.Group()), static_cast<CEgn*>(&two.Point())}) {
            egn->SetIdentDescr(descr);
            egn->SetGisHandle(gis);
        }
        for (CEgn* egn : {static_cast<CEgn*>(&two.OtherGroup()), static_cast<CEgn*>(&two.OtherPoint())}) {
            egn->SetIdentDescr(otherDescr);
            egn->SetGisHandle(otherGis);
        }
        two.MergeBoth();
        EXPECT_EQ(two.Group().GetIdentDescr(), two.Point().GetIdentDescr());
        EXPECT_EQ(two.Group().GetGisHandle(), gis) << "the handle itself never changes";
        EXPECT_EQ(two.Point().GetGisHandle(), gis);
        return two.Point().GetIdentDescr();
    };
    EXPECT_EQ(merged(-1, 0, -1, 7), 7);
    EXPECT_EQ(merged(-1, 0, 42, 7), 7);
    EXPECT_EQ(merged(-1, 0, 42, -1), -1) << "its turn comes after that of the descriptor";
    EXPECT_EQ(merged(42, 0, 43, 7), 7) << "a descriptor is no reason to keep it";
    EXPECT_EQ(merged(42, 0, 43, 0), 0) << "a handle of 0, too";
    EXPECT_EQ(merged(-1, 0, 43, 0), 0);
    EXPECT_EQ(merged(-1, 0, -1, 0), 0);
    EXPECT_EQ(merged(-1, 9, 43, 7), 43);
    EXPECT_EQ(merged(42, 9, 43, 7), 42);
}

TEST(Merge, LabelsOfAGroupAreFilled) {
    TwoCopies two;
    two.OtherGroup().SetLabels("oper", "strum", "data", "localita");
    two.Group().SetData("mine");
    two.MergeGroup();
    EXPECT_EQ(two.Group().GetOper(), "oper");
    EXPECT_EQ(two.Group().GetStrum(), "strum");
    EXPECT_EQ(two.Group().GetData(), "mine");
    EXPECT_EQ(two.Group().GetLocalita(), "localita");
    two.OtherGroup().SetLabels("a", "b", "c", "d");
    two.MergeGroup();
    EXPECT_EQ(two.Group().GetOper() + two.Group().GetStrum() + two.Group().GetLocalita(),
              "operstrumlocalita");
}

TEST(Merge, EveryLabelIsFilledWhenItIsEmpty) {
    TwoCopies two;
    two.OtherGroup().SetLabels("oper", "strum", "data", "localita");
    two.MergeGroup();
    EXPECT_EQ(two.Group().GetOper(), "oper");
    EXPECT_EQ(two.Group().GetStrum(), "strum");
    EXPECT_EQ(two.Group().GetData(), "data");
    EXPECT_EQ(two.Group().GetLocalita(), "localita");
}

TEST(Merge, FactorsAreEmptyAtExactlyOne) {
    const auto merged = [](double local, double incoming) {
        TwoCopies two;
        two.Group().SetGrpFactorA(local);
        two.Group().SetGrpFactorB(local);
        two.OtherGroup().SetGrpFactorA(incoming);
        two.OtherGroup().SetGrpFactorB(incoming + 1);
        two.MergeGroup();
        return std::pair(two.Group().GetGrpFactorA(), two.Group().GetGrpFactorB());
    };
    EXPECT_EQ(merged(1.0, 3.5), std::pair(3.5, 4.5));
    EXPECT_EQ(merged(1.0, 1.0), std::pair(1.0, 2.0));
    EXPECT_EQ(merged(2.5, 3.5), std::pair(2.5, 2.5));
    EXPECT_EQ(merged(std::nextafter(1.0, 2.0), 3.5),
              std::pair(std::nextafter(1.0, 2.0), std::nextafter(1.0, 2.0)));
    EXPECT_TRUE(std::isnan(merged(NAN, 3.5).first)) << "no number is not 1";
}

TEST(Merge, FlagsAreFilled) {
    TwoCopies two;
    two.OtherGroup().SetGrpFlagRis(true);
    two.OtherPoint().SetIsPrimaryPtDup(true);
    two.MergeBoth();
    EXPECT_TRUE(two.Group().GetGrpFlagRis());
    EXPECT_TRUE(two.Point().IsPrimaryPtDup());
    EXPECT_FALSE(two.Point().IsSecondaryPtDup());
    two.OtherPoint().SetIsPrimaryPtDup(false);
    two.OtherPoint().SetIsSecondaryPtDup(true);
    two.OtherGroup().SetGrpFlagRis(false);
    two.MergeBoth();
    EXPECT_TRUE(two.Group().GetGrpFlagRis());
    EXPECT_TRUE(two.Point().IsPrimaryPtDup());
    EXPECT_TRUE(two.Point().IsSecondaryPtDup());
    two.OtherPoint().SetIsSecondaryPtDup(false);
    two.MergeBoth();
    EXPECT_TRUE(two.Point().IsSecondaryPtDup()) << "a mark stays";
}

TEST(Merge, FieldsOfRecordsAreNeverTouched) {
    TwoCopies two;
    test::FillGroup(two.OtherGroup());
    test::FillPoint(two.OtherPoint());
    vex::String group, point, after;
    two.here.bases.GetFields(two.Group(), 0x1FFF, group);
    two.here.points.GetFields(two.Point(), 0x1FFFF, point);
    two.MergeBoth();
    two.here.bases.GetFields(two.Group(), 0x1FFF, after);
    EXPECT_EQ(after, group);
    two.here.points.GetFields(two.Point(), 0x1FFFF, after);
    EXPECT_EQ(after, point);
    EXPECT_EQ(two.Group().GetCloudId(), 7);
}

TEST(Merge, IncomingItemStaysAsItIs) {
    TwoCopies two;
    two.Group().SetNote("mine");
    two.OtherGroup().SetCloudNotify(false);
    two.OtherGroup().CloudItemChanged(0x4);
    two.MergeBoth();
    EXPECT_EQ(two.OtherGroup().GetNote(), "");
    EXPECT_FALSE(two.OtherGroup().IsCloudNotify());
    EXPECT_EQ(two.there.notified, 0);
}

TEST(Merge, NothingIsReportedAndReportingIsOnAfterwards) {
    TwoCopies two;
    two.OtherGroup().SetNote("abc");
    two.OtherGroup().SetLabels("a", "b", "c", "d");
    two.OtherPoint().SetNote("abc");
    two.OtherPoint().SetIsPrimaryPtDup(true);
    two.Group().SetCloudNotify(false);
    two.Point().SetCloudNotify(false);
    ChangeWatch watch;
    two.MergeBoth();
    EXPECT_TRUE(watch.Take().empty());
    EXPECT_TRUE(two.Group().IsCloudNotify());
    EXPECT_TRUE(two.Point().IsCloudNotify());
    EXPECT_EQ(two.here.notified, 0);
}

TEST(Merge, UnknownItemIsNull) {
    TwoCopies two;
    CGrpGps* group = two.there.AddGroup(70);
    CPunGps* point = two.there.AddPoint(0, 80);
    CGrpGps* fresh = two.there.AddGroup(0);
    for (CEgn* egn : {static_cast<CEgn*>(group), static_cast<CEgn*>(point), static_cast<CEgn*>(fresh)})
        egn->SetNote("there");
    const auto fieldsHere = [&two] {
        vex::String groupFields, pointFields;
        two.here.bases.GetFields(two.Group(), 0x1FFF, groupFields);
        two.here.points.GetFields(two.Point(), 0x1FFFF, pointFields);
        return std::string(groupFields.View()) + "|" + std::string(pointFields.View());
    };
    const std::string before = fieldsHere();
    EXPECT_EQ(two.here.bases.Merge(group), nullptr);
    EXPECT_EQ(two.here.points.Merge(point), nullptr);
    EXPECT_EQ(two.here.bases.Merge(fresh), nullptr) << "id 0 is no id";
    EXPECT_EQ(two.here.bases.Merge(nullptr), nullptr);
    EXPECT_EQ(two.here.points.Merge(nullptr), nullptr);
    EXPECT_EQ(two.here.lib.GetGrpArSize(), 1);
    EXPECT_EQ(two.here.lib.GetPunArSize(0), 1);
    EXPECT_EQ(fieldsHere(), before);
    EXPECT_EQ(two.Group().GetNote() + two.Point().GetNote(), "");
    EXPECT_EQ(two.here.bases.GetById().size(), 1u);
    EXPECT_EQ(two.here.points.GetById().size(), 1u);
    EXPECT_TRUE(two.here.bases.GetAdded().empty());
    EXPECT_TRUE(two.here.bases.GetChanged().empty());
    EXPECT_TRUE(two.here.points.GetAdded().empty());
    EXPECT_TRUE(two.here.points.GetChanged().empty());
    EXPECT_EQ(two.here.notified, 0);
}

TEST(Merge, TombstoneIsNull) {
    TwoCopies two;
    two.here.points.ItemDeletedLocally(&two.Point());
    two.here.lib.DelPunAt(0, 0);
    EXPECT_EQ(two.here.points.Merge(&two.OtherPoint()), nullptr);
    EXPECT_EQ(two.here.points.GetDeleted().size(), 1u);
    two.here.bases.ItemDeletedLocally(&two.Group());
    two.here.lib.DelGrpAt(0);
    EXPECT_EQ(two.here.bases.Merge(&two.OtherGroup()), nullptr);
    EXPECT_EQ(two.here.bases.GetDeleted().size(), 1u);
}

}  // namespace
