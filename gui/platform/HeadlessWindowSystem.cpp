// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/HeadlessWindowSystem.h"

#include <algorithm>
#include <utility>

#include "gui/controls/MWindows.h"

namespace
{
constexpr std::uint8_t ButtonBits[] = { ModifierLeftButton, ModifierRightButton, ModifierMiddleButton };
constexpr std::uint64_t ClickMilliseconds = 60;
constexpr std::uint64_t LongMilliseconds = 1000;   // between clicks that don't belong together
}   // namespace

HeadlessWindowSystem::Window* HeadlessWindowSystem::Find(const MWindow& root)
{
    const auto found = windows.find(&root);
    return found != windows.end() ? &found->second : nullptr;
}

const HeadlessWindowSystem::Window* HeadlessWindowSystem::Find(const MWindow& root) const
{
    return const_cast<HeadlessWindowSystem*>(this)->Find(root);
}

MControlEvent HeadlessWindowSystem::MouseEvent(MWindow& window, MEventCode code, std::int32_t x,
                                               std::int32_t y)
{
    const MRectangle place = GetScreenRect(window);
    pointer = { place.left + x, place.top + y };
    MControlEvent event;
    event.code = code;
    event.x = x;
    event.y = y;
    event.modifiers = modifiers | buttons;
    return event;
}

void HeadlessWindowSystem::MoveMouse(MWindow& window, std::int32_t x, std::int32_t y)
{
    const MWindows::MessageScope scope(*MWindows::Get());
    window.MouseMessage(MouseEvent(window, MEventCode::Move, x, y));
}

void HeadlessWindowSystem::PressMouse(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button)
{
    MoveMouse(window, x, y);
    const MWindows::MessageScope scope(*MWindows::Get());
    buttons |= ButtonBits[button];
    if (!MWindows::Get()->ClosePopUps(&window))
        window.PressMessage(MouseEvent(window, static_cast<MEventCode>(button), x, y), time);
}

void HeadlessWindowSystem::ReleaseMouse(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button)
{
    const MWindows::MessageScope scope(*MWindows::Get());
    buttons &= static_cast<std::uint8_t>(~ButtonBits[button]);
    window.MouseMessage(MouseEvent(window, static_cast<MEventCode>(button + 3), x, y));
}

void HeadlessWindowSystem::Click(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button)
{
    time += LongMilliseconds;
    PressMouse(window, x, y, button);
    ReleaseMouse(window, x, y, button);
}

void HeadlessWindowSystem::DoubleClick(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t button)
{
    Click(window, x, y, button);
    time += ClickMilliseconds;
    PressMouse(window, x, y, button);
    ReleaseMouse(window, x, y, button);
}

bool HeadlessWindowSystem::Wheel(MWindow& window, std::int32_t x, std::int32_t y, std::int32_t delta)
{
    const MWindows::MessageScope scope(*MWindows::Get());
    MControlEvent event = MouseEvent(window, MEventCode::Wheel, x, y);
    event.key = delta;
    return window.MouseMessage(event);
}

bool HeadlessWindowSystem::Key(MWindow& window, std::int32_t key, std::uint8_t modifiersNow)
{
    bool taken = false;
    for (const MEventCode code : { MEventCode::KeyDown, MEventCode::KeyUp })
    {
        const MWindows::MessageScope scope(*MWindows::Get());
        MControlEvent event;
        event.code = code;
        event.key = key;
        event.modifiers = modifiersNow | modifiers | buttons;
        const bool tookThis = window.KeyMessage(event);
        taken = code == MEventCode::KeyDown ? tookThis : taken;
    }
    return taken;
}

void HeadlessWindowSystem::Type(MWindow& window, const MString& text)
{
    for (int i = 0; i < text.Length(); ++i)
    {
        const MWindows::MessageScope scope(*MWindows::Get());
        MControlEvent event;
        event.code = MEventCode::Character;
        event.character = static_cast<char32_t>(text[i]);
        window.KeyMessage(event);
    }
}

bool HeadlessWindowSystem::Drop(MWindow& window, std::int32_t x, std::int32_t y,
                                const std::vector<MString>& files)
{
    const MWindows::MessageScope scope(*MWindows::Get());
    window.DragMessage(x, y, true);
    return window.DropMessage(files, x, y);
}

void HeadlessWindowSystem::Resize(MWindow& window, std::int32_t width, std::int32_t height)
{
    if (Window* found = Find(window))
        found->place = MRectangle::OfSize(found->place.left, found->place.top, width, height);
    const MWindows::MessageScope scope(*MWindows::Get());
    window.SizeMessage(width, height);
}

void HeadlessWindowSystem::PassTime(std::uint64_t milliseconds)
{
    const std::uint64_t end = time + milliseconds;
    TimerQueue& timers = MWindows::Get()->Timers();
    for (std::int32_t next = timers.Next(time); next >= 0 && time + static_cast<std::uint64_t>(next) <= end;
         next = timers.Next(time))
    {
        time += static_cast<std::uint64_t>(next);
        const MWindows::MessageScope scope(*MWindows::Get());
        timers.Run(time);
    }
    time = end;
}

const MBitmap& HeadlessWindowSystem::Look(MWindow& window)
{
    ProcessPendingMessages();
    return window.Picture();
}

std::int64_t HeadlessWindowSystem::TakePaintedPixels()
{
    ProcessPendingMessages();
    return std::exchange(paintedPixels, 0);
}

MStdCursor HeadlessWindowSystem::CursorOf(const MWindow& window) const
{
    const Window* found = Find(window);
    return found != nullptr ? found->cursor : MStdCursor::Arrow;
}

