// SPDX-License-Identifier: GPL-3.0-or-later
// How a window paints its tree.
#include "foundation/text/Boundary.h"
#include "gui/controls/MWindow.h"
#include "gui/controls/MWindows.h"
#include "gui/painting/MDrawerToMBitmap.h"

void MWindow::InvalidateArea(const MRectangle& area)
{
    if (!open)
        return;
    const MRectangle inside = area.Intersection(OwnRectangle());
    if (inside.IsEmpty())
        return;
    dirty.Add(inside);
    MWindows::Get()->Platform().InvalidateWindow(*this, inside);
}

void MWindow::PaintMessage()
{
    shownAreas.clear();
    if (!open)
        return;
    const MSyncGuard guard(&windowLock, MERWLock::Read);
    const MRectangle whole = OwnRectangle();
    if (picture.Width() != whole.Width() || picture.Height() != whole.Height())
    {
        picture.Create(whole.Width(), whole.Height());
        dirty.Add(whole);
    }
    // The ring lies outside of its control, which may have moved, or gone.
    if (const MRectangle ring = FocusRing(); ring != paintedRing)
    {
        dirty.Add(paintedRing.Intersection(whole));
        dirty.Add(ring.Intersection(whole));
        paintedRing = ring;
    }
    for (const MRectangle& each : dirty.Take())
    {
        const MRectangle area = each.Intersection(whole);
        if (area.IsEmpty())
            continue;
        PaintArea(area);
        shownAreas.push_back(area);
    }
}

MControl& MWindow::CoveringControl(const MRectangle& area)
{
    MControl* covering = this;
    MControl* each = this;
    MRectangle seen = OwnRectangle();
    while (each != nullptr)
    {
        // The topmost child that touches the area decides: if all of it can be seen there, what lies behind
        // is hidden as far as the child is opaque.
        MControl* next = nullptr;
        for (auto child = each->children.rbegin(); child != each->children.rend() && next == nullptr; ++child)
            if ((*child)->visible && !(*child)->AbsoluteRectangle().Intersection(area).IsEmpty())
                next = child->get();
        if (next == nullptr)
            break;
        seen = seen.Intersection(next->AbsoluteRectangle());
        if (seen.Intersection(area) != area)
            break;
        if (next->opaque)
            covering = next;
        each = next;
    }
    return *covering;
}

void MWindow::PaintArea(const MRectangle& area)
{
    MControl& covering = CoveringControl(area);
    PaintTree(covering, area);
    for (MControl* each = covering.parentControl; each != nullptr; each = each->parentControl)
        PaintOne(*each, area, &MControl::PaintAbove);
    if (!FocusRing().Intersection(area).IsEmpty())
    {
        MDrawerToMBitmap drawer(picture, Style());
        drawer.SetClip(area);
        Style()->PaintFocusRing(drawer, focusOwner->AbsoluteRectangle());
    }
}

void MWindow::PaintOne(MControl& control, const MRectangle& area, void (MControl::*paint)(MDrawer&))
{
    const MRectangle bounds = control.AbsoluteRectangle();
    MDrawerToMBitmap drawer(Style());
    drawer.PrepareBitmap(picture, bounds);
    drawer.SetClip(area.Moved(-bounds.left, -bounds.top));
    try
    {
        (control.*paint)(drawer);
    }
    catch (...)
    {
        LogSystemException("MWindow::PaintOne");
    }
}

void MWindow::PaintTree(MControl& control, const MRectangle& area)
{
    const MRectangle part = control.AbsoluteRectangle().Intersection(area);
    if (part.IsEmpty())
        return;
    PaintOne(control, part, &MControl::Paint);
    for (const auto& child : control.children)
        if (child->visible)
            PaintTree(*child, part);
    PaintOne(control, part, &MControl::PaintAbove);
}
