// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/gui/styles/PartsSheet.h"

#include <cmath>
#include <string>

#include "gui/painting/MAlphaMask.h"
#include "gui/painting/MDrawerToMBitmap.h"

namespace
{
constexpr int enabled = DrawEnabled;

class Sheet
{
public:
    explicit Sheet(const MStyle& usedStyle)
        : style(usedStyle), bitmap(style.Pixels(960), style.Pixels(640)), painter(bitmap, &style),
          drawer(painter)
    {
    }

    MBitmap Paint()
    {
        drawer.FillRectangle(bitmap.Bounds(), Color(MStdColor::Window));
        Buttons();
        Measuring();
        Knobs();
        Sliders();
        Checks();
        MenuAndTooltip();
        Windows();
        Points();
        return std::move(bitmap);
    }

private:
    MColor Color(MStdColor color) const { return style.GetColor(color); }
    MRectangle At(double x, double y, double width, double height) const
    {
        return { style.Pixels(x), style.Pixels(y), style.Pixels(x + width) - 1,
                 style.Pixels(y + height) - 1 };
    }
    MColor Ink(int state) const
    {
        if ((state & DrawEnabled) == 0)
            return Color(MStdColor::TextDisabled);
        if ((state & DrawPrimary) != 0)
            return Color(MStdColor::AccentInk);
        return Color((state & DrawOn) != 0 ? MStdColor::OnText : MStdColor::Text);
    }
    void Text(double x, double baseline, const MString& text, MStdFont font, MColor color,
              MPlacement across = MPlacement::Begin)
    {
        MFont& used = style.GetFont(font);
        const double width = used.Width(text);
        const double start = x * style.GetScale() - (across == MPlacement::End      ? width
                                                     : across == MPlacement::Middle ? width / 2
                                                                                    : 0);
        drawer.TextOut(start, style.Pixels(baseline), text, used, color);
    }
    void Face(const MRectangle& area, MControlType type, int state)
    {
        style.PaintFace(drawer, area, type, static_cast<std::uint16_t>(state));
        if ((state & DrawFocused) != 0 && type != MControlType::Edit)
            style.PaintFocusRing(drawer, area);
    }
    void Block(double x, double y, double width, double height, const MString& title)
    {
        Face(At(x, y, width, height), MControlType::Panel, enabled);
        Text(x + 12, y + 20, title, MStdFont::Bold, Color(MStdColor::Text2));
    }
    void Button(double x, double y, double width, const MString& label, int state)
    {
        const MRectangle area = At(x, y, width, 22);
        Face(area, MControlType::Button, state);
        const double raised = (state & DrawOn) != 0 ? 1 : 0;
        Text(x + width / 2, y + 11 + 11 * 0.36 - raised, label, MStdFont::Control, Ink(state),
             MPlacement::Middle);
    }

    void Buttons()
    {
        Block(16, 16, 456, 112, "Button, toggle");
        Button(28, 48, 66, "Rest", enabled);
        Button(100, 48, 66, "Hover", enabled | DrawHovered);
        Button(172, 48, 66, "Pressed", enabled | DrawPressed);
        Button(244, 48, 66, "On", enabled | DrawOn);
        Button(316, 48, 66, "Disabled", 0);
        Button(388, 48, 66, "Primary", enabled | DrawPrimary);
        Button(28, 88, 66, "Focus", enabled | DrawFocused);
        const MStdIcon icons[] = { MStdIcon::Pause,  MStdIcon::Peaks,   MStdIcon::Close, MStdIcon::Copy,
                                   MStdIcon::Paste,  MStdIcon::Plus,    MStdIcon::Minus, MStdIcon::Reset,
                                   MStdIcon::Random, MStdIcon::Settings };
        for (int i = 0; i < 10; ++i)
        {
            const MRectangle area = At(108 + i * 27, 88, 24, 22);
            Face(area, MControlType::Button, enabled);
            style.PaintIcon(drawer, area, icons[i], Color(MStdColor::Icon));
        }
        Button(388, 88, 66, "Learn", enabled | DrawLearning);
    }

    void Analyse(double x, double y, double width, const MString& second, MStdIcon icon, int state)
    {
        Face(At(x, y, width, 32), MControlType::Button, state);
        const bool isOn = (state & DrawEnabled) != 0;
        const MColor hue = Color(icon == MStdIcon::Source ? MStdColor::SourceCore : MStdColor::TargetCore);
        style.PaintIcon(drawer, At(x + 9, y + 7, 18, 18), icon, isOn ? hue : Color(MStdColor::TextDisabled));
        const double middle = x + 20 + (width - 20) / 2;
        Text(middle, y + 13.5, "Analyse", MStdFont::Large1, Ink(state), MPlacement::Middle);
        Text(middle, y + 23.7, second, MStdFont::Small, isOn ? Color(MStdColor::Text2) : Ink(state),
             MPlacement::Middle);
    }

