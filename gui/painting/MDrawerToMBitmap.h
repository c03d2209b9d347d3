// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/painting/MDrawer.h"

/// The drawer: paints on a bitmap, of which it keeps an origin and a clip.
class MDrawerToMBitmap : public MDrawer
{
public:
    /// Without a bitmap, and where an owner is asked for without one, operations fail with "Bitmap is not
    /// initialized.".
    explicit MDrawerToMBitmap(const MDrawerOwner* styleOwner = nullptr) : owner(styleOwner) {}
    explicit MDrawerToMBitmap(MBitmap& target, const MDrawerOwner* styleOwner = nullptr);

    /// Paints from now on into `area` of the bitmap: its corner becomes 0, 0, and it is the widest clip.
    void PrepareBitmap(MBitmap& target, const MRectangle& area);
    /// A drawer for a part of this one, as a child control has it.
    MDrawerToMBitmap Part(const MRectangle& area) const;

    std::int32_t GetWidth() const override { return size.Width(); }
    std::int32_t GetHeight() const override { return size.Height(); }
    MColor GetColor(std::int32_t index) const override { return Owner().GetColor(index); }
    MFont& GetFont(std::int32_t index) const override { return Owner().GetFont(index); }
    std::int32_t GetSpacing(std::int32_t index) const override { return Owner().GetSpacing(index); }
    double GetScale() const override { return Owner().GetScale(); }

    MRectangle GetClip() const override
    {
        return clip.IsEmpty() ? MRectangle{} : clip.Moved(-originX, -originY);
    }
    void SetClip(const MRectangle& newClip) override
    {
        clip = newClip.Moved(originX, originY).Intersection(widestClip);
    }
    void Shift(std::int32_t dx, std::int32_t dy) override
    {
        originX += dx;
        originY += dy;
    }

    void PatBlt(const MRectangle& area, const MBitmap& image, MBitmapFill fill, MColorOp op) override;
    void BitBlt(std::int32_t x, std::int32_t y, const MBitmap& image, const MRectangle& part,
                std::uint8_t alpha, MColorOp op) override;
    void AlphaMask(std::int32_t x, std::int32_t y, const MAlphaMask& mask, MColor color,
                   MColorOp op) override;
    void StretchBlt(const MRectangle& area, const MBitmap& image, const MRectangle& part, std::uint8_t alpha,
                    MColorOp op) override;
    void StretchBltH(const MRectangle& area, const MBitmap& image, std::uint8_t alpha, MColorOp op) override;
    void StretchBltV(const MRectangle& area, const MBitmap& image, std::uint8_t alpha, MColorOp op) override;
    void BitmapLayout(const MRectangle& area, const MBitmap& image, std::int32_t flags, MColorOp op) override;
    void AlignedTextOut(const MRectangle& area, const MString& text, MFont& font, MColor color,
                        MPlacement across, MPlacement down, MColorOp op) override;
    void TextOut(double x, std::int32_t baseline, const MString& text, MFont& font, MColor color,
                 MColorOp op) override;
    void MoveTo(std::int32_t x, std::int32_t y) override;
    void LineTo(std::int32_t x, std::int32_t y, MColor color, MColorOp op) override;
    void MoveToF(MPointF point) override { pen = point; }
    void LineToF(MPointF point, MColor color, double thickness, MColorOp op) override;
    void Rectangle(const MRectangle& area, MColor color, MColorOp op, std::int32_t thickness) override;
    void FillRectangle(const MRectangle& area, MColor color, MColorOp op) override;
    void FillRectangleGradient(const MRectangle& area, const MFill& fill, MColorOp op) override;
    void RoundRectangle(const MRectangle& area, double radius, double thickness, MColor color,
                        MColorOp op) override;
    void FillRoundRectangle(const MRectangle& area, double radius, const MFill& fill, MColorOp op) override;
    void Circle(MPointF centre, double radius, double thickness, MColor color, MColorOp op) override;
    void FillCircle(MPointF centre, double radius, const MFill& fill, MColorOp op) override;
    void Arc(MPointF centre, double radius, double thickness, double startDegrees, double sweepDegrees,
             MColor color, MColorOp op) override;
    void PolyLine(std::span<const MPointF> points, double thickness, MColor color, MColorOp op) override;
    void FillPolygon(std::span<const MPointF> points, const MFill& fill, MColorOp op) override;
    void FillColumns(std::int32_t left, std::span<const MColumnSpan> columns, MColor color) override;
    void CoverColumns(std::int32_t left, std::span<const MColumnSpan> columns,
                      std::span<const std::uint8_t> coverage, std::span<const MColor> layers) override;
    MColor GetPixel(std::int32_t x, std::int32_t y) const override;
    void SetPixel(std::int32_t x, std::int32_t y, MColor color, MColorOp op) override;

private:
    MBitmap& Target() const;
    const MDrawerOwner& Owner() const;
    /// Where a place of the control lies on the bitmap.
    MPointF OnBitmap(MPointF point) const { return { point.x + originX, point.y + originY }; }
    void FillArea(const MRectangle& area, MColor color, MColorOp op);
    void Put(std::int32_t x, std::int32_t y, const MBitmap& image, const MRectangle& part, std::uint8_t alpha,
             MColorOp op);
    void PutStretched(const MRectangle& area, const MBitmap& image, const MRectangle& part,
                      std::uint8_t alpha, MColorOp op);
    void Tile(const MRectangle& area, const MBitmap& image, MColorOp op);
    template <typename Build>
    void Shape(const char* operation, const MFill& fill, MColorOp op, Build&& build);

    MBitmap* bitmap = nullptr;
    const MDrawerOwner* owner = nullptr;
    MRectangle size;   // from 0, 0
    MRectangle widestClip;   // of the bitmap, as all that follow
    MRectangle clip;
    std::int32_t originX = 0;
    std::int32_t originY = 0;
    MPointF pen;
};
