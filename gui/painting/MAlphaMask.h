// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "gui/painting/MBaseBitmap.h"

class MStream;

/// A plane of alphas, kept sparsely: in sectors of 16 x 16 pixels, which take memory of their own only once
/// their pixels differ.
class MAlphaMask : public MBaseBitmap
{
public:
    static constexpr std::int32_t SectorSize = 16;

    /// All 0. Sizes below 1 make an empty mask. Throws MException "Could not create bitmap." for too many
    /// pixels.
    void Create(std::int32_t newWidth, std::int32_t newHeight);
    std::uint8_t Get(std::int32_t x, std::int32_t y) const;
    void Set(std::int32_t x, std::int32_t y, std::uint8_t value);
    /// The alphas of a row from `x` on, which has to lie inside.
    void GetRow(std::int32_t x, std::int32_t y, std::int32_t count, std::uint8_t* values) const;
    /// Sectors whose pixels differ, or did once.
    std::int32_t ExplicitSectors() const;

    /// Little-endian: width, height (4 bytes each), sectors in a row, rows of sectors (2 each), the clip's
    /// width and height (4 each), for each sector a state of 4 bytes (0: a value of 4 bytes follows; 1: 256
    /// bytes follow), and "MASK".
    void Save(MStream& stream) const;
    /// Throws MException "Invalid file contents. " with "Invalid sector state." or "No alpha mask terminator
    /// found.", or the stream's own at its end; the mask is then as it was.
    void Load(MStream& stream);

private:
    struct Sector
    {
        std::uint8_t uniform = 0;
        std::unique_ptr<std::uint8_t[]> values;   // 256, or null while all are `uniform`
    };

    static std::size_t PlaceOf(std::int32_t x, std::int32_t y)
    {
        return static_cast<std::size_t>(((y & 15) << 4) | (x & 15));
    }
    std::size_t SectorOf(std::int32_t x, std::int32_t y) const
    {
        return static_cast<std::size_t>((y >> 4) * sectorsPerRow + (x >> 4));
    }

    std::vector<Sector> sectors;
    std::int16_t sectorsPerRow = 0;
};
