// The field-book record as it is written: its items at every version, and what writing does to the book.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gps/options/COpzPostProc.h"
#include "platform/base/savedPointers.h"
#include "platform/entity/CSymbolUsedTracer.h"
#include "tests/Bytes.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/GoldenRecords.h"

namespace {

using test::Bytes;
using test::Dump;
using test::Join;
using test::LooseBook;
using test::Rms742;
using test::Section;

constexpr long long kDrawing = 0x1122334455667788;

// Records whose layout is the host's own, each from the object that it belongs to.
std::string MapBytes(CLibMap& map) {
    ofpstream out(1003);
    map.SalvaInFile(out, 1003);
    return std::string(out.GetBytes());
}
std::string DisplayBytes(CLibGps& book, short version) {
    ofpstream out(version);
    book.GetOpzListDisGps().SalvaInFile(out, version, nullptr);
    return std::string(out.GetBytes());
}
std::string PostProcBytes(COpzPostProc& options, short version) {
    ofpstream out(version);
    options.SalvaInFile(out);
    return std::string(out.GetBytes());
}

/// A book with two groups: a filled one with a filled and a new point, and an empty one.
struct Golden : LooseBook {
    Golden() : LooseBook(kDrawing) {
        lib.GetOpzLibGps().OpzValore = -2;
        lib.GetOpzLibGps().CalcLibCmp = true;
        lib.GetOpzLibGps().OpzFlagA = false;
        lib.GetOpzLibGps().OpzFlagB = true;
        map.AddDat(2, 3)->SetNome("Roma 40");
        test::FillGoldenGroup(*lib.AddGrp(false));
        test::FillGoldenPoint(*lib.AddPun(0, false));
        lib.AddPun(0, false);
        lib.AddGrp(false);
    }

    /// Items 1 to 4.
    Bytes Head(short version, int groups) {
        Bytes bytes;
        if (version < 1004)
            bytes.Raw(MapBytes(map));
        else
            bytes.Hex("8877665544332211");
        bytes.Hex("feff 01000000 00000000 01000000").Raw(DisplayBytes(lib, version));
        return bytes.I32(groups);
    }

    /// Item 5.
    std::string Entities(short version) {
        return Bytes()
            .Raw(Join(test::GroupRows(*lib.GetGrpAt(0)), version))
            .I32(2)
            .Raw(Join(test::PointRows(*lib.GetPunAt(0, 0), Rms742::asWritten), version))
            .Raw(test::Saved(*lib.GetPunAt(0, 1), version))
            .Raw(test::Saved(*lib.GetGrpAt(1), version))
            .I32(0);
    }
};

TEST(BookRecord, OfAnEmptyBookAtEveryVersion) {
    for (const short version : test::VersionsAroundThresholds()) {
        LooseBook book(kDrawing);
        Bytes expected;
        if (version < 1004)
            expected.Raw(MapBytes(book.map));
        else
            expected.Hex("8877665544332211");
        expected.Hex("0000 01000000 00000000 00000000").Raw(DisplayBytes(book.lib, version));
        expected.I32(0);
        if (version >= 1002) expected.U8(0);
        EXPECT_EQ(Dump(Section(book.lib, version)), Dump(expected.Get())) << version;
    }
}

TEST(BookRecord, HoldsGroupsEachWithItsPoints) {
    for (const short version : test::VersionsAroundThresholds()) {
        Golden book;
        Bytes expected = book.Head(version, 2).Raw(book.Entities(version));
        if (version >= 1002) expected.U8(0);
        EXPECT_EQ(Dump(Section(book.lib, version)), Dump(expected.Get())) << version;
    }
}

TEST(BookRecord, ArgumentAndStreamMayBeOfTwoVersions) {
    // Items 1 to 3 go by the argument; the records of groups and points, and the last item, by the stream.
    struct Row {
        short argument, stream;
    };
    for (const Row& row : {Row{1003, 1400}, Row{1400, 1003}, Row{741, 1400}, Row{1400, 741}, Row{1004, 1001},
                           Row{1001, 1004}, Row{743, 742}, Row{742, 741}, Row{741, 742}}) {
        Golden book;
        Bytes expected = book.Head(row.argument, 2).Raw(book.Entities(row.stream));
        if (row.stream >= 1002) expected.U8(0);
        EXPECT_EQ(Dump(Section(book.lib, row.argument, row.stream)), Dump(expected.Get()))
            << row.argument << ", " << row.stream;
        EXPECT_EQ(book.lib.GetStreamVersion(), row.argument);
    }
}

TEST(BookRecord, VersionsBeyondTheNewestAreWrittenAsIt) {
    Golden book;
    book.lib.GetOpzPostProc()->AddDataPtBaseLineDett("rover.tps");
    const std::string newest = Section(book.lib, 1400);
    for (const short version : {short{1401}, short{32767}})
        EXPECT_EQ(Dump(Section(book.lib, version)), Dump(newest)) << version;
}

TEST(BookRecord, PostProcessingOptionsFollowWhenThereAreAny) {
    for (const short version :
         {short{1001}, short{1002}, short{1003}, short{1299}, short{1300}, short{1400}}) {
        Golden book;
        book.lib.GetOpzPostProc()->AddDataPtBaseLineDett("rover.tps");
        Bytes expected = book.Head(version, 2).Raw(book.Entities(version));
        if (version >= 1002) expected.U8(1).Raw(PostProcBytes(*book.lib.GetOpzPostProc(), version));
        EXPECT_EQ(Dump(Section(book.lib, version)), Dump(expected.Get())) << version;
    }
}

TEST(BookRecord, WritingMakesNoPostProcessingOptions) {
    LooseBook book;
    Section(book.lib, 1400);
    EXPECT_FALSE(book.lib.HasOpzPostProc());
}

TEST(BookRecord, WithoutMapLibraryItsRecordHasItsPlace) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    CLibMap empty;
    EXPECT_EQ(Section(book, 1003).substr(0, MapBytes(empty).size()), MapBytes(empty));
}

