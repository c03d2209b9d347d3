// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventBase.h"
#include "gui/painting/MDrawer.h"

class MControl;

/// Width and height in pixels.
struct MSize
{
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const MSize&) const = default;
};

/// The look of controls: their spacing, frames and pictures. Thread: GUI.
class MStyle : public MEventTarget, public MDrawerOwner
{
public:
    /// What a control's frame takes from it at each side.
    struct Frame
    {
        std::int32_t left = 0;
        std::int32_t top = 0;
        std::int32_t right = 0;
        std::int32_t bottom = 0;
    };

    virtual Frame GetFrame(const MControl& control) const = 0;
    /// Below which no control of this kind goes.
    virtual MSize GetMinimalSize(const MControl& control) const = 0;
    virtual void Paint(MControl& control, MDrawer& drawer) = 0;
};
