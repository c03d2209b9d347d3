// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MHexaStream.h"

#include <algorithm>
#include <array>
#include <string>

#include "foundation/streams/Hexadecimal.h"

namespace
{
constexpr std::int32_t RunSize = 128;
}   // namespace

void MHexaStream::Write(const void* bytes, std::int32_t size)
{
    const auto* source = static_cast<const std::uint8_t*>(bytes);
    std::string digits;
    for (std::int32_t done = 0; done < size; done += RunSize)
    {
        digits.clear();
        AppendHexadecimal(source + done, std::min(size - done, RunSize), digits);
        MDispatchStream::Write(digits.data(), static_cast<std::int32_t>(digits.size()));
    }
}

std::int32_t MHexaStream::Read(void* buffer, std::int32_t size)
{
    auto* bytes = static_cast<std::uint8_t*>(buffer);
    std::array<char, 2 * RunSize> digits;
    std::int32_t done = 0;
    while (done < size)
    {
        const std::int32_t wanted = std::min(size - done, RunSize);
        const std::int32_t got = MDispatchStream::Read(digits.data(), 2 * wanted);
        if (got % 2 != 0)
            ThrowInvalidDigit();
        DecodeHexadecimal(digits.data(), got / 2, bytes + done);
        done += got / 2;
        if (got < 2 * wanted)
            break;
    }
    return done;
}
