// The page about the records, docs/formats/records.md, against the bytes: what it says is decoded by it alone
// and compared with the objects that were written.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "gps/options/COpzPostProc.h"
#include "tests/gps/persist/BookParts.h"
#include "tests/gps/persist/FormatPage.h"
#include "tests/gps/persist/GoldenRecords.h"

namespace {

using test::DecodedRow;
using test::LooseBook;
using test::PageDecoder;
using test::PageTables;
using test::Text;
using Values = std::vector<std::string>;

/// Place and number of a row to what should stand there.
using Expected = std::map<std::pair<std::string, std::string>, Values>;

const PageTables& Page() {
    static const PageTables tables = test::ReadPage(GPS_SOURCE_DIR "/docs/formats/records.md");
    return tables;
}

// --- what the objects hold ---------------------------------------------------------------------------------

std::string Num(long long value) { return std::to_string(value); }

void ExpectEntity(Expected& e, const std::string& place, CEgn& egn) {
    const std::string at = place + "/entity";
    e[{at, "1"}] = {egn.GetNome()};
    e[{at, "2"}] = {egn.GetSecScri()};
    e[{at, "3"}] = {Num(static_cast<long long>(egn.GetCodeEgn()))};
    e[{at, "4"}] = {Num(egn.GetVldtEgn())};
    e[{at, "5"}] = {Text(egn.GetCoordX()), Text(egn.GetCoordY()), Text(egn.GetCoordZ())};
    const bool more = !egn.GetNote().empty();
    e[{at, "6"}] = {more ? "1" : "0"};
    if (!more) return;
    e[{at, "7"}] = {egn.GetTerScri()};
    e[{at, "8"}] = {egn.GetNote()};
    e[{at, "9"}] = {egn.GetNomiFoto_Raw()};
    e[{at, "10"}] = {egn.GetAttribDis()};
    e[{at, "11"}] = {Num(egn.GetIdentDescr())};
    e[{at, "12"}] = {Num(egn.GetGisHandle())};
}

void ExpectCloud(Expected& e, const std::string& place, const CCloudItem& item) {
    const std::string at = place + "/cloud";
    e[{at, "1"}] = {Num(item.GetCloudId())};
    e[{at, "2"}] = {Num(item.GetCloudFlag())};
    e[{at, "3"}] = {Num(item.GetCloudFlag())};  // no commit was begun
    e[{at, "4"}] = {Num(item.GetTicket())};
}

void ExpectDatum(Expected& e, const std::string& at, const CDatumConv& datum) {
    bool fromStd;
    double c[7], lat, lon;
    datum.GetCoeff(fromStd, c[0], c[1], c[2], c[3], c[4], c[5], c[6]);
    datum.GetGrafOrigine(lat, lon);
    e[{at, "1"}] = {datum.GetNome()};
    e[{at, "2"}] = {fromStd ? "1" : "0"};
    for (const double value : c) e[{at, "3"}].push_back(Text(value));
    e[{at, "4"}] = {Text(lat), Text(lon)};
}

void ExpectProjection(Expected& e, const std::string& at, const CProiezPla& projection) {
    e[{at, "1"}] = {Num(projection.GetType())};
    for (const double value : projection.GetValues()) e[{at, "2"}].push_back(Text(value));
    e[{at, "3"}] = {projection.IsDefinizioneText() ? projection.GetDefinizione() : ""};
}

void ExpectConversion(Expected& e, const std::string& place, CConvCoord& conv) {
    const std::string at = place + "/conversion";
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) e[{at, "1"}].push_back(Num(conv.GetImp(k)));
    e[{at, "2"}] = {conv.GetImpFlag() ? "1" : "0"};
    e[{at, "3"}] = {Text(conv.GetImpReal(1)), Text(conv.GetImpReal(2))};
    e[{at, "4"}] = {Num(conv.GetTpDtBaseGps())};
    e[{at, "5"}] = {};
    ExpectDatum(e, at + "/5", *conv.GetConvDtBaseGps());
    e[{at, "6"}] = {};
    ExpectProjection(e, at + "/6", conv.GetConvLocal()->GetProiezPla());
    double o1, o2, o3, o4, c1, c2, c3;
    conv.GetConvLocal()->GetOrigin(o1, o2, o3, o4);
    e[{at, "7"}] = {Text(o1),
                    Text(o2),
                    Text(o3),
                    Text(o4),
                    Text(conv.GetConvLocal()->GetScala()),
                    Text(conv.GetConvLocal()->GetAngRot())};
    e[{at, "8"}] = {Num(conv.GetConvAltez()->GetTpCalcPt())};
    conv.GetConvAltez()->GetCoeff(c1, c2, c3);
    e[{at, "9"}] = {Text(c1), Text(c2), Text(c3)};
    e[{at, "10"}] = {};
    ExpectProjection(e, at + "/10", conv.GetConvAltez()->GetProiezPla());
    const CDatumConv* selected =
        conv.GetImpFlag() ? conv.GetLibMap()->GetDatAt(conv.GetImp(3), conv.GetImp(4), conv.GetImp(5))
                          : nullptr;
    e[{at, "11"}] = {selected ? "1" : "0"};
    if (!selected) return;
    e[{at, "12"}] = {};
    ExpectDatum(e, at + "/12", *selected);
}

