// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/MTexturedStyle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "gui/painting/MDrawerToMBitmap.h"

namespace
{
bool Has(std::uint16_t state, int bits)
{
    return (state & bits) != 0;
}

double Share(double value)
{
    return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0;
}

std::int32_t Rounded(double place)
{
    return static_cast<std::int32_t>(std::lround(place));
}

/// A rectangle by its two directions: `start` and `length` along one, `across` and `thickness` over it.
MRectangle Oriented(Axis along, std::int32_t start, std::int32_t length, std::int32_t across,
                    std::int32_t thickness)
{
    return along == Axis::X ? MRectangle::OfSize(start, across, length, thickness)
                            : MRectangle::OfSize(across, start, thickness, length);
}

/// Of a knob, in pixels. Small ones have thinner lines.
struct KnobSizes
{
    KnobSizes(std::int32_t diameter, double unit)
        : isLarge(diameter >= 32 * unit), radius(diameter / 2.0), arc((isLarge ? 3 : 2) * unit),
          body(radius - arc - (isLarge ? 3 : 1.5) * unit), pointer((isLarge ? 2 : 1.6) * unit)
    {
    }

    bool isLarge;
    double radius;
    double arc;   // its thickness
    double body;   // its radius
    double pointer;   // its thickness
};

/// The two directions of an area. Values grow to the right, or upwards.
struct Track
{
    Track(const MRectangle& area, Axis direction)
        : along(direction), start(along == Axis::X ? area.left : area.top),
          length(along == Axis::X ? area.Width() : area.Height()),
          across(along == Axis::X ? area.top : area.left),
          breadth(along == Axis::X ? area.Height() : area.Width())
    {
    }

    /// Where a share of a length lies that begins and ends `margin` inside of the track.
    double PlaceOf(double share, double margin) const
    {
        const double inside = length - 2 * margin;
        return start + margin + inside * (along == Axis::X ? share : 1 - share);
    }
    MRectangle Bar(std::int32_t from, std::int32_t to, std::int32_t thickness) const
    {
        return Oriented(along, from, to - from, across + (breadth - thickness) / 2, thickness);
    }
    /// From where the filled part begins to a place on it.
    MRectangle Filled(double origin, double place, std::int32_t thickness) const
    {
        const std::int32_t from = Rounded(PlaceOf(origin, 0));
        const std::int32_t to = Rounded(place);
        return Bar(std::min(from, to), std::max(from, to), thickness);
    }

    Axis along;
    std::int32_t start;
    std::int32_t length;
    std::int32_t across;
    std::int32_t breadth;
};
}   // namespace

void MTexturedStyle::PaintFace(MDrawer& drawer, const MRectangle& area, MControlType type,
                               std::uint16_t state) const
{
    const Kind kind = FaceKindOf(type);
    if (kind == Kind::Count)
        return;
    const StyleSection& section = Section(kind);
    const NineSlice* face = section.Face(state);
    if (kind == Kind::Window && Has(state, DrawOn))
        face = section.FirstOf({ StyleImage::Framed, StyleImage::Image });
    if (face == nullptr)
        return;
    face->Paint(drawer, area);
    if (face == section.Find(StyleImage::Learning))
        if (const NineSlice* lamp = section.Find(StyleImage::LearningLamp))
            lamp->Paint(drawer, area);
}

void MTexturedStyle::PaintFocusRing(MDrawer& drawer, const MRectangle& control) const
{
    if (const NineSlice* ring = Section(Kind::FocusRing).Find(StyleImage::Image))
        ring->Paint(drawer, control.Inset(-focusReach, -focusReach));
}

void MTexturedStyle::PaintCentred(MDrawer& drawer, const MRectangle& area, const NineSlice* image) const
{
    if (image == nullptr)
        return;
    const MBitmap& picture = image->Image();
    drawer.BitBlt(area.left + (area.Width() - picture.Width()) / 2,
                  area.top + (area.Height() - picture.Height()) / 2, picture, picture.Bounds());
}

