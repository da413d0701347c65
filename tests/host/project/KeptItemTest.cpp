// A group or point that is taken out of the book whole, and put in again.
#include <gtest/gtest.h>

#include "host/project/KeptItem.h"
#include "tests/Bytes.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::KeepGroup;
using gpsproject::KeepPoint;
using gpsproject::PutGroupBack;
using gpsproject::PutPointBack;
using test::Bytes;
using test::NamesIn;
using test::Project;

Bytes DefaultEntity(const char* name) {
    const double unset = 1.7e200;
    return Bytes().Text(name).Text("").U32(0).U32(0).F64(unset, 3).U8(0);
}

TEST(KeptItem, PointIsOneRecordOfTheNewestVersion) {
    Project project;
    project.GetBook().AddGrp(false);
    CPunGps& point = *project.GetBook().AddPun(0, false);
    point.SetNome("P1");
    point.SetLat(45.5);
    point.SetQua(4);
    const std::string kept = KeepPoint(project.GetBook(), 0, 0);
    const double unset = 1.7e200;
    Bytes expected;
    expected.I16(1400).I32(0).Raw(DefaultEntity("P1"));
    expected.F64(45.5).F64(unset, 2);
    // Antenna height 0, then quality and marks.
    EXPECT_EQ(test::Dump(kept.substr(0, expected.Size())), test::Dump(expected.Get()));
    // No cloud id, no mask, no ticket.
    EXPECT_EQ(kept.substr(kept.size() - 24), std::string(24, '\0'));
}

TEST(KeptItem, GroupIsItsRecordAndThoseOfItsPoints) {
    Project project;
    test::FillSmall(project);
    const std::string kept = KeepGroup(project.GetBook(), 0);
    const std::string point = KeepPoint(project.GetBook(), 0, 0).substr(6);
    Bytes begin;
    begin.I16(1400).I32(1).Text("A").Text("").Text("").Text("");
    EXPECT_EQ(test::Dump(kept.substr(0, begin.Size())), test::Dump(begin.Get()));
    const std::string points = Bytes().I32(2).Raw(point);
    const auto at = kept.size() - 2 * point.size() - 4;
    EXPECT_EQ(test::Dump(kept.substr(at, points.size())), test::Dump(points));
}

/// A linked book of which everything has an id, so that it would show when one were kept.
class Kept : public testing::Test {
protected:
    Kept() {
        test::FillSmall(project_);
        project_.GetBook().GetPunAt(0, 1)->SetNote("a note");
        project_.GetBook().GetPunAt(0, 1)->SetIsSecondaryPtDup(true);
        project_.GetBook().GetGrpAt(0)->SetLabels("Operator", "Instrument", "2026-11-21", "Place");
        project_.GetCloud().Link(test::kLink);
        test::Settle(project_);
        project_.GetBook().GetPunAt(0, 0)->SetQua(9);
    }
    Project project_;
    CLibGps& book_ = project_.GetBook();
};

TEST_F(Kept, GroupComesBackWholeAndNew) {
    const std::string kept = KeepGroup(book_, 0);
    ASSERT_TRUE(PutGroupBack(book_, kept, project_.GetDrawings()));
    EXPECT_EQ(NamesIn(project_), "A(A1 A2) B(B1) A(A1 A2)");
    EXPECT_EQ(book_.GetGrpAt(2)->GetLocalita(), "Place");
    EXPECT_EQ(book_.GetPunAt(2, 0)->GetQua(), 9);
    EXPECT_EQ(book_.GetPunAt(2, 1)->GetNote(), "a note");
    EXPECT_TRUE(book_.GetPunAt(2, 1)->IsSecondaryPtDup());
    EXPECT_EQ(test::IdOfGroup(project_, 2), 0);
    EXPECT_EQ(test::IdOfGroup(project_, 0), 1) << "the one that is there keeps its id";
    EXPECT_EQ(project_.GetCloud().GetTables().base.GetAdded().size(), 1U);
    EXPECT_EQ(project_.GetCloud().GetTables().points.GetAdded().size(), 2U);
    EXPECT_EQ(KeepGroup(book_, 2), kept);
}

TEST_F(Kept, PointComesBackWholeAndNew) {
    const std::string kept = KeepPoint(book_, 0, 1);
    ASSERT_TRUE(PutPointBack(book_, 1, kept));
    EXPECT_EQ(NamesIn(project_), "A(A1 A2) B(B1 A2)");
    EXPECT_EQ(book_.GetPunAt(1, 1)->GetNote(), "a note");
    EXPECT_EQ(test::IdOfPoint(project_, 1, 1), 0);
    EXPECT_EQ(project_.GetCloud().GetTables().points.GetAdded().size(), 1U);
    EXPECT_EQ(KeepPoint(book_, 1, 1), kept);
}

TEST_F(Kept, PointIntoNoGroupIsNotAdded) {
    const std::string kept = KeepPoint(book_, 0, 1);
    for (const int g : {-1, 2, 99}) EXPECT_FALSE(PutPointBack(book_, g, kept)) << g;
    EXPECT_EQ(NamesIn(project_), "A(A1 A2) B(B1)");
}

TEST_F(Kept, DamagedRecordsAddNothing) {
    const std::string group = KeepGroup(book_, 0), point = KeepPoint(book_, 0, 0);
    const std::string before = test::EverythingOf(project_);
    const auto refused = [&](const std::string& kept) {
        EXPECT_FALSE(PutGroupBack(book_, kept, project_.GetDrawings()));
        EXPECT_FALSE(PutPointBack(book_, 0, kept));
        EXPECT_EQ(NamesIn(project_), "A(A1 A2) B(B1)");
        EXPECT_TRUE(project_.GetCloud().GetTables().base.GetAdded().empty());
        EXPECT_TRUE(project_.GetCloud().GetTables().points.GetAdded().empty());
    };
    for (std::size_t size = 0; size < group.size(); size += size < 64 || group.size() - size < 64 ? 1 : 13)
        refused(group.substr(0, size));
    for (std::size_t size = 0; size < point.size(); ++size) refused(point.substr(0, size));
    refused(group + "x");
    refused(point + std::string(1, '\0'));
    std::string newer = group;
    newer[0] = static_cast<char>(0x79);  // 1401
    refused(newer);
    for (const std::int32_t groups : {-1, 2, 1 << 30}) {
        std::string other = group;
        other.replace(2, 4, Bytes().I32(groups).Get());
        refused(other);
    }
    // A count of points that no book holds.
    const std::size_t at = group.size() - (point.size() - 6) - (KeepPoint(book_, 0, 1).size() - 6) - 4;
    for (const std::int32_t points : {-1, 3, 0x7FFFFFFF}) {
        std::string other = group;
        other.replace(at, 4, Bytes().I32(points).Get());
        refused(other);
    }
    EXPECT_EQ(test::EverythingOf(project_), before);
}

TEST_F(Kept, GroupIsNoPointAndAPointNoGroup) {
    EXPECT_FALSE(PutPointBack(book_, 0, KeepGroup(book_, 0)));
    EXPECT_FALSE(PutGroupBack(book_, KeepPoint(book_, 0, 0), project_.GetDrawings()));
    EXPECT_EQ(NamesIn(project_), "A(A1 A2) B(B1)");
}

}  // namespace
