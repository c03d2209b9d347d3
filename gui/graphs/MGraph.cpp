// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MGraph.h"

#include <algorithm>

#include "gui/graphs/MGraphEditor.h"
#include "state/tree/MAttribute.h"

MGraph::MGraph()
{
    SetFlag(Enabled);
    SetFlag(Visible);
}

MGraph::~MGraph()
{
    if (shownBy != nullptr)
        shownBy->RemoveGraph(*this);
}

MColor ColorWithOpacity(MColor color, double opacity)
{
    const double alpha = color.Alpha() * opacity;
    return color.WithAlpha(static_cast<std::uint8_t>(alpha > 1 ? std::min(alpha, 255.0) : 1));
}

MColor MGraph::GetColor(const MDrawer& drawer) const
{
    return ColorWithOpacity(color.Alpha() != 0 ? color : drawer.GetColor(colorIndex),
                            static_cast<double>(opacity));
}

void MGraph::GetRanges(double& xMin, double& xMax, double& yMin, double& yMax) const
{
    xMin = yMin = 0;
    xMax = yMax = 1;
}

void MGraph::SetVisible(bool shown)
{
    ChangeFlag(Visible, shown);
}

void MGraph::ChangeFlag(Flag flag, bool on)
{
    if (TestFlag(flag) == on)
        return;
    if (on)
        SetFlag(flag);
    else
        ClearFlag(flag);
    if (shownBy != nullptr)
        shownBy->OnGraphFlags(*this);
}

void MGraph::AddHelp(MAttribute& item, const char* text)
{
    item.AddSubItem("controlitem").SetText(MString::Literal(text));
}