void ExpectPoint(Expected& e, const std::string& at, CPunGps& point, short version) {
    double x, y, z;
    e[{at, "1"}] = {};
    ExpectEntity(e, at, point);
    point.GetGeocCeFaMis(x, y, z);
    if (version < 1003) e[{at, "2"}] = {Text(x), Text(y), Text(z)};
    e[{at, "3"}] = {Text(point.GetLat()), Text(point.GetLong()), Text(point.GetElev()),
                    Text(point.GetAltAnt())};
    e[{at, "4"}] = {Num(point.GetQua())};
    e[{at, "5"}] = {point.IsPrimaryPtDup() ? "1" : "0"};
    e[{at, "6"}] = {point.IsSecondaryPtDup() && version >= 903 ? "1" : "0"};
    if (version >= 742) {
        e[{at, "7"}] = {Num(point.GetYear())};
        e[{at, "8"}] = {Num(point.GetMonth())};
        e[{at, "9"}] = {Num(point.GetDay())};
        e[{at, "10"}] = {Num(point.GetTod())};
        e[{at, "11"}] = version == 742 ? Values{Text(static_cast<float>(point.GetHposRms())),
                                                Text(static_cast<float>(point.GetVposRms()))}
                                       : Values{Text(point.GetHposRms()), Text(point.GetVposRms())};
        e[{at, "12"}] = {Num(point.GetNuGpsUsed()), Num(point.GetNuGloUsed())};
        e[{at, "13"}] = {Text(point.GetPosCov_xx()), Text(point.GetPosCov_yy()), Text(point.GetPosCov_zz()),
                         Text(point.GetPosCov_tt()), Text(point.GetPosCov_xy()), Text(point.GetPosCov_xz()),
                         Text(point.GetPosCov_xt()), Text(point.GetPosCov_yz()), Text(point.GetPosCov_yt()),
                         Text(point.GetPosCov_zt())};
    }
    if (version >= 743) e[{at, "14"}] = {Text(point.GetPdop()), Text(point.GetGdop())};
    point.GetGrafBase(x, y, z);
    if (version >= 881) e[{at, "15"}] = {Text(x), Text(y), Text(z)};
    if (version >= 1106) e[{at, "16"}] = {Num(point.GetPunRis32())};
    e[{at, "17"}] = {};
    ExpectCloud(e, at, point);
}