void MTexturedStyle::PaintCheckBox(MDrawer& drawer, const MRectangle& area, MCheckBoxState checked,
                                   std::uint16_t state) const
{
    using enum StyleImage;
    const StyleSection& box = Section(Kind::CheckBox);
    const NineSlice* image = nullptr;
    if (checked == MCheckBoxState::Grayed)
        image = !Has(state, DrawEnabled)  ? box.FirstOf({ PartlyGrayed, Partly, Image })
                : Has(state, DrawHovered) ? box.FirstOf({ PartlyHover, Partly, Image })
                                          : box.FirstOf({ Partly, Image });
    else
        image = box.Face(static_cast<std::uint16_t>((state & (DrawEnabled | DrawHovered | DrawPressed)) |
                                                    (checked == MCheckBoxState::On ? DrawOn : 0)));
    PaintCentred(drawer, area, image);
}

void MTexturedStyle::PaintRadioButton(MDrawer& drawer, const MRectangle& area, std::uint16_t state) const
{
    PaintCentred(
        drawer, area,
        Section(Kind::RadioButton)
            .Face(static_cast<std::uint16_t>(state & (DrawEnabled | DrawHovered | DrawPressed | DrawOn))));
}

MColor MTexturedStyle::ValueColor(std::uint16_t state) const
{
    if (Has(state, DrawLearning))
        return GetColor(MStdColor::Amber);
    if (Has(state, DrawSource))
        return GetColor(MStdColor::SourceCore);
    if (Has(state, DrawTarget))
        return GetColor(MStdColor::TargetCore);
    return GetColor(MStdColor::Accent);
}

void MTexturedStyle::PaintPointer(MDrawer& drawer, MPointF centre, double angle, double from, double to,
                                  double width, MColor color) const
{
    // A line with round ends as one polygon, so that no part of its edge is covered twice.
    constexpr int EndPoints = 7;
    std::array<MPointF, 2 * EndPoints> points;
    const double radians = (angle - 90) * std::numbers::pi / 180;
    const MPointF along{ std::cos(radians), std::sin(radians) };
    for (int i = 0; i < EndPoints; ++i)
    {
        const double turn = std::numbers::pi * i / (EndPoints - 1) - std::numbers::pi / 2;
        const double forward = std::cos(turn) * width / 2;
        const double aside = std::sin(turn) * width / 2;
        points[static_cast<std::size_t>(i)] = { centre.x + along.x * (to + forward) - along.y * aside,
                                                centre.y + along.y * (to + forward) + along.x * aside };
        points[static_cast<std::size_t>(i + EndPoints)] = {
            centre.x + along.x * (from - forward) + along.y * aside,
            centre.y + along.y * (from - forward) - along.x * aside
        };
    }
    drawer.FillPolygon(points, color);
}

void MTexturedStyle::PaintTicks(MDrawer& drawer, MPointF centre, double radius, double count) const
{
    constexpr double MostTicks = 24;   // more would run into each other
    if (!(count >= 1) || count > MostTicks)
        return;
    const auto steps = static_cast<int>(count);
    for (int step = 0; step <= steps; ++step)
    {
        const double angle = knob.baseAngle - 2 * knob.baseAngle * step / steps;
        PaintPointer(drawer, centre, angle, radius - GetScale() * 0.5, radius + GetScale() * 0.5, GetScale(),
                     GetColor(MStdColor::Text3));
    }
}

const MBitmap& MTexturedStyle::KnobBody(std::int32_t diameter, bool isLit) const
{
    constexpr std::size_t MostBodies = 32;
    const auto known = knobBodies.find({ diameter, isLit });
    if (known != knobBodies.end())
        return known->second;
    if (knobBodies.size() >= MostBodies)
        knobBodies.clear();
    MBitmap& picture = knobBodies[{ diameter, isLit }];
    picture.Create(diameter, diameter);
    MDrawerToMBitmap painter(picture, this);
    MDrawer& drawer = painter;
    const KnobSizes sizes(diameter, GetScale());
    const MPointF centre{ sizes.radius, sizes.radius };
    drawer.Arc(centre, sizes.radius - sizes.arc / 2, sizes.arc, knob.baseAngle - 90, -2 * knob.baseAngle,
               knob.track, MColorOp::Overlay);
    const NineSlice* image = Section(Kind::Knob).Find(StyleImage::Image);
    const std::int32_t inset = Rounded(sizes.radius - sizes.body);
    if (image != nullptr)
    {
        image->Paint(drawer, picture.Bounds().Inset(inset, inset), 255, MColorOp::Overlay);
        return picture;
    }
    const double half = GetScale() / 2;
    drawer.FillCircle(centre, sizes.body + half, isLit ? GetColor(MStdColor::Text3) : knob.edge,
                      MColorOp::Overlay);
    drawer.FillCircle(centre, sizes.body - half, MFill::Down(knob.top, knob.bottom), MColorOp::Overlay);
    return picture;
}

