// The group record: its bytes at every version, what reading them sets, and the usages of its drawing.
#include <gtest/gtest.h>

#include <string>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/base/savedPointers.h"
#include "platform/cad/CDrawingsMapper.h"
#include "tests/Bytes.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/persist/GoldenRecords.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::Bytes;
using test::DrawingWatch;
using test::Dump;
using test::Saved;
using test::ValuesOf;
using Calls = DrawingWatch::Calls;

constexpr long long kSaved = 0x0102030405060708;  // drawing of the golden group
constexpr long long kLive = 77;
constexpr long long kDefault = 55;

struct Golden : CGrpGps {
    Golden() : CGrpGps(nullptr, false, nullptr, 0) { test::FillGoldenGroup(*this); }
};

struct Blank : CGrpGps {
    explicit Blank(long long drawing = 0) : CGrpGps(nullptr, false, nullptr, drawing) {}
};

CDrawingsMapper Mapper() {
    CDrawingsMapper mapper(kDefault);
    mapper.SetDrawing(kSaved, kLive);
    return mapper;
}

bool Read(CGrpGps& group, const std::string& bytes, short version, bool remap = true) {
    ifpstream in(bytes.data(), bytes.size(), version);
    CDrawingsMapper mapper = Mapper();
    group.LeggeDaFile(in, mapper, remap);
    return in.IsOk() && in.GetRemaining() == 0;
}

// --- bytes -------------------------------------------------------------------------------------------------

TEST(GroupRecord, BytesAtEveryVersion) {
    Golden group;
    const auto rows = test::GroupRows(group);
    for (const short version : test::VersionsAroundThresholds())
        EXPECT_EQ(Dump(Saved(group, version)), Dump(Join(rows, version))) << version;
}

TEST(GroupRecord, SizeOfItsOwnFieldsAtEveryVersion) {
    // Without entity, conversion and cloud record.
    struct Row {
        short version;
        std::size_t size;
    };
    Blank group;
    const std::size_t always = test::ConversionBytes(*group.GetConvCoord()).size() + 24;
    for (const Row& row :
         {Row{0, 22}, Row{741, 22}, Row{742, 82}, Row{749, 82}, Row{750, 100}, Row{881, 100}, Row{1003, 100},
          Row{1004, 108}, Row{1105, 108}, Row{1106, 112}, Row{1310, 112}, Row{1311, 116}, Row{1400, 116}})
        EXPECT_EQ(Saved(group, row.version).size() - always - (row.version >= 742 ? 41 : 0), row.size)
            << row.version;
}

TEST(GroupRecord, NewGroupInTheNewestVersion) {
    Blank group(3);
    EXPECT_EQ(Dump(Saved(group, 1400)), Dump(Bytes()
                                                 .Raw(std::string(16, '\0'))  // texts
                                                 .I64(3)                      // drawing
                                                 .Raw(std::string(16, '\0'))
                                                 .F64(1.7e200, 3)
                                                 .U8(0)            // entity
                                                 .Text("")         // place
                                                 .F64(1.7e200, 7)  // base
                                                 .F64(1, 2)
                                                 .U8(0)
                                                 .U8(0)  // factors, types
                                                 .I16(0)
                                                 .I32(0)
                                                 .Raw(test::ConversionBytes(*group.GetConvCoord()))
                                                 .U32(0)
                                                 .I32(1)  // the device's id
                                                 .Raw(std::string(24, '\0'))
                                                 .Get()));
}

TEST(GroupRecord, CopyForAnExchangeFileHasNoCloudIdentity) {
    Golden group;
    const std::string own = Saved(group, 1400), copy = Saved(group, 1400, true);
    EXPECT_EQ(copy.substr(0, copy.size() - 24), own.substr(0, own.size() - 24));
    EXPECT_EQ(Dump(copy.substr(copy.size() - 24)), Dump(std::string(24, '\0')));
}

