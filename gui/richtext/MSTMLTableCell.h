// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/MSTMLContainer.h"
#include "gui/richtext/STMLLength.h"

/// What a cell's tag says. Lengths without a unit of their own are units at 100 %.
struct STMLCellFormat
{
    STMLLength width;   ///< of the content; a share is of the row, padding included
    MPlacement down = MPlacement::Begin;
    double padding = 0;
    bool autoSize = false;   ///< as wide as its content wants
    double border = 0;   ///< thickness
    std::uint8_t borderAlpha = 64;
    std::optional<STMLColor> fill;   ///< of the whole cell
    std::optional<std::uint8_t> fillAlpha;   ///< alone: of the colour of texts

    bool IsFlexible() const { return !autoSize && !width.IsGiven(); }
};

/// A part of a row, with paragraphs and rows of its own. Its sizes are with border and padding. Thread: GUI.
class MSTMLTableCell : public MSTMLContainer
{
public:
    MSTMLTableCell(const STMLOwner& itemOwner, STMLCellFormat cellFormat);

    const STMLCellFormat& Format() const { return format; }
    /// With a content of that width.
    std::int32_t WidthAround(std::int32_t contentWidth) const
    {
        return SumOfExtents(contentWidth, 2 * Edge());
    }

    std::unique_ptr<MSTMLItem> Clone() const override;
    std::int32_t GetMinimalWidth() override;
    std::int32_t GetPreferredWidth() override;
    std::int32_t GetHeight(std::int32_t width) override;
    void Layout(std::int32_t width) override;
    /// Nothing is painted outside of the area.
    void Paint(MDrawer& drawer, const MRectangle& area) override;

private:
    std::int32_t Edge() const { return Owner().LinePixels(format.border) + Owner().Pixels(format.padding); }
    std::int32_t EdgeAcross(std::int32_t width) const;

    STMLCellFormat format;
};
