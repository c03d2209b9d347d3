// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "gui/platform/XcbWindow.h"

/// All windows that this module has on the server. Thread: GUI.
class XcbWindowList
{
public:
    XcbWindow& Add(std::unique_ptr<XcbWindow> window)
    {
        windows.push_back(std::move(window));
        return *windows.back();
    }
    /// The caller keeps it as long as it needs it.
    std::unique_ptr<XcbWindow> Remove(xcb_window_t id)
    {
        std::unique_ptr<XcbWindow> removed;
        for (std::unique_ptr<XcbWindow>& each : windows)
            if (each->Id() == id)
                removed = std::move(each);
        std::erase(windows, nullptr);
        return removed;
    }
    /// Null for another program's.
    XcbWindow* Find(xcb_window_t id) const
    {
        return FindIf([id](const XcbWindow& each) { return each.Id() == id; });
    }
    XcbWindow* Find(const MWindow& root) const
    {
        return FindIf([&root](const XcbWindow& each) { return &each.Root() == &root; });
    }
    template <typename Condition>
    XcbWindow* FindIf(const Condition& condition) const
    {
        for (const std::unique_ptr<XcbWindow>& each : windows)
            if (condition(*each))
                return each.get();
        return nullptr;
    }
    XcbWindow* First() const { return windows.empty() ? nullptr : windows.front().get(); }
    bool IsEmpty() const { return windows.empty(); }

private:
    std::vector<std::unique_ptr<XcbWindow>> windows;
};
