// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <xcb/res.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

#include "gui/painting/MRectangle.h"

/// Another program on the same server, which can also play the user. Written for the tests by itself, so
/// that it agrees with the room only where both keep to the protocols.
class XClient
{
public:
    XClient() : connection(xcb_connect(nullptr, nullptr))
    {
        screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    }
    ~XClient() { xcb_disconnect(connection); }
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    template <typename Type>
    using Owned = std::unique_ptr<Type, void (*)(void*)>;
    template <typename Type>
    static Owned<Type> Own(Type* memory)
    {
        return { memory, std::free };
    }
    xcb_connection_t* Connection() const { return connection; }
    xcb_window_t Root() const { return screen->root; }

    // As the user
    void MoveTo(int x, int y)
    {
        xcb_test_fake_input(connection, XCB_MOTION_NOTIFY, 0, 0, Root(), static_cast<std::int16_t>(x),
                            static_cast<std::int16_t>(y), 0);
        Sync();
    }
    void Button(int button, bool down)
    {
        xcb_test_fake_input(connection, down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE,
                            static_cast<std::uint8_t>(button), 0, XCB_NONE, 0, 0, 0);
        Sync();
    }
    void Click(int x, int y, int button = 1)
    {
        MoveTo(x, y);
        Button(button, true);
        Button(button, false);
    }
    void Key(int code, bool down)
    {
        xcb_test_fake_input(connection, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE,
                            static_cast<std::uint8_t>(code), 0, XCB_NONE, 0, 0, 0);
        Sync();
    }
    void Type(std::initializer_list<int> codes)
    {
        for (const int code : codes)
        {
            Key(code, true);
            Key(code, false);
        }
    }

