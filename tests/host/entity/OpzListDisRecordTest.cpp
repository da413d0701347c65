// The records of a display list: their bytes, who takes what from them, and damage.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/entity/COpzListDisEgn.h"
#include "platform/entity/CSymbolUsedTracer.h"
#include "tests/Bytes.h"
#include "tests/Scale.h"

namespace {

using test::Bytes;
using test::Dump;

/// An entry whose ten values are first, first + 1 and so on.
COpzDisEgn* Entry(const char* name, short first) {
    auto* const entry = new COpzDisEgn("S");
    entry->SetNomeOpz(name);
    ofpstream out(1400);
    for (int i = 0; i < 10; ++i) out.WriteShort(static_cast<short>(first + i));
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), 1400);
    entry->LeggeValori(in);
    return entry;
}

/// The stored form of such an entry.
Bytes EntryBytes(const char* name, short first, const std::string& later = "") {
    Bytes inside;
    inside.Text(name);
    for (int i = 0; i < 10; ++i) inside.I16(first + i);
    return Bytes().Text(inside.Raw(later).Get());
}

Bytes Envelope(std::int32_t form, const Bytes& payload) { return Bytes().I32(form).Text(payload.Get()); }

/// First value of each normal entry, then of each common one.
std::string Firsts(COpzListDisEgn& list) {
    std::string text;
    for (int i = 0; i < list.GetNumOpzNor(); ++i)
        text += list.GetOpzNor(i).GetNomeOpz() + std::to_string(list.GetOpzNor(i).GetVisSimb()) + " ";
    text += "| ";
    for (int i = 0; i < list.GetNumOpzCom(); ++i)
        text += list.GetOpzCom(i).GetNomeOpz() + std::to_string(list.GetOpzCom(i).GetVisSimb()) + " ";
    return text;
}

/// Normal entries a, b and a common one c, all unlike what the tests store.
struct Target : COpzListDisEgn {
    Target() {
        AddOpzNor(Entry("a", 100));
        AddOpzNor(Entry("b", 200));
        AddOpzCom(Entry("c", 300));
        SetNomeOpzList("own");
        SetTipoOpzList(2);
    }
};

constexpr const char* kUntouched = "a100 b200 | c300 ";

enum class By { Position, Name };

/// Reads a record that stands before the number 4711; true when the stream was right behind it.
bool Read(COpzListDisEgn& list, const std::string& record, By by, bool load = true) {
    const std::string bytes = record + Bytes().I32(4711).Get();
    ifpstream in(bytes.data(), bytes.size(), 1400);
    if (by == By::Name)
        list.LeggeDaFileOpzExist(in, load, 1400);
    else
        list.LeggeDaFileDataList(in, load, 1400);
    return in.GetPosition() == static_cast<std::int64_t>(record.size()) && in.ReadInt() == 4711 && in.IsOk();
}

// --- bytes -------------------------------------------------------------------------------------------------

TEST(OpzListDisRecord, DataListHoldsNormalEntries) {
    const Target list;
    for (const short version : {short{0}, short{719}, short{720}, short{741}, short{1400}}) {
        ofpstream out(version);
        list.SalvaInFileDataList(out, version);
        EXPECT_EQ(Dump(out.GetBytes()), Dump(Bytes()
                                                 .I32(1)   // form
                                                 .I32(62)  // length
                                                 .I32(2)   // normal entries
                                                 .I32(25)
                                                 .Text("a")
                                                 .Hex("6400 6500 6600 6700 6800 6900 6a00 6b00 6c00 6d00")
                                                 .I32(25)
                                                 .Text("b")
                                                 .Hex("c800 c900 ca00 cb00 cc00 cd00 ce00 cf00 d000 d100")
                                                 .Get()));
    }
}

TEST(OpzListDisRecord, FullFormHoldsEverything) {
    Target list;
    list.SetVisList(-2);
    for (const short version : {short{742}, short{743}, short{1400}}) {
        ofpstream out(version);
        list.SalvaInFile(out, version, nullptr);
        EXPECT_EQ(Dump(out.GetBytes()), Dump(Bytes()
                                                 .I32(2)       // form
                                                 .I32(108)     // length
                                                 .Text("own")  // 7
                                                 .I32(2)       // type
                                                 .I16(-2)      // VisList
                                                 .I32(2)       // normal entries
                                                 .Raw(EntryBytes("a", 100))
                                                 .Raw(EntryBytes("b", 200))
                                                 .I32(1)  // common entries
                                                 .Raw(EntryBytes("c", 300))
                                                 .Get()));
    }
}

TEST(OpzListDisRecord, EmptyListHasEmptyRecords) {
    const COpzListDisEgn list;
    ofpstream data(1400), full(1400);
    list.SalvaInFileDataList(data, 1400);
    list.SalvaInFile(full, 1400, nullptr);
    EXPECT_EQ(Dump(data.GetBytes()), Dump(Bytes().I32(1).I32(4).I32(0).Get()));
    EXPECT_EQ(Dump(full.GetBytes()), Dump(Bytes().I32(2).I32(18).Text("").I32(0).I16(1).I32(0).I32(0).Get()));
}