void MTexturedStyle::PaintKnob(MDrawer& drawer, const MRectangle& area, const ValueLook& look,
                               std::uint16_t state) const
{
    const std::int32_t diameter = std::min(area.Width(), area.Height());
    const KnobSizes sizes(diameter, GetScale());
    if (sizes.body <= GetScale())
        return;
    const bool enabled = Has(state, DrawEnabled);
    const MBitmap& body = KnobBody(diameter, enabled && Has(state, DrawHovered | DrawPressed));
    const std::int32_t left = area.left + (area.Width() - diameter) / 2;
    const std::int32_t top = area.top + (area.Height() - diameter) / 2;
    drawer.BitBlt(left, top, body, body.Bounds());

    const MPointF centre{ left + sizes.radius, top + sizes.radius };
    const double angle = knob.baseAngle - 2 * knob.baseAngle * Share(look.value);
    const double origin = knob.baseAngle - 2 * knob.baseAngle * Share(look.origin);
    if (enabled && angle != origin)
        drawer.Arc(centre, sizes.radius - sizes.arc / 2, sizes.arc, std::min(angle, origin) - 90,
                   std::abs(angle - origin), ValueColor(state));
    if (sizes.isLarge)
        PaintTicks(drawer, centre, sizes.radius - sizes.arc - 1.5 * GetScale(), look.ticks);
    PaintPointer(drawer, centre, angle, sizes.body * knob.selectorRatio, sizes.body - GetScale(),
                 sizes.pointer, GetColor(enabled ? MStdColor::Text : MStdColor::TextDisabled));
}

void MTexturedStyle::PaintTracker(MDrawer& drawer, const MRectangle& area, Axis along, const ValueLook& look,
                                  std::uint16_t state) const
{
    using enum StyleImage;
    const Track track(area, along);
    if (track.breadth < Pixels(14))
        return PaintSlimTracker(drawer, area, along, look, state);
    const StyleSection& section = Section(Kind::Tracker);
    const std::int32_t thickness = Pixels(4);
    const NineSlice* groove = section.Find(Image);
    if (groove != nullptr)
        groove->Paint(drawer, track.Bar(track.start, track.start + track.length, thickness));
    const NineSlice* thumb = along == Axis::X ? section.Find(Thumb) : section.Find(LyingThumb);
    if (!Has(state, DrawEnabled) || thumb == nullptr)
        return;
    const std::int32_t side = along == Axis::X ? thumb->Image().Width() : thumb->Image().Height();
    const double place = track.PlaceOf(Share(look.value), side / 2.0);
    if (const NineSlice* fill = section.Find(Fill))
        fill->Paint(drawer, track.Filled(Share(look.origin), place, thickness));
    if (Has(state, DrawHovered | DrawPressed))
        thumb = along == Axis::X ? section.FirstOf({ ThumbHover, Thumb })
                                 : section.FirstOf({ LyingThumbHover, LyingThumb });
    const std::int32_t first = Rounded(place - side / 2.0);
    PaintCentred(drawer, Oriented(along, first, side, track.across, track.breadth), thumb);
}

void MTexturedStyle::PaintSlimTracker(MDrawer& drawer, const MRectangle& area, Axis along,
                                      const ValueLook& look, std::uint16_t state) const
{
    const Track track(area, along);
    const double share = Share(look.value);
    const bool enabled = Has(state, DrawEnabled);
    const bool isOff = !enabled || share == Share(look.origin);
    const std::int32_t thickness = Pixels(3);
    const double round = thickness / 2.0;
    drawer.FillRoundRectangle(track.Bar(track.start, track.start + track.length, thickness), round,
                              GetColor(MStdColor::Field));
    const double place = track.PlaceOf(share, 0);
    if (!isOff)
        drawer.FillRoundRectangle(track.Filled(Share(look.origin), place, thickness), round,
                                  ValueColor(state));
    if (!enabled)
        return;
    const std::int32_t side = Pixels(3);
    const std::int32_t last = track.start + track.length - side;
    const std::int32_t first =
        std::clamp(Rounded(place - side / 2.0), track.start, std::max(track.start, last));
    drawer.FillRoundRectangle(track.Bar(first, first + side, std::min(Pixels(9), track.breadth)), GetScale(),
                              GetColor(isOff ? MStdColor::Text3 : MStdColor::Text));
}

