// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/MAlphaMask.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/MBitmap.h"

namespace
{
constexpr std::size_t sectorBytes = 256;
constexpr char terminator[] = { 'M', 'A', 'S', 'K' };

std::int32_t SectorsAcross(std::int32_t size)
{
    return (size + MAlphaMask::SectorSize - 1) / MAlphaMask::SectorSize;
}

void WriteNumber(MStream& stream, std::int32_t value, std::int32_t bytes)
{
    std::uint8_t buffer[4];
    for (std::int32_t i = 0; i < bytes; ++i)
        buffer[i] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> (8 * i));
    stream.Write(buffer, bytes);
}

std::int32_t ReadNumber(MStream& stream, std::int32_t bytes)
{
    std::uint8_t buffer[4]{};
    ReadExact(stream, buffer, bytes);
    std::uint32_t value = 0;
    for (std::int32_t i = 0; i < bytes; ++i)
        value |= std::uint32_t{ buffer[i] } << (8 * i);
    return static_cast<std::int32_t>(value);
}

[[noreturn]] void Fail(const char* detail)
{
    throw MException(MString("Invalid file contents. ") + MString(detail), MErrorCode::Content);
}
}   // namespace

void MAlphaMask::Create(std::int32_t newWidth, std::int32_t newHeight)
{
    if (newWidth < 1 || newHeight < 1)
        newWidth = newHeight = 0;
    if (std::int64_t{ newWidth } * newHeight > MBitmap::MostPixels ||
        SectorsAcross(std::max(newWidth, newHeight)) > std::numeric_limits<std::int16_t>::max())
        throw MException("Could not create bitmap.", MErrorCode::InvalidArgument);
    sectorsPerRow = static_cast<std::int16_t>(SectorsAcross(newWidth));
    sectors.clear();
    sectors.resize(static_cast<std::size_t>(sectorsPerRow * SectorsAcross(newHeight)));
    SetSize(newWidth, newHeight);
}

std::uint8_t MAlphaMask::Get(std::int32_t x, std::int32_t y) const
{
    const Sector& sector = sectors[SectorOf(x, y)];
    return sector.values ? sector.values[PlaceOf(x, y)] : sector.uniform;
}

void MAlphaMask::Set(std::int32_t x, std::int32_t y, std::uint8_t value)
{
    Sector& sector = sectors[SectorOf(x, y)];
    if (!sector.values)
    {
        if (value == sector.uniform)
            return;
        sector.values = std::make_unique<std::uint8_t[]>(sectorBytes);
        std::fill_n(sector.values.get(), sectorBytes, sector.uniform);
    }
    sector.values[PlaceOf(x, y)] = value;
}

void MAlphaMask::GetRow(std::int32_t x, std::int32_t y, std::int32_t count, std::uint8_t* values) const
{
    while (count > 0)
    {
        const Sector& sector = sectors[SectorOf(x, y)];
        const std::int32_t run = std::min(count, SectorSize - (x & 15));
        if (sector.values)
            std::copy_n(&sector.values[PlaceOf(x, y)], run, values);
        else
            std::fill_n(values, run, sector.uniform);
        x += run;
        values += run;
        count -= run;
    }
}

std::int32_t MAlphaMask::ExplicitSectors() const
{
    return static_cast<std::int32_t>(std::count_if(
        sectors.begin(), sectors.end(), [](const Sector& each) { return each.values != nullptr; }));
}

void MAlphaMask::Save(MStream& stream) const
{
    WriteNumber(stream, Width(), 4);
    WriteNumber(stream, Height(), 4);
    WriteNumber(stream, sectorsPerRow, 2);
    WriteNumber(stream, SectorsAcross(Height()), 2);
    WriteNumber(stream, Clip().Width(), 4);
    WriteNumber(stream, Clip().Height(), 4);
    for (const Sector& sector : sectors)
    {
        WriteNumber(stream, sector.values ? 1 : 0, 4);
        if (sector.values)
            stream.Write(sector.values.get(), static_cast<std::int32_t>(sectorBytes));
        else
            WriteNumber(stream, sector.uniform, 4);
    }
    stream.Write(terminator, sizeof terminator);
}

void MAlphaMask::Load(MStream& stream)
{
    MAlphaMask read;
    const std::int32_t newWidth = ReadNumber(stream, 4);
    const std::int32_t newHeight = ReadNumber(stream, 4);
    const std::int32_t across = ReadNumber(stream, 2);
    const std::int32_t down = ReadNumber(stream, 2);
    ReadNumber(stream, 4);   // the clip is the whole plane
    ReadNumber(stream, 4);
    // Before anything is allocated: what the file is too short for isn't made.
    const bool sizesFit = newWidth >= 0 && newHeight >= 0 && across == SectorsAcross(newWidth) &&
                          down == SectorsAcross(newHeight);
    constexpr std::int64_t leastBytes = 8;   // of a sector
    if (!sizesFit || stream.GetSize() - stream.GetPosition() < leastBytes * across * down)
        Fail("No alpha mask terminator found.");
    read.Create(newWidth, newHeight);
    for (Sector& sector : read.sectors)
    {
        const std::int32_t state = ReadNumber(stream, 4);
        if (state == 0)
        {
            sector.uniform = static_cast<std::uint8_t>(ReadNumber(stream, 4));
            continue;
        }
        if (state != 1)
            Fail("Invalid sector state.");
        sector.values = std::make_unique<std::uint8_t[]>(sectorBytes);
        ReadExact(stream, sector.values.get(), static_cast<std::int32_t>(sectorBytes));
    }
    char end[sizeof terminator]{};
    if (stream.Read(end, sizeof end) != sizeof end || std::memcmp(end, terminator, sizeof end) != 0)
        Fail("No alpha mask terminator found.");
    sectors = std::move(read.sectors);
    sectorsPerRow = read.sectorsPerRow;
    SetSize(newWidth, newHeight);
}
