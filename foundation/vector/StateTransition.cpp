// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/StateTransition.h"

#include <algorithm>
#include <cassert>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/StateTransition.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/vector/InstructionSets.h"

HWY_BEFORE_NAMESPACE();
namespace MVector
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

/// `states` values a channel, channels interleaved; a tile of 8 rows is 16 doubles a column.
void ApplyTarget(const double* matrix, std::size_t states, const double* memory, double* inOut)
{
    constexpr std::size_t TileRows = 8;
    constexpr std::size_t TileWidth = 2 * TileRows;
#if HWY_TARGET == HWY_SCALAR
    for (std::size_t row = 0; row < states; row += TileRows)
    {
        const std::size_t columns = std::min(row + TileRows, states);
        double sums[TileWidth];
        std::copy_n(inOut + 2 * row, TileWidth, sums);
        for (std::size_t column = 0; column < columns; ++column)
        {
            for (std::size_t i = 0; i < TileWidth; i += 2)
            {
                sums[i] += matrix[i] * memory[2 * column];
                sums[i + 1] += matrix[i + 1] * memory[2 * column + 1];
            }
            matrix += TileWidth;
        }
        std::copy_n(sums, TileWidth, inOut + 2 * row);
    }
#else
    const hn::CappedTag<double, 4> d;
    const std::size_t lanes = hn::Lanes(d);
    for (std::size_t row = 0; row < states; row += TileRows)
    {
        const std::size_t columns = std::min(row + TileRows, states);
        const double* tile = matrix;
        matrix += columns * TileWidth;
        // Four vectors are a whole tile, or half of one where vectors are short.
        for (std::size_t at = 0; at < TileWidth; at += 4 * lanes)
        {
            double* target = inOut + 2 * row + at;
            auto sum0 = hn::LoadU(d, target);
            auto sum1 = hn::LoadU(d, target + lanes);
            auto sum2 = hn::LoadU(d, target + 2 * lanes);
            auto sum3 = hn::LoadU(d, target + 3 * lanes);
            const double* values = tile + at;
            for (std::size_t column = 0; column < columns; ++column)
            {
                const auto pair = hn::LoadDup128(d, memory + 2 * column);
                sum0 = hn::MulAdd(hn::LoadU(d, values), pair, sum0);
                sum1 = hn::MulAdd(hn::LoadU(d, values + lanes), pair, sum1);
                sum2 = hn::MulAdd(hn::LoadU(d, values + 2 * lanes), pair, sum2);
                sum3 = hn::MulAdd(hn::LoadU(d, values + 3 * lanes), pair, sum3);
                values += TileWidth;
            }
            hn::StoreU(sum0, d, target);
            hn::StoreU(sum1, d, target + lanes);
            hn::StoreU(sum2, d, target + 2 * lanes);
            hn::StoreU(sum3, d, target + 3 * lanes);
        }
    }
#endif
}
}   // namespace HWY_NAMESPACE
}   // namespace MVector
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace MVector
{
namespace
{
KERNEL_TABLE(ApplyTarget);

constexpr std::size_t TileRows = 8;
constexpr std::size_t TileWidth = 2 * TileRows;
static_assert(TileRows == 2 * StateTransition::TileSections);
// A memory is four doubles, (s1, s2) by (channel 0, channel 1): read as rows of channel pairs.
static_assert(sizeof(CascadeMemory) == 4 * sizeof(double));

/// Where the columns of a tile begin; all tiles above it are full.
std::size_t TileStart(std::size_t tile)
{
    return TileWidth * TileRows * tile * (tile + 1) / 2;
}

std::size_t MatrixSize(std::int32_t sectionCount)
{
    const auto tiles = static_cast<std::size_t>(StateTransition::PaddedCount(sectionCount)) * 2 / TileRows;
    return TileStart(tiles);
}
}   // namespace

void StateTransition::Prepare(std::int32_t maxSectionCount)
{
    matrix.reserve(MatrixSize(maxSectionCount));
}

void StateTransition::Begin(std::int32_t sectionCount)
{
    count = sectionCount;
    matrix.assign(MatrixSize(sectionCount), 0.0);
}

void StateTransition::SetSection(std::int32_t section, const CascadeMemory* memory)
{
    assert(section >= 0 && section < count);
    const auto states = static_cast<std::size_t>(2 * count);
    for (std::size_t row = 2 * static_cast<std::size_t>(section); row < states; ++row)
    {
        const CascadeMemory& image = memory[row / 2];
        const double* values = row % 2 == 0 ? image.s1 : image.s2;
        const std::size_t tile = row / TileRows;
        for (std::size_t unit = 0; unit < 2; ++unit)
        {
            const std::size_t column = 2 * static_cast<std::size_t>(section) + unit;
            double* target = matrix.data() + TileStart(tile) + column * TileWidth + 2 * (row % TileRows);
            target[0] = values[unit];
            target[1] = values[unit];
        }
    }
}

void StateTransition::Apply(const CascadeMemory* memory, CascadeMemory* inOut) const
{
    if (count > 0)
        KERNEL(ApplyTarget)
    (matrix.data(), static_cast<std::size_t>(2 * count), reinterpret_cast<const double*>(memory),
     reinterpret_cast<double*>(inOut));
}
}   // namespace MVector
#endif
