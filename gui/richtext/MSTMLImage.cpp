// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTMLImage.h"

namespace
{
struct Span
{
    std::int32_t first = 0;
    std::int32_t size = 0;
};

Span PlaceOf(STMLFit fit, std::int32_t first, std::int32_t room, std::int32_t size)
{
    switch (fit)
    {
    case STMLFit::Begin:
        break;
    case STMLFit::Middle:
        return { first + (room - size) / 2, size };
    case STMLFit::End:
        return { first + room - size, size };
    case STMLFit::Stretch:
        return { first, room };
    }
    return { first, size };
}
}   // namespace

const MBitmap* MSTMLImage::Picture() const
{
    const MBitmap* picture = nullptr;
    switch (name.source)
    {
    case STMLPictureName::Source::Number:
        if (name.number >= 0 && name.number < static_cast<std::int64_t>(Owner().images.size()))
            picture = Owner().images[static_cast<std::size_t>(name.number)].get();
        break;
    case STMLPictureName::Source::Icon:
        picture = Owner().Resources().FindIcon(name.name);
        break;
    case STMLPictureName::Source::Bitmap:
        picture = Owner().Resources().FindBitmap(name.name);
        break;
    }
    return picture != nullptr && !picture->IsEmpty() ? picture : nullptr;
}

MSTMLObject::Size MSTMLImage::NaturalSize() const
{
    const MBitmap* picture = Picture();
    return picture != nullptr ? Size{ picture->Width(), picture->Height() } : Size{};
}

void MSTMLImage::Paint(MDrawer& drawer, const MRectangle& area)
{
    const MBitmap* picture = Picture();
    if (picture == nullptr)
        return;
    // A stated size stretches it, unless its place is stated, too.
    const bool isPlaced = Format().across || Format().down;
    const STMLFit otherwise = isPlaced ? STMLFit::Middle : STMLFit::Stretch;
    const Span across =
        PlaceOf(Format().across.value_or(otherwise), area.left, area.Width(), picture->Width());
    const Span down = PlaceOf(Format().down.value_or(otherwise), area.top, area.Height(), picture->Height());
    const MRectangle place = MRectangle::OfSize(across.first, down.first, across.size, down.size);
    const auto alpha = static_cast<std::uint8_t>(Format().style.alpha * Owner().alpha / 255);
    const MRectangle clip = drawer.GetClip();
    drawer.SetClip(clip.Intersection(area));
    drawer.StretchBlt(place, *picture, picture->Bounds(), alpha);   // copies where the sizes agree
    drawer.SetClip(clip);
}
