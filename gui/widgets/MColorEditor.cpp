// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MColorEditor.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "gui/controls/XmlAttributes.h"
#include "gui/fields/MEdit.h"

namespace
{
constexpr double BarUnits = 16;
constexpr double GapUnits = 6;
constexpr double DigitsUnits = 22;
constexpr double LeastUnits = 120;
constexpr double MarkUnits = 5;
constexpr double KeyStep = 0.02;

/// Hue, saturation and value to red, green and blue (A. R. Smith, Color Gamut Transform Pairs, 1978).
MColor FromHSV(double hue, double saturation, double value, std::uint8_t alpha)
{
    const auto channel = [=](double offset)
    {
        const double k = std::fmod(offset + hue * 6, 6);
        const double share = value - value * saturation * std::clamp(std::min(k, 4 - k), 0.0, 1.0);
        return static_cast<std::uint8_t>(std::lround(share * 255));
    };
    return { channel(5), channel(3), channel(1), alpha };
}

int DigitOf(char16_t character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return character >= 'a' && character <= 'f' ? character - 'a' + 10 : -1;
}
}   // namespace

MColorEditor::MColorEditor()
{
    controlType = MControlType::NoBackground;
    tabStop = true;
    digits = &Make<MEdit>();
    digits->OnDone().AddHandler<&MColorEditor::OnText>(*this);
    SetColor(MColor(255, 255, 255));
}

MString MColorEditor::TextOf(MColor color)
{
    MString text;
    for (const std::uint8_t each : { color.Red(), color.Green(), color.Blue(), color.Alpha() })
        text += MString::FromUnsigned(each, 16, 2, '0');
    return text;
}

bool MColorEditor::ColorOf(const MString& text, MColor& color)
{
    if (text.Length() != 6 && text.Length() != 8)
        return false;
    std::array<std::uint8_t, 4> bytes{ 0, 0, 0, 255 };
    for (int i = 0; i < text.Length(); i += 2)
    {
        const int high = DigitOf(text[i]);
        const int low = DigitOf(text[i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes[static_cast<std::size_t>(i / 2)] = static_cast<std::uint8_t>(high * 16 + low);
    }
    color = MColor(bytes[0], bytes[1], bytes[2], bytes[3]);
    return true;
}

MColor MColorEditor::Color() const
{
    return FromHSV(hue, saturation, brightness, alpha);
}

void MColorEditor::SetColor(MColor color)
{
    const double red = color.Red() / 255.0;
    const double green = color.Green() / 255.0;
    const double blue = color.Blue() / 255.0;
    const double most = std::max({ red, green, blue });
    const double range = most - std::min({ red, green, blue });
    brightness = most;
    saturation = most > 0 ? range / most : 0;
    // Grey keeps the hue that was there: dragged out of grey again it comes back.
    if (range > 0)
    {
        const double sector = most == red     ? std::fmod((green - blue) / range + 6, 6)
                              : most == green ? (blue - red) / range + 2
                                              : (red - green) / range + 4;
        hue = sector / 6;
    }
    alpha = color.Alpha();
    digits->SetText(TextOf(color));
    Invalidate();
}

void MColorEditor::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    MColor color;
    if (MString text; XmlAttributes(node).Read("value", text) && ColorOf(text, color))
        SetColor(color);
}

MSize MColorEditor::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const std::int32_t least = Style()->Pixels(LeastUnits);
    return { least + 2 * Style()->Pixels(BarUnits + GapUnits), least };
}

MRectangle MColorEditor::AreaOf(Part part) const
{
    const MStyle& style = *Style();
    const std::int32_t bar = style.Pixels(BarUnits);
    const std::int32_t gap = style.Pixels(GapUnits);
    MRectangle area = OwnRectangle();
    area.bottom -= style.Pixels(DigitsUnits) + gap;
    if (part == Part::Alpha)
        return { area.right + 1 - bar, area.top, area.right, area.bottom };
    if (part == Part::Hue)
        return { area.right + 1 - 2 * bar - gap, area.top, area.right - bar - gap, area.bottom };
    return { area.left, area.top, area.right - 2 * (bar + gap), area.bottom };
}

void MColorEditor::OnPlaced()
{
    if (Style() == nullptr)
        return;
    const std::int32_t high = Style()->Pixels(DigitsUnits);
    digits->SetPosition(0, Height() - high);
    digits->SetSize(Width(), high);
}