TEST(GroupRecord, MapperLearnsOfTheDrawingFrom1004) {
    for (const short version : {short{1003}, short{1004}}) {
        Golden group;
        vex::CPtr64Mapper mapper;
        ofpstream out(version);
        group.SalvaInFile(out, false, &mapper);
        EXPECT_EQ(mapper.IsWritten(kSaved), version >= 1004) << version;
        EXPECT_EQ(mapper.GetSize(), version >= 1004 ? 1u : 0u) << version;
    }
}

TEST(GroupRecord, PointsAreNotInIt) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    CGrpGps* group = book.AddGrp(false);
    const std::string empty = Saved(*group, 1400);
    book.AddPun(0, false);
    EXPECT_EQ(Saved(*group, 1400), empty);
    ASSERT_TRUE(Read(*group, empty, 1400));
    EXPECT_EQ(book.GetPunArSize(0), 1) << "and reading leaves them alone";
}

// --- reading -----------------------------------------------------------------------------------------------

TEST(GroupRecord, ComesBackAtEveryVersion) {
    Golden group;
    const auto rows = test::GroupRows(group);
    for (const short version : test::VersionsAroundThresholds()) {
        // What it should be afterwards: the golden group, but for the fields that this version does not have.
        Golden expected;
        expected.SetCloudNotify(false);
        Blank read;
        test::FillOtherGroup(read);
        expected.SetTargetDrawing(version < 1004 ? kDefault : kLive);
        if (version < 742) {
            static_cast<CEgn&>(expected).AnnullaTutteLeVar();
            expected.SetNome("other");
            expected.SetLocalita("d");
            expected.SetBaseSpare1(-1);
            expected.SetBaseSpare2(-2);
            expected.SetBaseSpare3(-3);
            expected.SetBaseLat(-4);
            expected.SetBaseLong(-5);
            expected.SetBaseElev(-6);
            expected.SetBaseAltAnt(-7);
        }
        if (version < 750) {
            expected.SetGrpFactorA(-8);
            expected.SetGrpFactorB(-9);
            expected.SetTipoRilievo(9);
            expected.SetTipoRicevitore(8);
        }
        if (version < 1106) expected.SetGrpRis32(5);
        if (version < 1311) expected.SetCloudCreatorDevId(4);

        ASSERT_TRUE(Read(read, Join(rows, version), version)) << version;
        EXPECT_EQ(ValuesOf(read), ValuesOf(expected)) << version;
    }
}

TEST(GroupRecord, ReservedFlagIsTrueForOneOnly) {
    const std::size_t at = 16 + 8 + 41 + 4 + 56 + 16 + 2 + 2;
    for (const int stored : {0, 1, 2, 0x101, -1, 0x01000000}) {
        Blank blank;
        std::string bytes = Saved(blank, 1400);
        bytes.replace(at, 4, Bytes().I32(stored).Get());
        Blank read;
        read.SetGrpFlagRis(stored != 1);
        ASSERT_TRUE(Read(read, bytes, 1400));
        EXPECT_EQ(read.GetGrpFlagRis(), stored == 1) << stored;
    }
}

TEST(GroupRecord, ReadingReportsNothing) {
    Golden group;
    const std::string bytes = Saved(group, 1400);
    test::Table table(CCloudTable::tabGpsBase);
    CGrpGps read(&table, false, nullptr, 0);
    test::ChangeWatch watch;
    ASSERT_TRUE(Read(read, bytes, 1400));
    EXPECT_TRUE(watch.Take().empty()) << "the conversion, too, has changed without a report";
    EXPECT_EQ(read.GetCloudFlag(), 0x80000001u);
    EXPECT_EQ(Find(table, 0x0807060504030201, &read), test::Known::item);
    read.GetConvCoord()->SetImp(7, 7);
    EXPECT_EQ(watch.Take().size(), 1u) << "it reports its changes as before";
}