    // As a program
    xcb_window_t MakeWindow(const MRectangle& place, std::uint32_t wantedEvents = 0, bool isManaged = false)
    {
        const xcb_window_t window = xcb_generate_id(connection);
        const std::uint32_t values[] = { screen->white_pixel, isManaged ? 0u : 1u,
                                         wantedEvents | XCB_EVENT_MASK_PROPERTY_CHANGE };
        xcb_create_window(
            connection, XCB_COPY_FROM_PARENT, window, Root(), static_cast<std::int16_t>(place.left),
            static_cast<std::int16_t>(place.top), static_cast<std::uint16_t>(place.Width()),
            static_cast<std::uint16_t>(place.Height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
            XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        xcb_map_window(connection, window);
        Sync();
        return window;
    }
    xcb_atom_t Atom(const std::string& name)
    {
        xcb_atom_t& atom = atoms[name];
        if (atom == 0)
            atom =
                Own(xcb_intern_atom_reply(
                        connection,
                        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
                        nullptr))
                    ->atom;
        return atom;
    }
    void SetProperty(xcb_window_t window, const std::string& name, xcb_atom_t type, std::uint8_t format,
                     const std::string& bytes)
    {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, Atom(name), type, format,
                            static_cast<std::uint32_t>(bytes.size() * 8 / format), bytes.data());
        Sync();
    }
    static std::string Bytes(const std::vector<std::uint32_t>& values)
    {
        return { reinterpret_cast<const char*>(values.data()), values.size() * 4 };
    }
    std::string Property(xcb_window_t window, xcb_atom_t property, bool deletes = false,
                         xcb_atom_t* type = nullptr)
    {
        const auto reply = Own(xcb_get_property_reply(
            connection, xcb_get_property(connection, deletes, window, property, 0, 0, 1 << 26), nullptr));
        if (!reply)
            return {};
        if (type != nullptr)
            *type = reply->type;
        return { static_cast<const char*>(xcb_get_property_value(reply.get())),
                 static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) };
    }
    std::vector<std::uint32_t> Values(xcb_window_t window, const std::string& name)
    {
        const std::string bytes = Property(window, Atom(name));
        std::vector<std::uint32_t> values(bytes.size() / 4);
        if (!values.empty())
            std::memcpy(values.data(), bytes.data(), bytes.size());
        return values;
    }
    void Send(xcb_window_t destination, const std::string& type, std::vector<std::uint32_t> values,
              std::uint32_t mask = 0, xcb_window_t window = XCB_NONE)
    {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window != XCB_NONE ? window : destination;
        message.type = Atom(type);
        values.resize(5);
        std::copy(values.begin(), values.end(), message.data.data32);
        xcb_send_event(connection, 0, destination, mask, reinterpret_cast<const char*>(&message));
        Sync();
    }
    void Configure(xcb_window_t window, std::uint16_t mask, std::vector<std::int32_t> values)
    {
        xcb_configure_window(connection, window, mask, values.data());
    }
    void Focus(xcb_window_t window)
    {
        xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        Sync();
    }
    xcb_window_t FocusWindow()
    {
        return Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr))->focus;
    }
    /// Until the server has done all that was asked for.
    void Sync() { Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr)); }

    /// What has come, for the test to take out.
    std::vector<Owned<xcb_generic_event_t>>& Events()
    {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection))
            events.push_back(Own(event));
        return events;
    }
    /// The first event that fits, taken out; null for none.
    template <typename Event, typename Fits>
    std::unique_ptr<Event, void (*)(void*)> Take(std::uint8_t type, const Fits& fits)
    {
        Events();
        for (auto each = events.begin(); each != events.end(); ++each)
            if (((*each)->response_type & 0x7F) == type && fits(reinterpret_cast<Event&>(**each)))
            {
                auto taken = Own(reinterpret_cast<Event*>(each->release()));
                events.erase(each);
                return taken;
            }
        return Own<Event>(nullptr);
    }
    template <typename Event>
    std::unique_ptr<Event, void (*)(void*)> Take(std::uint8_t type)
    {
        return Take<Event>(type, [](const Event&) { return true; });
    }

    /// 0xRRGGBB of each pixel that a user sees there.
    std::vector<std::uint32_t> Pixels(xcb_window_t window, const MRectangle& part)
    {
        const auto reply = Own(xcb_get_image_reply(
            connection,
            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(part.left),
                          static_cast<std::int16_t>(part.top), static_cast<std::uint16_t>(part.Width()),
                          static_cast<std::uint16_t>(part.Height()), 0xFFFFFFFF),
            nullptr));
        std::vector<std::uint32_t> pixels;
        if (reply)
        {
            pixels.resize(static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) / 4);
            std::memcpy(pixels.data(), xcb_get_image_data(reply.get()), pixels.size() * 4);
        }
        for (std::uint32_t& pixel : pixels)
            pixel &= 0xFFFFFF;
        return pixels;
    }
    /// How many windows, pixmaps, cursors and so on the program has that made `window`, by type; and the
    /// bytes of its pixmaps.
    std::map<std::uint32_t, std::uint32_t> ResourcesOf(xcb_window_t window)
    {
        std::map<std::uint32_t, std::uint32_t> counts;
        const auto reply = Own(xcb_res_query_client_resources_reply(
            connection, xcb_res_query_client_resources(connection, window), nullptr));
        if (!reply)
            return counts;
        const xcb_res_type_t* types = xcb_res_query_client_resources_types(reply.get());
        for (int i = 0; i < xcb_res_query_client_resources_types_length(reply.get()); ++i)
            counts[types[i].resource_type] = types[i].count;
        return counts;
    }
    /// Premultiplied pixels of the pointer's picture, and its size.
    std::vector<std::uint32_t> CursorPixels(int& width)
    {
        Own(xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 5, 0), nullptr));
        const auto reply = Own(
            xcb_xfixes_get_cursor_image_reply(connection, xcb_xfixes_get_cursor_image(connection), nullptr));
        width = reply->width;
        const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
        return { pixels, pixels + xcb_xfixes_get_cursor_image_cursor_image_length(reply.get()) };
    }

private:
    xcb_connection_t* connection;
    xcb_screen_t* screen = nullptr;
    std::map<std::string, xcb_atom_t> atoms;
    std::vector<Owned<xcb_generic_event_t>> events;
};
