// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MStatic.h"

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

MStatic::MStatic()
{
    controlType = MControlType::Static;
    receivesMouse = false;
}

void MStatic::SetText(const MString& text)
{
    if (text == caption)
        return;
    caption = text;
    Invalidate();
    if (!keepsWidth && ContentMinimum().width > Width())
        Relayout();
}

void MStatic::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("text", caption);
    attributes.ReadName("color", color, "MStdColor");
    MHorizontalObjectLayout across = MHorizontalObjectLayout::Left;
    if (attributes.ReadName("alignment", across, "MHorizontalObjectLayout"))
        alignment = across == MHorizontalObjectLayout::Right    ? MPlacement::End
                    : across == MHorizontalObjectLayout::Center ? MPlacement::Middle
                                                                : MPlacement::Begin;
    attributes.Read("shortens", keepsWidth);
}

MSize MStatic::ContentMinimum() const
{
    return { keepsWidth ? 0 : WidgetText::Width(*this, font, caption), WidgetText::LineHeight(*this, font) };
}

void MStatic::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const MStdColor shown = (GetDrawState() & DrawEnabled) != 0 ? color : MStdColor::TextDisabled;
    drawer.AlignedTextOut(OwnRectangle(), caption, style.GetFont(font), style.GetColor(shown), alignment);
}
