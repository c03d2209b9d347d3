// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/MBaseStyle.h"

#include <algorithm>
#include <cmath>

#include "foundation/module/MModule.h"
#include "foundation/text/MStringFormat.h"
#include "gui/controls/MControl.h"
#include "gui/painting/ImageFiles.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "state/tree/StoredNode.h"

namespace
{
// In the order of MStyleSize.
constexpr const char* sizeKeys[] = {
    "deflayoutspace",
    "scrollerlayoutspace",
    "xspaceinmcontent",
    "yspaceinmcontent",
    "xborderinmcontent",
    "yborderinmcontent",
    "defaultlistboxitemheight",
    "listboxitemcheckboxsize",
    "defaulttreeitemheight",
    "treeitemcheckboxsize",
    "alphaenabled",
    "alphadisabled",
    "tabsetleftsize",
    "tabsetrightsize",
    "tabsetoverlapsize",
    "menubarleftsize",
    "menubarrightsize",
    "menubaroverlapsize",
    "checkboxiconsize",
    "maxstdiconsizex",
    "maxstdiconsizey",
    "maxstdbitmapsizex",
    "maxstdbitmapsizey",
    "hsplittersize",
    "vsplittersize",
    "windowbordersizex",
    "windowbordersizey",
};

constexpr std::int64_t LargestUnits = 4096;   // of any size that a definition may give

double Units(const MString& text)
{
    return static_cast<double>(std::clamp<std::int64_t>(text.ToInt(), -LargestUnits, LargestUnits));
}

std::string SmallLetters(const MString& name)
{
    std::string text = name.ToUTF8();
    for (char& letter : text)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return text;
}

template <typename Enumeration>
std::size_t IndexOf(const MString& label, const char* enumeration)
{
    constexpr auto& labels = MEnumLabels<Enumeration>::Labels;
    for (std::size_t index = 0; index < std::size(labels); ++index)
        if (label.EqualsNoCase(MString::Literal(labels[index])))
            return index;
    throw MException(Format("Invalid {0} identifier to parse ({1}).", MString::Literal(enumeration), label));
}

const MAttribute& Need(const StyleDefinition& definition, const MString& name)
{
    if (const MAttribute* section = definition.Section(name))
        return *section;
    throw MException("No style definition has been found.");
}

bool IsAlphaKey(const MString& key)
{
    return key.Length() > 5 && key.SubString(key.Length() - 5, 5).EqualsNoCase("alpha");
}
}   // namespace

void MBaseStyle::Load(StyleDefinition& definition, const MAttribute* configuration)
{
    colors.fill({});
    defaultSizes.fill({});
    minimalSizes.fill({});
    fonts = {};
    icons = {};
    bitmaps.clear();
    cursors.clear();
    const MAttribute& tree = definition.Tree();
    LoadSettings(tree, configuration);
    LoadSizes(tree);
    LoadControlSizes(definition.Section("defaultcontrolsizes"), defaultSizes);
    LoadControlSizes(definition.Section("minimalcontrolsizes"), minimalSizes);
    if (const MAttribute* section = definition.Section("icon"))
        icons.Load(*section, definition, scale, settings.invertIcons);
    if (const MAttribute* section = definition.Section("bitmap"))
        LoadBitmaps(*section, definition);
    LoadModuleBitmaps();
    fonts.Load(Need(definition, "fonts"), definition, scale);
    if (const MAttribute* section = definition.Section("cursor"))
        LoadCursors(*section, definition);
    LoadColors(Need(definition, "colors"));
}

void MBaseStyle::LoadSettings(const MAttribute& tree, const MAttribute* configuration)
{
    settings = {};
    settings.Load(tree);
    if (const MAttribute* colorSection = tree.FindSubItem("colors"))
        settings.Load(*colorSection);
    const StyleSettings drawnFor = settings;
    if (configuration != nullptr)
        settings.Load(*configuration);
    for (std::size_t index = 0; index < tints.size(); ++index)
        tints[index] = StyleTint(drawnFor.mainColors[index], settings.mainColors[index]);
    scale = std::min(settings.resizeX, settings.resizeY);
}

void MBaseStyle::LoadSizes(const MAttribute& tree)
{
    static_assert(std::size(sizeKeys) == SizeCount);
    for (std::size_t index = 0; index < SizeCount; ++index)
    {
        const double units = Units(tree.GetAttribute(MString::Literal(sizeKeys[index]), "0"));
        const auto size = static_cast<MStyleSize>(index);
        const bool isAlpha = size == MStyleSize::AlphaEnabled || size == MStyleSize::AlphaDisabled;
        sizeTable[index] = isAlpha ? static_cast<std::int32_t>(units) : Pixels(units);
    }
}

void MBaseStyle::LoadControlSizes(const MAttribute* section, ControlSizes& sizes) const
{
    if (section == nullptr)
        return;
    for (int index = 0; index < section->AttributeCount(); ++index)
    {
        const MAttributePair& pair = section->AttributeAt(index);
        const int cross = pair.value.Find(u'x');
        if (cross < 0)
            throw MException(Format("\"{0}\" is no size.", pair.value));
        sizes[IndexOf<MControlType>(pair.key, "MControlType")] = {
            Pixels(std::max(0.0, Units(pair.value.SubString(0, cross)))),
            Pixels(std::max(0.0, Units(pair.value.SubString(cross + 1, pair.value.Length()))))
        };
    }
}

