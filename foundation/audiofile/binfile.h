// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "foundation/streams/MStream.h"

namespace mp3dec
{
/// Bytes for the MPEG decoder to read. Positions count from the start of the audio.
class binfile
{
public:
    binfile() = default;
    binfile(const binfile&) = delete;
    binfile& operator=(const binfile&) = delete;
    virtual ~binfile() = default;
    /// Answers the bytes read, 0 at the end.
    virtual std::int32_t Read(void* buffer, std::int32_t size) = 0;
    virtual void Seek(std::int64_t position) = 0;
    virtual std::int64_t Tell() = 0;
    virtual std::int64_t Length() = 0;
};

/// A part of a stream that lies in it in one piece.
class binfileMStream : public binfile
{
public:
    binfileMStream(MStream& source, std::int64_t firstByte, std::int64_t byteCount)
        : stream(source), start(firstByte), length(byteCount)
    {
        Seek(0);
    }

    std::int32_t Read(void* buffer, std::int32_t size) override
    {
        const std::int64_t left = std::max<std::int64_t>(length - Tell(), 0);
        return stream.Read(buffer, static_cast<std::int32_t>(std::min<std::int64_t>(size, left)));
    }
    void Seek(std::int64_t position) override
    {
        stream.Seek(start + std::clamp<std::int64_t>(position, 0, length), MStream::Begin);
    }
    std::int64_t Tell() override { return stream.GetPosition() - start; }
    std::int64_t Length() override { return length; }

private:
    MStream& stream;
    std::int64_t start;
    std::int64_t length;
};
}   // namespace mp3dec
