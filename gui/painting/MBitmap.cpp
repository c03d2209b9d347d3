// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/MBitmap.h"

#include <algorithm>
#include <utility>

#include "foundation/text/MException.h"
#include "gui/painting/MAlphaMask.h"
#include "gui/painting/Stretching.h"

namespace
{
MBitmap::SystemCopyMaker systemCopyMaker = nullptr;
}

void MBitmap::SetSystemCopyMaker(SystemCopyMaker maker)
{
    systemCopyMaker = maker;
}

void MBitmap::Create(std::int32_t newWidth, std::int32_t newHeight)
{
    if (newWidth < 1 || newHeight < 1)
        newWidth = newHeight = 0;
    if (std::int64_t{ newWidth } * newHeight > MostPixels)
        throw MException("Could not create bitmap.", MErrorCode::InvalidArgument);
    pixels.assign(static_cast<std::size_t>(newWidth) * static_cast<std::size_t>(newHeight), 0);
    SetSize(newWidth, newHeight);
    systemCopy.reset();
}

void MBitmap::Resize(std::int32_t newWidth, std::int32_t newHeight)
{
    if (newWidth == Width() && newHeight == Height())
        return;
    MBitmap fresh(newWidth, newHeight);
    if (!IsEmpty() && !fresh.IsEmpty())
        fresh = Stretched(*this, Bounds(), newWidth, newHeight);
    pixels = std::move(fresh.pixels);
    SetSize(fresh.Width(), fresh.Height());
    systemCopy.reset();
}

void MBitmap::CopyFrom(const MBitmap& other)
{
    pixels = other.pixels;
    SetSize(other.Width(), other.Height());
    systemCopy.reset();
}

void MBitmap::CopyAlphaTo(MAlphaMask& mask) const
{
    mask.Create(Width(), Height());
    for (std::int32_t y = 0; y < Height(); ++y)
        for (std::int32_t x = 0; x < Width(); ++x)
            mask.Set(x, y, Pixel(x, y).Alpha());
}

void MBitmap::CreateSystemBitmap()
{
    systemCopy = systemCopyMaker != nullptr ? systemCopyMaker(*this) : nullptr;
    if (!systemCopy)
        throw MException("Could not create system bitmap with alpha.");
}

void MBitmap::Clear()
{
    std::fill(pixels.begin(), pixels.end(), 0u);
}
