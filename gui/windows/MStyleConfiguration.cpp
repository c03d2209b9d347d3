// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MStyleConfiguration.h"

#include <algorithm>
#include <cmath>

#include "foundation/text/MException.h"
#include "gui/styles/StyleFiles.h"
#include "gui/widgets/MStatic.h"

namespace
{
constexpr double WidthUnits = 424;
constexpr double LabelUnits = 118;
constexpr double RowUnits = 28;
constexpr double ControlUnits = 22;
constexpr double GapUnits = 4;

/// The rows, from the top.
enum Row : std::int32_t
{
    StyleRow,
    ScaleRow,
    FirstColorRow,
    InvertRow = FirstColorRow + StyleSettings::MainColorCount + 1,
    MotionRow,
    RowCount
};

struct ColorRow
{
    const char* label;
    int mainColor;   // -1: the icons'
};
// What is seen most stands first.
constexpr ColorRow colorRows[] = {
    { "Accent", 2 }, { "Meters, progress", 3 }, { "Learning", 1 }, { "Learning, face", 0 }, { "Icons", -1 }
};

MColor& ColorOf(StyleSettings& settings, std::size_t row)
{
    const int index = colorRows[row].mainColor;
    return index >= 0 ? settings.mainColors[index] : settings.iconColor;
}

MCheckBoxState StateOf(bool on)
{
    return on ? MCheckBoxState::On : MCheckBoxState::Off;
}
}   // namespace

MStyleConfiguration::MStyleConfiguration() : style(nullptr, names)
{
    controlType = MControlType::NoBackground;
    AddLabel("Style", StyleRow);
    styles = &Make<MSwitcher>();
    styles->SetValue(&style);
    styles->OnValueChange().AddHandler<&MStyleConfiguration::OnStyle>(*this);
    AddLabel("Scale", ScaleRow);
    for (std::size_t i = 0; i < scales.size(); ++i)
    {
        scales[i] = &Make<MButton>();
        scales[i]->caption = MString::FromInt(ScalesPercent[i]) + "%";
        scales[i]->Clicks().OnLeftClick().AddHandler<&MStyleConfiguration::OnScale>(*this, {}, i);
    }
    for (std::size_t i = 0; i < colors.size(); ++i)
    {
        AddLabel(MString::Literal(colorRows[i].label), FirstColorRow + static_cast<std::int32_t>(i));
        colors[i] = &Make<MColorSelectButton>();
        colors[i]->title = MString::Literal(colorRows[i].label);
    }
    AddLabel("Invert", InvertRow);
    icons = &Make<MCheckBox>();
    icons->caption = "Icons";
    bitmaps = &Make<MCheckBox>();
    bitmaps->caption = "Images";
    AddLabel("Motion", MotionRow);
    motion = &Make<MCheckBox>();
    motion->caption = "Off, but for curves and meters";
}

void MStyleConfiguration::AddLabel(const MString& text, std::int32_t row)
{
    MStatic& label = Make<MStatic>();
    label.caption = text;
    label.id = MString::FromInt(row);   // by which Realize finds it
}

MSize MStyleConfiguration::PreferredSize() const
{
    return { Style()->Pixels(WidthUnits), RowCount * Style()->Pixels(RowUnits) };
}

void MStyleConfiguration::PlaceRow(MControl& control, std::int32_t row, std::int32_t index,
                                   std::int32_t count) const
{
    const MStyle& used = *Style();
    const std::int32_t gap = used.Pixels(GapUnits);
    const std::int32_t label = used.Pixels(LabelUnits);
    const std::int32_t room = used.Pixels(WidthUnits) - label + gap;
    const std::int32_t left = label + index * room / count;
    const std::int32_t right = label + (index + 1) * room / count - gap;
    const std::int32_t height = used.Pixels(ControlUnits);
    control.SetPosition(left, row * used.Pixels(RowUnits) + (used.Pixels(RowUnits) - height) / 2);
    control.SetSize(right - left, height);
}