void MTexturedStyle::PaintProgress(MDrawer& drawer, const MRectangle& area, double share) const
{
    const StyleSection& section = Section(Kind::ProgressBar);
    const Track track(area, Axis::X);
    const std::int32_t thickness = std::min(track.breadth, Pixels(6));
    const MRectangle bar = track.Bar(track.start, track.start + track.length, thickness);
    if (const NineSlice* groove = section.Find(StyleImage::Image))
        groove->Paint(drawer, bar);
    const NineSlice* fill = section.Find(StyleImage::Fill);
    const std::int32_t width = Rounded(bar.Width() * Share(share));
    if (fill == nullptr || width < 1)
        return;
    // The first pixels are the begin of a round end.
    const MRectangle clip = drawer.GetClip();
    drawer.SetClip(clip.Intersection(MRectangle::OfSize(bar.left, bar.top, width, thickness)));
    fill->Paint(drawer, MRectangle::OfSize(bar.left, bar.top, std::max(width, thickness), thickness));
    drawer.SetClip(clip);
}

void MTexturedStyle::PaintScrollBar(MDrawer& drawer, const MRectangle& area, const MRectangle& thumb,
                                    Axis along, std::uint16_t state) const
{
    const StyleSection& section = Section(along == Axis::X ? Kind::HScrollBar : Kind::VScrollBar);
    const NineSlice* image = section.Face(state);
    if (image == nullptr || !Has(state, DrawEnabled) || thumb.IsEmpty())
        return;
    const Track whole(area, along);
    const Track track(thumb, along);
    const std::int32_t wanted = Pixels(Has(state, DrawHovered | DrawPressed) ? 6 : 4);
    const std::int32_t thickness = std::min(wanted, whole.breadth);
    image->Paint(drawer, Oriented(along, track.start, track.length,
                                  whole.across + (whole.breadth - thickness) / 2, thickness));
}

void MTexturedStyle::PaintItem(MDrawer& drawer, const MRectangle& area, MControlType type,
                               std::uint16_t state) const
{
    const Kind kind = FaceKindOf(type);
    if (kind == Kind::Count || !Has(state, DrawEnabled))
        return;
    const StyleSection& section = Section(kind);
    // In a menu what is under the mouse is what is chosen.
    const bool isChosen = Has(state, DrawOn | DrawPressed) || (kind == Kind::Menu && Has(state, DrawHovered));
    const NineSlice* face = isChosen                  ? section.Find(StyleImage::SelectedItem)
                            : Has(state, DrawHovered) ? section.Find(StyleImage::HoverItem)
                                                      : nullptr;
    if (face == nullptr)
        return;
    face->Paint(drawer, area);
    const NineSlice* mark = section.Find(StyleImage::Mark);
    if (mark == nullptr || !Has(state, DrawOn))
        return;
    const std::int32_t height = std::min(Pixels(14), area.Height());
    mark->Paint(drawer,
                MRectangle::OfSize(area.left, area.top + (area.Height() - height) / 2, Pixels(2), height));
}

void MTexturedStyle::PaintTab(MDrawer& drawer, const MRectangle& area, std::uint16_t state) const
{
    const StyleSection& section = Section(Kind::TabSet);
    const bool isLit = Has(state, DrawEnabled) && Has(state, DrawHovered | DrawPressed);
    const NineSlice* line = Has(state, DrawOn) ? section.Find(StyleImage::On)
                            : isLit            ? section.Find(StyleImage::Hover)
                                               : nullptr;
    // Upon the line that all tabs stand on.
    const std::int32_t thickness = Pixels(2);
    if (line != nullptr)
        line->Paint(drawer, MRectangle::OfSize(area.left, area.bottom + 1 - Hairline() - thickness,
                                               area.Width(), thickness));
}

void MTexturedStyle::PaintShadow(MDrawer& drawer, const MRectangle& area) const
{
    if (const NineSlice* shadow = Section(Kind::Shadow).Find(StyleImage::Image))
        shadow->Paint(drawer, area.Inset(-shadowReach, -shadowReach));
}
