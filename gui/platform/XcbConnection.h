// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdlib>
#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "gui/painting/MRectangle.h"
#include "gui/platform/BrokenPipeGuard.h"
#include "gui/platform/XcbAtoms.h"
#include "gui/platform/XcbLibraries.h"

class GuiDescriptor;

/// What the library hands out and we have to free.
struct XcbFree
{
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Answer>
using XcbReply = std::unique_ptr<Answer, XcbFree>;
using XcbEvent = XcbReply<xcb_generic_event_t>;

/// This module's own connection to the X server, with nothing of it shared with the host's toolkit. A call
/// of the library reads `display->xcb_map_window(display, window)`. Requests are collected until Flush, or
/// until an answer is awaited. An error of a request is logged and otherwise means nothing: windows of
/// other programs may vanish at any moment. Thread: GUI.
class XcbConnection
{
public:
    /// Throws MException "Could not connect to the display. ...".
    XcbConnection(const XcbLibraries& libraries, GuiDescriptor& descriptor);
    ~XcbConnection();
    XcbConnection(const XcbConnection&) = delete;
    XcbConnection& operator=(const XcbConnection&) = delete;

    const XcbLibraries* operator->() const { return &functions; }
    operator xcb_connection_t*() const { return connection; }
    /// The server has gone; whatever is asked of it brings nothing.
    bool IsLost() const { return functions.xcb_connection_has_error(connection) != 0; }

    // What the server is
    xcb_window_t RootWindow() const { return screen->root; }
    MRectangle ScreenArea() const;
    /// Of all our windows: 24 bits in 32, as the pixels of an MBitmap stand in memory.
    xcb_visualid_t Visual() const { return visual; }
    std::uint8_t Depth() const { return depth; }
    xcb_colormap_t Colormap() const { return colormap; }
    /// The server wants a pixel's bytes the other way round.
    bool SwapsBytes() const { return swapsBytes; }
    /// Bytes that one request may have.
    std::uint32_t RequestBytes() const;
    xcb_atom_t Atom(XcbAtom atom) const { return atoms[static_cast<std::size_t>(atom)]; }
    /// The first event of an extension; 0 where the server hasn't got it.
    std::uint8_t FirstEvent(xcb_extension_t* extension) const;
    bool Has(xcb_extension_t* extension) const;
    /// Of the newest event that told it, for requests that want one.
    xcb_timestamp_t Time() const { return time; }
    void NoteTime(xcb_timestamp_t newTime) { time = newTime; }

    /// Null for an error.
    template <typename Answer, typename Cookie>
    XcbReply<Answer> Await(Answer* (*answerOf)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                           Cookie cookie)
    {
        const BrokenPipeGuard guard;
        xcb_generic_error_t* error = nullptr;
        XcbReply<Answer> answer(answerOf(connection, cookie, &error));
        LogError(error);
        std::free(error);
        CollectRead();
        return answer;
    }
    void Flush();

    // Events
    /// Null where none has come; never waits.
    XcbEvent NextEvent();
    /// Of those that have come, without taking it; null where there is none.
    const xcb_generic_event_t* Peek(const std::function<bool(const xcb_generic_event_t&)>& matches) const;
    /// The one that NextEvent gives, of those that were read; null for none.
    const xcb_generic_event_t* Front() const { return events.empty() ? nullptr : events.front().get(); }
    bool HasEvents() const { return !events.empty(); }
    /// Reads what the server has sent, without waiting.
    void Read();
    /// Waits until `take` answers true for an event, at most so long; the others keep their places.
    bool WaitFor(const std::function<bool(const xcb_generic_event_t&)>& take, std::int32_t milliseconds);

    // Properties
    struct PropertyData
    {
        xcb_atom_t type = XCB_NONE;   ///< XCB_NONE: there is none
        bool isWhole = false;   ///< not cut at `mostBytes`
        std::string bytes;
    };
    /// Reads a property of any type and deletes it.
    PropertyData TakeProperty(xcb_window_t window, xcb_atom_t property, std::uint32_t mostBytes);
    /// The bytes of a property; empty where there is none, or another type, or more than `mostBytes`.
    /// @param type  XCB_GET_PROPERTY_TYPE_ANY for every one
    std::string Property(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                         std::uint32_t mostBytes = 1 << 20);
    /// The same as 32-bit values.
    std::vector<std::uint32_t> Values(xcb_window_t window, xcb_atom_t property, xcb_atom_t type);
    void SetValues(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                   std::initializer_list<std::uint32_t> values);
    void SetText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::string& text);
    /// A client message of 32-bit values.
    void SendMessage(xcb_window_t destination, xcb_window_t window, xcb_atom_t type,
                     std::initializer_list<std::uint32_t> values, std::uint32_t mask = 0);

private:
    void FindVisual();
    void InternAtoms();
    void CollectRead();
    void LogError(const xcb_generic_error_t* error) const;

    const XcbLibraries& functions;
    GuiDescriptor& wakeable;
    xcb_connection_t* connection = nullptr;
    const xcb_screen_t* screen = nullptr;
    xcb_visualid_t visual = 0;
    std::uint8_t depth = 0;
    xcb_colormap_t colormap = 0;
    bool swapsBytes = false;
    xcb_timestamp_t time = XCB_CURRENT_TIME;
    std::array<xcb_atom_t, static_cast<std::size_t>(XcbAtom::Count)> atoms{};
    std::deque<XcbEvent> events;   // read, and not yet handled
};
