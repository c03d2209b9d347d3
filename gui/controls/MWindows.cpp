// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MWindows.h"

#include <algorithm>
#include <utility>

#include "foundation/text/Boundary.h"
#include "gui/controls/MControlInvalidatorThread.h"

namespace
{
MWindows* present = nullptr;
constexpr std::uint32_t ForcePeriodMilliseconds = 10;
}   // namespace

/// Wakes the GUI thread for work that other threads have queued, at most every 10 ms, so that they don't
/// have to talk to the platform themselves.
class MWindows::MForceExecuteEventsThread : public PacedThread
{
public:
    explicit MForceExecuteEventsThread(MWindows& windows)
        : PacedThread(ForcePeriodMilliseconds), owner(windows)
    {
    }
    ~MForceExecuteEventsThread() override
    {
        Stop();
        Wait(InfiniteTimeout);
    }

protected:
    void Round() override
    {
        if (owner.needsUpdate.exchange(false))
            owner.platform->SendForceExecuteEvents();
    }

private:
    MWindows& owner;
};

MWindows* MWindows::Get()
{
    return present;
}

MWindows::MWindows(std::unique_ptr<MWindowSystem> windowSystem)
    : platform(std::move(windowSystem)), invalidators(std::make_unique<MControlInvalidatorThread>(*this)),
      forcer(std::make_unique<MForceExecuteEventsThread>(*this))
{
    present = this;
}

MWindows::~MWindows()
{
    for (MWindow* each : std::vector<MWindow*>(windows))
        each->Close();
    StopThreads();
    leaving.clear();
    platform->Shutdown();
    present = nullptr;
}

void MWindows::SetStyle(std::unique_ptr<MStyle> newStyle)
{
    style.swap(newStyle);
    for (MWindow* each : std::vector<MWindow*>(windows))
    {
        each->OnStyleChanged();
        each->Relayout();
    }
}

MWindows::MessageScope::MessageScope(MWindows& windows) : owner(windows)
{
    ++owner.scopes;
}

MWindows::MessageScope::~MessageScope()
{
    // The queue runs while the message still counts as open: what handlers cause isn't the end of another.
    if (owner.scopes == 1)
        AtBoundary("MWindows::MessageScope", [this] { owner.EndOfMessage(); });
    --owner.scopes;
}

void MWindows::EndOfMessage()
{
    GlobalEventProcessor().Process();
    const std::vector<std::unique_ptr<MControl>> gone = std::exchange(leaving, {});
    for (MWindow* each : std::vector<MWindow*>(windows))
        each->AskForSize();
}

void MWindows::DeleteLater(std::unique_ptr<MControl> control)
{
    if (control != nullptr)
        leaving.push_back(std::move(control));
    RequestUpdate();
}

void MWindows::RequestUpdate()
{
    needsUpdate = true;
    forcer->Wake();
}

void MWindows::BeginBusy()
{
    if (busyCount++ == 0)
        for (MWindow* each : windows)
            platform->SetCursor(*each, MStdCursor::Wait);
}

void MWindows::EndBusy()
{
    if (--busyCount == 0)
        for (MWindow* each : windows)
            platform->SetCursor(*each, MStdCursor::Arrow);
}

void MWindows::LockClicksOut(std::int32_t milliseconds)
{
    clickLockoutUntil = platform->GetTime() + static_cast<std::uint64_t>(std::max(0, milliseconds));
}

bool MWindows::SwallowsClick()
{
    if (clickLockoutUntil != 0 && platform->GetTime() < clickLockoutUntil)
        return true;
    clickLockoutUntil = 0;
    return false;
}

MWindow* MWindows::TopPopUp() const
{
    const auto found = std::find_if(windows.rbegin(), windows.rend(),
                                    [](const MWindow* each) { return each->closesOutside; });
    return found != windows.rend() ? *found : nullptr;
}

bool MWindows::ClosePopUps(MWindow* pressed)
{
    bool closedOne = false;
    for (MWindow* top = TopPopUp(); top != nullptr && top != pressed; top = TopPopUp())
    {
        top->RequestClose();
        if (top->IsOpen())
            break;
        closedOne = true;
    }
    return closedOne;
}

void MWindows::Add(MWindow& window)
{
    windows.push_back(&window);
    if (windows.size() > 1)
        return;
    invalidators->Start();
    forcer->Start();
}

void MWindows::Remove(MWindow& window)
{
    std::erase(windows, &window);
    timers.Forget(window);
    if (windows.empty())
        StopThreads();
}

void MWindows::StopThreads()
{
    for (PacedThread* each :
         { static_cast<PacedThread*>(invalidators.get()), static_cast<PacedThread*>(forcer.get()) })
    {
        each->Stop();
        each->Wait(InfiniteTimeout);
    }
}

void MWindows::Forget(const MControl& control)
{
    timers.Forget(control);
}
