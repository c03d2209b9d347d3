// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <type_traits>

/// State bits of a class, named by index 0 to BitCount - 1.
template <int BitCount>
class MFlagManager
{
    static_assert(BitCount == 16 || BitCount == 32);

public:
    bool TestFlag(int index) const noexcept { return (bits & Bit(index)) != 0; }
    void SetFlag(int index) noexcept { bits = static_cast<Bits>(bits | Bit(index)); }
    void ClearFlag(int index) noexcept { bits = static_cast<Bits>(bits & ~Bit(index)); }

private:
    using Bits = std::conditional_t<BitCount == 16, std::uint16_t, std::uint32_t>;
    static std::uint32_t Bit(int index) noexcept { return std::uint32_t{ 1 } << index; }

    Bits bits = 0;
};
