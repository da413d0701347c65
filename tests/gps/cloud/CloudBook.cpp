#include "tests/gps/cloud/CloudBook.h"

namespace test {

void FillGroup(CGrpGps& group) {
    group.SetNome("BASE 1");
    group.SetSecScri("cod");
    group.SetCoord(100.5, 200.25, -12.125);
    group.SetCodeEgn(78);
    group.SetNomeGrp("Nord");
    group.SetTipoRilievo(1);
    group.SetTipoRicevitore(0);
    group.SetBaseLat(45.5);
    group.SetBaseLong(9.25);
    group.SetBaseElev(120.75);
    group.SetBaseAltAnt(1.8);
    group.SetCodeElab(-3);
    CConvCoord& conversion = *group.GetConvCoord();
    const int settings[] = {11, 12, 2, 3, 1, 16, 17, 18, 19, 20};
    for (int k = 1; k <= 10; ++k) conversion.SetImp(k, settings[k - 1]);
    conversion.SetImpReal(1, 6378200.5);
    conversion.SetImpReal(2, 298.5);
    conversion.SetImpFlag(true);
    conversion.SetTpDtBaseGps(1);
    conversion.GetConvDtBaseGps()->SetNome("own");
    conversion.GetConvDtBaseGps()->SetCoeffFromStd(0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7);
    conversion.GetConvDtBaseGps()->SetGrafOrigine(41.5, 12.5);
    if (CLibMap* map = conversion.GetLibMap()) {
        while (map->GetDatArSize(2, 3) < 2) map->AddDat(2, 3);
        CDatumConv* selected = map->GetDatAt(2, 3, 1);
        selected->SetNome("Roma 40");
        selected->SetCoeffToStd(1.1, 1.2, 1.3, 1.4, 1.5, 1.6, 1.7);
        selected->SetGrafOrigine(42.5, 13.5);
        map->SetTpDtBaseGps(2);
        map->GetConvDtBaseGps()->SetNome("library");
        map->GetConvDtBaseGps()->SetCoeffFromStd(2.1, 2.2, 2.3, 2.4, 2.5, 2.6, 2.7);
        map->GetConvDtBaseGps()->SetGrafOrigine(43.5, 14.5);
    }
    conversion.GetConvLocal()->SetTpProiezPlaEx(1, 0.5, 9, 500000, -12.5, 0.9996);
    conversion.GetConvLocal()->SetRotoTras(GPS_VAL_UNSET, GPS_VAL_UNSET, 1000.5, 2000.5, 1.0001, 0.25);
    conversion.GetConvAltez()->SetTpProiezPlaEx(4, 44.5, 11.5, 600100, 100, 0.9999);
    conversion.GetConvAltez()->SetTpCalcPt(2);
    conversion.GetConvAltez()->SetCoeff(0.5, 0.001, -0.002);
}

void FillPoint(CPunGps& point) {
    point.SetNome("P 100");
    point.SetSecScri("spigolo");
    point.SetCoord(1.5, 2.5, 3.5);
    point.SetCodeEgn(9);
    point.SetYear(2024);
    point.SetMonth(5);
    point.SetDay(31);
    point.SetTod(86399);
    point.SetQua(4);
    point.SetNuGpsUsed(10);
    point.SetNuGloUsed(7);
    point.SetLat(45.123456789);
    point.SetLong(-9.25);
    point.SetElev(GPS_VAL_UNSET);
    point.SetAltAnt(2);
    point.SetPdop(1.25);
    point.SetGdop(2.25);
    point.SetHposRms(0.011);
    point.SetVposRms(0.022);
    point.SetPosCov_xx(0.25F);
    point.SetPosCov_xy(-0.002F);
    point.SetPosCov_xz(0);
    point.SetPosCov_yy(1);
    point.SetPosCov_yz(0.5F);
    point.SetPosCov_zz(0.125F);
    point.SetPosCov_tt(0.75F);
    point.SetPosCov_xt(0.625F);
    point.SetPosCov_yt(0.375F);
    point.SetPosCov_zt(0.875F);
}

}  // namespace test
