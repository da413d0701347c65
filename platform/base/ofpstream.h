// ofpstream: the project stream for writing.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "platform/base/LittleEndian.h"
#include "platform/base/PlatformExport.h"
#include "platform/base/StreamEnds.h"
#include "platform/base/streams.h"

/// The first bytes of a file with a signature.
inline constexpr unsigned char kFileMarker[5] = {':', 1, 1, 0, 0};

/// Writes values one after another, without gaps, least significant byte first whatever the machine.
/// It carries the version of the file that it belongs to; who writes decides by it which fields there are.
///
/// A failure to write is remembered, and everything after it is dropped: ask IsOk, or Close, at the end.
class GPS_PLATFORM_API ofpstream {
public:
    /// Into memory, see GetBytes.
    explicit ofpstream(short version);

    /// Into a new file, or over an old one. Both separators "/" and "\" are understood. When it cannot be
    /// opened the stream has failed from the beginning. Not atomic: a project is saved by other means.
    ofpstream(const char* file, short version);

    /// The same, for a kind of file that others must recognise: it begins with the 5 bytes of kFileMarker.
    /// The signature is only kept (GetSignature): where it stands is the format's business.
    ofpstream(const char* file, short version, const char* signature);

    /// Into a sink, which must outlive the stream.
    ofpstream(StreamSink& sink, short version);

    ofpstream(const ofpstream&) = delete;
    ofpstream& operator=(const ofpstream&) = delete;

    /// Closes, too; but nobody hears of a failure then.
    ~ofpstream();

    short GetVersion() const { return version_; }
    void SetVersion(short version) { version_ = version; }

    /// Empty for a stream that was made without one.
    const std::string& GetSignature() const { return signature_; }

    /// False once a byte could not be written.
    bool IsOk() const { return error_ == 0; }

    /// Error number (errno) of the first failure; 0: none.
    int GetError() const { return error_; }

    /// Bytes written so far.
    std::int64_t GetPosition() const { return before_ + (cur_ - begin_); }

    /// Passes on what stands in the window; to be asked IsOk afterwards.
    void Flush();

    /// Flushes and ends; true when every byte was taken. Nothing may be written afterwards.
    bool Close();

    /// What was written into memory so far; empty for any other stream. Valid until the next write.
    std::string_view GetBytes() const;

    /// Forgets what was written into memory and keeps its room; for no other stream.
    void Clear() { cur_ = begin_; }

    void WriteChar(char value) { Put(static_cast<std::uint8_t>(value)); }
    void WriteUChar(unsigned char value) { Put(value); }
    void WriteShort(short value) { Put(static_cast<std::uint16_t>(value)); }
    void WriteUShort(unsigned short value) { Put(value); }
    void WriteInt(std::int32_t value) { Put(static_cast<std::uint32_t>(value)); }
    void WriteUInt(std::uint32_t value) { Put(value); }
    void WriteInt64(std::int64_t value) { Put(static_cast<std::uint64_t>(value)); }
    void WriteFloat(float value) { Put(std::bit_cast<std::uint32_t>(value)); }    // any unit
    void WriteDouble(double value) { Put(std::bit_cast<std::uint64_t>(value)); }  // any unit

    void WriteBytes(const void* bytes, std::size_t size) {
        if (size > Room()) [[unlikely]]
            return WriteLong(bytes, size);
        if (size == 0) return;
        std::memcpy(cur_, bytes, size);
        cur_ += size;
    }

    /// The length as a signed 32-bit number, then the bytes. A text is never longer than that.
    void WriteString(std::string_view text) {
        WriteInt(static_cast<std::int32_t>(text.size()));
        WriteBytes(text.data(), text.size());
    }

    /// For BlockWriter: room for up to 4096 bytes in one piece, and the end of what was put there.
    unsigned char* BeginBlock(std::size_t atMost) {
        if (atMost > Room()) [[unlikely]]
            MakeRoom(atMost);
        return cur_;
    }
    void EndBlock(unsigned char* end) { cur_ = end; }

private:
    template <class T>
    void Put(T value) {
        if (sizeof value > Room()) [[unlikely]]
            MakeRoom(sizeof value);
        StoreLittleEndian(cur_, value);
        cur_ += sizeof value;
    }

    std::size_t Room() const { return static_cast<std::size_t>(end_ - cur_); }
    void MakeRoom(std::size_t size);
    void WriteLong(const void* bytes, std::size_t size);
    void Pass(const void* bytes, std::size_t size);

    // The window [begin_, end_): what is written and not passed on stands before cur_.
    unsigned char* begin_ = nullptr;
    unsigned char* cur_ = nullptr;
    unsigned char* end_ = nullptr;
    std::int64_t before_ = 0;  // bytes passed on
    std::unique_ptr<unsigned char[]> window_;
    std::string signature_;
    std::unique_ptr<StreamSink> ownSink_;
    StreamSink* sink_ = nullptr;  // null: memory
    int error_ = 0;
    bool closed_ = false;
    short version_;
};
