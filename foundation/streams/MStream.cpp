// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MStream.h"

#include <algorithm>
#include <array>
#include <string>

#include "foundation/streams/Hexadecimal.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
constexpr std::int32_t RunSize = 1024;

[[noreturn]] void ThrowNotImplemented(const char* service)
{
    throw MException(Format("Service \"{0}\" is not implemented.", service));
}
}   // namespace

MStream* MStream::GetSubStream()
{
    ThrowNotImplemented("return substream");
}

void MStream::Write(const void*, std::int32_t)
{
    ThrowNotImplemented("write to stream");
}

void MStream::WriteBlank(std::int32_t count)
{
    const std::array<char, RunSize> blank = {};
    for (std::int32_t left = count; left > 0; left -= RunSize)
        Write(blank.data(), std::min(left, RunSize));
}

std::int32_t MStream::Read(void*, std::int32_t)
{
    ThrowNotImplemented("read from stream");
}

MStream::Line MStream::ReadLine(char* buffer, std::int32_t size)
{
    std::int32_t length = 0;
    bool hasReadAny = false;
    while (length < size - 1)
    {
        char character = 0;
        const bool isEnd = Read(&character, 1) == 0;
        if (isEnd || character == 0 || character == '\n')
        {
            buffer[length] = 0;
            return isEnd && !hasReadAny ? Line::NoData : Line::Read;
        }
        hasReadAny = true;
        if (character != '\r')
            buffer[length++] = character;
    }
    if (size > 0)
        buffer[length] = 0;
    return Line::BufferFull;
}

void MStream::WriteText(const MString& text)
{
    const std::string bytes = text.ToUTF8();
    Write(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

void MStream::WriteTextLine(const MString& text)
{
    WriteText(text);
    Write("\n", 1);
}

void MStream::Seek(std::int64_t offset, int origin)
{
    std::int64_t distance = offset;
    if (origin == Begin)
        distance -= GetPosition();
    else if (origin == End)
        distance += GetSize() - GetPosition();
    else if (origin != Current)
        throw MException("Invalid seek origin.", MErrorCode::InvalidArgument);
    if (distance < 0)
        ThrowNotImplemented("backward seek in a stream");

    std::array<char, RunSize> discarded;
    while (distance > 0)
    {
        const auto wanted = static_cast<std::int32_t>(std::min<std::int64_t>(distance, RunSize));
        const std::int32_t got = Read(discarded.data(), wanted);
        if (got <= 0)
            return;   // the end of the data, as far as one can go
        distance -= got;
    }
}

std::int64_t MStream::GetPosition()
{
    ThrowNotImplemented("get stream position");
}

void MStream::Flush()
{
    ThrowNotImplemented("flush stream");
}

bool MStream::IsEnd()
{
    ThrowNotImplemented("end of stream test");
}

void MStream::Truncate()
{
    ThrowNotImplemented("truncate stream");
}

std::int64_t MStream::GetSize()
{
    ThrowNotImplemented("stream size detection");
}

bool MStream::IsOpen()
{
    return true;
}

void ReadExact(MStream& stream, void* buffer, std::int32_t size)
{
    if (stream.Read(buffer, size) != size)
        throw MException("Could not read required data from stream.", MErrorCode::Content);
}

bool ReadTextLine(MStream& stream, MString& text)
{
    // Decoded as a whole: a sequence of UTF-8 may lie across two pieces.
    std::string line;
    std::array<char, 256> piece;
    MStream::Line state = MStream::Line::BufferFull;
    while (state == MStream::Line::BufferFull)
    {
        state = stream.ReadLine(piece.data(), static_cast<std::int32_t>(piece.size()));
        line += piece.data();
    }
    text = MString::FromUTF8(line);
    return state == MStream::Line::Read || !line.empty();
}

MString ReadLineOrFail(MStream& stream)
{
    MString text;
    if (!ReadTextLine(stream, text))
        throw MException("Could not load a line from stream.", MErrorCode::Content);
    return text;
}

MString ReadAllAsHex(MStream& stream, bool rewind)
{
    if (rewind)
        stream.Seek(0, MStream::Begin);
    std::string digits;
    std::array<std::uint8_t, 128> run;
    while (const std::int32_t got = stream.Read(run.data(), static_cast<std::int32_t>(run.size())))
        AppendHexadecimal(run.data(), got, digits);
    return MString::Copy(digits);
}
