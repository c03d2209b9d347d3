// SPDX-License-Identifier: GPL-3.0-or-later
// What a window does with what its platform tells.
#include <algorithm>
#include <cstdlib>

#include "gui/controls/EventRouting.h"
#include "gui/controls/MWindows.h"

namespace
{
constexpr std::uint64_t DoubleClickMilliseconds = 400;
constexpr std::int32_t DoubleClickPixels = 4;
}   // namespace

bool MWindow::AcceptsMouse(const MControlEvent& event)
{
    MWindows& windows = *MWindows::Get();
    if (MWindow* above = BlockedBy())
    {
        // A press shows who has to be answered first.
        if (event.IsPress() || event.IsDoubleClick())
            windows.Platform().Activate(*above);
        return false;
    }
    return true;
}

bool MWindow::MouseMessage(const MControlEvent& event)
{
    if (!open || !AcceptsMouse(event))
        return false;
    MWindows& windows = *MWindows::Get();
    if (event.code != MEventCode::Move && windows.SwallowsClick())
        return true;
    FollowPointer(event);
    if (event.IsPress() || event.IsDoubleClick())
        SetFocusRing(false);
    const bool taken = SendEvent(event);
    // What lay under the pointer may have moved or gone.
    if (open && event.code != MEventCode::Move)
        FollowPointer(event);
    return taken;
}

bool MWindow::PressMessage(const MControlEvent& event, std::uint64_t milliseconds)
{
    const MPoint at{ event.x, event.y };
    const std::int32_t near = Style() != nullptr ? Style()->Pixels(DoubleClickPixels) : DoubleClickPixels;
    const bool again =
        lastPress.button == event.Button() && milliseconds - lastPress.time <= DoubleClickMilliseconds &&
        std::abs(lastPress.place.x - at.x) <= near && std::abs(lastPress.place.y - at.y) <= near;
    lastPress = { milliseconds, at, event.Button() };
    if (!again)
        return MouseMessage(event);
    lastPress.button = -1;   // a third one begins anew
    MControlEvent twice = event;
    twice.code = static_cast<MEventCode>(static_cast<std::int32_t>(event.code) + 6);
    if (MouseMessage(twice))
        return true;
    MControlEvent plain = event;
    plain.repeatedPress = true;
    return open && MouseMessage(plain);
}

MControl* MWindow::LeafAt(std::int32_t x, std::int32_t y)
{
    MControl* leaf = this;
    while (MControl* child = leaf->ChildAt(x - leaf->AbsoluteX(), y - leaf->AbsoluteY()))
        leaf = child;
    return OwnRectangle().Contains(x, y) ? leaf : nullptr;
}

void MWindow::FollowPointer(const MControlEvent& event)
{
    MControl* leaf = LeafAt(event.x, event.y);
    // While the mouse is held, nobody else comes alive under it.
    if (captureOwner != nullptr)
        leaf = leaf != nullptr && captureOwner->IsAncestorOf(*leaf) ? leaf : nullptr;
    SetHover(leaf);
    const MControl& shows = captureOwner != nullptr ? *captureOwner : leaf != nullptr ? *leaf : *this;
    MWindows& windows = *MWindows::Get();
    const MStdCursor cursorNow =
        windows.IsBusy() ? MStdCursor::Wait
                         : shows.GetCursor(event.x - shows.AbsoluteX(), event.y - shows.AbsoluteY());
    windows.Platform().SetCursor(*this, cursorNow);
}

void MWindow::SetHover(MControl* leaf)
{
    if (hoverLeaf == leaf)
        return;
    MControl* before = hoverLeaf;
    hoverLeaf = leaf;
    for (MControl* each = before; each != nullptr; each = each->parentControl)
        if (leaf == nullptr || !each->IsAncestorOf(*leaf))
        {
            each->hovered = false;
            each->OnMouseLeave();
        }
    for (MControl* each = leaf; each != nullptr; each = each->parentControl)
        if (!each->hovered)
        {
            each->hovered = true;
            each->OnMouseEnter();
        }
    OnHoverChanged();
}

void MWindow::LeaveMessage()
{
    if (captureOwner == nullptr)
        SetHover(nullptr);
}

void MWindow::CaptureLostMessage()
{
    dragging = false;
    if (captureOwner == nullptr)
        return;
    captureOwner->pressed = 0;
    captureOwner->Invalidate();
    SetCaptureOwner(nullptr);
}

