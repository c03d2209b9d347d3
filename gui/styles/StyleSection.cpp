// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleSection.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
constexpr const char* imageKeys[] = {
    "image",           "hover",        "pressed",    "focused", "grayed",       "on",
    "onhover",         "onpressed",    "ongrayed",   "primary", "primaryhover", "primarypressed",
    "learning",        "learninglamp", "source",     "target",  "framed",       "partly",
    "partlyhover",     "partlygrayed", "fill",       "thumb",   "thumbhover",   "lyingthumb",
    "lyingthumbhover", "selecteditem", "hoveritem",  "mark",    "vimage",       "himage",
    "iconon",          "iconoff",      "icongrayed",
};
static_assert(std::size(imageKeys) == static_cast<std::size_t>(StyleImage::Count));

constexpr double LargestCap = 256;   // units; no image is larger

double CapOf(const MAttribute& item, const MString& key)
{
    const double cap = item.GetAttribute(key, "0").ToDouble();
    return std::isfinite(cap) ? std::clamp(cap, 0.0, LargestCap) : 0;
}

}   // namespace

std::shared_ptr<const NineSlice> StyleImageLoader::Load(const MString& id, int mainColor, double cap)
{
    const auto fixedRows = static_cast<std::int32_t>(std::ceil(cap * scale - 1e-9));
    const std::string key = id.ToUTF8() + "/" + std::to_string(mainColor) + "/" + std::to_string(fixedRows);
    std::shared_ptr<const NineSlice>& known = loaded[key];
    if (!known)
    {
        MBitmap image = definition.Image(id, scale);
        if (mainColor >= 0)
            tints[static_cast<std::size_t>(mainColor)].Apply(image);
        known = std::make_shared<NineSlice>(std::move(image), fixedRows);
    }
    return known;
}

void StyleSection::Load(const MAttribute& item, StyleImageLoader& loader)
{
    const double cap = CapOf(item, "cap");
    const double itemCap = CapOf(item, "itemcap");
    for (std::size_t index = 0; index < images.size(); ++index)
    {
        const MString key = MString::Literal(imageKeys[index]);
        const MString* id = item.FindAttribute(key);
        if (id == nullptr || id->IsEmpty())
            continue;
        int mainColor = -1;
        if (const MString* tint = item.FindAttribute(key + "tint"))
            mainColor = static_cast<int>(std::clamp<std::int64_t>(tint->ToInt(), -1, 3));
        const auto image = static_cast<StyleImage>(index);
        const bool isItem = image == StyleImage::SelectedItem || image == StyleImage::HoverItem;
        const bool isMark = image == StyleImage::Mark;
        images[index] = loader.Load(*id, mainColor, isMark ? 1 : isItem ? itemCap : cap);
    }
}

const NineSlice* StyleSection::FirstOf(std::initializer_list<StyleImage> wanted) const
{
    for (const StyleImage image : wanted)
        if (const NineSlice* found = Find(image))
            return found;
    return nullptr;
}

const NineSlice* StyleSection::Face(std::uint16_t state) const
{
    using enum StyleImage;
    const auto has = [state](int bits)
    {
        return (state & bits) != 0;
    };
    if (!has(DrawEnabled))
        return has(DrawOn) ? FirstOf({ OnGrayed, Grayed, On, Image }) : FirstOf({ Grayed, Image });
    if (has(DrawLearning))
        return FirstOf({ Learning, On, Image });
    if (has(DrawSource))
        return FirstOf({ Source, On, Image });
    if (has(DrawTarget))
        return FirstOf({ Target, On, Image });
    if (has(DrawPrimary))
        return has(DrawPressed)   ? FirstOf({ PrimaryPressed, Primary, Pressed, Image })
               : has(DrawHovered) ? FirstOf({ PrimaryHover, Primary, Hover, Image })
                                  : FirstOf({ Primary, Image });
    if (has(DrawOn))
        return has(DrawPressed)   ? FirstOf({ OnPressed, On, Pressed, Image })
               : has(DrawHovered) ? FirstOf({ OnHover, On, Hover, Image })
                                  : FirstOf({ On, Image });
    if (has(DrawPressed) && Find(Pressed) != nullptr)
        return Find(Pressed);
    if (has(DrawFocused) && Find(Focused) != nullptr)
        return Find(Focused);
    return has(DrawHovered) || has(DrawPressed) ? FirstOf({ Hover, Image }) : Find(Image);
}
