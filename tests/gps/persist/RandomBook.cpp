#include "tests/gps/persist/RandomBook.h"

#include <bit>
#include <limits>

#include "gps/options/COpzPostProc.h"
#include "platform/entity/CCloudTable.h"

namespace test {

double RandomBook::Real() {
    switch (Number(8)) {
        case 0:
            return GPS_VAL_UNSET;
        case 1:
            return 0;
        case 2:
            return -0.0;
        case 3:
            return std::bit_cast<double>(static_cast<std::uint64_t>(Bits()) << 32 | Bits());  // NaN, too
        default:
            return (static_cast<double>(Bits()) - 2147483648.0) / 1048576.0;
    }
}

float RandomBook::Single() {
    return OneIn(4) ? std::bit_cast<float>(Bits()) : static_cast<float>(Number(1000)) / 128.0f;
}

std::string RandomBook::Text() {
    const int length = OneIn(3) ? 0 : OneIn(20) ? Number(2000) : Number(40);
    std::string text;
    for (int i = 0; i < length; ++i) text += static_cast<char>(Bits());
    return text;
}

template <class T>
void RandomBook::Entity(T& egn, bool fromCloud) {
    egn.SetNome(Text());
    egn.SetSecScri(Text());
    egn.SetCodeEgn(Bits());
    egn.SetVldtEgn(Bits());
    egn.SetCoord(Real(), Real(), Real());
    if (OneIn(4)) egn.SetTerScri(Text());
    if (OneIn(4)) egn.SetNote(Text());
    if (OneIn(4)) egn.SetNomiFoto_Raw(Text());
    if (OneIn(4)) egn.SetAttribDis(Text());
    if (OneIn(4)) egn.SetIdentDescr(Short());
    if (OneIn(4)) egn.SetGisHandle(Short());
    // What came from the cloud has an id; without one it would be new to it once it has been read.
    if (fromCloud || OneIn(2)) egn.SetCloudId(++lastId_);
    if (CCloudTable* table = egn.GetTable(); table && OneIn(2)) table->AddItemToTable(&egn);
    if (OneIn(2)) egn.CloudItemChanged(Bits());
}

void RandomBook::Conversion(CConvCoord& conversion) {
    for (int k = 1; k <= CConvCoord::IMP_MAX; ++k)
        if (OneIn(2)) conversion.SetImp(k, Number(4));
    conversion.SetImpFlag(OneIn(2));
    conversion.SetImpReal(1, Real());
    conversion.SetImpReal(2, Real());
    conversion.SetTpDtBaseGps(Number(4));
    conversion.GetConvDtBaseGps()->SetNome(Text());
    conversion.GetConvDtBaseGps()->SetCoeffToStd(Real(), Real(), Real(), Real(), Real(), Real(), Real());
    CConvLocal& local = *conversion.GetConvLocal();
    std::string why;
    if (!OneIn(10) || !local.SetDefinizione("+proj=merc +ellps=GRS80 +type=crs", why))
        local.SetTpProiezPlaEx(Number(8), Real(), Real(), Real(), Real(), Real());
    local.SetRotoTras(Real(), Real(), Real(), Real(), Real(), Real());
    conversion.GetConvAltez()->SetTpCalcPt(Number(4));
    conversion.GetConvAltez()->SetCoeff(Real(), Real(), Real());
    conversion.GetConvAltez()->SetTpProiezPlaEx(Number(8), Real(), Real(), Real(), Real(), Real());
}

void RandomBook::Group(CGrpGps& group, bool fromCloud) {
    Entity(group, fromCloud);
    group.SetNomeGrp(Text());
    group.SetLabels(Text(), Text(), Text(), Text());
    group.SetTargetDrawing(Number(kDrawings));
    group.SetBaseSpare1(Real());
    group.SetBaseSpare2(Real());
    group.SetBaseSpare3(Real());
    group.SetBaseLat(Real());
    group.SetBaseLong(Real());
    group.SetBaseElev(Real());
    group.SetBaseAltAnt(Real());
    group.SetGrpFactorA(Real());
    group.SetGrpFactorB(Real());
    group.SetTipoRilievo(Byte());
    group.SetTipoRicevitore(Byte());
    group.SetCodeElab(Short());
    group.SetGrpFlagRis(OneIn(2));
    Conversion(*group.GetConvCoord());
    group.SetGrpRis32(Bits());
    group.SetCloudCreatorDevId(static_cast<int>(Bits()));
}

void RandomBook::Point(CPunGps& point, bool fromCloud) {
    Entity(point, fromCloud);
    point.SetLat(Real());
    point.SetLong(Real());
    point.SetElev(Real());
    point.SetAltAnt(Real());
    point.SetQua(static_cast<int>(Bits()));
    point.SetIsPrimaryPtDup(OneIn(2));
    point.SetIsSecondaryPtDup(OneIn(2));
    point.SetYear(static_cast<unsigned short>(Bits()));
    point.SetMonth(Byte());
    point.SetDay(Byte());
    point.SetTod(Bits());
    point.SetHposRms(Real());
    point.SetVposRms(Real());
    point.SetNuGpsUsed(Byte());
    point.SetNuGloUsed(Byte());
    point.SetPosCov_xx(Single());
    point.SetPosCov_yy(Single());
    point.SetPosCov_zz(Single());
    point.SetPosCov_tt(Single());
    point.SetPosCov_xy(Single());
    point.SetPosCov_xz(Single());
    point.SetPosCov_xt(Single());
    point.SetPosCov_yz(Single());
    point.SetPosCov_yt(Single());
    point.SetPosCov_zt(Single());
    point.SetPdop(Real());
    point.SetGdop(Real());
    point.SetGrafBase(Real(), Real(), Real());
    point.SetPunRis32(Bits());
}

void RandomBook::Options(CLibGps& book) {
    COpzLibGps& options = book.GetOpzLibGps();
    options.OpzValore = Short();
    options.CalcLibCmp = OneIn(2);
    options.OpzFlagA = OneIn(2);
    options.OpzFlagB = OneIn(2);
    for (COpzDisEgn* entry : {&book.GetOpzListDisGps().GetOpzPun(), &book.GetOpzListDisGps().GetOpzGrp()}) {
        entry->SetVisSimb(Short());
        entry->SetColSimb(Short());
        entry->SetTipoSimb(Short());
        entry->SetLwQuotSimb(Short());
    }
    if (OneIn(2)) return;
    COpzPostProc& post = *book.GetOpzPostProc();
    post.ParPostProc.wPar1 = static_cast<std::uint16_t>(Bits());
    post.ParPostProc.dPar1 = Real();
    post.ParPostProc.nPar1 = Short();
    post.ParPostProc.bPar9 = OneIn(2);
    for (int i = Number(4); i > 0; --i) {
        if (OneIn(2))
            post.AddDataPtBaseLineDett(Text());
        else
            post.AddDataPtBaseLineBase(Text());
    }
    for (auto* list : {&post.vecPtBaseLineDett, &post.vecPtBaseLineBase}) {
        for (COpzPostProc::TDatiStaticPtBaseLine& file : *list) {
            file.bFlag1 = OneIn(2);
            file.bFlag3 = OneIn(2);
            file.bFlag4 = OneIn(2);
            file.sText1 = Text();
            file.nIdx2 = Short();
            file.nIdx3 = Short();
            file.sText2 = Text();
            // In old streams the other one of the two values is the unset one.
            file.bAltValue = OneIn(2);
            file.dValue = static_cast<double>(Number(1000));
            file.dA1 = Real();
            file.dB3 = Real();
        }
    }
}

void RandomBook::Fill(CLibGps& book, CLibMap& map) {
    for (int i = Number(4); i > 0; --i) {
        CDatumConv* datum = map.AddDat(Number(3), Number(3));
        datum->SetNome(Text());
        datum->SetCoeffFromStd(Real(), Real(), Real(), Real(), Real(), Real(), Real());
        datum->SetGrafOrigine(Real(), Real());
    }
    map.SetTpDtBaseGps(Number(3));
    book.SetTargetDrawing(Number(kDrawings));
    Options(book);
    for (int g = Number(5); g > 0; --g) {
        const bool groupFromCloud = OneIn(3);
        Group(*book.AddGrp(groupFromCloud), groupFromCloud);
        for (int p = Number(6); p > 0; --p) {
            const bool fromCloud = OneIn(3);
            Point(*book.AddPun(book.GetGrpArSize() - 1, fromCloud), fromCloud);
        }
    }
}

}  // namespace test
