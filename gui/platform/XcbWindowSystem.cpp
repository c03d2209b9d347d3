// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbWindowSystem.h"

#include "gui/controls/MWindows.h"

XcbWindowSystem::XcbWindowSystem() = default;

XcbWindowSystem::~XcbWindowSystem()
{
    Leave();
}

void XcbWindowSystem::Initialize()
{
    leavesAfterwards = false;
    if (session)
        return;
    if (!libraries)
        libraries = std::make_unique<XcbLibraries>();
    session = std::make_unique<XcbSession>(*libraries, descriptor, drawnCursors);
    dispatcher = std::make_unique<XcbEventDispatcher>(*session);
    session->display.Flush();
}

void XcbWindowSystem::Shutdown()
{
    if (!session)
        return;
    session->clipboard.HandOver();
    while (const XcbWindow* window = session->windows.First())
        session->windows.Remove(window->Id());
    leavesAfterwards = depth > 0;
    if (depth == 0)
        Leave();
}

XcbWindow* XcbWindowSystem::Find(const MWindow& root) const
{
    return session ? session->windows.Find(root) : nullptr;
}

void XcbWindowSystem::Finish() const
{
    if (depth == 0)
        session->display.Flush();
}

MRectangle XcbWindowSystem::GetWorkArea(std::int32_t x, std::int32_t y) const
{
    return session ? session->monitors.WorkArea({ x, y }) : MRectangle{};
}

double XcbWindowSystem::GetMonitorScale(std::int32_t, std::int32_t) const
{
    return session ? session->monitors.Scale() : 1.0;
}

void XcbWindowSystem::CreateWindow(MWindow& root, Kind kind, Handle owner)
{
    Initialize();
    DestroyWindow(root);
    session->windows.Add(
        std::make_unique<XcbWindow>(session->display, root, kind, static_cast<xcb_window_t>(owner)));
    Finish();
}

void XcbWindowSystem::DestroyWindow(MWindow& root)
{
    XcbWindow* window = Find(root);
    if (window == nullptr)
        return;
    if (session->dragSource.Window() == window->Id())
        session->dragSource.Cancel();
    session->windows.Remove(window->Id()).reset();
    session->grab.Update();
    if (session->windows.IsEmpty())
        session->clipboard.HandOver();
    Finish();
}

MWindowSystem::Handle XcbWindowSystem::GetHandle(const MWindow& root) const
{
    const XcbWindow* window = Find(root);
    return window != nullptr ? window->Id() : 0;
}

void XcbWindowSystem::SetParentWindow(MWindow& root, Handle parent)
{
    if (XcbWindow* window = Find(root))
    {
        window->SetParent(static_cast<xcb_window_t>(parent));
        Finish();
    }
}

void XcbWindowSystem::DetachFromParent(MWindow& root)
{
    if (XcbWindow* window = Find(root))
    {
        window->Hide();
        window->SetParent(session->display.RootWindow());
        Finish();
    }
}

MWindowSystem::Handle XcbWindowSystem::GetParentWindow(const MWindow& root) const
{
    const XcbWindow* window = Find(root);
    return window != nullptr && window->WindowKind() == Kind::Child ? window->Parent() : 0;
}

bool XcbWindowSystem::IsVisible(const MWindow& root) const
{
    const XcbWindow* window = Find(root);
    return window != nullptr && window->IsShown();
}

void XcbWindowSystem::SetTitle(MWindow& root, const MString& title)
{
    if (XcbWindow* window = Find(root))
    {
        window->Hints().SetTitle(title);
        Finish();
    }
}

void XcbWindowSystem::SetIcon(MWindow& root, const MBitmap& icon)
{
    if (XcbWindow* window = Find(root))
    {
        window->Hints().SetIcon(icon);
        Finish();
    }
}

