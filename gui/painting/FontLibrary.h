// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

/// FreeType of this module: shapes and glyphs. Thread: GUI, which makes it with the first picture.
class FontLibrary
{
public:
    /// Throws MException "Could not initialize FreeType.".
    static FT_Library Get();

    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;

private:
    FontLibrary();
    ~FontLibrary();

    FT_Library library = nullptr;
};
