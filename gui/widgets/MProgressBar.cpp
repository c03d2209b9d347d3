// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MProgressBar.h"

#include <algorithm>
#include <cmath>

#include "gui/controls/XmlAttributes.h"

namespace
{
constexpr double HeightUnits = 6;
}

MProgressBar::MProgressBar()
{
    controlType = MControlType::ProgressBar;
    receivesMouse = false;
}

void MProgressBar::SetShare(double newShare)
{
    const double limited = std::isfinite(newShare) ? std::clamp(newShare, 0.0, 1.0) : 0;
    // What moves by less than half a pixel shows nothing new.
    if (Width() > 0 && std::abs(limited - share) * Width() < 0.5 && limited != 0 && limited != 1)
        return;
    share = limited;
    Invalidate();
}

void MProgressBar::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    if (MString text; XmlAttributes(node).Read("value", text))
        SetShare(text.ToDouble());
}

MSize MProgressBar::ContentMinimum() const
{
    const std::int32_t height = Style() != nullptr ? Style()->Pixels(HeightUnits) : 0;
    return { 4 * height, height };
}

void MProgressBar::Paint(MDrawer& drawer)
{
    Style()->PaintProgress(drawer, OwnRectangle(), share);
}
