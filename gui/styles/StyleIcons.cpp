// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleIcons.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{
MString LabelOf(std::size_t icon)
{
    return MString::Literal(MEnumLabels<MStdIcon>::Labels[icon]);
}

// The numbers of a text, whatever stands between them.
std::vector<double> NumbersOf(const MString& text)
{
    std::vector<double> numbers;
    for (int start = 0; start < text.Length();)
    {
        int used = 0;
        const double number = text.SubString(start, text.Length() - start).ToDouble(&used);
        if (used > 0 && std::isfinite(number))
            numbers.push_back(number);
        start += std::max(used, 1);
    }
    return numbers;
}

bool IsOpaque(const MBitmap& image)
{
    for (std::int32_t y = 0; y < image.Height(); ++y)
        for (std::int32_t x = 0; x < image.Width(); ++x)
            if (image.Pixel(x, y).Alpha() != 255)
                return false;
    return true;
}

// An image that nothing shines through shows its strokes by their brightness: as alpha from here on.
void MakeAlpha(MBitmap& image, bool invert)
{
    if (!IsOpaque(image))
        return;
    for (std::int32_t y = 0; y < image.Height(); ++y)
        for (std::int32_t x = 0; x < image.Width(); ++x)
        {
            const MColor pixel = image.Pixel(x, y);
            const int brightness = (2 * pixel.Red() + 5 * pixel.Green() + pixel.Blue()) / 8;
            image.Row(y)[x] =
                pixel.WithAlpha(static_cast<std::uint8_t>(invert ? 255 - brightness : brightness)).value;
        }
}

std::unique_ptr<MAlphaMask> MaskOfPart(const MBitmap& image, const MRectangle& part)
{
    auto mask = std::make_unique<MAlphaMask>();
    mask->Create(part.Width(), part.Height());
    for (std::int32_t y = 0; y < part.Height(); ++y)
        for (std::int32_t x = 0; x < part.Width(); ++x)
            mask->Set(x, y, image.Pixel(part.left + x, part.top + y).Alpha());
    return mask;
}
}   // namespace

void StyleIcons::LoadSheets(const MAttribute& section, StyleDefinition& definition, double scale, bool invert)
{
    const MString* image = section.FindAttribute("image");
    if (image == nullptr)
        return;
    for (const double size : NumbersOf(section.GetAttribute("sizes")))
    {
        Sheet sheet;
        sheet.image = definition.Sheet(*image + MString::FromInt(std::llround(size)), scale);
        sheet.side = sheet.image.Height();
        MakeAlpha(sheet.image, invert);
        sheets.push_back(std::move(sheet));
    }
    std::stable_sort(sheets.begin(), sheets.end(),
                     [](const Sheet& a, const Sheet& b) { return a.side < b.side; });
}

void StyleIcons::Load(const MAttribute& section, StyleDefinition& definition, double scale, bool invert)
{
    LoadSheets(section, definition, scale, invert);
    for (std::size_t number = 1; number < IconCount; ++number)
    {
        const MString* text = section.FindAttribute(LabelOf(number));
        if (text == nullptr)
            continue;
        Icon& icon = icons[number];
        const std::vector<double> places = NumbersOf(*text);
        const char16_t first = (*text)[0];
        if (first >= u'0' && first <= u'9' && places.size() >= 2)
        {
            icon.index = static_cast<std::int32_t>(std::clamp(places[0], 0.0, 4096.0));
            icon.side = static_cast<std::int32_t>(std::lround(std::clamp(places[1], 1.0, 256.0) * scale));
            continue;
        }
        MBitmap image = definition.Image(*text, scale);
        MakeAlpha(image, invert);
        icon.own = MaskOfPart(image, image.Bounds());
        icon.side = image.Height();
    }
}

MSize StyleIcons::SizeOf(MStdIcon icon) const
{
    const Icon& found = icons[static_cast<std::size_t>(icon)];
    return { found.own ? found.own->Width() : found.side, found.side };
}

const StyleIcons::Sheet* StyleIcons::SheetFor(const Icon& icon, std::int32_t room) const
{
    // The nearest. A pixel too large is what rounding an area's edges one by one makes of a size.
    const std::int32_t wanted = std::min(icon.side, room);
    const Sheet* best = nullptr;
    for (const Sheet& sheet : sheets)
        if (best == nullptr ||
            (sheet.side <= wanted + 1 && std::abs(sheet.side - wanted) < std::abs(best->side - wanted)))
            best = &sheet;
    return best;
}

const MAlphaMask& StyleIcons::MaskOf(const Sheet& sheet, std::int32_t index)
{
    std::unique_ptr<MAlphaMask>& mask = sheet.masks[static_cast<std::size_t>(index)];
    if (!mask)
        mask = MaskOfPart(sheet.image, MRectangle::OfSize(index * sheet.side, 0, sheet.side, sheet.side));
    return *mask;
}

void StyleIcons::Paint(MDrawer& drawer, const MRectangle& area, MStdIcon icon, MColor color,
                       MColorOp op) const
{
    const Icon& found = icons[static_cast<std::size_t>(icon)];
    const MAlphaMask* mask = found.own.get();
    if (mask == nullptr && found.index >= 0)
    {
        const Sheet* sheet = SheetFor(found, std::min(area.Width(), area.Height()));
        const auto places = sheet != nullptr && sheet->side > 0 ? sheet->image.Width() / sheet->side : 0;
        if (found.index < std::min(places, static_cast<std::int32_t>(IconCount)))
            mask = &MaskOf(*sheet, found.index);
    }
    if (mask != nullptr)
        drawer.AlphaMask(area.left + (area.Width() - mask->Width()) / 2,
                         area.top + (area.Height() - mask->Height()) / 2, *mask, color, op);
}
