// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbEventDispatcher.h"

#include "gui/controls/MWindows.h"

namespace
{
std::uint8_t TypeOf(const xcb_generic_event_t& event)
{
    return event.response_type & 0x7F;
}

template <typename Event>
const Event& As(const xcb_generic_event_t& event)
{
    return reinterpret_cast<const Event&>(event);
}
}   // namespace

bool XcbEventDispatcher::DispatchNext()
{
    XcbEvent event = session.display.NextEvent();
    if (!event)
        return true;
    // Only where the pointer is now matters, not how it came there.
    if (TypeOf(*event) == XCB_MOTION_NOTIFY)
    {
        session.display.Read();
        const xcb_window_t window = As<xcb_motion_notify_event_t>(*event).event;
        for (const xcb_generic_event_t* next = session.display.Front();
             next != nullptr && TypeOf(*next) == XCB_MOTION_NOTIFY &&
             As<xcb_motion_notify_event_t>(*next).event == window;
             next = session.display.Front())
            event = session.display.NextEvent();
    }
    Dispatch(*event);
    const std::uint8_t type = TypeOf(*event);
    return type == XCB_EXPOSE || type >= XCB_GE_GENERIC;
}

bool XcbEventDispatcher::DispatchToHelpers(const xcb_generic_event_t& event)
{
    if (session.dragSource.Handle(event))
    {
        UpdateDragCursor();
        return true;
    }
    return session.dropTarget.Handle(event) || session.selections.Handle(event) ||
           session.keyboard.Handle(event);
}

void XcbEventDispatcher::Dispatch(const xcb_generic_event_t& event)
{
    if (DispatchToHelpers(event))
        return;
    switch (TypeOf(event))
    {
    case XCB_BUTTON_PRESS:
        return OnPress(As<xcb_button_press_event_t>(event));
    case XCB_BUTTON_RELEASE:
        return OnRelease(As<xcb_button_release_event_t>(event));
    case XCB_MOTION_NOTIFY:
        return OnMotion(As<xcb_motion_notify_event_t>(event));
    case XCB_ENTER_NOTIFY:
        return OnEnter(As<xcb_enter_notify_event_t>(event));
    case XCB_LEAVE_NOTIFY:
        return OnLeave(As<xcb_leave_notify_event_t>(event));
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
        return OnKey(As<xcb_key_press_event_t>(event), TypeOf(event) == XCB_KEY_PRESS);
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return OnFocus(As<xcb_focus_in_event_t>(event), TypeOf(event) == XCB_FOCUS_IN);
    case XCB_EXPOSE:
        return OnExpose(As<xcb_expose_event_t>(event));
    case XCB_CONFIGURE_NOTIFY:
        return OnConfigure(As<xcb_configure_notify_event_t>(event));
    case XCB_MAP_NOTIFY:
        return OnMapped(As<xcb_map_notify_event_t>(event).window, true);
    case XCB_UNMAP_NOTIFY:
        return OnMapped(As<xcb_unmap_notify_event_t>(event).window, false);
    case XCB_REPARENT_NOTIFY:
        if (XcbWindow* window = session.windows.Find(As<xcb_reparent_notify_event_t>(event).window))
            window->NoteParent(As<xcb_reparent_notify_event_t>(event).parent);
        return;
    case XCB_DESTROY_NOTIFY:
        return Lose(As<xcb_destroy_notify_event_t>(event).window);
    case XCB_CLIENT_MESSAGE:
        return OnMessage(As<xcb_client_message_event_t>(event));
    default:
        return OnExtensionEvent(event);
    }
}

void XcbEventDispatcher::OnExtensionEvent(const xcb_generic_event_t& event)
{
    XcbConnection& display = session.display;
    const std::uint8_t firstShared = display.FirstEvent(display->xcb_shm_id);
    if (firstShared != 0 && TypeOf(event) == firstShared + XCB_SHM_COMPLETION)
    {
        if (XcbWindow* window = session.windows.Find(As<xcb_shm_completion_event_t>(event).drawable))
            window->Image().Completed();
    }
}

void XcbEventDispatcher::Lose(xcb_window_t id)
{
    const std::unique_ptr<XcbWindow> lost = session.windows.Remove(id);
    if (!lost)
        return;
    if (session.dragSource.Window() == id)
        session.dragSource.Cancel();
    lost->Abandon();
    session.grab.Update();
    lost->Root().LostMessage();
}

void XcbEventDispatcher::OnConfigure(const xcb_configure_notify_event_t& event)
{
    XcbWindow* window = session.windows.Find(event.window);
    if (window == nullptr)
        return;
    // A user who drags a corner makes one after the other; only the last is worth a layout.
    session.display.Read();
    const bool isOutdated = session.display.Peek(
        [&event](const xcb_generic_event_t& other)
        {
            return TypeOf(other) == XCB_CONFIGURE_NOTIFY &&
                   As<xcb_configure_notify_event_t>(other).window == event.window;
        });
    if (isOutdated || !window->NoteSize(event))
        return;
    window->Invalidate();
    window->Root().SizeMessage(event.width, event.height);
    const xcb_window_t id = event.window;
    window = session.windows.Find(id);
    if (window != nullptr && window->CanPaint())
        window->Paint([&] { return session.windows.Find(id) != nullptr; });
}

void XcbEventDispatcher::OnMapped(xcb_window_t id, bool isMapped)
{
    XcbWindow* window = session.windows.Find(id);
    if (window == nullptr)
        return;
    window->NoteMapped(isMapped);
    if (isMapped && window->TakeLateActivation())
        window->Activate();
    if (!isMapped && session.grab.Capturing() == window)
        window->Root().CaptureLostMessage();
}

void XcbEventDispatcher::OnExpose(const xcb_expose_event_t& event)
{
    if (XcbWindow* window = session.windows.Find(event.window))
        window->Expose(MRectangle::OfSize(event.x, event.y, event.width, event.height));
}

void XcbEventDispatcher::OnMessage(const xcb_client_message_event_t& event)
{
    XcbConnection& display = session.display;
    XcbWindow* window = session.windows.Find(event.window);
    if (window == nullptr || event.format != 32)
        return;
    if (event.type == display.Atom(XcbAtom::XEmbed))
    {
        const XEmbed::Message what = window->Embedding().Take(event);
        if (what == XEmbed::Message::FocusIn || what == XEmbed::Message::FocusOut)
            SetKeyboard(*window, what == XEmbed::Message::FocusIn);
        return;
    }
    if (event.type != display.Atom(XcbAtom::WmProtocols))
        return;
    const xcb_atom_t protocol = event.data.data32[0];
    if (protocol == display.Atom(XcbAtom::WmDeleteWindow))
        window->Root().CloseMessage();
    else if (protocol == display.Atom(XcbAtom::NetWmPing))
    {
        // The desktop asks whether we still live: its message goes back as it came.
        const std::uint32_t* data = event.data.data32;
        display.SendMessage(display.RootWindow(), display.RootWindow(), event.type,
                            { data[0], data[1], data[2], data[3], data[4] },
                            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    }
}
