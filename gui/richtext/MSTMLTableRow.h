// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "gui/richtext/MSTMLTableCell.h"

/// What a row's tag says. Lengths without a unit of their own are units at 100 %.
struct STMLRowFormat
{
    STMLLength height;   ///< a share is of what the container is painted in
    double padding = 2;   ///< of its cells, where they state none
    double cellSpaces = 4;   ///< between cells
    double border = 0;   ///< thickness, around all cells
    std::uint8_t borderAlpha = 64;
};

/// Cells beside each other. A cell takes the width that it states, or its content's, or an equal part of
/// what is left; all are as high as the highest. Thread: GUI.
class MSTMLTableRow : public MSTMLItem
{
public:
    struct Column
    {
        std::int32_t x = 0;   ///< from the left of the row
        std::int32_t width = 0;
    };

    MSTMLTableRow(const STMLOwner& itemOwner, STMLRowFormat rowFormat);
    MSTMLTableRow(const MSTMLTableRow& other);

    MSTMLTableCell& AddCell(std::unique_ptr<MSTMLTableCell> cell);
    const STMLRowFormat& Format() const { return format; }
    const std::vector<std::unique_ptr<MSTMLTableCell>>& Cells() const { return cells; }
    /// Of each cell, as last laid out.
    const std::vector<Column>& Columns() const { return columns; }

    std::unique_ptr<MSTMLItem> Clone() const override;
    std::int32_t GetMinimalWidth() override;
    std::int32_t GetPreferredWidth() override;
    std::int32_t GetHeight(std::int32_t width) override;
    void Layout(std::int32_t width) override;
    void Paint(MDrawer& drawer, const MRectangle& area) override;
    void SetOwner(const STMLOwner& newOwner) override;
    double GetHeightShare() const override { return format.height.IsShare() ? format.height.value : 0; }

private:
    struct Measures
    {
        std::int32_t minimal = -1;   // -1: not measured
        std::int32_t preferred = -1;
        std::int32_t width = -1;
    };

    std::int32_t Border() const { return Owner().LinePixels(format.border); }
    /// Border and spaces.
    std::int32_t WidthBesideCells() const;
    void PlaceColumns(std::int32_t width);

    STMLRowFormat format;
    std::vector<std::unique_ptr<MSTMLTableCell>> cells;
    Measures measures;
    std::vector<Column> columns;   // for measures.width
    std::int32_t height = 0;   // the same
};
