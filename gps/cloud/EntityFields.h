// EntityFields: the fields that groups and points share as drawing entities.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base/vexString.h"
#include "platform/entity/CEgn.h"

/// Bytes of the texts that AppendEntityFields may append.
std::size_t EntityTextBytes(const CEgn& entity);

/// Appends name, code text, position and entity code to a line, those whose bits are in the mask; returns the
/// new end.
char* AppendEntityFields(char* end, const CEgn& entity, std::uint32_t mask);

/// Stores the fields of one bit through the entity's own setters. False for a bit of another kind.
bool SetEntityFields(CEgn& entity, std::uint32_t bit, const vex::String* fields);

/// Fills what is empty of the fields that no record carries.
void FillEntityGaps(CEgn& local, const CEgn& incoming);
