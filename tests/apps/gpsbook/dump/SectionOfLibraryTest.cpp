// Sections that the library wrote, taken apart by the documented layout alone.
#include <gtest/gtest.h>

#include <random>

#include "gps/options/COpzPostProc.h"
#include "platform/base/ofpstream.h"
#include "tests/apps/gpsbook/book/SmallBook.h"
#include "tests/apps/gpsbook/dump/MemorySource.h"

namespace gpsbook::test {
namespace {

std::string RandomText(std::mt19937& random) {
    std::string text;
    for (auto n = random() % 20; n > 0; --n) text += static_cast<char>('a' + random() % 26);
    return text;
}

/// Random values in many fields, so that no two fields that change places look alike.
void Fill(SmallBook& book, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> real(-1e6, 1e6);
    for (auto g = random() % 4; g > 0; --g) {
        CGrpGps& group = book.Group(RandomText(random));
        group.SetLabels(RandomText(random), RandomText(random), RandomText(random), RandomText(random));
        if (random() % 2 != 0) SetUtm33(group);
        if (random() % 2 != 0) group.SetNote(RandomText(random));
        group.SetBaseElev(real(random));
        group.SetTipoRilievo(static_cast<unsigned char>(random()));
        for (auto p = random() % 5; p > 0; --p) {
            CPunGps& point = *book.lib.AddPun(book.lib.GetGrpArSize() - 1, false);
            point.SetNome(RandomText(random));
            point.SetCode(RandomText(random));
            SetFix(point, real(random), real(random), real(random), real(random));
            point.SetPdop(real(random));
            point.SetHposRms(real(random));
            point.SetPosCov_xz(static_cast<float>(real(random)));
            point.SetGrafBase(real(random), real(random), real(random));
            if (random() % 2 != 0) point.SetNote(RandomText(random));
        }
    }
    if (random() % 2 == 0) return;
    for (auto n = random() % 3; n > 0; --n)
        book.lib.GetOpzPostProc()->AddDataPtBaseLineDett(RandomText(random));
    for (auto n = random() % 3; n > 0; --n)
        book.lib.GetOpzPostProc()->AddDataPtBaseLineBase(RandomText(random));
}

std::string SectionOf(SmallBook& book, short version) {
    ofpstream out(version);
    book.lib.SalvaInFile(out, version, "", nullptr, nullptr);
    return std::string(out.GetBytes());
}

double Real(const Decoded& decoded, const std::string& record, const std::string& field) {
    const KeptField* found = decoded.sink.Find(record, field);
    if (!found) {
        ADD_FAILURE() << record << ": no " << field;
        return 0;
    }
    return std::get<double>(found->value);
}

std::string Text(const Decoded& decoded, const std::string& record, const std::string& field) {
    const KeptField* found = decoded.sink.Find(record, field);
    if (!found) {
        ADD_FAILURE() << record << ": no " << field;
        return {};
    }
    return std::get<std::string>(found->value);
}

TEST(SectionOfLibrary, EveryVersionEndsWithItsLastByteByTheDocumentedLayout) {
    for (short version = 743; version <= 1400; ++version) {
        SmallBook book;
        Fill(book, static_cast<unsigned>(version));
        const Decoded decoded = Decode(SectionOf(book, version), version);
        ASSERT_TRUE(decoded.whole) << version << ": byte " << decoded.damage.offset << ": "
                                   << decoded.damage.what;
        ASSERT_EQ(decoded.groups, book.lib.GetGrpArSize()) << version;
        for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
            const CGrpGps& group = *book.lib.GetGrpAt(g);
            const std::string record = "group " + std::to_string(g);
            EXPECT_EQ(Text(decoded, record, "name of the group"), group.GetNomeGrp()) << version;
            EXPECT_EQ(Text(decoded, record, "place"), group.GetLocalita()) << version;
            EXPECT_EQ(Real(decoded, record, "base height"), group.GetBaseElev()) << version;
            for (int p = 0; p < book.lib.GetPunArSize(g); ++p) {
                const CPunGps& point = *book.lib.GetPunAt(g, p);
                const std::string its = record + ", point " + std::to_string(p);
                EXPECT_EQ(Text(decoded, its, "entity.name"), point.GetNome()) << version;
                EXPECT_EQ(Text(decoded, its, "entity.secondary text"), point.GetCode()) << version;
                EXPECT_EQ(Real(decoded, its, "latitude"), point.GetLat()) << version;
                EXPECT_EQ(Real(decoded, its, "antenna"), point.GetAltAnt()) << version;
                EXPECT_EQ(Real(decoded, its, "horizontal RMS"), point.GetHposRms()) << version;
                EXPECT_EQ(Real(decoded, its, "covariance xz"), static_cast<double>(point.GetPosCov_xz()))
                    << version;
                EXPECT_EQ(Real(decoded, its, "PDOP"), point.GetPdop()) << version;
            }
        }
    }
}

TEST(SectionOfLibrary, SectionOfAnotherLayoutDoesNotFit) {
    SmallBook book;
    book.Group("Quay", {"P1", "P2"});
    book.lib.GetOpzPostProc()->AddDataPtBaseLineDett("/a.tps");
    const std::string section = SectionOf(book, 1400);
    for (const short version :
         {short{1310}, short{1105}, short{1003}, short{1002}, short{1001}, short{880}, short{749}})
        EXPECT_FALSE(Decode(section, version).whole) << version;
    EXPECT_TRUE(Decode(section, 1311).whole) << "the same layout";
}

}  // namespace
}  // namespace gpsbook::test
