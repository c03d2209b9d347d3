// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <ft2build.h>
#include FT_FREETYPE_H

/// FreeType of this module: shapes and glyphs. Thread: GUI, which makes it with the first picture.
class FontLibrary
{
public:
    /// Throws MException "Could not initialize FreeType.".
    static FT_Library Get() { return Shared()->library; }
    /// For what FreeType made: it has to be given back before FreeType goes, also where that is at the end of
    /// the program.
    static const std::shared_ptr<const FontLibrary>& Shared();

    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;
    ~FontLibrary();

private:
    FontLibrary();

    FT_Library library = nullptr;
};
