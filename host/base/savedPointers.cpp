#include "platform/base/savedPointers.h"

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

void vex::SavePointerToFile(ofpstream& out, long long pointer, CPtr64Mapper* mapper) {
    out.WriteInt64(pointer);
    if (mapper) mapper->Add(pointer);
}

long long vex::LoadPointerFromFile(ifpstream& in) { return in.ReadInt64(); }
