// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MTooltip.h"

#include <algorithm>

#include "foundation/text/MStringFormat.h"
#include "gui/controls/MWindows.h"

namespace
{
constexpr double WidestUnits = 280;
constexpr double AcrossUnits = 8;
constexpr double DownUnits = 6;
constexpr double GapUnits = 4;   // below what it tells of
}   // namespace

MTooltip::MTooltip()
{
    controlType = MControlType::Menu;
    receivesMouse = false;
    text = &Make<MStaticMultiLine>();
    text->font = MStdFont::Small;
}

MTooltip::~MTooltip()
{
    Close();
}

void MTooltip::ShowFor(MWindow& owner, const MString& name, const MString& markup, const MRectangle& near)
{
    Close();
    SetStyle(owner.Style());
    const MStyle& style = *Style();
    const MString body = Format("<cd><s>{0}</s></cd>", markup);
    const MString head = name.IsEmpty() ? MString() : Format("<b>{0}</b>", MSTML::Escaped(name));
    text->SetText(markup.IsEmpty() ? head : head.IsEmpty() ? body : head + "<p>" + body);
    const std::int32_t across = style.Pixels(AcrossUnits);
    const std::int32_t down = style.Pixels(DownUnits);
    // Two short lines don't need the whole width.
    const std::int32_t width = std::min(text->PreferredWidth(), style.Pixels(WidestUnits) - 2 * across);
    const std::int32_t height = text->HeightAt(width);
    text->SetPosition(across, down);
    text->SetSize(width, height);
    SetSize(0, 0);
    SetSize(width + 2 * across, height + 2 * down);
    MWindowSystem& platform = MWindows::Get()->Platform();
    const MRectangle over = platform.GetScreenRect(owner);
    const MRectangle told = near.Moved(over.left, over.top);
    const MRectangle area = platform.GetWorkArea(told.left, told.top);
    const std::int32_t gap = style.Pixels(GapUnits);
    std::int32_t y = told.bottom + 1 + gap;
    if (y + Height() > area.bottom + 1)
        y = told.top - gap - Height();
    SetPosition(std::clamp(told.left, area.left, std::max(area.left, area.right + 1 - Width())), y);
    Open(MWindowSystem::Kind::PopUp, &owner);
}

void MTooltip::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const std::int32_t line = style.Hairline();
    drawer.FillRectangle(OwnRectangle(), style.GetColor(MStdColor::Tooltip));
    drawer.Rectangle(OwnRectangle(), style.GetColor(MStdColor::TooltipEdge), MColorOp::Alphablend, line);
}
