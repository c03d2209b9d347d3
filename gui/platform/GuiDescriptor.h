// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>

/// One descriptor that is readable when there is work for the GUI thread: the display has sent something, a
/// timer is due, or somebody woke it. For a host's run loop, and for waiting ourselves.
class GuiDescriptor
{
public:
    /// Throws MException where the system gives no descriptors.
    GuiDescriptor();
    ~GuiDescriptor();
    GuiDescriptor(const GuiDescriptor&) = delete;
    GuiDescriptor& operator=(const GuiDescriptor&) = delete;

    int Descriptor() const { return all; }
    /// Thread: GUI, as all but Wake.
    void Watch(int descriptor);
    void Unwatch(int descriptor);
    /// Thread: any.
    void Wake();
    /// Whether somebody woke it since the last call; it isn't readable for that any more.
    bool TakeWake();
    /// Readable after so long; negative: never. Costs nothing while the moment stays the same.
    /// @param now  of the clock that MWindows::Milliseconds reads
    void SetTimer(std::uint64_t now, std::int32_t milliseconds);
    /// Until it is readable.
    /// @param milliseconds  negative: for ever
    void Wait(std::int32_t milliseconds) const;

private:
    void CloseAll();

    int all = -1;
    int wake = -1;
    int timer = -1;
    std::uint64_t due = 0;   // 0: none
    std::atomic<bool> isAwake{ false };
};
