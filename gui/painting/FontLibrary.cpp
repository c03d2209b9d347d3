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

const std::shared_ptr<const FontLibrary>& FontLibrary::Shared()
{
    static const std::shared_ptr<const FontLibrary> only(new FontLibrary);
    return only;
}
