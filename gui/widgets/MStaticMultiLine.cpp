// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MStaticMultiLine.h"

#include "foundation/text/MException.h"
#include "gui/controls/XmlAttributes.h"

MStaticMultiLine::MStaticMultiLine()
{
    controlType = MControlType::Static;
    receivesMouse = false;
}

MStaticMultiLine::~MStaticMultiLine() = default;

void MStaticMultiLine::SetText(const MString& markup)
{
    source = markup;
    Parse();
    Relayout();
    Invalidate();
}

void MStaticMultiLine::SetPlainText(const MString& text)
{
    SetText(MSTML::Escaped(text));
}

void MStaticMultiLine::Realize()
{
    Parse();
}

void MStaticMultiLine::Parse()
{
    MStyle* style = Style();
    document.reset();
    if (style == nullptr)
        return;
    resources = std::make_unique<StyleResources>(*style);
    document = std::make_unique<MSTML>(*style, *resources);
    try
    {
        document->Parse(source);
    }
    catch (const MException&)
    {
        document->Parse(MSTML::Escaped(source));
    }
}

std::int32_t MStaticMultiLine::HeightAt(std::int32_t width)
{
    return document != nullptr ? document->GetHeight(width) : 0;
}

std::int32_t MStaticMultiLine::PreferredWidth()
{
    return document != nullptr ? document->GetPreferredWidth() : 0;
}

void MStaticMultiLine::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    if (attributes.Read("text", source))
        source = MSTML::Escaped(source);
    attributes.Read("stml", source);
    if (std::int32_t units = 0; attributes.Read("width", units))
        preferredWidth = PixelsOf(units);
    Parse();
}

MSize MStaticMultiLine::ContentMinimum() const
{
    if (document == nullptr)
        return {};
    const std::int32_t width = preferredWidth > 0 ? preferredWidth : Width();
    return { preferredWidth, width > 0 ? document->GetHeight(width) : 0 };
}

std::int32_t MStaticMultiLine::ComputePlasticSize(Axis axis, std::int32_t crossClientSize) const
{
    if (document == nullptr)
        return 0;
    return axis == Axis::Y ? document->GetHeight(crossClientSize) : document->GetPreferredWidth();
}

void MStaticMultiLine::Paint(MDrawer& drawer)
{
    if (document != nullptr)
        document->Paint(drawer, OwnRectangle());
}
