// The point record: its bytes at every version, what reading them sets, and what it leaves alone.
#include <gtest/gtest.h>

#include <string>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"
#include "tests/gps/model/ChangeWatch.h"
#include "tests/gps/persist/GoldenRecords.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::Bytes;
using test::Dump;
using test::Rms742;
using test::Saved;
using test::ValuesOf;

/// A point that is in no book, with a value in every field.
struct Golden : CPunGps {
    Golden() : CPunGps(nullptr, false, nullptr) { test::FillGoldenPoint(*this); }
};

struct Blank : CPunGps {
    Blank() : CPunGps(nullptr, false, nullptr) {}
};

/// True when the whole record was there and nothing else was taken.
bool Read(CPunGps& point, const std::string& bytes, short version) {
    ifpstream in(bytes.data(), bytes.size(), version);
    point.LeggeDaFile(in);
    return in.IsOk() && in.GetRemaining() == 0;
}

// --- bytes -------------------------------------------------------------------------------------------------

TEST(PointRecord, BytesAtEveryVersion) {
    Golden point;
    const auto rows = test::PointRows(point, Rms742::asWritten);
    for (const short version : test::VersionsAroundThresholds())
        EXPECT_EQ(Dump(Saved(point, version)), Dump(Join(rows, version))) << version;
}

TEST(PointRecord, SizeOfItsOwnFieldsAtEveryVersion) {
    // Without the entity record before them and the cloud record behind them.
    struct Row {
        short version;
        std::size_t size;
    };
    Blank point;
    ofpstream entity(1400);
    point.CEgn::SalvaInFile(entity);
    const std::size_t others = entity.GetBytes().size() + 24;
    for (const Row& row : {Row{0, 64}, Row{741, 64}, Row{742, 130}, Row{743, 146}, Row{744, 146},
                           Row{880, 146}, Row{881, 170}, Row{903, 170}, Row{1002, 170}, Row{1003, 146},
                           Row{1004, 146}, Row{1105, 146}, Row{1106, 150}, Row{1311, 150}, Row{1400, 150}})
        EXPECT_EQ(Saved(point, row.version).size() - others, row.size) << row.version;
}

TEST(PointRecord, NewPointInTheNewestVersion) {
    Blank point;
    EXPECT_EQ(Dump(Saved(point, 1400)), Dump(Bytes()
                                                 .Raw(std::string(16, '\0'))  // two texts, code, validity
                                                 .F64(1.7e200, 3)
                                                 .U8(0)            // plane coordinates
                                                 .F64(1.7e200, 4)  // the fix
                                                 .I32(0)
                                                 .I16(0)
                                                 .I16(0)  // quality, duplicates
                                                 .U16(0)
                                                 .U8(0)
                                                 .U8(0)
                                                 .U32(0)  // date and time
                                                 .F64(1.7e200, 2)
                                                 .U8(0)
                                                 .U8(0)                       // RMS, satellites
                                                 .Raw(std::string(40, '\0'))  // covariances
                                                 .F64(1.7e200, 2)
                                                 .F64(1.7e200, 3)             // DOP, base
                                                 .U32(0)                      // reserved
                                                 .Raw(std::string(24, '\0'))  // cloud
                                                 .Get()));
}

TEST(PointRecord, GeocentricCoordinatesOfThePhaseCentreStandBefore1003) {
    Blank point;
    point.SetLat(0);
    point.SetLong(0);
    point.SetElev(100);
    point.SetAltAnt(2);
    const std::string bytes = Saved(point, 1002);
    EXPECT_EQ(Dump(bytes.substr(41, 24)), Dump(Bytes().F64(6378237.0).F64(0).F64(0).Get()))
        << "the semi-major axis and the height, which includes the antenna";
    EXPECT_EQ(Dump(bytes.substr(41 + 24, 8)), Dump(Bytes().F64(0).Get()));
}

TEST(PointRecord, WithoutAFixTheGeocentricCoordinatesAreUnset) {
    Blank point;
    point.SetLat(45);
    EXPECT_EQ(Dump(Saved(point, 741).substr(41, 24)), Dump(Bytes().F64(1.7e200, 3).Get()));
}

