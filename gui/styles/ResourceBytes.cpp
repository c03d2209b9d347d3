// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/ResourceBytes.h"

#include <cstddef>

#include "foundation/module/MResourceTable.h"

std::vector<std::uint8_t> ResourceBytes(MResource& resource)
{
    constexpr std::size_t Piece = std::size_t{ 1 } << 16;
    constexpr std::size_t Most = std::size_t{ 1 } << 26;
    resource.Rewind();
    MStream& content = resource.Content();
    std::vector<std::uint8_t> bytes;
    for (std::size_t read = 1; read > 0 && bytes.size() < Most;)
    {
        const std::size_t before = bytes.size();
        bytes.resize(before + Piece);
        read = static_cast<std::size_t>(content.Read(bytes.data() + before, Piece));
        bytes.resize(before + read);
    }
    return bytes;
}