void ExpectGroup(Expected& e, const std::string& at, CGrpGps& group, short version) {
    e[{at, "1"}] = {group.GetNomeGrp()};
    e[{at, "2"}] = {group.GetOper()};
    e[{at, "3"}] = {group.GetStrum()};
    e[{at, "4"}] = {group.GetData()};
    if (version >= 1004) e[{at, "5"}] = {Num(group.GetTargetDrawing())};
    if (version >= 742) {
        e[{at, "6"}] = {};
        ExpectEntity(e, at, group);
        e[{at, "7"}] = {group.GetLocalita()};
        e[{at, "8"}] = {Text(group.GetBaseSpare1()), Text(group.GetBaseSpare2()),
                        Text(group.GetBaseSpare3())};
        e[{at, "9"}] = {Text(group.GetBaseLat()), Text(group.GetBaseLong()), Text(group.GetBaseElev()),
                        Text(group.GetBaseAltAnt())};
    }
    if (version >= 750) {
        e[{at, "10"}] = {Text(group.GetGrpFactorA()), Text(group.GetGrpFactorB())};
        e[{at, "11"}] = {Num(group.GetTipoRilievo())};
        e[{at, "12"}] = {Num(group.GetTipoRicevitore())};
    }
    e[{at, "13"}] = {Num(group.GetCodeElab())};
    e[{at, "14"}] = {group.GetGrpFlagRis() ? "1" : "0"};
    e[{at, "15"}] = {};
    ExpectConversion(e, at, *group.GetConvCoord());
    if (version >= 1106) e[{at, "16"}] = {Num(group.GetGrpRis32())};
    if (version >= 1311) e[{at, "17"}] = {Num(group.GetCloudCreatorDevId())};
    e[{at, "18"}] = {};
    ExpectCloud(e, at, group);
}

void ExpectBook(Expected& e, LooseBook& book, short version) {
    const std::string at = "book";
    if (version < 1004) {
        e[{at, "1"}] = {};
        e[{at + "/map", "1"}] = {Num(book.map.GetTpDtBaseGps())};
        e[{at + "/map", "2"}] = {};
        ExpectDatum(e, at + "/map/2", *book.map.GetConvDtBaseGps());
        e[{at + "/map", "3"}] = {"2"};
        e[{at + "/map/list 0", ""}] = {"0", "0"};
        ExpectDatum(e, at + "/map/list 0/datum 0", *book.map.GetDatAt(0, 0, 0));
        e[{at + "/map/list 1", ""}] = {"2", "3"};
        ExpectDatum(e, at + "/map/list 1/datum 0", *book.map.GetDatAt(2, 3, 0));
        ExpectDatum(e, at + "/map/list 1/datum 1", *book.map.GetDatAt(2, 3, 1));
    } else {
        e[{at, "1"}] = {Num(book.lib.GetTargetDrawing())};
    }
    e[{at, "2"}] = {};
    e[{at, "3"}] = {};
    e[{at, "4"}] = {Num(book.lib.GetGrpArSize())};
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        const std::string group = at + "/group " + Num(g);
        ExpectGroup(e, group, *book.lib.GetGrpAt(g), version);
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
            ExpectPoint(e, group + "/point " + Num(p), *book.lib.GetPunAt(g, p), version);
    }
    if (version < 1002) return;
    e[{at, "6"}] = {book.lib.HasOpzPostProc() ? "1" : "0"};
    if (book.lib.HasOpzPostProc()) e[{at, "7"}] = {};
}

// --- what the page says ------------------------------------------------------------------------------------

/// Rows decoded and rows expected are the same, each with the same values.
void Compare(const std::vector<DecodedRow>& rows, Expected expected) {
    for (const DecodedRow& row : rows) {
        const auto found = expected.find({row.place, row.number});
        ASSERT_NE(found, expected.end()) << row.place << ", row " << row.number << ": nothing is there";
        ASSERT_EQ(row.values, found->second)
            << row.place << ", row " << row.number << " (" << row.type << ")";
        expected.erase(found);
    }
    for (const auto& [key, values] : expected)
        ADD_FAILURE() << key.first << ", row " << key.second << ": the page does not know it";
}

/// Records that another page describes end where their own reader stops.
std::size_t SizeOfOptions(const std::string& type, std::string_view bytes, short version) {
    ifpstream in(bytes.data(), bytes.size(), version);
    if (type == "field-book options")
        COpzLibGps().LeggeDaFile(in, false, version);
    else if (type == "display options")
        COpzListDisGps(nullptr).LeggeDaFile(in, false, version);
    else if (type == "post-processing options")
        COpzPostProc().LeggeDaFile(in);
    else
        ADD_FAILURE() << "the page names a record that nobody knows: " << type;
    EXPECT_TRUE(in.IsOk()) << type;
    return static_cast<std::size_t>(in.GetPosition());
}

