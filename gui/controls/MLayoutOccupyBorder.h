// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MLayout.h"

/// Takes a fixed border and has no children.
class MLayoutOccupyBorder : public MLayout
{
public:
    explicit MLayoutOccupyBorder(MControl& control) : MLayout(control) {}

    void LoadXml(const MAttribute& node) override;
    MRectangle Arrange(const MRectangle& area) override;
    void ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last) override;
    std::uint8_t GetStretch() const override { return 0; }

    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};
