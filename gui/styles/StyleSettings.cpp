// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleSettings.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "state/tree/StoredNode.h"

namespace
{
MString MainColorKey(int index)
{
    return "maincolor" + MString::FromInt(index);
}

void LoadColor(const MAttribute& item, const MString& key, MColor& color)
{
    const MString* text = item.FindAttribute(key);
    if (text == nullptr || text->Length() != 8)
        return;
    int digits = 0;
    static_cast<void>(text->ToUnsigned(16, &digits));
    if (digits == 8)
        color = MColor(StoredColorOf(*text));
}

void LoadScale(const MAttribute& item, const MString& key, double& scale)
{
    const MString* text = item.FindAttribute(key);
    if (text == nullptr)
        return;
    int used = 0;
    const double read = text->ToDouble(&used);
    if (used > 0 && std::isfinite(read))
        scale = std::clamp(read, StyleSettings::LeastScale, StyleSettings::LargestScale);
}

void LoadFlag(const MAttribute& item, const MString& key, bool& flag)
{
    if (const MString* text = item.FindAttribute(key))
        flag = text->ToInt() != 0;
}

struct AlphaKey
{
    const char* key;
    std::int32_t StyleSettings::*alpha;
};
constexpr AlphaKey alphaKeys[] = {
    { "minalpha", &StyleSettings::minAlpha },
    { "disabledalpha", &StyleSettings::disabledAlpha },
    { "focusedalpha", &StyleSettings::focusedAlpha },
    { "highlightedalpha", &StyleSettings::highlightedAlpha },
    { "clickedalpha", &StyleSettings::clickedAlpha },
};
}   // namespace

void StyleSettings::Load(const MAttribute& item)
{
    // First what can be refused.
    if (const MString* label = item.FindAttribute("contentrendering"))
        contentRendering = ParseColorOp(*label);
    for (int index = 0; index < MainColorCount; ++index)
        LoadColor(item, MainColorKey(index), mainColors[index]);
    LoadColor(item, "iconcolor", iconColor);
    LoadScale(item, "ResizeX", resizeX);
    LoadScale(item, "ResizeY", resizeY);
    LoadFlag(item, "inverticons", invertIcons);
    LoadFlag(item, "invertbitmaps", invertBitmaps);
    for (const AlphaKey& each : alphaKeys)
        if (const MString* text = item.FindAttribute(MString::Literal(each.key)))
            this->*each.alpha = static_cast<std::int32_t>(std::clamp<std::int64_t>(text->ToInt(), 0, 255));
}

void StyleSettings::Store(MAttribute& item) const
{
    for (int index = 0; index < MainColorCount; ++index)
        item.SetAttribute(MainColorKey(index), StoredColorText(mainColors[index].value));
    item.SetAttribute("iconcolor", StoredColorText(iconColor.value));
    item.SetAttribute("ResizeX", MString::FromDouble(resizeX, 6));
    item.SetAttribute("ResizeY", MString::FromDouble(resizeY, 6));
    item.SetAttribute("inverticons", MString::FromInt(invertIcons ? 1 : 0));
    item.SetAttribute("invertbitmaps", MString::FromInt(invertBitmaps ? 1 : 0));
    for (const AlphaKey& each : alphaKeys)
        item.SetAttribute(MString::Literal(each.key), MString::FromInt(this->*each.alpha));
    item.SetAttribute(
        "contentrendering",
        MString::Literal(MEnumLabels<MColorOp>::Labels[static_cast<std::size_t>(contentRendering)]));
}
