// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/MFont.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include FT_OUTLINE_H

#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/PixelLoops.h"
#include "gui/painting/SystemFonts.h"

namespace
{
constexpr char32_t minusSign = 0x2212;
constexpr char32_t ellipsis = 0x2026;

bool IsDigit(char32_t character)
{
    return character >= U'0' && character <= U'9';
}

bool IsSign(char32_t character)
{
    return character == U'+' || character == U'-' || character == minusSign;
}

/// The character at `index`, which moves behind it. A lone surrogate is shown as what can't be shown.
char32_t NextCharacter(const MString& text, int& index)
{
    const char16_t first = text[index++];
    if (first < 0xD800 || first > 0xDFFF)
        return first;
    const char16_t second = index < text.Length() ? text[index] : u'\0';
    if (first > 0xDBFF || second < 0xDC00 || second > 0xDFFF)
        return 0xFFFD;
    ++index;
    return 0x10000 + ((char32_t{ first } - 0xD800) << 10) + (second - 0xDC00);
}

/// Thin light strokes on dark look thinner than they are: their partly covered pixels get more.
std::uint8_t Lifted(std::uint8_t coverage)
{
    constexpr double exponent = 0.85;
    return static_cast<std::uint8_t>(std::lround(255 * std::pow(coverage / 255.0, exponent)));
}

bool IsLight(MColor color)
{
    return 2 * color.Red() + 5 * color.Green() + color.Blue() > 8 * 127;
}
}   // namespace

MFont::MFont(std::shared_ptr<FontFace> newFace, const MFontDescriptor& descriptor)
    : MFontDescriptor(descriptor)
{
    Reset(std::move(newFace));
}

void MFont::Load(MStream& stream)
{
    Reset(FontFace::Read(stream));
}

void MFont::Load(const MString& path)
{
    MStdFileStream file(path, MStdFileStream::ReadAccess);
    Load(file);
}

void MFont::Reset(std::shared_ptr<FontFace> newFace)
{
    newFace->AtSize(height);
    face = std::move(newFace);
    glyphs.clear();
    common.fill(nullptr);
    coverage.clear();
    advances.clear();
    commonAdvances.fill(0);
    digitAdvance = signAdvance = 0;
    if (!tabularDigits)
        return;
    digitAdvance = AdvanceOf(U'0');
    signAdvance = std::max(AdvanceOf(U'+'), AdvanceOf(minusSign));
}

void MFont::ReScanSystemFonts()
{
    SystemFonts::Get().Scan();
}

const FontFace& MFont::Face() const
{
    if (!face)
        throw MException("Not initialized GDI object specified to select.", MErrorCode::Drawing);
    return *face;
}

const FontFace& MFont::FaceOf(char32_t character) const
{
    if (Face().GlyphOf(character) != 0)
        return *face;
    const FontFace* other = SystemFonts::Get().FaceFor(character);
    return other != nullptr ? *other : *face;
}

float MFont::AdvanceOf(char32_t character)
{
    const bool isCommon = character < commonAdvances.size();
    if (isCommon && commonAdvances[character] > 0)
        return commonAdvances[character];
    const auto known = advances.find(character);
    if (known != advances.end())
        return known->second;
    const FontFace& used = FaceOf(character);
    const FT_Face sized = used.AtSize(height);
    float advance = 0;
    if (FT_Load_Glyph(sized, used.GlyphOf(character), FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) == 0)
        // Without what hinting makes of it: spacing is the same at every size.
        advance = static_cast<float>(static_cast<double>(sized->glyph->linearHoriAdvance) / 65536);
    if (isCommon)
        commonAdvances[character] = advance;
    return advances[character] = advance;
}

float MFont::SharedAdvance(char32_t character, float own) const
{
    if (tabularDigits && IsDigit(character))
        return digitAdvance;
    if (tabularDigits && IsSign(character))
        return signAdvance;
    return own;
}

MFont::Glyph MFont::MakeGlyph(char32_t character, std::uint32_t phase, bool light)
{
    Glyph glyph;
    glyph.first = coverage.size();
    const FontFace& used = FaceOf(character);
    const FT_Face sized = used.AtSize(height);
    if (FT_Load_Glyph(sized, used.GlyphOf(character), FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) != 0)
        return glyph;
    const FT_GlyphSlot slot = sized->glyph;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE)
        FT_Outline_Translate(&slot->outline, static_cast<FT_Pos>(phase * (64 / Phases)), 0);
    if (FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) != 0 || slot->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY)
        return glyph;
    glyph.left = slot->bitmap_left;
    glyph.top = slot->bitmap_top;
    glyph.width = static_cast<std::int32_t>(slot->bitmap.width);
    glyph.height = static_cast<std::int32_t>(slot->bitmap.rows);
    for (std::int32_t y = 0; y < glyph.height; ++y)
    {
        const std::uint8_t* row = slot->bitmap.buffer + y * slot->bitmap.pitch;
        coverage.insert(coverage.end(), row, row + glyph.width);
    }
    if (light)
        std::transform(coverage.begin() + static_cast<std::ptrdiff_t>(glyph.first), coverage.end(),
                       coverage.begin() + static_cast<std::ptrdiff_t>(glyph.first), &Lifted);
    return glyph;
}

