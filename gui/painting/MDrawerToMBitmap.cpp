// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/MDrawerToMBitmap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "foundation/text/Boundary.h"
#include "gui/painting/ColumnPainting.h"
#include "gui/painting/MAlphaMask.h"
#include "gui/painting/PixelLoops.h"
#include "gui/painting/Stretching.h"

namespace
{
constexpr std::int32_t ShortRow = 4;   // pixels

/// A drawer is made for each control in each paint: the memory of its shapes is kept beside all of them.
ShapeOutline& SharedOutline()
{
    static ShapeOutline outline;
    outline.Clear();
    return outline;
}
}   // namespace

MDrawerToMBitmap::MDrawerToMBitmap(MBitmap& target, const MDrawerOwner* styleOwner) : owner(styleOwner)
{
    PrepareBitmap(target, target.Bounds());
}

void MDrawerToMBitmap::PrepareBitmap(MBitmap& target, const MRectangle& area)
{
    bitmap = &target;
    size = MRectangle::OfSize(0, 0, area.Width(), area.Height());
    originX = area.left;
    originY = area.top;
    clip = widestClip = area.Intersection(target.Clip());
}

MDrawerToMBitmap MDrawerToMBitmap::Part(const MRectangle& area) const
{
    MDrawerToMBitmap part(owner);
    part.bitmap = bitmap;
    part.size = MRectangle::OfSize(0, 0, area.Width(), area.Height());
    part.originX = originX + area.left;
    part.originY = originY + area.top;
    part.clip = part.widestClip = area.Moved(originX, originY).Intersection(clip);
    return part;
}

MBitmap& MDrawerToMBitmap::Target() const
{
    if (bitmap == nullptr)
        throw MException("Bitmap is not initialized.", MErrorCode::NotInitialized);
    return *bitmap;
}

const MDrawerOwner& MDrawerToMBitmap::Owner() const
{
    if (owner == nullptr)
        throw MException("Bitmap is not initialized.", MErrorCode::NotInitialized);
    return *owner;
}

void MDrawerToMBitmap::FillArea(const MRectangle& area, MColor color, MColorOp op)
{
    const MRectangle seen = area.Moved(originX, originY).Intersection(clip);
    if (seen.IsEmpty())
        return;
    if (seen.Width() < ShortRow && op == MColorOp::Alphablend)
    {
        // An upright line: the loop over a row's pixels would cost more than they do.
        for (std::int32_t y = seen.top; y <= seen.bottom; ++y)
            for (std::uint32_t* pixel = Target().Row(y) + seen.left; pixel <= Target().Row(y) + seen.right;
                 ++pixel)
                *pixel = Pixels::Alphablended(*pixel, color.value, color.Alpha());
        return;
    }
    Pixels::Fill({ .first = Target().Row(seen.top) + seen.left,
                   .stride = Target().Width(),
                   .width = seen.Width(),
                   .height = seen.Height() },
                 color, op);
}

void MDrawerToMBitmap::FillRectangle(const MRectangle& area, MColor color, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::FillRectangle", [&] { FillArea(area, color, op); });
}

void MDrawerToMBitmap::Rectangle(const MRectangle& area, MColor color, MColorOp op, std::int32_t thickness)
{
    AtBoundary("MDrawerToMBitmap::Rectangle",
               [&]
               {
                   // Each pixel once, so that one that shines through is alike all round.
                   const std::int32_t across = std::min(thickness, (area.Height() + 1) / 2);
                   FillArea({ area.left, area.top, area.right, area.top + across - 1 }, color, op);
                   FillArea({ area.left, std::max(area.top + across, area.bottom - across + 1), area.right,
                              area.bottom },
                            color, op);
                   const std::int32_t side = std::min(thickness, (area.Width() + 1) / 2);
                   const std::int32_t top = area.top + across;
                   const std::int32_t bottom = area.bottom - across;
                   FillArea({ area.left, top, area.left + side - 1, bottom }, color, op);
                   FillArea({ std::max(area.left + side, area.right - side + 1), top, area.right, bottom },
                            color, op);
               });
}