bool MWindow::KeyMessage(const MControlEvent& event)
{
    if (!open || BlockedBy() != nullptr)
        return false;
    // An open menu has no keyboard of its own.
    if (MWindow* menu = MWindows::Get()->TopPopUp(); menu != nullptr && menu != this)
        return menu->KeyMessage(event);
    if (event.code == MEventCode::KeyDown)
        SetFocusRing(true);
    const bool taken = SendEvent(event);
    std::erase(takenKeys, event.key);
    if (taken && event.code == MEventCode::KeyDown && event.key != awaitedKey)
        takenKeys.push_back(event.key);
    awaitedKey = 0;
    return taken;
}

bool MWindow::TakeShortcut(const MControlEvent& event)
{
    if (event.code != MEventCode::KeyDown && event.code != MEventCode::KeyUp)
        return false;
    const bool down = event.code == MEventCode::KeyDown;
    // The end of a key that wrote a letter or pressed a button.
    if (!down && std::find(takenKeys.begin(), takenKeys.end(), event.key) != takenKeys.end())
        return true;
    MOnKeyboardShortcutParams pressedKey;
    pressedKey.keyCode = event.key;
    pressedKey.modifiers = event.modifiers & ModifierKeys;
    for (std::size_t i = 0; i < shortcuts.size(); ++i)
        if (shortcuts[i].whenDown == down && shortcuts[i].keys.Accepts(pressedKey) && shortcuts[i].act())
            return true;
    // What acts when the key comes up has the key.
    const bool awaited = down && std::any_of(shortcuts.begin(), shortcuts.end(),
                                             [&pressedKey](const MWindowShortcut& each)
                                             { return !each.whenDown && each.keys.Accepts(pressedKey); });
    awaitedKey = awaited ? event.key : 0;
    return awaited;
}

void MWindow::FocusMessage(bool focused, MControl* other)
{
    MWindow* above = BlockedBy();
    if (focused && above != nullptr)
    {
        MWindows::Get()->Platform().Activate(*above);
        return;
    }
    if (!focused)
        takenKeys.clear();
    if (focusOwner == nullptr)
        return;
    MControlEvent event;
    event.code = MEventCode::Focus;
    event.focused = focused;
    event.otherControl = other;
    focusOwner->SendEvent(event);
}

void MWindow::SizeMessage(std::int32_t width, std::int32_t height)
{
    platformSize = { width, height };
    askedSize = platformSize;
    if (width == Width() && height == Height())
        return;
    const MSyncGuard guard(&windowLock, MERWLock::Write);
    SetSize(width, height);
    // Smaller than it can be: the platform's window shows what fits.
    askedSize = { Width(), Height() };
}

void MWindow::CloseMessage()
{
    if (MWindow* above = BlockedBy())
        MWindows::Get()->Platform().Activate(*above);
    else
        RequestClose();
}

void MWindow::LostMessage()
{
    Close();
}

MControl* MWindow::DropTargetAt(std::int32_t x, std::int32_t y, Dragged what) const
{
    if (BlockedBy() != nullptr)
        return nullptr;
    MControl* target = const_cast<MWindow*>(this)->LeafAt(x, y);
    const auto accepts = what == Dragged::Files ? &MControl::acceptsFiles : &MControl::acceptsText;
    while (target != nullptr && (!(target->*accepts) || !target->IsUsable()))
        target = target->Parent();
    return target;
}

bool MWindow::CanDropAt(std::int32_t x, std::int32_t y, Dragged what) const
{
    return DropTargetAt(x, y, what) != nullptr;
}

void MWindow::DragMessage(std::int32_t x, std::int32_t y, bool isOver, Dragged what)
{
    MControl* target = isOver ? DropTargetAt(x, y, what) : nullptr;
    if (target == dropTarget)
        return;
    if (dropTarget != nullptr)
        dropTarget->OnDragOver(false);
    dropTarget = target;
    if (dropTarget != nullptr)
        dropTarget->OnDragOver(true);
}

bool MWindow::DropMessage(const std::vector<MString>& files, std::int32_t x, std::int32_t y)
{
    MControl* target = DropTargetAt(x, y, Dragged::Files);
    DragMessage(x, y, false);
    return target != nullptr && target->OnDrop(files, x - target->AbsoluteX(), y - target->AbsoluteY());
}

bool MWindow::DropTextMessage(const MString& text, std::int32_t x, std::int32_t y)
{
    MControl* target = DropTargetAt(x, y, Dragged::Text);
    DragMessage(x, y, false);
    return target != nullptr && target->OnDropText(text, x - target->AbsoluteX(), y - target->AbsoluteY());
}

