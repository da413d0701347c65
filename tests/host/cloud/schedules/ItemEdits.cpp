#include "tests/host/cloud/schedules/ItemEdits.h"

#include <limits>

#include "gps/cloud/FieldLayout.h"

namespace test {

namespace {

class Values {
public:
    explicit Values(std::mt19937& random) : random_(random) {}

    int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    double Real() {
        switch (Below(12)) {
            case 0:
                return GPS_VAL_UNSET;
            case 1:
                return Below(8) == 0 ? std::numeric_limits<double>::quiet_NaN() : 0;
            case 2:
                return Below(8) == 0 ? -std::numeric_limits<double>::infinity() : 1.5;
            case 3:
                return (static_cast<double>(random_()) - 2147483648.0) / 1048576.0;
            default:
                return Below(2000) / 1000.0;  // two devices may well choose the same
        }
    }

    float Single() {
        switch (Below(6)) {
            case 0:
                return static_cast<float>(Below(3000)) / 1000.0F;  // above 1, too
            case 1:
                return static_cast<float>(-Below(1000)) / 1000.0F;
            default:
                return static_cast<float>(Below(10000)) * 1e-7F;
        }
    }

    std::string Text() {
        static const char* const texts[] = {"", "A", "Küste", "測点", "a b", "x,y", "\"q\"", "-1"};
        return Below(3) == 0 ? texts[Below(8)] : "T" + std::to_string(Below(1000));
    }

private:
    std::mt19937& random_;
};

void EditDatum(CDatumConv& datum, Values& values) {
    datum.SetNome(values.Text());
    if (values.Below(2))
        datum.SetCoeffFromStd(values.Real(), values.Real(), 0, 0, 0, 0, values.Real());
    else
        datum.SetCoeffToStd(values.Real(), 0, values.Real(), 0, 0, 0, 0);
    datum.SetGrafOrigine(values.Real(), values.Real());
}

void EditConversion(CConvCoord& conversion, Values& values) {
    switch (values.Below(9)) {
        case 0:
            // Not the ellipsoid nor the datum in the map library.
            return conversion.SetImp(6 + values.Below(5), values.Below(5));
        case 1:
            return conversion.SetImp(1, values.Below(2));
        case 2:
            return conversion.SetImpReal(1 + values.Below(2), values.Real());
        case 3:
            return conversion.SetImpFlag(values.Below(2) != 0);
        case 4:
            return conversion.SetTpDtBaseGps(values.Below(3));
        case 5:
            return EditDatum(*conversion.GetConvDtBaseGps(), values);
        case 6:
            return conversion.GetConvLocal()->SetTpProiezPlaEx(1, 0, 9 + 6 * values.Below(3), 500000, 0,
                                                               0.9996);
        case 7:
            return conversion.GetConvLocal()->SetRotoTras(500000 + values.Below(1000),
                                                          5000000 + values.Below(1000), values.Real(),
                                                          values.Real(), values.Real(), values.Real());
        default:
            conversion.GetConvAltez()->SetTpCalcPt(values.Below(3));
            conversion.GetConvAltez()->SetCoeff(values.Real(), values.Real(), values.Real());
            return conversion.GetConvAltez()->SetTpProiezPlaEx(values.Below(3), values.Real(), values.Real(),
                                                               values.Real(), values.Real(), values.Real());
    }
}

bool EditEntity(CEgn& entity, std::uint32_t bit, Values& values, bool heightIsTag) {
    switch (bit) {
        case CHG_NOME:
            entity.SetNome(values.Text());
            return true;
        case CHG_SECSCRI:
            entity.SetSecScri(values.Text());
            return true;
        case CHG_COORD: {
            const double z = heightIsTag ? entity.GetCoordZ() : values.Real();
            entity.SetCoord(values.Real(), values.Real(), z);
            return true;
        }
        case CHG_CODEEGN:
            entity.SetCodeEgn(values.Below(2) ? 0xFFFFFFFF : static_cast<unsigned long>(values.Below(100)));
            return true;
        default:
            return false;
    }
}

}  // namespace

void FillAnew(CGrpGps& group, std::mt19937& random) {
    for (const FieldGroup& fields : GRP_FIELDS) EditField(group, fields.bit, random);
}

void FillAnew(CPunGps& point, std::mt19937& random) {
    for (const FieldGroup& fields : PUN_FIELDS) EditField(point, fields.bit, random);
}

void EditField(CGrpGps& group, std::uint32_t bit, std::mt19937& random) {
    Values values(random);
    if (EditEntity(group, bit, values, true)) return;
    switch (bit) {
        case CHG_GRP_NOMEGRP:
            return group.SetNomeGrp(values.Text());
        case CHG_GRP_TIPORILIEVO:
            return group.SetTipoRilievo(static_cast<unsigned char>(values.Below(4)));
        case CHG_GRP_TIPORICEVITORE:
            return group.SetTipoRicevitore(static_cast<unsigned char>(values.Below(4)));
        case CHG_GRP_BASELAT:
            return group.SetBaseLat(values.Real());
        case CHG_GRP_BASELONG:
            return group.SetBaseLong(values.Real());
        case CHG_GRP_BASEELEV:
            return group.SetBaseElev(values.Real());
        case CHG_GRP_BASEALTANT:
            return group.SetBaseAltAnt(values.Real());
        case CHG_GRP_CODEELAB:
            return group.SetCodeElab(static_cast<short>(values.Below(65536)));
        default:
            return EditConversion(*group.GetConvCoord(), values);
    }
}

void EditField(CPunGps& point, std::uint32_t bit, std::mt19937& random) {
    Values values(random);
    if (EditEntity(point, bit, values, false)) return;
    switch (bit) {
        case CHG_PUN_DATETIME:
            point.SetYear(static_cast<unsigned short>(values.Below(65536)));
            point.SetMonth(static_cast<unsigned char>(values.Below(13)));
            return point.SetDay(static_cast<unsigned char>(values.Below(32)));
        case CHG_PUN_QUA:
            return point.SetQua(values.Below(10) - 5);
        case CHG_PUN_NUGPS:
            return point.SetNuGpsUsed(static_cast<unsigned char>(values.Below(256)));
        case CHG_PUN_NUGLO:
            return point.SetNuGloUsed(static_cast<unsigned char>(values.Below(256)));
        case CHG_PUN_LAT:
            return point.SetLat(values.Real());
        case CHG_PUN_LONG:
            return point.SetLong(values.Real());
        case CHG_PUN_ELEV:
            return point.SetElev(values.Real());
        case CHG_PUN_ALTANT:
            return point.SetAltAnt(values.Real());
        case CHG_PUN_PDOP:
            return point.SetPdop(values.Real());
        case CHG_PUN_GDOP:
            return point.SetGdop(values.Real());
        case CHG_PUN_HPOSRMS:
            return point.SetHposRms(values.Real());
        case CHG_PUN_VPOSRMS:
            return point.SetVposRms(values.Real());
        default:
            point.SetPosCov_xx(values.Single());
            point.SetPosCov_xy(values.Single());
            point.SetPosCov_xz(values.Single());
            point.SetPosCov_yy(values.Single());
            point.SetPosCov_yz(values.Single());
            return point.SetPosCov_zz(values.Single());
    }
}

}  // namespace test
