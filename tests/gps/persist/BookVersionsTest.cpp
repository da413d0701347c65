// Which version decides in a field-book record: the one that is given, or the one of the stream.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/Bytes.h"
#include "tests/gps/persist/BookParts.h"

namespace {

using test::Bytes;
using test::Fill;
using test::Load;
using test::LooseBook;
using test::Read;
using test::Section;
using test::Shape;

struct Versions {
    short argument, stream;
};

/// A host's own map library, with a record of its own.
struct OwnMap : CLibMap {
    void SalvaInFile(ofpstream& out, short) override { out.WriteString("own record"); }
    void LeggeDaFile(ifpstream& in, short version) override {
        versions.push_back(version);
        records.push_back(in.ReadString());
    }
    std::vector<short> versions;
    std::vector<std::string> records;
};

TEST(BookVersions, MapLibraryReadsItselfByItsOwnOperationBefore1004) {
    for (const Versions& v : {Versions{741, 741}, Versions{743, 743}, Versions{1003, 1003},
                              Versions{1003, 1400}, Versions{1003, 1004}}) {
        for (const bool keep : {true, false}) {
            OwnMap map;
            CLibGps book(nullptr, nullptr, nullptr, &map, 0), read(nullptr, nullptr, nullptr, &map, 0);
            Fill(book, {1});
            Load load;
            load.options = load.entities = keep;
            ASSERT_TRUE(Read(read, Section(book, v.argument, v.stream), v.argument, v.stream, load))
                << v.argument << ", " << v.stream;
            EXPECT_EQ(map.versions, std::vector<short>{v.argument});
            EXPECT_EQ(map.records, std::vector<std::string>{"own record"});
            EXPECT_EQ(Shape(read), keep ? "G0(P0)" : "");
        }
    }
}

TEST(BookVersions, MapLibraryIsNotReadFrom1004) {
    for (const Versions& v : {Versions{1004, 1004}, Versions{1400, 1400}, Versions{1401, 1401},
                              Versions{1004, 1003}, Versions{1400, 743}}) {
        OwnMap map;
        CLibGps book(nullptr, nullptr, nullptr, &map, 0), read(nullptr, nullptr, nullptr, &map, 0);
        Fill(book, {1});
        ASSERT_TRUE(Read(read, Section(book, v.argument, v.stream), v.argument, v.stream))
            << v.argument << ", " << v.stream;
        EXPECT_TRUE(map.versions.empty()) << v.argument;
        EXPECT_EQ(Shape(read), "G0(P0)");
    }
}

TEST(BookVersions, DisplayListIsReadByTheArgument) {
    // The entries the other way round: who reads by position takes the other one's values.
    const Bytes points = Bytes().I32(33).Text("Punti GPS").Hex("6400").Raw(std::string(18, '\0'));
    const Bytes bases = Bytes().I32(32).Text("Basi GPS").Hex("c800").Raw(std::string(18, '\0'));
    const Bytes list = Bytes().I32(1).I32(77).I32(2).Raw(bases).Raw(points);
    for (const Versions& v :
         {Versions{719, 719}, Versions{719, 720}, Versions{719, 1400}, Versions{720, 720}, Versions{720, 719},
          Versions{741, 719}, Versions{742, 719}, Versions{1003, 719}}) {
        CLibMap empty;
        ofpstream map(v.argument);
        empty.SalvaInFile(map, v.argument);
        Bytes section = Bytes().Raw(map.GetBytes()).I16(0).I32(0).I32(0).I32(0).Raw(list).I32(0);
        if (v.stream >= 1002) section.U8(0);
        LooseBook read;
        ASSERT_TRUE(Read(read.lib, section, v.argument, v.stream)) << v.argument << ", " << v.stream;
        COpzListDisGps& options = read.lib.GetOpzListDisGps();
        EXPECT_EQ(options.GetOpzPun().GetVisSimb(), v.argument < 720 ? 200 : 100)
            << v.argument << ", " << v.stream;
        EXPECT_EQ(options.GetOpzGrp().GetVisSimb(), v.argument < 720 ? 100 : 200)
            << v.argument << ", " << v.stream;
    }
}

TEST(BookVersions, DrawingOfTheBookGoesByTheArgumentThoseOfGroupsByTheStream) {
    constexpr long long kBook = 11, kGroup = 12, kLiveBook = 21, kLiveGroup = 22, kDefault = 5;
    for (const Versions& v : {Versions{1003, 1004}, Versions{1004, 1003}, Versions{1003, 1400},
                              Versions{1400, 743}, Versions{1004, 1004}, Versions{1003, 1003}}) {
        LooseBook book(kBook), read(3);
        Fill(book.lib, {1});
        book.lib.GetGrpAt(0)->SetTargetDrawing(kGroup);
        Load load;
        load.drawings = CDrawingsMapper(kDefault);
        load.drawings.SetDrawing(kBook, kLiveBook);
        load.drawings.SetDrawing(kGroup, kLiveGroup);
        ASSERT_TRUE(Read(read.lib, Section(book.lib, v.argument, v.stream), v.argument, v.stream, load));
        EXPECT_EQ(read.lib.GetTargetDrawing(), v.argument < 1004 ? kDefault : kLiveBook)
            << v.argument << ", " << v.stream;
        EXPECT_EQ(read.lib.GetGrpAt(0)->GetTargetDrawing(), v.stream < 1004 ? kDefault : kLiveGroup)
            << v.argument << ", " << v.stream;
    }
}

TEST(BookVersions, PostProcessingOptionsGoByTheStreamKeptOrNot) {
    for (const Versions& v : {Versions{1300, 1299}, Versions{1299, 1300}, Versions{1003, 1002},
                              Versions{1002, 1003}, Versions{1001, 1002}, Versions{1400, 1001}}) {
        for (const bool keep : {true, false}) {
            LooseBook book, read;
            test::SetOptions(book.lib);
            book.lib.GetOpzPostProc()->vecPtBaseLineBase[0].bFlag4 = true;
            book.lib.GetOpzPostProc()->vecPtBaseLineBase[0].sText2 = "second text";
            Load load;
            load.options = keep;
            ASSERT_TRUE(Read(read.lib, Section(book.lib, v.argument, v.stream), v.argument, v.stream, load))
                << v.argument << ", " << v.stream << ": " << keep;
            ASSERT_EQ(read.lib.HasOpzPostProc(), keep && v.stream >= 1002) << v.argument << ", " << v.stream;
            if (!read.lib.HasOpzPostProc()) continue;
            const auto& base = read.lib.GetOpzPostProc()->vecPtBaseLineBase.at(0);
            EXPECT_EQ(base.bFlag4, v.stream >= 1300);
            EXPECT_EQ(base.sText2, v.stream >= 1003 ? "second text" : "");
        }
    }
}

}  // namespace
