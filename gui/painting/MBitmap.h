// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "gui/painting/MBaseBitmap.h"
#include "gui/painting/MColor.h"

class MAlphaMask;

/// The system's own copy of a picture, for the window system that can show one quickly.
class MSysBitmap : public MObject
{
};

/// An image: 32-bit pixels in the order blue, green, red, alpha, not premultiplied, the top row first and
/// without padding. One thread at a time.
class MBitmap : public MBaseBitmap
{
public:
    /// No more pixels than that: 1 GiB, as large as a size field of a damaged file is never meant.
    static constexpr std::int64_t MostPixels = std::int64_t{ 1 } << 28;
    /// Makes the system's copy; null where it can't.
    using SystemCopyMaker = std::unique_ptr<MSysBitmap> (*)(const MBitmap& bitmap);

    MBitmap() = default;
    MBitmap(std::int32_t columns, std::int32_t rows) { Create(columns, rows); }

    /// All pixels 0. Sizes below 1 make an empty bitmap. Throws MException "Could not create bitmap." for
    /// more than MostPixels.
    void Create(std::int32_t newWidth, std::int32_t newHeight);
    /// Another size; the picture is stretched into it.
    void Resize(std::int32_t newWidth, std::int32_t newHeight);
    /// Becomes a copy, size included; the clip is the whole image.
    virtual void CopyFrom(const MBitmap& other);
    /// Puts the alphas into a mask of this size.
    virtual void CopyAlphaTo(MAlphaMask& mask) const;
    virtual void ResetSystemCopy() { systemCopy.reset(); }
    /// Throws MException "Could not create system bitmap with alpha." where none can be made.
    virtual void CreateSystemBitmap();
    /// All pixels 0.
    virtual void Clear();

    std::uint32_t* Row(std::int32_t y) { return pixels.data() + std::ptrdiff_t{ y } * Width(); }
    const std::uint32_t* Row(std::int32_t y) const { return pixels.data() + std::ptrdiff_t{ y } * Width(); }
    MColor Pixel(std::int32_t x, std::int32_t y) const { return MColor(Row(y)[x]); }
    MSysBitmap* SystemCopy() const { return systemCopy.get(); }

    /// Of the window system; null, as at the start: there is none.
    static void SetSystemCopyMaker(SystemCopyMaker maker);

private:
    std::vector<std::uint32_t> pixels;
    std::unique_ptr<MSysBitmap> systemCopy;
};