    void Measuring()
    {
        Block(484, 16, 460, 112, "Analyse, Equalize");
        Analyse(496, 46, 104, "source", MStdIcon::Source, enabled);
        Analyse(606, 46, 104, "source", MStdIcon::Source, enabled | DrawSource);
        Analyse(716, 46, 104, "target", MStdIcon::Target, enabled | DrawTarget);
        Analyse(826, 46, 104, "target", MStdIcon::Target, 0);
        for (const double x : { 496.0, 644.0 })
        {
            const double width = x < 600 ? 142 : 158;
            Face(At(x, 86, width, 32), MControlType::Button, enabled);
            Text(x + width / 2, 99.5, x < 600 ? MString("Equalize") : MString("Separate"), MStdFont::Large1,
                 Ink(enabled), MPlacement::Middle);
            const MString words = x < 600 ? MString("to sound like") : MString("to don't sound like");
            const double half = style.GetFont(MStdFont::Small).Width(words) / style.GetScale() / 2;
            Text(x + width / 2, 109.7, words, MStdFont::Small, Color(MStdColor::Text2), MPlacement::Middle);
            style.PaintIcon(drawer, At(x + width / 2 - half - 15, 101, 11, 11), MStdIcon::Target,
                            Color(MStdColor::TargetCore));
            style.PaintIcon(drawer, At(x + width / 2 + half + 4, 101, 11, 11), MStdIcon::Source,
                            Color(MStdColor::SourceCore));
        }
        Analyse(808, 86, 122, "drop to measure", MStdIcon::Source, enabled | DrawHovered | DrawFocused);
    }

    void Knobs()
    {
        Block(16, 138, 300, 150, "Knob, mini knob");
        struct Row
        {
            double value;
            double origin;
            MString label;
            MString text;
            int state;
        };
        const Row rows[] = { { 1, 0, "Dry/wet", "100.0%", enabled },
                             { 0.5875, 0.5, "Gain", "+4.20 dB", enabled },
                             { 0.5, 0.5, "Gain", "+0.00 dB", enabled },
                             { 0.4, 0, "Off", "40.0%", 0 } };
        for (int i = 0; i < 4; ++i)
        {
            const Row& row = rows[i];
            const double x = 56 + i * 72;
            const bool isOn = row.state != 0;
            Text(x, 184, row.label, MStdFont::Label, Color(isOn ? MStdColor::Text3 : MStdColor::TextDisabled),
                 MPlacement::Middle);
            style.PaintKnob(drawer, At(x - 21, 191, 42, 42), { row.value, row.origin, 0 },
                            static_cast<std::uint16_t>(row.state));
            Text(x, 247, row.text, MStdFont::SmallValue,
                 Color(isOn ? MStdColor::Text : MStdColor::TextDisabled), MPlacement::Middle);
            const double values[] = { 0.7, 0.3, 0.5, 0 };
            style.PaintKnob(drawer, At(30 + i * 30, 260, 20, 20), { values[i], 0, 0 },
                            static_cast<std::uint16_t>(i < 3 ? enabled : 0));
        }
        Text(166, 274, "mini knobs, 20 px", MStdFont::Label, Color(MStdColor::Text3));
    }

    void Slider(double y, const MString& label, const MString& text, double value, double origin, int state)
    {
        const bool isOn = (state & DrawEnabled) != 0;
        const MColor disabled = Color(MStdColor::TextDisabled);
        Text(340, y + 15, label, MStdFont::Normal, isOn ? Color(MStdColor::Text2) : disabled);
        style.PaintTracker(drawer, At(424, y, 106, 22), Axis::X, { value, origin, 0 },
                           static_cast<std::uint16_t>(state));
        const MRectangle field = At(540, y, 76, 22);
        Face(field, MControlType::Edit, enabled);
        Text(609, y + 15, text, MStdFont::Value, isOn ? Color(MStdColor::Text) : disabled, MPlacement::End);
        if ((state & DrawFocused) != 0)
            style.PaintFocusRing(drawer, field);
    }

