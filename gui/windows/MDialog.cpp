// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MDialog.h"

#include <algorithm>

#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutOccupyBorder.h"
#include "gui/controls/MLayoutSide.h"
#include "gui/controls/MPanel.h"

namespace
{
constexpr double TitleUnits = 32;
constexpr double PaddingUnits = 14;
constexpr double FooterUnits = 44;
constexpr double ButtonUnits = 84;
constexpr double CloserUnits = 20;
}   // namespace

MDialog::MDialog(const MString& title)
{
    caption = title;
    closesOnEscape = true;
    content = &Make<MContainer>();
    footer = &Make<MContainer>();
    closer = &Make<MButton>();
    closer->SetIcon(MStdIcon::Close);
    closer->controlType = MControlType::CaptionButton;
    closer->tabStop = false;
    closer->overlay = true;
    closer->Clicks().OnLeftClick().AddHandler<&MDialog::OnClose>(*this);
}

MButton& MDialog::AddButton(const MString& text, MModalValue result)
{
    MButton& button = footer->Make<MButton>();
    button.caption = text;
    button.SetPrimary(answers.empty());
    button.Clicks().OnLeftClick().AddHandler<&MDialog::OnButton>(*this);
    answers.push_back({ &button, result });
    return button;
}

void MDialog::Realize()
{
    if (Style() == nullptr || !Layouts().empty())
        return;
    const MStyle& style = *Style();
    const std::int32_t padding = style.Pixels(PaddingUnits);
    moveZoneHeight = style.Pixels(TitleUnits);
    auto& frame = MakeLayout<MLayoutOccupyBorder>();
    frame.top = moveZoneHeight;
    if (!answers.empty())
    {
        auto& below = MakeLayout<MLayoutBottom>();
        below.layoutSpaceExtra = -style.GetSize(MStyleSize::LayoutSpace);
        footer->SetSize(0, style.Pixels(FooterUnits));
        footer->layout.x.ratio = 1;
        below.AddControl(*footer);
        auto& row = footer->MakeLayout<MLayoutHorizontal>();
        MControl& spring = footer->Make<MContainer>();
        spring.layout.x.ratio = spring.layout.y.ratio = 1;
        row.AddControl(spring);
        // The first one stands at the right.
        for (auto each = answers.rbegin(); each != answers.rend(); ++each)
        {
            MButton& button = *each->button;
            button.SetSize(style.Pixels(ButtonUnits), style.GetDefaultSize(MControlType::Button).height);
            row.AddControl(button);
        }
        answers.front().button->layout.space = padding;
    }
    else
        footer->SetVisible(false);
    auto& inside = MakeLayout<MLayoutVertical>();
    content->layout.x.ratio = content->layout.y.ratio = 1;
    content->layout.x.border = content->layout.y.border = padding;
    inside.AddControl(*content);
}

void MDialog::OnPlaced()
{
    if (Style() == nullptr)
        return;
    const std::int32_t size = Style()->Pixels(CloserUnits);
    closer->SetSize(size, size);
    closer->SetPosition(Width() - Style()->Pixels(PaddingUnits) - size + Style()->Pixels(4),
                        (moveZoneHeight - size) / 2);
}

void MDialog::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    style.PaintFace(drawer, OwnRectangle(), MControlType::Window, DrawEnabled | DrawOn);
    const std::int32_t padding = style.Pixels(PaddingUnits);
    const std::int32_t title = style.Pixels(TitleUnits);
    const std::int32_t line = style.Hairline();
    drawer.AlignedTextOut({ padding, 0, closer->X() - 1, title - 1 }, caption,
                          style.GetFont(MStdFont::Large1), style.GetColor(MStdColor::Text));
    const MColor edge = style.GetColor(MStdColor::Line);
    drawer.FillRectangle({ line, title, Width() - 1 - line, title + line - 1 }, edge);
    if (footer->IsVisible())
        drawer.FillRectangle({ line, footer->Y() - line, Width() - 1 - line, footer->Y() - 1 }, edge);
}

bool MDialog::OnEvent(const MControlEvent& event)
{
    // Enter presses the first button wherever the keyboard is, unless that takes Enter itself.
    if (event.code == MEventCode::KeyDown && event.key == MKey::Enter && !answers.empty())
    {
        answers.front().button->Press();
        return true;
    }
    return MStandardWindow::OnEvent(event);
}

void MDialog::OnButton(const MOnControlClickParams& params)
{
    for (const Answer& each : answers)
        if (each.button == params.control && Accept(each.result))
        {
            if (IsModal())
                EndModal(static_cast<std::int32_t>(each.result));
            else
                RequestClose(static_cast<std::int32_t>(each.result));
            return;
        }
}

void MDialog::OnClose(const MOnControlClickParams&)
{
    RequestClose(static_cast<std::int32_t>(MModalValue::Close));
}
