#include "apps/gpsbook/dump/Layout.h"

namespace gpsbook {

namespace {

using enum FieldType;

constexpr Row Part(const char* name, RecordId record, short from = kAlways, short below = kNoEnd) {
    return {u8, name, from, below, record};
}

constexpr Row kBook[] = {
    Part("map library", RecordId::mapLibrary, kAlways, 1004),
    {drawing, "target drawing", 1004},
    Part("options", RecordId::bookOptions),
    Part("display options", RecordId::displayOptions),
    {count, "groups"},
};

constexpr Row kGroup[] = {
    {string, "name of the group"},
    {string, "operator"},
    {string, "instrument"},
    {string, "date"},
    {drawing, "target drawing", 1004},
    Part("entity", RecordId::entity, 742),
    {string, "place", 742},
    {f64, "reserved 1", 742},
    {f64, "reserved 2", 742},
    {f64, "reserved 3", 742},
    {f64, "base latitude", 742},
    {f64, "base longitude", 742},
    {f64, "base height", 742},
    {f64, "base antenna", 742},
    {f64, "factor A", 750},
    {f64, "factor B", 750},
    {u8, "survey type", 750},
    {u8, "receiver type", 750},
    {i16, "processing code"},
    {bool4, "reserved"},
    Part("conversion", RecordId::conversion),
    {u32, "reserved number", 1106},
    {i32, "creator device", 1311},
    Part("cloud", RecordId::cloud),
};

constexpr Row kPoint[] = {
    Part("entity", RecordId::entity),
    {f64, "geocentric X", kAlways, 1003},
    {f64, "geocentric Y", kAlways, 1003},
    {f64, "geocentric Z", kAlways, 1003},
    {f64, "latitude"},
    {f64, "longitude"},
    {f64, "height"},
    {f64, "antenna"},
    {i32, "quality"},
    {bool2, "primary duplicate"},
    {bool2, "secondary duplicate"},
    {u16, "year", 742},
    {u8, "month", 742},
    {u8, "day", 742},
    {u32, "time of day", 742},
    {f64, "horizontal RMS", 743},
    {f64, "vertical RMS", 743},
    {f32, "horizontal RMS", 742, 743},
    {f32, "vertical RMS", 742, 743},
    {u8, "GPS satellites", 742},
    {u8, "GLONASS satellites", 742},
    {f32, "covariance xx", 742},
    {f32, "covariance yy", 742},
    {f32, "covariance zz", 742},
    {f32, "covariance tt", 742},
    {f32, "covariance xy", 742},
    {f32, "covariance xz", 742},
    {f32, "covariance xt", 742},
    {f32, "covariance yz", 742},
    {f32, "covariance yt", 742},
    {f32, "covariance zt", 742},
    {f64, "PDOP", 743},
    {f64, "GDOP", 743},
    {f64, "base latitude", 881},
    {f64, "base longitude", 881},
    {f64, "base height", 881},
    {u32, "reserved number", 1106},
    Part("cloud", RecordId::cloud),
};

constexpr Row kEntity[] = {
    {string, "name"}, {string, "secondary text"},
    {u32, "code"},    {u32, "validity"},
    {f64, "east"},    {f64, "north"},
    {f64, "height"},  {u8, "more follows"},
};

constexpr Row kEntityMore[] = {
    {string, "third text"},         {string, "notes"},   {string, "photos"},
    {string, "display attributes"}, {i32, "descriptor"}, {i32, "GIS handle"},
};

constexpr Row kCloud[] = {
    {i64, "id"},
    {u32, "changed fields"},
    {u32, "changed since the commit"},
    {i64, "ticket"},
};

constexpr Row kConversion[] = {
    {i32, "S1"},
    {i32, "S2"},
    {i32, "S3"},
    {i32, "S4"},
    {i32, "S5"},
    {i32, "S6"},
    {i32, "S7"},
    {i32, "S8"},
    {i32, "S9"},
    {i32, "S10"},
    {u8, "B"},
    {f64, "R1"},
    {f64, "R2"},
    {i32, "measured datum"},
    Part("measured datum", RecordId::datum),
    Part("plane projection", RecordId::projection),
    {f64, "local o1"},
    {f64, "local o2"},
    {f64, "local o3"},
    {f64, "local o4"},
    {f64, "local scale"},
    {f64, "local angle"},
    {i32, "height type"},
    {f64, "height c1"},
    {f64, "height c2"},
    {f64, "height c3"},
    Part("height projection", RecordId::projection),
    {u8, "selected datum follows"},
};

constexpr Row kDatum[] = {
    {string, "name"},       {u8, "from WGS 84"}, {f64, "translation X"}, {f64, "translation Y"},
    {f64, "translation Z"}, {f64, "rotation X"}, {f64, "rotation Y"},    {f64, "rotation Z"},
    {f64, "scale"},         {f64, "latitude"},   {f64, "longitude"},
};

constexpr Row kProjection[] = {
    {i32, "type"}, {f64, "p1"}, {f64, "p2"}, {f64, "p3"}, {f64, "p4"}, {f64, "p5"}, {string, "definition"},
};

constexpr Row kMapLibrary[] = {
    {i32, "measured datum"},
    Part("measured datum", RecordId::datum),
    {count, "lists"},
};

constexpr Row kBookOptions[] = {
    {i16, "OpzValore"},
    {bool4, "CalcLibCmp"},
    {bool4, "OpzFlagA"},
    {bool4, "OpzFlagB"},
};

constexpr Row kDisplayEntry[] = {
    {string, "name"},    {i16, "VisSimb"},    {i16, "ColSimb"},    {i16, "ColNome"},
    {i16, "ColDesc"},    {i16, "ColQuot"},    {i16, "TipoSimb"},   {i16, "LwSimb"},
    {i16, "LwNameSimb"}, {i16, "LwDescSimb"}, {i16, "LwQuotSimb"},
};

constexpr Row kPostProcessing[] = {
    {u16, "wPar1"},
    {u16, "wPar2"},
    {u16, "wPar3"},
    {u16, "wPar4"},
    {f64, "dPar1"},
    {f64, "dPar2"},
    {i32, "ePar1"},
    {bool4, "bPar1"},
    {f64, "aValPair[0].dVal"},
    {i32, "aValPair[0].nVal"},
    {f64, "aValPair[1].dVal"},
    {i32, "aValPair[1].nVal"},
    {bool4, "bPar2"},
    {u16, "wPar5"},
    {f64, "dPar3"},
    {f64, "dPar4"},
    {i16, "nPar1"},
    {bool4, "bPar3"},
    {u16, "wPar6"},
    {bool4, "bPar4"},
    {bool4, "bPar5"},
    {i16, "nPar2"},
    {bool4, "bPar6"},
    {bool4, "bPar7"},
    {bool4, "bPar8"},
    {bool4, "bPar9"},
    {bool4, "bDettScanned"},
};

constexpr Row kObservationFile[] = {
    {bool4, "bFlag1"},
    {bool4, "bFlag3", 1300},
    {bool4, "bFlag4", 1300},
    {string, "sText1"},
    {string, "sFile"},
    {i32, "nIdx2"},
    {i32, "nIdx3", 1003},
    {string, "sText2", 1003},
    {bool4, "bAltValue", 1003},
    {f64, "dValue", 1003},
    {f64, "first", kAlways, 1003},
    {f64, "second", kAlways, 1003},
    {f64, "dA1"},
    {f64, "dA2"},
    {f64, "dA3"},
    {f64, "dB1"},
    {f64, "dB2"},
    {f64, "dB3"},
    {f64, "reserved"},
};

}  // namespace

const char* NameOf(FieldType type) {
    switch (type) {
        case u8:
            return "u8";
        case i16:
            return "i16";
        case u16:
            return "u16";
        case i32:
            return "i32";
        case u32:
            return "u32";
        case i64:
            return "i64";
        case f32:
            return "f32";
        case f64:
            return "f64";
        case bool4:
            return "bool4";
        case bool2:
            return "bool2";
        case count:
            return "count";
        case string:
            return "string";
        case drawing:
            return "drawing";
    }
    return "";
}

std::span<const Row> BookRows() { return kBook; }
std::span<const Row> GroupRows() { return kGroup; }
std::span<const Row> PointRows() { return kPoint; }
std::span<const Row> EntityRows() { return kEntity; }
std::span<const Row> EntityMoreRows() { return kEntityMore; }
std::span<const Row> CloudRows() { return kCloud; }
std::span<const Row> ConversionRows() { return kConversion; }
std::span<const Row> DatumRows() { return kDatum; }
std::span<const Row> ProjectionRows() { return kProjection; }
std::span<const Row> MapLibraryRows() { return kMapLibrary; }
std::span<const Row> BookOptionRows() { return kBookOptions; }
std::span<const Row> DisplayEntryRows() { return kDisplayEntry; }
std::span<const Row> PostProcessingRows() { return kPostProcessing; }
std::span<const Row> ObservationFileRows() { return kObservationFile; }

}  // namespace gpsbook
