// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/StyleResources.h"

#include "gui/controls/XmlAttributes.h"
#include "gui/painting/MDrawerToMBitmap.h"

namespace
{
constexpr auto Index(MStdColor color)
{
    return static_cast<std::int32_t>(color);
}
constexpr auto Index(MStdFont font)
{
    return static_cast<std::int32_t>(font);
}

struct NamedTagSet
{
    const char* name;
    STMLTagSet set;
};

STMLTagSet Weighted(MStdColor color)
{
    STMLTagSet set;
    set.font = Index(MStdFont::Bold);
    set.color = Index(color);
    return set;
}

STMLTagSet Quiet()
{
    STMLTagSet set;
    set.color = Index(MStdColor::Text2);
    return set;
}

STMLTagSet Key(bool hasField)
{
    STMLTagSet set;
    set.color = Index(MStdColor::Text);
    if (hasField)
        set.field = STMLField{ Index(MStdColor::Field), Index(MStdColor::FieldEdge), 3 };
    return set;
}

STMLTagSet Linked()
{
    STMLTagSet set;
    set.color = Index(MStdColor::Text);
    set.underlined = true;
    return set;
}

const std::vector<NamedTagSet>& TagSets()
{
    static const std::vector<NamedTagSet> sets{
        { "name", Weighted(MStdColor::Text) },
        { "value", Weighted(MStdColor::Text) },
        { "control", Key(true) },
        { "shortcut", Key(true) },
        { "shortcutnop", Key(false) },
        { "reference", Linked() },
        { "range", Quiet() },
        { "symbol", Quiet() },
        { "example", Quiet() },
    };
    return sets;
}

struct NamedSize
{
    const char* name;
    MStyleSize size;
};

constexpr NamedSize Sizes[] = { { "MaxStdIconSizeX", MStyleSize::MaxStdIconX },
                                { "MaxStdIconSizeY", MStyleSize::MaxStdIconY },
                                { "MaxStdBitmapSizeX", MStyleSize::MaxStdBitmapX },
                                { "MaxStdBitmapSizeY", MStyleSize::MaxStdBitmapY },
                                { "DefLayoutSpace", MStyleSize::LayoutSpace } };
}   // namespace

const STMLTagSet* StyleResources::FindTagSet(const MString& name) const
{
    for (const NamedTagSet& each : TagSets())
        if (name == MString::Literal(each.name))
            return &each.set;
    return nullptr;
}

const MBitmap* StyleResources::FindIcon(const MString& name) const
{
    using Labels = MEnumLabels<MStdIcon>;
    const std::int32_t index = XmlAttributes::IndexOf(name, Labels::Labels, std::size(Labels::Labels));
    if (index < 0)
        return nullptr;
    const auto found = icons.find(index);
    if (found != icons.end())
        return &found->second;
    MBitmap& made = icons[index];
    const auto icon = static_cast<MStdIcon>(index);
    const MSize size = owner.IconSize(icon);
    if (size.width > 0 && size.height > 0)
    {
        made.Create(size.width, size.height);
        MDrawerToMBitmap drawer(made, &owner);
        owner.PaintIcon(drawer, MRectangle::OfSize(0, 0, size.width, size.height), icon,
                        owner.GetColor(MStdColor::Icon));
    }
    return &made;
}

const MBitmap* StyleResources::FindBitmap(const MString& name) const
{
    using Labels = MEnumLabels<MStdBitmap>;
    const std::int32_t index = XmlAttributes::IndexOf(name, Labels::Labels, std::size(Labels::Labels));
    if (index < 0)
        return owner.FindBitmap(name);
    static const MBitmap none;
    const MBitmap* found = owner.GetBitmap(static_cast<MStdBitmap>(index));
    return found != nullptr ? found : &none;
}

std::optional<std::int32_t> StyleResources::FindColor(const MString& name) const
{
    using Labels = MEnumLabels<MStdColor>;
    const std::int32_t index = XmlAttributes::IndexOf(name, Labels::Labels, std::size(Labels::Labels));
    return index >= 0 ? std::optional(index) : std::nullopt;
}

std::optional<double> StyleResources::FindMetric(const MString& name) const
{
    for (const NamedSize& each : Sizes)
        if (name.EqualsNoCase(MString::Literal(each.name)))
            return owner.GetSize(each.size);
    return std::nullopt;
}