TEST(PointRecord, SecondaryMarkIsZeroBefore903) {
    Golden point;
    for (const short version : {short{743}, short{902}, short{903}, short{1400}}) {
        Blank read;
        ASSERT_TRUE(Read(read, Saved(point, version), version));
        EXPECT_TRUE(read.IsPrimaryPtDup()) << version;
        EXPECT_EQ(read.IsSecondaryPtDup(), version >= 903) << version;
    }
    EXPECT_TRUE(point.IsSecondaryPtDup()) << "the point keeps it";
}

TEST(PointRecord, CopyForAnExchangeFileHasNoCloudIdentity) {
    Golden point;
    const std::string own = Saved(point, 1400), copy = Saved(point, 1400, true);
    EXPECT_EQ(copy.substr(0, copy.size() - 24), own.substr(0, own.size() - 24));
    EXPECT_EQ(Dump(copy.substr(copy.size() - 24)), Dump(std::string(24, '\0')));
}

// --- reading -----------------------------------------------------------------------------------------------

TEST(PointRecord, ComesBackAtEveryVersion) {
    Golden point;
    for (const short version : test::VersionsAroundThresholds()) {
        const std::string bytes = Join(test::PointRows(point, Rms742::asRead), version);
        // What it should be afterwards: the golden point, but for the fields that this version does not have.
        Golden expected;
        expected.SetCloudNotify(false);
        Blank other;
        test::FillOtherPoint(other);
        if (version < 903) expected.SetIsSecondaryPtDup(false);
        if (version < 742) {
            expected.SetYear(other.GetYear());
            expected.SetMonth(other.GetMonth());
            expected.SetDay(other.GetDay());
            expected.SetTod(other.GetTod());
            expected.SetHposRms(other.GetHposRms());
            expected.SetVposRms(other.GetVposRms());
            expected.SetNuGpsUsed(other.GetNuGpsUsed());
            expected.SetNuGloUsed(other.GetNuGloUsed());
            expected.SetPosCov_xx(other.GetPosCov_xx());
            expected.SetPosCov_yy(other.GetPosCov_yy());
            expected.SetPosCov_zz(other.GetPosCov_zz());
            expected.SetPosCov_tt(other.GetPosCov_tt());
            expected.SetPosCov_xy(other.GetPosCov_xy());
            expected.SetPosCov_xz(other.GetPosCov_xz());
            expected.SetPosCov_xt(other.GetPosCov_xt());
            expected.SetPosCov_yz(other.GetPosCov_yz());
            expected.SetPosCov_yt(other.GetPosCov_yt());
            expected.SetPosCov_zt(other.GetPosCov_zt());
        }
        if (version == 742) {
            expected.SetHposRms(static_cast<double>(0.0125f));
            expected.SetVposRms(static_cast<double>(0.025f));
        }
        if (version < 743) {
            expected.SetPdop(other.GetPdop());
            expected.SetGdop(other.GetGdop());
        }
        if (version < 881) expected.SetGrafBase(-9, -10, -11);
        if (version < 1106) expected.SetPunRis32(12);

        ASSERT_TRUE(Read(other, bytes, version)) << version;
        EXPECT_EQ(ValuesOf(other), ValuesOf(expected)) << version;
    }
}

TEST(PointRecord, At742ItIsWrittenLongerThanItIsRead) {
    // Both are as they should be: that version is for reading.
    Blank point;
    const std::size_t others = 41 + 24;
    EXPECT_EQ(Saved(point, 742).size(), others + 130);
    const std::string read = Join(test::PointRows(point, Rms742::asRead), 742);
    const std::string written = Join(test::PointRows(point, Rms742::asWritten), 742);
    EXPECT_EQ(written.size() - read.size(), 8u);
}

TEST(PointRecord, DopIsNotThereAt742) {
    Golden point;
    const std::string at742 = Saved(point, 742), at743 = Saved(point, 743);
    EXPECT_EQ(at743.size() - at742.size(), 16u);
    EXPECT_EQ(at742.substr(at742.size() - 24), at743.substr(at743.size() - 24));
}