/// A filled group with two points, an empty one, and datums.
struct Golden : LooseBook {
    Golden() : LooseBook(0x1122334455667788) {
        CDatumConv* datum = map.AddDat(2, 3);
        datum->SetNome("Roma 40");
        datum->SetCoeffFromStd(-104.1, -49.1, -9.9, 0.971, -2.917, 0.714, -11.68);
        datum->SetGrafOrigine(42.5, 12.5);
        map.AddDat(2, 3)->SetCoeffToStd(1, 2, 3, 4, 5, 6, 7);
        map.SetTpDtBaseGps(1);
        map.GetConvDtBaseGps()->SetNome("measured");
        test::FillGoldenGroup(*lib.AddGrp(false));
        test::FillGoldenPoint(*lib.AddPun(0, false));
        lib.AddPun(0, false);
        lib.AddGrp(false);
        CConvCoord& conv = *lib.GetGrpAt(0)->GetConvCoord();
        const int settings[] = {1, 2, 2, 3, 0, 6, 7, 8, 9, 10};
        for (int k = 1; k <= CConvCoord::IMP_MAX; ++k) conv.SetImp(k, settings[k - 1]);
        conv.SetImpFlag(true);
        conv.SetImpReal(1, 6378200.5);
        conv.SetImpReal(2, 298.5);
        conv.SetTpDtBaseGps(CConvCoord::dtProprio);
        conv.GetConvDtBaseGps()->SetCoeffToStd(7, 6, 5, 4, 3, 2, 1);
        conv.GetConvLocal()->SetRotoTras(1, 2, 3, 4, 5, 6);
        std::string why;
        EXPECT_TRUE(conv.GetConvLocal()->SetDefinizione("+proj=merc +ellps=GRS80 +type=crs", why)) << why;
        conv.GetConvAltez()->SetTpCalcPt(CConvAltez::tpPiano);
        conv.GetConvAltez()->SetCoeff(1.5, 2.5, 3.5);
        conv.GetConvAltez()->SetTpProiezPlaEx(TpProiezPla::lambert2SP, 1, 2, 3, 4, 5);
        lib.GetOpzPostProc()->AddDataPtBaseLineDett("rover");
    }
};

void ComparePageWithBook(LooseBook& book, short version) {
    const std::string section = test::Section(book.lib, version);
    PageDecoder decoder(Page(), section, version, [version](const std::string& type, std::string_view bytes) {
        return SizeOfOptions(type, bytes, version);
    });
    decoder.Record("Field-book record", "book");
    EXPECT_EQ(decoder.Position(), section.size()) << "the page ends where the section ends";
    Expected expected;
    ExpectBook(expected, book, version);
    Compare(decoder.Rows(), expected);
}

TEST(RecordsPage, DecodesABookAtEveryVersion) {
    for (const short version : test::VersionsAroundThresholds()) {
        if (version == 742) continue;  // the page describes what is read, which is not what is written then
        Golden book;
        ComparePageWithBook(book, version);
        if (HasFailure()) FAIL() << "version " << version;
    }
}

TEST(RecordsPage, DecodesAnEmptyBook) {
    for (const short version : {short{741}, short{1001}, short{1002}, short{1400}}) {
        LooseBook book;
        book.map.AddDat(2, 3);
        book.map.AddDat(2, 3);
        ComparePageWithBook(book, version);
        if (HasFailure()) FAIL() << "version " << version;
    }
}

TEST(RecordsPage, DecodesAPointOf742AsItIsRead) {
    CPunGps point(nullptr, false, nullptr);
    test::FillGoldenPoint(point);
    const std::string record = Join(test::PointRows(point, test::Rms742::asRead), 742);
    PageDecoder decoder(Page(), record, 742);
    decoder.Record("Point record", "point");
    EXPECT_EQ(decoder.Position(), record.size());
    Expected expected;
    ExpectPoint(expected, "point", point, 742);
    Compare(decoder.Rows(), expected);
}

TEST(RecordsPage, NamesEveryVersionAtWhichARecordChanges) {
    const std::string page = [] {
        std::string text;
        for (const auto& [name, rows] : Page())
            for (const test::PageRow& row : rows)
                text += " " + std::to_string(row.from) + " " + std::to_string(row.below) + " ";
        return text;
    }();
    for (const int version : {742, 743, 750, 881, 1002, 1003, 1004, 1106, 1311})
        EXPECT_NE(page.find(" " + std::to_string(version) + " "), std::string::npos) << version;
}

}  // namespace
