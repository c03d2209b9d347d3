// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H

#include "foundation/text/MString.h"

class MStream;

class FontLibrary;

/// The outlines of one font file, shared by all sizes. Thread: GUI.
class FontFace
{
public:
    /// Throws MException "Unknown font file format." or "Invalid font file format.".
    explicit FontFace(std::vector<std::uint8_t> fileBytes);
    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    /// The rest of the stream; throws what it throws.
    static std::shared_ptr<FontFace> Read(MStream& stream);

    MString FamilyName() const;
    /// The face, set to a size in pixels per em. Throws MException "Unable to accept required font size.".
    FT_Face AtSize(double pixels) const;
    /// The face at whatever size it has.
    FT_Face Plain() const { return face; }
    /// 0 for a character that it lacks.
    std::uint32_t GlyphOf(char32_t character) const { return FT_Get_Char_Index(face, character); }

private:
    std::shared_ptr<const FontLibrary> library;   // outlives the face
    std::vector<std::uint8_t> bytes;   // FreeType reads from them as long as the face lives
    FT_Face face = nullptr;
    mutable double sizeInUse = 0;
};
