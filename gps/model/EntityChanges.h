// What points and groups share as drawing entities in the cloud: compare, store, report.
#pragma once

#include <cstdint>
#include <string>

#include "gps/model/ChangeBits.h"
#include "platform/entity/CCloudItem.h"
#include "platform/entity/CEgn.h"

// `self` is a point or a group: both an entity, whose own setters only store, and a cloud item.

template <class Self>
void ChangeNome(Self& self, const std::string& nome) {
    if (nome == self.GetNome()) return;
    self.CEgn::SetNome(nome);
    self.CloudItemChanged(CHG_NOME);
}

template <class Self>
void ChangeSecScri(Self& self, const std::string& secScri) {
    if (secScri == self.GetSecScri()) return;
    self.CEgn::SetSecScri(secScri);
    self.CloudItemChanged(CHG_SECSCRI);
}

// Metres: easting, northing, height.
template <class Self>
void ChangeCoord(Self& self, double x, double y, double z) {
    if (x == self.GetCoordX() && y == self.GetCoordY() && z == self.GetCoordZ()) return;
    self.CEgn::DoSetCoord(x, y, z);
    self.CloudItemChanged(CHG_COORD);
}

template <class Self>
void ChangeCodeEgn(Self& self, unsigned long code) {
    if (static_cast<std::uint32_t>(code) == self.GetCodeEgn()) return;  // entity codes hold 32 bits
    self.CEgn::SetCodeEgn(code);
    self.CloudItemChanged(CHG_CODEEGN);
}
