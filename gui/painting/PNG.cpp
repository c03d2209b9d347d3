// SPDX-License-Identifier: GPL-3.0-or-later
#include <csetjmp>
#include <utility>
#include <vector>

#include <png.h>

#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/ImageFiles.h"

// libpng leaves by a long jump where something fails. So its functions are called from small ones that hold
// nothing with a destructor, and nothing is thrown through them.
namespace
{
/// What a callback may not throw.
void ReadBytes(png_structp png, png_bytep bytes, png_size_t count)
{
    auto* stream = static_cast<MStream*>(png_get_io_ptr(png));
    bool complete = false;
    try
    {
        ReadExact(*stream, bytes, static_cast<std::int32_t>(count));
        complete = true;
    }
    catch (...)
    {
        complete = false;
    }
    if (!complete)
        png_error(png, "end of data");
}

void WriteBytes(png_structp png, png_bytep bytes, png_size_t count)
{
    auto* stream = static_cast<MStream*>(png_get_io_ptr(png));
    bool complete = false;
    try
    {
        stream->Write(bytes, static_cast<std::int32_t>(count));
        complete = true;
    }
    catch (...)
    {
        complete = false;
    }
    if (!complete)
        png_error(png, "could not write");
}

void FlushBytes(png_structp) {}

void OnError(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

/// The structures of libpng, for either direction.
class Library
{
public:
    explicit Library(bool reads) : reading(reads)
    {
        png = reading ? png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, &OnError, &OnWarning)
                      : png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, &OnError, &OnWarning);
        if (png == nullptr)
            throw MException("Could not initialize libpng.", MErrorCode::NotInitialized);
        info = png_create_info_struct(png);
        if (info == nullptr)
        {
            Destroy();
            throw MException("Could not initialize libpng info structure.", MErrorCode::NotInitialized);
        }
    }
    ~Library() { Destroy(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    png_structp png = nullptr;
    png_infop info = nullptr;

private:
    void Destroy()
    {
        if (reading)
            png_destroy_read_struct(&png, &info, nullptr);
        else
            png_destroy_write_struct(&png, &info);
    }

    bool reading;
};

bool ReadHeader(const Library& library, MStream* stream)
{
    if (setjmp(png_jmpbuf(library.png)) != 0)   // NOLINT: as libpng wants it
        return false;
    png_set_read_fn(library.png, stream, &ReadBytes);
    png_read_info(library.png, library.info);
    return true;
}

bool HasPalette(const Library& library)
{
    png_colorp colors = nullptr;
    int count = 0;
    return png_get_color_type(library.png, library.info) != PNG_COLOR_TYPE_PALETTE ||
           (png_get_PLTE(library.png, library.info, &colors, &count) != 0 && count > 0);
}

/// Into rows of 32-bit pixels.
bool ReadRows(const Library& library, png_bytepp rows)
{
    if (setjmp(png_jmpbuf(library.png)) != 0)   // NOLINT
        return false;
    png_set_expand(library.png);
    png_set_scale_16(library.png);
    png_set_gray_to_rgb(library.png);
    png_set_bgr(library.png);
    png_set_add_alpha(library.png, 255, PNG_FILLER_AFTER);
    png_set_interlace_handling(library.png);
    png_read_update_info(library.png, library.info);
    png_read_image(library.png, rows);
    png_read_end(library.png, nullptr);
    return true;
}

bool WriteRows(const Library& library, MStream* stream, png_uint_32 width, png_uint_32 height,
               png_bytepp rows)
{
    if (setjmp(png_jmpbuf(library.png)) != 0)   // NOLINT
        return false;
    png_set_write_fn(library.png, stream, &WriteBytes, &FlushBytes);
    png_set_IHDR(library.png, library.info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_bgr(library.png);
    png_write_info(library.png, library.info);
    png_write_image(library.png, rows);
    png_write_end(library.png, nullptr);
    return true;
}

[[noreturn]] void FailLoading()
{
    throw MException("Error loading a PNG file.", MErrorCode::Content);
}
}   // namespace

void ImageFiles::LoadPNG(MBitmap& bitmap, MStream& stream)
{
    const Library library(true);
    if (!ReadHeader(library, &stream))
        FailLoading();
    if (!HasPalette(library))
        throw MException("Error loading PNG palette.", MErrorCode::Content);
    const std::int64_t width = png_get_image_width(library.png, library.info);
    const std::int64_t height = png_get_image_height(library.png, library.info);
    if (width < 1 || height < 1 || width > MostPixels / height)
        FailLoading();
    MBitmap read(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<std::size_t>(read.Height()));
    for (std::int32_t y = 0; y < read.Height(); ++y)
        rows.push_back(reinterpret_cast<png_bytep>(read.Row(y)));
    if (!ReadRows(library, rows.data()))
        FailLoading();
    bitmap = std::move(read);
}

void ImageFiles::SavePNG(const MBitmap& bitmap, MStream& stream)
{
    if (bitmap.IsEmpty())
        throw MException("Empty image cannot be saved to PNG.", MErrorCode::InvalidArgument);
    const Library library(false);
    std::vector<png_bytep> rows;
    rows.reserve(static_cast<std::size_t>(bitmap.Height()));
    for (std::int32_t y = 0; y < bitmap.Height(); ++y)
        rows.push_back(reinterpret_cast<png_bytep>(const_cast<std::uint32_t*>(bitmap.Row(y))));
    if (!WriteRows(library, &stream, static_cast<png_uint_32>(bitmap.Width()),
                   static_cast<png_uint_32>(bitmap.Height()), rows.data()))
        FailLoading();
}
