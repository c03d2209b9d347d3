// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MColorSelectButton.h"

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"
#include "gui/widgets/MColorEditor.h"
#include "gui/windows/ColorSwatch.h"
#include "gui/windows/MColorWindow.h"

namespace
{
constexpr double InsetUnits = 4;
constexpr double SwatchUnits = 34;   // beside a text
constexpr double LeastUnits = 24;
constexpr double GapUnits = 6;
constexpr double DisabledShare = 0.4;
}   // namespace

MColorSelectButton::MColorSelectButton()
{
    Clicks().OnLeftClick().AddHandler<&MColorSelectButton::OnClick>(*this);
}

void MColorSelectButton::SetColor(MColor shown)
{
    if (color == shown)
        return;
    color = shown;
    Invalidate();
}

void MColorSelectButton::LoadXml(const MAttribute& node)
{
    MButton::LoadXml(node);
    const XmlAttributes attributes(node);
    MString text;
    if (MColor read; attributes.Read("default", text) && MColorEditor::ColorOf(text, read))
        color = defaultColor = read;
    if (MColor read; attributes.Read("value", text) && MColorEditor::ColorOf(text, read))
        color = read;
    attributes.Read("title", title);
}

MSize MColorSelectButton::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const MStyle& style = *Style();
    const std::int32_t inset = style.Pixels(InsetUnits);
    const std::int32_t text = WidgetText::Width(*this, font, caption);
    const std::int32_t width =
        text > 0 ? style.Pixels(SwatchUnits) + style.Pixels(GapUnits) + text : style.Pixels(LeastUnits);
    return WidgetText::Inside(*this, { width + 3 * inset, style.GetDefaultSize(controlType).height });
}

void MColorSelectButton::PaintContent(MDrawer& drawer, const MRectangle& area, std::uint16_t state)
{
    MStyle& style = *Style();
    const std::int32_t inset = style.Pixels(InsetUnits);
    MRectangle swatch = area.Inset(inset, inset);
    if (!caption.IsEmpty())
    {
        swatch.right = std::min(swatch.right, swatch.left + style.Pixels(SwatchUnits) - 1);
        drawer.AlignedTextOut(
            { swatch.right + 1 + style.Pixels(GapUnits), area.top, area.right - inset, area.bottom }, caption,
            style.GetFont(font), style.GetColor(WidgetText::ColorOf(state)));
    }
    const bool usable = (state & DrawEnabled) != 0;
    PaintColorSwatch(drawer, style, swatch, usable ? color : color.Faded(DisabledShare));
}

void MColorSelectButton::OnClick(const MOnControlClickParams&)
{
    MWindow* window = Window();
    if (window == nullptr)
        return;
    const std::weak_ptr<int> here = alive;
    MColorWindow::Ask(*window, title, color, defaultColor,
                      [this, here](MColor chosen)
                      {
                          if (here.expired() || chosen == color)
                              return;
                          SetColor(chosen);
                          MOnNotifyParams params;
                          params.source = this;
                          changed.Call(params);
                      });
}
