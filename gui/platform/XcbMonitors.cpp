// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbMonitors.h"

#include <algorithm>

#include "foundation/text/MString.h"

namespace
{
// Squared; 0 inside.
std::int64_t DistanceOf(const MRectangle& area, MPoint point)
{
    const std::int64_t dx = std::max({ area.left - point.x, 0, point.x - area.right });
    const std::int64_t dy = std::max({ area.top - point.y, 0, point.y - area.bottom });
    return dx * dx + dy * dy;
}
}   // namespace

std::vector<MRectangle> XcbMonitors::Areas()
{
    std::vector<MRectangle> areas;
    const bool hasMonitors = display.Has(display->xcb_randr_id) && [this]
    {
        const auto version = display.Await(display->xcb_randr_query_version_reply,
                                           display->xcb_randr_query_version(display, 1, 5));
        return version && (version->major_version > 1 || version->minor_version >= 5);
    }();
    if (hasMonitors)
        if (const auto reply =
                display.Await(display->xcb_randr_get_monitors_reply,
                              display->xcb_randr_get_monitors(display, display.RootWindow(), 1)))
        {
            auto each = display->xcb_randr_get_monitors_monitors_iterator(reply.get());
            for (; each.rem > 0; display->xcb_randr_monitor_info_next(&each))
                areas.push_back(
                    MRectangle::OfSize(each.data->x, each.data->y, each.data->width, each.data->height));
        }
    if (areas.empty())
        areas.push_back(display.ScreenArea());
    return areas;
}

MRectangle XcbMonitors::WorkArea(MPoint point)
{
    const std::vector<MRectangle> areas = Areas();
    const MRectangle monitor = *std::min_element(areas.begin(), areas.end(),
                                                 [&](const MRectangle& a, const MRectangle& b)
                                                 { return DistanceOf(a, point) < DistanceOf(b, point); });
    // Four numbers for each desktop, over all monitors.
    const xcb_window_t root = display.RootWindow();
    const auto work = display.Values(root, display.Atom(XcbAtom::NetWorkArea), XCB_ATOM_CARDINAL);
    const auto current = display.Values(root, display.Atom(XcbAtom::NetCurrentDesktop), XCB_ATOM_CARDINAL);
    const std::size_t first = current.empty() ? 0 : std::size_t{ current[0] } * 4;
    if (first + 4 > work.size())
        return monitor;
    const auto number = [&](std::size_t i)
    {
        return static_cast<std::int32_t>(std::min(work[first + i], 0xFFFFu));
    };
    const MRectangle inside =
        MRectangle::OfSize(number(0), number(1), number(2), number(3)).Intersection(monitor);
    return inside.IsEmpty() ? monitor : inside;
}

double XcbMonitors::Scale()
{
    return ScaleOfResources(
        display.Property(display.RootWindow(), XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING));
}

double XcbMonitors::ScaleOfResources(const std::string& resources)
{
    static constexpr std::string_view name = "Xft.dpi:";
    std::size_t start = resources.find(name);
    while (start != std::string::npos && start > 0 && resources[start - 1] != '\n')
        start = resources.find(name, start + 1);
    if (start == std::string::npos)
        return 1;
    const std::size_t value = resources.find_first_not_of(" \t", start + name.size());
    if (value == std::string::npos)
        return 1;
    const std::string digits = resources.substr(value, resources.find('\n', value) - value);
    const double dotsPerInch = MString::Copy(digits).ToDouble();
    return dotsPerInch > 0 ? std::clamp(dotsPerInch / 96, 0.5, 4.0) : 1.0;
}
