// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/FontFace.h"

#include <cmath>
#include <utility>

#include "foundation/text/MException.h"
#include "gui/painting/FontLibrary.h"
#include "gui/painting/RestOfStream.h"

FontFace::FontFace(std::vector<std::uint8_t> fileBytes)
    : library(FontLibrary::Shared()), bytes(std::move(fileBytes))
{
    const FT_Error error =
        FT_New_Memory_Face(FontLibrary::Get(), bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &face);
    // A file too short for the head of any format fails in the stream.
    if (error == FT_Err_Unknown_File_Format ||
        (error >= FT_Err_Cannot_Open_Stream && error <= FT_Err_Invalid_Frame_Read))
        throw MException("Unknown font file format.", MErrorCode::Content);
    if (error != 0)
        throw MException("Invalid font file format.", MErrorCode::Content);
    if ((face->face_flags & FT_FACE_FLAG_SCALABLE) == 0)
    {
        // Pictures of letters in a few sizes: nothing for an interface of any scale.
        FT_Done_Face(face);
        throw MException("Invalid font file format.", MErrorCode::Content);
    }
}

FontFace::~FontFace()
{
    FT_Done_Face(face);
}

std::shared_ptr<FontFace> FontFace::Read(MStream& stream)
{
    return std::make_shared<FontFace>(RestOfStream(stream));
}

MString FontFace::FamilyName() const
{
    return MString::FromUTF8(face->family_name != nullptr ? face->family_name : "");
}

FT_Face FontFace::AtSize(double pixels) const
{
    if (pixels == sizeInUse)
        return face;
    constexpr double largest = 2000;
    if (!(pixels >= 1 && pixels <= largest) ||
        FT_Set_Char_Size(face, 0, std::lround(pixels * 64), 72, 72) != 0)
        throw MException("Unable to accept required font size.", MErrorCode::Drawing);
    sizeInUse = pixels;
    return face;
}
