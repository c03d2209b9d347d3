// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MObject.h"
#include "gui/painting/MRectangle.h"

/// The size of a plane of pixels, and the part of it that may be painted on.
class MBaseBitmap : public MObject
{
public:
    std::int32_t Width() const { return width; }
    std::int32_t Height() const { return height; }
    bool IsEmpty() const { return width < 1 || height < 1; }
    MRectangle Bounds() const { return { 0, 0, width - 1, height - 1 }; }
    const MRectangle& Clip() const { return clip; }
    /// What of `newClip` lies inside.
    void SetClip(const MRectangle& newClip) { clip = newClip.Intersection(Bounds()); }
    void ResetClip() { clip = Bounds(); }

protected:
    void SetSize(std::int32_t newWidth, std::int32_t newHeight)
    {
        width = newWidth;
        height = newHeight;
        ResetClip();
    }

private:
    std::int32_t width = 0;
    std::int32_t height = 0;
    MRectangle clip;
};
