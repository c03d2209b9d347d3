// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MObject.h"
#include "foundation/text/MString.h"

/// Bytes in and out. Streams stack: one may work on another that is given to it. Every operation that a
/// class doesn't offer throws MException "Service \"{0}\" is not implemented.". One thread at a time.
class MStream : public MObject
{
public:
    enum Origin
    {
        Begin = 0,
        Current = 1,
        End = 2
    };
    enum class Line
    {
        Read = 0,
        BufferFull = 1,
        NoData = 2
    };

    virtual MStream* GetSubStream();
    virtual void Write(const void* bytes, std::int32_t size);
    virtual void WriteBlank(std::int32_t count);
    /// Answers the bytes read: fewer at the end of the data, 0 at the end.
    virtual std::int32_t Read(void* buffer, std::int32_t size);
    /// Up to a zero byte, a line feed, the end or a full buffer; carriage returns are skipped. The buffer
    /// is always zero-terminated, so it takes size - 1 characters.
    virtual Line ReadLine(char* buffer, std::int32_t size);
    virtual void WriteText(const MString& text);
    virtual void WriteTextLine(const MString& text);
    virtual void Seek(std::int64_t offset, int origin);
    virtual std::int64_t GetPosition();
    virtual void Flush();
    virtual bool IsEnd();
    virtual void Truncate();
    virtual std::int64_t GetSize();
    virtual bool IsOpen();
};

/// Read of exactly `size` bytes; fewer throw "Could not read required data from stream.".
void ReadExact(MStream& stream, void* buffer, std::int32_t size);
/// A line of any length; false at the end of the data with nothing read.
bool ReadTextLine(MStream& stream, MString& text);
/// The same, throwing "Could not load a line from stream." at the end.
MString ReadLineOrFail(MStream& stream);
/// The rest of the stream (from its start with `rewind`) as upper-case hexadecimal digits.
MString ReadAllAsHex(MStream& stream, bool rewind);
