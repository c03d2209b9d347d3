// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// How a control looks at the moment: bits.
enum DrawState : std::uint16_t
{
    DrawEnabled = 0x01,
    DrawHovered = 0x02,
    DrawPressed = 0x04,
    DrawFocused = 0x08,   ///< has the keyboard
    DrawOn = 0x10,   ///< switched on, ticked, chosen
    DrawPrimary = 0x20,   ///< what Enter presses in this window
    DrawLearning = 0x40,   ///< waits for a controller or a drawing
    DrawSource = 0x80,   ///< measures or draws the source
    DrawTarget = 0x100   ///< measures the target
};
