#include "gps/cloud/ConvCoordReply.h"

#include "gps/cloud/ReplyValues.h"

namespace {

using TConvCoordValues = CGpsBaseCloudTable::TConvCoordValues;
using TDatumConvValues = CGpsBaseCloudTable::TDatumConvValues;

/// Takes one field after the other.
class Fields {
public:
    explicit Fields(const vex::String* first) : next_(first) {}

    const vex::String& Text() { return *next_++; }
    int Int() { return ReplyInt(*next_++); }
    bool Flag() { return ReplyFlag(*next_++); }
    double Real() { return ReplyReal(*next_++); }

    template <std::size_t N>
    void Reals(double (&values)[N]) {
        for (double& value : values) value = Real();
    }

    void Datum(TDatumConvValues& datum) {
        datum.Nome = Text();
        datum.FromStd = Flag();
        Reals(datum.Coeff);
        Reals(datum.GrafOrigine);
    }

private:
    const vex::String* next_;
};

}  // namespace

TConvCoordValues ConvCoordFromReply(const vex::String* first) {
    TConvCoordValues v;
    Fields fields(first);
    for (int* s : {&v.S1, &v.S2, &v.S3, &v.S4, &v.S5}) *s = fields.Int();
    v.R1 = fields.Real();
    v.R2 = fields.Real();
    v.B = fields.Flag();
    for (int* s : {&v.S6, &v.S7, &v.S8, &v.S9, &v.S10}) *s = fields.Int();
    v.TpDtBaseGps = fields.Int();
    fields.Datum(v.DtBaseGps);
    fields.Datum(v.MapDatum);
    v.MapTpDtBaseGps = fields.Int();
    fields.Datum(v.MapDtBaseGps);
    v.TpProiezPla = fields.Int();
    fields.Reals(v.P);
    fields.Reals(v.CoeffLatLon);
    v.AltezTpProiezPla = fields.Int();
    v.TpCalcPt = fields.Int();
    fields.Reals(v.H);
    fields.Reals(v.MinQua);
    return v;
}
