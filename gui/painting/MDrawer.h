// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "gui/painting/MBitmap.h"
#include "gui/painting/MColorOp.h"
#include "gui/painting/MColumnSpan.h"
#include "gui/painting/MFill.h"
#include "gui/painting/MFont.h"
#include "gui/painting/ShapeOutline.h"

class MAlphaMask;

/// Where a text or an image stands in a rectangle.
enum class MPlacement : std::uint8_t
{
    Begin,   ///< left or top
    Middle,
    End
};

/// What a drawer gets from whoever paints: the colours, fonts and sizes of the style in use.
class MDrawerOwner
{
public:
    virtual ~MDrawerOwner() = default;
    virtual MColor GetColor(std::int32_t index) const = 0;
    virtual MFont& GetFont(std::int32_t index) const = 0;
    virtual std::int32_t GetSpacing(std::int32_t index) const = 0;
    /// Pixels for each unit of a layout.
    virtual double GetScale() const = 0;
};

/// What controls paint with. Whole coordinates are pixels of the control that paints, rectangles have
/// inclusive corners; shapes with curved or slanted edges take places between pixels and have smooth edges.
/// Everything is cut to the clip. No operation throws: one that fails is logged with its name and skipped.
/// Thread: GUI.
class MDrawer
{
public:
    virtual ~MDrawer() = default;

    virtual std::int32_t GetWidth() const = 0;
    virtual std::int32_t GetHeight() const = 0;
    /// The owner's. Throw MException "Bitmap is not initialized." where there is none.
    virtual MColor GetColor(std::int32_t index) const = 0;
    virtual MFont& GetFont(std::int32_t index) const = 0;
    virtual std::int32_t GetSpacing(std::int32_t index) const = 0;
    virtual double GetScale() const = 0;

    virtual MRectangle GetClip() const = 0;
    /// What of `clip` lies inside the clip that the drawer was made with.
    virtual void SetClip(const MRectangle& clip) = 0;
    /// Puts the place 0, 0 so far to the right and down; what can be painted on stays where it is.
    virtual void Shift(std::int32_t dx, std::int32_t dy) = 0;

    /// Fills with an image.
    virtual void PatBlt(const MRectangle& area, const MBitmap& image, MBitmapFill fill,
                        MColorOp op = MColorOp::Alphablend) = 0;
    /// A part of an image, with its upper left corner at x, y.
    virtual void BitBlt(std::int32_t x, std::int32_t y, const MBitmap& image, const MRectangle& part,
                        std::uint8_t alpha = 255, MColorOp op = MColorOp::Alphablend) = 0;
    /// A colour through a mask.
    virtual void AlphaMask(std::int32_t x, std::int32_t y, const MAlphaMask& mask, MColor color,
                           MColorOp op = MColorOp::Alphablend) = 0;
    virtual void StretchBlt(const MRectangle& area, const MBitmap& image, const MRectangle& part,
                            std::uint8_t alpha = 255, MColorOp op = MColorOp::Alphablend) = 0;
    /// Stretches the middle column of an image, or its middle row; the ends stay as they are.
    virtual void StretchBltH(const MRectangle& area, const MBitmap& image, std::uint8_t alpha = 255,
                             MColorOp op = MColorOp::Alphablend) = 0;
    virtual void StretchBltV(const MRectangle& area, const MBitmap& image, std::uint8_t alpha = 255,
                             MColorOp op = MColorOp::Alphablend) = 0;
    /// An image in a rectangle. Bits 0 to 2 of the flags: 0 left, 1 in the middle, 2 right, 3 stretched, 4
    /// repeated; bits 3 to 5 the same from the top. Others fail with "Invalid bitmap layout flags specified
    /// for processing.".
    virtual void BitmapLayout(const MRectangle& area, const MBitmap& image, std::int32_t flags,
                              MColorOp op = MColorOp::Alphablend) = 0;
    /// One line of text. Down, it is centred by the height of its capitals; too long, it is cut with an
    /// ellipsis.
    virtual void AlignedTextOut(const MRectangle& area, const MString& text, MFont& font, MColor color,
                                MPlacement across = MPlacement::Begin, MPlacement down = MPlacement::Middle,
                                MColorOp op = MColorOp::Alphablend) = 0;
    /// The same with its start and baseline at a place, uncut.
    virtual void TextOut(double x, std::int32_t baseline, const MString& text, MFont& font, MColor color,
                         MColorOp op = MColorOp::Alphablend) = 0;

    /// Lines one pixel thick, from pixel to pixel; the last one is drawn, too.
    virtual void MoveTo(std::int32_t x, std::int32_t y) = 0;
    virtual void LineTo(std::int32_t x, std::int32_t y, MColor color, MColorOp op = MColorOp::Alphablend) = 0;
    virtual void MoveToF(MPointF point) = 0;
    virtual void LineToF(MPointF point, MColor color, double thickness = 1,
                         MColorOp op = MColorOp::Alphablend) = 0;

    /// The outer pixels of the area.
    virtual void Rectangle(const MRectangle& area, MColor color, MColorOp op = MColorOp::Alphablend,
                           std::int32_t thickness = 1) = 0;
    virtual void FillRectangle(const MRectangle& area, MColor color, MColorOp op = MColorOp::Alphablend) = 0;
    virtual void FillRectangleGradient(const MRectangle& area, const MFill& fill,
                                       MColorOp op = MColorOp::Alphablend) = 0;
    /// The frame lies inside the area.
    virtual void RoundRectangle(const MRectangle& area, double radius, double thickness, MColor color,
                                MColorOp op = MColorOp::Alphablend) = 0;
    virtual void FillRoundRectangle(const MRectangle& area, double radius, const MFill& fill,
                                    MColorOp op = MColorOp::Alphablend) = 0;
    /// The line's middle lies on the circle.
    virtual void Circle(MPointF centre, double radius, double thickness, MColor color,
                        MColorOp op = MColorOp::Alphablend) = 0;
    virtual void FillCircle(MPointF centre, double radius, const MFill& fill,
                            MColorOp op = MColorOp::Alphablend) = 0;
    /// Angles in degrees, 0 to the right, growing clockwise.
    virtual void Arc(MPointF centre, double radius, double thickness, double startDegrees,
                     double sweepDegrees, MColor color, MColorOp op = MColorOp::Alphablend) = 0;
    virtual void PolyLine(std::span<const MPointF> points, double thickness, MColor color,
                          MColorOp op = MColorOp::Alphablend) = 0;
    virtual void FillPolygon(std::span<const MPointF> points, const MFill& fill,
                             MColorOp op = MColorOp::Alphablend) = 0;

    /// The spans of neighbouring columns from `left` on, in one colour: what lies below a curve.
    virtual void FillColumns(std::int32_t left, std::span<const MColumnSpan> columns, MColor color) = 0;
    /// The same with up to three layers of colour, the lowest first, each with a coverage of its own: the
    /// edges of curves.
    /// @param coverage  a byte for each layer of each pixel, 255 is all: those of a pixel stand together, the
    /// pixels of a column from the top down, columns one after the other
    virtual void CoverColumns(std::int32_t left, std::span<const MColumnSpan> columns,
                              std::span<const std::uint8_t> coverage, std::span<const MColor> layers) = 0;

    /// Colour 0 outside.
    virtual MColor GetPixel(std::int32_t x, std::int32_t y) const = 0;
    virtual void SetPixel(std::int32_t x, std::int32_t y, MColor color, MColorOp op = MColorOp::Copy) = 0;
};