    void Sliders()
    {
        Block(328, 138, 300, 150, "Slider, edit, selector");
        Slider(170, "Slope", "+3.00 dB", 0.66, 0.5, enabled);
        Slider(196, "Decay", "35.0%", 0.35, 0, enabled | DrawFocused);
        Slider(224, "Overlap", "4x", 0.5, 0, 0);
        Face(At(340, 256, 132, 22), MControlType::Switcher, enabled);
        Text(347, 271, "Linear-phase", MStdFont::Control, Color(MStdColor::Text));
        style.PaintIcon(drawer, At(457, 262.5, 9, 9), MStdIcon::CaretDown, Color(MStdColor::Text2));
        Face(At(480, 256, 136, 22), MControlType::Edit, enabled | DrawFocused);
        drawer.FillRoundRectangle(At(486, 259, 44, 16), style.GetScale(), Color(MStdColor::Selection),
                                  MColorOp::Alphablend);
        Text(488, 271, "252.5", MStdFont::Value, Color(MStdColor::Text));
        drawer.FillRectangle(At(531, 260, 1, 14), Color(MStdColor::Text));
        // Beyond the picture that this page follows: an upright one, a slim one, scroll bars.
        style.PaintTracker(drawer, At(350, 292, 240, 9), Axis::X, { 0.2, 0, 0 }, enabled);
        style.PaintTracker(drawer, At(946, 20, 14, 100), Axis::Y, { 0.3, 0, 0 }, enabled);
    }

    void Checks()
    {
        Block(640, 138, 304, 150, "Check, radio, tab, list");
        const MCheckBoxState states[] = { MCheckBoxState::On, MCheckBoxState::Off, MCheckBoxState::Off };
        const MString labels[] = { "Show peaks", "Full sonogram", "Not available" };
        for (int i = 0; i < 3; ++i)
        {
            const bool isOn = i < 2;
            style.PaintCheckBox(drawer, At(652, 172 + i * 22, 14, 14), states[i],
                                static_cast<std::uint16_t>(isOn ? enabled : 0));
            Text(672, 183 + i * 22, labels[i], MStdFont::Normal,
                 Color(isOn ? MStdColor::Text : MStdColor::TextDisabled));
        }
        const MString radios[] = { "Normal protection", "High protection" };
        for (int i = 0; i < 2; ++i)
        {
            style.PaintRadioButton(drawer, At(653, 239 + i * 20, 14, 14),
                                   static_cast<std::uint16_t>(i == 0 ? enabled | DrawOn : enabled));
            Text(674, 250 + i * 20, radios[i], MStdFont::Normal, Color(MStdColor::Text));
        }
        drawer.FillRectangle(At(792, 184, 142, 1), Color(MStdColor::Line));
        style.PaintTab(drawer, At(798, 157, 52, 28), enabled | DrawOn);
        Text(800, 174, "Settings", MStdFont::Large1, Color(MStdColor::Text));
        Text(866, 174, "Prefiltering", MStdFont::Control, Color(MStdColor::Text2));
        Face(At(792, 194, 142, 84), MControlType::ListBox, enabled);
        const MString items[] = { "Low end", "Vocal range", "Air" };
        for (int i = 0; i < 3; ++i)
        {
            const MRectangle row = At(795, 198 + i * 24, 136, 24);
            style.PaintItem(drawer, row, MControlType::ListBox,
                            static_cast<std::uint16_t>(i == 1 ? enabled | DrawOn : enabled));
            Text(804, 214 + i * 24, items[i], i == 1 ? MStdFont::Control : MStdFont::Normal,
                 Color(MStdColor::Text));
        }
        style.PaintScrollBar(drawer, At(934, 194, 10, 84), At(934, 198, 10, 34), Axis::Y, enabled);
    }

    void MenuAndTooltip()
    {
        Block(16, 298, 300, 176, "Menu, tooltip");
        const MRectangle menu = At(28, 328, 148, 113);
        style.PaintShadow(drawer, menu);
        Face(menu, MControlType::Menu, enabled);
        const MString rows[] = { "Learn", "Clear & Learn", "Copy", "Paste" };
        const MString keys[] = { "", "", "Ctrl+C", "Ctrl+V" };
        for (int i = 0; i < 4; ++i)
        {
            const double y = 332 + i * 24 + (i > 1 ? 9 : 0);
            style.PaintItem(drawer, At(32, y, 140, 24), MControlType::Menu,
                            static_cast<std::uint16_t>(i == 0 ? enabled | DrawHovered : enabled));
            Text(56, y + 16, rows[i], i == 0 ? MStdFont::Control : MStdFont::Normal, Color(MStdColor::Text));
            Text(166, y + 16, keys[i], MStdFont::Normal, Color(MStdColor::Text3), MPlacement::End);
        }
        drawer.FillRectangle(At(36, 384, 132, 1), Color(MStdColor::Line));
        const MRectangle tip = At(184, 330, 122, 64);
        drawer.FillRoundRectangle(tip, 4.5 * style.GetScale(), Color(MStdColor::TooltipEdge),
                                  MColorOp::Alphablend);
        drawer.FillRoundRectangle(tip.Inset(style.Hairline(), style.Hairline()), 3.5 * style.GetScale(),
                                  Color(MStdColor::Tooltip), MColorOp::Alphablend);
        Text(192, 345, "Gain", MStdFont::Bold, Color(MStdColor::Text));
        const MString lines[] = { "Output gain applied", "after the equalizer.", "Ctrl: fine. Del: reset." };
        for (int i = 0; i < 3; ++i)
            Text(192, 360 + 14 * i, lines[i], MStdFont::Normal, Color(MStdColor::Text2));
    }

