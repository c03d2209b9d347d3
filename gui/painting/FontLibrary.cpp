// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/FontLibrary.h"

#include "foundation/text/MException.h"

FontLibrary::FontLibrary()
{
    if (FT_Init_FreeType(&library) != 0)
        throw MException("Could not initialize FreeType.", MErrorCode::Drawing);
}

FontLibrary::~FontLibrary()
{
    FT_Done_FreeType(library);
}

FT_Library FontLibrary::Get()
{
    static FontLibrary only;
    return only.library;
}
