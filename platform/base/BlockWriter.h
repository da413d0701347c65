// BlockWriter: several values to a project stream in one go.
#pragma once

#include "platform/base/LittleEndian.h"
#include "platform/base/ofpstream.h"

/// Asks the stream once whether there is room, not for each value. While it lives nothing else is written to
/// the stream.
class BlockWriter {
public:
    /// `atMost` bytes are written, 4096 or fewer.
    BlockWriter(ofpstream& out, std::size_t atMost) : out_(out), at_(out.BeginBlock(atMost)) {}
    ~BlockWriter() { out_.EndBlock(at_); }
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    void WriteUChar(unsigned char value) { Put(value); }
    void WriteShort(short value) { Put(static_cast<std::uint16_t>(value)); }
    void WriteUShort(unsigned short value) { Put(value); }
    void WriteInt(std::int32_t value) { Put(static_cast<std::uint32_t>(value)); }
    void WriteUInt(std::uint32_t value) { Put(value); }
    void WriteInt64(std::int64_t value) { Put(static_cast<std::uint64_t>(value)); }
    void WriteFloat(float value) { Put(std::bit_cast<std::uint32_t>(value)); }    // any unit
    void WriteDouble(double value) { Put(std::bit_cast<std::uint64_t>(value)); }  // any unit

private:
    template <class T>
    void Put(T value) {
        StoreLittleEndian(at_, value);
        at_ += sizeof value;
    }

    ofpstream& out_;
    unsigned char* at_;
};
