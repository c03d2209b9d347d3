// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "foundation/text/MString.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutSide.h"

/// Four edges and four corners around what is left for the next layout.
class MLayoutCorner : public MLayout
{
public:
    explicit MLayoutCorner(MControl& control);

    /// Moves a child that was added to its place: "corner0" (top left), "corner1" (top right), "corner2"
    /// (bottom left), "corner3" (bottom right), or "left", "top", "right", "bottom". A corner's earlier
    /// control has to leave. Throws MException "Invalid target for corner layout.".
    void SetTarget(MControl& control, const MString& target);
    void RemoveControl(MControl& control) override;

    void AddChildXml(MControl& control, const MAttribute& node) override;
    MRectangle Arrange(const MRectangle& area) override;
    void ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last) override;
    std::uint8_t GetStretch() const override;

private:
    /// Of the four edges, in the order of MLayoutSide::Edge.
    using Thickness = std::array<std::int32_t, 4>;

    Thickness ThicknessBy(const SizeComputer& computer) const;
    bool HasCorner(std::size_t corner) const;
    void TakeOut(MControl& control);

    /// The corners at the two ends of an edge, begin first.
    static constexpr std::size_t cornersOf[4][2] = { { 0, 2 }, { 0, 1 }, { 1, 3 }, { 2, 3 } };

    std::array<MLayoutClient, 4> edges;   // rows and columns of their own, as the strips are given to them
    std::array<MControl*, 4> corners{};
};
