#include "tests/gps/persist/GoldenRecords.h"

#include <charconv>
#include <cstdlib>

#include "platform/base/ofpstream.h"

namespace test {

namespace {

// Settings of whoever runs the tests play no part in them.
const int kNoSettings = ::setenv("GPS_SURVEY_SETTINGS", "/dev/null/none", 1);

class Lines {
public:
    Lines& Add(const char* name, const std::string& value) {
        text_ += std::string(name) + "=" + value + "\n";
        return *this;
    }
    Lines& Add(const char* name, double value) { return Add(name, Text(value)); }
    Lines& Add(const char* name, float value) { return Add(name, Text(value)); }
    Lines& Add(const char* name, long long value) { return Add(name, std::to_string(value)); }
    Lines& Add(const char* name, unsigned long value) { return Add(name, std::to_string(value)); }
    Lines& Add(const char* name, int value) { return Add(name, std::to_string(value)); }
    Lines& Add(const char* name, unsigned value) { return Add(name, std::to_string(value)); }

    template <class T>
    Lines& Entity(T& egn) {
        Add("nome", egn.GetNome()).Add("secScri", egn.GetSecScri()).Add("code", egn.GetCodeEgn());
        Add("x", egn.GetCoordX()).Add("y", egn.GetCoordY()).Add("z", egn.GetCoordZ());
        Add("validita", egn.GetVldtEgn()).Add("terScri", egn.GetTerScri()).Add("note", egn.GetNote());
        Add("foto", egn.GetNomiFoto_Raw()).Add("attrib", egn.GetAttribDis());
        Add("descr", egn.GetIdentDescr()).Add("gis", egn.GetGisHandle());
        return Add("cloudId", egn.GetCloudId()).Add("cloudFlag", egn.GetCloudFlag());
    }
    const std::string& Get() const { return text_; }

private:
    std::string text_;
};

template <class T>
std::string ShortestText(T value) {
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

Bytes GoldenPointEntity() {
    return Bytes()
        .Text("P1")
        .Text("MURO")
        .U32(0x12345678)
        .U32(3)
        .F64(733000.125)
        .F64(5001000.5)
        .F64(80.25)
        .U8(1)
        .Text("third")
        .Text("a note")
        .Text("1.jpg")
        .Text("red")
        .I32(5)
        .I32(-6);
}

Bytes GoldenGroupEntity() {
    return Bytes().Text("B1").Text("[WGS84-EUREF]").U32(7).U32(0).F64(1.5).F64(2.5).F64(3.5).U8(0);
}

}  // namespace

std::string Text(double value) { return ShortestText(value); }
std::string Text(float value) { return ShortestText(value); }

std::string Join(const std::vector<LayoutRow>& rows, short version) {
    std::string bytes;
    for (const LayoutRow& row : rows)
        if (version >= row.from && (row.below == 0 || version < row.below)) bytes += row.bytes;
    return bytes;
}

const std::vector<short>& VersionsAroundThresholds() {
    static const std::vector<short> versions = {0,    719,  720,  721,  741,  742,  743,  744,  749,
                                                750,  751,  880,  881,  882,  902,  903,  904,  1001,
                                                1002, 1003, 1004, 1005, 1105, 1106, 1107, 1299, 1300,
                                                1301, 1310, 1311, 1312, 1399, 1400, 1401, 32767};
    return versions;
}

void FillGoldenPoint(CPunGps& point) {
    point.SetCloudNotify(false);
    point.SetNome("P1");
    point.SetSecScri("MURO");
    point.SetCodeEgn(0x12345678);
    point.SetCoord(733000.125, 5001000.5, 80.25);
    point.SetVldtEgn(3);
    point.SetTerScri("third");
    point.SetNote("a note");
    point.SetNomiFoto_Raw("1.jpg");
    point.SetAttribDis("red");
    point.SetIdentDescr(5);
    point.SetGisHandle(-6);
    point.SetLat(45.125);
    point.SetLong(11.25);
    point.SetElev(100.5);
    point.SetAltAnt(1.75);
    point.SetQua(-4);
    point.SetIsPrimaryPtDup(true);
    point.SetIsSecondaryPtDup(true);
    point.SetYear(2018);
    point.SetMonth(10);
    point.SetDay(31);
    point.SetTod(0x89ABCDEFu);
    point.SetHposRms(0.0125);
    point.SetVposRms(0.025);
    point.SetNuGpsUsed(8);
    point.SetNuGloUsed(255);
    point.SetPosCov_xx(1.5f);
    point.SetPosCov_yy(2.5f);
    point.SetPosCov_zz(3.5f);
    point.SetPosCov_tt(4.5f);
    point.SetPosCov_xy(5.5f);
    point.SetPosCov_xz(6.5f);
    point.SetPosCov_xt(7.5f);
    point.SetPosCov_yz(8.5f);
    point.SetPosCov_yt(9.5f);
    point.SetPosCov_zt(-10.5f);
    point.SetPdop(1.625);
    point.SetGdop(2.125);
    point.SetGrafBase(45.5, 11.5, 99.75);
    point.SetPunRis32(0xFEDCBA98u);
    point.SetCloudNotify(true);
    point.SetCloudId(4242);
    point.CloudItemChanged(0x21);
}

void FillGoldenGroup(CGrpGps& group) {
    group.SetCloudNotify(false);
    group.SetNome("B1");
    group.SetSecScri("[WGS84-EUREF]");
    group.SetCodeEgn(7);
    group.SetCoord(1.5, 2.5, 3.5);
    group.SetNomeGrp("Gruppo 1");
    group.SetLabels("Rossi", "R8", "04/10/2018", "Localit\xC3\xA0");
    group.SetTargetDrawing(0x0102030405060708);
    group.SetBaseSpare1(11.5);
    group.SetBaseSpare2(12.5);
    group.SetBaseSpare3(13.5);
    group.SetBaseLat(45.5);
    group.SetBaseLong(11.75);
    group.SetBaseElev(99.25);
    group.SetBaseAltAnt(2.125);
    group.SetGrpFactorA(1.25);
    group.SetGrpFactorB(0.75);
    group.SetTipoRilievo(2);
    group.SetTipoRicevitore(200);
    group.SetCodeElab(-3);
    group.SetGrpFlagRis(true);
    group.GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
    group.GetConvCoord()->GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0,
                                                           0.9996);
    group.SetGrpRis32(0xFEDCBA98u);
    group.SetCloudCreatorDevId(-77);
    group.SetCloudNotify(true);
    group.SetCloudId(0x0807060504030201);
    group.CloudItemChanged(0x80000001u);
}

void FillOtherPoint(CPunGps& point) {
    point.SetCloudNotify(false);
    point.SetNome("other");
    point.SetLat(-1);
    point.SetLong(-2);
    point.SetElev(-3);
    point.SetAltAnt(-4);
    point.SetQua(9);
    point.SetYear(1999);
    point.SetMonth(1);
    point.SetDay(2);
    point.SetTod(3);
    point.SetHposRms(-5);
    point.SetVposRms(-6);
    point.SetNuGpsUsed(1);
    point.SetNuGloUsed(2);
    point.SetPosCov_xx(-1);
    point.SetPosCov_zt(-1);
    point.SetPdop(-7);
    point.SetGdop(-8);
    point.SetGrafBase(-9, -10, -11);
    point.SetPunRis32(12);
    point.SetCloudNotify(true);
}

void FillOtherGroup(CGrpGps& group) {
    group.SetCloudNotify(false);
    group.SetNome("other");
    group.SetNomeGrp("other");
    group.SetLabels("a", "b", "c", "d");
    group.SetTargetDrawing(4);
    group.SetBaseSpare1(-1);
    group.SetBaseSpare2(-2);
    group.SetBaseSpare3(-3);
    group.SetBaseLat(-4);
    group.SetBaseLong(-5);
    group.SetBaseElev(-6);
    group.SetBaseAltAnt(-7);
    group.SetGrpFactorA(-8);
    group.SetGrpFactorB(-9);
    group.SetTipoRilievo(9);
    group.SetTipoRicevitore(8);
    group.SetCodeElab(7);
    group.GetConvCoord()->SetImp(CConvCoord::impPronta, 6);
    group.SetGrpRis32(5);
    group.SetCloudCreatorDevId(4);
    group.SetCloudNotify(true);
}

std::vector<LayoutRow> PointRows(CPunGps& filled, Rms742 rms) {
    double x, y, z;
    filled.GetGeocCeFaMis(x, y, z);
    Bytes covariances;
    for (const float c : {1.5f, 2.5f, 3.5f, 4.5f, 5.5f, 6.5f, 7.5f, 8.5f, 9.5f, -10.5f}) covariances.F32(c);
    const Bytes two =
        rms == Rms742::asRead ? Bytes().F32(0.0125f).F32(0.025f) : Bytes().F64(0.0125).F64(0.025);
    return {
        {0, 0, GoldenPointEntity()},
        {0, 1003, Bytes().F64(x).F64(y).F64(z)},
        {0, 0, Bytes().F64(45.125).F64(11.25).F64(100.5).F64(1.75)},
        {0, 0, Bytes().I32(-4)},
        {0, 0, Bytes().I16(1)},
        {0, 903, Bytes().I16(0)},
        {903, 0, Bytes().I16(1)},
        {742, 0, Bytes().U16(2018).U8(10).U8(31).U32(0x89ABCDEFu)},
        {743, 0, Bytes().F64(0.0125).F64(0.025)},
        {742, 743, two},
        {742, 0, Bytes().U8(8).U8(255)},
        {742, 0, covariances},
        {743, 0, Bytes().F64(1.625).F64(2.125)},
        {881, 0, Bytes().F64(45.5).F64(11.5).F64(99.75)},
        {1106, 0, Bytes().U32(0xFEDCBA98u)},
        {0, 0, Bytes().I64(4242).U32(0x21).U32(0x21).I64(0)},
    };
}

std::vector<LayoutRow> GroupRows(CGrpGps& filled) {
    return {
        {0, 0, Bytes().Text("Gruppo 1").Text("Rossi").Text("R8").Text("04/10/2018")},
        {1004, 0, Bytes().Hex("0807060504030201")},
        {742, 0, GoldenGroupEntity()},
        {742, 0, Bytes().Text("Localit\xC3\xA0")},
        {742, 0, Bytes().F64(11.5).F64(12.5).F64(13.5)},
        {742, 0, Bytes().F64(45.5).F64(11.75).F64(99.25).F64(2.125)},
        {750, 0, Bytes().F64(1.25).F64(0.75)},
        {750, 0, Bytes().U8(2)},
        {750, 0, Bytes().U8(200)},
        {0, 0, Bytes().I16(-3)},
        {0, 0, Bytes().I32(1)},
        {0, 0, ConversionBytes(*filled.GetConvCoord())},
        {1106, 0, Bytes().U32(0xFEDCBA98u)},
        {1311, 0, Bytes().I32(-77)},
        {0, 0, Bytes().I64(0x0807060504030201).U32(0x80000001u).U32(0x80000001u).I64(0)},
    };
}

std::string ConversionBytes(CConvCoord& conversion) {
    ofpstream out(1400);
    conversion.SalvaInFile(out, 1400);
    return std::string(out.GetBytes());
}

std::string ValuesOf(CPunGps& point) {
    Lines lines;
    lines.Entity(point).Add("lat", point.GetLat()).Add("long", point.GetLong()).Add("elev", point.GetElev());
    lines.Add("altAnt", point.GetAltAnt()).Add("qua", point.GetQua());
    lines.Add("primary", point.IsPrimaryPtDup()).Add("secondary", point.IsSecondaryPtDup());
    lines.Add("year", point.GetYear()).Add("month", point.GetMonth()).Add("day", point.GetDay());
    lines.Add("tod", point.GetTod()).Add("hrms", point.GetHposRms()).Add("vrms", point.GetVposRms());
    lines.Add("gps", point.GetNuGpsUsed()).Add("glo", point.GetNuGloUsed());
    lines.Add("xx", point.GetPosCov_xx()).Add("yy", point.GetPosCov_yy()).Add("zz", point.GetPosCov_zz());
    lines.Add("tt", point.GetPosCov_tt()).Add("xy", point.GetPosCov_xy()).Add("xz", point.GetPosCov_xz());
    lines.Add("xt", point.GetPosCov_xt()).Add("yz", point.GetPosCov_yz()).Add("yt", point.GetPosCov_yt());
    lines.Add("zt", point.GetPosCov_zt()).Add("pdop", point.GetPdop()).Add("gdop", point.GetGdop());
    double lat, lon, h;
    point.GetGrafBase(lat, lon, h);
    lines.Add("baseLat", lat).Add("baseLong", lon).Add("baseH", h).Add("ris32", point.GetPunRis32());
    return lines.Get();
}

std::string ValuesOf(CGrpGps& group) {
    Lines lines;
    lines.Entity(group).Add("nomeGrp", group.GetNomeGrp()).Add("oper", group.GetOper());
    lines.Add("strum", group.GetStrum()).Add("data", group.GetData()).Add("localita", group.GetLocalita());
    lines.Add("drawing", group.GetTargetDrawing()).Add("spare1", group.GetBaseSpare1());
    lines.Add("spare2", group.GetBaseSpare2()).Add("spare3", group.GetBaseSpare3());
    lines.Add("lat", group.GetBaseLat()).Add("long", group.GetBaseLong()).Add("elev", group.GetBaseElev());
    lines.Add("altAnt", group.GetBaseAltAnt())
        .Add("a", group.GetGrpFactorA())
        .Add("b", group.GetGrpFactorB());
    lines.Add("rilievo", group.GetTipoRilievo()).Add("ricevitore", group.GetTipoRicevitore());
    lines.Add("elab", group.GetCodeElab()).Add("flagRis", group.GetGrpFlagRis());
    lines.Add("conversion", Dump(ConversionBytes(*group.GetConvCoord()))).Add("ris32", group.GetGrpRis32());
    return lines.Add("device", group.GetCloudCreatorDevId()).Get();
}

std::string Saved(CPunGps& point, short version, bool cloudFlag) {
    ofpstream out(version);
    point.SalvaInFile(out, cloudFlag);
    return std::string(out.GetBytes());
}

std::string Saved(CGrpGps& group, short version, bool cloudFlag) {
    ofpstream out(version);
    group.SalvaInFile(out, cloudFlag, nullptr);
    return std::string(out.GetBytes());
}

}  // namespace test
