// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/EventRouting.h"

#include "gui/controls/MWindow.h"

bool EventRouting::Send(MControl& control, const MControlEvent& event)
{
    bool taken;
    if (event.IsMouse())
        taken = SendMouse(control, event);
    else if (event.IsKey())
        taken = SendKey(control, event);
    else
        taken = OfferToStyle(control, event) || control.OnEvent(event);

    MWindow* window = control.Window();
    if (!taken && window == &control)
        taken = window->TakeShortcut(event) || OfferToEverybody(*window, event);
    return taken;
}

MControl* EventRouting::ChildAt(const MControl& control, std::int32_t x, std::int32_t y)
{
    const std::int32_t absoluteX = x + control.AbsoluteX();
    const std::int32_t absoluteY = y + control.AbsoluteY();
    for (auto each = control.children.rbegin(); each != control.children.rend(); ++each)
    {
        MControl& child = **each;
        if (child.visible && child.receivesMouse && child.AbsoluteRectangle().Contains(absoluteX, absoluteY))
            return &child;
    }
    return nullptr;
}

bool EventRouting::SendMouse(MControl& control, const MControlEvent& event)
{
    MControl* child = ChildAt(control, event.x, event.y);
    if (OfferToStyle(control, event) || control.PreviewEvent(child, event))
        return true;
    MWindow* window = control.Window();
    if (window == &control && window->CaptureOwner() != nullptr)
        return SendToCapture(control, event);
    // A disabled control takes the mouse without doing anything: what lies behind it isn't meant.
    if (child != nullptr && !child->enabled)
        return event.code != MEventCode::Wheel;
    if (child != nullptr && SendMouse(*child, event.From(child->AbsoluteX() - control.AbsoluteX(),
                                                         child->AbsoluteY() - control.AbsoluteY())))
        return true;
    return React(control, event);
}

bool EventRouting::SendToCapture(MControl& control, const MControlEvent& event)
{
    MControl& holder = *control.Window()->CaptureOwner();
    return React(holder, event.From(holder.AbsoluteX(), holder.AbsoluteY()));
}

bool EventRouting::SendKey(MControl& control, const MControlEvent& event)
{
    if (OfferToStyle(control, event) || control.PreviewEvent(control.focusChild, event))
        return true;
    const MWindow* window = control.Window();
    if (window != nullptr && window->FocusOwner() != nullptr && control.focusChild != nullptr &&
        SendKey(*control.focusChild, event))
        return true;
    return React(control, event);
}

bool EventRouting::React(MControl& control, const MControlEvent& event)
{
    const std::uint8_t bit = static_cast<std::uint8_t>(1 << event.Button());
    if (event.IsPress())
    {
        MWindow* window = control.Window();
        control.pressed |= bit;
        if (window != nullptr)
        {
            if (window->CaptureOwner() == nullptr)
                control.Capture();
            if (control.tabStop)
                control.SetFocus();
        }
        control.Invalidate();
        const bool taken = control.OnEvent(event);
        const bool listens = control.clicks.Listens(event.Button(), false);
        if (!taken && !listens && !control.tabStop)
        {
            // Nothing here: whoever lies behind may have it.
            control.pressed &= static_cast<std::uint8_t>(~bit);
            if (control.pressed == 0 && control.HasCapture())
                control.ReleaseCapture();
            return false;
        }
        return true;
    }
    if (!event.IsRelease())
    {
        const bool taken = control.OnEvent(event);
        return event.IsDoubleClick() ? Click(control, event) || taken : taken;
    }
    // No press of its own, but it may have taken the mouse at a double click.
    if ((control.pressed & bit) == 0)
        return control.HasCapture() && control.OnEvent(event);
    control.pressed &= static_cast<std::uint8_t>(~bit);
    if (control.pressed == 0 && control.HasCapture())
        control.ReleaseCapture();
    control.Invalidate();
    control.OnEvent(event);
    Click(control, event);
    return true;
}

bool EventRouting::Click(MControl& control, const MControlEvent& event)
{
    if (!control.VisibleRectangle().Contains(event.x, event.y))
        return false;
    MOnControlClickParams params;
    params.source = &control;
    params.control = &control;
    params.x = event.x;
    params.y = event.y;
    params.modifiers = event.modifiers;
    return control.clicks.Raise(event.Button(), event.IsDoubleClick(), params);
}

bool EventRouting::OfferToStyle(MControl& control, const MControlEvent& event)
{
    MStyle* style = control.Style();
    return style != nullptr && style->OfferEvent(control, event);
}

bool EventRouting::OfferToEverybody(MWindow& window, const MControlEvent& event)
{
    const std::vector<MControl*> handlers = window.globalKeyHandlers;
    for (MControl* each : handlers)
        if (each->GlobalEvent(event))
            return true;
    if (event.code != MEventCode::KeyDown || event.key != MKey::F1 || !window.showsHelpOnF1)
        return false;
    MControl* asked = window.FocusOwner() != nullptr ? window.FocusOwner() : window.HoverLeaf();
    window.ShowHelp(asked != nullptr ? *asked : window);
    return true;
}
