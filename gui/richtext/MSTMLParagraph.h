// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/MSTMLItem.h"
#include "gui/richtext/STMLLines.h"

class MSTMLObject;

/// Text and the objects in it, broken into lines. Thread: GUI.
class MSTMLParagraph : public MSTMLItem
{
public:
    /// @param textStyle  what a line without text has the height of
    MSTMLParagraph(const STMLOwner& itemOwner, const STMLParagraphFormat& paragraphFormat,
                   STMLTextStyle textStyle);

    /// A blank at its start, or behind another one, is left out.
    void AddText(const MString& text, const STMLTextStyle& textStyle);
    void AddObject(std::unique_ptr<MSTMLObject> object);
    void AddPadding(const STMLTextStyle& textStyle);
    /// What follows becomes a piece of its own, if the last one has text.
    void EndPiece();
    bool IsEmpty() const { return pieces.empty(); }
    void SetFormat(const STMLParagraphFormat& newFormat) { format = newFormat; }

    const STMLParagraphFormat& Format() const { return format; }
    const std::vector<STMLPiece>& Pieces() const { return pieces; }
    /// As last laid out.
    const STMLLines& Lines() const { return lines; }

    std::unique_ptr<MSTMLItem> Clone() const override;
    std::int32_t GetMinimalWidth() override;
    std::int32_t GetPreferredWidth() override;
    std::int32_t GetHeight(std::int32_t width) override;
    void Layout(std::int32_t width) override;
    void Paint(MDrawer& drawer, const MRectangle& area) override;
    void SetOwner(const STMLOwner& newOwner) override;

private:
    void Measure();
    std::int32_t Indent() const;
    void PaintBullet(MDrawer& drawer, const MRectangle& area) const;
    void PaintDecorations(MDrawer& drawer, const MRectangle& area, const STMLLine& line) const;
    void PaintDecoration(MDrawer& drawer, const MRectangle& area, const STMLTextStyle& text) const;
    void PaintRun(MDrawer& drawer, const MRectangle& area, const STMLLine& line, const STMLRun& run) const;

    STMLParagraphFormat format;
    STMLTextStyle style;
    std::vector<STMLPiece> pieces;
    bool endsInBlank = true;
    bool isPieceEnded = false;

    bool isMeasured = false;
    bool hasShares = false;   // objects whose width depends on the line's
    STMLWords words;
    std::int32_t minimalWidth = 0;
    std::int32_t preferredWidth = 0;
    std::int32_t laidOutWidth = -1;
    STMLLines lines;
};
