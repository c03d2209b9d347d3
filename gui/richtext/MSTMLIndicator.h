// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/MSTMLObject.h"

/// What an indicator shows: a bar between two places of its length, 0 to 1.
struct STMLIndicatorFormat
{
    std::optional<STMLColor> color;   ///< absent: the text's
    std::optional<STMLColor> borderColor;   ///< absent: no border
    double value = 0;
    double middle = 0;   ///< where the bar begins
};

/// A small level bar in a text.
class MSTMLIndicator : public MSTMLObject
{
public:
    MSTMLIndicator(const STMLOwner& itemOwner, STMLObjectFormat objectFormat,
                   const STMLIndicatorFormat& indicatorFormat)
        : MSTMLObject(itemOwner, std::move(objectFormat)), format(indicatorFormat)
    {
    }

    std::unique_ptr<MSTMLItem> Clone() const override { return std::make_unique<MSTMLIndicator>(*this); }
    void Paint(MDrawer& drawer, const MRectangle& area) override;

protected:
    Size NaturalSize() const override;

private:
    STMLIndicatorFormat format;
};