void MDrawerToMBitmap::FillRectangleGradient(const MRectangle& area, const MFill& fill, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::FillRectangleGradient",
               [&]
               {
                   const MRectangle seen = area.Intersection(GetClip());
                   if (fill.direction == MFill::Direction::Solid)
                       return FillArea(area, fill.from, op);
                   const bool down = fill.direction == MFill::Direction::Down;
                   const double length = down ? area.Height() : area.Width();
                   const std::int32_t first = down ? area.top : area.left;
                   for (std::int32_t at = down ? seen.top : seen.left;
                        at <= (down ? seen.bottom : seen.right); ++at)
                   {
                       const MColor color = fill.from.Mixed(fill.to, (at - first + 0.5) / length);
                       if (down)
                           FillArea({ seen.left, at, seen.right, at }, color, op);
                       else
                           FillArea({ at, seen.top, at, seen.bottom }, color, op);
                   }
               });
}

template <typename Build>
void MDrawerToMBitmap::Shape(const char* operation, const MFill& fill, MColorOp op, Build&& build)
{
    AtBoundary(operation,
               [&]
               {
                   MBitmap& target = Target();
                   if (clip.IsEmpty())
                       return;
                   ShapeOutline& outline = SharedOutline();
                   build(outline);
                   outline.Fill(target, clip, fill, op);
               });
}

void MDrawerToMBitmap::FillRoundRectangle(const MRectangle& area, double radius, const MFill& fill,
                                          MColorOp op)
{
    Shape("MDrawerToMBitmap::FillRoundRectangle", fill, op,
          [&](ShapeOutline& outline)
          {
              const MRectangle on = area.Moved(originX, originY);
              outline.AddRectangle(on.left, on.top, on.right + 1, on.bottom + 1, radius);
          });
}

void MDrawerToMBitmap::RoundRectangle(const MRectangle& area, double radius, double thickness, MColor color,
                                      MColorOp op)
{
    Shape("MDrawerToMBitmap::RoundRectangle", color, op,
          [&](ShapeOutline& outline)
          {
              const MRectangle on = area.Moved(originX, originY);
              outline.AddRectangle(on.left, on.top, on.right + 1, on.bottom + 1, radius);
              outline.AddRectangle(on.left + thickness, on.top + thickness, on.right + 1 - thickness,
                                   on.bottom + 1 - thickness, std::max(0.0, radius - thickness), true);
          });
}

void MDrawerToMBitmap::FillCircle(MPointF centre, double radius, const MFill& fill, MColorOp op)
{
    Shape("MDrawerToMBitmap::FillCircle", fill, op,
          [&](ShapeOutline& outline) { outline.AddCircle(OnBitmap(centre), radius); });
}

void MDrawerToMBitmap::Circle(MPointF centre, double radius, double thickness, MColor color, MColorOp op)
{
    Shape("MDrawerToMBitmap::Circle", color, op,
          [&](ShapeOutline& outline)
          {
              outline.AddCircle(OnBitmap(centre), radius + thickness / 2);
              outline.AddCircle(OnBitmap(centre), radius - thickness / 2, true);
          });
}

void MDrawerToMBitmap::Arc(MPointF centre, double radius, double thickness, double startDegrees,
                           double sweepDegrees, MColor color, MColorOp op)
{
    Shape("MDrawerToMBitmap::Arc", color, op,
          [&](ShapeOutline& outline)
          { outline.AddArc(OnBitmap(centre), radius, thickness, startDegrees, sweepDegrees); });
}

void MDrawerToMBitmap::PolyLine(std::span<const MPointF> points, double thickness, MColor color, MColorOp op)
{
    Shape("MDrawerToMBitmap::PolyLine", color, op,
          [&](ShapeOutline& outline)
          {
              std::vector<MPointF> moved;
              for (const MPointF& point : points)
                  moved.push_back(OnBitmap(point));
              outline.AddStroke(moved, thickness);
          });
}

void MDrawerToMBitmap::FillPolygon(std::span<const MPointF> points, const MFill& fill, MColorOp op)
{
    Shape("MDrawerToMBitmap::FillPolygon", fill, op,
          [&](ShapeOutline& outline)
          {
              std::vector<MPointF> moved;
              for (const MPointF& point : points)
                  moved.push_back(OnBitmap(point));
              outline.AddPolygon(moved);
          });
}

