// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MButton.h"
#include "gui/windows/MStandardWindow.h"
#include "tests/gui/widgets/WidgetsFixture.h"

/// The first control of a class below another one that a test tells by itself; null for none.
template <typename Kind, typename Wanted>
Kind* FindControl(MControl& root, Wanted&& isWanted)
{
    if (auto* own = dynamic_cast<Kind*>(&root); own != nullptr && isWanted(*own))
        return own;
    for (const auto& child : root.Children())
        if (Kind* found = FindControl<Kind>(*child, isWanted))
            return found;
    return nullptr;
}

template <typename Kind>
Kind& TheOne(MControl& root)
{
    return *FindControl<Kind>(root, [](const Kind&) { return true; });
}

/// Windows above a window, without a display.
class Windows : public Widgets
{
protected:
    /// The one that was opened last.
    MWindow& Top() { return *windows->OpenWindows().back(); }
    std::size_t OpenCount() const { return windows->OpenWindows().size(); }
    /// Waits until nothing is queued.
    void Settle() { const MWindows::MessageScope scope(*windows); }

    MButton* Button(MControl& root, const char* caption)
    {
        return FindControl<MButton>(root, [caption](const MButton& each) { return each.caption == caption; });
    }
    void ClickOn(MControl& control, std::int32_t button = 0)
    {
        const MRectangle place = control.AbsoluteRectangle();
        screen->Click(*control.Window(), (place.left + place.right) / 2, (place.top + place.bottom) / 2,
                      button);
    }
    void Press(const char* caption) { ClickOn(*Button(Top(), caption)); }
    void TopKey(std::int32_t key, std::uint8_t modifiers = 0) { screen->Key(Top(), key, modifiers); }
};
