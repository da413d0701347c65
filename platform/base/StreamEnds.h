// StreamEnds: where a project stream's bytes go to and come from.
#pragma once

#include <cstddef>

#include "platform/base/PlatformExport.h"

/// Takes the bytes of an ofpstream, in pieces of up to its window.
class GPS_PLATFORM_API StreamSink {
public:
    StreamSink() = default;
    StreamSink(const StreamSink&) = delete;
    StreamSink& operator=(const StreamSink&) = delete;
    virtual ~StreamSink();

    /// Takes all bytes; on failure an error number of errno, else 0. Not called again after a failure.
    virtual int Write(const void* bytes, std::size_t size) = 0;

    /// The end: everything has been written. An error number, else 0.
    virtual int Close();
};

/// Gives the bytes of an ifpstream.
class GPS_PLATFORM_API StreamSource {
public:
    StreamSource() = default;
    StreamSource(const StreamSource&) = delete;
    StreamSource& operator=(const StreamSource&) = delete;
    virtual ~StreamSource();

    /// Up to `size` bytes; `got` is 0 at the end only. On failure an error number of errno, else 0. Not
    /// called again after the end or a failure.
    virtual int Read(void* bytes, std::size_t size, std::size_t& got) = 0;
};