void MBaseStyle::LoadColors(const MAttribute& section)
{
    for (int index = 0; index < section.AttributeCount(); ++index)
    {
        const MAttributePair& pair = section.AttributeAt(index);
        if (IsAlphaKey(pair.key))
            continue;
        const std::size_t at = IndexOf<MStdColor>(pair.key, "MStdColor");
        const MColor color(StoredColorOf(pair.value));
        const int role = StyleTint::RoleOf(static_cast<MStdColor>(at));
        colors[at] = role < 0 ? color : tints[static_cast<std::size_t>(role)].Of(color);
    }
}

void MBaseStyle::LoadBitmaps(const MAttribute& section, StyleDefinition& definition)
{
    for (int index = 0; index < section.AttributeCount(); ++index)
    {
        const MAttributePair& pair = section.AttributeAt(index);
        if (pair.key.EqualsNoCase("invertbitmaps"))
            continue;
        MBitmap image = definition.Image(pair.value, scale);
        if (settings.invertBitmaps)
        {
            MDrawerToMBitmap painter(image);
            static_cast<MDrawer&>(painter).FillRectangle(image.Bounds(), MColor(0, 0, 0), MColorOp::Invert);
        }
        bitmaps[SmallLetters(pair.key)] = std::move(image);
    }
}

void MBaseStyle::LoadModuleBitmaps()
{
    MModule* module = MModule::Main();
    for (const char* name : { "logo", "icon" })
    {
        MResource* logo = module != nullptr ? module->resources.Find("logo") : nullptr;
        if (logo == nullptr || bitmaps.contains(name))
            continue;
        MBitmap image;
        ImageFiles::LoadTGA(image, logo->Content(), true);
        bitmaps[name] = std::move(image);
    }
}

void MBaseStyle::LoadCursors(const MAttribute& section, StyleDefinition& definition)
{
    // The desktop's cursors come in a few sizes; between them nothing is reduced.
    constexpr double LargestForSmall = 1.5;
    const double drawn = scale <= LargestForSmall ? 1 : 2;
    for (int index = 0; index < section.SubItemCount(); ++index)
    {
        const MAttribute& item = section.SubItemAt(index);
        const auto id = static_cast<MStdCursor>(IndexOf<MStdCursor>(item.Name(), "MStdCursor"));
        const auto place = [&](const MString& key)
        {
            return static_cast<std::int32_t>(Units(item.GetAttribute(key, "0")) * drawn);
        };
        cursors[id] = { definition.Image(item.RequireAttribute("image"), drawn),
                        { place("hotx"), place("hoty") } };
    }
}

MColor MBaseStyle::GetColor(std::int32_t index) const
{
    const auto at = static_cast<std::size_t>(index);
    return at < colors.size() ? colors[at] : colors[0];
}

std::int32_t MBaseStyle::GetSpacing(std::int32_t index) const
{
    const auto at = static_cast<std::size_t>(index);
    return at < sizeTable.size() ? sizeTable[at] : 0;
}

MSize MBaseStyle::GetMinimalSize(const MControl& control) const
{
    return minimalSizes[static_cast<std::size_t>(control.controlType)];
}

MSize MBaseStyle::GetDefaultSize(MControlType type) const
{
    return defaultSizes[static_cast<std::size_t>(type)];
}

void MBaseStyle::PaintIcon(MDrawer& drawer, const MRectangle& area, MStdIcon icon, MColor color) const
{
    const auto times = [](std::uint8_t a, std::uint8_t b)
    {
        return static_cast<std::uint8_t>((a * b + 127) / 255);
    };
    const MColor tint = settings.iconColor;
    const MColor product(times(color.Red(), tint.Red()), times(color.Green(), tint.Green()),
                         times(color.Blue(), tint.Blue()), times(color.Alpha(), tint.Alpha()));
    icons.Paint(drawer, area, icon, product, settings.contentRendering);
}

const MBitmap* MBaseStyle::GetBitmap(MStdBitmap bitmap) const
{
    if (bitmap == MStdBitmap::None)
        return nullptr;
    return FindBitmap(MString::Literal(MEnumLabels<MStdBitmap>::Labels[static_cast<std::size_t>(bitmap)]));
}

const MBitmap* MBaseStyle::FindBitmap(const MString& name) const
{
    const auto found = bitmaps.find(SmallLetters(name));
    return found != bitmaps.end() ? &found->second : nullptr;
}

const MBaseStyle::Cursor* MBaseStyle::FindCursor(MStdCursor cursor) const
{
    const auto found = cursors.find(cursor);
    return found != cursors.end() ? &found->second : nullptr;
}

std::uint8_t MBaseStyle::AlphaOf(std::uint16_t state) const
{
    std::int32_t alpha = 255;
    if ((state & DrawEnabled) == 0)
        alpha = settings.disabledAlpha;
    else if ((state & DrawPressed) != 0)
        alpha = settings.clickedAlpha;
    else if ((state & DrawHovered) != 0)
        alpha = settings.highlightedAlpha;
    else if ((state & DrawFocused) != 0)
        alpha = settings.focusedAlpha;
    return static_cast<std::uint8_t>(std::max(alpha, settings.minAlpha));
}
