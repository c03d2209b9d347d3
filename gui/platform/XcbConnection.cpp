// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbConnection.h"

#include <bit>
#include <chrono>
#include <cstring>
#include <poll.h>

#include "foundation/text/Boundary.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "gui/platform/GuiDescriptor.h"

namespace
{
[[noreturn]] void Fail(const MString& reason)
{
    throw MException(Format("Could not connect to the display. {0}", reason));
}
}   // namespace

XcbConnection::XcbConnection(const XcbLibraries& libraries, GuiDescriptor& descriptor)
    : functions(libraries), wakeable(descriptor)
{
    const char* name = std::getenv("DISPLAY");
    if (name == nullptr || *name == 0)
        Fail("DISPLAY is not set.");
    int screenIndex = 0;
    connection = functions.xcb_connect(nullptr, &screenIndex);
    try
    {
        if (IsLost())
            Fail(Format("\"{0}\" doesn't answer.", name));
        auto each = functions.xcb_setup_roots_iterator(functions.xcb_get_setup(connection));
        for (; screenIndex > 0 && each.rem > 1; --screenIndex)
            functions.xcb_screen_next(&each);
        screen = each.data;
        FindVisual();
        InternAtoms();
        if (IsLost())
            Fail(Format("\"{0}\" doesn't answer.", name));
    }
    catch (...)
    {
        functions.xcb_disconnect(connection);
        throw;
    }
    wakeable.Watch(functions.xcb_get_file_descriptor(connection));
}

XcbConnection::~XcbConnection()
{
    const BrokenPipeGuard guard;
    wakeable.Unwatch(functions.xcb_get_file_descriptor(connection));
    functions.xcb_disconnect(connection);
}

// The root's own visual wherever it fits: then nothing has to be converted between a window and the screen.
void XcbConnection::FindVisual()
{
    const xcb_setup_t* setup = functions.xcb_get_setup(connection);
    const bool serverIsLittle = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    swapsBytes = serverIsLittle != (std::endian::native == std::endian::little);

    const auto isWide = [&](std::uint8_t wanted)
    {
        const xcb_format_t* formats = functions.xcb_setup_pixmap_formats(setup);
        for (int i = 0; i < functions.xcb_setup_pixmap_formats_length(setup); ++i)
            if (formats[i].depth == wanted)
                return formats[i].bits_per_pixel == 32;
        return false;
    };
    auto each = functions.xcb_screen_allowed_depths_iterator(screen);
    for (; each.rem > 0; functions.xcb_depth_next(&each))
    {
        // 32 bits have transparency, which a window of ours never wants unless it is all that there is.
        if (!isWide(each.data->depth) || (visual != 0 && each.data->depth != 24))
            continue;
        const xcb_visualtype_t* visuals = functions.xcb_depth_visuals(each.data);
        for (int i = 0; i < functions.xcb_depth_visuals_length(each.data); ++i)
        {
            const xcb_visualtype_t& one = visuals[i];
            const bool fits = one._class == XCB_VISUAL_CLASS_TRUE_COLOR && one.red_mask == 0xFF0000 &&
                              one.green_mask == 0xFF00 && one.blue_mask == 0xFF;
            if (fits && (visual == 0 || depth != 24 || one.visual_id == screen->root_visual))
            {
                visual = one.visual_id;
                depth = each.data->depth;
            }
        }
    }
    if (visual == 0)
        Fail("It doesn't show colours of 24 bits.");
    colormap = screen->default_colormap;
    if (visual != screen->root_visual)
    {
        colormap = functions.xcb_generate_id(connection);
        functions.xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colormap, screen->root, visual);
    }
}

void XcbConnection::InternAtoms()
{
    std::array<xcb_intern_atom_cookie_t, static_cast<std::size_t>(XcbAtom::Count)> cookies{};
    for (std::size_t i = 0; i < cookies.size(); ++i)
        cookies[i] = functions.xcb_intern_atom(
            connection, 0, static_cast<std::uint16_t>(std::strlen(XcbAtomNames[i])), XcbAtomNames[i]);
    for (std::size_t i = 0; i < cookies.size(); ++i)
        if (const auto reply = Await(functions.xcb_intern_atom_reply, cookies[i]))
            atoms[i] = reply->atom;
}

MRectangle XcbConnection::ScreenArea() const
{
    return MRectangle::OfSize(0, 0, screen->width_in_pixels, screen->height_in_pixels);
}

std::uint32_t XcbConnection::RequestBytes() const
{
    // Told in units of four bytes; the largest is far more than anybody should hold the server up with.
    return std::min(functions.xcb_get_maximum_request_length(connection), 1u << 20) * 4;
}

bool XcbConnection::Has(xcb_extension_t* extension) const
{
    if (extension == nullptr)
        return false;
    const BrokenPipeGuard guard;
    const xcb_query_extension_reply_t* data = functions.xcb_get_extension_data(connection, extension);
    return data != nullptr && data->present != 0;
}

std::uint8_t XcbConnection::FirstEvent(xcb_extension_t* extension) const
{
    const BrokenPipeGuard guard;
    return Has(extension) ? functions.xcb_get_extension_data(connection, extension)->first_event
                          : std::uint8_t{ 0 };
}