void MColorEditor::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const MColor edge = style.GetColor(MStdColor::FieldEdge);
    const MRectangle field = AreaOf(Part::Field);
    for (std::int32_t x = field.left; x <= field.right; ++x)
    {
        const double share = static_cast<double>(x - field.left) / std::max(1, field.Width() - 1);
        drawer.FillRectangleGradient({ x, field.top, x, field.bottom },
                                     MFill::Down(FromHSV(hue, share, 1, 255), MColor(0, 0, 0)));
    }
    const MRectangle hues = AreaOf(Part::Hue);
    for (std::int32_t y = hues.top; y <= hues.bottom; ++y)
        drawer.FillRectangle(
            { hues.left, y, hues.right, y },
            FromHSV(static_cast<double>(y - hues.top) / std::max(1, hues.Height() - 1), 1, 1, 255));
    const MRectangle alphas = AreaOf(Part::Alpha);
    drawer.FillRectangle(alphas, style.GetColor(MStdColor::Field));
    drawer.FillRectangleGradient(alphas, MFill::Down(Color().WithAlpha(255), Color().WithAlpha(0)));
    for (const Part part : { Part::Field, Part::Hue, Part::Alpha })
        drawer.Rectangle(AreaOf(part), edge, MColorOp::Alphablend, style.Hairline());
    const double scale = style.GetScale();
    const MPointF at{ field.left + saturation * (field.Width() - 1) + 0.5,
                      field.top + (1 - brightness) * (field.Height() - 1) + 0.5 };
    drawer.Circle(at, scale * MarkUnits, 2.5 * scale, MColor(0, 0, 0));
    drawer.Circle(at, scale * MarkUnits, 1.25 * scale, MColor(255, 255, 255));
    const auto mark = [&](const MRectangle& bar, double share)
    {
        const auto y = static_cast<std::int32_t>(bar.top + share * (bar.Height() - 1));
        const std::int32_t line = style.Hairline();
        drawer.FillRectangle({ bar.left, y - line, bar.right, y + line }, MColor(0, 0, 0));
        drawer.FillRectangle({ bar.left, y, bar.right, y + line - 1 }, MColor(255, 255, 255));
    };
    mark(hues, hue);
    mark(alphas, 1 - alpha / 255.0);
}

void MColorEditor::Changed()
{
    digits->SetText(TextOf(Color()));
    Invalidate();
    MOnNotifyParams params;
    params.source = this;
    changed.Call(params);
}

void MColorEditor::Follow(const MControlEvent& event)
{
    const MRectangle area = AreaOf(held);
    const double across =
        std::clamp(static_cast<double>(event.x - area.left) / std::max(1, area.Width() - 1), 0.0, 1.0);
    const double down =
        std::clamp(static_cast<double>(event.y - area.top) / std::max(1, area.Height() - 1), 0.0, 1.0);
    if (held == Part::Field)
    {
        saturation = across;
        brightness = 1 - down;
    }
    else if (held == Part::Hue)
        hue = std::min(down, 0.9999);
    else
        alpha = static_cast<std::uint8_t>(std::lround((1 - down) * 255));
    Changed();
}

bool MColorEditor::OnEvent(const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::LeftDown:
        held = Part::None;
        for (const Part part : { Part::Field, Part::Hue, Part::Alpha })
            if (AreaOf(part).Contains(event.x, event.y))
                held = part;
        if (held != Part::None)
            Follow(event);
        return true;
    case MEventCode::Move:
        if (held == Part::None || !HasCapture())
            return false;
        Follow(event);
        return true;
    case MEventCode::LeftUp:
        held = Part::None;
        return true;
    case MEventCode::Wheel:
        hue = std::fmod(hue + (event.key > 0 ? KeyStep : 1 - KeyStep), 1.0);
        Changed();
        return true;
    case MEventCode::KeyDown:
    {
        const double dx = event.key == MKey::Left ? -KeyStep : event.key == MKey::Right ? KeyStep : 0;
        const double dy = event.key == MKey::Down ? -KeyStep : event.key == MKey::Up ? KeyStep : 0;
        const double turn = event.key == MKey::PageUp     ? KeyStep
                            : event.key == MKey::PageDown ? 1 - KeyStep
                                                          : 0;
        if (dx == 0 && dy == 0 && turn == 0)
            return MControl::OnEvent(event);
        saturation = std::clamp(saturation + dx, 0.0, 1.0);
        brightness = std::clamp(brightness + dy, 0.0, 1.0);
        hue = std::fmod(hue + turn, 1.0);
        Changed();
        return true;
    }
    default:
        return MControl::OnEvent(event);
    }
}

void MColorEditor::OnText(const MOnClickParams& params)
{
    MColor color;
    if (params.data != MEdit::Taken || !ColorOf(digits->Text(), color) || color == Color())
    {
        digits->SetText(TextOf(Color()));
        return;
    }
    SetColor(color);
    Changed();
}
