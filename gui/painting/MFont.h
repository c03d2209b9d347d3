// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "foundation/text/MObject.h"
#include "foundation/text/MString.h"
#include "gui/painting/FontFace.h"
#include "gui/painting/MBitmap.h"
#include "gui/painting/MColorOp.h"

class MStream;

struct MFontDescriptor
{
    MString name;   ///< under which a style knows it
    double height = 11;   ///< pixels per em, in halves
    double spaceBetweenChars = 0;   ///< pixels more behind each character
    double lineHeight = 0;   ///< pixels from baseline to baseline; 0: ascent and descent
    /// Digits share one advance, as do plus and minus, and a minus before a digit is a real one: numbers that
    /// change then stand still.
    bool tabularDigits = false;
};

/// A face in a size, with the glyphs that were drawn so far. What the face lacks comes from the system's
/// fonts. Text is placed to a quarter of a pixel, on baselines of whole pixels. Thread: GUI.
class MFont : public MObject, public MFontDescriptor
{
public:
    MFont() = default;
    MFont(std::shared_ptr<FontFace> face, const MFontDescriptor& descriptor);

    /// From a font file. Throws MException "Unknown font file format.", "Invalid font file format.", "Unable
    /// to accept required font size.", and what the stream throws; the font is then as it was.
    virtual void Load(MStream& stream);
    virtual void Load(const MString& path);

    // All of them throw MException "Not initialized GDI object specified to select." without a face.

    double Width(const MString& text);
    /// Pixels above and below the baseline, both positive.
    std::int32_t Ascent();
    std::int32_t Descent();
    /// From baseline to baseline, never less than both.
    std::int32_t LineHeight();
    /// The height of a capital, for centring.
    double CapitalHeight();
    /// What each character of the text adds to its width; 0 for the second half of a pair.
    void MeasureCharacters(const MString& text, std::vector<float>& widths);
    /// Where a character begins, from the text's start; at its length: the width.
    double PositionOf(const MString& text, int index);
    /// The nearest gap between two characters to a place, 0 to the length.
    int IndexAt(const MString& text, double position);
    /// The text, or what of it fits in front of an ellipsis.
    MString Shortened(const MString& text, double width);

    /// @param x  where the text starts
    void Draw(MBitmap& bitmap, const MRectangle& clip, double x, std::int32_t baseline, const MString& text,
              MColor color, MColorOp op = MColorOp::Alphablend);

    /// Makes the list of the system's font files anew.
    static void ReScanSystemFonts();

private:
    static constexpr std::uint32_t Phases = 4;   // of a pixel

    struct Glyph
    {
        std::int32_t left = 0;   // of the picture, from the pen
        std::int32_t top = 0;   // above the baseline
        std::int32_t width = 0;
        std::int32_t height = 0;
        std::size_t first = 0;   // in `coverage`
    };

    template <typename Visit>
    double Walk(const MString& text, Visit&& visit);
    const Glyph& GlyphOf(char32_t character, std::uint32_t phase, bool light);
    Glyph MakeGlyph(char32_t character, std::uint32_t phase, bool light);
    float AdvanceOf(char32_t character);
    /// What its own advance becomes among digits and signs.
    float SharedAdvance(char32_t character, float own) const;
    const FontFace& FaceOf(char32_t character) const;
    const FontFace& Face() const;
    void Reset(std::shared_ptr<FontFace> newFace);

    std::shared_ptr<FontFace> face;
    std::unordered_map<std::uint32_t, Glyph> glyphs;
    std::array<const Glyph*, 128 * 8> common{};   // of ASCII, without the look-up
    std::vector<std::uint8_t> coverage;
    std::unordered_map<char32_t, float> advances;
    std::array<float, 128> commonAdvances{};   // of ASCII; 0: not yet known
    float digitAdvance = 0;
    float signAdvance = 0;
};