const MFont::Glyph& MFont::GlyphOf(char32_t character, std::uint32_t phase, bool light)
{
    const auto key = static_cast<std::uint32_t>(character) * 8 + (light ? Phases : 0) + phase;
    const bool isCommon = key < common.size();
    if (isCommon && common[key] != nullptr)
        return *common[key];
    auto found = glyphs.find(key);
    if (found == glyphs.end())
        found = glyphs.emplace(key, MakeGlyph(character, phase, light)).first;
    if (isCommon)
        common[key] = &found->second;   // places of a map stay
    return found->second;
}

/// visit(character, index, pen, shift) for each, with the pen where its place begins and what centres it
/// there; false ends it. The answer is the width.
template <typename Visit>
double MFont::Walk(const MString& text, Visit&& visit)
{
    Face();
    double pen = 0;
    for (int index = 0; index < text.Length();)
    {
        const int place = index;
        char32_t character = NextCharacter(text, index);
        if (tabularDigits && character == U'-' && index < text.Length() && IsDigit(text[index]))
            character = minusSign;
        const float own = AdvanceOf(character);
        const float shared = SharedAdvance(character, own);
        if (!visit(character, place, pen, (shared - own) / 2))
            return pen;
        pen += shared + spaceBetweenChars;
    }
    return pen;
}

double MFont::Width(const MString& text)
{
    return Walk(text, [](char32_t, int, double, float) { return true; });
}

void MFont::MeasureCharacters(const MString& text, std::vector<float>& widths)
{
    widths.assign(static_cast<std::size_t>(text.Length()), 0);
    float* previous = nullptr;
    double start = 0;
    const double end = Walk(text,
                            [&](char32_t, int place, double pen, float)
                            {
                                if (previous != nullptr)
                                    *previous = static_cast<float>(pen - start);
                                previous = &widths[static_cast<std::size_t>(place)];
                                start = pen;
                                return true;
                            });
    if (previous != nullptr)
        *previous = static_cast<float>(end - start);
}

double MFont::PositionOf(const MString& text, int index)
{
    return Walk(text, [index](char32_t, int place, double, float) { return place < index; });
}

int MFont::IndexAt(const MString& text, double position)
{
    int best = text.Length();
    double nearest = std::abs(Width(text) - position);
    Walk(text,
         [&](char32_t, int place, double pen, float)
         {
             if (std::abs(pen - position) < nearest)
             {
                 nearest = std::abs(pen - position);
                 best = place;
             }
             return true;
         });
    return best;
}

MString MFont::Shortened(const MString& text, double width)
{
    if (Width(text) <= width)
        return text;
    const double room = width - AdvanceOf(ellipsis) - spaceBetweenChars;
    int kept = 0;
    Walk(text,
         [&](char32_t, int place, double pen, float)
         {
             if (pen > room)
                 return false;
             kept = place;
             return true;
         });
    return text.SubString(0, kept) + MString(static_cast<char16_t>(ellipsis));
}

std::int32_t MFont::Ascent()
{
    return static_cast<std::int32_t>((Face().AtSize(height)->size->metrics.ascender + 63) / 64);
}

std::int32_t MFont::Descent()
{
    return static_cast<std::int32_t>((63 - Face().AtSize(height)->size->metrics.descender) / 64);
}

std::int32_t MFont::LineHeight()
{
    return std::max(Ascent() + Descent(), static_cast<std::int32_t>(std::lround(lineHeight)));
}

double MFont::CapitalHeight()
{
    const FT_Face sized = Face().AtSize(height);
    if (FT_Load_Glyph(sized, Face().GlyphOf(U'H'), FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0)
        return height * 0.7;
    return static_cast<double>(sized->glyph->metrics.horiBearingY) / 64;
}

void MFont::Draw(MBitmap& bitmap, const MRectangle& area, double x, std::int32_t baseline,
                 const MString& text, MColor color, MColorOp op)
{
    const MRectangle clip = area.Intersection(bitmap.Clip());
    if (clip.IsEmpty() || op == MColorOp::None || color.Alpha() == 0)
        return;
    const bool light = IsLight(color);
    Walk(text,
         [&](char32_t character, int, double pen, float shift)
         {
             const double wanted = x + pen + shift;
             const double quarter = std::floor(wanted * Phases + 0.5);
             const auto place = static_cast<std::int32_t>(std::floor(quarter / Phases));
             if (place > clip.right + 1)
                 return false;
             const auto phase = static_cast<std::uint32_t>(quarter - std::floor(quarter / Phases) * Phases);
             const Glyph& glyph = GlyphOf(character, phase, light);
             const MRectangle whole =
                 MRectangle::OfSize(place + glyph.left, baseline - glyph.top, glyph.width, glyph.height);
             const MRectangle seen = whole.Intersection(clip);
             if (seen.IsEmpty())
                 return true;
             const std::uint8_t* first = coverage.data() + glyph.first +
                                         static_cast<std::ptrdiff_t>(seen.top - whole.top) * glyph.width +
                                         (seen.left - whole.left);
             Pixels::Cover({ .first = bitmap.Row(seen.top) + seen.left,
                             .stride = bitmap.Width(),
                             .width = seen.Width(),
                             .height = seen.Height() },
                           first, glyph.width, color, op);
             return true;
         });
}
