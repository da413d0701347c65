// TConvCoordValues: a coordinate conversion as a server's reply holds it.
#pragma once

#include "platform/base/vexString.h"

/// A datum's seven parameters and origin.
struct TDatumConvValues {
    vex::String Nome;
    bool FromStd = false;        // true: the coefficients lead from the standard datum, else to it
    double Coeff[7] = {};        // translations in metres, rotations in arc seconds, scale in ppm
    double GrafOrigine[2] = {};  // degrees: latitude, longitude
};

/// Settings, datums, plane and height conversion. The order is not that of a reply: there the type of the map
/// library's datum follows the datum that is selected in the library.
struct TConvCoordValues {
    int S1 = 0, S2 = 0, S3 = 0, S4 = 0, S5 = 0;
    double R1 = 0;  // metres
    double R2 = 0;  // inverse flattening
    bool B = false;
    int S6 = 0, S7 = 0, S8 = 0, S9 = 0, S10 = 0;
    int TpDtBaseGps = 0;
    TDatumConvValues DtBaseGps;
    int MapTpDtBaseGps = 0;
    TDatumConvValues MapDatum;      // the one selected by S3, S4, S5
    TDatumConvValues MapDtBaseGps;  // the library's own
    int TpProiezPla = 0;
    double P[5] = {};            // P1, P2 degrees; P3 dimensionless or as the type says; P4, P5 metres
    double CoeffLatLon[6] = {};  // origin G1, G2 degrees; O3, O4 metres; scale; angle in degrees
    int AltezTpProiezPla = 0;
    int TpCalcPt = 0;
    double H[5] = {};       // as P
    double MinQua[3] = {};  // metres, metres per metre twice
};