std::uint8_t MWindow::GetResizeZone(std::int32_t x, std::int32_t y) const
{
    if (resizeBorder <= 0 || !OwnRectangle().Contains(x, y))
        return 0;
    const auto zone = [](std::int32_t at, std::int32_t size, std::int32_t reach) -> std::uint8_t
    {
        return at < reach ? 1 : at >= size - reach ? 2 : 0;
    };
    const std::uint8_t across = resizableX ? zone(x, Width(), resizeBorder) : 0;
    const std::uint8_t down = resizableY ? zone(y, Height(), resizeBorder) : 0;
    if (across == 0 && down == 0)
        return 0;
    // Near a corner the border is the corner.
    const std::int32_t corner = 4 * resizeBorder;
    const std::uint8_t wideAcross = resizableX ? zone(x, Width(), corner) : 0;
    const std::uint8_t wideDown = resizableY ? zone(y, Height(), corner) : 0;
    return static_cast<std::uint8_t>(wideAcross | wideDown << 2);
}

MStdCursor MWindow::GetCursor(std::int32_t x, std::int32_t y) const
{
    const std::uint8_t zone = dragging ? drag.zone : GetResizeZone(x, y);
    switch (zone)
    {
    case AlignLeft:
    case AlignRight:
        return MStdCursor::SizeHorizontal;
    case AlignTop:
    case AlignBottom:
        return MStdCursor::SizeVertical;
    case AlignLeft | AlignTop:
    case AlignRight | AlignBottom:
        return MStdCursor::SizeFalling;
    case AlignRight | AlignTop:
    case AlignLeft | AlignBottom:
        return MStdCursor::SizeRising;
    default:
        return MControl::GetCursor(x, y);
    }
}

bool MWindow::BeginDrag(const MControlEvent& event)
{
    const std::uint8_t zone = GetResizeZone(event.x, event.y);
    if (zone == 0 && event.y >= moveZoneHeight)
        return false;
    MWindowSystem& platform = MWindows::Get()->Platform();
    if (platform.IsMaximized(*this))
        return false;
    drag = { zone, platform.GetCursorScreen(), platform.GetScreenRect(*this) };
    dragging = true;
    return true;
}

void MWindow::FollowDrag()
{
    MWindowSystem& platform = MWindows::Get()->Platform();
    const MPoint now = platform.GetCursorScreen();
    const std::int32_t dx = now.x - drag.start.x;
    const std::int32_t dy = now.y - drag.start.y;
    MRectangle wanted = drag.window;
    if (drag.zone == 0)
    {
        platform.MoveTo(*this, wanted.left + dx, wanted.top + dy);
        return;
    }
    const auto atMost = [](std::int32_t limit)
    {
        return limit > 0 ? limit : 32767;
    };
    const std::int32_t wide = atMost(maxWidth);
    const std::int32_t high = atMost(maxHeight);
    const std::int32_t leastWide = std::max(1, MinimalSize(Axis::X));
    const std::int32_t leastHigh = std::max(1, MinimalSize(Axis::Y));
    if ((drag.zone & AlignLeft) != 0)
        wanted.left =
            wanted.right + 1 - std::clamp(wanted.Width() - dx, leastWide, std::max(leastWide, wide));
    if ((drag.zone & AlignRight) != 0)
        wanted.right =
            wanted.left - 1 + std::clamp(wanted.Width() + dx, leastWide, std::max(leastWide, wide));
    if ((drag.zone & AlignTop) != 0)
        wanted.top =
            wanted.bottom + 1 - std::clamp(wanted.Height() - dy, leastHigh, std::max(leastHigh, high));
    if ((drag.zone & AlignBottom) != 0)
        wanted.bottom =
            wanted.top - 1 + std::clamp(wanted.Height() + dy, leastHigh, std::max(leastHigh, high));
    platform.ShowAt(*this, wanted);
}

bool MWindow::PreviewEvent(MControl* child, const MControlEvent& event)
{
    if (event.code == MEventCode::LeftDown && captureOwner == nullptr &&
        (GetResizeZone(event.x, event.y) != 0 || (child == nullptr && event.y < moveZoneHeight)))
        return BeginDrag(event);
    if (!dragging)
        return false;
    if (event.code == MEventCode::LeftUp)
        dragging = false;
    else if (event.code == MEventCode::Move)
        FollowDrag();
    return true;
}