TEST(GroupRecord, CutRecordFails) {
    Golden group;
    for (const short version : {short{741}, short{742}, short{1003}, short{1400}}) {
        const std::string whole = Saved(group, version);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            ifpstream in(whole.data(), size, version);
            CDrawingsMapper mapper = Mapper();
            Golden read;
            read.LeggeDaFile(in, mapper, true);
            ASSERT_FALSE(in.IsOk()) << version << ": " << size;
            ASSERT_EQ(in.GetRemaining(), 0);
        }
    }
}

// --- the drawing -------------------------------------------------------------------------------------------

TEST(GroupDrawing, IsGivenBackBeforeTheNewOneIsTaken) {
    Golden group;
    const std::string bytes = Saved(group, 1400);
    Blank read(3);
    DrawingWatch watch;
    ASSERT_TRUE(Read(read, bytes, 1400));
    EXPECT_EQ(watch.Take(), (Calls{{-1, 3}, {+1, kLive}}));
    EXPECT_EQ(read.GetTargetDrawing(), kLive);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(3), 0);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(kLive), 1);
}

TEST(GroupDrawing, StaysWithoutRemapAndItsUsageIsTheSame) {
    Golden group;
    const std::string bytes = Saved(group, 1400);
    Blank read(3);
    DrawingWatch watch;
    ASSERT_TRUE(Read(read, bytes, 1400, false))
        << "the saved reference is taken from the stream all the same";
    EXPECT_EQ(watch.Take(), (Calls{{-1, 3}, {+1, 3}}));
    EXPECT_EQ(read.GetTargetDrawing(), 3);
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(3), 1);
}

TEST(GroupDrawing, IsTheDefaultBefore1004WhateverTheFlag) {
    for (const bool remap : {true, false}) {
        Golden group;
        const std::string bytes = Saved(group, 1003);
        Blank read(3);
        DrawingWatch watch;
        ASSERT_TRUE(Read(read, bytes, 1003, remap));
        EXPECT_EQ(watch.Take(), (Calls{{-1, 3}, {+1, kDefault}})) << remap;
        EXPECT_EQ(read.GetTargetDrawing(), kDefault) << remap;
    }
}

TEST(GroupDrawing, ThatTheMapDoesNotKnowIsTheDefault) {
    Blank saved(1234);
    const std::string bytes = Saved(saved, 1400);
    Blank read;
    ASSERT_TRUE(Read(read, bytes, 1400));
    EXPECT_EQ(read.GetTargetDrawing(), kDefault);
}

TEST(GroupDrawing, OfNoneIsCalledForAllTheSame) {
    Blank saved(0);
    const std::string bytes = Saved(saved, 1400);
    Blank read;
    CDrawingsMapper mapper(0);
    ifpstream in(bytes.data(), bytes.size(), 1400);
    DrawingWatch watch;
    read.LeggeDaFile(in, mapper, true);
    EXPECT_EQ(watch.Take(), (Calls{{-1, 0}, {+1, 0}}));
}

TEST(GroupDrawing, UsageIsRightWhenTheStreamEndsInIt) {
    Golden group;
    const std::string bytes = Saved(group, 1400);
    const std::size_t atDrawing = Bytes().Text("Gruppo 1").Text("Rossi").Text("R8").Text("04/10/2018").Size();
    {
        Blank read(3);
        ifpstream in(bytes.data(), atDrawing + 7, 1400);
        in.SetPastEndLimit(0);
        CDrawingsMapper mapper = Mapper();
        EXPECT_THROW(read.LeggeDaFile(in, mapper, true), StreamExhausted);
        EXPECT_EQ(read.GetTargetDrawing(), 3);
        EXPECT_EQ(COrkaEng::GetDrawingRefUsage(3), 1);
    }
    EXPECT_EQ(COrkaEng::GetDrawingRefUsage(3), 0);
}

}  // namespace
