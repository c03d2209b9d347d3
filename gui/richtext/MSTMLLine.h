// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/MSTMLObject.h"

/// A horizontal line as wide as the text. Lengths are units.
struct STMLLineFormat
{
    double size = 1;   ///< thickness
    std::optional<STMLColor> color;
    std::uint8_t alpha = 40;   ///< as quiet as the lines between the parts of a window
    double acrossSpace = 0;   ///< at both ends
    double downSpace = 3;   ///< above and below
};

class MSTMLLine : public MSTMLObject
{
public:
    MSTMLLine(const STMLOwner& itemOwner, STMLObjectFormat objectFormat, const STMLLineFormat& lineFormat)
        : MSTMLObject(itemOwner, std::move(objectFormat)), format(lineFormat)
    {
    }

    std::unique_ptr<MSTMLItem> Clone() const override { return std::make_unique<MSTMLLine>(*this); }
    void Paint(MDrawer& drawer, const MRectangle& area) override;
    bool TakesFreeWidth() const override { return true; }
    bool IsAlone() const override { return true; }

protected:
    Size NaturalSize() const override;

private:
    STMLLineFormat format;
};
