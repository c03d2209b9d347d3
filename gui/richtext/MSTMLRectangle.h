// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/MSTMLObject.h"

/// A filled rectangle in a text, as a legend has them.
class MSTMLRectangle : public MSTMLObject
{
public:
    MSTMLRectangle(const STMLOwner& itemOwner, STMLObjectFormat objectFormat, std::optional<STMLColor> inside,
                   std::optional<STMLColor> edge)
        : MSTMLObject(itemOwner, std::move(objectFormat)), color(inside), borderColor(edge)
    {
    }

    std::unique_ptr<MSTMLItem> Clone() const override { return std::make_unique<MSTMLRectangle>(*this); }
    void Paint(MDrawer& drawer, const MRectangle& area) override;

protected:
    Size NaturalSize() const override;

private:
    std::optional<STMLColor> color;   // absent: the text's
    std::optional<STMLColor> borderColor;   // absent: none
};
