// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbWindow.h"

#include <algorithm>

namespace
{
constexpr std::uint32_t Events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                                 XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                 XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                                 XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_EXPOSURE |
                                 XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_FOCUS_CHANGE;

std::uint16_t Side(std::int32_t length)
{
    return static_cast<std::uint16_t>(std::clamp(length, 1, 32767));
}
}   // namespace

XcbWindow::XcbWindow(XcbConnection& connection, MWindow& shownRoot, Kind windowKind, xcb_window_t owner)
    : display(connection), root(shownRoot), kind(windowKind),
      parent(windowKind == Kind::Child ? owner : connection.RootWindow()),
      size{ Side(shownRoot.PresentSize(Axis::X)), Side(shownRoot.PresentSize(Axis::Y)) }, id(Create(size)),
      image(connection, id), hints(connection, id), embedding(connection, id)
{
    constexpr std::uint32_t xdndVersion = 5;
    display.SetValues(id, display.Atom(XcbAtom::XdndAware), XCB_ATOM_ATOM, { xdndVersion });
    if (kind == Kind::Child)
        embedding.Announce(false);
    else
        hints.Introduce(kind, owner);
}

xcb_window_t XcbWindow::Create(MSize firstSize) const
{
    const xcb_window_t window = display->xcb_generate_id(display);
    // Without a background: the server shows nothing of its own before the picture comes. What was there
    // stays in its corner while the size changes. A colour map and a border of its own, because a parent's
    // may have another depth.
    const std::uint32_t mask = XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                               XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::uint32_t values[] = {
        XCB_BACK_PIXMAP_NONE,          0,      XCB_GRAVITY_NORTH_WEST,
        kind == Kind::PopUp ? 1u : 0u, Events, display.Colormap(),
    };
    display->xcb_create_window(display, display.Depth(), window, parent, 0, 0, Side(firstSize.width),
                               Side(firstSize.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, display.Visual(),
                               mask, values);
    return window;
}

XcbWindow::~XcbWindow()
{
    if (!isGone)
        display->xcb_destroy_window(display, id);
}

void XcbWindow::Abandon()
{
    isGone = true;
    mapped = false;
    image.Abandon();
}

void XcbWindow::SetParent(xcb_window_t newParent)
{
    display->xcb_reparent_window(display, id, newParent, 0, 0);
    NoteParent(newParent);
}

void XcbWindow::NoteParent(xcb_window_t newParent)
{
    if (parent == newParent)
        return;
    parent = newParent;
    embedding.Forget();
}

MRectangle XcbWindow::ScreenRectangle() const
{
    const auto place =
        display.Await(display->xcb_translate_coordinates_reply,
                      display->xcb_translate_coordinates(display, id, display.RootWindow(), 0, 0));
    return place ? MRectangle::OfSize(place->dst_x, place->dst_y, size.width, size.height)
                 : MRectangle::OfSize(0, 0, size.width, size.height);
}

MPoint XcbWindow::InParent(MPoint onScreen) const
{
    if (kind != Kind::Child)
        return onScreen;
    const auto corner =
        display.Await(display->xcb_translate_coordinates_reply,
                      display->xcb_translate_coordinates(display, parent, display.RootWindow(), 0, 0));
    return corner ? MPoint{ onScreen.x - corner->dst_x, onScreen.y - corner->dst_y } : MPoint{};
}

void XcbWindow::Move(MPoint onScreen)
{
    const MPoint place = InParent(onScreen);
    const std::int32_t values[] = { place.x, place.y };
    display->xcb_configure_window(display, id, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
}

void XcbWindow::Resize(MSize newSize)
{
    const std::uint32_t values[] = { Side(newSize.width), Side(newSize.height) };
    newestSizeRequest =
        display->xcb_configure_window(display, id, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values)
            .sequence;
}

bool XcbWindow::NoteSize(const xcb_configure_notify_event_t& event)
{
    // What the server told before it saw the newest request would set the size back for a moment, and ask
    // for it anew, for ever.
    const std::uint32_t toldAt = reinterpret_cast<const xcb_generic_event_t&>(event).full_sequence;
    if (newestSizeRequest != 0 && static_cast<std::int32_t>(toldAt - newestSizeRequest) < 0)
        return false;
    if (event.width == size.width && event.height == size.height)
        return false;
    size = { event.width, event.height };
    return true;
}

void XcbWindow::Show()
{
    if (shown)
        return;
    shown = true;
    if (kind == Kind::Child)
        embedding.Announce(true);
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    if (kind == Kind::PopUp)
        display->xcb_configure_window(display, id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    display->xcb_map_window(display, id);
}

void XcbWindow::Hide()
{
    if (!shown)
        return;
    shown = false;
    mapped = false;
    activatesWhenMapped = false;
    if (kind == Kind::Child)
        embedding.Announce(false);
    display->xcb_unmap_window(display, id);
    if (kind == Kind::Child || kind == Kind::PopUp)
        return;
    // A desktop that had it as an icon sees only this that it is gone.
    xcb_unmap_notify_event_t gone{};
    gone.response_type = XCB_UNMAP_NOTIFY;
    gone.event = display.RootWindow();
    gone.window = id;
    display->xcb_send_event(display, 0, display.RootWindow(),
                            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                            reinterpret_cast<const char*>(&gone));
}

// With the time of the press that caused it, the server would prefer a host that answers the same press
// without a time.
void XcbWindow::Focus(xcb_window_t target)
{
    display->xcb_set_input_focus(display, XCB_INPUT_FOCUS_PARENT, target, XCB_CURRENT_TIME);
}

void XcbWindow::TakeKeyboard()
{
    if (hasKeyboard || kind == Kind::PopUp)
        return;
    if (kind == Kind::Child && embedding.IsEmbedded())
        embedding.RequestFocus();
    else if (mapped)
        Focus(id);
}

// To the window that the desktop gave it to, rather than to a frame inside of it that may do nothing with
// keys.
void XcbWindow::ReturnKeyboard()
{
    if (hasKeyboard && kind == Kind::Child && !embedding.IsEmbedded())
        Focus(XcbWindowHints::TopLevelOf(display, parent));
}

void XcbWindow::Activate()
{
    if (kind == Kind::PopUp)
        return;
    if (kind == Kind::Child)
    {
        TakeKeyboard();
        return;
    }
    activatesWhenMapped = !mapped;
    if (!mapped)
        return;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    display->xcb_configure_window(display, id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    if (!hints.Activate())
        Focus(id);
}

bool XcbWindow::TakeLateActivation()
{
    return std::exchange(activatesWhenMapped, false);
}

void XcbWindow::Paint(const std::function<bool()>& isStillThere)
{
    if (needsPainting)
    {
        needsPainting = false;
        root.PaintMessage();
        if (!isStillThere())
            return;
        for (const MRectangle& part : root.Shown())
            exposed.Add(part);
    }
    image.Show(root.Picture(), exposed.Take());
    display.Flush();
}

void XcbWindow::SetCursor(xcb_cursor_t cursor)
{
    if (cursor == shownCursor)
        return;
    shownCursor = cursor;
    display->xcb_change_window_attributes(display, id, XCB_CW_CURSOR, &cursor);
}
