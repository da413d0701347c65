// FieldLayout: which fields of records and replies belong to which change bit.
#pragma once

#include <array>
#include <cstdint>

#include "gps/model/ChangeBits.h"

/// Fields that travel together, under one change bit.
struct FieldGroup {
    std::uint32_t bit;
    const char* name;  // for people: what the bit stands for
    int first;         // place of the first field in a reply, counted from 0
    int count;         // fields
};

inline constexpr int GRP_REPLY_FIELDS = 86;
inline constexpr int PUN_REPLY_FIELDS = 29;
inline constexpr int DEL_REPLY_FIELDS = 2;

/// In the order of bits, which is the order in a change record. In an add record the fields stand in the same
/// order as in a reply: behind the tag, for a point behind tag and parent.
inline constexpr std::array<FieldGroup, 13> GRP_FIELDS{{
    {CHG_NOME, "name", 2, 1},
    {CHG_SECSCRI, "code-text", 3, 1},
    {CHG_COORD, "position", 4, 3},
    {CHG_CODEEGN, "entity-code", 7, 1},
    {CHG_GRP_NOMEGRP, "group-name", 8, 1},
    {CHG_GRP_TIPORILIEVO, "survey-type", 9, 1},
    {CHG_GRP_TIPORICEVITORE, "receiver-type", 10, 1},
    {CHG_GRP_BASELAT, "base-latitude", 11, 1},
    {CHG_GRP_BASELONG, "base-longitude", 12, 1},
    {CHG_GRP_BASEELEV, "base-elevation", 13, 1},
    {CHG_GRP_BASEALTANT, "base-antenna", 14, 1},
    {CHG_GRP_CODEELAB, "processing-code", 15, 1},
    {CHG_GRP_CONVCOORD, "conversion", 16, 70},
}};

inline constexpr std::array<FieldGroup, 17> PUN_FIELDS{{
    {CHG_NOME, "name", 2, 1},
    {CHG_SECSCRI, "code-text", 3, 1},
    {CHG_COORD, "position", 4, 3},
    {CHG_CODEEGN, "entity-code", 7, 1},
    {CHG_PUN_DATETIME, "date-time", 8, 4},
    {CHG_PUN_QUA, "quality", 12, 1},
    {CHG_PUN_NUGPS, "gps-satellites", 13, 1},
    {CHG_PUN_NUGLO, "glonass-satellites", 14, 1},
    {CHG_PUN_LAT, "latitude", 15, 1},
    {CHG_PUN_LONG, "longitude", 16, 1},
    {CHG_PUN_ELEV, "elevation", 17, 1},
    {CHG_PUN_ALTANT, "antenna", 18, 1},
    {CHG_PUN_PDOP, "pdop", 19, 1},
    {CHG_PUN_GDOP, "gdop", 20, 1},
    {CHG_PUN_HPOSRMS, "horizontal-rms", 21, 1},
    {CHG_PUN_VPOSRMS, "vertical-rms", 22, 1},
    {CHG_PUN_POSCOV, "covariances", 23, 6},
}};