TEST(PointRecord, GeocentricCoordinatesAreReadAndForgotten) {
    Golden point;
    std::string bytes = Join(test::PointRows(point, Rms742::asRead), 1002);
    const std::size_t at = Bytes()
                               .Text("P1")
                               .Text("MURO")
                               .U32(0)
                               .U32(0)
                               .F64(0, 3)
                               .U8(1)
                               .Text("third")
                               .Text("a note")
                               .Text("1.jpg")
                               .Text("red")
                               .I32(0)
                               .I32(0)
                               .Size();
    bytes.replace(at, 24, Bytes().F64(1).F64(2).F64(3).Get());
    Blank read;
    ASSERT_TRUE(Read(read, bytes, 1002));
    EXPECT_EQ(read.GetLat(), 45.125);
    EXPECT_EQ(read.GetLong(), 11.25);
    EXPECT_EQ(read.GetElev(), 100.5);
    double x, y, z, xPoint, yPoint, zPoint;
    read.GetGeocCeFaMis(x, y, z);
    point.GetGeocCeFaMis(xPoint, yPoint, zPoint);
    EXPECT_EQ(x, xPoint);
    EXPECT_EQ(y, yPoint);
    EXPECT_EQ(z, zPoint);
}

TEST(PointRecord, MarksAreTrueAboveZero) {
    struct Row {
        int stored;
        bool value;
    };
    const std::size_t at = 41 + 32 + 4;
    for (const Row& row : {Row{0, false}, Row{1, true}, Row{2, true}, Row{0x100, true}, Row{0x7FFF, true},
                           Row{-1, false}, Row{-0x8000, false}}) {
        Blank blank;
        std::string bytes = Saved(blank, 1400);
        bytes.replace(at, 4, Bytes().I16(row.stored).I16(row.stored).Get());
        Blank read;
        read.SetIsPrimaryPtDup(!row.value);
        read.SetIsSecondaryPtDup(!row.value);
        ASSERT_TRUE(Read(read, bytes, 1400));
        EXPECT_EQ(read.IsPrimaryPtDup(), row.value) << row.stored;
        EXPECT_EQ(read.IsSecondaryPtDup(), row.value) << row.stored;
    }
}

TEST(PointRecord, MarksStoredBefore903AreReadAllTheSame) {
    Blank blank;
    std::string bytes = Saved(blank, 902);
    bytes.replace(41 + 24 + 32 + 4 + 2, 2, Bytes().I16(1).Get());
    Blank read;
    ASSERT_TRUE(Read(read, bytes, 902));
    EXPECT_TRUE(read.IsSecondaryPtDup());
}

TEST(PointRecord, ReadingReportsNothing) {
    Golden point;
    const std::string bytes = Saved(point, 1400);
    test::Table table;
    CPunGps read(&table, false, nullptr);
    test::ChangeWatch watch;
    ASSERT_TRUE(Read(read, bytes, 1400));
    EXPECT_TRUE(watch.Take().empty());
    EXPECT_EQ(read.GetCloudFlag(), 0x21u) << "but for what was stored";
    EXPECT_EQ(Find(table, 4242, &read), test::Known::item);
    EXPECT_TRUE(IsChanged(table, read));
}

TEST(PointRecord, CutRecordFailsAndLeavesZerosBehindTheCut) {
    Golden point;
    for (const short version : {short{741}, short{743}, short{1003}, short{1400}}) {
        const std::string whole = Saved(point, version);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            ifpstream in(whole.data(), size, version);
            Golden read;
            read.LeggeDaFile(in);
            ASSERT_FALSE(in.IsOk()) << version << ": " << size;
            ASSERT_EQ(in.GetRemaining(), 0);
            ASSERT_EQ(read.GetCloudId(), size < whole.size() - 16 ? 0 : 4242) << size;
        }
    }
}

TEST(PointRecord, AnyNumberComesBackBitByBit) {
    Golden point;
    point.SetLat(-0.0);
    point.SetLong(std::numeric_limits<double>::quiet_NaN());
    point.SetElev(std::numeric_limits<double>::infinity());
    point.SetAltAnt(std::numeric_limits<double>::denorm_min());
    point.SetPosCov_xx(std::numeric_limits<float>::denorm_min());
    const std::string bytes = Saved(point, 1400);
    Blank read;
    ASSERT_TRUE(Read(read, bytes, 1400));
    EXPECT_EQ(Dump(Saved(read, 1400)), Dump(bytes));
}

}  // namespace
