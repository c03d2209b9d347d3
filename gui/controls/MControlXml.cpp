// SPDX-License-Identifier: GPL-3.0-or-later
// What a control takes from its element of a layout document. Sizes there are units at 100 %.
#include <algorithm>

#include "gui/controls/MControl.h"
#include "gui/controls/MWindow.h"
#include "gui/controls/XmlAttributes.h"

namespace
{
/// By their number, which is the MAlignment byte; there is no name for left and right at once.
constexpr const char* AlignmentNames[] = { "center,center", "left,center", "right,center", nullptr,
                                           "center,top",    "left,top",    "right,top",    nullptr,
                                           "center,bottom", "left,bottom", "right,bottom" };
/// No screen is as large, and sums of such numbers still are numbers.
constexpr std::int32_t LargestSize = 32767;
}   // namespace

std::int32_t MControl::PixelsOf(std::int32_t units) const
{
    const MStyle* used = Style();
    const std::int32_t limited = std::clamp(units, -LargestSize, LargestSize);
    return used != nullptr ? used->Pixels(limited) : limited;
}

void MControl::LoadXml(const MAttribute& node)
{
    const XmlAttributes attributes(node);
    attributes.Read("id", id);
    if (bool shown = visible; attributes.Read("visible", shown))
        SetVisible(shown);
    if (attributes.ReadName("controltype", controlType, "MControlType"))
        Invalidate();
    if (bool usable = enabled; attributes.Read("enabled", usable))
        SetEnabled(usable);
    attributes.Read("tabstop", tabStop);
    if (attributes.ReadName("font", font, "MStdFont"))
        Invalidate();
    LoadSizes(node);
    LoadLayoutOptions(node);
    attributes.Read("caption", caption);
    attributes.ReadName("captiontype", captionType, "MCaptionType");
    showsHelp = true;
    attributes.Read("showhelp", showsHelp);
    attributes.Read("help", help);
    attributes.Read("useparenthelp", usesParentHelp);
    attributes.Read("enablesavestate", savesState);
    if (std::int32_t bits = 0; attributes.Read("shownstate", bits))
        shownState = static_cast<std::uint16_t>(bits);
}

void MControl::LoadSizes(const MAttribute& node)
{
    const XmlAttributes attributes(node);
    const auto read = [&](const char* key, std::int32_t& pixels)
    {
        std::int32_t units = 0;
        const bool found = attributes.Read(MString::Literal(key), units);
        if (found)
            pixels = PixelsOf(units);
        return found;
    };
    MPoint corner{ X(), Y() };
    const bool placed = read("posx", corner.x);
    if (read("posy", corner.y) || placed)
        SetPosition(corner.x, corner.y);
    MSize size{ Width(), Height() };
    const bool sized = read("sizex", size.width);
    if (read("sizey", size.height) || sized)
        SetSize(size.width, size.height);
    read("minclientsizex", minimalClient.width);
    read("minclientsizey", minimalClient.height);
    attributes.Read("autodetectminimalsize", detectsMinimalSize);
    attributes.Read("overlaycontrol", overlay);
    attributes.Read("adaptsize", adaptsSize);
    attributes.Read("plastic", layout.plastic);
    attributes.Read("plasticadaptsize", plasticAdaptsSize);
    attributes.Read("collapsable", collapsable);
    if (bool nowCollapsed = collapsed; attributes.Read("collapsed", nowCollapsed))
        SetCollapsed(nowCollapsed);
}

void MControl::LoadLayoutOptions(const MAttribute& node)
{
    const XmlAttributes attributes(node);
    attributes.Read("layoutratiox", layout.x.ratio);
    attributes.Read("layoutratioy", layout.y.ratio);
    layout.x.ratio = std::clamp(layout.x.ratio, 0, LargestSize);
    layout.y.ratio = std::clamp(layout.y.ratio, 0, LargestSize);
    for (const Axis axis : { Axis::X, Axis::Y })
        if (std::int32_t units = 0;
            attributes.Read(axis == Axis::X ? "layoutborderx" : "layoutbordery", units))
            layout.Along(axis).border = PixelsOf(units);
    if (MString name; attributes.Read("layoutplacement", name))
    {
        const std::int32_t found = XmlAttributes::IndexOf(name, AlignmentNames, std::size(AlignmentNames));
        if (found < 0)
            XmlAttributes::ThrowUnknown("MAlignment", name);
        layout.placement = static_cast<std::uint8_t>(found);
    }
    attributes.Read("layoutsaveratio", savesRatio);
}

void MWindow::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("closeonescape", closesOnEscape);
    attributes.Read("movetoscreencenter", movesToScreenCentre);
    attributes.Read("autosavestate", autoSavesState);
    attributes.Read("savewindowpos", savesPosition);
    attributes.Read("savewindowsize", savesSize);
}