MString HeadlessWindowSystem::TitleOf(const MWindow& window) const
{
    const Window* found = Find(window);
    return found != nullptr ? found->title : MString();
}

MRectangle HeadlessWindowSystem::GetWorkArea(std::int32_t, std::int32_t) const
{
    return MRectangle::OfSize(0, 0, screen.width, screen.height);
}

void HeadlessWindowSystem::CreateWindow(MWindow& root, Kind kind, Handle owner)
{
    Window& made = windows[&root];
    made.handle = ++lastHandle;
    made.owner = owner;
    made.isChild = kind == Kind::Child;
    made.place = MRectangle::OfSize(root.X(), root.Y(), root.Width(), root.Height());
}

void HeadlessWindowSystem::DestroyWindow(MWindow& root)
{
    windows.erase(&root);
    if (active == &root)
        active = nullptr;
}

MWindowSystem::Handle HeadlessWindowSystem::GetHandle(const MWindow& root) const
{
    const Window* found = Find(root);
    return found != nullptr ? found->handle : 0;
}

void HeadlessWindowSystem::SetParentWindow(MWindow& root, Handle parent)
{
    if (Window* found = Find(root))
        found->owner = parent;
}

void HeadlessWindowSystem::DetachFromParent(MWindow& root)
{
    SetParentWindow(root, 0);
}

MWindowSystem::Handle HeadlessWindowSystem::GetParentWindow(const MWindow& root) const
{
    const Window* found = Find(root);
    return found != nullptr ? found->owner : 0;
}

bool HeadlessWindowSystem::IsVisible(const MWindow& root) const
{
    const Window* found = Find(root);
    return found != nullptr && found->shown;
}

void HeadlessWindowSystem::SetTitle(MWindow& root, const MString& title)
{
    if (Window* found = Find(root))
        found->title = title;
}

void HeadlessWindowSystem::SetPositionOnly(MWindow& root, std::int32_t x, std::int32_t y)
{
    if (Window* found = Find(root))
        found->place = found->place.Moved(x - found->place.left, y - found->place.top);
}

void HeadlessWindowSystem::SetSizeOnly(MWindow& root, std::int32_t width, std::int32_t height)
{
    Resize(root, width, height);
}

MRectangle HeadlessWindowSystem::GetScreenRect(const MWindow& root) const
{
    const Window* found = Find(root);
    return found != nullptr ? found->place : MRectangle{};
}

void HeadlessWindowSystem::MoveTo(MWindow& root, std::int32_t x, std::int32_t y)
{
    SetPositionOnly(root, x, y);
}

void HeadlessWindowSystem::ShowAt(MWindow& root, const MRectangle& rectangle)
{
    Window* found = Find(root);
    if (found == nullptr)
        return;
    found->place = rectangle;
    Show(root);
    const MWindows::MessageScope scope(*MWindows::Get());
    root.SizeMessage(rectangle.Width(), rectangle.Height());
}

void HeadlessWindowSystem::Show(MWindow& root)
{
    if (Window* found = Find(root))
        found->shown = found->invalid = true;
}

void HeadlessWindowSystem::Hide(MWindow& root)
{
    if (Window* found = Find(root))
        found->shown = false;
}

void HeadlessWindowSystem::Activate(MWindow& root)
{
    if (active == &root)
        return;
    const MWindows::MessageScope scope(*MWindows::Get());
    MWindow* before = std::exchange(active, &root);
    if (before != nullptr)
        before->FocusMessage(false, &root);
    root.FocusMessage(true, before);
}

void HeadlessWindowSystem::ReturnKeyboard(MWindow& root)
{
    const Window* window = Find(root);
    if (active != &root || window == nullptr || !window->isChild)
        return;
    const MWindows::MessageScope scope(*MWindows::Get());
    active = nullptr;
    root.FocusMessage(false);
}

bool HeadlessWindowSystem::ProcessPendingMessages()
{
    MWindows& all = *MWindows::Get();
    {
        const MWindows::MessageScope scope(all);
        all.Timers().Run(time);
    }
    for (MWindow* each : std::vector<MWindow*>(all.OpenWindows()))
        UpdateWindow(*each);
    return true;
}

bool HeadlessWindowSystem::WaitForMessages(std::int32_t)
{
    ProcessPendingMessages();
    if (!actions.empty())
    {
        const std::function<void()> action = std::move(actions.front());
        actions.pop();
        action();
        return true;
    }
    const std::int32_t next = MWindows::Get()->Timers().Next(time);
    if (next < 0)
        return false;
    PassTime(static_cast<std::uint64_t>(next));
    return true;
}

void HeadlessWindowSystem::InvalidateWindow(MWindow& root, const MRectangle&)
{
    if (Window* found = Find(root))
        found->invalid = true;
}

void HeadlessWindowSystem::UpdateWindow(MWindow& root)
{
    Window* found = Find(root);
    if (found == nullptr || !found->shown || !std::exchange(found->invalid, false))
        return;
    const MWindows::MessageScope scope(*MWindows::Get());
    root.PaintMessage();
    for (const MRectangle& each : root.Shown())
        paintedPixels += std::int64_t{ each.Width() } * each.Height();
}

void HeadlessWindowSystem::SetCursor(MWindow& root, MStdCursor cursor)
{
    if (Window* found = Find(root))
        found->cursor = cursor;
}

MPoint HeadlessWindowSystem::GetCursorClient(const MWindow& root) const
{
    const MRectangle place = GetScreenRect(root);
    return { pointer.x - place.left, pointer.y - place.top };
}

void HeadlessWindowSystem::SetCursorClient(MWindow& root, std::int32_t x, std::int32_t y)
{
    const MRectangle place = GetScreenRect(root);
    pointer = { place.left + x, place.top + y };
}
