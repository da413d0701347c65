// The entity record: its bytes, with and without the rare part, and that reading it tells nobody.
#include <gtest/gtest.h>

#include <string>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/entity/CEgn.h"
#include "tests/Bytes.h"

namespace {

using test::Bytes;
using test::Dump;

/// An entity whose setters count their calls.
struct Watched : CEgn {
    void SetNome(const std::string& nome) override {
        Count([&] { CEgn::SetNome(nome); });
    }
    void SetSecScri(const std::string& text) override {
        Count([&] { CEgn::SetSecScri(text); });
    }
    void DoSetCoord(double x, double y, double z) override {
        Count([&] { CEgn::DoSetCoord(x, y, z); });
    }
    void SetCodeEgn(unsigned long code) override {
        Count([&] { CEgn::SetCodeEgn(code); });
    }

    template <class Set>
    void Count(Set set) {
        ++calls;
        set();
    }
    int calls = 0;
};

std::string Record(const CEgn& egn) {
    ofpstream out(1400);
    egn.SalvaInFile(out);
    return std::string(out.GetBytes());
}

/// True when the record was there and nothing but the record was taken.
bool Read(CEgn& egn, const std::string& bytes) {
    ifpstream in(bytes.data(), bytes.size(), 1400);
    egn.LeggeDaFile(in);
    return in.IsOk() && in.GetRemaining() == 0;
}

void FillCommon(CEgn& egn) {
    egn.SetNome("P1");
    egn.SetSecScri("[VRS]");
    egn.SetCodeEgn(0x4E45);
    egn.SetVldtEgn(0x80000003u);
    egn.SetCoord(733000.125, 5001000.5, -1.5);
}

void FillRare(CEgn& egn) {
    egn.SetTerScri("third");
    egn.SetNote("a;b\r\n");
    egn.SetNomiFoto_Raw("1.jpg");
    egn.SetAttribDis("red");
    egn.SetIdentDescr(-7);
    egn.SetGisHandle(9);
}

Bytes Common() {
    return Bytes()
        .Text("P1")
        .Text("[VRS]")
        .U32(0x4E45)
        .U32(0x80000003u)
        .F64(733000.125)
        .F64(5001000.5)
        .F64(-1.5);
}

TEST(EgnRecord, NewEntityIsFortyOneBytes) {
    const CEgn egn;
    EXPECT_EQ(Dump(Record(egn)), Dump(Bytes()
                                          .Hex("00000000 00000000 00000000 00000000")
                                          .Hex("991377b76ec48169 991377b76ec48169 991377b76ec48169 00")
                                          .Get()));
}

TEST(EgnRecord, WithoutTheRarePartOneByteSaysSo) {
    CEgn egn;
    FillCommon(egn);
    EXPECT_EQ(Dump(Record(egn)), Dump(Common().U8(0).Get()));
}

TEST(EgnRecord, RarePartStandsBehindTheCommonOne) {
    CEgn egn;
    FillCommon(egn);
    FillRare(egn);
    EXPECT_EQ(
        Dump(Record(egn)),
        Dump(Common().U8(1).Text("third").Text("a;b\r\n").Text("1.jpg").Text("red").I32(-7).I32(9).Get()));
}

TEST(EgnRecord, OneRareValueBringsTheDefaultsOfTheOthers) {
    CEgn egn;
    egn.SetNote("n");
    const std::string bytes = Record(egn);
    EXPECT_EQ(Dump(bytes.substr(40)),
              Dump(Bytes().U8(1).Text("").Text("n").Text("******").Text("").I32(-1).I32(0).Get()));
}

TEST(EgnRecord, DescriptorAloneBringsTheDefaultsOfTheTexts) {
    CEgn egn;
    egn.SetIdentDescr(0);
    const std::string bytes = Record(egn);
    EXPECT_EQ(Dump(bytes.substr(40)),
              Dump(Bytes().U8(1).Text("").Text("").Text("******").Text("").I32(0).I32(0).Get()));
    CEgn read;
    FillRare(read);
    ASSERT_TRUE(Read(read, bytes));
    EXPECT_EQ(read.GetTerScri() + read.GetNote() + read.GetAttribDis(), "") << "texts of before are gone";
    EXPECT_EQ(read.GetNomiFoto_Raw(), "******");
    EXPECT_EQ(Dump(Record(read)), Dump(bytes));
}

TEST(EgnRecord, ComesBackWhole) {
    CEgn egn;
    FillCommon(egn);
    FillRare(egn);
    CEgn read;
    ASSERT_TRUE(Read(read, Record(egn)));
    EXPECT_EQ(read.GetNome(), "P1");
    EXPECT_EQ(read.GetSecScri(), "[VRS]");
    EXPECT_EQ(read.GetCodeEgn(), 0x4E45u);
    EXPECT_TRUE(read.IsCodedNE());
    EXPECT_EQ(read.GetVldtEgn(), 0x80000003u) << "the word as it was, not computed anew";
    EXPECT_EQ(read.GetCoordX(), 733000.125);
    EXPECT_EQ(read.GetCoordY(), 5001000.5);
    EXPECT_EQ(read.GetCoordZ(), -1.5);
    EXPECT_EQ(read.GetTerScri(), "third");
    EXPECT_EQ(read.GetNote(), "a;b\r\n");
    EXPECT_EQ(read.GetNomiFoto_Raw(), "1.jpg");
    EXPECT_EQ(read.GetAttribDis(), "red");
    EXPECT_EQ(read.GetIdentDescr(), -7);
    EXPECT_EQ(read.GetGisHandle(), 9);
    EXPECT_EQ(Dump(Record(read)), Dump(Record(egn)));
}

TEST(EgnRecord, RecordWithoutRarePartTakesItAway) {
    CEgn read;
    FillRare(read);
    ASSERT_TRUE(Read(read, Common().U8(0)));
    EXPECT_EQ(read.GetTerScri(), "");
    EXPECT_EQ(read.GetNote(), "");
    EXPECT_EQ(read.GetNomiFoto_Raw(), "******");
    EXPECT_EQ(read.GetAttribDis(), "");
    EXPECT_EQ(read.GetIdentDescr(), -1);
    EXPECT_EQ(read.GetGisHandle(), 0);
    EXPECT_EQ(Dump(Record(read)), Dump(Common().U8(0).Get()));
}

TEST(EgnRecord, AnyMarkButZeroMeansThatTheRarePartFollows) {
    CEgn read;
    ASSERT_TRUE(Read(read, Common().U8(255).Text("t").Text("").Text("").Text("").I32(1).I32(2)));
    EXPECT_EQ(read.GetTerScri(), "t");
    EXPECT_EQ(read.GetNomiFoto_Raw(), "");
    EXPECT_EQ(read.GetGisHandle(), 2);
}

TEST(EgnRecord, ReadingCallsNoSetter) {
    CEgn egn;
    FillCommon(egn);
    FillRare(egn);
    Watched read;
    ASSERT_TRUE(Read(read, Record(egn)));
    EXPECT_EQ(read.calls, 0);
    EXPECT_EQ(read.GetNome(), "P1");
}

TEST(EgnRecord, EveryCutIsAFailureAndTakesTheRest) {
    CEgn egn;
    FillCommon(egn);
    FillRare(egn);
    const std::string whole = Record(egn);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        ifpstream in(whole.data(), size, 1400);
        CEgn read;
        read.LeggeDaFile(in);
        EXPECT_FALSE(in.IsOk()) << size;
        EXPECT_EQ(in.GetRemaining(), 0) << size;
    }
}

TEST(EgnRecord, IsTheSameInEveryVersion) {
    CEgn egn;
    FillCommon(egn);
    for (const short version : {short{0}, short{741}, short{1003}, short{1400}}) {
        ofpstream out(version);
        egn.SalvaInFile(out);
        EXPECT_EQ(out.GetBytes(), Record(egn)) << version;
    }
}

}  // namespace