void XcbWindowSystem::SetTopmost(MWindow& root, bool topmost)
{
    if (XcbWindow* window = Find(root))
    {
        window->Hints().SetState(XcbAtom::NetWmStateAbove, topmost, window->IsShown());
        Finish();
    }
}

void XcbWindowSystem::SetPositionOnly(MWindow& root, std::int32_t x, std::int32_t y)
{
    if (XcbWindow* window = Find(root))
    {
        window->Move({ x, y });
        Finish();
    }
}

void XcbWindowSystem::SetSizeOnly(MWindow& root, std::int32_t width, std::int32_t height)
{
    if (XcbWindow* window = Find(root))
    {
        window->Resize({ width, height });
        Finish();
    }
}

void XcbWindowSystem::SetSizeLimits(MWindow& root, std::int32_t minWidth, std::int32_t minHeight,
                                    std::int32_t maxWidth, std::int32_t maxHeight)
{
    if (XcbWindow* window = Find(root))
    {
        window->Hints().SetSizes({ minWidth, minHeight }, { maxWidth, maxHeight });
        Finish();
    }
}

MRectangle XcbWindowSystem::GetScreenRect(const MWindow& root) const
{
    const XcbWindow* window = Find(root);
    return window != nullptr ? window->ScreenRectangle() : MRectangle{};
}

void XcbWindowSystem::MoveTo(MWindow& root, std::int32_t x, std::int32_t y)
{
    SetPositionOnly(root, x, y);
}

void XcbWindowSystem::ShowAt(MWindow& root, const MRectangle& rectangle)
{
    if (XcbWindow* window = Find(root))
    {
        window->Move({ rectangle.left, rectangle.top });
        window->Resize({ rectangle.Width(), rectangle.Height() });
        Show(root);
        Finish();
    }
}

void XcbWindowSystem::Show(MWindow& root)
{
    if (XcbWindow* window = Find(root))
    {
        window->Show();
        session->grab.Update();
        Finish();
    }
}

void XcbWindowSystem::Hide(MWindow& root)
{
    if (XcbWindow* window = Find(root))
    {
        window->Hide();
        session->grab.Update();
        Finish();
    }
}

bool XcbWindowSystem::IsMaximized(const MWindow& root) const
{
    XcbWindow* window = Find(root);
    return window != nullptr && window->WindowKind() != Kind::Child &&
           window->Hints().HasState(XcbAtom::NetWmStateMaximizedHorizontally) &&
           window->Hints().HasState(XcbAtom::NetWmStateMaximizedVertically);
}

bool XcbWindowSystem::IsMinimized(const MWindow& root) const
{
    XcbWindow* window = Find(root);
    return window != nullptr && window->WindowKind() != Kind::Child && window->Hints().IsIconic();
}

void XcbWindowSystem::Minimize(MWindow& root)
{
    if (XcbWindow* window = Find(root))
    {
        window->Hints().Minimize();
        Finish();
    }
}

void XcbWindowSystem::Activate(MWindow& root)
{
    if (XcbWindow* window = Find(root))
    {
        window->Activate();
        Finish();
    }
}

void XcbWindowSystem::TakeKeyboard(MWindow& root)
{
    if (XcbWindow* window = Find(root))
    {
        window->TakeKeyboard();
        Finish();
    }
}

void XcbWindowSystem::ReturnKeyboard(MWindow& root)
{
    if (XcbWindow* window = Find(root))
    {
        window->ReturnKeyboard();
        Finish();
    }
}

bool XcbWindowSystem::HasKeyboard(const MWindow& root) const
{
    const XcbWindow* window = Find(root);
    return window != nullptr && window->HasKeyboard();
}

MWindow* XcbWindowSystem::GetActiveRoot() const
{
    const XcbWindow* window =
        session ? session->windows.FindIf([](const XcbWindow& each) { return each.HasKeyboard(); }) : nullptr;
    return window != nullptr ? &window->Root() : nullptr;
}