TEST(BookRecord, MapLibraryWritesItselfByItsOwnOperation) {
    struct OwnMap : CLibMap {
        void SalvaInFile(ofpstream& out, short version) override {
            versions.push_back(version);
            out.WriteString("own record");
        }
        std::vector<short> versions;
    };
    OwnMap map;
    CLibGps book(nullptr, nullptr, nullptr, &map, 0);
    EXPECT_EQ(Section(book, 1003, 1400).substr(0, 14), Bytes().Text("own record").Get());
    Section(book, 1004, 1003);
    EXPECT_EQ(map.versions, std::vector<short>{1003});
}

TEST(BookRecord, MapperLearnsOfEveryDrawing) {
    Golden book;
    book.lib.SetTargetDrawing(5);
    book.lib.AddGrp(false);
    vex::CPtr64Mapper mapper;
    ofpstream out(1400);
    book.lib.SalvaInFile(out, 1400, "book", nullptr, &mapper);
    EXPECT_TRUE(mapper.IsWritten(5));                   // the book's
    EXPECT_TRUE(mapper.IsWritten(0x0102030405060708));  // the filled group's
    EXPECT_TRUE(mapper.IsWritten(kDrawing));            // that of a group made before
    EXPECT_EQ(mapper.GetSize(), 3u);
}

TEST(BookRecord, TracerLearnsOfTheSymbols) {
    struct Tracer : CSymbolUsedTracer {
        void SymbolUsed(short type) override { types.push_back(type); }
        std::vector<short> types;
    };
    LooseBook book;
    book.lib.GetOpzListDisGps().GetOpzPun().SetTipoSimb(31);
    book.lib.GetOpzListDisGps().GetOpzGrp().SetTipoSimb(32);
    Tracer tracer;
    ofpstream out(1400);
    book.lib.SalvaInFile(out, 1400, "book", &tracer, nullptr);
    EXPECT_EQ(tracer.types, (std::vector<short>{31, 32}));
}

TEST(BookRecord, FileNameIsKept) {
    LooseBook book;
    ofpstream out(1400);
    book.lib.SalvaInFile(out, 1400, "D:\\Jobs\\Site7.prj", nullptr, nullptr);
    EXPECT_EQ(book.lib.GetNomeFile(), "D:\\Jobs\\Site7.prj");
    book.lib.SalvaInFile(out, 1400, nullptr, nullptr, nullptr);
    EXPECT_EQ(book.lib.GetNomeFile(), "");
}

TEST(BookRecord, VersionIsNotedAndTheFlagIsNot) {
    LooseBook book;
    for (const bool flag : {true, false}) {
        book.lib.SetStreamFlag(flag);
        Section(book.lib, 1003, 1400);
        EXPECT_EQ(book.lib.GetStreamVersion(), 1003);
        EXPECT_EQ(book.lib.GetStreamFlag(), flag);
    }
    Section(book.lib, -1, 1400);
    EXPECT_EQ(book.lib.GetStreamVersion(), 65535) << "the same 16 bits, without a sign";
}

TEST(BookRecord, WritingChangesNeitherTheBookNorItsMark) {
    for (const bool modified : {true, false}) {
        Golden book;
        book.lib.SetModifiedFlag(modified);
        const std::string first = Section(book.lib, 1400);
        EXPECT_EQ(book.lib.IsModified(), modified);
        EXPECT_TRUE(Section(book.lib, 1400) == first);
    }
}

TEST(BookRecord, RecordsOfTheBaseStayCallableAndAreEmpty) {
    Golden book;
    ofpstream out(1400);
    book.lib.SalvaInFile(out, 1400);
    EXPECT_EQ(out.GetPosition(), 0);
    ifpstream in("x", 1, 1400);
    book.lib.LeggeDaFile(in, 1400);
    EXPECT_EQ(in.GetPosition(), 0);
    EXPECT_EQ(book.lib.GetGrpArSize(), 2);
}

}  // namespace
