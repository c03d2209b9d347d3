// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

class MControl;

/// What happened. The numbers are those by which layout documents and graphs know events.
enum class MEventCode : std::int32_t
{
    LeftDown = 0,
    RightDown = 1,
    MiddleDown = 2,
    LeftUp = 3,
    RightUp = 4,
    MiddleUp = 5,
    LeftDoubleClick = 6,
    RightDoubleClick = 7,
    MiddleDoubleClick = 8,
    Move = 9,
    Wheel = 10,
    Enter = 11,
    Leave = 12,
    KeyDown = 13,
    KeyUp = 14,
    Character = 15,
    Focus = 18
};

/// What is held down while something happens.
enum MModifier : std::uint8_t
{
    ModifierLeftButton = 0x01,
    ModifierMiddleButton = 0x02,
    ModifierRightButton = 0x04,
    ModifierCtrl = 0x10,
    ModifierAlt = 0x20,
    ModifierShift = 0x40,
    ModifierKeys = ModifierCtrl | ModifierAlt | ModifierShift
};

/// Keys that write nothing, and letters and digits by their capital's code.
namespace MKey
{
constexpr std::int32_t Backspace = 0x08;
constexpr std::int32_t Tab = 0x09;
constexpr std::int32_t Enter = 0x0D;
constexpr std::int32_t Pause = 0x13;
constexpr std::int32_t Escape = 0x1B;
constexpr std::int32_t Space = 0x20;
constexpr std::int32_t PageUp = 0x21;
constexpr std::int32_t PageDown = 0x22;
constexpr std::int32_t End = 0x23;
constexpr std::int32_t Home = 0x24;
constexpr std::int32_t Left = 0x25;
constexpr std::int32_t Up = 0x26;
constexpr std::int32_t Right = 0x27;
constexpr std::int32_t Down = 0x28;
constexpr std::int32_t Insert = 0x2D;
constexpr std::int32_t Delete = 0x2E;
constexpr std::int32_t Menu = 0x5D;
constexpr std::int32_t F1 = 0x70;
constexpr std::int32_t F2 = 0x71;
}   // namespace MKey

/// Something on its way through a tree of controls.
struct MControlEvent
{
    MEventCode code = MEventCode::Move;
    std::int32_t x = 0;   ///< of the pointer, from the receiver's upper left corner, in pixels
    std::int32_t y = 0;
    std::uint8_t modifiers = 0;   ///< MModifier
    std::int32_t key = 0;   ///< MKey, or the wheel's way in 120 for a notch, up and away positive
    char32_t character = 0;   ///< of Character
    bool focused = false;   ///< of Focus: gained
    bool repeatedPress = false;   ///< a press that nobody took as a double click
    MControl* otherControl = nullptr;   ///< of Focus: who takes it, null where that is unknown

    bool IsMouse() const { return code <= MEventCode::Leave; }
    bool IsKey() const { return code >= MEventCode::KeyDown && code <= MEventCode::Character; }
    bool IsPress() const { return code <= MEventCode::MiddleDown; }
    bool IsRelease() const { return code >= MEventCode::LeftUp && code <= MEventCode::MiddleUp; }
    bool IsDoubleClick() const
    {
        return code >= MEventCode::LeftDoubleClick && code <= MEventCode::MiddleDoubleClick;
    }
    /// 0 left, 1 right, 2 middle, of a press, release or double click.
    std::int32_t Button() const { return static_cast<std::int32_t>(code) % 3; }
    bool Has(MModifier modifier) const { return (modifiers & modifier) != 0; }
    /// Seen from a control whose corner lies so far from the receiver's.
    MControlEvent From(std::int32_t dx, std::int32_t dy) const
    {
        MControlEvent moved = *this;
        moved.x -= dx;
        moved.y -= dy;
        return moved;
    }
};
