// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MLayout.h"

/// A row or column that takes all that is left.
class MLayoutClient : public MLayout
{
public:
    MLayoutClient(MControl& ownerControl, Axis along) : MLayout(ownerControl), axis(along) {}

    void AddChildXml(MControl& control, const MAttribute& node) override;
    MRectangle Arrange(const MRectangle& area) override;
    void ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last) override;
    std::uint8_t GetStretch() const override;

private:
    Axis axis;
};

class MLayoutHorizontal : public MLayoutClient
{
public:
    explicit MLayoutHorizontal(MControl& control) : MLayoutClient(control, Axis::X) {}
};
class MLayoutVertical : public MLayoutClient
{
public:
    explicit MLayoutVertical(MControl& control) : MLayoutClient(control, Axis::Y) {}
};