void MDrawerToMBitmap::LineToF(MPointF point, MColor color, double thickness, MColorOp op)
{
    Shape("MDrawerToMBitmap::LineToF", color, op,
          [&](ShapeOutline& outline)
          {
              const std::array<MPointF, 2> line{ OnBitmap(pen), OnBitmap(point) };
              outline.AddStroke(line, thickness);
          });
    pen = point;
}

void MDrawerToMBitmap::MoveTo(std::int32_t x, std::int32_t y)
{
    pen = { static_cast<double>(x), static_cast<double>(y) };
}

void MDrawerToMBitmap::LineTo(std::int32_t x, std::int32_t y, MColor color, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::LineTo",
               [&]
               {
                   const auto x0 = static_cast<std::int32_t>(pen.x);
                   const auto y0 = static_cast<std::int32_t>(pen.y);
                   MoveTo(x, y);
                   if (x == x0 || y == y0)
                       return FillArea({ std::min(x, x0), std::min(y, y0), std::max(x, x0), std::max(y, y0) },
                                       color, op);
                   // One pixel for each step along the longer way, as far as that lies in the clip.
                   const bool flat = std::abs(x - x0) >= std::abs(y - y0);
                   const MRectangle seen = GetClip();
                   const std::int32_t from = flat ? x0 : y0;
                   const std::int32_t to = flat ? x : y;
                   const double slope =
                       flat ? static_cast<double>(y - y0) / (x - x0) : static_cast<double>(x - x0) / (y - y0);
                   const std::int32_t first = std::max(std::min(from, to), flat ? seen.left : seen.top);
                   const std::int32_t last = std::min(std::max(from, to), flat ? seen.right : seen.bottom);
                   for (std::int32_t at = first; at <= last; ++at)
                   {
                       const auto off =
                           static_cast<std::int32_t>(std::lround((flat ? y0 : x0) + slope * (at - from)));
                       if (flat)
                           FillArea({ at, off, at, off }, color, op);
                       else
                           FillArea({ off, at, off, at }, color, op);
                   }
               });
}

void MDrawerToMBitmap::Put(std::int32_t x, std::int32_t y, const MBitmap& image, const MRectangle& part,
                           std::uint8_t alpha, MColorOp op)
{
    const MRectangle inside = part.Intersection(image.Bounds());
    const std::int32_t dx = originX + x - part.left;
    const std::int32_t dy = originY + y - part.top;
    const MRectangle seen = inside.Moved(dx, dy).Intersection(clip);
    if (inside.IsEmpty() || seen.IsEmpty())
        return;
    Pixels::Blend({ .first = Target().Row(seen.top) + seen.left,
                    .stride = Target().Width(),
                    .width = seen.Width(),
                    .height = seen.Height() },
                  image.Row(seen.top - dy) + (seen.left - dx), image.Width(), alpha, op);
}

void MDrawerToMBitmap::PutStretched(const MRectangle& area, const MBitmap& image, const MRectangle& part,
                                    std::uint8_t alpha, MColorOp op)
{
    const MRectangle inside = part.Intersection(image.Bounds());
    if (area.IsEmpty() || inside.IsEmpty() || area.Intersection(GetClip()).IsEmpty())
        return;
    if (area.Width() == inside.Width() && area.Height() == inside.Height())
        return Put(area.left, area.top, image, inside, alpha, op);
    const MBitmap stretched = Stretched(image, inside, area.Width(), area.Height());
    Put(area.left, area.top, stretched, stretched.Bounds(), alpha, op);
}

void MDrawerToMBitmap::Tile(const MRectangle& area, const MBitmap& image, MColorOp op)
{
    if (image.IsEmpty())
        return;
    for (std::int32_t y = area.top; y <= area.bottom; y += image.Height())
        for (std::int32_t x = area.left; x <= area.right; x += image.Width())
            Put(x, y, image, MRectangle::OfSize(0, 0, area.right - x + 1, area.bottom - y + 1), 255, op);
}

