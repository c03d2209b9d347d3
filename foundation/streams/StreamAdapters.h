// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/streams/MStream.h"
#include "foundation/text/MByteReader.h"

/// Lets codecs read from a stream.
class MStreamSource final : public MByteSource
{
public:
    explicit MStreamSource(MStream& sourceStream) : stream(sourceStream) {}
    std::int32_t ReadBytes(void* buffer, std::int32_t size) override { return stream.Read(buffer, size); }

private:
    MStream& stream;
};

/// Lets codecs write to a stream.
class MStreamSink final : public MByteSink
{
public:
    explicit MStreamSink(MStream& targetStream) : stream(targetStream) {}
    void WriteBytes(const void* bytes, std::int32_t size) override { stream.Write(bytes, size); }

private:
    MStream& stream;
};
