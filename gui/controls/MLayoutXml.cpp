// SPDX-License-Identifier: GPL-3.0-or-later
// What layouts take from their elements of a layout document, and from those of their children. Sizes there
// are units at 100 %.
#include "gui/controls/MControl.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutCorner.h"
#include "gui/controls/MLayoutGrid.h"
#include "gui/controls/MLayoutOccupyBorder.h"
#include "gui/controls/XmlAttributes.h"

void MLayout::LoadXml(const MAttribute& node)
{
    const XmlAttributes attributes(node);
    // Below 0 they mean no border of their own.
    const auto read = [&](const char* key, std::int32_t& pixels)
    {
        std::int32_t units = 0;
        if (attributes.Read(MString::Literal(key), units))
            pixels = owner.PixelsOf(units);
    };
    read("layoutspace", layoutSpaceExtra);
    read("deflayoutborderx", defaultBorderX);
    read("deflayoutbordery", defaultBorderY);
}

void MLayoutClient::AddChildXml(MControl& control, const MAttribute& node)
{
    if (std::int32_t units = 0; XmlAttributes(node).Read("space", units))
        control.layout.space = owner.PixelsOf(units);
}

void MLayoutGrid::LoadXml(const MAttribute& node)
{
    MLayout::LoadXml(node);
    const XmlAttributes attributes(node);
    if (std::int32_t count = 0; attributes.Read("columns", count))
        SetColumns(count);
    // Rows come with the controls that fill them; a number beforehand changes nothing.
    attributes.Read("verticalfill", verticalFill);
    attributes.Read("columnspancount", columnSpanCount);
}

void MLayoutGrid::AddChildXml(MControl& control, const MAttribute& node)
{
    std::int32_t columnSpan = 1;
    std::int32_t rowSpan = 1;
    const XmlAttributes attributes(node);
    const bool wide = attributes.Read("hspan", columnSpan);
    if (attributes.Read("vspan", rowSpan) || wide)
        SetSpan(control, columnSpan, rowSpan);
}

void MLayoutCorner::AddChildXml(MControl& control, const MAttribute& node)
{
    if (MString target; XmlAttributes(node).Read("target", target))
        SetTarget(control, target);
}

void MLayoutOccupyBorder::LoadXml(const MAttribute& node)
{
    MLayout::LoadXml(node);
    const XmlAttributes attributes(node);
    const auto read = [&](const char* key, std::int32_t& pixels)
    {
        std::int32_t units = 0;
        const bool found = attributes.Read(MString::Literal(key), units);
        if (found)
            pixels = owner.PixelsOf(units);
        return found;
    };
    read("x1", left);
    read("y1", top);
    read("x2", right);
    // Documents that name only the upper margin mean both.
    if (!read("y2", bottom))
        bottom = top;
}