void MDrawerToMBitmap::BitBlt(std::int32_t x, std::int32_t y, const MBitmap& image, const MRectangle& part,
                              std::uint8_t alpha, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::BitBlt", [&] { Put(x, y, image, part, alpha, op); });
}

void MDrawerToMBitmap::StretchBlt(const MRectangle& area, const MBitmap& image, const MRectangle& part,
                                  std::uint8_t alpha, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::StretchBlt", [&] { PutStretched(area, image, part, alpha, op); });
}

void MDrawerToMBitmap::StretchBltH(const MRectangle& area, const MBitmap& image, std::uint8_t alpha,
                                   MColorOp op)
{
    AtBoundary(
        "MDrawerToMBitmap::StretchBltH",
        [&]
        {
            const std::int32_t end = std::min((image.Width() - 1) / 2, area.Width() / 2);
            const std::int32_t bottom = image.Height() - 1;
            const MRectangle left{ 0, 0, end - 1, bottom };
            const MRectangle right{ image.Width() - end, 0, image.Width() - 1, bottom };
            PutStretched({ area.left, area.top, area.left + end - 1, area.bottom }, image, left, alpha, op);
            PutStretched({ area.left + end, area.top, area.right - end, area.bottom }, image,
                         { end, 0, image.Width() - 1 - end, bottom }, alpha, op);
            PutStretched({ area.right - end + 1, area.top, area.right, area.bottom }, image, right, alpha,
                         op);
        });
}

void MDrawerToMBitmap::StretchBltV(const MRectangle& area, const MBitmap& image, std::uint8_t alpha,
                                   MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::StretchBltV",
               [&]
               {
                   const std::int32_t end = std::min((image.Height() - 1) / 2, area.Height() / 2);
                   const std::int32_t right = image.Width() - 1;
                   PutStretched({ area.left, area.top, area.right, area.top + end - 1 }, image,
                                { 0, 0, right, end - 1 }, alpha, op);
                   PutStretched({ area.left, area.top + end, area.right, area.bottom - end }, image,
                                { 0, end, right, image.Height() - 1 - end }, alpha, op);
                   PutStretched({ area.left, area.bottom - end + 1, area.right, area.bottom }, image,
                                { 0, image.Height() - end, right, image.Height() - 1 }, alpha, op);
               });
}

void MDrawerToMBitmap::PatBlt(const MRectangle& area, const MBitmap& image, MBitmapFill fill, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::PatBlt",
               [&]
               {
                   constexpr std::int32_t middle = 1 | 1 << 3;
                   switch (fill)
                   {
                   case MBitmapFill::None:
                       return BitmapLayout(area, image, middle, op);
                   case MBitmapFill::Stretch:
                       return PutStretched(area, image, image.Bounds(), 255, op);
                   case MBitmapFill::HPattern:
                       return Tile(area, Stretched(image, image.Bounds(), image.Width(), area.Height()), op);
                   case MBitmapFill::VPattern:
                       return Tile(area, Stretched(image, image.Bounds(), area.Width(), image.Height()), op);
                   case MBitmapFill::Pattern:
                       return Tile(area, image, op);
                   }
               });
}

void MDrawerToMBitmap::BitmapLayout(const MRectangle& area, const MBitmap& image, std::int32_t flags,
                                    MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::BitmapLayout",
               [&]
               {
                   enum : std::int32_t
                   {
                       Middle = 1,
                       End = 2,
                       Whole = 3,
                       Repeated = 4
                   };
                   const std::int32_t across = flags & 7;
                   const std::int32_t down = flags >> 3 & 7;
                   if ((flags & ~63) != 0 || across > Repeated || down > Repeated)
                       throw MException("Invalid bitmap layout flags specified for processing.",
                                        MErrorCode::InvalidArgument);
                   const auto placed =
                       [](std::int32_t how, std::int32_t first, std::int32_t room, std::int32_t length)
                   {
                       const std::int32_t free = room - length;
                       return first + (how == Middle ? free / 2 : how == End ? free : 0);
                   };
                   const std::int32_t width = across == Whole ? area.Width() : image.Width();
                   const std::int32_t height = down == Whole ? area.Height() : image.Height();
                   const bool stretched = width != image.Width() || height != image.Height();
                   MBitmap larger;
                   if (stretched)
                       larger = Stretched(image, image.Bounds(), width, height);
                   const MBitmap& shown = stretched ? larger : image;
                   MRectangle place =
                       MRectangle::OfSize(placed(across, area.left, area.Width(), width),
                                          placed(down, area.top, area.Height(), height), width, height);
                   if (across == Repeated)
                       place.right = area.right;
                   if (down == Repeated)
                       place.bottom = area.bottom;
                   Tile(place, shown, op);
               });
}

