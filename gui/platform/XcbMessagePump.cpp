// SPDX-License-Identifier: GPL-3.0-or-later
// How the window system processes messages.
#include "foundation/text/Boundary.h"
#include "gui/controls/MWindows.h"
#include "gui/platform/XcbWindowSystem.h"

namespace
{
constexpr int MostMessages = 1024;   // in one call, so that a host gets its thread back
constexpr int MostRepaintsInRow = 10;
}   // namespace

// Messages may be processed within a message: a modal window waits there. Only the outermost level may let
// the connection go, which those within still use.
class XcbWindowSystem::Processing
{
public:
    explicit Processing(XcbWindowSystem& system) : owner(system) { ++owner.depth; }
    ~Processing()
    {
        if (--owner.depth == 0 && (owner.leavesAfterwards || owner.session->display.IsLost()))
            owner.Leave();
    }
    Processing(const Processing&) = delete;
    Processing& operator=(const Processing&) = delete;

private:
    XcbWindowSystem& owner;
};

bool XcbWindowSystem::ProcessPendingMessages()
{
    if (!session)
        return false;
    const Processing processing(*this);
    wasWoken = descriptor.TakeWake() || wasWoken;
    int repaintsInRow = 0;
    for (int count = 0; count < MostMessages; ++count)
    {
        const Message message = ProcessNext();
        if (message == Message::None)
            break;
        repaintsInRow = message == Message::Repainting ? repaintsInRow + 1 : 0;
        if (repaintsInRow > MostRepaintsInRow)
            break;
    }
    {
        const MWindows::MessageScope scope(*MWindows::Get());
    }
    if (session->display.IsLost())
    {
        LoseAll();
        return false;
    }
    session->display.Flush();
    ArmTimer();
    // Whatever is left keeps the descriptor readable.
    const bool canPaint = session->windows.FindIf([](const XcbWindow& each) { return each.CanPaint(); });
    if (wasWoken || canPaint || session->display.HasEvents())
        descriptor.Wake();
    return !leavesAfterwards;
}

bool XcbWindowSystem::WaitForMessages(std::int32_t milliseconds)
{
    if (!session)
        return false;
    ArmTimer();
    session->display.Flush();
    descriptor.Wait(milliseconds);
    return ProcessPendingMessages();
}

// Input first, then wakes, then pictures, then time: as a user would have it.
XcbWindowSystem::Message XcbWindowSystem::ProcessNext()
{
    XcbConnection& display = session->display;
    if (!display.HasEvents())
        display.Read();
    if (display.HasEvents())
    {
        bool onlyRepaints = false;
        const MWindows::MessageScope scope(*MWindows::Get());
        AtBoundary("MWindowSystem::ProcessPendingMessages",
                   [&] { onlyRepaints = dispatcher->DispatchNext(); });
        return onlyRepaints ? Message::Repainting : Message::Ordinary;
    }
    if (wasWoken)
    {
        wasWoken = false;
        const MWindows::MessageScope scope(*MWindows::Get());
        return Message::Repainting;
    }
    const Message painted = PaintNext();
    return painted != Message::None ? painted : RunTimers();
}

XcbWindowSystem::Message XcbWindowSystem::PaintNext()
{
    XcbWindow* window = session->windows.FindIf([](const XcbWindow& each) { return each.CanPaint(); });
    if (window == nullptr)
        return Message::None;
    const xcb_window_t id = window->Id();
    const MWindows::MessageScope scope(*MWindows::Get());
    AtBoundary("MWindowSystem::PaintWindow",
               [&] { window->Paint([&] { return session->windows.Find(id) != nullptr; }); });
    return Message::Repainting;
}

XcbWindowSystem::Message XcbWindowSystem::RunTimers()
{
    TimerQueue& timers = MWindows::Get()->Timers();
    const std::uint64_t now = GetTime();
    if (timers.Next(now) != 0)
        return Message::None;
    const MWindows::MessageScope scope(*MWindows::Get());
    AtBoundary("MWindowSystem::ProcessPendingMessages", [&] { timers.Run(now); });
    return Message::Repainting;
}

void XcbWindowSystem::ArmTimer()
{
    const std::uint64_t now = GetTime();
    descriptor.SetTimer(now, MWindows::Get()->Timers().Next(now));
}

void XcbWindowSystem::LoseAll()
{
    while (const XcbWindow* window = session->windows.First())
    {
        const MWindows::MessageScope scope(*MWindows::Get());
        AtBoundary("MWindowSystem::ProcessPendingMessages", [&] { dispatcher->Lose(window->Id()); });
    }
}

void XcbWindowSystem::Leave()
{
    leavesAfterwards = false;
    wasWoken = false;
    dispatcher.reset();
    session.reset();
    descriptor.SetTimer(0, -1);
    descriptor.TakeWake();
}

int XcbWindowSystem::GetDescriptor() const
{
    return session ? descriptor.Descriptor() : -1;
}

void XcbWindowSystem::SendForceExecuteEvents()
{
    descriptor.Wake();
}
