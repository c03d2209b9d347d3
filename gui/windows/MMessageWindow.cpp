// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MMessageWindow.h"

#include "gui/windows/OwnedWindow.h"

namespace
{
constexpr double WidthUnits = 288;
constexpr double SignUnits = 18;
constexpr double GapUnits = 12;
constexpr double PaddingUnits = 14;
constexpr double LeastTextUnits = 30;
}   // namespace

MMessageWindow::MMessageWindow(Kind kind, const MString& title, const MString& markup)
    : MDialog(title), kindOfSign(kind)
{
    text = &Content().Make<MStaticMultiLine>();
    text->SetText(markup);
}

void MMessageWindow::AddUsualButton()
{
    if (kindOfSign == Kind::Error)
        AddButton("Close", MModalValue::Close);
    else
        AddButton("OK", MModalValue::Ok);
}

void MMessageWindow::AddYesNo()
{
    AddButton("Yes", MModalValue::Yes);
    AddButton("No", MModalValue::No);
}

void MMessageWindow::Realize()
{
    if (Style() == nullptr || !Layouts().empty())
        return;
    MDialog::Realize();
    const MStyle& style = *Style();
    const std::int32_t left = style.Pixels(SignUnits + GapUnits);
    const std::int32_t width = style.Pixels(WidthUnits - 2 * PaddingUnits) - left;
    text->SetText(text->Text());   // there is a style now
    const std::int32_t height = std::max(style.Pixels(LeastTextUnits), text->HeightAt(width));
    text->SetPosition(left, 0);
    text->SetSize(width, height);
    Content().SetMinimalClientSize({ left + width, height });
}

void MMessageWindow::Paint(MDrawer& drawer)
{
    MDialog::Paint(drawer);
    MStyle& style = *Style();
    const MRectangle place = Content().AbsoluteRectangle();
    const std::int32_t size = style.Pixels(SignUnits);
    const MStdIcon icons[] = { MStdIcon::Information, MStdIcon::Warning, MStdIcon::Question };
    const MStdColor colors[] = { MStdColor::Info, MStdColor::Danger, MStdColor::Accent };
    const auto kind = static_cast<std::size_t>(kindOfSign);
    style.PaintIcon(drawer, MRectangle::OfSize(place.left, place.top, size, size), icons[kind],
                    style.GetColor(colors[kind]));
}

void MMessageWindow::Show(MWindow& owner, Kind kind, const MString& title, const MString& markup,
                          std::function<void(MModalValue)> then)
{
    auto window = std::make_unique<MMessageWindow>(kind, title, markup);
    if (kind == Kind::Question)
        window->AddYesNo();
    else
        window->AddUsualButton();
    OwnedWindow::Open(std::move(window), owner,
                      [then = std::move(then)](MWindow&, std::int32_t result)
                      {
                          if (then)
                              then(static_cast<MModalValue>(result));
                      });
}
