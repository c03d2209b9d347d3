// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/containers/MEvent.h"

class MControl;

struct MOnControlClickParams : MEventParams
{
    MControl* control = nullptr;
    std::int32_t x = 0;   ///< from the control's corner
    std::int32_t y = 0;
    std::uint8_t modifiers = 0;
};

/// The six events of clicks on a control. Handlers run when the mouse's message is done, so that they may
/// delete the control. Made when first asked for: most controls are never clicked.
class ControlClicks
{
public:
    using Event = MEvent<MOnControlClickParams>;

    Event& OnLeftClick() { return Made().clicks[0]; }
    Event& OnRightClick() { return Made().clicks[1]; }
    Event& OnMiddleClick() { return Made().clicks[2]; }
    Event& OnLeftDoubleClick() { return Made().doubleClicks[0]; }
    Event& OnRightDoubleClick() { return Made().doubleClicks[1]; }
    Event& OnMiddleDoubleClick() { return Made().doubleClicks[2]; }

    /// True when somebody listens.
    bool Raise(std::int32_t button, bool isDouble, const MOnControlClickParams& params)
    {
        if (events == nullptr)
            return false;
        Event& event = isDouble ? events->doubleClicks[button] : events->clicks[button];
        return event.Post(GlobalEventProcessor(), params);
    }
    bool Listens(std::int32_t button, bool isDouble) const
    {
        return events != nullptr &&
               (isDouble ? events->doubleClicks[button] : events->clicks[button]).HandlerCount() > 0;
    }

private:
    struct Events
    {
        Event clicks[3];
        Event doubleClicks[3];
    };

    Events& Made()
    {
        if (events == nullptr)
            events = std::make_unique<Events>();
        return *events;
    }

    std::unique_ptr<Events> events;
};
