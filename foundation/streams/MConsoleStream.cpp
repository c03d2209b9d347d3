// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MConsoleStream.h"

#include <cstdio>

#include "foundation/text/MException.h"

void MConsoleStream::Write(const void* bytes, std::int32_t size)
{
    const auto* characters = static_cast<const unsigned char*>(bytes);
    for (std::int32_t index = 0; index < size; ++index)
        if (std::putchar(characters[index]) == EOF)
            throw MException("Error writing to file \"console\". Probably disk full.", MErrorCode::Content);
}

std::int32_t MConsoleStream::Read(void* buffer, std::int32_t size)
{
    auto* characters = static_cast<unsigned char*>(buffer);
    std::int32_t count = 0;
    while (count < size)
    {
        const int character = std::getchar();
        if (character == EOF)
            break;
        characters[count++] = static_cast<unsigned char>(character);
    }
    return count;
}

void MConsoleStream::Flush()
{
    std::fflush(stdout);
}

bool MConsoleStream::IsEnd()
{
    const int character = std::getchar();
    if (character == EOF)
        return true;
    std::ungetc(character, stdin);
    return false;
}
