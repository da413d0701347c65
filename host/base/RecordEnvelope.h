// RecordEnvelope: what stands around a record of the host's own, so that any reader finds its end.
#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

/// A form number and the length of the payload, 4 bytes each, then the payload. A later form may append
/// fields: what a reader does not know is passed over. The length alone says where the record ends: a reader
/// that wants more than the payload holds gets zeros and a failed stream, not bytes of the next record.
///
/// `write(stream)` writes the payload.
template <class Write>
void WriteEnvelope(ofpstream& out, std::int32_t form, Write write) {
    ofpstream payload(out.GetVersion());  // in memory: the length comes first
    write(payload);
    out.WriteInt(form);
    out.WriteString(payload.GetBytes());
}

/// `read(stream, form)` reads the fields that it knows from the record's stream.
template <class Read>
void ReadEnvelope(ifpstream& in, Read read) {
    const std::int32_t form = in.ReadInt();
    const std::int64_t length = std::max<std::int32_t>(in.ReadInt(), 0);
    const std::int64_t end = in.GetPosition() + length;
    {
        const ifpstream::NearEnd payload(in, end);
        read(in, form);
    }
    in.Skip(end - in.GetPosition());
}
