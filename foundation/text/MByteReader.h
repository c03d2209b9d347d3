// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

/// Where codecs get bytes from; a stream stands behind it.
class MByteSource
{
public:
    /// Answers the bytes read, fewer than `size` at the end of the data, 0 at the end.
    virtual std::int32_t ReadBytes(void* buffer, std::int32_t size) = 0;

protected:
    ~MByteSource() = default;
};

/// Where codecs put bytes.
class MByteSink
{
public:
    virtual void WriteBytes(const void* bytes, std::int32_t size) = 0;

protected:
    ~MByteSink() = default;
};

/// Reads a source byte by byte through a small buffer. It may have taken more from the source than it
/// gave out. One thread at a time.
class MByteReader
{
public:
    explicit MByteReader(MByteSource& byteSource) : source(&byteSource) {}

    /// True when there is no further byte.
    bool IsEnd() { return position == fill && !Refill(); }
    /// Throws MException "No more data in source stream." at the end.
    std::uint8_t Next()
    {
        if (IsEnd())
            ThrowNoMoreData();
        return buffer[position++];
    }
    /// Skips the bytes if they come next, otherwise leaves them. At most as many as the buffer holds.
    bool SkipIfNext(const std::uint8_t* bytes, std::uint32_t count);

private:
    bool Refill();
    [[noreturn]] static void ThrowNoMoreData();

    MByteSource* source;
    std::array<std::uint8_t, 256> buffer;
    std::uint32_t fill = 0;
    std::uint32_t position = 0;
};
