// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbWindowHints.h"

#include <algorithm>
#include <unistd.h>

namespace
{
// Of WM_NORMAL_HINTS, in units of 32 bits.
constexpr std::size_t SizeHintsLength = 18;
constexpr std::uint32_t ProgramPosition = 1 << 2;
constexpr std::uint32_t ProgramMinSize = 1 << 4;
constexpr std::uint32_t ProgramMaxSize = 1 << 5;
constexpr std::uint32_t ProgramGravity = 1 << 9;
constexpr std::uint32_t StaticGravity = 10;   // places are those of the content, not of the frame

constexpr std::uint32_t IconicState = 3;
constexpr std::uint32_t FromApplication = 1;   // who asks, in messages to the desktop
constexpr std::uint32_t ToDesktop = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
}   // namespace

void XcbWindowHints::Introduce(MWindowSystem::Kind kind, xcb_window_t owner)
{
    using Kind = MWindowSystem::Kind;
    const XcbAtom type = kind == Kind::PopUp    ? XcbAtom::NetWmWindowTypePopUpMenu
                         : kind == Kind::Dialog ? XcbAtom::NetWmWindowTypeDialog
                                                : XcbAtom::NetWmWindowTypeNormal;
    display.SetValues(window, display.Atom(XcbAtom::NetWmWindowType), XCB_ATOM_ATOM, { display.Atom(type) });
    display.SetValues(window, display.Atom(XcbAtom::WmProtocols), XCB_ATOM_ATOM,
                      { display.Atom(XcbAtom::WmDeleteWindow), display.Atom(XcbAtom::NetWmPing) });
    display.SetValues(window, display.Atom(XcbAtom::NetWmPid), XCB_ATOM_CARDINAL,
                      { static_cast<std::uint32_t>(getpid()) });
    char machine[256] = {};
    if (gethostname(machine, sizeof(machine) - 1) == 0)
        display.SetText(window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, machine);
    display.SetText(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string("tonalign\0Tonalign\0", 18));
    // It wants the keyboard when it is active, and begins as a window rather than as an icon.
    display.SetValues(window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, { 3, 1, 1, 0, 0, 0, 0, 0, 0 });
    if (owner != XCB_NONE)
        display.SetValues(window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, { TopLevelOf(display, owner) });
}

void XcbWindowHints::SetTitle(const MString& title)
{
    const std::string text = title.ToUTF8();
    const xcb_atom_t utf8 = display.Atom(XcbAtom::Utf8String);
    display.SetText(window, display.Atom(XcbAtom::NetWmName), utf8, text);
    display.SetText(window, display.Atom(XcbAtom::NetWmIconName), utf8, text);
    display.SetText(window, XCB_ATOM_WM_NAME, utf8, text);
}

void XcbWindowHints::SetIcon(const MBitmap& icon)
{
    const std::size_t pixelCount =
        static_cast<std::size_t>(icon.Width()) * static_cast<std::size_t>(icon.Height());
    // Nobody shows one larger than a request can hold.
    if (icon.IsEmpty() || pixelCount * 4 + 1024 > display.RequestBytes())
        return;
    std::vector<std::uint32_t> values = { static_cast<std::uint32_t>(icon.Width()),
                                          static_cast<std::uint32_t>(icon.Height()) };
    values.insert(values.end(), icon.Row(0), icon.Row(0) + pixelCount);
    display->xcb_change_property(display, XCB_PROP_MODE_REPLACE, window, display.Atom(XcbAtom::NetWmIcon),
                                 XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(values.size()),
                                 values.data());
}

void XcbWindowHints::SetSizes(MSize smallest, MSize largest)
{
    constexpr std::int32_t none = 32767;
    const auto limit = [](std::int32_t value, std::int32_t otherwise)
    {
        return static_cast<std::uint32_t>(value > 0 ? value : otherwise);
    };
    std::uint32_t hints[SizeHintsLength] = {};
    hints[0] = ProgramPosition | ProgramMinSize | ProgramMaxSize | ProgramGravity;
    hints[5] = limit(smallest.width, 1);
    hints[6] = limit(smallest.height, 1);
    hints[7] = std::max(hints[5], limit(largest.width, none));
    hints[8] = std::max(hints[6], limit(largest.height, none));
    hints[17] = StaticGravity;
    display->xcb_change_property(display, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                                 XCB_ATOM_WM_SIZE_HINTS, 32, SizeHintsLength, hints);
}

void XcbWindowHints::SetState(XcbAtom state, bool on, bool isShown)
{
    const xcb_atom_t property = display.Atom(XcbAtom::NetWmState);
    if (isShown)
    {
        display.SendMessage(display.RootWindow(), window, property,
                            { on ? 1u : 0u, display.Atom(state), XCB_NONE, FromApplication }, ToDesktop);
        return;
    }
    std::vector<std::uint32_t> states = display.Values(window, property, XCB_ATOM_ATOM);
    std::erase(states, display.Atom(state));
    if (on)
        states.push_back(display.Atom(state));
    display->xcb_change_property(display, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_ATOM, 32,
                                 static_cast<std::uint32_t>(states.size()), states.data());
}

bool XcbWindowHints::HasState(XcbAtom state)
{
    const auto states = display.Values(window, display.Atom(XcbAtom::NetWmState), XCB_ATOM_ATOM);
    return std::find(states.begin(), states.end(), display.Atom(state)) != states.end();
}

bool XcbWindowHints::IsIconic()
{
    const xcb_atom_t property = display.Atom(XcbAtom::WmState);
    const auto state = display.Values(window, property, property);
    return (!state.empty() && state[0] == IconicState) || HasState(XcbAtom::NetWmStateHidden);
}

void XcbWindowHints::Minimize()
{
    display.SendMessage(display.RootWindow(), window, display.Atom(XcbAtom::WmChangeState), { IconicState },
                        ToDesktop);
}

bool XcbWindowHints::Activate()
{
    const xcb_atom_t message = display.Atom(XcbAtom::NetActiveWindow);
    const auto known =
        display.Values(display.RootWindow(), display.Atom(XcbAtom::NetSupported), XCB_ATOM_ATOM);
    if (std::find(known.begin(), known.end(), message) == known.end())
        return false;
    display.SendMessage(display.RootWindow(), window, message, { FromApplication, display.Time(), XCB_NONE },
                        ToDesktop);
    return true;
}

xcb_window_t XcbWindowHints::TopLevelOf(XcbConnection& display, xcb_window_t inner)
{
    const xcb_atom_t managed = display.Atom(XcbAtom::WmState);
    xcb_window_t each = inner;
    for (;;)
    {
        const auto tree =
            display.Await(display->xcb_query_tree_reply, display->xcb_query_tree(display, each));
        if (!tree || tree->parent == XCB_NONE || tree->parent == tree->root)
            return each;
        if (!display.Values(each, managed, managed).empty())
            return each;
        each = tree->parent;
    }
}
