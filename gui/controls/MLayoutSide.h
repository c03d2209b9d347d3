// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MLayout.h"

/// A strip along one edge, as thick as its thickest child.
class MLayoutSide : public MLayout
{
public:
    enum Edge : std::int32_t
    {
        Left,
        Top,
        Right,
        Bottom
    };

    /// Throws MException "Invalid side-layout direction." for any other number.
    MLayoutSide(MControl& ownerControl, std::int32_t edge);

    MRectangle Arrange(const MRectangle& area) override;
    void ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last) override;
    std::uint8_t GetStretch() const override;

private:
    /// Along which the children stand.
    Axis Along() const { return direction == Left || direction == Right ? Axis::Y : Axis::X; }
    Axis Thickness() const { return Across(Along()); }
    void FitLonePlastic(const std::vector<MControl*>& children, std::int32_t length) const;

    std::int32_t direction;
};

class MLayoutLeft : public MLayoutSide
{
public:
    explicit MLayoutLeft(MControl& control) : MLayoutSide(control, Left) {}
};
class MLayoutTop : public MLayoutSide
{
public:
    explicit MLayoutTop(MControl& control) : MLayoutSide(control, Top) {}
};
class MLayoutRight : public MLayoutSide
{
public:
    explicit MLayoutRight(MControl& control) : MLayoutSide(control, Right) {}
};
class MLayoutBottom : public MLayoutSide
{
public:
    explicit MLayoutBottom(MControl& control) : MLayoutSide(control, Bottom) {}
};