void XcbConnection::Flush()
{
    const BrokenPipeGuard guard;
    functions.xcb_flush(connection);
}

XcbEvent XcbConnection::NextEvent()
{
    if (events.empty())
        Read();
    if (events.empty())
        return nullptr;
    XcbEvent event = std::move(events.front());
    events.pop_front();
    return event;
}

void XcbConnection::Read()
{
    const BrokenPipeGuard guard;
    while (xcb_generic_event_t* event = functions.xcb_poll_for_event(connection))
    {
        events.emplace_back(event);
        if (event->response_type == 0)
        {
            LogError(reinterpret_cast<const xcb_generic_error_t*>(event));
            events.pop_back();
        }
    }
}

// While an answer was awaited, events may have been read off the socket, which then tells nobody of them.
void XcbConnection::CollectRead()
{
    while (xcb_generic_event_t* event = functions.xcb_poll_for_queued_event(connection))
    {
        events.emplace_back(event);
        if (event->response_type == 0)
        {
            LogError(reinterpret_cast<const xcb_generic_error_t*>(event));
            events.pop_back();
        }
    }
    if (!events.empty())
        wakeable.Wake();
}

const xcb_generic_event_t* XcbConnection::Peek(
    const std::function<bool(const xcb_generic_event_t&)>& matches) const
{
    for (const XcbEvent& event : events)
        if (matches(*event))
            return event.get();
    return nullptr;
}

bool XcbConnection::WaitFor(const std::function<bool(const xcb_generic_event_t&)>& take,
                            std::int32_t milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::size_t seen = 0;
    Flush();
    for (;;)
    {
        Read();
        for (; seen < events.size(); ++seen)
            if (take(*events[seen]))
            {
                events.erase(events.begin() + static_cast<std::ptrdiff_t>(seen));
                if (!events.empty())
                    wakeable.Wake();
                return true;
            }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 || IsLost())
            break;
        pollfd waited{ functions.xcb_get_file_descriptor(connection), POLLIN, 0 };
        poll(&waited, 1, static_cast<int>(left) + 1);
    }
    if (!events.empty())
        wakeable.Wake();
    return false;
}

std::string XcbConnection::Property(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                                    std::uint32_t mostBytes)
{
    const auto reply =
        Await(functions.xcb_get_property_reply,
              functions.xcb_get_property(connection, 0, window, property, type, 0, mostBytes / 4));
    if (!reply || reply->bytes_after != 0 || (type != XCB_GET_PROPERTY_TYPE_ANY && reply->type != type))
        return {};
    return { static_cast<const char*>(functions.xcb_get_property_value(reply.get())),
             static_cast<std::size_t>(functions.xcb_get_property_value_length(reply.get())) };
}

XcbConnection::PropertyData XcbConnection::TakeProperty(xcb_window_t window, xcb_atom_t property,
                                                        std::uint32_t mostBytes)
{
    PropertyData data;
    const auto reply = Await(functions.xcb_get_property_reply,
                             functions.xcb_get_property(connection, 1, window, property,
                                                        XCB_GET_PROPERTY_TYPE_ANY, 0, mostBytes / 4));
    if (!reply || reply->type == XCB_NONE)
        return data;
    data.type = reply->type;
    data.isWhole = reply->bytes_after == 0;
    data.bytes.assign(static_cast<const char*>(functions.xcb_get_property_value(reply.get())),
                      static_cast<std::size_t>(functions.xcb_get_property_value_length(reply.get())));
    // What was cut is deleted only when all of it was read.
    if (!data.isWhole)
        functions.xcb_delete_property(connection, window, property);
    return data;
}

std::vector<std::uint32_t> XcbConnection::Values(xcb_window_t window, xcb_atom_t property, xcb_atom_t type)
{
    const std::string bytes = Property(window, property, type);
    std::vector<std::uint32_t> values(bytes.size() / 4);
    if (!values.empty())
        std::memcpy(values.data(), bytes.data(), values.size() * 4);
    return values;
}

void XcbConnection::SetValues(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                              std::initializer_list<std::uint32_t> values)
{
    functions.xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                                  static_cast<std::uint32_t>(values.size()), values.begin());
}

void XcbConnection::SetText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                            const std::string& text)
{
    functions.xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                                  static_cast<std::uint32_t>(text.size()), text.data());
}

void XcbConnection::SendMessage(xcb_window_t destination, xcb_window_t window, xcb_atom_t type,
                                std::initializer_list<std::uint32_t> values, std::uint32_t mask)
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::size_t index = 0;
    for (const std::uint32_t value : values)
        message.data.data32[index++] = value;
    functions.xcb_send_event(connection, 0, destination, mask, reinterpret_cast<const char*>(&message));
}

void XcbConnection::LogError(const xcb_generic_error_t* error) const
{
    if (error != nullptr)
        LogLine(Format("The display refused request {0}.{1} with error {2}.", int{ error->major_code },
                       int{ error->minor_code }, int{ error->error_code }));
}
