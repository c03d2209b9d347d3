// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MStaticAxis.h"

#include "gui/graphs/GraphSizes.h"

MStaticAxis::MStaticAxis()
{
    controlType = MControlType::Empty;
}

void MStaticAxis::SetAxis(std::shared_ptr<const MAxisRenderer> shown)
{
    axis = std::move(shown);
    Invalidate();
}

void MStaticAxis::Paint(MDrawer& drawer)
{
    if (axis == nullptr)
        return;
    std::vector<MAxisLabel> labels;
    MAxisRenderer::Options options;
    options.gap = PixelsOf(GraphSizes::LabelGap);
    axis->Render(drawer, OwnRectangle(), Width() > Height(), labels, options, 0, 1);
}