struct Tracer : CSymbolUsedTracer {
    void SymbolUsed(short tipoSimb) override { used.push_back(tipoSimb); }
    std::vector<short> used;
};

TEST(OpzListDisRecord, TracerIsToldEverySymbol) {
    const Target list;
    Tracer tracer;
    ofpstream out(1400), other(1400);
    list.SalvaInFile(out, 1400, &tracer);
    EXPECT_EQ(tracer.used, (std::vector<short>{105, 205, 305}));
    CSymbolUsedTracer silent;
    list.SalvaInFile(other, 1400, &silent);
    EXPECT_EQ(Dump(out.GetBytes()), Dump(other.GetBytes()));
}

// --- who takes what ----------------------------------------------------------------------------------------

const Bytes kSwapped = Bytes().I32(3).Raw(EntryBytes("b", 1)).Raw(EntryBytes("a", 2)).Raw(EntryBytes("x", 3));
const Bytes kFull =
    Bytes().Text("other").I32(9).I16(5).Raw(kSwapped).I32(2).Raw(EntryBytes("x", 4)).Raw(EntryBytes("c", 5));

TEST(OpzListDisRecord, ByPositionNamesMeanNothing) {
    Target list;
    EXPECT_TRUE(Read(list, Envelope(1, kSwapped), By::Position));
    EXPECT_EQ(Firsts(list), "a1 b2 | c300 ");
    EXPECT_EQ(list.GetVisList(), 1);
}

TEST(OpzListDisRecord, ByNameOnlyWhatExistsIsSet) {
    Target list;
    EXPECT_TRUE(Read(list, Envelope(1, kSwapped), By::Name));
    EXPECT_EQ(Firsts(list), "a2 b1 | c300 ");
    EXPECT_EQ(list.GetVisList(), 1);
}

TEST(OpzListDisRecord, EitherReaderTakesTheFullForm) {
    Target byName, byPosition;
    EXPECT_TRUE(Read(byName, Envelope(2, kFull), By::Name));
    EXPECT_EQ(Firsts(byName), "a2 b1 | c5 ");
    EXPECT_TRUE(Read(byPosition, Envelope(2, kFull), By::Position));
    EXPECT_EQ(Firsts(byPosition), "a1 b2 | c4 ");
    for (const COpzListDisEgn* list :
         {static_cast<COpzListDisEgn*>(&byName), static_cast<COpzListDisEgn*>(&byPosition)}) {
        EXPECT_EQ(list->GetVisList(), 5);
        EXPECT_EQ(list->GetNomeOpzList(), "own") << "name and type are the list's";
        EXPECT_EQ(list->GetTipoOpzList(), 2);
    }
}

TEST(OpzListDisRecord, EveryValueComesBack) {
    Target list;
    ASSERT_TRUE(Read(list, Envelope(1, Bytes().I32(1).Raw(EntryBytes("a", -5))), By::Name));
    ofpstream out(1400);
    list.GetOpzNor(0).SalvaValori(out);
    EXPECT_EQ(Dump(out.GetBytes()),
              Dump(Bytes().Hex("fbff fcff fdff feff ffff 0000 0100 0200 0300 0400").Get()));
}

TEST(OpzListDisRecord, EntriesOfOneNameKeepTheirOrder) {
    COpzListDisEgn list;
    list.AddOpzNor(Entry("a", 100));
    list.AddOpzNor(Entry("a", 200));
    ASSERT_TRUE(Read(
        list,
        Envelope(1, Bytes().I32(3).Raw(EntryBytes("a", 1)).Raw(EntryBytes("a", 2)).Raw(EntryBytes("a", 3))),
        By::Name));
    EXPECT_EQ(Firsts(list), "a1 a2 | ");
}

TEST(OpzListDisRecord, FewerStoredEntriesLeaveTheOthers) {
    Target list;
    ASSERT_TRUE(Read(list, Envelope(1, Bytes().I32(1).Raw(EntryBytes("b", 7))), By::Position));
    EXPECT_EQ(Firsts(list), "a7 b200 | c300 ");
}

TEST(OpzListDisRecord, WithoutLoadNothingChanges) {
    for (const By by : {By::Position, By::Name}) {
        for (const Bytes& record : {Envelope(1, kSwapped), Envelope(2, kFull)}) {
            Target list;
            EXPECT_TRUE(Read(list, record, by, false));
            EXPECT_EQ(Firsts(list), kUntouched);
            EXPECT_EQ(list.GetVisList(), 1);
        }
    }
}

TEST(OpzListDisRecord, SavedAndReadItIsTheSame) {
    Target list;
    ofpstream out(1400);
    list.SalvaInFile(out, 1400, nullptr);
    Target other;
    for (int i = 0; i < 2; ++i) other.GetOpzNor(i).RisettaOpz();
    other.GetOpzCom(0).RisettaOpz();
    EXPECT_TRUE(Read(other, std::string(out.GetBytes()), By::Name));
    EXPECT_EQ(Firsts(other), kUntouched);
}

// --- later forms -------------------------------------------------------------------------------------------