void MDrawerToMBitmap::AlphaMask(std::int32_t x, std::int32_t y, const MAlphaMask& mask, MColor color,
                                 MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::AlphaMask",
               [&]
               {
                   const MRectangle seen = mask.Bounds().Moved(originX + x, originY + y).Intersection(clip);
                   if (seen.IsEmpty())
                       return;
                   std::vector<std::uint8_t> row(static_cast<std::size_t>(seen.Width()));
                   for (std::int32_t at = seen.top; at <= seen.bottom; ++at)
                   {
                       mask.GetRow(seen.left - originX - x, at - originY - y, seen.Width(), row.data());
                       Pixels::Cover({ .first = Target().Row(at) + seen.left,
                                       .stride = 0,
                                       .width = seen.Width(),
                                       .height = 1 },
                                     row.data(), 0, color, op);
                   }
               });
}

void MDrawerToMBitmap::TextOut(double x, std::int32_t baseline, const MString& text, MFont& font,
                               MColor color, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::TextOut",
               [&] { font.Draw(Target(), clip, x + originX, baseline + originY, text, color, op); });
}

void MDrawerToMBitmap::AlignedTextOut(const MRectangle& area, const MString& text, MFont& font, MColor color,
                                      MPlacement across, MPlacement down, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::AlignedTextOut",
               [&]
               {
                   const MString shown = font.Shortened(text, area.Width());
                   double x = area.left;
                   if (across != MPlacement::Begin)
                       x += (area.Width() - font.Width(shown)) / (across == MPlacement::Middle ? 2 : 1);
                   double baseline = area.top + font.Ascent();
                   if (down == MPlacement::Middle)
                       baseline = area.top + (area.Height() + font.CapitalHeight()) / 2;
                   else if (down == MPlacement::End)
                       baseline = area.bottom + 1 - font.Descent();
                   // What is centred begins on a whole pixel: labels of equal buttons look alike.
                   if (across == MPlacement::Middle)
                       x = std::round(x);
                   font.Draw(Target(), area.Moved(originX, originY).Inset(-1, 0).Intersection(clip),
                             x + originX, static_cast<std::int32_t>(std::lround(baseline)) + originY, shown,
                             color, op);
               });
}

void MDrawerToMBitmap::FillColumns(std::int32_t left, std::span<const MColumnSpan> columns, MColor color)
{
    AtBoundary("MDrawerToMBitmap::FillColumns",
               [&] {
                   Columns::Fill(Target(), clip, { left + originX, originY }, columns, color);
               });
}

void MDrawerToMBitmap::CoverColumns(std::int32_t left, std::span<const MColumnSpan> columns,
                                    std::span<const std::uint8_t> coverage, std::span<const MColor> layers)
{
    AtBoundary("MDrawerToMBitmap::CoverColumns",
               [&] {
                   Columns::Cover(Target(), clip, { left + originX, originY }, columns, coverage, layers);
               });
}

MColor MDrawerToMBitmap::GetPixel(std::int32_t x, std::int32_t y) const
{
    const bool inside = bitmap != nullptr && bitmap->Bounds().Contains(x + originX, y + originY);
    return inside ? bitmap->Pixel(x + originX, y + originY) : MColor();
}

void MDrawerToMBitmap::SetPixel(std::int32_t x, std::int32_t y, MColor color, MColorOp op)
{
    AtBoundary("MDrawerToMBitmap::SetPixel", [&] { FillArea({ x, y, x, y }, color, op); });
}
