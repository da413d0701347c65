// ifpstream: the project stream for reading.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

#include "platform/base/LittleEndian.h"
#include "platform/base/PlatformExport.h"
#include "platform/base/StreamEnds.h"
#include "platform/base/streams.h"

/// Thrown by a stream that was given a limit of reads past its end, when they are used up. It passes
/// through the library, which keeps what it had read.
class GPS_PLATFORM_API StreamExhausted : public std::exception {
public:
    const char* what() const noexcept override;
};

/// Reads what ofpstream wrote. It carries the version of the file that it belongs to.
///
/// A read that needs more bytes than remain gives zero (of a text: what remains), leaves the stream at its
/// end and in the failed state; reading goes on giving zeros. Nothing is thrown, unless SetPastEndLimit asks
/// for it: a reader that loops over a damaged count then ends soon.
class GPS_PLATFORM_API ifpstream {
public:
    /// Of memory, which must outlive the stream.
    ifpstream(const void* bytes, std::size_t size, short version);

    /// Of a file. Both separators "/" and "\" are understood. When it cannot be opened the stream has
    /// failed from the beginning.
    ifpstream(const char* file, short version);

    /// Of a source, which must outlive the stream and holds `size` bytes; a source that ends before has
    /// failed.
    ifpstream(StreamSource& source, std::int64_t size, short version);

    ifpstream(const ifpstream&) = delete;
    ifpstream& operator=(const ifpstream&) = delete;
    ~ifpstream();

    short GetVersion() const { return version_; }
    void SetVersion(short version) { version_ = version; }

    /// Reads the 5 bytes that a file with a signature, or a journal, begins with.
    void ReadMarker();

    /// Whether the first of them was there and is not ':'. Entries of a journal are applied to a field book
    /// only from a stream with this flag. False until the marker has been read, or the flag set.
    bool GetHeaderFlag() const { return headerFlag_; }
    void SetHeaderFlag(bool flag) { headerFlag_ = flag; }

    /// Whether the four bytes behind it were 01 01 00 00.
    bool HasKnownMarker() const { return knownMarker_; }

    /// True while every read found its bytes.
    bool IsOk() const { return failedAt_ < 0; }

    /// Where the first read stood that did not find its bytes; -1: none so far.
    std::int64_t GetFailPosition() const { return failedAt_; }

    /// Error number (errno) when the bytes could not be fetched; 0: none, also at an early end.
    int GetError() const { return error_; }

    /// Bytes taken so far.
    std::int64_t GetPosition() const { return before_ + (cur_ - begin_); }

    /// Bytes that remain.
    std::int64_t GetRemaining() const { return size_ - GetPosition(); }

    /// Allows this many reads past the end; the next one throws StreamExhausted. Negative (the beginning):
    /// any number.
    void SetPastEndLimit(int reads) { pastEndLeft_ = reads; }

    char ReadChar() { return static_cast<char>(Get<std::uint8_t>()); }
    unsigned char ReadUChar() { return Get<std::uint8_t>(); }
    short ReadShort() { return static_cast<short>(Get<std::uint16_t>()); }
    unsigned short ReadUShort() { return Get<std::uint16_t>(); }
    std::int32_t ReadInt() { return static_cast<std::int32_t>(Get<std::uint32_t>()); }
    std::uint32_t ReadUInt() { return Get<std::uint32_t>(); }
    std::int64_t ReadInt64() { return static_cast<std::int64_t>(Get<std::uint64_t>()); }
    float ReadFloat() { return std::bit_cast<float>(Get<std::uint32_t>()); }     // any unit
    double ReadDouble() { return std::bit_cast<double>(Get<std::uint64_t>()); }  // any unit

    /// True when all bytes were there; else those that were, then zeros.
    bool ReadBytes(void* bytes, std::size_t size);

    /// A signed 32-bit length, then as many bytes. 0 or less: the empty text.
    void ReadString(std::string& text) {
        const std::int32_t length = ReadInt();
        if (length <= 0) {
            text.clear();
        } else if (static_cast<std::size_t>(length) <= Ahead()) [[likely]] {
            text.assign(reinterpret_cast<const char*>(cur_), static_cast<std::size_t>(length));
            cur_ += length;
        } else {
            ReadLong(text, length);
        }
    }
    std::string ReadString() {
        std::string text;
        ReadString(text);
        return text;
    }

    /// Passes over bytes; beyond the end it is a failed read.
    void Skip(std::int64_t size);

    /// While it lives the stream ends at a nearer position: whoever reads one record finds no bytes of the
    /// next one in it. Not before the present position, not behind the end that holds already.
    class GPS_PLATFORM_API NearEnd {
    public:
        NearEnd(ifpstream& in, std::int64_t end) : in_(in), former_(in.size_) { in_.SetEnd(end, former_); }
        ~NearEnd() { in_.SetEnd(former_, in_.whole_); }
        NearEnd(const NearEnd&) = delete;
        NearEnd& operator=(const NearEnd&) = delete;

    private:
        ifpstream& in_;
        std::int64_t former_;
    };

private:
    template <class T>
    T Get() {
        if (sizeof(T) > Ahead() && !Fetch(sizeof(T))) [[unlikely]] {
            PastEnd();
            return T{};
        }
        const T value = LoadLittleEndian<T>(cur_);
        cur_ += sizeof value;
        return value;
    }

    std::size_t Ahead() const { return static_cast<std::size_t>(end_ - cur_); }
    bool Fetch(std::size_t size);
    void PastEnd() { PastEnd(GetPosition()); }
    void PastEnd(std::int64_t begin);
    void SetEnd(std::int64_t end, std::int64_t atMost);
    void ReadLong(std::string& text, std::int32_t length);
    std::size_t ReadSome(void* bytes, std::size_t size);

    // The window [begin_, end_): what was fetched and not taken stands from cur_ on. What was fetched beyond
    // a nearer end waits behind end_.
    const unsigned char* begin_ = nullptr;
    const unsigned char* cur_ = nullptr;
    const unsigned char* end_ = nullptr;
    std::size_t filled_ = 0;   // bytes fetched, from begin_ on
    std::int64_t before_ = 0;  // bytes before the window
    std::int64_t size_ = 0;    // where the stream ends now
    std::int64_t whole_ = 0;   // where it ends at last
    std::int64_t failedAt_ = -1;
    std::unique_ptr<unsigned char[]> window_;
    std::size_t room_ = 0;  // of the window
    std::unique_ptr<StreamSource> ownSource_;
    StreamSource* source_ = nullptr;  // null: memory
    int error_ = 0;
    int pastEndLeft_ = -1;
    short version_;
    bool headerFlag_ = false;
    bool knownMarker_ = false;
};