TEST(OpzListDisRecord, LaterFieldsArePassedOver) {
    const Bytes payload = Bytes()
                              .Text("other")
                              .I32(9)
                              .I16(5)
                              .I32(2)
                              .Raw(EntryBytes("a", 1, "later"))
                              .Raw(EntryBytes("b", 2, "later values"))
                              .I32(0)
                              .Raw("fields of the list");
    Target list;
    EXPECT_TRUE(Read(list, Envelope(2, payload), By::Name));
    EXPECT_EQ(Firsts(list), "a1 b2 | c300 ");
}

TEST(OpzListDisRecord, UnknownFormIsPassedOver) {
    for (const std::int32_t form : {3, 0, -1, std::numeric_limits<std::int32_t>::max()}) {
        Target list;
        EXPECT_TRUE(Read(list, Envelope(form, kFull), By::Name)) << form;
        EXPECT_EQ(Firsts(list), kUntouched);
    }
}

// --- damage ------------------------------------------------------------------------------------------------

TEST(OpzListDisRecord, EveryPrefixSetsWholeEntriesOnly) {
    const std::string record = Envelope(2, kFull);
    // Where the entries of the list end in the record: 8 + 9 + 4 + 2 + 4, then 29 each; common ones behind.
    const std::size_t b = 27 + 29, a = b + 29, x = a + 29, common = x + 4 + 29, c = common + 29;
    ASSERT_EQ(record.size(), c);
    for (std::size_t size = 0; size < record.size(); ++size) {
        Target list;
        ifpstream in(record.data(), size, 1400);
        list.LeggeDaFileOpzExist(in, true, 1400);
        EXPECT_FALSE(in.IsOk()) << size;
        EXPECT_EQ(in.GetRemaining(), 0) << size;
        EXPECT_EQ(Firsts(list),
                  std::string(size >= a ? "a2 " : "a100 ") + (size >= b ? "b1 " : "b200 ") + "| c300 ")
            << size;
        EXPECT_EQ(list.GetVisList(), size >= 23 ? 5 : 1) << size;
    }
}

TEST(OpzListDisRecord, ShortEntryStaysAsItIs) {
    Target list;
    const Bytes payload = Bytes().I32(2).Text(Bytes().Text("a").I16(7).Get()).Raw(EntryBytes("b", 1));
    EXPECT_TRUE(Read(list, Envelope(1, payload), By::Name));
    EXPECT_EQ(Firsts(list), "a100 b1 | c300 ");
}

TEST(OpzListDisRecord, CountBeyondTheContentEndsWithIt) {
    const std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const Bytes record = Envelope(1, Bytes().I32(most).Raw(EntryBytes("b", 1)));
    ifpstream in(record.Get().data(), record.Size(), 1400);
    in.SetPastEndLimit(4096);
    Target list;
    list.LeggeDaFileOpzExist(in, true, 1400);
    EXPECT_EQ(Firsts(list), "a100 b1 | c300 ");
    EXPECT_FALSE(in.IsOk());
}

TEST(OpzListDisRecord, NegativeCountsAndLengthsAreNone) {
    Target list;
    EXPECT_TRUE(Read(list, Envelope(1, Bytes().I32(-1).Raw(EntryBytes("b", 1))), By::Name));
    EXPECT_TRUE(Read(list, Bytes().I32(1).I32(-5), By::Name, false));
    EXPECT_EQ(Firsts(list), kUntouched);
}

TEST(OpzListDisRecord, LengthBeyondTheStreamIsCapped) {
    const Bytes record =
        Bytes().I32(1).I32(std::numeric_limits<std::int32_t>::max()).I32(1).Raw(EntryBytes("b", 1));
    ifpstream in(record.Get().data(), record.Size(), 1400);
    Target list;
    list.LeggeDaFileOpzExist(in, true, 1400);
    EXPECT_EQ(Firsts(list), "a100 b1 | c300 ");
    EXPECT_EQ(in.GetRemaining(), 0);
    EXPECT_FALSE(in.IsOk());
}

TEST(OpzListDisRecord, NoDamageLeavesTheListBroken) {
    const std::string record = Envelope(2, kFull);
    std::mt19937 random(7);
    for (std::size_t bit = 0; bit < record.size() * 8; ++bit) {
        std::string damaged = record;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
        Target list;
        ifpstream in(damaged.data(), damaged.size(), 1400);
        list.LeggeDaFileOpzExist(in, true, 1400);
        EXPECT_EQ(list.GetNumOpzNor(), 2);
        EXPECT_EQ(list.GetNumOpzCom(), 1);
        EXPECT_LE(in.GetPosition(), static_cast<std::int64_t>(damaged.size()));
    }
    for (long n = 0; n < Scaled(20000); ++n) {
        std::string noise(random() % 80, '\0');
        for (char& byte : noise) byte = static_cast<char>(random() % 4 == 0 ? random() : random() % 3);
        Target list;
        ifpstream in(noise.data(), noise.size(), 1400);
        list.LeggeDaFileDataList(in, true, 1400);
        ASSERT_EQ(list.GetNumOpzNor(), 2);
    }
}

}  // namespace