void MStyleConfiguration::Realize()
{
    if (Style() == nullptr)
        return;
    const MStyle& used = *Style();
    for (std::int32_t row = 0; row < RowCount; ++row)
    {
        MControl& label = *Find(MString::FromInt(row));
        label.SetPosition(0, row * used.Pixels(RowUnits));
        label.SetSize(used.Pixels(LabelUnits - GapUnits), used.Pixels(RowUnits));
    }
    PlaceRow(*styles, StyleRow, 0, 1);
    for (std::size_t i = 0; i < scales.size(); ++i)
        PlaceRow(*scales[i], ScaleRow, static_cast<std::int32_t>(i),
                 static_cast<std::int32_t>(scales.size()));
    for (std::size_t i = 0; i < colors.size(); ++i)
        PlaceRow(*colors[i], FirstColorRow + static_cast<std::int32_t>(i), 0, 2);
    PlaceRow(*icons, InvertRow, 0, 2);
    PlaceRow(*bitmaps, InvertRow, 1, 2);
    PlaceRow(*motion, MotionRow, 0, 1);
}

StyleSettings MStyleConfiguration::DefaultsOf(const MString& styleName) const
{
    StyleSettings defaults;
    try
    {
        const auto definition = FindStyleDefinition(styleName, folder);
        defaults.Load(definition->Tree());
        if (const MAttribute* section = definition->Section("colors"))
            defaults.Load(*section);
    }
    catch (const MException&)
    {
        // A style that can't be read shows itself when it is loaded.
    }
    return defaults;
}

void MStyleConfiguration::ShowDefaults()
{
    StyleSettings defaults = DefaultsOf(style.GetText());
    for (std::size_t i = 0; i < colors.size(); ++i)
        colors[i]->defaultColor = ColorOf(defaults, i);
}

void MStyleConfiguration::Load(const MAttribute& configuration)
{
    folder = GetStylePath(configuration);
    const MString chosen = configuration.GetAttribute("Style");
    names = ListStyles(folder);
    if (std::none_of(names.begin(), names.end(), [&chosen](const MString& each) { return each == chosen; }))
        names.Add(chosen);   // one that was there once isn't changed by looking at it
    style.SetText(chosen);
    styles->RefreshValue();
    StyleSettings settings = DefaultsOf(chosen);
    settings.Load(configuration);
    for (std::size_t i = 0; i < colors.size(); ++i)
        colors[i]->SetColor(ColorOf(settings, i));
    ShowDefaults();
    icons->SetState(StateOf(settings.invertIcons));
    bitmaps->SetState(StateOf(settings.invertBitmaps));
    motion->SetState(StateOf(settings.motionOff));
    scalePercent = static_cast<std::int32_t>(std::lround(100 * std::min(settings.resizeX, settings.resizeY)));
    ShowScale();
}

void MStyleConfiguration::Store(MAttribute& configuration) const
{
    configuration.SetAttribute("Style", style.GetText());
    StyleSettings settings = DefaultsOf(style.GetText());
    settings.Load(configuration);
    for (std::size_t i = 0; i < colors.size(); ++i)
        ColorOf(settings, i) = colors[i]->Color();
    settings.invertIcons = icons->State() == MCheckBoxState::On;
    settings.invertBitmaps = bitmaps->State() == MCheckBoxState::On;
    settings.motionOff = motion->State() == MCheckBoxState::On;
    settings.resizeX = settings.resizeY = scalePercent / 100.0;
    MAttribute all;
    settings.Store(all);
    // The alphas and the rendering aren't asked for here: they stay the style's.
    for (int i = 0; i < all.AttributeCount(); ++i)
    {
        const MAttributePair& each = all.AttributeAt(i);
        const bool asked = each.key.Find("alpha") < 0 && !each.key.EqualsNoCase("contentrendering");
        if (asked)
            configuration.SetAttribute(each.key, each.value);
    }
}

void MStyleConfiguration::LimitScales(MSize windowAt100, MSize screen)
{
    for (std::size_t i = 0; i < scales.size(); ++i)
    {
        const std::int64_t percent = ScalesPercent[i];
        const bool fits = windowAt100.width * percent <= screen.width * std::int64_t{ 100 } &&
                          windowAt100.height * percent <= screen.height * std::int64_t{ 100 };
        scales[i]->SetEnabled(fits || percent == scalePercent || i == 0);
        scales[i]->help = fits ? "" : "The window would not fit on the screen.";
    }
}

void MStyleConfiguration::ShowScale()
{
    for (std::size_t i = 0; i < scales.size(); ++i)
        scales[i]->SetOn(ScalesPercent[i] == scalePercent);
}

void MStyleConfiguration::OnStyle(const MOnValueChangeParams& params)
{
    if (params.phase == MOnValueChangeParams::Phase::Change)
        ShowDefaults();
}

void MStyleConfiguration::OnScale(const MOnControlClickParams&, std::uintptr_t index)
{
    scalePercent = ScalesPercent[index];
    ShowScale();
}
