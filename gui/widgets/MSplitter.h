// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControl.h"

/// A line between two neighbours of a row or column that moves what is free from one to the other. Both have
/// to share by ratio; neither goes below its minimum.
class MSplitter : public MControl
{
public:
    MSplitter();
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    MStdCursor GetCursor(std::int32_t x, std::int32_t y) const override;

protected:
    MSize ContentMinimum() const override;

private:
    /// Of the row that it stands in.
    Axis Along() const { return Height() >= Width() ? Axis::X : Axis::Y; }
    void MoveBy(std::int32_t pixels);

    std::int32_t grabbedAt = 0;
};