void XcbWindowSystem::InvalidateWindow(MWindow& root, const MRectangle&)
{
    XcbWindow* window = Find(root);
    if (window == nullptr)
        return;
    window->Invalidate();
    if (depth == 0)
        descriptor.Wake();
}

void XcbWindowSystem::UpdateWindow(MWindow& root)
{
    XcbWindow* window = Find(root);
    if (window == nullptr)
        return;
    window->Image().Finish();
    if (window->CanPaint())
        window->Paint([&] { return Find(root) == window; });
}

void XcbWindowSystem::SetCapture(MWindow& root)
{
    if (XcbWindow* window = Find(root))
        session->grab.SetCapture(*window);
}

void XcbWindowSystem::ReleaseCapture(MWindow& root)
{
    if (XcbWindow* window = Find(root))
        session->grab.ReleaseCapture(*window);
}

void XcbWindowSystem::SetCursor(MWindow& root, MStdCursor cursor)
{
    XcbWindow* window = Find(root);
    const bool isDragging = session && session->dragSource.IsDragging();
    if (window == nullptr || isDragging)
        return;
    window->SetCursor(session->cursors.Get(cursor == MStdCursor::Inherited ? MStdCursor::Arrow : cursor));
    Finish();
}

XcbReply<xcb_query_pointer_reply_t> XcbWindowSystem::QueryPointer(xcb_window_t window) const
{
    XcbConnection& display = session->display;
    return display.Await(display->xcb_query_pointer_reply, display->xcb_query_pointer(display, window));
}

MPoint XcbWindowSystem::GetCursorScreen() const
{
    if (!session)
        return {};
    const auto pointer = QueryPointer(session->display.RootWindow());
    return pointer ? MPoint{ pointer->root_x, pointer->root_y } : MPoint{};
}

MPoint XcbWindowSystem::GetCursorClient(const MWindow& root) const
{
    const XcbWindow* window = Find(root);
    if (window == nullptr)
        return {};
    const auto pointer = QueryPointer(window->Id());
    return pointer ? MPoint{ pointer->win_x, pointer->win_y } : MPoint{};
}

void XcbWindowSystem::SetCursorClient(MWindow& root, std::int32_t x, std::int32_t y)
{
    if (XcbWindow* window = Find(root))
    {
        XcbConnection& display = session->display;
        display->xcb_warp_pointer(display, XCB_NONE, window->Id(), 0, 0, 0, 0, static_cast<std::int16_t>(x),
                                  static_cast<std::int16_t>(y));
        Finish();
    }
}

std::uint8_t XcbWindowSystem::GetModifiers() const
{
    if (!session)
        return 0;
    const auto pointer = QueryPointer(session->display.RootWindow());
    return pointer ? XcbKeyboard::ModifiersOf(pointer->mask) : std::uint8_t{ 0 };
}

void XcbWindowSystem::SetClipboardText(const MString& text)
{
    if (!session)
        return;
    session->clipboard.SetText(text);
    Finish();
}

MString XcbWindowSystem::GetClipboardText()
{
    return session ? session->clipboard.GetText() : MString();
}

void XcbWindowSystem::StartDrag(MWindow& root, const std::vector<MString>& files, const MString& text)
{
    XcbWindow* window = Find(root);
    if (window == nullptr || !session->grab.AreButtonsHeld())
        return;
    session->dragSource.Begin(window->Id(), files, text);
    // The release goes to whoever the files are dropped on.
    if (session->dragSource.IsDragging())
        root.CaptureLostMessage();
}

void XcbWindowSystem::SetDrawnCursor(MStdCursor cursor, const MBitmap& image, MPoint hot)
{
    XcbCursors::Drawn& drawn = drawnCursors[cursor];
    drawn.image.CopyFrom(image);
    drawn.hot = hot;
    if (session)
        session->cursors.Forget(cursor);
}

std::uint64_t XcbWindowSystem::BytesSent() const
{
    return session ? (*libraries).xcb_total_written(session->display) : 0;
}
