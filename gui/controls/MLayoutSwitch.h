// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MLayout.h"

/// The first visible child only, in a place that all of them fit into.
class MLayoutSwitch : public MLayout
{
public:
    explicit MLayoutSwitch(MControl& control) : MLayout(control) {}

    MRectangle Arrange(const MRectangle& area) override;
    void ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last) override;
    std::uint8_t GetStretch() const override;
};