    void Window(double x, double width, const MString& title)
    {
        const MRectangle area = At(x, 316, width, 150);
        style.PaintShadow(drawer, area);
        Face(area, MControlType::Window, enabled | DrawOn);
        Text(x + 14, 337, title, MStdFont::Large1, Color(MStdColor::Text));
        drawer.FillRectangle(At(x + 1, 348, width - 2, 1), Color(MStdColor::Line));
        drawer.FillRectangle(At(x + 1, 422, width - 2, 1), Color(MStdColor::Line));
    }

    void Windows()
    {
        Window(340, 288, "Information");
        style.PaintIcon(drawer, At(602, 325, 14, 14), MStdIcon::Close, Color(MStdColor::Text2));
        style.PaintIcon(drawer, At(355, 369, 18, 18), MStdIcon::Information, Color(MStdColor::Info));
        Text(384, 378, "There is nothing to equalize, because the", MStdFont::Normal, Color(MStdColor::Text));
        Text(384, 393, "analysis shows it is already perfect.", MStdFont::Normal, Color(MStdColor::Text));
        Button(530, 433, 84, "OK", enabled | DrawPrimary);
        Window(652, 280, "Analysing...");
        Text(666, 376, "Wait please...", MStdFont::Normal, Color(MStdColor::Text));
        Text(918, 376, "62%", MStdFont::Value, Color(MStdColor::Text2), MPlacement::End);
        style.PaintProgress(drawer, At(666, 388, 252, 6), 156.0 / 252);
        Button(834, 433, 84, "Cancel", enabled);
    }

    void Points()
    {
        Block(16, 484, 928, 140, "Points, icons");
        drawer.FillRoundRectangle(At(28, 514, 904, 100), 5.5 * style.GetScale(), Color(MStdColor::CanvasEdge),
                                  MColorOp::Alphablend);
        drawer.FillRoundRectangle(At(28, 514, 904, 100).Inset(style.Hairline(), style.Hairline()),
                                  4.5 * style.GetScale(), Color(MStdColor::Canvas), MColorOp::Alphablend);
        for (int number = 1; number <= 10; ++number)
        {
            const MBitmap* point = style.FindBitmap("eqeqpoint" + MString::FromInt(number));
            if (point != nullptr)
                drawer.BitBlt(style.Pixels(66 + (number - 1) * 40) - point->Width() / 2,
                              style.Pixels(541) - point->Height() / 2, *point, point->Bounds());
        }
        // All icons, below the points.
        constexpr int count = static_cast<int>(std::size(MEnumLabels<MStdIcon>::Labels));
        for (int icon = 1; icon < count; ++icon)
            style.PaintIcon(drawer, At(36 + (icon - 1) % 25 * 20, 560 + (icon - 1) / 25 * 24, 18, 18),
                            static_cast<MStdIcon>(icon), Color(MStdColor::Icon));
        int picture = 0;
        for (const char* name : { "arrow", "pad", "swap", "eqpeak", "eqlowshelf", "eqhighshelf", "eqlowpass",
                                  "eqhighpass", "eqbandpass", "eqnotch", "eqlowslope", "eqhighslope" })
            if (const MBitmap* image = style.FindBitmap(MString::Literal(name)))
            {
                MAlphaMask mask;
                image->CopyAlphaTo(mask);
                drawer.AlphaMask(style.Pixels(560 + 28 * picture++), style.Pixels(565), mask,
                                 Color(MStdColor::Accent), MColorOp::Alphablend);
            }
    }

    const MStyle& style;
    MBitmap bitmap;
    MDrawerToMBitmap painter;
    MDrawer& drawer;
};
}   // namespace

MBitmap PaintPartsSheet(const MStyle& style)
{
    return Sheet(style).Paint();
}
