// Change bits: what a setter reports to its cloud item, and what the cloud tables send by.
//
// The numbers are stored and sent; they are never reused. The first four are common; above them points and
// groups each have their own, so that a mask means nothing without the kind of its item.
#pragma once

#include <cstdint>

// Points and groups.
inline constexpr std::uint32_t CHG_NOME = 0x1;
inline constexpr std::uint32_t CHG_SECSCRI = 0x2;
inline constexpr std::uint32_t CHG_COORD = 0x4;
inline constexpr std::uint32_t CHG_CODEEGN = 0x8;

// Points.
inline constexpr std::uint32_t CHG_PUN_DATETIME = 0x10;
inline constexpr std::uint32_t CHG_PUN_QUA = 0x20;
inline constexpr std::uint32_t CHG_PUN_NUGPS = 0x40;
inline constexpr std::uint32_t CHG_PUN_NUGLO = 0x80;
inline constexpr std::uint32_t CHG_PUN_LAT = 0x100;
inline constexpr std::uint32_t CHG_PUN_LONG = 0x200;
inline constexpr std::uint32_t CHG_PUN_ELEV = 0x400;
inline constexpr std::uint32_t CHG_PUN_ALTANT = 0x800;
inline constexpr std::uint32_t CHG_PUN_PDOP = 0x1000;
inline constexpr std::uint32_t CHG_PUN_GDOP = 0x2000;
inline constexpr std::uint32_t CHG_PUN_HPOSRMS = 0x4000;
inline constexpr std::uint32_t CHG_PUN_VPOSRMS = 0x8000;
inline constexpr std::uint32_t CHG_PUN_POSCOV = 0x10000;

// Groups.
inline constexpr std::uint32_t CHG_GRP_NOMEGRP = 0x10;
inline constexpr std::uint32_t CHG_GRP_TIPORILIEVO = 0x20;
inline constexpr std::uint32_t CHG_GRP_TIPORICEVITORE = 0x40;
inline constexpr std::uint32_t CHG_GRP_BASELAT = 0x80;
inline constexpr std::uint32_t CHG_GRP_BASELONG = 0x100;
inline constexpr std::uint32_t CHG_GRP_BASEELEV = 0x200;
inline constexpr std::uint32_t CHG_GRP_BASEALTANT = 0x400;
inline constexpr std::uint32_t CHG_GRP_CODEELAB = 0x800;
inline constexpr std::uint32_t CHG_GRP_CONVCOORD = 0x1000;
